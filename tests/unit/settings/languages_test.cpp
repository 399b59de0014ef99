// Every key in every language.

#include "lyrics/doLrcForm.h"
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
#include "playlist/playInfo_Form.h"
#include "tests/unit/settings/settings_fixture.h"
#include "tests/unit/settings/text_keys.h"
#include "ui/aboutForm.h"

#include <map>
#include <set>

namespace velmora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int32_t chinese = 0;
constexpr std::int32_t english = 1;
constexpr std::int32_t french = 2;
constexpr std::int32_t japanese = 3;

class Languages : public SettingsFixture {
protected:
    void apply(std::int32_t language) {
        settings.Language_Index = language;
        app.Language_Set().apply_Language();
    }

    std::vector<forms::Form *> formsWithTexts() {
        return {&app.Main(),
                &app.miniForm(),
                &app.playList_Form(),
                &app.listControl_Form(),
                &app.aboutForm(),
                &app.playSetForm(),
                &app.playInfo_Form(),
                &app.doLrcForm(),
                &app.MenuForm(),
                &app.check_SoundDriver_Form(),
                &app.search_Lrc_Internet_Form(),
                &app.another_PlayInfo_Form(),
                &app.VideoScreen_Form()};
    }
    std::vector<forms::Form *> formsWithoutTexts() {
        return {&app.startLoad_Form(), &app.search_Song_Internet_Form(), &app.welcomeForm(),
                &app.lrcForm()};
    }

    // "Form.control.property" to text, for everything that a form shows.
    std::map<std::string, std::u16string> textsOf(const std::vector<forms::Form *> &some) {
        std::map<std::string, std::u16string> texts;
        for (forms::Form *form : some) {
            texts[std::string(form->name()) + "..caption"] = form->caption();
            collectTexts(*form, form->name(), texts);
        }
        return texts;
    }
    std::map<std::string, std::u16string> allTexts() { return textsOf(formsWithTexts()); }

    std::u16string textOf(const std::string &key) {
        const auto texts = allTexts();
        const auto found = texts.find(key);
        EXPECT_NE(found, texts.end()) << key;
        return found == texts.end() ? std::u16string() : found->second;
    }

    // The texts of the message variables by their names.
    std::map<std::string, std::u16string_view> messages() {
        std::map<std::string, std::u16string_view> texts;
        for (const auto &[name, member] : messageVariables)
            texts[name] = app.Language().*member;
        return texts;
    }
};

// --- completeness --------------------------------------------------------------------------------

TEST_F(Languages, FortyOneMessagesAreFilledInEachLanguage) {
    EXPECT_EQ(std::size(messageVariables), 41U);
    for (const std::int32_t language : {chinese, english, french, japanese}) {
        apply(language);
        for (const auto &[name, text] : messages())
            EXPECT_FALSE(text.empty()) << name << " in " << language;
    }
}

TEST_F(Languages, MessagesAreEmptyBeforeTheFirstRun) {
    for (const auto &[name, text] : messages())
        EXPECT_TRUE(text.empty()) << name;
}

TEST_F(Languages, EveryKeyIsThereAndFilledInEachLanguage) {
    for (const std::int32_t language : {chinese, english, french, japanese}) {
        apply(language);
        const auto texts = allTexts();
        for (const char *key : textKeys) {
            const auto found = texts.find(key);
            ASSERT_NE(found, texts.end()) << key;
            EXPECT_FALSE(found->second.empty()) << key << " in " << language;
        }
    }
}

TEST_F(Languages, EveryKeyIsPutAnewByEachRunAndNothingElseIs) {
    for (const std::int32_t language : {chinese, english, french, japanese}) {
        apply(language);
        for (forms::Form *form : formsWithTexts())
            overwriteTexts(*form, u"leftover");
        apply(language);
        std::set<std::string> put;
        for (const auto &[key, text] : allTexts())
            if (text != u"leftover")
                put.insert(key);
        std::set<std::string> expected(std::begin(textKeys), std::end(textKeys));
        // The facts of the track are refreshed along with the language.
        for (const char *fact : {"playName", "playPath", "playFile_Size", "playFile_DateCreated"})
            expected.insert(std::string("playInfo_Form.") + fact + ".caption");
        EXPECT_EQ(put, expected);
    }
}

