#include "base/numbers.h"

#include "base/run_time_error.h"
#include "base/text.h"

#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>

namespace velmora {

namespace {

bool isDigit(char16_t unit) noexcept { return unit >= u'0' && unit <= u'9'; }

// The ASCII form of the number at the beginning of a text (blanks skipped), and how many units of
// the text it and the blanks take.
struct NumberText {
    std::string digits;
    std::size_t length = 0;
    bool hasDigit = false;
};

NumberText numberAtFront(std::u16string_view text) {
    NumberText result;
    std::size_t at = 0;
    while (at < text.size() && text[at] == u' ')
        ++at;
    if (at < text.size() && (text[at] == u'-' || text[at] == u'+')) {
        if (text[at] == u'-') // The parser behind this knows no plus sign.
            result.digits += '-';
        ++at;
    }
    bool pointSeen = false;
    for (; at < text.size(); ++at) {
        if (isDigit(text[at])) {
            result.digits += static_cast<char>(text[at]);
            result.hasDigit = true;
        } else if (text[at] == u'.' && !pointSeen) {
            result.digits += '.';
            pointSeen = true;
        } else {
            break;
        }
    }
    result.length = at;
    return result;
}

double parse(const NumberText &number) {
    if (!number.hasDigit)
        return 0;
    double value = 0;
    const char *begin = number.digits.data();
    const auto parsed = std::from_chars(begin, begin + number.digits.size(), value);
    if (parsed.ec == std::errc::result_out_of_range) {
        // Out of range is either beyond the greatest double or a fraction below the smallest one.
        const std::size_t nonZero = number.digits.find_first_of("123456789");
        if (nonZero > number.digits.find('.'))
            return 0;
        value = std::numeric_limits<double>::max();
        return number.digits.front() == '-' ? -value : value;
    }
    return value;
}

// A non-negative digit string increased by one in its last place.
void increment(std::string &digits) {
    for (std::size_t i = digits.size(); i-- > 0;) {
        if (digits[i] != '9') {
            ++digits[i];
            return;
        }
        digits[i] = '0';
    }
    digits.insert(digits.begin(), '1');
}

// |value| as decimal digits with `places` of them behind the point, rounded half away from zero on
// the 15 significant digits that the format routine looks at.
std::string roundedDigits(double value, int places) {
    char buffer[32];
    const auto written = std::to_chars(buffer, buffer + sizeof buffer, std::fabs(value),
                                       std::chars_format::scientific, 14);
    const std::string_view text(buffer, static_cast<std::size_t>(written.ptr - buffer));
    const std::size_t e = text.find('e');
    std::string significant;
    significant += text[0];
    significant += text.substr(2, e - 2);
    int exponent = 0;
    const std::size_t sign = text[e + 1] == '+' ? e + 2 : e + 1;
    std::from_chars(text.data() + sign, text.data() + text.size(), exponent);

    // How many of the significant digits stay.
    const int kept = exponent + 1 + places;
    if (kept < 0)
        return "0";
    const auto keep = static_cast<std::size_t>(kept);
    if (keep >= significant.size())
        return significant.append(keep - significant.size(), '0');
    const bool up = significant[keep] >= '5';
    significant.resize(keep);
    if (significant.empty())
        significant = "0";
    if (up)
        increment(significant);
    return significant;
}

std::string withoutLeadingZeros(const std::string &digits) {
    const std::size_t first = digits.find_first_not_of('0');
    return first == std::string::npos ? std::string() : digits.substr(first);
}

// The digits of |value| in hundredths, none for less than half of one.
std::string hundredthsOf(double value) {
    // Up to this size 15 digits lie nearer to the value than a thousandth of what is rounded to
    // here, so that they are needed only about the middle between two hundredths.
    constexpr double most = 1e9, near = 0.499;
    const double hundredths = std::fabs(value) * 100, whole = std::floor(hundredths);
    const double rest = hundredths - whole;
    if (hundredths >= most * 100 || std::fabs(rest - 0.5) <= 0.5 - near)
        return withoutLeadingZeros(roundedDigits(value, 2));
    char digits[12];
    const auto rounded = static_cast<std::int64_t>(whole) + (rest > 0.5 ? 1 : 0);
    char *const end = std::to_chars(digits, std::end(digits), rounded).ptr;
    return rounded == 0 ? std::string() : std::string(digits, end);
}

// Groups of three; the empty text for a number without a digit other than 0.
std::u16string grouped(std::string_view digits, bool negative) {
    std::u16string result;
    if (digits.empty())
        return result;
    if (negative)
        result += u'-';
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0)
            result += u',';
        result += static_cast<char16_t>(digits[i]);
    }
    return result;
}

