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

struct Form {
    bool isOpus = false;
    std::uint64_t lead = 0;    // samples that the coder takes to begin
    std::uint64_t longest = 0; // samples of a packet; 0: not known
};

Form formOf(Bytes firstPage) {
    const std::size_t packet = headerSize + firstPage[26];
    if (packet + 29 > firstPage.size())
        return {};
    const auto *head = firstPage.data() + packet;
    if (std::memcmp(head, "OpusHead", 8) == 0)
        return {true, littleEndian(firstPage, packet + 10, 2), 0};
    if (std::memcmp(head, "\x01vorbis", 7) == 0) // whose blocks overlap by half
        return {false, 0, (std::uint64_t{1} << (head[28] >> 4)) / 2};
    return {};
}

// The last pages of a stream on which a packet ends, from the last one on: two of them at most.
std::vector<Bytes> lastPages(Bytes tail, std::uint64_t serial) {
    std::vector<Bytes> pages;
    for (std::size_t at = tail.size(); at-- > 0 && pages.size() < 2;) {
        const Bytes page = tail.subspan(at);
        const std::size_t size = page[0] == 'O' ? pageSize(page) : 0;
        if (size > 0 && littleEndian(page, 14, 4) == serial &&
            littleEndian(page, 6, 8) != noPosition)
            pages.push_back(page.first(size));
    }
    return pages;
}

// As its first byte has it.
std::uint64_t samplesOfOpusPacket(Bytes packet) {
    constexpr std::uint64_t ms = 48;
    if (packet.empty())
        return 0;
    const unsigned form = packet[0] >> 3;
    const std::uint64_t frame = form >= 16        ? (ms * 5 / 2) << (form & 3)
                                : form >= 12      ? (ms * 10) << (form & 1)
                                : (form & 3) == 3 ? ms * 60
                                                  : (ms * 10) << (form & 3);
    const unsigned count = packet[0] & 3;
    return frame * (count == 0 ? 1 : count < 3 ? 2 : packet.size() > 1 ? packet[1] & 0x3F : 0);
}

// The most samples that the packets which end on a page can hold; absent: it cannot be told.
std::optional<std::uint64_t> mostOn(Bytes page, const Form &form) {
    if (!form.isOpus && form.longest == 0)
        return std::nullopt;
    const std::size_t segments = page[26];
    std::uint64_t most = 0;
    std::size_t packet = headerSize + segments;
    bool isBeginning = (page[5] & 1) == 0; // else the first one began on the page before
    for (std::size_t i = 0, at = packet; i < segments; ++i) {
        at += page[headerSize + i];
        if (page[headerSize + i] == 255)
            continue;
        constexpr std::uint64_t longestOfOpus = 5760;
        most += !form.isOpus  ? form.longest
                : isBeginning ? samplesOfOpusPacket(page.subspan(packet, at - packet))
                              : longestOfOpus;
        packet = at;
        isBeginning = true;
    }
    return most;
}

// Where the last page says that the stream ends, but no later than its packets reach.
std::uint64_t believableEnd(const std::vector<Bytes> &pages, const Form &form) {
    const auto told = [&](std::size_t i) { return littleEndian(pages[i], 6, 8); };
    const auto number = [&](std::size_t i) { return littleEndian(pages[i], 18, 4); };
    if (pages.size() < 2 || number(0) != number(1) + 1)
        return told(0); // what lies between is lost, and how long that was nobody knows
    const auto most = mostOn(pages[0], form);
    return most ? std::min(told(0), told(1) + *most) : told(0);
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
    std::array<std::uint8_t, 128> first{};
    if (source.read(0, first) < first.size() || std::memcmp(first.data(), "OggS", 4) != 0)
        return std::nullopt;
    const Form form = formOf(first);
    for (const std::int64_t size : {tailSize / 8, tailSize}) {
        const std::int64_t start = std::max<std::int64_t>(source.size() - size, 0);
        std::vector<std::uint8_t> tail(static_cast<std::size_t>(source.size() - start));
        tail.resize(source.read(start, tail));
        const auto pages = lastPages(tail, littleEndian(first, 14, 4));
        if (pages.size() < 2 && size < tailSize)
            continue;
        if (pages.empty())
            break;
        const std::uint64_t position = believableEnd(pages, form);
        if (position > std::uint64_t{1} << 48 || position <= form.lead)
            break;
        return static_cast<std::int64_t>(position - form.lead);
    }
    return std::nullopt;
}

} // namespace velmora::platform::sound
