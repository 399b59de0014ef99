// Opening a medium: the commands in their order, and what else an open does.

#include "tests/unit/program_fixture.h"

#include "lyrics/lrcForm.h"
#include "playback/VideoScreen_Form.h"
#include "playback/miniForm.h"
#include "playlist/another_PlayInfo_Form.h"
#include "playlist/playInfo_Form.h"

namespace velmora {
namespace {

using Opening = ProgramFixture;

constexpr auto closeCommand = u"close NOWMUSIC";
constexpr auto timeFormat = u"set NOWMUSIC time format milliseconds";

TEST_F(Opening, SendsCloseOpenAndTimeFormatInThisOrder) {
    addTrack(u"/music/a.mp3");
    EXPECT_EQ(app.player().open_File(u"/music/a.mp3"), -1);
    EXPECT_EQ(media.actions(),
              (Texts{closeCommand, u"open /music/a.mp3 type MPEGVideo alias NOWMUSIC style child ",
                     timeFormat}));
}

TEST_F(Opening, PassesNoBufferForCommandsWithoutAnAnswer) {
    addTrack(u"/music/a.mp3");
    app.player().open_File(u"/music/a.mp3");
    for (const auto &command : media.commands())
        EXPECT_EQ(command.returnSize, 0) << toUtf8(command.text);
}

TEST_F(Opening, SendsTheShortPathAndKeepsTheLongOne) {
    const auto path = addTrack(u"/music/my song.wav");
    app.player().open_File(path);
    EXPECT_EQ(media.actions()[1], u"open /music/my%20song.wav type Waveaudio alias NOWMUSIC");
    EXPECT_EQ(app.player().nowPlay_File, path);
}

TEST_F(Opening, AddsNoWindowClauseForADeviceWithoutPictures) {
    addTrack(u"/music/a.mid");
    app.player().open_File(u"/music/a.mid");
    EXPECT_EQ(media.actions()[1], u"open /music/a.mid type Sequencer alias NOWMUSIC");
}

TEST_F(Opening, AddsTheClauseOfTheEnginesOwnWindowForBothDevicesWithPictures) {
    app.player().open_File(addTrack(u"/music/a.wmx"));
    EXPECT_EQ(media.actions()[1], u"open /music/a.wmx type MPEGVideo2 alias NOWMUSIC style child ");
}

TEST_F(Opening, AddsNoClauseAndPutsNothingForAnUnknownKindOfWindow) {
    app.setControl().VideoInterface = 2;
    app.player().open_File(addTrack(u"/music/a.avi"));
    EXPECT_EQ(
        media.texts(),
        (Texts{closeCommand, u"open /music/a.avi type MPEGVideo alias NOWMUSIC", timeFormat}));
}

TEST_F(Opening, SelectsTheRowAheadOfTheTitleThatNamesIt) {
    addRow(u"/music/a.mp3");
    addRow(u"/music/b.mp3");
    app.playList_Form().playList_Item.setSelected(0, true);
    app.player().open_File(u"/music/b.mp3");
    EXPECT_EQ(app.player().nowPlay_Title, u"〖2/2〗 b");
    EXPECT_FALSE(app.playList_Form().playList_Item.selected(0));
}

TEST_F(Opening, OfAMissingFileLeavesTheOldMediumOpen) {
    openAndPlay(addTrack(u"/music/a.mp3"));
    const auto title = app.player().nowPlay_Title;
    media.clearCommands();
    EXPECT_EQ(app.player().open_File(u"/music/gone.mp3"), 0);
    EXPECT_TRUE(media.commands().empty());
    EXPECT_TRUE(media.isOpen());
    EXPECT_EQ(app.player().nowPlay_File, u"/music/a.mp3");
    EXPECT_EQ(app.player().nowPlay_Title, title);
}

TEST_F(Opening, OfAnEmptyPathDoesNothing) {
    EXPECT_EQ(app.player().open_File(u""), 0);
    EXPECT_TRUE(media.commands().empty());
}

TEST_F(Opening, OfAFolderOrAPipeCountsAsMissing) {
    files.addFolder(u"/music/folder.mp3");
    files.addSpecial(u"/music/pipe.mp3");
    EXPECT_EQ(app.player().open_File(u"/music/folder.mp3"), 0);
    EXPECT_EQ(app.player().open_File(u"/music/pipe.mp3"), 0);
    EXPECT_TRUE(media.commands().empty());
}

TEST_F(Opening, OfAMissingFileThenPlayGoesOnWithTheOldMedium) {
    openAndPlay(addTrack(u"/music/a.mp3"));
    media.advance(5000);
    openAndPlay(u"/music/gone.mp3");
    EXPECT_EQ(media.openPath(), u"/music/a.mp3");
    EXPECT_EQ(media.mode(), u"playing");
    EXPECT_EQ(media.positionMs(), 5000);
}

TEST_F(Opening, OfANameThatDiffersInCaseAloneOpensTheFileAsItLiesOnTheDisk) {
    openAndPlay(addTrack(u"/music/old.mp3"));
    addTrack(u"/music/Song One.MP3");
    addRowOnly(u"/music/song one.mp3");
    EXPECT_EQ(app.player().open_File(u"/music/song one.mp3"), -1);
    EXPECT_EQ(media.openPath(), u"/music/Song%20One.MP3");
    // The row and the last played file keep their own text.
    EXPECT_EQ(app.player().nowPlay_File, u"/music/song one.mp3");
    EXPECT_EQ(app.setControl().get_LastPlayFile(), u"/music/song one.mp3");
    EXPECT_TRUE(app.playList_Form().playList_Item.selected(0));
    EXPECT_EQ(app.player().nowPlay_Title, u"〖1/1〗 song one");
}

TEST_F(Opening, PrefersTheExactNameToOneInAnotherCase) {
    addTrack(u"/music/SONG.mp3");
    addTrack(u"/music/song.mp3");
    app.player().open_File(u"/music/song.mp3");
    EXPECT_EQ(media.openPath(), u"/music/song.mp3");
}

TEST_F(Opening, RemembersTheFileForTheNextStart) {
    addTrack(u"/music/a.mp3");
    app.player().open_File(u"/music/a.mp3");
    EXPECT_EQ(app.setControl().get_LastPlayFile(), u"/music/a.mp3");
}

TEST_F(Opening, BringsTheStoppedLookFirst) {
    speak(1);
    addTrack(u"/music/a.mp3");
    app.Main().play_Time.setCaption(u"00:00:07 - 00:00:09");
    app.lrcForm().nowLrcLine = u"old line";
    app.player().open_File(u"/music/a.mp3");
    EXPECT_EQ(app.Main().play_Time.caption(), u"00:00:00 - 00:00:00");
    EXPECT_EQ(app.lrcForm().nowLrcLine, u"");
}

TEST_F(Opening, KeepsMiniWindowAndDesktopLineOnTop) {
    addTrack(u"/music/a.mp3");
    app.miniForm();
    app.lrcForm();
    windows.positionings.clear();
    app.player().open_File(u"/music/a.mp3");
    using P = fakes::FakeWindows::Positioning;
    EXPECT_EQ(windows.positionings, (std::vector<P>{{"miniForm", -1, 3}, {"lrcForm", -1, 3}}));
}

TEST_F(Opening, TellsTheTitleInTheTrayTip) {
    addTrack(u"/music/a.mp3");
    app.player().open_File(u"/music/a.mp3");
    ASSERT_FALSE(windows.trayCalls.empty());
    const auto &tip = windows.trayCalls.back();
    EXPECT_EQ(tip.operation, platform::NIM_MODIFY);
    EXPECT_EQ(tip.data.flags, platform::NIF_TIP);
    EXPECT_EQ(tip.data.tip, app.Main().title.caption() + u"\r\n" + u"a");
}

// --- a refused open ------------------------------------------------------------------------------

TEST_F(Opening, ThatTheEngineRefusesClosesTheOldMediumAndKeepsTheOldTitle) {
    openAndPlay(addTrack(u"/music/a.mp3"));
    files.addFile(u"/music/broken.mp3", "no sound");
    EXPECT_EQ(app.player().open_File(u"/music/broken.mp3"), 0);
    EXPECT_FALSE(media.isOpen());
    EXPECT_EQ(app.player().nowPlay_File, u"/music/broken.mp3");
    EXPECT_EQ(app.setControl().get_LastPlayFile(), u"/music/broken.mp3");
    EXPECT_EQ(app.player().nowPlay_Title, u"a");
}

TEST_F(Opening, ThatTheEngineRefusesStillSendsTheTimeFormat) {
    files.addFile(u"/music/broken.mp3");
    app.player().open_File(u"/music/broken.mp3");
    EXPECT_EQ(media.actions().back(), timeFormat);
}

TEST_F(Opening, ThatTheEngineRefusesStillRunsTagPrefixAndTip) {
    addRowOnly(u"/music/other.mp3");
    addRowOnly(u"/music/broken.mp3");
    std::string tagged(200, 'x');
    std::string tag(128, '\0');
    tag.replace(0, 3, "TAG");
    tag.replace(3, 4, "Song");
    tag.replace(33, 4, "Band");
    files.addFile(u"/music/broken.mp3", tagged + tag);
    app.player().open_File(u"/music/broken.mp3");
    EXPECT_EQ(app.player().nowPlay_Title, u"〖2/2〗 Band -- Song");
    EXPECT_EQ(windows.trayCalls.back().data.tip,
              app.Main().title.caption() + u"\r\n〖2/2〗 Band -- Song");
}

TEST_F(Opening, ThatTheEngineRefusesPutsThePrefixAheadOfTheOldTitle) {
    addRow(u"/music/a.mp3");
    addRowOnly(u"/music/broken.mp3");
    files.addFile(u"/music/broken.mp3");
    app.player().open_File(u"/music/a.mp3");
    app.player().open_File(u"/music/broken.mp3");
    EXPECT_EQ(app.player().nowPlay_Title, u"〖2/2〗 〖1/2〗 a");
}

TEST_F(Opening, EndsWithTheResultReachedWhenAnErrorIsRaisedAfterTheEngineOpened) {
    addTrack(u"/music/a.mp3");
    app.playInfo_Form();
    // The facts of the file are asked for ahead of the open command.
    files.failNext("FileLen");
    EXPECT_EQ(app.player().open_File(u"/music/a.mp3"), 0);
    EXPECT_FALSE(media.isOpen());
    EXPECT_EQ(app.player().nowPlay_File, u"/music/a.mp3");
    EXPECT_EQ(app.setControl().get_LastPlayFile(), u"/music/a.mp3");
}

// --- the RealPlayer family -----------------------------------------------------------------------

class OpeningRealPlayerKind : public ProgramFixture,
                              public ::testing::WithParamInterface<const char16_t *> {};

TEST_P(OpeningRealPlayerKind, ClosesTheOldMediumAndOpensNothing) {
    openAndPlay(addTrack(u"/music/a.mp3"));
    const auto path = addTrack(u"/music/film." + std::u16string(GetParam()));
    media.clearCommands();
    EXPECT_EQ(app.player().open_File(path), 0);
    EXPECT_EQ(media.actions(), Texts{closeCommand});
    EXPECT_FALSE(media.isOpen());
    EXPECT_EQ(app.player().media_Kind, 4);
    EXPECT_EQ(app.player().nowPlay_File, u"/music/a.mp3");
    EXPECT_EQ(app.setControl().get_LastPlayFile(), u"/music/a.mp3");
}

INSTANTIATE_TEST_SUITE_P(Extensions, OpeningRealPlayerKind,
                         ::testing::Values(u"rm", u"RAM", u"ra", u"rmvb"));

TEST_F(Opening, OfARealPlayerFileThenPlayBringsTheStoppedLook) {
    speak(1);
    openAndPlay(addTrack(u"/music/a.mp3"));
    app.Main().playInfo_Show.setCaption(u"something");
    openAndPlay(addTrack(u"/music/film.rm"));
    EXPECT_EQ(app.Main().playInfo_Show.caption(), u"Welcome to Velmora");
    EXPECT_FALSE(app.lrcForm().Timer1.running());
}

// --- the device by the extension -----------------------------------------------------------------

struct DeviceCase {
    const char16_t *path;
    const char16_t *device;
};

class DeviceByExtension : public ProgramFixture,
                          public ::testing::WithParamInterface<DeviceCase> {};

TEST_P(DeviceByExtension, IsTheTablesRow) {
    EXPECT_EQ(app.player().get_DeviceType(GetParam().path), GetParam().device);
}

INSTANTIATE_TEST_SUITE_P(
    Table, DeviceByExtension,
    ::testing::Values(
        DeviceCase{u"/m/a.mid", u"Sequencer"}, DeviceCase{u"/m/a.RMI", u"Sequencer"},
        DeviceCase{u"/m/a.idi", u"Sequencer"}, DeviceCase{u"/m/a.wav", u"Waveaudio"},
        DeviceCase{u"/m/a.asx", u"MPEGVideo2"}, DeviceCase{u"/m/a.ivf", u"MPEGVideo2"},
        DeviceCase{u"/m/a.lsf", u"MPEGVideo2"}, DeviceCase{u"/m/a.lsx", u"MPEGVideo2"},
        DeviceCase{u"/m/a.p2v", u"MPEGVideo2"}, DeviceCase{u"/m/a.wax", u"MPEGVideo2"},
        DeviceCase{u"/m/a.wvx", u"MPEGVideo2"}, DeviceCase{u"/m/a.wmx", u"MPEGVideo2"},
        DeviceCase{u"/m/a.wmp", u"MPEGVideo2"}, DeviceCase{u"/m/a.rm", u"RealPlayer"},
        DeviceCase{u"/m/a.ram", u"RealPlayer"}, DeviceCase{u"/m/a.ra", u"RealPlayer"},
        DeviceCase{u"/m/a.rmvb", u"RealPlayer"}, DeviceCase{u"/m/a.mp3", u"MPEGVideo"},
        DeviceCase{u"/m/a.wma", u"MPEGVideo"}, DeviceCase{u"/m/a.avi", u"MPEGVideo"},
        DeviceCase{u"/m/a.mpg", u"MPEGVideo"}));

INSTANTIATE_TEST_SUITE_P(
    EdgeCases, DeviceByExtension,
    ::testing::Values(DeviceCase{u"/m/a.wm", u"MPEGVideo"}, DeviceCase{u"/m/a.x.wm", u"MPEGVideo"},
                      DeviceCase{u"/m/a.midi", u"MPEGVideo"},
                      DeviceCase{u"/m/a.wave", u"MPEGVideo"}, DeviceCase{u"/m/plain", u"MPEGVideo"},
                      DeviceCase{u"/m/ends.", u"MPEGVideo"},
                      DeviceCase{u"/m.rm/plain", u"MPEGVideo"}, DeviceCase{u"", u"MPEGVideo"}));

// --- closing -------------------------------------------------------------------------------------

using Closing = ProgramFixture;

TEST_F(Closing, AnswersWhetherTheEngineHadSomethingOpen) {
    app.player().open_File(addTrack(u"/music/a.mp3"));
    EXPECT_EQ(app.player().close_Sub(0), -1);
    EXPECT_EQ(app.player().close_Sub(0), 0);
}

TEST_F(Closing, InFullResetsWhatTheWindowsKeepForAMedium) {
    openAndPlay(addTrack(u"/music/a.mp3"));
    app.lrcForm().List1.addItem(u"[00:01.00]line");
    app.Main().videoScreen_Button.setVisible(true);
    app.VideoScreen_Form();
    windows.flashes.clear();
    app.player().close_Sub(0);
    EXPECT_FALSE(app.lrcForm().Timer1.running());
    EXPECT_EQ(app.lrcForm().List1.listCount(), 0);
    EXPECT_FALSE(app.Main().videoScreen_Button.visible());
    EXPECT_FALSE(app.videoScreenLoaded());
    EXPECT_EQ(app.Main().flash_Request, -1);
    EXPECT_EQ(windows.flashes, std::vector<std::string>{"Main"});
    EXPECT_EQ(windows.trayCalls.back().data.tip, app.Main().title.caption());
}

TEST_F(Closing, BareOnlySendsTheCommand) {
    openAndPlay(addTrack(u"/music/a.mp3"));
    const auto trayCalls = windows.trayCalls.size();
    media.clearCommands();
    EXPECT_EQ(app.player().close_Sub(-1), -1);
    EXPECT_EQ(media.texts(), Texts{closeCommand});
    EXPECT_TRUE(app.lrcForm().Timer1.running());
    EXPECT_EQ(windows.trayCalls.size(), trayCalls);
}

TEST_F(Closing, KeepsTheFileForThePlayButton) {
    openAndPlay(addTrack(u"/music/a.mp3"));
    app.player().close_Sub(0);
    EXPECT_EQ(app.player().nowPlay_File, u"/music/a.mp3");
}

} // namespace
} // namespace velmora
