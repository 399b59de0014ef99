#include "ui/scrollBar.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "ui/formSet.h"

namespace velmora {

namespace {

void dragThumb(const ScrollBarParts &parts, std::int32_t pressedAt, Twips y,
               std::int16_t visibleRows) {
    forms::Control &thumb = parts.P2;
    const Twips limit = parts.P4.height() - thumb.height();
    if (thumb.top() >= 0 && thumb.top() <= limit)
        thumb.setTop(thumb.top() + y - static_cast<Twips>(pressedAt));
    if (thumb.top() <= 0)
        thumb.setTop(0);
    else if (thumb.top() > limit)
        thumb.setTop(limit);
    if (limit == 0)
        raise(ErrorNumber::DivisionByZero);
    const double share = static_cast<double>(thumb.top()) / static_cast<double>(limit);
    parts.list.setTopIndex(roundToInt16(share * (parts.list.listCount() - visibleRows)));
}

} // namespace

void attachScrollBar(const ScrollBarParts &parts, formSet &drag,
                     const std::function<std::int16_t()> &visibleRows) {
    parts.P1.on().Click = [parts] {
        if (parts.list.topIndex() > 0)
            parts.list.setTopIndex(parts.list.topIndex() - 1);
    };
    parts.P3.on().Click = [parts, visibleRows] {
        if (parts.list.topIndex() < parts.list.listCount() - visibleRows()) {
            parts.list.setTopIndex(parts.list.topIndex() + 1);
        }
    };
    forms::ControlEvents &thumb = parts.P2.on();
    thumb.MouseDown = [parts, &drag](const forms::MouseEvent &event) {
        if (event.button == forms::leftButton) {
            parts.P2.setTag(u"1");
            drag.drag_Y = roundToInt32(event.y);
        }
    };
    thumb.MouseMove = [parts, &drag, visibleRows](const forms::MouseEvent &event) {
        if ((event.button & forms::leftButton) != 0) {
            dragThumb(parts, drag.drag_Y, event.y, visibleRows());
        }
    };
    thumb.MouseUp = [parts](const forms::MouseEvent &) { parts.P2.setTag(u""); };
}

} // namespace velmora
