#pragma once

// Finds songs on the Internet: asks the search engine for one result page and picks the packed
// records of songs and their links out of its text. The page is upper-cased whole and searched for
// fixed markers.
//
// Each link gives one row of the three parallel lists of search_Song_Internet_Form: what is shown,
// the link, and the record it came with. The host of the engine is configuration; while it is not
// set every search fails at once.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

class Velmora;

class song_Internet_Search {
public:
    explicit song_Internet_Search(Velmora &app);

    // True when the page could be fetched, whatever its scan found. Only appends to the lists.
    bool searchSong(std::u16string_view word);

    // The address of the result page for a word as it stands.
    std::u16string searchAddress(std::u16string_view word) const;

    // Fetches the page and fills the lists. Raises where a cell is damaged, with the rows so far.
    void scanSongPage(std::u16string address);

    std::u16string songSearchUrl;
    std::u16string songSearchPage;           // as first fetched
    std::vector<std::u16string> songResults; // erased by each search and never filled
    bool songScanDone = false;               // never set; a scan would end at once

private:
    void addRows(std::u16string_view pieces, std::u16string_view record);

    Velmora &app_;
    std::int32_t row_ = 0; // number of the next row of this scan
};

} // namespace velmora
