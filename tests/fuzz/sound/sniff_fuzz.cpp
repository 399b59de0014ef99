// What a file is by its beginning, and everything that is read of it before a decoder sees it. The
// part that a reader is to see lies inside the file.

#include "platform/backends/sound/readers/flac_length.h"
#include "platform/backends/sound/readers/joined_parts.h"
#include "platform/backends/sound/readers/mpeg_frame.h"
#include "platform/backends/sound/readers/mpeg_index.h"
#include "platform/backends/sound/readers/ogg_length.h"
#include "platform/backends/sound/readers/sniff.h"

#include <cstdlib>
#include <memory>

using namespace velmora::platform::sound;

namespace {

// Each part begins behind the one before and inside the file, and the search comes to an end.
void searchParts(const ByteSource &source) {
    isOnePiece(source);
    JoinedParts parts(source);
    std::int64_t steps = 0;
    while (parts.searchOn())
        if (++steps > source.size() + 1)
            std::abort();
    std::int64_t reached = -1;
    for (const std::int64_t start : parts.starts()) {
        if (start <= reached || (start >= source.size() && start != 0))
            std::abort();
        reached = start;
    }
}

// A total that is put into the head is the one that is read there, and the rest stays.
void tryTotal(const ByteSource &part, const std::uint8_t *data, std::size_t size) {
    constexpr std::int64_t samples = (std::int64_t{5} << 32) + 7;
    const auto changed =
        withFlacTotal(std::make_unique<MemorySource>(std::span(data, size)), samples);
    const std::int64_t told = flacTotal(*changed);
    if (changed->size() != static_cast<std::int64_t>(size) || (told != 0 && told != samples) ||
        flacTotal(part) < 0)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const MemorySource source({data, size});
    const Sniffed sniffed = sniff(source);
    if (sniffed.start < 0 || sniffed.size < 0 || sniffed.start + sniffed.size > source.size())
        std::abort();
    const SourcePart part(std::make_unique<MemorySource>(std::span(data, size)), sniffed.start,
                          sniffed.size);
    searchParts(part);
    readMpegSeekHeader(part, 0);
    MpegIndex index(part, 0);
    while (index.countOn(4096)) {
    }
    if (index.frames() < 0 || index.frames() > part.size() || index.reached() > part.size())
        std::abort();
    for (std::int64_t wanted = index.frames() - 1; wanted >= 0; wanted = wanted / 2 - 1) {
        std::int64_t frame = wanted;
        const auto place = index.placeOf(frame);
        if (frame < 0 || frame > wanted || place.offset < 0 || place.offset >= part.size() ||
            index.runs().at(index.runOf(wanted)).firstFrame > wanted)
            std::abort();
    }
    if (endBeforeTags(part) < 0 || endBeforeTags(part) > part.size())
        std::abort();
    // Of a file whose form changes all the time only a part is counted.
    constexpr std::size_t fewRuns = 2;
    MpegIndex few(part, 0, fewRuns);
    while (few.countOn(4096)) {
    }
    if (few.runs().size() > fewRuns || few.frames() > index.frames())
        std::abort();
    tryTotal(part, data, size);
    for (const auto samples : {flacSamplesPresent(part), oggSamplesPresent(part)})
        if (samples && *samples < 0)
            std::abort();
    return 0;
}
