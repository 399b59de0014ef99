#pragma once

// What the parts of the window back-end share: one of each for the application.

#include "platform/backends/qt/paint/control_painter.h"
#include "platform/backends/qt/paint/fonts.h"
#include "platform/backends/qt/paint/text_painter.h"
#include "platform/backends/qt/screen/loop.h"
#include "platform/backends/qt/screen/x11.h"
#include "platform/contracts/windows.h"

#include <QIcon>

#include <functional>
#include <map>
#include <string>
#include <string_view>
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

    // An icon of a drawing in the usual sizes.
    QIcon icon(forms::Picture picture);

    // Where the pointer was last known to have left all our windows (XWayland tells no more).
    bool pointerOutside = false;

private:
    std::map<forms::Picture, QIcon> icons_;
    HWND lastNumber_ = 0;
};

} // namespace velmora::platform::qt
