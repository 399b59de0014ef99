#pragma once

// Modifier keys and mouse buttons in the numbers of the control model.

#include "platform/forms/events.h"

#include <Qt>
#include <QtGlobal>

#include <cstdint>

namespace velmora::platform::qt {

inline std::int16_t shiftState(Qt::KeyboardModifiers modifiers) {
    int state = 0;
    if (modifiers & Qt::ShiftModifier)
        state |= forms::shiftMask;
    if (modifiers & Qt::ControlModifier)
        state |= forms::ctrlMask;
    if (modifiers & Qt::AltModifier)
        state |= forms::altMask;
    return static_cast<std::int16_t>(state);
}

inline std::int16_t buttonState(Qt::MouseButtons buttons) {
    int state = 0;
    if (buttons & Qt::LeftButton)
        state |= forms::leftButton;
    if (buttons & Qt::RightButton)
        state |= forms::rightButton;
    if (buttons & Qt::MiddleButton)
        state |= forms::middleButton;
    return static_cast<std::int16_t>(state);
}

} // namespace velmora::platform::qt
