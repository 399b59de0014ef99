// Apply and OK of the settings window: what is taken over, stored, read back and shown.

#include "base/numbers.h"
#include "playlist/saveOrOpenFile.h"
#include "tests/unit/settings/settings_window_fixture.h"

namespace velmora {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

class SettingsApplied : public SettingsWindow {
protected:
    void SetUp() override {
        SettingsWindow::SetUp();
        open();
        registry.clearLog();
    }
    // Applies a box with this value: what is in memory and stored afterwards.
    void expectTaken(forms::CheckBox &box, std::int16_t value, const std::int16_t &choice,
                     std::u16string_view name, std::int16_t expected) {
        box.setValue(value);
        apply();
        EXPECT_EQ(choice, expected) << value;
        EXPECT_EQ(stored(name), decimal(expected)) << value;
    }
    // What an Apply writes and reads, in order, on a program as it was started.
    Texts expectedLog(std::u16string_view autoPlay) {
        const std::u16string create = u"create " + std::u16string(playSetKey);
        const auto folder = [](const std::u16string &name, const std::u16string &path) {
            return u"set " + name + u" SZ " +
                   decimal(static_cast<std::int64_t>(toUtf8(path).size())) + u" " + path;
        };
        Texts log{create,
                  u"set AutoUpadate SZ 2 0",
                  u"set isAutoPlay SZ 2 " + std::u16string(autoPlay),
                  u"set PlayMode SZ 2 0",
                  u"set Language SZ 2 0",
                  u"set VideoInterface SZ 2 0",
                  folder(u"LrcSaveFolder", form.save_Lrc_Path.text()),
                  folder(u"PlayListSaveFolder", form.save_PlayList_Path.text()),
                  folder(u"PlayCacheSaveFolder", form.save_PlayCache_Path.text()),
                  u"close"};
        struct Set {
            std::u16string name, size, fore, back;
        };
        const auto number = [](Colour colour) {
            return decimal(static_cast<std::int64_t>(colour));
        };
        const Set sets[] = {
            {u"Desktop", u"36", u"255", number(form.desktop_Lrc_Preview.backColor())},
            {u"Other", u"14", u"65535", number(form.other_Lrc_Preview.backColor())}};
        for (const Set &set : sets) {
            const std::u16string prefix = u"set " + set.name + u"_Lrc_";
            log.insert(log.end(),
                       {create, u"set Desktop_Lrc_AutoOpen SZ 1 0", prefix + u"Bold DWORD 0",
                        prefix + u"Charset DWORD 1", prefix + u"Italic DWORD 0",
                        prefix + u"Name SZ 12 微软雅黑", prefix + u"Size DWORD " + set.size,
                        prefix + u"Strikethrough DWORD 0", prefix + u"Underline DWORD 0",
                        prefix + u"Weight DWORD 400", prefix + u"ForeColor DWORD " + set.fore,
                        prefix + u"BackColor DWORD " + set.back, u"close"});
        }
        log.insert(log.end(), {create, u"flush", u"close"}); // the disk is waited for once
        log.insert(log.end(), {u"provider", u"read " + std::u16string(playSetKey) + u" Language"});
        return log;
    }
};

// --- the choices -----------------------------------------------------------------------------

TEST_F(SettingsApplied, AutoUpdateIsOneTickedAndZeroUnticked) {
    expectTaken(form.autoUpdate, 1, memory.AutoUpadate, u"AutoUpadate", 1);
    expectTaken(form.autoUpdate, 0, memory.AutoUpadate, u"AutoUpadate", 0);
}

TEST_F(SettingsApplied, AGreyAutoUpdateChangesNothing) {
    memory.AutoUpadate = 1;
    expectTaken(form.autoUpdate, 2, memory.AutoUpadate, u"AutoUpadate", 1);
}

TEST_F(SettingsApplied, AutoPlayIsStoredInverted) {
    expectTaken(form.isAutoPlay, 1, memory.isAutoPlay, u"isAutoPlay", 0);
    expectTaken(form.isAutoPlay, 0, memory.isAutoPlay, u"isAutoPlay", 1);
    expectTaken(form.isAutoPlay, 1, memory.isAutoPlay, u"isAutoPlay", 0);
}

TEST_F(SettingsApplied, ThePlayModeIsThatOfItsButton) {
    forms::OptionButton *const modes[] = {&form.Play_Order, &form.Play_Random,
                                          &form.Play_RepeatPlay};
    for (std::int16_t mode : {2, 0, 1}) {
        modes[mode]->userChose();
        apply();
        EXPECT_EQ(memory.PlayMode, mode);
        EXPECT_EQ(settings.get_PlayMode(), mode);
    }
}

TEST_F(SettingsApplied, WithoutAPlayModeChosenTheOneInForceStays) {
    for (forms::OptionButton *mode : {&form.Play_Order, &form.Play_Random, &form.Play_RepeatPlay})
        mode->setValue(false);
    memory.PlayMode = 2;
    apply();
    EXPECT_EQ(memory.PlayMode, 2);
}

TEST_F(SettingsApplied, ThePlayModeIsSavedEvenWhileItsButtonsAreDisabled) {
    form.Play_Random.userChose();
    form.isAutoPlay.setValue(1);
    form.isAutoPlay.userToggled();
    ASSERT_FALSE(form.Play_Random.enabled());
    apply();
    EXPECT_EQ(stored(u"PlayMode"), u"1");
    EXPECT_EQ(stored(u"isAutoPlay"), u"1");
}

TEST_F(SettingsApplied, TheVideoWindowIsOneTickedAndElseZero) {
    form.openVideo_Interface.setValue(1);
    apply();
    EXPECT_EQ(memory.VideoInterface, 1);
    for (const std::int16_t value : {2, 0}) {
        memory.VideoInterface = 1;
        form.openVideo_Interface.setValue(value);
        apply();
        EXPECT_EQ(memory.VideoInterface, 0);
    }
}

TEST_F(SettingsApplied, WithoutALanguageChosenTheOneInMemoryIsStored) {
    memory.Language = 2;
    form.language_Load(7);
    apply();
    EXPECT_EQ(stored(u"Language"), u"2");
    EXPECT_EQ(settings.Language_Index, 2);
}

// --- folders ---------------------------------------------------------------------------------

TEST_F(SettingsApplied, TheFoldersAreInForceAtOnceAndAreMade) {
    form.save_Lrc_Path.userEdited(u"/songs/words");
    form.save_PlayList_Path.userEdited(u"/songs/lists");
    form.save_PlayCache_Path.userEdited(u"/songs/cache");
    apply();
    EXPECT_EQ(memory.Path_Lrc, u"/songs/words");
    EXPECT_EQ(memory.Path_List, u"/songs/lists");
    EXPECT_EQ(memory.Path_Cache, u"/songs/cache");
    EXPECT_TRUE(files.hasFolder(u"/songs/words"));
    EXPECT_TRUE(files.hasFolder(u"/songs/lists"));
    EXPECT_TRUE(files.hasFolder(u"/songs/cache"));
}

TEST_F(SettingsApplied, TheListOfThisRunIsSavedElsewhereFromTheNextSaveOnAndNothingMoves) {
    addRow(u"/m/a.mp3");
    app.saveOrOpenFile().savePlayList();
    const std::u16string old = memory.Path_List + u"/zkPlayList.m3u";
    form.save_PlayList_Path.userEdited(u"/songs/lists");
    apply();
    EXPECT_TRUE(files.hasFile(old));
    EXPECT_FALSE(files.hasFile(u"/songs/lists/zkPlayList.m3u"));
    addRow(u"/m/b.mp3");
    app.saveOrOpenFile().savePlayList();
    EXPECT_EQ(files.contents(u"/songs/lists/zkPlayList.m3u"), "/m/a.mp3\r\n/m/b.mp3\r\n");
    EXPECT_EQ(files.contents(old), "/m/a.mp3\r\n");
}

TEST_F(SettingsApplied, AnOlderListInTheFolderChosenIsKeptBeforeItIsWrittenOver) {
    const std::u16string there = u"/songs/lists/zkPlayList.m3u";
    files.addFile(there, "/m/older.mp3\r\n");
    addRow(u"/m/a.mp3");
    form.save_PlayList_Path.userEdited(u"/songs/lists/");
    apply();
    EXPECT_EQ(files.contents(there), "/m/older.mp3\r\n");
    app.saveOrOpenFile().savePlayList();
    EXPECT_EQ(files.contents(there), "/m/a.mp3\r\n");
    EXPECT_EQ(files.contents(there + u".old"), "/m/older.mp3\r\n");
}

TEST_F(SettingsApplied, AFolderIsTakenAsItWasTyped) {
    for (const char16_t *odd :
         {u"/a//", u"/a/", u"relative", u"", u" /blank ", u"/a\r\nb", u"/m/song.mp3"}) {
        form.save_Lrc_Path.userEdited(odd);
        apply();
        EXPECT_EQ(memory.Path_Lrc, odd);
        EXPECT_EQ(stored(u"LrcSaveFolder"), odd);
    }
}

// --- storing ---------------------------------------------------------------------------------

TEST_F(SettingsApplied, EverythingIsStoredInOneOrderAndTheLanguageIsReadBack) {
    const Texts expected = expectedLog(u"0");
    apply();
    EXPECT_THAT(registry.log(), ElementsAreArray(expected));
}

TEST_F(SettingsApplied, ASizeThatNoScreenHoldsIsKeptAndShownAsLargeAsTheScreenAllows) {
    forms::Font font = form.desktop_Lrc_Preview.font();
    font.setSize(2160);
    form.desktop_Lrc_Preview.setFont(font);
    apply();
    EXPECT_LT(desktopLine().font().size(), 2160);
    EXPECT_GE(app.lrcForm().top(), 0);
    EXPECT_EQ(form.desktop_Lrc_Preview.font().size(), 2160);
    EXPECT_EQ(registry.value(playSetKey, u"Desktop_Lrc_Size")->number, 2160U);
}

TEST_F(SettingsApplied, AFolderTypedWithATildeLiesInTheHomeAndIsStoredAsItWasTyped) {
    open();
    form.save_Lrc_Path.setText(u"~/words");
    form.save_PlayList_Path.setText(u"~/lists");
    form.save_PlayCache_Path.setText(u"~/cache");
    apply();
    EXPECT_EQ(memory.Path_Lrc, u"/home/user/words");
    EXPECT_EQ(memory.Path_List, u"/home/user/lists");
    EXPECT_EQ(memory.Path_Cache, u"/home/user/cache");
    EXPECT_TRUE(files.hasFolder(u"/home/user/lists"));
    EXPECT_EQ(form.save_Lrc_Path.text(), u"~/words");
    EXPECT_EQ(stored(u"LrcSaveFolder"), u"~/words");
}

// The folders are made between the general settings and the fonts: what holds at that moment.
TEST_F(SettingsApplied, ChoicesDesktopLineAndFoldersAreTakenBeforeStoringAndTheLooksAfterIt) {
    form.Play_Random.userChose();
    form.Language_English.userChose();
    form.openVideo_Interface.setValue(1);
    form.save_Lrc_Path.userEdited(u"/songs/words");
    form.desktopLrc_AutoOpen.setValue(1);
    app.lrcForm().hasLrc = true;
    desktopLine().setVisible(false);
    form.desktop_Lrc_Preview.setForeColor(0x00010203);
    form.other_Lrc_Preview.setForeColor(0x00040506);
    const std::u16string tip = app.Main().playButton.toolTip();
    const std::size_t trayCalls = windows.trayCalls.size();
    int folders = 0;
    fake.shell.onCommandLine = [&](std::u16string_view) {
        ++folders;
        EXPECT_EQ(memory.PlayMode, 1);
        EXPECT_EQ(memory.Language, 1);
        EXPECT_EQ(memory.VideoInterface, 1);
        EXPECT_EQ(memory.Path_Lrc, u"/songs/words");
        EXPECT_TRUE(app.lrcForm().desktopLrcAutoOpen);
        EXPECT_TRUE(desktopLine().visible());
        EXPECT_EQ(stored(u"LrcSaveFolder"), u"/songs/words");
        EXPECT_EQ(stored(u"Desktop_Lrc_AutoOpen"), u"(none)");
        EXPECT_NE(desktopLine().foreColor(), 0x00010203U);
        EXPECT_NE(app.Main().lrc_Text.foreColor(), 0x00040506U);
        EXPECT_EQ(settings.Language_Index, 0);
        EXPECT_EQ(app.Main().playButton.toolTip(), tip);
        EXPECT_EQ(windows.trayCalls.size(), trayCalls);
    };
    apply();
    EXPECT_EQ(folders, 6);
    EXPECT_EQ(desktopLine().foreColor(), 0x00010203U);
    EXPECT_EQ(app.Main().playButton.toolTip(), u"Play(F2)");
}

TEST_F(SettingsApplied, ASecondApplyWritesAllOfItAgain) {
    apply();
    const Texts first = registry.log();
    registry.clearLog();
    const auto texts = app.Main().playButton.toolTip();
    apply();
    EXPECT_EQ(registry.log(), first);
    EXPECT_EQ(app.Main().playButton.toolTip(), texts);
}

TEST_F(SettingsApplied, AFractionalFontSizeIsStoredRounded) {
    apply();
    EXPECT_EQ(registry.value(playSetKey, u"Other_Lrc_Size")->number, 14U);
    EXPECT_EQ(form.other_Lrc_Preview.font().size(), 14.25F);
}

TEST_F(SettingsApplied, TheAutoOpenValueHasOnePrefixForBothFonts) {
    form.desktopLrc_AutoOpen.setValue(1);
    apply();
    EXPECT_THAT(
        logged(u"set Desktop_Lrc_AutoOpen"),
        ElementsAre(u"set Desktop_Lrc_AutoOpen SZ 1 1", u"set Desktop_Lrc_AutoOpen SZ 1 1"));
    EXPECT_FALSE(registry.value(playSetKey, u"Other_Lrc_AutoOpen").has_value());
}

TEST_F(SettingsApplied, TheNextStartHasWhatWasApplied) {
    form.Play_RepeatPlay.userChose();
    form.Language_English.userChose();
    form.openVideo_Interface.setValue(1);
    fake.dialogs.expectColour(0x00112233);
    click(form.other_Lrc_FroeColor_Button);
    apply();
    Velmora next(fake.bundle());
    next.start();
    EXPECT_EQ(next.setControl().PlayMode, 2);
    EXPECT_EQ(next.setControl().VideoInterface, 1);
    EXPECT_EQ(next.setControl().Language_Index, 1);
    EXPECT_TRUE(next.playSetForm().Play_RepeatPlay.value());
    EXPECT_EQ(next.Main().lrc_Text.foreColor(), 0x00112233U);
    EXPECT_EQ(next.Main().lrc_Text.font().size(), 14);
}

TEST_F(SettingsApplied, OkAppliesAndLeaves) {
    form.autoUpdate.setValue(1);
    okay();
    EXPECT_EQ(stored(u"AutoUpadate"), u"1");
    expectClosed();
}

TEST_F(SettingsApplied, ApplyStays) {
    apply();
    expectOpen();
}

// --- shown at once ---------------------------------------------------------------------------

TEST_F(SettingsApplied, TheLanguageChangesInEveryWindowAtOnce) {
    app.playList_Form().show();
    form.Language_English.userChose();
    apply();
    EXPECT_EQ(settings.Language_Index, 1);
    EXPECT_EQ(app.Main().playButton.toolTip(), u"Play(F2)");
    EXPECT_EQ(form.yy.caption(), u"Apply");
    EXPECT_EQ(app.playList_Form().title.caption(), u"PlayList(F8)");
    EXPECT_EQ(app.Language().msg_Error, u"Error");
    EXPECT_TRUE(form.helpShow_English.visible());
}

TEST_F(SettingsApplied, TheLanguageChangesWhileATrackPlays) {
    addTrack(u"/m/a.mp3");
    openAndPlay(u"/m/a.mp3");
    form.Language_English.userChose();
    apply();
    EXPECT_EQ(media.mode(), u"playing");
    EXPECT_TRUE(startsWith(app.playInfo_Form().playName.caption(), u"Track Name："));
}

TEST_F(SettingsApplied, WhereNothingCanBeStoredTheLanguageShowsForThisRun) {
    registry.failWrites(platform::ERROR_ACCESS_DENIED);
    form.Language_French.userChose();
    apply();
    EXPECT_EQ(settings.Language_Index, 2);
    EXPECT_EQ(form.yy.caption(), u"Appliquer");
}

TEST_F(SettingsApplied, WhereTheStoreKeepsAnOldLanguageThatOneIsReadBack) {
    registry.setText(playSetKey, u"Language", u"3");
    registry.failWrites(platform::ERROR_ACCESS_DENIED);
    form.Language_French.userChose();
    apply();
    EXPECT_EQ(memory.Language, 2);
    EXPECT_EQ(settings.Language_Index, 3);
    EXPECT_EQ(form.yy.caption(), u"適用");
}

TEST_F(SettingsApplied, WithoutTheProviderTheLanguageOfMemoryHolds) {
    registry.setProviderMissing(true);
    form.Language_Japanese.userChose();
    apply();
    EXPECT_EQ(settings.Language_Index, 3);
}

TEST_F(SettingsApplied, ThePreviewsDressTheirLabels) {
    forms::Font font = form.desktop_Lrc_Preview.font();
    font.setItalic(true);
    font.setStrikethrough(true);
    font.setSize(20);
    form.desktop_Lrc_Preview.setFont(font);
    form.desktop_Lrc_Preview.setForeColor(0x00010203);
    font.setSize(14);
    form.other_Lrc_Preview.setFont(font);
    form.other_Lrc_Preview.setForeColor(0x00040506);
    form.other_Lrc_Preview.setBackColor(0x00070809);
    apply();
    EXPECT_EQ(desktopLine().font(), form.desktop_Lrc_Preview.font());
    EXPECT_EQ(desktopLine().foreColor(), 0x00010203U);
    EXPECT_EQ(app.lrcForm().height(), desktopLine().height());
    EXPECT_EQ(app.Main().lrc_Text.font(), font);
    EXPECT_EQ(app.Main().lrc_Text.foreColor(), 0x00040506U);
    EXPECT_EQ(app.playInfo_Form().lrc_Text.foreColor(), 0x00040506U);
    EXPECT_EQ(app.playInfo_Form().lrc_Text.backColor(), 0x00070809U);
    EXPECT_EQ(registry.value(playSetKey, u"Desktop_Lrc_Strikethrough")->number, 1U);
    EXPECT_EQ(registry.value(playSetKey, u"Other_Lrc_BackColor")->number, 0x00070809U);
}

TEST_F(SettingsApplied, LabelsAreDressedFromThePreviewsAndNotFromWhatIsStored) {
    forms::Font font = form.desktop_Lrc_Preview.font();
    font.setSize(20.5F);
    form.desktop_Lrc_Preview.setFont(font);
    form.other_Lrc_Preview.setFont(font);
    apply();
    EXPECT_EQ(registry.value(playSetKey, u"Desktop_Lrc_Size")->number, 20U);
    EXPECT_EQ(form.desktop_Lrc_Preview.font().size(), 20.5F);
    EXPECT_EQ(desktopLine().font().size(), 20.5F);
    EXPECT_EQ(form.other_Lrc_Preview.font().size(), 20.5F);
    EXPECT_EQ(app.Main().lrc_Text.font().size(), 20.5F);
}

TEST_F(SettingsApplied, TheStagingSetHoldsTheOtherFontAfterwards) {
    form.desktop_Lrc_Preview.setForeColor(1);
    form.other_Lrc_Preview.setForeColor(2);
    apply();
    EXPECT_EQ(memory.Lrc_ForeColor, 2U);
    EXPECT_EQ(memory.Lrc_Size, 14);
}

TEST_F(SettingsApplied, ThePreviewsShowTheProductAgain) {
    form.desktop_Lrc_Preview.setText(u"something");
    apply();
    EXPECT_EQ(form.desktop_Lrc_Preview.text(), u"Velmora 2011");
}

TEST_F(SettingsApplied, TheTrayTipIsTitleAndTrackInBrackets) {
    app.player().nowPlay_Title = u"A -- B";
    apply();
    EXPECT_EQ(windows.trayCalls.back().operation, platform::NIM_MODIFY);
    EXPECT_EQ(windows.trayCalls.back().data.tip, u"Velmora 2011 【A -- B】");
}

TEST_F(SettingsApplied, TheTrayTipHasEmptyBracketsWithoutATrack) {
    apply();
    EXPECT_EQ(windows.trayCalls.back().data.tip, u"Velmora 2011 【】");
}

TEST_F(SettingsApplied, TheTrayTipComesLastWithTheTitleThatTheLanguageHasJustPut) {
    app.Main().title.setCaption(u"The old title");
    const std::size_t before = windows.trayCalls.size();
    apply();
    ASSERT_EQ(windows.trayCalls.size(), before + 1);
    EXPECT_EQ(windows.trayCalls.back().data.tip, u"Velmora 2011 【】");
}

TEST_F(SettingsApplied, PlayModeAndAutoPlayActFromTheNextTrack) {
    addRow(u"/m/a.mp3");
    addRow(u"/m/b.mp3");
    app.player().nowPlay_Index = 1;
    openAndPlay(u"/m/a.mp3");
    form.isAutoPlay.setValue(1);
    form.Play_RepeatPlay.userChose();
    apply();
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
    media.setMode(u"stopped");
    app.player().get_PlayStatus();
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
    EXPECT_EQ(media.mode(), u"playing");
}

// --- the desktop line by itself --------------------------------------------------------------

struct AutoOpenCase {
    bool ticked, hasLrc, on, shown;
    bool shownAfter, anew;
};

class TheDesktopLine : public SettingsApplied, public testing::WithParamInterface<AutoOpenCase> {};

TEST_P(TheDesktopLine, FollowsBoxLyricAndSwitch) {
    const AutoOpenCase &row = GetParam();
    velmora::lrcForm &lyric = app.lrcForm();
    lyric.show();
    lyric.desktopLrcAutoOpen = !row.ticked;
    lyric.hasLrc = row.hasLrc;
    lyric.desktopLrcOn = row.on;
    lyric.lrc_Text.setVisible(row.shown);
    form.desktopLrc_AutoOpen.setValue(row.ticked ? 1 : 0);
    auto &told = fakes::FakeWindows::windowOf(lyric)->told;
    told.clear();
    apply();
    EXPECT_EQ(lyric.desktopLrcAutoOpen, row.ticked);
    EXPECT_EQ(lyric.desktopLrcOn, row.on);
    EXPECT_EQ(lyric.lrc_Text.visible(), row.shownAfter);
    const auto changes = std::count_if(told.begin(), told.end(), [](const auto &entry) {
        return entry.control == "lrc_Text" && entry.change == forms::Change::Visible;
    });
    EXPECT_EQ(changes, row.anew ? 1 + (row.shown ? 1 : 0) : (row.shown != row.shownAfter ? 1 : 0));
}

INSTANTIATE_TEST_SUITE_P(EachRow, TheDesktopLine,
                         testing::Values(AutoOpenCase{true, true, false, false, true, true},
                                         AutoOpenCase{true, true, true, true, true, true},
                                         AutoOpenCase{true, false, true, false, false, false},
                                         AutoOpenCase{true, false, false, true, true, false},
                                         AutoOpenCase{false, true, true, true, true, true},
                                         AutoOpenCase{false, true, true, false, true, true},
                                         AutoOpenCase{false, true, false, true, false, false},
                                         AutoOpenCase{false, false, true, true, false, false},
                                         AutoOpenCase{false, false, false, true, false, false}));

} // namespace
} // namespace velmora
