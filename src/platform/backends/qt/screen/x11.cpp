#include "platform/backends/qt/screen/x11.h"

#include "platform/backends/qt/screen/x_reply.h"

#include <QGuiApplication>
#include <QScreen>
#include <QSysInfo>

#include <xcb/shape.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace velmora::platform::qt {

namespace {

constexpr std::uint32_t stateRemove = 0;
constexpr std::uint32_t stateAdd = 1;
constexpr std::uint32_t sourceApplication = 1;
constexpr std::uint32_t iconicState = 3;
constexpr std::uint32_t maxStates = 64;
constexpr std::uint32_t maxSupported = 1024;
constexpr std::size_t mostTurns = 32;
constexpr std::uint32_t maxWindows = 4096;

// The head of the notice that a selection changed hands, as the XFIXES protocol lays it out.
struct SelectionNotice {
    std::uint8_t responseType;
    std::uint8_t subtype;
    std::uint16_t sequence;
    std::uint32_t window;
    std::uint32_t owner;
    std::uint32_t selection;
};

// A key or button, pressed or let go; the toolkit takes buttons by the input extension.
bool isAct(const xcb_generic_event_t &event, std::uint8_t type) {
    if (type != XCB_GE_GENERIC)
        return type >= XCB_KEY_PRESS && type <= XCB_BUTTON_RELEASE;
    constexpr std::uint16_t inputPress = 4;
    constexpr std::uint16_t inputRelease = 5;
    const auto kind = reinterpret_cast<const xcb_ge_generic_event_t &>(event).event_type;
    return kind == inputPress || kind == inputRelease;
}

} // namespace

X11::X11()
    : connection_(qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection()) {
    screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    internAtoms();
    std::uint8_t unused = 0;
    guest_ = hasExtension("XWAYLAND", unused) || isGuestScreen();
    hasExtension("XFIXES", fixesEvent_);
    composited_ = readComposited();
    qApp->installNativeEventFilter(this);
}

X11::~X11() {
    qApp->removeNativeEventFilter(this);
    if (turnWindow_ != XCB_WINDOW_NONE)
        xcb_destroy_window(connection_, turnWindow_);
}

void X11::internAtoms() {
    const char *const names[AtomCount] = {"_NET_WM_STATE",
                                          "_NET_WM_STATE_SKIP_TASKBAR",
                                          "_NET_WM_STATE_SKIP_PAGER",
                                          "_NET_WM_STATE_ABOVE",
                                          "_NET_WM_STATE_FULLSCREEN",
                                          "_NET_WM_STATE_DEMANDS_ATTENTION",
                                          "_NET_WM_CM_S0",
                                          "XdndPosition",
                                          "XdndActionCopy",
                                          "WM_CHANGE_STATE",
                                          "WM_STATE",
                                          "_NET_FRAME_EXTENTS",
                                          "_NET_REQUEST_FRAME_EXTENTS",
                                          "_NET_CLIENT_LIST",
                                          "_NET_WORKAREA",
                                          "_GTK_WORKAREAS_D0",
                                          "_NET_WM_STRUT_PARTIAL",
                                          "_NET_WM_STRUT",
                                          "_NET_SUPPORTED",
                                          "_NET_WM_ACTION_MINIMIZE",
                                          "_NET_WM_NAME",
                                          "_NET_WM_ICON_NAME",
                                          "UTF8_STRING"};
    xcb_intern_atom_cookie_t asked[AtomCount];
    for (int i = 0; i < AtomCount; ++i)
        asked[i] =
            xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(strlen(names[i])), names[i]);
    for (int i = 0; i < AtomCount; ++i) {
        const Owned<xcb_intern_atom_reply_t> reply(
            xcb_intern_atom_reply(connection_, asked[i], nullptr));
        atoms_[i] = reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
    }
}

bool X11::hasExtension(const char *name, std::uint8_t &firstEvent) {
    const auto asked =
        xcb_query_extension(connection_, static_cast<std::uint16_t>(strlen(name)), name);
    const Owned<xcb_query_extension_reply_t> reply(
        xcb_query_extension_reply(connection_, asked, nullptr));
    if (!reply || !reply->present)
        return false;
    firstEvent = reply->first_event;
    return true;
}

// The servers of Debian 12 and before it have no such extension; their outputs tell.
bool X11::isGuestScreen() {
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen != nullptr && screen->name().startsWith(QLatin1String("XWAYLAND"));
}

bool X11::readComposited() {
    const Owned<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        connection_, xcb_get_selection_owner(connection_, atoms_[CompositorSelection]), nullptr));
    return reply && reply->owner != XCB_WINDOW_NONE;
}

