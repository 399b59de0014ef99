// Files that come from outside.

#include "tests/unit/playback/remote_fixture.h"

#include <algorithm>

namespace velmora {
namespace {

class RemoteOpen : public RemoteFixture {
protected:
    Texts list() {
        Texts all;
        for (std::int32_t row = 0; row < app.playList_Form().List1.listCount(); ++row)
            all.push_back(app.playList_Form().List1.list(row));
        return all;
    }
};

TEST_F(RemoteOpen, OneFileGoesTheWayOfTheOpenButton) {
    addTrack(u"/x/new.mp3");
    player().open({u"/x/new.mp3"}, false);
    EXPECT_EQ(list(), (Texts{u"/m/a.mp3", u"/m/b.mp3", u"/m/c.mp3", u"/x/new.mp3"}));
    EXPECT_EQ(media.openPath(), u"/x/new.mp3");
    EXPECT_EQ(media.mode(), u"playing");
    EXPECT_TRUE(files.hasFile(u"/lists/zkPlayList.m3u"));
    EXPECT_TRUE(main().enabled());
    EXPECT_TRUE(app.playList_Form().enabled());
}

TEST_F(RemoteOpen, IsAskedByThePerson) {
    addTrack(u"/x/new.mp3");
    player().open({u"/x/new.mp3"}, false);
    EXPECT_EQ(windows.asks, 1);
}

TEST_F(RemoteOpen, AFileThatIsListedIsPlayedToo) {
    play();
    player().open({u"/m/c.mp3"}, false);
    EXPECT_EQ(media.openPath(), u"/m/c.mp3");
    EXPECT_EQ(app.player().nowPlay_Index, 3);
    EXPECT_EQ(rows(), 3);
}

TEST_F(RemoteOpen, OfSeveralTheFirstIsPlayedAndAllAreBehindTheList) {
    addTrack(u"/x/1.mp3");
    addTrack(u"/x/2.mp3");
    player().open({u"/x/2.mp3", u"/x/1.mp3", u"/m/b.mp3"}, false);
    EXPECT_EQ(list(), (Texts{u"/m/a.mp3", u"/m/b.mp3", u"/m/c.mp3", u"/x/2.mp3", u"/x/1.mp3"}));
    EXPECT_EQ(media.openPath(), u"/x/2.mp3");
}

TEST_F(RemoteOpen, EnqueueOnlyAdds) {
    play();
    addTrack(u"/x/1.mp3");
    player().open({u"/x/1.mp3"}, true);
    EXPECT_EQ(rows(), 4);
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
    EXPECT_EQ(media.count(u"close NOWMUSIC"), 0U);
}

TEST_F(RemoteOpen, AFolderGivesItsTracksAndTheFirstOfThemIsPlayed) {
    files.addFolder(u"/x");
    addTrack(u"/x/1.mp3");
    addTrack(u"/x/2.mp3");
    files.addFile(u"/x/notes.txt");
    player().open({u"/x"}, false);
    EXPECT_EQ(rows(), 5);
    EXPECT_EQ(media.openPath(), u"/x/1.mp3");
}

TEST_F(RemoteOpen, WhatIsNotThereChangesNothing) {
    play();
    player().open({u"/gone.mp3"}, false);
    EXPECT_EQ(rows(), 3);
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
    EXPECT_EQ(media.count(u"close NOWMUSIC"), 0U);
}

TEST_F(RemoteOpen, ItWaitsWhileMainIsDisabled) {
    addTrack(u"/x/new.mp3");
    main().setEnabled(false);
    player().open({u"/x/new.mp3"}, false);
    tickMain();
    EXPECT_EQ(rows(), 3);
    main().setEnabled(true);
    windows.advance(1000);
    EXPECT_EQ(media.openPath(), u"/x/new.mp3");
}

TEST_F(RemoteOpen, ItWaitsForTheEndOfTheStart) {
    addTrack(u"/x/new.mp3");
    main().Timer1.setRunning(false);
    player().open({u"/x/new.mp3"}, false);
    EXPECT_EQ(rows(), 3);
    main().Timer1.setRunning(true);
    windows.advance(1000);
    EXPECT_EQ(media.openPath(), u"/x/new.mp3");
}

TEST_F(RemoteOpen, ItWaitsForABoxToBeAnswered) {
    addTrack(u"/x/new.mp3");
    windows.modal = true;
    player().open({u"/x/new.mp3"}, false);
    windows.advance(1000);
    EXPECT_EQ(rows(), 3);
    windows.modal = false;
    windows.advance(1000);
    EXPECT_EQ(media.openPath(), u"/x/new.mp3");
}

TEST_F(RemoteOpen, NoMoreWaitsThanAListHolds) {
    main().setEnabled(false);
    const std::vector<std::u16string> many(40'000, u"/gone.mp3");
    player().open(many, true);
    player().open(many, true);
    main().setEnabled(true);
    windows.advance(100);
    EXPECT_EQ(rows(), 3);
}

TEST_F(RemoteOpen, OfWhatIsMoreThanAListHoldsTheLastDoesNotWait) {
    main().setEnabled(false);
    player().open(std::vector<std::u16string>(forms::ListBox::mostRows - 1, u"/gone.mp3"), true);
    player().open({addTrack(u"/x/fits.mp3"), addTrack(u"/x/more.mp3")}, true);
    main().setEnabled(true);
    windows.advance(1000);
    EXPECT_EQ(rows(), 4);
    EXPECT_EQ(app.playList_Form().List1.list(3), u"/x/fits.mp3");
}

TEST_F(RemoteOpen, AListFullOfPathsIsTakenAndSoIsWhatComesBehindIt) {
    player().open(Texts(32767, u"/m/none.mp3"), true);
    player().open({addTrack(u"/m/new.mp3")}, true);
    const forms::ListBox &paths = app.playList_Form().List1;
    EXPECT_EQ(paths.list(paths.listCount() - 1), u"/m/new.mp3");
}

TEST_F(RemoteOpen, NothingIsNoOrder) {
    play();
    player().open({}, false);
    player().open({}, true);
    EXPECT_EQ(windows.asks, 0);
    EXPECT_THAT(media.actions(), ::testing::IsEmpty());
}

TEST_F(RemoteOpen, ANewFileIsOpenedOnceAndBothWindowsAreDeafMeanwhile) {
    addTrack(u"/x/new.mp3");
    setVolumeBar(100);
    int heard = 0;
    int pumps = 0;
    windows.onPump = [&] {
        ++pumps;
        heard += main().enabled() || app.playList_Form().enabled() ? 1 : 0;
    };
    player().open({u"/x/new.mp3"}, false);
    windows.onPump = {};
    EXPECT_GT(pumps, 0);
    EXPECT_EQ(heard, 0);
    Texts opened = media.texts();
    EXPECT_EQ(
        std::ranges::count_if(opened, [](const auto &one) { return one.starts_with(u"open "); }),
        1);
}

TEST_F(RemoteOpen, OfSeveralTheFirstIsPlayedThoughItIsTheListsFirstRow) {
    player().open({u"/m/a.mp3", u"/m/b.mp3"}, false);
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
}

TEST_F(RemoteOpen, AFolderWhoseTracksBeginTheListIsPlayedFromThere) {
    addTrack(u"/x/new.mp3");
    files.addFolder(u"/m");
    player().open({u"/m", u"/x/new.mp3"}, false);
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
}

} // namespace
} // namespace velmora
