#include "platform/backends/picture/x_error_handler.h"

#include <dlfcn.h>

namespace velmora::platform::picture {

namespace {

// The Xlib that is in the process already: none is loaded for this.
XErrorHandlerKeeper::Setter xlibSetter() {
    void *xlib = dlopen("libX11.so.6", RTLD_LAZY | RTLD_NOLOAD);
    if (xlib == nullptr)
        return nullptr;
    return reinterpret_cast<XErrorHandlerKeeper::Setter>(dlsym(xlib, "XSetErrorHandler"));
}

int ignoreError(void *, void *) { return 0; }

} // namespace

XErrorHandlerKeeper::XErrorHandlerKeeper() : set_(xlibSetter()) {
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

extern "C" __attribute__((visibility("default")))
velmora::platform::picture::XErrorHandlerKeeper::Handler
XSetErrorHandler(velmora::platform::picture::XErrorHandlerKeeper::Handler handler) {
    using namespace velmora::platform::picture;
    const auto set = xlibSetter();
    if (set == nullptr)
        return nullptr;
    return set(handler != nullptr ? handler : ignoreError);
}
