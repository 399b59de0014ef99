#pragma once

// Something done again and again from the loop, nested ones included.

#include "platform/backends/curl/curl_internet.h"
#include "platform/backends/linux/descriptor.h"

#include <functional>

namespace velmora::platform::http {

class Ticker {
public:
    // Four times a second, until it is destroyed; `tick` must not destroy it.
    Ticker(const WatchReadable &watch, std::function<void()> tick);

private:
    Descriptor timer_;
    std::function<void(bool)> watch_; // ends ahead of the timer
};

} // namespace velmora::platform::http
