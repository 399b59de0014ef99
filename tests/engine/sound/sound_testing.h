#pragma once

// What the tests of the sound device share.

#include "platform/backends/sound/readers/reader.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace velmora::tests {

using Bytes = std::vector<std::uint8_t>;

inline std::string mediaFile(const std::string &name) {
    return std::string(VELMORA_SOUND_MEDIA) + "/" + name;
}

inline Bytes readFile(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

// ./test --whole takes everything; an ordinary run a part of what is long.
inline bool isWholeRun() { return std::getenv("VELMORA_WHOLE") != nullptr; }

// A folder that goes with everything in it.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "velmora-sound-XXXXXX").string();
        path_ = mkdtemp(pattern.data()) ? pattern : "";
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    std::string path(const std::string &name) const { return path_ + "/" + name; }
    std::string write(const std::string &name, const Bytes &bytes) const {
        std::ofstream file(path(name), std::ios::binary);
        file.write(reinterpret_cast<const char *>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        return path(name);
    }

private:
    std::string path_;
};

inline double lengthMs(const platform::sound::Reader &reader) {
    return static_cast<double>(reader.frames()) * 1000 / reader.rate();
}

inline std::vector<float> firstChannel(const std::vector<float> &all, std::size_t channels) {
    std::vector<float> one;
    one.reserve(all.size() / channels);
    for (std::size_t i = 0; i + channels <= all.size(); i += channels)
        one.push_back(all[i]);
    return one;
}

// The next samples of the first channel, as many as there are up to that number.
inline std::vector<float> readChannel(platform::sound::Reader &reader, std::size_t frames) {
    constexpr std::size_t atOnce = 4096;
    const auto channels = static_cast<std::size_t>(reader.channels());
    std::vector<float> buffer(atOnce * channels);
    std::vector<float> first;
    while (first.size() < frames) {
        const std::size_t got = reader.read(buffer.data(), std::min(frames - first.size(), atOnce));
        if (got == 0)
            break;
        for (std::size_t i = 0; i < got; ++i)
            first.push_back(buffer[i * channels]);
    }
    return first;
}

inline std::int64_t decodeAll(platform::sound::Reader &reader) {
    std::int64_t frames = 0;
    while (const std::size_t got = readChannel(reader, 4096).size())
        frames += static_cast<std::int64_t>(got);
    return frames;
}

// The same bytes over and over, on a disk that needs its time for each.
class LongFile final : public platform::sound::ByteSource {
public:
    using Time = std::chrono::steady_clock::time_point;
    LongFile(Bytes piece, std::int64_t times, double bytesPerSecond, Time &now)
        : piece_(std::move(piece)), size_(static_cast<std::int64_t>(piece_.size()) * times),
          bytesPerSecond_(bytesPerSecond), now_(now) {}
    std::int64_t size() const override { return size_; }
    std::size_t read(std::int64_t offset, std::span<std::uint8_t> out) const override {
        const auto count = static_cast<std::size_t>(
            std::clamp<std::int64_t>(size_ - offset, 0, static_cast<std::int64_t>(out.size())));
        for (std::size_t i = 0; i < count; ++i)
            out[i] = piece_[(static_cast<std::size_t>(offset) + i) % piece_.size()];
        now_ += std::chrono::duration_cast<std::chrono::nanoseconds>(
            std::chrono::duration<double>(static_cast<double>(count) / bytesPerSecond_));
        return count;
    }

private:
    Bytes piece_;
    std::int64_t size_;
    double bytesPerSecond_;
    Time &now_;
};

// The frequency of a sine, from its upward crossings of zero; 0 when there are too few.
inline double frequencyOf(const std::vector<float> &samples, double rate) {
    double first = -1;
    double last = -1;
    int crossings = 0;
    for (std::size_t i = 1; i < samples.size(); ++i) {
        if (samples[i - 1] < 0 && samples[i] >= 0) {
            const double part = samples[i - 1] / (double{samples[i - 1]} - samples[i]);
            last = static_cast<double>(i) - 1 + part;
            if (crossings++ == 0)
                first = last;
        }
    }
    return crossings < 3 ? 0 : (crossings - 1) * rate / (last - first);
}

// The place in seconds, in the rising sine of the media, of the middle of these samples.
inline double placeInChirp(const std::vector<float> &samples, double rate) {
    return (frequencyOf(samples, rate) - 300) / 200;
}

inline double rms(const std::vector<float> &samples) {
    double sum = 0;
    for (const float sample : samples)
        sum += double{sample} * sample;
    return samples.empty() ? 0 : std::sqrt(sum / static_cast<double>(samples.size()));
}

// The part of a frequency in a signal, as an amplitude.
inline double amplitudeAt(const std::vector<float> &samples, double frequency, double rate) {
    double real = 0;
    double imaginary = 0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        // A window keeps neighbouring tones out.
        const double window =
            1 - std::cos(2 * M_PI * static_cast<double>(i) / static_cast<double>(samples.size()));
        const double angle = 2 * M_PI * frequency * static_cast<double>(i) / rate;
        real += window * samples[i] * std::cos(angle);
        imaginary += window * samples[i] * std::sin(angle);
    }
    return 2 * std::hypot(real, imaginary) / static_cast<double>(samples.size());
}

} // namespace velmora::tests
