#pragma once

// Tells when the screens changed: their number, place, size or density, which of them is the
// primary one, or what panels leave free of them.

#include <QObject>

#include <functional>

class QScreen;

namespace velmora::platform::qt {

class ScreenWatch {
public:
    // `changed` runs in a round of the loop of its own, once for all that changed together.
    explicit ScreenWatch(std::function<void()> changed);
    ScreenWatch(const ScreenWatch &) = delete;
    ScreenWatch &operator=(const ScreenWatch &) = delete;

    // Something else changed that windows are placed by.
    void changed();

private:
    void follow(QScreen *screen);

    std::function<void()> changed_;
    QObject context_; // what is connected ends with it
    bool posted_ = false;
};

} // namespace velmora::platform::qt
