#include "platform/backends/sound/readers/joined_parts.h"

#include "platform/backends/sound/readers/flac_length.h"
#include "platform/backends/sound/readers/mpeg_frame.h"
#include "platform/backends/sound/readers/ogg_length.h"

#include <array>
#include <cstring>
#include <optional>
#include <span>

namespace velmora::platform::sound {

namespace {

using namespace std::string_view_literals;

constexpr std::size_t mostParts = 4096;
constexpr std::size_t searchedAtOnce = 262144;
// Of a mark and what must stand behind it.
constexpr std::size_t markContext = 8;

using Head = std::array<std::uint8_t, 12>;

std::string_view view(std::span<const std::uint8_t> bytes) {
    return {reinterpret_cast<const char *>(bytes.data()), bytes.size()};
}

std::int64_t number(const Head &head, std::size_t at, bool bigEndian) {
    std::int64_t value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value = value << 8 | head[at + (bigEndian ? i : 3 - i)];
    return value;
}

// Where the file that begins with this ends by its own words. Absent: it does not tell.
std::optional<std::int64_t> toldSize(const Head &head) {
    constexpr std::int64_t unknown = 0xFFFFFFFF;
    const auto mark = view(head).substr(0, 4);
    if (mark == ".snd" || mark == "dns.") {
        const std::int64_t sound = number(head, 8, mark == ".snd");
        return sound == unknown ? std::nullopt
                                : std::optional(number(head, 4, mark == ".snd") + sound);
    }
    if (mark != "RIFF" && mark != "RIFX" && mark != "FORM")
        return std::nullopt;
    const std::int64_t size = number(head, 4, mark != "RIFF");
    return size == unknown ? std::nullopt : std::optional(8 + size + (size & 1));
}

// Where a file of the same form begins right behind the one that begins here, or behind its tag.
std::optional<std::int64_t> fileBehind(const ByteSource &source, std::int64_t start) {
    Head head{};
    Head next{};
    if (source.read(start, head) < head.size())
        return std::nullopt;
    const auto size = toldSize(head);
    // One that says it is smaller than its own head would begin anew where it begins.
    if (!size || *size < static_cast<std::int64_t>(head.size()))
        return std::nullopt;
    const std::int64_t behind = start + *size + id3v2Size(source, start + *size);
    if (source.read(behind, next) < next.size() ||
        view(next).substr(0, 4) != view(head).substr(0, 4))
        return std::nullopt;
    const bool isChunk = view(head)[0] != '.' && view(head)[0] != 'd';
    if (isChunk && view(next).substr(8) != view(head).substr(8))
        return std::nullopt;
    return behind;
}

std::string_view markOf(const ByteSource &source) {
    Head head{};
    source.read(0, head);
    for (const auto mark : {"fLaC"sv, "OggS"sv})
        if (view(head).starts_with(mark))
            return mark;
    return {};
}

} // namespace

bool isOnePiece(const ByteSource &source) {
    const auto mark = markOf(source);
    return mark.empty()     ? !fileBehind(source, 0)
           : mark == "fLaC" ? flacIsOnePiece(source)
                            : oggIsOnePiece(source);
}

JoinedParts::JoinedParts(const ByteSource &source) : source_(source), mark_(markOf(source)) {
    if (mark_ == "fLaC")
        place_ = flacSoundStart(source_, 0);
}

bool JoinedParts::searchOn() {
    if (isComplete_)
        return false;
    if (!mark_.empty())
        searchMarks();
    else if (const auto next = fileBehind(source_, starts_.back()))
        starts_.push_back(*next);
    else
        isComplete_ = true;
    isComplete_ = isComplete_ || starts_.size() == mostParts;
    return !isComplete_;
}

void JoinedParts::searchMarks() {
    const auto known = bytesAt_ + static_cast<std::int64_t>(bytes_.size());
    if (place_ + static_cast<std::int64_t>(markContext) > known) {
        bytes_.resize(searchedAtOnce);
        bytes_.resize(source_.read(place_, bytes_));
        bytesAt_ = place_;
    }
    const auto bytes = view(bytes_);
    for (auto at = static_cast<std::size_t>(place_ - bytesAt_);
         (at = bytes.find(mark_, at)) != bytes.npos; ++at) {
        if (at + markContext > bytes.size())
            break;
        const std::int64_t start = bytesAt_ + static_cast<std::int64_t>(at);
        if (!beginsPart(bytes.substr(at), start))
            continue;
        starts_.push_back(start);
        place_ = mark_ == "fLaC" ? flacSoundStart(source_, start)
                                 : start + static_cast<std::int64_t>(mark_.size());
        return;
    }
    isComplete_ = bytes.size() < searchedAtOnce;
    place_ = bytesAt_ + static_cast<std::int64_t>(bytes.size()) -
             static_cast<std::int64_t>(markContext - 1);
}

bool JoinedParts::beginsPart(std::string_view bytes, std::int64_t place) {
    if (mark_ == "fLaC")
        return (bytes[4] & 0x7F) == 0 && bytes.substr(5, 3) == "\0\0\x22"sv;
    if (bytes[4] != 0)
        return false;
    const bool begins = (bytes[5] & 2) != 0 && oggStreamBegins(source_, place);
    // All streams of a part begin in its first pages.
    const bool isFirst = begins && !lastBegan_;
    lastBegan_ = begins;
    return isFirst;
}

} // namespace velmora::platform::sound
