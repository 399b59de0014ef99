#pragma once

// Windows virtual-key codes of X keys.

#include <xcb/xcb.h>

#include <cstdint>
#include <span>

namespace velmora::platform::qt {

// `symbols` are all symbols of the key, group after group, level after level; the first one of the
// Latin script or of the function keys decides. Where the key has none (a keyboard without a Latin
// group), its place does, as on the usual PC keyboard. Of the locks that of the keypad's numbers
// counts, on its keys. 0: no such code.
std::int16_t virtualKey(std::span<const xcb_keysym_t> symbols, xcb_keycode_t key,
                        bool numbersLocked = false);

} // namespace velmora::platform::qt
