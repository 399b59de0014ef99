// The long texts of the settings window: the help, and the list of shortcuts.

#include "playback/MenuForm.h"
#include "tests/unit/settings/settings_fixture.h"

#include <algorithm>
#include <array>
#include <set>

namespace velmora {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

class LongTexts : public SettingsFixture {
protected:
    playSetForm &form = app.playSetForm();
    const std::array<forms::TextBox *, 4> help{&form.helpShow_Chinese, &form.helpShow_English,
                                               &form.helpShow_French, &form.helpShow_Japanese};
    const std::array<forms::TextBox *, 4> shortcuts{
        &form.Shortcuts_Show_Chinese, &form.Shortcuts_Show_English, &form.Shortcuts_Show_French,
        &form.Shortcuts_Show_Japanese};

    static Texts linesOf(const forms::TextBox &box) {
        Texts lines = split(box.text(), u'\n');
        for (std::u16string &line : lines)
            if (!line.empty() && line.back() == u'\r')
                line.pop_back();
        return lines;
    }

    // The heads between stars, in order, without them.
    static Texts headsOf(const forms::TextBox &box) {
        Texts heads;
        for (const std::u16string &line : linesOf(box))
            if (line.size() > 2 && line.front() == u'※' && line.back() == u'※')
                heads.push_back(line.substr(1, line.size() - 2));
        return heads;
    }

