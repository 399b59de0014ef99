#include "platform/backends/qt/window/form_window.h"

#include "platform/backends/qt/paint/hole_shape.h"
#include "platform/backends/qt/screen/geometry.h"
#include "platform/backends/qt/screen/screens.h"
#include "platform/backends/qt/screen/text_convert.h"
#include "platform/backends/qt/window/accessible.h"
#include "platform/backends/qt/window/top_widget.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTimer>
#include <QWindow>

#include <algorithm>

namespace velmora::platform::qt {

namespace {

constexpr auto forcedPause = std::chrono::milliseconds(16);
// Paints that may follow each other at once before pumps put them off.
constexpr int paintsAhead = 4;
constexpr auto rollingPause = std::chrono::milliseconds(200);
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
      input_(hub, *this, form, scene_) {
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
    scene_.controlChanged(control, what, before);
    announce(scene_, control, what);
}

void QtFormWindow::controlGone(forms::Control &control) { scene_.controlGone(control); }

void QtFormWindow::formChanged(forms::FormChange what, const RectTwips & /*before*/) {
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
        top_->setWindowTitle(toShown(form_.caption()));
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
        scene_.paintOutline(painter, density);
    }
    const bool soft = translucent_ && hub_.x11.composited();
    // While a line rolls without a compositor the server paints anew what each step uncovers, in a
    // time that grows with the square of the rectangles: pairs of rows then share their outline.
    const auto now = std::chrono::steady_clock::now();
    const bool rolls = form_.unmanaged() && !soft && now - lastOutline_ < rollingPause;
    lastOutline_ = now;
    hub_.x11.setShape(nativeWindow(),
                      solidRows(image, soft ? softThreshold : hardThreshold, rolls ? 2 : 1));
    hasOutline_ = true;
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
    ground_.forget();
    outlineDirty_ = true;
    if (form_.visible()) {
        applyOutline();
        top_->update();
    }
}

void QtFormWindow::densityChanged() {
    density_ = scaleFactor();
    ground_.forget();
    outlineDirty_ = true;
    const Loop::Handler handler(hub_.loop);
    form_.scaleChanged();
    applyOutline(); // a window without any outline is never asked to paint
    top_->update();
}

} // namespace velmora::platform::qt
