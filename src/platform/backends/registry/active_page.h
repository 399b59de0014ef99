#pragma once

#include "platform/contracts/registry.h"

#include <string>

namespace velmora::platform {

// The code page that the user has set: the text value "ACP" of the platform's own key
// "SYSTEM\CurrentControlSet\Control\Nls\CodePage". Empty where there is none.
std::u16string activePage(Registry &registry);

} // namespace velmora::platform
