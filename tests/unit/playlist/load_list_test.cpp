// Reading the play list file.

#include "playlist/saveOrOpenFile.h"
#include "tests/fakes/instead.h"
#include "tests/unit/pointer.h"
#include "tests/unit/program_fixture.h"

namespace velmora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LoadingTheList : public ProgramFixture {
protected:
    const std::u16string listFile = u"/lists/zkPlayList.m3u";

    void SetUp() override { app.setControl().Path_List = u"/lists"; }

    bool load() { return app.saveOrOpenFile().loadPlayList(); }
    // The paths after loading a file of these bytes.
    Texts loaded(const std::string &bytes) {
        files.addFile(listFile, bytes);
        EXPECT_TRUE(load());
        return paths();
    }
    Texts paths() { return textsOf(app.playList_Form().List1); }
    Texts names() { return textsOf(app.playList_Form().playList_Item); }
    static Texts textsOf(const forms::ListBox &list) {
        Texts texts;
        for (std::int32_t row = 0; row < list.listCount(); ++row)
            texts.push_back(list.list(row));
        return texts;
    }
};

// --- lines ---------------------------------------------------------------------------------------

TEST_F(LoadingTheList, EachLineBecomesARowWithItsStem) {
    EXPECT_THAT(loaded("/m/a.mp3\r\n/m/b.c.ogg\r\n"), ElementsAre(u"/m/a.mp3", u"/m/b.c.ogg"));
    EXPECT_THAT(names(), ElementsAre(u"a", u"b.c"));
}

