#pragma once

// The picture inside the tag of a track: of ID3 (mp3), of FLAC and of MP4 (m4a). Whatever the file
// holds, the work is bounded, and nothing is taken that is no JPEG or PNG by its first bytes.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace velmora::platform::bus {

// Up to `size` bytes at `offset`; fewer at the end of the file and where it cannot be read.
using ReadAt = std::function<std::string(std::uint64_t offset, std::size_t size)>;

inline constexpr std::size_t mostPictureBytes = std::size_t{4} << 20U;

// The picture's bytes: the front cover if there is one, else the first; empty for none.
std::string pictureInTag(const ReadAt &readAt);

// What a picture's name ends in: ".jpg" or ".png"; empty for anything else.
const char *endingOfPicture(const std::string &bytes);

} // namespace velmora::platform::bus
