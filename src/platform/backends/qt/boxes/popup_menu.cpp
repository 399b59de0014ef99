#include "platform/backends/qt/boxes/popup_menu.h"

#include "platform/backends/qt/screen/text_convert.h"

#include <QCursor>
#include <QMenu>

#include <optional>
#include <utility>

namespace velmora::platform::qt {

namespace {

void fill(QMenu &shown, const forms::Menu &menu, const QFont &font) {
    shown.setFont(font);
    for (forms::Menu *entry : menu.entries()) {
        if (!entry->visible())
            continue;
        if (entry->separator()) {
            shown.addSeparator();
            continue;
        }
        const QString caption = toShown(entry->caption());
        if (!entry->entries().empty()) {
            QMenu *inner = shown.addMenu(caption);
            inner->setEnabled(entry->enabled());
            fill(*inner, *entry, font);
            continue;
        }
        QAction *action = shown.addAction(caption);
        action->setEnabled(entry->enabled());
        action->setCheckable(entry->checked());
        action->setChecked(entry->checked());
        action->setData(QVariant::fromValue(static_cast<void *>(entry)));
    }
}

// XWayland tells of no press beside X windows, and nothing else would close a menu whose window has
// no keyboard: while it is up a clear window lies below it, over everything. It goes beyond the
// edges, as shells take their panels away for what is exactly as large as a monitor.
class Ground {
public:
    explicit Ground(X11 &x11) : x11_(x11) {
        if (x11.isGuest())
            window_ = x11.makeSensor(
                {QPoint(-1, -1), x11.rootSize() + QSize(2, 2)}, [] {});
    }
    ~Ground() {
        if (window_ != XCB_WINDOW_NONE)
            x11_.destroySensor(window_);
    }
    Ground(const Ground &) = delete;
    Ground &operator=(const Ground &) = delete;

private:
    X11 &x11_;
    xcb_window_t window_ = XCB_WINDOW_NONE;
};

} // namespace

void showPopupMenu(Hub &hub, forms::Menu &menu) {
    QMenu shown;
    fill(shown, menu, hub.fonts.plainFont(9));
    hub.loop.arm();
    // An entry may be chosen without a key or a click, too: for that the menu neither closes nor
    // answers.
    const QAction *chosen = nullptr;
    QObject::connect(&shown, &QMenu::triggered, [&](const QAction *entry) {
        chosen = entry;
        shown.close();
    });
    {
        const Ground ground(hub.x11);
        shown.exec(std::exchange(hub.menuPlace, std::nullopt).value_or(QCursor::pos()));
    }
    if (chosen == nullptr || !chosen->data().isValid())
        return;
    const Loop::Handler handler(hub.loop);
    static_cast<forms::Menu *>(chosen->data().value<void *>())->choose();
}

} // namespace velmora::platform::qt
