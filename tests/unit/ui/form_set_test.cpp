// What all windows share: order, dragging, docking, the tray icon.

#include "tests/unit/pointer.h"
#include "tests/unit/program_fixture.h"

#include "lyrics/doLrcForm.h"
#include "lyrics/lrcForm.h"
#include "network/search_Lrc_Internet_Form.h"
#include "network/search_Song_Internet_Form.h"
#include "network/welcomeForm.h"
#include "playback/MenuForm.h"
#include "playback/VideoScreen_Form.h"
#include "playback/check_SoundDriver_Form.h"
#include "playback/miniForm.h"
#include "playback/startLoad_Form.h"
#include "playlist/another_PlayInfo_Form.h"
#include "playlist/listControl_Form.h"
#include "playlist/list_work.h"
#include "playlist/playInfo_Form.h"
#include "settings/playSetForm.h"
#include "ui/aboutForm.h"
#include "ui/formSet.h"

namespace velmora {
namespace {

using Positioning = fakes::FakeWindows::Positioning;

class Windows : public ProgramFixture {
protected:
    formSet &rules() { return app.formSet(); }
    Main &main() { return app.Main(); }
    playList_Form &list() { return app.playList_Form(); }
};

// --- shape and order -----------------------------------------------------------------------------

TEST_F(Windows, HaveTheKeyColourFromTheirLoading) {
    const forms::Form *const forms[] = {&app.Main(),
                                        &app.aboutForm(),
                                        &app.check_SoundDriver_Form(),
                                        &app.doLrcForm(),
                                        &app.playList_Form(),
                                        &app.lrcForm(),
                                        &app.miniForm(),
                                        &app.playSetForm(),
                                        &app.listControl_Form(),
                                        &app.another_PlayInfo_Form(),
                                        &app.playInfo_Form(),
                                        &app.search_Lrc_Internet_Form(),
                                        &app.startLoad_Form(),
                                        &app.welcomeForm(),
                                        &app.search_Song_Internet_Form()};
    for (const forms::Form *form : forms) {
        EXPECT_TRUE(form->layered()) << form->name();
        EXPECT_EQ(form->windowKey(), keyColour) << form->name();
    }
}

TEST_F(Windows, OfVideoAndMenusHaveNoKeyColour) {
    EXPECT_FALSE(app.VideoScreen_Form().layered());
    EXPECT_FALSE(app.MenuForm().layered());
}

TEST_F(Windows, AreSetOnTopWithoutMovingOrSizing) {
    main();
    windows.positionings.clear();
    EXPECT_EQ(rules().set_Topmost(main().hWnd(), true), 1);
    EXPECT_EQ(rules().set_Topmost(main().hWnd(), false), 1);
    EXPECT_EQ(rules().set_Topmost(999'999, true), 0);
    EXPECT_EQ(windows.positionings, (std::vector<Positioning>{{"Main", -1, 3}, {"Main", -2, 3}}));
}

TEST_F(Windows, OfMiniAndLyricAreOnTopFromTheirLoading) {
    EXPECT_TRUE(app.miniForm().topmost());
    EXPECT_TRUE(app.lrcForm().topmost());
}

// --- dragging ------------------------------------------------------------------------------------

TEST_F(Windows, AreDraggedByThePointersPlaceOnTheScreen) {
    auto &form = app.check_SoundDriver_Form();
    form.move({1500, 1500, form.width(), form.height()});
    windows.cursor = {110, 105};
    // The coordinates of the events lag on purpose: they must not matter.
    form.title.on().MouseDown({forms::leftButton, 0, 3, 3});
    windows.cursor = {130, 95};
    form.title.on().MouseMove({forms::leftButton, 0, 3, 3});
    EXPECT_EQ(form.left(), 1800);
    EXPECT_EQ(form.top(), 1350);
    form.title.on().MouseMove({forms::leftButton, 0, 3, 3});
    EXPECT_EQ(form.left(), 1800) << "the pointer stands still";
}

TEST_F(Windows, AreDraggedByTheLeftButtonAlone) {
    auto &form = app.check_SoundDriver_Form();
    const auto place = form.place();
    windows.cursor = {10, 10};
    form.on().MouseDown({forms::leftButton, 0, 0, 0});
    windows.cursor = {50, 50};
    form.on().MouseMove({0, 0, 0, 0});
    form.on().MouseMove({forms::rightButton, 0, 0, 0});
    EXPECT_EQ(form.place(), place);
    form.on().MouseDown({forms::rightButton, 0, 0, 0});
    form.on().MouseMove({forms::leftButton, 0, 0, 0});
    EXPECT_NE(form.place(), place) << "the right press stored no new place";
    EXPECT_EQ(form.left(), place.left + 40 * 15);
}

TEST_F(Windows, AreDraggedByTheEventsPlaceWhereThePointerIsUnknown) {
    windows.cursorFails = true;
    auto &form = app.check_SoundDriver_Form();
    form.move({0, 0, form.width(), form.height()});
    form.on().MouseDown({forms::leftButton, 0, 100, 100});
    form.on().MouseMove({forms::leftButton, 0, 130, 70});
    EXPECT_EQ(form.left(), 30);
    EXPECT_EQ(form.top(), -30);
}

TEST_F(Windows, MayBeDraggedOffTheScreen) {
    auto &form = app.check_SoundDriver_Form();
    form.move({0, 0, form.width(), form.height()});
    windows.cursor = {10, 10};
    form.on().MouseDown({forms::leftButton, 0, 0, 0});
    windows.cursor = {-500, -400};
    form.on().MouseMove({forms::leftButton, 0, 0, 0});
    EXPECT_EQ(form.left(), -510 * 15);
    EXPECT_EQ(form.top(), -410 * 15);
}

// --- docking -------------------------------------------------------------------------------------

TEST_F(Windows, ReadWorkAreaAndTaskBarInPixels) {
    windows.workArea = {1, 2, 1001, 702};
    windows.taskBar = {0, 702, 1001, 750};
    EXPECT_TRUE(rules().read_Tray_Area());
    EXPECT_EQ(rules().work_Area, (RectPixels{1, 2, 1001, 702}));
    EXPECT_EQ(rules().tray_Rect, (RectPixels{0, 702, 1001, 750}));
    EXPECT_EQ(rules().tray_Height, 48);
    EXPECT_EQ(rules().twips_Per_Pixel, 15);
}

TEST_F(Windows, AnswerTheWorkAreasQueryAlone) {
    windows.hasTaskBar = false;
    EXPECT_TRUE(rules().read_Tray_Area());
    windows.workAreaFails = true;
    EXPECT_FALSE(rules().read_Tray_Area());
}

TEST_F(Windows, DockTheListAtTheRightSideOfMainMovedByHalfItsWidth) {
    main().move({6000, 3000, 7200, 3240});
    rules().dock_PlayList(true);
    EXPECT_EQ(main().left(), 2400);
    EXPECT_EQ(main().top(), 3000);
    EXPECT_EQ(list().left(), 9600);
    EXPECT_EQ(list().top(), 3000);
    rules().dock_PlayList(true);
    EXPECT_EQ(main().left(), -1200) << "each time";
}

TEST_F(Windows, UndockedMainIsCentredHorizontallyAlone) {
    main().move({100, 3000, 7200, 3240});
    rules().dock_PlayList(false);
    EXPECT_EQ(main().left(), (1280 * 15 - 7200) / 2.0F);
    EXPECT_EQ(main().top(), 3000);
}

TEST_F(Windows, StayWhenTheWorkAreaCannotBeRead) {
    main().move({100, 3000, 7200, 3240});
    windows.workAreaFails = true;
    rules().dock_PlayList(true);
    rules().dock_PlayList(false);
    EXPECT_EQ(main().left(), 100);
}

TEST_F(Windows, DockOffANarrowScreenWithoutAClamp) {
    windows.workArea = {0, 0, 320, 200};
    main().move({0, 0, 7200, 3240});
    rules().dock_PlayList(true);
    EXPECT_EQ(main().left(), -3600);
    EXPECT_EQ(list().left(), 3600);
}

// --- tray ----------------------------------------------------------------------------------------

class Tray : public Windows {
protected:
    static constexpr std::uint32_t message = 2025;
    static constexpr std::int32_t leftUp = 0x202;
    static constexpr std::int32_t rightUp = 0x205;

    Tray() {
        rules().tray_Add(main());
        app.startLoad_Form();
    }
    std::int32_t event(std::int32_t what) { return windows.send(main().hWnd(), message, 0, what); }
};

TEST_F(Tray, IconIsAddedForMainWithItsMessageAndPicture) {
    ASSERT_EQ(windows.trayCalls.size(), 1U);
    const auto &call = windows.trayCalls[0];
    EXPECT_EQ(call.operation, platform::NIM_ADD);
    EXPECT_EQ(call.data.size, 88U);
    EXPECT_EQ(call.data.window, main().hWnd());
    EXPECT_EQ(call.data.id, 0U);
    EXPECT_EQ(call.data.flags, platform::NIF_MESSAGE | platform::NIF_ICON);
    EXPECT_EQ(call.data.callbackMessage, 2025U);
    EXPECT_EQ(call.data.icon, main().icon());
    EXPECT_TRUE(windows.hooked(main().hWnd()));
}

TEST_F(Tray, TipIsChangedAlone) {
    rules().tray_Tip(u"a tip");
    EXPECT_EQ(windows.trayCalls.back().operation, platform::NIM_MODIFY);
    EXPECT_EQ(windows.trayCalls.back().data.flags, platform::NIF_TIP);
    EXPECT_EQ(windows.trayCalls.back().data.tip, u"a tip");
}

TEST_F(Tray, TipIsCutAt64UnitsButNotInsideAPair) {
    rules().tray_Tip(std::u16string(64, u'x'));
    EXPECT_EQ(windows.trayCalls.back().data.tip.size(), 64U);
    rules().tray_Tip(std::u16string(65, u'x'));
    EXPECT_EQ(windows.trayCalls.back().data.tip.size(), 64U);
    rules().tray_Tip(std::u16string(63, u'x') + u"\U0001F3B5tail");
    EXPECT_EQ(windows.trayCalls.back().data.tip, std::u16string(63, u'x'));
    const std::u16string fits = std::u16string(63, u'x') + u'\xD83C';
    rules().tray_Tip(fits);
    EXPECT_EQ(windows.trayCalls.back().data.tip, fits) << "what fits is not looked at";
    rules().tray_Tip(std::u16string(62, u'x') + u"\U0001F3B5tail");
    EXPECT_EQ(windows.trayCalls.back().data.tip, std::u16string(62, u'x') + u"\U0001F3B5");
}

TEST_F(Tray, TipIsCutAheadOfAHighHalfAloneWhicheverItIs) {
    for (const char16_t high : {u'\xD800', u'\xDBFF'}) {
        rules().tray_Tip(std::u16string(63, u'x') + high + u'y');
        EXPECT_EQ(windows.trayCalls.back().data.tip.size(), 63U) << static_cast<int>(high);
    }
    for (const char16_t other : {u'\xD7FF', u'\xDC00'}) {
        rules().tray_Tip(std::u16string(63, u'x') + other + u'y');
        EXPECT_EQ(windows.trayCalls.back().data.tip.size(), 64U) << static_cast<int>(other);
    }
}

TEST_F(Tray, AChangeOfTheScreensOpensNoFilmsWindow) {
    rules().screens_Changed();
    EXPECT_FALSE(app.videoScreenLoaded());
}

TEST_F(Tray, IsRemovedWithTheHook) {
    rules().tray_Remove();
    EXPECT_EQ(windows.trayCalls.back().operation, platform::NIM_DELETE);
    EXPECT_EQ(windows.trayCalls.back().data.flags, 0U);
    EXPECT_FALSE(windows.hooked(main().hWnd()));
}

TEST_F(Tray, DoesNothingWhileTheStartRuns) {
    app.startLoad_Form().show();
    app.miniForm().show();
    main().setWindowState(forms::WindowState::Minimised);
    event(leftUp);
    event(rightUp);
    EXPECT_EQ(main().windowState(), forms::WindowState::Minimised);
    EXPECT_FALSE(main().visible());
}

TEST_F(Tray, LeftClickRestoresAMinimisedMain) {
    main().show();
    main().setWindowState(forms::WindowState::Minimised);
    windows.positionings.clear();
    event(leftUp);
    EXPECT_EQ(main().windowState(), forms::WindowState::Normal);
    EXPECT_TRUE(windows.positionings.empty());
}

TEST_F(Tray, LeftClickBringsAVisibleMainForwardWithoutKeepingItOnTop) {
    main().show();
    windows.positionings.clear();
    event(leftUp);
    EXPECT_EQ(windows.positionings, (std::vector<Positioning>{{"Main", -1, 3}, {"Main", -2, 3}}));
    EXPECT_FALSE(main().topmost());
}

TEST_F(Tray, LeftClickLeavesTheMiniModeWithoutTheList) {
    main().playList_Shown = -1;
    app.miniForm().show();
    event(leftUp);
    EXPECT_TRUE(main().visible());
    EXPECT_FALSE(app.miniForm().visible());
    EXPECT_FALSE(list().visible());
}

TEST_F(Tray, LeftClickWithBothHiddenDoesNothing) {
    event(leftUp);
    EXPECT_FALSE(main().visible());
}

TEST_F(Tray, RightClickOpensTheMenu) {
    windows.expectPopup("menu", "");
    event(rightUp);
}

TEST_F(Tray, MenuIsHandedToPanelsThatDrawItThemselves) {
    EXPECT_EQ(windows.trayMenu, &app.MenuForm().menu);
}

TEST_F(Tray, MenuOfAPanelOpensWhenARightClickWouldOpenIt) {
    EXPECT_TRUE(windows.trayMenuOpens());
    {
        const ListWork work(app);
        EXPECT_FALSE(windows.trayMenuOpens());
        event(rightUp);
    }
    EXPECT_TRUE(windows.trayMenuOpens());
    app.startLoad_Form().show();
    EXPECT_FALSE(windows.trayMenuOpens());
    event(rightUp);
    app.startLoad_Form().hide();
    EXPECT_TRUE(windows.trayMenuOpens());
}

TEST_F(Tray, OtherEventsDoNothing) {
    app.miniForm().show();
    for (const std::int32_t what : {0x200, 0x201, 0x203, 0x204, 0})
        EXPECT_EQ(event(what), 0);
    EXPECT_FALSE(main().visible());
}

TEST_F(Tray, OtherMessagesGoToTheProcedureBeforeAndGiveItsAnswer) {
    app.miniForm().show();
    EXPECT_EQ(windows.send(main().hWnd(), 1024, 0, leftUp), 1024);
    EXPECT_FALSE(main().visible());
}

// --- the settings window -------------------------------------------------------------------------

TEST_F(Windows, OfTheSettingsShowsTheStoredValuesWithAutoPlayInverted) {
    const auto key = u"SOFTWARE\\Norvane\\zkPlayer\\playSet";
    auto &form = app.playSetForm();
    fake.registry.setText(key, u"AutoUpadate", u"1");
    fake.registry.setText(key, u"isAutoPlay", u"1");
    fake.registry.setText(key, u"VideoInterface", u"1");
    rules().open_PlaySet();
    EXPECT_EQ(form.autoUpdate.value(), 1);
    EXPECT_EQ(form.isAutoPlay.value(), 0);
    EXPECT_EQ(form.openVideo_Interface.value(), 1);
    EXPECT_TRUE(form.visible());
    fake.registry.setText(key, u"AutoUpadate", u"0");
    fake.registry.setText(key, u"isAutoPlay", u"0");
    fake.registry.setText(key, u"VideoInterface", u"0");
    rules().open_PlaySet();
    EXPECT_EQ(form.autoUpdate.value(), 0);
    EXPECT_EQ(form.isAutoPlay.value(), 1);
    EXPECT_EQ(form.openVideo_Interface.value(), 0);
}

TEST_F(Windows, OfTheSettingsTakesTheMarkAwayThatAutoPlayHadBefore) {
    constexpr auto key = u"SOFTWARE\\Norvane\\zkPlayer\\playSet";
    fake.registry.setText(key, u"isAutoPlay", u"1");
    app.playSetForm().isAutoPlay.setValue(1);
    app.formSet().open_PlaySet();
    EXPECT_EQ(app.playSetForm().isAutoPlay.value(), 0);
}

TEST_F(Windows, OfTheSettingsReadsEachValueForEachOfItsTests) {
    const auto key = u"SOFTWARE\\Norvane\\zkPlayer\\playSet";
    app.playSetForm();
    for (const char16_t *name : {u"AutoUpadate", u"isAutoPlay", u"VideoInterface"}) {
        for (const char16_t *value : {u"0", u"1"}) {
            fake.registry.setText(key, name, value);
            fake.registry.clearLog();
            rules().open_PlaySet();
            std::int64_t reads = 0;
            for (const std::u16string &call : fake.registry.log())
                reads += contains(call, name) ? 1 : 0;
            EXPECT_EQ(reads, 2) << toUtf8(name) << " " << toUtf8(value);
        }
    }
}

// --- the about window ----------------------------------------------------------------------------

TEST_F(Windows, OfAboutGivesItsOpenerBackOnClosing) {
    for (const char16_t *caller : {u"main", u"playlist_Form", u"MAIN"}) {
        main().setEnabled(false);
        list().setEnabled(false);
        app.aboutForm().show_For(caller);
        EXPECT_TRUE(app.aboutForm().visible());
        clickOn(app.aboutForm().close);
        EXPECT_FALSE(app.aboutForm().visible());
        EXPECT_TRUE(main().enabled());
        EXPECT_TRUE(list().enabled());
    }
}

TEST_F(Windows, OfAboutOpenedFromTheSettingsGivesThoseBackAlone) {
    main().setEnabled(false);
    app.playSetForm().setEnabled(false);
    app.aboutForm().show_For(u"playset");
    app.aboutForm().closeRequested();
    EXPECT_TRUE(app.playSetForm().enabled());
    EXPECT_FALSE(main().enabled());
    EXPECT_FALSE(app.aboutForm().visible());
}

} // namespace
} // namespace velmora
