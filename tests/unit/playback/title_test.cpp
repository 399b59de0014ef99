// The title of an open medium, the facts of its file, and its row in the list.

#include "tests/unit/program_fixture.h"

#include "playlist/another_PlayInfo_Form.h"
#include "playlist/playInfo_Form.h"
#include "playlist/playerInfo.h"

namespace velmora {
namespace {

class Title : public ProgramFixture {
protected:
    Title() { app.playerInfo().buildGenreTable(); }
    struct Tag {
        std::string title{}, artist{}, album{}, year{}, comment{};
        char genre = ' ';
    };

    static std::string fileWith(const Tag &tag) {
        const auto field = [](std::string text, std::size_t size) {
            text.resize(size, ' ');
            return text;
        };
        return std::string(300, 's') + "TAG" + field(tag.title, 30) + field(tag.artist, 30) +
               field(tag.album, 30) + field(tag.year, 4) + field(tag.comment, 30) + tag.genre;
    }

    void open(const Tag &tag) {
        addTrack(u"/music/file.mp3");
        files.addFile(u"/music/file.mp3", fileWith(tag));
        app.player().open_File(u"/music/file.mp3");
    }
};

TEST_F(Title, IsTheStemWithoutATag) {
    app.player().open_File(addTrack(u"/music/a.b.mp3"));
    EXPECT_EQ(app.player().nowPlay_Title, u"a.b");
}

TEST_F(Title, IsArtistAndTitleWhenTheTagHasBoth) {
    open({.title = "Song", .artist = "Band"});
    EXPECT_EQ(app.player().nowPlay_Title, u"Band -- Song");
}

TEST_F(Title, SaysNoArtistForATitleAlone) {
    open({.title = "Song"});
    EXPECT_EQ(app.player().nowPlay_Title, u"No Artist -- Song");
}

TEST_F(Title, SaysNoTitleForAnArtistAlone) {
    open({.artist = "Band"});
    EXPECT_EQ(app.player().nowPlay_Title, u"Band -- No Title");
}

TEST_F(Title, StaysTheStemForATagWithNeither) {
    open({.album = "Album"});
    EXPECT_EQ(app.player().nowPlay_Title, u"file");
    EXPECT_TRUE(app.playInfo_Form().anotherInfo_Button.enabled());
}

TEST_F(Title, OfATagOfBlanksHidesTheTagsWindowAndLeavesItsButtonAsItWas) {
    for (const bool before : {true, false}) {
        app.another_PlayInfo_Form().show();
        app.playInfo_Form().anotherInfo_Button.setEnabled(before);
        open({});
        EXPECT_FALSE(app.another_PlayInfo_Form().visible());
        EXPECT_EQ(app.playInfo_Form().anotherInfo_Button.enabled(), before);
        EXPECT_EQ(app.player().nowPlay_Title, u"file");
    }
}

TEST_F(Title, OfAFileWithoutATagHidesTheTagsWindowAndItsButton) {
    app.another_PlayInfo_Form().show();
    app.playInfo_Form().anotherInfo_Button.setEnabled(true);
    app.player().open_File(addTrack(u"/music/plain.mp3"));
    EXPECT_FALSE(app.another_PlayInfo_Form().visible());
    EXPECT_FALSE(app.playInfo_Form().anotherInfo_Button.enabled());
}

TEST_F(Title, OfAFileWithoutATagGivesBackTheWindowThatWaitsForTheTags) {
    app.playInfo_Form().show();
    app.playInfo_Form().anotherInfo_Button_Click();
    ASSERT_FALSE(app.playInfo_Form().enabled());
    app.player().open_File(addTrack(u"/music/plain.mp3"));
    EXPECT_FALSE(app.another_PlayInfo_Form().visible());
    EXPECT_TRUE(app.playInfo_Form().enabled());
}

TEST_F(Title, OfATaggedFileKeepsTheTagsWindowOpen) {
    app.playInfo_Form().anotherInfo_Button_Click();
    open({.title = "Song"});
    EXPECT_TRUE(app.another_PlayInfo_Form().visible());
    EXPECT_FALSE(app.playInfo_Form().enabled());
}

TEST_F(Title, OfATagOfBlanksIsNotMadeFromTheTagBefore) {
    open({.title = "Song", .artist = "Band"});
    open({});
    EXPECT_EQ(app.player().nowPlay_Title, u"file");
}

TEST_F(Title, OfAFileWithoutATagIsTheStemThoughTheOldTagStaysInTheBoxes) {
    open({.title = "Song", .artist = "Band"});
    app.player().open_File(addTrack(u"/music/plain.mp3"));
    EXPECT_EQ(app.player().nowPlay_Title, u"plain");
    EXPECT_EQ(app.another_PlayInfo_Form().playInfo_TitleText.text(), u"Song");
}

TEST_F(Title, OfATagWithOneFilledFieldEnablesTheButton) {
    for (const Tag &tag : {Tag{.title = "t"}, Tag{.artist = "a"}, Tag{.album = "l"},
                           Tag{.year = "1999"}, Tag{.comment = "c"}, Tag{.genre = 17}}) {
        app.playInfo_Form().anotherInfo_Button.setEnabled(false);
        open(tag);
        EXPECT_TRUE(app.playInfo_Form().anotherInfo_Button.enabled());
    }
}

TEST_F(Title, HasTheRowAheadWhenARowIsSelected) {
    addRow(u"/music/a.mp3");
    addRow(u"/music/b.mp3");
    addRow(u"/music/c.mp3");
    app.player().open_File(u"/music/b.mp3");
    EXPECT_EQ(app.player().nowPlay_Title, u"〖2/3〗 b");
}

TEST_F(Title, HasNoRowAheadForAFileThatIsNotInTheList) {
    addRow(u"/music/a.mp3");
    app.playList_Form().playList_Item.setSelected(0, true);
    app.player().open_File(addTrack(u"/music/other.mp3"));
    EXPECT_EQ(app.player().nowPlay_Title, u"other");
}

// --- the stem ------------------------------------------------------------------------------------

struct StemCase {
    const char16_t *path;
    const char16_t *stem;
};

class Stem : public ProgramFixture, public ::testing::WithParamInterface<StemCase> {};

TEST_P(Stem, IsTheNameWithoutFolderAndExtension) {
    EXPECT_EQ(app.player().getFileStem(GetParam().path), GetParam().stem);
}

INSTANTIATE_TEST_SUITE_P(
    Paths, Stem,
    ::testing::Values(StemCase{u"/m/a.b.mp3", u"a.b"}, StemCase{u"/m/song", u"song"},
                      StemCase{u"/m.d/song", u""}, StemCase{u"/m.d/s", u""},
                      StemCase{u"/m.d/long name", u""}, StemCase{u"song.mp3", u"song"},
                      StemCase{u"", u""}, StemCase{u"/m/.mp3", u""}, StemCase{u"/m/x.", u"x"},
                      StemCase{u"C:\\m\\a.b.mp3", u"a.b"}, StemCase{u"C:\\m.d\\song", u""},
                      StemCase{u"/m/with\\slash.mp3", u"with\\slash"},
                      StemCase{u"/m/歌曲.mp3", u"歌曲"}));

// --- the facts of the file -----------------------------------------------------------------------

class FileFacts : public ProgramFixture {
protected:
    FileFacts() { speak(1); }
    Texts shown() {
        auto &form = app.playInfo_Form();
        return {form.playName.caption(), form.playPath.caption(), form.playFile_Size.caption(),
                form.playFile_DateCreated.caption()};
    }
};

TEST_F(FileFacts, OfAFileThatExists) {
    files.addFile(u"/music/My Song.Mp3", "x");
    files.setLength(u"/music/My Song.Mp3", 1'234'567);
    files.setDateCreated(u"/music/My Song.Mp3", 1'600'000'000);
    app.player().show_FileInfo(u"/music/My Song.Mp3");
    EXPECT_EQ(shown(), (Texts{u"Track Name：My Song", u"Directory：/music/",
                              u"File Size：1,234,567 bytes   Format：MP3",
                              u"Created：2020-09-13 12:26:40"}));
}

TEST_F(FileFacts, OfAnEmptyFileShowNoNumberAsThePatternHasIt) {
    files.addFile(u"/music/empty.mp3");
    app.player().show_FileInfo(u"/music/empty.mp3");
    EXPECT_EQ(shown()[2], u"File Size： bytes   Format：MP3");
}

TEST_F(FileFacts, OfAMissingFileAreTheBareLabels) {
    app.player().show_FileInfo(u"/music/gone.mp3");
    EXPECT_EQ(shown(),
              (Texts{u"Track Name：", u"Directory：", u"File Size：0 bytes", u"Created："}));
}

TEST_F(FileFacts, OfNoFileAtAllAreTheBareLabels) {
    app.player().show_FileInfo(u"");
    EXPECT_EQ(shown()[2], u"File Size：0 bytes");
}

TEST_F(FileFacts, OfANameInOtherCaseThanOnTheDiskAreTheBareLabels) {
    files.addFile(u"/music/Song.mp3", "x");
    app.player().show_FileInfo(u"/music/song.mp3");
    EXPECT_EQ(shown()[2], u"File Size：0 bytes");
}

TEST_F(FileFacts, AreShownAtEachOpen) {
    app.player().open_File(addTrack(u"/music/a.mp3"));
    EXPECT_EQ(shown()[0], u"Track Name：a");
}

// --- the row of a file ---------------------------------------------------------------------------

class RowOfFile : public ProgramFixture {
protected:
    RowOfFile() {
        for (const char16_t *path : {u"/m/a.mp3", u"/m/b.mp3", u"/x/a.mp3", u"/m/c.mp3"})
            addRowOnly(path);
    }
    std::vector<int> selectedRows() {
        std::vector<int> found;
        for (int row = 0; row < rows(); ++row)
            if (app.playList_Form().playList_Item.selected(row))
                found.push_back(row);
        return found;
    }
};

TEST_F(RowOfFile, AloneIsSelected) {
    app.playList_Form().playList_Item.setSelected(0, true);
    app.playList_Form().playList_Item.setSelected(3, true);
    app.player().selectEntryOfFile(u"/x/a.mp3");
    EXPECT_EQ(selectedRows(), std::vector<int>{2});
    EXPECT_EQ(app.playList_Form().playList_Item.listIndex(), 2);
}

TEST_F(RowOfFile, IsFoundByTheExactPath) {
    app.playList_Form().playList_Item.setSelected(1, true);
    app.player().selectEntryOfFile(u"/m/A.mp3");
    EXPECT_TRUE(selectedRows().empty());
}

TEST_F(RowOfFile, StaysAsItIsForAnEmptyPath) {
    app.playList_Form().playList_Item.setSelected(1, true);
    app.player().selectEntryOfFile(u"");
    EXPECT_EQ(selectedRows(), std::vector<int>{1});
}

TEST_F(RowOfFile, ComesIntoView) {
    for (int row = 0; row < 60; ++row)
        addRowOnly(u"/many/" + std::u16string(1, static_cast<char16_t>(u'A' + row)) + u".mp3");
    app.player().selectEntryOfFile(u"/many/z.mp3");
    auto &list = app.playList_Form().playList_Item;
    ASSERT_EQ(list.selCount(), 1);
    EXPECT_GT(list.topIndex(), 0);
}

} // namespace
} // namespace velmora
