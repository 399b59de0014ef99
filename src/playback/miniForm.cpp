#include "playback/miniForm.h"

#include "base/run_time_error.h"
#include "lyrics/lrcForm.h"
#include "platform/contracts/windows.h"
#include "playback/Main.h"
#include "playback/MenuForm.h"
#include "playback/bars.h"
#include "playback/display.h"
#include "playback/list_button.h"
#include "playback/startLoad_Form.h"
#include "playlist/playList_Form.h"
#include "playlist/saveOrOpenFile.h"
#include "ui/formSet.h"
#include "ui/marquee.h"
#include "ui/zkMySleep.h"
#include "velmora.h"

namespace velmora {

namespace {

constexpr Twips nearTheEdge = 10; // a strip whose top lies beyond has been dragged away
constexpr Twips slideStep = 100;

} // namespace

miniForm::miniForm(Velmora &app) : miniForm_Design(app.platform().windows), app_(app) {}

void miniForm::load() {
    passOver([this] { app_.formSet().set_ColourKey(*this); });
    passOver([this] { app_.formSet().keep_Topmost(); });
    setClickHandlers();
    setBarHandlers();
    setStripHandlers();
    Timer1.onTimer = [this] { tick(); };
    // The strip stands in for the main window: a wish to close it ends the program.
    on().QueryUnload = [this](bool &cancel) {
        cancel = true;
        app_.startLoad_Form().unload();
    };
}

void miniForm::setClickHandlers() {
    wire(*this);
    pauseButton.on().Click = [this] { app_.player().pause_Sub(); };
    nextButton.on().Click = [this] { app_.Main().nextButton_Click(); };
    upButton.on().Click = [this] { app_.Main().upButton_Click(); };
    desktop_Lrc.on().Click = [this] { app_.Main().desktop_Lrc_Click(); };
    playInfo.on().Click = [this] { app_.Main().playInfo_Click(); };
    close.on().Click = [this] { app_.startLoad_Form().unload(); };
    auto_Hide_Lock_False.on().Click = [this] { lock(true); };
    auto_Hide_Lock_True.on().Click = [this] { lock(false); };
}

void miniForm::setBarHandlers() {
    load_Played_BG.on().MouseUp = [this](const forms::MouseEvent &event) {
        seekByRelease(app_, {PlayerWindow::miniForm, *this, load_Played_BG, playInfo_Show, nameBox},
                      event.x);
    };
    Volume_Set_BG.on().MouseUp = [this](const forms::MouseEvent &event) {
        setVolumeByRelease(app_, PlayerWindow::miniForm, event.x);
    };
    Volume_ICO.on().Click = [this] { mute(app_); };
}

// The strip itself, its icon and its two lines drag it, and lead back by a double click.
void miniForm::setStripHandlers() {
    forms::ControlEvents *const areas[] = {&on(),         &title_ICO.on(), &lrcBox.on(),
                                           &nameBox.on(), &lrc_Text.on(),  &playInfo_Show.on()};
    for (forms::ControlEvents *area : areas) {
        app_.formSet().make_Draggable(*this, *area);
        area->MouseUp = [this](const forms::MouseEvent &event) { mouseUp(event); };
        area->DblClick = [this] { mini_Button_Click(); };
    }
}

void miniForm::mouseUp(const forms::MouseEvent &event) {
    if (event.button == forms::rightButton && playButton.enabled())
        app_.MenuForm().open_Menu(*this);
}

// --- buttons -------------------------------------------------------------------------------------

void miniForm::playButton_Click() {
    velmora::player &player = app_.player();
    if (!app_.lrcForm().Timer1.running() && app_.saveOrOpenFile().fileExists(player.nowPlay_File))
        player.open_File(player.nowPlay_File);
    player.play_Sub();
}

void miniForm::stopButton_Click() { app_.Main().closeAndStop(); }

void miniForm::lock(bool closed) {
    auto_Hide = closed ? 0 : -1;
    auto_Hide_Lock_True.setVisible(closed);
    auto_Hide_Lock_False.setVisible(!closed);
}

void miniForm::mini_Button_Click() {
    hide();
    app_.Main().show();
    if (app_.Main().playList_Shown != 0) {
        app_.playList_Form().show();
        app_.formSet().dock_PlayList(true);
        markListShown(app_.Main(), true);
    }
}

// --- the tick ------------------------------------------------------------------------------------

StateControls miniForm::stateControls() {
    return {PlayerWindow::miniForm, playButton, pauseButton, play_Time,
            playInfo_Show,          nameBox,    load_Played};
}

void miniForm::show_Stopped() { showStopped(app_, stateControls(), lrc_Text); }

void miniForm::tick() {
    const Twips topBefore = top();
    passOver([this] {
        if (auto_Hide != 0 && top() <= nearTheEdge)
            hideByPointer();
    });
    passOver([this] {
        if (app_.player().get_Length() != 0)
            showLyricLine(app_, lrc_Text, lrcBox.width(), shownLine_);
    });
    passOver([this] { showState(app_, stateControls()); });
    if (!app_.player().wasOpen() && top() == topBefore && !mindsPointer())
        Timer1.rest();
}

// A strip that is not up comes up at the edge, wherever the pointer had it slide unseen.
bool miniForm::mindsPointer() const { return auto_Hide != 0 && visible() && top() <= nearTheEdge; }

void miniForm::hideByPointer() {
    PointPixels pointer;
    if (!app_.platform().windows.GetCursorPos(pointer))
        return;
    const auto x = static_cast<Twips>(pointer.x);
    const Twips leftEdge = left() / twipsPerPixel;
    const bool besides = x < leftEdge || x > leftEdge + width() / twipsPerPixel;
    const bool below = height() / twipsPerPixel < static_cast<Twips>(pointer.y);
    if (below || besides)
        slide_Mini(true);
    if (pointer.y == 0 && !besides)
        slide_Mini(false);
}

// Out of sight goes by one step a tick, so that the pointer may come back meanwhile; back goes at
// once, by as many steps as it takes.
void miniForm::slide_Mini(bool hide) {
    zkMySleep sleep(app_);
    if (hide) {
        if (top() > -height()) {
            setTop(top() - slideStep);
            sleep.Wait(app_.formSet().wait_Ms);
        }
        return;
    }
    while (top() < 0) {
        setTop(top() + slideStep);
        sleep.Wait(app_.formSet().wait_Ms);
    }
    if (top() > 0)
        setTop(0);
}

} // namespace velmora
