#include "base/text.h"
#include "base/within_time.h"
#include "platform/backends/sound/device/sound.h"
#include "platform/backends/sound/device/sound_device.h"
#include "platform/backends/sound/output/output_engine.h"
#include "platform/backends/sound/readers/reader.h"

#include <algorithm>
#include <chrono>

namespace velmora::platform::sound {

namespace {

// What an open needs that nobody waits for any more.
struct Decoders {
    std::vector<std::string> soundFonts;
    DecoderLibraries libraries;
};

// A track is called by its file's name, without what its kind is told by. A mixer takes text alone.
std::string nameOf(const std::string &path) {
    const std::string file = path.substr(path.rfind('/') + 1);
    const std::size_t dot = file.rfind('.');
    const bool hasKind = dot != std::string::npos && dot > 0;
    const std::string name = toUtf8(fromUtf8(hasKind ? file.substr(0, dot) : file));
    return name.empty() ? "Music" : name;
}

class SoundDeviceOpener final : public media::DeviceOpener {
public:
    explicit SoundDeviceOpener(SoundOptions options)
        : decoders_(std::make_shared<Decoders>(
              Decoders{std::move(options.soundFonts), DecoderLibraries(options.libraries)})),
          openLimit_(options.openLimitMs),
          engine_({options.libraries.pulse, options.server, options.applicationName,
                   options.iconName, std::move(options.quiet)}) {}

    std::unique_ptr<media::Device> open(const media::OpenRequest &request) override {
        auto reader = openInTime(request);
        if (!reader || !engine_.start())
            return nullptr;
        return std::make_unique<SoundDevice>(std::move(reader), engine_, nameOf(request.path));
    }

private:
    std::unique_ptr<Reader> openInTime(const media::OpenRequest &request) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(
            request.end - std::chrono::steady_clock::now());
        auto reader =
            helper_.within(std::min(openLimit_, left), [decoders = decoders_, path = request.path,
                                                        midiOnly = request.type == "Sequencer"] {
                return openReader(path, decoders->libraries, decoders->soundFonts, midiOnly);
            });
        return reader ? std::move(*reader) : nullptr;
    }

    std::shared_ptr<Decoders> decoders_;
    std::chrono::milliseconds openLimit_;
    TimedHelper helper_; // opens files
    OutputEngine engine_;
};

} // namespace

std::vector<std::string> defaultSoundFonts() {
    return {
        "/usr/share/sounds/sf2/TimGM6mb.sf2",       "/usr/share/sounds/sf2/default-GM.sf2",
        "/usr/share/sounds/sf2/FluidR3_GM.sf2",     "/usr/share/sounds/sf3/default-GM.sf3",
        "/usr/share/soundfonts/default.sf2",        "/usr/share/soundfonts/FluidR3_GM.sf2",
        "/usr/local/share/sounds/sf2/TimGM6mb.sf2", "/usr/local/share/soundfonts/default.sf2",
    };
}

std::unique_ptr<media::DeviceOpener> makeSoundOpener(SoundOptions options) {
    return std::make_unique<SoundDeviceOpener>(std::move(options));
}

} // namespace velmora::platform::sound
