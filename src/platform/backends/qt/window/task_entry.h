#pragma once

// What stands for an unmanaged window in the task bar and the desktop's lists of windows: a window
// of the manager's that is always minimised. Whoever calls it up calls what it stands for. Under a
// manager that does not minimise it there is none.

#include "platform/backends/qt/screen/x11.h"

#include <QTimer>
#include <QWidget>

#include <functional>

namespace velmora::platform::qt {

class TaskEntry : public QWidget {
public:
    struct Wishes {
        std::function<void()> show;
        std::function<void()> close;
    };
    TaskEntry(X11 &x11, const QString &title, const QIcon &icon, Wishes wishes);

protected:
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void look();

    X11 &x11_;
    Wishes wishes_;
    QTimer settled_;
    int looks_ = 0; // since it was last minimised
    bool wasMinimised_ = false;
};

} // namespace velmora::platform::qt
