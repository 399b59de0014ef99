#include "platform/backends/sound/output/output_stream.h"

namespace velmora::platform::sound {

std::int64_t SilentStream::start(TimePoint now) {
    running_ = true;
    since_ = now;
    return frame_;
}

void SilentStream::stop(TimePoint now) {
    frame_ = heard(now);
    running_ = false;
}

std::int64_t SilentStream::heard(TimePoint now) const {
    return running_ ? frame_ + framesOfTime(now - since_, rate_) : frame_;
}

} // namespace velmora::platform::sound
