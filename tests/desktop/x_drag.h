#pragma once

// Drags data onto a window as another program would, by the desktop's drag protocol (version 5).
//
// The target waits for the data in the middle of the protocol. A source for a window of this
// process therefore has to run on a thread of its own; it shares nothing with the toolkit.

#include <xcb/xcb.h>

#include <atomic>
#include <string>

namespace velmora::tests {

class DragSource {
public:
    explicit DragSource(const std::string &display);
    ~DragSource();
    DragSource(const DragSource &) = delete;
    DragSource &operator=(const DragSource &) = delete;

    // The position is in device pixels of the screen. Returns when the target has finished or
    // refused, or when it stays silent too long; answers whether it took the drop.
    bool drop(xcb_window_t target, int x, int y, const std::string &type, const std::string &data);

    // What the target said last: the action's name (once `drop` has returned), and whether the
    // protocol was finished (at any time, from any thread).
    const std::string &action() const { return action_; }
    bool finished() const { return finished_; }

private:
    xcb_atom_t atom(const std::string &name);
    std::string nameOf(xcb_atom_t atom);
    void send(xcb_window_t target, const char *message, std::uint32_t a, std::uint32_t b,
              std::uint32_t c, std::uint32_t d);
    void handleEvents();
    bool await(const std::atomic<bool> &flag);

    xcb_connection_t *connection_;
    xcb_window_t window_;
    std::string data_;
    std::string action_;
    std::atomic<bool> answered_{false};
    std::atomic<bool> finished_{false};
    bool accepted_ = false;
};

} // namespace velmora::tests
