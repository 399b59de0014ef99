#include "platform/backends/sound/readers/mpeg_walk.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace velmora::platform::sound {

namespace {

constexpr std::size_t headerBytes = 4;
// Sync word, version, layer and sample rate: what frames of one stream have in common.
constexpr std::uint32_t alikeBits = 0xFFFE0C00;
constexpr std::uint32_t paddingBit = 0x200;
// A step that finds nothing ends after so many bytes.
constexpr std::int64_t searchBytes = 65536;

} // namespace

// A little at first: many a walk is a short one.
void ForwardWindow::fill(std::int64_t offset, std::size_t need) {
    const std::int64_t size = source_.size();
    if (offset >= start_ && offset <= end_ && end_ >= size)
        return; // there is no more
    if (!bytes_)
        bytes_ = std::make_unique_for_overwrite<std::uint8_t[]>(capacity);
    start_ = offset;
    end_ = offset + static_cast<std::int64_t>(
                        source_.read(offset, {bytes_.get(), std::max(portion_, need)}));
    portion_ = capacity;
}

MpegWalk::MpegWalk(const ByteSource &source, const MpegPlace &from)
    : source_(source), end_(source.size()), window_(source), next_(from) {
    learnForm();
}

void MpegWalk::learnForm() {
    const MpegFrame &form = next_.form;
    pattern_ = form.header & alikeBits;
    padding_ = form.layer == 1 ? 4 : 1;
    sizes_.fill(0);
    sizes_[0] = next_.freeSize;
    for (std::uint32_t code = 1; form.size != 0 && code < sizes_.size() - 1; ++code) {
        const std::uint32_t header = pattern_ | code << 12;
        std::array<std::uint8_t, headerBytes> bytes{};
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = static_cast<std::uint8_t>(header >> (24 - 8 * i));
        sizes_[code] = parseMpegFrame(bytes)->size;
    }
}

bool MpegWalk::take(int size) {
    if (next_.offset + size > end_)
        return false;
    offset_ = next_.offset;
    size_ = static_cast<std::size_t>(size);
    next_.offset += size;
    inStep_ = true;
    return true;
}

bool MpegWalk::takeAlike() {
    const auto bytes = window_.at(next_.offset, headerBytes);
    if (bytes.size() < headerBytes || next_.form.rate == 0)
        return false;
    const std::uint32_t header = std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 |
                                 std::uint32_t{bytes[2]} << 8 | bytes[3];
    const int size = sizes_[header >> 12 & 15];
    constexpr std::uint32_t emphasis = 3;
    if ((header & alikeBits) != pattern_ || (header & emphasis) == 2 || size == 0)
        return false;
    return take(size + ((header & paddingBit) != 0 ? padding_ : 0));
}

bool MpegWalk::takeChain(std::span<const std::uint8_t> bytes) {
    const bool all = next_.offset + static_cast<std::int64_t>(bytes.size()) >= end_;
    constexpr int wantedOfOther = 3;
    const MpegChain chain = followMpegChain(bytes, all, wantedOfOther);
    // What goes on as before needs less proof than what is new.
    const bool known = chain.first.alike(next_.form) && chain.freeSize == next_.freeSize;
    const int wanted = known ? wantedOfOther - 1 : wantedOfOther;
    if (chain.headers < wanted && !(chain.headers == wanted - 1 && chain.reachesEnd))
        return false;
    if (!take(chain.sizeOf(chain.first)))
        return false;
    if (!known) {
        hasChanged_ = true;
        next_.form = chain.first;
        next_.freeSize = chain.freeSize;
        learnForm();
    }
    return true;
}

// The size of a tag that stands here, of parts that were joined with their tags. What it tells of
// its size is believed where frames begin behind it.
std::int64_t MpegWalk::tagSize(std::span<const std::uint8_t> bytes) const {
    if (bytes.size() < 3 || std::memcmp(bytes.data(), "ID3", 3) != 0)
        return 0;
    const std::int64_t size = id3v2Size(source_, next_.offset);
    std::array<std::uint8_t, 4096> behind{};
    const std::size_t got = size > 0 ? source_.read(next_.offset + size, behind) : 0;
    const MpegChain chain = followMpegChain(std::span(behind).first(got), false, 2);
    return chain.headers == 2 ? size : 0;
}

MpegWalk::Step MpegWalk::handOut() {
    if (isMpegSeekHeader(window_.at(offset_, std::min(size_, mpegSeekHeaderBytes))))
        return Step::Nothing;
    isOther_ = std::exchange(hasChanged_, false);
    return Step::Frame;
}

MpegWalk::Step MpegWalk::step() {
    if (inStep_ && takeAlike())
        return handOut();
    for (const std::int64_t limit = next_.offset + searchBytes; next_.offset < limit;) {
        const auto bytes = window_.at(next_.offset, mpegChainBytes);
        if (bytes.size() < headerBytes)
            return Step::End;
        if (const std::int64_t tag = tagSize(bytes)) {
            next_.offset += tag;
            continue;
        }
        if (bytes[0] == 0xFF && takeChain(bytes))
            return handOut();
        inStep_ = false;
        const auto again = std::find_if(bytes.begin() + 1, bytes.end(), [](std::uint8_t byte) {
            return byte == 0xFF || byte == 'I';
        });
        next_.offset += again - bytes.begin();
    }
    return Step::Nothing;
}

} // namespace velmora::platform::sound
