#include "platform/backends/qt/boxes/tray.h"

#include "platform/backends/qt/paint/picture_painter.h"
#include "platform/backends/qt/screen/text_convert.h"
#include "platform/forms/menu.h"

#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>

#include <utility>

namespace velmora::platform::qt {

namespace {

constexpr std::size_t tipUnits = 64;

// What panels of usual height take on screens of usual density and of twice and three times that.
constexpr int panelSizes[] = {16, 22, 24, 32, 44, 48, 64, 96};

constexpr std::int32_t leftDown = 0x201;
constexpr std::int32_t leftUp = 0x202;
constexpr std::int32_t leftDouble = 0x203;
constexpr std::int32_t rightDown = 0x204;
constexpr std::int32_t rightUp = 0x205;
constexpr std::int32_t rightDouble = 0x206;
constexpr std::int32_t middleDown = 0x207;
constexpr std::int32_t middleUp = 0x208;

// The entries by their numbers: all of them, shown or not, in order.
forms::Menu *entryOf(const forms::Menu &menu, std::int32_t wanted, std::int32_t &number) {
    for (forms::Menu *entry : menu.entries()) {
        if (++number == wanted)
            return entry;
        if (forms::Menu *found = entryOf(*entry, wanted, number))
            return found;
    }
    return nullptr;
}

std::vector<StatusEntry> entriesOf(const forms::Menu &menu, std::int32_t &number) {
    std::vector<StatusEntry> entries;
    for (const forms::Menu *entry : menu.entries()) {
        StatusEntry one;
        one.number = ++number;
        one.caption = entry->caption();
        one.enabled = entry->enabled();
        one.checked = entry->checked();
        one.separator = entry->separator();
        one.entries = entriesOf(*entry, number);
        if (entry->visible())
            entries.push_back(std::move(one));
    }
    return entries;
}

} // namespace

std::u16string_view cutTip(std::u16string_view tip) {
    if (tip.size() <= tipUnits)
        return tip;
    const bool inPair = (tip[tipUnits - 1] & 0xFC00) == 0xD800;
    return tip.substr(0, inPair ? tipUnits - 1 : tipUnits);
}

bool Tray::notify(std::uint32_t operation, const NotifyIconData &data) {
    if (operation == NIM_ADD) {
        if (wanted_ || hub_.entry(data.window) == nullptr)
            return false;
        wanted_ = true;
        window_ = data.window;
        id_ = data.id;
        picture_ = forms::Picture::None;
        tip_.clear();
        hasOtherPicture_ = false;
    } else if (!wanted_ || data.window != window_ || data.id != id_ ||
               (operation != NIM_DELETE && operation != NIM_MODIFY)) {
        return false;
    } else if (operation == NIM_DELETE) {
        remove();
        return true;
    }
    if (data.flags & NIF_MESSAGE)
        message_ = data.callbackMessage;
    if (data.flags & NIF_ICON) {
        hasOtherPicture_ = hasOtherPicture_ || picture_ != data.icon;
        picture_ = data.icon;
    }
    if (data.flags & NIF_TIP)
        tip_ = cutTip(data.tip);
    applySoon();
    return true;
}

void Tray::applySoon() {
    if (posted_)
        return;
    posted_ = true;
    hub_.loop.soon([this] {
        posted_ = false;
        apply();
    });
}

void Tray::apply() {
    if (!wanted_)
        return;
    const bool otherPicture = std::exchange(hasOtherPicture_, false);
    if (panel_ == nullptr) {
        isEmbedded_ = true;
    } else if (!std::exchange(isOffered_, true)) {
        panel_->show(*this); // which tells where it goes
        return;
    } else {
        panel_->update(otherPicture);
    }
    if (isEmbedded_)
        showEmbedded();
    else
        removeEmbedded();
}

void Tray::remove() {
    wanted_ = false;
    if (std::exchange(isOffered_, false))
        panel_->hide();
    isEmbedded_ = false;
    QCoreApplication::instance()->removeEventFilter(this);
    icon_.reset();
}

// --- in a panel ----------------------------------------------------------------------------------

void Tray::setMenu(forms::Menu &menu, std::function<bool()> opens) {
    menu_ = &menu;
    opens_ = std::move(opens);
}

void Tray::taken(bool byPanel) {
    isEmbedded_ = !byPanel;
    if (isEmbedded_)
        showEmbedded();
    else
        removeEmbedded();
}

std::vector<StatusPicture> Tray::pictures() {
    std::vector<StatusPicture> all;
    if (picture_ == forms::Picture::None)
        return all;
    for (const int size : panelSizes) {
        QImage image(size, size, QImage::Format_ARGB32);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        paintPicture(painter, picture_, QRectF(image.rect()));
        painter.end();
        StatusPicture picture{size, size, {}};
        for (int y = 0; y < size; ++y) {
            const auto *row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
            picture.pixels.insert(picture.pixels.end(), row, row + size);
        }
        all.push_back(std::move(picture));
    }
    return all;
}

std::vector<StatusEntry> Tray::menu() {
    std::int32_t number = 0;
    return menu_ != nullptr ? entriesOf(*menu_, number) : std::vector<StatusEntry>();
}

// A box that is up keeps clicks from all windows, and from an icon that is a window, too.
bool Tray::answers() const { return wanted_ && QApplication::activeModalWidget() == nullptr; }

void Tray::clicked(StatusClick click, PointPixels place) {
    if (!answers())
        return;
    switch (click) {
    case StatusClick::Left:
        activated(QSystemTrayIcon::Trigger);
        break;
    case StatusClick::Middle:
        activated(QSystemTrayIcon::MiddleClick);
        break;
    case StatusClick::Right:
        // The pointer is known over windows of this kind of display alone; a panel is often none.
        if (place != PointPixels())
            hub_.menuPlace = QPoint(place.x, place.y);
        activated(QSystemTrayIcon::Context);
        hub_.menuPlace.reset();
        break;
    }
}

void Tray::click() { clicked(StatusClick::Left, {}); }

// A panel opens the menu whenever it likes; while a right click would not, nothing of it can be
// chosen. It does not look like that: a panel that is not asked to show the menu would not learn
// when that is over.
void Tray::chosen(std::int32_t number) {
    if (!answers() || menu_ == nullptr || !opens_())
        return;
    std::int32_t counted = 0;
    if (forms::Menu *entry = entryOf(*menu_, number, counted)) {
        const Loop::Handler handler(hub_.loop);
        entry->choose();
    }
    applySoon(); // the menu may be another
}

// --- in a window of its own ----------------------------------------------------------------------

void Tray::showEmbedded() {
    if (icon_ == nullptr) {
        icon_ = std::make_unique<QSystemTrayIcon>();
        QObject::connect(icon_.get(), &QSystemTrayIcon::activated, icon_.get(),
                         [this](QSystemTrayIcon::ActivationReason reason) {
                             ++clicks_;
                             activated(reason);
                             --clicks_;
                             if (!isEmbedded_) // a panel has taken it meanwhile
                                 applySoon();
                         });
        QCoreApplication::instance()->installEventFilter(this);
    }
    icon_->setIcon(hub_.icon(picture_));
    icon_->setToolTip(toShown(tip_));
    icon_->show();
}

// Not while a click on it is being handled, with the menu and all that is chosen there.
void Tray::removeEmbedded() {
    if (icon_ == nullptr || clicks_ > 0)
        return;
    QCoreApplication::instance()->removeEventFilter(this);
    icon_.reset();
}

void Tray::activated(QSystemTrayIcon::ActivationReason reason) {
    switch (reason) {
    case QSystemTrayIcon::Trigger:
        send(leftDown);
        send(leftUp);
        break;
    case QSystemTrayIcon::DoubleClick: // follows a Trigger
        send(leftDouble);
        send(leftUp);
        break;
    case QSystemTrayIcon::Context:
        send(rightDown);
        send(rightUp);
        break;
    case QSystemTrayIcon::MiddleClick:
        send(middleDown);
        send(middleUp);
        break;
    default:
        break;
    }
}

bool Tray::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() != QEvent::MouseButtonDblClick ||
        static_cast<QMouseEvent *>(event)->button() != Qt::RightButton ||
        !watched->inherits("QSystemTrayIconSys"))
        return false;
    send(rightDouble);
    send(rightUp);
    return true;
}

void Tray::send(std::int32_t mouseMessage) {
    const FormEntry *entry = hub_.entry(window_);
    if (!wanted_ || entry == nullptr || !entry->procedure || message_ == 0)
        return;
    const WindowProc procedure = entry->procedure;
    const Loop::Handler handler(hub_.loop);
    procedure(window_, message_, static_cast<std::int32_t>(id_), mouseMessage);
}

} // namespace velmora::platform::qt
