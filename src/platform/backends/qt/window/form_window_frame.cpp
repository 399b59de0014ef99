// The window as the window manager has it: shown, hidden, placed, stacked, minimised.

#include "platform/backends/qt/screen/geometry.h"
#include "platform/backends/qt/screen/screens.h"
#include "platform/backends/qt/screen/shell.h"
#include "platform/backends/qt/screen/stacking.h"
#include "platform/backends/qt/screen/text_convert.h"
#include "platform/backends/qt/window/form_window.h"
#include "platform/backends/qt/window/task_entry.h"
#include "platform/backends/qt/window/top_widget.h"

#include <QApplication>
#include <QScreen>
#include <QTimer>
#include <QWindow>

#include <cmath>
#include <utility>

namespace velmora::platform::qt {

namespace {

constexpr int raisePauseMs = 100;
constexpr int iconifyLimitMs = 1000;
constexpr int slideRoom = 7; // logical pixels: a step of a slide

Qt::WindowFlags flagsOf(const forms::Form &form) {
    Qt::WindowFlags flags = Qt::Window | Qt::FramelessWindowHint;
    if (form.unmanaged())
        flags |= Qt::BypassWindowManagerHint;
    return flags;
}

} // namespace

// Makes the toolkit's window and the native one behind it, unseen.
void QtFormWindow::realise() {
    if (top_ != nullptr)
        return;
    top_ = std::make_unique<TopWidget>(
        *this, scene_,
        [this](QWidget &widget, QEvent &event) { return input_.layerEvent(widget, event); },
        flagsOf(form_));
    translucent_ = isKeyed();
    scene_.keyed = isKeyed();
    if (translucent_)
        top_->setAttribute(Qt::WA_TranslucentBackground);
    else
        top_->setAttribute(Qt::WA_OpaquePaintEvent);
    top_->setAcceptDrops(FormInput::wantsDrops(form_));
    top_->setWindowTitle(toShown(form_.caption()));
    if (form_.icon() != forms::Picture::None && form_.showInTaskbar())
        top_->setWindowIcon(hub_.icon(form_.icon()));
    if (form_.startCentred()) {
        const RectPixels work = screens::workArea(hub_.x11);
        const double width = toPixels(form_.width());
        const double height = toPixels(form_.height());
        form_.movedTo(toTwips(std::round(work.left + (work.right - work.left - width) / 2)),
                      toTwips(std::round(work.top + (work.bottom - work.top - height) / 2)));
    }
    applyPlace();
    scene_.build(*top_);
    top_->winId();
    density_ = scaleFactor();
    origin_ = screens::primary().topLeft();
    keepOnMonitor();
    QObject::connect(top_->windowHandle(), &QWindow::screenChanged, top_.get(),
                     [this] { densityChanged(); });
}

void QtFormWindow::setStatesBeforeMap() {
    if (form_.unmanaged())
        return;
    if (!form_.showInTaskbar())
        hub_.x11.setStatesBeforeMap(nativeWindow(), {X11::SkipTaskbar, X11::SkipPager});
    if (form_.topmost())
        hub_.x11.setStatesBeforeMap(nativeWindow(), {X11::Above});
    fullScreen_ = isFullScreen();
    if (fullScreen_)
        hub_.x11.setStatesBeforeMap(nativeWindow(), {X11::FullScreen});
}

void QtFormWindow::show() {
    if (hidePending_) {
        // Hidden and shown within one event: on the screen that is coming forward, no more.
        hidePending_ = false;
        if (mayTakeKeyboard())
            bringForward();
        else
            raise();
        return;
    }
    const bool first = !shownOnce_;
    realise();
    setStatesBeforeMap();
    outlineDirty_ = true;
    applyOutline();
    comeBack();
    const bool welcome = mayTakeKeyboard();
    top_->setAttribute(Qt::WA_ShowWithoutActivating, !welcome);
    top_->windowHandle()->setProperty("_q_showWithoutActivating", !welcome);
    top_->show();
    if (welcome)
        top_->activateWindow();
    // A manager that still has the last hiding to do takes the states away that were set ahead.
    if (!first && !form_.unmanaged() && !form_.showInTaskbar())
        for (const X11::Atom state : {X11::SkipTaskbar, X11::SkipPager})
            hub_.x11.requestState(nativeWindow(), true, state);
    if (!first && !form_.unmanaged() && form_.topmost())
        hub_.x11.requestState(nativeWindow(), true, X11::Above);
    lookLater();
    hub_.moveToFront(*this);
    shownOnce_ = true;
    if (first)
        firstFocus();
    if (form_.unmanaged() && form_.topmost())
        applyTopmost();
    enterTaskBar();
}

// No manager lists what it does not have. One that minimises nothing would show what stands for it.
void QtFormWindow::enterTaskBar() {
    if (entry_ != nullptr || !form_.unmanaged() || !form_.showInTaskbar() ||
        !hub_.x11.managerMinimises())
        return;
    entry_ =
        std::make_unique<TaskEntry>(hub_.x11, toShown(form_.caption()), hub_.icon(form_.icon()),
                                    TaskEntry::Wishes{[this] {
                                                          hub_.x11.noteAct();
                                                          if (hub_.onEntry)
                                                              hub_.onEntry();
                                                      },
                                                      [this] { closed(); }});
}

// A film that follows another by itself comes up while the person may be writing elsewhere.
bool QtFormWindow::mayTakeKeyboard() const {
    return !form_.unmanaged() &&
           (QGuiApplication::applicationState() == Qt::ApplicationActive || !hub_.comesByItself());
}

// Who shows a window wants to see it: it does not come up minimised, whoever minimised it before.
void QtFormWindow::comeBack() {
    top_->setWindowState(top_->windowState() & ~Qt::WindowMinimized);
    if (form_.windowState() == forms::WindowState::Minimised)
        form_.stateChanged(forms::WindowState::Normal);
}

void QtFormWindow::firstFocus() {
    const forms::Control *wanted = form_.activeControl();
    if (wanted == nullptr)
        wanted = form_.nextFocus(false);
    QWidget *widget = wanted != nullptr ? scene_.widgetOf(*wanted) : nullptr;
    if (widget != nullptr && wanted->takesFocus())
        widget->setFocus();
    else
        top_->setFocus();
}

void QtFormWindow::hideSoon() {
    if (top_ == nullptr || hidePending_)
        return;
    hidePending_ = true;
    QMetaObject::invokeMethod(
        top_.get(), [this] { hideNow(); }, Qt::QueuedConnection);
}

void QtFormWindow::hideNow() {
    if (!hidePending_)
        return;
    hidePending_ = false;
    heldOff_ = {};
    entry_.reset();
    top_->hide();
    ground_.forget();
}

bool QtFormWindow::isFullScreen() const {
    return !form_.unmanaged() && asked() == QRect(QPoint(), screens::primary().size());
}

void QtFormWindow::applyPlace() {
    const QRect area = this->area();
    const QRect before = top_->geometry();
    const bool resized = before.size() != area.size();
    placing_ = true;
    place_.asked(area.topLeft(), top_->isVisible() && !form_.unmanaged());
    heldOff_ = {};
    if (isFullScreen()) {
        // No size of its own, else the window manager would not let it fill the screen.
        top_->setMinimumSize(0, 0);
        top_->setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    }
    if (top_->isVisible() && fullScreen_ != isFullScreen()) {
        // Only a full-screen window is above panels everywhere.
        fullScreen_ = isFullScreen();
        hub_.x11.requestState(nativeWindow(), fullScreen_, X11::FullScreen);
    }
    if (!isFullScreen() && (resized || !shownOnce_))
        top_->setFixedSize(area.size());
    if (top_->geometry() != area) {
        top_->setGeometry(area);
    } else if (before == area && top_->isVisible()) {
        // The toolkit believes a late report; the server knows better.
        const QPoint at = screens::deviceOf(asked().topLeft());
        const std::uint32_t values[] = {static_cast<std::uint32_t>(at.x()),
                                        static_cast<std::uint32_t>(at.y())};
        xcb_configure_window(hub_.x11.connection(), nativeWindow(),
                             XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, values);
        hub_.x11.flush();
    }
    placing_ = false;
    keepOnMonitor();
    askTurn();
    lookLater();
    if (resized || std::exchange(isCutAbove_, cutAbove() > 0) || isCutAbove_) {
        outlineDirty_ = true;
        applyOutline();
        top_->update();
    }
}

// What is as wide as its monitor the toolkit rounds up at some densities: a column of it would
// stand on the next one.
void QtFormWindow::keepOnMonitor() {
    const QScreen *screen = QGuiApplication::primaryScreen();
    if (!form_.unmanaged() || screen == nullptr || top_->windowHandle() == nullptr)
        return;
    const QRect area = asked();
    const QRect monitor = screens::inDevicePixels(*screen);
    const QRect window(screens::deviceOf(area.topLeft()),
                       (QSizeF(area.size()) * scaleFactor()).toSize());
    const bool isAsWide = area.right() + 1 == screen->geometry().width();
    const bool isAsLow = area.bottom() + 1 == screen->geometry().height();
    const QSize kept(
        isAsWide ? std::min(window.right(), monitor.right()) - window.left() + 1 : window.width(),
        isAsLow ? std::min(window.bottom(), monitor.bottom()) - window.top() + 1 : window.height());
    if (kept == window.size() || kept.isEmpty())
        return;
    const std::uint32_t values[] = {static_cast<std::uint32_t>(kept.width()),
                                    static_cast<std::uint32_t>(kept.height())};
    xcb_configure_window(hub_.x11.connection(), nativeWindow(),
                         XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values);
    hub_.x11.flush();
}

// The rows (device pixels) of what slides out of sight above the screen that would come up on a
// monitor there. What stands higher than a slide goes was dragged there.
int QtFormWindow::cutAbove() const {
    const QRect area = asked();
    const int above = -area.top();
    const int left = screens::primary().left();
    if (!form_.unmanaged() || !form_.showInTaskbar() || above <= 0 ||
        above >= area.height() + slideRoom ||
        !screens::goesOnAbove(left + area.left(), left + area.right()))
        return 0;
    return static_cast<int>(std::ceil(above * scaleFactor()));
}

// Another monitor is the primary one, or it lies elsewhere: a window that a manager has stays where
// it is on the screen, the others keep their place on the primary monitor.
void QtFormWindow::originChanged() {
    const QPoint now = screens::primary().topLeft();
    if (std::exchange(origin_, now) == now)
        return;
    if (form_.unmanaged()) {
        applyPlace();
        return;
    }
    const QPointF at = screens::standing(hub_.x11, *top_).program - heldOff_;
    form_.movedTo(toTwips(at.x()), toTwips(at.y()));
}

// The toolkit takes a window for as large as before, in pixels of another size: the server is told.
void QtFormWindow::screensChanged() {
    if (top_ == nullptr)
        return;
    originChanged();
    if (std::abs(scaleFactor() - density_) < 0.001)
        return;
    const double before = std::exchange(density_, scaleFactor());
    // Its corner stays where it is on the screen.
    form_.movedTo(static_cast<Twips>(form_.left() * before / density_),
                  static_cast<Twips>(form_.top() * before / density_));
    const QRect area = this->area();
    placing_ = true;
    place_.asked(area.topLeft(), false);
    heldOff_ = {};
    if (!isFullScreen()) {
        // The limits that the window manager knows count in the old pixels.
        top_->setMinimumSize(0, 0);
        top_->setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
        // What the toolkit paints on has the old density until the size is another.
        top_->setFixedSize(area.size() + QSize(1, 1));
        top_->repaint();
        top_->setFixedSize(area.size());
    }
    top_->setGeometry(area);
    constexpr std::uint16_t all = XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y |
                                  XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT;
    const QPoint at = screens::deviceOf(asked().topLeft());
    const std::uint32_t values[] = {static_cast<std::uint32_t>(at.x()),
                                    static_cast<std::uint32_t>(at.y()),
                                    static_cast<std::uint32_t>(qRound(area.width() * density_)),
                                    static_cast<std::uint32_t>(qRound(area.height() * density_))};
    xcb_configure_window(hub_.x11.connection(), nativeWindow(), all, values);
    hub_.x11.flush();
    placing_ = false;
    keepOnMonitor();
    densityChanged();
    applyOutline();
    top_->update();
}

// What no manager has goes above all that one has, and above its own kind of ours: a locker of the
// screen stays on top, and under a compositor it would not even see what came up over it.
void QtFormWindow::toTop() {
    if (!form_.unmanaged()) {
        top_->raise();
        return;
    }
    std::set<xcb_window_t> ours;
    for (const auto &[number, entry] : hub_.forms)
        if (entry.window != nullptr && entry.form->unmanaged() && entry.form->visible())
            ours.insert(entry.window->nativeWindow());
    raiseAboveManaged(hub_.x11, nativeWindow(), XCB_WINDOW_NONE, ours);
}

void QtFormWindow::applyTopmost() {
    if (!top_->isVisible())
        return;
    // Asked of the window manager directly: the toolkit's own way makes a new native window at the
    // next showing, which would blink.
    if (!form_.unmanaged())
        hub_.x11.requestState(nativeWindow(), form_.topmost(), X11::Above);
    toTop();
    hub_.x11.flush();
    if (!form_.unmanaged())
        return;
    // No window manager keeps this window above the others.
    if (!form_.topmost()) {
        hub_.x11.forget(nativeWindow());
        return;
    }
    hub_.x11.watchCovered(nativeWindow(), [this] {
        if (raisePosted_ || hub_.x11.composited())
            return;
        raisePosted_ = true;
        QTimer::singleShot(raisePauseMs, top_.get(), [this] {
            raisePosted_ = false;
            if (!form_.visible() || !form_.topmost())
                return;
            const QWidget *box = QApplication::activeModalWidget();
            raiseAboveManaged(hub_.x11, nativeWindow(),
                              box != nullptr ? static_cast<xcb_window_t>(box->winId())
                                             : xcb_window_t{XCB_WINDOW_NONE});
        });
    });
}

void QtFormWindow::applyState() {
    if (!top_->isVisible())
        return;
    if (form_.windowState() == forms::WindowState::Normal) {
        bringForward();
        return;
    }
    // Asked of the window manager directly: the toolkit would take the window for minimised under
    // one that minimises none, and its clicks and moves would go astray.
    hub_.x11.iconify(nativeWindow());
    QTimer::singleShot(iconifyLimitMs, top_.get(), [this] { stateChanged(); });
}

void QtFormWindow::stateChanged() {
    const bool minimised = top_ != nullptr && top_->isMinimized();
    const auto state = minimised ? forms::WindowState::Minimised : forms::WindowState::Normal;
    if (form_.windowState() == state)
        return;
    const Loop::Handler handler(hub_.loop);
    form_.stateChanged(state);
}

void QtFormWindow::raise() {
    if (top_ == nullptr || !form_.visible())
        return;
    if (top_->isMinimized() && !form_.showInTaskbar()) {
        bringForward(); // nothing else would ever bring it back
        return;
    }
    toTop();
    hub_.moveToFront(*this);
    hub_.x11.flush();
}

void QtFormWindow::bringForward() {
    if (top_ == nullptr)
        return;
    if (top_->isMinimized())
        top_->setWindowState(top_->windowState() & ~Qt::WindowMinimized);
    top_->raise();
    top_->activateWindow();
    hub_.moveToFront(*this);
    hub_.x11.flush();
}

void QtFormWindow::attention(bool wanted) {
    if (top_ == nullptr || !top_->isVisible() || top_->isMinimized() || top_->isActiveWindow())
        return;
    if (wanted && (attentionAsked_ || isGnome()))
        return;
    attentionAsked_ = wanted;
    hub_.x11.requestState(nativeWindow(), wanted, X11::DemandsAttention);
}

void QtFormWindow::activated() { attentionAsked_ = false; }

// The release of a button that is held now goes to the box, or nowhere.
void QtFormWindow::blocked() {
    const Loop::Handler handler(hub_.loop);
    form_.pointerLost();
}

// Panels show the window's name where its entry has none; the toolkit begins with an empty one. To
// take away what is not there wakes nobody.
void QtFormWindow::setTaskTitle(const QString &title) {
    if (top_ == nullptr)
        return;
    if (title == toShown(form_.caption()))
        hub_.x11.clearIconName(nativeWindow());
    else
        hub_.x11.setIconName(nativeWindow(), title.toUtf8());
}

void QtFormWindow::closed() {
    const Loop::Handler handler(hub_.loop);
    form_.closeRequested();
}

} // namespace velmora::platform::qt
