#include "platform/backends/qt/window/form_window.h"

#include "platform/backends/qt/paint/hole_shape.h"
#include "platform/backends/qt/screen/geometry.h"
#include "platform/backends/qt/screen/screens.h"
#include "platform/backends/qt/screen/text_convert.h"
#include "platform/backends/qt/window/accessible.h"
#include "platform/backends/qt/window/task_entry.h"
#include "platform/backends/qt/window/top_widget.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QScreen>
#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <cstring>

namespace velmora::platform::qt {

namespace {

constexpr auto forcedPause = std::chrono::milliseconds(16);
// Paints that may follow each other at once before pumps put them off.
constexpr int paintsAhead = 4;
// How far behind its ends a line rolls before it turns, at most.
constexpr Twips rollMargin = 1800;
constexpr auto exposureLimit = std::chrono::milliseconds(500);

} // namespace

QtFormWindow::QtFormWindow(Hub &hub, forms::Form &form)
    : hub_(hub), form_(form),
      scene_(form, hub.painter, {hub.fonts, hub.texts, hub.loop},
             {[this](QWidget &widget, QEvent &event) { return input_.layerEvent(widget, event); },
              [this](forms::Control &control, QWidget &widget, QEvent &event) {
                  return input_.childEvent(control, widget, event);
              },
              [this](const ControlPainter::Job &job) { paintGround(job); },
              [this](const forms::Control &control, const QRectF &area) {
                  areaTouched(control, area);
              }}),
      input_(hub, *this, form, scene_), rolling_(hub.x11) {
    look_.setSingleShot(true);
    look_.callOnTimeout(&look_, [this] { look(); });
    for (auto &[number, entry] : hub_.forms)
        if (entry.form == &form_)
            entry.window = this;
}

QtFormWindow::~QtFormWindow() {
    if (top_ != nullptr && top_->windowHandle() != nullptr)
        hub_.x11.forget(nativeWindow());
    hub_.windowGone(*this);
    // Child widgets belong to controls; the window goes first, so that they are not drawn again.
    if (top_ != nullptr)
        top_->hide();
    top_.reset();
}

QWidget *QtFormWindow::top() const noexcept { return top_.get(); }

xcb_window_t QtFormWindow::nativeWindow() const {
    const QWindow *handle = top_ != nullptr ? top_->windowHandle() : nullptr;
    return handle != nullptr ? static_cast<xcb_window_t>(handle->winId()) : xcb_window_t{0};
}

double QtFormWindow::scaleFactor() const {
    if (top_ != nullptr)
        return top_->devicePixelRatioF();
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen != nullptr ? screen->devicePixelRatio() : 1.0;
}

bool QtFormWindow::isKeyed() const {
    return form_.layered() && form_.windowKey().has_value() && *form_.windowKey() == keyColour;
}

void QtFormWindow::controlChanged(forms::Control &control, forms::Change what,
                                  const RectTwips &before) {
    if (top_ == nullptr)
        return;
    if (what == forms::Change::Pointer) {
        input_.pointerLookChanged();
        return;
    }
    if (what == forms::Change::ToolTip)
        input_.tipChanged(control);
    const bool rolled = what == forms::Change::Place && rolls(control, before) &&
                        roll(static_cast<const forms::Label &>(control));
    if (!rolled) {
        if (what != forms::Change::ToolTip)
            endRoll();
        scene_.controlChanged(control, what, before);
    }
    announce(scene_, control, what);
}

void QtFormWindow::controlGone(forms::Control &control) {
    endRoll();
    scene_.controlGone(control);
}

// A title rolls four times a second while a track plays. Who reads the screen aloud is told by the
// toolkit, which tells the server a second time then.
void QtFormWindow::showCaption() {
    const QString caption = toShown(form_.caption());
    if (QAccessible::isActive())
        top_->setWindowTitle(caption);
    hub_.x11.setName(nativeWindow(), caption.toUtf8());
}

void QtFormWindow::formChanged(forms::FormChange what, const RectTwips & /*before*/) {
    endRoll();
    if (what == forms::FormChange::Visible) {
        if (form_.visible())
            show();
        else
            hideSoon();
        return;
    }
    if (top_ == nullptr)
        return;
    switch (what) {
    case forms::FormChange::Place:
        applyPlace();
        break;
    case forms::FormChange::Enabled:
        if (form_.enabled())
            focus(form_.activeControl());
        break;
    case forms::FormChange::Caption:
        showCaption();
        break;
    case forms::FormChange::State:
        applyState();
        break;
    case forms::FormChange::Look:
        applyLook();
        break;
    case forms::FormChange::Icon:
        top_->setWindowIcon(hub_.icon(form_.icon()));
        break;
    case forms::FormChange::Topmost:
        applyTopmost();
        break;
    case forms::FormChange::Pointer:
        input_.pointerLookChanged();
        break;
    default:
        break;
    }
}

void QtFormWindow::paintGround(const ControlPainter::Job &job) {
    ground_.paint(job, form_, hub_.x11.composited());
}

void QtFormWindow::refresh(forms::Control * /*control*/) {
    if (top_ == nullptr || !form_.visible() || hidePending_ || top_->isMinimized())
        return;
    QWindow *handle = top_->windowHandle();
    if (handle == nullptr)
        return;
    if (!handle->isExposed())
        hub_.loop.settle([handle] { return handle->isExposed(); }, exposureLimit);
    const auto now = std::chrono::steady_clock::now();
    // The start sequence's own texts are all seen; later, painting more often than the eye follows
    // is left to the next round.
    if (hub_.loop.running() && now - lastForced_ < forcedPause)
        return;
    lastForced_ = now;
    applyOutline();
    paintedFor_ = std::clamp(paintedFor_, now, now + paintsAhead * forcedPause) + forcedPause;
    // What changed has announced itself by now.
    forced_ = true;
    QCoreApplication::sendPostedEvents(top_.get(), QEvent::UpdateRequest);
    if (paintOwed_)
        payPaint();
    forced_ = false;
    hub_.x11.flush();
}

// A long operation pumps a thousand times a second. What it shows is painted as often as the eye
// follows; a few pumps in a row paint at once, so that what is shown ahead of a wait is seen.
bool QtFormWindow::putsPaintOff() {
    if (forced_ || !hub_.loop.pumping() || !hub_.loop.running())
        return false;
    const auto now = std::chrono::steady_clock::now();
    if (paintedFor_ <= now + paintsAhead * forcedPause) {
        paintedFor_ = std::max(paintedFor_, now) + forcedPause;
        return false;
    }
    if (!paintOwed_)
        QTimer::singleShot(forcedPause, Qt::PreciseTimer, top_.get(), [this] { payPaint(); });
    paintOwed_ = true;
    return true;
}

void QtFormWindow::payPaint() {
    if (!paintOwed_)
        return;
    paintOwed_ = false;
    QEvent request(QEvent::UpdateRequest);
    QCoreApplication::sendEvent(top_.get(), &request);
}

void QtFormWindow::focus(forms::Control *control) {
    if (top_ == nullptr)
        return;
    QWidget *widget = control != nullptr ? scene_.widgetOf(*control) : nullptr;
    if (widget != nullptr && control->takesFocus()) {
        if (!widget->hasFocus())
            widget->setFocus();
    } else {
        top_->setFocus();
    }
    scene_.followFocus();
    announceFocus(scene_, form_);
}

std::uintptr_t QtFormWindow::pictureWindow(forms::PictureBox &box) {
    realise();
    return static_cast<std::uintptr_t>(scene_.nativeBox(box)->winId());
}

// --- the outline --------------------------------------------------------------------------------

void QtFormWindow::areaTouched(const forms::Control &control, const QRectF &area) {
    if (!isKeyed() || outlineDirty_ || !form_.visible())
        return;
    if (ControlPainter::makesHoles(control))
        hasHoleMakers_ = true;
    if (!hasHoleMakers_ && ground_.isSolid(form_, area, scaleFactor(), hub_.x11.composited()))
        return;
    outlineDirty_ = true;
    top_->update(area.toAlignedRect());
    if (outlinePosted_)
        return;
    // A window without any outline is never asked to paint.
    outlinePosted_ = true;
    QMetaObject::invokeMethod(
        top_.get(),
        [this] {
            outlinePosted_ = false;
            applyOutline();
        },
        Qt::QueuedConnection);
}

void QtFormWindow::applyOutline() {
    if (!outlineDirty_ || top_ == nullptr || top_->windowHandle() == nullptr)
        return;
    outlineDirty_ = false;
    scene_.forgetMarks(); // a change from here on touches the outline again
    if (!isKeyed()) {
        if (hasOutline_)
            hub_.x11.clearShape(nativeWindow());
        hasOutline_ = false;
        return;
    }
    const double density = scaleFactor();
    QImage image(QSize(std::max(1, qRound(toPixels(form_.width()) * density)),
                       std::max(1, qRound(toPixels(form_.height()) * density))),
                 QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return;
    image.setDevicePixelRatio(density);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        scene_.paintOutline(painter, density,
                            {0, 0, toPixels(form_.width()), toPixels(form_.height())});
    }
    if (const int cut = std::min(cutAbove(), image.height()))
        std::memset(image.bits(), 0, static_cast<std::size_t>(image.bytesPerLine()) * cut);
    const bool soft = translucent_ && hub_.x11.composited();
    hub_.x11.setShape(nativeWindow(), solidRows(image, soft ? softThreshold : hardThreshold));
    hasOutline_ = true;
}

// A step of a line that rolls across a window which is nothing but that line.
bool QtFormWindow::rolls(const forms::Control &control, const RectTwips &before) const {
    const RectTwips place = control.placeInForm();
    if (control.kind() != forms::Kind::Label || !form_.unmanaged() || !isKeyed() || !translucent_ ||
        before.top != place.top || before.width != place.width || before.height != place.height ||
        place.width <= form_.width() || !form_.visible() || hidePending_ || outlineDirty_ ||
        form_.ground() != forms::Picture::None || !top_->windowHandle()->isExposed())
        return false;
    const auto &all = form_.controls();
    return std::all_of(all.begin(), all.end(),
                       [&](const forms::Control *other) {
                           return other == &control || !other->isShown();
                       }) &&
           control.isShown();
}

bool QtFormWindow::roll(const forms::Label &line) {
    const double density = scaleFactor();
    const auto inPixels = [density](double twips) {
        return qRound(twips / twipsPerPixel * density);
    };
    const int margin = inPixels(rollMargin);
    const int left = inPixels(line.left());
    if (!rolling_.isOn()) {
        QImage picture(
            QSize(inPixels(line.width()) + 2 * margin, std::max(1, inPixels(form_.height()))),
            QImage::Format_ARGB32_Premultiplied);
        if (picture.isNull())
            return false;
        picture.setDevicePixelRatio(density);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        const double origin = (margin - left) / density;
        painter.translate(origin, 0);
        const QSizeF seen = QSizeF(picture.size()) / density;
        scene_.paintOutline(painter, density, {QPointF(-origin, 0), seen});
        painter.end();
        const QSize size(std::max(1, inPixels(form_.width())), picture.height());
        if (!rolling_.begin(nativeWindow(), size, picture, hub_.x11.composited()))
            return false;
    }
    if (rolling_.moveTo(left - margin))
        return true;
    endRoll();
    return false;
}

void QtFormWindow::endRoll() {
    if (!rolling_.isOn())
        return;
    rolling_.end();
    outlineDirty_ = true;
    top_->update();
}

void QtFormWindow::applyLook() {
    scene_.keyed = isKeyed();
    ground_.forget();
    outlineDirty_ = true;
    applyOutline();
    top_->update();
}

void QtFormWindow::compositorChanged() {
    if (top_ == nullptr || !isKeyed())
        return;
    endRoll();
    ground_.forget();
    outlineDirty_ = true;
    if (form_.visible()) {
        applyOutline();
        top_->update();
    }
}

void QtFormWindow::densityChanged() {
    endRoll();
    density_ = scaleFactor();
    ground_.forget();
    outlineDirty_ = true;
    const Loop::Handler handler(hub_.loop);
    form_.scaleChanged();
    applyOutline(); // a window without any outline is never asked to paint
    top_->update();
}

} // namespace velmora::platform::qt
