#include "network/webPage.h"

#include "base/run_time_error.h"
#include "platform/contracts/internet.h"
#include "platform/contracts/platform.h"
#include "platform/contracts/windows.h"

namespace velmora {

std::u16string getWebPage(const platform::Platform &platform, std::u16string_view url) {
    platform.windows.DoEvents();
    const std::optional<std::string> body = platform.internet.XmlHttpGet(url);
    return body ? bytesToCharset(platform.internet, *body, u"GB2312") : std::u16string();
}

std::u16string bytesToCharset(platform::Internet &internet, std::string_view bytes,
                              std::u16string_view charset) {
    return internet.decodeCharset(bytes, charset);
}

std::int32_t countText(platform::WindowSystem &windows, std::u16string_view text,
                       std::u16string_view find, std::vector<std::int32_t> *positions) {
    windows.DoEvents();
    if (positions != nullptr)
        positions->clear();
    std::int32_t count = 0;
    for (std::size_t start = 1; start < text.size(); ++start) {
        start = text.find(find, start);
        if (start >= text.size())
            break;
        ++count;
        if (positions != nullptr)
            positions->push_back(static_cast<std::int32_t>(start) + 1);
    }
    return count;
}

bool downloadToLocal(const platform::Platform &platform, std::u16string_view url,
                     std::u16string_view file, const std::function<bool()> &mayFetch) {
    try {
        platform.internet.DeleteUrlCacheEntryA(url);
        platform.windows.DoEvents();
        return (!mayFetch || mayFetch()) &&
               platform.internet.URLDownloadToFileA(url, file, platform::lyricFile) == 0;
    } catch (const RunTimeError &error) {
        noteSwallowed(error);
        return false;
    }
}

} // namespace velmora
