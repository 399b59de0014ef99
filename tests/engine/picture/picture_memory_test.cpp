// What films leave in the memory of the process that has shown them, which is one of its own for
// that: others would have left something, too.

#include "picture_screen.h"
#include "picture_testing.h"

#include <gtest/gtest.h>

#include <fstream>
#include <malloc.h>
#include <string>

namespace velmora::tests {
namespace {

// What belongs to this process alone and no file, in megabytes.
long ownMegabytes() {
    std::ifstream kept("/proc/self/smaps_rollup");
    std::string line;
    while (std::getline(kept, line) && line.rfind("Anonymous:", 0) != 0) {
    }
    return std::stol(line.substr(10)) / 1024;
}

class PictureMemoryTest : public PictureScreenTest {
protected:
    // Until its picture is seen, which has colours there.
    void show(const std::string &file) {
        const auto device = silentOpener()->open({mediaFile(file), "MPEGVideo", true, parent_});
        ASSERT_TRUE(device && device->putWindow(0, 0, 320, 180)) << file;
        ASSERT_TRUE(playUpTo(*device, 300)) << file;
        ASSERT_TRUE(waitUntil([&] {
            const WindowPixels seen = x_.look(static_cast<xcb_window_t>(device->windowHandle()));
            return !seen.empty() && (seen.at(80, 45) & 0xFFFFFFU) != 0;
        })) << file;
    }
};

TEST_F(PictureMemoryTest, AClosedFilmGivesItsMemoryBackHoweverOftenItIsShown) {
    const long before = ownMegabytes();
    for (int time = 0; time < 2; ++time)
        show("huge_picture.mp4");
    // Its pictures take 50 MB each.
    EXPECT_LT(ownMegabytes(), before + 60);
}

TEST_F(PictureMemoryTest, WhatFilmsLeaveFreeInTheHeapsOfTheirThreadsIsGivenBack) {
    show("film.mp4"); // what stays of a first one is the library's
    malloc_trim(0);
    const long before = ownMegabytes();
    for (const char *name : {"film.mkv", "film.ts", "film.webm", "film.avi", "film.wmv", "film.mov",
                             "film.flv", "film.mpg", "film.ogv"})
        show(name);
    // They leave 8 to 10 MB in pieces.
    EXPECT_TRUE(waitUntil([&] { return ownMegabytes() <= before + 4; }));
}

} // namespace
} // namespace velmora::tests
