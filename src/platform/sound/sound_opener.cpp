#include "platform/sound/output_engine.h"
#include "platform/sound/reader.h"
#include "platform/sound/sound.h"
#include "platform/sound/sound_device.h"

namespace velmora::platform::sound {

namespace {

class SoundDeviceOpener final : public media::DeviceOpener {
public:
    explicit SoundDeviceOpener(SoundOptions options)
        : soundFonts_(std::move(options.soundFonts)), libraries_(options.libraries),
          engine_({options.libraries.pulse, options.server, options.applicationName,
                   options.iconName}) {}

    std::unique_ptr<media::Device> open(const media::OpenRequest &request) override {
        auto reader =
            openReader(request.path, libraries_, soundFonts_, request.type == "Sequencer");
        if (!reader || !engine_.start())
            return nullptr;
        return std::make_unique<SoundDevice>(std::move(reader), engine_);
    }

private:
    std::vector<std::string> soundFonts_;
    DecoderLibraries libraries_;
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
