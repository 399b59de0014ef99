#include "platform/backends/linux/linux_clock.h"

#include "base/utf8.h"

#include <chrono>
#include <cstdlib>
#include <cwchar>
#include <string>
#include <utility>

namespace velmora::platform {

namespace {

// The name that decides about dates; the order is the C library's.
std::string timeLocaleName() {
    for (const char *variable : {"LC_ALL", "LC_TIME", "LANG"})
        if (const char *value = std::getenv(variable); value != nullptr && *value != '\0')
            return value;
    return "C";
}

::locale_t timeLocale() {
    const std::string name = timeLocaleName();
    if (name == "C" || name == "POSIX" || name.compare(0, 2, "C.") == 0)
        return nullptr;
    // The characters come with the dates, so that every code set can be read.
    return ::newlocale(LC_TIME_MASK | LC_CTYPE_MASK, name.c_str(), nullptr);
}

std::u16string fromWide(const wchar_t *text, std::size_t size) {
    std::u16string result;
    for (std::size_t i = 0; i < size; ++i) {
        char16_t units[2];
        result.append(units, putUtf16(static_cast<char32_t>(text[i]), units));
    }
    return result;
}

} // namespace

LinuxClock::~LinuxClock() {
    if (locale_ != nullptr)
        ::freelocale(locale_);
}

std::int64_t LinuxClock::steadyMs() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

std::time_t LinuxClock::now() { return std::time(nullptr); }

double LinuxClock::secondsSinceMidnight() {
    std::timespec now{};
    std::timespec_get(&now, TIME_UTC);
    // A transfer asks at every packet of a kilobyte: the zone is looked up once for each second.
    if (std::exchange(second_, now.tv_sec) != now.tv_sec) {
        std::tm parts{};
        ::localtime_r(&now.tv_sec, &parts);
        ofDay_ = parts.tm_hour * 3600.0 + parts.tm_min * 60.0 + parts.tm_sec;
    }
    return ofDay_ + static_cast<double>(now.tv_nsec) / 1e9;
}

std::u16string LinuxClock::format(std::time_t when, bool date) {
    if (!localeKnown_) {
        localeKnown_ = true;
        locale_ = timeLocale();
    }
    std::tm parts{};
    if (::localtime_r(&when, &parts) == nullptr)
        return {};
    wchar_t buffer[128];
    std::size_t size = 0;
    constexpr std::size_t capacity = sizeof buffer / sizeof buffer[0];
    if (locale_ == nullptr) {
        size = date ? std::wcsftime(buffer, capacity, L"%Y-%m-%d", &parts)
                    : std::wcsftime(buffer, capacity, L"%H:%M:%S", &parts);
    } else {
        const ::locale_t before = ::uselocale(locale_);
        size = date ? std::wcsftime(buffer, capacity, L"%x", &parts)
                    : std::wcsftime(buffer, capacity, L"%X", &parts);
        ::uselocale(before);
    }
    return fromWide(buffer, size);
}

std::u16string LinuxClock::again(std::optional<Shown> &shown, std::time_t when, bool date) {
    if (!shown || shown->when != when)
        shown = Shown{when, format(when, date)};
    return shown->text;
}

std::u16string LinuxClock::shortDate(std::time_t when) { return again(date_, when, true); }

std::u16string LinuxClock::shortTime(std::time_t when) { return again(time_, when, false); }

} // namespace velmora::platform
