#pragma once

// What the settings tool does with a player's registry file.
//
// A place in the registry is written as "hosts/maker" or "hosts\maker": the last part is the value,
// what stands before it the key, below the player's own key unless it begins with SOFTWARE or
// SYSTEM.

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::registry_tool {

inline constexpr int done = 0;
inline constexpr int failed = 1; // nothing there, or the file refuses; one line says which
inline constexpr int misused = 2;

struct Job {
    std::string file;               // the path's own bytes
    bool number = false;            // of `set`: a number, not a text
    std::string at;                 // of `hosts`: the address to name
    bool none = false;              // of `hosts`: name no server
    std::vector<std::string> words; // the command and what it is about
};

// Runs a command; texts are UTF-8. Answers `done`, `failed` or `misused`.
int run(const Job &job, std::ostream &out, std::ostream &err);

// Names one server for everything that the player asks, in its registry file, which is made where
// there is none. The address is "http://name:port". False, with one line, when that cannot be done.
bool nameServer(const std::string &address, const std::string &registryFile, std::ostream &err);

} // namespace velmora::registry_tool
