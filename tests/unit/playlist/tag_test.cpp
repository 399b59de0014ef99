// ID3v1 tags and genres.

#include "playlist/another_PlayInfo_Form.h"
#include "playlist/playerInfo.h"
#include "tests/unit/program_fixture.h"

namespace velmora {
namespace {

class Tags : public ProgramFixture {
protected:
    playerInfo &info = app.playerInfo();
    const std::u16string track = u"/m/a.mp3";

    void SetUp() override { info.buildGenreTable(); }

    static std::string field(const std::string &text, std::size_t length, char filler = '\0') {
        std::string bytes = text.substr(0, length);
        bytes.resize(length, filler);
        return bytes;
    }
    struct Parts {
        std::string title{}, artist{}, album{}, year{}, comment{};
        int genre = 255;
    };
    static std::string tag(const Parts &parts, char filler = '\0') {
        return "TAG" + field(parts.title, 30, filler) + field(parts.artist, 30, filler) +
               field(parts.album, 30, filler) + field(parts.year, 4, filler) +
               field(parts.comment, 30, filler) + static_cast<char>(parts.genre);
    }
    bool read(const std::string &bytes) {
        files.addFile(track, bytes);
        return info.readId3v1(track);
    }
    bool readTag(const Parts &parts, char filler = '\0') {
        return read(std::string(1000, 'x') + tag(parts, filler));
    }

