// The window around the list: playing a row, tool tips, the scroll bar, dragging, drops.

#include "base/numbers.h"
#include "base/text.h"
#include "platform/contracts/windows.h"
#include "playback/Main.h"
#include "playback/MenuForm.h"
#include "playback/player.h"
#include "playlist/list_work.h"
#include "playlist/playList_Form.h"
#include "ui/formSet.h"
#include "ui/scrollBar.h"
#include "velmora.h"

#include <utility>

namespace velmora {

void playList_Form::playThis() { playRow(playList_Item.listIndex()); }

void playList_Form::playThis(const ListChoice &chosen) {
    const std::int16_t row = List1.find(chosen.current);
    if (row >= 0 || chosen.current.empty())
        playRow(row);
}

void playList_Form::playRow(std::int16_t row) {
    app_.player().nowPlay_Index = addInt16(row, 1);
    app_.player().close_Sub(0);
    app_.player().open_File(List1.list(row));
    app_.player().play_Sub();
}

std::int32_t playList_Form::rowAtPoint(Twips /*x*/, Twips y) const {
    const std::int32_t height = roundToInt32(playList_Item.rowHeight());
    if (height == 0)
        velmora::raise(ErrorNumber::DivisionByZero);
    const std::int32_t row = playList_Item.topIndex() + roundToInt32(y) / height;
    return row < playList_Item.listCount() ? row : 0;
}

void playList_Form::setHandlers() {
    struct Button {
        forms::Control &control;
        void (playList_Form::*work)();
    };
    const Button buttons[] = {
        {addFile, &playList_Form::addFile_Click},
        {addDir, &playList_Form::addDir_Click},
        {delIndx, &playList_Form::delIndx_Click},
        {delAll, &playList_Form::delAll_Click},
        {Alter, &playList_Form::Alter_Click},
        {Search, &playList_Form::Search_Click},
        {afresh_Load, &playList_Form::afresh_Load_Click},
    };
    for (const Button &button : buttons) {
        button.control.on().Click = [this, work = button.work] {
            if (!ListWork::isGoingOn(app_))
                (this->*work)();
        };
    }
    wire(*this);
    forms::ControlEvents &list = playList_Item.on();
    list.DblClick = [this] { playThis(); };
    list.KeyDown = [this](forms::KeyEvent &event) {
        app_.formSet().form_KeyDown(event.keyCode, event.shift, u"playlist_Form");
    };
    list.MouseMove = [this](const forms::MouseEvent &event) {
        playList_Item.setToolTip(List1.list(rowAtPoint(event.x, event.y)));
    };
    list.OLEDragDrop = [this](const forms::FilesDropped &drop) {
        filesDropped(drop.files, drop.y);
    };
    on().QueryUnload = [this](bool &cancel) {
        cancel = true;
        close_Click();
    };
    setMenuHandlers();
    setScrollHandlers();
    setDragHandlers();
}

// What the menu is for is what the press of the right button pointed at.
void playList_Form::setMenuHandlers() {
    forms::ControlEvents &list = playList_Item.on();
    list.MouseDown = [this](const forms::MouseEvent &event) {
        if (event.button == forms::rightButton)
            pointed_ = choice();
    };
    list.Click = [this] {
        if (pointed_) {
            pointed_ = choice(); // the press has chosen another row
        }
    };
    list.MouseUp = [this](const forms::MouseEvent &event) {
        if (event.button == forms::rightButton) {
            openMenu();
        }
    };
}

void playList_Form::openMenu() {
    if (playList_Item.enabled() && !ListWork::isGoingOn(app_)) {
        if (!pointed_)
            pointed_ = choice();
        app_.platform().windows.PopupMenu(*this, app_.MenuForm().playlist_Menu);
    }
    pointed_.reset();
}

ListChoice playList_Form::choice() const {
    return {chosenPaths(false), List1.list(playList_Item.listIndex())};
}

ListChoice playList_Form::takeMenuChoice() {
    const auto pointed = std::exchange(pointed_, std::nullopt);
    return pointed ? *pointed : choice();
}

void playList_Form::setScrollHandlers() {
    attachScrollBar(
        {P1, P2, P3, P4, playList_Item}, app_.formSet(), [this] { return visibleRows; });
}

// The list and the main window move as one. The menu opens on the form alone, not on its title.
void playList_Form::setDragHandlers() {
    forms::ControlEvents *const areas[] = {&on(), &title.on(), &title_ICO.on()};
    for (forms::ControlEvents *area : areas) {
        area->MouseDown = [this](const forms::MouseEvent &event) {
            if (event.button != forms::leftButton)
                return;
            app_.formSet().start_Drag(*this, event);
            app_.formSet().set_Topmost(hWnd(), true);
            app_.formSet().set_Topmost(app_.Main().hWnd(), true);
        };
        area->MouseMove = [this](const forms::MouseEvent &event) {
            if ((event.button & forms::leftButton) == 0) {
                return;
            }
            const PointTwips offset = app_.formSet().drag_Offset(*this, event);
            velmora::Main &main = app_.Main();
            move({left() + offset.x, top() + offset.y, width(), height()});
            main.move({main.left() + offset.x, main.top() + offset.y, main.width(), main.height()});
        };
        area->MouseUp = [this, isForm = area == &on()](const forms::MouseEvent &event) {
            endDrag(event);
            if (isForm && event.button == forms::rightButton) {
                openMenu();
            }
        };
    }
    on().PressLost = [this] {
        if (topmost())
            endDrag({forms::leftButton});
    };
}

void playList_Form::endDrag(const forms::MouseEvent &event) {
    if (event.button == forms::leftButton)
        app_.formSet().settle_Pair(*this, app_.Main());
    app_.formSet().set_Topmost(hWnd(), false);
    app_.formSet().set_Topmost(app_.Main().hWnd(), false);
    app_.formSet().keep_Topmost();
}

} // namespace velmora
