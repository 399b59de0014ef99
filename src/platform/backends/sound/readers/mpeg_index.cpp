#include "platform/backends/sound/readers/mpeg_index.h"

#include <algorithm>

namespace velmora::platform::sound {

MpegIndex::MpegIndex(const ByteSource &source, std::int64_t start, std::size_t most)
    : walk_(std::make_unique<MpegWalk>(source, MpegPlace{start, {}, 0})), most_(most),
      start_(start), reached_(start), end_(source.size()) {}

bool MpegIndex::countOn(std::int64_t piece) {
    const std::int64_t limit = reached_ + piece;
    while (walk_ && reached_ < limit) {
        const MpegWalk::Step step = walk_->step();
        if (step == MpegWalk::Step::End) {
            walk_.reset();
            reached_ = end_;
            break;
        }
        reached_ = walk_->next().offset;
        if (step == MpegWalk::Step::Nothing)
            continue;
        if (walk_->isOther()) {
            if (runs_.size() == most_) {
                walk_.reset();
                break;
            }
            runs_.push_back({frames_, walk_->form(), walk_->next().freeSize});
        }
        if (frames_++ % stride == 0)
            offsets_.push_back(walk_->offset());
    }
    return walk_ != nullptr;
}

MpegPlace MpegIndex::placeOf(std::int64_t &frame) const {
    const auto known = static_cast<std::int64_t>(offsets_.size()) - 1;
    const std::int64_t place = std::clamp<std::int64_t>(frame / stride, 0, known);
    frame = place * stride;
    const MpegRun &run = runs_[runOf(frame)];
    return {offsets_[static_cast<std::size_t>(place)], run.form, run.freeSize};
}

std::size_t MpegIndex::runOf(std::int64_t frame) const {
    const auto behind = std::upper_bound(
        runs_.begin(), runs_.end(), frame,
        [](std::int64_t number, const MpegRun &run) { return number < run.firstFrame; });
    return static_cast<std::size_t>(std::max<std::ptrdiff_t>(behind - runs_.begin() - 1, 0));
}

} // namespace velmora::platform::sound
