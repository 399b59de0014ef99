// Playing: commands in order, the fade-in, the channel, seeking.

#include "tests/unit/program_fixture.h"

#include "base/numbers.h"
#include "lyrics/lrcForm.h"
#include "playback/VideoScreen_Form.h"

namespace velmora {
namespace {

std::u16string volume(std::int32_t level) {
    return u"setaudio NOWMUSIC volume to " + decimal(level);
}

class Playing : public ProgramFixture {
protected:
    Playing() {
        setVolumeBar(0);
        addTrack(u"/music/a.mp3");
        app.player().open_File(u"/music/a.mp3");
        media.clearCommands();
    }
    // The volumes sent, without the silence ahead of "play".
    std::vector<std::int32_t> fade() {
        std::vector<std::int32_t> levels;
        bool playing = false;
        for (const auto &text : media.actions()) {
            playing = playing || text == u"play NOWMUSIC";
            if (playing && startsWith(text, u"setaudio NOWMUSIC volume to "))
                levels.push_back(leadingInt32(text.substr(28)));
        }
        return levels;
    }
};

TEST_F(Playing, IsSilenceThenPlayThenLengthThenFadeThenChannel) {
    EXPECT_EQ(app.player().play_Sub(), -1);
    EXPECT_EQ(media.texts(), (Texts{volume(0), u"play NOWMUSIC", u"status NOWMUSIC length",
                                    volume(0), u"setaudio  NOWMUSIC source to stereo"}));
}

TEST_F(Playing, FadesInStepsOfSixAndEndsExactlyOnTheTarget) {
    setVolumeBar(20);
    app.player().play_Sub();
    EXPECT_EQ(fade(), (std::vector<std::int32_t>{0, 6, 12, 18, 19, 20}));
}

TEST_F(Playing, FadesByTheBarsWholeWidthHoweverSmall) {
    app.Main().Volume_Set_BG.setWidth(1);
    app.Main().Volume_Set.setWidth(1);
    EXPECT_EQ(app.player().play_Sub(), -1);
    EXPECT_EQ(media.volume(), 1000);
}

TEST_F(Playing, FadesToFullVolumeIn171Rounds) {
    setVolumeBar(1000);
    app.player().play_Sub();
    const auto levels = fade();
    EXPECT_EQ(levels.size(), 171U); // 0, 6 .. 996 and 997 .. 1000
    EXPECT_EQ(levels.back(), 1000);
    EXPECT_EQ(levels[166], 996);
    EXPECT_EQ(levels[167], 997);
}

TEST_F(Playing, TakesATargetOfUpToFiveUnitByUnit) {
    setVolumeBar(5);
    app.player().play_Sub();
    EXPECT_EQ(fade(), (std::vector<std::int32_t>{0, 1, 2, 3, 4, 5}));
}

TEST_F(Playing, JumpsFromTheFirstUnitBeyondFive) {
    setVolumeBar(6);
    app.player().play_Sub();
    EXPECT_EQ(fade(), (std::vector<std::int32_t>{0, 6}));
}

TEST_F(Playing, AfterMuteStaysSilent) {
    app.Main().Volume_ICO_Click();
    media.clearCommands();
    app.player().play_Sub();
    EXPECT_EQ(fade(), std::vector<std::int32_t>{0});
}

TEST_F(Playing, RoundsTheTargetHalfToEven) {
    app.Main().Volume_Set_BG.setWidth(2000);
    app.Main().Volume_Set.setWidth(5); // 2.5
    app.player().play_Sub();
    EXPECT_EQ(fade().back(), 2);
}

TEST_F(Playing, FollowsABarThatIsMovedUpDuringTheFade) {
    setVolumeBar(12);
    windows.atNextPump([&] { setVolumeBar(24); });
    app.player().play_Sub();
    EXPECT_EQ(fade(), (std::vector<std::int32_t>{0, 6, 12, 18, 24}));
}

TEST_F(Playing, EndsTheFadeBelowTheOldTargetWhenTheBarIsMovedDown) {
    setVolumeBar(100);
    windows.atNextPump([&] { setVolumeBar(8); });
    app.player().play_Sub();
    EXPECT_EQ(fade(), (std::vector<std::int32_t>{0, 6, 7, 8}));
}

TEST_F(Playing, ReadsBothWidthsAnewInEachRound) {
    setVolumeBar(12);
    windows.atNextPump([&] { app.Main().Volume_Set_BG.setWidth(500); }); // the target doubles
    app.player().play_Sub();
    EXPECT_EQ(fade().back(), 24);
}

TEST_F(Playing, PumpsAndSleepsOneMillisecondInEachRound) {
    setVolumeBar(20);
    const int pumps = windows.pumps;
    const auto begin = fake.clock.steadyTime;
    app.player().play_Sub();
    EXPECT_EQ(fake.clock.steadyTime - begin, 6); // six rounds
    EXPECT_EQ(fake.waitableTimers.waits, 6);
    EXPECT_EQ(windows.pumps - pumps, 12); // the round's own and the sleep's
    EXPECT_EQ(fake.waitableTimers.openTimers(), 0U);
}

TEST_F(Playing, WithNothingOpenBringsTheStoppedLookAndAnswers0) {
    app.player().close_Sub(0);
    app.Main().play_Time.setCaption(u"x");
    media.clearCommands();
    EXPECT_EQ(app.player().play_Sub(), 0);
    EXPECT_EQ(media.texts(), (Texts{volume(0), u"play NOWMUSIC", u"status NOWMUSIC length"}));
    EXPECT_EQ(app.Main().play_Time.caption(), u"00:00:00 - 00:00:00");
    EXPECT_FALSE(app.lrcForm().Timer1.running());
}

TEST_F(Playing, EnablesTheLyricTickAndRestartsTheRollingCaption) {
    app.Main().rotation_Count = 9;
    app.player().play_Sub();
    EXPECT_TRUE(app.lrcForm().Timer1.running());
    EXPECT_EQ(app.Main().rotation_Count, 0);
}

TEST_F(Playing, EnablesTheLyricTickOnlyAfterTheFade) {
    bool duringFade = true;
    windows.atNextPump([&] { duringFade = app.lrcForm().Timer1.running(); });
    app.player().play_Sub();
    EXPECT_FALSE(duringFade);
}

TEST_F(Playing, LooksForTheLyricOnlyAfterTheFade) {
    files.addFile(u"/music/a.lrc", "[00:01.00]line");
    int duringFade = -1;
    windows.atNextPump([&] { duringFade = app.lrcForm().List1.listCount(); });
    app.player().play_Sub();
    EXPECT_EQ(duringFade, 0);
    EXPECT_EQ(app.lrcForm().List1.listCount(), 1);
}

TEST_F(Playing, EndsWithoutATimerFromTheSystemAtOnce) {
    fake.waitableTimers.creationFails = true;
    EXPECT_EQ(app.player().play_Sub(), 0);
    EXPECT_EQ(media.mode(), u"playing");
    EXPECT_FALSE(app.lrcForm().Timer1.running());
}

TEST_F(Playing, EndsAtOnceOnABarWithoutWidth) {
    app.Main().Volume_Set_BG.setWidth(0);
    EXPECT_EQ(app.player().play_Sub(), 0);
    EXPECT_EQ(media.actions(), (Texts{volume(0), u"play NOWMUSIC"}));
}

// --- the channel ---------------------------------------------------------------------------------

struct ChannelCase {
    std::int16_t channel;
    const char16_t *command;
};

class Channel : public Playing, public ::testing::WithParamInterface<ChannelCase> {};

TEST_P(Channel, IsPutBackByThePictureThatShowsInMain) {
    auto &main = app.Main();
    main.AudioSource_H.setVisible(GetParam().channel == 0);
    main.AudioSource_L.setVisible(GetParam().channel == 1);
    main.AudioSource_R.setVisible(GetParam().channel == 2);
    app.player().play_Sub();
    EXPECT_EQ(media.actions().back(), GetParam().command);
    EXPECT_EQ(app.VideoScreen_Form().AudioSource_H.visible(), GetParam().channel == 0);
    EXPECT_EQ(app.VideoScreen_Form().AudioSource_L.visible(), GetParam().channel == 1);
    EXPECT_EQ(app.VideoScreen_Form().AudioSource_R.visible(), GetParam().channel == 2);
}

TEST_F(Playing, PutsBackNoChannelWhereNoPictureShows) {
    auto &main = app.Main();
    for (forms::Image *picture : {&main.AudioSource_H, &main.AudioSource_L, &main.AudioSource_R})
        picture->setVisible(false);
    app.player().play_Sub();
    for (const std::u16string &text : media.texts())
        EXPECT_EQ(text.find(u"source"), std::u16string::npos) << toUtf8(text);
}

INSTANTIATE_TEST_SUITE_P(Channels, Channel,
                         ::testing::Values(ChannelCase{0, u"setaudio  NOWMUSIC source to stereo"},
                                           ChannelCase{1, u"setaudio  NOWMUSIC source to left"},
                                           ChannelCase{2, u"setaudio  NOWMUSIC source to right"}));

TEST_F(Playing, SurvivesAChannelAcrossTwoTracks) {
    app.Main().choose_Channel(2);
    openAndPlay(addTrack(u"/music/b.mp3"));
    EXPECT_EQ(media.source(), u"right");
}

// --- answers of the wrappers ---------------------------------------------------------------------

TEST_F(Playing, WrappersAnswerMinusOneOnSuccess) {
    EXPECT_EQ(app.player().set_Volume(500), -1);
    EXPECT_EQ(app.player().set_AudioSource(1), -1);
    EXPECT_EQ(app.player().pause_Sub(), -1);
    EXPECT_EQ(app.player().seek_To(1000), -1);
}

TEST_F(Playing, WrappersAnswer0WithNothingOpen) {
    app.player().close_Sub(0);
    EXPECT_EQ(app.player().set_Volume(500), 0);
    EXPECT_EQ(app.player().set_AudioSource(1), 0);
    EXPECT_EQ(app.player().pause_Sub(), 0);
    EXPECT_EQ(app.player().seek_To(1000), 0);
}

// --- seeking -------------------------------------------------------------------------------------

TEST_F(Playing, ASeekRepeatsTheWholePlaySequence) {
    app.player().seek_To(30'000);
    EXPECT_EQ(media.texts(), (Texts{u"seek NOWMUSIC to 30000", volume(0), u"play NOWMUSIC",
                                    u"status NOWMUSIC length", volume(0),
                                    u"setaudio  NOWMUSIC source to stereo"}));
}

TEST_F(Playing, ASeekWhilePausedStartsPlay) {
    app.player().play_Sub();
    app.player().pause_Sub();
    app.player().seek_To(20'000);
    EXPECT_EQ(media.mode(), u"playing");
    EXPECT_EQ(media.positionMs(), 20'000);
}

TEST_F(Playing, ASeekThatTheEngineRefusesPlaysNothing) {
    media.clearCommands();
    EXPECT_EQ(app.player().seek_To(60'001), 0);
    EXPECT_EQ(app.player().seek_To(-1), 0);
    EXPECT_EQ(media.texts(), (Texts{u"seek NOWMUSIC to 60001", u"seek NOWMUSIC to -1"}));
}

// --- re-entry ------------------------------------------------------------------------------------

TEST_F(Playing, ASecondSeekRunsWithinTheFirstOnesFade) {
    setVolumeBar(12);
    windows.atNextPump([&] { app.player().seek_To(40'000); });
    app.player().seek_To(10'000);
    EXPECT_EQ(media.actions(),
              (Texts{u"seek NOWMUSIC to 10000", volume(0), u"play NOWMUSIC", volume(0),
                     // the second seek, whole
                     u"seek NOWMUSIC to 40000", volume(0), u"play NOWMUSIC", volume(0), volume(6),
                     volume(12), u"setaudio  NOWMUSIC source to stereo",
                     // the rest of the first one's fade
                     volume(6), volume(12), u"setaudio  NOWMUSIC source to stereo"}));
    EXPECT_EQ(media.positionMs(), 40'000);
}

TEST_F(Playing, AFadeGoesOnAgainstAMediumOpenedInside) {
    setVolumeBar(12);
    addTrack(u"/music/b.mp3");
    windows.atNextPump([&] { openAndPlay(u"/music/b.mp3"); });
    EXPECT_EQ(app.player().play_Sub(), -1);
    EXPECT_EQ(media.openPath(), u"/music/b.mp3");
    const auto actions = media.actions();
    ASSERT_GE(actions.size(), 3U);
    EXPECT_EQ(actions[actions.size() - 3], volume(6));
    EXPECT_EQ(actions[actions.size() - 2], volume(12));
    EXPECT_EQ(media.volume(), 12);
}

TEST_F(Playing, AStopInsideTheFadeLetsItRunOutAgainstNothing) {
    setVolumeBar(12);
    windows.atNextPump([&] { app.Main().stopButton_Click(); });
    EXPECT_EQ(app.player().play_Sub(), 0);
    EXPECT_FALSE(media.isOpen());
    EXPECT_EQ(fade(), (std::vector<std::int32_t>{0, 6, 12}));
}

// Whether the line's timer runs is what tells the play button that a medium is in use.
TEST_F(Playing, AStopInsideTheFadeStaysAStopAndThePlayButtonStartsAgain) {
    files.addFile(u"/music/a.lrc", "[00:00.00]line");
    setVolumeBar(12);
    windows.atNextPump([&] { app.Main().stopButton_Click(); });
    app.player().play_Sub();
    EXPECT_FALSE(app.lrcForm().Timer1.running());
    EXPECT_EQ(app.lrcForm().List1.listCount(), 0);
    app.Main().playButton_Click();
    EXPECT_EQ(media.mode(), u"playing");
    EXPECT_TRUE(app.lrcForm().Timer1.running());
    EXPECT_EQ(app.lrcForm().List1.listCount(), 1);
}

TEST_F(Playing, ATrackThatBeginsInsideTheFadeLooksForItsOwnLyricOnce) {
    setVolumeBar(12);
    addTrack(u"/music/b.mp3");
    files.addFile(u"/music/b.lrc", "[00:01.00]of b");
    windows.atNextPump([&] {
        openAndPlay(u"/music/b.mp3");
        app.Main().rotation_Count = 7;
        app.lrcForm().nowLrcLine = u"of b";
    });
    app.player().play_Sub();
    EXPECT_EQ(app.lrcForm().nowLrcLine, u"of b");
    EXPECT_EQ(app.Main().rotation_Count, 7);
    EXPECT_TRUE(app.lrcForm().Timer1.running());
}

TEST_F(Playing, AClickOnPauseInsideTheFadePauses) {
    setVolumeBar(12);
    windows.atNextPump([&] { app.Main().pauseButton_Click(); });
    app.player().play_Sub();
    EXPECT_EQ(media.mode(), u"paused");
    EXPECT_EQ(media.volume(), 12);
}

TEST_F(Playing, NothingIsSentOnceTheProgramEndedInsideTheFade) {
    setVolumeBar(12);
    windows.atNextPump([&] { app.Main().closeButton_Click(); });
    expectEnd([&] { app.player().play_Sub(); });
    EXPECT_EQ(media.actions(), (Texts{volume(0), u"play NOWMUSIC", volume(0), u"close NOWMUSIC"}));
}

} // namespace
} // namespace velmora
