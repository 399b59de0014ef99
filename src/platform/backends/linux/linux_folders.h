#pragma once

// Special folders (contract: platform/system.h).

#include "platform/backends/linux/home_folders.h"
#include "platform/contracts/system.h"

namespace velmora::platform {

class LinuxFolders : public Folders {
public:
    explicit LinuxFolders(HomeFolders homes) : homes_(std::move(homes)) {}

    std::optional<std::u16string> SHGetSpecialFolder(std::int32_t number) override;
    std::u16string GetWindowsDirectoryA() override { return u"/usr"; }
    std::u16string GetSystemDirectoryA() override;
    std::u16string GetTempPathA() override;
    std::u16string rootPart(std::u16string_view path) override;
    std::u16string typedFolder(std::u16string_view text) override;

private:
    std::string userFolder(std::string_view name, const char *otherwise) const;

    std::string ownTemporaryFolder() const;

    HomeFolders homes_;
    std::string temporary_; // without a separator; empty until it was found
};

} // namespace velmora::platform
