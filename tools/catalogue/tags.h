#pragma once

// What a music file says about itself.

#include "catalogue/folder.h"

#include <string>

namespace velmora::catalogue {

struct Tags {
    std::u16string title;
    std::u16string artist;
    std::u16string album;
};

// Empty for a file of a kind without tags, and for a damaged one.
Tags tagsOf(const OpenFile &file);

// "03. Artist - Title" and the like: what a name without its extension says.
Tags tagsOfName(std::u16string_view stem);

} // namespace velmora::catalogue
