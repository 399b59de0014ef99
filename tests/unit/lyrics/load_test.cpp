// From a file to the lyric in memory.

#include "tests/unit/lyrics/lyrics_fixture.h"

#include "lyrics/lyric_file.h"
#include "platform/contracts/windows.h"

namespace velmora {
namespace {

class LyricLoad : public LyricsFixture {};

TEST_F(LyricLoad, KeepsEveryLineThatIsNotBlankAsItStands) {
    load("[ti:Song]\r\n\r\n  [00:01.00]one  \r\n   \r\n[00:02.00]two\r\n[00:03.00]");
    EXPECT_EQ(rowsOf(lyric().List1),
              (Texts{u"[ti:Song]", u"  [00:01.00]one  ", u"[00:02.00]two", u"[00:03.00]"}));
    EXPECT_TRUE(lyric().hasLrc);
    EXPECT_EQ(lyric().lrcPath, u"/lrc/a.lrc");
    EXPECT_EQ(lyric().nowLrcLine, u"");
}

TEST_F(LyricLoad, TakesALineOfATabForALine) {
    load("[00:01]a\n\t\n \t \n   \n");
    EXPECT_EQ(rowsOf(lyric().List1), (Texts{u"[00:01]a", u"\t", u" \t "}));
    EXPECT_EQ(lyric().lrcFullText, u"a\r\n\t\r\n \t \r\n");
}

TEST_F(LyricLoad, TakesLinesThatEndInCrLfCrOrLfMixed) {
    load("[00:01]a\r\n[00:02]b\r[00:03]c\n[00:04]d");
    EXPECT_EQ(rowsOf(lyric().List1), (Texts{u"[00:01]a", u"[00:02]b", u"[00:03]c", u"[00:04]d"}));
}

TEST_F(LyricLoad, GathersTheWordsWithoutLabels) {
    load("[ti:Song]\r\n[00:12.34][01:30.22]Text\r\n[00:13]\r\nplain\r\n[00:14] x\r\n");
    EXPECT_EQ(lyric().lrcFullText, u"Text\r\nplain\r\n x\r\n");
    EXPECT_EQ(info().lrc_Full.text(), u"Text\r\nplain\r\n x\r\n");
}

TEST_F(LyricLoad, BeginsItsWordsAnewWithEachFile) {
    load("[00:01]a\n[00:02]b");
    load("[00:01]c", u"/lrc/b.lrc");
    EXPECT_EQ(lyric().lrcFullText, u"c\r\n");
    EXPECT_EQ(info().lrc_Full.text(), u"c\r\n");
    EXPECT_EQ(rowsOf(lyric().List1), (Texts{u"[00:01]c"}));
}

TEST_F(LyricLoad, PutsTagsAndPathIntoTheBoxesOfTheTrackWindow) {
    load("[Ti:T]\n[AR:A]\n[al:L]\n[bY:B]\nwords");
    EXPECT_EQ(lyric().lrcTi, u"T");
    EXPECT_EQ(lyric().lrcAr, u"A");
    EXPECT_EQ(lyric().lrcAl, u"L");
    EXPECT_EQ(lyric().lrcBy, u"B");
    EXPECT_EQ(info().lrc_Path_Str.text(), u"/lrc/a.lrc");
    EXPECT_EQ(info().lrc_Ti_Str.text(), u"T");
    EXPECT_EQ(info().lrc_Ar_Str.text(), u"A");
    EXPECT_EQ(info().lrc_Al_Str.text(), u"L");
    EXPECT_EQ(info().lrc_By_Str.text(), u"B");
}

TEST_F(LyricLoad, PutsEachTagIntoItsOwnPlaceInWhateverOrderTheyCome) {
    load("[by:B]\n[al:L]\n[ar:A]\n[ti:T]\nwords");
    EXPECT_EQ(lyric().lrcTi, u"T");
    EXPECT_EQ(lyric().lrcAr, u"A");
    EXPECT_EQ(lyric().lrcAl, u"L");
    EXPECT_EQ(lyric().lrcBy, u"B");
}

TEST_F(LyricLoad, LetsALaterTagOfTheSameKindWin) {
    load("[ti:first]\n[TI:second]\nwords");
    EXPECT_EQ(lyric().lrcTi, u"second");
}

TEST_F(LyricLoad, CarriesTagsOverThatTheNextFileDoesNotHave) {
    load("[ti:one]\n[by:me]\nwords");
    load("[ti:two]\nwords", u"/lrc/b.lrc");
    EXPECT_EQ(lyric().lrcTi, u"two");
    EXPECT_EQ(lyric().lrcBy, u"me");
    EXPECT_EQ(info().lrc_By_Str.text(), u"me");
}

TEST_F(LyricLoad, EmptiesATagThatIsThereWithoutAValue) {
    load("[ti:one]\nwords");
    load("[ti:]\nwords");
    EXPECT_EQ(lyric().lrcTi, u"");
}

TEST_F(LyricLoad, ATagLineWithWordsBehindItIsALine) {
    load("[ti:Song] x");
    EXPECT_EQ(lyric().lrcTi, u"");
    EXPECT_EQ(lyric().lrcFullText, u" x\r\n");
}

TEST_F(LyricLoad, TakesEveryLabelForWhatItIs) {
    load("[9:5]a\n[aa:bb]b\n[00:12 open\n[offset:500]\n");
    EXPECT_EQ(rowsOf(lyric().List1),
              (Texts{u"[9:5]a", u"[aa:bb]b", u"[00:12 open", u"[offset:500]"}));
    EXPECT_EQ(lyric().lrcFullText, u"a\r\nb\r\n[00:12 open\r\n");
}

// --- no lyric ---

class NoLyric : public LyricsFixture {
protected:
    void expectNone() {
        EXPECT_FALSE(lyric().hasLrc);
        EXPECT_EQ(lyric().List1.listCount(), 0);
        EXPECT_EQ(lyric().noLrcText, u"none");
        EXPECT_EQ(lyric().nowLrcLine, u"none");
        EXPECT_FALSE(lyric().lrc_Text.visible());
        for (const forms::TextBox *box :
             {&info().lrc_Path_Str, &info().lrc_Full, &info().lrc_Ti_Str, &info().lrc_Ar_Str,
              &info().lrc_Al_Str, &info().lrc_By_Str})
            EXPECT_EQ(box->text(), u"");
    }
};

TEST_F(NoLyric, IsWhatAnEmptyPathMeans) {
    load("[ti:Song]\n[00:01]a");
    lyric().lrc_Text.setVisible(true);
    lyric().startLoad(u"");
    expectNone();
    EXPECT_EQ(lyric().lrcTi, u"Song") << "the tags stay";
    EXPECT_EQ(lyric().lrcPath, u"/lrc/a.lrc") << "so does the path";
    EXPECT_EQ(lyric().lrcFullText, u"a\r\n") << "and the words";
}

TEST_F(NoLyric, IsWhatABlankPathMeans) {
    load("[00:01]a");
    lyric().startLoad(u"   ");
    expectNone();
    EXPECT_EQ(files.calls("openInput"), 1);
}

TEST_F(NoLyric, IsWhatAnEmptyFileGives) {
    load("");
    expectNone();
    EXPECT_EQ(lyric().lrcPath, u"/lrc/a.lrc");
}

TEST_F(NoLyric, IsWhatTenBlankLinesGiveWithoutAMessage) {
    load(std::string(10, '\n') + "   \r\n");
    expectNone();
    EXPECT_TRUE(windows.boxes.empty());
}

// --- failures: the box that would tell of them never comes up ---

class LyricFailure : public LyricsFixture {
protected:
    void expectFailure(std::u16string_view path) {
        try {
            lyric().startLoad(path);
            FAIL() << "nothing was raised";
        } catch (const RunTimeError &error) {
            EXPECT_EQ(error.number(), ErrorNumber::TypeMismatch);
        }
        EXPECT_TRUE(windows.boxes.empty());
    }
};

TEST_F(LyricFailure, OfAMissingFileLeavesTheStateAndAnEmptyList) {
    load("[00:01]a");
    lyric().nowLrcLine = u"la";
    expectFailure(u"/lrc/gone.lrc");
    EXPECT_TRUE(lyric().hasLrc);
    EXPECT_EQ(lyric().List1.listCount(), 0);
    EXPECT_EQ(lyric().nowLrcLine, u"la");
    EXPECT_EQ(lyric().lrcPath, u"/lrc/a.lrc");
    EXPECT_EQ(lyric().lrcFullText, u"");
    EXPECT_EQ(info().lrc_Full.text(), u"a\r\n");
}

TEST_F(LyricFailure, OfAnUnreadableFileLeavesNoLyricAsItWas) {
    files.addFile(u"/lrc/b.lrc", "[00:01]b");
    files.setUnreadable(u"/lrc/b.lrc");
    expectFailure(u"/lrc/b.lrc");
    EXPECT_FALSE(lyric().hasLrc);
}

// The desktop line and the editor stay as they were: nothing behind the failure runs.
TEST_F(LyricFailure, LeavesTheDesktopLineAndTheEditor) {
    lyric().desktopLrcOn = true;
    load("[00:01]a");
    lyric().position();
    editor().lrcList.setList(0, u"not saved");
    windows.shown.clear();
    expectFailure(u"/lrc/gone.lrc");
    EXPECT_TRUE(lyric().lrc_Text.visible());
    EXPECT_TRUE(windows.shown.empty());
    EXPECT_EQ(editor().lrcList.list(0), u"not saved");
}

TEST_F(LyricFailure, InMidFileKeepsTheLinesReadSoFar) {
    files.addFile(u"/lrc/b.lrc", "[00:01]a\n[00:02]b\n[00:03]c\n");
    files.failReadAtLine(u"/lrc/b.lrc", 2);
    expectFailure(u"/lrc/b.lrc");
    EXPECT_EQ(rowsOf(lyric().List1), (Texts{u"[00:01]a", u"[00:02]b"}));
    EXPECT_FALSE(lyric().hasLrc);
    EXPECT_EQ(lyric().lrcFullText, u"a\r\nb\r\n");
}

TEST_F(LyricFailure, OfMoreLinesThanAListTakesKeepsThoseThatFit) {
    std::string bytes;
    for (int i = 0; i < 40'000; ++i)
        bytes += "[00:01]a\n";
    files.addFile(u"/lrc/b.lrc", bytes);
    expectFailure(u"/lrc/b.lrc");
    EXPECT_EQ(lyric().List1.listCount(), 32'767);
    EXPECT_FALSE(lyric().hasLrc);
}

TEST_F(LyricFailure, OfFarMoreLinesThanAListTakesStopsReadingThere) {
    constexpr std::size_t most = 262'144;
    std::string bytes;
    for (std::size_t line = 0; line < most; ++line)
        bytes += "a\n";
    files.addFile(u"/lrc/b.lrc", bytes + "\n  \n");
    EXPECT_FALSE(readLyricFile(app.platform(), u"/lrc/b.lrc").failure) << "blank ones do not count";
    files.addFile(u"/lrc/b.lrc", bytes + "a\n");
    const LyricLines read = readLyricFile(app.platform(), u"/lrc/b.lrc");
    EXPECT_EQ(read.lines.size(), most);
    ASSERT_TRUE(read.failure);
    EXPECT_EQ(read.failure->number(), ErrorNumber::Overflow);
}

TEST_F(LyricFailure, OfAFileBeyondSixteenMegabytesReadsNoneOfIt) {
    files.addFile(u"/lrc/b.lrc", "[00:01]a");
    files.setLength(u"/lrc/b.lrc", std::int64_t{200} * 1024 * 1024);
    expectFailure(u"/lrc/b.lrc");
    EXPECT_EQ(files.calls("openInput"), 0);
    EXPECT_EQ(lyric().List1.listCount(), 0);
}

TEST_F(LyricFailure, OfAFileThatGrowsBeyondItWhileItIsReadEndsTheReading) {
    files.addFile(u"/lrc/b.lrc", std::string(std::size_t{17} << 20, 'x'));
    files.setLength(u"/lrc/b.lrc", 1);
    expectFailure(u"/lrc/b.lrc");
    EXPECT_EQ(lyric().List1.listCount(), 0);
}

TEST_F(LyricFailure, OfAFileThatGrowsByBlankLinesAloneEndsTheReading) {
    files.addFile(u"/lrc/b.lrc", std::string((std::size_t{16} << 20) + 2, '\n'));
    files.setLength(u"/lrc/b.lrc", 1);
    expectFailure(u"/lrc/b.lrc");
}

TEST_F(LyricLoad, TakesSixteenMegabytesAndNotAByteMore) {
    constexpr std::size_t most = std::size_t{16} << 20;
    files.addFile(u"/lrc/b.lrc", std::string(most, 'x'));
    EXPECT_FALSE(readLyricFile(app.platform(), u"/lrc/b.lrc").failure);
    files.addFile(u"/lrc/b.lrc", std::string(most + 1, 'x'));
    EXPECT_TRUE(readLyricFile(app.platform(), u"/lrc/b.lrc").failure);
    files.setLength(u"/lrc/b.lrc", 1);
    EXPECT_TRUE(readLyricFile(app.platform(), u"/lrc/b.lrc").failure) << "counted as it is read";
}

TEST_F(LyricLoad, TakesOneLineOfFifteenMegabytes) {
    load("[00:01]" + std::string(std::size_t{15} << 20, 'x'));
    EXPECT_EQ(lyric().List1.listCount(), 1);
    EXPECT_EQ(lyric().lrcFullText.size(), (std::size_t{15} << 20) + 2);
}

TEST_F(LyricLoad, TakesNulBytesAsData) {
    load(std::string("[00:01]a\0b\n", 11));
    EXPECT_EQ(lyric().List1.list(0), std::u16string(u"[00:01]a\0b", 10));
}

TEST_F(LyricLoad, KnowsNoByteOrderMark) {
    load("\xEF\xBB\xBF[ti:Song]\n[00:01]a");
    EXPECT_EQ(lyric().List1.list(0), u"\uFEFF[ti:Song]");
    EXPECT_EQ(lyric().lrcTi, u"");
}

TEST_F(LyricLoad, ShowsThatALineEndsWithinACharacter) {
    load("[00:01]\u6708\n[00:02]\u4eae\n[00:03]\u6708\xE4\xBA");
    ASSERT_EQ(lyric().List1.listCount(), 3);
    const std::u16string cut = lyric().List1.list(2);
    EXPECT_TRUE(startsWith(cut, u"[00:03]\u6708\uFFFD")) << "nothing is lost without a sign";
}

// What lies between its letters keeps tags and times from being found; it counts as a lyric.
TEST_F(LyricLoad, KnowsNoUtf16) {
    std::string wide = "\xFF\xFE";
    for (const char letter : std::string("[ti:Song]\r\n[00:01.00]a\r\n"))
        wide += std::string({letter, '\0'});
    load(wide);
    EXPECT_TRUE(lyric().hasLrc);
    EXPECT_EQ(lyric().lrcTi, u"");
    EXPECT_EQ(lyric().ListIndex(u"00:01"), -1);
    EXPECT_NE(lyric().nowLrcLine, lyric().lrcMissText);
}

TEST_F(LyricLoad, FindsTheFileInAnotherCase) {
    files.addFile(u"/lrc/SONG.lrc", "[00:01]a");
    lyric().startLoad(u"/lrc/Song.LRC");
    EXPECT_EQ(lyric().List1.listCount(), 1);
    EXPECT_EQ(lyric().lrcPath, u"/lrc/Song.LRC");
}

// --- the desktop line follows ---

class DesktopLine : public LyricsFixture {
protected:
    void expectVisible(bool expected) { EXPECT_EQ(lyric().lrc_Text.visible(), expected); }
};

TEST_F(DesktopLine, AppearsWithALyricWhenTheUserSwitchedItOn) {
    lyric().desktopLrcOn = true;
    lyric().lrc_Text.setVisible(false);
    load("[00:01]a");
    expectVisible(true);
    EXPECT_EQ(lyric().width(), windows.screenWidth()) << "it was placed";
}

TEST_F(DesktopLine, AppearsByItselfWhenItOpensAutomatically) {
    lyric().desktopLrcAutoOpen = true;
    lyric().lrc_Text.setVisible(false);
    load("[00:01]a");
    expectVisible(true);
    EXPECT_FALSE(lyric().desktopLrcOn);
}

TEST_F(DesktopLine, HidesWithALyricWhenNeitherIsSet) {
    lyric().lrc_Text.setVisible(true);
    load("[00:01]a");
    expectVisible(false);
}

TEST_F(DesktopLine, HidesWithoutALyricAndComesBackWithTheNext) {
    lyric().desktopLrcOn = true;
    load("[00:01]a");
    lyric().startLoad(u"");
    expectVisible(false);
    EXPECT_TRUE(lyric().desktopLrcOn);
    load("[00:01]a");
    expectVisible(true);
}

TEST_F(DesktopLine, HasAFontThatFillsTheScreensHeightWhereItsOwnIsHigherAndNoneBelowOnePoint) {
    const auto sizeOn = [this](std::int32_t pixels) {
        windows.screen = {1280, pixels};
        windows.workArea = {0, 0, 1280, pixels};
        windows.hasTaskBar = false;
        lyric().dress(forms::Font(u"Arial", 400));
        lyric().position();
        return lyric().lrc_Text.font().size();
    };
    const auto heightOf = [this](float size) {
        return lyric().textExtent(lyric().lrc_Text.caption(), forms::Font(u"Arial", size)).height;
    };
    for (const std::int32_t pixels : {200, 300, 60}) {
        const float size = sizeOn(pixels);
        const Twips room = lyric().top() + lyric().height();
        EXPECT_LE(heightOf(size), room);
        EXPECT_GT(heightOf(size + 2), room) << size;
    }
    EXPECT_EQ(sizeOn(1), 1) << "too low for any";
}

TEST_F(LyricLoad, RefillsTheEditorEachTime) {
    load("[ti:one]\n[00:01]a");
    EXPECT_EQ(rowsOf(editor().lrcList), (Texts{u"[00:01]a", u""}));
    lyric().startLoad(u"");
    EXPECT_EQ(editor().lrcList.listCount(), 0);
    EXPECT_TRUE(editor().no_Lrc_Clew.visible());
}

// A list so full that the editor's extra row has no place.
TEST_F(LyricFailure, OfTheEditorsExtraRowIsMetBehindTheLoad) {
    std::string bytes;
    for (int i = 0; i < 32'767; ++i)
        bytes += "[00:01]a\n";
    files.addFile(u"/lrc/b.lrc", bytes);
    expectFailure(u"/lrc/b.lrc");
    EXPECT_EQ(lyric().List1.listCount(), 32'767);
    EXPECT_TRUE(lyric().hasLrc);
}

} // namespace
} // namespace velmora
