#include "text/version/version_image.h"

#include "platform/backends/linux/linux_versions.h"
#include "tests/fakes/fake_ansi.h"
#include "tests/unit/linux/pe_file.h"
#include "tests/unit/linux/temp_folder.h"
#include "text/version/version_block.h"
#include "text/version/version_query.h"

#include <gtest/gtest.h>

namespace velmora::platform {
namespace {

std::string soundRecord() {
    static constexpr VersionString strings[] = {{u"InternalName", u"zkPlayer"},
                                                {u"ProductName", u"产品"}};
    VersionFields fields;
    fields.fileVersion = {1, 2, 3, 4};
    fields.strings = strings;
    const auto block = buildVersionBlock<2048>(fields);
    return {block.bytes.begin(), block.bytes.begin() + static_cast<std::ptrdiff_t>(block.size)};
}

// Reads from memory; counts what it gives out.
struct Memory {
    const std::string &bytes;
    std::size_t given = 0;
    std::size_t reads = 0;

    std::optional<std::string> record() {
        const auto place = findVersionRecord([this](std::uint64_t offset, std::size_t count) {
            ++reads;
            const std::string piece = offset < bytes.size()
                                          ? bytes.substr(static_cast<std::size_t>(offset), count)
                                          : std::string();
            given += piece.size();
            return piece;
        });
        if (!place)
            return std::nullopt;
        return bytes.substr(static_cast<std::size_t>(place->offset), place->size);
    }
};

std::optional<std::string> recordIn(const std::string &bytes) { return Memory{bytes}.record(); }

// --- Windows programs ----------------------------------------------------------------------------

struct PeTest : testing::TestWithParam<bool> {
    PeFile pe = makePe(soundRecord(), GetParam());
};

TEST_P(PeTest, givesItsRecord) { EXPECT_EQ(recordIn(pe.bytes), soundRecord()); }

TEST_P(PeTest, isNotReadWhole) {
    pe.bytes.resize(20'000'000);
    Memory memory{pe.bytes};
    EXPECT_TRUE(memory.record());
    EXPECT_LT(memory.given, 2000U);
    EXPECT_LT(memory.reads, 20U);
}

TEST_P(PeTest, takesTheFirstNameWhereNoneIsOne) {
    pe.put32(pe.nameDirectory + 16, 7);
    EXPECT_EQ(recordIn(pe.bytes), soundRecord());
}

TEST_P(PeTest, hasNoneWhenCutAnywhere) {
    const std::size_t end = pe.record + soundRecord().size();
    for (std::size_t size = 0; size < end; ++size)
        ASSERT_EQ(recordIn(pe.bytes.substr(0, size)), std::nullopt) << size;
    EXPECT_TRUE(recordIn(pe.bytes.substr(0, end)));
}

struct Harm {
    const char *name;
    void (*apply)(PeFile &pe);
};

constexpr Harm harms[] = {
    {"no MZ", [](PeFile &pe) { pe.bytes[0] = 'X'; }},
    {"header far away", [](PeFile &pe) { pe.put32(0x3C, 0xFFFFFFF0); }},
    {"no PE", [](PeFile &pe) { pe.bytes[pe.header] = 'X'; }},
    {"no sections", [](PeFile &pe) { pe.put16(pe.header + 6, 0); }},
    {"too many sections", [](PeFile &pe) { pe.put16(pe.header + 6, 0xFFFF); }},
    {"no optional header", [](PeFile &pe) { pe.put16(pe.header + 20, 0); }},
    {"short optional header", [](PeFile &pe) { pe.put16(pe.header + 20, 100); }},
    {"unknown kind", [](PeFile &pe) { pe.put16(pe.optionalHeader, 0x107); }},
    {"two directories only", [](PeFile &pe) { pe.put32(pe.directories, 2); }},
    {"no resources", [](PeFile &pe) { pe.put32(pe.directories + 4 + 16, 0); }},
    {"resources in no section", [](PeFile &pe) { pe.put32(pe.directories + 4 + 16, 0x9000); }},
    {"resources at the end of memory",
     [](PeFile &pe) { pe.put32(pe.directories + 4 + 16, 0xFFFFFFFF); }},
    {"section without bytes", [](PeFile &pe) { pe.put32(pe.sections + 40 + 16, 0); }},
    {"section far away", [](PeFile &pe) { pe.put32(pe.sections + 40 + 20, 0xFFFFFF00); }},
    {"no types", [](PeFile &pe) { pe.put32(pe.resources + 12, 0); }},
    {"endless types", [](PeFile &pe) { pe.put32(pe.resources + 12, 0xFFFFFFFF); }},
    {"no version type", [](PeFile &pe) { pe.put32(pe.typeEntries + 8, 17); }},
    {"type is no directory", [](PeFile &pe) { pe.put32(pe.typeEntries + 12, 0x40); }},
    {"names outside", [](PeFile &pe) { pe.put32(pe.typeEntries + 12, 0xFFFFFFFF); }},
    {"no names", [](PeFile &pe) { pe.put32(pe.nameDirectory + 12, 0); }},
    {"name is no directory", [](PeFile &pe) { pe.put32(pe.nameDirectory + 20, 0x60); }},
    {"languages outside", [](PeFile &pe) { pe.put32(pe.nameDirectory + 20, 0x80FFFFFF); }},
    {"language is a directory",
     [](PeFile &pe) { pe.put32(pe.languageDirectory + 20, 0x80000080); }},
    {"languages are the root", [](PeFile &pe) { pe.put32(pe.nameDirectory + 20, 0x80000000); }},
    {"data entry outside", [](PeFile &pe) { pe.put32(pe.languageDirectory + 20, 0x7FFFFFFF); }},
    {"record before its section", [](PeFile &pe) { pe.put32(pe.dataEntry, 0x1000); }},
    {"record behind its section", [](PeFile &pe) { pe.put32(pe.dataEntry, 0x9000); }},
    {"record of no size", [](PeFile &pe) { pe.put32(pe.dataEntry + 4, 0); }},
    {"record beyond its section", [](PeFile &pe) { pe.put32(pe.dataEntry + 4, 0xFFFFFFFF); }},
};

TEST_P(PeTest, hasNoneWhenDamagedOnTheWay) {
    for (const Harm &harm : harms) {
        PeFile damaged = pe;
        harm.apply(damaged);
        Memory memory{damaged.bytes};
        EXPECT_EQ(memory.record(), std::nullopt) << harm.name;
        EXPECT_LT(memory.reads, 20U) << harm.name;
    }
}

TEST_P(PeTest, survivesEveryByteBeingWrong) {
    for (std::size_t at = 0; at < pe.record; ++at)
        for (const char value : {'\0', '\x7F', '\x80', '\xFF'}) {
            std::string bytes = pe.bytes;
            bytes[at] = value;
            if (const auto record = recordIn(bytes)) {
                ASSERT_LE(record->size(), 65535U);
                versionValue(*record, u"\\StringFileInfo\\080404B0\\InternalName");
            }
        }
}

INSTANTIATE_TEST_SUITE_P(Version, PeTest, testing::Bool(),
                         [](const auto &row) { return row.param ? "Pe64" : "Pe32"; });

// --- ELF -----------------------------------------------------------------------------------------

// A file of nothing but headers, a name table and the record.
std::string makeElf(const std::string &record, bool wide, const std::string &sectionName) {
    const std::string names = std::string("\0.shstrtab\0", 11) + sectionName + std::string(1, '\0');
    const std::size_t headerSize = 64;
    const std::size_t namesAt = headerSize;
    const std::size_t recordAt = namesAt + names.size();
    const std::size_t tableAt = recordAt + record.size();
    PeFile file; // its way to put numbers
    file.bytes = std::string("\x7F"
                             "ELF",
                             4);
    file.bytes.resize(headerSize);
    file.bytes[4] = wide ? 2 : 1;
    file.bytes[5] = 1;
    const std::size_t rowSize = wide ? 64 : 40;
    file.put(wide ? 0x28 : 0x20, tableAt, wide ? 8 : 4);
    const std::size_t counts = wide ? 0x3A : 0x2E;
    file.put16(counts, static_cast<std::uint16_t>(rowSize));
    file.put16(counts + 2, 3);
    file.put16(counts + 4, 1);
    file.bytes += names;
    file.bytes += record;
    file.bytes.resize(tableAt + 3 * rowSize);
    const auto section = [&](std::size_t row, std::uint32_t name, std::size_t at,
                             std::size_t size) {
        const std::size_t begin = tableAt + row * rowSize;
        file.put32(begin, name);
        file.put(begin + (wide ? 0x18 : 0x10), at, wide ? 8 : 4);
        file.put(begin + (wide ? 0x20 : 0x14), size, wide ? 8 : 4);
    };
    section(1, 1, namesAt, names.size());
    section(2, 11, recordAt, record.size());
    return file.bytes;
}

TEST(ElfVersion, isFoundInItsSection) {
    for (const bool wide : {false, true}) {
        EXPECT_EQ(recordIn(makeElf(soundRecord(), wide, ".velmora.version")), soundRecord());
        EXPECT_EQ(recordIn(makeElf(soundRecord(), wide, ".velmora.versions")), std::nullopt);
        EXPECT_EQ(recordIn(makeElf(soundRecord(), wide, ".text")), std::nullopt);
        EXPECT_EQ(recordIn(makeElf("", wide, ".velmora.version")), std::nullopt);
    }
}

TEST(ElfVersion, isAbsentWhenTheFileIsCutOrOfAnotherOrder) {
    for (const bool wide : {false, true}) {
        const std::string bytes = makeElf(soundRecord(), wide, ".velmora.version");
        for (std::size_t size = 0; size < bytes.size(); ++size)
            ASSERT_EQ(recordIn(bytes.substr(0, size)), std::nullopt) << size;
        std::string other = bytes;
        other[5] = 2; // big-endian
        EXPECT_EQ(recordIn(other), std::nullopt);
        other = bytes;
        other[4] = 3;
        EXPECT_EQ(recordIn(other), std::nullopt);
    }
}

TEST(ElfVersion, isAbsentWhenItsPlaceRunsOverTheLastOfAllOffsets) {
    PeFile file;
    file.bytes = makeElf(soundRecord(), true, ".velmora.version");
    const std::size_t place = file.bytes.size() - 64 + 0x18; // in the last row
    file.put(place, std::size_t{0} - 65500, 8);
    file.put(place + 8, 65535, 8);
    EXPECT_EQ(recordIn(file.bytes), std::nullopt);
}

TEST(ElfVersion, survivesEveryByteBeingWrong) {
    for (const bool wide : {false, true}) {
        const std::string sound = makeElf(soundRecord(), wide, ".velmora.version");
        for (std::size_t at = 0; at < sound.size(); ++at)
            for (const char value : {'\0', '\x7F', '\x80', '\xFF'}) {
                std::string bytes = sound;
                bytes[at] = value;
                Memory memory{bytes};
                memory.record();
                ASSERT_LT(memory.reads, 20U);
            }
    }
}

// --- files ---------------------------------------------------------------------------------------

struct VersionFile : testing::Test {
    TempFolder folder;
    fakes::FakeAnsi ansi;
    LinuxVersionRecords versions{ansi};
};

TEST_F(VersionFile, givesSizeRecordAndStrings) {
    folder.write("曲 player.exe", makePe(soundRecord(), true).bytes);
    const std::u16string path = folder.text("曲 player.exe");
    const std::uint32_t size = versions.GetFileVersionInfoSizeA(path);
    EXPECT_EQ(size, soundRecord().size());
    EXPECT_EQ(versions.GetFileVersionInfoA(path, size), soundRecord());
    EXPECT_EQ(versions.GetFileVersionInfoA(path, 10), soundRecord().substr(0, 10));
    EXPECT_EQ(versions.GetFileVersionInfoA(path, 1'000'000), soundRecord());
    EXPECT_EQ(versions.VerQueryValueA(soundRecord(), u"\\StringFileInfo\\080404B0\\ProductName"),
              "产品");
    const fakes::FakeAnsi gbk(936);
    EXPECT_EQ(LinuxVersionRecords(gbk).VerQueryValueA(soundRecord(),
                                                      u"\\StringFileInfo\\080404B0\\ProductName"),
              "\xB2\xFA\xC6\xB7");
}

TEST_F(VersionFile, isZeroForWhatHasNoRecordOrIsNoFile) {
    folder.write("empty", "");
    folder.write("text", "MZ but no more");
    folder.makeFolder("sub");
    folder.pipe("pipe");
    folder.link("loop", "loop");
    for (const char *name : {"empty", "text", "sub", "pipe", "loop", "missing"}) {
        EXPECT_EQ(versions.GetFileVersionInfoSizeA(folder.text(name)), 0U) << name;
        EXPECT_EQ(versions.GetFileVersionInfoA(folder.text(name), 100), "") << name;
    }
    EXPECT_EQ(versions.GetFileVersionInfoSizeA(u""), 0U);
    EXPECT_EQ(versions.GetFileVersionInfoSizeA(u"/bin/sh"), 0U);
    EXPECT_EQ(versions.GetFileVersionInfoSizeA(u"/dev/zero"), 0U);
}

} // namespace
} // namespace velmora::platform
