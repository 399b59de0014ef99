#include "platform/picture/x_error_handler.h"

#include <dlfcn.h>

namespace velmora::platform::picture {

XErrorHandlerKeeper::XErrorHandlerKeeper() {
    // The Xlib that is in the process already: none is loaded for this.
    void *xlib = dlopen("libX11.so.6", RTLD_LAZY | RTLD_NOLOAD);
    if (xlib == nullptr)
        return;
    set_ = reinterpret_cast<Setter>(dlsym(xlib, "XSetErrorHandler"));
    if (set_ == nullptr)
        return;
    handler_ = set_(nullptr); // setting is the only way to ask
    set_(handler_);
}

void XErrorHandlerKeeper::restore() const {
    if (set_ != nullptr)
        set_(handler_);
}

} // namespace velmora::platform::picture
