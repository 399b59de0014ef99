#include "network/song_Internet_Search.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "base/text.h"
#include "network/linkReader.h"
#include "network/search_Song_Internet_Form.h"
#include "network/webPage.h"
#include "platform/contracts/platform.h"
#include "platform/contracts/windows.h"
#include "settings/setControl.h"
#include "velmora.h"

namespace velmora {

namespace {

constexpr std::u16string_view marker = u"<TD CLASS=\"DATA\">";
constexpr std::u16string_view separator = u"@@FI";
constexpr std::u16string_view cellEnd = u"</TD>";
constexpr std::size_t frame = 2000;

// The parts of a cell, the marker included in neither.
struct Cell {
    std::u16string_view record;
    std::u16string_view pieces; // "link;label;..."
};

// Raises for a cell without the separator.
Cell readCell(std::u16string_view text) {
    const std::size_t recordEnd = text.find(separator);
    if (recordEnd == std::u16string_view::npos)
        raise(ErrorNumber::SubscriptOutOfRange);
    Cell cell{text.substr(0, recordEnd), text.substr(recordEnd + separator.size())};
    cell.pieces = cell.pieces.substr(0, cell.pieces.find(separator));
    const std::size_t end = cell.pieces.find(cellEnd);
    // A cell that does not end within its frame: what stands ahead of the separator holds no link.
    cell.pieces = end != std::u16string_view::npos ? cell.pieces.substr(0, end) : cell.record;
    return cell;
}

bool isLink(std::u16string_view piece) {
    return startsWith(piece, u"HTTP://") || startsWith(piece, u"HTTPS://");
}

} // namespace

song_Internet_Search::song_Internet_Search(Velmora &app) : app_(app) {}

std::u16string song_Internet_Search::searchAddress(std::u16string_view word) const {
    return app_.setControl()
        .get_SongSearchHost()
        .append(u"/fcgi-bin/m.q?w=")
        .append(word)
        .append(u"&source=1&t=0");
}

bool song_Internet_Search::searchSong(std::u16string_view word) {
    // Events run in the fetches, and another search in them: the state is that of the last to end.
    const std::u16string address = searchAddress(word);
    std::u16string page;
    passOver([&] { page = getWebPage(app_.platform(), address); });
    const auto keepState = [&] {
        songSearchUrl = address;
        songSearchPage = page;
    };
    keepState();
    if (page.empty())
        return false;
    songResults.clear();
    songScanDone = false;
    passOver([&] { scanSongPage(address); });
    keepState();
    return true;
}

void song_Internet_Search::scanSongPage(std::u16string address) {
    app_.platform().windows.DoEvents();
    songResults.clear();
    if (songScanDone)
        return;
    linkBase(app_.platform().windows, address); // for what it does to the address
    const std::u16string page = upper(getWebPage(app_.platform(), address));
    if (page.empty())
        return;
    std::vector<std::int32_t> positions;
    countText(app_.platform().windows, page, marker, &positions);
    row_ = 0;
    for (const std::int32_t position : positions) {
        const std::u16string_view text =
            std::u16string_view(page).substr(static_cast<std::size_t>(position) - 1, frame);
        const Cell cell = readCell(text.substr(marker.size()));
        addRows(cell.pieces, cell.record);
    }
}

// The piece behind a link is its label, so the last piece is never a link. Goes from link to link,
// not from piece to piece: a page may hold a great many cells whose frames share their pieces.
void song_Internet_Search::addRows(std::u16string_view pieces, std::u16string_view record) {
    constexpr std::u16string_view beginning = u"HTTP";
    search_Song_Internet_Form &form = app_.search_Song_Internet_Form();
    for (std::size_t at = pieces.find(beginning); at != std::u16string_view::npos;
         at = pieces.find(beginning, at + beginning.size())) {
        if (at != 0 && pieces[at - 1] != u';')
            continue;
        const std::size_t end = pieces.find(u';', at);
        if (end == std::u16string_view::npos)
            return;
        const std::u16string_view piece = pieces.substr(at, end - at);
        if (!isLink(piece))
            continue;
        const std::u16string_view rest = pieces.substr(end + 1);
        const std::u16string_view label = rest.substr(0, rest.find(u';'));
        std::u16string shown = decimal(row_) + u"、";
        if (!label.empty())
            shown.append(u"【").append(label).append(u"】");
        form.search_Song_List.addItem(shown.append(lower(piece)));
        form.List1.addItem(piece);
        form.List2.addItem(record);
        ++row_;
    }
}

} // namespace velmora
