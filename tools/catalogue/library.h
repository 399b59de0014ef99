#pragma once

// What lies in the folder: songs, pictures with sound, lyrics.

#include "catalogue/folder.h"
#include "catalogue/tags.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::catalogue {

struct Item {
    std::string id; // of digits and small letters, the same for the same path at any time
    FileEntry file;
    std::string format; // the extension in small letters
    std::u16string stem;
    Tags own;  // what the file itself says
    Tags tags; // what it is known by
    bool isLyric = false;
    // For searching.
    std::u16string titleForm;
    std::u16string fullForm; // everything, blanks at both ends
};

// The type of a song's file by its extension; null for what is none.
const char *mediaType(std::string_view format) noexcept;

class Library {
public:
    explicit Library(const Folder &folder) : folder_(folder) {}

    // Looks what has changed in the folder. Only files that are new or changed are read.
    void refresh();

    const std::vector<const Item *> &songs() const noexcept { return songs_; }
    const std::vector<const Item *> &lyrics() const noexcept { return lyrics_; }
    // Null when there is none.
    const Item *find(std::string_view id) const;

    // The items that hold every word, the best first; none for an empty word.
    static std::vector<const Item *> search(const std::vector<const Item *> &items,
                                            std::u16string_view words);

private:
    Item read(const FileEntry &file) const;
    void describeLyrics();

    const Folder &folder_;
    std::vector<FileEntry> files_;                   // as they were last
    std::map<std::string, Item, std::less<>> items_; // by id
    std::vector<const Item *> songs_;
    std::vector<const Item *> lyrics_;
};

} // namespace velmora::catalogue
