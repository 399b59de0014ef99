#pragma once

// What every stage of the compiler throws: a fault in a source file, with the line it stands on.

#include <stdexcept>
#include <string>

namespace velmora::skinc {

class CompileError : public std::runtime_error {
public:
    CompileError(const std::string &file, int line, const std::string &what)
        : std::runtime_error(file + ":" + std::to_string(line) + ": " + what) {}
};

} // namespace velmora::skinc
