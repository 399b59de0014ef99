#include "text/version/version_image.h"

#include "text/version/version_query.h"

#include <algorithm>
#include <limits>
#include <string_view>

namespace velmora::platform {

namespace {

// No table of a sound file is longer; a count beyond these is damage.
constexpr std::size_t mostSections = 4096;
constexpr std::size_t mostResourceEntries = 4096;
constexpr std::size_t mostNameBytes = std::size_t{1} << 20;
constexpr std::uint64_t mostRecordBytes = 65535;

std::uint64_t number(std::string_view bytes, std::size_t at, std::size_t width) noexcept {
    std::uint64_t value = 0;
    for (std::size_t i = width; i-- > 0;)
        value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
    return value;
}
std::uint16_t word(std::string_view bytes, std::size_t at) noexcept {
    return static_cast<std::uint16_t>(number(bytes, at, 2));
}
std::uint32_t dword(std::string_view bytes, std::size_t at) noexcept {
    return static_cast<std::uint32_t>(number(bytes, at, 4));
}

// Exactly `count` bytes, or absent.
std::optional<std::string> readAll(const ReadAt &readAt, std::uint64_t offset, std::size_t count) {
    std::string bytes = readAt(offset, count);
    if (bytes.size() != count)
        return std::nullopt;
    return bytes;
}

// The record at a place, if it can be one: its whole extent lies in the file.
std::optional<VersionPlace> checked(const ReadAt &readAt, std::uint64_t offset,
                                    std::uint64_t size) {
    size = std::min(size, mostRecordBytes);
    // One so far back that its end comes round to the beginning of the file is damage.
    if (size == 0 || offset > std::numeric_limits<std::uint64_t>::max() - size ||
        readAt(offset + size - 1, 1).empty())
        return std::nullopt;
    return VersionPlace{offset, static_cast<std::uint32_t>(size)};
}

// --- Windows programs ---------------------------------------------------------------------------

struct PeSection {
    std::uint32_t address = 0; // where it lies when loaded
    std::uint32_t fileOffset = 0;
    std::uint32_t size = 0; // bytes in the file
};

// A resource tree is three levels deep: type, name, language.
class PeResources {
public:
    PeResources(const ReadAt &readAt, PeSection section, std::uint32_t root)
        : readAt_(readAt), section_(section), root_(root) {}

    std::optional<VersionPlace> versionRecord() const {
        constexpr std::uint32_t versionType = 16;
        const auto type = entry(root_, versionType, false);
        const auto name = type ? subdirectory(*type, 1) : std::nullopt;
        const auto language = name ? subdirectory(*name, 0) : std::nullopt;
        if (!language || isDirectory(*language))
            return std::nullopt;
        const auto data = read(root_ + *language, 16);
        if (!data)
            return std::nullopt;
        const std::uint32_t address = dword(*data, 0);
        const std::uint32_t size = dword(*data, 4);
        if (address < section_.address || address - section_.address > section_.size ||
            size > section_.size - (address - section_.address))
            return std::nullopt;
        const std::uint64_t inFile =
            std::uint64_t{section_.fileOffset} + (address - section_.address);
        return checked(readAt_, inFile, size);
    }

private:
    static bool isDirectory(std::uint32_t offset) noexcept { return (offset & 0x80000000U) != 0; }

    std::optional<std::string> read(std::uint64_t address, std::size_t count) const {
        if (address < section_.address)
            return std::nullopt;
        const std::uint64_t inside = address - section_.address;
        if (inside > section_.size || count > section_.size - inside)
            return std::nullopt;
        return readAll(readAt_, section_.fileOffset + inside, count);
    }

    std::optional<std::uint32_t> subdirectory(std::uint32_t offset, std::uint32_t wanted) const {
        if (!isDirectory(offset))
            return std::nullopt;
        return entry(std::uint64_t{root_} + (offset & 0x7FFFFFFFU), wanted, true);
    }

    // The offset word of the directory's entry with that number, or of its first entry where
    // another will do.
    std::optional<std::uint32_t> entry(std::uint64_t directory, std::uint32_t wanted,
                                       bool orFirst) const {
        const auto head = read(directory, 16);
        if (!head)
            return std::nullopt;
        const std::size_t count = std::size_t{word(*head, 12)} + word(*head, 14);
        if (count == 0 || count > mostResourceEntries)
            return std::nullopt;
        const auto entries = read(directory + 16, count * 8);
        if (!entries)
            return std::nullopt;
        for (std::size_t i = 0; i < count; ++i)
            if (dword(*entries, i * 8) == wanted)
                return dword(*entries, i * 8 + 4);
        return orFirst ? std::optional(dword(*entries, 4)) : std::nullopt;
    }

