// Where the window stands, as the window manager tells it or does not.

#include "platform/backends/qt/screen/geometry.h"
#include "platform/backends/qt/screen/screens.h"
#include "platform/backends/qt/window/form_window.h"
#include "platform/backends/qt/window/top_widget.h"

#include <QGuiApplication>
#include <QPointer>
#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <utility>

namespace velmora::platform::qt {

namespace {

constexpr int lookAgainMs = 200;
// A manager that was replaced meanwhile does not answer what the one before it was asked.
constexpr auto turnAnew = std::chrono::seconds(2);
constexpr auto placeLimit = std::chrono::milliseconds(500);

} // namespace

QRect QtFormWindow::asked() const {
    const QPoint at(qRound(toPixels(form_.left())), qRound(toPixels(form_.top())));
    const QSize size(std::max(1, qRound(toPixels(form_.width()))),
                     std::max(1, qRound(toPixels(form_.height()))));
    return {at, size};
}

QRect QtFormWindow::area() const { return screens::toToolkit(asked()); }

// What is reported ahead of the manager's sign answers an earlier place or the last one, what comes
// behind it the last one alone; one sign is under way at a time, however often a drag asks.
void QtFormWindow::askTurn() {
    const auto now = std::chrono::steady_clock::now();
    if (place_.tookAll() || (turnAskedAt_ && now - *turnAskedAt_ < turnAnew))
        return;
    turnAskedAt_ = now;
    hub_.x11.whenManagerTook([this, top = QPointer<QWidget>(top_.get()), asks = place_.asks()] {
        if (top.isNull())
            return;
        // The toolkit hands on what was reported before at the end of this round.
        QMetaObject::invokeMethod(
            top.data(),
            [this, asks] {
                turnAskedAt_.reset();
                place_.took(asks);
                askTurn();
            },
            Qt::QueuedConnection);
    });
}

// Some managers let a request for another place go by or show a window elsewhere, and tell nobody;
// and what they tell may be no news to the toolkit, or a place on the way. The server knows.
void QtFormWindow::lookLater(int pauseMs) {
    if (form_.unmanaged() || !top_->isVisible())
        return;
    suspected_.reset();
    look_.start(pauseMs);
}

void QtFormWindow::look() {
    if (place_.isAwaited() && !place_.isUnanswered())
        lookLater();
    else if (top_->isVisible() && !top_->isMinimized() && top_->windowHandle()->isExposed())
        lookWhereItStands(false);
}

// A place that only the server tells may be one on the way: it is looked at twice.
void QtFormWindow::lookWhereItStands(bool sure) {
    constexpr double rounding = 2; // pixels
    const std::optional<QPoint> corner = hub_.x11.cornerOf(nativeWindow());
    const QScreen *screen = QGuiApplication::primaryScreen();
    if (!corner || screen == nullptr)
        return;
    const QPoint believed = asked().topLeft() + heldOff_;
    const QPointF off = QPointF(*corner - screens::deviceOf(believed)) / screen->devicePixelRatio();
    if (off.manhattanLength() <= rounding)
        return;
    if (!sure && suspected_ != corner) {
        lookLater(lookAgainMs);
        suspected_ = corner;
        return;
    }
    const QPointF program = believed + off;
    const QPoint toolkit = screens::toToolkit(QRect(program.toPoint(), top_->size())).topLeft();
    standsAt({toolkit, program}, place_.found(toolkit));
}

// A press tells where it was in the window, too: if that is not where the form has it, the window
// stands elsewhere than was told.
bool QtFormWindow::isMetAt(const QWidget &widget, QPointF local, PointTwips at) {
    constexpr double rounding = 3; // pixels
    const QPointF met = widget.mapTo(top_.get(), local) - QPointF(toPixels(at.x), toPixels(at.y));
    if (form_.unmanaged() || met.manhattanLength() <= rounding)
        return true;
    lookWhereItStands(true);
    return false;
}

void QtFormWindow::moved() {
    if (placing_ || top_ == nullptr || top_->isMinimized())
        return;
    const screens::Standing now = screens::standing(hub_.x11, *top_);
    standsAt(now, place_.reported(now.toolkit));
    lookLater();
}

void QtFormWindow::standsAt(const screens::Standing &now, WindowPlace::Report report) {
    switch (report) {
    case WindowPlace::Report::Passed:
        break;
    case WindowPlace::Report::Granted:
        heldOff_ = {};
        break;
    case WindowPlace::Report::Refused:
        // The form goes on standing where it was put: what is dragged along with it would part
        // from it, were it to follow the window.
        heldOff_ = (now.program - QPointF(asked().topLeft())).toPoint();
        break;
    case WindowPlace::Report::Moved:
        heldOff_ = {};
        form_.movedTo(toTwips(now.program.x()), toTwips(now.program.y()));
        break;
    }
}

// While the window is on its way an answer may be one to an earlier place.
QPoint QtFormWindow::heldOff() const { return place_.isAtRest() ? heldOff_ : QPoint(); }

void QtFormWindow::awaitPlace() {
    if (top_ != nullptr && top_->isVisible() && !place_.isAtRest())
        hub_.loop.settle([this] { return place_.isAtRest(); }, placeLimit);
}

} // namespace velmora::platform::qt
