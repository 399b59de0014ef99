#pragma once

// What the two search windows share.

#include "base/geometry.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace velmora {

class Velmora;

namespace forms {
class ListBox;
}

// What to look for, as the present track says: its tag's title and artist, or its file name without
// extension where there is no tag or no title.
struct SearchWords {
    std::u16string name;
    std::u16string singer;
};
SearchWords wordsOfTrack(Velmora &app);

// The row under a point of the list, or -1.
std::int32_t rowUnder(const forms::ListBox &list, Twips y);

// Whether a file can be written into the folder of this path.
bool canWriteBeside(Velmora &app, std::u16string_view path);

} // namespace velmora
