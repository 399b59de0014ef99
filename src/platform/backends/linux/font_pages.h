#pragma once

// What of the installed fonts lies in memory.

namespace velmora::platform {

// Gives back what was read of fonts so far. The toolkit keeps each face mapped for good that was
// opened once, and with each page that is touched come some fifteen beside it; what is read again
// is mapped again. To be called once, where most of it has served its time. The number of fonts.
int letGoOfFontPages();

} // namespace velmora::platform