    // The keys at the beginnings of the lines, panel by panel, each panel closed by "-".
    static Texts keysOf(const forms::TextBox &box) {
        Texts keys;
        for (const std::u16string &line : linesOf(box))
            if (startsWith(line, u"    "))
                keys.push_back(line.substr(4, line.find_first_of(u":：\u00A0") - 4));
            else if (line.empty())
                keys.push_back(u"-");
        return keys;
    }
};

TEST_F(LongTexts, CanBeReadButNotChanged) {
    for (const auto &boxes : {help, shortcuts}) {
        for (const forms::TextBox *box : boxes) {
            EXPECT_TRUE(box->locked()) << box->name();
            EXPECT_TRUE(box->multiLine()) << box->name();
        }
    }
}

TEST_F(LongTexts, BreakTheirLinesInOneWayAndHoldNoPlaceholder) {
    for (const auto &boxes : {help, shortcuts}) {
        for (const forms::TextBox *box : boxes) {
            const std::u16string &text = box->text();
            for (std::size_t i = 0; i < text.size(); ++i)
                EXPECT_EQ(text[i] == u'\n', i > 0 && text[i - 1] == u'\r') << box->name();
            for (const char16_t *fault : {u"~", u"TODO", u"  \r", u"%1", u"\\"})
                EXPECT_FALSE(contains(text, fault)) << box->name() << " " << toUtf8(fault);
        }
    }
}

TEST_F(LongTexts, HoldNoLetterOfAnotherLanguage) {
    const auto holds = [](const forms::TextBox &box, char16_t first, char16_t last) {
        return std::ranges::any_of(box.text(),
                                   [=](char16_t unit) { return unit >= first && unit <= last; });
    };
    for (const auto &boxes : {help, shortcuts}) {
        for (const forms::TextBox *box : {boxes[1], boxes[2]}) {
            EXPECT_FALSE(holds(*box, 0x3041, 0x30FF)) << box->name();
            EXPECT_FALSE(holds(*box, 0x4E00, 0x9FFF)) << box->name();
        }
        EXPECT_FALSE(holds(*boxes[0], 0x3041, 0x30FA)) << boxes[0]->name();
        EXPECT_TRUE(holds(*boxes[0], 0x4E00, 0x9FFF)) << boxes[0]->name();
        EXPECT_TRUE(holds(*boxes[3], 0x3041, 0x309F)) << boxes[3]->name();
        for (const char16_t simplified :
             std::u16string_view(u"击设进动乐务关频词选择历测试图书说读写间门们"))
            EXPECT_EQ(boxes[3]->text().find(simplified), std::u16string::npos) << boxes[3]->name();
    }
}

// --- help ------------------------------------------------------------------------------------

TEST_F(LongTexts, OfHelpHaveTheSameSectionsInTheSameOrder) {
    EXPECT_THAT(headsOf(*help[0]),
                ElementsAre(u"播放选项", u"播放列表", u"歌词", u"目录", u"语言", u"快捷键"));
    EXPECT_THAT(headsOf(*help[1]), ElementsAre(u"Playback Options", u"Playlist", u"Lyrics",
                                               u"Contents", u"Language", u"shortcuts"));
    EXPECT_THAT(headsOf(*help[2]), ElementsAre(u"Options de lecture", u"Liste de lecture",
                                               u"Paroles", u"Dossiers", u"Langue", u"Raccourcis"));
    EXPECT_THAT(headsOf(*help[3]), ElementsAre(u"再生オプション", u"プレイリスト", u"歌詞",
                                               u"フォルダー", u"言語", u"ショートカット"));
}

TEST_F(LongTexts, OfHelpBeginWithAnIntroductionAndEndWithANote) {
    for (const forms::TextBox *box : help) {
        const Texts lines = linesOf(*box);
        EXPECT_TRUE(startsWith(lines.front(), u"Velmora")) << box->name();
        EXPECT_GT(lines.back().size(), 20U) << box->name();
    }
}

TEST_F(LongTexts, OfHelpHaveTheSameLinesInEachLanguage) {
    const auto shapeOf = [](const forms::TextBox &box) {
        std::string shape;
        for (const std::u16string &line : linesOf(box))
            shape += line.empty() ? '.' : line.front() == u'※' ? 'H' : 'x';
        return shape;
    };
    for (const forms::TextBox *box : help)
        EXPECT_EQ(shapeOf(*box), shapeOf(*help[0])) << box->name();
}

TEST_F(LongTexts, OfHelpSpeakOfAKoreanThatIsNotThere) {
    const char16_t *const korean[] = {u"韩文", u"Korean", u"coréen", u"韓国語"};
    for (std::size_t i = 0; i < help.size(); ++i)
        EXPECT_TRUE(contains(help[i]->text(), korean[i])) << help[i]->name();
}

TEST_F(LongTexts, OfHelpNameControlsByTheWordsThatStandOnThem) {
    for (std::int32_t language = 0; language < 4; ++language) {
        settings.Language_Index = language;
        app.Language_Set().apply_Language();
        const std::u16string &text = help[static_cast<std::size_t>(language)]->text();
        const auto names = [&](std::u16string_view words) {
            EXPECT_TRUE(contains(text, words)) << language << " " << toUtf8(words);
        };
        names(form.yy.caption());
        names(form.qd.caption());
        names(form.qx.caption());
        names(form.playSet_Resume.toolTip());
        names(form.Shortcuts.caption());
        names(app.Main().desktop_Lrc.toolTip());
        for (const zkButton *button : {&app.playList_Form().addFile, &app.playList_Form().addDir,
                                       &app.playList_Form().delIndx, &app.playList_Form().Alter,
                                       &app.playList_Form().Search})
            names(button->caption());
        // Of a menu entry the words ahead of its brackets and dots.
        for (const forms::Menu *entry :
             {&app.MenuForm().hardDrive_Del, &app.MenuForm().playlist_Send}) {
            const std::u16string &words = entry->caption();
            names(trim(words.substr(0, words.find_first_of(u"(（."))));
        }
    }
}

TEST_F(LongTexts, OfHelpWriteKeysAsTheCaptionsAndTheShortcutsDo) {
    for (const forms::TextBox *box : help) {
        for (const char16_t *key :
             {u"Enter", u"Esc", u"Ctrl", u"Shift", u"CTRL+A", u"CTRL+S", u"DEL", u"SHIFT+DEL"})
            EXPECT_TRUE(contains(box->text(), key)) << box->name() << " " << toUtf8(key);
        for (const char16_t *other : {u"Entrée", u"Échap", u"Maj ", u"Suppr ", u"回车"})
            EXPECT_FALSE(contains(box->text(), other)) << box->name() << " " << toUtf8(other);
    }
}

TEST_F(LongTexts, OfHelpNameOnlyKeysThatThereAre) {
    const std::set<std::u16string> keys{u"F2", u"F7", u"F9", u"F10"};
    for (const forms::TextBox *box : help) {
        const std::u16string &text = box->text();
        for (std::size_t i = 0; i + 1 < text.size(); ++i) {
            if (text[i] != u'F' || text[i + 1] < u'0' || text[i + 1] > u'9')
                continue;
            std::u16string key = text.substr(i, 2);
            if (i + 2 < text.size() && text[i + 2] >= u'0' && text[i + 2] <= u'9')
                key += text[i + 2];
            EXPECT_TRUE(keys.contains(key)) << box->name() << " " << toUtf8(key);
        }
    }
}

TEST_F(LongTexts, InFrenchHaveAnUnbreakableBlankAheadOfDoubleMarks) {
    for (const forms::TextBox *box : {help[2], shortcuts[2]}) {
        const std::u16string &text = box->text();
        for (std::size_t i = 1; i < text.size(); ++i)
            if (std::u16string_view(u"!?:;»").find(text[i]) != std::u16string_view::npos)
                EXPECT_EQ(text[i - 1], u'\u00A0') << toUtf8(text.substr(i > 20 ? i - 20 : 0, 24));
    }
}

// --- shortcuts -------------------------------------------------------------------------------

TEST_F(LongTexts, OfShortcutsHaveTheSameRowsInEachLanguage) {
    const Texts rows{u"ESC", u"F2",     u"F3",      u"F4",     u"F5",     u"F6",     u"F7",
                     u"F8",  u"F11",    u"F12",     u"CTRL+S", u"-",      u"F8",     u"F9",
                     u"F10", u"F11",    u"DEL",     u"ENTER",  u"CTRL+S", u"-",      u"F9",
                     u"F10", u"CTRL+S", u"SHIFT+S", u"CTRL+O", u"-",      u"CTRL+S", u"-"};
    for (const forms::TextBox *box : shortcuts)
        EXPECT_THAT(keysOf(*box), ElementsAreArray(rows)) << box->name();
}

TEST_F(LongTexts, OfShortcutsStandToTheLetterInChinese) {
    EXPECT_THAT(
        linesOf(*shortcuts[0]),
        ElementsAre(u"主面板", u"    ESC：退出", u"    F2：播放", u"    F3：暂停", u"    F4：停止",
                    u"    F5：上一曲", u"    F6：下一曲", u"    F7：打开文件",
                    u"    F8：显示播放列表", u"    F11：视频窗口", u"    F12：查看软件版权",
                    u"    CTRL+S：进入设置", u"", u"播放列表面板", u"    F8：显示播放列表",
                    u"    F9：打开文件目录", u"    F10：发送文件到指定地方", u"    F11：视频窗口",
                    u"    DEL：从列表中移除选中曲目", u"    ENTER：播放选中曲目",
                    u"    CTRL+S：进入设置", u"", u"歌词制作面板", u"    F9：插入时间标签",
                    u"    F10：删除时间标签", u"    CTRL+S：保存歌词", u"    SHIFT+S：另存为歌词",
                    u"    CTRL+O：打开歌词同步文件", u"", u"播放器设置面板",
                    u"    CTRL+S：保存设置并退出", u"", u"软件暂不支持自定义。"));
}

TEST_F(LongTexts, OfShortcutsStandToTheLetterInEnglish) {
    EXPECT_THAT(
        linesOf(*shortcuts[1]),
        ElementsAre(
            u"Main panel", u"    ESC: Exit", u"    F2: Play", u"    F3: Suspension",
            u"    F4: Stop", u"    F5: on a", u"    F6: under a", u"    F7: to open the file",
            u"    F8: Display Playlist", u"    F11: Video Window",
            u"    F12: View software copyright", u"    CTRL+S: to enter Setting", u"",
            u"Playlist panel", u"    F8: Display Playlist", u"    F9: to open the file directory",
            u"    F10: send files to the designated place", u"    F11: Video Window",
            u"    DEL: removed from the list, select the track", u"    ENTER: Play selected track",
            u"    CTRL+S: to enter Setting", u"", u"Making panel lyrics",
            u"    F9: insert the time stamp", u"    F10: remove the time stamp",
            u"    CTRL+S: to save lyrics", u"    SHIFT+S: Save As Lyrics",
            u"    CTRL+O: to open the file synchronized lyrics", u"", u"Player settings panel",
            u"    CTRL+S: to save the settings and exit", u"", u"Software not support custom."));
}

TEST_F(LongTexts, OfShortcutsNameTheSameKeysTwiceByTheSameWords) {
    const auto wordsOf = [&](const forms::TextBox &box, std::u16string_view key) {
        std::set<std::u16string> words;
        for (const std::u16string &line : linesOf(box))
            if (startsWith(line, u"    " + std::u16string(key)))
                words.insert(line);
        return words.size();
    };
    for (const forms::TextBox *box : shortcuts) {
        EXPECT_EQ(wordsOf(*box, u"F8"), 1U) << box->name();
        EXPECT_EQ(wordsOf(*box, u"F11"), 1U) << box->name();
    }
}

} // namespace
} // namespace velmora
