// Films in windows of a private X server: what is seen, where, and when it is gone.

#include "picture_screen.h"
#include "picture_testing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>

namespace velmora::tests {
namespace {

constexpr std::uint32_t red = 0xFF0000;
constexpr std::uint32_t lime = 0x00FF00;
constexpr std::uint32_t blue = 0x0000FF;
constexpr std::uint32_t white = 0xFFFFFF;

// A picture that was encoded and scaled has its colours roughly.
bool isLike(std::uint32_t pixel, std::uint32_t colour, int tolerance = 60) {
    for (const int shift : {16, 8, 0}) {
        const int a = static_cast<int>(pixel >> shift & 0xFFU);
        const int b = static_cast<int>(colour >> shift & 0xFFU);
        if (std::abs(a - b) > tolerance)
            return false;
    }
    return true;
}

// The four quarters of the films, in the middle of each corner, the whole window filled.
bool showsQuarters(const WindowPixels &seen, std::uint32_t topLeft = red,
                   std::uint32_t topRight = lime, std::uint32_t bottomLeft = blue,
                   std::uint32_t bottomRight = white) {
    if (seen.empty())
        return false;
    const int right = seen.width - 1 - seen.width / 16;
    const int bottom = seen.height - 1 - seen.height / 16;
    const int left = seen.width / 16;
    const int top = seen.height / 16;
    return isLike(seen.at(left, top), topLeft) && isLike(seen.at(right, top), topRight) &&
           isLike(seen.at(left, bottom), bottomLeft) && isLike(seen.at(right, bottom), bottomRight);
}

// The grey of the centre, which tells the second of the picture.
int greyOf(const WindowPixels &seen) {
    return seen.empty() ? -1 : static_cast<int>(seen.at(seen.width / 2, seen.height / 2) & 0xFFU);
}

// Luma 16 and 18 more each second, in full range.
int greyAt(int second) { return second * 18 * 255 / 219; }

class PictureWindowTest : public PictureScreenTest {
protected:
    std::unique_ptr<Device> openInside(const std::string &file, xcb_window_t parent) {
        return silentOpener()->open({mediaFile(file), "MPEGVideo", true, parent});
    }
    std::unique_ptr<Device> openInside(const std::string &file) {
        return openInside(file, parent_);
    }
    std::unique_ptr<Device> openAlone(const std::string &file) {
        return silentOpener()->open({mediaFile(file), "MPEGVideo", true, 0});
    }

