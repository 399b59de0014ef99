#pragma once

// How many frames a stream of MPEG audio has, and where each lies: counted one by one, a piece at a
// time, so that nobody waits for a long file or a slow disk.

#include "platform/backends/sound/readers/mpeg_walk.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace velmora::platform::sound {

// Frames in a row that have one form. Parts of other forms may be joined to one file.
struct MpegRun {
    std::int64_t firstFrame = 0; // of all
    MpegFrame form;
    int freeSize = 0;
};

class MpegIndex {
public:
    // No file of a person's changes its form so often; one that was made to would fill the memory.
    static constexpr std::size_t mostRuns = 4096;

    MpegIndex(const ByteSource &source, std::int64_t start, std::size_t most = mostRuns);

    // Counts on through a piece of the file, of so many bytes. False: all is counted.
    bool countOn(std::int64_t piece = 65536);
    bool isComplete() const { return walk_ == nullptr; }

    // As far as was counted.
    std::int64_t frames() const { return frames_; }
    const std::vector<MpegRun> &runs() const { return runs_; }
    std::int64_t reached() const { return reached_; } // in the source
    std::int64_t start() const { return start_; }

    // Where the frame begins, or one a little ahead of it: `frame` becomes that one's number. There
    // must be one.
    MpegPlace placeOf(std::int64_t &frame) const;
    // The run that the frame belongs to.
    std::size_t runOf(std::int64_t frame) const;

private:
    static constexpr std::int64_t stride = 32;

    std::unique_ptr<MpegWalk> walk_;
    std::size_t most_;
    std::int64_t start_;
    std::int64_t reached_;
    std::int64_t end_;
    std::int64_t frames_ = 0;
    std::vector<MpegRun> runs_;
    std::vector<std::int64_t> offsets_; // of each frame whose number is a multiple of the stride
};

} // namespace velmora::platform::sound
