#include "catalogue/tags.h"

#include "music_folder.h"

#include <gtest/gtest.h>

namespace velmora::catalogue {

namespace {

std::string bigEndian(std::size_t value, unsigned bits) {
    std::string bytes;
    for (int i = 3; i >= 0; --i)
        bytes += static_cast<char>(value >> (bits * static_cast<unsigned>(i)) & ((1U << bits) - 1));
    return bytes;
}

// A tag of version 3 or 4 at the beginning of a file, with one title of that flag byte.
std::string withTitle(char version, char flags, const std::string &title) {
    const unsigned bits = version == 3 ? 8 : 7;
    const std::string text = std::string(1, '\x03') + title;
    const std::string frame =
        "TIT2" + bigEndian(text.size(), bits) + std::string{'\0', flags} + text;
    std::string sound; // ten silent frames
    for (int i = 0; i < 10; ++i)
        sound += "\xFF\xFB\x90\x64" + std::string(413, '\0');
    return std::string("ID3") + version + std::string(2, '\0') + bigEndian(frame.size(), 7) +
           frame + sound;
}

Tags tagsIn(const std::string &bytes) {
    const MusicFolder music;
    music.put("x.mp3", bytes);
    return tagsOf(*Folder(music.path()).open("x.mp3"));
}

TEST(TagsOf, ReadTheTitleInFrontOfTheSound) {
    EXPECT_EQ(tagsIn(withTitle(3, 0, "Title")).title, u"Title");
    EXPECT_EQ(tagsIn(withTitle(4, 0, "Title")).title, u"Title");
}

TEST(TagsOf, AreNoneWhereAFrameIsPacked) {
    // What is packed here would be a title.
    const std::string packed("\0\0\0\x05\x78\x9C\x63\x0E\xC9\x2C\xC9\x49\x05\0\x06\x2C\x02\x03",
                             18);
    EXPECT_EQ(tagsIn(withTitle(3, '\x80', packed)).title, u"");
    EXPECT_EQ(tagsIn(withTitle(4, '\x08', packed)).title, u"");
    EXPECT_EQ(tagsIn(withTitle(4, '\x09', packed)).title, u"");
}

TEST(TagsOf, AreCutWhereTheyAreLongerThanAnyTitle) {
    EXPECT_EQ(tagsIn(withTitle(4, 0, std::string(5'000'000, 'x'))).title,
              std::u16string(300, u'x'));
    std::string wide;
    for (int i = 0; i < 1000; ++i)
        wide += "a\xF0\x9F\x8E\xB5";
    const std::u16string cut = tagsIn(withTitle(4, 0, wide)).title;
    EXPECT_EQ(cut.size(), 300U);
    EXPECT_EQ(cut.back() & 0xFC00, 0xDC00) << "never half a pair";
    EXPECT_EQ(cutTag(u"x" + cut).size(), 299U);
}

} // namespace

} // namespace velmora::catalogue
