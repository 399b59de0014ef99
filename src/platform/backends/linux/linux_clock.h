#pragma once

// Clock (contract: platform/system.h).

#include "platform/contracts/system.h"

#include <clocale>
#include <ctime>
#include <optional>
#include <string>

namespace velmora::platform {

class LinuxClock : public Clock {
public:
    // Date and time forms come from the locale that the environment names; the process's own
    // locale does not matter.
    LinuxClock() = default;
    ~LinuxClock() override;
    LinuxClock(const LinuxClock &) = delete;
    LinuxClock &operator=(const LinuxClock &) = delete;

    std::int64_t steadyMs() override;
    std::time_t now() override;
    double secondsSinceMidnight() override;
    std::u16string shortDate(std::time_t when) override;
    std::u16string shortTime(std::time_t when) override;

private:
    struct Shown {
        std::time_t when;
        std::u16string text;
    };

    std::u16string format(std::time_t when, bool date);
    // The clock on the window is asked many times a second and says the same all that while.
    std::u16string again(std::optional<Shown> &shown, std::time_t when, bool date);

    // What the hands of the local clock said at the last second that was asked for.
    std::optional<std::time_t> second_;
    double ofDay_ = 0;
    std::optional<Shown> date_;
    std::optional<Shown> time_;
    bool localeKnown_ = false;
    ::locale_t locale_ = nullptr; // null: the C locale, ISO forms
};

} // namespace velmora::platform
