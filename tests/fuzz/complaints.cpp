// A fake that meets what nobody expected, such as a question that was not scripted, fails the test
// it is part of. In a fuzz target that is a finding like any other: the program ends, and the input
// is kept.

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

class EndsTheProgram : public testing::EmptyTestEventListener {
public:
    void OnTestPartResult(const testing::TestPartResult &result) override {
        if (result.failed())
            std::abort();
    }
};

// Owned by gtest, as listeners are.
bool listen() noexcept {
    testing::UnitTest::GetInstance()->listeners().Append(new EndsTheProgram);
    return true;
}

[[maybe_unused]] const bool isListening = listen();

} // namespace