    const ReadAt &readAt_;
    PeSection section_;
    std::uint32_t root_;
};

// The section that holds an address.
std::optional<PeSection> sectionOf(const ReadAt &readAt, std::uint64_t table, std::size_t count,
                                   std::uint32_t address) {
    constexpr std::size_t rowSize = 40;
    if (count == 0 || count > mostSections)
        return std::nullopt;
    const auto rows = readAll(readAt, table, count * rowSize);
    if (!rows)
        return std::nullopt;
    for (std::size_t i = 0; i < count; ++i) {
        const PeSection section{dword(*rows, i * rowSize + 12), dword(*rows, i * rowSize + 20),
                                dword(*rows, i * rowSize + 16)};
        if (address >= section.address && address - section.address < section.size)
            return section;
    }
    return std::nullopt;
}

std::optional<VersionPlace> findInPe(const ReadAt &readAt, std::string_view dosHeader) {
    const std::uint64_t header = dword(dosHeader, 0x3C);
    const auto coff = readAll(readAt, header, 24);
    if (!coff || std::string_view(*coff).substr(0, 4) != std::string_view("PE\0\0", 4))
        return std::nullopt;
    const std::size_t sectionCount = word(*coff, 6);
    const std::size_t optionalSize = word(*coff, 20);
    const std::uint64_t optional = header + 24;
    const auto magic = optionalSize >= 2 ? readAll(readAt, optional, 2) : std::nullopt;
    if (!magic || (word(*magic, 0) != 0x10B && word(*magic, 0) != 0x20B))
        return std::nullopt;
    // The table of directories begins with its count; the resources are its third.
    const std::size_t directories = word(*magic, 0) == 0x10B ? 92 : 108;
    constexpr std::size_t resourceRow = 4 + 2 * 8;
    if (optionalSize < directories + resourceRow + 8)
        return std::nullopt;
    const auto table = readAll(readAt, optional + directories, resourceRow + 8);
    if (!table || dword(*table, 0) < 3)
        return std::nullopt;
    const std::uint32_t root = dword(*table, resourceRow);
    if (root == 0)
        return std::nullopt;
    const auto section = sectionOf(readAt, optional + optionalSize, sectionCount, root);
    if (!section)
        return std::nullopt;
    return PeResources(readAt, *section, root).versionRecord();
}

// --- ELF ----------------------------------------------------------------------------------------

struct ElfLayout {
    std::size_t width;         // of an address or offset
    std::size_t tableOffset;   // in the header: where the section table lies
    std::size_t counts;        // in the header: entry size, count, index of the name section
    std::size_t sectionOffset; // in a row: where the section lies; its size is behind that
    std::size_t rowSize;
};

constexpr ElfLayout elf32{4, 0x20, 0x2E, 0x10, 40};
constexpr ElfLayout elf64{8, 0x28, 0x3A, 0x18, 64};

std::optional<VersionPlace> findInElf(const ReadAt &readAt, std::string_view header) {
    constexpr unsigned char littleEndian = 1;
    if (static_cast<unsigned char>(header[5]) != littleEndian || (header[4] != 1 && header[4] != 2))
        return std::nullopt;
    const ElfLayout &layout = header[4] == 1 ? elf32 : elf64;
    const std::uint64_t table = number(header, layout.tableOffset, layout.width);
    const std::size_t count = word(header, layout.counts + 2);
    const std::size_t nameSection = word(header, layout.counts + 4);
    if (word(header, layout.counts) != layout.rowSize || count > mostSections ||
        nameSection >= count)
        return std::nullopt;
    const auto rows = readAll(readAt, table, count * layout.rowSize);
    if (!rows)
        return std::nullopt;
    const auto place = [&](std::size_t row) {
        const std::size_t at = row * layout.rowSize + layout.sectionOffset;
        return std::pair(number(*rows, at, layout.width),
                         number(*rows, at + layout.width, layout.width));
    };
    const auto [namesOffset, namesSize] = place(nameSection);
    if (namesSize > mostNameBytes)
        return std::nullopt;
    const auto names = readAll(readAt, namesOffset, static_cast<std::size_t>(namesSize));
    if (!names)
        return std::nullopt;
    constexpr std::string_view wanted(versionSection, sizeof versionSection); // with its zero
    for (std::size_t row = 0; row < count; ++row) {
        const std::size_t name = dword(*rows, row * layout.rowSize);
        if (name < names->size() && names->compare(name, wanted.size(), wanted) == 0) {
            const auto [offset, size] = place(row);
            return checked(readAt, offset, size);
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<VersionPlace> findVersionRecord(const ReadAt &readAt) {
    constexpr std::size_t headSize = 64;
    const std::string head = readAt(0, headSize);
    if (head.size() != headSize)
        return std::nullopt;
    if (std::string_view(head).substr(0, 2) == "MZ")
        return findInPe(readAt, head);
    if (std::string_view(head).substr(0, 4) == "\x7F"
                                               "ELF")
        return findInElf(readAt, head);
    return std::nullopt;
}

} // namespace velmora::platform
