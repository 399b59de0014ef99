#include "platform/backends/qt/screen/keys.h"

#include <algorithm>
#include <iterator>

namespace velmora::platform::qt {

namespace {

struct Named {
    xcb_keysym_t symbol;
    std::int16_t code;
};

// Sorted by symbol. Numbers of symbols as in the X keyboard encoding.
constexpr Named named[] = {
    {0x0020, 32},                // space
    {0x0027, 222},               // apostrophe
    {0x002B, 187},               // plus
    {0x002C, 188},               // comma
    {0x002D, 189},               // minus
    {0x002E, 190},               // period
    {0x002F, 191},               // slash
    {0x003B, 186},               // semicolon
    {0x003D, 187},               // equal
    {0x005B, 219},               // bracket left
    {0x005C, 220},               // backslash
    {0x005D, 221},               // bracket right
    {0x0060, 192},               // grave
    {0xFE20, 9},                 // Tab with Shift
    {0xFF08, 8},                 // BackSpace
    {0xFF09, 9},                 // Tab
    {0xFF0B, 12},                // Clear
    {0xFF0D, 13},                // Return
    {0xFF13, 19},                // Pause
    {0xFF14, 145},               // Scroll Lock
    {0xFF1B, 27},                // Escape
    {0xFF50, 36},                // Home
    {0xFF51, 37},                // Left
    {0xFF52, 38},                // Up
    {0xFF53, 39},                // Right
    {0xFF54, 40},                // Down
    {0xFF55, 33},                // Page Up
    {0xFF56, 34},                // Page Down
    {0xFF57, 35},                // End
    {0xFF61, 44},                // Print
    {0xFF63, 45},                // Insert
    {0xFF67, 93},                // Menu
    {0xFF7F, 144},               // Num Lock
    {0xFF80, 32},                // keypad Space
    {0xFF89, 9},                 // keypad Tab
    {0xFF8D, 13},                // keypad Enter
    {0xFF95, 36},                // keypad Home
    {0xFF96, 37},                // keypad Left
    {0xFF97, 38},                // keypad Up
    {0xFF98, 39},                // keypad Right
    {0xFF99, 40},                // keypad Down
    {0xFF9A, 33},                // keypad Page Up
    {0xFF9B, 34},                // keypad Page Down
    {0xFF9C, 35},                // keypad End
    {0xFF9D, 12},                // keypad Begin
    {0xFF9E, 45},                // keypad Insert
    {0xFF9F, 46},                // keypad Delete
    {0xFFAA, 106},               // keypad *
    {0xFFAB, 107},               // keypad +
    {0xFFAC, 110},               // keypad separator
    {0xFFAD, 109},               // keypad -
    {0xFFAE, 110},               // keypad decimal
    {0xFFAF, 111},               // keypad /
    {0xFFE1, 16},                // Shift
    {0xFFE2, 16},  {0xFFE3, 17}, // Control
    {0xFFE4, 17},  {0xFFE5, 20}, // Caps Lock
    {0xFFE7, 18},                // Meta
    {0xFFE8, 18},  {0xFFE9, 18}, // Alt
    {0xFFEA, 18},  {0xFFEB, 91}, // Super
    {0xFFEC, 92},  {0xFFFF, 46}, // Delete
};

std::int16_t codeOfSymbol(xcb_keysym_t symbol) {
    if (symbol >= 'a' && symbol <= 'z')
        return static_cast<std::int16_t>(symbol - 'a' + 'A');
    if ((symbol >= 'A' && symbol <= 'Z') || (symbol >= '0' && symbol <= '9'))
        return static_cast<std::int16_t>(symbol);
    constexpr xcb_keysym_t f1 = 0xFFBE;
    constexpr xcb_keysym_t f24 = 0xFFD5;
    if (symbol >= f1 && symbol <= f24)
        return static_cast<std::int16_t>(112 + symbol - f1);
    constexpr xcb_keysym_t keypad0 = 0xFFB0;
    constexpr xcb_keysym_t keypad9 = 0xFFB9;
    if (symbol >= keypad0 && symbol <= keypad9)
        return static_cast<std::int16_t>(96 + symbol - keypad0);
    const auto *found = std::lower_bound(
        std::begin(named), std::end(named), symbol,
        [](const Named &entry, xcb_keysym_t wanted) { return entry.symbol < wanted; });
    return found != std::end(named) && found->symbol == symbol ? found->code : std::int16_t{0};
}

bool isKeypadNumber(xcb_keysym_t symbol) {
    constexpr xcb_keysym_t separator = 0xFFAC;
    constexpr xcb_keysym_t decimal = 0xFFAE;
    constexpr xcb_keysym_t keypad0 = 0xFFB0;
    constexpr xcb_keysym_t keypad9 = 0xFFB9;
    return symbol == separator || symbol == decimal || (symbol >= keypad0 && symbol <= keypad9);
}

bool isDigitOrLetter(std::int16_t code) {
    return (code >= 'A' && code <= 'Z') || (code >= '0' && code <= '9');
}

// Keys of the main block by their place, from key code 10 on (the row of digits).
constexpr xcb_keycode_t firstPlace = 10;
constexpr std::int16_t places[] = {
    '1', '2', '3', '4', '5', '6', '7', '8', '9', '0', 189, 187, 8,  9,   // 10..23
    'Q', 'W', 'E', 'R', 'T', 'Y', 'U', 'I', 'O', 'P', 219, 221, 13, 17,  // 24..37
    'A', 'S', 'D', 'F', 'G', 'H', 'J', 'K', 'L', 186, 222, 192, 16, 220, // 38..51
    'Z', 'X', 'C', 'V', 'B', 'N', 'M', 188, 190, 191,                    // 52..61
};

} // namespace

std::int16_t virtualKey(std::span<const xcb_keysym_t> symbols, xcb_keycode_t key,
                        bool numbersLocked) {
    if (numbersLocked)
        for (const xcb_keysym_t symbol : symbols)
            if (isKeypadNumber(symbol))
                return codeOfSymbol(symbol);
    // A digit or a letter anywhere on the key names it: where the digits need Shift, the key of
    // the digit 1 is still 1. Keypad digits do not: without Num Lock that key is an arrow.
    for (const xcb_keysym_t symbol : symbols)
        if (symbol < 0x80 && isDigitOrLetter(codeOfSymbol(symbol)))
            return codeOfSymbol(symbol);
    // A keypad key's arrow stands on its first level.
    for (const xcb_keysym_t symbol : symbols)
        if (const std::int16_t code = codeOfSymbol(symbol); code != 0)
            return code;
    if (key >= firstPlace && key - firstPlace < static_cast<int>(std::size(places)))
        return places[key - firstPlace];
    return 0;
}

} // namespace velmora::platform::qt
