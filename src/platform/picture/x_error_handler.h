#pragma once

namespace velmora::platform::picture {

// The engine puts its own handler for errors of X requests in place while it has a window, and
// Xlib's own, which ends the process, afterwards. This puts back the one that was there when it was
// made. Does nothing in a process without Xlib.
class XErrorHandlerKeeper {
public:
    XErrorHandlerKeeper();
    void restore() const;

private:
    using Handler = int (*)(void *display, void *error);
    using Setter = Handler (*)(Handler);

    Setter set_ = nullptr;
    Handler handler_ = nullptr;
};

} // namespace velmora::platform::picture
