#pragma once

// A Windows program made byte by byte, as small as one with a version resource can be. A test
// damages it at the places that it names.

#include <cstdint>
#include <string>

namespace velmora {

struct PeFile {
    std::string bytes;
    // Where things lie in the file.
    std::size_t header = 0; // "PE\0\0"
    std::size_t optionalHeader = 0;
    std::size_t directories = 0;   // the count of directories, then their rows
    std::size_t sections = 0;      // two rows of 40 bytes; the second is ".rsrc"
    std::size_t resources = 0;     // the root directory of resources
    std::size_t typeEntries = 0;   // an icon's, then the version's
    std::size_t nameDirectory = 0; // of the version resource
    std::size_t languageDirectory = 0;
    std::size_t dataEntry = 0;
    std::size_t record = 0;

    void put16(std::size_t at, std::uint16_t value) { put(at, value, 2); }
    void put32(std::size_t at, std::uint32_t value) { put(at, value, 4); }

    void put(std::size_t at, std::uint64_t value, std::size_t width) {
        if (bytes.size() < at + width)
            bytes.resize(at + width);
        for (std::size_t i = 0; i < width; ++i)
            bytes[at + i] = static_cast<char>(value >> (8 * i) & 0xFF);
    }
};

// `wide`: of 64 bits.
inline PeFile makePe(const std::string &record, bool wide) {
    constexpr std::uint32_t resourceAddress = 0x3000;
    constexpr std::size_t resourceOffset = 0x400;
    PeFile pe;
    pe.bytes.resize(resourceOffset);
    pe.bytes.replace(0, 2, "MZ");
    pe.header = 0x80;
    pe.put32(0x3C, 0x80);
    pe.bytes.replace(pe.header, 4, std::string("PE\0\0", 4));
    pe.put16(pe.header + 4, wide ? 0x8664 : 0x14C);
    pe.put16(pe.header + 6, 2); // sections
    const std::uint16_t optionalSize = wide ? 112 + 16 * 8 : 96 + 16 * 8;
    pe.put16(pe.header + 20, optionalSize);
    pe.optionalHeader = pe.header + 24;
    pe.put16(pe.optionalHeader, wide ? 0x20B : 0x10B);
    pe.directories = pe.optionalHeader + (wide ? 108 : 92);
    pe.put32(pe.directories, 16);
    pe.put32(pe.directories + 4 + 2 * 8, resourceAddress);
    pe.put32(pe.directories + 4 + 2 * 8 + 4, 0x1000);
    pe.sections = pe.optionalHeader + optionalSize;
    const auto section = [&](std::size_t row, const char *name, std::uint32_t address,
                             std::uint32_t size, std::uint32_t offset) {
        const std::size_t at = pe.sections + row * 40;
        pe.bytes.replace(at, std::char_traits<char>::length(name), name);
        pe.put32(at + 8, size);
        pe.put32(at + 12, address);
        pe.put32(at + 16, size);
        pe.put32(at + 20, offset);
    };
    section(0, ".text", 0x1000, 0x100, 0x300);

    pe.resources = resourceOffset;
    const auto directory = [&](std::size_t at, std::uint16_t count) {
        pe.put32(at, 0);
        pe.put32(at + 12, std::uint32_t{count} << 16);
    };
    directory(pe.resources, 2);
    pe.typeEntries = pe.resources + 16;
    pe.put32(pe.typeEntries, 3); // icons, whose directory is never entered
    pe.put32(pe.typeEntries + 4, 0x80000020);
    pe.put32(pe.typeEntries + 8, 16);
    pe.put32(pe.typeEntries + 12, 0x80000040);
    pe.nameDirectory = pe.resources + 0x40;
    directory(pe.nameDirectory, 1);
    pe.put32(pe.nameDirectory + 16, 1);
    pe.put32(pe.nameDirectory + 20, 0x80000060);
    pe.languageDirectory = pe.resources + 0x60;
    directory(pe.languageDirectory, 1);
    pe.put32(pe.languageDirectory + 16, 0x804);
    pe.put32(pe.languageDirectory + 20, 0x80);
    pe.dataEntry = pe.resources + 0x80;
    pe.put32(pe.dataEntry, resourceAddress + 0xA0);
    pe.put32(pe.dataEntry + 4, static_cast<std::uint32_t>(record.size()));
    pe.put32(pe.dataEntry + 8, 0);
    pe.record = pe.resources + 0xA0;
    pe.bytes.resize(pe.record);
    pe.bytes += record;
    pe.bytes.resize((pe.bytes.size() + 0x1FF) & ~std::size_t{0x1FF});
    section(1, ".rsrc", resourceAddress,
            static_cast<std::uint32_t>(pe.bytes.size() - resourceOffset), resourceOffset);
    return pe;
}

} // namespace velmora
