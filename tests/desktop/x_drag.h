#pragma once

// Drags data onto a window as another program would, by the desktop's drag protocol (version 5).

#include <xcb/xcb.h>

#include <functional>
#include <string>

namespace velmora::tests {

class DragSource {
public:
    explicit DragSource(const std::string &display);
    ~DragSource();
    DragSource(const DragSource &) = delete;
    DragSource &operator=(const DragSource &) = delete;

    // `pump` lets the target's side run; called over and over while an answer is awaited. The
    // position is in device pixels of the screen. Answers whether the target took the drop.
    bool drop(xcb_window_t target, int x, int y, const std::string &type, const std::string &data,
              const std::function<void()> &pump);

    // What the target said last: the action's name, and whether the protocol was finished.
    const std::string &action() const { return action_; }
    bool finished() const { return finished_; }

private:
    xcb_atom_t atom(const std::string &name);
    std::string nameOf(xcb_atom_t atom);
    void send(xcb_window_t target, const char *message, std::uint32_t a, std::uint32_t b,
              std::uint32_t c, std::uint32_t d);
    void handleEvents();
    bool await(const bool &flag, const std::function<void()> &pump);

    xcb_connection_t *connection_;
    xcb_window_t window_;
    std::string data_;
    std::string action_;
    bool answered_ = false;
    bool accepted_ = false;
    bool finished_ = false;
};

} // namespace velmora::tests
