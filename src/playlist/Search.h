#pragma once

// Parts of paths, the formats that may enter the list by folder or drop, and the duplicate test.

#include <string>
#include <string_view>

namespace velmora {

class Velmora;

class Search {
public:
    explicit Search(Velmora &app);

    // Up to and including the last separator; empty when there is none.
    std::u16string getFolderPart(std::u16string_view path) const;

    // The text behind the last "." of the whole path in upper case; empty without a ".". Counts the
    // units to keep by the length in bytes of the code page, so an extension that is not plain
    // ASCII keeps its point.
    std::u16string getExtension(std::u16string_view path) const;

    // Whether the extension is one of the twenty that folders and drops let in.
    bool isSupportedFormat(std::u16string_view path) const;

    // Whether some row's path equals this one exactly.
    bool isInPlayList(std::u16string_view path) const;

private:
    Velmora &app_;
};

} // namespace velmora
