#pragma once

// The sound device: media without pictures, decoded and put out by our own small engine.

#include "platform/backends/media/device.h"
#include "platform/backends/sound/output/output_engine.h"
#include "platform/backends/sound/readers/reader.h"

#include <atomic>
#include <memory>
#include <string>

namespace velmora::platform::sound {

class SoundDevice final : public media::Device {
public:
    // The engine outlives the device. `name` (UTF-8) is what a mixer calls it.
    SoundDevice(std::unique_ptr<Reader> reader, OutputEngine &engine, std::string name);
    ~SoundDevice() override;

    bool play() override;
    bool pause() override;
    bool seek(std::int32_t ms) override;
    bool setVolume(std::int32_t level) override;
    bool setChannel(media::Channel channel) override;
    // There is never a picture.
    bool putWindow(std::int32_t, std::int32_t, std::int32_t, std::int32_t) override;

    media::Mode mode() override;
    std::int32_t positionMs() override;
    std::int32_t lengthMs() override { return msOf(frames()); }
    std::uintptr_t windowHandle() override { return 0; }

private:
    void noteEnd();
    void moveTo(bool playing, std::int64_t frame);
    void mix();
    std::int64_t heardFrame() const;
    std::int32_t msOf(std::int64_t frame) const;
    std::int64_t frames() const { return changing_ ? changing_->load() : frames_; }

    OutputEngine &engine_;
    std::shared_ptr<VoiceControl> control_;
    const int rate_;
    const std::int64_t frames_;
    // Where the reader puts its length right by and by, on the output thread.
    const std::shared_ptr<const std::atomic<std::int64_t>> changing_;

    media::Mode mode_ = media::Mode::Stopped;
    std::uint64_t transport_ = 0;
    std::int64_t standing_ = 0; // where it is while it does not play
    bool atEnd_ = false;        // there, wherever that turns out to be
    std::int32_t lastMs_ = 0;   // told last: it never goes back in play
    std::int32_t volume_ = 1000;
    media::Channel channel_ = media::Channel::Stereo;
};

} // namespace velmora::platform::sound
