#pragma once

// What the pages for browsers load besides themselves. All of it is here: nothing comes from
// elsewhere.

#include <string_view>

namespace velmora::catalogue {

std::string_view styleSheet() noexcept;
// Has the lyric follow the song and the next song begin; every page is whole without it.
std::string_view script() noexcept;

} // namespace velmora::catalogue
