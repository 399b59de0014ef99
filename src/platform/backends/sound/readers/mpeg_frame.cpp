#include "platform/backends/sound/readers/mpeg_frame.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace velmora::platform::sound {

namespace {

constexpr int bitrates[2][3][16] = {
    {{0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448, -1},
     {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384, -1},
     {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, -1}},
    {{0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256, -1},
     {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160, -1},
     {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160, -1}}};
constexpr int rates[3] = {44100, 48000, 32000};

std::uint32_t bigEndian(std::span<const std::uint8_t> bytes) {
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 |
           std::uint32_t{bytes[2]} << 8 | bytes[3];
}

// The distance to the next header alike: the size of a free format frame, which no field tells.
int freeFormatSize(std::span<const std::uint8_t> bytes, const MpegFrame &first) {
    const std::size_t limit =
        std::min<std::size_t>(bytes.size() - std::min<std::size_t>(bytes.size(), 4), 6000);
    for (std::size_t at = 24; at < limit; ++at) {
        const auto next = parseMpegFrame(bytes.subspan(at));
        if (next && next->alike(first))
            return static_cast<int>(at) - (first.padded ? 1 : 0);
    }
    return 0;
}

bool chainHolds(std::span<const std::uint8_t> bytes, bool bytesAreAll, bool atOnce) {
    const int wanted = atOnce ? 3 : 4;
    const MpegChain chain = followMpegChain(bytes, bytesAreAll, wanted);
    return chain.headers >= wanted || (atOnce && chain.headers >= 2 && chain.reachesEnd);
}

// Of a frame of layer III: behind what tells of its sound, of which a header has none.
std::size_t xingAt(std::span<const std::uint8_t> bytes) {
    const bool isFirstVersion = (bytes[1] & 0x18) == 0x18;
    const bool isMono = bytes[3] >> 6 == 3;
    return 4 + (isFirstVersion ? (isMono ? 17U : 32U) : (isMono ? 9U : 17U));
}
constexpr std::size_t vbriAt = 36;

bool isMark(const std::uint8_t *bytes, const char *mark) {
    return std::memcmp(bytes, mark, 4) == 0;
}

// The kinds of fields that are there are named in front of them; the encoder's own follow.
void readXingFields(std::span<const std::uint8_t> bytes, MpegSeekHeader &header) {
    constexpr std::array<std::size_t, 4> sizes{4, 4, 100, 4}; // frames, bytes, places, quality
    header.constantRate = bytes[0] == 'I';
    const std::uint32_t fields = bigEndian(bytes.subspan(4));
    std::size_t at = 8;
    for (std::size_t field = 0; field < sizes.size(); ++field) {
        if ((fields >> field & 1) == 0)
            continue;
        if (at + sizes[field] > bytes.size())
            return;
        if (field == 0)
            header.frames = bigEndian(bytes.subspan(at));
        else if (field == 1)
            header.bytes = bigEndian(bytes.subspan(at));
        at += sizes[field];
    }
    constexpr std::size_t delayAt = 21; // behind the encoder's name and what it says of its sound
    if (at + delayAt + 3 > bytes.size() || bytes[at] == 0)
        return;
    const std::uint32_t both = std::uint32_t{bytes[at + delayAt]} << 16 |
                               std::uint32_t{bytes[at + delayAt + 1]} << 8 |
                               bytes[at + delayAt + 2];
    header.delay = static_cast<int>(both >> 12);
    header.padding = static_cast<int>(both & 0xFFF);
}

} // namespace

std::optional<MpegFrame> parseMpegFrame(std::span<const std::uint8_t> bytes) {
    if (bytes.size() < 4 || bytes[0] != 0xFF || (bytes[1] & 0xE0) != 0xE0)
        return std::nullopt;
    const int versionBits = bytes[1] >> 3 & 3;
    const int layerBits = bytes[1] >> 1 & 3;
    const int bitrateIndex = bytes[2] >> 4;
    const int rateIndex = bytes[2] >> 2 & 3;
    const int emphasis = bytes[3] & 3;
    if (versionBits == 1 || layerBits == 0 || bitrateIndex == 15 || rateIndex == 3 || emphasis == 2)
        return std::nullopt;
    MpegFrame frame;
    frame.header = bigEndian(bytes);
    frame.version = versionBits == 3 ? 1 : versionBits == 2 ? 2 : 3;
    frame.layer = 4 - layerBits;
    // Version 2.5 exists for layer III alone; elsewhere the pattern is chance.
    if (frame.version == 3 && frame.layer != 3)
        return std::nullopt;
    frame.rate = rates[rateIndex] >> (frame.version - 1);
    frame.channels = bytes[3] >> 6 == 3 ? 1 : 2;
    frame.padded = (bytes[2] & 2) != 0;
    const bool low = frame.version != 1;
    frame.samples = frame.layer == 1 ? 384 : frame.layer == 3 && low ? 576 : 1152;
    const int bitrate = bitrates[low ? 1 : 0][frame.layer - 1][bitrateIndex] * 1000;
    const int padding = frame.padded ? 1 : 0;
    if (bitrate == 0)
        frame.size = 0;
    else if (frame.layer == 1)
        frame.size = (12 * bitrate / frame.rate + padding) * 4;
    else
        frame.size = frame.samples / 8 * bitrate / frame.rate + padding;
    return frame;
}

