#pragma once

// The base folders of the user, from the environment.

#include <string>
#include <string_view>

namespace velmora::platform {

// The system's own bytes, absolute, without a trailing "/"; empty where there is none.
struct HomeFolders {
    std::string home;
    std::string config;  // XDG_CONFIG_HOME or ~/.config
    std::string data;    // XDG_DATA_HOME or ~/.local/share
    std::string cache;   // XDG_CACHE_HOME or ~/.cache
    std::string runtime; // XDG_RUNTIME_DIR; empty without one

    // The program's own folders in them, and the file behind the registry; empty for a user without
    // any home.
    std::string programConfig() const { return below(config, "/velmora"); }
    std::string programData() const { return below(data, "/velmora"); }
    std::string programCache() const { return below(cache, "/velmora"); }
    std::string registryFile() const { return below(config, "/velmora/registry.sqlite"); }

    static std::string below(const std::string &folder, const char *name) {
        return folder.empty() ? folder : folder + name;
    }
};

// Of this process. A variable that is no absolute path counts as not set.
HomeFolders homeFolders();

// The configuration home that an environment block of a process ("NAME=value", each ended by a
// NUL) leads to; empty if it tells none.
std::string configHomeOf(std::string_view environment);

// Makes a folder with its parents. Whether it is there afterwards.
bool makeFolders(const std::string &path, unsigned mode) noexcept;

} // namespace velmora::platform
