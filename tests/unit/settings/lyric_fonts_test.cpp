// The two font sets: staging, registry, previews, labels.

#include "playlist/playInfo_Form.h"
#include "settings/skinSet.h"
#include "tests/unit/settings/settings_fixture.h"

namespace velmora {
namespace {

using testing::ElementsAre;

class LyricFonts : public SettingsFixture {
protected:
    forms::TextBox &desktopPreview() { return app.playSetForm().desktop_Lrc_Preview; }
    forms::TextBox &otherPreview() { return app.playSetForm().other_Lrc_Preview; }

    void fillStaging() {
        settings.Lrc_Bold = true;
        settings.Lrc_Charset = 134;
        settings.Lrc_Italic = false;
        settings.Lrc_Name = u"宋体";
        settings.Lrc_Size = 28;
        settings.Lrc_Strikethrough = false;
        settings.Lrc_Underline = true;
        settings.Lrc_Weight = 700;
        settings.Lrc_ForeColor = 0x00FF8000;
        settings.Lrc_BackColor = 0x00112233;
    }
};

TEST_F(LyricFonts, ASetIsWrittenInOrderWithItsTypes) {
    fillStaging();
    app.playSetForm().desktopLrc_AutoOpen.setValue(1);
    EXPECT_TRUE(settings.save_Lrc_Font(u"Desktop"));
    EXPECT_THAT(
        registry.log(),
        ElementsAre(u"create " + std::u16string(playSetKey), u"set Desktop_Lrc_AutoOpen SZ 1 1",
                    u"set Desktop_Lrc_Bold DWORD 1", u"set Desktop_Lrc_Charset DWORD 134",
                    u"set Desktop_Lrc_Italic DWORD 0", u"set Desktop_Lrc_Name SZ 6 宋体",
                    u"set Desktop_Lrc_Size DWORD 28", u"set Desktop_Lrc_Strikethrough DWORD 0",
                    u"set Desktop_Lrc_Underline DWORD 1", u"set Desktop_Lrc_Weight DWORD 700",
                    u"set Desktop_Lrc_ForeColor DWORD 16744448",
                    u"set Desktop_Lrc_BackColor DWORD 1122867", u"close"));
}

TEST_F(LyricFonts, TheAutoOpenValueKeepsTheDesktopPrefixForTheOtherSet) {
    EXPECT_TRUE(settings.save_Lrc_Font(u"Other"));
    EXPECT_TRUE(registry.value(playSetKey, u"Desktop_Lrc_AutoOpen").has_value());
    EXPECT_FALSE(registry.value(playSetKey, u"Other_Lrc_AutoOpen").has_value());
    EXPECT_TRUE(registry.value(playSetKey, u"Other_Lrc_Bold").has_value());
}

TEST_F(LyricFonts, ASetReadsBackAsItWasWritten) {
    fillStaging();
    settings.save_Lrc_Font(u"Other");
    settings.Lrc_Bold = false;
    settings.Lrc_Name.clear();
    settings.Lrc_Size = settings.Lrc_Weight = settings.Lrc_Charset = 0;
    settings.Lrc_Underline = false;
    settings.Lrc_ForeColor = settings.Lrc_BackColor = 0;
    EXPECT_TRUE(settings.load_Lrc_Font(u"Other"));
    EXPECT_TRUE(settings.Lrc_Bold);
    EXPECT_EQ(settings.Lrc_Charset, 134);
    EXPECT_FALSE(settings.Lrc_Italic);
    EXPECT_EQ(settings.Lrc_Name, u"宋体");
    EXPECT_EQ(settings.Lrc_Size, 28);
    EXPECT_FALSE(settings.Lrc_Strikethrough);
    EXPECT_TRUE(settings.Lrc_Underline);
    EXPECT_EQ(settings.Lrc_Weight, 700);
    EXPECT_EQ(settings.Lrc_ForeColor, 0x00FF8000U);
    EXPECT_EQ(settings.Lrc_BackColor, 0x00112233U);
}

TEST_F(LyricFonts, ASetIsReadInOrderThroughOneProvider) {
    storeFontSet(u"Other");
    registry.clearLog();
    EXPECT_TRUE(settings.load_Lrc_Font(u"Other"));
    const std::u16string read = u"read " + std::u16string(playSetKey) + u" ";
    EXPECT_THAT(registry.log(),
                ElementsAre(u"provider", read + u"Desktop_Lrc_AutoOpen", read + u"Other_Lrc_Bold",
                            read + u"Other_Lrc_Charset", read + u"Other_Lrc_Italic",
                            read + u"Other_Lrc_Name", read + u"Other_Lrc_Size",
                            read + u"Other_Lrc_Strikethrough", read + u"Other_Lrc_Underline",
                            read + u"Other_Lrc_Weight", read + u"Other_Lrc_ForeColor",
                            read + u"Other_Lrc_BackColor"));
}

TEST_F(LyricFonts, OnlyTheNumberOneIsTrue) {
    storeFontSet(u"Desktop");
    for (const char16_t *stem : {u"Desktop_Lrc_Bold", u"Desktop_Lrc_Italic",
                                 u"Desktop_Lrc_Strikethrough", u"Desktop_Lrc_Underline"})
        registry.setNumber(playSetKey, stem, 2);
    EXPECT_TRUE(settings.load_Lrc_Font(u"Desktop"));
    EXPECT_FALSE(settings.Lrc_Bold);
    EXPECT_FALSE(settings.Lrc_Italic);
    EXPECT_FALSE(settings.Lrc_Strikethrough);
    EXPECT_FALSE(settings.Lrc_Underline);
}

TEST_F(LyricFonts, AutoOpenOneTicksTheBoxAndZeroClearsIt) {
    storeFontSet(u"Desktop");
    EXPECT_TRUE(settings.load_Lrc_Font(u"Desktop"));
    EXPECT_TRUE(app.lrcForm().desktopLrcAutoOpen);
    EXPECT_EQ(app.playSetForm().desktopLrc_AutoOpen.value(), 1);
    registry.setText(playSetKey, u"Desktop_Lrc_AutoOpen", u"0");
    EXPECT_TRUE(settings.load_Lrc_Font(u"Desktop"));
    EXPECT_FALSE(app.lrcForm().desktopLrcAutoOpen);
    EXPECT_EQ(app.playSetForm().desktopLrc_AutoOpen.value(), 0);
}

TEST_F(LyricFonts, AnotherAutoOpenNumberChangesNeitherFlagNorBox) {
    storeFontSet(u"Desktop");
    settings.load_Lrc_Font(u"Desktop");
    registry.setText(playSetKey, u"Desktop_Lrc_AutoOpen", u"2");
    EXPECT_TRUE(settings.load_Lrc_Font(u"Desktop"));
    EXPECT_TRUE(app.lrcForm().desktopLrcAutoOpen);
    EXPECT_EQ(app.playSetForm().desktopLrc_AutoOpen.value(), 1);
}

TEST_F(LyricFonts, AutoOpenIsReadByItsLeadingNumber) {
    storeFontSet(u"Desktop");
    registry.setText(playSetKey, u"Desktop_Lrc_AutoOpen", u" 1x");
    settings.load_Lrc_Font(u"Desktop");
    EXPECT_TRUE(app.lrcForm().desktopLrcAutoOpen);
    registry.setText(playSetKey, u"Desktop_Lrc_AutoOpen", u"on");
    settings.load_Lrc_Font(u"Desktop");
    EXPECT_FALSE(app.lrcForm().desktopLrcAutoOpen);
}

TEST_F(LyricFonts, AutoOpenCountsEvenWhereTheRestOfTheSetFails) {
    registry.setText(playSetKey, u"Desktop_Lrc_AutoOpen", u"1");
    for (const char16_t *set : {u"Desktop", u"Other"}) {
        app.lrcForm().desktopLrcAutoOpen = false;
        app.playSetForm().desktopLrc_AutoOpen.setValue(0);
        EXPECT_FALSE(settings.load_Lrc_Font(set));
        EXPECT_TRUE(app.lrcForm().desktopLrcAutoOpen);
        EXPECT_EQ(app.playSetForm().desktopLrc_AutoOpen.value(), 1);
    }
}

TEST_F(LyricFonts, ASetThatBreaksOffHasFilledTheStagingSetAsFarAsItWent) {
    fillStaging();
    storeFontSet(u"Other");
    registry.removeValue(playSetKey, u"Other_Lrc_Size");
    EXPECT_FALSE(settings.load_Lrc_Font(u"Other"));
    EXPECT_FALSE(settings.Lrc_Bold);
    EXPECT_EQ(settings.Lrc_Name, u"Noto Sans");
    EXPECT_EQ(settings.Lrc_Size, 28);
    EXPECT_TRUE(settings.Lrc_Underline);
    EXPECT_EQ(settings.Lrc_Weight, 700);
    EXPECT_EQ(settings.Lrc_ForeColor, 0x00FF8000U);
}

TEST_F(LyricFonts, WithoutAnAutoOpenValueTheWholeSetFails) {
    storeFontSet(u"Desktop");
    registry.removeValue(playSetKey, u"Desktop_Lrc_AutoOpen");
    EXPECT_FALSE(settings.load_Lrc_Font(u"Desktop"));
}

TEST_F(LyricFonts, EachMissingOrMistypedValueFailsTheSet) {
    for (const char16_t *stem : {u"Lrc_Bold", u"Lrc_Charset", u"Lrc_Italic", u"Lrc_Name",
                                 u"Lrc_Size", u"Lrc_Strikethrough", u"Lrc_Underline", u"Lrc_Weight",
                                 u"Lrc_ForeColor", u"Lrc_BackColor"}) {
        storeFontSet(u"Other");
        const std::u16string name = std::u16string(u"Other_") + stem;
        registry.removeValue(playSetKey, name);
        EXPECT_FALSE(settings.load_Lrc_Font(u"Other")) << toUtf8(name);
        storeFontSet(u"Other");
        if (name == u"Other_Lrc_Name")
            registry.setNumber(playSetKey, name, 1);
        else
            registry.setText(playSetKey, name, u"1");
        EXPECT_FALSE(settings.load_Lrc_Font(u"Other")) << toUtf8(name);
    }
}

TEST_F(LyricFonts, AFailedDesktopSetDressesBothPreviewsAndNoLabel) {
    otherPreview().setForeColor(0);
    desktopPreview().setForeColor(0);
    forms::Font font = otherPreview().font();
    font.setName(u"Arial");
    otherPreview().setFont(font);
    desktopPreview().setFont(font);
    const forms::Font label = app.lrcForm().lrc_Text.font();
    const float otherSize = otherPreview().font().size();

    EXPECT_FALSE(settings.load_Lrc_Font(u"Desktop"));
    EXPECT_EQ(desktopPreview().font().name(), u"微软雅黑");
    EXPECT_EQ(desktopPreview().font().size(), 36.0F);
    EXPECT_EQ(desktopPreview().foreColor(), 0x0000FFU);
    EXPECT_EQ(otherPreview().font().name(), u"微软雅黑");
    EXPECT_EQ(otherPreview().font().size(), otherSize);
    EXPECT_EQ(otherPreview().foreColor(), 0x00FFFFU);
    EXPECT_EQ(app.lrcForm().lrc_Text.font(), label);
}

TEST_F(LyricFonts, AFailedOtherSetChangesNothing) {
    storeFontSet(u"Desktop");
    otherPreview().setForeColor(0x123456);
    desktopPreview().setForeColor(0x654321);
    const forms::Font before = otherPreview().font();
    EXPECT_FALSE(settings.load_Lrc_Font(u"Other"));
    EXPECT_EQ(otherPreview().font(), before);
    EXPECT_EQ(otherPreview().foreColor(), 0x123456U);
    EXPECT_EQ(desktopPreview().foreColor(), 0x654321U);
}

TEST_F(LyricFonts, WithoutTheProviderTheDesktopSetFailsLikeAFreshMachine) {
    storeFontSet(u"Desktop");
    registry.setProviderMissing(true);
    EXPECT_FALSE(settings.load_Lrc_Font(u"Desktop"));
    EXPECT_EQ(desktopPreview().foreColor(), 0x0000FFU);
}

TEST_F(LyricFonts, ThePreviewsAreDesignedAsOnAFreshMachine) {
    EXPECT_EQ(desktopPreview().font().name(), u"微软雅黑");
    EXPECT_EQ(desktopPreview().font().size(), 36.0F);
    EXPECT_EQ(desktopPreview().foreColor(), 0x0000FFU);
    EXPECT_EQ(desktopPreview().text(), u"Velmora 2011");
    EXPECT_EQ(otherPreview().font().name(), u"微软雅黑");
    EXPECT_EQ(otherPreview().font().size(), 14.25F);
    EXPECT_EQ(otherPreview().foreColor(), 0x00FFFFU);
    EXPECT_EQ(otherPreview().text(), u"Velmora 2011");
}

// --- dressing ------------------------------------------------------------------------------------

TEST_F(LyricFonts, TheDesktopSetGoesFromStagingToPreviewToLabel) {
    fillStaging();
    app.skinSet().apply_Desktop_Lrc_Font(true);
    for (const forms::Font &font : {desktopPreview().font(), app.lrcForm().lrc_Text.font()}) {
        EXPECT_TRUE(font.bold());
        EXPECT_EQ(font.charset(), 134);
        EXPECT_FALSE(font.italic());
        EXPECT_EQ(font.name(), u"宋体");
        EXPECT_EQ(font.size(), 28.0F);
        EXPECT_FALSE(font.strikethrough());
        EXPECT_TRUE(font.underline());
        EXPECT_EQ(font.weight(), 700);
    }
    EXPECT_EQ(desktopPreview().foreColor(), 0x00FF8000U);
    EXPECT_EQ(app.lrcForm().lrc_Text.foreColor(), 0x00FF8000U);
}

TEST_F(LyricFonts, EachStyleOfTheSetReachesThePreview) {
    fillStaging();
    settings.Lrc_Italic = true;
    settings.Lrc_Strikethrough = true;
    settings.Lrc_Underline = false;
    app.skinSet().apply_Desktop_Lrc_Font(true);
    EXPECT_TRUE(app.lrcForm().lrc_Text.font().italic());
    EXPECT_TRUE(app.lrcForm().lrc_Text.font().strikethrough());
    EXPECT_FALSE(app.lrcForm().lrc_Text.font().underline());
}

TEST_F(LyricFonts, WithoutTheFlagThePreviewAloneTellsTheLook) {
    fillStaging();
    forms::Font font = desktopPreview().font();
    font.setName(u"Noto Serif");
    desktopPreview().setFont(font);
    desktopPreview().setForeColor(0x00ABCDEF);
    app.skinSet().apply_Desktop_Lrc_Font(false);
    EXPECT_EQ(app.lrcForm().lrc_Text.font(), font);
    EXPECT_EQ(app.lrcForm().lrc_Text.foreColor(), 0x00ABCDEFU);
    EXPECT_EQ(desktopPreview().font(), font);
}

TEST_F(LyricFonts, TheDesktopLineIsPlacedAnew) {
    app.lrcForm().setTop(0);
    app.skinSet().apply_Desktop_Lrc_Font(false);
    EXPECT_TRUE(app.lrcForm().visible());
    EXPECT_GT(app.lrcForm().top(), 0);
    EXPECT_EQ(app.lrcForm().height(), app.lrcForm().lrc_Text.height());
}

TEST_F(LyricFonts, TheOtherSetGoesToMainAndTrackInformationAndNotToTheMiniStrip) {
    fillStaging();
    otherPreview().setBackColor(0x00445566);
    app.skinSet().apply_Other_Lrc_Font(true);
    EXPECT_EQ(app.Main().lrc_Text.font().name(), u"宋体");
    EXPECT_EQ(app.Main().lrc_Text.foreColor(), 0x00FF8000U);
    EXPECT_EQ(app.playInfo_Form().lrc_Text.font(), otherPreview().font());
    EXPECT_EQ(app.playInfo_Form().lrc_Text.foreColor(), 0x00FF8000U);
    EXPECT_EQ(app.playInfo_Form().lrc_Text.backColor(), 0x00445566U);
    EXPECT_FALSE(app.lrcForm().visible());
}

TEST_F(LyricFonts, TheWeightHasTheLastWordOverBold) {
    fillStaging();
    settings.Lrc_Bold = true;
    settings.Lrc_Weight = 300;
    app.skinSet().apply_Desktop_Lrc_Font(true);
    EXPECT_FALSE(desktopPreview().font().bold());
    EXPECT_EQ(desktopPreview().font().weight(), 300);
}

TEST_F(LyricFonts, ASizeOutOfRangeIsIgnored) {
    fillStaging();
    const float before = desktopPreview().font().size();
    for (const std::int32_t size : {0, -5, 5000}) {
        settings.Lrc_Size = size;
        app.skinSet().apply_Desktop_Lrc_Font(true);
        EXPECT_EQ(desktopPreview().font().size(), before);
    }
}

TEST_F(LyricFonts, AtTheStartAStoredSetDressesItsLabels) {
    storeFontSet(u"Desktop");
    registry.setText(playSetKey, u"Desktop_Lrc_Name", u"Noto Serif");
    start();
    EXPECT_EQ(app.lrcForm().lrc_Text.font().name(), u"Noto Serif");
    EXPECT_EQ(app.Main().lrc_Text.font().name(), u"微软雅黑");
}

TEST_F(LyricFonts, AtAFreshStartTheLabelsKeepTheirDesignedFonts) {
    const forms::Font designed = app.lrcForm().lrc_Text.font();
    start();
    EXPECT_EQ(app.lrcForm().lrc_Text.font(), designed);
}

} // namespace
} // namespace velmora
