#include "platform/backends/qt/system/qt_windows.h"

#include "base/text.h"
#include "platform/backends/linux/font_pages.h"
#include "platform/backends/qt/boxes/dark_dialog.h"
#include "platform/backends/qt/boxes/message_box.h"
#include "platform/backends/qt/boxes/popup_menu.h"
#include "platform/backends/qt/boxes/tray.h"
#include "platform/backends/qt/paint/picture_painter.h"
#include "platform/backends/qt/screen/geometry.h"
#include "platform/backends/qt/screen/screens.h"
#include "platform/backends/qt/screen/text_convert.h"
#include "platform/backends/qt/system/application.h"
#include "platform/backends/qt/system/edge_sensor.h"
#include "platform/backends/qt/system/screen_watch.h"
#include "platform/backends/qt/system/session_end.h"
#include "platform/backends/qt/window/accessible.h"
#include "platform/backends/qt/window/form_window.h"
#include "platform/backends/qt/window/hub.h"
#include "platform/forms/timer.h"

#include <QApplication>
#include <QCursor>
#include <QDialog>
#include <QSocketNotifier>

#include <algorithm>
#include <cstring>

namespace velmora::platform {

namespace {

constexpr double plainPoints = 9;
// The number of the task bar, which is no window of ours.
constexpr HWND taskBarNumber = ~HWND{0};

} // namespace

struct QtWindowSystem::Parts {
    Parts(std::unique_ptr<qt::Application> started, const QtOptions &options)
        : application(std::move(started)), tray(hub),
          sensor(hub, options.pointerUnknownOutside || hub.x11.isGuest()) {
        qt::installAccessibility();
        hub.x11.onCompositor = [this] {
            for (auto &[number, entry] : hub.forms)
                if (entry.window != nullptr)
                    entry.window->compositorChanged();
        };
    }

    ~Parts() { hub.loop.dropIdle(); }
    Parts(const Parts &) = delete;
    Parts &operator=(const Parts &) = delete;

    forms::Form *form(HWND window) {
        const qt::FormEntry *entry = hub.entry(window);
        return entry != nullptr ? entry->form : nullptr;
    }

    // A shown window that stands by itself in the upper half of the screen; the line across the
    // desktop never leaves the lower edge.
    bool stripIsUp() const {
        return std::any_of(
            hub.forms.begin(), hub.forms.end(),
            [](const auto &each) {
                const forms::Form &form = *each.second.form;
                return form.unmanaged() && form.visible() &&
                       form.top() < qt::toTwips(qt::screens::primary().height()) / 2;
            });
    }

    // The window manager sees to its own windows when a screen shrinks or goes; the others, shown
    // or not, would stay where nobody reaches them.
    void bringBack() {
        for (const auto &[number, entry] : hub.forms) {
            forms::Form &form = *entry.form;
            if (!form.unmanaged())
                continue;
            const QRect now =
                qt::nearest(qt::toPixels({form.left(), form.top(), form.width(), form.height()}));
            const QRect seen = qt::screens::reachable(now);
            if (seen.left() != now.left())
                form.setLeft(form.left() + qt::toTwips(seen.left() - now.left()));
            if (seen.top() != now.top())
                form.setTop(form.top() + qt::toTwips(seen.top() - now.top()));
        }
    }

