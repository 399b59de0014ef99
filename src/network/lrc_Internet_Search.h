#pragma once

// Finds lyric files on the Internet: asks the search engine and takes, from the text of its result
// pages, the links that lead straight to a file on one of two lyric sites. There is no parser of
// HTML: a page is upper-cased whole and searched for fixed markers.
//
// The addresses of engine and sites are hosts of the settings; one that is not set matches no link,
// and asking an engine that is not set fails at once.

#include "network/linkArray.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace velmora {

class Velmora;

class lrc_Internet_Search {
public:
    explicit lrc_Internet_Search(Velmora &app);

    // One whole search. True when the first page could be fetched, whatever its scan found; then
    // the arrays are new. A search that fails leaves them as they were. Each accepted link is
    // appended to the window's list, which the caller clears. Handles pending events: a search that
    // they begin has its own links, and the arrays are always those of the search that ended last.
    bool searchLrc(std::u16string_view word);

    // The address of the engine's result page for a word as it stands; without the engine's host
    // when that is not set.
    std::u16string searchAddress(std::u16string_view word) const;

    // Scans the first page, unless that is done, and the further pages. Raises where the scan ends
    // early.
    void scanLrcPages(std::u16string address);

    // --- the state, kept from one search to the next ---
    std::u16string lrcSearchUrl;  // of the first result page
    std::u16string lrcSearchPage; // as fetched
    LinkArray lrcPageLinks;       // further result pages, in lower case
    LinkArray lrcDownloadLinks;   // lyric addresses as found, in upper case
    bool lrcFirstPageDone = false;
    std::int16_t lrcPageIndex = 0; // the further page being scanned

private:
    struct Addresses;
    // One search's own links, which no other one started meanwhile can reach.
    struct Scan {
        LinkArray pageLinks;
        LinkArray downloadLinks;
        bool isFirstPageDone = false;
        std::int16_t pageIndex = 0;
        std::int32_t pages = 0; // page links stored by this scan
        std::int32_t lyrics = 0;
        std::int64_t untilMs = 0; // by the steady clock; a further page asked for later ends it
    };
    Scan newScan() const;
    void scanPages(std::u16string address, Scan &scan);
    bool scanFirstPage(std::u16string address, const Addresses &addresses, Scan &scan);
    void scanFurtherPages(const Addresses &addresses, Scan &scan);
    void takeLyrics(const std::u16string &link, const Addresses &addresses, Scan &scan);
    void takeLyric(const std::u16string &link, Scan &scan);
    void keepState(Scan &&scan);

    Velmora &app_;
};

} // namespace velmora
