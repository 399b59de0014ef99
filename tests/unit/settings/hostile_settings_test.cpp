// A registry that anybody may have written into: the program starts, the settings window opens,
// every page shows, Apply goes through, and the window closes.

#include "playlist/saveOrOpenFile.h"
#include "tests/unit/pointer.h"
#include "tests/unit/settings/settings_window_fixture.h"

#include <functional>

namespace velmora {
namespace {

constexpr const char16_t *textValues[] = {
    u"AutoUpadate",     u"isAutoPlay",           u"PlayMode",           u"Language",
    u"VideoInterface",  u"LrcSaveFolder",        u"PlayListSaveFolder", u"PlayCacheSaveFolder",
    u"AutoShowWelcome", u"Desktop_Lrc_AutoOpen", u"Desktop_Lrc_Name",   u"Other_Lrc_Name"};
constexpr const char16_t *numberStems[] = {u"Lrc_Bold",   u"Lrc_Charset",       u"Lrc_Italic",
                                           u"Lrc_Size",   u"Lrc_Strikethrough", u"Lrc_Underline",
                                           u"Lrc_Weight", u"Lrc_ForeColor",     u"Lrc_BackColor"};

struct Fault {
    const char *name;
    std::function<void(fakes::FakeRegistry &)> write;
};

void everyText(fakes::FakeRegistry &registry, const std::u16string &text) {
    for (const char16_t *name : textValues)
        registry.setText(playSetKey, name, text);
}

void everyNumber(fakes::FakeRegistry &registry, std::uint32_t number) {
    for (const char16_t *set : {u"Desktop_", u"Other_"})
        for (const char16_t *stem : numberStems)
            registry.setNumber(playSetKey, set + std::u16string(stem), number);
}

const Fault faults[] = {
    {"NumbersForTexts",
     [](auto &registry) {
         for (const char16_t *name : textValues)
             registry.setNumber(playSetKey, name, 1);
     }},
    {"TextsForNumbers",
     [](auto &registry) {
         everyText(registry, u"1");
         for (const char16_t *set : {u"Desktop_", u"Other_"})
             for (const char16_t *stem : numberStems)
                 registry.setText(playSetKey, set + std::u16string(stem), u"1");
     }},
    {"EmptyTexts",
     [](auto &registry) {
         everyText(registry, u"");
         everyNumber(registry, 0);
     }},
    {"NumbersTooWide",
     [](auto &registry) {
         everyText(registry, u"99999999999999999999");
         everyNumber(registry, 0xFFFFFFFF);
     }},
    {"NegativeNumbers",
     [](auto &registry) {
         everyText(registry, u"-32769");
         everyNumber(registry, 0x80000000);
     }},
    {"NumbersOfSixteenBitsAndOne",
     [](auto &registry) {
         everyText(registry, u"32768");
         everyNumber(registry, 32768);
     }},
    {"NoNumbers",
     [](auto &registry) {
         everyText(registry, u"\r\n\t;\"'%<>|*?");
         everyNumber(registry, 7);
     }},
    {"HugeTexts",
     [](auto &registry) {
         everyText(registry, std::u16string(1 << 20, u'9'));
         everyNumber(registry, 5000);
     }},
    {"LoneSurrogatesAndNuls",
     [](auto &registry) {
         everyText(registry, std::u16string(u"\xD800"
                                            u"a\0b\xDC00",
                                            5));
         everyNumber(registry, 2160);
     }},
};

class AHostileRegistry : public SettingsFixture, public testing::WithParamInterface<Fault> {
protected:
    // Writes the fault. Where its number calls for the page of news, there is one.
    void write() {
        GetParam().write(registry);
        if (!app.setControl().get_AutoShowWelcome())
            return;
        registry.setText(u"SOFTWARE\\Norvane\\zkPlayer\\hosts", u"maker", u"http://maker");
        fake.internet.setDownload(u"http://maker/source/mini/zkPlayerWelcome.php",
                                  "[check]\nvesion=1.0.0\nupdate=0\n[config]\ntitle=News\n"
                                  "provider=Norvane\nproviderLink=http://p/\nbuttonStr0=A\n"
                                  "buttonStr1=B\nbuttonStr2=C\n");
    }
};

TEST_P(AHostileRegistry, StopsNeitherTheStartNorTheSettingsWindow) {
    write();
    start();
    EXPECT_TRUE(app.Main().visible());

    playSetForm &form = app.playSetForm();
    const auto open = [&] {
        app.Main().playSet_Button_Click();
        EXPECT_TRUE(form.visible());
    };
    const auto expectClosed = [&] {
        EXPECT_FALSE(form.visible());
        EXPECT_TRUE(app.Main().enabled());
    };
    open();
    for (zkButton *tab : {&form.playSet, &form.lrcSet, &form.folderSet, &form.languageSet,
                          &form.Shortcuts, &form.help})
        clickOn(*tab);
    clickOn(form.yy);
    clickOn(form.qx);
    expectClosed();
    open();
    form.keyPressed(83, forms::ctrlMask);
    expectClosed();
    open();
    form.closeRequested();
    expectClosed();
}

TEST_P(AHostileRegistry, IsWholeAgainAfterOneConfirmation) {
    write();
    start();
    app.Main().playSet_Button_Click();
    playSetForm &form = app.playSetForm();
    form.Language_English.userChose();
    form.save_Lrc_Path.userEdited(u"/songs/words");
    form.save_PlayList_Path.userEdited(u"/songs/lists");
    form.save_PlayCache_Path.userEdited(u"/songs/cache");
    clickOn(form.qd);
    Velmora next(fake.bundle());
    next.start();
    EXPECT_EQ(next.setControl().Language_Index, 1);
    EXPECT_EQ(next.setControl().Path_List, u"/songs/lists");
    EXPECT_TRUE(next.setControl().load_Lrc_Font(u"Desktop"));
    EXPECT_TRUE(next.setControl().load_Lrc_Font(u"Other"));
    EXPECT_GE(next.lrcForm().lrc_Text.font().size(), 1);
    EXPECT_LE(next.lrcForm().lrc_Text.font().size(), 2160);
}

INSTANTIATE_TEST_SUITE_P(With, AHostileRegistry, testing::ValuesIn(faults),
                         [](const auto &one) { return one.param.name; });

// --- fonts -----------------------------------------------------------------------------------

class HostileSettings : public SettingsFixture {};

TEST_F(HostileSettings, AFontThatIsNotInstalledKeepsItsNameThroughAConfirmation) {
    storeFontSet(u"Desktop");
    registry.setText(playSetKey, u"Desktop_Lrc_Name", u"No Such Face");
    start();
    EXPECT_EQ(app.lrcForm().lrc_Text.font().name(), u"No Such Face");
    clickOn(app.playSetForm().yy);
    EXPECT_EQ(registry.value(playSetKey, u"Desktop_Lrc_Name")->text, u"No Such Face");
}

TEST_F(HostileSettings, ASizeOutOfRangeLeavesTheSizeThatIsThereAndIsStoredAsThat) {
    for (const std::uint32_t size : {0U, 2161U, 5000U, 0xFFFFFFFFU}) {
        storeFontSet(u"Desktop");
        registry.setNumber(playSetKey, u"Desktop_Lrc_Size", size);
        Velmora one(fake.bundle());
        prepareMachine();
        one.start();
        EXPECT_EQ(one.lrcForm().lrc_Text.font().size(), 36) << size;
        clickOn(one.playSetForm().yy);
        EXPECT_EQ(registry.value(playSetKey, u"Desktop_Lrc_Size")->number, 36U);
    }
}

TEST_F(HostileSettings, ALanguageOutOfRangeLeavesEveryMessageEmptyUntilOneIsChosen) {
    registry.setText(playSetKey, u"Language", u"7");
    start();
    EXPECT_EQ(settings.Language_Index, 7);
    EXPECT_TRUE(app.Language().msg_Error.empty());
    app.Main().playSet_Button_Click();
    app.playSetForm().Language_English.userChose();
    clickOn(app.playSetForm().qd);
    EXPECT_EQ(app.Language().msg_Error, u"Error");
}

// --- folders ---------------------------------------------------------------------------------

TEST_F(HostileSettings, AFileInTheFoldersPlaceLetsTheListGoUnsavedWithoutAWord) {
    files.addFile(u"/songs/lists", "a file");
    start();
    app.Main().playSet_Button_Click();
    app.playSetForm().save_PlayList_Path.userEdited(u"/songs/lists");
    clickOn(app.playSetForm().qd);
    EXPECT_EQ(settings.Path_List, u"/songs/lists");
    addRow(u"/m/a.mp3");
    EXPECT_TRUE(app.saveOrOpenFile().savePlayList());
    EXPECT_EQ(files.contents(u"/songs/lists"), "a file");
    EXPECT_FALSE(app.saveOrOpenFile().canWriteFolder(u"/songs/lists"));
}

TEST_F(HostileSettings, AFolderSettingThatIsAFileStopsNoStart) {
    files.addFile(u"/songs/lists", "a file");
    registry.setText(playSetKey, u"PlayListSaveFolder", u"/songs/lists");
    start();
    EXPECT_EQ(settings.Path_List, u"/songs/lists");
    EXPECT_EQ(rows(), 0);
    EXPECT_EQ(files.contents(u"/songs/lists"), "a file");
}

} // namespace
} // namespace velmora
