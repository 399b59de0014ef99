#pragma once

// What lies in the folder: songs, pictures with sound, lyrics. Once made it does not change, so
// that answers go on with one while the next is made.

#include "catalogue/folder.h"
#include "catalogue/tags.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velmora::catalogue {

struct Item {
    FileEntry file;
    Tags tags; // what it is known by
    bool isLyric = false;
    std::shared_ptr<const Tags> own; // of a lyric: what it says itself

    // Of digits and small letters, the same for the same path at any time.
    std::string id() const;
    // The extension in small letters.
    std::string format() const;
};

// The name without folders and extension, and what lies before the extension with the folders.
std::u16string stemOf(const Item &item);
std::string_view pathStemOf(std::string_view path) noexcept;
std::string formatOf(std::string_view path);
std::string idOf(std::string_view path);

// The type of a song's file by its extension; null for what is none.
const char *mediaType(std::string_view format) noexcept;

class Library {
public:
    using Items = std::vector<std::shared_ptr<const Item>>;
    struct Found {
        std::vector<const Item *> items; // the best first
        std::size_t all = 0;             // of which these are the first ones
    };
    static constexpr std::size_t noLimit = std::numeric_limits<std::size_t>::max();

    Library() = default;
    // Items sorted by path. Of those that are also in the one before only little has to be made.
    explicit Library(Items items, const Library *before = nullptr);
    Library(const Library &) = delete;
    Library &operator=(const Library &) = delete;

    const std::vector<const Item *> &songs() const noexcept { return songs_.items; }
    const std::vector<const Item *> &lyrics() const noexcept { return lyrics_.items; }
    const Items &items() const noexcept { return items_; }
    // One song of each album, sorted by the album's name. An album is what songs of one folder name
    // as such.
    const std::vector<const Item *> &albums() const noexcept { return albums_; }
    // Null when there is none.
    const Item *find(std::string_view id) const;

    // What holds every word, of which the first 32 count; nothing for no word.
    Found searchSongs(std::u16string_view words, std::size_t most = noLimit) const;
    Found searchLyrics(std::u16string_view words, std::size_t most = noLimit) const;

private:
    // All texts of one kind one behind another: a search is one run through them.
    struct Shelf {
        std::vector<const Item *> items;
        std::vector<std::uint32_t> ends; // of each item's text
        std::string texts;

        std::string_view text(std::size_t at) const;
        void add(const Item *item, std::string_view text);
        Found search(std::u16string_view words, std::size_t most) const;
    };

    void findAlbums();
    std::string_view textBefore(const Item *item) const;

    Items items_;
    std::vector<std::pair<std::uint64_t, const Item *>> byNumber_; // by what its id says
    Shelf songs_;
    Shelf lyrics_;
    std::vector<const Item *> albums_;
};

} // namespace velmora::catalogue
