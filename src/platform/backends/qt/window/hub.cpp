#include "platform/backends/qt/window/hub.h"

#include "platform/backends/qt/paint/picture_painter.h"
#include "platform/backends/qt/window/form_window.h"

#include <QPainter>
#include <QPixmap>

#include <algorithm>

namespace velmora::platform::qt {

namespace {
constexpr int iconSizes[] = {16, 22, 24, 32, 48, 64};
}

FormEntry *Hub::entry(HWND window) {
    const auto found = forms.find(window);
    return found == forms.end() ? nullptr : &found->second;
}

HWND Hub::addForm(forms::Form &form) {
    forms[++lastNumber_].form = &form;
    return lastNumber_;
}

void Hub::moveToFront(QtFormWindow &window) {
    std::erase(order, &window);
    order.push_back(&window);
}

void Hub::windowGone(QtFormWindow &window) {
    std::erase(order, &window);
    for (auto &[number, form] : forms)
        if (form.window == &window)
            form.window = nullptr;
}

// No form is disabled for one that has an entry in the task bar: a film that came up meanwhile is
// not what is waited for.
void Hub::raiseWaitedFor(const QtFormWindow &disabled) {
    for (const bool hasEntry : {false, true}) {
        for (auto it = order.rbegin(); it != order.rend(); ++it) {
            const forms::Form &form = (*it)->form();
            if (*it == &disabled || !form.visible() || !form.enabled() || form.unmanaged() ||
                form.showInTaskbar() != hasEntry)
                continue;
            (*it)->bringForward();
            return;
        }
    }
}

QIcon Hub::icon(forms::Picture picture) {
    const auto found = icons_.find(picture);
    if (found != icons_.end())
        return found->second;
    QIcon icon;
    if (picture != forms::Picture::None) {
        for (const int size : iconSizes) {
            QPixmap pixmap(size, size);
            pixmap.fill(Qt::transparent);
            QPainter brush(&pixmap);
            paintPicture(brush, picture, QRectF(0, 0, size, size));
            brush.end();
            icon.addPixmap(pixmap);
        }
    }
    icons_[picture] = icon;
    return icon;
}

} // namespace velmora::platform::qt
