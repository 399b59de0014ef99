// What follows the end of a track, heard.

#include "program_heard.h"

namespace velmora::tests {
namespace {

constexpr double low = 500.0;
constexpr double middle = 1000.0;
constexpr double high = 2000.0;

class EndOfTrack : public ProgramHeard {
protected:
    EndOfTrack() {
        row(tone("low.wav", low, low));
        row(tone("middle.wav", middle, middle));
        row(tone("high.wav", high, high));
    }

    static bool isHeard(double frequency) {
        const std::size_t count = recorder_->framesOf(50);
        return amplitudeOf(frequency, recorder_->channel(0, recorder_->frames() - count, count)) >
               0.4;
    }

    // Plays a row to its end and hears what follows: the silence between the two in milliseconds.
    double gapBefore(double next, std::int16_t row, double frequency) {
        playRow(row);
        EXPECT_TRUE(runUntil([&] { return isHeard(frequency); }));
        const std::size_t from = recorder_->frames();
        EXPECT_TRUE(runUntil([&] {
            return app_.player().get_Length() > 0 && lastHeard(from) != MonitorRecorder::frameNone;
        }));
        const std::size_t quiet = lastHeard(from);
        EXPECT_TRUE(runUntil([&] { return isHeard(next); }));
        const std::size_t heardAgain = waitForSound(quiet + recorder_->framesOf(5));
        return static_cast<double>(heardAgain - quiet) * 1000.0 / recorder_->rate();
    }

private:
    // Where silence begins; frameNone while there is none.
    static std::size_t lastHeard(std::size_t from) {
        return recorder_->waitForSilence(loud, 5, from, 0);
    }
};

TEST_F(EndOfTrack, InOrderTheNextRowIsHeardWithin200Ms) {
    app_.setControl().PlayMode = 0;
    EXPECT_LE(gapBefore(middle, 1, low), 200.0);
    EXPECT_EQ(app_.player().nowPlay_Index, 2);
}

TEST_F(EndOfTrack, InOrderTheFirstRowFollowsTheLast) {
    app_.setControl().PlayMode = 0;
    EXPECT_LE(gapBefore(low, 3, high), 200.0);
    EXPECT_EQ(app_.player().nowPlay_Index, 1);
}

// Of two rows random draws the first: it never draws the last.
TEST_F(EndOfTrack, AtRandomADrawnRowIsHeardWithin200Ms) {
    app_.setControl().PlayMode = 1;
    app_.playList_Form().playList_Item.removeItem(2);
    app_.playList_Form().List1.removeItem(2);
    EXPECT_LE(gapBefore(low, 2, middle), 200.0);
    EXPECT_EQ(app_.player().nowPlay_Index, 1);
}

TEST_F(EndOfTrack, RepeatingTheSameRowIsHeardAgainWithin200Ms) {
    app_.setControl().PlayMode = 2;
    EXPECT_LE(gapBefore(middle, 2, middle), 200.0);
    EXPECT_EQ(app_.player().nowPlay_Index, 2);
}

TEST_F(EndOfTrack, WithoutAutoPlayItStaysSilent) {
    app_.setControl().isAutoPlay = 1;
    playRow(1);
    ASSERT_TRUE(runUntil([&] { return isHeard(low); }));
    const std::size_t from = recorder_->frames();
    ASSERT_TRUE(runUntil(
        [&] { return recorder_->waitForSilence(loud, 5, from, 0) != MonitorRecorder::frameNone; }));
    const std::size_t quiet = recorder_->frames();
    listen(1000);
    EXPECT_EQ(recorder_->waitForLoud(loud, quiet, 0), MonitorRecorder::frameNone);
    EXPECT_EQ(app_.player().nowPlay_Index, 1);
}

} // namespace
} // namespace velmora::tests
