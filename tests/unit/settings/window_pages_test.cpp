// The settings window: its pages, how it opens and how it is left.

#include "playback/MenuForm.h"
#include "tests/unit/settings/settings_window_fixture.h"
#include "ui/aboutForm.h"

namespace velmora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SettingsPages : public SettingsWindow {
protected:
    struct Page {
        zkButton &tab;
        forms::Frame &frame;
    };
    std::vector<Page> pages() {
        return {{form.playSet, form.playFrame},      {form.lrcSet, form.lrc_Frame},
                {form.folderSet, form.folder_Frame}, {form.languageSet, form.Language_Frame},
                {form.help, form.help_Frame},        {form.Shortcuts, form.Shortcuts_Frame}};
    }
};

// --- pages -----------------------------------------------------------------------------------

TEST_F(SettingsPages, LieOverOneAnother) {
    for (const Page &page : pages())
        EXPECT_EQ(page.frame.place(), form.playFrame.place()) << page.frame.name();
}

TEST_F(SettingsPages, OfLongTextsLieOverOneAnother) {
    for (const forms::TextBox *box :
         {&form.helpShow_English, &form.helpShow_French, &form.helpShow_Japanese})
        EXPECT_EQ(box->place(), form.helpShow_Chinese.place());
    for (const forms::TextBox *box :
         {&form.Shortcuts_Show_English, &form.Shortcuts_Show_French, &form.Shortcuts_Show_Japanese})
        EXPECT_EQ(box->place(), form.Shortcuts_Show_Chinese.place());
}

TEST_F(SettingsPages, HoldTheirControls) {
    struct Content {
        const forms::Frame &frame;
        std::vector<const forms::Control *> controls;
    };
    const Content contents[] = {
        {form.playFrame,
         {&form.isAutoPlay, &form.autoUpdate, &form.openVideo_Interface, &form.Play_Order,
          &form.Play_Random, &form.Play_RepeatPlay}},
        {form.lrc_Frame, {&form.desktop_Lrc_Frame, &form.other_Lrc_Frame}},
        {form.desktop_Lrc_Frame,
         {&form.desktopLrc_AutoOpen, &form.desktop_Lrc_Preview, &form.desktop_Lrc_Font_Button,
          &form.desktop_Lrc_FroeColor_Button}},
        {form.other_Lrc_Frame,
         {&form.other_Lrc_Preview, &form.other_Lrc_Exclamation, &form.other_Lrc_Font_Button,
          &form.other_Lrc_FroeColor_Button}},
        {form.folder_Frame,
         {&form.save_Lrc_Path_Label, &form.save_Lrc_Path, &form.save_Lrc_Path_Image,
          &form.save_PlayList_Path_Label, &form.save_PlayList_Path, &form.save_PlayList_Path_Image,
          &form.save_PlayCache_Path_Label, &form.save_PlayCache_Path,
          &form.save_PlayCache_Path_Image}},
        {form.Language_Frame,
         {&form.Language_China, &form.Language_English, &form.Language_French,
          &form.Language_Japanese}},
        {form.help_Frame,
         {&form.helpShow_Chinese, &form.helpShow_English, &form.helpShow_French,
          &form.helpShow_Japanese}},
        {form.Shortcuts_Frame,
         {&form.Shortcuts_Show_Chinese, &form.Shortcuts_Show_English, &form.Shortcuts_Show_French,
          &form.Shortcuts_Show_Japanese}},
    };
    for (const Content &content : contents)
        for (const forms::Control *control : content.controls)
            EXPECT_EQ(&control->container(), &content.frame) << control->name();
    for (const forms::Control *control : std::initializer_list<const forms::Control *>{
             &form.qd, &form.qx, &form.yy, &form.abount, &form.playSet_Resume, &form.close,
             &form.title, &form.title_ICO, &form.copyright, &form.Picture1})
        EXPECT_EQ(&control->container(), &form) << control->name();
}

// The mark is a part of the page, so that it shows what is open without a state of the tab.
TEST_F(SettingsPages, HaveAMarkBesideTheirTab) {
    const forms::Shape *const marks[] = {&form.playMark,     &form.lrcMark,  &form.folderMark,
                                         &form.languageMark, &form.helpMark, &form.ShortcutsMark};
    std::size_t index = 0;
    for (const Page &page : pages()) {
        const forms::Shape &mark = *marks[index++];
        EXPECT_EQ(mark.container().asControl(), &page.frame) << mark.name();
        const RectTwips place = mark.placeInForm();
        const RectTwips tab = page.tab.placeInForm();
        EXPECT_EQ(place.top + place.height / 2, tab.top + tab.height / 2) << mark.name();
        EXPECT_EQ(place.left, page.frame.left());
        EXPECT_TRUE(mark.visible());
    }
}

