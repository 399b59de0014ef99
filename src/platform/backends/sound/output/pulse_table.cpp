#include "platform/backends/sound/output/pulse_table.h"

namespace velmora::platform::sound {

PulseTable::PulseTable(const LoadedLibrary &library) { VELMORA_PULSE_FUNCTIONS(VELMORA_TABLE_BIND) }

} // namespace velmora::platform::sound
