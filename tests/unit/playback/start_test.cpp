// The start sequence: its order, its texts, what stands afterwards.

#include "tests/fakes/instead.h"
#include "tests/unit/playback/start_fixture.h"

#include "network/welcomeForm.h"

#include "lyrics/lrcForm.h"
#include "playback/MenuForm.h"
#include "playlist/another_PlayInfo_Form.h"
#include "playlist/playerInfo.h"
#include "settings/playSetForm.h"
#include "ui/formSet.h"

namespace velmora {
namespace {

// --- the texts -----------------------------------------------------------------------------------

// Notes what the splash says each time it is painted, and what had been done by then.
struct Said {
    std::u16string text;
    std::size_t folders, registryCalls, queries, trayCalls;
    int soundQueries;
};

class SayingWindows : public fakes::FakeWindows {
public:
    explicit SayingWindows(fakes::FakePlatform &fake) : FakeWindows(fake.clock), fake_(fake) {}
    std::vector<Said> said;

    std::unique_ptr<forms::FormWindow> makeWindow(forms::Form &form) override {
        return std::make_unique<SayingWindow>(*this, form);
    }

private:
    class SayingWindow : public fakes::FakeFormWindow {
    public:
        SayingWindow(SayingWindows &windows, forms::Form &form)
            : FakeFormWindow(windows, form), saying_(windows) {}
        void refresh(forms::Control *control) override {
            FakeFormWindow::refresh(control);
            if (control != nullptr && control->name() == std::string("showText"))
                saying_.note(static_cast<forms::Label *>(control)->caption());
        }

