#pragma once

// The window behind one form, on X11.

#include "platform/backends/qt/paint/ground.h"
#include "platform/backends/qt/scene/scene.h"
#include "platform/backends/qt/screen/screens.h"
#include "platform/backends/qt/window/form_input.h"
#include "platform/backends/qt/window/hub.h"
#include "platform/backends/qt/window/rolling_line.h"
#include "platform/backends/qt/window/window_place.h"

#include <QTimer>

#include <chrono>
#include <memory>
#include <optional>

namespace velmora::platform::qt {

class TaskEntry;
class TopWidget;

class QtFormWindow : public forms::FormWindow {
public:
    QtFormWindow(Hub &hub, forms::Form &form);
    ~QtFormWindow() override;
    QtFormWindow(const QtFormWindow &) = delete;
    QtFormWindow &operator=(const QtFormWindow &) = delete;

    void controlChanged(forms::Control &control, forms::Change what,
                        const RectTwips &before) override;
    void controlGone(forms::Control &control) override;
    void formChanged(forms::FormChange what, const RectTwips &before) override;
    void refresh(forms::Control *control) override;
    void raise() override;
    void focus(forms::Control *control) override;
    std::uintptr_t pictureWindow(forms::PictureBox &box) override;
    double scaleFactor() const override;

    forms::Form &form() const noexcept { return form_; }
    Scene &scene() noexcept { return scene_; }
    // The toolkit's window; null before it was needed.
    QWidget *top() const noexcept;
    // The native window; 0 before it was needed.
    xcb_window_t nativeWindow() const;

    bool isFullScreen() const;

    // How far the window manager keeps the window from where its form stands, in logical pixels.
    QPoint heldOff() const;
    // Whether the form takes a press at `local` in its widget to be where it is; if not, the window
    // is looked for.
    bool isMetAt(const QWidget &widget, QPointF local, PointTwips at);
    // Handles what the window system sends until the window manager has answered, for a while.
    void awaitPlace();

    // Above the others, restored if it was minimised, with the keyboard.
    void bringForward();
    void attention(bool wanted);
    void setTaskTitle(const QString &title);
    // A compositor came or went.
    void compositorChanged();
    // The screens are others, or count their pixels in another way.
    void screensChanged();

private:
    friend class TopWidget;

    void realise();
    void show();
    void hideSoon();
    void hideNow();
    void toTop();
    void applyTopmost();
    void applyState();
    void applyLook();
    void applyPlace();
    // Where the form wants it: in the program's pixels and in the toolkit's.
    QRect asked() const;
    QRect area() const;
    void askTurn();
    static constexpr int lookPauseMs = 800;
    void lookLater(int pauseMs = lookPauseMs);
    void look();
    void lookWhereItStands(bool sure);
    void standsAt(const screens::Standing &now, WindowPlace::Report report);
    void applyOutline();
    bool rolls(const forms::Control &control, const RectTwips &before) const;
    bool roll(const forms::Label &line);
    void endRoll();
    bool putsPaintOff();
    void payPaint();
    void areaTouched(const forms::Control &control, const QRectF &area);
    void paintGround(const ControlPainter::Job &job);
    void setStatesBeforeMap();
    bool isKeyed() const;
    bool mayTakeKeyboard() const;
    void firstFocus();
    void comeBack();
    void enterTaskBar();
    void densityChanged();
    void showCaption();
    void originChanged();
    void keepOnMonitor();
    int cutAbove() const;

    // From the toolkit.
    void closed();
    void moved();
    void stateChanged();
    void activated();
    void blocked();

    Hub &hub_;
    forms::Form &form_;
    Ground ground_;
    Scene scene_;
    FormInput input_;
    RollingLine rolling_;
    std::unique_ptr<TopWidget> top_;
    std::unique_ptr<TaskEntry> entry_; // of an unmanaged window while it is shown
    WindowPlace place_;
    QPoint heldOff_;
    QTimer look_;
    std::optional<QPoint> suspected_;                                  // the server told of it once
    std::optional<std::chrono::steady_clock::time_point> turnAskedAt_; // while it is awaited
    QPoint origin_; // of the program's coordinates when the window was last placed in them
    std::chrono::steady_clock::time_point lastForced_;
    std::chrono::steady_clock::time_point paintedFor_; // what was painted serves the eye until then
    bool paintOwed_ = false;
    bool forced_ = false;
    bool shownOnce_ = false;
    bool hidePending_ = false;
    bool outlineDirty_ = true;
    bool outlinePosted_ = false;
    bool hasOutline_ = false;
    bool translucent_ = false; // the native window has an alpha channel
    bool hasHoleMakers_ = false;
    bool raisePosted_ = false;
    bool attentionAsked_ = false; // since it was last active
    bool placing_ = false;
    bool fullScreen_ = false;
    bool isCutAbove_ = false;
    double density_ = 1; // of the screen when the window was last placed for it
};

} // namespace velmora::platform::qt
