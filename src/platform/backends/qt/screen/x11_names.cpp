#include "platform/backends/qt/screen/x11.h"

#include "platform/backends/qt/screen/x_reply.h"

#include <algorithm>

namespace velmora::platform::qt {

void X11::setName(xcb_window_t window, const QByteArray &utf8) {
    const bool isAscii = std::all_of(
        utf8.begin(), utf8.end(), [](char byte) { return byte > 0 && byte < 127; });
    const auto set = [&](xcb_atom_t property, xcb_atom_t type) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, property, type, 8,
                            static_cast<std::uint32_t>(utf8.size()), utf8.constData());
    };
    if (!knowsNames_)
        knowsNames_ = managerKnows(NetWmName);
    const std::uint32_t events = eventsOf(window);
    chooseEvents(window, events & ~std::uint32_t{XCB_EVENT_MASK_PROPERTY_CHANGE});
    set(atoms_[NetWmName], atoms_[Utf8String]);
    if (!*knowsNames_)
        set(XCB_ATOM_WM_NAME, isAscii ? xcb_atom_t{XCB_ATOM_STRING} : atoms_[Utf8String]);
    chooseEvents(window, events);
}

std::uint32_t X11::eventsOf(xcb_window_t window) {
    if (named_ != window) {
        const Owned<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(
            connection_, xcb_get_window_attributes(connection_, window), nullptr));
        named_ = reply ? window : xcb_window_t{XCB_NONE};
        eventsOfNamed_ = reply ? reply->your_event_mask : 0;
    }
    return eventsOfNamed_;
}

void X11::chooseEvents(xcb_window_t window, std::uint32_t events) {
    if (named_ == window)
        xcb_change_window_attributes(connection_, window, XCB_CW_EVENT_MASK, &events);
}

void X11::setIconName(xcb_window_t window, const QByteArray &utf8) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atoms_[NetWmIconName],
                        atoms_[Utf8String], 8, static_cast<std::uint32_t>(utf8.size()),
                        utf8.constData());
}

void X11::clearIconName(xcb_window_t window) {
    xcb_delete_property(connection_, window, atoms_[NetWmIconName]);
}

} // namespace velmora::platform::qt