    private:
        SayingWindows &saying_;
    };
    void note(const std::u16string &text) {
        said.push_back({text, fake_.shell.commandLines.size(), fake_.registry.log().size(),
                        fake_.processes.queries.size(), trayCalls.size(),
                        fake_.waveOut.countQueries});
    }
    fakes::FakePlatform &fake_;
};

class SayingStart : public ::testing::Test {
protected:
    SayingStart() {
        fake.waveOut.addDevice();
        fake.files.addFile(u"/opt/velmora/velmora");
        fake.versions.addProgram(u"/opt/velmora/velmora", u"zkPlayer");
        fake.processes.executables = {u"/opt/velmora/velmora"};
    }
    fakes::FakePlatform fake;
    SayingWindows windows{fake};
    Velmora app{fakes::with(fake.bundle(), {.windows = &windows})};
    Texts texts() {
        Texts result;
        for (const Said &one : windows.said)
            result.push_back(one.text);
        return result;
    }
};

TEST_F(SayingStart, SaysEachStageInOrderAndPaintsItAtOnce) {
    app.start();
    EXPECT_EQ(texts(), (Texts{u"请稍后，程序加载中...", u"皮肤、语言初始化中...",
                              u"检测程序启动数...", u"检测系统声卡...", u"初始化播放器...",
                              u"获取资讯列表...", u"加载曲目列表...", u"完毕！启动播放器..."}));
}

TEST_F(SayingStart, SaysThatItLooksForAnUpdateOnlyWhenItDoes) {
    fake.registry.setText(playSetKey, u"AutoUpadate", u"1");
    app.start();
    EXPECT_EQ(texts()[4], u"检测更新软件版本...");
    EXPECT_EQ(texts().size(), 9U);
}

TEST_F(SayingStart, PaintsWhatAnUpdateSaysAtOnce) {
    fake.registry.setText(playSetKey, u"AutoUpadate", u"1");
    fake.registry.setText(u"SOFTWARE\\Norvane\\zkPlayer\\hosts", u"maker", u"http://maker");
    fake.files.addFolder(fake.folders.temporary);
    fake.internet.setDownload(u"http://maker/source/softwareDate/zkPlayerUpdate.php",
                              "[check]\r\nvesion=99.0.0\r\ndownload=http://maker/new\r\n");
    fake.internet.setDownload(u"http://maker/new", "program");
    app.Language_Set().language_Messages();
    const velmora::Language &words = app.Language();
    for (const auto &[text, answer] :
         {std::pair(std::u16string(words.msg_Upgrade_Ask) + u"99.0.0】？\r\n\r\n",
                    platform::MsgBoxResult::Yes),
          std::pair(std::u16string(words.msg_Upgrade_Done), platform::MsgBoxResult::No)})
        windows.expectMsgBox(
            {text, platform::MsgBoxButtons::YesNo, platform::MsgBoxIcon::None, u"Velmora 2011"},
            answer);
    app.start();
    EXPECT_EQ(texts()[5], u"发现最新版本：【99.0.0】，等待用户选择是否下载...");
    EXPECT_EQ(texts()[6], u"正在下载最新版本：【99.0.0】，请稍后...");
    EXPECT_EQ(texts()[7], u"成功下载最新版本：【99.0.0】，等待用户选择是否重启...");
}

TEST_F(SayingStart, StaysChineseInEveryLanguage) {
    fake.registry.setText(playSetKey, u"Language", u"1");
    app.start();
    EXPECT_EQ(texts().back(), u"完毕！启动播放器...");
    EXPECT_EQ(app.Language().msg_Error, u"Error");
}

TEST_F(SayingStart, DoesEachStagesWorkBehindItsText) {
    app.start();
    const auto &said = windows.said;
    ASSERT_EQ(said.size(), 8U);
    EXPECT_EQ(said[1].folders, 0U) << "folders are made behind the second text";
    EXPECT_EQ(said[1].registryCalls, 0U);
    EXPECT_EQ(said[2].folders, 6U) << "ahead of the instance test";
    EXPECT_GT(said[2].registryCalls, 0U);
    EXPECT_EQ(said[2].queries, 0U);
    EXPECT_EQ(said[3].queries, 1U);
    EXPECT_EQ(said[3].trayCalls, 2U) << "the icon and its tip";
    EXPECT_EQ(said[3].soundQueries, 0);
    EXPECT_EQ(said[4].soundQueries, 1);
}

// --- what stands afterwards ----------------------------------------------------------------------

TEST_F(Start, HidesTheSplashAndShowsMain) {
    app.start();
    EXPECT_FALSE(splash().visible());
    EXPECT_TRUE(app.Main().visible());
    EXPECT_TRUE(app.Main().enabled());
    ASSERT_GE(windows.shown.size(), 2U);
    EXPECT_EQ(windows.shown.front(), "startLoad_Form");
    EXPECT_EQ(windows.shown.back(), "Main");
}

TEST_F(Start, GivesTheSplashTheKeyColourAndMainsTitlePicture) {
    app.start();
    EXPECT_EQ(splash().windowKey(), keyColour);
    EXPECT_EQ(splash().title_ICO.picture(), app.Main().title_ICO.picture());
}

TEST_F(Start, KeepsTheVersionOfTheProgramFileInThreeNumbers) {
    app.start();
    EXPECT_EQ(app.Main().Vesion, u"1.0.0");
    EXPECT_EQ(fake.registry.value(identityKey, u"DisplayVersion")->text, u"1.0.0");
}

TEST_F(Start, FindsTheVersionOfAProgramFileWithAnExeEnding) {
    fake.versions.addProgram(u"/opt/velmora/velmora.exe", u"zkPlayer");
    fake.versions.addRecordBytes(programPath, "");
    app.start();
    EXPECT_EQ(app.Main().Vesion, u"1.0.0");
}

TEST_F(Start, FindsTheVersionInAFolderThatEndsInASeparator) {
    fake.versions.addProgram(programPath, u"zkPlayer");
    fake.processes.folder = u"/opt/velmora/";
    app.start();
    EXPECT_FALSE(app.Main().Vesion.empty());
}

TEST_F(Start, CanBeAskedByTheDesktopBehindTheCountOfItsInstances) {
    EXPECT_EQ(fake.remote.player, nullptr);
    app.start();
    EXPECT_NE(fake.remote.player, nullptr);
}

TEST_F(Start, HasNoVersionWithoutARecord) {
    fake.versions.addRecordBytes(programPath, "");
    app.start();
    EXPECT_EQ(app.Main().Vesion, u"");
}

TEST_F(Start, StartsTheTickLast) {
    app.start();
    EXPECT_TRUE(app.Main().Timer1.running());
    EXPECT_EQ(app.formSet().wait_Ms, 1);
}

TEST_F(Start, AddsTheTrayIconWithMainsTitle) {
    app.start();
    ASSERT_GE(windows.trayCalls.size(), 2U);
    EXPECT_EQ(windows.trayCalls[0].operation, platform::NIM_ADD);
    EXPECT_EQ(windows.trayCalls[1].operation, platform::NIM_MODIFY);
    EXPECT_EQ(windows.trayCalls[1].data.tip, appTitle());
}

TEST_F(Start, PutsTheTitleIntoBothPreviews) {
    app.start();
    EXPECT_EQ(app.playSetForm().desktop_Lrc_Preview.text(), appTitle());
    EXPECT_EQ(app.playSetForm().other_Lrc_Preview.text(), appTitle());
}

TEST_F(Start, BuildsTheTableOfGenresThatTagsAreReadWith) {
    app.start();
    std::string tag(128, ' ');
    tag.replace(0, 3, "TAG");
    tag[127] = 18;
    files.addFile(u"/m/tagged.mp3", tag);
    EXPECT_TRUE(app.playerInfo().readId3v1(u"/m/tagged.mp3"));
    EXPECT_EQ(app.another_PlayInfo_Form().playInfo_GenreText.text(), u"Rock");
}

TEST_F(Start, DressesTheVideoWindowThatTheClosingOfALostFileLetGo) {
    savedList({u"/m/a.mp3"});
    lastPlayed(u"/missing disk/b.mp3");
    app.start();
    EXPECT_TRUE(app.videoScreenLoaded());
}

TEST_F(Start, DressesTheOtherWindows) {
    app.Main().AudioSource_R.move({5, 6, 7, 8});
    app.start();
    EXPECT_EQ(app.Main().AudioSource_R.place(), app.Main().AudioSource_H.place());
}

TEST_F(Start, ReadsTheLanguageOnceFoldersAndKeysStand) {
    app.start();
    const auto &log = fake.registry.log();
    const auto at = [&](const std::u16string &line) {
        return std::find(log.begin(), log.end(), line) - log.begin();
    };
    const std::u16string readLanguage = u"read " + std::u16string(playSetKey) + u" Language";
    ASSERT_LT(at(readLanguage), static_cast<std::ptrdiff_t>(log.size()));
    EXPECT_LT(at(u"create " + std::u16string(parametersKey)), at(readLanguage));
}

TEST_F(Start, LeavesTheVariablesOfTheSettingsWindowToIt) {
    set(u"Language", u"1");
    app.start();
    EXPECT_EQ(app.setControl().Language_Index, 1);
    EXPECT_EQ(app.setControl().Language, 0);
}

TEST_F(Start, KeepsMainDisabledUntilTheListIsThere) {
    savedList({u"/m/a.mp3"});
    std::vector<bool> enabled;
    windows.onPump = [&] { enabled.push_back(app.Main().enabled()); };
    app.start();
    windows.onPump = {};
    ASSERT_FALSE(enabled.empty());
    EXPECT_THAT(enabled, testing::Each(false));
    EXPECT_TRUE(app.Main().enabled());
}

TEST_F(Start, ReadsTheScreen) {
    app.start();
    EXPECT_EQ(app.formSet().work_Area, windows.workArea);
    EXPECT_EQ(app.formSet().tray_Height, 40);
}

TEST_F(Start, TicksTheAutoOpenBoxByTheStoredFlag) {
    set(u"Desktop_Lrc_AutoOpen", u"1");
    app.start();
    EXPECT_TRUE(app.lrcForm().desktopLrcAutoOpen);
    EXPECT_EQ(app.playSetForm().desktopLrc_AutoOpen.value(), 1);
}

TEST_F(Start, ClearsTheAutoOpenBoxOnAFreshMachine) {
    app.playSetForm().desktopLrc_AutoOpen.setValue(1);
    app.start();
    EXPECT_EQ(app.playSetForm().desktopLrc_AutoOpen.value(), 0);
}

void storeFont(fakes::FakeRegistry &registry, const std::u16string &set, std::u16string_view name) {
    for (const char16_t *field : {u"Lrc_Bold", u"Lrc_Charset", u"Lrc_Italic", u"Lrc_Strikethrough",
                                  u"Lrc_Underline", u"Lrc_ForeColor", u"Lrc_BackColor"})
        registry.setNumber(playSetKey, set + u"_" + field, 0);
    registry.setNumber(playSetKey, set + u"_Lrc_Weight", 400);
    registry.setNumber(playSetKey, set + u"_Lrc_Size", 20);
    registry.setText(playSetKey, set + u"_Lrc_Name", name);
    registry.setText(playSetKey, u"Desktop_Lrc_AutoOpen", u"0");
}

TEST_F(Start, AppliesEachStoredFontSetToItsOwnLabels) {
    storeFont(fake.registry, u"Desktop", u"Desk Face");
    storeFont(fake.registry, u"Other", u"Other Face");
    app.start();
    EXPECT_EQ(app.lrcForm().lrc_Text.font().name(), u"Desk Face");
    EXPECT_EQ(app.Main().lrc_Text.font().name(), u"Other Face");
}

TEST_F(Start, LeavesTheDesignedFontsOnAFreshMachine) {
    const auto desktop = app.lrcForm().lrc_Text.font();
    const auto other = app.Main().lrc_Text.font();
    app.start();
    EXPECT_EQ(app.lrcForm().lrc_Text.font(), desktop);
    EXPECT_EQ(app.Main().lrc_Text.font(), other);
}

// --- update --------------------------------------------------------------------------------------

TEST_F(Start, TakesAwayWhatAProbeOrAFetchLeftThatWasCutShort) {
    app.setControl().init_PlaySet();
    const std::u16string lyrics = app.setControl().Path_Lrc + u"/zkPlay.tmp";
    const std::u16string cache = app.setControl().Path_Cache + u"/zkPlay-2.tmp";
    const std::u16string temporary = fake.folders.temporary;
    const std::u16string mine = app.setControl().Path_Lrc + u"/zkPlay-3.tmp";
    for (const std::u16string &left : {lyrics, cache, temporary + u"zkPlay.tmp"})
        files.addFile(left, "Velmora 2011");
    const std::u16string empty = app.setControl().Path_Lrc + u"/zkPlay-4.tmp";
    files.addFile(empty, ""); // as a power cut leaves it
    files.addFile(temporary + u"zkPlayerUpdate.tmp", "[check]");
    files.addFile(temporary + u"zkPlayerWelcome.tmp", "[check]");
    files.addFile(mine, "Velmora 2011, my notes");
    start();
    for (const std::u16string &left :
         {lyrics, cache, empty, temporary + u"zkPlay.tmp", temporary + u"zkPlayerUpdate.tmp",
          temporary + u"zkPlayerWelcome.tmp"})
        EXPECT_FALSE(files.hasFile(left)) << toUtf8(left);
    EXPECT_TRUE(files.hasFile(mine));
}

TEST_F(Start, LooksForAnUpdateSilently) {
    set(u"AutoUpadate", u"1");
    fake.internet.connectedState = 0; // somebody who asked would be told
    app.start();
    EXPECT_TRUE(windows.boxes.empty());
    EXPECT_TRUE(app.Main().visible());
}

// --- sound card, safe mode -----------------------------------------------------------------------

TEST_F(Start, WithoutASoundCardSaysSoAndGoesOnWithoutItsControls) {
    fake.waveOut.devices.clear();
    speak(0);
    windows.expectMsgBox(
        boxOf(app.Language().msg_No_Sound_Card, platform::MsgBoxIcon::Critical, u"Velmora 2011"),
        platform::MsgBoxResult::Ok, [&] {
            EXPECT_EQ(splash().showText.caption(), u"检测系统声卡...");
            EXPECT_TRUE(splash().visible());
        });
    app.start();
    EXPECT_FALSE(app.Main().check_SoundDriver.visible());
    EXPECT_FALSE(app.MenuForm().check_SoundDriver.enabled());
    EXPECT_TRUE(app.Main().visible());
}

TEST_F(Start, WithASoundCardKeepsItsControls) {
    app.start();
    EXPECT_TRUE(app.Main().check_SoundDriver.visible());
    EXPECT_TRUE(app.MenuForm().check_SoundDriver.enabled());
}

TEST_F(Start, InSafeModeSaysSoAndGoesOn) {
    fake.processes.bootMode = 1;
    speak(0);
    windows.expectMsgBox(
        boxOf(app.Language().msg_Safe_Mode, platform::MsgBoxIcon::Exclamation, u"Velmora 2011"),
        platform::MsgBoxResult::Ok, [&] { EXPECT_FALSE(app.Main().enabled()); });
    app.start();
    EXPECT_TRUE(app.Main().visible());
}

TEST_F(Start, InSafeModeWithNetworkSaysSo) {
    fake.processes.bootMode = 2;
    speak(0);
    windows.expectMsgBox(
        boxOf(app.Language().msg_Safe_Mode, platform::MsgBoxIcon::Exclamation, u"Velmora 2011"),
        platform::MsgBoxResult::Ok);
    app.start();
}

TEST_F(Start, InAnyOtherModeSaysNothing) {
    fake.processes.bootMode = 3;
    app.start();
    EXPECT_TRUE(windows.boxes.empty());
}

// --- play mode and welcome -----------------------------------------------------------------------

TEST_F(Start, TakesTheStoredSettings) {
    set(u"PlayMode", u"1");
    set(u"isAutoPlay", u"1");
    set(u"VideoInterface", u"1");
    app.start();
    EXPECT_EQ(app.setControl().PlayMode, 1);
    EXPECT_EQ(app.setControl().isAutoPlay, 1);
    EXPECT_EQ(app.setControl().VideoInterface, 1);
    EXPECT_TRUE(app.playSetForm().Play_Random.value());
    EXPECT_FALSE(app.playSetForm().Play_Order.value());
}

TEST_F(Start, OnAFreshMachinePlaysInOrderWithAutoPlay) {
    app.start();
    EXPECT_EQ(app.setControl().PlayMode, 0);
    EXPECT_EQ(app.setControl().isAutoPlay, 0);
    EXPECT_EQ(app.setControl().VideoInterface, 0);
    EXPECT_TRUE(app.playSetForm().Play_Order.value());
}

TEST_F(Start, InRepeatTicksItsOption) {
    set(u"PlayMode", u"2");
    app.start();
    EXPECT_TRUE(app.playSetForm().Play_RepeatPlay.value());
}

TEST_F(Start, ShowsTheNewsHintWhenThePageDoesNotOpenByItself) {
    app.Main().welcome.setVisible(false);
    app.start();
    EXPECT_TRUE(app.Main().welcome.visible());
}

TEST_F(Start, OpensThePageOfNewsWhenItIsSwitchedOn) {
    set(u"AutoShowWelcome", u"1");
    // Nobody serves it here: the page says so, and the hint comes back.
    windows.expectMsgBox(boxOf(u"远程数据传输错误！", platform::MsgBoxIcon::Critical, u"错误"),
                         platform::MsgBoxResult::Ok);
    app.start();
    EXPECT_FALSE(app.welcomeForm().visible());
    EXPECT_TRUE(app.Main().welcome.visible());
}

} // namespace
} // namespace velmora
