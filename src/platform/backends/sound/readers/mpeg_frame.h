#pragma once

// The frames of MPEG audio (versions 1, 2 and 2.5, layers I to III), as far as finding them and
// counting them goes.

#include "platform/backends/sound/readers/byte_source.h"

#include <cstdint>
#include <optional>
#include <span>

namespace velmora::platform::sound {

struct MpegFrame {
    int version = 1; // 1, 2, 3 (for 2.5)
    int layer = 3;   // 1 to 3
    int rate = 0;    // Hz
    int channels = 2;
    int samples = 0; // in each channel
    int size = 0;    // bytes with the header; 0: free format, known only from the next frame
    bool padded = false;
    std::uint32_t header = 0; // as it stands in the file

    // Whether the two can belong to one stream.
    bool alike(const MpegFrame &other) const {
        return version == other.version && layer == other.layer && rate == other.rate &&
               (size == 0) == (other.size == 0);
    }
};

// The header that the first four bytes are, if they are one.
std::optional<MpegFrame> parseMpegFrame(std::span<const std::uint8_t> bytes);

// Where a stream of frames begins at or after `from`, not more than `junk` bytes behind it. A
// single header proves nothing: several in a chain must agree (fewer where the file ends with
// them). Nothing found: no value.
std::optional<std::int64_t> findMpegStream(const ByteSource &source, std::int64_t from,
                                           std::int64_t junk);

// Frames that follow one another at the distances that their headers tell.
struct MpegChain {
    MpegFrame first;
    int freeSize = 0; // of the frames without padding, in free format
    int headers = 0;
    bool reachesEnd = false; // the last header's frame ends at or beyond the end of the file

    int sizeOf(const MpegFrame &frame) const {
        return frame.size != 0 ? frame.size : freeSize + (frame.padded ? 1 : 0);
    }
};
// The chain that begins with these bytes, up to `wanted` headers of it. `bytesAreAll`: the file
// ends with them.
MpegChain followMpegChain(std::span<const std::uint8_t> bytes, bool bytesAreAll, int wanted);
// Enough bytes for a chain of four of the longest frames.
constexpr std::size_t mpegChainBytes = 16384;

// What the first frame of a stream tells of the whole, where an encoder has put that in.
struct MpegSeekHeader {
    bool constantRate = false; // every frame is as long as the next
    std::int64_t frames = 0;   // without this one; 0: not told
    std::int64_t bytes = 0;    // of the stream; 0: not told
    // Samples that the encoder has put in front of the sound and behind it; where it tells them,
    // the decoder's own delay stands in front, too.
    std::optional<int> delay;
    int padding = 0;
};
std::optional<MpegSeekHeader> readMpegSeekHeader(const ByteSource &source, std::int64_t start);

// Whether the frame that begins these bytes holds such a header, certainly no sound.
bool isMpegSeekHeader(std::span<const std::uint8_t> bytes);
constexpr std::size_t mpegSeekHeaderBytes = 40; // as many of them as it takes to know

// The size of an ID3v2 tag at this place, 0 if there is none.
std::int64_t id3v2Size(const ByteSource &source, std::int64_t offset);

// Where sound ends ahead of the tags (ID3v1, APE) at the end of the file.
std::int64_t endBeforeTags(const ByteSource &source);

} // namespace velmora::platform::sound
