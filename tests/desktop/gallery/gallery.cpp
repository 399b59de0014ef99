// velmora_gallery FOLDER [LANGUAGE]
//
// Shows every window through the real view on the display of the environment, filled as in use, and
// keeps a picture of each: FOLDER/<window>.png. The rest of the platform is the one in memory. The
// density is the toolkit's (QT_SCALE_FACTOR). The exit status is 1 when a window did not appear
// whole.

#include "base/text.h"
#include "lyrics/doLrcForm.h"
#include "lyrics/lrcForm.h"
#include "network/search_Lrc_Internet_Form.h"
#include "network/search_Song_Internet_Form.h"
#include "network/welcomeForm.h"
#include "platform/backends/qt/paint/picture_painter.h"
#include "platform/backends/qt/system/qt_windows.h"
#include "playback/Main.h"
#include "playback/VideoScreen_Form.h"
#include "playback/check_SoundDriver_Form.h"
#include "playback/miniForm.h"
#include "playback/startLoad_Form.h"
#include "playlist/another_PlayInfo_Form.h"
#include "playlist/listControl_Form.h"
#include "playlist/playInfo_Form.h"
#include "playlist/playList_Form.h"
#include "settings/Language.h"
#include "settings/Language_Set.h"
#include "settings/playSetForm.h"
#include "settings/setControl.h"
#include "settings/skinSet.h"
#include "tests/desktop/gallery/boxes.h"
#include "tests/fakes/fake_platform.h"
#include "tests/fakes/instead.h"
#include "ui/aboutForm.h"
#include "ui/zkProgress.h"
#include "velmora.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QWidget>

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <set>

using namespace velmora;

namespace {

constexpr auto lyricLine = u"灯火映在水面，轻轻摇晃";

class Gallery {
public:
    Gallery(platform::QtWindowSystem &windows, QString folder, std::int32_t language)
        : windows_(windows), folder_(std::move(folder)), app_(bundle()) {
        app_.skinSet().skin_All();
        app_.setControl().Language_Index = language;
        app_.Language_Set().apply_Language();
    }

    bool run() {
        fillMain();
        fillPlayList();
        fillLyrics();
        fillSearches();
        fillFacts();
        app_.miniForm().Timer1.setRunning(false);
        app_.miniForm().Timer1.onTimer = nullptr;
        app_.playInfo_Form().Timer1.onTimer = nullptr;
        app_.VideoScreen_Form().Timer1.onTimer = nullptr;
        app_.startLoad_Form().showText.setCaption(u"加载曲目列表...");
        app_.listControl_Form().title.setCaption(app_.Language().msg_Rename_Title);
        app_.listControl_Form().showText.setCaption(app_.Language().msg_Rename_Prompt);
        app_.listControl_Form().jieGuo.setText(u"Hello from the harbour");
        bool good = keepAll();
        good &= keepSettings();
        good &= keepBoxes(windows_, app_, folder_);
        return good;
    }

private:
    platform::Platform bundle() { return fakes::with(fake_.bundle(), {.windows = &windows_}); }

    void fillMain() {
        velmora::Main &main = app_.Main();
        main.playInfo_Show.setCaption(u"〖3/128〗 Stesul -- Hello from the harbour");
        main.lrc_Text.setCaption(lyricLine);
        for (forms::Label *label : {&main.playInfo_Show, &main.lrc_Text})
            label->setLeft(main.lrcBox.width() / 2 - label->width() / 2);
        main.play_Time.setCaption(u"00:01:32 - 00:03:41");
        main.load_Played.setWidth(main.load_Played_BG.width() * 0.41F);
        main.welcome.setVisible(true);
        velmora::miniForm &mini = app_.miniForm();
        mini.playInfo_Show.setCaption(u"〖3/128〗 Stesul -- Hello from the harbour");
        mini.lrc_Text.setCaption(lyricLine);
        for (forms::Label *label : {&mini.playInfo_Show, &mini.lrc_Text})
            label->setLeft(mini.lrcBox.width() / 2 - label->width() / 2);
        mini.play_Time.setCaption(u"00:01:32 - 00:03:41");
        mini.load_Played.setWidth(mini.load_Played_BG.width() * 0.41F);
        velmora::VideoScreen_Form &video = app_.VideoScreen_Form();
        video.play_Time.setCaption(u"00:01:32 - 00:03:41");
        video.nowTime.setCaption(u"2011-06-18 21:30:05");
        video.load_Played.setWidth(video.load_Played_BG.width() * 0.41F);
    }

    void fillPlayList() {
        velmora::playList_Form &list = app_.playList_Form();
        constexpr std::u16string_view rows[] = {u"01 灯火",
                                                u"Nocturne in blue",
                                                u"La chanson du port",
                                                u"Hello from the harbour",
                                                u"夜のうみ",
                                                u"Morning tram",
                                                u"雨后的街",
                                                u"Un été sans fin",
                                                u"Glass mountain (live)",
                                                u"春を待つ",
                                                u"Field recording 07",
                                                u"风筝",
                                                u"Last boat home",
                                                u"Les toits",
                                                u"Paper stars",
                                                u"远山",
                                                u"Interlude",
                                                u"Coda",
                                                u"尾声",
                                                u"Silence"};
        for (const std::u16string_view row : rows) {
            list.playList_Item.addItem(row);
            list.List1.addItem(std::u16string(u"/music/") + std::u16string(row) + u".mp3");
        }
        list.playList_Item.setSelected(3, true);
        showScrollBar(list.P1, list.P2, list.P3, list.P4);
    }

