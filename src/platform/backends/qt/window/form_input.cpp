#include "platform/backends/qt/window/form_input.h"

#include "platform/backends/qt/screen/geometry.h"
#include "platform/backends/qt/screen/key_state.h"
#include "platform/backends/qt/screen/keys.h"
#include "platform/backends/qt/screen/screens.h"
#include "platform/backends/qt/window/form_window.h"

#include <QCursor>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>

namespace velmora::platform::qt {

namespace {

Qt::CursorShape shapeOf(const forms::Form::PointerLook &look) {
    if (look.pointer == forms::pointerHourglass)
        return Qt::WaitCursor;
    if (look.pointer == forms::pointerCustom && look.icon == forms::MouseIcon::Hand)
        return Qt::PointingHandCursor;
    return Qt::ArrowCursor;
}

// Keys whose repeats a widget may act on: editing and moving about.
bool repeats(const QWidget &widget, const QKeyEvent &event) {
    if (widget.testAttribute(Qt::WA_InputMethodEnabled))
        return true;
    switch (event.key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Home:
    case Qt::Key_End:
        return true;
    default:
        return false;
    }
}

} // namespace

FormInput::FormInput(Hub &hub, QtFormWindow &window, forms::Form &form, Scene &scene)
    : hub_(hub), window_(window), form_(form), scene_(scene) {}

// The pointer's place on the screen less the form's place as the program knows it, or where a
// window manager holds it instead: the window's own coordinates lag behind while it is being
// dragged.
PointTwips FormInput::place(QPointF global) const {
    const QPointF at = screens::toProgram(global) - window_.heldOff();
    return {toTwips(at.x()) - form_.left(), toTwips(at.y()) - form_.top()};
}

bool FormInput::layerEvent(QWidget &widget, QEvent &event) {
    switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
        return mouse(widget, static_cast<QMouseEvent &>(event), false);
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        return key(widget, static_cast<QKeyEvent &>(event), false);
    case QEvent::Enter:
        entered(widget, static_cast<QEnterEvent &>(event));
        return false;
    case QEvent::Leave:
        if (widget.isWindow()) {
            hub_.pointerOutside = true;
            pointerOver_ = nullptr;
            const Loop::Handler handler(hub_.loop);
            form_.pointerLeft();
        }
        return false;
    case QEvent::ToolTip:
        return tip(widget, static_cast<QHelpEvent &>(event));
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        return drop(static_cast<QDropEvent &>(event));
    case QEvent::ContextMenu:
    case QEvent::Wheel:
        event.accept();
        return true;
    default:
        return false;
    }
}

bool FormInput::childEvent(forms::Control &control, QWidget &widget, QEvent &event) {
    switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
        return mouse(widget, static_cast<QMouseEvent &>(event), true);
    case QEvent::Enter:
        entered(widget, static_cast<QEnterEvent &>(event));
        return false;
    case QEvent::Wheel:
        return !form_.enabled();
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        return key(widget, static_cast<QKeyEvent &>(event), true);
    case QEvent::FocusIn:
        if (form_.activeControl() != &control && form_.enabled())
            form_.setFocus(&control);
        scene_.followFocus();
        return false;
    case QEvent::ToolTip:
        return tip(widget, static_cast<QHelpEvent &>(event));
    case QEvent::ContextMenu:
        // A list's menu is the program's own, by its mouse events.
        return control.kind() != forms::Kind::TextBox || !form_.enabled();
    case QEvent::InputMethod:
        return !form_.enabled();
    default:
        return false;
    }
}

// The server need not report a movement beside the entering.
void FormInput::entered(QWidget &widget, const QEnterEvent &event) {
    hub_.pointerOutside = false;
    pointerOver_ = &widget;
    pointerAt_ = place(event.globalPosition());
    const QPointer<QWidget> alive(&widget);
    const Loop::Handler handler(hub_.loop);
    form_.pointerMoved(pointerAt_, buttonState(event.buttons()), shiftState(event.modifiers()));
    if (!alive.isNull())
        showPointer(widget, pointerAt_);
}

