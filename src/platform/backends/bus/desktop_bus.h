#pragma once

// The rest of the desktop, over the session bus: media keys and everything else that speaks MPRIS,
// files that are opened from elsewhere, dialogs for files, keeping the machine awake, and the icon
// in a panel.

#include "platform/backends/bus/dialog_host.h"
#include "platform/backends/linux/home_folders.h"
#include "platform/contracts/inhibitor.h"
#include "platform/contracts/remote.h"
#include "platform/contracts/status_item.h"

#include <chrono>
#include <functional>
#include <memory>

namespace velmora::platform {

class Dialogs;

// Calls `ready` from the loop whenever the descriptor can be read, and while it is asked for, when
// it can be written to. What comes back asks for that; the watch ends with it.
using WatchDescriptor =
    std::function<std::function<void(bool writing)>(int descriptor, std::function<void()> ready)>;

// False where there is no bus, or one that does not take a connection within this time. True where
// the library that would tell is missing.
bool sessionBusAnswers(std::chrono::milliseconds limit);

class DesktopBus {
public:
    DesktopBus(const HomeFolders &homes, WatchDescriptor watch);
    ~DesktopBus();
    DesktopBus(const DesktopBus &) = delete;
    DesktopBus &operator=(const DesktopBus &) = delete;

    Remote &remote();
    Inhibitor &inhibitor();
    StatusItem &statusItem();
    // The desktop's dialogs for files and folders; `own`, which must outlive them, serves where
    // there are none, and for everything else. Made once.
    Dialogs &dialogs(Dialogs &own, DialogHost host);

    // The program ends, wherever it is: what others show for it goes.
    void beforeEnd();

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace velmora::platform
