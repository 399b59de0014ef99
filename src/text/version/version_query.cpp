#include "text/version/version_query.h"

#include "base/text.h"
#include "text/version/version_block.h"

#include <algorithm>

namespace velmora::platform {

namespace {

constexpr std::size_t headerSize = 6;

unsigned word(std::string_view bytes, std::size_t at) noexcept {
    return static_cast<unsigned char>(bytes[at]) | static_cast<unsigned char>(bytes[at + 1]) << 8;
}

std::size_t aligned(std::size_t at) noexcept { return (at + 3) & ~std::size_t{3}; }

// One block of the record, as far as it lies inside its parent. Offsets count from the record's
// beginning, since alignment does.
struct Block {
    std::u16string key;
    std::size_t valueBegin = 0;
    std::size_t valueEnd = 0;
    std::size_t end = 0;
    bool text = false;
};

// The block at `at` inside a parent that ends at `limit`; absent where none can be.
std::optional<Block> blockAt(std::string_view record, std::size_t at, std::size_t limit) {
    limit = std::min(limit, record.size());
    if (at > limit || limit - at < headerSize)
        return std::nullopt;
    const std::size_t length = word(record, at);
    if (length < headerSize || length > limit - at)
        return std::nullopt;
    Block block;
    block.end = at + length;
    block.text = word(record, at + 4) == 1;
    std::size_t cursor = at + headerSize;
    for (;; cursor += 2) {
        if (cursor + 2 > block.end)
            return std::nullopt; // a key without its end
        const unsigned unit = word(record, cursor);
        if (unit == 0)
            break;
        block.key += static_cast<char16_t>(unit);
    }
    block.valueBegin = std::min(aligned(cursor + 2), block.end);
    // Some tools count a text's length in bytes, not in characters: the block's end is the limit.
    const std::size_t valueLength = word(record, at + 2) * (block.text ? std::size_t{2} : 1);
    block.valueEnd = block.valueBegin + std::min(valueLength, block.end - block.valueBegin);
    return block;
}

std::optional<Block> childNamed(std::string_view record, const Block &parent,
                                std::u16string_view name) {
    std::size_t at = aligned(parent.valueEnd);
    while (auto child = blockAt(record, at, parent.end)) {
        if (equalsIgnoringCase(child->key, name))
            return child;
        at = aligned(child->end);
    }
    return std::nullopt;
}

} // namespace

std::optional<std::string_view> versionFixedPart(std::string_view record) {
    const auto root = blockAt(record, 0, record.size());
    if (!root || root->valueEnd - root->valueBegin < fixedPartSize)
        return std::nullopt;
    const std::string_view part = record.substr(root->valueBegin, fixedPartSize);
    const std::uint32_t signature = word(part, 0) | static_cast<std::uint32_t>(word(part, 2)) << 16;
    if (signature != versionSignature)
        return std::nullopt;
    return part;
}

std::optional<VersionValue> versionValue(std::string_view record, std::u16string_view query) {
    if (!startsWith(query, u"\\"))
        return std::nullopt;
    if (query == u"\\") {
        const auto part = versionFixedPart(record);
        return part ? std::optional<VersionValue>({*part, false}) : std::nullopt;
    }
    auto block = blockAt(record, 0, record.size());
    for (const std::u16string &name : split(query.substr(1), u'\\')) {
        if (!block)
            return std::nullopt;
        block = childNamed(record, *block, name);
    }
    if (!block)
        return std::nullopt;
    VersionValue value{record.substr(block->valueBegin, block->valueEnd - block->valueBegin),
                       block->text};
    if (value.text)
        for (std::size_t i = 0; i + 1 < value.bytes.size(); i += 2)
            if (word(value.bytes, i) == 0) {
                value.bytes = value.bytes.substr(0, i);
                break;
            }
    return value;
}

std::u16string versionText(std::string_view bytes) {
    std::u16string text;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
        text += static_cast<char16_t>(word(bytes, i));
    return text;
}

} // namespace velmora::platform
