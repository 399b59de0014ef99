#pragma once

#include "platform/backends/qt/window/hub.h"

#include <QObject>
#include <QString>
#include <QSystemTrayIcon>

#include <memory>

namespace velmora::platform::qt {

// The one icon in the tray. What is asked for is kept at once and reaches the desktop with the next
// round of the loop: finding out what kind of tray there is takes longer than a start may.
class Tray : private QObject {
public:
    explicit Tray(Hub &hub) : hub_(hub) {}

    bool notify(std::uint32_t operation, const NotifyIconData &data);

private:
    // The toolkit tells only of the left button's double clicks; a right click that follows the
    // last one quickly would be lost.
    bool eventFilter(QObject *watched, QEvent *event) override;
    void applySoon();
    void apply();
    void activated(QSystemTrayIcon::ActivationReason reason);
    void send(std::int32_t mouseMessage);

    Hub &hub_;
    std::unique_ptr<QSystemTrayIcon> icon_;
    HWND window_ = 0;
    std::uint32_t id_ = 0;
    std::uint32_t message_ = 0;
    forms::Picture picture_ = forms::Picture::None;
    QString tip_;
    bool wanted_ = false;
    bool posted_ = false;
};

// At most 64 units, never cut inside a pair.
std::u16string_view cutTip(std::u16string_view tip);

} // namespace velmora::platform::qt
