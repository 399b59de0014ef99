#include "ui/formSet.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "base/text.h"
#include "lyrics/lrcForm.h"
#include "playback/Main.h"
#include "playback/MenuForm.h"
#include "playback/VideoScreen_Form.h"
#include "playback/miniForm.h"
#include "playback/startLoad_Form.h"
#include "playlist/list_work.h"
#include "playlist/playList_Form.h"
#include "settings/playSetForm.h"
#include "settings/setControl.h"
#include "velmora.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace velmora {

namespace {

constexpr std::uint32_t trayMessage = 2025;
constexpr std::int32_t leftButtonUp = 0x202;
constexpr std::int32_t rightButtonUp = 0x205;
constexpr std::size_t tipLength = 64;
constexpr Twips titleRow = 350; // of every window, the same
constexpr Twips handsWidth = 120 * twipsPerPixel;

std::u16string_view cutTip(std::u16string_view text) {
    if (text.size() <= tipLength)
        return text;
    const char16_t last = text[tipLength - 1];
    const bool insidePair = last >= 0xD800 && last <= 0xDBFF;
    return text.substr(0, insidePair ? tipLength - 1 : tipLength);
}

} // namespace

formSet::formSet(Velmora &app) : app_(app) {}

// --- shape and order -------------------------------------------------------------------------

void formSet::set_ColourKey(forms::Form &form) {
    platform::WindowSystem &windows = app_.platform().windows;
    const std::int32_t style = windows.GetWindowLongA(form.hWnd(), platform::GWL_EXSTYLE);
    windows.SetWindowLongA(form.hWnd(), platform::GWL_EXSTYLE, style | platform::WS_EX_LAYERED);
    windows.SetLayeredWindowAttributes(form.hWnd(), keyColour, 0, platform::LWA_COLORKEY);
}

std::int32_t formSet::set_Topmost(platform::HWND window, bool flag) {
    return app_.platform().windows.SetWindowPos(
        window, flag ? platform::HWND_TOPMOST : platform::HWND_NOTOPMOST, 0, 0, 0, 0,
        platform::SWP_NOSIZE | platform::SWP_NOMOVE);
}

void formSet::keep_Topmost() {
    set_Topmost(app_.miniForm().hWnd(), true);
    set_Topmost(app_.lrcForm().hWnd(), true);
}

void formSet::screens_Changed() {
    passOver([this] { app_.lrcForm().position(); });
    if (app_.videoScreenLoaded())
        app_.VideoScreen_Form().screen_Changed();
}

// --- dragging --------------------------------------------------------------------------------

PointTwips formSet::pointer_On(const forms::Form &form, const forms::MouseEvent &event) {
    PointPixels pointer;
    if (!app_.platform().windows.GetCursorPos(pointer))
        return {event.x, event.y};
    return {static_cast<Twips>(pointer.x) * twipsPerPixel - form.left(),
            static_cast<Twips>(pointer.y) * twipsPerPixel - form.top()};
}

void formSet::start_Drag(const forms::Form &form, const forms::MouseEvent &event) {
    if (event.button != forms::leftButton)
        return;
    const PointTwips at = pointer_On(form, event);
    const PointTwips held = held_Off(form);
    drag_X = roundToInt32(at.x - held.x);
    drag_Y = roundToInt32(at.y - held.y);
}

// Less than a pixel is rounding.
PointTwips formSet::held_Off(const forms::Form &form) {
    RectPixels seen;
    if (!app_.platform().windows.GetWindowRect(form.hWnd(), seen))
        return {0, 0};
    const auto beyondRounding = [](Twips off) { return std::abs(off) < twipsPerPixel ? 0 : off; };
    return {beyondRounding(static_cast<Twips>(seen.left) * twipsPerPixel - form.left()),
            beyondRounding(static_cast<Twips>(seen.top) * twipsPerPixel - form.top())};
}

// A window manager may have kept the one that was dragged from where the pointer left it: the other
// goes beside it.
void formSet::settle_Pair(forms::Form &dragged, forms::Form &other) {
    const PointTwips held = held_Off(dragged);
    if (held.x == 0 && held.y == 0)
        return;
    for (forms::Form *form : {&dragged, &other})
        form->move({form->left() + held.x, form->top() + held.y, form->width(), form->height()});
}

PointTwips formSet::drag_Offset(const forms::Form &form, const forms::MouseEvent &event) {
    const PointTwips at = pointer_On(form, event);
    return {at.x - static_cast<Twips>(drag_X), at.y - static_cast<Twips>(drag_Y)};
}

void formSet::make_Draggable(forms::Form &form, forms::ControlEvents &events) {
    events.MouseDown = [this, &form](const forms::MouseEvent &event) { start_Drag(form, event); };
    events.MouseMove = [this, &form](const forms::MouseEvent &event) {
        if ((event.button & forms::leftButton) != 0) {
            const PointTwips offset = drag_Offset(form, event);
            form.move({form.left() + offset.x, form.top() + offset.y, form.width(), form.height()});
        }
    };
}

void formSet::dress(forms::Form &form, std::initializer_list<forms::Control *> handles,
                    std::function<void()> close) {
    make_Draggable(form, form.on());
    for (forms::Control *handle : handles)
        make_Draggable(form, handle->on());
    form.on().QueryUnload = [close = std::move(close)](bool &cancel) {
        cancel = true;
        close();
    };
}

// --- docking ---------------------------------------------------------------------------------

bool formSet::read_Tray_Area() {
    platform::WindowSystem &windows = app_.platform().windows;
    twips_Per_Pixel = 4995 / 333;
    const bool done = windows.SystemParametersInfoA(platform::SPI_GETWORKAREA, work_Area);
    windows.GetWindowRect(windows.FindWindowA(u"Shell_TrayWnd"), tray_Rect);
    tray_Height = tray_Rect.bottom - tray_Rect.top;
    return done;
}

