#pragma once

// What the parts of the window back-end share: one of each for the application.

#include "platform/backends/qt/paint/control_painter.h"
#include "platform/backends/qt/paint/fonts.h"
#include "platform/backends/qt/paint/text_painter.h"
#include "platform/backends/qt/screen/loop.h"
#include "platform/backends/qt/screen/x11.h"
#include "platform/contracts/windows.h"

#include <QIcon>
#include <QPoint>
#include <QPointF>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velmora::platform::qt {

class QtFormWindow;

struct FormEntry {
    forms::Form *form = nullptr;
    QtFormWindow *window = nullptr; // while there is one
    WindowProc procedure;
};

class Hub {
public:
    Loop loop;
    X11 x11;
    Fonts fonts;
    TextPainter texts{fonts};
    ControlPainter painter{texts};

    // All forms by their numbers, in order of making.
    std::map<HWND, FormEntry> forms;
    FormEntry *entry(HWND window);
    HWND addForm(forms::Form &form);

    // Windows in the order in which they were last shown or raised; the last is the latest.
    std::vector<QtFormWindow *> order;
    void moveToFront(QtFormWindow &window);
    void windowGone(QtFormWindow &window);
    // A disabled form was clicked: the window that it waits for comes forward.
    void raiseWaitedFor(const QtFormWindow &disabled);

    // What comes up now was not asked for: neither by the start nor by a key or click just before.
    bool comesByItself() const { return loop.running() && !x11.personActed(); }

    // An icon of a drawing in the usual sizes.
    QIcon icon(forms::Picture picture);

    // Where the pointer was, on the screen, at the mouse event that is being handled; absent in the
    // handlers that run inside its own.
    std::optional<QPointF> pointerOfEvent() const {
        return eventAt_ && loop.depth() == eventDepth_ ? eventAt_ : std::nullopt;
    }
    class MouseHandler {
    public:
        MouseHandler(Hub &hub, QPointF at)
            : hub_(hub), handler_(hub.loop), before_(std::exchange(hub.eventAt_, at)),
              depthBefore_(std::exchange(hub.eventDepth_, hub.loop.depth())) {}
        ~MouseHandler() {
            hub_.eventAt_ = before_;
            hub_.eventDepth_ = depthBefore_;
        }
        MouseHandler(const MouseHandler &) = delete;
        MouseHandler &operator=(const MouseHandler &) = delete;

    private:
        Hub &hub_;
        Loop::Handler handler_;
        std::optional<QPointF> before_;
        int depthBefore_;
    };

    // Where the next popup menu comes up, when that is not at the pointer.
    std::optional<QPoint> menuPlace;

    // The entry in the task bar of a window that no manager has was called up.
    std::function<void()> onEntry;

    // Where the pointer was last known to have left all our windows (XWayland tells no more).
    bool pointerOutside = false;

private:
    std::optional<QPointF> eventAt_;
    int eventDepth_ = 0;
    std::map<forms::Picture, QIcon> icons_;
    HWND lastNumber_ = 0;
};

} // namespace velmora::platform::qt