    PointPixels pointerAt;
    std::chrono::steady_clock::time_point pointerAsked{};
    std::unique_ptr<qt::Application> application; // first made, last to go
    qt::Hub hub;
    qt::Tray tray;
    qt::EdgeSensor sensor;
    std::unique_ptr<qt::SessionEnd> sessionEnd;
    std::unique_ptr<qt::ScreenWatch> screenWatch;
};

std::unique_ptr<QtWindowSystem> QtWindowSystem::make(const QtOptions &options) {
    auto application = qt::Application::make(options);
    if (application == nullptr)
        return nullptr;
    return std::unique_ptr<QtWindowSystem>(
        new QtWindowSystem(std::make_unique<Parts>(std::move(application), options)));
}

QtWindowSystem::QtWindowSystem(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {
    // What has no font of its own: the common dialogs and the tips.
    QApplication::setFont(parts_->hub.fonts.plainFont(plainPoints));
    parts_->sessionEnd = std::make_unique<qt::SessionEnd>([this] {
        const qt::Loop::Handler handler(parts_->hub.loop);
        if (onSessionEnd)
            onSessionEnd();
    });
    parts_->screenWatch = std::make_unique<qt::ScreenWatch>([this] {
        const qt::Loop::Handler handler(parts_->hub.loop);
        for (auto &[number, entry] : parts_->hub.forms)
            if (entry.window != nullptr)
                entry.window->screensChanged();
        parts_->bringBack();
        if (onScreensChanged)
            onScreensChanged();
    });
    parts_->hub.onEntry = [this] { parts_->tray.click(); };
    parts_->hub.x11.onWorkArea = [this] { parts_->screenWatch->changed(); };
}

QtWindowSystem::~QtWindowSystem() = default;

int QtWindowSystem::run() {
    // The start wrote Chinese in every language, and looked through whole tables of each face.
    letGoOfFontPages();
    return parts_->hub.loop.run();
}
void QtWindowSystem::quit(int status) { parts_->hub.loop.quit(status); }

double QtWindowSystem::pixelScale() const { return qGuiApp->devicePixelRatio(); }

std::function<void(bool)> QtWindowSystem::watch(int descriptor, std::function<void()> ready) {
    // A watch may end inside its own call, so the notifiers go when that is over.
    const auto make = [&](QSocketNotifier::Type type) {
        std::shared_ptr<QSocketNotifier> notifier(
            new QSocketNotifier(descriptor, type),
            [](QSocketNotifier *gone) {
                gone->setEnabled(false);
                gone->disconnect();
                gone->deleteLater();
            });
        notifier->setEnabled(type == QSocketNotifier::Read);
        QObject::connect(
            notifier.get(), &QSocketNotifier::activated, notifier.get(),
            [loop = &parts_->hub.loop, ready] {
                const auto work = ready;
                const qt::Loop::Handler handler(*loop);
                work();
            });
        return notifier;
    };
    return [reading = make(QSocketNotifier::Read),
            writing = make(QSocketNotifier::Write)](bool wanted) { writing->setEnabled(wanted); };
}

void QtWindowSystem::beforeNestedLoop() { parts_->hub.loop.arm(); }

void QtWindowSystem::beforeDialog(QWidget &dialog) {
    dialog.ensurePolished();
    const QSize wanted = dialog.sizeHint().expandedTo(dialog.minimumSizeHint());
    const bool isSized = dialog.testAttribute(Qt::WA_Resized);
    dialog.move(qt::boxPlace(parts_->hub, isSized ? dialog.size() : wanted));
    beforeNestedLoop();
}

bool QtWindowSystem::waitModal(const std::function<bool()> &done,
                               std::optional<std::chrono::milliseconds> limit) {
    using std::chrono::steady_clock;
    // Never on the screen, but modal all the same: what the toolkit has for the dialogs of others.
    QDialog standIn;
    standIn.setAttribute(Qt::WA_DontShowOnScreen);
    standIn.setWindowModality(Qt::ApplicationModal);
    standIn.show();
    const auto end = steady_clock::now() + limit.value_or(std::chrono::hours(24 * 365));
    while (!done()) {
        if (steady_clock::now() >= end)
            return false;
        parts_->hub.loop.waitUntil(end);
    }
    return true;
}

std::uint32_t QtWindowSystem::nativeWindow(HWND window) {
    const qt::FormEntry *entry = parts_->hub.entry(window);
    return entry != nullptr && entry->window != nullptr ? entry->window->nativeWindow() : 0;
}

bool QtWindowSystem::coversOthers() const {
    const auto &order = parts_->hub.order;
    return std::any_of(order.begin(), order.end(), [](const qt::QtFormWindow *window) {
        const forms::Form &form = window->form();
        return form.visible() && !form.unmanaged() && (form.topmost() || window->isFullScreen());
    });
}

std::uint32_t QtWindowSystem::waitForEvents(std::chrono::steady_clock::time_point due) {
    return parts_->hub.loop.waitUntil(due) ? 0 : 1;
}

// --- forms, pump, text ---------------------------------------------------------------------------

HWND QtWindowSystem::formMade(forms::Form &form) { return parts_->hub.addForm(form); }

void QtWindowSystem::formGone(forms::Form &form) {
    std::erase_if(
        parts_->hub.forms, [&](const auto &entry) { return entry.second.form == &form; });
}

std::unique_ptr<forms::FormWindow> QtWindowSystem::makeWindow(forms::Form &form) {
    return std::make_unique<qt::QtFormWindow>(parts_->hub, form);
}

forms::TimerQueue &QtWindowSystem::timers() { return parts_->hub.loop.timers(); }
void QtWindowSystem::DoEvents() { parts_->hub.loop.pump(); }

void QtWindowSystem::whenIdle(std::function<void()> work) {
    parts_->hub.loop.whenIdle(std::move(work));
}

forms::TextExtent QtWindowSystem::textExtent(std::u16string_view text, const forms::Font &font) {
    return parts_->hub.fonts.extent(text, font);
}

forms::Surface QtWindowSystem::pictureSurface(forms::Picture picture, int width, int height) {
    forms::Surface surface(width, height);
    if (surface.empty())
        return surface;
    QImage image(surface.width(), surface.height(), QImage::Format_RGB32);
    if (image.isNull())
        return surface;
    image.fill(Qt::black);
    QPainter painter(&image);
    qt::paintPicture(painter, picture, QRectF(image.rect()));
    painter.end();
    for (int y = 0; y < image.height(); ++y) {
        const auto *row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x)
            surface.setPixel(x, y, row[x] | forms::Surface::black);
    }
    return surface;
}

// --- window operations ---------------------------------------------------------------------------

std::int32_t QtWindowSystem::GetWindowLongA(HWND window, std::int32_t index) {
    const forms::Form *form = parts_->form(window);
    return form != nullptr && index == GWL_EXSTYLE && form->layered() ? WS_EX_LAYERED : 0;
}

std::int32_t QtWindowSystem::SetWindowLongA(HWND window, std::int32_t index, std::int32_t value) {
    const std::int32_t before = GetWindowLongA(window, index);
    if (forms::Form *form = parts_->form(window); form != nullptr && index == GWL_EXSTYLE)
        form->setLayered((value & WS_EX_LAYERED) != 0);
    return before;
}

bool QtWindowSystem::SetLayeredWindowAttributes(HWND window, Colour key, std::uint8_t /*alpha*/,
                                                std::uint32_t flags) {
    forms::Form *form = parts_->form(window);
    if (form == nullptr || !form->layered() || flags != LWA_COLORKEY)
        return false;
    form->setWindowKey(key);
    return true;
}

std::int32_t QtWindowSystem::SetWindowPos(HWND window, std::int32_t insertAfter, std::int32_t x,
                                          std::int32_t y, std::int32_t width, std::int32_t height,
                                          std::uint32_t flags) {
    forms::Form *form = parts_->form(window);
    if (form == nullptr)
        return 0;
    RectTwips place = form->place();
    if ((flags & SWP_NOMOVE) == 0) {
        place.left = qt::toTwips(x);
        place.top = qt::toTwips(y);
    }
    if ((flags & SWP_NOSIZE) == 0) {
        place.width = qt::toTwips(width);
        place.height = qt::toTwips(height);
    }
    form->move(place);
    if (insertAfter != HWND_TOPMOST && insertAfter != HWND_NOTOPMOST)
        return 1;
    const bool wasTopmost = form->topmost();
    form->setTopmost(insertAfter == HWND_TOPMOST);
    // No manager keeps what it does not have on top: asked for once more it comes to the top again.
    if (wasTopmost && form->topmost() && form->unmanaged())
        form->raise();
    // While another program is at work a manager may keep its window above what is only raised.
    const bool comesForward = wasTopmost && !form->topmost() && form->visible();
    if (comesForward && QGuiApplication::applicationState() != Qt::ApplicationActive)
        if (const qt::FormEntry *entry = parts_->hub.entry(window); entry->window != nullptr)
            entry->window->bringForward();
    return 1;
}

std::int32_t QtWindowSystem::hookWindowProc(HWND window, WindowProc procedure) {
    if (qt::FormEntry *entry = parts_->hub.entry(window))
        entry->procedure = std::move(procedure);
    return 0;
}

void QtWindowSystem::unhookWindowProc(HWND window, std::int32_t /*before*/) {
    if (qt::FormEntry *entry = parts_->hub.entry(window))
        entry->procedure = nullptr;
}

std::int32_t QtWindowSystem::CallWindowProcA(std::int32_t /*procedure*/, HWND /*window*/,
                                             std::uint32_t /*message*/, std::int32_t /*wParam*/,
                                             std::int32_t /*lParam*/) {
    return 0; // a window's own procedure has nothing to say about messages from outside
}

void QtWindowSystem::personAsked() { parts_->hub.x11.noteAct(); }

bool QtWindowSystem::FlashWindow(HWND window, bool invert) {
    qt::FormEntry *entry = parts_->hub.entry(window);
    if (entry == nullptr || entry->window == nullptr)
        return false;
    entry->window->attention(invert);
    return true;
}

// --- screen --------------------------------------------------------------------------------------

bool QtWindowSystem::SystemParametersInfoA(std::uint32_t action, RectPixels &area) {
    if (action != SPI_GETWORKAREA)
        return false;
    area = qt::screens::workArea(parts_->hub.x11);
    return true;
}

HWND QtWindowSystem::FindWindowA(std::u16string_view className) {
    return className == u"Shell_TrayWnd" ? taskBarNumber : 0;
}

bool QtWindowSystem::GetWindowRect(HWND window, RectPixels &rect) {
    if (window == taskBarNumber) {
        rect = qt::screens::taskBar(parts_->hub.x11);
        return true;
    }
    const qt::FormEntry *entry = parts_->hub.entry(window);
    if (entry == nullptr)
        return false;
    const forms::Form *form = entry->form;
    if (entry->window != nullptr)
        entry->window->awaitPlace();
    const QPoint held = entry->window != nullptr ? entry->window->heldOff() : QPoint();
    rect.left = qRound(qt::toPixels(form->left())) + held.x();
    rect.top = qRound(qt::toPixels(form->top())) + held.y();
    rect.right = rect.left + qRound(qt::toPixels(form->width()));
    rect.bottom = rect.top + qRound(qt::toPixels(form->height()));
    return true;
}

Twips QtWindowSystem::screenWidth() { return qt::toTwips(qt::screens::primary().width()); }
std::vector<RectPixels> QtWindowSystem::monitors() { return qt::screens::all(); }
Twips QtWindowSystem::screenHeight() { return qt::toTwips(qt::screens::primary().height()); }

// The pointer is asked for at every tick of a strip that may be hidden, and each question is a
// round trip to the screen: with no button down and no strip up nobody sees what comes of the
// answer, and it may be old.
bool QtWindowSystem::GetCursorPos(PointPixels &position) {
    if (const auto event = parts_->hub.pointerOfEvent()) {
        // The hand may have gone on since: what was taken hold of is where it was then.
        const QPointF at = qt::screens::toProgram(*event);
        position = {qRound(at.x()), qRound(at.y())};
        return true;
    }
    constexpr std::chrono::seconds oldest{10};
    const auto now = std::chrono::steady_clock::now();
    const bool isLive = QGuiApplication::mouseButtons() != Qt::NoButton || parts_->stripIsUp();
    if (isLive || now - parts_->pointerAsked > oldest) {
        const QPointF at = qt::screens::toProgram(QCursor::pos());
        parts_->pointerAt = {qRound(at.x()), qRound(at.y())};
        parts_->pointerAsked = now;
    }
    position = parts_->sensor.pointer(parts_->pointerAt);
    return true;
}

// --- boxes, menus, desktop -----------------------------------------------------------------------

MsgBoxResult QtWindowSystem::MsgBox(std::u16string_view text, MsgBoxButtons buttons,
                                    MsgBoxIcon icon, std::u16string_view title,
                                    std::u16string_view source) {
    return qt::showMessageBox(parts_->hub, qt::toShown(text), buttons, icon, qt::toShown(title),
                              qt::toShown(source));
}

bool QtWindowSystem::isModal() { return QApplication::activeModalWidget() != nullptr; }

void QtWindowSystem::PopupMenu(forms::Form & /*owner*/, forms::Menu &menu) {
    qt::showPopupMenu(parts_->hub, menu);
}

bool QtWindowSystem::Shell_NotifyIconA(std::uint32_t operation, const NotifyIconData &data) {
    return parts_->tray.notify(operation, data);
}

void QtWindowSystem::setTrayMenu(forms::Menu &menu, std::function<bool()> opens) {
    parts_->tray.setMenu(menu, std::move(opens));
}

void QtWindowSystem::setStatusItem(StatusItem *item) { parts_->tray.setPanel(item); }

void QtWindowSystem::setAppTitle(std::u16string_view title) {
    // The first window with an entry in the task bar stands for the application.
    for (auto &[number, entry] : parts_->hub.forms) {
        if (entry.window != nullptr && entry.form->showInTaskbar()) {
            entry.window->setTaskTitle(qt::toShown(title));
            return;
        }
    }
}

} // namespace velmora::platform
