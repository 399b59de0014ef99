#include "drawing.h"
#include "faults.h"

#include <gmock/gmock.h>

namespace velmora::skinc {
namespace {

using testing::HasSubstr;

const Palette palette = parsePalette("p", "glow #5BE0CF # x\nkey #C7C7C7 # y\n");

Drawing compile(const std::string &body, const std::string &attributes = "") {
    return compileDrawing(
        "d.svg", "d", "<svg viewBox='0 0 20 10' " + attributes + ">" + body + "</svg>", palette);
}

std::string fault(const std::string &body, const std::string &attributes = "") {
    return faultOf([&] { compile(body, attributes); });
}

TEST(Drawing, HasTheSizeOfItsViewBox) {
    const Drawing drawing = compileDrawing(
        "d.svg", "d", "<svg viewBox='-4 -3 26 24'><rect width='1' height='1'/></svg>", palette);
    EXPECT_EQ(drawing.left, -4);
    EXPECT_EQ(drawing.top, -3);
    EXPECT_EQ(drawing.width, 26);
    EXPECT_EQ(drawing.height, 24);
    EXPECT_FALSE(drawing.sliced);
}

TEST(Drawing, TakesColoursFromThePalette) {
    const Shape shape = compile("<circle cx='5' cy='5' r='3' fill='@glow'/>").shapes.at(0);
    EXPECT_EQ(shape.fill.kind, PaintKind::Solid);
    EXPECT_EQ(shape.fill.colour, 0xFF5BE0CFU);
    EXPECT_EQ(shape.stroke.kind, PaintKind::None);
}

TEST(Drawing, GroupsHandDownTheirStyleAndMultiplyTheirOpacity) {
    const Drawing drawing = compile("<g fill='none' stroke='#FFFFFF' stroke-width='1.6' "
                                    "stroke-linecap='round' stroke-linejoin='bevel' opacity='0.5'>"
                                    "<line x1='1' y1='1' x2='9' y2='1'/>"
                                    "<line x2='9' opacity='0.5' stroke-width='3'/></g>");
    const Shape &first = drawing.shapes.at(0);
    EXPECT_EQ(first.fill.kind, PaintKind::None);
    EXPECT_EQ(first.stroke.colour, 0x80FFFFFFU);
    EXPECT_DOUBLE_EQ(first.strokeWidth, 1.6);
    EXPECT_EQ(first.cap, Cap::Round);
    EXPECT_EQ(first.join, Join::Bevel);
    EXPECT_EQ(drawing.shapes.at(1).stroke.colour, 0x40FFFFFFU);
    EXPECT_DOUBLE_EQ(drawing.shapes.at(1).strokeWidth, 3);
}

TEST(Drawing, TheRootHandsDownItsStyleToo) {
    EXPECT_EQ(compile("<path d='M0 0H5'/>", "fill='none' stroke='@glow'").shapes.at(0).fill.kind,
              PaintKind::None);
}

TEST(Drawing, AFillInTheKeyColourIsAHole) {
    EXPECT_EQ(compile("<rect width='2' height='2' fill='#C7C7C7'/>").shapes.at(0).fill.kind,
              PaintKind::Hole);
    EXPECT_EQ(compile("<rect width='2' height='2' fill='@key'/>").shapes.at(0).fill.kind,
              PaintKind::Hole);
    EXPECT_EQ(compile("<rect width='2' height='2' fill='#C7C7C8'/>").shapes.at(0).fill.kind,
              PaintKind::Solid);
}

TEST(Drawing, AHoleIsAWholeFillOrAFault) {
    EXPECT_THAT(fault("<rect width='2' height='2' fill='#C7C7C7' opacity='0.5'/>"),
                HasSubstr("no opacity"));
    EXPECT_THAT(fault("<rect width='2' height='2' stroke='#C7C7C7'/>"), HasSubstr("only a fill"));
}

TEST(Drawing, AGradientOfTheBoxFollowsTheShape) {
    const Drawing drawing =
        compile("<defs><linearGradient id='a' x1='0' y1='0' x2='0' y2='1'>"
                "<stop offset='0' stop-color='@glow'/>"
                "<stop offset='1' stop-color='#000000' stop-opacity='0.5'/></linearGradient></defs>"
                "<rect x='2' y='1' width='4' height='6' fill='url(#a)' fill-opacity='0.5'/>");
    const Paint &fill = drawing.shapes.at(0).fill;
    ASSERT_EQ(fill.kind, PaintKind::Gradient);
    EXPECT_EQ(fill.gradient.from.x, 2);
    EXPECT_EQ(fill.gradient.from.y, 1);
    EXPECT_EQ(fill.gradient.to.y, 7);
    EXPECT_EQ(fill.gradient.stops.at(0).colour, 0x805BE0CFU);
    EXPECT_EQ(fill.gradient.stops.at(1).colour, 0x40000000U);
}

TEST(Drawing, AGradientInUserUnitsStaysAndMovesWithTheTransform) {
    const Drawing drawing =
        compile("<linearGradient id='a' gradientUnits='userSpaceOnUse' x1='0' y1='3' x2='0' y2='9'>"
                "<stop offset='0' stop-color='#000'/><stop offset='1' stop-color='#FFF'/>"
                "</linearGradient><g transform='translate(1 2)'>"
                "<rect width='4' height='6' fill='url(#a)'/></g>");
    EXPECT_EQ(drawing.shapes.at(0).fill.gradient.from.x, 1);
    EXPECT_EQ(drawing.shapes.at(0).fill.gradient.from.y, 5);
}

TEST(Drawing, AGradientMayStandBehindItsUse) {
    EXPECT_EQ(fault("<rect width='4' height='6' fill='url(#a)'/><linearGradient id='a'>"
                    "<stop offset='0' stop-color='#000'/><stop offset='1' stop-color='#FFF'/>"
                    "</linearGradient>"),
              "");
}

TEST(Drawing, TransformsReachPointsAndStrokes) {
    const Shape shape =
        compile("<g transform='scale(2)'><line x1='1' y1='1' x2='3' y2='1' stroke='#FFF' "
                "stroke-width='1.5'/></g>")
            .shapes.at(0);
    EXPECT_EQ(shape.path.points.at(1).x, 6);
    EXPECT_DOUBLE_EQ(shape.strokeWidth, 3);
}

TEST(Drawing, InsetsMakeItStretchAndSnap) {
    const Drawing drawing = compile("<rect width='2' height='2'/>"
                                    "<g data-snap='off'><rect width='2' height='2'/></g>",
                                    "data-slice='3 2 1 0'");
    EXPECT_TRUE(drawing.sliced);
    EXPECT_EQ(drawing.slice, (std::array<double, 4>{3, 2, 1, 0}));
    EXPECT_TRUE(drawing.shapes.at(0).snap);
    EXPECT_FALSE(drawing.shapes.at(1).snap);
}

TEST(Drawing, SnapsWithoutInsetsOnlyWhereItIsAsked) {
    const Drawing drawing =
        compile("<rect width='2' height='2'/><rect width='2' height='2' data-snap='on'/>");
    EXPECT_FALSE(drawing.shapes.at(0).snap);
    EXPECT_TRUE(drawing.shapes.at(1).snap);
}

TEST(Drawing, RefusesInsetsBeyondTheViewBox) {
    EXPECT_THAT(fault("<rect width='2' height='2'/>", "data-slice='11 0 10 0'"),
                HasSubstr("data-slice"));
    EXPECT_THAT(fault("<rect width='2' height='2'/>", "data-slice='-1 0 1 0'"),
                HasSubstr("data-slice"));
    EXPECT_THAT(fault("<rect width='2' height='2'/>", "data-slice='1 2 3'"),
                HasSubstr("data-slice"));
}

TEST(Drawing, ARadiusCountsForBothAxes) {
    EXPECT_EQ(compile("<rect width='8' height='8' rx='2'/>").shapes.at(0).path.verbs.size(), 10U);
    EXPECT_EQ(compile("<rect width='8' height='8' ry='2'/>").shapes.at(0).path.verbs.size(), 10U);
}

TEST(Drawing, NamesFileAndLineOfWhatItDoesNotKnow) {
    EXPECT_EQ(fault("\n<text x='1'>hello</text>"), "d.svg:2: <text> is not part of a drawing");
    EXPECT_EQ(fault("\n<rect width='1' height='1' style='fill:red'/>"),
              "d.svg:2: <rect> does not know style");
    EXPECT_THAT(fault("<rect width='1' height='1' fill='red'/>"),
                HasSubstr("'red' is neither #RRGGBB, a palette colour nor a gradient"));
    EXPECT_THAT(fault("<rect width='1' height='1' fill='url(#x)'/>"), HasSubstr("no gradient"));
    EXPECT_THAT(fault("<rect width='10%' height='1'/>"), HasSubstr("expected a number"));
    EXPECT_THAT(fault("<path/>"), HasSubstr("has no d"));
    EXPECT_THAT(fault("<path d='M1'/>"), HasSubstr("d.svg:1: expected a number"));
    EXPECT_THAT(fault("<g stroke-linecap='wide'/>"), HasSubstr("cannot be 'wide'"));
    EXPECT_THAT(fault("<g transform='turn(3)'/>"), HasSubstr("unknown transform"));
    EXPECT_THAT(fault(""), HasSubstr("empty"));
}

TEST(Drawing, RefusesMalformedGradients) {
    const auto gradient = [](const std::string &stops) {
        return fault("<linearGradient id='a'>" + stops + "</linearGradient><rect width='1'/>");
    };
    EXPECT_THAT(gradient("<stop offset='0' stop-color='#000'/>"), HasSubstr("two stops"));
    EXPECT_THAT(
        gradient("<stop offset='1' stop-color='#000'/><stop offset='0' stop-color='#000'/>"),
        HasSubstr("in order"));
    EXPECT_THAT(gradient("<stop offset='0'/>"), HasSubstr("stop-color"));
    EXPECT_THAT(fault("<linearGradient><stop offset='0' stop-color='#000'/></linearGradient>"),
                HasSubstr("id of its own"));
}

TEST(Drawing, NeedsAnSvgRootWithAViewBox) {
    EXPECT_THAT(faultOf([] { compileDrawing("d", "d", "<g/>", palette); }), HasSubstr("not <svg>"));
    EXPECT_THAT(faultOf([] { compileDrawing("d", "d", "<svg/>", palette); }),
                HasSubstr("no viewBox"));
    EXPECT_THAT(faultOf([] { compileDrawing("d", "d", "<svg viewBox='0 0 0 5'/>", palette); }),
                HasSubstr("a viewBox is"));
}

} // namespace
} // namespace velmora::skinc
