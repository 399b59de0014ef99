#include "catalogue/maker_files.h"

#include "base/numbers.h"
#include "base/text.h"
#include "base/utf8.h"
#include "catalogue/pages.h"
#include "catalogue/texts.h"
#include "text/ansi_conversion.h"

#include <algorithm>
#include <tuple>

namespace velmora::catalogue {

namespace {

constexpr std::size_t longestSettings = std::size_t{1} << 20;
constexpr std::size_t longestValue = 999;
// What a tab and the banner have room for.
constexpr std::size_t mostLines = 10;
constexpr std::size_t mostBanners = 20;
// 0xBBGGRR, as the player's own lists look.
constexpr int panelColour = 0x1C140F;
constexpr int lineColour = 0xCFE05B;
constexpr std::u16string_view bannerSeparator = u"|■|";

class IniWriter {
public:
    void section(std::u16string_view name) { text_ += u"[" + std::u16string(name) + u"]\r\n"; }
    void put(std::u16string_view key, std::u16string_view value) {
        std::u16string line = oneLine(value);
        constexpr std::u16string_view quotes = u"\"'";
        const bool quoted = line.size() > 1 && line.front() == line.back() &&
                            quotes.find(line.front()) != std::u16string_view::npos;
        // The reader takes one pair of quotes off.
        line = std::u16string(leftPart(line, longestValue));
        if (!line.empty() && isHighSurrogate(line.back()))
            line.pop_back();
        text_ += std::u16string(key) + u"=" + (quoted ? u"\"" + line + u"\"" : line) + u"\r\n";
    }
    std::string bytes() const { return toUtf8(text_); }

private:
    std::u16string text_;
};

struct Line {
    std::u16string text;
    std::u16string address;
};

std::u16string number(std::size_t value) { return fromAscii(std::to_string(value)); }

std::u16string valueOf(const platform::IniText &settings, std::u16string_view section,
                       std::u16string_view key, std::u16string_view otherwise) {
    const platform::IniText::Place *place = settings.find(section, key);
    return place != nullptr && !place->value.empty() ? place->value : std::u16string(otherwise);
}

// "text|address": the address is what stands behind the last "|" if it looks like one.
Line lineOf(const std::u16string &text, std::u16string_view base) {
    const std::size_t bar = text.rfind(u'|');
    const std::u16string_view behind =
        bar == std::u16string::npos ? u"" : trim(std::u16string_view(text).substr(bar + 1));
    const std::u16string shape = upper(leftPart(behind, 8));
    if (startsWith(shape, u"HTTP://") || shape == u"HTTPS://")
        return {text.substr(0, bar), std::u16string(behind)};
    return {text, std::u16string(base) + u"/"};
}

std::vector<Line> linesFrom(const platform::IniText &settings, const std::u16string &prefix,
                            std::size_t most, std::u16string_view base) {
    std::vector<Line> lines;
    while (lines.size() < most) {
        const std::u16string text =
            valueOf(settings, u"welcome", prefix + number(lines.size()), u"");
        if (text.empty())
            break;
        lines.push_back(lineOf(text, base));
    }
    return lines;
}

std::vector<Line> newest(std::vector<const Item *> items, std::u16string_view base) {
    const std::size_t shown = std::min(items.size(), mostLines);
    const auto end = items.begin() + static_cast<std::ptrdiff_t>(shown);
    std::partial_sort(items.begin(), end, items.end(), [](const Item *a, const Item *b) {
        return std::tie(b->file.changed, a->file.path) < std::tie(a->file.changed, b->file.path);
    });
    items.erase(end, items.end());
    std::vector<Line> lines;
    for (const Item *item : items) {
        const std::u16string name = item->tags.artist.empty()
                                        ? item->tags.title
                                        : item->tags.title + u" - " + item->tags.artist;
        lines.push_back(
            {name, item->isLyric ? lyricAddress(base, *item) : songAddress(base, *item)});
    }
    return lines;
}

std::vector<const Item *> pictures(const Library &library) {
    std::vector<const Item *> found;
    for (const Item *item : library.songs())
        if (std::string_view(mediaType(item->format())).substr(0, 5) == "video")
            found.push_back(item);
    return found;
}

// Three numbers and nothing else: readers compare them one by one.
bool isVersion(std::u16string_view text) {
    const std::vector<std::u16string> parts = split(text, u'.');
    return parts.size() == 3 && std::all_of(parts.begin(), parts.end(), [](const auto &part) {
               return !part.empty() && part.size() < 6 &&
                      part.find_first_not_of(u"0123456789") == std::u16string::npos;
           });
}

} // namespace

platform::IniText readSettings(const Folder &folder) {
    const auto bytes = folder.read("catalogue.ini", longestSettings);
    std::vector<std::string> lines;
    for (const platform::FileLine &line : platform::linesOf(bytes.value_or("")))
        lines.push_back(bytes->substr(line.begin, line.end - line.begin));
    const platform::AnsiConversion ansi([] { return std::u16string(); });
    return platform::IniText(ansi.decodeTogether(lines, false));
}

std::optional<Offer> offerOf(const platform::IniText &settings, const Folder &folder) {
    Offer offer;
    offer.version = valueOf(settings, u"update", u"version", u"");
    offer.path = toUtf8(valueOf(settings, u"update", u"program", u""));
    const std::string head = folder.read(offer.path, 4).value_or("");
    const bool program = head == "\x7F"
                                 "ELF" ||
                         head.substr(0, 2) == "MZ";
    if (!isVersion(offer.version) || !program)
        return std::nullopt;
    return offer;
}

std::string welcomeFile(std::u16string_view base, const Library &library,
                        const platform::IniText &settings) {
    const std::u16string home = std::u16string(base) + u"/";
    const auto setting = [&](std::u16string_view key, std::u16string_view otherwise) {
        return valueOf(settings, u"welcome", key, otherwise);
    };
    IniWriter ini;
    ini.section(u"check");
    ini.put(u"vesion", fromAscii(VELMORA_VERSION));
    ini.put(u"update", u"0");
    ini.section(u"config");
    ini.put(u"title", setting(u"title", u"家庭音乐目录"));
    ini.put(u"provider", setting(u"provider", u"Velmora 目录"));
    ini.put(u"providerLink", setting(u"providerLink", home));
    ini.put(u"databaseFrame_BackColor", decimal(panelColour));
    ini.put(u"databaseStr_Color", decimal(lineColour));
    ini.put(u"buttonStr0", setting(u"tab0", u"新曲目"));
    ini.put(u"buttonStr1", setting(u"tab1", u"新歌词"));
    ini.put(u"buttonStr2", setting(u"tab2", u"新视频"));

    std::vector<Line> banners = linesFrom(settings, u"banner", mostBanners, base);
    if (banners.empty())
        banners = {{u"本目录共有曲目 " + number(library.songs().size()) + u" 首", home},
                   {u"本目录共有歌词 " + number(library.lyrics().size()) + u" 个", home}};
    ini.section(u"Advertising");
    ini.put(u"AdvertisingNumbers", number(banners.size()));
    for (std::size_t i = 0; i < banners.size(); ++i) {
        ini.put(u"index_" + number(i) + u"_Str",
                replaceAll(banners[i].text, bannerSeparator, u" "));
        ini.put(u"index_" + number(i) + u"_Link", banners[i].address);
    }

    ini.section(u"databases");
    const std::vector<const Item *> items[] = {library.songs(), library.lyrics(),
                                               pictures(library)};
    for (std::size_t tab = 0; tab < std::size(items); ++tab) {
        const std::u16string own = u"tab" + number(tab) + u"_line";
        std::vector<Line> lines = linesFrom(settings, own, mostLines, base);
        if (lines.empty())
            lines = newest(items[tab], base);
        const std::u16string prefix = u"databases_" + number(tab) + u"_";
        ini.put(prefix + u"Ubound", number(lines.size()));
        for (std::size_t i = 0; i < lines.size(); ++i) {
            ini.put(prefix + number(i) + u"_Str", lines[i].text);
            ini.put(prefix + number(i) + u"_Link", lines[i].address);
        }
    }
    return ini.bytes();
}

std::string updateFile(std::u16string_view base, const platform::IniText &settings,
                       const std::optional<Offer> &offer) {
    IniWriter ini;
    ini.section(u"check");
    ini.put(u"vesion", offer ? offer->version : fromAscii(VELMORA_VERSION));
    ini.put(u"download", std::u16string(base) + u"/program");
    ini.section(u"Updates");
    constexpr std::u16string_view languages[] = {u"Chinese", u"English", u"French", u"Japanese"};
    for (const std::u16string_view language : languages)
        ini.put(u"Updates_" + std::u16string(language),
                offer ? valueOf(settings, u"update", language, u"") : u"");
    return ini.bytes();
}

} // namespace velmora::catalogue
