#include "catalogue/words.h"

#include "base/ascii.h"

#include <array>
#include <cstddef>

namespace velmora::catalogue {

namespace {

constexpr std::array<std::u16string_view, 4> codes = {u"zh", u"en", u"fr", u"ja"};
constexpr std::array<std::string_view, 4> plainCodes = {"zh", "en", "fr", "ja"};

constexpr std::array<Words, 4> table = {{
    {u"Velmora 家庭音乐目录", u"搜索", u"曲目、歌手、专辑", u"曲目", u"歌词", u"专辑", u"文件夹",
     u"新曲目", u"没有找到。", u"/", u"上一页", u"下一页", u"保存", u"歌词", u"页面",
     u"此浏览器不能播放。"},
    {u"Velmora catalogue", u"Search", u"song, artist or album", u"Songs", u"Lyrics", u"Albums",
     u"Folders", u"New songs", u"Nothing was found.", u"of", u"Previous", u"Next", u"Save",
     u"Lyric", u"Pages", u"This browser cannot play it."},
    {u"Catalogue Velmora", u"Rechercher", u"titre, artiste ou album", u"Titres", u"Paroles",
     u"Albums", u"Dossiers", u"Nouveaux titres", u"Rien n’a été trouvé.", u"sur", u"Précédent",
     u"Suivant", u"Enregistrer", u"Paroles", u"Pages", u"Ce navigateur ne peut pas le lire."},
    {u"Velmora カタログ", u"検索", u"曲名、歌手、アルバム", u"曲", u"歌詞", u"アルバム",
     u"フォルダー", u"新しい曲", u"見つかりませんでした。", u"/", u"前へ", u"次へ", u"保存",
     u"歌詞", u"ページ", u"このブラウザーでは再生できません。"},
}};

// "q=0.5" in thousandths; all of it where nothing is said.
int weightOf(std::string_view range) {
    constexpr int most = 1000;
    const std::size_t at = range.find("q=");
    if (at == std::string_view::npos)
        return most;
    int weight = 0;
    int unit = most;
    for (const char sign : range.substr(at + 2)) {
        if (sign >= '0' && sign <= '9') {
            weight += (sign - '0') * unit;
            unit /= 10;
        } else if (sign != '.') {
            break;
        }
    }
    return weight < most ? weight : most;
}

} // namespace

Language languageFor(std::string_view acceptLanguage) {
    if (acceptLanguage.empty())
        return Language::Chinese;
    const std::string field = lowerAscii(acceptLanguage);
    auto best = Language::English;
    int weight = 0;
    for (std::size_t begin = 0; begin < field.size();) {
        const std::size_t end = std::min(field.find(',', begin), field.size());
        std::string_view range = std::string_view(field).substr(begin, end - begin);
        range.remove_prefix(std::min(range.find_first_not_of(' '), range.size()));
        for (std::size_t i = 0; i < plainCodes.size(); ++i) {
            const bool is =
                range.substr(0, 2) == plainCodes[i] &&
                (range.size() == 2 || range[2] == '-' || range[2] == ';' || range[2] == ' ');
            if (is && weightOf(range) > weight) {
                weight = weightOf(range);
                best = static_cast<Language>(i);
            }
        }
        begin = end + 1;
    }
    return best;
}

std::u16string_view codeOf(Language language) noexcept {
    return codes[static_cast<std::size_t>(language)];
}

const Words &wordsIn(Language language) noexcept {
    return table[static_cast<std::size_t>(language)];
}

} // namespace velmora::catalogue
