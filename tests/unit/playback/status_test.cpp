// The state of the medium, and what follows the end of a track.

#include "tests/unit/program_fixture.h"

#include "lyrics/lrcForm.h"

namespace velmora {
namespace {

constexpr auto modeQuery = u"status NOWMUSIC mode";

class Status : public ProgramFixture {
protected:
    Status() {
        setVolumeBar(0);
        for (const char16_t *path : {u"/m/a.mp3", u"/m/b.mp3", u"/m/c.mp3"})
            addRow(path);
        app.player().nowPlay_Index = 1;
        openAndPlay(u"/m/a.mp3");
    }
    void answer(std::u16string text) { media.answerOnce(modeQuery, {0, std::move(text)}); }
};

TEST_F(Status, IsAskedWithABufferOf255) {
    media.clearCommands();
    app.player().get_PlayStatus();
    EXPECT_EQ(media.commands(), (std::vector<fakes::FakeMedia::Command>{{modeQuery, 255}}));
}

TEST_F(Status, IsPlayingByTheBeginningInEnglishOrChinese) {
    for (const char16_t *text : {u"playing", u"playing fast", u"播放", u"播放中"}) {
        answer(text);
        EXPECT_EQ(app.player().get_PlayStatus(), 3);
    }
}

TEST_F(Status, IsOtherForAnyTextThatIsNeither) {
    for (const char16_t *text :
         {u"paused", u"seeking", u"not ready", u"", u"Playing", u"play", u"stop", u"播", u"暂停"}) {
        answer(text);
        EXPECT_EQ(app.player().get_PlayStatus(), 2);
    }
}

TEST_F(Status, IsOtherWithNothingOpen) {
    app.player().close_Sub(0);
    EXPECT_EQ(app.player().get_PlayStatus(), 2);
}

TEST_F(Status, OfAnEndedTrackIs0AndTheNextOnePlays) {
    media.reachEnd();
    EXPECT_EQ(app.player().get_PlayStatus(), 0);
    EXPECT_EQ(media.openPath(), u"/m/b.mp3");
    EXPECT_EQ(media.mode(), u"playing");
    EXPECT_EQ(app.player().nowPlay_Index, 2);
}

TEST_F(Status, OfAnEndedTrackToldInChineseIsTheSame) {
    answer(u"停止");
    EXPECT_EQ(app.player().get_PlayStatus(), 0);
    EXPECT_EQ(media.openPath(), u"/m/b.mp3");
}

TEST_F(Status, OfAnEndedTrackWithoutAutoPlayIs1AndNothingHappens) {
    app.setControl().isAutoPlay = 1;
    media.reachEnd();
    media.clearCommands();
    EXPECT_EQ(app.player().get_PlayStatus(), 1);
    EXPECT_EQ(media.texts(), Texts{modeQuery});
    EXPECT_EQ(app.player().nowPlay_File, u"/m/a.mp3");
}

TEST_F(Status, OfAnEndedTrackIs0AndNothingHappensWhileTheLyricEditorIsOpen) {
    app.player().isDoLrc_Open = -1;
    media.reachEnd();
    media.clearCommands();
    EXPECT_EQ(app.player().get_PlayStatus(), 0);
    EXPECT_EQ(media.texts(), Texts{modeQuery});
}

TEST_F(Status, WithoutAutoPlayIs1EvenWithTheLyricEditorOpen) {
    app.setControl().isAutoPlay = 1;
    app.player().isDoLrc_Open = -1;
    media.reachEnd();
    EXPECT_EQ(app.player().get_PlayStatus(), 1);
}

TEST_F(Status, InRepeatClosesAndReopensTheSameTrack) {
    app.setControl().PlayMode = 2;
    media.reachEnd();
    media.clearCommands();
    EXPECT_EQ(app.player().get_PlayStatus(), 0);
    EXPECT_EQ(media.actions(),
              (Texts{u"close NOWMUSIC", u"close NOWMUSIC",
                     u"open /m/a.mp3 type MPEGVideo alias NOWMUSIC style child ",
                     u"set NOWMUSIC time format milliseconds", u"setaudio NOWMUSIC volume to 0",
                     u"play NOWMUSIC", u"setaudio NOWMUSIC volume to 0",
                     u"setaudio  NOWMUSIC source to stereo"}));
    EXPECT_EQ(media.positionMs(), 0);
    EXPECT_EQ(app.player().nowPlay_Index, 1);
}

TEST_F(Status, InRandomDrawsATrackButNeverTheLast) {
    app.setControl().PlayMode = 1;
    media.reachEnd();
    EXPECT_EQ(app.player().get_PlayStatus(), 0);
    EXPECT_GE(app.player().nowPlay_Index, 1);
    EXPECT_LE(app.player().nowPlay_Index, 2);
}

TEST_F(Status, InRandomOpensOneTrackAlone) {
    app.setControl().PlayMode = 1;
    app.playList_Form().playList_Item.removeItem(2);
    app.playList_Form().List1.removeItem(2);
    app.player().nowPlay_Index = 2;
    media.reachEnd();
    media.clearCommands();
    EXPECT_EQ(app.player().get_PlayStatus(), 0);
    EXPECT_EQ(app.player().nowPlay_Index, 1);
    EXPECT_EQ(app.player().nowPlay_File, u"/m/a.mp3");
    const Texts sent = media.actions();
    EXPECT_EQ(std::count_if(sent.begin(), sent.end(),
                            [](const std::u16string &text) { return startsWith(text, u"open "); }),
              1);
}

TEST_F(Status, InRepeatTheLyricGoesWithItsTrackThoughThatOpensNoMore) {
    app.setControl().PlayMode = 2;
    app.lrcForm().List1.addItem(u"[00:01]words");
    media.reachEnd();
    files.remove(u"/m/a.mp3");
    EXPECT_EQ(app.player().get_PlayStatus(), 0);
    EXPECT_EQ(app.lrcForm().List1.listCount(), 0);
}

TEST_F(Status, OfAnUnknownPlayModeFollowsNothing) {
    app.setControl().PlayMode = 7;
    media.reachEnd();
    media.clearCommands();
    EXPECT_EQ(app.player().get_PlayStatus(), 0);
    EXPECT_EQ(media.texts(), Texts{modeQuery});
}

TEST_F(Status, IsNeverCached) {
    media.clearCommands();
    app.player().get_PlayStatus();
    app.player().get_PlayStatus();
    EXPECT_EQ(media.count(modeQuery), 2U);
}

TEST_F(Status, OfAnEndFollowedByAFailingTrackTriesNoFurtherOne) {
    media.removeMedium(u"/m/b.mp3");
    media.reachEnd();
    EXPECT_EQ(app.player().get_PlayStatus(), 0);
    EXPECT_FALSE(media.isOpen());
    media.clearCommands();
    tickMain();
    EXPECT_TRUE(media.actions().empty());
    EXPECT_EQ(app.player().nowPlay_Index, 2);
}

// --- the order of tracks -------------------------------------------------------------------------

using Order = Status;

TEST_F(Order, NextGrowsAndWrapsAtTheEnd) {
    app.player().next_Sub(1);
    EXPECT_EQ(app.player().nowPlay_Index, 2);
    app.player().next_Sub(1);
    EXPECT_EQ(media.openPath(), u"/m/c.mp3");
    app.player().next_Sub(1);
    EXPECT_EQ(app.player().nowPlay_Index, 1);
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
}

TEST_F(Order, NextFromBeyondTheListWraps) {
    app.player().nowPlay_Index = 9;
    app.player().next_Sub(1);
    EXPECT_EQ(app.player().nowPlay_Index, 1);
}

TEST_F(Order, PreviousFallsAndStaysAtTheFirst) {
    app.player().nowPlay_Index = 3;
    app.player().next_Sub(2);
    EXPECT_EQ(media.openPath(), u"/m/b.mp3");
    app.player().next_Sub(2);
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
    media.clearCommands();
    app.player().next_Sub(2);
    EXPECT_EQ(app.player().nowPlay_Index, 1);
    EXPECT_EQ(media.count(u"open /m/a.mp3 type MPEGVideo alias NOWMUSIC style child "), 1U);
}

TEST_F(Order, PreviousFromOneBeyondTheListIsTheLastTrack) {
    app.player().nowPlay_Index = 4;
    app.player().next_Sub(2);
    EXPECT_EQ(app.player().nowPlay_Index, 3);
}

TEST_F(Order, PreviousFromFarBeyondTheListIsTheFirstTrack) {
    app.player().nowPlay_Index = 5;
    app.player().next_Sub(2);
    EXPECT_EQ(app.player().nowPlay_Index, 1);
}

TEST_F(Order, NextInAnEmptyListSets1AndPlaysWhatIsOpen) {
    app.playList_Form().playList_Item.clear();
    app.playList_Form().List1.clear();
    app.player().nowPlay_Index = 3;
    media.clearCommands();
    app.player().next_Sub(1);
    EXPECT_EQ(app.player().nowPlay_Index, 1);
    EXPECT_EQ(media.actions().front(), u"setaudio NOWMUSIC volume to 0");
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
}

TEST_F(Order, PreviousInAnEmptyListDoesNothing) {
    app.playList_Form().playList_Item.clear();
    app.playList_Form().List1.clear();
    media.clearCommands();
    for (const std::int16_t index : {0, 1, 2, 5}) {
        app.player().nowPlay_Index = index;
        app.player().next_Sub(2);
        EXPECT_EQ(app.player().nowPlay_Index, index);
    }
    EXPECT_TRUE(media.commands().empty());
}

TEST_F(Order, AnyOtherDirectionDoesNothing) {
    media.clearCommands();
    for (const std::int16_t direction : {0, 4, -1})
        app.player().next_Sub(direction);
    EXPECT_TRUE(media.commands().empty());
    EXPECT_EQ(app.player().nowPlay_Index, 1);
}

TEST_F(Order, WithTheLyricEditorOpenEachDirectionRestartsTheSameFile) {
    app.player().isDoLrc_Open = -1;
    for (const std::int16_t direction : {1, 2, 3, 9}) {
        media.advance(1000);
        app.player().next_Sub(direction);
        EXPECT_EQ(media.openPath(), u"/m/a.mp3");
        EXPECT_EQ(media.positionMs(), 0);
        EXPECT_EQ(media.mode(), u"playing");
        EXPECT_EQ(app.player().nowPlay_Index, 1);
    }
}

TEST_F(Order, ARowWhoseFileIsGoneKeepsTheOldMediumPlaying) {
    addRowOnly(u"/m/gone.mp3");
    app.player().nowPlay_Index = 3;
    media.advance(2000);
    app.player().next_Sub(1);
    EXPECT_EQ(app.player().nowPlay_Index, 4);
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
    EXPECT_EQ(media.positionMs(), 2000);
}

TEST_F(Order, RandomOverFiveRowsDrawsEachOfTheFirstFour) {
    addRow(u"/m/d.mp3");
    addRow(u"/m/e.mp3");
    std::map<std::int16_t, int> drawn;
    for (int draw = 0; draw < 400; ++draw) {
        fake.clock.advance(137);
        app.player().next_Sub(3);
        ++drawn[app.player().nowPlay_Index];
    }
    ASSERT_EQ(drawn.size(), 4U);
    for (const auto &[index, times] : drawn) {
        EXPECT_GE(index, 1);
        EXPECT_LE(index, 4);
        EXPECT_GT(times, 50) << index;
    }
}

TEST_F(Order, RandomOverOneRowIsThatRow) {
    app.playList_Form().playList_Item.clear();
    app.playList_Form().List1.clear();
    addRow(u"/m/a.mp3");
    app.player().next_Sub(3);
    EXPECT_EQ(app.player().nowPlay_Index, 1);
}

TEST_F(Order, RandomOverAnEmptyListOpensNothing) {
    app.playList_Form().playList_Item.clear();
    app.playList_Form().List1.clear();
    app.player().next_Sub(3);
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
}

TEST_F(Order, RandomIsReseededFromTheClockAtEachCall) {
    addRow(u"/m/d.mp3");
    addRow(u"/m/e.mp3");
    const auto at = [&](double seconds) {
        fake.clock.sinceMidnight = seconds;
        app.player().next_Sub(3);
        return app.player().nowPlay_Index;
    };
    const auto first = at(1000);
    for (double seconds = 2000; seconds < 2010; ++seconds)
        at(seconds);
    EXPECT_EQ(at(1000), first);
}

// --- the end of a track inside a pump ------------------------------------------------------------

TEST_F(Order, ATrackThatEndsInsideAFadeIsFollowedFromWithinThePump) {
    setVolumeBar(12);
    windows.atNextPump([&] {
        media.reachEnd();
        tickMain();
    });
    openAndPlay(u"/m/b.mp3");
    // The tick found the end of b by the list's counting, which stood at 1.
    EXPECT_EQ(app.player().nowPlay_Index, 2);
    EXPECT_EQ(media.openPath(), u"/m/b.mp3");
    EXPECT_EQ(media.mode(), u"playing");
    EXPECT_EQ(media.volume(), 12);
}

} // namespace
} // namespace velmora
