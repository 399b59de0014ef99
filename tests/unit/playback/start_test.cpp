// The start sequence: its order, its texts, its messages.

#include "tests/unit/program_fixture.h"

#include "lyrics/lrcForm.h"
#include "playback/MenuForm.h"
#include "playback/VideoScreen_Form.h"
#include "playback/miniForm.h"
#include "playback/startLoad_Form.h"
#include "settings/playSetForm.h"
#include "ui/formSet.h"

namespace velmora {
namespace {

constexpr auto playSetKey = u"SOFTWARE\\Norvane\\zkPlayer\\playSet";
constexpr auto parametersKey = u"SOFTWARE\\Norvane\\zkPlayer\\playParameters";
constexpr auto identityKey = u"SOFTWARE\\Norvane\\zkPlayer\\Vesion";
constexpr auto markerPath = u"/run/user/1000/velmora/RestartZkPlayer.tmp";

class Start : public ProgramFixture {
protected:
    Start() { prepareMachine(); }
    startLoad_Form &splash() { return app.startLoad_Form(); }
    std::u16string appTitle() { return app.Main().title.caption(); }
    void set(std::u16string_view name, std::u16string_view value) {
        fake.registry.setText(playSetKey, name, value);
    }
    // The list file of the next start, and the file that was played last.
    void savedList(std::initializer_list<std::u16string_view> paths) {
        std::string bytes;
        for (const auto path : paths) {
            bytes += toUtf8(path) + "\r\n";
        }
        files.addFile(listPath(), bytes);
    }
    static std::u16string listPath() {
        return u"/home/user/.local/share/velmora/Program Files/Norvane软件/Velmora/List/"
               u"zkPlayList.m3u";
    }
    void lastPlayed(std::u16string_view path) {
        fake.registry.setText(parametersKey, u"lastPlayFileName", path);
    }
};

// --- the texts ----------------------------------------------------------------------------------------

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

