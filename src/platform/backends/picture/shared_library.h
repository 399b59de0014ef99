#pragma once

// A library loaded while the program runs.

#include <string>

namespace velmora::platform::picture {

// Loads once and stays for the life of the process: an engine that has had threads cannot be taken
// out of memory safely.
class SharedLibrary {
public:
    explicit SharedLibrary(const std::string &name);
    bool loaded() const { return handle_ != nullptr; }

    // Fills `function`; false where the library lacks it, or is not there.
    template <typename Function> bool find(const char *name, Function *&function) const {
        function = reinterpret_cast<Function *>(address(name));
        return function != nullptr;
    }

private:
    void *address(const char *name) const;

    void *handle_ = nullptr;
};

} // namespace velmora::platform::picture
