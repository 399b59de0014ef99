#pragma once

// The least program that fetches a file in packets of 1,024 bytes and shows how far it is.

#include <string>

namespace velmora::bench {

// Needs the toolkit's application object. False where something fails.
bool fetchLeast(const std::string &url, const std::string &target);

} // namespace velmora::bench
