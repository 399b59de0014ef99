#pragma once

namespace velmora::platform::picture {

// The engine puts its own handler for errors of X requests in place while it has a window, and asks
// for Xlib's own, which ends the process, before it closes its display: an error that is still
// under way then (the window around the picture was destroyed) would take the whole program with
// it. So XSetErrorHandler is defined here too, and exported, which makes every library that is
// loaded later call this one: it puts a handler that ignores errors where Xlib's own was asked for.
//
// A keeper puts back the handler that was there when it was made. Does nothing in a process without
// Xlib.
class XErrorHandlerKeeper {
public:
    using Handler = int (*)(void *display, void *error);
    using Setter = Handler (*)(Handler);

    XErrorHandlerKeeper();
    void restore() const;

private:
    Setter set_ = nullptr;
    Handler handler_ = nullptr;
};

} // namespace velmora::platform::picture
