#pragma once

// The picture of a track.

#include <chrono>
#include <string>

namespace velmora::platform::bus {

// How long a disk is waited for.
inline constexpr std::chrono::milliseconds coverPatience{200};

// The address of a picture named cover, folder or front in the folder of a track (the path's
// bytes), in this order and whatever the case; empty where there is none, and where the disk does
// not answer soon.
std::string coverBeside(const std::string &track,
                        std::chrono::milliseconds patience = coverPatience);

// The same, else the address of a file in `cache` with the picture in the track's tag.
std::string coverOf(const std::string &track, const std::string &cache,
                    std::chrono::milliseconds patience = coverPatience);

} // namespace velmora::platform::bus
