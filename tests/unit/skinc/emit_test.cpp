#include "emit.h"
#include "skin.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace velmora::skinc {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

const char *const box = "<svg viewBox='0 0 2 2'><rect width='2' height='2' fill='@glow'/></svg>";
const char *const palette = "glow #5BE0CF # what glows\n";

SkinResult compile(std::vector<SourceText> drawings) {
    drawings.insert(drawings.begin(), {"palette.txt", palette});
    return compileSkin(drawings);
}

TEST(Skin, NumbersDrawingsByTheOrderOfTheirNames) {
    const SkinResult result = compile({{"skin/play.svg", box}, {"skin/body.svg", box}});
    EXPECT_TRUE(result.faults.empty());
    const std::string text = pictureIdsHeader(result.skin.drawings);
    EXPECT_THAT(text, HasSubstr("None = 0,\n    body,\n    play,\n"));
    EXPECT_THAT(text, HasSubstr("pictureCount = 3;"));
    EXPECT_THAT(text, HasSubstr("\"None\",\n    \"body\",\n    \"play\",\n"));
}

TEST(Skin, ShowsAllFaultsInOneRun) {
    const SkinResult result =
        compile({{"a.svg", "<svg/>"}, {"b.svg", box}, {"c.svg", "<svg viewBox='0 0 1 1'>"}});
    EXPECT_THAT(result.faults, ElementsAre(HasSubstr("a.svg:1:"), HasSubstr("c.svg:1:")));
}

TEST(Skin, RefusesTwoDrawingsOfOneNameAndNamesThatAreNoEnumerators) {
    EXPECT_THAT(compile({{"x/a.svg", box}, {"y/a.svg", box}}).faults,
                ElementsAre(HasSubstr("two drawings 'a'")));
    for (const char *name : {"A.svg", "a-b.svg", "1.svg", "None.svg", "switch.svg", ".svg"})
        EXPECT_EQ(compile({{name, box}}).faults.size(), 1U) << name;
}

TEST(Skin, WritesPaletteColoursInTheOrderOfTheProgram) {
    EXPECT_THAT(paletteHeader(compile({}).skin.palette),
                HasSubstr("inline constexpr Colour glow = 0x00CFE05B; // what glows"));
}

TEST(Skin, WritesLengthsIn64ths) {
    const std::string text = pictureTable(
        compile({{"a.svg", "<svg viewBox='-1 0 20 10' data-slice='1 2 3 4'>"
                           "<path d='M1.5 0H-2' stroke='@glow' stroke-width='1.6'/></svg>"}})
            .skin.drawings);
    EXPECT_THAT(text, HasSubstr("{-64, 0, 1280, 640, {64, 128, 192, 256}, true, 0, 1}"));
    EXPECT_THAT(text, HasSubstr("coordinates[] = {\n    96, 0, -128, 0,"));
    EXPECT_THAT(text, HasSubstr("102, Cap::Butt, Join::Miter, false, true}"));
}

TEST(Skin, RefusesALengthThatTheTableCannotHold) {
    const auto drawings =
        compile({{"a.svg", "<svg viewBox='0 0 2 2'><rect width='600' height='2'/></svg>"}})
            .skin.drawings;
    EXPECT_THROW(pictureTable(drawings), std::runtime_error);
}

TEST(Skin, GivesTheSameBytesForTheSameSources) {
    const auto once = compile({{"a.svg", box}, {"b.svg", box}}).skin.drawings;
    const auto again = compile({{"b.svg", box}, {"a.svg", box}}).skin.drawings;
    EXPECT_EQ(pictureTable(once), pictureTable(again));
    EXPECT_EQ(pictureIdsHeader(once), pictureIdsHeader(again));
}

TEST(PlainSvg, ResolvesThePalette) {
    const auto drawings = compile({{"a.svg", box}}).skin.drawings;
    const std::string text = plainSvg(drawings.at(0));
    EXPECT_THAT(text, HasSubstr("viewBox=\"0 0 2 2\""));
    EXPECT_THAT(text, HasSubstr("d=\"M0 0L2 0L2 2L0 2Z\" fill=\"#5BE0CF\""));
    EXPECT_THAT(text, Not(HasSubstr("@")));
}

} // namespace
} // namespace velmora::skinc
