// Keeps the strokes of letters at the weight that their designer gave them.
//
// The toolkit switches the font library's "stem darkening" on, for fonts with PostScript outlines
// alone: those are the Chinese and Japanese faces here, which then look bold beside Latin text of
// the same weight, and their small characters fill up. There is no option for it, but the toolkit
// looks the font library's function up by name, and finds the program's own first.

#include <dlfcn.h>

#include <cstring>

namespace {

using Setter = int (*)(void *library, const char *module, const char *property, const void *value);

} // namespace

extern "C" __attribute__((visibility("default"))) int
FT_Property_Set(void *library, const char *module, const char *property, const void *value) {
    const auto set = reinterpret_cast<Setter>(dlsym(RTLD_NEXT, "FT_Property_Set"));
    constexpr int unimplemented = 7; // the font library's own number for it
    if (set == nullptr)
        return unimplemented;
    constexpr unsigned char yes = 1;
    const bool isDarkening = std::strcmp(property, "no-stem-darkening") == 0;
    return set(library, module, property, isDarkening ? &yes : value);
}
