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

    // Finds the lyric of the track that starts: in the lyric folder, beside the track (then copied
    // into the lyric folder), and then on the Internet by tag, title and file name, in this order.
    // Ends in a load of lrcForm, with no lyric if need be; a path without a folder leaves the lyric
    // as it is. Raises when the lyric found cannot be read.
    //
    // Events run while the Internet is asked. What is found belongs to this track's file; where the
    // track has given way meanwhile no window is touched. A lyric that has come to its place
    // meanwhile is the one, and stays.
    void findTrackLyric(std::u16string_view path);

    // Whether some row's path equals this one exactly.
    bool isInPlayList(std::u16string_view path) const;

private:
    struct Wanted;
    bool loadNamesake(std::u16string_view path, std::u16string_view stem);
    bool findOnInternet(const Wanted &wanted);
    bool tryKeyword(const std::u16string &keyword, const Wanted &wanted);
    bool fetchLyric(const std::u16string &keyword, const Wanted &wanted);
    bool isThere(const Wanted &wanted);
    bool isShown(const Wanted &wanted);
    void say(std::u16string_view text, const Wanted &wanted);
    void matched(std::u16string_view path);

    Velmora &app_;
};

} // namespace velmora
