// Every container and codec of the picture device, heard: the null sink's record is compared with
// the sound that went into the files.

#include "picture_listening.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>

namespace velmora::tests {
namespace {

struct Container {
    const char *file;
    double codecDelayMs = 0.0; // silence that the encoder put in front, and no header tells of
};

void PrintTo(const Container &container, std::ostream *out) { *out << container.file; }

class EveryContainer : public PictureHeard, public testing::WithParamInterface<Container> {};

TEST_P(EveryContainer, ASeekIsHeardWithin50MsOfItsPlace) {
    const auto device = open(GetParam().file);
    ASSERT_TRUE(device);
    for (const int target : {3210, 9650}) {
        const SourceSound::Match match = hearSeek(*device, target);
        EXPECT_GT(match.correlation, 0.7) << target;
        EXPECT_NEAR(match.seconds * 1000.0 + GetParam().codecDelayMs, target, 50.0);
    }
}

// Left, then right: what is heard on both speakers is that side of the source, at the place that
// the device tells.
TEST_P(EveryContainer, OneSideIsHeardOnBothSpeakersAtThePositionTold) {
    const auto device = open(GetParam().file);
    ASSERT_TRUE(device);
    ASSERT_TRUE(playUpTo(*device, 300));
    for (const auto &[channel, side] :
         {std::pair{Channel::Right, 1}, std::pair{Channel::Left, 0}}) {
        ASSERT_TRUE(device->setChannel(channel));
        const auto heardSide = hearPosition(*device, 0, side);
        EXPECT_GT(heardSide.match.correlation, 0.7) << "side " << side;
        EXPECT_NEAR(heardSide.match.seconds * 1000.0 + GetParam().codecDelayMs,
                    heardSide.told * 1000.0, 60.0);
        EXPECT_EQ(heard(0, heardSide.frame, 250), heard(1, heardSide.frame, 250));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Files, EveryContainer,
    testing::Values(Container{"film.mp4"}, Container{"film.flv"}, Container{"film.avi"},
                    Container{"vbr.avi"}, Container{"film.mpg"}, Container{"film2.mpg"},
                    Container{"film.wmv", 46.0}, Container{"film.mkv"}, Container{"film.ts"},
                    Container{"film.ogv"}, Container{"film.webm"}, Container{"film.mov"},
                    Container{"sound.wma", 46.0}, Container{"sound.tta"}, Container{"sound.m4a"},
                    Container{"sound.aac", 23.0}, Container{"sound.wv"}, Container{"sound.ac3"},
                    Container{"sound_live.mka"}, Container{"cover.m4a"}),
    [](const auto &container) {
        std::string name = container.param.file;
        std::replace(name.begin(), name.end(), '.', '_');
        return name;
    });

} // namespace
} // namespace velmora::tests
