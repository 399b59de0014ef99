#include "platform/backends/qt/boxes/dark_dialog.h"

#include "platform/backends/qt/paint/look.h"
#include "platform/backends/qt/screen/geometry.h"
#include "platform/backends/qt/screen/screens.h"
#include "platform/backends/qt/screen/text_convert.h"
#include "platform/backends/qt/window/form_window.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>
#include <QWindow>

namespace velmora::platform::qt {

namespace {

constexpr int titleHeight = 28;
constexpr int margin = 16;
constexpr int gap = 16;

QRect around(Hub &hub) {
    const QWidget *active = QApplication::activeWindow();
    return active != nullptr ? QRect(screens::standing(hub.x11, *active).toolkit, active->size())
                             : screens::freeOfPanels(hub.x11);
}

} // namespace

QPoint boxPlace(Hub &hub, QSize size) {
    QRect place(QPoint(0, 0), size);
    place.moveCenter(around(hub).center());
    const QRect free = screens::freeOfPanelsAt(hub.x11, place.center());
    place.moveLeft(
        std::clamp(place.left(), free.left(), std::max(free.left(), free.right() - place.width())));
    place.moveTop(
        std::clamp(place.top(), free.top(), std::max(free.top(), free.bottom() - place.height())));
    return place.topLeft();
}

DarkDialog::DarkDialog(Hub &hub, const QString &title)
    : QDialog(nullptr, Qt::Dialog | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint), hub_(hub) {
    setWindowTitle(title);
    setWindowModality(Qt::ApplicationModal);
    setFont(hub.fonts.plainFont(9));
    auto *outer = new QVBoxLayout(this);
    outer->setContentsMargins(margin, titleHeight + margin, margin, margin);
    outer->setSpacing(gap);
    outer->setSizeConstraint(QLayout::SetFixedSize);
    body_ = outer;
}

QRect DarkDialog::room() const { return screens::freeOfPanelsAt(hub_.x11, around(hub_).center()); }

int DarkDialog::run() {
    adjustSize();
    move(boxPlace(hub_, size()));
    winId();
    hub_.x11.setStatesBeforeMap(static_cast<xcb_window_t>(windowHandle()->winId()),
                                {X11::SkipTaskbar, X11::SkipPager});
    hub_.loop.arm();
    return exec();
}

void DarkDialog::paintEvent(QPaintEvent * /*event*/) {
    QPainter painter(this);
    const double thick = hairline(devicePixelRatioF());
    const QRectF area(rect());
    QLinearGradient fill(area.topLeft(), area.bottomLeft());
    fill.setColorAt(0, QColor::fromRgba(look::bodyTop));
    fill.setColorAt(std::min(1.0, titleHeight / area.height()), QColor::fromRgba(look::bodyMiddle));
    fill.setColorAt(1, QColor::fromRgba(look::bodyFoot));
    painter.fillRect(area, fill);
    painter.setPen(QPen(QColor::fromRgba(look::outline), thick));
    const double half = thick / 2;
    painter.drawRect(area.adjusted(half, half, -half, -half));
    painter.fillRect(QRectF(thick, 0, area.width() - 2 * thick, thick),
                     QColor::fromRgba(look::litEdge));
    painter.fillRect(QRectF(thick, titleHeight, area.width() - 2 * thick, thick),
                     QColor::fromRgba(look::outline));
    const forms::Font font(u"Arial", 9, true);
    TextLook title;
    title.font = &font;
    title.colour = QColor::fromRgba(look::text);
    title.middle = true;
    hub_.texts.draw(painter, QRectF(margin, 0, area.width() - 2 * margin, titleHeight),
                    fromQString(windowTitle()), title);
}

void DarkDialog::mousePressEvent(QMouseEvent *event) {
    dragging_ = event->button() == Qt::LeftButton;
    dragFrom_ = event->globalPosition().toPoint() - pos();
}

void DarkDialog::mouseMoveEvent(QMouseEvent *event) {
    if (dragging_ && (event->buttons() & Qt::LeftButton) != 0)
        move(event->globalPosition().toPoint() - dragFrom_);
}

void DarkDialog::mouseReleaseEvent(QMouseEvent * /*event*/) { dragging_ = false; }

} // namespace velmora::platform::qt
