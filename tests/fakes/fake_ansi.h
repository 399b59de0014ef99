#pragma once

// The ANSI conversion with a page that the test chooses.

#include "text/ansi_conversion.h"

namespace velmora::fakes {

class FakeAnsi : public platform::AnsiConversion {
public:
    // 0: UTF-8 with page 936 behind it, where no page is set. Else the page that is set: 932, 936,
    // 949, 950, 1252 or 65001.
    explicit FakeAnsi(int page = 0);
};

} // namespace velmora::fakes
