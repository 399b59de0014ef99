#include "catalogue/catalogue.h"

#include "base/ascii.h"
#include "base/text.h"
#include "catalogue/lyric_file.h"
#include "catalogue/maker_files.h"
#include "catalogue/pages.h"
#include "catalogue/texts.h"

#include <algorithm>

namespace velmora::catalogue {

namespace {

constexpr std::string_view pageType = "text/html; charset=gb18030";
constexpr std::string_view textType = "text/plain; charset=utf-8";
constexpr std::chrono::seconds refreshEvery{2};

Answer notFound() {
    return {404, std::string(textType), "There is nothing here.\r\n", std::nullopt};
}

Answer page(const std::u16string &text) {
    return {200, std::string(pageType), pageBytes(text), std::nullopt};
}

Answer file(std::optional<OpenFile> open, std::string_view type) {
    return open ? Answer{200, std::string(type), "", std::move(open)} : notFound();
}

// What can be said in an address without becoming something else.
bool isHostField(std::string_view host) {
    constexpr std::size_t longest = 200;
    return !host.empty() && host.size() <= longest &&
           host.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"
                                  ".-:[]_") == std::string_view::npos;
}

bool isThisMachine(std::string_view host) {
    const std::string name = lowerAscii(host.substr(0, host.rfind(':')));
    const bool number =
        name.substr(0, 4) == "127." && name.find_first_not_of("0123456789.") == std::string::npos;
    return number || name == "localhost" || name == "[::1]" || lowerAscii(host) == "localhost";
}

// What stands between a beginning and an end; absent unless both are there.
std::optional<std::string_view> between(std::string_view text, std::string_view begin,
                                        std::string_view end) {
    if (text.size() <= begin.size() + end.size() || text.substr(0, begin.size()) != begin ||
        text.substr(text.size() - end.size()) != end)
        return std::nullopt;
    return text.substr(begin.size(), text.size() - begin.size() - end.size());
}

} // namespace

std::u16string searchWords(std::string_view query, std::string_view name, std::string_view end) {
    const std::string low = lowerAscii(query);
    const std::string key = lowerAscii(name) + "=";
    std::size_t at = low.substr(0, key.size()) == key ? 0 : low.find("&" + key);
    if (at == std::string::npos)
        return u"";
    at += key.size() + (at == 0 && low.substr(0, key.size()) == key ? 0 : 1);
    const std::size_t cut = low.rfind(lowerAscii(end));
    const std::string_view words =
        query.substr(at, cut == std::string::npos || cut < at ? std::string_view::npos : cut - at);
    std::string plain(words);
    // A browser's form says "+" for a blank; to the search both are gaps between words.
    std::replace(plain.begin(), plain.end(), '+', ' ');
    return textOf(unescaped(plain));
}

Catalogue::Catalogue(const std::string &folder, std::string ownAddress)
    : ownAddress_(std::move(ownAddress)), folder_(folder), library_(folder_) {
    refresh();
}

void Catalogue::refresh() {
    const auto now = std::chrono::steady_clock::now();
    if (refreshed_ != std::chrono::steady_clock::time_point() && now - refreshed_ < refreshEvery)
        return;
    library_.refresh();
    refreshed_ = std::chrono::steady_clock::now();
}

std::u16string Catalogue::baseFor(std::string_view host) const {
    return u"http://" + fromAscii(isHostField(host) ? host : std::string_view(ownAddress_));
}

Answer Catalogue::answer(std::string_view target, std::string_view host) {
    if (onlyThisMachine_ && !host.empty() && !isThisMachine(host))
        return {403, std::string(textType), "Ask for this machine by its own name.\r\n",
                std::nullopt};
    const std::size_t mark = std::min(target.find('?'), target.size());
    const std::string_view query = target.substr(std::min(mark + 1, target.size()));
    return route(lowerAscii(unescaped(target.substr(0, mark))), query, baseFor(host));
}

Answer Catalogue::route(const std::string &path, std::string_view query, std::u16string_view base) {
    refresh();
    if (path == "/")
        return page(homePage(base, library_));
    if (path == "/m") {
        const std::u16string words = searchWords(query, "word", "&lm=");
        return page(lyricPage(base, words, Library::search(library_.lyrics(), words)));
    }
    if (path == "/fcgi-bin/m.q") {
        const std::u16string words = searchWords(query, "w", "&source=");
        return page(songPage(base, words, Library::search(library_.songs(), words)));
    }
    if (path == "/asp/lrc.asp")
        return lyric(between(lowerAscii(query), "id=", "").value_or(""));
    if (const auto id = between(path, "/lrcdown/", ".lrc"))
        return lyric(*id);
    if (const auto name = between(path, "/song/", ""))
        return song(*name);
    if (path == "/program")
        return program();
    if (path == "/source/mini/zkplayerwelcome.php")
        return {200, std::string(textType), welcomeFile(base, library_, readSettings(folder_)),
                std::nullopt};
    if (path == "/source/softwaredate/zkplayerupdate.php") {
        const platform::IniText settings = readSettings(folder_);
        return {200, std::string(textType), updateFile(base, settings, offerOf(settings, folder_)),
                std::nullopt};
    }
    return notFound();
}

Answer Catalogue::lyric(std::string_view id) const {
    constexpr std::size_t longest = std::size_t{1} << 20;
    const Item *item = library_.find(id);
    if (item == nullptr || !item->isLyric)
        return notFound();
    const auto bytes = folder_.read(item->file.path, longest);
    auto lyric = bytes ? readLyric(*bytes) : std::nullopt;
    return lyric ? Answer{200, std::string(textType), std::move(lyric->bytes), std::nullopt}
                 : notFound();
}

// The extension in the address is for people and programs that go by it.
Answer Catalogue::song(std::string_view name) const {
    const Item *item = library_.find(name.substr(0, name.find('.')));
    if (item == nullptr || item->isLyric)
        return notFound();
    return file(folder_.open(item->file.path), mediaType(item->format));
}

Answer Catalogue::program() const {
    const auto offer = offerOf(readSettings(folder_), folder_);
    return offer ? file(folder_.open(offer->path), "application/octet-stream") : notFound();
}

} // namespace velmora::catalogue
