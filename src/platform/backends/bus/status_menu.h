#pragma once

// The object by which a panel draws the menu of the status item itself.

#include "platform/backends/bus/connection.h"
#include "platform/backends/bus/object_table.h"
#include "platform/contracts/status_item.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::platform::bus {

inline constexpr const char *statusMenuPath = "/StatusNotifierItem/Menu";

// A caption as panels read it: their mark of a letter to press is another one.
std::string menuLabel(std::u16string_view caption);

class StatusMenu {
public:
    explicit StatusMenu(Connection &connection) : connection_(connection) {}

    void setOwner(StatusItemOwner *owner);
    // Puts the object on the connection; it goes with the slot.
    sd_bus_slot *attach();
    // Tells panels if the menu is not as it was.
    void update() { refresh(); }

private:
    struct Calls; // what the library calls; it finds the object in its last argument

    bool refresh();

    Connection &connection_;
    StatusItemOwner *owner_ = nullptr;
    std::vector<StatusEntry> entries_; // as told last
    std::uint32_t revision_ = 1;
    std::unique_ptr<ObjectTable> table_;
    const sd_bus_vtable *members_ = nullptr;
};

} // namespace velmora::platform::bus