    static xcb_window_t windowOf(Device &device) {
        return static_cast<xcb_window_t>(device.windowHandle());
    }
    bool waitForQuarters(xcb_window_t window) {
        return waitUntil([&] { return showsQuarters(x_.look(window)); });
    }
    void resizeParent(int width, int height) {
        const std::uint32_t values[] = {static_cast<std::uint32_t>(width),
                                        static_cast<std::uint32_t>(height)};
        xcb_configure_window(x_.connection(), parent_,
                             XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values);
        xcb_flush(x_.connection());
    }
    // The device is asked meanwhile, as the program does.
    bool waitForGrey(Device &device, int second) {
        return waitUntil([&] {
            (void)device.mode();
            return std::abs(greyOf(x_.look(windowOf(device))) - greyAt(second)) <= 8;
        });
    }
};

TEST_F(PictureWindowTest, ThePictureIsAHiddenChildOfTheParentUntilItIsPut) {
    const auto device = openInside("film.mp4");
    ASSERT_TRUE(device);
    const xcb_window_t window = windowOf(*device);
    ASSERT_NE(window, 0U);
    EXPECT_EQ(x_.childrenOf(parent_), std::vector{window});
    EXPECT_FALSE(x_.geometry(window).isMapped);
}

TEST_F(PictureWindowTest, PutShowsThePictureAtItsPlaceAndSize) {
    const auto device = openInside("film.mp4");
    ASSERT_TRUE(device);
    ASSERT_TRUE(device->putWindow(10, 20, 400, 300));
    const auto place = x_.geometry(windowOf(*device));
    EXPECT_EQ(place.x, 10);
    EXPECT_EQ(place.y, 20);
    EXPECT_EQ(place.width, 400);
    EXPECT_EQ(place.height, 300);
    EXPECT_TRUE(place.isMapped);
    ASSERT_TRUE(device->play());
    EXPECT_TRUE(waitForQuarters(windowOf(*device)));
    // Around it the parent is as it was.
    const WindowPixels seen = x_.look(parent_);
    EXPECT_EQ(seen.at(5, 5), 0x808080U);
    EXPECT_EQ(seen.at(415, 100), 0x808080U);
    EXPECT_TRUE(isLike(seen.at(14, 24), red));
}

TEST_F(PictureWindowTest, TheFirstPictureIsThereBeforePlay) {
    const auto device = openInside("film.mp4");
    ASSERT_TRUE(device);
    ASSERT_TRUE(device->putWindow(0, 0, 320, 240));
    EXPECT_TRUE(waitForQuarters(windowOf(*device)));
    EXPECT_TRUE(waitForGrey(*device, 0));
}

TEST_F(PictureWindowTest, ASecondPutStretchesThePictureWithoutRegardToItsProportions) {
    const auto device = openInside("film.mp4");
    ASSERT_TRUE(device);
    for (const auto &[width, height] : {std::pair{320, 240}, {730, 525}, {700, 60}, {40, 500}}) {
        ASSERT_TRUE(device->putWindow(0, 0, width, height));
        EXPECT_TRUE(waitForQuarters(windowOf(*device))) << width << "x" << height;
    }
}

TEST_F(PictureWindowTest, APutOfAPausedFilmIsDrawnToo) {
    const auto device = openInside("film.mp4");
    ASSERT_TRUE(device);
    ASSERT_TRUE(device->putWindow(0, 0, 320, 240));
    ASSERT_TRUE(playUpTo(*device, 300));
    ASSERT_TRUE(device->pause());
    ASSERT_TRUE(device->putWindow(0, 0, 640, 480));
    EXPECT_TRUE(waitForQuarters(windowOf(*device)));
}

TEST_F(PictureWindowTest, APlaceThatNoWindowCanHaveIsRefused) {
    const auto device = openInside("film.mp4");
    ASSERT_TRUE(device);
    ASSERT_TRUE(device->putWindow(0, 0, 320, 240));
    EXPECT_FALSE(device->putWindow(0, 0, 0, 240));
    EXPECT_FALSE(device->putWindow(0, 0, 320, -1));
    EXPECT_FALSE(device->putWindow(0, 0, 40'000, 240));
    EXPECT_FALSE(device->putWindow(-40'000, 0, 320, 240));
    EXPECT_FALSE(device->putWindow(2'147'483'647, 0, 320, 240));
    EXPECT_EQ(x_.geometry(windowOf(*device)).width, 320);
}

TEST_F(PictureWindowTest, ASeekShowsThePictureOfItsPlace) {
    for (const char *file : {"film.mp4", "film.avi", "film.mpg", "film2.mpg", "film.wmv",
                             "film.flv", "film.ts", "film.mkv", "film.webm", "film.mov"}) {
        const auto device = openInside(file);
        ASSERT_TRUE(device) << file;
        ASSERT_TRUE(device->putWindow(0, 0, 320, 240));
        for (const int second : {7, 2, 10}) {
            ASSERT_TRUE(device->seek(second * 1000 + 500));
            EXPECT_TRUE(waitForGrey(*device, second)) << file << " " << second;
        }
    }
}

// The engine draws such a picture after the time at which it would look for what is to do next, and
// would keep the drawing to itself for ten seconds.
TEST_F(PictureWindowTest, ASeekShowsAtOnceAPictureThatIsDrawnLongerThanItLasts) {
    const auto device = openInside("quick_pictures.mp4");
    ASSERT_TRUE(device);
    ASSERT_TRUE(device->putWindow(0, 0, 730, 525));
    const auto begun = std::chrono::steady_clock::now();
    for (const int second : {2, 1, 0, 2, 0, 1, 2, 1}) {
        ASSERT_TRUE(device->seek(second * 1000 + 500));
        ASSERT_TRUE(waitForGrey(*device, second)) << second;
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(40));
}

TEST_F(PictureWindowTest, ThePictureMovesWithTheSound) {
    const auto device = openInside("film.mp4");
    ASSERT_TRUE(device);
    ASSERT_TRUE(device->putWindow(0, 0, 320, 240));
    ASSERT_TRUE(device->seek(4500));
    ASSERT_TRUE(playUpTo(*device, 5500));
    EXPECT_NEAR(greyOf(x_.look(windowOf(*device))), greyAt(5), 8);
    EXPECT_LT(device->positionMs(), 5950);
}

TEST_F(PictureWindowTest, AFilmWithoutSoundPlaysAndEnds) {
    const auto device = openInside("silent.avi");
    ASSERT_TRUE(device);
    EXPECT_NEAR(device->lengthMs(), 12'000, 50);
    ASSERT_TRUE(device->putWindow(0, 0, 320, 240));
    ASSERT_TRUE(playUpTo(*device, 700));
    EXPECT_TRUE(waitForQuarters(windowOf(*device)));
    EXPECT_TRUE(device->setChannel(Channel::Left));
    ASSERT_TRUE(device->seek(11'600));
    EXPECT_EQ(device->mode(), Mode::Paused);
    ASSERT_TRUE(device->play());
    EXPECT_TRUE(waitUntil([&] { return device->mode() == Mode::Stopped; }));
    EXPECT_EQ(device->positionMs(), device->lengthMs());
    ASSERT_TRUE(device->play());
    EXPECT_TRUE(waitUntil([&] { return device->positionMs() >= 200; }));
    EXPECT_LT(device->positionMs(), 3000);
}

TEST_F(PictureWindowTest, ARotatedFilmIsShownUpright) {
    const auto device = openInside("rotated.mp4");
    ASSERT_TRUE(device);
    ASSERT_TRUE(device->putWindow(0, 0, 240, 320));
    // A quarter turn to the one side or the other, as its mark says.
    EXPECT_TRUE(waitUntil([&] {
        const WindowPixels seen = x_.look(windowOf(*device));
        return showsQuarters(seen, blue, red, white, lime) ||
               showsQuarters(seen, lime, white, red, blue);
    }));
}

TEST_F(PictureWindowTest, AFilmWhosePictureChangesItsSizeFillsTheWindowThroughout) {
    const auto device = openInside("size_change.ts");
    ASSERT_TRUE(device);
    ASSERT_TRUE(device->putWindow(0, 0, 320, 240));
    ASSERT_TRUE(device->play());
    ASSERT_TRUE(waitForQuarters(windowOf(*device)));
    int looks = 0;
    EXPECT_TRUE(waitUntil([&] {
        looks += showsQuarters(x_.look(windowOf(*device))) ? 1 : 0;
        return device->mode() == Mode::Stopped;
    }));
    EXPECT_GT(looks, 10);
    EXPECT_EQ(x_.geometry(windowOf(*device)).width, 320);
}

TEST_F(PictureWindowTest, AnEnormousPictureIsShownInASmallWindow) {
    const auto device = openInside("huge_picture.mp4");
    ASSERT_TRUE(device);
    ASSERT_TRUE(device->putWindow(0, 0, 320, 180));
    EXPECT_TRUE(waitUntil(
        [&] {
            const WindowPixels seen = x_.look(windowOf(*device));
            return !seen.empty() && isLike(seen.at(160, 90), red);
        },
        30'000));
}

TEST_F(PictureWindowTest, CoverArtIsNoPicture) {
    const auto device = openInside("cover.m4a");
    ASSERT_TRUE(device);
    EXPECT_EQ(device->windowHandle(), 0U);
    EXPECT_FALSE(device->putWindow(0, 0, 320, 240));
    EXPECT_TRUE(x_.childrenOf(parent_).empty());
}

TEST_F(PictureWindowTest, WithoutStyleChildThereIsNoWindow) {
    const auto device = silentOpener()->open({mediaFile("film.mp4"), "Waveaudio", false, 0});
    ASSERT_TRUE(device);
    EXPECT_EQ(device->windowHandle(), 0U);
    EXPECT_TRUE(playUpTo(*device, 200));
}

TEST_F(PictureWindowTest, AParentThatDoesNotExistLeavesTheSound) {
    const auto device = openInside("film.mp4", 0x1FFFFFF0);
    ASSERT_TRUE(device);
    EXPECT_EQ(device->windowHandle(), 0U);
    EXPECT_FALSE(device->putWindow(0, 0, 320, 240));
    EXPECT_TRUE(playUpTo(*device, 200));
}

TEST_F(PictureWindowTest, AParentThatIsDestroyedEndsThePictureOnly) {
    const auto device = openInside("film.mp4");
    ASSERT_TRUE(device);
    ASSERT_TRUE(device->putWindow(0, 0, 320, 240));
    ASSERT_TRUE(playUpTo(*device, 300));
    ASSERT_TRUE(waitForQuarters(windowOf(*device)));
    x_.destroyWindow(parent_);
    EXPECT_TRUE(waitUntil([&] { return device->windowHandle() == 0; }));
    EXPECT_FALSE(device->putWindow(0, 0, 320, 240));
    const int begun = device->positionMs();
    EXPECT_TRUE(waitUntil([&] { return device->positionMs() >= begun + 500; }));
    EXPECT_EQ(device->mode(), Mode::Playing);
    parent_ = x_.makeWindow(0, 0, 100, 100);
}

// The engine still draws into a window that is gone already: no error of that may end the process.
TEST_F(PictureWindowTest, AMediumIsClosedWhileItsParentIsDestroyed) {
    for (int round = 0; round < 10; ++round) {
        auto device = openInside("film.mp4");
        ASSERT_TRUE(device);
        ASSERT_TRUE(device->putWindow(0, 0, 320, 240));
        ASSERT_TRUE(playUpTo(*device, 100));
        x_.destroyWindow(parent_);
        device.reset();
        parent_ = x_.makeWindow(0, 0, 400, 300);
    }
    EXPECT_TRUE(x_.connected());
}

TEST_F(PictureWindowTest, ClosingTheMediumTakesTheWindowAway) {
    auto device = openInside("film.mp4");
    ASSERT_TRUE(device);
    ASSERT_TRUE(device->putWindow(0, 0, 320, 240));
    ASSERT_TRUE(playUpTo(*device, 200));
    device.reset();
    EXPECT_TRUE(waitUntil([&] { return x_.childrenOf(parent_).empty(); }));
}

TEST_F(PictureWindowTest, FilmsFollowEachOtherInTheSameParent) {
    for (const char *file : {"film.mp4", "film.avi", "rotated.mp4", "film.mpg", "damaged.avi",
                             "film.wmv", "sound.m4a", "film.flv", "truncated.mp4", "film.mp4"}) {
        const auto device = openInside(file);
        ASSERT_TRUE(device) << file;
        const bool isFilm = std::string(file) != "sound.m4a";
        EXPECT_EQ(device->putWindow(0, 0, 320, 240), isFilm) << file;
        EXPECT_TRUE(playUpTo(*device, 150)) << file;
    }
    EXPECT_TRUE(waitUntil([&] { return x_.childrenOf(parent_).empty(); }));
}

TEST_F(PictureWindowTest, InsideATranslucentParentThePictureIsWhole) {
    const xcb_window_t translucent = x_.makeWindow(200, 100, 400, 300, true);
    {
        const auto device = openInside("film.mp4", translucent);
        ASSERT_TRUE(device);
        ASSERT_TRUE(device->putWindow(0, 0, 320, 240));
        EXPECT_TRUE(waitForQuarters(windowOf(*device)));
    }
    x_.destroyWindow(translucent);
}

TEST_F(PictureWindowTest, ClicksAndKeysReachTheParent) {
    const xcb_window_t listening =
        x_.makeWindow(0, 0, 400, 300, false, XCB_EVENT_MASK_BUTTON_PRESS);
    {
        const auto device = openInside("film.mp4", listening);
        ASSERT_TRUE(device);
        ASSERT_TRUE(device->putWindow(0, 0, 400, 300));
        ASSERT_TRUE(waitForQuarters(windowOf(*device)));
        ASSERT_EQ(std::system("xdotool mousemove 200 150 click 1"), 0);
        bool isClicked = false;
        EXPECT_TRUE(waitUntil([&] {
            while (xcb_generic_event_t *event = xcb_poll_for_event(x_.connection())) {
                isClicked = isClicked || (event->response_type & 0x7F) == XCB_BUTTON_PRESS;
                std::free(event);
            }
            return isClicked;
        }));
        EXPECT_EQ(device->mode(), Mode::Stopped); // and the engine did nothing of its own
    }
    x_.destroyWindow(listening);
}

TEST_F(PictureWindowTest, StyleChildAloneOpensAWindowOfTheFilmsSizeAndName) {
    const auto device = openAlone("film.mp4");
    ASSERT_TRUE(device);
    const xcb_window_t window = windowOf(*device);
    ASSERT_NE(window, 0U);
    const auto children = x_.childrenOf(x_.screen()->root);
    EXPECT_NE(std::find(children.begin(), children.end(), window), children.end());
    EXPECT_EQ(x_.title(window), "film");
    EXPECT_EQ(x_.geometry(window).width, 320);
    EXPECT_EQ(x_.geometry(window).height, 240);
    EXPECT_TRUE(waitForQuarters(window));
}

TEST_F(PictureWindowTest, ARotatedFilmHasAnUprightWindow) {
    const auto device = openAlone("rotated.mp4");
    ASSERT_TRUE(device);
    EXPECT_EQ(x_.geometry(windowOf(*device)).width, 240);
    EXPECT_EQ(x_.geometry(windowOf(*device)).height, 320);
}

TEST_F(PictureWindowTest, AnEnormousFilmGetsAWindowThatFitsTheScreen) {
    const auto device = openAlone("huge_picture.mp4");
    ASSERT_TRUE(device);
    const auto place = x_.geometry(windowOf(*device));
    EXPECT_LE(place.width, 1280);
    EXPECT_LE(place.height, 1024);
    EXPECT_NEAR(place.width * 9.0 / 16.0, place.height, 2.0);
}

TEST_F(PictureWindowTest, ClosingTheEnginesWindowEndsThePictureAndNotTheSound) {
    const auto device = openAlone("film.mp4");
    ASSERT_TRUE(device);
    const xcb_window_t window = windowOf(*device);
    ASSERT_TRUE(playUpTo(*device, 300));
    x_.askToClose(window);
    EXPECT_TRUE(waitUntil([&] { return device->windowHandle() == 0; }));
    EXPECT_TRUE(waitUntil([&] { return !x_.geometry(window).isMapped; }));
    EXPECT_FALSE(device->putWindow(0, 0, 320, 240));
    const int begun = device->positionMs();
    EXPECT_TRUE(waitUntil([&] { return device->positionMs() >= begun + 500; }));
    EXPECT_EQ(device->mode(), Mode::Playing);
    ASSERT_TRUE(device->seek(5000));
    EXPECT_TRUE(playUpTo(*device, 5200));
}

TEST_F(PictureWindowTest, ClosingTheWindowOfAFilmWithoutSoundLetsItRunToItsEnd) {
    const auto device = openAlone("silent.avi");
    ASSERT_TRUE(device);
    const xcb_window_t window = windowOf(*device);
    ASSERT_TRUE(device->seek(10'500));
    ASSERT_TRUE(device->play());
    x_.askToClose(window);
    EXPECT_TRUE(waitUntil([&] { return device->windowHandle() == 0; }));
    EXPECT_EQ(device->mode(), Mode::Playing);
    EXPECT_TRUE(waitUntil([&] { return device->mode() == Mode::Stopped; }));
}

TEST_F(PictureWindowTest, OnceOverTheWholeOfItsParentItKeepsFillingIt) {
    const auto device = openInside("film.mp4");
    ASSERT_TRUE(device);
    ASSERT_TRUE(device->putWindow(0, 0, 730, 525));
    const auto fills = [&](int width, int height) {
        resizeParent(width, height);
        return waitUntil([&] {
            (void)device->mode();
            const auto now = x_.geometry(windowOf(*device));
            return now.x == 0 && now.y == 0 && now.width == width && now.height == height;
        });
    };
    EXPECT_TRUE(fills(90, 70));
    EXPECT_TRUE(fills(400, 300));
    // The parent may come to that size after the picture.
    ASSERT_TRUE(device->putWindow(0, 0, 500, 320));
    EXPECT_TRUE(fills(500, 320));
    EXPECT_TRUE(fills(120, 80));
    // A part of it stays as it is.
    ASSERT_TRUE(device->putWindow(10, 10, 50, 40));
    resizeParent(200, 150);
    EXPECT_FALSE(waitUntil(
        [&] {
            (void)device->mode();
            return x_.geometry(windowOf(*device)).width != 50;
        },
        600));
}

TEST_F(PictureWindowTest, PixelsOfPutAreScaledToThoseOfTheDevice) {
    platform::PictureOptions options;
    options.audioOutput = "null";
    options.pixelScale = [] { return 1.5; };
    const auto device = platform::makePictureOpener(options)->open(
        {mediaFile("film.mp4"), "MPEGVideo", true, parent_});
    ASSERT_TRUE(device);
    ASSERT_TRUE(device->putWindow(10, 20, 200, 101));
    const auto place = x_.geometry(windowOf(*device));
    EXPECT_EQ(place.x, 15);
    EXPECT_EQ(place.y, 30);
    EXPECT_EQ(place.width, 300);
    EXPECT_EQ(place.height, 152);
}

} // namespace
} // namespace velmora::tests
