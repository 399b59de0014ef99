// Each choice of the settings window by itself, as Apply takes and stores it.

#include "tests/unit/settings/settings_window_fixture.h"

namespace velmora {
namespace {

using testing::ElementsAre;

class SettingsChoices : public SettingsWindow {
protected:
    void SetUp() override {
        SettingsWindow::SetUp();
        open();
    }
};

TEST_F(SettingsChoices, EachTraitOfAFontIsStoredByItself) {
    const auto traits = [&](bool bold, bool italic, bool underline, bool strikethrough) {
        forms::Font font = form.desktop_Lrc_Preview.font();
        font.setBold(bold);
        font.setItalic(italic);
        font.setUnderline(underline);
        font.setStrikethrough(strikethrough);
        form.desktop_Lrc_Preview.setFont(font);
        apply();
        std::vector<std::uint32_t> all;
        for (const auto *name : {u"Desktop_Lrc_Bold", u"Desktop_Lrc_Italic",
                                 u"Desktop_Lrc_Underline", u"Desktop_Lrc_Strikethrough"})
            all.push_back(registry.value(playSetKey, name)->number);
        return all;
    };
    EXPECT_THAT(traits(true, false, false, false), ElementsAre(1, 0, 0, 0));
    EXPECT_THAT(traits(false, true, false, false), ElementsAre(0, 1, 0, 0));
    EXPECT_THAT(traits(false, false, true, false), ElementsAre(0, 0, 1, 0));
    EXPECT_THAT(traits(false, false, false, true), ElementsAre(0, 0, 0, 1));
}

TEST_F(SettingsChoices, AGreyAutoPlayChangesNothing) {
    form.isAutoPlay.setValue(1);
    apply();
    ASSERT_EQ(memory.isAutoPlay, 0);
    form.isAutoPlay.setValue(2);
    apply();
    EXPECT_EQ(memory.isAutoPlay, 0);
}

TEST_F(SettingsChoices, TheFirstLanguageIsTakenBehindAnother) {
    form.Language_English.userChose();
    apply();
    ASSERT_EQ(memory.Language, 1);
    form.Language_China.userChose();
    apply();
    EXPECT_EQ(memory.Language, 0);
    EXPECT_EQ(stored(u"Language"), u"0");
}

} // namespace
} // namespace velmora
