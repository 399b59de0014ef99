#pragma once

// What controls and forms report. Handlers are set once, by the form that owns the control.
//
// A RunTimeError that leaves a handler ends that handler and nothing else: the dispatch catches it.

#include "base/geometry.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace velmora::forms {

inline constexpr std::int16_t leftButton = 1;
inline constexpr std::int16_t rightButton = 2;
inline constexpr std::int16_t middleButton = 4;

inline constexpr std::int16_t shiftMask = 1;
inline constexpr std::int16_t ctrlMask = 2;
inline constexpr std::int16_t altMask = 4;

struct MouseEvent {
    std::int16_t button = 0; // down and up: the one button; move: the mask of those held
    std::int16_t shift = 0;
    Twips x = 0; // in the coordinates of the control that receives it
    Twips y = 0;
};

struct KeyEvent {
    std::int16_t keyCode = 0; // Windows virtual key; a handler may set it to 0 to swallow it
    std::int16_t shift = 0;
};

struct FilesDropped {
    std::vector<std::u16string> files; // clipboard format 15; may be empty
    Twips x = 0;
    Twips y = 0;
};

struct ControlEvents {
    std::function<void()> Click;
    std::function<void()> DblClick;
    std::function<void()> Change; // text boxes: by the user or by `setText` never
    std::function<void(const MouseEvent &)> MouseDown;
    std::function<void(const MouseEvent &)> MouseMove;
    std::function<void(const MouseEvent &)> MouseUp;
    std::function<void(KeyEvent &)> KeyDown;
    std::function<void(KeyEvent &)> KeyUp;
    std::function<void(const FilesDropped &)> OLEDragDrop;
};

struct FormEvents : ControlEvents {
    // A request to close (by the window system or by `Form::unload`); true in `cancel` stops it.
    std::function<void(bool &cancel)> QueryUnload;
    std::function<void()> Unload;
    std::function<void()> Resize;
    // A press on the form or one of its controls has ended without its release: a box took that, or
    // the form was disabled meanwhile.
    std::function<void()> PressLost;
};

} // namespace velmora::forms
