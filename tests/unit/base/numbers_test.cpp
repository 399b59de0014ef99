#include "base/numbers.h"

#include "base/run_time_error.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

namespace velmora {
namespace {

void expectOverflow(const std::function<void()> &statement) {
    try {
        statement();
        ADD_FAILURE() << "no error was raised";
    } catch (const RunTimeError &error) {
        EXPECT_EQ(error.number(), ErrorNumber::Overflow);
    }
}

// --- rounding ------------------------------------------------------------------------------------

TEST(RoundHalfEven, halvesGoToTheEvenNeighbour) {
    EXPECT_EQ(roundHalfEven(0.5), 0);
    EXPECT_EQ(roundHalfEven(1.5), 2);
    EXPECT_EQ(roundHalfEven(2.5), 2);
    EXPECT_EQ(roundHalfEven(3.5), 4);
    EXPECT_EQ(roundHalfEven(-0.5), 0);
    EXPECT_EQ(roundHalfEven(-1.5), -2);
    EXPECT_EQ(roundHalfEven(-2.5), -2);
    EXPECT_EQ(roundHalfEven(-3.5), -4);
}

TEST(RoundHalfEven, everythingElseGoesToTheNearest) {
    EXPECT_EQ(roundHalfEven(2.4999999), 2);
    EXPECT_EQ(roundHalfEven(2.5000001), 3);
    EXPECT_EQ(roundHalfEven(-2.4999999), -2);
    EXPECT_EQ(roundHalfEven(-2.5000001), -3);
    EXPECT_EQ(roundHalfEven(7), 7);
    EXPECT_EQ(roundHalfEven(0.49999999999999994), 0);
}

TEST(RoundHalfEven, keepsHugeNumbersAndInfinities) {
    EXPECT_EQ(roundHalfEven(1e300), 1e300);
    EXPECT_EQ(roundHalfEven(9007199254740993.0), 9007199254740992.0);
    EXPECT_TRUE(std::isinf(roundHalfEven(std::numeric_limits<double>::infinity())));
    EXPECT_TRUE(std::isnan(roundHalfEven(std::nan(""))));
}

TEST(RoundToInt, storesWhatFitsAfterRounding) {
    EXPECT_EQ(roundToInt32(2147483647.4), 2147483647);
    EXPECT_EQ(roundToInt32(-2147483648.5), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(roundToInt16(32767.4), 32767);
    EXPECT_EQ(roundToInt16(-32768.5), -32768);
}

TEST(RoundToInt, raisesOverflowBeyondItsWidth) {
    expectOverflow([] { roundToInt32(2147483647.5); });
    expectOverflow([] { roundToInt32(-2147483649.0); });
    expectOverflow([] { roundToInt16(32767.5); });
    expectOverflow([] { roundToInt16(-32769.0); });
    expectOverflow([] { roundToInt32(std::nan("")); });
    expectOverflow([] { roundToInt32(std::numeric_limits<double>::infinity()); });
}

// --- numbers out of texts ------------------------------------------------------------------------

TEST(LeadingNumber, takesSignDigitsOnePointDigitsAndIgnoresTheRest) {
    EXPECT_EQ(leadingNumber(u"12abc"), 12);
    EXPECT_EQ(leadingNumber(u" -3.5x"), -3.5);
    EXPECT_EQ(leadingNumber(u"+7"), 7);
    EXPECT_EQ(leadingNumber(u"1.2.3"), 1.2);
    EXPECT_EQ(leadingNumber(u".5"), 0.5);
    EXPECT_EQ(leadingNumber(u"5."), 5);
    EXPECT_EQ(leadingNumber(u"1,000"), 1);
    EXPECT_EQ(leadingNumber(u"12 34"), 12);
    EXPECT_EQ(leadingNumber(u"1e5"), 1);
    EXPECT_EQ(leadingNumber(u"0x1F"), 0);
    EXPECT_EQ(leadingNumber(u"007"), 7);
}

TEST(LeadingNumber, givesZeroWhereNothingNumericIsInFront) {
    for (const std::u16string_view text :
         {u"", u"abc", u"   ", u"-", u"+", u".", u"-.", u"--5", u"x12", u"\t12", u"inf", u"nan"})
        EXPECT_EQ(leadingNumber(text), 0);
}

TEST(LeadingNumber, skipsBlanksOnlyInFrontOfTheSign) {
    EXPECT_EQ(leadingNumber(u"     42"), 42);
    EXPECT_EQ(leadingNumber(u"- 42"), 0);
}

TEST(LeadingNumber, knowsAsciiDigitsOnly) {
    EXPECT_EQ(leadingNumber(u"\xFF11\xFF12"), 0);
    EXPECT_EQ(leadingNumber(u"1\xFF12"), 1);
}

TEST(LeadingNumber, staysFiniteForEndlessDigits) {
    const std::u16string digits(2000, u'9');
    EXPECT_EQ(leadingNumber(digits), std::numeric_limits<double>::max());
    EXPECT_EQ(leadingNumber(u"-" + digits), std::numeric_limits<double>::lowest());
    EXPECT_EQ(leadingNumber(u"0." + std::u16string(2000, u'0') + u"1"), 0);
    EXPECT_EQ(leadingNumber(std::u16string(2000, u'0') + u"12"), 12);
}

TEST(LeadingInt32, roundsHalfToEvenAndIsHeldToItsRange) {
    EXPECT_EQ(leadingInt32(u"2.5"), 2);
    EXPECT_EQ(leadingInt32(u"3.5kg"), 4);
    EXPECT_EQ(leadingInt32(u"2147483647"), 2147483647);
    EXPECT_EQ(leadingInt32(u"2147483648"), 2147483647);
    EXPECT_EQ(leadingInt32(u"-99999999999"), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(leadingInt32(std::u16string(500, u'9')), 2147483647);
    EXPECT_EQ(leadingInt32(u""), 0);
}

TEST(StrictInt32, acceptsOneWholeNumberBetweenBlanks) {
    EXPECT_EQ(strictInt32(u"0"), 0);
    EXPECT_EQ(strictInt32(u"  42  "), 42);
    EXPECT_EQ(strictInt32(u"-7"), -7);
    EXPECT_EQ(strictInt32(u"+7"), 7);
    EXPECT_EQ(strictInt32(u"000123"), 123);
    EXPECT_EQ(strictInt32(u"2147483647"), 2147483647);
    EXPECT_EQ(strictInt32(u"-2147483648"), std::numeric_limits<std::int32_t>::min());
}

TEST(StrictInt32, refusesEverythingElse) {
    for (const std::u16string_view text :
         {u"", u" ", u"12a", u"a12", u"1.0", u"1 2", u"-", u"+", u"- 1", u"--1", u"\t1", u"1\r\n",
          u"2147483648", u"-2147483649", u"99999999999999999999", u"0x10", u"\xFF11"})
        EXPECT_EQ(strictInt32(text), std::nullopt);
}

// --- 16 and 8 bits -------------------------------------------------------------------------------

TEST(Int16, narrowsWhatFits) {
    EXPECT_EQ(toInt16(32767), 32767);
    EXPECT_EQ(toInt16(-32768), -32768);
    EXPECT_EQ(addInt16(32766, 1), 32767);
    EXPECT_EQ(addInt16(-32767, -1), -32768);
}

TEST(Int16, raisesOverflowOutside) {
    expectOverflow([] { toInt16(32768); });
    expectOverflow([] { toInt16(-32769); });
    expectOverflow([] { addInt16(32767, 1); });
    expectOverflow([] { addInt16(-32768, -1); });
}

// --- numbers into texts --------------------------------------------------------------------------

TEST(Decimal, writesEveryNumber) {
    EXPECT_EQ(decimal(0), u"0");
    EXPECT_EQ(decimal(-42), u"-42");
    EXPECT_EQ(decimal(std::numeric_limits<std::int64_t>::min()), u"-9223372036854775808");
    EXPECT_EQ(decimal(std::numeric_limits<std::int64_t>::max()), u"9223372036854775807");
}

TEST(Format00, hasAtLeastTwoDigits) {
    EXPECT_EQ(format00(0), u"00");
    EXPECT_EQ(format00(7), u"07");
    EXPECT_EQ(format00(59), u"59");
    EXPECT_EQ(format00(100), u"100");
    EXPECT_EQ(format00(-5), u"-05");
    EXPECT_EQ(format00(-10), u"-10");
    EXPECT_EQ(format00(99), u"99");
    EXPECT_EQ(format00(std::numeric_limits<std::int64_t>::min()), u"-9223372036854775808");
}

TEST(Format0_00, hasTwoDecimalsRoundedAwayFromZero) {
    EXPECT_EQ(format0_00(0), u"0.00");
    EXPECT_EQ(format0_00(100), u"100.00");
    EXPECT_EQ(format0_00(0.125), u"0.13");
    EXPECT_EQ(format0_00(0.135), u"0.14");
    EXPECT_EQ(format0_00(-0.125), u"-0.13");
    EXPECT_EQ(format0_00(33.333333), u"33.33");
    EXPECT_EQ(format0_00(66.666666), u"66.67");
    EXPECT_EQ(format0_00(0.004), u"0.00");
    EXPECT_EQ(format0_00(0.005), u"0.01");
    EXPECT_EQ(format0_00(0.0004), u"0.00");
    EXPECT_EQ(format0_00(0.01), u"0.01");
    EXPECT_EQ(format0_00(99.995), u"100.00");
    EXPECT_EQ(format0_00(9.999), u"10.00");
    EXPECT_EQ(format0_00(1234567.891), u"1234567.89");
}

TEST(Format0_00, writesEveryThousandthAsItsDigitsSay) {
    for (const std::int64_t from : {0LL, 987'654'000LL, 999'999'999'000LL, 1'000'000'000'000LL})
        for (std::int64_t thousandths = from; thousandths < from + 30'000; ++thousandths) {
            const std::int64_t rounded = (thousandths + 5) / 10;
            const std::u16string expected = decimal(rounded / 100) + u"." + format00(rounded % 100);
            ASSERT_EQ(format0_00(static_cast<double>(thousandths) / 1000), expected) << thousandths;
            ASSERT_EQ(format0_00(-static_cast<double>(thousandths) / 1000),
                      rounded == 0 ? expected : u"-" + expected)
                << thousandths;
        }
}

TEST(Format0_00, looksAtFifteenDigitsSoThatBinaryFractionsRoundAsWritten) {
    EXPECT_EQ(format0_00(2.675), u"2.68");
    EXPECT_EQ(format0_00(1.005), u"1.01");
}

TEST(Format0_00, hasNoNegativeZero) {
    EXPECT_EQ(format0_00(-0.0), u"0.00");
    EXPECT_EQ(format0_00(-0.004), u"0.00");
}

TEST(Format0_00, survivesWhatIsNoNumber) {
    EXPECT_EQ(format0_00(std::nan("")), u"0.00");
    EXPECT_EQ(format0_00(std::numeric_limits<double>::infinity()).size(), 309U + 3U);
    EXPECT_EQ(format0_00(1e15), u"1000000000000000.00");
}

TEST(FormatGrouped, groupsByThreesAndGivesNothingForZero) {
    EXPECT_EQ(formatGrouped(std::int64_t{0}), u"");
    EXPECT_EQ(formatGrouped(std::int64_t{7}), u"7");
    EXPECT_EQ(formatGrouped(std::int64_t{999}), u"999");
    EXPECT_EQ(formatGrouped(std::int64_t{1000}), u"1,000");
    EXPECT_EQ(formatGrouped(std::int64_t{1234567}), u"1,234,567");
    EXPECT_EQ(formatGrouped(std::int64_t{12345678}), u"12,345,678");
    EXPECT_EQ(formatGrouped(std::int64_t{5'000'000'000}), u"5,000,000,000");
    EXPECT_EQ(formatGrouped(std::int64_t{-1234}), u"-1,234");
}

TEST(FormatGrouped, groupsATextThatIsANumber) {
    EXPECT_EQ(formatGrouped(u"1234567"), u"1,234,567");
    EXPECT_EQ(formatGrouped(u" 1234 "), u"1,234");
    EXPECT_EQ(formatGrouped(u"1234.5"), u"1,235");
    EXPECT_EQ(formatGrouped(u"-1234.4"), u"-1,234");
    EXPECT_EQ(formatGrouped(u"0"), u"");
    EXPECT_EQ(formatGrouped(u"0.4"), u"");
    EXPECT_EQ(formatGrouped(u"-0.4"), u"");
    EXPECT_EQ(formatGrouped(u"0.5"), u"1");
    EXPECT_EQ(formatGrouped(u"999.5"), u"1,000");
}

TEST(FormatGrouped, leavesATextThatIsNoNumberAsItStands) {
    for (const std::u16string_view text : {u"", u"3.5 MB", u"about 1000", u"1,000", u"-", u" x "})
        EXPECT_EQ(formatGrouped(text), text);
}

} // namespace
} // namespace velmora