MpegChain followMpegChain(std::span<const std::uint8_t> bytes, bool bytesAreAll, int wanted) {
    MpegChain chain;
    const auto first = parseMpegFrame(bytes);
    if (!first)
        return chain;
    chain.first = *first;
    chain.freeSize = first->size == 0 ? freeFormatSize(bytes, *first) : 0;
    if (first->size == 0 && chain.freeSize == 0)
        return chain;
    std::size_t at = 0;
    while (chain.headers < wanted) {
        if (at + 4 > bytes.size()) {
            chain.reachesEnd = bytesAreAll;
            break;
        }
        const auto frame = parseMpegFrame(bytes.subspan(at));
        if (!frame || !frame->alike(*first)) {
            // A tag may follow the last frame.
            chain.reachesEnd = bytesAreAll && bytes.size() - at >= 3 &&
                               std::memcmp(bytes.data() + at, "TAG", 3) == 0;
            break;
        }
        ++chain.headers;
        at += static_cast<std::size_t>(chain.sizeOf(*frame));
    }
    return chain;
}

std::optional<std::int64_t> findMpegStream(const ByteSource &source, std::int64_t from,
                                           std::int64_t junk) {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(junk) + mpegChainBytes);
    bytes.resize(source.read(from, bytes));
    const bool all = from + static_cast<std::int64_t>(bytes.size()) >= source.size();
    const std::span<const std::uint8_t> window(bytes);
    for (std::size_t at = 0; at < window.size() && static_cast<std::int64_t>(at) <= junk; ++at) {
        if (window[at] != 0xFF)
            continue;
        if (chainHolds(window.subspan(at), all, at == 0))
            return from + static_cast<std::int64_t>(at);
    }
    return std::nullopt;
}

std::optional<MpegSeekHeader> readMpegSeekHeader(const ByteSource &source, std::int64_t start) {
    std::array<std::uint8_t, 192> bytes{};
    const std::size_t got = source.read(start, bytes);
    const auto frame = parseMpegFrame(std::span(bytes).first(got));
    if (!frame || frame->layer != 3)
        return std::nullopt;
    MpegSeekHeader header;
    const std::size_t xing = xingAt(bytes);
    if (got >= xing + 16 && (isMark(&bytes[xing], "Xing") || isMark(&bytes[xing], "Info"))) {
        readXingFields(std::span(bytes).first(got).subspan(xing), header);
        return header;
    }
    if (got >= vbriAt + 18 && isMark(&bytes[vbriAt], "VBRI")) {
        header.bytes = bigEndian(std::span(bytes).subspan(vbriAt + 10));
        header.frames = bigEndian(std::span(bytes).subspan(vbriAt + 14));
        return header;
    }
    return std::nullopt;
}

bool isMpegSeekHeader(std::span<const std::uint8_t> bytes) {
    static_assert(mpegSeekHeaderBytes >= vbriAt + 4);
    if (bytes.size() < mpegSeekHeaderBytes || (bytes[1] & 6) != 2) // layer III alone
        return false;
    const std::size_t xing = xingAt(bytes);
    const bool isXing = isMark(&bytes[xing], "Xing") || isMark(&bytes[xing], "Info");
    const std::size_t mark = isXing ? xing : vbriAt;
    return (isXing || isMark(&bytes[vbriAt], "VBRI")) &&
           std::all_of(&bytes[4], &bytes[mark], [](std::uint8_t byte) { return byte == 0; });
}

std::int64_t id3v2Size(const ByteSource &source, std::int64_t offset) {
    std::array<std::uint8_t, 10> head{};
    if (source.read(offset, head) < head.size() || std::memcmp(head.data(), "ID3", 3) != 0 ||
        head[3] == 0xFF || head[4] == 0xFF ||
        std::any_of(head.begin() + 6, head.end(), [](std::uint8_t b) { return b >= 0x80; }))
        return 0;
    const std::int64_t body = std::int64_t{head[6]} << 21 | head[7] << 14 | head[8] << 7 | head[9];
    return 10 + body + ((head[5] & 0x10) != 0 ? 10 : 0);
}

std::int64_t endBeforeTags(const ByteSource &source) {
    std::int64_t end = source.size();
    std::array<std::uint8_t, 32> tag{};
    if (end >= 128 && source.read(end - 128, std::span(tag).first(3)) == 3 &&
        std::memcmp(tag.data(), "TAG", 3) == 0)
        end -= 128;
    if (end >= 32 && source.read(end - 32, tag) == 32 &&
        std::memcmp(tag.data(), "APETAGEX", 8) == 0) {
        const std::int64_t size =
            tag[12] | tag[13] << 8 | tag[14] << 16 | std::int64_t{tag[15]} << 24;
        const std::int64_t whole = size + ((tag[23] & 0x80) != 0 ? 32 : 0);
        if (whole >= 32 && whole <= end)
            end -= whole;
    }
    return end;
}

} // namespace velmora::platform::sound
