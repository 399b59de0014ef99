// The system's dialogs behind the buttons of the settings window.

#include "tests/unit/settings/settings_window_fixture.h"

namespace velmora {
namespace {

using platform::CHOOSEFONT;
using testing::ElementsAre;
using testing::IsEmpty;

class SettingsDialogs : public SettingsWindow {
protected:
    void chooseFont(std::int32_t points, std::int32_t answer = 1) {
        fake.dialogs.expectFont([points, answer](CHOOSEFONT &record) {
            record.pointSize = points * 10;
            record.logFont.weight = 700;
            record.logFont.italic = true;
            record.logFont.faceName = "Noto Serif";
            return answer;
        });
    }
};

TEST_F(SettingsDialogs, TheDesktopFontDialogStartsFromThePreviewAndChangesIt) {
    chooseFont(30);
    click(form.desktop_Lrc_Font_Button);
    ASSERT_EQ(fake.dialogs.fontRecords.size(), 1U);
    EXPECT_EQ(fake.dialogs.fontRecords[0].owner, form.hWnd());
    EXPECT_EQ(fake.dialogs.fontRecords[0].pointSize, 360);
    const forms::Font &font = form.desktop_Lrc_Preview.font();
    EXPECT_EQ(font.size(), 30);
    EXPECT_TRUE(font.bold());
    EXPECT_TRUE(font.italic());
    EXPECT_EQ(font.name(), u"Noto Serif");
}

TEST_F(SettingsDialogs, ACancelledDesktopFontDialogChangesNothing) {
    const forms::Font before = form.desktop_Lrc_Preview.font();
    chooseFont(30, 0);
    click(form.desktop_Lrc_Font_Button);
    EXPECT_EQ(form.desktop_Lrc_Preview.font(), before);
}

TEST_F(SettingsDialogs, TheOtherFontIsChosenButItsSizeIs14) {
    chooseFont(30);
    click(form.other_Lrc_Font_Button);
    EXPECT_EQ(fake.dialogs.fontRecords[0].owner, form.hWnd());
    EXPECT_EQ(form.other_Lrc_Preview.font().name(), u"Noto Serif");
    EXPECT_EQ(form.other_Lrc_Preview.font().size(), 14);
}

TEST_F(SettingsDialogs, TheOtherFontIsOfSize14EvenAfterACancelledDialog) {
    EXPECT_EQ(form.other_Lrc_Preview.font().size(), 14.25F);
    chooseFont(30, 0);
    click(form.other_Lrc_Font_Button);
    EXPECT_EQ(form.other_Lrc_Preview.font().size(), 14);
    EXPECT_EQ(form.other_Lrc_Preview.font().name(), u"微软雅黑");
}

TEST_F(SettingsDialogs, AColourIsTakenOverOnOk) {
    fake.dialogs.expectColour(0x00112233);
    click(form.desktop_Lrc_FroeColor_Button);
    fake.dialogs.expectColour(0x00445566);
    click(form.other_Lrc_FroeColor_Button);
    EXPECT_EQ(form.desktop_Lrc_Preview.foreColor(), 0x00112233U);
    EXPECT_EQ(form.other_Lrc_Preview.foreColor(), 0x00445566U);
    for (const auto &record : fake.dialogs.colourRecords)
        EXPECT_EQ(record.owner, form.hWnd());
}

TEST_F(SettingsDialogs, ACancelledColourDialogChangesNothing) {
    fake.dialogs.expectColour(std::nullopt);
    click(form.other_Lrc_FroeColor_Button);
    EXPECT_EQ(form.other_Lrc_Preview.foreColor(), 0x0000FFFFU);
}

TEST_F(SettingsDialogs, NeitherFontNorColourReachesALabelBeforeApply) {
    const forms::Font font = desktopLine().font();
    const Colour colour = app.Main().lrc_Text.foreColor();
    chooseFont(30);
    click(form.desktop_Lrc_Font_Button);
    fake.dialogs.expectColour(0x00445566);
    click(form.other_Lrc_FroeColor_Button);
    EXPECT_EQ(desktopLine().font(), font);
    EXPECT_EQ(app.Main().lrc_Text.foreColor(), colour);
    EXPECT_THAT(registry.log(), IsEmpty());
}

TEST_F(SettingsDialogs, AChosenFolderGoesIntoItsBoxWithItsSeparator) {
    fake.dialogs.expectFolder(u"/songs/words");
    click(form.save_Lrc_Path_Image);
    fake.dialogs.expectFolder(u"/songs/lists/");
    click(form.save_PlayList_Path_Image);
    fake.dialogs.expectFolder(u"/songs/cache");
    click(form.save_PlayCache_Path_Image);
    EXPECT_EQ(form.save_Lrc_Path.text(), u"/songs/words/");
    EXPECT_EQ(form.save_PlayList_Path.text(), u"/songs/lists/");
    EXPECT_EQ(form.save_PlayCache_Path.text(), u"/songs/cache/");
    for (const auto &record : fake.dialogs.browses) {
        EXPECT_EQ(record.owner, form.hWnd());
        EXPECT_EQ(record.title, u"请选择一个文件夹");
        EXPECT_EQ(record.flags, 1U);
    }
}

TEST_F(SettingsDialogs, ACancelledFolderDialogLeavesTheBox) {
    const std::u16string before = form.save_Lrc_Path.text();
    fake.dialogs.expectFolder(std::nullopt);
    click(form.save_Lrc_Path_Image);
    EXPECT_EQ(form.save_Lrc_Path.text(), before);
}

TEST_F(SettingsDialogs, AFolderMustBeLongerThanTwoCharacters) {
    form.save_Lrc_Path.setText(u"before");
    for (const auto *folder : {u"/", u"m"}) { // with a separator behind it
        fake.dialogs.expectFolder(folder);
        click(form.save_Lrc_Path_Image);
        EXPECT_EQ(form.save_Lrc_Path.text(), u"before");
    }
    fake.dialogs.expectFolder(u"/m");
    click(form.save_Lrc_Path_Image);
    EXPECT_EQ(form.save_Lrc_Path.text(), u"/m/");
}

} // namespace
} // namespace velmora
