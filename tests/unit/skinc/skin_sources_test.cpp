// The skin as it is: what the look promises of its colours and drawings.

#include "skin.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace velmora::skinc {
namespace {

std::string readFile(const std::filesystem::path &path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

const SkinResult &skin() {
    static const SkinResult result = [] {
        std::vector<SourceText> sources = {
            {VELMORA_SKIN "/palette.txt", readFile(VELMORA_SKIN "/palette.txt")}};
        for (const auto &entry : std::filesystem::directory_iterator(VELMORA_SKIN))
            if (entry.path().extension() == ".svg")
                sources.push_back({entry.path().string(), readFile(entry.path())});
        return compileSkin(sources);
    }();
    return result;
}

const Drawing *drawing(std::string_view name) {
    const auto &all = skin().skin.drawings;
    const auto found = std::find_if(
        all.begin(), all.end(), [&](const Drawing &candidate) { return candidate.name == name; });
    return found == all.end() ? nullptr : &*found;
}

Argb colour(std::string_view name) {
    const PaletteEntry *entry = skin().skin.palette.find(name);
    EXPECT_NE(entry, nullptr) << name;
    return entry ? entry->colour : 0;
}

double luminance(Argb argb) {
    const auto part = [&](int shift) {
        const double value = ((argb >> shift) & 0xFF) / 255.0;
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(16) + 0.7152 * part(8) + 0.0722 * part(0);
}

double contrast(Argb a, Argb b) {
    const double light = std::max(luminance(a), luminance(b)) + 0.05;
    const double dark = std::min(luminance(a), luminance(b)) + 0.05;
    return light / dark;
}

TEST(TheSkin, CompilesWithoutAFault) {
    EXPECT_THAT(skin().faults, testing::IsEmpty());
    EXPECT_GT(skin().skin.drawings.size(), 50U);
}

TEST(TheSkin, TextsReadOnBodyAndInset) {
    for (const char *text : {"text", "text_second", "accent", "lyric", "warning"})
        for (const char *ground :
             {"body_top", "body", "body_foot", "inset_top", "inset", "inset_foot"})
            EXPECT_GE(contrast(colour(text), colour(ground)), 4.5) << text << " on " << ground;
}

TEST(TheSkin, ButtonCaptionsReadInEveryState) {
    EXPECT_GE(contrast(0xFFF0F0F0, colour("key_top")), 4.5);
    EXPECT_GE(contrast(0xFFFF0000, colour("hot")), 4.5);
    EXPECT_GE(contrast(0xFF0000C0, colour("pressed")), 4.5);
}

TEST(TheSkin, SelectedRowsAndInkRead) {
    EXPECT_GE(contrast(colour("text"), colour("row_tint")), 4.5);
    EXPECT_GE(contrast(colour("ink"), colour("accent_deep")), 4.5);
    EXPECT_GE(contrast(colour("lyric_desktop"), colour("rim")), 4.5);
}

TEST(TheSkin, NoPaletteColourIsTheKey) {
    for (const PaletteEntry &entry : skin().skin.palette.entries)
        EXPECT_NE(entry.colour, keyArgb) << entry.name;
}

TEST(TheSkin, ButtonStatesHaveTheSizeThatTheButtonCutsApart) {
    for (const char *name : {"button_normal", "button_hot", "button_pressed"}) {
        const Drawing *state = drawing(name);
        ASSERT_NE(state, nullptr) << name;
        EXPECT_EQ(state->width, 6) << name;
        EXPECT_EQ(state->height, 32) << name;
        for (const Shape &shape : state->shapes)
            EXPECT_NE(shape.fill.kind, PaintKind::Hole) << name;
    }
}

TEST(TheSkin, BodiesOfKeyedWindowsCutTheirCornersAndTheVideoWindowsDoesNot) {
    const auto holes = [](const Drawing &body) {
        return std::count_if(body.shapes.begin(), body.shapes.end(),
                             [](const Shape &shape) { return shape.fill.kind == PaintKind::Hole; });
    };
    for (const char *name : {"body", "body_strip", "splash"})
        EXPECT_EQ(holes(*drawing(name)), 1) << name;
    EXPECT_EQ(holes(*drawing("body_plain")), 0);
}

TEST(TheSkin, IconsShareOneGridAndOneStroke) {
    for (const char *name : {"list",         "list_on",
                             "locate",       "lyric_desktop",
                             "lyric_edit",   "lyric_search",
                             "song_search",  "info",
                             "settings",     "video",
                             "sound_check",  "folder",
                             "refresh",      "restore_defaults",
                             "stamp_add",    "stamp_remove",
                             "save",         "save_as",
                             "reload_lyric", "lock_open",
                             "lock_closed",  "fullscreen",
                             "volume",       "more",
                             "about"}) {
        const Drawing *icon = drawing(name);
        ASSERT_NE(icon, nullptr) << name;
        EXPECT_EQ(icon->width, 26) << name;
        EXPECT_EQ(icon->height, 26) << name;
        for (const Shape &shape : icon->shapes) {
            if (shape.stroke.kind != PaintKind::None)
                EXPECT_DOUBLE_EQ(shape.strokeWidth, 1.6) << name;
            const auto edges = bounds(shape.path);
            EXPECT_GE(std::min(edges[0], edges[1]), 0) << name;
            EXPECT_LE(std::max(edges[2], edges[3]), 18) << name;
        }
    }
}

TEST(TheSkin, PlayAndPauseAreTheLargestKeysAndAlikeInSize) {
    // Circles of 40 and 32, each with a margin of 2 of its own.
    EXPECT_EQ(drawing("play")->width, 44);
    EXPECT_EQ(drawing("pause")->width, 44);
    for (const char *name : {"stop", "prev", "next", "open"})
        EXPECT_EQ(drawing(name)->width, 36) << name;
}

} // namespace
} // namespace velmora::skinc