    static void showScrollBar(forms::Control &up, forms::Control &thumb, forms::Control &down,
                              forms::Control &track) {
        for (forms::Control *part : {&up, &thumb, &down, &track})
            part->setVisible(true);
    }

    void fillLyrics() {
        velmora::doLrcForm &editor = app_.doLrcForm();
        for (int i = 0; i < 9; ++i)
            editor.lrcList.addItem(fromUtf8("[00:" + std::to_string(10 + 4 * i) + ".20]") +
                                   lyricLine);
        editor.lrcList.setSelected(2, true);
        editor.lrc_Index_Text.setText(editor.lrcList.list(2));
        editor.lrc_Ti_Str.setText(u"灯火");
        editor.lrc_Ar_Str.setText(u"Stesul");
        velmora::lrcForm &line = app_.lrcForm();
        line.lrc_Text.setCaption(lyricLine);
    }

    void fillSearches() {
        velmora::search_Lrc_Internet_Form &lyric = app_.search_Lrc_Internet_Form();
        velmora::search_Song_Internet_Form &song = app_.search_Song_Internet_Form();
        for (int i = 1; i <= 6; ++i) {
            lyric.search_Lrc_List.addItem(fromUtf8("http://lyrics.example/lrcdown/2011/" +
                                                   std::to_string(4711 * i) + ".lrc"));
            song.search_Song_List.addItem(fromUtf8("HELLO FROM THE HARBOUR " + std::to_string(i)));
        }
        lyric.songName_Text.setText(u"Hello from the harbour");
        lyric.singer_Str.setText(u"Stesul");
        lyric.show_Label.setCaption(
            u"搜索到可提供下载的歌词：6条。\r\n双击歌词地址下载，并与播放曲目匹配！");
        song.songName_Text.setText(u"Hello from the harbour");
        song.singer_Str.setText(u"Stesul");
        song.show_Label.setCaption(
            u"曲名：HELLO FROM THE HARBOUR\r\n作者：STESUL\r\n专辑：未知\r\n大小：3,250,585"
            u"（以实际为主）  格式：MP3   下载速率：92%");
    }

    void fillFacts() {
        velmora::playInfo_Form &info = app_.playInfo_Form();
        info.playName.setCaption(std::u16string(app_.Language().msg_Track_Name) +
                                 u"Hello from the harbour");
        info.playPath.setCaption(std::u16string(app_.Language().msg_Directory) +
                                 u"/home/stesul/Music/Harbour");
        info.playFile_Size.setCaption(std::u16string(app_.Language().msg_File_Size) +
                                      u"5,250,585 bytes");
        info.playFile_DateCreated.setCaption(std::u16string(app_.Language().msg_Created) +
                                             u"2011-06-18 21:30:05");
        info.lrcInfo_Frame.setEnabled(true);
        info.anotherInfo_Button.setEnabled(true);
        info.lrc_Path_Str.setText(u"/home/stesul/Velmora/Lrc/Hello from the harbour.Lrc");
        info.lrc_Ti_Str.setText(u"Hello from the harbour");
        info.lrc_Ar_Str.setText(u"Stesul");
        info.lrc_Full.setText(u"灯火映在水面，轻轻摇晃\r\nLa chanson du port\r\n夜のうみ\r\n");
        info.lrc_Text.setCaption(lyricLine);
        info.lrc_Text.setLeft(info.lrc.width() / 2 - info.lrc_Text.width() / 2);
        velmora::another_PlayInfo_Form &tag = app_.another_PlayInfo_Form();
        tag.playInfo_TitleText.setText(u"Hello from the harbour");
        tag.playInfo_ArtistText.setText(u"Stesul");
        tag.playInfo_YearText.setText(u"2011");
        tag.playInfo_GenreText.setText(u"Chanson");
        velmora::welcomeForm &page = app_.welcomeForm();
        page.provider.setCaption(u"Norvane");
        page.Advertising.setCaption(u"Velmora是一款无需安装的绿色版播放器");
        page.tabButton_0.setCaption(u"新闻");
        page.tabButton_1.setCaption(u"音乐");
        page.tabButton_2.setCaption(u"软件");
        app_.check_SoundDriver_Form().checkResult_Text.setText(
            u"产品名称：Built-in Audio\r\n产品 Id：1\r\n驱动程序版本：16.1\r\n输出声道：2\r\n");
    }

