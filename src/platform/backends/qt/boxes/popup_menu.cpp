#include "platform/backends/qt/boxes/popup_menu.h"

#include "platform/backends/qt/screen/text_convert.h"

#include <QCursor>
#include <QMenu>

#include <chrono>
#include <optional>
#include <utility>

namespace velmora::platform::qt {

namespace {

// XWayland tells of no press beside X windows, and nothing else would close a menu whose window has
// no keyboard: while it is up a clear window lies below it, over everything. It begins beyond the
// edges, as shells take their panels away for what is exactly as large as a monitor. It leaves the
// screen before it goes, as the menu does; weston looks anew what is under a pointer at rest when
// it has shrunk.
class Ground {
public:
    explicit Ground(Hub &hub) : hub_(hub), screen_(hub.x11.rootSize()) {
        if (hub.x11.isGuest())
            window_ = hub.x11.makeSensor(
                {QPoint(-1, -1), screen_ + QSize(2, 2)}, [] {});
    }
    ~Ground() {
        if (window_ == XCB_WINDOW_NONE)
            return;
        hub_.x11.placeSensor(window_, {{screen_.width(), screen_.height()}, QSize(1, 1)});
        hub_.loop.later(untilSeen,
                        [&x11 = hub_.x11, window = window_] { x11.destroySensor(window); });
    }
    Ground(const Ground &) = delete;
    Ground &operator=(const Ground &) = delete;

private:
    static constexpr std::chrono::milliseconds untilSeen{1000};
    Hub &hub_;
    QSize screen_;
    xcb_window_t window_ = XCB_WINDOW_NONE;
};

// The server keeps the picture of a window that went for another second, and weston goes on giving
// it the clicks: on a guest a menu leaves the screen first, which counts at once. Whoever sees that
// the menu has gone may click, so its ground goes ahead of it.
class Shown : public QMenu {
public:
    explicit Shown(Hub &hub, QWidget *parent = nullptr) : QMenu(parent), hub_(hub) {}
    void setVisible(bool visible) override {
        if (!visible)
            leave();
        QMenu::setVisible(visible);
    }
    void run(QPoint at) {
        ground_.emplace(hub_);
        exec(at);
    }

private:
    void leave() {
        ground_.reset();
        if (isVisible() && hub_.x11.isGuest())
            move(beyond);
    }
    static constexpr QPoint beyond{-10000, -10000};
    Hub &hub_;
    std::optional<Ground> ground_;
};

void fill(Hub &hub, Shown &shown, const forms::Menu &menu) {
    shown.setFont(hub.fonts.plainFont(9));
    for (forms::Menu *entry : menu.entries()) {
        if (!entry->visible())
            continue;
        if (entry->separator()) {
            shown.addSeparator();
            continue;
        }
        const QString caption = toShown(entry->caption());
        if (!entry->entries().empty()) {
            auto *inner = new Shown(hub, &shown);
            inner->setTitle(caption);
            shown.addMenu(inner);
            inner->setEnabled(entry->enabled());
            fill(hub, *inner, *entry);
            continue;
        }
        QAction *action = shown.addAction(caption);
        action->setEnabled(entry->enabled());
        action->setCheckable(entry->checked());
        action->setChecked(entry->checked());
        action->setData(QVariant::fromValue(static_cast<void *>(entry)));
    }
}

} // namespace

void showPopupMenu(Hub &hub, forms::Menu &menu) {
    Shown shown(hub);
    fill(hub, shown, menu);
    hub.loop.arm();
    // An entry may be chosen without a key or a click, too: for that the menu neither closes nor
    // answers.
    const QAction *chosen = nullptr;
    QObject::connect(&shown, &QMenu::triggered, [&](const QAction *entry) {
        chosen = entry;
        shown.close();
    });
    shown.run(std::exchange(hub.menuPlace, std::nullopt).value_or(QCursor::pos()));
    if (chosen == nullptr || !chosen->data().isValid())
        return;
    const Loop::Handler handler(hub.loop);
    static_cast<forms::Menu *>(chosen->data().value<void *>())->choose();
}

} // namespace velmora::platform::qt
