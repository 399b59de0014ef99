#include "platform/sound/flac_length.h"

#include "platform/sound/mpeg_frame.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <vector>

namespace velmora::platform::sound {

namespace {

using Bytes = std::span<const std::uint8_t>;

std::uint8_t crc8(Bytes bytes) {
    unsigned crc = 0;
    for (const std::uint8_t byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 0x80) != 0 ? (crc << 1 ^ 0x107) : crc << 1;
    }
    return static_cast<std::uint8_t>(crc);
}

std::uint16_t crc16(Bytes bytes) {
    unsigned crc = 0;
    for (const std::uint8_t byte : bytes) {
        crc ^= unsigned{byte} << 8;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 0x8000) != 0 ? (crc << 1 ^ 0x18005) : crc << 1;
    }
    return static_cast<std::uint16_t>(crc);
}

struct FrameHeader {
    bool byNumber = false; // the coded number counts frames of one size, else samples
    std::uint64_t number = 0;
    std::int64_t samples = 0;
};

// The number in front is coded as text is in UTF-8, up to 36 bits.
bool codedNumber(Bytes bytes, std::size_t &at, std::uint64_t &number) {
    if (at >= bytes.size())
        return false;
    const std::uint8_t first = bytes[at++];
    int follow = 0;
    while (follow < 7 && (first & (0x80 >> follow)) != 0)
        ++follow;
    if (follow == 1 || first == 0xFF)
        return false;
    number = first & (follow == 0 ? 0x7F : 0x7F >> follow);
    for (int i = 1; i < follow; ++i) {
        if (at >= bytes.size() || (bytes[at] & 0xC0) != 0x80)
            return false;
        number = number << 6 | (bytes[at++] & 0x3F);
    }
    return true;
}

std::optional<FrameHeader> parseHeader(Bytes bytes) {
    if (bytes.size() < 6 || bytes[0] != 0xFF || (bytes[1] & 0xFE) != 0xF8)
        return std::nullopt;
    const int sizeCode = bytes[2] >> 4;
    const int rateCode = bytes[2] & 15;
    if (sizeCode == 0 || rateCode == 15 || (bytes[3] >> 4) > 10 || (bytes[3] & 1) != 0)
        return std::nullopt;
    FrameHeader header;
    header.byNumber = (bytes[1] & 1) == 0;
    std::size_t at = 4;
    if (!codedNumber(bytes, at, header.number))
        return std::nullopt;
    const std::size_t sizeAt = at;
    at += sizeCode == 6 ? 1 : sizeCode == 7 ? 2 : 0;
    const std::size_t rateBytes = rateCode == 12 ? 1 : rateCode >= 13 ? 2 : 0;
    at += rateBytes;
    if (at >= bytes.size() || crc8(bytes.first(at)) != bytes[at])
        return std::nullopt;
    if (sizeCode == 1)
        header.samples = 192;
    else if (sizeCode <= 5)
        header.samples = 576 << (sizeCode - 2);
    else if (sizeCode == 6)
        header.samples = bytes[sizeAt] + 1;
    else if (sizeCode == 7)
        header.samples = (bytes[sizeAt] << 8 | bytes[sizeAt + 1]) + 1;
    else
        header.samples = 256 << (sizeCode - 8);
    return header;
}

// The block size that the stream announces, which every frame but the last has.
std::int64_t streamBlockSize(const ByteSource &source) {
    std::array<std::uint8_t, 12> head{};
    if (source.read(0, head) < head.size() || std::memcmp(head.data(), "fLaC", 4) != 0)
        return 0;
    return head[8] << 8 | head[9];
}

} // namespace

std::optional<std::int64_t> flacSamplesPresent(const ByteSource &source) {
    const std::int64_t block = streamBlockSize(source);
    if (block == 0)
        return std::nullopt;
    const std::int64_t end = endBeforeTags(source);
    for (std::int64_t tail = 131072;; tail *= 8) {
        const std::int64_t start = std::max<std::int64_t>(end - tail, 0);
        std::vector<std::uint8_t> bytes(static_cast<std::size_t>(end - start));
        bytes.resize(source.read(start, bytes));
        for (std::size_t at = bytes.size(); at-- > 0;) {
            const Bytes rest = Bytes(bytes).subspan(at);
            const auto header = rest[0] == 0xFF ? parseHeader(rest) : std::nullopt;
            if (!header)
                continue;
            const auto first =
                static_cast<std::int64_t>(header->number) * (header->byNumber ? block : 1);
            // Its own check sum tells whether the last frame is whole.
            const bool whole =
                rest.size() > 8 && crc16(rest.first(rest.size() - 2)) ==
                                       (rest[rest.size() - 2] << 8 | rest[rest.size() - 1]);
            return whole ? first + header->samples : first;
        }
        if (start == 0 || tail > (std::int64_t{1} << 23))
            return std::nullopt;
    }
}

} // namespace velmora::platform::sound