// Each docking goes on from where the last one left the window: without an end it would leave the
// screens. A title row that lies above or below all of them is not brought back by going aside.
Twips formSet::within_Reach(const forms::Form &form, Twips left) {
    const Twips right = left + form.width();
    std::optional<Twips> first;
    Twips last = 0;
    Twips seen = 0;
    for (const RectPixels &monitor : app_.platform().windows.monitors()) {
        const auto twips = [](std::int32_t pixels) {
            return static_cast<Twips>(pixels) * twipsPerPixel;
        };
        if (form.top() >= twips(monitor.bottom) || form.top() + titleRow <= twips(monitor.top))
            continue;
        first = std::min(first.value_or(twips(monitor.left)), twips(monitor.left));
        last = std::max(last, twips(monitor.right));
        seen += std::max(Twips{0}, std::min(right, twips(monitor.right)) -
                                       std::max(left, twips(monitor.left)));
    }
    if (!first || seen >= handsWidth)
        return left;
    return std::clamp(left, *first + handsWidth - form.width(), last - handsWidth);
}

void formSet::dock_PlayList(bool flag) {
    passOver([&] {
        read_Tray_Area();
        if (!read_Tray_Area())
            return;
        velmora::Main &main = app_.Main();
        saved_Top = roundToInt32(main.top());
        if (flag) {
            velmora::playList_Form &list = app_.playList_Form();
            main.setLeft(within_Reach(main, main.left() - main.width() / 2));
            list.setTop(main.top());
            list.setLeft(within_Reach(list, main.left() + main.width()));
        } else {
            const auto right = static_cast<Twips>(twips_Per_Pixel * work_Area.right);
            main.setLeft((right - main.width()) / 2);
            main.setTop(static_cast<Twips>(saved_Top));
        }
    });
}

// --- tray ------------------------------------------------------------------------------------

void formSet::tray_Add(velmora::Main &main) {
    platform::WindowSystem &windows = app_.platform().windows;
    old_WndProc =
        windows.hookWindowProc(main.hWnd(), [this](platform::HWND window, std::uint32_t message,
                                                   std::int32_t wParam, std::int32_t lParam) {
            return tray_WndProc(window, message, wParam, lParam);
        });
    tray_Data.window = main.hWnd();
    tray_Data.id = 0;
    tray_Data.flags = platform::NIF_MESSAGE | platform::NIF_ICON;
    tray_Data.callbackMessage = trayMessage;
    tray_Data.icon = main.icon();
    windows.Shell_NotifyIconA(platform::NIM_ADD, tray_Data);
    windows.setTrayMenu(app_.MenuForm().menu, [this] { return tray_Menu_Opens(); });
}

void formSet::tray_Tip(std::u16string_view text) {
    tray_Data.tip = cutTip(text);
    tray_Data.flags = platform::NIF_TIP;
    app_.platform().windows.Shell_NotifyIconA(platform::NIM_MODIFY, tray_Data);
}

void formSet::tray_Remove() {
    tray_Data.flags = 0;
    app_.platform().windows.Shell_NotifyIconA(platform::NIM_DELETE, tray_Data);
    app_.platform().windows.unhookWindowProc(tray_Data.window, old_WndProc);
}

bool formSet::tray_Menu_Opens() {
    return !app_.startLoad_Form().visible() && !ListWork::isGoingOn(app_);
}

std::int32_t formSet::tray_WndProc(platform::HWND window, std::uint32_t message,
                                   std::int32_t wParam, std::int32_t lParam) {
    std::int32_t result = 0;
    passOver([&] {
        if (message != trayMessage)
            result = app_.platform().windows.CallWindowProcA(old_WndProc, window, message, wParam,
                                                             lParam);
        else if (lParam == leftButtonUp)
            show_Player();
        else if (app_.startLoad_Form().visible())
            return; // The start is still running.
        else if (lParam == rightButtonUp)
            app_.MenuForm().open_Menu(app_.MenuForm());
    });
    return result;
}

void formSet::show_Player() {
    if (app_.startLoad_Form().visible())
        return; // The start is still running.
    app_.platform().windows.personAsked();
    velmora::Main &main = app_.Main();
    if (main.windowState() == forms::WindowState::Minimised) {
        main.setWindowState(forms::WindowState::Normal);
    } else if (main.visible()) {
        // Comes forward without staying on top.
        set_Topmost(main.hWnd(), true);
        set_Topmost(main.hWnd(), false);
    } else if (app_.miniForm().visible()) {
        main.show();
        app_.miniForm().hide();
    }
}

// --- settings --------------------------------------------------------------------------------

// Each value is read for each of its tests: every getter reads the store anew.
void formSet::open_PlaySet() {
    fill_PlaySet();
    app_.playSetForm().show();
}

void formSet::fill_PlaySet() {
    velmora::setControl &settings = app_.setControl();
    velmora::playSetForm &form = app_.playSetForm();
    if (settings.get_AutoUpdate() == 1)
        form.autoUpdate.setValue(1);
    if (settings.get_AutoUpdate() == 0)
        form.autoUpdate.setValue(0);
    if (settings.get_IsAutoPlay() == 0)
        form.isAutoPlay.setValue(1);
    if (settings.get_IsAutoPlay() == 1)
        form.isAutoPlay.setValue(0);
    if (settings.get_VideoInterface() == 0)
        form.openVideo_Interface.setValue(0);
    if (settings.get_VideoInterface() == 1)
        form.openVideo_Interface.setValue(1);
    form.isAutoPlay_Click();
    form.language_Load(settings.Language_Index);
}

} // namespace velmora
