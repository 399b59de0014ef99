#pragma once

// Several sound files that were joined to one: where each begins. (MPEG audio needs none of this:
// its frames follow one another whatever file they came from.)

#include "platform/backends/sound/readers/byte_source.h"

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

namespace velmora::platform::sound {

// Where in a file to look whether it rises to its end, in parts of its length. Up to a hundred
// equal parts are never at rising moments at all of these places.
inline constexpr std::array placesToLookAt{0.14, 0.312, 0.511, 0.703};

// Whether the file is certainly not several joined to one, by a few looks at it.
bool isOnePiece(const ByteSource &source);

class JoinedParts {
public:
    // The source outlives it.
    explicit JoinedParts(const ByteSource &source);

    // Searches on through a piece of the file, up to the next part. False: all is searched.
    bool searchOn();
    bool isComplete() const { return isComplete_; }

    // Of the parts found so far. The first is 0; each but the last ends where the next begins, and
    // the last with the file when all is searched.
    const std::vector<std::int64_t> &starts() const { return starts_; }

private:
    void searchMarks();
    bool beginsPart(std::string_view bytes, std::int64_t place);

    const ByteSource &source_;
    std::string_view mark_; // that a part or a page of one begins with; empty: sizes lead on
    std::vector<std::int64_t> starts_{0};
    std::int64_t place_ = 0; // up to here it is searched
    bool isComplete_ = false;
    bool lastBegan_ = true;           // the last page was the first of a stream
    std::vector<std::uint8_t> bytes_; // of the source from there on; many a part may begin in them
    std::int64_t bytesAt_ = 0;
};

} // namespace velmora::platform::sound
