#pragma once

// What the tests of the picture device share: the media made for them, waiting, and finding a piece
// of recorded sound in its source.

#include "platform/backends/media/device.h"
#include "platform/backends/picture/picture.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace velmora::tests {

using platform::media::Channel;
using platform::media::Device;
using platform::media::DeviceOpener;
using platform::media::Mode;
using platform::media::OpenRequest;

// Path of a file that make_media.sh makes; makes them all at the first call of the machine.
std::string mediaFile(const std::string &name);

// Polls until the condition holds; false when the limit passes first.
bool waitUntil(const std::function<bool()> &condition, int limitMs = 60'000);

// Plays silently, in real time.
std::unique_ptr<DeviceOpener> silentOpener();
std::unique_ptr<Device> openSilently(const std::string &file);

// Plays up to a position.
bool playUpTo(Device &device, int ms, int limitMs = 60'000);

// The noise that most files hold.
class SourceSound {
public:
    SourceSound();

    struct Match {
        double seconds = 0.0;     // where the piece begins in the source
        double correlation = 0.0; // 1 when it is the same but for its loudness
    };
    // Looks for a piece of 44100 Hz within `range` seconds of `around` in a channel of the source
    // (0 left, 1 right).
    Match find(const std::vector<float> &piece, int channel, double around, double range) const;

private:
    std::vector<float> channels_[2]; // thinned out to a quarter of the rate
};

// Amplitude of one frequency in a piece of 44100 Hz.
double amplitudeOf(double frequency, const std::vector<float> &piece);

} // namespace velmora::tests
