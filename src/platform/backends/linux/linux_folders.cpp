#include "platform/backends/linux/linux_folders.h"

#include "platform/backends/linux/open_file.h"
#include "platform/backends/linux/user_dirs.h"
#include "text/path_text.h"

#include <sys/stat.h>
#include <unistd.h>

namespace velmora::platform {

namespace {

// A link, and a folder of somebody else, is refused: names in it are foreseeable.
bool isOwnItself(const std::string &path) {
    struct ::stat info {};
    return !path.empty() && ::lstat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode) &&
           info.st_uid == ::geteuid() &&
           ((info.st_mode & 0777) == 0700 || ::chmod(path.c_str(), 0700) == 0);
}

// Makes a folder that belongs to this user alone, or takes the one that is there if it does.
bool makeOwnFolder(const std::string &path) {
    return (::mkdir(path.c_str(), 0700) == 0 || errno == EEXIST) && isOwnItself(path);
}

bool isOwnFolder(const std::string &path) {
    struct ::stat info {};
    return !path.empty() && ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode) &&
           info.st_uid == ::geteuid();
}

} // namespace

std::string LinuxFolders::userFolder(std::string_view name, const char *otherwise) const {
    constexpr std::size_t mostBytes = std::size_t{64} << 10;
    struct ::stat info {};
    const Descriptor file = openRegular(homes_.config + "/user-dirs.dirs", info);
    if (file)
        if (const auto text = readAt(file.number(), 0, mostBytes))
            if (auto folder = userDir(*text, name, homes_.home))
                return *std::move(folder);
    return homes_.home + otherwise;
}

std::optional<std::u16string> LinuxFolders::SHGetSpecialFolder(std::int32_t number) {
    const auto text = [](const std::string &path) { return pathFromBytes(path); };
    switch (number) {
    case 0: // desktop
        return text(userFolder("DESKTOP", "/Desktop"));
    case 2:  // programs of the menu
    case 11: // the menu itself
        return text(homes_.data + "/applications");
    case 5: // documents
        return text(userFolder("DOCUMENTS", "/Documents"));
    case 7: // started with the session
        return text(homes_.config + "/autostart");
    case 20: // fonts
        return text(homes_.data + "/fonts");
    case 21: // templates
        return text(userFolder("TEMPLATES", "/Templates"));
    case 22: // the same for all users
    case 23:
        return u"/usr/share/applications";
    case 24:
        return u"/etc/xdg/autostart";
    case 26: // settings of programs
        return text(homes_.config);
    case 32: // cache
        return text(homes_.cache);
    default: // favourites, recent, send-to, network and printer links, cookies, history, programs
        return std::nullopt;
    }
}

std::u16string LinuxFolders::GetSystemDirectoryA() {
    return pathFromBytes(homes_.programData() + "/System32");
}

// Where it was found once it stays: what lies in it would be looked for in vain in another.
std::u16string LinuxFolders::GetTempPathA() {
    if (!isOwnItself(temporary_))
        temporary_ = ownTemporaryFolder();
    return pathFromBytes(temporary_ + "/"); // in the root nothing may be written
}

std::string LinuxFolders::ownTemporaryFolder() const {
    if (isOwnFolder(homes_.runtime)) {
        std::string folder = homes_.runtime + "/velmora";
        if (makeOwnFolder(folder))
            return folder;
    }
    if (!homes_.cache.empty() && makeFolders(homes_.cache, 0700) &&
        makeOwnFolder(homes_.programCache()))
        return homes_.programCache();
    return {};
}

std::u16string LinuxFolders::rootPart(std::u16string_view path) {
    const bool drive = pathSeparatorOf(path) == u'\\' && path[0] != u'\\';
    if (drive)
        return std::u16string(path.substr(0, 3));
    return pathFromBytes(homes_.programData() + "/");
}

std::u16string LinuxFolders::typedFolder(std::u16string_view text) {
    return platform::typedFolder(text, pathFromBytes(homes_.home));
}

} // namespace velmora::platform