TEST_F(Languages, OtherWindowsStayInTheLanguageTheyWereWrittenIn) {
    apply(chinese);
    const auto before = textsOf(formsWithoutTexts());
    for (const std::int32_t language : {english, french, japanese}) {
        apply(language);
        EXPECT_EQ(textsOf(formsWithoutTexts()), before);
    }
}

// What shows as long as no language of the four is in force.
TEST_F(Languages, TheDesignsAreWrittenInTheWordsOfTheChineseTexts) {
    const auto designed = allTexts();
    apply(chinese);
    const auto texts = allTexts();
    for (const char *key : textKeys) {
        const std::u16string &text = designed.at(key);
        EXPECT_TRUE(text.empty() || text == texts.at(key))
            << key << " " << toUtf8(text) << " for " << toUtf8(texts.at(key));
    }
}

TEST_F(Languages, TheLanguagesNamesForThemselvesStay) {
    for (const std::int32_t language : {chinese, english, french, japanese}) {
        apply(language);
        const playSetForm &form = app.playSetForm();
        EXPECT_EQ(form.Language_China.caption(), u"简体中文");
        EXPECT_EQ(form.Language_English.caption(), u"English");
        EXPECT_EQ(form.Language_French.caption(), u"Français");
        EXPECT_EQ(form.Language_Japanese.caption(), u"日本語");
    }
}

// --- nothing left from another language ------------------------------------------------------

bool isKana(char16_t unit) { return unit >= 0x3041 && unit <= 0x30FF && unit != 0x30FB; }
bool isHan(char16_t unit) { return unit >= 0x4E00 && unit <= 0x9FFF; }

bool holds(std::u16string_view text, bool (*test)(char16_t)) {
    return std::any_of(text.begin(), text.end(), test);
}

TEST_F(Languages, EnglishAndFrenchTextsHoldNoChineseOrJapaneseLetter) {
    for (const std::int32_t language : {english, french}) {
        apply(language);
        const auto texts = allTexts();
        for (const char *key : textKeys) {
            const std::u16string &text = texts.at(key);
            EXPECT_FALSE(holds(text, isHan) || holds(text, isKana)) << key << " " << toUtf8(text);
        }
        for (const auto &[name, text] : messages())
            EXPECT_FALSE(holds(text, isHan) || holds(text, isKana)) << name << " " << toUtf8(text);
    }
}

TEST_F(Languages, ChineseTextsHoldNoKana) {
    apply(chinese);
    const auto texts = allTexts();
    for (const char *key : textKeys)
        EXPECT_FALSE(holds(texts.at(key), isKana)) << key;
    for (const auto &[name, text] : messages())
        EXPECT_FALSE(holds(text, isKana)) << name;
}

TEST_F(Languages, JapaneseTextsAreInJapaneseLettersOrNeutral) {
    apply(japanese);
    // Characters of simplified Chinese that Japanese does not use.
    constexpr std::u16string_view simplified = u"击请这进动乐务关击频词选择历误载测试图书国语说读写"
                                               u"间门网络么们个为发对开时过还应该频视听声";
    const auto check = [&](const std::string &key, std::u16string_view text) {
        for (const char16_t unit : text) {
            // These are shared by both scripts as the lists above stand.
            if (std::u16string_view(u"国発読書語説").find(unit) != std::u16string_view::npos)
                continue;
            EXPECT_EQ(simplified.find(unit), std::u16string_view::npos)
                << key << " " << toUtf8(text);
        }
    };
    const auto texts = allTexts();
    for (const char *key : textKeys)
        check(key, texts.at(key));
    for (const auto &[name, text] : messages())
        check(name, text);
}

