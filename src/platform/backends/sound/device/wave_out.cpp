#include "base/text.h"
#include "platform/backends/sound/device/server_query.h"
#include "platform/backends/sound/device/sound.h"

#include <algorithm>
#include <charconv>

namespace velmora::platform::sound {

namespace {

// Error numbers of the wave calls.
constexpr std::uint32_t badDeviceId = 2;
constexpr std::uint32_t noDriver = 6;
constexpr std::uint32_t invalidParameter = 11;

// The program's record ends inside the last field, whose upper half it does not use.
constexpr std::uint32_t smallestRecord = 50;

constexpr std::size_t nameUnits = 31;
constexpr std::uint32_t monoFormats = 0x555; // 8 and 16 bits at three rates
constexpr std::uint32_t stereoFormats = 0xAAA;
constexpr std::uint32_t volumeSupport = 4;
constexpr std::uint32_t leftRightSupport = 8;

// "16.1" is 0x1001.
std::uint16_t versionWord(std::string_view text) {
    unsigned major = 0;
    unsigned minor = 0;
    const char *end = text.data() + text.size();
    const auto first = std::from_chars(text.data(), end, major);
    if (first.ec == std::errc() && first.ptr != end && *first.ptr == '.')
        std::from_chars(first.ptr + 1, end, minor);
    return static_cast<std::uint16_t>(std::min(major, 255U) << 8 | std::min(minor, 255U));
}

std::u16string deviceName(const SinkDescription &sink) {
    std::u16string name = fromUtf8(sink.description.empty() ? sink.name : sink.description);
    if (name.size() > nameUnits) {
        const bool insidePair = name[nameUnits] >= 0xDC00 && name[nameUnits] < 0xE000;
        name.resize(insidePair ? nameUnits - 1 : nameUnits);
    }
    return name;
}

class PulseWaveOut final : public WaveOut {
public:
    explicit PulseWaveOut(ServerQuery query) : query_(std::move(query)) {}

    std::uint32_t waveOutGetNumDevs() override {
        const auto answer = ask();
        return answer ? static_cast<std::uint32_t>(answer->sinks.size()) : 0;
    }

    std::uint32_t waveOutGetDevCapsA(std::uint32_t device, WaveOutCaps &caps,
                                     std::uint32_t recordSize) override {
        if (recordSize < smallestRecord)
            return invalidParameter;
        const auto answer = ask();
        if (!answer)
            return noDriver;
        if (device >= answer->sinks.size())
            return badDeviceId;
        const SinkDescription &sink = answer->sinks[device];
        const bool stereo = sink.channels >= 2;
        caps.manufacturerId = sink.vendorId;
        caps.productId = sink.productId;
        caps.driverVersion = versionWord(answer->version);
        caps.productName = deviceName(sink);
        caps.channels = static_cast<std::uint16_t>(sink.channels);
        // The server turns any of these into what the device takes.
        caps.formats = stereo ? monoFormats | stereoFormats : monoFormats;
        caps.support = stereo ? volumeSupport | leftRightSupport : volumeSupport;
        return 0;
    }

private:
    // The default sink comes first.
    std::optional<ServerDescription> ask() const {
        auto answer = queryServer(query_);
        if (answer)
            std::stable_partition(
                answer->sinks.begin(), answer->sinks.end(),
                [&](const SinkDescription &sink) { return sink.name == answer->defaultSink; });
        return answer;
    }

    ServerQuery query_;
};

} // namespace

std::unique_ptr<WaveOut> makePulseWaveOut(WaveOutOptions options) {
    return std::make_unique<PulseWaveOut>(ServerQuery{
        std::move(options.server), std::move(options.libraries.pulse), std::move(options.cards)});
}

} // namespace velmora::platform::sound