std::string absoluteDigits(std::int64_t value) {
    // The negation is done without sign: the smallest number has no positive twin.
    const auto bits = static_cast<std::uint64_t>(value);
    return std::to_string(value < 0 ? std::uint64_t{0} - bits : bits);
}

template <typename Integer> Integer narrow(double value) {
    const double rounded = roundHalfEven(value);
    if (!(rounded >= static_cast<double>(std::numeric_limits<Integer>::min()) &&
          rounded <= static_cast<double>(std::numeric_limits<Integer>::max())))
        raise(ErrorNumber::Overflow);
    return static_cast<Integer>(rounded);
}

} // namespace

double roundHalfEven(double value) noexcept {
    const double below = std::floor(value);
    const double part = value - below;
    if (part < 0.5)
        return below;
    if (part > 0.5)
        return below + 1;
    if (part == 0.5)
        return std::fmod(below, 2.0) == 0.0 ? below : below + 1;
    return value; // NaN and the infinities
}

std::int32_t roundToInt32(double value) { return narrow<std::int32_t>(value); }

std::int16_t roundToInt16(double value) { return narrow<std::int16_t>(value); }

double leadingNumber(std::u16string_view text) noexcept { return parse(numberAtFront(text)); }

std::int32_t leadingInt32(std::u16string_view text) noexcept {
    const double value = roundHalfEven(leadingNumber(text));
    if (value <= static_cast<double>(std::numeric_limits<std::int32_t>::min()))
        return std::numeric_limits<std::int32_t>::min();
    if (value >= static_cast<double>(std::numeric_limits<std::int32_t>::max()))
        return std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(value);
}

std::optional<std::int32_t> strictInt32(std::u16string_view text) noexcept {
    text = trim(text);
    bool negative = false;
    if (!text.empty() && (text.front() == u'-' || text.front() == u'+')) {
        negative = text.front() == u'-';
        text.remove_prefix(1);
    }
    if (text.empty())
        return std::nullopt;
    const std::int64_t limit = std::int64_t{std::numeric_limits<std::int32_t>::max()} + negative;
    std::int64_t value = 0;
    for (const char16_t unit : text) {
        if (!isDigit(unit))
            return std::nullopt;
        value = value * 10 + (unit - u'0');
        if (value > limit)
            return std::nullopt;
    }
    return static_cast<std::int32_t>(negative ? -value : value);
}

std::int16_t toInt16(std::int64_t value) {
    if (value < std::numeric_limits<std::int16_t>::min() ||
        value > std::numeric_limits<std::int16_t>::max())
        raise(ErrorNumber::Overflow);
    return static_cast<std::int16_t>(value);
}

std::int16_t addInt16(std::int16_t a, std::int16_t b) { return toInt16(std::int64_t{a} + b); }

std::u16string decimal(std::int64_t value) {
    char digits[20];
    char *const end = std::to_chars(digits, std::end(digits), value).ptr;
    return {digits, end};
}

std::u16string format00(std::int64_t value) {
    if (value < 0 || value > 99)
        return value < 0 && value > -10 ? u"-0" + decimal(-value) : decimal(value);
    return {static_cast<char16_t>(u'0' + value / 10), static_cast<char16_t>(u'0' + value % 10)};
}

std::u16string format0_00(double value) {
    if (std::isnan(value))
        value = 0;
    if (std::isinf(value))
        value = std::copysign(std::numeric_limits<double>::max(), value);
    std::string digits = hundredthsOf(value);
    const bool negative = value < 0 && !digits.empty();
    if (digits.size() < 3)
        digits.insert(0, 3 - digits.size(), '0');
    digits.insert(digits.size() - 2, 1, '.');
    return (negative ? u"-" : u"") + fromAscii(digits);
}

std::u16string formatGrouped(std::int64_t value) {
    return grouped(withoutLeadingZeros(absoluteDigits(value)), value < 0);
}

std::u16string formatGrouped(std::u16string_view text) {
    const NumberText number = numberAtFront(text);
    if (!number.hasDigit || !trim(text.substr(number.length)).empty())
        return std::u16string(text);
    const double value = parse(number);
    return grouped(withoutLeadingZeros(roundedDigits(value, 0)), value < 0);
}

} // namespace velmora