    std::unique_ptr<platform::FormWindow> makeWindow(forms::Form &form) override {
        return std::make_unique<SayingWindow>(*this, form);
    }

private:
    class SayingWindow : public fakes::FakeFormWindow {
    public:
        SayingWindow(SayingWindows &windows, forms::Form &form)
            : FakeFormWindow(windows, form), saying_(windows) {}
        void refresh(forms::Control *control) override {
            FakeFormWindow::refresh(control);
            if (control != nullptr && control->name() == std::string("showText")) {
                saying_.note(static_cast<forms::Label *>(control)->caption());
            }
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
    Velmora app{platform::Platform{fake.ansi, fake.clock, fake.dialogs, fake.files, fake.folders,
                                   fake.media, fake.processes, fake.registry, fake.shell,
                                   fake.versions, fake.waitableTimers, fake.waveOut, windows}};
    Texts texts() {
        Texts result;
        for (const Said &one : windows.said) {
            result.push_back(one.text);
        }
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

// --- what stands afterwards -----------------------------------------------------------------------------

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
    app.start();
    EXPECT_EQ(app.playSetForm().desktopLrc_AutoOpen.value(), 0);
}

void storeFont(fakes::FakeRegistry &registry, const std::u16string &set,
               std::u16string_view name) {
    for (const char16_t *field :
         {u"Lrc_Bold", u"Lrc_Charset", u"Lrc_Italic", u"Lrc_Strikethrough", u"Lrc_Underline",
          u"Lrc_ForeColor", u"Lrc_BackColor"}) {
        registry.setNumber(playSetKey, set + u"_" + field, 0);
    }
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

// --- one instance -----------------------------------------------------------------------------------------

class StartingTwice : public Start {
protected:
    void expectRefusal() {
        speak(0);
        windows.expectMsgBox(boxOf(app.Language().msg_Already_Running,
                                   platform::MsgBoxIcon::Exclamation, u"Velmora 2011"),
                             platform::MsgBoxResult::Ok);
        expectEnd([&] { app.start(); });
    }
};

TEST_F(StartingTwice, AsksTheProcessServiceWithItsOwnWords) {
    app.start();
    EXPECT_EQ(fake.processes.queries, Texts{u"Select * Form Win32_Process"});
    EXPECT_EQ(fake.processes.queryFlags, std::vector<std::int32_t>{48});
}

TEST_F(StartingTwice, IsRefusedWhenTwoProcessesHaveTheInternalName) {
    fake.processes.executables = {programPath, programPath};
    expectRefusal();
}

TEST_F(StartingTwice, IsRefusedForARenamedCopyByItsInternalNameInAnyCase) {
    files.addFile(u"/tmp/other name");
    fake.versions.addProgram(u"/tmp/other name", u"ZKPLAYER");
    fake.processes.executables = {programPath, u"/tmp/other name"};
    expectRefusal();
}

TEST_F(StartingTwice, IsRefusedByThePlatformsOwnTest) {
    fake.processes.otherInstance = true;
    expectRefusal();
}

TEST_F(StartingTwice, HasMadeFoldersAndIdentityBeforeItIsRefused) {
    fake.processes.executables = {programPath, programPath};
    expectRefusal();
    EXPECT_EQ(fake.shell.commandLines.size(), 6U);
    EXPECT_TRUE(fake.registry.hasKey(identityKey));
    EXPECT_TRUE(fake.registry.hasKey(playSetKey));
    EXPECT_TRUE(fake.registry.hasKey(parametersKey));
}

TEST_F(StartingTwice, WhenRefusedAddsNoTrayIconAndShowsNoMain) {
    fake.processes.executables = {programPath, programPath};
    expectRefusal();
    for (const auto &call : windows.trayCalls) {
        EXPECT_NE(call.operation, platform::NIM_ADD);
    }
    EXPECT_FALSE(app.Main().visible());
    EXPECT_EQ(media.texts(), Texts{u"close NOWMUSIC"});
}

TEST_F(StartingTwice, CountsOnlyFilesThatExistAndHaveTheName) {
    files.addFile(u"/bin/sh");
    fake.versions.addProgram(u"/bin/sh", u"zkPlayer2");
    fake.versions.addProgram(u"/gone", u"zkPlayer");
    fake.processes.executables = {u"", u"/gone", u"/bin/sh", programPath};
    app.start();
    EXPECT_TRUE(app.Main().visible());
}

TEST_F(StartingTwice, StopsCountingAtTwo) {
    files.addFile(u"/bin/third");
    fake.processes.executables = {programPath, programPath, u"/bin/third"};
    expectRefusal();
    for (const auto &path : fake.versions.asked) {
        EXPECT_NE(path, u"/bin/third");
    }
}

TEST_F(StartingTwice, IsNotRefusedWhenTheServiceFails) {
    fake.processes.queryFails = true;
    fake.processes.otherInstance = true;
    app.start();
    EXPECT_TRUE(app.Main().visible());
}

TEST_F(StartingTwice, IsExpectedWhenTheMarkerLiesThere) {
    files.addFile(markerPath, "Velmora 2011");
    fake.processes.executables = {programPath, programPath};
    fake.processes.otherInstance = true;
    app.start();
    EXPECT_TRUE(app.Main().visible());
    EXPECT_TRUE(fake.processes.queries.empty());
    EXPECT_FALSE(files.hasFile(markerPath));
}

TEST_F(StartingTwice, IsExpectedEvenWhenTheMarkerCannotBeDeleted) {
    files.addFile(markerPath);
    files.setReadOnly(markerPath);
    fake.processes.executables = {programPath, programPath};
    app.start();
    EXPECT_TRUE(app.Main().visible());
}

TEST_F(Start, TheMarkerHoldsTheTitleAndIsTakenAway) {
    EXPECT_EQ(splash().restart_Marker(true), -1);
    EXPECT_EQ(files.contents(markerPath), "Velmora 2011");
    EXPECT_EQ(splash().restart_Marker(false), -1);
    EXPECT_FALSE(files.hasFile(markerPath));
    EXPECT_EQ(splash().restart_Marker(false), 0) << "there is none to delete";
}

TEST_F(Start, TheMarkerThatCannotBeWrittenAnswers0) {
    files.failNext("CreateTextFile");
    EXPECT_EQ(splash().restart_Marker(true), 0);
}

// --- sound card, safe mode ----------------------------------------------------------------------------------

TEST_F(Start, WithoutASoundCardSaysSoAndGoesOnWithoutItsControls) {
    fake.waveOut.devices.clear();
    speak(0);
    windows.expectMsgBox(boxOf(app.Language().msg_No_Sound_Card, platform::MsgBoxIcon::Critical,
                               u"Velmora 2011"),
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
    windows.expectMsgBox(boxOf(app.Language().msg_Safe_Mode, platform::MsgBoxIcon::Exclamation,
                               u"Velmora 2011"),
                         platform::MsgBoxResult::Ok,
                         [&] { EXPECT_FALSE(app.Main().enabled()); });
    app.start();
    EXPECT_TRUE(app.Main().visible());
}

TEST_F(Start, InSafeModeWithNetworkSaysSo) {
    fake.processes.bootMode = 2;
    speak(0);
    windows.expectMsgBox(boxOf(app.Language().msg_Safe_Mode, platform::MsgBoxIcon::Exclamation,
                               u"Velmora 2011"),
                         platform::MsgBoxResult::Ok);
    app.start();
}

TEST_F(Start, InAnyOtherModeSaysNothing) {
    fake.processes.bootMode = 3;
    app.start();
    EXPECT_TRUE(windows.boxes.empty());
}

// --- play mode and welcome ------------------------------------------------------------------------------------

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

TEST_F(Start, HidesTheNewsHintWhenThePageOpensByItself) {
    set(u"AutoShowWelcome", u"1");
    app.start();
    EXPECT_FALSE(app.Main().welcome.visible());
}

// --- list and last file ---------------------------------------------------------------------------------------

TEST_F(Start, WithoutAListIsIdle) {
    app.start();
    EXPECT_FALSE(media.isOpen());
    EXPECT_EQ(rows(), 0);
    EXPECT_TRUE(app.Main().Timer1.running());
}

TEST_F(Start, ResumesTheLastFileOfTheList) {
    addTrack(u"/m/b.mp3");
    savedList({u"/m/a.mp3", u"/m/b.mp3", u"/m/c.mp3"});
    lastPlayed(u"/m/b.mp3");
    app.start();
    EXPECT_EQ(media.openPath(), u"/m/b.mp3");
    EXPECT_EQ(media.mode(), u"playing");
    EXPECT_EQ(app.player().nowPlay_Index, 2);
    EXPECT_EQ(app.player().nowPlay_Title, u"〖2/3〗 b");
}

TEST_F(Start, ResumesALastFileThatIsNotInTheListWithIndex0) {
    addTrack(u"/m/other.mp3");
    savedList({u"/m/a.mp3"});
    lastPlayed(u"/m/other.mp3");
    app.start();
    EXPECT_EQ(media.openPath(), u"/m/other.mp3");
    EXPECT_EQ(app.player().nowPlay_Index, 0);
}

TEST_F(Start, PlaysNothingWithAutoPlayOff) {
    addTrack(u"/m/a.mp3");
    savedList({u"/m/a.mp3"});
    lastPlayed(u"/m/a.mp3");
    set(u"isAutoPlay", u"1");
    app.start();
    EXPECT_TRUE(media.actions().empty());
    EXPECT_EQ(rows(), 1);
}

TEST_F(Start, PlaysNothingFromAnEmptyList) {
    addTrack(u"/m/a.mp3");
    savedList({});
    lastPlayed(u"/m/a.mp3");
    app.start();
    EXPECT_TRUE(media.actions().empty());
}

TEST_F(Start, PlaysNothingWithoutAListFile) {
    addTrack(u"/m/a.mp3");
    lastPlayed(u"/m/a.mp3");
    app.start();
    EXPECT_TRUE(media.actions().empty());
}

TEST_F(Start, WithoutALastFileBringsTheStoppedLook) {
    savedList({u"/m/a.mp3"});
    app.start();
    EXPECT_TRUE(media.actions().empty());
    EXPECT_EQ(app.Main().play_Time.caption(), u"00:00:00 - 00:00:00");
}

TEST_F(Start, WithALastFileThatIsGoneClosesAndStaysIdleWithoutAMessage) {
    savedList({u"/m/a.mp3"});
    lastPlayed(u"/missing disk/b.mp3");
    app.start();
    EXPECT_EQ(media.actions(), Texts{u"close NOWMUSIC"});
    EXPECT_TRUE(windows.boxes.empty());
    EXPECT_EQ(rows(), 1);
}

TEST_F(Start, RunsThePumpsOfListAndFadeWithinTheSequence) {
    addTrack(u"/m/a.mp3");
    savedList({u"/m/a.mp3"});
    lastPlayed(u"/m/a.mp3");
    bool splashUp = false;
    bool mainEnabled = true;
    windows.atNextPump([&] {
        splashUp = splash().visible();
        mainEnabled = app.Main().enabled();
    });
    app.start();
    EXPECT_TRUE(splashUp);
    EXPECT_FALSE(mainEnabled);
    EXPECT_GT(windows.pumps, 2);
}

TEST_F(Start, RunsNoTickOfMainBeforeItsEnd) {
    addTrack(u"/m/a.mp3");
    savedList({u"/m/a.mp3"});
    lastPlayed(u"/m/a.mp3");
    app.start(); // the fade takes more than one tick's time
    EXPECT_EQ(app.Main().play_Time.caption(), u"00:00:00 - 00:00:00");
    windows.advance(100);
    EXPECT_EQ(app.Main().play_Time.caption(), u"00:00:00 - 00:01:00");
}

TEST_F(Start, GoesOnWhenTheRegistryIsNotThere) {
    fake.registry.setProviderMissing(true);
    fake.registry.failWrites(platform::ERROR_ACCESS_DENIED);
    app.start();
    EXPECT_TRUE(app.Main().visible());
    EXPECT_TRUE(app.Main().Timer1.running());
}

TEST_F(Start, LeavesTwoProgramsIndependent) {
    app.start();
    fakes::FakePlatform other;
    Velmora second(other.bundle());
    second.Main().setCaption(u"second");
    EXPECT_NE(app.Main().caption(), u"second");
}

// --- the end --------------------------------------------------------------------------------------------------

class End : public Start {
protected:
    End() {
        addTrack(u"/m/a.mp3");
        savedList({u"/m/a.mp3"});
        lastPlayed(u"/m/a.mp3");
        app.start();
        media.clearCommands();
        windows.trayCalls.clear();
        files.clearChanges();
        fake.registry.clearLog();
    }
};

TEST_F(End, ClosesTheMediumBareThenTheTrayThenTheProcess) {
    expectEnd([&] { app.Main().closeButton.on().Click(); });
    EXPECT_EQ(media.texts(), Texts{u"close NOWMUSIC"});
    ASSERT_EQ(windows.trayCalls.size(), 1U);
    EXPECT_EQ(windows.trayCalls[0].operation, platform::NIM_DELETE);
    EXPECT_FALSE(windows.hooked(app.Main().hWnd()));
}

TEST_F(End, SavesNothing) {
    expectEnd([&] { app.Main().closeButton_Click(); });
    EXPECT_TRUE(files.changes().empty());
    EXPECT_TRUE(fake.registry.log().empty());
}

TEST_F(End, ComesByEachOfItsRoads) {
    const std::function<void()> roads[] = {
        [&] { app.Main().closeButton.on().Click(); },
        [&] { app.Main().closeRequested(); },
        [&] { app.miniForm().close.on().Click(); },
        [&] { app.miniForm().closeRequested(); },
        [&] { app.MenuForm().close.choose(); },
        [&] { app.formSet().form_KeyDown(27, 0, u"main"); },
        [&] { app.startLoad_Form().unload(); },
    };
    for (const auto &road : roads) {
        fake.processes.endStatuses.clear();
        expectEnd(road);
    }
}

TEST_F(End, WithNothingOpenIsTheSame) {
    app.player().close_Sub(0);
    expectEnd([&] { app.Main().closeButton_Click(); });
}

TEST_F(End, IsNotCaughtOnTheWayThroughATick) {
    app.Main().Timer2.onTimer = [&] { app.Main().closeButton_Click(); };
    EXPECT_THROW(windows.advance(300), fakes::ProcessEnded);
}

TEST_F(End, LeavesNothingToRunInAListThatWasBeingRead) {
    windows.atNextPump([&] { app.Main().closeButton_Click(); });
    files.clearChanges();
    expectEnd([&] { app.playList_Form().afresh_Load_Click(); });
    EXPECT_TRUE(files.changes().empty());
}

} // namespace
} // namespace velmora
