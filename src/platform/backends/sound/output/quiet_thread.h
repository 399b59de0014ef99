#pragma once

#include <functional>
#include <thread>

namespace velmora::platform::sound {

// A thread that no signal reaches: signals are the program's matter. One that is not joinable is
// none: the system has no thread to give.
std::thread startQuietThread(std::function<void()> work);

} // namespace velmora::platform::sound
