#pragma once

// What a music file says about itself.

#include "catalogue/folder.h"

#include <optional>
#include <string>

namespace velmora::catalogue {

struct Tags {
    std::u16string title;
    std::u16string artist;
    std::u16string album;
    friend bool operator==(const Tags &, const Tags &) = default;
};

// No title is longer: pages have to stay of a size that readers take.
inline constexpr std::size_t longestTag = 300;

// At most so long, and never half a pair.
std::u16string cutTag(std::u16string text);

// Empty for a file of a kind without tags, for a damaged one, and for one whose tags are packed:
// a small one can hold more than this machine. Reading a file made for harm may still take any
// memory and time; `TagChild` is for those.
Tags tagsOf(const OpenFile &file);

// Who reads tags. Absent where that could not be done now and may be another time.
class TagReader {
public:
    virtual ~TagReader() = default;
    virtual std::optional<Tags> tagsOf(const OpenFile &file) = 0;
};

// In this process.
class OwnTagReader final : public TagReader {
public:
    std::optional<Tags> tagsOf(const OpenFile &file) override { return catalogue::tagsOf(file); }
};

// "03. Artist - Title" and the like: what a name without its extension says.
Tags tagsOfName(std::u16string_view stem);

} // namespace velmora::catalogue
