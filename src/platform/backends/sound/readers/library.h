#pragma once

// A shared library that is loaded when it is first needed. The program is not linked with it, so
// that starting costs nothing of it and a machine without it only lacks what it does.

#include <string>

namespace velmora::platform::sound {

class Library {
public:
    // Loads by the usual search (or a path). The library stays in memory until the process ends:
    // several of these keep threads or global state that an unloading would pull away.
    explicit Library(const std::string &name);

    bool loaded() const { return handle_ != nullptr; }
    // Null when the library or the symbol is missing.
    void *symbol(const char *name) const;

    // Sets the function pointer from the symbol of that name; false when it is missing.
    template <class Function> bool bind(Function *&function, const char *name) const {
        function = reinterpret_cast<Function *>(symbol(name));
        return function != nullptr;
    }

private:
    void *handle_ = nullptr;
};

} // namespace velmora::platform::sound

// The members of a typed function table and the statements that fill it; `LIST(F)` names the
// functions. A table is usable when each of them was found.
#define VELMORA_TABLE_MEMBER(name) decltype(&::name) name = nullptr;
#define VELMORA_TABLE_BIND(name) complete = library.bind(name, #name) && complete;
