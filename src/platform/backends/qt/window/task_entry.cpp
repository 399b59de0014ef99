#include "platform/backends/qt/window/task_entry.h"

#include <QCloseEvent>
#include <QIcon>
#include <QMetaObject>
#include <QPointer>

#include <chrono>
#include <utility>

namespace velmora::platform::qt {

namespace {

// Managers say of a window that comes up minimised that it is not, and then that it is.
constexpr std::chrono::milliseconds between{100};
constexpr int mostLooks = 20;

} // namespace

TaskEntry::TaskEntry(X11 &x11, const QString &title, const QIcon &icon, Wishes wishes)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint), x11_(x11),
      wishes_(std::move(wishes)) {
    // Were it to be seen for a moment, there is nothing to see.
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setFixedSize(1, 1);
    setWindowTitle(title);
    setWindowIcon(icon);
    settled_.setInterval(between);
    connect(&settled_, &QTimer::timeout, this, [this] { look(); });
    showMinimized();
    x11_.iconify(static_cast<xcb_window_t>(winId()));
    settled_.start();
}

void TaskEntry::changeEvent(QEvent *event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange && wasMinimised_)
        settled_.start();
}

void TaskEntry::look() {
    if (x11_.isIconic(static_cast<xcb_window_t>(winId()))) {
        settled_.stop();
        wasMinimised_ = true;
    } else if (std::exchange(wasMinimised_, false)) {
        looks_ = 0;
        const QPointer<TaskEntry> self(this);
        const auto wish = wishes_.show;
        wish();
        if (!self.isNull())
            x11_.iconify(static_cast<xcb_window_t>(winId()));
    } else if (++looks_ == mostLooks) {
        settled_.stop();
        hide();
    }
}

void TaskEntry::closeEvent(QCloseEvent *event) {
    event->ignore();
    QMetaObject::invokeMethod(
        this, [wish = wishes_.close] { wish(); }, Qt::QueuedConnection);
}

} // namespace velmora::platform::qt
