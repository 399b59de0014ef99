#include "platform/backends/qt/scene/list_view.h"

#include "platform/backends/qt/paint/look.h"
#include "platform/backends/qt/screen/geometry.h"
#include "platform/backends/qt/screen/key_state.h"
#include "platform/backends/qt/screen/text_convert.h"
#include "platform/forms/form.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace velmora::platform::qt {

namespace {

constexpr int rowsANotch = 3;
constexpr int eighthsANotch = 120;
constexpr int scrollPauseMs = 50;
constexpr double textLeft = 8;
constexpr double barWidth = 3;

} // namespace

ListView::ListView(forms::ListBox &list, TextPainter &texts, Loop &loop, QWidget *parent)
    : QWidget(parent), list_(list), texts_(texts), loop_(loop) {
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    scroll_.setInterval(scrollPauseMs);
    connect(&scroll_, &QTimer::timeout, this, [this] { drag(); });
}

double ListView::rowHeight() const { return std::max(1.0, toPixels(list_.rowHeight())); }

int ListView::rowAt(double y) const {
    return list_.topIndex() + static_cast<int>(std::floor(y / rowHeight()));
}

QRect ListView::rowRect(int row) const {
    const double top = (row - list_.topIndex()) * rowHeight();
    return QRectF(0, top, width(), rowHeight()).toAlignedRect();
}

void ListView::paintEvent(QPaintEvent *event) {
    QPainter painter(this);
    const double density = devicePixelRatioF();
    painter.fillRect(event->rect(), toQColor(list_.backColor()));
    const int first = std::max<int>(list_.topIndex(), rowAt(event->rect().top()));
    const int last = std::min<int>(list_.listCount() - 1, rowAt(event->rect().bottom()));
    for (int row = first; row <= last; ++row) {
        const QRectF place = snapped(
            QRectF(0, (row - list_.topIndex()) * rowHeight(), width(), rowHeight()), density);
        paintRow(painter, row, place, density);
    }
}

void ListView::paintRow(QPainter &painter, int row, const QRectF &place, double density) {
    if (list_.selected(row)) {
        painter.fillRect(place, QColor::fromRgba(look::rowTint));
        painter.fillRect(QRectF(place.left(), place.top(), barWidth, place.height()),
                         QColor::fromRgba(look::accent));
    }
    // The current row is marked where it is not told by being the one selected row.
    if (row == list_.listIndex() && (list_.multiSelect() || !list_.selected(row)) && hasFocus()) {
        const double half = hairline(density) / 2;
        painter.setPen(QPen(QColor::fromRgba(look::accentDeep), hairline(density)));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(place.adjusted(half, half, -half, -half));
    }
    TextLook look;
    look.font = &list_.font();
    look.colour = isEnabled() ? toQColor(list_.foreColor()) : QColor::fromRgba(look::dimmed);
    look.middle = true;
    texts_.draw(painter, place.adjusted(textLeft, 0, -2, 0), list_.list(row), look);
}

void ListView::mousePressEvent(QMouseEvent *event) {
    event->accept();
    const Loop::Handler handler(loop_);
    if (event->button() == Qt::RightButton)
        list_.userRightClicked(rowAt(event->position().y()));
    if (event->button() != Qt::LeftButton)
        return;
    dragging_ = true;
    dragY_ = event->position().y();
    dragShift_ = shiftState(event->modifiers());
    const int row = rowAt(dragY_);
    if (dragY_ >= 0 && row < list_.listCount())
        list_.userClicked(row, dragShift_, false);
}

void ListView::mouseMoveEvent(QMouseEvent *event) {
    event->accept();
    if (!dragging_ || (event->buttons() & Qt::LeftButton) == 0)
        return;
    dragY_ = event->position().y();
    drag();
    const bool beyond = dragY_ < 0 || dragY_ >= height();
    if (beyond != scroll_.isActive()) {
        if (beyond)
            scroll_.start();
        else
            scroll_.stop();
    }
}

// A release that goes to a box, a menu or a disabled window never comes here.
bool ListView::isDragOver() const {
    return (QGuiApplication::mouseButtons() & Qt::LeftButton) == 0 || !list_.isLive() ||
           QApplication::activeModalWidget() != nullptr ||
           QApplication::activePopupWidget() != nullptr;
}

void ListView::endDrag() {
    dragging_ = false;
    scroll_.stop();
}

void ListView::drag() {
    if (isDragOver()) {
        endDrag();
        return;
    }
    if (list_.listCount() == 0)
        return;
    const Loop::Handler handler(loop_);
    const int visible = std::max(1, static_cast<int>(height() / rowHeight()));
    const int highest = std::max(0, list_.topIndex() - 1);
    const int lowest = std::min<int>(list_.listCount() - 1, list_.topIndex() + visible);
    list_.userClicked(std::clamp(rowAt(dragY_), highest, lowest), dragShift_, true);
}

void ListView::mouseReleaseEvent(QMouseEvent *event) {
    event->accept();
    if (event->button() == Qt::LeftButton)
        endDrag();
}

void ListView::mouseDoubleClickEvent(QMouseEvent *event) {
    if (event->button() == Qt::RightButton) {
        mousePressEvent(event);
        return;
    }
    event->accept();
    if (event->button() != Qt::LeftButton)
        return;
    const Loop::Handler handler(loop_);
    list_.userDoubleClicked(rowAt(event->position().y()));
}

// Where no click could reach the list, nothing comes of one.
bool ListView::isOpen(int row) const {
    return isVisible() && row < list_.listCount() && list_.isLive() &&
           !list_.form().isCovered(list_);
}

void ListView::activate(int row) {
    choose(row, false);
    if (!isOpen(row))
        return;
    const Loop::Handler handler(loop_);
    list_.userDoubleClicked(row);
}

void ListView::choose(int row, bool besideOthers) {
    if (!isOpen(row))
        return;
    const Loop::Handler handler(loop_);
    setFocus();
    list_.ensureVisible(row);
    list_.userClicked(row, besideOthers && list_.multiSelect() ? forms::ctrlMask : 0, false);
}

void ListView::wheelEvent(QWheelEvent *event) {
    event->accept();
    wheel_ += event->angleDelta().y();
    const int rows = wheel_ * rowsANotch / eighthsANotch;
    if (rows == 0)
        return;
    wheel_ -= rows * eighthsANotch / rowsANotch;
    const Loop::Handler handler(loop_);
    list_.userScrolled(list_.topIndex() - rows);
}

int ListView::rowFor(int key) const {
    const int current = list_.listIndex();
    const int page = std::max(1, static_cast<int>(list_.designRows()) - 1);
    switch (key) {
    case Qt::Key_Up:
    case Qt::Key_Left:
        return std::max(0, current - 1);
    case Qt::Key_Down:
    case Qt::Key_Right:
        return current + 1;
    case Qt::Key_PageUp:
        return std::max(0, current - page);
    case Qt::Key_PageDown:
        return current + page;
    case Qt::Key_Home:
        return 0;
    case Qt::Key_End:
        return list_.listCount() - 1;
    default:
        return -1;
    }
}

void ListView::keyPressEvent(QKeyEvent *event) {
    const int row = rowFor(event->key());
    if (row < 0 || list_.listCount() == 0) {
        event->ignore();
        return;
    }
    event->accept();
    const Loop::Handler handler(loop_);
    list_.userMoved(std::min(row, list_.listCount() - 1), shiftState(event->modifiers()));
}

void ListView::focusInEvent(QFocusEvent * /*event*/) { update(); }
void ListView::focusOutEvent(QFocusEvent * /*event*/) {
    endDrag();
    update();
}

} // namespace velmora::platform::qt
