#pragma once

// What the user does with a window, told to its form: mouse, keys, drops, and what the pointer
// shows.

#include "platform/backends/qt/scene/scene.h"
#include "platform/backends/qt/window/hub.h"

#include <QPointF>

#include <cstdint>
#include <set>

class QDropEvent;
class QEnterEvent;
class QHelpEvent;
class QKeyEvent;
class QMouseEvent;

namespace velmora::platform::qt {

class FormInput {
public:
    FormInput(Hub &hub, QtFormWindow &window, forms::Form &form, Scene &scene);
    FormInput(const FormInput &) = delete;
    FormInput &operator=(const FormInput &) = delete;

    // An event of a painted widget, and of a toolkit widget that is a control of its own. True: the
    // widget is not to have it any more.
    bool layerEvent(QWidget &widget, QEvent &event);
    bool childEvent(forms::Control &control, QWidget &widget, QEvent &event);

    // A control's or the form's pointer changed: shows it at once if the mouse is there.
    void pointerLookChanged();
    // A control's tip changed: follows if it is being shown.
    void tipChanged(const forms::Control &control);

    // Whether any control wants dropped files.
    static bool wantsDrops(const forms::Container &container);

private:
    PointTwips place(QPointF global) const;
    void entered(QWidget &widget, const QEnterEvent &event);
    bool mouse(QWidget &widget, QMouseEvent &event, bool child);
    bool key(QWidget &widget, QKeyEvent &event, bool child);
    bool newKey(QWidget &widget, QKeyEvent &event, xcb_keycode_t keyCode, bool child);
    bool keyDown(const QKeyEvent &event, std::int16_t code, std::int16_t shift, bool child);
    bool keyUp(std::int16_t code, std::int16_t shift, bool child);
    bool isRepeat(const QKeyEvent &event, xcb_keycode_t key);
    bool tip(QWidget &widget, const QHelpEvent &event);
    bool drop(QDropEvent &event);
    forms::Control *dropTarget(PointTwips at) const;
    void showPointer(QWidget &widget, PointTwips at);

    Hub &hub_;
    QtFormWindow &window_;
    forms::Form &form_;
    Scene &scene_;
    struct KeyMoment {
        quint64 time = 0;
        int key = 0;
        friend bool operator==(const KeyMoment &, const KeyMoment &) = default;
    };
    struct OfferedKey {
        KeyMoment moment;
        int type = 0;
        friend bool operator==(const OfferedKey &, const OfferedKey &) = default;
    };
    KeyMoment lastRelease_;
    OfferedKey offered_;              // the last that a toolkit widget was offered
    std::set<std::int16_t> keysDown_; // told to the form as pressed, not yet as released
    std::set<std::int16_t> swallowed_;
    QPointer<QWidget> pointerOver_;
    PointTwips pointerAt_;
    const forms::Control *tipped_ = nullptr;
};

} // namespace velmora::platform::qt
