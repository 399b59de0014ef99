// What panels leave free of one monitor among several.

#include "platform/backends/qt/screen/panels.h"

#include <gtest/gtest.h>

namespace velmora::tests {
namespace {

using platform::qt::leftFree;
using platform::qt::Strut;
using Edge = platform::qt::Strut::Edge;

constexpr QRect left(0, 0, 2560, 1440);
constexpr QRect right(2560, 0, 1920, 1080);
constexpr QSize root(4480, 1440);

TEST(PanelsOfMonitors, KeepPartOfTheirOwnMonitorAlone) {
    const Strut foot{Edge::Bottom, 360 + 40, 2560, 4479};
    EXPECT_EQ(leftFree(right, root, {&foot, 1}), QRect(2560, 0, 1920, 1040));
    EXPECT_EQ(leftFree(left, root, {&foot, 1}), left);
}

TEST(PanelsOfMonitors, KeepFromEachEdge) {
    const Strut all[] = {{Edge::Left, 50, 0, 1439},
                         {Edge::Top, 30, 0, 2559},
                         {Edge::Bottom, 40, 0, 2559},
                         {Edge::Right, 60, 0, 1079}};
    EXPECT_EQ(leftFree(left, root, all), QRect(50, 30, 2510, 1370));
    EXPECT_EQ(leftFree(right, root, all), QRect(2560, 0, 1860, 1080));
}

TEST(PanelsOfMonitors, BetweenMonitorsKeepPartOfTheNearerOneToo) {
    const Strut middle{Edge::Left, 2560 + 70, 0, 1079};
    EXPECT_EQ(leftFree(right, root, {&middle, 1}), QRect(2630, 0, 1850, 1080));
}

TEST(PanelsOfMonitors, ThatWouldLeaveNothingDoNotCount) {
    const Strut all{Edge::Top, 5000, 0, 4479};
    EXPECT_EQ(leftFree(left, root, {&all, 1}), left);
    const Strut reversed{Edge::Top, 40, 100, 50};
    EXPECT_EQ(leftFree(left, root, {&reversed, 1}), left);
}

TEST(PanelsOfMonitors, AtTheSameEdgeKeepTheGreaterPart) {
    const Strut two[] = {{Edge::Bottom, 60, 0, 2559}, {Edge::Bottom, 20, 0, 2559}};
    EXPECT_EQ(leftFree(left, root, two), QRect(0, 0, 2560, 1380));
}

} // namespace
} // namespace velmora::tests
