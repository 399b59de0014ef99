#pragma once

// What all windows share: the order of windows, dragging, docking, the tray icon, the key table.

#include "platform/contracts/windows.h"
#include "platform/forms/events.h"
#include "platform/forms/form.h"

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string_view>

namespace velmora {

class Main;
class Velmora;

class formSet {
public:
    explicit formSet(Velmora &app);

    std::int32_t twips_Per_Pixel = 15;
    RectPixels work_Area;
    RectPixels tray_Rect;
    std::int32_t tray_Height = 0; // pixels
    std::int32_t saved_Top = 0;   // twips
    std::int32_t old_WndProc = 0;
    platform::NotifyIconData tray_Data;
    std::int32_t drag_X = 0; // twips; one mouse drags one form
    std::int32_t drag_Y = 0;
    std::int32_t wait_Ms = 0; // the sleep between two steps of the mini window's slide

    // --- shape and order -------------------------------------------------------------------------
    // Makes the key colour of the form a hole.
    void set_ColourKey(forms::Form &form);
    std::int32_t set_Topmost(platform::HWND window, bool flag);
    // Keeps the mini window and the desktop lyric on top.
    void keep_Topmost();
    // What is placed by the primary monitor follows it: the line on the desktop, and a film that
    // fills the screen.
    void screens_Changed();

    // --- dragging --------------------------------------------------------------------------------
    // X and Y of a drag are the pointer's place on the screen less the form's place at that moment:
    // the coordinates that come with an event lag behind a window that is being moved.
    PointTwips pointer_On(const forms::Form &form, const forms::MouseEvent &event);
    void start_Drag(const forms::Form &form, const forms::MouseEvent &event);
    // How far the form has to move (twips), while the left button is down.
    PointTwips drag_Offset(const forms::Form &form, const forms::MouseEvent &event);
    // The end of a drag that took another form along.
    void settle_Pair(forms::Form &dragged, forms::Form &other);
    // The handlers of a form that is dragged alone, on the form itself or on one of its controls.
    void make_Draggable(forms::Form &form, forms::ControlEvents &events);
    // What most windows share: dragged alone by the form and these controls of it, and closed by
    // `close`, which hides it: a window stays for the run's whole length.
    void dress(forms::Form &form, std::initializer_list<forms::Control *> handles,
               std::function<void()> close);

    // --- docking ---------------------------------------------------------------------------------
    bool read_Tray_Area();
    // True: Main moves left by half its width and the list stands at its right side. False: Main is
    // centred horizontally.
    void dock_PlayList(bool flag);

    // --- tray ------------------------------------------------------------------------------------
    void tray_Add(velmora::Main &main);
    void tray_Tip(std::u16string_view text);
    void tray_Remove();
    // Whether the icon's menu opens now.
    bool tray_Menu_Opens();
    std::int32_t tray_WndProc(platform::HWND window, std::uint32_t message, std::int32_t wParam,
                              std::int32_t lParam);

    // Brings the player to the front, out of the mini window and the task bar. Not before the end
    // of the start.
    void show_Player();

    // --- settings and keys -----------------------------------------------------------------------
    // Fills the settings window from the stored settings and shows it.
    void open_PlaySet();
    // The first half of it.
    void fill_PlaySet();
    // The key routine of Main ("main") and of the play list ("playlist_Form").
    void form_KeyDown(std::int16_t keyCode, std::int16_t shift, std::u16string_view formName);

private:
    // How far the window manager keeps a form from where it was placed.
    PointTwips held_Off(const forms::Form &form);
    // That left side, or the nearest one which leaves a hand's width of the title row on the
    // screens.
    Twips within_Reach(const forms::Form &form, Twips left);
    struct Key;

    Velmora &app_;
};

} // namespace velmora
