#pragma once

#include "platform/backends/sound/readers/reader.h"

#include <algorithm>

namespace velmora::tests {

// A file whose left sample is its frame's number divided by a million, the right one its negative.
class FakeReader final : public platform::sound::Reader {
public:
    struct Calls {
        int seeks = 0;
        std::int64_t decoded = 0;
        bool refuseSeek = false;
        std::int64_t stopsAt = -1; // decoding ends here although the length says otherwise
        std::int64_t more = 0;     // found once something was decoded
    };

    FakeReader(std::int64_t frames, Calls &calls, int rate = 1000)
        : frames_(frames), calls_(calls), rate_(rate) {}

    int rate() const override { return rate_; }
    int channels() const override { return 2; }
    std::int64_t frames() const override {
        return frames_ + (calls_.decoded > 0 ? calls_.more : 0);
    }
    bool seek(std::int64_t frame) override {
        ++calls_.seeks;
        position_ = frame;
        return !calls_.refuseSeek;
    }
    std::size_t read(float *out, std::size_t frameCount) override {
        const std::int64_t end = calls_.stopsAt >= 0 ? calls_.stopsAt : frames_ + calls_.more;
        const auto count = static_cast<std::size_t>(
            std::clamp<std::int64_t>(end - position_, 0, static_cast<std::int64_t>(frameCount)));
        for (std::size_t i = 0; i < count; ++i, ++position_) {
            out[i * 2] = valueAt(position_);
            out[i * 2 + 1] = -valueAt(position_);
        }
        calls_.decoded += static_cast<std::int64_t>(count);
        return count;
    }
    static float valueAt(std::int64_t frame) { return static_cast<float>(frame) / 1e6F; }

private:
    std::int64_t frames_;
    Calls &calls_;
    int rate_;
    std::int64_t position_ = 0;
};

} // namespace velmora::tests
