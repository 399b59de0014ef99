#pragma once

// How long a medium is. Most containers say it to the packet; some say nothing, and of some the
// engine only guesses, by the size of the file and the bit rate of its first frames.

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace velmora::platform::picture {

enum class LengthSource {
    Header, // what the container says is exact
    Tail,   // it says so roughly: the end of the last packets is exact
    Scan,   // it does not say: every packet has to be looked at
};

// How the length of a container of this name (the demuxer's) is found. `headerSays`: the container
// has a length at all.
LengthSource lengthSource(std::string_view format, bool headerSays);

// Seconds from the first to the end of the last packet of sound and picture, by reading the packets
// without decoding them. Stops at the limit: what is left then is reckoned from the part read.
// Absent when the file cannot be read, the library is not there or the disk does not answer.
std::optional<double> measureLength(const std::string &path, LengthSource source,
                                    std::optional<double> headerSeconds,
                                    std::chrono::milliseconds limit);

} // namespace velmora::platform::picture