bool FormInput::mouse(QWidget &widget, QMouseEvent &event, bool child) {
    const bool press =
        event.type() == QEvent::MouseButtonPress || event.type() == QEvent::MouseButtonDblClick;
    const bool wasEnabled = form_.enabled();
    if (press && !wasEnabled) {
        hub_.raiseWaitedFor(window_);
        return true;
    }
    PointTwips at = place(event.globalPosition());
    if (press && event.buttons() == event.button() &&
        !window_.isMetAt(widget, event.position(), at))
        at = place(event.globalPosition());
    const std::int16_t shift = shiftState(event.modifiers());
    const std::int16_t button = buttonState(event.button());
    const QPointer<QWidget> alive(&widget);
    pointerOver_ = &widget;
    pointerAt_ = at;
    hub_.pointerOutside = false;
    const Hub::MouseHandler handler(hub_, event.globalPosition());
    switch (event.type()) {
    case QEvent::MouseButtonPress:
        if (event.buttons() == event.button())
            form_.pointerLost(); // nothing else is held: no earlier press is still going on
        form_.pointerPressed(at, button, shift);
        break;
    case QEvent::MouseButtonDblClick:
        form_.pointerDoubleClicked(at, button, shift);
        break;
    case QEvent::MouseButtonRelease:
        form_.pointerReleased(at, button, shift);
        break;
    default:
        form_.pointerMoved(at, buttonState(event.buttons()), shift);
        break;
    }
    if (alive.isNull())
        return true;
    showPointer(widget, at);
    if (!child) {
        event.accept();
        return true;
    }
    return !wasEnabled || !form_.enabled();
}

void FormInput::showPointer(QWidget &widget, PointTwips at) {
    const forms::Form::PointerLook look = form_.pointerAt(at);
    const bool own = look.pointer == forms::pointerDefault;
    if (own && widget.testAttribute(Qt::WA_InputMethodEnabled)) {
        if (widget.cursor().shape() != Qt::IBeamCursor)
            widget.setCursor(Qt::IBeamCursor);
        return;
    }
    const Qt::CursorShape shape = shapeOf(look);
    if (widget.cursor().shape() != shape)
        widget.setCursor(shape);
}

void FormInput::pointerLookChanged() {
    if (!pointerOver_)
        return;
    pointerAt_ = place(QCursor::pos());
    showPointer(*pointerOver_, pointerAt_);
    // What follows may take long: the pointer has to be seen before it.
    hub_.x11.flush();
}

// A held key is one press. The server repeats it as releases and presses at one and the same time;
// the toolkit's own mark of a repeat is missing whenever it reads the two one after the other.
bool FormInput::isRepeat(const QKeyEvent &event, xcb_keycode_t key) {
    const KeyMoment now{event.timestamp(), key};
    if (event.type() == QEvent::KeyRelease) {
        lastRelease_ = now;
        return event.isAutoRepeat();
    }
    return event.isAutoRepeat() || (now.time != 0 && lastRelease_ == now);
}

bool FormInput::key(QWidget &widget, QKeyEvent &event, bool child) {
    const auto keyCode = static_cast<xcb_keycode_t>(event.nativeScanCode());
    // What a toolkit widget has no use for comes by again on its way up.
    const OfferedKey offered{{event.timestamp(), keyCode}, event.type()};
    if (!child && offered_ == offered)
        return true;
    event.accept();
    const bool taken = newKey(widget, event, keyCode, child);
    // Only now: a handler that pumps may have met other keys, and this one's release, meanwhile.
    if (child)
        offered_ = offered;
    return taken;
}

bool FormInput::newKey(QWidget &widget, QKeyEvent &event, xcb_keycode_t keyCode, bool child) {
    const bool repeat = isRepeat(event, keyCode);
    // Every X keyboard has the lock of the keypad's numbers there.
    const bool numbersLocked = (event.nativeModifiers() & XCB_MOD_MASK_2) != 0;
    const std::int16_t code = virtualKey(hub_.x11.keySymbols(keyCode), keyCode, numbersLocked);
    if (repeat)
        return !child || !form_.enabled() || swallowed_.contains(code) || !repeats(widget, event);
    const std::int16_t shift = shiftState(event.modifiers());
    return event.type() == QEvent::KeyPress ? keyDown(event, code, shift, child)
                                            : keyUp(code, shift, child);
}

bool FormInput::keyUp(std::int16_t code, std::int16_t shift, bool child) {
    if (keysDown_.erase(code) != 0) {
        const Loop::Handler handler(hub_.loop);
        form_.keyReleased(code, shift);
    }
    return !child;
}

bool FormInput::keyDown(const QKeyEvent &event, std::int16_t code, std::int16_t shift, bool child) {
    swallowed_.erase(code);
    bool pass = form_.enabled();
    if (code != 0) {
        keysDown_.insert(code);
        const Loop::Handler handler(hub_.loop);
        pass = form_.keyPressed(code, shift);
    }
    if (!pass)
        swallowed_.insert(code);
    else if (!child && (event.key() == Qt::Key_Tab || event.key() == Qt::Key_Backtab))
        form_.focusNext(event.key() == Qt::Key_Backtab);
    return !pass || !child;
}

} // namespace velmora::platform::qt
