#include "text/version/version_query.h"

#include "text/version/version_block.h"

#include <gtest/gtest.h>

#include <string>

namespace velmora::platform {
namespace {

constexpr VersionString strings[] = {
    {u"FileDescription", u"描述"}, {u"InternalName", u"zkPlayer"}, {u"Empty", u""}};

std::string record(std::uint16_t language = 0x0804, std::uint16_t page = 0x04B0) {
    VersionFields fields;
    fields.fileVersion = {1, 2, 3, 4};
    fields.productVersion = {5, 6, 7, 8};
    fields.flags = 0x2A;
    fields.language = language;
    fields.codePage = page;
    fields.strings = strings;
    const auto block = buildVersionBlock<2048>(fields);
    EXPECT_FALSE(block.overflow);
    return {block.bytes.begin(), block.bytes.begin() + static_cast<std::ptrdiff_t>(block.size)};
}

std::optional<std::u16string> text(const std::string &from, const std::u16string &query) {
    const auto value = versionValue(from, query);
    if (!value || !value->text)
        return std::nullopt;
    return versionText(value->bytes);
}

std::uint32_t dword(std::string_view bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = 4; i-- > 0;)
        value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
    return value;
}

TEST(VersionQuery, givesTheFixedPart) {
    const std::string bytes = record();
    const auto value = versionValue(bytes, u"\\");
    ASSERT_TRUE(value);
    ASSERT_EQ(value->bytes.size(), 52U);
    EXPECT_EQ(dword(value->bytes, 0), 0xFEEF04BDU);
    EXPECT_EQ(dword(value->bytes, 4), 0x00010000U);
    EXPECT_EQ(dword(value->bytes, 8), 0x00010002U);
    EXPECT_EQ(dword(value->bytes, 12), 0x00030004U);
    EXPECT_EQ(dword(value->bytes, 16), 0x00050006U);
    EXPECT_EQ(dword(value->bytes, 20), 0x00070008U);
    EXPECT_EQ(dword(value->bytes, 28), 0x2AU);
    EXPECT_EQ(dword(value->bytes, 32), 0x40004U);
    EXPECT_EQ(dword(value->bytes, 36), 1U);
}

TEST(VersionQuery, givesTranslationsAndStrings) {
    const std::string bytes = record();
    EXPECT_EQ(versionValue(bytes, u"\\VarFileInfo\\Translation")->bytes, "\x04\x08\xB0\x04");
    EXPECT_EQ(text(bytes, u"\\StringFileInfo\\080404B0\\InternalName"), u"zkPlayer");
    EXPECT_EQ(text(bytes, u"\\StringFileInfo\\080404B0\\FileDescription"), u"描述");
    EXPECT_EQ(text(bytes, u"\\StringFileInfo\\080404B0\\Empty"), u"");
    EXPECT_EQ(text(record(0x0409, 0x04E4), u"\\StringFileInfo\\040904E4\\InternalName"),
              u"zkPlayer");
}

TEST(VersionQuery, ignoresCaseInNames) {
    EXPECT_EQ(text(record(), u"\\stringfileinfo\\080404b0\\INTERNALNAME"), u"zkPlayer");
}

TEST(VersionQuery, isAbsentForWhatIsNotThere) {
    const std::string bytes = record();
    for (const char16_t *query :
         {u"", u"InternalName", u"\\StringFileInfo\\040904B0\\InternalName",
          u"\\StringFileInfo\\080404B0\\CompanyName", u"\\StringFileInfo\\080404B0\\Internal",
          u"\\VarFileInfo\\Translation\\x", u"\\Nothing", u"\\\\", u"\\StringFileInfo\\"})
        EXPECT_FALSE(versionValue(bytes, query));
}

TEST(VersionQuery, takesTextLengthsInBytesFromToolsThatCountSo) {
    std::string bytes = record();
    const std::string name("I\0n\0t\0e\0r\0n\0a\0l", 15);
    const std::size_t key = bytes.find(name);
    ASSERT_NE(key, std::string::npos);
    bytes[key - 4] = static_cast<char>(bytes[key - 4] * 2);
    EXPECT_EQ(text(bytes, u"\\StringFileInfo\\080404B0\\InternalName"), u"zkPlayer");
}

TEST(VersionQuery, wantsTheSignatureOfTheFixedPart) {
    std::string bytes = record();
    bytes[bytes.find("\xBD\x04\xEF\xFE")] = 'x';
    EXPECT_FALSE(versionValue(bytes, u"\\"));
    EXPECT_TRUE(versionValue(bytes, u"\\VarFileInfo\\Translation"));
}

TEST(VersionQuery, neverLeavesADamagedRecord) {
    const std::string sound = record();
    const std::u16string queries[] = {u"\\", u"\\VarFileInfo\\Translation",
                                      u"\\StringFileInfo\\080404B0\\InternalName",
                                      u"\\StringFileInfo\\080404B0\\Empty"};
    const auto ask = [&](const std::string &bytes) {
        // On the heap and of exact size, so that a byte too far is seen by the sanitizers.
        const std::vector<char> exact(bytes.begin(), bytes.end());
        const std::string_view view(exact.data(), exact.size());
        for (const std::u16string &query : queries)
            if (const auto value = versionValue(view, query)) {
                ASSERT_GE(value->bytes.data(), view.data());
                ASSERT_LE(value->bytes.data() + value->bytes.size(), view.data() + view.size());
            }
    };
    for (std::size_t size = 0; size <= sound.size(); ++size)
        ask(sound.substr(0, size));
    for (std::size_t at = 0; at < sound.size(); ++at)
        for (const char value : {'\0', '\1', '\x7F', '\x80', '\xFF'}) {
            std::string bytes = sound;
            bytes[at] = value;
            ask(bytes);
        }
    ask(std::string(65535, '\0'));
    ask(std::string(65535, '\xFF'));
    ask(std::string(65535, '\6'));
}

TEST(VersionQuery, costsNoMoreThanAFewPassesOverManyChildren) {
    // Thousands of children of the least size, none of the name asked for.
    std::string bytes = record().substr(0, 40 + 52);
    while (bytes.size() < 65000)
        bytes += std::string("\x08\0\0\0\0\0\0\0", 8);
    bytes[0] = '\xE8';
    bytes[1] = '\xFD';
    EXPECT_FALSE(versionValue(bytes, u"\\StringFileInfo\\080404B0\\InternalName"));
}

TEST(VersionBlock, tellsWhenItDoesNotFit) {
    VersionFields fields;
    fields.strings = strings;
    EXPECT_TRUE(buildVersionBlock<100>(fields).overflow);
}

} // namespace
} // namespace velmora::platform
