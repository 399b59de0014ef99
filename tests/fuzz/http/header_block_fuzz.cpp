// What a server says in front of a body, line by line: the block is bounded, each of its entries
// ends with NUL and holds no line end, and a complete header changes no more.

#include "platform/backends/curl/header_block.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

using velmora::platform::http::HeaderBlock;

void require(bool holds) {
    if (!holds)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    std::string_view bytes(reinterpret_cast<const char *>(data), size);
    HeaderBlock block;
    while (!bytes.empty()) {
        const std::size_t end = bytes.find('\n');
        const std::string_view line = bytes.substr(0, end == bytes.npos ? end : end + 1);
        bytes.remove_prefix(line.size());
        const bool wasComplete = block.complete();
        const std::string before = block.bytes();
        if (!block.take(line))
            break;
        require(block.bytes().size() <= HeaderBlock::most);
        require(block.bytes().empty() || block.bytes().back() == '\0');
        require(block.bytes().find('\n') == std::string::npos);
        require(!wasComplete || (block.complete() && block.bytes() == before));
        require(!block.complete() || (block.status() >= 200 && !block.leadsElsewhere()));
    }
    return 0;
}