std::vector<xcb_atom_t> X11::readAtoms(xcb_window_t window, Atom property, std::uint32_t most) {
    const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection_,
        xcb_get_property(connection_, 0, window, atoms_[property], XCB_ATOM_ATOM, 0, most),
        nullptr));
    if (!reply || reply->type != XCB_ATOM_ATOM || reply->format != 32)
        return {};
    const auto *first = static_cast<const xcb_atom_t *>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
}

std::optional<std::vector<xcb_window_t>> X11::windowsOfRoot(Atom property) {
    const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection_,
        xcb_get_property(connection_, 0, root(), atoms_[property], XCB_ATOM_WINDOW, 0, maxWindows),
        nullptr));
    if (!reply || reply->type != XCB_ATOM_WINDOW || reply->format != 32)
        return std::nullopt;
    const auto *first = static_cast<const xcb_window_t *>(xcb_get_property_value(reply.get()));
    return std::vector<xcb_window_t>(first, first + reply->value_len);
}

std::vector<std::vector<std::uint32_t>> X11::numbersOf(std::span<const xcb_window_t> windows,
                                                       Atom property, std::uint32_t most) {
    std::vector<xcb_get_property_cookie_t> asked;
    for (const xcb_window_t window : windows)
        asked.push_back(
            xcb_get_property(connection_, 0, window, atoms_[property], XCB_ATOM_CARDINAL, 0, most));
    std::vector<std::vector<std::uint32_t>> numbers;
    for (const xcb_get_property_cookie_t each : asked) {
        const Owned<xcb_get_property_reply_t> reply(
            xcb_get_property_reply(connection_, each, nullptr));
        numbers.emplace_back();
        if (!reply || reply->type != XCB_ATOM_CARDINAL || reply->format != 32)
            continue;
        const auto *first = static_cast<const std::uint32_t *>(xcb_get_property_value(reply.get()));
        numbers.back().assign(first, first + reply->value_len);
    }
    return numbers;
}

QSize X11::rootSize() {
    const Owned<xcb_get_geometry_reply_t> reply(
        xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, root()), nullptr));
    return reply ? QSize(reply->width, reply->height) : QSize();
}

bool X11::isButtonDown() {
    const Owned<xcb_query_pointer_reply_t> reply(
        xcb_query_pointer_reply(connection_, xcb_query_pointer(connection_, root()), nullptr));
    constexpr std::uint16_t any = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3 |
                                  XCB_BUTTON_MASK_4 | XCB_BUTTON_MASK_5;
    return reply && (reply->mask & any) != 0;
}

std::optional<QPoint> X11::cornerOf(xcb_window_t window) {
    const Owned<xcb_translate_coordinates_reply_t> reply(xcb_translate_coordinates_reply(
        connection_, xcb_translate_coordinates(connection_, window, root(), 0, 0), nullptr));
    if (!reply)
        return std::nullopt;
    return QPoint(reply->dst_x, reply->dst_y);
}

void X11::setStatesBeforeMap(xcb_window_t window, std::initializer_list<Atom> states) {
    std::vector<xcb_atom_t> all = readAtoms(window, NetWmState, maxStates);
    for (const Atom state : states)
        if (std::find(all.begin(), all.end(), atoms_[state]) == all.end())
            all.push_back(atoms_[state]);
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atoms_[NetWmState],
                        XCB_ATOM_ATOM, 32, static_cast<std::uint32_t>(all.size()), all.data());
}

void X11::tellManager(const xcb_client_message_event_t &event) {
    xcb_send_event(connection_, 0, root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char *>(&event));
    flush();
}

void X11::requestState(xcb_window_t window, bool on, Atom state) {
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atoms_[NetWmState];
    event.data.data32[0] = on ? stateAdd : stateRemove;
    event.data.data32[1] = atoms_[state];
    event.data.data32[3] = sourceApplication;
    tellManager(event);
}

void X11::iconify(xcb_window_t window) {
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atoms_[ChangeState];
    event.data.data32[0] = iconicState;
    tellManager(event);
}

bool X11::isIconic(xcb_window_t window) {
    const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection_,
        xcb_get_property(connection_, 0, window, atoms_[WmState], atoms_[WmState], 0, 1), nullptr));
    if (!reply || reply->format != 32 || reply->value_len == 0)
        return false;
    return *static_cast<const std::uint32_t *>(xcb_get_property_value(reply.get())) == iconicState;
}

bool X11::hasState(xcb_window_t window, Atom state) {
    const std::vector<xcb_atom_t> all = readAtoms(window, NetWmState, maxStates);
    return std::find(all.begin(), all.end(), atoms_[state]) != all.end();
}

