#include "platform/backends/sound/readers/library.h"

#include <dlfcn.h>

namespace velmora::platform::sound {

Library::Library(const std::string &name)
    : handle_(name.empty() ? nullptr
                           : dlopen(name.c_str(), RTLD_LAZY | RTLD_LOCAL | RTLD_NODELETE)) {}

void *Library::symbol(const char *name) const { return handle_ ? dlsym(handle_, name) : nullptr; }

} // namespace velmora::platform::sound
