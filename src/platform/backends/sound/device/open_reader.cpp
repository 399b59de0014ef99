#include "platform/backends/sound/readers/reader.h"
#include "platform/backends/sound/readers/sniff.h"

namespace velmora::platform::sound {

std::unique_ptr<Reader> openReader(const std::string &path, DecoderLibraries &libraries,
                                   const std::vector<std::string> &soundFonts, bool midiOnly) {
    std::unique_ptr<ByteSource> file = FileSource::open(path);
    if (!file)
        return nullptr;
    const Sniffed sniffed = sniff(*file);
    if (midiOnly && sniffed.content != Content::Midi)
        return nullptr;
    auto part = std::make_unique<SourcePart>(std::move(file), sniffed.start, sniffed.size);
    switch (sniffed.content) {
    case Content::Mpeg:
        return openMpegReader(std::move(part), libraries.mpg123());
    case Content::SoundFile:
        return openSoundFileReader(std::move(part), libraries.sndfile());
    case Content::Midi:
        return openMidiReader(std::move(part), libraries.fluidsynth(), soundFonts);
    case Content::Other:
        break;
    }
    return nullptr;
}

} // namespace velmora::platform::sound
