#pragma once

// Builds a version record in the Windows layout, at compile time or at run time.

#include "base/ascii.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace velmora::platform {

struct VersionString {
    std::u16string_view name;
    std::u16string_view value;
};

struct VersionFields {
    std::array<std::uint16_t, 4> fileVersion{}; // major, minor, revision, build
    std::array<std::uint16_t, 4> productVersion{};
    std::uint32_t flags = 0;
    std::uint32_t os = 0x40004; // 32-bit, of the NT family
    std::uint32_t type = 1;     // application
    std::uint32_t subtype = 0;
    std::uint16_t language = 0x0804;
    std::uint16_t codePage = 0x04B0;
    std::span<const VersionString> strings;
};

inline constexpr std::uint32_t versionSignature = 0xFEEF04BD;
inline constexpr std::size_t fixedPartSize = 52;

// A record under construction. A block that would not fit leaves `overflow` true.
template <std::size_t Capacity> struct VersionBlock {
    std::array<unsigned char, Capacity> bytes{};
    std::size_t size = 0;
    bool overflow = false;

    constexpr void put8(unsigned value) {
        if (size == Capacity)
            overflow = true;
        else
            bytes[size++] = static_cast<unsigned char>(value);
    }
    constexpr void put16(unsigned value) {
        put8(value & 0xFF);
        put8(value >> 8 & 0xFF);
    }
    constexpr void put32(std::uint32_t value) {
        put16(value & 0xFFFF);
        put16(value >> 16);
    }
    constexpr void align4() {
        while (size % 4 != 0 && !overflow)
            put8(0);
    }
    constexpr void putText(std::u16string_view text) {
        for (const char16_t unit : text)
            put16(unit);
        put16(0);
    }
    // Begins a block; `end` with the answer fills in its length.
    constexpr std::size_t begin(std::u16string_view key, unsigned valueLength, bool text) {
        align4();
        const std::size_t start = size;
        put16(0);
        put16(valueLength);
        put16(text ? 1 : 0);
        putText(key);
        align4();
        return start;
    }
    constexpr void end(std::size_t start) {
        if (overflow)
            return;
        const std::size_t length = size - start;
        bytes[start] = static_cast<unsigned char>(length & 0xFF);
        bytes[start + 1] = static_cast<unsigned char>(length >> 8 & 0xFF);
    }
};

namespace detail {

template <std::size_t Capacity>
constexpr void putFixedPart(VersionBlock<Capacity> &block, const VersionFields &fields) {
    const auto pair = [](unsigned high, unsigned low) {
        return static_cast<std::uint32_t>(high) << 16 | low;
    };
    block.put32(versionSignature);
    block.put32(0x00010000); // the structure's own version, 1.0
    block.put32(pair(fields.fileVersion[0], fields.fileVersion[1]));
    block.put32(pair(fields.fileVersion[2], fields.fileVersion[3]));
    block.put32(pair(fields.productVersion[0], fields.productVersion[1]));
    block.put32(pair(fields.productVersion[2], fields.productVersion[3]));
    block.put32(0x3F); // which flags count
    block.put32(fields.flags);
    block.put32(fields.os);
    block.put32(fields.type);
    block.put32(fields.subtype);
    block.put32(0); // no date
    block.put32(0);
}

// Language and code page as the eight digits of a string table's name.
constexpr std::array<char16_t, 8> tableName(const VersionFields &fields) {
    std::array<char16_t, 8> name{};
    const std::uint32_t pair = static_cast<std::uint32_t>(fields.language) << 16 | fields.codePage;
    for (unsigned i = 0; i < 8; ++i)
        name[i] = static_cast<char16_t>(hexDigit(pair >> (28 - 4 * i)));
    return name;
}

} // namespace detail

template <std::size_t Capacity>
constexpr VersionBlock<Capacity> buildVersionBlock(const VersionFields &fields) {
    VersionBlock<Capacity> block;
    const std::size_t root = block.begin(u"VS_VERSION_INFO", fixedPartSize, false);
    detail::putFixedPart(block, fields);

    const std::size_t stringInfo = block.begin(u"StringFileInfo", 0, true);
    const auto name = detail::tableName(fields);
    const std::size_t table = block.begin(std::u16string_view(name.data(), name.size()), 0, true);
    for (const VersionString &text : fields.strings) {
        const std::size_t entry =
            block.begin(text.name, static_cast<unsigned>(text.value.size() + 1), true);
        block.putText(text.value);
        block.end(entry);
    }
    block.end(table);
    block.end(stringInfo);

    const std::size_t varInfo = block.begin(u"VarFileInfo", 0, true);
    const std::size_t translation = block.begin(u"Translation", 4, false);
    block.put16(fields.language);
    block.put16(fields.codePage);
    block.end(translation);
    block.end(varInfo);
    block.end(root);
    return block;
}

} // namespace velmora::platform
