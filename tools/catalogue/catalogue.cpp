#include "catalogue/catalogue.h"

#include "base/ascii.h"
#include "base/text.h"
#include "base/utf8.h"
#include "catalogue/browser_pages.h"
#include "catalogue/library_reader.h"
#include "catalogue/looks.h"
#include "catalogue/lyric_file.h"
#include "catalogue/pages.h"
#include "catalogue/texts.h"

#include <algorithm>

namespace velmora::catalogue {

namespace {

constexpr std::string_view pageType = "text/html; charset=gb18030";
constexpr std::string_view textType = "text/plain; charset=utf-8";

Answer text(std::string bytes) {
    return {200, std::string(textType), std::move(bytes), std::nullopt, {}};
}

Answer notFound() { return plainAnswer(404, "There is nothing here.\r\n"); }

// The pages bring their looks with them, and load nothing.
Answer page(const std::u16string &text) {
    return {200,
            std::string(pageType),
            pageBytes(text),
            std::nullopt,
            {{"Content-Security-Policy", "default-src 'none'; style-src 'unsafe-inline'; "
                                         "form-action 'self'; base-uri 'none'; "
                                         "frame-ancestors 'none'"}}};
}

// Loads what lies beside it and nothing else.
Answer browserAnswer(const std::u16string &text, Language language) {
    return {200,
            "text/html; charset=utf-8",
            toUtf8(text),
            std::nullopt,
            {{"Content-Security-Policy",
              "default-src 'none'; style-src 'self'; script-src 'self'; media-src 'self'; "
              "form-action 'self'; base-uri 'none'; frame-ancestors 'none'"},
             {"Content-Language", toUtf8(codeOf(language))},
             {"Vary", "Accept-Language"},
             {"Referrer-Policy", "no-referrer"}}};
}

Answer loaded(std::string_view type, std::string_view bytes) {
    return {200,
            std::string(type),
            std::string(bytes),
            std::nullopt,
            {{"Cache-Control", "max-age=3600"}}};
}

Answer file(std::optional<OpenFile> open, std::string_view type) {
    return open ? Answer{200, std::string(type), "", std::move(open), {}} : notFound();
}

// What a browser saves a file as. The player takes a header of 1024 bytes, so a long name is cut.
std::string disposition(std::string_view path) {
    constexpr std::size_t longest = 300;
    const std::string_view name = path.substr(path.rfind('/') + 1);
    const std::size_t dot = std::min(name.rfind('.'), name.size());
    const std::string end = escaped(name.substr(dot));
    std::u16string stem = textOf(name.substr(0, dot));
    std::string begin = escaped(toUtf8(stem));
    while (!stem.empty() && begin.size() + end.size() > longest) {
        stem.pop_back();
        if (!stem.empty() && isHighSurrogate(stem.back()))
            stem.pop_back();
        begin = escaped(toUtf8(stem));
    }
    return "inline; filename*=UTF-8''" + begin + end;
}

// What can be said in an address without becoming something else.
bool isHostField(std::string_view host) {
    constexpr std::size_t longest = 200;
    return !host.empty() && host.size() <= longest &&
           host.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"
                                  ".-:[]_") == std::string_view::npos;
}

// Without the port, in small letters: "[::1]:8420" is "[::1]".
std::string nameIn(std::string_view host) {
    const std::size_t bracket = host.find(']');
    const std::size_t end =
        bracket != std::string_view::npos ? bracket + 1 : std::min(host.rfind(':'), host.size());
    return lowerAscii(host.substr(0, end));
}

bool isNumber(std::string_view name) {
    return (!name.empty() && name.front() == '[') ||
           name.find_first_not_of("0123456789.") == std::string_view::npos;
}

bool isThisMachine(std::string_view name) {
    return (isNumber(name) && name.substr(0, 4) == "127.") || name == "localhost" ||
           name == "[::1]";
}

// No name of the web is of these kinds.
bool isOfAHousehold(std::string_view name) {
    constexpr std::string_view local = ".local";
    return isNumber(name) || name.find('.') == std::string_view::npos ||
           (name.size() > local.size() && name.substr(name.size() - local.size()) == local);
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

Answer plainAnswer(unsigned status, std::string text) {
    return {status, std::string(textType), std::move(text), std::nullopt, {}};
}

Catalogue::Catalogue(const std::string &folder, std::string ownAddress)
    : ownAddress_(std::move(ownAddress)), folder_(folder) {}

void Catalogue::show(std::shared_ptr<const Library> library) {
    const std::lock_guard lock(mutex_);
    library_.swap(library);
}

std::shared_ptr<const Library> Catalogue::library() const {
    const std::lock_guard lock(mutex_);
    return library_;
}

void Catalogue::readNow() {
    OwnTagReader tags;
    show(LibraryReader(folder_, tags, nullptr).read());
}

std::u16string Catalogue::baseFor(std::string_view host) const {
    return fromAscii(scheme_) + fromAscii(isHostField(host) ? host : std::string_view(ownAddress_));
}

std::optional<Offer> Catalogue::offerUpdatesFrom(const std::string &folder) {
    updates_.emplace(folder);
    return offer();
}

bool Catalogue::hasUnheededOffer() const {
    return readSettings(folder_).find(u"update", u"version") != nullptr;
}

platform::IniText Catalogue::updateSettings() const {
    return updates_ ? readSettings(*updates_) : platform::IniText();
}

std::optional<Offer> Catalogue::offer() const {
    return updates_ ? offerOf(updateSettings(), *updates_) : std::nullopt;
}

void Catalogue::acceptName(const std::string &name) { names_.push_back(lowerAscii(name)); }

void Catalogue::setOwnAddress(std::string scheme, std::string address) {
    scheme_ = std::move(scheme);
    ownAddress_ = std::move(address);
}

// An old client says nothing of where it asks.
bool Catalogue::accepts(std::string_view host) const {
    const std::string name = nameIn(host);
    if (host.empty() || std::find(names_.begin(), names_.end(), name) != names_.end())
        return true;
    return onlyThisMachine_ ? isThisMachine(name) : isOfAHousehold(name);
}

Answer Catalogue::answer(std::string_view target, std::string_view host,
                         std::string_view acceptLanguage) const {
    if (!accepts(host))
        return plainAnswer(403, "Ask for this machine by its own name.\r\n");
    const std::size_t mark = std::min(target.find('?'), target.size());
    const std::string_view query = target.substr(std::min(mark + 1, target.size()));
    return route(lowerAscii(unescaped(target.substr(0, mark))), query, baseFor(host),
                 languageFor(acceptLanguage));
}

Answer Catalogue::route(const std::string &path, std::string_view query, std::u16string_view base,
                        Language language) const {
    const std::shared_ptr<const Library> held = this->library(); // while this is answered
    const Library &library = *held;
    if (path == "/look.css")
        return loaded("text/css; charset=utf-8", styleSheet());
    if (path == "/follow.js")
        return loaded("text/javascript; charset=utf-8", script());
    if (path == "/m") {
        const std::u16string words = searchWords(query, "word", "&lm=");
        return page(lyricPage(base, words, library.searchLyrics(words, mostLyricLinks).items));
    }
    if (path == "/fcgi-bin/m.q") {
        const std::u16string words = searchWords(query, "w", "&source=");
        return page(songPage(base, words, library.searchSongs(words, mostSongs).items));
    }
    if (path == "/asp/lrc.asp")
        return lyric(library, between(lowerAscii(query), "id=", "").value_or(""));
    if (const auto id = between(path, "/lrcdown/", ".lrc"))
        return lyric(library, *id);
    if (const auto name = between(path, "/song/", ""))
        return song(library, *name);
    if (path == "/program")
        return program();
    if (path == "/source/mini/zkplayerwelcome.php")
        return text(welcomeFile(base, library, readSettings(folder_)));
    if (path == "/source/softwaredate/zkplayerupdate.php")
        return text(updateFile(base, updateSettings(), offer()));
    if (const auto found = browserPage({library, folder_, language}, path, query))
        return browserAnswer(*found, language);
    return notFound();
}

Answer Catalogue::lyric(const Library &library, std::string_view id) const {
    constexpr std::size_t longest = std::size_t{1} << 20;
    const Item *item = library.find(id);
    if (item == nullptr || !item->isLyric)
        return notFound();
    const auto bytes = folder_.read(item->file.path, longest);
    auto lyric = bytes ? readLyric(*bytes) : std::nullopt;
    return lyric ? text(std::move(lyric->bytes)) : notFound();
}

// The extension in the address is for people and programs that go by it.
Answer Catalogue::song(const Library &library, std::string_view name) const {
    const Item *item = library.find(name.substr(0, name.find('.')));
    if (item == nullptr || item->isLyric)
        return notFound();
    Answer answer = file(folder_.open(item->file.path), mediaType(item->format()));
    if (answer.file)
        answer.fields.push_back({"Content-Disposition", disposition(item->file.path)});
    return answer;
}

Answer Catalogue::program() const {
    const auto offered = offer();
    return offered ? file(updates_->open(offered->path), "application/octet-stream") : notFound();
}

} // namespace velmora::catalogue
