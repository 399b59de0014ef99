#pragma once

// The program's icon in panels that keep to StatusNotifierItem.
//
// It is offered to the watcher that the panels of the session share, and again to each one that
// comes. A panel has it while a watcher has taken it and says that a panel is there.

#include "platform/backends/bus/connection.h"
#include "platform/backends/bus/object_table.h"
#include "platform/backends/bus/status_menu.h"
#include "platform/contracts/status_item.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velmora::platform::bus {

class StatusNotifier final : public StatusItem {
public:
    explicit StatusNotifier(Connection &connection);
    ~StatusNotifier() override;
    StatusNotifier(const StatusNotifier &) = delete;
    StatusNotifier &operator=(const StatusNotifier &) = delete;

    void show(StatusItemOwner &owner) noexcept override;
    void update(bool otherPictures) noexcept override;
    void hide() noexcept override;

    // A connection was made, or was lost.
    void opened();
    void lost();

private:
    struct Calls; // what the library calls; it finds the object in its last argument

    void makeTable();
    void watch();
    void offer();
    void askForPanel();
    void tell(bool taken);
    void emit(const char *signal);
    void dropSlots();

    Connection &connection_;
    StatusMenu menu_;
    const std::string name_;
    StatusItemOwner *owner_ = nullptr; // while it is shown
    std::optional<bool> told_;
    std::u16string tip_;
    std::uint32_t offers_ = 0; // answers to earlier ones count no more
    std::vector<sd_bus_slot *> slots_;
    std::unique_ptr<ObjectTable> table_;
    const sd_bus_vtable *members_ = nullptr;
};

} // namespace velmora::platform::bus
