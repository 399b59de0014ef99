// What the start does with the saved list and the file that was played last.

#include "tests/unit/playback/start_fixture.h"

namespace velmora {
namespace {

// --- list and last file --------------------------------------------------------------------------

TEST_F(Start, WithoutAListIsIdle) {
    app.start();
    EXPECT_FALSE(media.isOpen());
    EXPECT_EQ(rows(), 0);
    EXPECT_TRUE(app.Main().Timer1.running());
}

TEST_F(Start, ResumesTheLastFileOfTheList) {
    addTrack(u"/m/b.mp3");
    savedList({u"/m/a.mp3", u"/m/b.mp3", u"/m/c.mp3"});
    lastPlayed(u"/m/b.mp3");
    app.start();
    EXPECT_EQ(media.openPath(), u"/m/b.mp3");
    EXPECT_EQ(media.mode(), u"playing");
    EXPECT_EQ(app.player().nowPlay_Index, 2);
    EXPECT_EQ(app.player().nowPlay_Title, u"〖2/3〗 b");
}

TEST_F(Start, CountsTheRowThatItResumesThoughAnotherOneIsChosenInTheFade) {
    addTrack(u"/m/b.mp3");
    savedList({u"/m/a.mp3", u"/m/b.mp3", u"/m/c.mp3"});
    lastPlayed(u"/m/b.mp3");
    windows.onPump = [&] {
        if (media.mode() == u"playing")
            app.playList_Form().playList_Item.setSelected(2, true);
    };
    app.start();
    EXPECT_EQ(app.player().nowPlay_Index, 2);
}

TEST_F(Start, ResumesALastFileThatIsNotInTheListWithIndex0) {
    addTrack(u"/m/other.mp3");
    savedList({u"/m/a.mp3"});
    lastPlayed(u"/m/other.mp3");
    app.start();
    EXPECT_EQ(media.openPath(), u"/m/other.mp3");
    EXPECT_EQ(app.player().nowPlay_Index, 0);
}

TEST_F(Start, PlaysNothingWithAutoPlayOff) {
    addTrack(u"/m/a.mp3");
    savedList({u"/m/a.mp3"});
    lastPlayed(u"/m/a.mp3");
    set(u"isAutoPlay", u"1");
    app.start();
    EXPECT_TRUE(media.actions().empty());
    EXPECT_EQ(rows(), 1);
}

TEST_F(Start, PlaysNothingFromAnEmptyList) {
    addTrack(u"/m/a.mp3");
    savedList({});
    lastPlayed(u"/m/a.mp3");
    app.start();
    EXPECT_TRUE(media.actions().empty());
}

TEST_F(Start, PlaysNothingWithoutAListFile) {
    addTrack(u"/m/a.mp3");
    lastPlayed(u"/m/a.mp3");
    app.start();
    EXPECT_TRUE(media.actions().empty());
}

TEST_F(Start, ResumesNothingWithoutAListFile) {
    lastPlayed(addTrack(u"/m/a.mp3"));
    app.start();
    EXPECT_FALSE(media.isOpen());
    EXPECT_EQ(app.player().nowPlay_File, u"");
}

TEST_F(Start, WithoutALastFileBringsTheStoppedLook) {
    savedList({u"/m/a.mp3"});
    app.Main().play_Time.setCaption(u"as it was");
    app.start();
    EXPECT_TRUE(media.actions().empty());
    EXPECT_EQ(app.Main().play_Time.caption(), u"00:00:00 - 00:00:00");
}

TEST_F(Start, WithALastFileThatIsGoneClosesAndStaysIdleWithoutAMessage) {
    savedList({u"/m/a.mp3"});
    lastPlayed(u"/missing disk/b.mp3");
    app.start();
    EXPECT_EQ(media.actions(), Texts{u"close NOWMUSIC"});
    EXPECT_TRUE(windows.boxes.empty());
    EXPECT_EQ(rows(), 1);
    EXPECT_EQ(windows.flashes, std::vector<std::string>{"Main"}) << "closed in full";
}

TEST_F(Start, RunsThePumpsOfListAndFadeWithinTheSequence) {
    addTrack(u"/m/a.mp3");
    savedList({u"/m/a.mp3"});
    lastPlayed(u"/m/a.mp3");
    bool splashUp = false;
    bool mainEnabled = true;
    windows.atNextPump([&] {
        splashUp = splash().visible();
        mainEnabled = app.Main().enabled();
    });
    app.start();
    EXPECT_TRUE(splashUp);
    EXPECT_FALSE(mainEnabled);
    EXPECT_GT(windows.pumps, 2);
}

TEST_F(Start, RunsNoTickOfMainBeforeItsEnd) {
    addTrack(u"/m/a.mp3");
    savedList({u"/m/a.mp3"});
    lastPlayed(u"/m/a.mp3");
    app.start(); // the fade takes more than one tick's time
    EXPECT_EQ(app.Main().play_Time.caption(), u"00:00:00 - 00:00:00");
    windows.advance(100);
    EXPECT_EQ(app.Main().play_Time.caption(), u"00:00:00 - 00:01:00");
}

TEST_F(Start, GoesOnWhenTheRegistryIsNotThere) {
    fake.registry.setProviderMissing(true);
    fake.registry.failWrites(platform::ERROR_ACCESS_DENIED);
    app.start();
    EXPECT_TRUE(app.Main().visible());
    EXPECT_TRUE(app.Main().Timer1.running());
}

TEST_F(Start, LeavesTwoProgramsIndependent) {
    app.start();
    fakes::FakePlatform other;
    Velmora second(other.bundle());
    second.Main().setCaption(u"second");
    EXPECT_NE(app.Main().caption(), u"second");
}

} // namespace
} // namespace velmora
