#pragma once

#include "platform/backends/qt/window/hub.h"
#include "platform/contracts/status_item.h"

#include <QObject>
#include <QString>
#include <QSystemTrayIcon>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace velmora::platform::qt {

// The one icon in the tray: in a panel that draws it and its menu itself where there is one, else
// in a window of its own inside a tray of the older kind. What is asked for is kept at once and
// reaches the desktop with the next round of the loop: finding out what kind of tray there is takes
// longer than a start may.
class Tray : private QObject, private StatusItemOwner {
public:
    explicit Tray(Hub &hub) : hub_(hub) {}

    void setPanel(StatusItem *panel) { panel_ = panel; }
    void setMenu(forms::Menu &menu, std::function<bool()> opens);
    bool notify(std::uint32_t operation, const NotifyIconData &data);
    // As by a click on the icon, whether there is a tray for it or none.
    void click();

private:
    std::vector<StatusPicture> pictures() override;
    std::u16string tip() override { return tip_; }
    std::vector<StatusEntry> menu() override;
    void clicked(StatusClick click, PointPixels place) override;
    void chosen(std::int32_t number) override;
    void taken(bool byPanel) override;

    // The toolkit tells only of the left button's double clicks; a right click that follows the
    // last one quickly would be lost.
    bool eventFilter(QObject *watched, QEvent *event) override;
    void applySoon();
    void apply();
    void remove();
    void showEmbedded();
    void removeEmbedded();
    bool answers() const;
    void activated(QSystemTrayIcon::ActivationReason reason);
    void send(std::int32_t mouseMessage);

    Hub &hub_;
    StatusItem *panel_ = nullptr;
    bool isOffered_ = false;       // to panels
    bool isEmbedded_ = false;      // no panel has taken it
    bool hasOtherPicture_ = false; // than panels were told of
    forms::Menu *menu_ = nullptr;
    std::function<bool()> opens_;
    std::unique_ptr<QSystemTrayIcon> icon_;
    int clicks_ = 0; // on it, that are being handled
    HWND window_ = 0;
    std::uint32_t id_ = 0;
    std::uint32_t message_ = 0;
    forms::Picture picture_ = forms::Picture::None;
    std::u16string tip_;
    bool wanted_ = false;
    bool posted_ = false;
};

// At most 64 units, never cut inside a pair.
std::u16string_view cutTip(std::u16string_view tip);

} // namespace velmora::platform::qt
