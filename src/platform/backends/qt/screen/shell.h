#pragma once

namespace velmora::platform::qt {

// GNOME's shell: it makes of each wish for attention a notice that stays in its list, and on Xorg
// keeps every click on its panel for itself.
bool isGnome();

} // namespace velmora::platform::qt
