#pragma once

// What the window system does for a dialog that another process shows.

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

namespace velmora::platform {

struct DialogHost {
    // Handles events, while no window of the program takes input, until `done`; false when the time
    // (absent: none) is over first.
    std::function<bool(const std::function<bool()> &done,
                       std::optional<std::chrono::milliseconds> limit)>
        wait;
    // How long a portal may take to answer at all. The first question may be what starts it, and
    // with it the part that shows its dialogs.
    std::chrono::milliseconds patience = std::chrono::seconds(5);
    // A dialog that ends sooner, and not by a choice, is none that a person has seen: its portal
    // could show none.
    std::chrono::milliseconds soonestEnd = std::chrono::milliseconds(500);
    // The number of the X window behind a form, by the form's own; 0 without one.
    std::function<std::uint32_t(std::uintptr_t)> nativeWindow;
    // Whether a window of the program lies above all others, and so above such a dialog too.
    std::function<bool()> coversOthers;
    // The question of the toolkit's own dialog.
    std::function<bool(std::u16string_view path, std::u16string_view title)> mayReplace;
};

} // namespace velmora::platform
