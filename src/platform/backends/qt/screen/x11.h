#pragma once

// What the windows need of the X server beyond the toolkit: window states ahead of mapping, shapes,
// attention, the compositor's presence, key symbols. Everything is asked on the toolkit's own
// connection. Windows are device pixels here.

#include <QAbstractNativeEventFilter>
#include <QByteArray>
#include <QRect>
#include <QSize>

#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <span>
#include <vector>

namespace velmora::platform::qt {

class X11 : public QAbstractNativeEventFilter {
public:
    enum Atom : std::uint8_t {
        NetWmState,
        SkipTaskbar,
        SkipPager,
        Above,
        FullScreen,
        DemandsAttention,
        CompositorSelection,
        DragPosition,
        DragCopy,
        ChangeState,
        WmState,
        FrameExtents,
        RequestFrameExtents,
        ClientList,
        WorkArea,
        GtkWorkAreas,
        StrutPartial,
        Strut,
        Supported,
        ActionMinimize,
        NetWmName,
        NetWmIconName,
        Utf8String,
        AtomCount
    };

    // The application object must exist.
    X11();
    ~X11() override;
    X11(const X11 &) = delete;
    X11 &operator=(const X11 &) = delete;

    xcb_connection_t *connection() const noexcept { return connection_; }
    xcb_window_t root() const noexcept { return screen_->root; }
    void flush() { xcb_flush(connection_); }

    // Whether a compositor draws the screen now; `onCompositor` follows each change.
    bool composited() const noexcept { return composited_; }
    std::function<void()> onCompositor;

    // The server is a guest of another window system: it sees the pointer over our windows only.
    bool isGuest() const noexcept { return guest_; }

    // States of a window that is not mapped; the window manager reads them when it appears. States
    // that others set stay.
    void setStatesBeforeMap(xcb_window_t window, std::initializer_list<Atom> states);
    // Asks the window manager to change a state of a mapped window.
    void requestState(xcb_window_t window, bool on, Atom state);
    // Asks the window manager to minimise a mapped window.
    void iconify(xcb_window_t window);
    // Whether the window manager says that it has minimised it.
    bool isIconic(xcb_window_t window);
    bool hasState(xcb_window_t window, Atom state);
    // Whether the window manager says that it minimises windows.
    bool managerMinimises();

    // What the window manager calls the window. It goes to the server with whatever is sent next:
    // the toolkit writes each name by itself, and reads of each on its own that it has changed.
    // Each write of a property wakes the manager, every panel and this program's own reader, four
    // times a second while a track plays: the name of old is written only where the manager does
    // not know the one of today, and the server is asked not to tell this program of it. The
    // requests of a write reach the server in one piece, so there is no moment for a change by
    // others to go unheard. Which events the toolkit wants of a window is asked once: it chooses
    // them as it makes the window.
    void setName(xcb_window_t window, const QByteArray &utf8);
    // What panels call its entry, where that is not its name.
    void setIconName(xcb_window_t window, const QByteArray &utf8);
    void clearIconName(xcb_window_t window);

    // The windows that a property of the screen names; absent where nobody has set it.
    std::optional<std::vector<xcb_window_t>> windowsOfRoot(Atom property);

    // The numbers that a property of each window holds, at most so many; none where nobody has set
    // it.
    std::vector<std::vector<std::uint32_t>> numbersOf(std::span<const xcb_window_t> windows,
                                                      Atom property, std::uint32_t most);
    // All monitors together.
    QSize rootSize();
    // Whether a button of the pointer is down, whoever it was told. False where nobody answers.
    bool isButtonDown();
    // Where on the screen a window's upper left corner is now; none if there is no such window.
    std::optional<QPoint> cornerOf(xcb_window_t window);
    // Panels may leave another part of the screen free.
    std::function<void()> onWorkArea;

    // The window consists of these rectangles (rows from top to bottom), for drawing and for
    // clicks. None at all: nothing of it is there. `clearShape` makes it whole again.
    void setShape(xcb_window_t window, std::span<const xcb_rectangle_t> rows);
    void clearShape(xcb_window_t window);
    // The same for drawing alone: clicks go on as they are cut out.
    void clearOutline(xcb_window_t window);

    std::uint8_t depthOf(xcb_window_t window);
    // Whether pictures of that depth have the server's pixels as this machine has them, 32 bits
    // each.
    bool takesImages(std::uint8_t depth) const;

    // The toolkit is told no more of what is uncovered of the window: `exposed` is called instead,
    // with the number of the request that the server was at.
    void watchExposed(xcb_window_t window, std::function<void(std::uint32_t)> exposed);
    void forgetExposed(xcb_window_t window);

    // All symbols of a key, level by level, group by group.
    std::vector<xcb_keysym_t> keySymbols(xcb_keycode_t key);

    // A clear window that feels the pointer and shows nothing; `entered` is called when the pointer
    // comes over it. None where the server has no clear windows.
    bool canSense() const { return clearVisual() != XCB_NONE; }
    xcb_window_t makeSensor(const QRect &place, std::function<void()> entered);
    void placeSensor(xcb_window_t sensor, const QRect &place);
    void destroySensor(xcb_window_t sensor);

    // Calls `took` once the window manager has handled what was sent to it before; never where it
    // does not tell.
    void whenManagerTook(std::function<void()> took);

    // Calls `covered` when another window comes to lie over `window`.
    void watchCovered(xcb_window_t window, std::function<void()> covered);
    void forget(xcb_window_t window);

    // Whether the person pressed a key or button in a window of ours, or asked for the program
    // elsewhere, within the last second: what comes up without that comes by itself.
    bool personActed() const;
    void noteAct() { lastAct_ = std::chrono::steady_clock::now(); }

    bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;

private:
    void internAtoms();
    static bool isGuestScreen();
    bool readComposited();
    bool managerKnows(Atom what);
    void tellManager(const xcb_client_message_event_t &event);
    std::vector<xcb_atom_t> readAtoms(xcb_window_t window, Atom property, std::uint32_t most);
    xcb_visualid_t clearVisual() const;
    std::uint32_t eventsOf(xcb_window_t window);
    void chooseEvents(xcb_window_t window, std::uint32_t events);
    void propertyChanged(const xcb_property_notify_event_t &change);
    bool hasExtension(const char *name, std::uint8_t &firstEvent);

    xcb_connection_t *connection_;
    xcb_screen_t *screen_ = nullptr;
    xcb_atom_t atoms_[AtomCount] = {};
    xcb_window_t turnWindow_ = XCB_WINDOW_NONE; // what a manager writes its answers on
    std::deque<std::function<void()>> turns_;
    std::map<xcb_window_t, std::function<void()>> sensors_;
    std::map<xcb_window_t, std::function<void()>> covered_;
    std::map<xcb_window_t, std::function<void(std::uint32_t)>> exposed_;
    std::chrono::steady_clock::time_point lastAct_{};
    std::uint8_t fixesEvent_ = 0;
    bool composited_ = false;
    std::optional<bool> knowsNames_; // the manager, as far as it was asked
    xcb_window_t named_ = XCB_NONE;  // the last window that `setName` was for
    std::uint32_t eventsOfNamed_ = 0;
    bool guest_ = false;
};

} // namespace velmora::platform::qt
