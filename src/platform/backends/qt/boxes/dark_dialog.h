#pragma once

// The window of a box or dialog of ours: no frame of the window manager's, a title strip to move it
// by, the body of the skin.

#include "platform/backends/qt/window/hub.h"

#include <QDialog>

class QVBoxLayout;

namespace velmora::platform::qt {

// Where a box of that size goes: over the middle of the active window, else of what panels leave of
// the primary monitor, and whole onto its monitor.
QPoint boxPlace(Hub &hub, QSize size);

class DarkDialog : public QDialog {
public:
    DarkDialog(Hub &hub, const QString &title);

    // Shows it above our windows, in the middle of the active one, and waits until it is closed.
    // Application-modal; timers go on.
    int run();

protected:
    // Below the title strip, with the margins of the design.
    QVBoxLayout *body() const noexcept { return body_; }

    // What panels leave free of the monitor that it comes up on.
    QRect room() const;

    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    Hub &hub_;
    QVBoxLayout *body_;
    QPoint dragFrom_;
    bool dragging_ = false;
};

} // namespace velmora::platform::qt