TEST_F(Languages, NoTextIsTheSameInEnglishAndFrenchOrJapaneseByOversight) {
    // What is rightly the same: the product, names, marks, addresses.
    const std::set<std::u16string> shared{u"Velmora 2011",
                                          u"OK",
                                          u"Volume",
                                          u"Copyright (C) 2011 Norvane",
                                          u"velmora@norvane.example",
                                          u"partner@norvane.example"};
    apply(english);
    const auto inEnglish = allTexts();
    const auto messagesInEnglish = messages();
    for (const std::int32_t language : {french, japanese}) {
        apply(language);
        const auto texts = allTexts();
        for (const char *key : textKeys) {
            EXPECT_TRUE(shared.contains(texts.at(key)) || texts.at(key) != inEnglish.at(key))
                << key;
        }
        for (const auto &[name, text] : messages())
            EXPECT_NE(text, messagesInEnglish.at(name)) << name;
    }
}

// --- placeholders and shortcuts --------------------------------------------------------------

// The keys named in brackets at a text's end, in capitals.
std::u16string keysOf(std::u16string_view text) {
    if (text.empty() || (text.back() != u')' && text.back() != u'）'))
        return {};
    const std::size_t open = text.find_last_of(u"(（");
    return upper(text.substr(open + 1, text.size() - open - 2));
}

TEST_F(Languages, ShortcutsInBracketsAreTheSameInEachLanguage) {
    const std::pair<const char *, const char16_t *> shortcuts[] = {
        {"Main.closeButton.toolTip", u"ESC"},
        {"Main.playButton.toolTip", u"F2"},
        {"Main.pauseButton.toolTip", u"F3"},
        {"Main.stopButton.toolTip", u"F4"},
        {"Main.upButton.toolTip", u"F5"},
        {"Main.nextButton.toolTip", u"F6"},
        {"Main.openFile_Button.toolTip", u"F7"},
        {"Main.playListButton.toolTip", u"F8"},
        {"Main.videoScreen_Button.toolTip", u"F11"},
        {"Main.CopyRight_ICO.toolTip", u"F12"},
        {"Main.playSet_Button.toolTip", u"CTRL+S"},
        {"miniForm.playButton.toolTip", u"F2"},
        {"miniForm.close.toolTip", u"ESC"},
        {"playList_Form.title.caption", u"F8"},
        {"MenuForm.play.caption", u"F2"},
        {"MenuForm.pause.caption", u"F3"},
        {"MenuForm.stop.caption", u"F4"},
        {"MenuForm.upSong.caption", u"F5"},
        {"MenuForm.nextSong.caption", u"F6"},
        {"MenuForm.playlist.caption", u"F8"},
        {"MenuForm.playSet.caption", u"CTRL+S"},
        {"MenuForm.about.caption", u"F12"},
        {"MenuForm.close.caption", u"ESC"},
        {"MenuForm.playlist_Play.caption", u"F2"},
        {"MenuForm.playlist_AddFile.caption", u"F7"},
        {"MenuForm.playlist_DelAll.caption", u"CTRL+A --> DEL"},
        {"MenuForm.playlist_DelSelect.caption", u"DEL"},
        {"MenuForm.hardDrive_DelAll.caption", u"CTRL+A --> SHIFT+DEL"},
        {"MenuForm.hardDrive_DelSelect.caption", u"SHIFT+DEL"},
        {"MenuForm.playlist_OpenFolder.caption", u"F9"},
        {"MenuForm.playlist_Send.caption", u"F10"},
        {"MenuForm.playlist_Hide.caption", u"F8"},
        {"playSetForm.abount.caption", u"F12"},
        {"VideoScreen_Form..caption", u"F11"},
        {"VideoScreen_Form.title.caption", u"F11"},
        {"VideoScreen_Form.fullScreen_Button.caption", u"ENTER/ESC"},
        {"VideoScreen_Form.fullScreen_Button.toolTip", u"ENTER/ESC"},
    };
    for (const std::int32_t language : {chinese, english, french, japanese}) {
        apply(language);
        const auto texts = allTexts();
        for (const auto &[key, shortcut] : shortcuts)
            EXPECT_EQ(keysOf(texts.at(key)), shortcut) << key << " in " << language;
    }
}

