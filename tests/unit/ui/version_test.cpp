// The version record of a file as texts.

#include "tests/unit/program_fixture.h"

#include "text/version/version_block.h"
#include "ui/Procedure_Description.h"

namespace velmora {
namespace {

constexpr auto path = u"/bin/program";

class Version : public ProgramFixture {
protected:
    Procedure_Description &record() { return app.Procedure_Description(); }

    static std::string recordOf(const platform::VersionFields &fields) {
        const auto block = platform::buildVersionBlock<8192>(fields);
        return {block.bytes.begin(), block.bytes.begin() + static_cast<std::ptrdiff_t>(block.size)};
    }
    // A sound record with some 32-bit words of its fixed part replaced (counted from 0).
    void readWithWords(std::initializer_list<std::pair<std::size_t, std::uint32_t>> words) {
        platform::VersionFields fields;
        fields.fileVersion = {1, 2, 3, 4};
        fields.productVersion = {5, 6, 7, 8};
        std::string bytes = recordOf(fields);
        const std::size_t fixedPart = bytes.find("\xBD\x04\xEF\xFE");
        ASSERT_NE(fixedPart, std::string::npos);
        for (const auto &[word, value] : words)
            for (std::size_t byte = 0; byte < 4; ++byte)
                bytes[fixedPart + word * 4 + byte] = static_cast<char>(value >> (8 * byte) & 0xFF);
        fake.versions.addRecordBytes(path, bytes);
        record().read_File_Version(path);
    }
    Texts all() {
        auto &r = record();
        return {r.ver_FileDescription, r.ver_ProductName, r.ver_OriginalFilename,
                r.ver_InternalName,    r.ver_CompanyName, r.ver_LegalCopyright,
                r.ver_StrucVersion,    r.ver_FileVersion, r.ver_ProductVersion,
                r.ver_Flags,           r.ver_OS,          r.ver_FileType,
                r.ver_FileSubtype};
    }
};

TEST_F(Version, GivesTheSixStrings) {
    fake.versions.addRecord(path, {.fileDescription = u"A player 播放器",
                                   .productName = u"Velmora",
                                   .originalFilename = u"velmora",
                                   .internalName = u"zkPlayer",
                                   .companyName = u"Norvane",
                                   .legalCopyright = u"(C) 2011"});
    record().read_File_Version(path);
    EXPECT_EQ(record().ver_FileDescription, u"A player 播放器");
    EXPECT_EQ(record().ver_ProductName, u"Velmora");
    EXPECT_EQ(record().ver_OriginalFilename, u"velmora");
    EXPECT_EQ(record().ver_InternalName, u"zkPlayer");
    EXPECT_EQ(record().ver_CompanyName, u"Norvane");
    EXPECT_EQ(record().ver_LegalCopyright, u"(C) 2011");
}

TEST_F(Version, LeavesAStringEmptyThatTheRecordLacks) {
    fakes::FakeVersionRecords::Strings strings;
    strings.productName = u"Velmora";
    fake.versions.addRecord(path, strings);
    record().read_File_Version(path);
    EXPECT_EQ(record().ver_ProductName, u"Velmora");
    EXPECT_EQ(record().ver_InternalName, u"");
}

TEST_F(Version, OfAFileWithoutARecordIsEmptyThroughout) {
    fake.versions.addProgram(path, u"zkPlayer");
    record().read_File_Version(path);
    ASSERT_EQ(record().ver_InternalName, u"zkPlayer");
    record().read_File_Version(u"/bin/other");
    EXPECT_EQ(all(), Texts(13));
}

TEST_F(Version, OfADamagedRecordDoesNotRaise) {
    fake.versions.addRecordBytes(path, "no record at all");
    EXPECT_NO_THROW(record().read_File_Version(path));
    EXPECT_EQ(record().ver_InternalName, u"");
}

TEST_F(Version, OfARecordWithoutAFixedPartHasTheWordsOfAnEmptyOne) {
    fake.versions.addRecordBytes(path, "no record at all");
    record().read_File_Version(path);
    EXPECT_EQ(record().ver_StrucVersion, u"0.0");
    EXPECT_EQ(record().ver_FileVersion, u"0.0.0.0");
    EXPECT_EQ(record().ver_ProductVersion, u"0.0.0.0");
    EXPECT_EQ(record().ver_Flags, u"");
    EXPECT_EQ(record().ver_OS, u"未知操作系统");
    EXPECT_EQ(record().ver_FileType, u"未知");
    EXPECT_EQ(record().ver_FileSubtype, u"");
}

// A record says how long it is: of one that is cut nothing is told but the words of an empty one,
// wherever the cut falls.
TEST_F(Version, CutShortAtAnyByteTellsNothingOfIt) {
    const Texts ofAnEmptyOne = {
        u"",     u"", u"", u"", u"", u"", u"0.0", u"0.0.0.0", u"0.0.0.0", u"", u"未知操作系统",
        u"未知", u""};
    const platform::VersionString strings[] = {{u"FileDescription", u"A player 播放器"},
                                               {u"InternalName", u"zkPlayer"}};
    platform::VersionFields fields;
    fields.fileVersion = {1, 2, 3, 4};
    fields.strings = strings;
    const std::string bytes = recordOf(fields);
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        fake.versions.addRecordBytes(path, bytes.substr(0, size));
        ASSERT_NO_THROW(record().read_File_Version(path));
        ASSERT_EQ(all(), size == 0 ? Texts(13) : ofAnEmptyOne) << size;
    }
    fake.versions.addRecordBytes(path, bytes);
    record().read_File_Version(path);
    EXPECT_EQ(record().ver_FileDescription, strings[0].value);
    EXPECT_EQ(record().ver_InternalName, strings[1].value);
    EXPECT_EQ(record().ver_FileVersion, u"1.2.3.4");
}

TEST_F(Version, WithAFixedPartThatIsAByteShortHasTheNumbersOfNone) {
    platform::VersionFields fields;
    fields.fileVersion = {1, 2, 3, 4};
    std::string bytes = recordOf(fields);
    constexpr std::size_t lengthOfFixedPart = 2;
    ASSERT_EQ(bytes[lengthOfFixedPart], 52);
    bytes[lengthOfFixedPart] = 51;
    fake.versions.addRecordBytes(path, bytes);
    record().read_File_Version(path);
    EXPECT_EQ(record().ver_FileVersion, u"0.0.0.0");
}

TEST_F(Version, JoinsTheNumbersByPoints) {
    readWithWords({{1, 0x0001'FFFF}});
    EXPECT_EQ(record().ver_StrucVersion, u"1.65535");
    EXPECT_EQ(record().ver_FileVersion, u"1.2.3.4");
    EXPECT_EQ(record().ver_ProductVersion, u"5.6.7.8");
}

TEST_F(Version, PutsEachFlagsWordInFrontOfTheOnesBefore) {
    readWithWords({{7, 0}});
    EXPECT_EQ(record().ver_Flags, u"");
    readWithWords({{7, 1}});
    EXPECT_EQ(record().ver_Flags, u"Debug ");
    readWithWords({{7, 63}});
    EXPECT_EQ(record().ver_Flags, u"Special Info Private Patched PreRel Debug ");
    readWithWords({{7, 0x40 | 4}});
    EXPECT_EQ(record().ver_Flags, u"Patched ");
}

TEST_F(Version, NamesTheSystem) {
    const std::pair<std::uint32_t, const char16_t *> rows[] = {
        {1, u"Win16位操作系统"},
        {4, u"Win32位操作系统"},
        {0x10000, u"DOS操作系统"},
        {0x10001, u"DOS-Win16操作系统"},
        {0x10004, u"DOS-Win32操作系统"},
        {0x20002, u"OS/2-16 PM-16操作系统"},
        {0x30003, u"OS/2-16 PM-32操作系统"},
        {0x40004, u"NT-Win32操作系统"},
        {0, u"未知操作系统"},
        {0x50005, u"未知操作系统"},
    };
    for (const auto &[value, name] : rows) {
        readWithWords({{8, value}});
        EXPECT_EQ(record().ver_OS, name);
    }
}

TEST_F(Version, NamesTheKindOfFile) {
    const std::pair<std::uint32_t, const char16_t *> rows[] = {
        {1, u"应用程序"}, {2, u"动态连接库"}, {3, u"驱动程序"}, {4, u"字体"},
        {5, u"VxD"},      {7, u"Lib"},        {0, u"未知"},     {6, u"未知"},
    };
    for (const auto &[value, name] : rows) {
        readWithWords({{9, value}, {10, 99}});
        EXPECT_EQ(record().ver_FileType, name);
        EXPECT_EQ(record().ver_FileSubtype, u"");
    }
}

TEST_F(Version, NamesTheKindOfDriver) {
    const char16_t *const names[] = {u"未知驱动程序", u"打印驱动程序", u"键盘驱动程序",
                                     u"语言模块",     u"显示驱动程序", u"鼠标驱动程序",
                                     u"网络驱动程序", u"系统驱动程序", u"Installable",
                                     u"声音驱动程序", u"串行驱动程序"};
    for (std::uint32_t subtype = 0; subtype < 11; ++subtype) {
        readWithWords({{9, 3}, {10, subtype}});
        EXPECT_EQ(record().ver_FileSubtype, names[subtype]);
    }
}

TEST_F(Version, NamesTheKindOfFont) {
    const char16_t *const names[] = {u"", u"光栅字体", u"矢量字体", u"TrueType字体", u""};
    for (std::uint32_t subtype = 0; subtype < 5; ++subtype) {
        readWithWords({{9, 4}, {10, subtype}});
        EXPECT_EQ(record().ver_FileSubtype, names[subtype]);
    }
}

TEST_F(Version, TellsASubtypeOfDriversAndFontsAlone) {
    readWithWords({{9, 1}, {10, 1}});
    EXPECT_EQ(record().ver_FileSubtype, u"");
}

} // namespace
} // namespace velmora
