#include "platform/sound/ogg_length.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <vector>

namespace velmora::platform::sound {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t headerSize = 27;
// Two pages of the greatest size: one whole page of the stream is among them.
constexpr std::int64_t tailSize = 2 * 65307;

std::uint64_t littleEndian(Bytes bytes, std::size_t at, std::size_t count) {
    std::uint64_t value = 0;
    for (std::size_t i = count; i-- > 0;)
        value = value << 8 | bytes[at + i];
    return value;
}

// The size of the page that begins here; 0: none, or not all of it.
std::size_t pageSize(Bytes bytes) {
    if (bytes.size() < headerSize || std::memcmp(bytes.data(), "OggS", 4) != 0 || bytes[4] != 0)
        return 0;
    const std::size_t segments = bytes[26];
    if (bytes.size() < headerSize + segments)
        return 0;
    std::size_t size = headerSize + segments;
    for (std::size_t i = 0; i < segments; ++i)
        size += bytes[headerSize + i];
    return size <= bytes.size() ? size : 0;
}

} // namespace

std::optional<std::int64_t> oggSamplesPresent(const ByteSource &source) {
    std::array<std::uint8_t, headerSize + 1 + 19> first{};
    if (source.read(0, first) < first.size() || std::memcmp(first.data(), "OggS", 4) != 0)
        return std::nullopt;
    const std::uint64_t serial = littleEndian(first, 14, 4);
    // Opus counts the samples that its coder takes to begin.
    const std::size_t packet = headerSize + first[26];
    std::uint64_t lead = 0;
    if (packet + 12 <= first.size() && std::memcmp(first.data() + packet, "OpusHead", 8) == 0)
        lead = littleEndian(first, packet + 10, 2);

    const std::int64_t start = std::max<std::int64_t>(source.size() - tailSize, 0);
    std::vector<std::uint8_t> tail(static_cast<std::size_t>(source.size() - start));
    tail.resize(source.read(start, tail));
    for (std::size_t at = tail.size(); at-- > 0;) {
        const Bytes page = Bytes(tail).subspan(at);
        if (page[0] != 'O' || pageSize(page) == 0 || littleEndian(page, 14, 4) != serial)
            continue;
        const std::uint64_t position = littleEndian(page, 6, 8);
        if (position == ~std::uint64_t{0})
            continue; // no packet ends on it
        if (position > std::uint64_t{1} << 48 || position <= lead)
            return std::nullopt;
        return static_cast<std::int64_t>(position - lead);
    }
    return std::nullopt;
}

} // namespace velmora::platform::sound