TEST_F(Languages, TheFilterHasTheSamePatternsInEachLanguage) {
    for (const std::int32_t language : {chinese, english, french, japanese}) {
        apply(language);
        const Texts parts = split(app.Language().msg_Media_Filter, u'\0');
        ASSERT_EQ(parts.size(), 6U) << language;
        EXPECT_EQ(
            parts[1],
            u"*.mp3;*.wma;*.wav;*.mid;*.midi;*.ogg;*.mpg;*.cd;*.flac;*.tta;*.aiff;*.au;*.ape");
        EXPECT_EQ(parts[3], u"*.rmvb;*.rm;*.avi;*.wmv;*.flv;*.mp4;*.dat");
        EXPECT_EQ(parts[5], u"*.*");
        for (const std::size_t i : {0U, 2U, 4U})
            EXPECT_TRUE(contains(parts[i], parts[i + 1])) << toUtf8(parts[i]);
    }
}

TEST_F(Languages, TheUpgradeQuestionEndsAtItsBracket) {
    for (const std::int32_t language : {chinese, english, french, japanese}) {
        apply(language);
        EXPECT_EQ(app.Language().msg_Upgrade_Ask.back(), u'【');
    }
}

TEST_F(Languages, MessagesHaveTheSameLineBreaksInEachLanguage) {
    const auto breaks = [](std::u16string_view text) { return split(text, u'\n').size() - 1; };
    apply(chinese);
    const auto inChinese = messages();
    for (const std::int32_t language : {english, french, japanese}) {
        apply(language);
        for (const auto &[name, text] : messages()) {
            EXPECT_EQ(breaks(text), breaks(inChinese.at(name))) << name << " in " << language;
            EXPECT_EQ(breaks(text), split(text, u'\r').size() - 1) << name;
        }
    }
}

TEST_F(Languages, LabelsThatStartALineEndSoThatAValueCanFollow) {
    for (const std::int32_t language : {chinese, english, french, japanese}) {
        apply(language);
        const velmora::Language &texts = app.Language();
        for (const std::u16string_view label :
             {texts.msg_Track_Name, texts.msg_Directory, texts.msg_File_Size, texts.msg_Created,
              texts.msg_Format, texts.msg_Output_Channels, texts.msg_Driver_Version,
              texts.msg_Product_Name, texts.msg_Driver_Id, texts.msg_Product_Id})
            EXPECT_TRUE(language == french ? label.ends_with(u"\u00A0: ") : label.back() == u'：')
                << toUtf8(label);
    }
}

TEST_F(Languages, FrenchPutsAnUnbreakableBlankAheadOfDoubleMarks) {
    apply(french);
    const auto check = [](const std::string &key, std::u16string_view text) {
        for (std::size_t i = 1; i < text.size(); ++i) {
            const bool isDouble = std::u16string_view(u"!?:").find(text[i]) != text.npos;
            EXPECT_TRUE(!isDouble || text[i - 1] == u'\u00A0') << key << " " << toUtf8(text);
        }
    };
    const auto texts = allTexts();
    for (const char *key : textKeys)
        check(key, texts.at(key));
    for (const auto &[name, text] : messages())
        check(name, text);
}

// --- the telling rows ------------------------------------------------------------------------

TEST_F(Languages, TheGivenControlTextsStandToTheLetter) {
    for (const GivenText &given : givenTexts) {
        apply(chinese);
        EXPECT_EQ(textOf(given.key), given.chinese) << given.key;
    }
    apply(english);
    const auto texts = allTexts();
    for (const GivenText &given : givenTexts)
        EXPECT_EQ(texts.at(given.key), given.english) << given.key;
}

