#pragma once

// The name by which desktops know the program.

namespace velmora::platform::bus {

inline constexpr const char *applicationId = "example.norvane.velmora";

} // namespace velmora::platform::bus