bool X11::managerKnows(Atom what) {
    const std::vector<xcb_atom_t> all = readAtoms(root(), Supported, maxSupported);
    return std::find(all.begin(), all.end(), atoms_[what]) != all.end();
}

bool X11::managerMinimises() { return managerKnows(ActionMinimize); }

void X11::setShape(xcb_window_t window, std::span<const xcb_rectangle_t> rows) {
    // An empty input shape makes some window managers keep the clicks for their own frame: one
    // pixel outside the window says the same and is passed on.
    const xcb_rectangle_t outside = {-1, -1, 1, 1};
    if (rows.empty())
        rows = std::span(&outside, 1);
    xcb_shape_rectangles(connection_, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING,
                         XCB_CLIP_ORDERING_YX_BANDED, window, 0, 0,
                         static_cast<std::uint32_t>(rows.size()), rows.data());
    xcb_shape_combine(connection_, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_SHAPE_SK_BOUNDING,
                      window, 0, 0, window);
}

void X11::clearOutline(xcb_window_t window) {
    xcb_shape_mask(connection_, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, window, 0, 0,
                   XCB_PIXMAP_NONE);
}

std::uint8_t X11::depthOf(xcb_window_t window) {
    const Owned<xcb_get_geometry_reply_t> reply(
        xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, window), nullptr));
    return reply ? reply->depth : std::uint8_t{0};
}

bool X11::takesImages(std::uint8_t depth) const {
    const xcb_setup_t *setup = xcb_get_setup(connection_);
    const auto own = QSysInfo::ByteOrder == QSysInfo::LittleEndian ? XCB_IMAGE_ORDER_LSB_FIRST
                                                                   : XCB_IMAGE_ORDER_MSB_FIRST;
    if (setup->image_byte_order != own)
        return false;
    for (auto format = xcb_setup_pixmap_formats_iterator(setup); format.rem > 0;
         xcb_format_next(&format))
        if (format.data->depth == depth)
            return format.data->bits_per_pixel == 32;
    return false;
}

void X11::watchExposed(xcb_window_t window, std::function<void(std::uint32_t)> exposed) {
    exposed_[window] = std::move(exposed);
}

void X11::forgetExposed(xcb_window_t window) { exposed_.erase(window); }

void X11::clearShape(xcb_window_t window) {
    clearOutline(window);
    xcb_shape_mask(connection_, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, window, 0, 0,
                   XCB_PIXMAP_NONE);
}

std::vector<xcb_keysym_t> X11::keySymbols(xcb_keycode_t key) {
    const Owned<xcb_get_keyboard_mapping_reply_t> reply(xcb_get_keyboard_mapping_reply(
        connection_, xcb_get_keyboard_mapping(connection_, key, 1), nullptr));
    if (!reply)
        return {};
    const xcb_keysym_t *first = xcb_get_keyboard_mapping_keysyms(reply.get());
    return {first, first + xcb_get_keyboard_mapping_keysyms_length(reply.get())};
}

xcb_visualid_t X11::clearVisual() const {
    for (auto depth = xcb_screen_allowed_depths_iterator(screen_); depth.rem > 0;
         xcb_depth_next(&depth)) {
        if (depth.data->depth != 32)
            continue;
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem > 0;
             xcb_visualtype_next(&visual))
            if (visual.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR)
                return visual.data->visual_id;
    }
    return XCB_NONE;
}

xcb_window_t X11::makeSensor(const QRect &place, std::function<void()> entered) {
    const xcb_visualid_t visual = clearVisual();
    if (visual == XCB_NONE)
        return XCB_WINDOW_NONE;
    // Clear rather than input-only: a guest server passes on no pointer over a window that has
    // nothing to show.
    const xcb_colormap_t colours = xcb_generate_id(connection_);
    xcb_create_colormap(connection_, XCB_COLORMAP_ALLOC_NONE, colours, root(), visual);
    const xcb_window_t sensor = xcb_generate_id(connection_);
    const std::uint32_t values[] = {0, 0, 1, XCB_EVENT_MASK_ENTER_WINDOW, colours};
    xcb_create_window(connection_, 32, sensor, root(), static_cast<std::int16_t>(place.x()),
                      static_cast<std::int16_t>(place.y()),
                      static_cast<std::uint16_t>(std::max(1, place.width())),
                      static_cast<std::uint16_t>(std::max(1, place.height())), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT |
                          XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
                      values);
    xcb_free_colormap(connection_, colours);
    sensors_[sensor] = std::move(entered);
    xcb_map_window(connection_, sensor);
    flush();
    return sensor;
}