TEST_F(Languages, TheGivenMessagesStandToTheLetter) {
    apply(chinese);
    const auto inChinese = messages();
    apply(english);
    const auto inEnglish = messages();
    for (const GivenText &given : givenMessages) {
        EXPECT_EQ(inChinese.at(given.key), given.chinese) << given.key;
        EXPECT_EQ(inEnglish.at(given.key), given.english) << given.key;
    }
}

TEST_F(Languages, TheFilterStandsToTheLetter) {
    apply(chinese);
    EXPECT_EQ(split(app.Language().msg_Media_Filter, u'\0')[4], u"所有文件（*.*）");
    EXPECT_TRUE(startsWith(app.Language().msg_Media_Filter, u"音频文件（*.mp3;*.wma;"));
    apply(english);
    EXPECT_EQ(split(app.Language().msg_Media_Filter, u'\0')[4], u"All Files（*.*）");
    EXPECT_EQ(split(app.Language().msg_Media_Filter, u'\0')[2],
              u"Video Files（*.rmvb;*.rm;*.avi;*.wmv;*.flv;*.mp4;*.dat）");
    const auto heads = [this](std::int32_t language) {
        apply(language);
        const Texts parts = split(app.Language().msg_Media_Filter, u'\0');
        Texts found;
        for (const std::size_t i : {0U, 2U, 4U})
            found.push_back(parts[i].substr(0, parts[i].find_first_of(u"（(")));
        return found;
    };
    EXPECT_EQ(heads(chinese), (Texts{u"音频文件", u"视频文件", u"所有文件"}));
    EXPECT_EQ(heads(english), (Texts{u"Audio Files", u"Video Files", u"All Files"}));
    EXPECT_EQ(heads(french),
              (Texts{u"Fichiers audio ", u"Fichiers vidéo ", u"Tous les fichiers "}));
    EXPECT_EQ(heads(japanese),
              (Texts{u"オーディオファイル", u"ビデオファイル", u"すべてのファイル"}));
}

TEST_F(Languages, TheLyricTextsStandToTheLetterInAllFour) {
    struct Row {
        const char16_t *miss;
        const char16_t *loading;
    };
    const Row rows[] = {{u"该曲目无对应的LRC格式歌词文件。", u"歌词加载中，请稍后..."},
                        {u"No track corresponding to lyrics!", u"Load lyrics, please later ..."},
                        {u"Pas de piste correspondant à lyrics!",
                         u"Paroles de charge, s'il vous pla?t plus tard ..."},
                        {u"いいえトラック歌詞に対応！", u"負荷歌詞、保存してください..."}};
    for (std::int32_t language = 0; language < 4; ++language) {
        apply(language);
        EXPECT_EQ(app.lrcForm().lrcMissText, rows[language].miss);
        EXPECT_EQ(app.lrcForm().lrcLoadingText, rows[language].loading);
        EXPECT_EQ(app.lrcForm().lrcWaitText, u"Music...");
    }
}

TEST_F(Languages, ATabAndTheFrameBesideItHaveTheSameWords) {
    for (const std::int32_t language : {chinese, english, french, japanese}) {
        apply(language);
        const playSetForm &form = app.playSetForm();
        EXPECT_EQ(form.playSet.caption(), form.playFrame.caption());
        EXPECT_EQ(form.lrcSet.caption(), form.lrc_Frame.caption());
        EXPECT_EQ(form.folderSet.caption(), form.folder_Frame.caption());
        EXPECT_EQ(form.languageSet.caption(), form.Language_Frame.caption());
        EXPECT_EQ(form.help.caption(), form.help_Frame.caption());
        EXPECT_EQ(form.Shortcuts.caption(), form.Shortcuts_Frame.caption());
    }
}

