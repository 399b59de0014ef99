#include "platform/backends/qt/boxes/tray.h"

#include "platform/backends/qt/screen/text_convert.h"

#include <QCoreApplication>
#include <QMouseEvent>

namespace velmora::platform::qt {

namespace {

constexpr std::size_t tipUnits = 64;

constexpr std::int32_t leftDown = 0x201;
constexpr std::int32_t leftUp = 0x202;
constexpr std::int32_t leftDouble = 0x203;
constexpr std::int32_t rightDown = 0x204;
constexpr std::int32_t rightUp = 0x205;
constexpr std::int32_t rightDouble = 0x206;
constexpr std::int32_t middleDown = 0x207;
constexpr std::int32_t middleUp = 0x208;

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
    } else if (!wanted_ || data.window != window_ || data.id != id_) {
        return false;
    } else if (operation == NIM_DELETE) {
        wanted_ = false;
        QCoreApplication::instance()->removeEventFilter(this);
        icon_.reset();
        return true;
    } else if (operation != NIM_MODIFY) {
        return false;
    }
    if (data.flags & NIF_MESSAGE)
        message_ = data.callbackMessage;
    if (data.flags & NIF_ICON)
        picture_ = data.icon;
    if (data.flags & NIF_TIP)
        tip_ = toShown(cutTip(data.tip));
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
    if (icon_ == nullptr) {
        icon_ = std::make_unique<QSystemTrayIcon>();
        QObject::connect(icon_.get(), &QSystemTrayIcon::activated, icon_.get(),
                         [this](QSystemTrayIcon::ActivationReason reason) { activated(reason); });
        QCoreApplication::instance()->installEventFilter(this);
    }
    icon_->setIcon(hub_.icon(picture_));
    icon_->setToolTip(tip_);
    icon_->show();
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
