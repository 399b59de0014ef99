#include "platform/backends/picture/shared_library.h"

#include <dlfcn.h>

namespace velmora::platform::picture {

SharedLibrary::SharedLibrary(const std::string &name)
    : handle_(dlopen(name.c_str(), RTLD_LAZY | RTLD_LOCAL)) {}

void *SharedLibrary::address(const char *name) const {
    return handle_ != nullptr ? dlsym(handle_, name) : nullptr;
}

} // namespace velmora::platform::picture
