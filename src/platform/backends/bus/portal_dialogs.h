#pragma once

// File and folder dialogs of the desktop, through its portal, so that people meet their own
// bookmarks and recent places; those of the program's toolkit where no portal answers, and for
// everything else.

#include "platform/backends/bus/dialog_host.h"
#include "platform/backends/bus/file_chooser.h"
#include "platform/backends/linux/patient_disk.h"
#include "platform/contracts/dialogs.h"

#include <string>

namespace velmora::platform::bus {

class PortalDialogs final : public Dialogs {
public:
    // The connection and the toolkit's dialogs must outlive it.
    PortalDialogs(Connection &connection, Dialogs &own, DialogHost host)
        : own_(own), host_(std::move(host)), chooser_(connection, host_) {}
    PortalDialogs(const PortalDialogs &) = delete;
    PortalDialogs &operator=(const PortalDialogs &) = delete;

    std::optional<std::u16string> SHBrowseForFolderA(const BROWSEINFO &record) override;
    bool GetOpenFileNameA(OPENFILENAME &record) override;
    bool GetSaveFileNameA(OPENFILENAME &record) override;

    bool ChooseColorA(CHOOSECOLOR &record) override { return own_.ChooseColorA(record); }
    std::int32_t ChooseFontA(CHOOSEFONT &record) override { return own_.ChooseFontA(record); }
    std::int32_t SHFileOperationA(SHFILEOPSTRUCT &operation) override {
        return own_.SHFileOperationA(operation);
    }

    // The program ends: the dialog that is up goes with it.
    void letGo() { chooser_.letGo(); }

private:
    FileChooser::Answer ask(FileChooser::Question question, HWND owner);
    bool isThere(const std::u16string &path);

    Dialogs &own_;
    const DialogHost host_;
    FileChooser chooser_;
    PatientDisk disk_;
};

} // namespace velmora::platform::bus
