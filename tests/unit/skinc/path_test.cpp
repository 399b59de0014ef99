#include "path.h"

#include <gmock/gmock.h>

#include <cmath>

namespace velmora::skinc {
namespace {

using testing::ElementsAre;

MATCHER_P2(At, x, y, "") { return std::abs(arg.x - x) < 1e-6 && std::abs(arg.y - y) < 1e-6; }

TEST(PathData, MovesAndDrawsLinesAbsoluteAndRelative) {
    const Path path = parsePathData("M1 2L3 4l1,1H9h-2V0v5Z");
    EXPECT_THAT(path.verbs, ElementsAre(Verb::Move, Verb::Line, Verb::Line, Verb::Line, Verb::Line,
                                        Verb::Line, Verb::Line, Verb::Close));
    EXPECT_THAT(path.points,
                ElementsAre(At(1, 2), At(3, 4), At(4, 5), At(9, 5), At(7, 5), At(7, 0), At(7, 5)));
}

TEST(PathData, FurtherPairsBehindAMoveAreLines) {
    EXPECT_THAT(parsePathData("m1 1 2 2 3 3").points, ElementsAre(At(1, 1), At(3, 3), At(6, 6)));
    EXPECT_THAT(parsePathData("M1 1 2 2").verbs, ElementsAre(Verb::Move, Verb::Line));
}

TEST(PathData, NumbersMayTouchTheirNeighbours) {
    EXPECT_THAT(parsePathData("M.5-1L+2-.25").points, ElementsAre(At(.5, -1), At(2, -.25)));
}

TEST(PathData, AfterClosingGoesOnFromTheStart) {
    EXPECT_THAT(parsePathData("M5 5h3v3zl1 1").points.back(), At(6, 6));
}

TEST(PathData, KeepsCubicsAndRaisesQuadratics) {
    EXPECT_THAT(parsePathData("M0 0c1 0 2 1 2 2").points,
                ElementsAre(At(0, 0), At(1, 0), At(2, 1), At(2, 2)));
    EXPECT_THAT(parsePathData("M0 0Q3 0 3 3").points,
                ElementsAre(At(0, 0), At(2, 0), At(3, 1), At(3, 3)));
}

TEST(PathData, TurnsAQuarterArcIntoOneCubicOnTheCircle) {
    const Path path = parsePathData("M10 0A10 10 0 0 1 0 10");
    ASSERT_THAT(path.verbs, ElementsAre(Verb::Move, Verb::Cubic));
    EXPECT_THAT(path.points,
                ElementsAre(At(10, 0), At(10, 5.522847498), At(5.522847498, 10), At(0, 10)));
}

TEST(PathData, TakesTheLargeArcTheOtherWayRound) {
    const Path path = parsePathData("M10 0A10 10 0 1 0 0 10");
    EXPECT_EQ(path.verbs.size(), 4U); // three quarters
    const auto box = bounds(path);
    EXPECT_NEAR(box[0], -10, 0.1);
    EXPECT_NEAR(box[1], -10, 0.1);
    EXPECT_THAT(path.points.back(), At(0, 10));
}

TEST(PathData, GrowsAnArcThatIsTooSmallAndDropsAnEmptyOne) {
    const Path grown = parsePathData("M0 0A1 1 0 0 1 10 0");
    EXPECT_NEAR(bounds(grown)[1], -5, 1.7); // a half circle of radius 5 over the chord
    EXPECT_THAT(parsePathData("M1 1A5 5 0 0 1 1 1").verbs, ElementsAre(Verb::Move));
    EXPECT_THAT(parsePathData("M1 1A0 5 0 0 1 2 2").verbs, ElementsAre(Verb::Move, Verb::Line));
}

TEST(PathData, ReadsArcFlagsWithoutBlanks) {
    EXPECT_THAT(parsePathData("M10 0a10 10 0 01-10 10").points.back(), At(0, 10));
}

TEST(PathData, RefusesWhatItDoesNotKnow) {
    for (const char *text : {"", "  ", "L1 1", "1 2", "M1", "M1 x", "M1 1S2 2 3 3", "M1 1T2 2",
                             "M1 1Z2", "M1 1A1 1 0 2 0 3 3", "M1e999 1", "M1 1L--2 2"})
        EXPECT_THROW(parsePathData(text), GeometryError) << text;
}

TEST(Transforms, ApplyFromTheRight) {
    const Transform t = parseTransform("translate(10 20) scale(2)");
    EXPECT_THAT(t.apply({1, 1}), At(12, 22));
    EXPECT_DOUBLE_EQ(t.scale(), 2);
}

TEST(Transforms, RotateAboutAPoint) {
    EXPECT_THAT(parseTransform("rotate(90)").apply({1, 0}), At(0, 1));
    EXPECT_THAT(parseTransform("rotate(90, 5, 5)").apply({6, 5}), At(5, 6));
}

TEST(Transforms, RefuseWhatTheyDoNotKnow) {
    for (const char *text : {"skewX(3)", "translate", "translate(1", "scale()", "rotate(1 2)"})
        EXPECT_THROW(parseTransform(text), GeometryError) << text;
}

TEST(Outlines, ARectangleWithoutRadiusHasFourStraightEdges) {
    const Path path = rectangle(1, 2, 3, 4, 0, 0);
    EXPECT_THAT(path.points, ElementsAre(At(1, 2), At(4, 2), At(4, 6), At(1, 6)));
}

TEST(Outlines, ARadiusIsHalfTheRectangleAtMost) {
    const Path path = rectangle(0, 0, 10, 4, 8, 8);
    EXPECT_THAT(path.points.front(), At(5, 0));
    EXPECT_EQ(bounds(path), (std::array<double, 4>{0, 0, 10, 4}));
}

TEST(Outlines, AnEllipseReachesItsRadii) {
    EXPECT_EQ(bounds(ellipse({5, 6}, 3, 2)), (std::array<double, 4>{2, 4, 8, 8}));
}

TEST(Outlines, PointsComeInPairs) {
    EXPECT_THROW(polyline({1, 2, 3}, false), GeometryError);
    EXPECT_THROW(polyline({1, 2}, true), GeometryError);
    EXPECT_EQ(polyline({0, 0, 1, 1}, true).verbs.back(), Verb::Close);
}

} // namespace
} // namespace velmora::skinc
