// The open button: its dialog, and what a picked file does that the list cannot take as it is.

#include "tests/fakes/instead.h"
#include "tests/unit/pointer.h"
#include "tests/unit/program_fixture.h"

#include "playback/miniForm.h"

namespace velmora {
namespace {

class OpenButton : public ProgramFixture {
protected:
    OpenButton() {
        speak(1);
        setVolumeBar(0);
        addRow(u"/m/a.mp3");
        app.setControl().Path_List = u"/lists";
        files.addFolder(u"/lists");
    }
    Main &main() { return app.Main(); }
    forms::ListBox &names() { return app.playList_Form().playList_Item; }
    void press() { clickOn(main().openFile_Button); }
    bool saved() { return files.hasFile(u"/lists/zkPlayList.m3u"); }
};

// Notes whether the windows could be used while the dialog stood.
class WatchingDialogs : public fakes::FakeDialogs {
public:
    std::function<void()> meanwhile;
    bool GetOpenFileNameA(platform::OPENFILENAME &record) override {
        meanwhile();
        return FakeDialogs::GetOpenFileNameA(record);
    }
};

TEST_F(OpenButton, AsksForOneFileWithTheTitleAndFilterOfTheLanguage) {
    fake.dialogs.expectOpen(std::nullopt);
    press();
    ASSERT_EQ(fake.dialogs.files.size(), 1U);
    EXPECT_EQ(fake.dialogs.files[0].title, app.Language().msg_AddMedia_Title);
    EXPECT_EQ(fake.dialogs.files[0].filter, app.Language().msg_Media_Filter);
    EXPECT_EQ(fake.dialogs.files[0].owner, main().hWnd());
}

TEST_F(OpenButton, CancelledGivesBothWindowsBackAndSavesNothing) {
    fake.dialogs.expectOpen(std::nullopt);
    press();
    EXPECT_TRUE(main().enabled());
    EXPECT_TRUE(app.playList_Form().enabled());
    EXPECT_TRUE(media.commands().empty());
    EXPECT_FALSE(saved());
}

TEST_F(OpenButton, AppendsAndPlaysThePickedFileAndForgetsItsPath) {
    fake.dialogs.expectOpen(addTrack(u"/m/new.mp3"));
    press();
    EXPECT_EQ(media.openPath(), u"/m/new.mp3");
    EXPECT_EQ(rows(), 2);
    EXPECT_TRUE(saved());
    EXPECT_EQ(main().chosen_File, u"");
    EXPECT_TRUE(main().enabled());
    EXPECT_TRUE(app.playList_Form().enabled());
}

TEST_F(OpenButton, KeepsThePickedPathWhileTheFileIsTakenIn) {
    fake.dialogs.expectOpen(addTrack(u"/m/new.mp3"));
    std::u16string kept;
    bool usable = true;
    windows.atNextPump([&] {
        kept = main().chosen_File;
        usable = main().enabled() || app.playList_Form().enabled();
    });
    press();
    EXPECT_EQ(kept, u"/m/new.mp3");
    EXPECT_FALSE(usable) << "both windows are disabled until the file plays";
}

TEST_F(OpenButton, OfAFileOfTheListWithoutAStemDoesNothingAtAll) {
    addRow(u"/m.d/song");
    names().setSelected(0, true);
    main().take_Chosen_File(u"/m.d/song");
    EXPECT_TRUE(names().selected(0));
    EXPECT_FALSE(names().selected(1));
    EXPECT_TRUE(media.commands().empty());
    EXPECT_FALSE(saved());
    EXPECT_TRUE(main().enabled());
}

TEST_F(OpenButton, OfAFileWithoutAStemBringsTheStoppedLookOnlyWithNothingOpen) {
    addTrack(u"/m.d/song");
    const auto refused =
        boxOf(app.Language().msg_Bad_Path, platform::MsgBoxIcon::Critical, u"Error");
    main().play_Time.setCaption(u"as it was");
    windows.expectMsgBox(refused, platform::MsgBoxResult::Ok);
    main().take_Chosen_File(u"/m.d/song");
    EXPECT_EQ(main().play_Time.caption(), u"00:00:00 - 00:00:00");

    openAndPlay(u"/m/a.mp3");
    app.player().pause_Sub();
    main().play_Time.setCaption(u"as it was");
    windows.expectMsgBox(refused, platform::MsgBoxResult::Ok);
    main().take_Chosen_File(u"/m.d/song");
    EXPECT_EQ(main().play_Time.caption(), u"as it was");
    EXPECT_EQ(media.mode(), u"paused") << "only a playing medium is closed";
}

TEST_F(OpenButton, OfAFileWithoutAStemClosesAPlayingMediumAllTheSame) {
    addTrack(u"/m.d/song");
    openAndPlay(u"/m/a.mp3");
    windows.expectMsgBox(
        boxOf(app.Language().msg_Bad_Path, platform::MsgBoxIcon::Critical, u"Error"),
        platform::MsgBoxResult::Ok);
    main().take_Chosen_File(u"/m.d/song");
    EXPECT_FALSE(media.isOpen());
}

// --- a list that is full, or nearly --------------------------------------------------------------

class OpenButtonOfALongList : public OpenButton {
protected:
    void fillTo(int count) {
        forms::ListBox &paths = app.playList_Form().List1;
        for (int row = rows(); row < count; ++row) {
            names().addItem(u"x");
            paths.addItem(u"/x");
        }
    }
};

TEST_F(OpenButtonOfALongList, TheLastRowThatFitsIsPlayedAndSaved) {
    fillTo(32766);
    main().take_Chosen_File(addTrack(u"/m/new.mp3"));
    EXPECT_EQ(media.openPath(), u"/m/new.mp3");
    EXPECT_EQ(media.mode(), u"playing");
    EXPECT_EQ(app.player().nowPlay_Index, 32767);
    EXPECT_TRUE(saved());
    app.player().next_Sub(directionNext);
    EXPECT_EQ(app.player().nowPlay_Index, 1) << "as behind any row that was added";
}

TEST_F(OpenButtonOfALongList, AFullListIsReportedAndTheMusicGoesOn) {
    openAndPlay(u"/m/a.mp3");
    fillTo(32767);
    windows.expectMsgBox(
        boxOf(u"Overflow", platform::MsgBoxIcon::Critical, app.Main().title.caption()),
        platform::MsgBoxResult::Ok, [&] { EXPECT_TRUE(main().enabled()); });
    main().take_Chosen_File(addTrack(u"/m/new.mp3"));
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
    EXPECT_EQ(media.mode(), u"playing");
    EXPECT_EQ(rows(), 32767);
    EXPECT_EQ(app.playList_Form().List1.listCount(), 32767);
    EXPECT_EQ(main().chosen_File, u"");
}

TEST_F(OpenButton, TakesTheFileItWasGivenThoughAnotherOneIsTakenMeanwhile) {
    addTrack(u"/m/new.mp3");
    addTrack(u"/m/other.mp3");
    setVolumeBar(10);
    app.player().nowPlay_Index = 1;
    openAndPlay(u"/m/a.mp3");
    media.reachEnd(); // asked how it stands, the player starts the next track: events run
    windows.atNextPump([&] { main().take_Chosen_File(u"/m/other.mp3"); });
    main().take_Chosen_File(u"/m/new.mp3");
    forms::ListBox &paths = app.playList_Form().List1;
    EXPECT_GE(paths.find(u"/m/new.mp3"), 0);
    EXPECT_EQ(paths.find(u""), -1) << "an empty path never exists";
    EXPECT_EQ(app.player().nowPlay_File, u"/m/new.mp3");
}

TEST(OpenButtonDialog, StandsOverDisabledWindows) {
    fakes::FakePlatform fake;
    WatchingDialogs dialogs;
    Velmora app{fakes::with(fake.bundle(), {.dialogs = &dialogs})};
    int asked = 0;
    dialogs.meanwhile = [&] {
        ++asked;
        EXPECT_FALSE(app.Main().enabled());
        EXPECT_FALSE(app.playList_Form().enabled());
    };
    dialogs.expectOpen(std::nullopt);
    clickOn(app.Main().openFile_Button);
    EXPECT_EQ(asked, 1);
}

} // namespace
} // namespace velmora
