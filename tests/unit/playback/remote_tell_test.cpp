// What the player tells of itself.

#include "tests/unit/playback/remote_fixture.h"

#include "lyrics/lrcForm.h"
#include "playback/VideoScreen_Form.h"
#include "playlist/another_PlayInfo_Form.h"
#include "playlist/playInfo_Form.h"
#include "playlist/playerInfo.h"

namespace velmora {
namespace {

using platform::RemoteCommand;
using platform::RemoteLoop;
using platform::RemoteStatus;

class RemoteTells : public RemoteFixture {};

TEST_F(RemoteTells, NothingIsToldTwice) {
    play();
    const std::size_t told = remote.published.size();
    for (int i = 0; i < 100; ++i) {
        media.advance(70);
        tickMain();
    }
    EXPECT_EQ(remote.published.size(), told);
}

TEST_F(RemoteTells, TellingSendsTheEngineNoCommandOfItsOwn) {
    play();
    media.clearCommands();
    tickMain();
    const Texts told = media.texts();
    // What the tick asks for by itself: the length, the state, the times and the bar.
    EXPECT_EQ(std::count(told.begin(), told.end(), u"status NOWMUSIC length"), 2);
    EXPECT_EQ(std::count(told.begin(), told.end(), u"status NOWMUSIC position"), 2);
    EXPECT_EQ(std::count(told.begin(), told.end(), u"status NOWMUSIC mode"), 1);
}

TEST_F(RemoteTells, StatusFollowsTheControls) {
    play();
    EXPECT_EQ(now().status, RemoteStatus::Playing);
    ask(RemoteCommand::Pause);
    settle();
    EXPECT_EQ(now().status, RemoteStatus::Paused);
    ask(RemoteCommand::Stop);
    settle();
    EXPECT_EQ(now().status, RemoteStatus::Stopped);
}

TEST_F(RemoteTells, FromOneTrackToTheNextItNeverStopsPlaying) {
    play();
    app.player().nowPlay_Index = 1;
    const std::uint32_t before = now().track;
    media.reachEnd();
    for (int i = 0; i < 5; ++i)
        tickMain();
    ASSERT_EQ(now().path, u"/m/b.mp3");
    EXPECT_NE(now().track, before);
    EXPECT_EQ(now().lengthMs, 90'000);
    EXPECT_EQ(statuses(), std::vector<RemoteStatus>{RemoteStatus::Playing});
    EXPECT_EQ(fake.inhibitor.kept.size(), 1U);
}

TEST_F(RemoteTells, ATrackIsToldOfOnceWithItsLyric) {
    setVolumeBar(500);
    files.addFile(u"/m/a.lrc", "[00:01.00]one\r\n[00:02.00]two\r\n");
    windows.onPump = [&] { tickMain(); };
    openAndPlay(u"/m/a.mp3");
    windows.onPump = {};
    settle();
    EXPECT_EQ(tracksTold(), 1);
    EXPECT_EQ(now().lyric, u"[00:01.00]one\n[00:02.00]two\n");
}

TEST_F(RemoteTells, ALyricGoesWithItsTrack) {
    files.addFile(u"/m/a.lrc", "[00:01.00]one\r\n");
    play();
    ASSERT_FALSE(now().lyric.empty());
    play(u"/m/b.mp3");
    EXPECT_TRUE(now().lyric.empty());
}

TEST_F(RemoteTells, ALyricThatIsReadAnewWhileItsTrackPlaysIsTold) {
    files.addFile(u"/m/a.lrc", "[00:01.00]one\r\n");
    play();
    files.addFile(u"/m/b.lrc", "[00:01.00]other\r\n");
    app.lrcForm().startLoad(u"/m/b.lrc");
    settle();
    EXPECT_EQ(now().lyric, u"[00:01.00]other\n");
}

TEST_F(RemoteTells, AStoppedTrackHasNoLyric) {
    files.addFile(u"/m/a.lrc", "[00:01.00]one\r\n");
    play();
    ASSERT_FALSE(now().lyric.empty());
    ask(RemoteCommand::Stop);
    settle();
    EXPECT_EQ(app.lrcForm().List1.listCount(), 0);
    EXPECT_TRUE(now().lyric.empty());
}

TEST_F(RemoteTells, AnUntaggedTrackIsNamedByItsFile) {
    play();
    EXPECT_EQ(now().title, u"a");
    EXPECT_TRUE(now().artist.empty());
    EXPECT_TRUE(now().hasTrack);
    EXPECT_EQ(now().lengthMs, 60'000);
}

TEST_F(RemoteTells, ATagIsToldAndIsNotTheNextTracks) {
    std::string tag(128, '\0');
    tag.replace(0, 3, "TAG");
    tag.replace(3, 5, "Title");
    tag.replace(33, 6, "Artist");
    tag.replace(63, 5, "Album");
    tag.replace(93, 4, "1999");
    tag.replace(97, 7, "Comment");
    tag.back() = 17;
    files.addFile(u"/m/a.mp3", std::string(500, 's') + tag);
    app.playerInfo().buildGenreTable();
    play();
    EXPECT_EQ(now().title, u"Title");
    EXPECT_EQ(now().artist, u"Artist");
    EXPECT_EQ(now().album, u"Album");
    EXPECT_EQ(now().year, u"1999");
    EXPECT_EQ(now().comment, u"Comment");
    EXPECT_EQ(now().genre, app.playerInfo().genreName(17));
    EXPECT_FALSE(now().genre.empty());
    play(u"/m/b.mp3");
    EXPECT_EQ(now().title, u"b");
    EXPECT_TRUE(now().artist.empty());
}

TEST_F(RemoteTells, AStoppedTrackIsStillTheOneThatPlayWouldPlay) {
    play();
    const std::uint32_t track = now().track;
    ask(RemoteCommand::Stop);
    settle();
    EXPECT_EQ(now().path, u"/m/a.mp3");
    EXPECT_EQ(now().track, track);
    EXPECT_TRUE(now().hasTrack);
    EXPECT_FALSE(now().canSeek);
}

TEST_F(RemoteTells, TheSameFileOpenedAgainIsAnotherTrack) {
    play();
    const std::uint32_t track = now().track;
    play();
    EXPECT_NE(now().track, track);
}

TEST_F(RemoteTells, TheOrderOfTracksIsToldAsOthersCallIt) {
    tickMain();
    tickMain();
    EXPECT_EQ(now().loop, RemoteLoop::Playlist);
    EXPECT_FALSE(now().shuffle);
    app.setControl().PlayMode = 1;
    tickMain();
    EXPECT_TRUE(now().shuffle);
    app.setControl().PlayMode = 2;
    tickMain();
    EXPECT_EQ(now().loop, RemoteLoop::Track);
    app.setControl().isAutoPlay = 1;
    tickMain();
    EXPECT_EQ(now().loop, RemoteLoop::None);
}

TEST_F(RemoteTells, ATrackWithoutALengthCannotBeSought) {
    addTrack(u"/m/endless.mp3", 0);
    play(u"/m/endless.mp3");
    EXPECT_FALSE(now().canSeek);
    play();
    EXPECT_TRUE(now().canSeek);
}

TEST_F(RemoteTells, WhetherThereAreTracksToGoToFollowsTheList) {
    settle();
    EXPECT_TRUE(now().hasRows);
    for (int left = 2; left >= 0; --left) {
        app.playList_Form().playList_Item.removeItem(0);
        app.playList_Form().List1.removeItem(0);
        tickMain();
        EXPECT_EQ(now().hasRows, left > 0) << left;
    }
}

TEST_F(RemoteTells, TheVolumeIsTheBarsShareAndOfABarWithoutAWidthTheLast) {
    setVolumeBar(250);
    settle();
    EXPECT_DOUBLE_EQ(now().volume, 0.25);
    main().Volume_Set_BG.setWidth(0);
    tickMain();
    EXPECT_DOUBLE_EQ(now().volume, 0.25);
}

// --- keeping the machine awake -------------------------------------------------------------------

TEST_F(RemoteTells, TheMachineIsKeptAwakeWhileATrackPlays) {
    play();
    EXPECT_EQ(fake.inhibitor.now(), (platform::Awake{true, false}));
    ask(RemoteCommand::Pause);
    settle();
    EXPECT_EQ(fake.inhibitor.now(), platform::Awake());
    ask(RemoteCommand::Play);
    settle();
    ask(RemoteCommand::Stop);
    settle();
    EXPECT_EQ(fake.inhibitor.now(), platform::Awake());
    EXPECT_EQ(fake.inhibitor.kept.size(), 4U);
}

TEST_F(RemoteTells, AFilmIsToldToFillTheScreenWhileItDoes) {
    addTrack(u"/m/film.avi", 60'000, true);
    app.setControl().VideoInterface = 1;
    play(u"/m/film.avi");
    EXPECT_TRUE(now().canSetFullscreen);
    for (const bool whole : {true, false}) {
        player().setFullscreen(whole);
        settle();
        EXPECT_EQ(app.player().isFullScreen != 0, whole);
        EXPECT_EQ(now().fullscreen, whole);
    }
}

TEST_F(RemoteTells, TheScreenIsKeptAwakeWhileAFilmIsSeen) {
    addTrack(u"/m/film.avi", 60'000, true);
    app.setControl().VideoInterface = 1;
    play(u"/m/film.avi");
    ASSERT_TRUE(app.VideoScreen_Form().visible());
    EXPECT_EQ(fake.inhibitor.now(), (platform::Awake{true, true}));
    app.VideoScreen_Form().close_Click();
    tickMain();
    EXPECT_EQ(fake.inhibitor.now(), (platform::Awake{true, false}));
}

} // namespace
} // namespace velmora
