#pragma once

// The controls that are toolkit widgets of their own: lists, text boxes, check boxes, options. Each
// shows its model and takes the user's doings to the model's own roads.

#include "platform/forms/control.h"

#include <QPointer>
#include <QWidget>

#include <memory>

namespace velmora::platform::qt {

class Fonts;
class Loop;
class TextPainter;

class ChildView {
public:
    virtual ~ChildView() { delete widget_.data(); }
    ChildView(const ChildView &) = delete;
    ChildView &operator=(const ChildView &) = delete;

    // The widget; its parent may delete it first, at the end of the window.
    QWidget *widget() const { return widget_.data(); }
    // The model changed. Place, visibility and being enabled are seen to outside.
    virtual void changed(forms::Change what) = 0;

protected:
    explicit ChildView(QWidget *widget) : widget_(widget) {}

private:
    QPointer<QWidget> widget_;
};

// What views need to draw and to call into the program.
struct ViewTools {
    Fonts &fonts;
    TextPainter &texts;
    Loop &loop;
};

// Null for a control that is painted.
std::unique_ptr<ChildView> makeChildView(forms::Control &control, const ViewTools &tools,
                                         QWidget *parent);

// Whether `makeChildView` would make one.
bool hasChildView(const forms::Control &control);

} // namespace velmora::platform::qt
