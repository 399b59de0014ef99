// What Main hands to the other windows.

#include "lyrics/doLrcForm.h"
#include "network/search_Lrc_Internet_Form.h"
#include "network/search_Song_Internet_Form.h"
#include "network/welcomeForm.h"
#include "playback/VideoScreen_Form.h"
#include "playback/check_SoundDriver_Form.h"
#include "playback/miniForm.h"
#include "playback/startLoad_Form.h"
#include "playlist/another_PlayInfo_Form.h"
#include "playlist/listControl_Form.h"
#include "playlist/playInfo_Form.h"
#include "settings/skinSet.h"
#include "tests/unit/settings/settings_fixture.h"
#include "ui/aboutForm.h"

namespace velmora {
namespace {

using forms::Picture;

class TheSkin : public SettingsFixture {
protected:
    // Gives every image of a form a picture and pointer that it does not have by design.
    static void blank(forms::Container &container) {
        for (forms::Control *control : container.controls()) {
            control->setMouseIcon(forms::MouseIcon::None);
            control->setMousePointer(forms::pointerDefault);
            if (auto *image = dynamic_cast<forms::Image *>(control))
                image->setPicture(Picture::None);
            if (auto *inner = dynamic_cast<forms::Container *>(control))
                blank(*inner);
        }
    }
    static forms::Control *find(forms::Container &container, std::string_view name) {
        for (forms::Control *control : container.controls()) {
            if (name == control->name())
                return control;
            if (auto *inner = dynamic_cast<forms::Container *>(control)) {
                if (forms::Control *found = find(*inner, name))
                    return found;
            }
        }
        return nullptr;
    }
    static Picture pictureOf(forms::Form &form, std::string_view name) {
        return dynamic_cast<forms::Image &>(*find(form, name)).picture();
    }
    static bool hasHand(forms::Form &form, std::string_view name) {
        const forms::Control *control = find(form, name);
        return control->mouseIcon() == forms::MouseIcon::Hand &&
               control->mousePointer() == forms::pointerCustom;
    }
    // Control names of all that shows a hand.
    static std::vector<std::string> handsOf(forms::Container &container) {
        std::vector<std::string> names;
        for (forms::Control *control : container.controls()) {
            if (control->mouseIcon() == forms::MouseIcon::Hand)
                names.emplace_back(control->name());
            if (auto *inner = dynamic_cast<forms::Container *>(control))
                for (std::string &name : handsOf(*inner))
                    names.push_back(std::move(name));
        }
        return names;
    }
    // Target control to source control on Main.
    using Pictures = std::vector<std::pair<std::string, std::string>>;
    void expectHanded(forms::Form &form, const Pictures &pictures,
                      const std::vector<std::string> &otherHands) {
        std::vector<std::string> hands = otherHands;
        for (const auto &[target, source] : pictures) {
            EXPECT_EQ(pictureOf(form, target), pictureOf(app.Main(), source))
                << form.name() << "." << target;
            EXPECT_NE(pictureOf(form, target), Picture::None);
            EXPECT_TRUE(hasHand(form, target)) << form.name() << "." << target;
            hands.push_back(target);
        }
        EXPECT_THAT(handsOf(form), testing::UnorderedElementsAreArray(hands)) << form.name();
    }
    static Pictures with(Pictures pictures, const Pictures &more) {
        pictures.insert(pictures.end(), more.begin(), more.end());
        return pictures;
    }
    const Pictures titleAndClose{{"title_ICO", "title_ICO"}, {"close", "closeButton"}};
};

TEST_F(TheSkin, AListedFormsTakeTitleIconAndCloseButton) {
    skinSet &skin = app.skinSet();
    const auto check = [&](forms::Form &form, void (skinSet::*routine)(),
                           const std::vector<std::string> &hands) {
        blank(form);
        (skin.*routine)();
        expectHanded(form, titleAndClose, hands);
    };
    check(app.welcomeForm(), &skinSet::skin_welcomeForm, {"provider", "Advertising", "loadStr"});
    check(app.playList_Form(), &skinSet::skin_playList_Form, {});
    check(app.aboutForm(), &skinSet::skin_aboutForm, {"email", "Cooperation_Email"});
    check(app.search_Lrc_Internet_Form(), &skinSet::skin_search_Lrc_Internet_Form, {});
    check(app.search_Song_Internet_Form(), &skinSet::skin_search_Song_Internet_Form, {});
    check(app.doLrcForm(), &skinSet::skin_doLrcForm,
          {"list_Load", "openFile_Button", "addTime_Label_Button", "delTime_Label_Button",
           "save_Button", "anotherSave_Button"});
}

TEST_F(TheSkin, TheMiniStripTakesItsTransport) {
    blank(app.miniForm());
    app.skinSet().skin_miniForm();
    Pictures pictures{{"title_ICO", "title_ICO"}, {"close", "closeButton"}};
    for (const char *same : {"mini_Button", "playButton", "stopButton", "pauseButton", "upButton",
                             "nextButton", "Volume_ICO"})
        pictures.emplace_back(same, same);
    expectHanded(app.miniForm(), pictures,
                 {"auto_Hide_Lock_True", "auto_Hide_Lock_False", "desktop_Lrc", "playInfo",
                  "Volume_Set_BG", "load_Played_BG"});
}

TEST_F(TheSkin, TheSettingsTakeTheFolderPictureOfTheOpenButton) {
    blank(app.playSetForm());
    app.skinSet().skin_playSetForm();
    expectHanded(app.playSetForm(),
                 with(titleAndClose, {{"save_Lrc_Path_Image", "openFile_Button"},
                                      {"save_PlayList_Path_Image", "openFile_Button"},
                                      {"save_PlayCache_Path_Image", "openFile_Button"}}),
                 {"playSet_Resume"});
}

TEST_F(TheSkin, TrackInformationTakesTheFolderPictureAsWell) {
    blank(app.playInfo_Form());
    app.skinSet().skin_playInfo_Form();
    expectHanded(app.playInfo_Form(), with(titleAndClose, {{"openLrcFile", "openFile_Button"}}),
                 {});
}

TEST_F(TheSkin, TheVideoWindowTakesAWholeStripAndAgainWhenMadeAnew) {
    Pictures pictures = titleAndClose;
    for (const char *same :
         {"nextButton", "playButton", "pauseButton", "stopButton", "upButton", "AudioSource_H",
          "AudioSource_L", "AudioSource_R", "Volume_ICO", "videoScreen_Button"})
        pictures.emplace_back(same, same);
    for (int time = 0; time < 2; ++time) {
        blank(app.VideoScreen_Form());
        app.skinSet().skin_VideoScreen_Form();
        expectHanded(
            app.VideoScreen_Form(), pictures,
            {"Volume_Set_BG", "fullScreen_imgButton", "load_Played_BG", "fullScreen_Button"});
        app.unloadVideoScreen();
    }
}

TEST_F(TheSkin, MainsOwnControlsTakeTheHandOfItsPlayButton) {
    blank(app.Main());
    app.Main().playButton.setMouseIcon(forms::MouseIcon::Hand);
    app.skinSet().skin_Main();
    EXPECT_THAT(handsOf(app.Main()),
                testing::UnorderedElementsAre(
                    "playButton", "Volume_ICO", "Volume_Set_BG", "load_Played_BG", "nextButton",
                    "pauseButton", "stopButton", "upButton", "openFile_Button", "desktop_Lrc",
                    "playInfo", "AudioSource_H", "AudioSource_R", "AudioSource_L", "song_GoTo_List",
                    "do_Lrc", "check_SoundDriver", "videoScreen_Button", "playSet_Button",
                    "playListButton", "CopyRight_ICO", "search_Lrc_Internet",
                    "search_Song_Internet", "link", "welcome"));
}

TEST_F(TheSkin, TheHandIsWhateverTheIconOfThePlayButtonIs) {
    app.Main().playButton.setMouseIcon(forms::MouseIcon::None);
    app.skinSet().skin_playList_Form();
    EXPECT_EQ(app.playList_Form().close.mouseIcon(), forms::MouseIcon::None);
}

TEST_F(TheSkin, AChangedPictureOfMainReachesTheOthers) {
    app.Main().closeButton.setPicture(app.Main().playButton.picture());
    app.skinSet().skin_All();
    EXPECT_EQ(app.playSetForm().close.picture(), app.Main().playButton.picture());
    EXPECT_EQ(app.VideoScreen_Form().close.picture(), app.Main().playButton.picture());
}

TEST_F(TheSkin, TheStartWindowsLabelHasItsHandFirst) {
    app.skinSet().skin_All();
    EXPECT_EQ(app.startLoad_Form().copyright.mouseIcon(), forms::MouseIcon::Hand);
}

// A form comes into being when it is first dressed: the order of the windows is that of the skin.
TEST_F(TheSkin, MainComesFirstAndTheOthersInTheirOrder) {
    app.skinSet().skin_All();
    const forms::Form *const order[] = {&app.Main(),
                                        &app.welcomeForm(),
                                        &app.miniForm(),
                                        &app.playList_Form(),
                                        &app.playSetForm(),
                                        &app.aboutForm(),
                                        &app.check_SoundDriver_Form(),
                                        &app.playInfo_Form(),
                                        &app.doLrcForm(),
                                        &app.another_PlayInfo_Form(),
                                        &app.search_Lrc_Internet_Form(),
                                        &app.search_Song_Internet_Form(),
                                        &app.listControl_Form(),
                                        &app.VideoScreen_Form()};
    for (std::size_t next = 1; next < std::size(order); ++next)
        EXPECT_LT(order[next - 1]->hWnd(), order[next]->hWnd()) << order[next]->name();
}

// --- layout --------------------------------------------------------------------------------------

TEST(TitleTop, CentresALabelInTheStripFrom50Of300) {
    EXPECT_EQ(skinSet::title_Top(300), 50);
    EXPECT_EQ(skinSet::title_Top(210), 95);
    EXPECT_EQ(skinSet::title_Top(0), 200);
    EXPECT_EQ(skinSet::title_Top(400), 0);
}

TEST(TitleTop, RoundsAHalfToTheEvenTwip) {
    EXPECT_EQ(skinSet::title_Top(225), 88); // 87.5
    EXPECT_EQ(skinSet::title_Top(223), 88); // 88.5
}

template <typename Form>
void expectTitleRow(Form &form, void (skinSet::*routine)(), skinSet &skin) {
    form.title_ICO.setTop(7);
    form.title.setTop(7);
    form.close.move({0, 0, form.close.width(), form.close.height()});
    form.title.setHeight(240);
    (skin.*routine)();
    EXPECT_EQ(form.title_ICO.top(), 50) << form.name();
    EXPECT_EQ(form.title.top(), 80) << form.name();
    EXPECT_EQ(form.close.top(), 50) << form.name();
    EXPECT_EQ(form.close.left() + form.close.width(), form.width() - 120) << form.name();
}

TEST_F(TheSkin, EveryTitleRowIsPutInPlace) {
    skinSet &skin = app.skinSet();
    expectTitleRow(app.welcomeForm(), &skinSet::skin_welcomeForm, skin);
    expectTitleRow(app.playList_Form(), &skinSet::skin_playList_Form, skin);
    expectTitleRow(app.playSetForm(), &skinSet::skin_playSetForm, skin);
    expectTitleRow(app.aboutForm(), &skinSet::skin_aboutForm, skin);
    expectTitleRow(app.check_SoundDriver_Form(), &skinSet::skin_check_SoundDriver_Form, skin);
    expectTitleRow(app.playInfo_Form(), &skinSet::skin_playInfo_Form, skin);
    expectTitleRow(app.doLrcForm(), &skinSet::skin_doLrcForm, skin);
    expectTitleRow(app.another_PlayInfo_Form(), &skinSet::skin_another_PlayInfo_Form, skin);
    expectTitleRow(app.search_Lrc_Internet_Form(), &skinSet::skin_search_Lrc_Internet_Form, skin);
    expectTitleRow(app.search_Song_Internet_Form(), &skinSet::skin_search_Song_Internet_Form, skin);
    expectTitleRow(app.listControl_Form(), &skinSet::skin_listControl_Form, skin);
    expectTitleRow(app.VideoScreen_Form(), &skinSet::skin_VideoScreen_Form, skin);
}

TEST_F(TheSkin, AllOfItReachesEveryWindow) {
    forms::Form *const dressed[] = {&app.Main(),
                                    &app.welcomeForm(),
                                    &app.playList_Form(),
                                    &app.playSetForm(),
                                    &app.aboutForm(),
                                    &app.check_SoundDriver_Form(),
                                    &app.playInfo_Form(),
                                    &app.doLrcForm(),
                                    &app.another_PlayInfo_Form(),
                                    &app.search_Lrc_Internet_Form(),
                                    &app.search_Song_Internet_Form(),
                                    &app.listControl_Form(),
                                    &app.VideoScreen_Form()};
    for (forms::Form *form : dressed)
        find(*form, "title_ICO")->setTop(7);
    app.miniForm().close.setPicture(Picture::None);
    app.skinSet().skin_All();
    for (forms::Form *form : dressed)
        EXPECT_EQ(find(*form, "title_ICO")->top(), 50) << form->name();
    EXPECT_EQ(app.miniForm().close.picture(), app.Main().closeButton.picture());
}

TEST_F(TheSkin, TheScrollBarsAreThoseOfThePlayList) {
    playList_Form &model = app.playList_Form();
    model.P1.move({4000, 410, 200, 200});
    model.P3.move({4010, 5000, 200, 200});
    model.P4.move({4020, 700, 200, 4000});
    model.P2.setLeft(5);
    model.P1.setPicture(app.Main().playButton.picture());
    model.P4.setPicture(app.Main().stopButton.picture());
    app.skinSet().skin_All();
    const auto check = [&](auto &form) {
        EXPECT_EQ(form.P1.picture(), app.Main().playButton.picture());
        EXPECT_EQ(form.P4.picture(), app.Main().stopButton.picture());
        EXPECT_EQ(form.P2.picture(), model.P2.picture());
        EXPECT_EQ(form.P3.picture(), model.P3.picture());
        EXPECT_EQ(form.P1.left(), 4000);
        EXPECT_EQ(form.P1.top(), 410);
        EXPECT_EQ(form.P3.left(), 4010);
        EXPECT_EQ(form.P3.top(), 5000);
        EXPECT_EQ(form.P4.left(), 4020);
        EXPECT_EQ(form.P4.top(), 700);
        EXPECT_EQ(form.P2.left(), 5);
    };
    check(app.doLrcForm());
    check(app.search_Lrc_Internet_Form());
    check(app.search_Song_Internet_Form());
}

TEST_F(TheSkin, MainsButtonsStandSideBySideFromTheRight) {
    Main &main = app.Main();
    main.closeButton.move({0, 0, 300, 300});
    main.mini_Button.setTop(9);
    main.minimizeButton.setTop(9);
    app.skinSet().skin_Main();
    EXPECT_EQ(main.closeButton.left() + 300, main.width() - 120);
    EXPECT_EQ(main.mini_Button.top(), main.closeButton.top());
    EXPECT_LT(main.mini_Button.left() + main.mini_Button.width(), main.closeButton.left());
    EXPECT_EQ(main.minimizeButton.top(), main.closeButton.top());
    EXPECT_LT(main.minimizeButton.left() + main.minimizeButton.width(), main.mini_Button.left());
}

TEST_F(TheSkin, TheListsReloadStandsAheadOfItsClose) {
    playList_Form &list = app.playList_Form();
    list.afresh_Load.move({1, 2, 300, 300});
    app.skinSet().skin_playList_Form();
    EXPECT_EQ(list.afresh_Load.top(), list.close.top());
    EXPECT_EQ(list.afresh_Load.left() + 300, list.close.left() - 60);
}

TEST_F(TheSkin, MainsChannelImagesLieOverOneAnother) {
    Main &main = app.Main();
    main.AudioSource_L.move({1, 2, 3, 4});
    main.AudioSource_R.move({5, 6, 7, 8});
    app.skinSet().skin_Main();
    EXPECT_EQ(main.AudioSource_L.place(), main.AudioSource_H.place());
    EXPECT_EQ(main.AudioSource_R.place(), main.AudioSource_H.place());
}

TEST_F(TheSkin, MainsTextsAreCentredInTheirBoxes) {
    Main &main = app.Main();
    main.playInfo_Show.setWidth(1000);
    main.lrc_Text.setWidth(3000);
    app.skinSet().skin_Main();
    EXPECT_EQ(main.playInfo_Show.left(), main.nameBox.width() / 2 - 500);
    EXPECT_EQ(main.lrc_Text.left(), main.lrcBox.width() / 2 - 1500);
}

TEST_F(TheSkin, TheLineOverTheSeekBarTakesItsEndsFromIt) {
    Main &main = app.Main();
    main.load_Played_BG.move({100, 1500, 5000, 200});
    app.skinSet().skin_Main();
    EXPECT_EQ(main.load_Played_Line.x1(), 75);
    EXPECT_EQ(main.load_Played_Line.x2(), 15);
    EXPECT_EQ(main.load_Played_Line.y1(), 1540);
    EXPECT_EQ(main.load_Played_Line.y2(), 130);
}

TEST_F(TheSkin, ADesignedWindowIsNotMovedByItsSkin) {
    // The designs stand where the layout puts things.
    const RectTwips close = app.playList_Form().close.place();
    const RectTwips mini = app.Main().mini_Button.place();
    const RectTwips reload = app.playList_Form().afresh_Load.place();
    app.skinSet().skin_All();
    EXPECT_EQ(app.playList_Form().close.place(), close);
    EXPECT_EQ(app.Main().mini_Button.place(), mini);
    EXPECT_EQ(app.playList_Form().afresh_Load.place(), reload);
}

} // namespace
} // namespace velmora
