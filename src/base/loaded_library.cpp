#include "base/loaded_library.h"

#include <dlfcn.h>

namespace velmora {

LoadedLibrary::LoadedLibrary(const std::string &name)
    : handle_(name.empty() ? nullptr
                           : dlopen(name.c_str(), RTLD_LAZY | RTLD_LOCAL | RTLD_NODELETE)) {}

void *LoadedLibrary::symbol(const char *name) const {
    return handle_ != nullptr ? dlsym(handle_, name) : nullptr;
}

} // namespace velmora
