#include "catalogue/tag_answer.h"

#include "base/text.h"
#include "catalogue/texts.h"

namespace velmora::catalogue {

namespace {

constexpr char between = '\0'; // no tag holds it

} // namespace

std::string sayTags(const Tags &tags) {
    return toUtf8(tags.title) + between + toUtf8(tags.artist) + between + toUtf8(tags.album);
}

Tags tagsSaid(const std::string &bytes) {
    const std::size_t first = bytes.find(between);
    const std::size_t second = first == std::string::npos ? first : bytes.find(between, first + 1);
    if (second == std::string::npos)
        return {};
    const auto text = [](const std::string &part) { return oneLine(cutTag(fromUtf8(part))); };
    return {text(bytes.substr(0, first)), text(bytes.substr(first + 1, second - first - 1)),
            text(bytes.substr(second + 1))};
}

} // namespace velmora::catalogue
