// Where a design's controls are, as others are told.

#include "design_places.h"

#include <gtest/gtest.h>

namespace velmora::formc {

namespace {

std::string placesOf(const std::string &text) {
    const Design design = parseDesign(text, Skin{});
    for (const Fault &fault : design.faults)
        ADD_FAILURE() << fault.line << ": " << fault.text;
    return writePlaces(design);
}

} // namespace

TEST(Places, AreThoseOfTheFormAndOfWhatLiesOnIt) {
    EXPECT_EQ(placesOf("form F\n    size 7200 3240\n"
                       "Label one\n    at 120 50.5\n    size 300 200\n"
                       "Label two\n    size 90 95\n    at 15 0\n"),
              "{\"form\": [0, 0, 7200, 3240],\n"
              " \"one\": [120, 50.5, 300, 200],\n"
              " \"two\": [15, 0, 90, 95]}\n");
}

TEST(Places, LeaveOutWhatLiesInAnotherControl) {
    EXPECT_EQ(placesOf("form F\n    size 300 300\n"
                       "PictureBox box\n    at 15 30\n    size 90 90\n"
                       "    Label within\n        at 1 2\n        size 30 30\n"),
              "{\"form\": [0, 0, 300, 300],\n \"box\": [15, 30, 90, 90]}\n");
}

} // namespace velmora::formc