TEST_F(LoadingTheList, AnEmptyFileLeavesAnEmptyListAndSucceeds) {
    addRowOnly(u"/m/before.mp3");
    EXPECT_THAT(loaded(""), IsEmpty());
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(LoadingTheList, BlankLinesAreSkipped) {
    EXPECT_THAT(loaded("\r\n   \r\n\r\n"), IsEmpty());
    EXPECT_THAT(loaded("\r\n/m/a.mp3\r\n  \r\n/m/b.mp3\r\n"),
                ElementsAre(u"/m/a.mp3", u"/m/b.mp3"));
}

TEST_F(LoadingTheList, ATabIsNoBlank) { EXPECT_THAT(loaded("\t\r\n"), ElementsAre(u"\t")); }

TEST_F(LoadingTheList, LinesEndAtCrAtCrLfAndAtLf) {
    const Texts both{u"/m/a.mp3", u"/m/b.mp3"};
    EXPECT_EQ(loaded("/m/a.mp3\r\n/m/b.mp3\r\n"), both);
    EXPECT_EQ(loaded("/m/a.mp3\r/m/b.mp3\r"), both);
    EXPECT_EQ(loaded("/m/a.mp3\n/m/b.mp3\n"), both);
    EXPECT_EQ(loaded("/m/a.mp3\r\n/m/b.mp3\n"), both);
    EXPECT_EQ(loaded("/m/a.mp3\n\r\n\r/m/b.mp3\r"), both);
}

TEST_F(LoadingTheList, ALastLineWithoutAnEndCounts) {
    EXPECT_THAT(loaded("/m/a.mp3\r\n/m/b.mp3"), ElementsAre(u"/m/a.mp3", u"/m/b.mp3"));
}

TEST_F(LoadingTheList, BlanksAtBothEndsGo) {
    EXPECT_THAT(loaded("  /m/a b.mp3  \r\n"), ElementsAre(u"/m/a b.mp3"));
}

TEST_F(LoadingTheList, QuotesAroundALineGo) {
    EXPECT_THAT(loaded("\"C:\\Music\\a.mp3\"\r\n"), ElementsAre(u"C:\\Music\\a.mp3"));
    EXPECT_THAT(names(), ElementsAre(u"a"));
}

TEST_F(LoadingTheList, EachQuoteGoesByItself) {
    EXPECT_THAT(loaded("\"/m/a.mp3\r\n/m/b.mp3\"\r\n"), ElementsAre(u"/m/a.mp3", u"/m/b.mp3"));
}

TEST_F(LoadingTheList, OnlyOneQuoteGoesAtEachEnd) {
    EXPECT_THAT(loaded("\"\"/m/a.mp3\"\"\r\n"), ElementsAre(u"\"/m/a.mp3\""));
}

TEST_F(LoadingTheList, AQuoteBehindLeadingBlanksStays) {
    EXPECT_THAT(loaded("  \"C:\\Music\\a.mp3\"\r\n"), ElementsAre(u"\"C:\\Music\\a.mp3"));
}

TEST_F(LoadingTheList, AQuoteAheadOfTrailingBlanksStays) {
    EXPECT_THAT(loaded("\"/m/a.mp3\"  \r\n"), ElementsAre(u"/m/a.mp3\""));
}

TEST_F(LoadingTheList, BlanksInsideTheQuotesGoAfterThem) {
    EXPECT_THAT(loaded("\" /m/a.mp3 \"\r\n"), ElementsAre(u"/m/a.mp3"));
}

TEST_F(LoadingTheList, ALineOfQuotesAloneIsAnEmptyEntryOnce) {
    EXPECT_THAT(loaded("\"\r\n\"\"\r\n\"  \"\r\n"), ElementsAre(u""));
    EXPECT_THAT(names(), ElementsAre(u""));
}

TEST_F(LoadingTheList, ALineThatRepeatsAPathIsDropped) {
    EXPECT_THAT(loaded("/m/a.mp3\r\n/m/b.mp3\r\n/m/a.mp3\r\n \"/m/a.mp3\r\n/m/a.mp3  \r\n"),
                ElementsAre(u"/m/a.mp3", u"/m/b.mp3", u"\"/m/a.mp3"));
}

TEST_F(LoadingTheList, TheNextSaveDropsARepeatedLineFromTheFile) {
    loaded("/m/a.mp3\r\n/m/a.mp3\r\n");
    app.saveOrOpenFile().savePlayList();
    EXPECT_EQ(files.contents(listFile), "/m/a.mp3\r\n");
}

TEST_F(LoadingTheList, LettersThatDifferInCaseMakeTwoEntries) {
    EXPECT_THAT(loaded("/m/a.mp3\r\n/m/A.mp3\r\n"), ElementsAre(u"/m/a.mp3", u"/m/A.mp3"));
}

TEST_F(LoadingTheList, ACommentOfAnotherProgramBecomesAnEntry) {
    EXPECT_THAT(loaded("#EXTM3U\r\n#EXTINF:123,Artist - Song\r\n/m/a.mp3\r\n"),
                ElementsAre(u"#EXTM3U", u"#EXTINF:123,Artist - Song", u"/m/a.mp3"));
    EXPECT_THAT(names(), ElementsAre(u"#EXTM3U", u"#EXTINF:123,Artist - Song", u"a"));
}

TEST_F(LoadingTheList, NeitherExistenceNorFormatIsTested) {
    EXPECT_THAT(loaded("/gone/x.jpg\r\nrelative\r\n\x01\x02\r\n"),
                ElementsAre(u"/gone/x.jpg", u"relative", u"\x01\x02"));
}

TEST_F(LoadingTheList, APathWhosePointStandsInAFolderNameHasAnEmptyName) {
    loaded("C:\\m.d\\song\r\n");
    EXPECT_THAT(names(), ElementsAre(u""));
}

// --- encodings -----------------------------------------------------------------------------------

TEST_F(LoadingTheList, AListInUtf8IsReadAsSuch) {
    EXPECT_THAT(loaded("/音乐/晚霞.mp3\r\n"), ElementsAre(u"/音乐/晚霞.mp3"));
}

TEST_F(LoadingTheList, AListOfAChineseWindowsMachineIsReadInItsPage) {
    EXPECT_THAT(loaded("D:\\\xD2\xF4\xC0\xD6\\\xCD\xED\xCF\xBC.mp3\r\n"),
                ElementsAre(u"D:\\音乐\\晚霞.mp3"));
    EXPECT_THAT(names(), ElementsAre(u"晚霞"));
}

TEST_F(LoadingTheList, EachLineDecidesByItself) {
    EXPECT_THAT(loaded("D:\\\xCD\xED\xCF\xBC.mp3\r\n/音乐/晚霞.mp3\r\n"),
                ElementsAre(u"D:\\晚霞.mp3", u"/音乐/晚霞.mp3"));
}

TEST_F(LoadingTheList, ALinuxNameThatIsNoTextKeepsItsBytes) {
    const std::u16string path =
        std::u16string(u"/m/") + char16_t(0xDCCD) + char16_t(0xDCED) + u".mp3";
    EXPECT_THAT(loaded("/m/\xCD\xED.mp3\r\n"), ElementsAre(path));
}

TEST_F(LoadingTheList, QuotesAroundALinuxNameThatIsNoTextDoNotChangeHowItIsRead) {
    const std::u16string path =
        std::u16string(u"/m/") + char16_t(0xDCCD) + char16_t(0xDCED) + u".mp3";
    EXPECT_THAT(loaded("\"/m/\xCD\xED.mp3\"\r\n"), ElementsAre(path));
}

TEST_F(LoadingTheList, AByteOrderMarkIsNotRecognised) {
    EXPECT_THAT(loaded("\xEF\xBB\xBF/m/a.mp3\r\n"), ElementsAre(u"\uFEFF/m/a.mp3"));
}

TEST_F(LoadingTheList, NulAndTheOldEndOfFileCharacterAreData) {
    EXPECT_THAT(loaded(std::string("/m/a\0b.mp3\r\n/m/c\x1A.mp3\r\n/m/d.mp3\r\n", 33)),
                ElementsAre(std::u16string(u"/m/a\0b.mp3", 10), u"/m/c\x1A.mp3", u"/m/d.mp3"));
}

TEST_F(LoadingTheList, BinaryBytesBecomeEntriesAndHarmNothing) {
    std::string bytes;
    for (int i = 0; i < 20'000; ++i)
        bytes += static_cast<char>((i * 7919) >> 3);
    files.addFile(listFile, bytes);
    EXPECT_TRUE(load());
    EXPECT_EQ(app.playList_Form().List1.listCount(), rows());
}

// --- the course of a load ------------------------------------------------------------------------

TEST_F(LoadingTheList, WithoutAFileTheListIsNotTouched) {
    addRowOnly(u"/m/a.mp3");
    EXPECT_FALSE(load());
    EXPECT_THAT(paths(), ElementsAre(u"/m/a.mp3"));
    EXPECT_TRUE(app.playList_Form().playList_Item.enabled());
    EXPECT_EQ(windows.pumps, 1);
}

TEST_F(LoadingTheList, WhatIsNoFileCountsAsNone) {
    addRowOnly(u"/m/a.mp3");
    files.addFolder(listFile);
    EXPECT_FALSE(load());
    files.remove(listFile);
    files.addSpecial(listFile); // a pipe, a device, a link that leads nowhere
    EXPECT_FALSE(load());
    EXPECT_EQ(rows(), 1);
}

TEST_F(LoadingTheList, WithoutAListFolderThereIsNoFile) {
    app.setControl().Path_List.clear();
    files.addFile(u"/zkPlayList.m3u", "/m/a.mp3\r\n");
    EXPECT_FALSE(load());
}

TEST_F(LoadingTheList, EventsArePumpedOnceAtTheStartAndOnceALine) {
    loaded("/m/a.mp3\r\n\r\n/m/a.mp3\r\n");
    EXPECT_EQ(windows.pumps, 4);
}

TEST_F(LoadingTheList, ThePanelIsRepaintedForEachLineThatIsNotBlank) {
    app.playList_Form().show();
    const int before = windows.refreshes;
    loaded("/m/a.mp3\r\n\r\n/m/a.mp3\r\n/m/b.mp3\r\n");
    EXPECT_EQ(windows.refreshes - before, 3);
}

// Notes what stands on the panel at each repaint of it.
class PanelWatch : public fakes::FakeWindows {
public:
    using FakeWindows::FakeWindows;
    Texts painted;
    std::unique_ptr<forms::FormWindow> makeWindow(forms::Form &form) override {
        return std::make_unique<WatchingWindow>(*this, form);
    }

private:
    class WatchingWindow : public fakes::FakeFormWindow {
    public:
        WatchingWindow(PanelWatch &watch, forms::Form &form)
            : FakeFormWindow(watch, form), watch_(watch), form_(form) {}
        void refresh(forms::Control *control) override {
            FakeFormWindow::refresh(control);
            if (auto *list = dynamic_cast<playList_Form *>(&form_); list != nullptr)
                watch_.painted.push_back(list->waitAdd_Show.caption() + u"|" +
                                         list->waitAdd_Title.caption());
        }

    private:
        PanelWatch &watch_;
        forms::Form &form_;
    };
};

TEST(LoadingPanel, HasBothItsTextsByTheTimeItIsRepainted) {
    fakes::FakePlatform fake;
    PanelWatch windows{fake.clock};
    Velmora app{fakes::with(fake.bundle(), {.windows = &windows})};
    app.setControl().Language_Index = 1;
    app.Language_Set().language_Messages();
    app.setControl().Path_List = u"/lists";
    fake.files.addFile(u"/lists/zkPlayList.m3u", "/m/a.mp3\r\n/m/b.mp3\r\n");
    app.playList_Form().show();
    windows.painted.clear();
    EXPECT_TRUE(app.saveOrOpenFile().loadPlayList());
    const std::u16string loading = u"|" + std::u16string(app.Language().msg_Loading_Tracks);
    EXPECT_THAT(windows.painted, ElementsAre(u"/m/a.mp3" + loading, u"/m/b.mp3" + loading));
}

TEST_F(LoadingTheList, ThePanelTellsTheLineWithItsBlanksAndWhatGoesOn) {
    speak(1);
    files.addFile(listFile, "\" /m/a.mp3  \"\r\n/m/b.mp3\r\n");
    playList_Form &form = app.playList_Form();
    files.beforeLine = [&](std::u16string_view, std::size_t line) {
        EXPECT_TRUE(form.waitAdd.visible());
        EXPECT_FALSE(form.playList_Item.enabled());
        if (line == 1) {
            EXPECT_EQ(form.waitAdd_Show.caption(), u" /m/a.mp3  ");
            EXPECT_EQ(form.waitAdd_Title.caption(), app.Language().msg_Loading_Tracks);
        }
    };
    EXPECT_TRUE(load());
    EXPECT_EQ(form.waitAdd_Show.caption(), u"/m/b.mp3");
}

TEST_F(LoadingTheList, AfterwardsThePanelIsHiddenAndTheControlsAreBack) {
    loaded("/m/a.mp3\r\n");
    playList_Form &form = app.playList_Form();
    EXPECT_FALSE(form.waitAdd.visible());
    EXPECT_TRUE(form.playList_Item.enabled());
    EXPECT_TRUE(form.addFile.enabled());
    EXPECT_TRUE(form.afresh_Load.enabled());
    EXPECT_TRUE(app.Main().song_GoTo_List.enabled());
}

TEST_F(LoadingTheList, AnErrorInMidFileKeepsTheLinesSoFarAndGivesTheControlsBack) {
    files.addFile(listFile, "/m/a.mp3\r\n/m/b.mp3\r\n/m/c.mp3\r\n");
    files.failReadAtLine(listFile, 2);
    EXPECT_TRUE(load());
    EXPECT_THAT(paths(), ElementsAre(u"/m/a.mp3", u"/m/b.mp3"));
    EXPECT_FALSE(app.playList_Form().waitAdd.visible());
    EXPECT_TRUE(app.playList_Form().playList_Item.enabled());
}

TEST_F(LoadingTheList, AFileThatMayNotBeReadEmptiesTheListAndSucceeds) {
    addRowOnly(u"/m/a.mp3");
    files.addFile(listFile, "/m/b.mp3\r\n");
    files.setUnreadable(listFile);
    EXPECT_TRUE(load());
    EXPECT_EQ(rows(), 0);
    EXPECT_TRUE(app.playList_Form().playList_Item.enabled());
}

TEST_F(LoadingTheList, AFullListTakesNoFurtherLineAndReadsNoFurther) {
    std::string bytes;
    for (int row = 0; row < 40'000; ++row)
        bytes += "/m/" + std::to_string(row) + ".mp3\r\n";
    files.addFile(listFile, bytes);
    std::size_t lastLine = 0;
    files.beforeLine = [&](std::u16string_view, std::size_t line) { lastLine = line; };
    EXPECT_TRUE(load());
    EXPECT_EQ(rows(), 32'767);
    EXPECT_EQ(app.playList_Form().List1.listCount(), 32'767);
    EXPECT_EQ(lastLine, 32'767U);
    EXPECT_TRUE(app.playList_Form().playList_Item.enabled());
}

TEST_F(LoadingTheList, TheListIsReplacedNotExtended) {
    addRowOnly(u"/m/old.mp3");
    EXPECT_THAT(loaded("/m/new.mp3\r\n"), ElementsAre(u"/m/new.mp3"));
    EXPECT_THAT(names(), ElementsAre(u"new"));
}

TEST_F(LoadingTheList, ReadingAgainForgetsANameThatDiffersFromTheStem) {
    addRowOnly(u"/m/Hello.mp3");
    app.playList_Form().playList_Item.setList(0, u"01.Hello");
    files.addFolder(u"/lists");
    app.saveOrOpenFile().savePlayList();
    app.playList_Form().afresh_Load_Click();
    EXPECT_THAT(names(), ElementsAre(u"Hello"));
}

TEST_F(LoadingTheList, TheImageReadsTheFileAgain) {
    files.addFile(listFile, "/m/a.mp3\r\n");
    clickOn(app.playList_Form().afresh_Load);
    EXPECT_THAT(paths(), ElementsAre(u"/m/a.mp3"));
}

TEST_F(LoadingTheList, APumpInMidLoadThatEndsTheProgramLeavesTheFileWhole) {
    files.addFile(listFile, "/m/a.mp3\r\n/m/b.mp3\r\n");
    files.beforeLine = [&](std::u16string_view, std::size_t line) {
        if (line == 1)
            fake.processes.end(0);
    };
    EXPECT_THROW(load(), fakes::ProcessEnded);
    EXPECT_EQ(files.contents(listFile), "/m/a.mp3\r\n/m/b.mp3\r\n");
}

TEST_F(LoadingTheList, TheListIsReadAtTheStart) {
    files.addFile(u"/home/user/.local/share/velmora/Program Files/Norvane软件/Velmora/List/"
                  u"zkPlayList.m3u",
                  "/m/a.mp3\r\n");
    start();
    EXPECT_THAT(paths(), ElementsAre(u"/m/a.mp3"));
}

} // namespace
} // namespace velmora