    bool keepAll() {
        bool good = true;
        good &= keep(app_.startLoad_Form(), "startLoad_Form");
        good &= keep(app_.Main(), "Main");
        good &= keep(app_.miniForm(), "miniForm");
        good &= keep(app_.VideoScreen_Form(), "VideoScreen_Form");
        good &= keep(app_.check_SoundDriver_Form(), "check_SoundDriver_Form");
        good &= keep(app_.playList_Form(), "playList_Form");
        good &= keep(app_.listControl_Form(), "listControl_Form");
        good &= keep(app_.playInfo_Form(), "playInfo_Form");
        good &= keep(app_.another_PlayInfo_Form(), "another_PlayInfo_Form");
        good &= keep(app_.lrcForm(), "lrcForm");
        good &= keep(app_.doLrcForm(), "doLrcForm");
        good &= keep(app_.search_Lrc_Internet_Form(), "search_Lrc_Internet_Form");
        good &= keep(app_.search_Song_Internet_Form(), "search_Song_Internet_Form");
        good &= keep(app_.welcomeForm(), "welcomeForm");
        good &= keep(app_.aboutForm(), "aboutForm");
        app_.playList_Form().waitAdd_Title.setCaption(u"CopyFile To：/media/stick");
        app_.playList_Form().waitAdd_Show.setCaption(u"From：/music/Hello from the harbour.mp3");
        app_.playList_Form().waitAdd.setVisible(true);
        good &= keep(app_.playList_Form(), "playList_Form_waiting");
        app_.search_Song_Internet_Form().DownFileBox.setVisible(true);
        app_.search_Song_Internet_Form().zkProgress1.setValue(42);
        good &= keep(app_.search_Song_Internet_Form(), "search_Song_Internet_Form_loading");
        app_.doLrcForm().no_Lrc_Clew.setVisible(true);
        good &= keep(app_.doLrcForm(), "doLrcForm_empty");
        return good;
    }

    bool keepSettings() {
        velmora::playSetForm &settings = app_.playSetForm();
        settings.isAutoPlay.setValue(1);
        settings.Play_Order.setValue(true);
        settings.language_Load(app_.setControl().Language_Index);
        settings.save_Lrc_Path.setText(u"/home/stesul/Velmora/Lrc");
        forms::Frame *const pages[] = {&settings.playFrame,    &settings.lrc_Frame,
                                       &settings.folder_Frame, &settings.Language_Frame,
                                       &settings.help_Frame,   &settings.Shortcuts_Frame};
        bool good = true;
        for (const forms::Frame *shown : pages) {
            for (forms::Frame *page : pages)
                page->setVisible(page == shown);
            good &= keep(settings, std::string("playSetForm_") + shown->name());
        }
        return good;
    }

    bool keep(forms::Form &form, const std::string &name) {
        form.show();
        QWidget *widget = nullptr;
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < 10000) {
            windows_.DoEvents();
            widget = widgetOf(form);
            if (widget != nullptr && widget->isVisible() && clock.elapsed() > 120)
                break;
        }
        const QImage image = widget == nullptr ? QImage() : widget->grab().toImage();
        const bool good = isWhole(form, image) &&
                          image.save(folder_ + "/" + QString::fromStdString(name) + ".png");
        if (!good)
            std::cerr << name << " did not appear as it should\n";
        form.hide();
        return good;
    }

    // The picture has the window's size at its density, holes where the skin cuts them, and more on
    // it than a ground.
    static bool isWhole(const forms::Form &form, const QImage &image) {
        if (image.isNull())
            return false;
        const double density = image.devicePixelRatio();
        const auto expected = [&](Twips length) {
            return std::abs(density * static_cast<double>(length / twipsPerPixel));
        };
        if (std::abs(image.width() - expected(form.width())) > 1 ||
            std::abs(image.height() - expected(form.height())) > 1)
            return false;
        const bool cut =
            platform::qt::pictureIsKeyed(form.ground()) || form.backColor() == keyColour;
        const int right = image.width() - 1;
        const int bottom = image.height() - 1;
        for (const QPoint corner : {QPoint(0, bottom), QPoint(right, bottom)})
            if ((qAlpha(image.pixel(corner)) == 0) != cut)
                return false;
        std::set<QRgb> colours;
        for (int y = 0; y < image.height(); y += 3)
            for (int x = 0; x < image.width(); x += 3)
                colours.insert(image.pixel(x, y));
        constexpr std::size_t fewColours = 20;
        return colours.size() > fewColours;
    }

    static QWidget *widgetOf(const forms::Form &form) {
        for (QWidget *widget : QApplication::topLevelWidgets())
            if (widget->isVisible() &&
                widget->width() == static_cast<int>(form.width() / twipsPerPixel) &&
                widget->height() == static_cast<int>(form.height() / twipsPerPixel))
                return widget;
        return nullptr;
    }

    platform::QtWindowSystem &windows_;
    QString folder_;
    fakes::FakePlatform fake_;
    Velmora app_;
};

} // namespace

int main(int count, char **values) {
    if (count < 2) {
        std::cerr << "usage: velmora_gallery FOLDER [LANGUAGE]\n";
        return 2;
    }
    const auto windows = platform::QtWindowSystem::make({});
    if (windows == nullptr)
        return 1;
    Gallery gallery(*windows, QString::fromLocal8Bit(values[1]),
                    count > 2 ? std::atoi(values[2]) : 0);
    return gallery.run() ? 0 : 1;
}
