// Times as texts, and the arithmetic of the seek bars.

#include "tests/unit/program_fixture.h"

#include "base/numbers.h"

#include "playback/VideoScreen_Form.h"
#include "playback/miniForm.h"

namespace velmora {
namespace {

constexpr auto positionQuery = u"status NOWMUSIC position";
constexpr auto lengthQuery = u"status NOWMUSIC length";

class Times : public ProgramFixture {
protected:
    void at(std::u16string_view answer) {
        media.answerAlways(positionQuery, {0, std::u16string(answer)});
    }
    void length(std::u16string_view answer) {
        media.answerAlways(lengthQuery, {0, std::u16string(answer)});
    }
};

TEST_F(Times, AreAskedWithABufferOf80) {
    app.player().get_Length();
    app.player().get_PositionText();
    EXPECT_EQ(media.commands(),
              (std::vector<fakes::FakeMedia::Command>{{lengthQuery, 80}, {positionQuery, 80}}));
}

TEST_F(Times, OfNothingOpenAre0) {
    EXPECT_EQ(app.player().get_Length(), 0);
    EXPECT_EQ(app.player().get_LengthText(), u"00:00:00");
    EXPECT_EQ(app.player().get_PositionText(), u"00:00:00");
}

TEST_F(Times, TakeTheLeadingNumberOfAnAnswer) {
    length(u" 12345 ms");
    EXPECT_EQ(app.player().get_Length(), 12345);
    length(u"none");
    EXPECT_EQ(app.player().get_Length(), 0);
    length(u"2.5");
    EXPECT_EQ(app.player().get_Length(), 2);
    length(u"3.5");
    EXPECT_EQ(app.player().get_Length(), 4);
}

TEST_F(Times, AreCutToHoursMinutesAndSeconds) {
    const std::pair<const char16_t *, const char16_t *> rows[] = {
        {u"221000", u"00:03:41"},  {u"999", u"00:00:00"},     {u"1999", u"00:00:01"},
        {u"59999", u"00:00:59"},   {u"60000", u"00:01:00"},   {u"3599999", u"00:59:59"},
        {u"3600000", u"01:00:00"}, {u"3723000", u"01:02:03"}, {u"360000000", u"100:00:00"},
    };
    for (const auto &[ms, text] : rows) {
        length(ms);
        at(ms);
        EXPECT_EQ(app.player().get_LengthText(), text);
        EXPECT_EQ(app.player().get_PositionText(), text);
    }
}

TEST_F(Times, KeepTheirPartsForWhoReadsThem) {
    length(u"3723000");
    at(u"61000");
    app.player().get_LengthText();
    app.player().get_PositionText();
    EXPECT_EQ(app.player().len_H + app.player().len_M + app.player().len_S, u"010203");
    EXPECT_EQ(app.player().pos_H + app.player().pos_M + app.player().pos_S, u"000101");
}

TEST_F(Times, StampTheLyricWithHundredths) {
    const std::pair<const char16_t *, const char16_t *> rows[] = {
        {u"83456", u"[01:23.45]"}, {u"1200", u"[00:01.20]"}, {u"59999", u"[00:59.99]"},
        {u"50", u"[00:00.50]"},    {u"5", u"[00:00.5]"},     {u"0", u"[00:00.0]"},
        {u"100", u"[00:00.10]"},   {u"1000", u"[00:01.00]"}, {u"3600000", u"[60:00.00]"},
    };
    for (const auto &[ms, stamp] : rows) {
        at(ms);
        EXPECT_EQ(app.player().get_LrcTimeTag(), stamp);
    }
}

TEST_F(Times, ForTheLyricAreMinutesAndSecondsRoundedHalfToEven) {
    const std::pair<const char16_t *, const char16_t *> rows[] = {
        {u"0", u"00:00"},     {u"499", u"00:00"},    {u"500", u"00:00"},  {u"501", u"00:01"},
        {u"1500", u"00:02"},  {u"2500", u"00:02"},   {u"9999", u"00:10"}, {u"59500", u"01:00"},
        {u"60000", u"01:00"}, {u"599499", u"09:59"},
    };
    for (const auto &[ms, text] : rows) {
        at(ms);
        EXPECT_EQ(app.player().get_PositionMMSS(), text) << toUtf8(ms);
    }
}

TEST_F(Times, ForTheLyricRoundHalfToEvenAtEveryBoundaryBelowTenMinutes) {
    const auto text = [](std::int32_t seconds) {
        return format00(seconds / 60) + u":" + format00(seconds % 60);
    };
    for (std::int32_t second = 0; second < 599; ++second) {
        at(decimal(second * 1000 + 499));
        EXPECT_EQ(app.player().get_PositionMMSS(), text(second));
        at(decimal(second * 1000 + 500));
        EXPECT_EQ(app.player().get_PositionMMSS(), text(second + second % 2)) << second;
        at(decimal(second * 1000 + 501));
        EXPECT_EQ(app.player().get_PositionMMSS(), text(second + 1));
    }
}

TEST_F(Times, ForTheLyricGrowFromTenMinutesOn) {
    at(u"599000");
    EXPECT_EQ(app.player().get_PositionMMSS(), u"09:59");
    at(u"600000");
    EXPECT_EQ(app.player().get_PositionMMSS(), u"09:5910:00");
    at(u"601000");
    EXPECT_EQ(app.player().get_PositionMMSS(), u"09:5910:0010:01");
    at(u"5000");
    EXPECT_EQ(app.player().get_PositionMMSS(), u"00:05");
}

TEST_F(Times, ForTheLyricStopGrowingAt32767Units) {
    at(u"600000");
    for (int call = 0; call < 7000; ++call)
        app.player().get_PositionMMSS();
    EXPECT_EQ(app.player().pos_MMSS.size(), 32767U);
}

// --- seek bars -----------------------------------------------------------------------------------

class SeekBar : public Times {
protected:
    SeekBar() {
        auto &main = app.Main();
        main.load_Played_BG.move({100, 50, 1060, 200});
        main.load_Played.move({130, 60, 15, 100});
        setVolumeBar(0);
    }
};

TEST_F(SeekBar, IsFilledWholeAtPosition0) {
    length(u"60000");
    at(u"0");
    EXPECT_EQ(app.player().get_PlayedWidth(PlayerWindow::Main), 1060);
    at(u"-5");
    EXPECT_EQ(app.player().get_PlayedWidth(PlayerWindow::Main), 1060);
    at(u"0.9");
    EXPECT_EQ(app.player().get_PlayedWidth(PlayerWindow::Main), 1060);
}

TEST_F(SeekBar, ReadsThePositionOnceAndNoLengthAtPosition0) {
    at(u"0");
    media.clearCommands();
    app.player().get_PlayedWidth(PlayerWindow::Main);
    EXPECT_EQ(media.texts(), Texts{positionQuery});
}

TEST_F(SeekBar, LeavesTheDistanceOfTheLeftEdgesFreeOnBothSides) {
    length(u"60000");
    at(u"60000");
    EXPECT_EQ(app.player().get_PlayedWidth(PlayerWindow::Main), 1000);
    at(u"30000");
    EXPECT_EQ(app.player().get_PlayedWidth(PlayerWindow::Main), 500);
    at(u"1");
    EXPECT_EQ(app.player().get_PlayedWidth(PlayerWindow::Main), 0);
}

TEST_F(SeekBar, RaisesForAPositionWithoutALength) {
    at(u"5000");
    length(u"0");
    EXPECT_THROW(app.player().get_PlayedWidth(PlayerWindow::Main), RunTimeError);
}

TEST_F(SeekBar, OfEachWindowIsItsOwnPair) {
    length(u"1000");
    at(u"1000");
    app.miniForm().load_Played_BG.move({0, 0, 520, 100});
    app.miniForm().load_Played.move({10, 0, 15, 100});
    app.VideoScreen_Form().load_Played_BG.move({0, 0, 800, 100});
    app.VideoScreen_Form().load_Played.move({50, 0, 15, 100});
    EXPECT_EQ(app.player().get_PlayedWidth(PlayerWindow::miniForm), 500);
    EXPECT_EQ(app.player().get_PlayedWidth(PlayerWindow::VideoScreen_Form), 700);
}

TEST_F(SeekBar, SeeksByTheWidthLess60) {
    app.player().open_File(addTrack(u"/m/a.mp3", 60'000));
    media.clearCommands();
    app.player().seek_ByBar(PlayerWindow::Main, 500);
    EXPECT_EQ(media.actions().front(), u"seek NOWMUSIC to 30000");
    EXPECT_EQ(media.positionMs(), 30'000);
}

TEST_F(SeekBar, SeeksBeyondTheLengthAtItsRightEndAndTheEngineRefuses) {
    app.player().open_File(addTrack(u"/m/a.mp3", 60'000));
    media.clearCommands();
    app.player().seek_ByBar(PlayerWindow::Main, 1059);
    EXPECT_EQ(media.actions(), Texts{u"seek NOWMUSIC to 63540"});
}

TEST_F(SeekBar, RoundsTheTargetHalfToEven) {
    app.player().open_File(addTrack(u"/m/a.mp3", 1'001));
    media.clearCommands();
    app.player().seek_ByBar(PlayerWindow::Main, 500); // 500.5
    EXPECT_EQ(media.actions().front(), u"seek NOWMUSIC to 500");
}

TEST_F(SeekBar, WithNothingOpenSeeksTo0InVain) {
    app.player().seek_ByBar(PlayerWindow::Main, 500);
    EXPECT_EQ(media.actions(), Texts{u"seek NOWMUSIC to 0"});
}

TEST_F(SeekBar, OfWidth60Raises) {
    app.Main().load_Played_BG.setWidth(60);
    EXPECT_THROW(app.player().seek_ByBar(PlayerWindow::Main, 5), RunTimeError);
}

} // namespace
} // namespace velmora
