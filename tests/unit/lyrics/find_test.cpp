// The lyric of the track that starts: where it is looked for, and what follows.

#include "tests/unit/lyrics/lyrics_fixture.h"

namespace velmora {
namespace {

class TrackLyric : public LyricsFixture {
protected:
    void find(std::u16string_view path) { app.Search().findTrackLyric(path); }
    bool matched() { return info().lrcInfo_Frame.enabled(); }
};

TEST_F(TrackLyric, InTheLyricFolderIsLoadedAndNothingIsCopied) {
    files.addFile(u"/lrc/song.LRC", "[00:01]a");
    find(u"/m/Song.mp3");
    EXPECT_EQ(rowsOf(lyric().List1), (Texts{u"[00:01]a"}));
    EXPECT_EQ(lyric().lrcPath, u"/lrc/Song.LRC");
    EXPECT_TRUE(matched());
    EXPECT_TRUE(files.changes().empty());
}

TEST_F(TrackLyric, BesideTheTrackIsLoadedFromThereAndCopied) {
    files.addFile(u"/m/SONG.lrc", "[ti:x]\n\n[00:01]a \n");
    find(u"/m/Song.mp3");
    EXPECT_EQ(lyric().lrcPath, u"/m/Song.LRC");
    EXPECT_TRUE(matched());
    EXPECT_EQ(files.contents(u"/lrc/Song.Lrc"), "[ti:x]\r\n[00:01]a \r\n");
    EXPECT_EQ(files.changes(), (Texts{u"sync /lrc/Song.Lrc"}));
}

TEST_F(TrackLyric, IsCopiedWithItsLinesOwnBytesWhateverPageTheyAreIn) {
    const std::string shiftJis = "[00:01]\x83\x65\x81\x99";
    const std::string latin = "[00:02]\xC9toile \xFF";
    const std::string wide("\xFF\xFE[\0", 4);
    files.addFile(u"/m/Song.lrc", shiftJis + "\r\r  \r" + latin + "\n" + wide);
    find(u"/m/Song.mp3");
    EXPECT_TRUE(lyric().hasLrc);
    EXPECT_EQ(files.contents(u"/lrc/Song.Lrc"), shiftJis + "\r\n" + latin + "\r\n" + wide + "\r\n");
}

// The look-up in the lyric folder may fail though the lyric is there: the folder lists nothing, or
// the file has come since.
TEST_F(TrackLyric, ThatIsCopiedReplacesNothing) {
    files.addFile(u"/m/Song.lrc", "[00:01]beside the track");
    files.beforeLine = [&](std::u16string_view, std::size_t) {
        files.addFile(u"/lrc/Song.Lrc", "[00:01]timed by hand");
    };
    find(u"/m/Song.mp3");
    EXPECT_TRUE(lyric().hasLrc);
    EXPECT_EQ(files.contents(u"/lrc/Song.Lrc"), "[00:01]timed by hand");
}

TEST_F(TrackLyric, InTheLyricFolderWinsOverTheOneBesideTheTrack) {
    files.addFile(u"/lrc/Song.lrc", "[00:01]mine");
    files.addFile(u"/m/Song.lrc", "[00:01]other");
    find(u"/m/Song.mp3");
    EXPECT_EQ(lyric().List1.list(0), u"[00:01]mine");
    EXPECT_TRUE(files.changes().empty());
}

TEST_F(TrackLyric, ThatCannotBeCopiedIsShownAllTheSame) {
    files.addFile(u"/m/Song.lrc", "[00:01]a");
    files.setReadOnly(u"/lrc");
    find(u"/m/Song.mp3");
    EXPECT_TRUE(lyric().hasLrc);
    EXPECT_TRUE(matched());
}

TEST_F(TrackLyric, BelongsToTheExactStemAlone) {
    files.addFile(u"/lrc/Song (live).lrc", "[00:01]a");
    files.addFile(u"/m/Song.mp3.lrc", "[00:01]a");
    find(u"/m/Song.mp3");
    EXPECT_FALSE(lyric().hasLrc);
    EXPECT_FALSE(matched());
}

TEST_F(TrackLyric, OfANameWithWildcardsIsThatNameAlone) {
    files.addFile(u"/lrc/Song1.lrc", "[00:01]a");
    find(u"/m/Song?.mp3");
    EXPECT_FALSE(lyric().hasLrc);
    files.addFile(u"/lrc/Song?.lrc", "[00:01]b");
    find(u"/m/Song?.mp3");
    EXPECT_TRUE(lyric().hasLrc);
}

TEST_F(TrackLyric, ThatIsAFolderOrADanglingLinkIsNotFound) {
    files.addFolder(u"/lrc/Song.lrc");
    files.addSpecial(u"/m/Song.lrc");
    info().lrcInfo_Frame.setEnabled(true);
    find(u"/m/Song.mp3");
    EXPECT_FALSE(lyric().hasLrc);
    EXPECT_FALSE(matched());
}

TEST_F(TrackLyric, OfATrackWithoutAFolderLeavesTheOneThatIsLoaded) {
    load("[00:01]a");
    info().lrcInfo_Frame.setEnabled(true);
    find(u"Song.mp3");
    EXPECT_TRUE(lyric().hasLrc);
    EXPECT_EQ(lyric().List1.listCount(), 1);
    EXPECT_TRUE(matched());
}

TEST_F(TrackLyric, OfATrackBroughtFromAnotherMachineSeparatesAtTheBackslash) {
    files.addFile(u"C:\\m\\SONG.lrc", "[00:01]a");
    find(u"C:\\m\\Song.mp3");
    EXPECT_TRUE(lyric().hasLrc);
    EXPECT_TRUE(files.hasFile(u"/lrc/Song.Lrc"));
}

TEST_F(TrackLyric, WithoutLinesIsNoLyricButOpensTheFrame) {
    files.addFile(u"/lrc/Song.LRC", "");
    find(u"/m/Song.mp3");
    EXPECT_FALSE(lyric().hasLrc);
    EXPECT_TRUE(matched());
}

TEST_F(TrackLyric, ThatCannotBeReadRaises) {
    files.addFile(u"/lrc/Song.LRC", "[00:01]a");
    files.setUnreadable(u"/lrc/Song.LRC");
    EXPECT_THROW(find(u"/m/Song.mp3"), RunTimeError);
    EXPECT_FALSE(matched());
}

TEST_F(TrackLyric, IsLookedForWhileTheMusicPlaysAndBeforeTheLineTicks) {
    addTrack(u"/m/Song.mp3");
    files.addFile(u"/lrc/Song.lrc", "[00:01]a");
    bool isRunning = true;
    std::u16string mode;
    files.beforeLine = [&](std::u16string_view, std::size_t) {
        isRunning = lyric().Timer1.running();
        mode = media.mode();
    };
    setVolumeBar(0);
    openAndPlay(u"/m/Song.mp3");
    EXPECT_FALSE(isRunning);
    EXPECT_EQ(mode, u"playing");
    EXPECT_TRUE(lyric().Timer1.running());
    EXPECT_TRUE(lyric().hasLrc);
}

TEST_F(TrackLyric, IsLookedForAgainAtEverySeek) {
    addTrack(u"/m/Song.mp3");
    openAndPlay(u"/m/Song.mp3");
    EXPECT_FALSE(lyric().hasLrc);
    files.addFile(u"/lrc/Song.lrc", "[00:01]a");
    app.player().seek_To(1000);
    EXPECT_TRUE(lyric().hasLrc);
}

// The error passes into the routine that plays, which ends there: the line's timer stays off.
TEST_F(TrackLyric, ThatCannotBeReadEndsThePlayRoutineAndTheMusicGoesOn) {
    addTrack(u"/m/Song.mp3");
    addTrack(u"/m/Next.mp3");
    files.addFile(u"/lrc/Song.LRC", "[00:01]a");
    files.addFile(u"/lrc/Next.LRC", "[00:01]b");
    files.setUnreadable(u"/lrc/Song.LRC");
    app.player().open_File(u"/m/Song.mp3");
    app.Main().rotation_Count = 7;
    EXPECT_EQ(app.player().play_Sub(), 0);
    EXPECT_EQ(media.mode(), u"playing");
    EXPECT_FALSE(lyric().Timer1.running());
    EXPECT_EQ(app.Main().rotation_Count, 7);

    openAndPlay(u"/m/Next.mp3");
    EXPECT_TRUE(lyric().hasLrc);
    EXPECT_TRUE(lyric().Timer1.running());
    EXPECT_EQ(lyric().List1.list(0), u"[00:01]b");
}

TEST_F(TrackLyric, IsNotSearchedOnTheInternetWhereItCouldNotBeKept) {
    app.another_PlayInfo_Form().playInfo_TitleText.setText(u"Hello");
    files.setReadOnly(u"/lrc");
    Texts shown;
    find(u"/m/Song.mp3");
    EXPECT_EQ(lyric().nowLrcLine, u"none");
    EXPECT_TRUE(files.changes().empty());
    EXPECT_FALSE(matched());
}

TEST_F(TrackLyric, InAFolderThatVanishedIsNone) {
    files.addFile(u"/lrc/Song.lrc", "[00:01]a");
    find(u"/m/Song.mp3");
    files.remove(u"/lrc/Song.lrc");
    files.remove(u"/lrc");
    find(u"/m/Song.mp3");
    EXPECT_FALSE(lyric().hasLrc);
    EXPECT_FALSE(matched());
}

// --- writing ---

class LyricWriting : public LyricsFixture {};

TEST_F(LyricWriting, OfTheLyricInMemoryWritesItsLinesAsTheyStand) {
    load("[TI:x]\n\n  [00:01]a \n");
    files.clearChanges();
    EXPECT_TRUE(app.saveOrOpenFile().writeLrcFile(u"/lrc/out.lrc", LyricSource::Memory));
    EXPECT_EQ(files.contents(u"/lrc/out.lrc"), "[TI:x]\r\n  [00:01]a \r\n");
    EXPECT_EQ(files.changes(), Texts{u"sync /lrc/out.lrc"}) << "it outlives a power cut";
}

TEST_F(LyricWriting, OfTheEditorWritesFourTagsAheadOfTheLinesBlankOnesIncluded) {
    load("[ar:Me]\n[00:01]a\n[00:02]灯");
    EXPECT_TRUE(app.saveOrOpenFile().writeLrcFile(u"/lrc/out.lrc", LyricSource::Editor));
    EXPECT_EQ(files.contents(u"/lrc/out.lrc"),
              "[Ti:]\r\n[Ar:Me]\r\n[Al:]\r\n[By:]\r\n[00:01]a\r\n[00:02]灯\r\n\r\n");
}

TEST_F(LyricWriting, GoesUnderExactlyItsPath) {
    files.addFile(u"/lrc/SONG.LRC", "old");
    load("[00:01]a", u"/m/x.lrc");
    EXPECT_TRUE(app.saveOrOpenFile().writeLrcFile(u"/lrc/Song.Lrc", LyricSource::Editor));
    EXPECT_EQ(files.contents(u"/lrc/SONG.LRC"), "old");
    EXPECT_TRUE(files.hasFile(u"/lrc/Song.Lrc"));
}

TEST_F(LyricWriting, OnAFullDiskOrIntoAReadOnlyFolderLeavesTheOldFileWhole) {
    load("[00:01]a", u"/m/x.lrc");
    files.addFile(u"/lrc/Song.Lrc", "old");
    for (const LyricSource source : {LyricSource::Editor, LyricSource::Memory}) {
        files.setReadOnly(u"/lrc", false);
        files.setFreeSpace(3);
        EXPECT_FALSE(app.saveOrOpenFile().writeLrcFile(u"/lrc/Song.Lrc", source));
        EXPECT_FALSE(app.saveOrOpenFile().writeLrcFile(u"/lrc/New.Lrc", source));
        EXPECT_EQ(files.contents(u"/lrc/Song.Lrc"), "old");
        files.setFreeSpace(std::nullopt);
        files.setReadOnly(u"/lrc");
        EXPECT_FALSE(app.saveOrOpenFile().writeLrcFile(u"/lrc/Song.Lrc", source));
        EXPECT_FALSE(app.saveOrOpenFile().writeLrcFile(u"/lrc/New.Lrc", source));
        EXPECT_EQ(files.contents(u"/lrc/Song.Lrc"), "old");
        EXPECT_FALSE(app.saveOrOpenFile().writeLrcFile(u"/gone/Song.Lrc", source));
    }
    EXPECT_FALSE(files.hasFile(u"/lrc/New.Lrc"));
}

TEST_F(LyricWriting, WithAnEmptyLyricFolderFails) {
    load("[00:01]a", u"/m/x.lrc");
    EXPECT_FALSE(app.saveOrOpenFile().writeLrcFile(u"/Song.Lrc", LyricSource::Memory));
}

} // namespace
} // namespace velmora