TEST_F(Languages, TheSameThingHasTheSameWordsEverywhere) {
    const std::vector<std::vector<const char *>> groups = {
        {"Main.closeButton.toolTip", "miniForm.close.toolTip", "playList_Form.close.toolTip",
         "listControl_Form.close.toolTip", "aboutForm.close.toolTip", "playSetForm.close.toolTip",
         "playInfo_Form.close.toolTip", "doLrcForm.close.toolTip",
         "another_PlayInfo_Form.close.toolTip", "VideoScreen_Form.close.toolTip",
         "MenuForm.close.caption"},
        {"Main.playButton.toolTip", "miniForm.playButton.toolTip", "MenuForm.play.caption",
         "MenuForm.playlist_Play.caption"},
        {"Main.playListButton.toolTip", "MenuForm.playlist.caption", "playList_Form.title.caption"},
        {"Main.videoScreen_Button.toolTip", "VideoScreen_Form.title.caption",
         "VideoScreen_Form..caption"},
        {"Main.CopyRight_ICO.toolTip", "MenuForm.about.caption", "playSetForm.abount.caption"},
        {"Main.do_Lrc.toolTip", "MenuForm.doLrc.caption", "doLrcForm.title.caption"},
        {"MenuForm.search_Lrc_To_Internet.caption", "search_Lrc_Internet_Form.title.caption"},
        {"Main.check_SoundDriver.toolTip", "MenuForm.check_SoundDriver.caption",
         "check_SoundDriver_Form.title.caption"},
        {"Main.playInfo.toolTip", "miniForm.playInfo.toolTip", "MenuForm.song_Info.caption",
         "playInfo_Form.title.caption"},
        {"Main..caption", "Main.title.caption", "aboutForm.title.caption",
         "playSetForm.desktop_Lrc_Preview.text", "playSetForm.other_Lrc_Preview.text"},
    };
    for (const std::int32_t language : {chinese, english, french, japanese}) {
        apply(language);
        const auto texts = allTexts();
        for (const auto &group : groups)
            for (const char *key : group)
                EXPECT_EQ(texts.at(key), texts.at(group.front())) << key << " in " << language;
    }
}

// --- application -----------------------------------------------------------------------------

TEST_F(Languages, AnIndexOutsideTheFourDoesNotEvenMakeAForm) {
    fakes::FakePlatform other;
    Velmora fresh(other.bundle());
    fresh.setControl().Language_Index = 4;
    Language_Set &work = fresh.Language_Set();
    work.language_Messages();
    work.language_Main();
    work.language_playSetForm();
    work.language_aboutForm();
    work.language_VideoScreen_Form();
    EXPECT_FALSE(fresh.videoScreenLoaded());
    work.language_doLrcForm();
    // The first form that is made has the first number.
    const platform::HWND first = fresh.doLrcForm().hWnd();
    EXPECT_EQ(other.windows.formOf(first - 1), nullptr);
}

TEST_F(Languages, FormsComeIntoBeingInTheOrderOfTheRoutines) {
    fakes::FakePlatform other;
    Velmora fresh(other.bundle());
    fresh.Language_Set().apply_Language();
    // The lyric's window is not among them: the mini strip has made it already.
    const std::vector<platform::HWND> numbers{fresh.Main().hWnd(),
                                              fresh.miniForm().hWnd(),
                                              fresh.playList_Form().hWnd(),
                                              fresh.listControl_Form().hWnd(),
                                              fresh.aboutForm().hWnd(),
                                              fresh.playSetForm().hWnd(),
                                              fresh.playInfo_Form().hWnd(),
                                              fresh.doLrcForm().hWnd(),
                                              fresh.MenuForm().hWnd(),
                                              fresh.check_SoundDriver_Form().hWnd(),
                                              fresh.search_Lrc_Internet_Form().hWnd(),
                                              fresh.another_PlayInfo_Form().hWnd(),
                                              fresh.VideoScreen_Form().hWnd()};
    EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
}

TEST_F(Languages, AnIndexOutsideTheFourChangesNothing) {
    apply(english);
    const auto before = allTexts();
    const std::u16string_view error = app.Language().msg_Error;
    for (const std::int32_t index : {4, 7, -1, 2'000'000'000, -2'000'000'000}) {
        apply(index);
        EXPECT_EQ(allTexts(), before) << index;
        EXPECT_EQ(app.Language().msg_Error, error);
        EXPECT_TRUE(app.playSetForm().helpShow_English.visible());
    }
}