void X11::placeSensor(xcb_window_t sensor, const QRect &place) {
    const std::uint32_t values[] = {
        static_cast<std::uint32_t>(place.x()), static_cast<std::uint32_t>(place.y()),
        static_cast<std::uint32_t>(std::max(1, place.width())),
        static_cast<std::uint32_t>(std::max(1, place.height())), XCB_STACK_MODE_ABOVE};
    xcb_configure_window(connection_, sensor,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT | XCB_CONFIG_WINDOW_STACK_MODE,
                         values);
    flush();
}

void X11::destroySensor(xcb_window_t sensor) {
    sensors_.erase(sensor);
    xcb_destroy_window(connection_, sensor);
    flush();
}

// It handles what it is sent in order, and how wide its frame of a window would be is what every
// program may ask it about any window.
void X11::whenManagerTook(std::function<void()> took) {
    if (turnWindow_ == XCB_WINDOW_NONE) {
        turnWindow_ = xcb_generate_id(connection_);
        const std::uint32_t changes = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_create_window(connection_, 0, turnWindow_, root(), -1, -1, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, screen_->root_visual, XCB_CW_EVENT_MASK,
                          &changes);
    }
    if (turns_.size() == mostTurns)
        turns_.pop_front();
    turns_.push_back(std::move(took));
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = turnWindow_;
    event.type = atoms_[RequestFrameExtents];
    tellManager(event);
}

void X11::watchCovered(xcb_window_t window, std::function<void()> covered) {
    const Owned<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(
        connection_, xcb_get_window_attributes(connection_, window), nullptr));
    if (!reply)
        return;
    const std::uint32_t mask = reply->your_event_mask | XCB_EVENT_MASK_VISIBILITY_CHANGE;
    xcb_change_window_attributes(connection_, window, XCB_CW_EVENT_MASK, &mask);
    covered_[window] = std::move(covered);
}

void X11::forget(xcb_window_t window) { covered_.erase(window); }

bool X11::personActed() const {
    constexpr auto recent = std::chrono::seconds(1);
    return std::chrono::steady_clock::now() - lastAct_ <= recent;
}

void X11::propertyChanged(const xcb_property_notify_event_t &change) {
    if (!turns_.empty() && change.window == turnWindow_ && change.atom == atoms_[FrameExtents]) {
        const std::function<void()> took = std::move(turns_.front());
        turns_.pop_front();
        took();
    } else if (change.window == root() && onWorkArea &&
               (change.atom == atoms_[WorkArea] || change.atom == atoms_[GtkWorkAreas])) {
        onWorkArea();
    } else if (change.window == root() && change.atom == atoms_[Supported]) {
        knowsNames_.reset(); // another manager
    }
}

bool X11::nativeEventFilter(const QByteArray & /*type*/, void *message, qintptr * /*result*/) {
    auto *event = static_cast<xcb_generic_event_t *>(message);
    const std::uint8_t type = event->response_type & 0x7FU;
    if (isAct(*event, type))
        noteAct();
    if (type == XCB_EXPOSE && !exposed_.empty()) {
        const auto found =
            exposed_.find(reinterpret_cast<const xcb_expose_event_t *>(event)->window);
        if (found == exposed_.end())
            return false;
        found->second(event->full_sequence);
        return true;
    }
    if (type == XCB_CLIENT_MESSAGE) {
        // What is dragged here is never moved: whatever the source proposes, it is asked to copy.
        // The toolkit answers with nothing but what was proposed.
        auto *asked = reinterpret_cast<xcb_client_message_event_t *>(event);
        if (asked->type == atoms_[DragPosition])
            asked->data.data32[4] = atoms_[DragCopy];
        return false;
    }
    if (fixesEvent_ != 0 && type == fixesEvent_) {
        SelectionNotice notice{};
        std::memcpy(&notice, event, sizeof notice);
        if (notice.selection == atoms_[CompositorSelection]) {
            const bool now = notice.owner != XCB_WINDOW_NONE;
            if (now != composited_) {
                composited_ = now;
                if (onCompositor)
                    onCompositor();
            }
        }
    } else if (type == XCB_ENTER_NOTIFY && !sensors_.empty()) {
        const auto found =
            sensors_.find(reinterpret_cast<const xcb_enter_notify_event_t *>(event)->event);
        if (found != sensors_.end())
            found->second();
    } else if (type == XCB_PROPERTY_NOTIFY) {
        propertyChanged(*reinterpret_cast<const xcb_property_notify_event_t *>(event));
    } else if (type == XCB_VISIBILITY_NOTIFY && !covered_.empty()) {
        const auto *notice = reinterpret_cast<const xcb_visibility_notify_event_t *>(event);
        const auto found = covered_.find(notice->window);
        if (found != covered_.end() && notice->state != XCB_VISIBILITY_UNOBSCURED)
            found->second();
    }
    return false;
}

} // namespace velmora::platform::qt
