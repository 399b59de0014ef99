// What a file is by its beginning, and everything that is read of it before a decoder sees it. The
// part that a reader is to see lies inside the file.

#include "platform/sound/flac_length.h"
#include "platform/sound/mpeg_frame.h"
#include "platform/sound/ogg_length.h"
#include "platform/sound/sniff.h"

#include <cstdlib>
#include <memory>

using namespace velmora::platform::sound;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const MemorySource source({data, size});
    const Sniffed sniffed = sniff(source);
    if (sniffed.start < 0 || sniffed.size < 0 || sniffed.start + sniffed.size > source.size())
        std::abort();
    const SourcePart part(std::make_unique<MemorySource>(std::span(data, size)), sniffed.start,
                          sniffed.size);
    readMpegSeekHeader(part, 0);
    const auto frames = countMpegFrames(part, 0);
    if (frames && (*frames < 0 || *frames > part.size()))
        std::abort();
    if (endBeforeTags(part) < 0 || endBeforeTags(part) > part.size())
        std::abort();
    for (const auto samples : {flacSamplesPresent(part), oggSamplesPresent(part)}) {
        if (samples && *samples < 0)
            std::abort();
    }
    return 0;
}