TEST_F(SettingsPages, StartWithThePlaybackOptions) {
    for (const Page &page : pages())
        EXPECT_EQ(page.frame.visible(), &page.frame == &form.playFrame) << page.frame.name();
}

TEST_F(SettingsPages, ShowOneAtATimeByTheirTabs) {
    for (const Page &chosen : pages()) {
        click(chosen.tab);
        for (const Page &page : pages())
            EXPECT_EQ(page.frame.visible(), &page.frame == &chosen.frame) << page.frame.name();
    }
}

TEST_F(SettingsPages, ReopenWhereTheyWereLeft) {
    open();
    click(form.folderSet);
    cancel();
    open();
    EXPECT_TRUE(form.folder_Frame.visible());
    EXPECT_FALSE(form.playFrame.visible());
}

TEST_F(SettingsPages, OpenWithTheHelpFromTheMenu) {
    app.MenuForm().help.choose();
    expectOpen();
    EXPECT_TRUE(form.help_Frame.visible());
    EXPECT_FALSE(form.playFrame.visible());
    cancel();
    expectClosed();
}

TEST_F(SettingsPages, WhatWasGivenUpByCancelStaysGivenUpInTheHelp) {
    open();
    form.isAutoPlay.setValue(0);
    form.isAutoPlay_Click();
    form.Language_English.setValue(true);
    cancel();
    app.MenuForm().help.choose();
    okay();
    EXPECT_EQ(stored(u"isAutoPlay"), u"0");
    EXPECT_EQ(stored(u"Language"), u"0");
    EXPECT_TRUE(form.Play_Order.enabled());
}

TEST_F(SettingsPages, TheHelpLeavesWhatIsBeingChangedInTheOpenWindow) {
    open();
    form.autoUpdate.setValue(1);
    form.Language_English.setValue(true);
    app.MenuForm().help.choose();
    okay();
    EXPECT_EQ(stored(u"AutoUpadate"), u"1");
    EXPECT_EQ(stored(u"Language"), u"1");
}

// A person's settings, none of them the designed one.
struct SettingsInUse : SettingsWindow {
    void SetUp() override {
        for (const auto &[name, text] : kept)
            registry.setText(playSetKey, name, text);
        storeFontSet(u"Desktop");
        storeFontSet(u"Other");
        SettingsWindow::SetUp();
    }

    const std::vector<std::pair<std::u16string, std::u16string>> kept{
        {u"AutoUpadate", u"1"},
        {u"isAutoPlay", u"1"},
        {u"PlayMode", u"2"},
        {u"Language", u"1"},
        {u"VideoInterface", u"1"},
        {u"LrcSaveFolder", u"/music/words"},
        {u"PlayListSaveFolder", u"/music/lists"},
        {u"PlayCacheSaveFolder", u"/music/cache"},
        {u"Desktop_Lrc_Name", u"Noto Sans"},
        {u"Desktop_Lrc_AutoOpen", u"1"},
        {u"Other_Lrc_Name", u"Noto Sans"}};
};

TEST_F(SettingsInUse, OkInTheHelpFromTheMenuChangesNothing) {
    app.MenuForm().help.choose();
    okay();
    for (const auto &[name, text] : kept)
        EXPECT_EQ(stored(name), text) << toUtf8(name);
    EXPECT_EQ(settings.Language_Index, 1);
    EXPECT_EQ(registry.value(playSetKey, u"Desktop_Lrc_Size")->number, 24U);
}

// --- opening ---------------------------------------------------------------------------------

TEST_F(SettingsPages, OpenWithMainAndTheListDisabled) {
    open();
    expectOpen();
}

TEST_F(SettingsPages, ReadEachStoredValueOnceForEachOfItsTests) {
    registry.setText(playSetKey, u"AutoUpadate", u"5");
    registry.setText(playSetKey, u"isAutoPlay", u"1");
    registry.setText(playSetKey, u"VideoInterface", u"0");
    open();
    const std::u16string read = u"read " + std::u16string(playSetKey);
    EXPECT_THAT(logged(u"read "),
                ElementsAre(read + u" AutoUpadate", read + u" AutoUpadate", read + u" isAutoPlay",
                            read + u" isAutoPlay", read + u" VideoInterface",
                            read + u" VideoInterface"));
}

