#pragma once

// Whether the machine is online.

namespace velmora {

namespace platform {
class Internet;
}

// A question to the configuration alone: nothing is contacted, and every kind of connection counts.
bool check_Network(platform::Internet &internet);

} // namespace velmora
