#pragma once

// The picture of a track.

#include <string>

namespace velmora::platform::bus {

// The address of a picture named cover, folder or front in the folder of a track (the path's
// bytes), in this order and whatever the case; empty where there is none, and where the disk does
// not answer soon.
std::string coverBeside(const std::string &track);

// The same, else the address of a file in `cache` with the picture in the track's tag.
std::string coverOf(const std::string &track, const std::string &cache);

} // namespace velmora::platform::bus
