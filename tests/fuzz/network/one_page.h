#pragma once

// What the fuzz targets of result pages share.

#include "tests/fakes/fake_internet.h"

#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

namespace velmora::fuzz {

inline void require(bool holds) {
    if (!holds)
        std::abort();
}

// The same page at every address.
class OnePage : public fakes::FakeInternet {
public:
    using FakeInternet::FakeInternet;
    std::string page;
    int fetches = 0;
    std::optional<std::string> XmlHttpGet(std::u16string_view) override {
        // An engine that leads on and on: enough is enough for one run.
        return ++fetches <= 20 ? std::optional(page) : std::nullopt;
    }
};

} // namespace velmora::fuzz
