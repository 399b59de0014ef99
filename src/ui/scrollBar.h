#pragma once

// The hand-made scroll bar that the four list windows share: arrows P1 and P3, the thumb P2 inside
// the track P4.

#include "platform/forms/controls.h"
#include "platform/forms/listbox.h"

#include <cstdint>
#include <functional>

namespace velmora {

class formSet;

struct ScrollBarParts {
    forms::Control &P1;
    forms::Control &P2;
    forms::Control &P3;
    forms::Control &P4;
    forms::ListBox &list;
};

// Gives the parts their handlers. `visibleRows` tells how many rows the list shows. The press on
// the thumb sets its Tag to "1" and the release clears it: meanwhile the tick leaves the thumb
// alone. The arrows move the list; the thumb follows by the tick.
void attachScrollBar(const ScrollBarParts &parts, formSet &drag,
                     const std::function<std::int16_t()> &visibleRows);

} // namespace velmora
