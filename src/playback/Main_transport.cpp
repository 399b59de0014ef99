// The transport of the main window, its bars and its channel images.

#include "playback/Main.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "lyrics/lrcForm.h"
#include "platform/contracts/windows.h"
#include "playback/VideoScreen_Form.h"
#include "playback/bars.h"
#include "playback/display.h"
#include "playback/miniForm.h"
#include "playback/player.h"
#include "playlist/Search.h"
#include "playlist/playList_Form.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/Language.h"
#include "settings/setControl.h"
#include "ui/myCommondialog.h"
#include "velmora.h"

#include <optional>

namespace velmora {

namespace {

constexpr std::int16_t playRandom = 1;

} // namespace

// --- transport -----------------------------------------------------------------------------------

void Main::playButton_Click() {
    velmora::player &player = app_.player();
    const bool inUse = app_.lrcForm().Timer1.running();
    if (!inUse && app_.saveOrOpenFile().fileExists(player.nowPlay_File)) {
        stopButton_Click();
        player.open_File(player.nowPlay_File);
    }
    player.play_Sub();
}

void Main::pauseButton_Click() { app_.player().pause_Sub(); }

void Main::stopButton_Click() {
    stop_Sub();
    app_.player().close_Sub(0);
}

void Main::closeAndStop() {
    app_.player().close_Sub(0);
    stop_Sub();
}

void Main::nextButton_Click() {
    app_.player().next_Sub(app_.setControl().PlayMode == playRandom ? directionRandom
                                                                    : directionNext);
}

void Main::upButton_Click() {
    app_.player().next_Sub(app_.setControl().PlayMode == playRandom ? directionRandom
                                                                    : directionPrevious);
}

void Main::openFile_Button_Click() {
    app_.playList_Form().setEnabled(false);
    setEnabled(false);
    take_Chosen_File(app_.myCommondialog().file_Dialog(hWnd(), dialogOpen,
                                                       app_.Language().msg_AddMedia_Title, u"",
                                                       app_.Language().msg_Media_Filter, u"", u""));
}

void Main::take_Chosen_File(const std::u16string &path) {
    chosen_File = path;
    std::optional<RunTimeError> failure;
    if (!path.empty()) {
        try {
            takeChosenFile(path);
        } catch (const RunTimeError &error) {
            failure = error;
        }
    }
    app_.playList_Form().setEnabled(true);
    setEnabled(true);
    chosen_File.clear();
    if (failure && failure->number() == ErrorNumber::Overflow) {
        app_.platform().windows.MsgBox(failure->description(), platform::MsgBoxButtons::Ok,
                                       platform::MsgBoxIcon::Critical, title.caption());
    }
}

// Events run in here, so the file is the one that was handed over, whatever is chosen meanwhile.
void Main::takeChosenFile(const std::u16string &path) {
    velmora::player &player = app_.player();
    forms::ListBox &names = app_.playList_Form().playList_Item;
    const std::u16string stem = player.getFileStem(path);
    if (app_.Search().isInPlayList(path)) {
        if (!stem.empty())
            selectNamesakes(stem);
        return;
    }
    // A full list takes nothing more, and the music goes on.
    if (!stem.empty() && names.listCount() == forms::ListBox::mostRows)
        velmora::raise(ErrorNumber::Overflow);
    if (player.get_PlayStatus() == statusPlaying)
        player.close_Sub(0);
    if (!stem.empty()) {
        names.addItem(stem);
        app_.playList_Form().List1.addItem(path);
        player.countAddedRow();
        player.open_File(path);
        player.play_Sub();
    } else {
        app_.platform().windows.MsgBox(app_.Language().msg_Bad_Path, platform::MsgBoxButtons::Ok,
                                       platform::MsgBoxIcon::Critical, app_.Language().msg_Error);
    }
    if (player.get_Length() == 0)
        stop_Sub();
    app_.saveOrOpenFile().savePlayList();
}

void Main::selectNamesakes(const std::u16string &stem) {
    forms::ListBox &names = app_.playList_Form().playList_Item;
    for (std::int32_t row = 0; row < names.listCount(); ++row)
        names.setSelected(row, false);
    for (std::int32_t row = 0; row < names.listCount(); ++row) {
        if (names.list(row) == stem) {
            names.setSelected(row, true);
            names.ensureVisible(row);
        }
    }
}

void Main::stop_Sub() {
    setCaption(title.caption());
    showStopped(app_, stateControls(), lrc_Text);
    app_.miniForm().show_Stopped();
    app_.lrcForm().nowLrcLine.clear();
    app_.lrcForm().lrc_Text.setCaption(u"");
}

// --- bars and channel ----------------------------------------------------------------------------

void Main::setBarHandlers() {
    load_Played_BG.on().MouseUp = [this](const forms::MouseEvent &event) {
        load_Played_BG_MouseUp(event.x);
    };
    Volume_Set_BG.on().MouseUp = [this](const forms::MouseEvent &event) {
        Volume_Set_BG_MouseUp(event.x);
    };
    AudioSource_H.on().Click = [this] { choose_Channel(1); };
    AudioSource_L.on().Click = [this] { choose_Channel(2); };
    AudioSource_R.on().Click = [this] { choose_Channel(0); };
}

void Main::load_Played_BG_MouseUp(Twips x) {
    seekByRelease(app_, {PlayerWindow::Main, *this, load_Played_BG, playInfo_Show, nameBox}, x);
}

void Main::seek_To_Position(std::int32_t ms) {
    seekToTime(app_, {PlayerWindow::Main, *this, load_Played_BG, playInfo_Show, nameBox}, ms);
}

void Main::Volume_Set_BG_MouseUp(Twips x) { setVolumeByRelease(app_, PlayerWindow::Main, x); }

void Main::Volume_ICO_Click() { mute(app_); }

void Main::choose_Channel(std::int16_t channel) {
    if (app_.player().set_AudioSource(channel) == 0)
        return;
    AudioSource_H.setVisible(channel == 0);
    AudioSource_L.setVisible(channel == 1);
    AudioSource_R.setVisible(channel == 2);
    velmora::VideoScreen_Form &video = app_.VideoScreen_Form();
    video.AudioSource_H.setVisible(channel == 0);
    video.AudioSource_L.setVisible(channel == 1);
    video.AudioSource_R.setVisible(channel == 2);
}

} // namespace velmora
