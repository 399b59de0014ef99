#include "platform/backends/sound/device/sound_device.h"

#include <algorithm>
#include <limits>

namespace velmora::platform::sound {

using media::Mode;

SoundDevice::SoundDevice(std::unique_ptr<Reader> reader, OutputEngine &engine, std::string name)
    : engine_(engine), control_(std::make_shared<VoiceControl>()), rate_(reader->rate()),
      frames_(reader->frames()), changing_(reader->changingFrames()) {
    engine_.add(std::make_unique<Voice>(control_, std::move(reader), std::move(name)));
}

SoundDevice::~SoundDevice() {
    control_->change([](VoiceWish &wish) {
        wish.closed = true;
        wish.playing = false;
        ++wish.transport;
    });
    engine_.wake();
}

bool SoundDevice::play() {
    noteEnd();
    if (mode_ == Mode::Playing)
        return true;
    if (atEnd_)
        lastMs_ = 0;
    moveTo(true, atEnd_ ? 0 : standing_);
    mode_ = Mode::Playing;
    return true;
}

bool SoundDevice::pause() {
    noteEnd();
    // What has stopped at its end stays so: paused is what goes on from where it is.
    if (mode_ == Mode::Playing) {
        const std::int64_t frame = heardFrame();
        lastMs_ = std::max(lastMs_, msOf(frame));
        moveTo(false, frame);
        mode_ = Mode::Paused;
    }
    return true;
}

bool SoundDevice::seek(std::int32_t ms) {
    const std::int64_t end = frames();
    if (ms < 0 || ms > msOf(end))
        return false;
    const std::int64_t frame = (std::int64_t{ms} * rate_ + 500) / 1000;
    moveTo(false, ms == msOf(end) ? end : std::min(frame, end));
    atEnd_ = standing_ == end;
    lastMs_ = ms;
    mode_ = Mode::Paused;
    return true;
}

bool SoundDevice::setVolume(std::int32_t level) {
    if (level < 0 || level > 1000)
        return false;
    volume_ = level;
    mix();
    return true;
}

bool SoundDevice::setChannel(media::Channel channel) {
    channel_ = channel;
    mix();
    return true;
}

bool SoundDevice::putWindow(std::int32_t, std::int32_t, std::int32_t, std::int32_t) {
    return false;
}

Mode SoundDevice::mode() {
    noteEnd();
    return mode_;
}

std::int32_t SoundDevice::positionMs() {
    noteEnd();
    if (mode_ == Mode::Playing)
        lastMs_ = std::max(lastMs_, msOf(heardFrame()));
    return std::min(lastMs_, lengthMs());
}

void SoundDevice::noteEnd() {
    engine_.tend();
    if (mode_ != Mode::Playing)
        return;
    const VoiceReport report = control_->report();
    if (report.transport != transport_ || !report.ended)
        return;
    mode_ = Mode::Stopped;
    atEnd_ = true;
    standing_ = frames();
    lastMs_ = lengthMs();
}

void SoundDevice::moveTo(bool playing, std::int64_t frame) {
    ++transport_;
    standing_ = frame;
    atEnd_ = false;
    control_->change([&](VoiceWish &wish) {
        wish.transport = transport_;
        wish.playing = playing;
        wish.frame = frame;
    });
    engine_.wake();
}

void SoundDevice::mix() {
    const GainMatrix gain = gainMatrix(volume_, channel_);
    control_->change([&](VoiceWish &wish) {
        ++wish.mix;
        wish.gain = gain;
    });
    engine_.wake();
}

// While playing: extrapolated from what the output thread last told.
std::int64_t SoundDevice::heardFrame() const {
    const VoiceReport report = control_->report();
    if (report.transport != transport_)
        return standing_;
    std::int64_t frame = report.frame;
    if (report.advancing)
        frame += std::max<std::int64_t>(framesOfTime(Clock::now() - report.time, rate_), 0);
    return std::clamp<std::int64_t>(frame, 0, frames());
}

std::int32_t SoundDevice::msOf(std::int64_t frame) const {
    // In parts: a file may claim more frames than can be multiplied.
    const std::int64_t ms = frame / rate_ * 1000 + frame % rate_ * 1000 / rate_;
    return static_cast<std::int32_t>(
        std::min<std::int64_t>(ms, std::numeric_limits<std::int32_t>::max()));
}

} // namespace velmora::platform::sound
