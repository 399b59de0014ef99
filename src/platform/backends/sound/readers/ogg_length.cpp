#include "platform/backends/sound/readers/ogg_length.h"

#include "platform/backends/sound/readers/joined_parts.h"

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

struct Page {
    std::uint64_t serial = 0;
    std::uint64_t position = 0; // of its stream; noPosition: no packet ends on it
};
constexpr std::uint64_t noPosition = ~std::uint64_t{0};

// The streams that the file begins with, each by a page of its own.
std::vector<std::uint64_t> firstStreams(const ByteSource &source) {
    constexpr std::size_t most = 16;
    std::vector<std::uint64_t> serials;
    std::array<std::uint8_t, 4096> page{};
    std::int64_t at = 0;
    while (serials.size() < most) {
        const Bytes bytes = Bytes(page).first(source.read(at, page));
        const std::size_t size = pageSize(bytes);
        if (size == 0 || (bytes[5] & 2) == 0)
            break;
        serials.push_back(littleEndian(bytes, 14, 4));
        at += static_cast<std::int64_t>(size);
    }
    return serials;
}

// The pages that begin among these bytes and end a packet.
std::vector<Page> pagesIn(const ByteSource &source, std::int64_t start, std::int64_t size) {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
    bytes.resize(source.read(start, bytes));
    constexpr std::array<std::uint8_t, 5> mark{'O', 'g', 'g', 'S', 0};
    std::vector<Page> pages;
    for (auto at = bytes.begin();; ++at) {
        at = std::search(at, bytes.end(), mark.begin(), mark.end());
        if (bytes.end() - at < static_cast<std::ptrdiff_t>(headerSize))
            return pages;
        const Bytes page = Bytes(bytes).subspan(static_cast<std::size_t>(at - bytes.begin()));
        const Page found{littleEndian(page, 14, 4), littleEndian(page, 6, 8)};
        if (found.position != noPosition)
            pages.push_back(found);
    }
}

// Most pages are small.
std::vector<Page> pagesNear(const ByteSource &source, std::int64_t place, bool ahead) {
    for (const std::int64_t size : {std::int64_t{8192}, std::int64_t{32768}, tailSize}) {
        const std::int64_t start = ahead ? std::max<std::int64_t>(place - size, 0) : place;
        auto pages = pagesIn(source, start, ahead ? place - start : size);
        if (!pages.empty())
            return pages;
    }
    return {};
}

std::uint32_t pageCrc(Bytes page) {
    constexpr std::size_t sumAt = 22; // which counts as zero itself
    std::uint32_t crc = 0;
    for (std::size_t i = 0; i < page.size(); ++i) {
        crc ^= std::uint32_t{i < sumAt || i >= sumAt + 4 ? page[i] : std::uint8_t{0}} << 24;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 0x80000000U) != 0 ? crc << 1 ^ 0x04C11DB7 : crc << 1;
    }
    return crc;
}

} // namespace

bool oggStreamBegins(const ByteSource &source, std::int64_t place) {
    std::array<std::uint8_t, 4096> bytes{}; // such pages are short
    const Bytes page = Bytes(bytes).first(source.read(place, bytes));
    const std::size_t size = pageSize(page);
    return size > 0 && (page[5] & 2) != 0 && pageCrc(page.first(size)) == littleEndian(page, 22, 4);
}

bool oggIsOnePiece(const ByteSource &source) {
    const auto serials = firstStreams(source);
    const auto isKnown = [&](const Page &page) {
        return std::find(serials.begin(), serials.end(), page.serial) != serials.end();
    };
    const auto last = pagesNear(source, source.size(), true);
    if (last.empty())
        return false;
    const std::uint64_t step = source.size() > 16 * tailSize ? 1 : 0;
    std::uint64_t reached = 0;
    // Each of several streams has a time of its own.
    const auto rises = [&](const Page &page) {
        const bool isLater = serials.size() > 1 || page.position >= reached;
        reached = page.position + step;
        return isKnown(page) && isLater;
    };
    for (const double place : placesToLookAt) {
        const auto at = static_cast<std::int64_t>(place * static_cast<double>(source.size()));
        const auto pages = pagesNear(source, at, false);
        if (pages.empty() || !rises(pages.front()))
            return false;
    }
    return rises(last.back());
}

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
        if (position == noPosition)
            continue;
        if (position > std::uint64_t{1} << 48 || position <= lead)
            return std::nullopt;
        return static_cast<std::int64_t>(position - lead);
    }
    return std::nullopt;
}

} // namespace velmora::platform::sound
