#pragma once

// The ANSI conversion with a page that the test chooses.

#include "platform/linux/text/ansi_conversion.h"

namespace velmora::fakes {

class FakeAnsi : public platform::AnsiConversion {
public:
    // 0: UTF-8 with page 936 behind it, the program's normal state. Else one page alone, as the
    // override sets it: 936, 932, 950, 1252 or 65001.
    explicit FakeAnsi(int page = 0);
};

} // namespace velmora::fakes
