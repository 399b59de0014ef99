#pragma once

// What is told of a track, in the words of MPRIS.

#include "platform/backends/bus/bus_library.h"
#include "platform/contracts/remote.h"

#include <string>
#include <string_view>

namespace velmora::platform::bus {

// A text as the bus takes it: UTF-8, up to a NUL, no longer than `most` bytes.
std::string busText(std::u16string_view text, std::size_t most = 4096);

// "file://" and the bytes of an absolute path, each that is not plain as %XX.
std::string fileUri(std::string_view path);

std::string trackPath(std::uint32_t track);

// Appends the a{sv} of a track; negative on failure.
int appendTrack(const BusLibrary &library, sd_bus_message *message, const NowPlaying &now,
                const std::string &artUri);

} // namespace velmora::platform::bus