TEST_F(Languages, OneHelpAndOneShortcutBoxIsVisible) {
    playSetForm &form = app.playSetForm();
    forms::TextBox *const help[] = {&form.helpShow_Chinese, &form.helpShow_English,
                                    &form.helpShow_French, &form.helpShow_Japanese};
    forms::TextBox *const shortcuts[] = {&form.Shortcuts_Show_Chinese, &form.Shortcuts_Show_English,
                                         &form.Shortcuts_Show_French,
                                         &form.Shortcuts_Show_Japanese};
    for (std::int32_t language = 0; language < 4; ++language) {
        apply(language);
        for (std::int32_t box = 0; box < 4; ++box) {
            EXPECT_EQ(help[box]->visible(), box == language);
            EXPECT_EQ(shortcuts[box]->visible(), box == language);
        }
    }
}

TEST_F(Languages, TheVersionIsComposedAsItIsNow) {
    app.Main().Vesion = u"2.7.1";
    apply(chinese);
    EXPECT_EQ(app.aboutForm().vesion.caption(), u"版本：2.7.1");
    app.Main().Vesion = u"3.0.0";
    apply(english);
    EXPECT_EQ(app.aboutForm().vesion.caption(), u"Version：3.0.0");
}

TEST_F(Languages, TheFactsOfThePlayingTrackFollowAtOnce) {
    addTrack(u"/m/a.mp3");
    app.player().nowPlay_File = u"/m/a.mp3";
    apply(english);
    EXPECT_EQ(app.playInfo_Form().playName.caption(), u"Track Name：a");
    apply(french);
    EXPECT_EQ(app.playInfo_Form().playName.caption(), u"Morceau\u00A0: a");
    apply(japanese);
    EXPECT_EQ(app.playInfo_Form().playName.caption(), u"曲名：a");
}

TEST_F(Languages, TheVideoWindowsTrackNameStandsBehindItsTitleInEachLanguage) {
    std::set<Twips> ends;
    for (const std::int32_t language : {chinese, english, french, japanese}) {
        apply(language);
        const VideoScreen_Form &video = app.VideoScreen_Form();
        ends.insert(video.title.left() + video.title.width());
        EXPECT_EQ(video.nameBox.left(), video.title.left() + video.title.width() + 200);
    }
    EXPECT_GT(ends.size(), 2U);
}

TEST_F(Languages, AHiddenDesktopLineTakesTheWordsForNoLyric) {
    app.lrcForm().lrc_Text.setVisible(false);
    app.lrcForm().nowLrcLine = u"la la";
    apply(english);
    EXPECT_EQ(app.lrcForm().nowLrcLine, u"No track corresponding to lyrics!");
}

TEST_F(Languages, AVisibleDesktopLineStays) {
    app.lrcForm().lrc_Text.setVisible(true);
    app.lrcForm().nowLrcLine = u"la la";
    apply(english);
    EXPECT_EQ(app.lrcForm().nowLrcLine, u"la la");
}

TEST_F(Languages, MessagesAreThereAfterTheirOwnRoutineAlone) {
    settings.Language_Index = english;
    app.Language_Set().language_Messages();
    EXPECT_EQ(app.Language().msg_Error, u"Error");
    EXPECT_NE(app.Main().closeButton.toolTip(), u"Exit(ESC)");
}

TEST_F(Languages, TheSettingsWindowAndTheProductKeepTheirYears) {
    apply(english);
    EXPECT_EQ(app.Main().title.caption(), u"Velmora 2011");
    EXPECT_EQ(app.Language().msg_AddMedia_Title, u"Add media files - Velmora  2010");
    for (const std::int32_t language : {chinese, french, japanese}) {
        apply(language);
        EXPECT_EQ(app.Main().title.caption(), u"Velmora 2011");
        EXPECT_TRUE(app.Language().msg_AddMedia_Title.ends_with(u"Velmora 2010"));
    }
}

} // namespace
} // namespace velmora
