#include "platform/backends/sound/readers/midi_file.h"
#include "platform/backends/sound/readers/reader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace velmora::platform::sound {

namespace {

constexpr int midiRate = 44100;
// Loud enough beside other music, with room for many voices.
constexpr double synthGain = 0.5;
// A longer piece has no place in the milliseconds that the program counts.
constexpr double maxSeconds = 2147483.0;

// The library's loaders complain on standard error of what is none.
bool isSoundFont(const std::string &path) {
    std::uint8_t head[12];
    const auto file = FileSource::open(path);
    return file && file->read(0, head) == sizeof head && std::memcmp(head, "RIFF", 4) == 0 &&
           std::memcmp(head + 8, "sfbk", 4) == 0;
}

class MidiReader final : public Reader {
public:
    MidiReader(MidiFile file, std::shared_ptr<const FluidsynthTable> library)
        : library_(std::move(library)), file_(std::move(file)), events_(file_) {}

    ~MidiReader() override {
        if (synth_)
            library_->delete_fluid_synth(synth_);
        if (settings_)
            library_->delete_fluid_settings(settings_);
    }

    bool open(const std::vector<std::string> &soundFonts) {
        const auto &lib = *library_;
        settings_ = lib.new_fluid_settings();
        if (!settings_)
            return false;
        lib.fluid_settings_setnum(settings_, "synth.sample-rate", midiRate);
        lib.fluid_settings_setnum(settings_, "synth.gain", synthGain);
        lib.fluid_settings_setint(settings_, "synth.lock-memory", 0);
        lib.fluid_settings_setint(settings_, "synth.threadsafe-api", 0);
        // Only the instruments that the piece uses are read.
        lib.fluid_settings_setint(settings_, "synth.dynamic-sample-loading", 1);
        synth_ = lib.new_fluid_synth(settings_);
        if (!synth_)
            return false;
        const bool loaded =
            std::any_of(soundFonts.begin(), soundFonts.end(), [&](const std::string &font) {
                return isSoundFont(font) && lib.fluid_synth_sfload(synth_, font.c_str(), 1) >= 0;
            });
        frames_ = std::llround(std::min(file_.seconds(), maxSeconds) * midiRate);
        return loaded && frames_ > 0 && seek(0);
    }

    int rate() const override { return midiRate; }
    int channels() const override { return 2; }
    std::int64_t frames() const override { return frames_; }

    // Everything but the notes is played at once up to the target, so that instruments and
    // controllers stand as they would.
    bool seek(std::int64_t frame) override {
        silence();
        events_ = MidiFile::Events(file_);
        for (next_ = events_.next(); next_ && frameOf(*next_) < frame; next_ = events_.next()) {
            const int kind = next_->status & 0xF0;
            if (kind != 0x80 && kind != 0x90 && kind != 0xA0)
                send(*next_);
        }
        position_ = frame;
        return true;
    }

    std::size_t read(float *out, std::size_t frameCount) override {
        const auto left = static_cast<std::size_t>(std::max<std::int64_t>(frames_ - position_, 0));
        const std::size_t wanted = std::min(frameCount, left);
        for (std::size_t done = 0; done < wanted;) {
            for (; next_ && frameOf(*next_) <= position_; next_ = events_.next())
                send(*next_);
            std::size_t count = wanted - done;
            if (next_)
                count = static_cast<std::size_t>(std::min<std::int64_t>(
                    static_cast<std::int64_t>(count), frameOf(*next_) - position_));
            library_->fluid_synth_write_float(synth_, static_cast<int>(count), out + done * 2, 0, 2,
                                              out + done * 2, 1, 2);
            done += count;
            position_ += static_cast<std::int64_t>(count);
        }
        return wanted;
    }

private:
    std::int64_t frameOf(const MidiEvent &event) const {
        return std::llround(std::min(event.seconds, maxSeconds) * midiRate);
    }

    // A reset alone lets what sounds die away over the next tenth of a second.
    void silence() {
        constexpr int allSoundOff = 120;
        constexpr int blockFrames = 64; // that the synthesizer renders at a time
        for (int channel = 0; channel < 16; ++channel)
            library_->fluid_synth_cc(synth_, channel, allSoundOff, 0);
        std::array<float, 2 * blockFrames> dropped{};
        library_->fluid_synth_write_float(synth_, blockFrames, dropped.data(), 0, 2, dropped.data(),
                                          1, 2);
        library_->fluid_synth_system_reset(synth_);
    }

    void send(const MidiEvent &event) {
        const auto &lib = *library_;
        const int channel = event.status & 0x0F;
        switch (event.status & 0xF0) {
        case 0x80:
            lib.fluid_synth_noteoff(synth_, channel, event.first);
            break;
        case 0x90:
            lib.fluid_synth_noteon(synth_, channel, event.first, event.second);
            break;
        case 0xA0:
            lib.fluid_synth_key_pressure(synth_, channel, event.first, event.second);
            break;
        case 0xB0:
            lib.fluid_synth_cc(synth_, channel, event.first, event.second);
            break;
        case 0xC0:
            lib.fluid_synth_program_change(synth_, channel, event.first);
            break;
        case 0xD0:
            lib.fluid_synth_channel_pressure(synth_, channel, event.first);
            break;
        case 0xE0:
            lib.fluid_synth_pitch_bend(synth_, channel, event.second << 7 | event.first);
            break;
        default:
            lib.fluid_synth_sysex(synth_, reinterpret_cast<const char *>(event.exclusive.data()),
                                  static_cast<int>(event.exclusive.size()), nullptr, nullptr,
                                  nullptr, 0);
            break;
        }
    }

    std::shared_ptr<const FluidsynthTable> library_;
    MidiFile file_;
    MidiFile::Events events_;
    std::optional<MidiEvent> next_;
    fluid_settings_t *settings_ = nullptr;
    fluid_synth_t *synth_ = nullptr;
    std::int64_t frames_ = 0;
    std::int64_t position_ = 0;
};

} // namespace

std::unique_ptr<Reader> openMidiReader(std::unique_ptr<ByteSource> source,
                                       std::shared_ptr<const FluidsynthTable> library,
                                       const std::vector<std::string> &soundFonts) {
    if (source->size() > static_cast<std::int64_t>(MidiFile::maxBytes))
        return nullptr;
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(source->size()));
    bytes.resize(source->read(0, bytes));
    auto file = MidiFile::parse(std::move(bytes));
    if (!file || !library)
        return nullptr;
    auto reader = std::make_unique<MidiReader>(std::move(*file), std::move(library));
    return reader->open(soundFonts) ? std::move(reader) : nullptr;
}

} // namespace velmora::platform::sound
