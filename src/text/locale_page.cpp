#include "text/locale_page.h"

#include <algorithm>
#include <iterator>

namespace velmora::platform {

namespace {

struct LanguageRow {
    std::string_view language; // with its country where only that tells
    int page;
};

constexpr LanguageRow languageRows[] = {
    {"ja", 932},  {"ko", 949},  {"zh_TW", 950}, {"zh_HK", 950}, {"zh_MO", 950},
    {"fr", 1252}, {"de", 1252}, {"es", 1252},   {"it", 1252},   {"pt", 1252},
    {"nl", 1252}, {"da", 1252}, {"fi", 1252},   {"fo", 1252},   {"is", 1252},
    {"nb", 1252}, {"nn", 1252}, {"no", 1252},   {"sv", 1252},
};
constexpr int otherPage = 936;

} // namespace

int legacyPageOf(std::string_view locale) noexcept {
    const std::string_view country = locale.substr(0, locale.find_first_of(".@"));
    const std::string_view language = country.substr(0, country.find('_'));
    const auto *row =
        std::find_if(std::begin(languageRows), std::end(languageRows), [&](const LanguageRow &r) {
            return r.language == country || r.language == language;
        });
    return row == std::end(languageRows) ? otherPage : row->page;
}

} // namespace velmora::platform
