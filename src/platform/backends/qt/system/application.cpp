#include "platform/backends/qt/system/application.h"

#include "platform/backends/qt/paint/dark_style.h"
#include "platform/backends/qt/paint/fonts.h"

#include <QAccessible>
#include <QIcon>
#include <QToolTip>

#include <xcb/xcb.h>

#include <cstdio>
#include <cstdlib>
#include <optional>

namespace velmora::platform::qt {

namespace {

// Sets a variable and puts back what was there.
class Setting {
public:
    Setting(const char *name, const char *value) : name_(name) {
        if (const char *before = std::getenv(name))
            before_ = before;
        setenv(name, value, 1);
    }
    ~Setting() {
        if (before_)
            setenv(name_, before_->c_str(), 1);
        else
            unsetenv(name_);
    }
    Setting(const Setting &) = delete;
    Setting &operator=(const Setting &) = delete;

private:
    const char *name_;
    std::optional<std::string> before_;
};

bool hasDisplay() {
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    const bool works = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return works;
}

// The toolkit's words go where the program's own go. One of them comes again with every painted row
// in a script that no installed font knows, and tells nothing that is not seen.
void passOn(QtMsgType type, const QMessageLogContext &context, const QString &message) {
    if (!message.contains(QLatin1String("OpenType support missing")))
        std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, message)));
}

// The toolkit connects once, for assistive technology: where it is told of no bus its library
// begins one for the screen, and a bus that hangs is waited for for ever. Where it is told of a
// place at which there is nothing it does without.
void keepFromBus() {
    const Setting nowhere("DBUS_SESSION_BUS_ADDRESS", "unix:path=/dev/null");
    QAccessible::isActive();
}

bool isSet(const char *name) {
    const char *value = std::getenv(name);
    return value != nullptr && *value != '\0';
}

} // namespace

std::unique_ptr<Application> Application::make(const QtOptions &options) {
    const auto note = [&](const char *line) {
        if (options.note)
            options.note(line);
    };
    if (!isSet("DISPLAY") || !hasDisplay()) {
        // The toolkit would end the process on its own terms.
        note(isSet("WAYLAND_DISPLAY")
                 ? "no X display: the windows are placed and shaped through X11; start XWayland"
                 : "no X display: set DISPLAY to one that can be reached");
        return nullptr;
    }
    if (isSet("WAYLAND_DISPLAY"))
        note("using XWayland, since Wayland lets no program place or shape its windows");
    std::unique_ptr<Application> application(new Application(options.name));
    if (options.withoutBus)
        keepFromBus();
    return application;
}

Application::Application(const std::string &name)
    // The name of the window's class, then: X11 whatever the session prefers, and no desktop's
    // theme, which would bring in another toolkit for colours and icons that are never shown.
    : words_{name, "-name", name, "-platform", "xcb", "-platformtheme", "generic"} {
    for (std::string &word : words_)
        arguments_.push_back(word.data());
    count_ = static_cast<int>(arguments_.size());
    arguments_.push_back(nullptr);

    qInstallMessageHandler(passOn);
    // Nothing is drawn by OpenGL; looking for it takes longer than drawing the first window.
    const Setting noOpenGl("QT_XCB_GL_INTEGRATION", "none");
    // The toolkit's own loop waits with less effort than the one it borrows.
    const Setting ownLoop("QT_NO_GLIB", "1");
    QCoreApplication::setApplicationName(QString::fromStdString(name));
    QGuiApplication::setDesktopFileName(QString::fromStdString(name));
    QGuiApplication::setDesktopSettingsAware(false);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QApplication::setStyle(new DarkStyle);
    application_ = std::make_unique<QApplication>(count_, arguments_.data());
    QApplication::setPalette(darkPalette());
    QToolTip::setPalette(darkPalette());
    QApplication::setEffectEnabled(Qt::UI_AnimateMenu, false);
    QApplication::setEffectEnabled(Qt::UI_FadeMenu, false);
    QApplication::setEffectEnabled(Qt::UI_AnimateTooltip, false);
    QApplication::setEffectEnabled(Qt::UI_FadeTooltip, false);
}

Application::~Application() = default;

} // namespace velmora::platform::qt
