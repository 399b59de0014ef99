#pragma once

// Tells a player of this machine where its servers are.

#include <string>

namespace velmora::catalogue {

// Writes the address ("http://127.0.0.1:8420") as every host into the registry file of a player.
// False when that cannot be written.
bool introduce(const std::string &address, const std::string &registryFile);

} // namespace velmora::catalogue
