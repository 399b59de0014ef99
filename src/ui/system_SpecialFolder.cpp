#include "ui/system_SpecialFolder.h"

#include "base/text.h"
#include "platform/contracts/files.h"
#include "platform/contracts/system.h"
#include "velmora.h"

#include <algorithm>
#include <array>

namespace velmora {

namespace {

constexpr std::int32_t folderWindows = 36;
constexpr std::int32_t folderSystem = 37;

// The folders that the shell tells by number.
constexpr std::array<std::int32_t, 21> shellFolders{0,  2,  5,  6,  7,  8,  9,  11, 19, 20, 21,
                                                    22, 23, 24, 25, 26, 27, 32, 33, 34, 38};

} // namespace

system_SpecialFolder::system_SpecialFolder(Velmora &app) : app_(app) {}

std::u16string system_SpecialFolder::folderOf(std::int32_t number) const {
    platform::Folders &folders = app_.platform().folders;
    if (std::ranges::find(shellFolders, number) != shellFolders.end())
        return std::u16string(untilNul(folders.SHGetSpecialFolder(number).value_or(u"")));
    switch (number) {
    case folderWindows:
        return folders.GetWindowsDirectoryA();
    case folderSystem:
        return folders.GetSystemDirectoryA();
    case folderTemporary:
        return folders.GetTempPathA();
    default:
        return {};
    }
}

std::u16string system_SpecialFolder::get_Special_Folder(std::int32_t number) const {
    const platform::FileSystem &files = app_.platform().files;
    std::u16string folder = folderOf(number);
    const char16_t separator = folder.empty() ? files.separator() : files.separatorOf(folder);
    if (folder.empty() || folder.back() != separator)
        folder += separator;
    return folder;
}

} // namespace velmora
