// An engine that lets go of its medium, as at some faults in a file: the next command opens it
// anew. One that stands without having been told to.

#include "picture_testing.h"

#include "platform/backends/picture/picture_opener.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace velmora::tests {
namespace {

class EngineFault : public testing::Test {
protected:
    EngineFault()
        : opener_([] {
              platform::PictureOptions options;
              options.audioOutput = "null";
              return options;
          }()) {}

    void SetUp() override {
        auto medium = opener_.load({mediaFile("sound.m4a"), "MPEGVideo", false, 0});
        ASSERT_TRUE(medium);
        core_ = medium->core.get();
        device_ = std::make_unique<platform::picture::PictureDevice>(std::move(*medium));
        ASSERT_TRUE(playUpTo(*device_, 300));
    }
    // Where the engine itself is, in ms; -1: nowhere.
    int engineMs() {
        const auto seconds = core_->number("time-pos");
        return seconds ? static_cast<int>(*seconds * 1000) : -1;
    }

    platform::picture::PictureOpener opener_;
    platform::picture::MpvCore *core_ = nullptr;
    std::unique_ptr<platform::picture::PictureDevice> device_;
};

class LetGo : public EngineFault {
protected:
    void SetUp() override {
        EngineFault::SetUp();
        if (!HasFatalFailure())
            letGo();
    }
    void letGo() {
        ASSERT_NE(core_->command({"stop"}), 0U);
        ASSERT_TRUE(waitUntil([&] { return device_->mode() == Mode::Stopped; }));
        EXPECT_EQ(device_->positionMs(), device_->lengthMs());
    }
    // Plays on for half a second from a place and nowhere else.
    void expectPlaysFrom(int ms) {
        int least = ms;
        ASSERT_TRUE(waitUntil([&] {
            const int told = device_->positionMs();
            least = std::min(least, told);
            return told >= ms + 500;
        }));
        EXPECT_EQ(least, ms);
        EXPECT_LT(device_->positionMs(), ms + 1500);
        // Time goes on at once, the engine once it has loaded; then they agree, and not elsewhere.
        EXPECT_TRUE(waitUntil([&] { return std::abs(engineMs() - device_->positionMs()) <= 200; }));
        EXPECT_GE(engineMs(), ms - 50);
        EXPECT_EQ(device_->mode(), Mode::Playing);
    }
};

TEST_F(LetGo, PlayBeginsAnew) {
    ASSERT_TRUE(device_->play());
    expectPlaysFrom(0);
}

TEST_F(LetGo, ASeekGoesToItsPlace) {
    ASSERT_TRUE(device_->seek(6000));
    EXPECT_EQ(device_->mode(), Mode::Paused);
    EXPECT_EQ(device_->positionMs(), 6000);
    ASSERT_TRUE(device_->play());
    expectPlaysFrom(6000);
}

TEST_F(LetGo, OfTwoSeeksTheLastCounts) {
    ASSERT_TRUE(device_->seek(6000));
    ASSERT_TRUE(device_->seek(9000));
    ASSERT_TRUE(device_->seek(3000));
    EXPECT_EQ(device_->positionMs(), 3000);
    ASSERT_TRUE(device_->play());
    expectPlaysFrom(3000);
}

TEST_F(LetGo, OfSeeksAllTheWhileItLoadsTheLastCounts) {
    int target = 3000;
    ASSERT_TRUE(device_->seek(target));
    // Whatever the engine is just then at.
    ASSERT_TRUE(waitUntil([&] { return device_->seek(++target) && engineMs() >= 0; }));
    ASSERT_LT(target, 9000);
    ASSERT_TRUE(device_->play());
    expectPlaysFrom(target);
}

TEST_F(LetGo, PlayAfterASeekToTheEndStartsOver) {
    ASSERT_TRUE(device_->seek(device_->lengthMs()));
    ASSERT_TRUE(device_->play());
    expectPlaysFrom(0);
}

TEST_F(LetGo, PlayAfterASeekAndASecondFaultBeginsAnew) {
    ASSERT_TRUE(device_->seek(6000));
    ASSERT_TRUE(device_->play());
    expectPlaysFrom(6000);
    letGo();
    ASSERT_TRUE(device_->play());
    expectPlaysFrom(0);
}

// The engine pauses by itself: it stands, and nothing tells of an end.
class Hang : public EngineFault {
protected:
    void hangAt(int ms) {
        ASSERT_TRUE(device_->seek(ms));
        ASSERT_TRUE(device_->play());
        ASSERT_TRUE(waitUntil([&] { return engineMs() >= ms + 100; }));
        ASSERT_NE(core_->set("pause", true), 0U);
        ASSERT_TRUE(waitUntil([&] { return core_->flag("core-idle").value_or(false); }));
        ASSERT_FALSE(core_->flag("eof-reached").value_or(true));
    }
};

TEST_F(Hang, WhereTheMediumEndsIsItsEnd) {
    hangAt(device_->lengthMs() - 400);
    EXPECT_EQ(device_->mode(), Mode::Playing);
    EXPECT_TRUE(waitUntil([&] { return device_->mode() == Mode::Stopped; }));
    EXPECT_EQ(device_->positionMs(), device_->lengthMs());
}

TEST_F(Hang, AnywhereElseIsNone) {
    hangAt(device_->lengthMs() - 2000);
    EXPECT_FALSE(waitUntil([&] { return device_->mode() != Mode::Playing; }, 5000));
}

} // namespace
} // namespace velmora::tests
