// The designs as a whole: every text has room in all four languages, nothing lies over its
// neighbour, and the measures that windows share are the same on all of them.

#include "design.h"
#include "design_rows.h"
#include "lyrics/doLrcForm.h"
#include "lyrics/lrcForm.h"
#include "network/search_Lrc_Internet_Form.h"
#include "network/search_Song_Internet_Form.h"
#include "network/welcomeForm.h"
#include "platform/backends/qt/paint/fonts.h"
#include "playback/MenuForm.h"
#include "playback/VideoScreen_Form.h"
#include "playback/check_SoundDriver_Form.h"
#include "playback/miniForm.h"
#include "playback/startLoad_Form.h"
#include "playlist/another_PlayInfo_Form.h"
#include "playlist/listControl_Form.h"
#include "playlist/playInfo_Form.h"
#include "settings/playSetForm.h"
#include "settings/skinSet.h"
#include "tests/unit/program_fixture.h"
#include "ui/aboutForm.h"
#include "ui/palette.h"
#include "ui/zkButton.h"

#include <QGuiApplication>

#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <sstream>

namespace velmora {
namespace {

using forms::Control;
using forms::Kind;
using forms::Label;

constexpr const char *languages[] = {"Chinese", "English", "French", "Japanese"};
// What a check box or option button keeps for its mark, and a frame for its corner, in pixels.
constexpr double markWidth = 20;
constexpr double frameCorner = 16;
constexpr double buttonMargin = 4;

class Designs : public ProgramFixture {
protected:
    platform::qt::Fonts fonts;

    std::vector<forms::Form *> allForms() {
        return {&app.startLoad_Form(),
                &app.Main(),
                &app.miniForm(),
                &app.VideoScreen_Form(),
                &app.check_SoundDriver_Form(),
                &app.playList_Form(),
                &app.listControl_Form(),
                &app.playInfo_Form(),
                &app.another_PlayInfo_Form(),
                &app.lrcForm(),
                &app.doLrcForm(),
                &app.search_Lrc_Internet_Form(),
                &app.search_Song_Internet_Form(),
                &app.welcomeForm(),
                &app.playSetForm(),
                &app.aboutForm()};
    }

    static void eachControl(forms::Container &container,
                            const std::function<void(Control &)> &work) {
        for (Control *control : container.controls()) {
            work(*control);
            if (auto *inner = dynamic_cast<forms::Container *>(control))
                eachControl(*inner, work);
        }
    }

    double widthOf(std::u16string_view text, const forms::Font &font) {
        return static_cast<double>(fonts.extent(text, font).width / twipsPerPixel);
    }

    static double pixels(Twips twips) { return static_cast<double>(twips / twipsPerPixel); }

