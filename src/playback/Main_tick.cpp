// The two ticks of the main window, and dragging it with the play list.

#include "playback/Main.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "lyrics/doLrcForm.h"
#include "network/search_Lrc_Internet_Form.h"
#include "network/search_Song_Internet_Form.h"
#include "platform/contracts/windows.h"
#include "playback/MenuForm.h"
#include "playback/display.h"
#include "playback/player.h"
#include "playback/remoteControl.h"
#include "playlist/playList_Form.h"
#include "ui/formSet.h"
#include "ui/marquee.h"
#include "velmora.h"

namespace velmora {

namespace {

// Shows the scroll bar of a list window while it has more rows than fit (`fits`), and keeps the
// thumb at the list's place, counted with `capacity`, unless the user holds it.
template <typename Window> void keepScrollBar(Window &window, const forms::ListBox &list,
                                              std::int16_t fits, std::int16_t capacity) {
    const bool needed = list.listCount() > fits;
    window.P1.setVisible(needed);
    window.P2.setVisible(needed);
    window.P3.setVisible(needed);
    window.P4.setVisible(needed);
    if (!needed || window.P2.tag() == u"1")
        return;
    const std::int32_t beyond = list.listCount() - capacity;
    if (beyond == 0)
        raise(ErrorNumber::DivisionByZero);
    const double share = static_cast<double>(list.topIndex()) / beyond;
    window.P2.setTop(static_cast<Twips>(share * (window.P4.height() - window.P2.height())));
}

} // namespace

StateControls Main::stateControls() {
    return {PlayerWindow::Main, playButton, pauseButton, play_Time,
            playInfo_Show,      nameBox,    load_Played};
}

// Every failure is passed over; what follows it runs.
void Main::tick() {
    std::int32_t length = 0;
    passOver([&] {
        length = app_.player().get_Length();
        if (length == 0)
            stop_Sub();
        else
            showLyricLine(app_, lrc_Text, lrcBox.width(), shownLine_);
    });
    passOver([this] { showState(app_, stateControls()); });
    keepScrollBars();
    passOver([&] { app_.remoteControl().tick(length); });
    if (!app_.player().wasOpen())
        Timer1.rest();
}

void Main::keepScrollBars() {
    velmora::playList_Form &list = app_.playList_Form();
    passOver([&] {
        if (list.visible())
            keepScrollBar(list, list.playList_Item, list.visibleRows, list.visibleRows);
    });
    passOver([&] {
        velmora::doLrcForm &editor = app_.doLrcForm();
        if (editor.visible()) {
            keepScrollBar(editor, editor.lrcList, list.visibleRows, list.visibleRows);
        }
    });
    // The one place that writes it, so it may lag the window by a tick.
    passOver([&] { app_.player().isDoLrc_Open = app_.doLrcForm().visible() ? -1 : 0; });
    velmora::search_Lrc_Internet_Form &lyrics = app_.search_Lrc_Internet_Form();
    passOver([&] {
        if (lyrics.visible())
            keepScrollBar(lyrics, lyrics.search_Lrc_List, lyrics.visibleRows, lyrics.visibleRows);
    });
    passOver([&] {
        velmora::search_Song_Internet_Form &songs = app_.search_Song_Internet_Form();
        if (songs.visible()) {
            keepScrollBar(songs, songs.search_Song_List, lyrics.visibleRows, songs.visibleRows);
        }
    });
}

// Rolls the caption in the task bar, one character a tick.
void Main::rollCaption() {
    if (app_.player().get_Length() == 0) {
        Timer2.rest();
        return;
    }
    const std::u16string whole = u" " + title.caption() + u" - " + app_.player().nowPlay_Title;
    passOver([&] {
        rotation_Count = whole.size() < static_cast<std::size_t>(rotation_Count)
                             ? std::int16_t{1}
                             : addInt16(rotation_Count, 1);
    });
    const auto cut = static_cast<std::size_t>(rotation_Count);
    rotation_Text = (cut < whole.size() ? whole.substr(cut) : std::u16string()) + u"  -  " + whole;
    setCaption(rotation_Text);
    app_.platform().windows.setAppTitle(rotation_Text);
}

// --- dragging ------------------------------------------------------------------------------------

void Main::setDragHandlers() {
    forms::ControlEvents *const areas[] = {&on(), &title.on(), &title_ICO.on()};
    for (forms::ControlEvents *area : areas) {
        area->MouseDown = [this](const forms::MouseEvent &event) { startDrag(event); };
        area->MouseMove = [this](const forms::MouseEvent &event) { dragMove(event); };
        area->MouseUp = [this](const forms::MouseEvent &event) { endDrag(event); };
    }
    on().PressLost = [this] {
        if (topmost())
            endDrag({forms::leftButton});
    };
    on().DblClick = [this] {
        if (playButton.enabled())
            mini_Button_Click();
    };
    title.on().DblClick = [this] { mini_Button_Click(); };
    title_ICO.on().DblClick = [this] { mini_Button_Click(); };
}

void Main::startDrag(const forms::MouseEvent &event) {
    if (event.button != forms::leftButton)
        return;
    app_.formSet().start_Drag(*this, event);
    topmost_Main = app_.formSet().set_Topmost(hWnd(), true);
    topmost_PlayList = app_.formSet().set_Topmost(app_.playList_Form().hWnd(), true);
}

void Main::dragMove(const forms::MouseEvent &event) {
    if ((event.button & forms::leftButton) == 0)
        return;
    const PointTwips offset = app_.formSet().drag_Offset(*this, event);
    velmora::playList_Form &list = app_.playList_Form();
    move({left() + offset.x, top() + offset.y, width(), height()});
    list.move({list.left() + offset.x, list.top() + offset.y, list.width(), list.height()});
}

void Main::endDrag(const forms::MouseEvent &event) {
    if (event.button == forms::leftButton)
        app_.formSet().settle_Pair(*this, app_.playList_Form());
    topmost_Main = app_.formSet().set_Topmost(hWnd(), false);
    topmost_PlayList = app_.formSet().set_Topmost(app_.playList_Form().hWnd(), false);
    app_.formSet().keep_Topmost();
    if (event.button == forms::rightButton)
        app_.MenuForm().open_Menu(*this);
}

} // namespace velmora