TEST_F(SettingsPages, LeaveABoxAsItIsWhereTheStoredNumberIsNeitherOfTwo) {
    form.autoUpdate.setValue(1);
    form.isAutoPlay.setValue(1);
    form.openVideo_Interface.setValue(1);
    for (const char16_t *name : {u"AutoUpadate", u"isAutoPlay", u"VideoInterface"})
        registry.setText(playSetKey, name, u"7");
    open();
    EXPECT_EQ(form.autoUpdate.value(), 1);
    EXPECT_EQ(form.isAutoPlay.value(), 1);
    EXPECT_EQ(form.openVideo_Interface.value(), 1);
}

TEST_F(SettingsPages, TickTheLanguageInForce) {
    const forms::OptionButton *const choices[] = {&form.Language_China, &form.Language_English,
                                                  &form.Language_French, &form.Language_Japanese};
    for (std::int32_t language = 0; language < 4; ++language) {
        settings.Language_Index = language;
        open();
        for (std::int32_t i = 0; i < 4; ++i)
            EXPECT_EQ(choices[i]->value(), i == language);
        cancel();
    }
}

TEST_F(SettingsPages, TickNoLanguageWhereTheOneInForceIsNoneOfTheFour) {
    for (const std::int32_t language : {4, 7, -1, 2'000'000'000}) {
        settings.Language_Index = language;
        open();
        EXPECT_FALSE(form.Language_China.value() || form.Language_English.value() ||
                     form.Language_French.value() || form.Language_Japanese.value());
        cancel();
    }
}

// --- the play modes --------------------------------------------------------------------------

TEST_F(SettingsPages, OfferThePlayModesWhileTracksFollowEachOther) {
    registry.setText(playSetKey, u"isAutoPlay", u"0");
    open();
    EXPECT_TRUE(form.Play_Order.enabled());
    form.isAutoPlay.userToggled();
    for (const forms::OptionButton *mode :
         {&form.Play_Order, &form.Play_Random, &form.Play_RepeatPlay})
        EXPECT_FALSE(mode->enabled());
    form.isAutoPlay.userToggled();
    for (const forms::OptionButton *mode :
         {&form.Play_Order, &form.Play_Random, &form.Play_RepeatPlay})
        EXPECT_TRUE(mode->enabled());
}

TEST_F(SettingsPages, OpenWithThePlayModesDisabledWhereTracksDoNotFollow) {
    registry.setText(playSetKey, u"isAutoPlay", u"1");
    open();
    EXPECT_FALSE(form.Play_Order.enabled());
    EXPECT_FALSE(form.Play_Random.enabled());
    EXPECT_FALSE(form.Play_RepeatPlay.enabled());
}

// --- leaving ---------------------------------------------------------------------------------

TEST_F(SettingsPages, AreLeftByCancelByTheCloseButtonAndByTheWindowManager) {
    const std::function<void()> ways[] = {[this] { cancel(); }, [this] { click(form.close); },
                                          [this] { form.closeRequested(); }};
    for (const auto &way : ways) {
        open();
        way();
        expectClosed();
    }
}

TEST_F(SettingsPages, AreNeverUnloaded) {
    open();
    EXPECT_FALSE(form.unload());
    EXPECT_EQ(&form, &app.playSetForm());
}

TEST_F(SettingsPages, BringMainToTheFrontOnLeaving) {
    open();
    windows.shown.clear();
    cancel();
    EXPECT_EQ(windows.shown, std::vector<std::string>{"Main"});
}

TEST_F(SettingsPages, DockTheListOnLeavingWhileItShows) {
    app.playList_Form().show();
    open();
    const auto left = app.Main().left();
    cancel();
    EXPECT_EQ(app.Main().left(), left - app.Main().width() / 2);
    EXPECT_EQ(app.playList_Form().left(), app.Main().left() + app.Main().width());
}

TEST_F(SettingsPages, LeaveMainWhereItIsWithoutTheList) {
    app.playList_Form().hide();
    open();
    const auto left = app.Main().left();
    cancel();
    EXPECT_EQ(app.Main().left(), left);
}

TEST_F(SettingsPages, StoreNothingOnCancel) {
    open();
    registry.clearLog();
    form.autoUpdate.userToggled();
    form.Language_French.userChose();
    form.save_Lrc_Path.userEdited(u"/elsewhere");
    const std::u16string before = memory.Path_Lrc;
    cancel();
    EXPECT_THAT(registry.log(), IsEmpty());
    EXPECT_EQ(memory.Path_Lrc, before);
    EXPECT_EQ(memory.AutoUpadate, 0);
    EXPECT_EQ(memory.Language, 0);
}

TEST_F(SettingsPages, KeepWhatWasTypedAfterCancelButNotWhatIsReadAnew) {
    open();
    form.autoUpdate.userToggled();
    form.Language_French.userChose();
    form.Play_RepeatPlay.userChose();
    form.desktopLrc_AutoOpen.userToggled();
    form.save_Lrc_Path.userEdited(u"/elsewhere");
    fake.dialogs.expectColour(0x00123456);
    click(form.desktop_Lrc_FroeColor_Button);
    cancel();
    open();
    // Read anew:
    EXPECT_EQ(form.autoUpdate.value(), 0);
    EXPECT_TRUE(form.Language_China.value());
    // Kept, and confirmed by the next Apply:
    EXPECT_TRUE(form.Play_RepeatPlay.value());
    EXPECT_EQ(form.desktopLrc_AutoOpen.value(), 1);
    EXPECT_EQ(form.save_Lrc_Path.text(), u"/elsewhere");
    EXPECT_EQ(form.desktop_Lrc_Preview.foreColor(), 0x00123456U);
    apply();
    EXPECT_EQ(stored(u"LrcSaveFolder"), u"/elsewhere");
    EXPECT_EQ(memory.PlayMode, 2);
    EXPECT_EQ(desktopLine().foreColor(), 0x00123456U);
}

// --- keys and other windows ------------------------------------------------------------------

TEST_F(SettingsPages, AreConfirmedByCtrlSWithTheFocusNowhere) {
    for (const Page &page : pages()) {
        open();
        click(page.tab);
        form.setFocus(nullptr);
        EXPECT_FALSE(form.keyPressed(83, forms::ctrlMask)) << page.tab.name();
        expectClosed();
    }
}

TEST_F(SettingsPages, AreConfirmedByCtrlSWhereverTheFocusIs) {
    const auto focusables = [&] {
        std::vector<forms::Control *> found;
        open();
        for (const Page &page : pages()) {
            click(page.tab);
            form.setFocus(nullptr);
            for (std::size_t i = 0; i < 40; ++i) {
                form.focusNext(false);
                if (std::find(found.begin(), found.end(), form.activeControl()) == found.end())
                    found.push_back(form.activeControl());
            }
        }
        cancel();
        return found;
    }();
    ASSERT_GT(focusables.size(), 30U);
    for (forms::Control *control : focusables) {
        open();
        for (const Page &page : pages())
            if (!control->isShown())
                click(page.tab);
        form.setFocus(control);
        ASSERT_EQ(form.activeControl(), control) << control->name();
        registry.clearLog();
        EXPECT_FALSE(form.keyPressed(83, forms::ctrlMask)) << control->name();
        expectClosed();
        EXPECT_THAT(registry.log(), testing::Contains(u"set AutoUpadate SZ 2 0"))
            << control->name();
    }
}

TEST_F(SettingsPages, TestCtrlWithAMask) {
    open();
    form.keyPressed(83, forms::ctrlMask | forms::shiftMask);
    expectClosed();
}

TEST_F(SettingsPages, KnowNoOtherKey) {
    open();
    for (const std::int16_t key : {13, 27, 83, 65, 123})
        form.keyPressed(key, 0);
    form.keyPressed(65, forms::ctrlMask);
    expectOpen();
}

TEST_F(SettingsPages, AreDisabledWhileTheAboutWindowShowsAndComeBack) {
    open();
    click(form.abount);
    EXPECT_FALSE(form.enabled());
    EXPECT_TRUE(app.aboutForm().visible());
    EXPECT_EQ(app.aboutForm().caller_Name, u"playset");
    form.closeRequested();
    EXPECT_TRUE(form.visible());
    click(app.aboutForm().close);
    EXPECT_TRUE(form.enabled());
    expectOpen();
}

TEST_F(SettingsPages, AreDraggedByFormTitleAndIcon) {
    open();
    for (forms::ControlEvents *handle : {static_cast<forms::ControlEvents *>(&form.on()),
                                         &form.title.on(), &form.title_ICO.on()}) {
        const auto left = form.left();
        windows.cursor = {500, 300};
        handle->MouseDown({forms::leftButton, 0, 0, 0});
        windows.cursor = {520, 310};
        handle->MouseMove({forms::leftButton, 0, 0, 0});
        EXPECT_EQ(form.left(), left + 20 * 15);
    }
}

} // namespace
} // namespace velmora
