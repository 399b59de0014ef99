#include "network/linkReader.h"

#include "base/text.h"
#include "network/webPage.h"

#include <algorithm>

namespace velmora {

namespace {

constexpr std::size_t frame = 300;
constexpr std::u16string_view mailto = u"MAILTO";

} // namespace

std::size_t LinkReader::nextOf(Finder &finder, std::u16string_view units, std::size_t from) const {
    if (!finder.isKnown || finder.at < from)
        finder = {std::min(page_.find_first_of(units, from), page_.size()), true};
    return finder.at;
}

std::size_t LinkReader::nextMailto(std::size_t from) {
    if (!mailto_.isKnown || mailto_.at < from)
        mailto_ = {std::min(page_.find(mailto, from), page_.size()), true};
    return mailto_.at;
}

std::optional<std::u16string_view> LinkReader::read(std::int32_t position) {
    const std::size_t begin = static_cast<std::size_t>(position) + linkMarker.size();
    // The first unit ends nothing, so that an opening quote does not end the link. Behind the first
    // end a longer text could only hold the same again.
    const std::size_t end = nextOf(end_, u"\">'", begin + 1);
    if (end >= page_.size() || end - begin >= frame)
        return std::nullopt;
    if (nextOf(forbidden_, u"+# ", begin) < end || nextMailto(begin) + mailto.size() <= end)
        return std::nullopt;
    return page_.substr(begin, end - begin);
}

std::u16string linkBase(platform::WindowSystem &windows, std::u16string &address) {
    address = replaceAll(address, u"\\", u"/");
    if (countText(windows, address, u"/") == 2)
        address += u'/';
    return address.substr(0, address.rfind(u'/') + 1);
}

std::u16string normalLink(std::u16string_view link, std::u16string_view base) {
    if (startsWith(link, u"\"") || startsWith(link, u"'"))
        link.remove_prefix(1);
    if (contains(link, u":"))
        return std::u16string(link);
    const bool atRoot = startsWith(link, u"/") || startsWith(link, u"\\");
    return std::u16string(base) + (atRoot ? std::u16string(link.substr(1)) : lower(link));
}

} // namespace velmora