    // What the control's text needs beyond the room it has, in pixels; 0 or less when it fits.
    double lacking(const Control &control) {
        const double room = pixels(control.width());
        switch (control.kind()) {
        case Kind::Label: {
            const auto &label = static_cast<const Label &>(control);
            if (label.wordWrap()) {
                const auto shaped = fonts.shape(label.caption(), label.font(), room);
                return shaped->height - pixels(label.height());
            }
            if (label.autoSize())
                return 0; // in a box of its own, where it scrolls
            return widthOf(label.caption(), label.font()) - room;
        }
        case Kind::CheckBox: {
            const auto &box = static_cast<const forms::CheckBox &>(control);
            return widthOf(box.caption(), box.font()) + markWidth - room;
        }
        case Kind::OptionButton: {
            const auto &option = static_cast<const forms::OptionButton &>(control);
            return widthOf(option.caption(), option.font()) + markWidth - room;
        }
        case Kind::Frame: {
            const auto &frame = static_cast<const forms::Frame &>(control);
            return widthOf(frame.caption(), frame.font()) + frameCorner - room;
        }
        default:
            break;
        }
        if (const auto *button = dynamic_cast<const zkButton *>(&control))
            return widthOf(button->caption(), forms::Font(u"宋体", 9)) + 2 * buttonMargin - room;
        return 0;
    }
};

TEST_F(Designs, EveryTextHasRoomInEveryLanguage) {
    for (std::int32_t language = 0; language < 4; ++language) {
        app.setControl().Language_Index = language;
        app.Language_Set().apply_Language();
        for (forms::Form *form : allForms())
            eachControl(*form, [&](Control &control) {
                EXPECT_LE(lacking(control), 0)
                    << languages[language] << ' ' << form->name() << '.' << control.name();
            });
    }
}

// The wiring is written by formc; each form has to ask for it.
TEST_F(Designs, WhoAnswersInTheDesignDoesAnswer) {
    const std::filesystem::path source = VELMORA_SOURCE_DIR "/src";
    const formc::Skin skin = formc::readSkin(VELMORA_SOURCE_DIR "/assets/skin");
    std::map<std::string, formc::Design> designs;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(source)) {
        if (entry.path().extension() != ".form")
            continue;
        std::ostringstream text;
        text << std::ifstream(entry.path()).rdbuf();
        designs[entry.path().stem().string()] = formc::parseDesign(text.str(), skin);
    }
    int answers = 0;
    std::vector<forms::Form *> all = allForms();
    all.push_back(&app.MenuForm());
    for (forms::Form *form : all) {
        std::map<std::string_view, const forms::ControlEvents *> events;
        eachControl(*form, [&](Control &control) { events[control.name()] = control.events(); });
        for (const formc::Thing *thing : designs.at(form->name()).all())
            for (const char *event : {"click", "dblclick"}) {
                if (!thing->has(event))
                    continue;
                ++answers;
                const forms::ControlEvents *given = events[thing->name];
                ASSERT_NE(given, nullptr) << form->name() << '.' << thing->name;
                EXPECT_TRUE(event == std::string_view("click") ? given->Click : given->DblClick)
                    << form->name() << '.' << thing->name << ' ' << event;
            }
    }
    EXPECT_GT(answers, 70);
}

TEST_F(Designs, TheQuestionsOfTheInputBoxHaveRoomInEveryLanguage) {
    listControl_Form &box = app.listControl_Form();
    const velmora::Language &texts = app.Language();
    for (std::int32_t language = 0; language < 4; ++language) {
        app.setControl().Language_Index = language;
        app.Language_Set().apply_Language();
        for (const std::u16string_view prompt : {texts.msg_Rename_Prompt, texts.msg_Find_Prompt}) {
            box.showText.setCaption(prompt);
            EXPECT_LE(lacking(box.showText), 0) << languages[language] << ' ' << toUtf8(prompt);
        }
        for (const std::u16string_view title : {texts.msg_Rename_Title, texts.msg_Find_Title}) {
            box.title.setCaption(title);
            EXPECT_LE(lacking(box.title), 0) << languages[language] << ' ' << toUtf8(title);
        }
    }
}

TEST_F(Designs, WhatTheSplashAndTheWaitingPanelTellHasRoomInEveryLanguage) {
    Label &stage = app.startLoad_Form().showText;
    Label &waiting = app.playList_Form().waitAdd_Title;
    const velmora::Language &texts = app.Language();
    for (std::int32_t language = 0; language < 4; ++language) {
        app.setControl().Language_Index = language;
        app.Language_Set().apply_Language();
        for (const std::u16string_view text : {texts.msg_Upgrade_Failed, texts.msg_Cannot_Start}) {
            stage.setCaption(text);
            EXPECT_LE(lacking(stage), 0) << languages[language] << ' ' << toUtf8(text);
        }
        waiting.setCaption(texts.msg_Loading_Tracks);
        EXPECT_LE(lacking(waiting), 0) << languages[language];
    }
    stage.setCaption(u"成功下载最新版本：【10.20.30】，等待用户选择是否重启...");
    EXPECT_LE(lacking(stage), 0);
    for (const std::u16string_view text : {u"Delete (to delete from the list),Please wait...",
                                           u"Form the Hard-Drive removeing,Please wait..."}) {
        waiting.setCaption(text);
        EXPECT_LE(lacking(waiting), 0) << toUtf8(text);
    }
}

// What another translation may need: the English texts made a quarter longer.
TEST_F(Designs, EnglishTextsAQuarterLongerStillHaveRoom) {
    // Texts that no language changes: figures, an address, owners, the lyric editor.
    const std::set<std::string_view> fixed{"play_Time",   "nowTime",   "link",
                                           "files_Label", "copyright", "CopyRight_Series"};
    const auto lengthened = [](std::u16string_view text) {
        return std::u16string(text) + std::u16string(text.substr(0, text.size() / 4));
    };
    app.setControl().Language_Index = 1;
    app.Language_Set().apply_Language();
    for (forms::Form *form : allForms()) {
        eachControl(
            *form,
            [&](Control &control) {
                if (fixed.contains(control.name()))
                    return;
                if (auto *label = dynamic_cast<Label *>(&control))
                    label->setCaption(lengthened(label->caption()));
                if (auto *frame = dynamic_cast<forms::Frame *>(&control))
                    frame->setCaption(lengthened(frame->caption()));
                if (auto *box = dynamic_cast<forms::CheckBox *>(&control))
                    box->setCaption(lengthened(box->caption()));
                if (auto *option = dynamic_cast<forms::OptionButton *>(&control))
                    option->setCaption(lengthened(option->caption()));
                if (auto *button = dynamic_cast<zkButton *>(&control))
                    button->setCaption(lengthened(button->caption()));
                EXPECT_LE(lacking(control), 0) << form->name() << '.' << control.name();
            });
    }
}

// A tip is read at a glance, and a menu does not cover the window that it belongs to.
TEST_F(Designs, TipsAndMenuEntriesAreShortLines) {
    constexpr double longestTip = 460;   // pixels
    constexpr double longestEntry = 320; // pixels
    const forms::Font font(u"Arial", 9);
    for (std::int32_t language = 0; language < 4; ++language) {
        app.setControl().Language_Index = language;
        app.Language_Set().apply_Language();
        for (forms::Form *form : allForms())
            eachControl(
                *form,
                [&](Control &control) {
                    EXPECT_LE(widthOf(control.toolTip(), font), longestTip)
                        << languages[language] << ' ' << form->name() << '.' << control.name();
                    EXPECT_FALSE(contains(control.toolTip(), u"\n")) << control.name();
                });
        eachControl(app.MenuForm(), [&](Control &control) {
            if (const auto *entry = dynamic_cast<const forms::Menu *>(&control)) {
                EXPECT_LE(widthOf(entry->caption(), font), longestEntry)
                    << languages[language] << ' ' << entry->name();
                EXPECT_FALSE(contains(entry->caption(), u"\n")) << entry->name();
            }
        });
    }
}

TEST_F(Designs, AboutTextsAreReadWithoutScrolling) {
    constexpr double border = 16;
    for (std::int32_t language = 0; language < 4; ++language) {
        app.setControl().Language_Index = language;
        app.Language_Set().apply_Language();
        for (const forms::TextBox *box :
             {&app.aboutForm().information, &app.aboutForm().zkShow, &app.aboutForm().announce}) {
            const auto shaped =
                fonts.shape(box->text(), box->font(), pixels(box->width()) - border);
            EXPECT_LE(shaped->height, pixels(box->height()) - 6)
                << languages[language] << ' ' << box->name();
        }
    }
}

TEST_F(Designs, LabelsDoNotLieOverOneAnother) {
    for (forms::Form *form : allForms()) {
        std::function<void(forms::Container &)> check = [&](forms::Container &container) {
            const auto &all = container.controls();
            for (std::size_t i = 0; i < all.size(); ++i) {
                if (auto *inner = dynamic_cast<forms::Container *>(all[i]))
                    check(*inner);
                for (std::size_t j = i + 1; j < all.size(); ++j) {
                    if (all[i]->kind() != Kind::Label || all[j]->kind() != Kind::Label)
                        continue;
                    const RectTwips &a = all[i]->place();
                    const RectTwips &b = all[j]->place();
                    const bool apart = a.left + a.width <= b.left || b.left + b.width <= a.left ||
                                       a.top + a.height <= b.top || b.top + b.height <= a.top;
                    EXPECT_TRUE(apart)
                        << form->name() << ' ' << all[i]->name() << ' ' << all[j]->name();
                }
            }
        };
        check(*form);
    }
}

TEST_F(Designs, LabelsAreAsHighAsALineOfTheirFont) {
    for (forms::Form *form : allForms())
        eachControl(
            *form,
            [&](Control &control) {
                if (control.kind() != Kind::Label)
                    return;
                const auto &label = static_cast<const Label &>(control);
                if (label.wordWrap() || label.caption().empty())
                    return;
                const double line =
                    static_cast<double>(fonts.extent(u"Xyz", label.font()).height / twipsPerPixel);
                EXPECT_GE(pixels(label.height()) + 0.01, line)
                    << form->name() << '.' << label.name();
            });
}

TEST_F(Designs, TitleRowsAreAlikeBeforeAndAfterTheHandOut) {
    const auto tops = [&] {
        std::vector<Twips> result;
        for (forms::Form *form : allForms())
            eachControl(*form, [&](Control &control) {
                const std::string_view name = control.name();
                // An auto-sized title is as high as the window system says.
                const auto *label = dynamic_cast<const Label *>(&control);
                if (label != nullptr && label->autoSize())
                    return;
                if (name == "title" || name == "title_ICO" || name == "close" ||
                    name == "closeButton" || name == "mini_Button" || name == "minimizeButton" ||
                    name == "afresh_Load") {
                    result.push_back(control.left());
                    result.push_back(control.top());
                }
            });
        return result;
    };
    const auto designed = tops();
    app.skinSet().skin_All();
    EXPECT_EQ(tops(), designed);
}

TEST_F(Designs, ListWindowsHaveTheScrollBarOfThePlayList) {
    const auto placesOf = [&](forms::Form &form) {
        std::vector<RectTwips> places;
        eachControl(form, [&](Control &control) {
            const std::string_view name = control.name();
            if (name == "P1" || name == "P2" || name == "P3" || name == "P4")
                places.push_back(control.place());
        });
        return places;
    };
    const auto model = placesOf(app.playList_Form());
    ASSERT_EQ(model.size(), 4U);
    EXPECT_EQ(placesOf(app.doLrcForm()), model);
    EXPECT_EQ(placesOf(app.search_Lrc_Internet_Form()), model);
    EXPECT_EQ(placesOf(app.search_Song_Internet_Form()), model);
    EXPECT_EQ(app.playList_Form().P4.width(), 9 * twipsPerPixel);
}

TEST_F(Designs, ListsHaveRowsOfWholePixels) {
    const auto rowOf = [](const forms::ListBox &list, int rows) {
        return pixels(list.height()) / rows;
    };
    EXPECT_EQ(rowOf(app.playList_Form().playList_Item, 17), 18);
    EXPECT_EQ(rowOf(app.doLrcForm().lrcList, 17), 18);
    EXPECT_EQ(rowOf(app.search_Lrc_Internet_Form().search_Lrc_List, 11), 27);
    EXPECT_EQ(rowOf(app.search_Song_Internet_Form().search_Song_List, 11), 27);
}

TEST_F(Designs, TheStripIsOutOfSightInSevenSteps) {
    EXPECT_LE(app.miniForm().height(), 46 * twipsPerPixel);
    EXPECT_LE(app.miniForm().height(), 700);
    EXPECT_TRUE(app.miniForm().unmanaged());
}

TEST_F(Designs, PlayAndPauseStandInTheSamePlace) {
    EXPECT_EQ(app.Main().playButton.place(), app.Main().pauseButton.place());
    EXPECT_EQ(app.miniForm().playButton.place(), app.miniForm().pauseButton.place());
    EXPECT_EQ(app.VideoScreen_Form().playButton.place(),
              app.VideoScreen_Form().pauseButton.place());
}

TEST_F(Designs, FillsLieWithinTheirBars) {
    const auto within = [](const Control &fill, const Control &bar) {
        EXPECT_GE(fill.left(), bar.left()) << fill.name();
        EXPECT_GT(fill.top(), bar.top()) << fill.name();
        EXPECT_LE(fill.left() + fill.width(), bar.left() + bar.width()) << fill.name();
        EXPECT_LT(fill.top() + fill.height(), bar.top() + bar.height()) << fill.name();
        // The same distance above and below.
        EXPECT_EQ(fill.top() - bar.top(), bar.top() + bar.height() - fill.top() - fill.height());
    };
    within(app.Main().load_Played, app.Main().load_Played_BG);
    within(app.Main().Volume_Set, app.Main().Volume_Set_BG);
    within(app.miniForm().Volume_Set, app.miniForm().Volume_Set_BG);
    within(app.VideoScreen_Form().load_Played, app.VideoScreen_Form().load_Played_BG);
}

TEST_F(Designs, TimersAreDesignedAsTheRunNeedsThem) {
    const auto is = [](const forms::Timer &timer, std::int32_t interval, bool running) {
        EXPECT_EQ(timer.interval(), interval) << timer.form().name();
        EXPECT_EQ(timer.running(), running) << timer.form().name();
    };
    is(app.Main().Timer1, 70, false);
    is(app.Main().Timer2, 250, true);
    is(app.lrcForm().Timer1, 70, false);
    is(app.miniForm().Timer1, 70, true);
    is(app.VideoScreen_Form().Timer1, 70, true);
    is(app.playInfo_Form().Timer1, 70, true);
    is(app.welcomeForm().Timer1, 70, false);
}

TEST_F(Designs, KeyedWindowsHaveAKeyedGroundAndTheVideoWindowHasNone) {
    for (forms::Form *form : allForms()) {
        const bool keyed = form->ground() == forms::Picture::body ||
                           form->ground() == forms::Picture::body_strip ||
                           form->ground() == forms::Picture::splash ||
                           form->backColor() == keyColour;
        EXPECT_EQ(keyed, form != &app.VideoScreen_Form()) << form->name();
    }
}

TEST_F(Designs, TheDesktopLineIsNothingButItsLetters) {
    EXPECT_EQ(app.lrcForm().backColor(), keyColour);
    EXPECT_EQ(app.lrcForm().ground(), forms::Picture::None);
    EXPECT_TRUE(app.lrcForm().unmanaged());
    EXPECT_TRUE(app.lrcForm().lrc_Text.rim());
    EXPECT_EQ(app.lrcForm().lrc_Text.font().name(), u"微软雅黑");
    EXPECT_EQ(app.lrcForm().lrc_Text.font().size(), 36);
    EXPECT_EQ(app.Main().lrc_Text.foreColor(), palette::lyric);
}

TEST_F(Designs, OnlyWindowsThatAPersonSwitchesToHaveTaskBarEntries) {
    std::set<std::string_view> shown;
    for (forms::Form *form : allForms())
        if (form->showInTaskbar())
            shown.insert(form->name());
    EXPECT_EQ(shown, (std::set<std::string_view>{"Main", "miniForm", "VideoScreen_Form"}));
}

} // namespace
} // namespace velmora

int main(int count, char **values) {
    testing::InitGoogleMock(&count, values);
    const QGuiApplication app(count, values);
    return RUN_ALL_TESTS();
}
