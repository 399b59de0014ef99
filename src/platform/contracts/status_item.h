#pragma once

// The program's icon in a panel of the desktop that draws the icon and its menu itself. All calls
// come and go on the interface thread, and none of them waits. Where there is no such panel nothing
// happens, and the owner is told so.

#include "base/geometry.h"

#include <cstdint>
#include <string>
#include <vector>

namespace velmora::platform {

enum class StatusClick : std::uint8_t { Left, Middle, Right };

struct StatusEntry {
    std::int32_t number = 0; // 1 or more, the same for an entry as long as it lives
    std::u16string caption;
    bool enabled = true;
    bool checked = false;
    bool separator = false;
    std::vector<StatusEntry> entries; // of the menu behind it
    friend bool operator==(const StatusEntry &, const StatusEntry &) = default;
};

struct StatusPicture {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<std::uint32_t> pixels; // 0xAARRGGBB row by row; colours are not multiplied by alpha
};

// Whose icon it is. Asked whenever a panel asks; what it tells may be another each time.
class StatusItemOwner {
public:
    virtual ~StatusItemOwner() = default;
    virtual std::vector<StatusPicture> pictures() = 0; // of growing size
    virtual std::u16string tip() = 0;
    virtual std::vector<StatusEntry> menu() = 0;
    // A click on the icon, at a place on the screen in the panel's own measure; 0, 0 where it tells
    // none.
    virtual void clicked(StatusClick click, PointPixels place) = 0;
    virtual void chosen(std::int32_t number) = 0;
    // Whether a panel shows the icon: told once it is known, and at each change.
    virtual void taken(bool byPanel) = 0;
};

class StatusItem {
public:
    virtual ~StatusItem() = default;
    // Offers the icon to whatever panel there is or comes. `owner` outlives the process's last
    // event, or `hide`.
    virtual void show(StatusItemOwner &owner) noexcept = 0;
    // What the owner tells may have changed.
    virtual void update(bool otherPictures) noexcept = 0;
    virtual void hide() noexcept = 0;
};

} // namespace velmora::platform
