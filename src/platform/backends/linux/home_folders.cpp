#include "platform/backends/linux/home_folders.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace velmora::platform {

namespace {

std::string folderFrom(std::string_view value) {
    if (value.empty() || value.front() != '/')
        return {};
    while (value.size() > 1 && value.back() == '/')
        value.remove_suffix(1);
    return std::string(value);
}

std::string variable(const char *name) {
    const char *value = std::getenv(name);
    return value == nullptr ? std::string() : folderFrom(value);
}

std::string homeOfUser() {
    std::vector<char> buffer(16384);
    ::passwd entry{};
    ::passwd *found = nullptr;
    if (::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found ||
        !found->pw_dir)
        return {};
    return folderFrom(found->pw_dir);
}

std::string orBelowHome(const std::string &folder, const std::string &home, const char *below) {
    return folder.empty() && !home.empty() ? (home == "/" ? "" : home) + below : folder;
}

} // namespace

HomeFolders homeFolders() {
    HomeFolders folders;
    folders.home = variable("HOME");
    if (folders.home.empty())
        folders.home = homeOfUser();
    folders.config = orBelowHome(variable("XDG_CONFIG_HOME"), folders.home, "/.config");
    folders.data = orBelowHome(variable("XDG_DATA_HOME"), folders.home, "/.local/share");
    folders.cache = orBelowHome(variable("XDG_CACHE_HOME"), folders.home, "/.cache");
    folders.runtime = variable("XDG_RUNTIME_DIR");
    return folders;
}

std::string configHomeOf(std::string_view environment) {
    std::string home;
    std::string config;
    while (!environment.empty()) {
        const std::string_view entry = environment.substr(0, environment.find('\0'));
        environment.remove_prefix(std::min(entry.size() + 1, environment.size()));
        constexpr std::string_view homeName = "HOME=";
        constexpr std::string_view configName = "XDG_CONFIG_HOME=";
        if (entry.substr(0, homeName.size()) == homeName)
            home = folderFrom(entry.substr(homeName.size()));
        else if (entry.substr(0, configName.size()) == configName)
            config = folderFrom(entry.substr(configName.size()));
    }
    if (config.empty() && home.empty())
        home = homeOfUser();
    return orBelowHome(config, home, "/.config");
}

bool makeFolders(const std::string &path, unsigned mode) noexcept {
    struct ::stat info {};
    if (path.empty())
        return false;
    if (::stat(path.c_str(), &info) == 0)
        return S_ISDIR(info.st_mode);
    for (std::size_t at = path.find('/', 1);; at = path.find('/', at + 1)) {
        const std::string part = path.substr(0, at);
        ::mkdir(part.c_str(), mode); // one that is there already is no error
        if (at == std::string::npos)
            break;
    }
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

} // namespace velmora::platform
