#pragma once

// Pictures out of tags as files, for whoever shows what plays.

#include <cstddef>
#include <cstdint>
#include <string>

namespace velmora::platform::bus {

inline constexpr std::size_t mostCoversKept = 50;
inline constexpr std::uint64_t mostCoverBytesKept = std::uint64_t{64} << 20U;

// The path of a file in `folder` with these bytes: written when it is not there yet, under a name
// that they alone have. The oldest make room where there are too many. Touches no other file of the
// folder. Empty where it cannot be written.
std::string keepCover(const std::string &folder, const std::string &bytes);

} // namespace velmora::platform::bus
