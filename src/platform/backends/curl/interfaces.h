#pragma once

namespace velmora::platform::http {

// Whether an interface other than loopback is up with an address.
bool hasOutsideInterface();

} // namespace velmora::platform::http
