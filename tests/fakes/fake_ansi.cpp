#include "tests/fakes/fake_ansi.h"

#include "base/numbers.h"

namespace velmora::fakes {

FakeAnsi::FakeAnsi(int page)
    : AnsiConversion([page] { return page == 0 ? std::u16string() : decimal(page); }) {}

} // namespace velmora::fakes