    another_PlayInfo_Form &form() { return app.another_PlayInfo_Form(); }
    std::u16string title() { return form().playInfo_TitleText.text(); }
    std::u16string artist() { return form().playInfo_ArtistText.text(); }
    std::u16string album() { return form().playInfo_AlbumText.text(); }
    std::u16string year() { return form().playInfo_YearText.text(); }
    std::u16string comment() { return form().playInfo_CommentText.text(); }
    std::u16string genre() { return form().playInfo_GenreText.text(); }
};

TEST_F(Tags, EachFieldGoesIntoItsBox) {
    EXPECT_TRUE(readTag({"Title", "Artist", "Album", "1999", "Comment", 18}));
    EXPECT_EQ(title(), u"Title");
    EXPECT_EQ(artist(), u"Artist");
    EXPECT_EQ(album(), u"Album");
    EXPECT_EQ(year(), u"1999");
    EXPECT_EQ(comment(), u"Comment");
    EXPECT_EQ(genre(), u"Rock");
}

TEST_F(Tags, AFileOf127BytesHasNoTag) {
    EXPECT_FALSE(read(tag({"Title"}).substr(0, 127)));
    EXPECT_FALSE(read(tag({"Title"}).substr(1)));
}

TEST_F(Tags, AFileThatIsNothingButATagHasOne) {
    EXPECT_TRUE(read(tag({"Title"})));
    EXPECT_EQ(title(), u"Title");
}

TEST_F(Tags, AnEmptyFileHasNoTag) { EXPECT_FALSE(read("")); }

TEST_F(Tags, TheMarkMustBeInPlaceAndInCapitals) {
    EXPECT_FALSE(read(std::string(1000, 'x')));
    std::string small = tag({"Title"});
    small[0] = 't';
    EXPECT_FALSE(read(small));
    EXPECT_FALSE(read(tag({"Title"}) + "x"));
}

TEST_F(Tags, OfAFileThatDiffersInCaseAloneAreThoseOfTheFileOnTheDisk) {
    files.addFile(u"/m/A.MP3", std::string(1000, 'x') + tag({"Title", "Artist"}));
    EXPECT_TRUE(info.readId3v1(u"/m/a.mp3"));
    EXPECT_EQ(title(), u"Title");
    files.addFile(u"/m/B.MP3", "no tag");
    EXPECT_FALSE(info.readId3v1(u"/m/b.mp3"));
}

TEST_F(Tags, AFileThatIsGoneIsTrueAndTouchesNoBox) {
    form().playInfo_TitleText.setText(u"Before");
    EXPECT_TRUE(info.readId3v1(u"/m/gone.mp3"));
    EXPECT_EQ(title(), u"Before");
}

TEST_F(Tags, AnUntaggedFileLeavesTheOldTagInTheBoxes) {
    readTag({"Title", "Artist"});
    EXPECT_FALSE(read(std::string(1000, 'x')));
    EXPECT_EQ(title(), u"Title");
    EXPECT_EQ(artist(), u"Artist");
}

TEST_F(Tags, AFileThatCannotBeReadIsFalse) {
    files.addFile(track, std::string(1000, 'x') + tag({"Title"}));
    files.setUnreadable(track);
    EXPECT_FALSE(info.readId3v1(track));
}

TEST_F(Tags, AFileThatShrinksMeanwhileIsFalse) {
    files.addFile(track);
    files.setLength(track, 5'000);
    files.failNext("readBytes");
    EXPECT_FALSE(info.readId3v1(track));
}

TEST_F(Tags, TheExtensionDoesNotMatter) {
    files.addFile(u"/m/movie.avi", tag({"Title"}));
    EXPECT_TRUE(info.readId3v1(u"/m/movie.avi"));
    EXPECT_EQ(title(), u"Title");
}

TEST_F(Tags, ALargeFileIsReadAtItsEndOnly) {
    files.addFile(track);
    files.setLength(track, 3'000'000'000);
    EXPECT_FALSE(info.readId3v1(track));
    EXPECT_EQ(files.calls("readBytes"), 1);
}

// --- the texts of a tag --------------------------------------------------------------------------

TEST_F(Tags, FieldsFilledWithBlanksAreTrimmed) {
    EXPECT_TRUE(readTag({"  Title", "Artist", "", "99", "", 32}, ' '));
    EXPECT_EQ(title(), u"Title");
    EXPECT_EQ(artist(), u"Artist");
    EXPECT_EQ(album(), u"");
    EXPECT_EQ(year(), u"99");
}

TEST_F(Tags, AFieldEndsAtItsFirstNul) {
    EXPECT_TRUE(readTag({std::string("Title\0garbage", 13)}));
    EXPECT_EQ(title(), u"Title");
}

TEST_F(Tags, BlanksAheadOfANulAreInsideTheFieldAndStay) {
    EXPECT_TRUE(readTag({std::string(" Title  \0", 9)}));
    EXPECT_EQ(title(), u"Title  ");
}

TEST_F(Tags, AFieldMayFillAllItsBytes) {
    EXPECT_TRUE(readTag({std::string(30, 'T'), std::string(30, 'A'), "", "12345"}));
    EXPECT_EQ(title(), std::u16string(30, u'T'));
    EXPECT_EQ(artist(), std::u16string(30, u'A'));
    EXPECT_EQ(year(), u"1234");
}

TEST_F(Tags, FieldsThatFillAllTheirBytesDoNotRunIntoEachOther) {
    EXPECT_TRUE(readTag({std::string(30, 't'), std::string(30, 'a'), std::string(30, 'l'), "1999",
                         std::string(30, 'c'), 18}));
    EXPECT_EQ(title(), std::u16string(30, u't'));
    EXPECT_EQ(artist(), std::u16string(30, u'a'));
    EXPECT_EQ(album(), std::u16string(30, u'l'));
    EXPECT_EQ(year(), u"1999");
    EXPECT_EQ(comment(), std::u16string(30, u'c'));
    EXPECT_EQ(genre(), u"Rock");
}

TEST_F(Tags, ATrackNumberAtTheCommentsEndIsNotTreatedApart) {
    EXPECT_TRUE(readTag({"", "", "", "", std::string(28, 'c') + "c\x07"}));
    EXPECT_EQ(comment(), std::u16string(29, u'c') + u'\x07');
    EXPECT_TRUE(readTag({"", "", "", "", std::string("comment\0\0\x07", 10)}));
    EXPECT_EQ(comment(), u"comment");
}

TEST_F(Tags, ATagOfBlanksLeavesTheBoxesEmpty) {
    readTag({"Title", "Artist", "Album", "1999", "Comment", 18});
    EXPECT_TRUE(readTag({"", "", "", "", "", ' '}, ' '));
    for (const std::u16string &text : {title(), artist(), album(), year(), comment(), genre()})
        EXPECT_EQ(text, u"");
}

TEST_F(Tags, ControlCharactersAreText) {
    EXPECT_TRUE(readTag({"\x01\x02\t\r\n"}));
    EXPECT_EQ(title(), u"\x01\x02\t\r\n");
}

// --- code pages ----------------------------------------------------------------------------------

TEST_F(Tags, AChineseTagIsReadInItsPage) {
    EXPECT_TRUE(readTag({"\xCD\xED\xCF\xBC", "\xD2\xF4\xC0\xD6"}));
    EXPECT_EQ(title(), u"晚霞");
    EXPECT_EQ(artist(), u"音乐");
}

TEST_F(Tags, AUtf8TagIsReadAsSuch) {
    EXPECT_TRUE(readTag({"晚霞", "音乐"}));
    EXPECT_EQ(title(), u"晚霞");
    EXPECT_EQ(artist(), u"音乐");
}

TEST_F(Tags, ACharacterCutAtTheFieldsEndIsDropped) {
    EXPECT_TRUE(readTag({"a" + std::string("晚霞晚霞晚霞晚霞晚霞"), "音乐"}));
    EXPECT_EQ(title(), u"a晚霞晚霞晚霞晚霞晚");
}

TEST_F(Tags, ACharacterCutAheadOfANulIsDroppedAsWell) {
    EXPECT_TRUE(readTag({std::string("晚霞").substr(0, 5), "音乐"}));
    EXPECT_EQ(title(), u"晚");
    EXPECT_EQ(artist(), u"音乐");
}

TEST_F(Tags, WhatAnOldTagLeftBehindTheNulHasNoSay) {
    EXPECT_TRUE(readTag({std::string("晚霞\0\xCD\xED\xCF\xBC\xCD\xED", 14)}));
    EXPECT_EQ(title(), u"晚霞");
}

TEST_F(Tags, ALatin1TagShowsAsTheLegacyPageReadsIt) {
    EXPECT_TRUE(readTag({"caf\xE9 noir"}));
    EXPECT_NE(title(), u"café noir");
}

// --- genres --------------------------------------------------------------------------------------

TEST_F(Tags, TheNumberingStandsOneBelowTheStandards) {
    const std::pair<int, const char16_t *> cases[] = {
        {0, u"Blues"},   {1, u"Blues"},  {2, u"Classic Rock"},
        {17, u"Reggae"}, {18, u"Rock"},  {126, u"Dance Hall"},
        {127, u"Goa"},   {147, u"JPop"}, {148, u"Synth Pop"}};
    for (const auto &[code, name] : cases) {
        EXPECT_TRUE(readTag({"Title", "", "", "", "", code}));
        EXPECT_EQ(genre(), name) << code;
    }
}

TEST_F(Tags, BeyondTheLastGenreTheBoxIsEmptied) {
    readTag({"Title", "", "", "", "", 2});
    for (const int code : {149, 150, 200, 255}) {
        EXPECT_TRUE(readTag({"Title", "", "", "", "", code}));
        EXPECT_EQ(genre(), u"") << code;
    }
}

TEST_F(Tags, ABlankByteIsNoGenre) {
    EXPECT_TRUE(readTag({"Title", "", "", "", "", ' '}));
    EXPECT_EQ(genre(), u"");
}

TEST_F(Tags, ANegativeNumberIsTheEntryOfItsComplement) {
    EXPECT_EQ(info.genreName(-1), u"Blues");
    EXPECT_EQ(info.genreName(-17), u"Reggae");
    EXPECT_EQ(info.genreName(-148), u"Synth Pop");
    EXPECT_THROW(info.genreName(-149), RunTimeError);
}

TEST_F(Tags, EveryGenreStandsInItsPlace) {
    constexpr std::u16string_view names =
        u"Blues|Classic Rock|Country|Dance|Disco|Funk|Grunge|Hip-Hop|Jazz|Metal|New Age|"
        u"Oldies|Other|Pop|R&B|Rap|Reggae|Rock|Techno|Industrial|Alternative|Ska|Death Metal|"
        u"Pranks|Soundtrack|Euro-Techno|Ambient|Trip Hop|Vocal|Jazz+Funk|Fusion|Trance|"
        u"Classical|Instrumental|Acid|House|Game|Sound Clip|Gospel|Noise|Alt. Rock|Bass|Soul|"
        u"Punk|Space|Meditative|Instrumental Pop|Instrumental Rock|Ethnic|Gothic|Darkwave|"
        u"Techno-Industrial|Electronic|Pop-Folk|Eurodance|Dream|Southern Rock|Comedy|Cult|"
        u"Gangsta Rap|Top 40|Christian Rap|Pop/Punk|Jungle|Native American|Cabaret|New Wave|"
        u"Phychedelic|Rave|Showtunes|Trailer|Lo-Fi|Tribal|Acid Punk|Acid Jazz|Polka|Retro|"
        u"Musical|Rock & Roll|Hard Rock|Folk|Folk/Rock|National Folk|Swing|Fast-Fusion|Bebob|"
        u"Latin|Revival|Celtic|Blue Grass|Avantegarde|Gothic Rock|Progressive Rock|"
        u"Psychedelic Rock|Symphonic Rock|Slow Rock|Big Band|Chorus|Easy Listening|Acoustic|"
        u"Humour|Speech|Chanson|Opera|Chamber Music|Sonata|Symphony|Booty Bass|Primus|"
        u"Porn Groove|Satire|Slow Jam|Club|Tango|Samba|Folklore|Ballad|power Ballad|"
        u"Rhythmic Soul|Freestyle|Duet|Punk Rock|Drum Solo|A Capella|Euro-House|Dance Hall|"
        u"Goa|Drum & Bass|Club-House|Hardcore|Terror|indie|Brit Pop|Negerpunk|Polsk Punk|Beat|"
        u"Christian Gangsta Rap|Heavy Metal|Black Metal|Crossover|Comteporary Christian|"
        u"Christian Rock|Merengue|Salsa|Trash Metal|Anime|JPop|Synth Pop|";
    std::u16string shown;
    for (std::int32_t number = 1; number <= 148; ++number)
        shown += info.genreName(number) + u"|";
    EXPECT_EQ(shown, names);
}

TEST_F(Tags, TheRequiredSpellingsStand) {
    const std::pair<int, const char16_t *> cases[] = {
        {68, u"Phychedelic"}, {86, u"Bebob"},
        {91, u"Avantegarde"}, {118, u"power Ballad"},
        {124, u"A Capella"},  {132, u"indie"},
        {134, u"Negerpunk"},  {141, u"Comteporary Christian"},
        {145, u"Trash Metal"}};
    for (const auto &[number, name] : cases)
        EXPECT_EQ(info.genreName(number), name) << number;
}

TEST(GenreTable, HoldsNoNameUntilItIsBuilt) {
    fakes::FakePlatform fake;
    Velmora app(fake.bundle());
    EXPECT_EQ(app.playerInfo().genreName(0), u"");
    EXPECT_THROW(app.playerInfo().genreName(2), RunTimeError);
    app.playerInfo().buildGenreTable();
    EXPECT_EQ(app.playerInfo().genreName(0), u"Blues");
}

} // namespace
} // namespace velmora
