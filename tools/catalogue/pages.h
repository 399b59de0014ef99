#pragma once

// The pages that the player reads, in exactly the form that its readers look for, and that people
// can read as well. They are texts here; `pageBytes` makes the bytes.

#include "catalogue/library.h"

#include <string>
#include <string_view>
#include <vector>

namespace velmora::catalogue {

// How much one page shows.
inline constexpr std::size_t mostLyricLinks = 100;
inline constexpr std::size_t mostSongs = 200;

// Addresses begin with `base`, "http://host:port". They are found in every case of their letters.
std::u16string songAddress(std::u16string_view base, const Item &song);
std::u16string lyricAddress(std::u16string_view base, const Item &lyric);

// The reader counts every link of the page, wherever it leads, takes the first lyric's by itself
// and misses one that stands alone in front of another link. So: with one lyric its link is the
// page's last; with more, or none, the last link leads home.
std::u16string lyricPage(std::u16string_view base, std::u16string_view words,
                         const std::vector<const Item *> &lyrics);

// The packed record of a song with its link, as it stands in a cell of the page.
std::u16string songCell(std::u16string_view base, const Item &song);
std::u16string songPage(std::u16string_view base, std::u16string_view words,
                        const std::vector<const Item *> &songs);

} // namespace velmora::catalogue
