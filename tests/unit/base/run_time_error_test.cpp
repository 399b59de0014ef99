#include "base/run_time_error.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>

namespace velmora {
namespace {

TEST(RunTimeError, carriesNumberAndDescription) {
    const RunTimeError error(ErrorNumber::DiskFull, u"No space left on device");
    EXPECT_EQ(error.number(), ErrorNumber::DiskFull);
    EXPECT_EQ(error.description(), u"No space left on device");
    EXPECT_STREQ(error.what(), "No space left on device");
}

TEST(RunTimeError, isNeverWithoutADescription) {
    const RunTimeError error(ErrorNumber::Overflow, u"");
    EXPECT_EQ(error.description(), u"Overflow");
    EXPECT_STREQ(error.what(), "Overflow");
}

TEST(RunTimeError, hasADescriptionForEveryNumber) {
    const std::pair<ErrorNumber, std::u16string> rows[] = {
        {ErrorNumber::InvalidCall, u"Invalid procedure call or argument"},
        {ErrorNumber::Overflow, u"Overflow"},
        {ErrorNumber::SubscriptOutOfRange, u"Subscript out of range"},
        {ErrorNumber::DivisionByZero, u"Division by zero"},
        {ErrorNumber::TypeMismatch, u"Type mismatch"},
        {ErrorNumber::FileNotFound, u"File not found"},
        {ErrorNumber::DeviceIo, u"Device I/O error"},
        {ErrorNumber::FileExists, u"File already exists"},
        {ErrorNumber::DiskFull, u"Disk full"},
        {ErrorNumber::PermissionDenied, u"Permission denied"},
        {ErrorNumber::PathNotFound, u"Path not found"},
        {ErrorNumber::InvalidPropertyValue, u"Invalid property value"},
        {ErrorNumber::General, u"Automation error"},
        {static_cast<ErrorNumber>(4711), u"Application-defined or object-defined error"},
    };
    for (const auto &[number, description] : rows)
        EXPECT_EQ(defaultDescription(number), description);
}

TEST(RunTimeError, isRaisedByNumberAlone) {
    try {
        raise(ErrorNumber::PathNotFound);
        FAIL();
    } catch (const RunTimeError &error) {
        EXPECT_EQ(error.number(), ErrorNumber::PathNotFound);
        EXPECT_EQ(error.description(), u"Path not found");
    }
}

class Swallowed : public testing::Test {
protected:
    void TearDown() override { unsetenv("VELMORA_SWALLOWED"); }
    static std::string heard(const std::function<void()> &work) {
        testing::internal::CaptureStderr();
        work();
        return testing::internal::GetCapturedStderr();
    }
};

TEST_F(Swallowed, isToldWithBothPlacesToWhoeverAsks) {
    setenv("VELMORA_SWALLOWED", "1", 1);
    int raised = 0;
    int dropped = 0;
    const std::string line = heard([&] {
        dropped = __LINE__ + 1;
        passOver([&] {
            raised = __LINE__ + 1;
            raise(ErrorNumber::DiskFull);
        });
    });
    EXPECT_EQ(line.find("swallowed: 61 Disk full, raised at "), 0U) << line;
    EXPECT_NE(line.find("run_time_error_test.cpp:" + std::to_string(raised) + ","), line.npos)
        << line;
    EXPECT_NE(line.find("run_time_error_test.cpp:" + std::to_string(dropped) + "\n"), line.npos)
        << line;
}

TEST_F(Swallowed, isNotToldWhereNobodyAsksOrNothingFails) {
    EXPECT_EQ(heard([] { passOver([] { raise(ErrorNumber::DiskFull); }); }), "");
    setenv("VELMORA_SWALLOWED", "1", 1);
    EXPECT_EQ(heard([] { passOver([] {}); }), "");
}

TEST(PassOver, tellsWhetherTheStatementWentThrough) {
    int ran = 0;
    EXPECT_TRUE(passOver([&] { ++ran; }));
    EXPECT_FALSE(passOver([&] {
        ++ran;
        raise(ErrorNumber::General);
    }));
    EXPECT_EQ(ran, 2);
}

TEST(PassOver, letsEveryOtherExceptionThrough) {
    EXPECT_THROW(passOver([] { throw std::logic_error("not an error of the program"); }),
                 std::logic_error);
    EXPECT_THROW(passOver([] { throw 1; }), int);
}

} // namespace
} // namespace velmora
