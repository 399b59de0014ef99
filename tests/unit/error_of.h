#pragma once

#include "base/run_time_error.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace velmora {

// The number of the error that a statement raises, and its text, which none is without.
inline ErrorNumber errorOf(const std::function<void()> &statement,
                           std::u16string *description = nullptr) {
    try {
        statement();
    } catch (const RunTimeError &error) {
        EXPECT_FALSE(error.description().empty());
        if (description != nullptr)
            *description = error.description();
        return error.number();
    }
    ADD_FAILURE() << "no error was raised";
    return ErrorNumber::General;
}

} // namespace velmora
