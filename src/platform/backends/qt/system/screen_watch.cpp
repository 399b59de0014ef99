#include "platform/backends/qt/system/screen_watch.h"

#include <QGuiApplication>
#include <QScreen>

namespace velmora::platform::qt {

ScreenWatch::ScreenWatch(std::function<void()> changed) : changed_(std::move(changed)) {
    const auto note = [this] { this->changed(); };
    QObject::connect(qGuiApp, &QGuiApplication::primaryScreenChanged, &context_, note);
    QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, &context_, note);
    QObject::connect(qGuiApp, &QGuiApplication::screenAdded, &context_, [this](QScreen *screen) {
        follow(screen);
        this->changed();
    });
    for (QScreen *screen : QGuiApplication::screens())
        follow(screen);
}

void ScreenWatch::follow(QScreen *screen) {
    const auto note = [this] { changed(); };
    QObject::connect(screen, &QScreen::geometryChanged, &context_, note);
    QObject::connect(screen, &QScreen::availableGeometryChanged, &context_, note);
    QObject::connect(screen, &QScreen::logicalDotsPerInchChanged, &context_, note);
    QObject::connect(screen, &QScreen::physicalDotsPerInchChanged, &context_, note);
}

void ScreenWatch::changed() {
    if (posted_)
        return;
    posted_ = true;
    QMetaObject::invokeMethod(
        &context_,
        [this] {
            posted_ = false;
            changed_();
        },
        Qt::QueuedConnection);
}

} // namespace velmora::platform::qt
