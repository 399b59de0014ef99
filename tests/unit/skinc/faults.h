#pragma once

#include "error.h"

#include <string>

// The message of the CompileError that `work` throws; empty when it throws none.
template <typename Work> std::string faultOf(Work &&work) {
    try {
        work();
    } catch (const velmora::skinc::CompileError &fault) {
        return fault.what();
    }
    return {};
}
