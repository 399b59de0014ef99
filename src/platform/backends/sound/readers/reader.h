#pragma once

// Decoders of whole sound files behind one interface.

#include "platform/backends/sound/readers/byte_source.h"
#include "platform/backends/sound/readers/library_tables.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace velmora::platform::sound {

// An open sound file. A "frame" is one sample of each channel. Used from one thread at a time.
class Reader {
public:
    virtual ~Reader() = default;

    virtual int rate() const = 0;     // frames a second
    virtual int channels() const = 0; // 1 to maxChannels
    // What is really there; at least 1. A length that could only be reckoned in the time that an
    // open may take is put right by and by, as the file is read and sought in.
    virtual std::int64_t frames() const = 0;
    // The same for another thread, also while this one reads. Null: it never changes.
    virtual std::shared_ptr<const std::atomic<std::int64_t>> changingFrames() const {
        return nullptr;
    }

    // The next read begins exactly at this frame, 0 to frames(). False when the file does not let
    // itself be read there.
    virtual bool seek(std::int64_t frame) = 0;
    // Interleaved samples, full scale is 1. The number of frames read; 0 at the end and where the
    // file cannot be decoded further.
    virtual std::size_t read(float *out, std::size_t frameCount) = 0;

    static constexpr int maxChannels = 64;
    static constexpr int minRate = 100;
    static constexpr int maxRate = 384000;
};

using TimeNow = std::function<std::chrono::steady_clock::time_point()>;

// Each takes the part of the file that holds the sound. Null: the library is missing or refuses.
// `now`: the time by which it limits how long it looks through the file.
std::unique_ptr<Reader> openMpegReader(std::unique_ptr<ByteSource> source,
                                       std::shared_ptr<const Mpg123Table> library,
                                       TimeNow now = std::chrono::steady_clock::now);
std::unique_ptr<Reader> openSndfileReader(std::unique_ptr<ByteSource> source,
                                          std::shared_ptr<const SndfileTable> library);
// The same for a file that may be several joined to one. They need not be alike: all sounds at the
// rate and with the channels of the first.
std::unique_ptr<Reader> openSoundFileReader(std::unique_ptr<ByteSource> source,
                                            std::shared_ptr<const SndfileTable> library,
                                            TimeNow now = std::chrono::steady_clock::now);
// The first sound font of the list that can be loaded is played with; none: null.
std::unique_ptr<Reader> openMidiReader(std::unique_ptr<ByteSource> source,
                                       std::shared_ptr<const FluidsynthTable> library,
                                       const std::vector<std::string> &soundFonts);

// Opens a file by its content. Null: not a sound file of these kinds, or damaged beyond use.
// `midiOnly` refuses everything else. Loads the one library that is needed.
std::unique_ptr<Reader> openReader(const std::string &path, DecoderLibraries &libraries,
                                   const std::vector<std::string> &soundFonts, bool midiOnly);

} // namespace velmora::platform::sound
