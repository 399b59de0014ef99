#pragma once

// A widget that paints a part of a form: all of it, or one control with what it contains.

#include "platform/forms/control.h"

#include <QWidget>

#include <functional>
#include <memory>

namespace velmora::platform::qt {

class Scene;

class Layer : public QWidget {
public:
    // Events are offered to `input` first; true: taken.
    using Input = std::function<bool(QWidget &, QEvent &)>;
    // `root` null: the whole form. The widget stands in the form at its position in the window.
    Layer(Scene &scene, const forms::Control *root, Input input, QWidget *parent,
          Qt::WindowFlags flags = {});

    const forms::Control *root() const noexcept { return root_; }
    Scene &scene() const noexcept { return scene_; }
    // As a click of the left button at a place in the form.
    void press(PointTwips at);
    // Whether the control is still there, and this layer's.
    bool holds(const forms::Control &control) const;
    // Who keeps something of the painted controls lets it go when one ends. It may go ahead of the
    // layer, or with the last of it, when there is nothing here any more to take itself out of.
    using Gone = std::function<void(const forms::Control &)>;
    std::weak_ptr<const Gone> whenGone;
    void tellGone(const forms::Control &gone) const {
        if (const auto told = whenGone.lock())
            (*told)(gone);
    }

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    bool focusNextPrevChild(bool next) override;

private:
    Scene &scene_;
    const forms::Control *root_;
    Input input_;
};

} // namespace velmora::platform::qt
