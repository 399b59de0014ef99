#pragma once

// A shared library that is loaded when it is first needed, and a table of its functions. The
// program is not linked with it, so that starting costs nothing of it and a machine without it only
// lacks what it does.

#include <memory>
#include <string>

namespace velmora {

class LoadedLibrary {
public:
    // Loads by the usual search (or a path). The library stays in memory until the process ends:
    // several of these keep threads or global state that an unloading would pull away.
    explicit LoadedLibrary(const std::string &name);

    // Sets the function pointer from the symbol of that name; false when it or the library is
    // missing.
    template <typename Function> bool bind(Function *&function, const char *name) const {
        function = reinterpret_cast<Function *>(symbol(name));
        return function != nullptr;
    }

private:
    void *symbol(const char *name) const;

    void *handle_ = nullptr;
};

// The table of a library's functions; null where one of them, or the library, is missing.
template <typename Table> std::shared_ptr<const Table> loadedTable(const std::string &name) {
    const auto table = std::make_shared<const Table>(LoadedLibrary(name));
    return table->complete ? table : nullptr;
}

} // namespace velmora

// The members of a typed function table and the statements that fill it from `library`; `LIST(F)`
// names the functions. A table is usable when each of them was found.
#define VELMORA_TABLE_MEMBER(name) decltype(&::name) name = nullptr; // NOLINT: a name it is
#define VELMORA_TABLE_BIND(name) complete = library.bind(name, #name) && complete;
