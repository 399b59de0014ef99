// The program's own designs, every one of them.

#include "design.h"
#include "design_code.h"
#include "design_rows.h"
#include "texts.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace velmora::formc {

namespace {

const std::filesystem::path root = VELMORA_SOURCE_DIR;

std::vector<std::filesystem::path> designs() {
    std::vector<std::filesystem::path> paths;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(root / "src"))
        if (entry.path().extension() == ".form")
            paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());
    return paths;
}

const TextTable &texts() {
    static const TextTable table = readTexts((root / "assets/texts").string());
    return table;
}

Design load(const std::filesystem::path &path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    const Skin skin = withModel(withTexts(readSkin((root / "assets/skin").string()), texts()),
                                (root / "src/playback/Main.form").string());
    return parseDesign(text.str(), skin);
}

class EveryDesign : public ::testing::TestWithParam<std::filesystem::path> {};

struct Box {
    double left, top, right, bottom;
};

Box boxOf(const Thing &thing) {
    const auto &at = thing.find("at")->numbers;
    const auto &size = thing.find("size")->numbers;
    return {at[0], at[1], at[0] + size[0], at[1] + size[1]};
}

bool overlap(const Box &a, const Box &b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

// Labels that can be seen together lie beside each other.
void expectLabelsApart(const Thing &container) {
    std::vector<const Thing *> labels;
    for (const Thing &child : container.children) {
        if (child.kind->bit == kinds::label && !child.has("hidden")) {
            for (const Thing *other : labels) {
                EXPECT_FALSE(overlap(boxOf(child), boxOf(*other)))
                    << child.name << " lies over " << other->name;
            }
            labels.push_back(&child);
        }
        expectLabelsApart(child);
    }
}

// A panel that is not hidden would take the keys of the control that it lies over.
void expectNothingOverFocus(const Thing &container) {
    constexpr KindSet focusable =
        kinds::listBox | kinds::textBox | kinds::checkBox | kinds::optionButton;
    for (std::size_t i = 0; i < container.children.size(); ++i) {
        const Thing &below = container.children[i];
        for (std::size_t j = i + 1; j < container.children.size(); ++j) {
            const Thing &above = container.children[j];
            if ((below.kind->bit & focusable) != 0 &&
                (above.kind->bit & (kinds::pictureBox | kinds::frame)) != 0 &&
                !above.has("hidden") && !below.has("hidden")) {
                EXPECT_FALSE(overlap(boxOf(below), boxOf(above)))
                    << above.name << " lies over " << below.name;
            }
        }
        expectNothingOverFocus(below);
    }
}

} // namespace

TEST(Designs, AreFound) { EXPECT_GE(designs().size(), 17U); }

TEST_P(EveryDesign, HasNoFault) {
    const Design design = load(GetParam());
    for (const Fault &fault : design.faults)
        ADD_FAILURE() << GetParam().string() << ':' << fault.line << ": " << fault.text;
    EXPECT_EQ(design.form.name, GetParam().stem().string());
}

TEST_P(EveryDesign, KeepsItsLabelsApart) {
    const Design design = load(GetParam());
    if (design.faults.empty())
        expectLabelsApart(design.form);
}

TEST_P(EveryDesign, LetsTheKeysReachItsLists) {
    const Design design = load(GetParam());
    if (design.faults.empty())
        expectNothingOverFocus(design.form);
}

TEST_P(EveryDesign, BecomesCode) {
    const Design design = load(GetParam());
    if (design.faults.empty()) {
        const Code code = writeCode(design, "x");
        for (const Thing *thing : design.all())
            EXPECT_NE(code.header.find(' ' + thing->name + '{'), std::string::npos) << thing->name;
    }
}

INSTANTIATE_TEST_SUITE_P(Source, EveryDesign, ::testing::ValuesIn(designs()),
                         [](const auto &one) { return one.param.stem().string(); });

TEST(ProgramsTexts, HaveNoFault) {
    for (const TextFault &fault : texts().faults)
        ADD_FAILURE() << fault.file << ':' << fault.line << ": " << fault.text;
    EXPECT_EQ(texts().languages, (std::vector<std::string>{"zh", "en", "fr", "ja"}));
}

// What nothing shows any more would be translated for nothing.
TEST(ProgramsTexts, AreShownSomewhere) {
    std::string named;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(root)) {
        const auto type = entry.path().extension();
        const std::string part = entry.path().lexically_relative(root).begin()->string();
        if ((part != "src" && part != "assets") ||
            (type != ".form" && type != ".cpp" && type != ".txt"))
            continue;
        std::ifstream in(entry.path(), std::ios::binary);
        named.append(std::istreambuf_iterator<char>(in), {}).append("\n");
    }
    for (const TextEntry &entry : texts().entries) {
        const auto stands = [&](const std::string &way) {
            return named.find(way) != std::string::npos;
        };
        EXPECT_TRUE(stands("@" + entry.name + "\n") || stands("{" + entry.name + "}") ||
                    stands("texts::" + entry.name) || stands("." + entry.name) ||
                    stands("::" + entry.name))
            << entry.name;
    }
}

TEST(Skin, AMissingPaletteIsReported) {
    EXPECT_THROW(readSkin((root / "src").string()), std::runtime_error);
}

TEST(Skin, ColoursAreTurnedIntoTheirOrderHere) {
    const Skin skin = readSkin((root / "assets/skin").string());
    EXPECT_EQ(skin.palette.at("accent"), 0x00CFE05BU);
    EXPECT_TRUE(skin.pictures.contains("play"));
}

} // namespace velmora::formc
