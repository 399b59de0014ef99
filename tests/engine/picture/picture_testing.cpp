#include "picture_testing.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <numbers>
#include <thread>

namespace velmora::tests {

namespace {

constexpr int thinning = 4;
constexpr double sourceRate = 44100.0;

std::vector<float> thinned(const std::vector<float> &sound) {
    std::vector<float> result;
    for (std::size_t i = 0; i + thinning <= sound.size(); i += thinning) {
        float sum = 0;
        for (std::size_t k = 0; k < thinning; ++k)
            sum += sound[i + k];
        result.push_back(sum / thinning);
    }
    return result;
}

// For the shell, whatever stands in it.
std::string quoted(const std::string &text) {
    std::string word = "'";
    for (const char c : text)
        word += c == '\'' ? "'\\''" : std::string(1, c);
    return word + "'";
}

} // namespace

std::string mediaFile(const std::string &name) {
    static const std::string folder = VELMORA_PICTURE_MEDIA;
    // Several test programs may start at once; the script ends at once where all is made.
    static const int made =
        std::system(("mkdir -p " + quoted(folder) + " && flock " + quoted(folder + ".lock") + " " +
                     quoted(VELMORA_PICTURE_MEDIA_SCRIPT) + " " + quoted(folder))
                        .c_str());
    return made == 0 ? folder + "/" + name : std::string("media could not be made");
}

bool waitUntil(const std::function<bool()> &condition, int limitMs) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(limitMs);
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

std::unique_ptr<DeviceOpener> silentOpener() {
    platform::PictureOptions options;
    options.audioOutput = "null";
    return platform::makePictureOpener(options);
}

std::unique_ptr<Device> openSilently(const std::string &file) {
    return silentOpener()->open({mediaFile(file), "MPEGVideo", false, 0});
}

bool playUpTo(Device &device, int ms, int limitMs) {
    return device.play() && waitUntil([&] { return device.positionMs() >= ms; }, limitMs);
}

SourceSound::SourceSound() {
    std::ifstream file(mediaFile("source.wav"), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    std::vector<float> sides[2];
    const std::size_t begin = bytes.find("data") + 8;
    for (std::size_t i = begin; i + 4 <= bytes.size(); i += 4) {
        for (std::size_t side = 0; side < 2; ++side) {
            const auto low = static_cast<unsigned char>(bytes[i + 2 * side]);
            const auto high = static_cast<signed char>(bytes[i + 2 * side + 1]);
            sides[side].push_back(static_cast<float>(high * 256 + low) / 32768.0F);
        }
    }
    for (std::size_t side = 0; side < 2; ++side)
        channels_[side] = thinned(sides[side]);
}

SourceSound::Match SourceSound::find(const std::vector<float> &piece, int channel, double around,
                                     double range) const {
    const std::vector<float> &source = channels_[channel];
    const std::vector<float> wanted = thinned(piece);
    const double rate = sourceRate / thinning;
    double energy = 0;
    for (const float sample : wanted)
        energy += static_cast<double>(sample) * sample;
    Match best;
    const auto first = static_cast<std::ptrdiff_t>(std::max(0.0, (around - range) * rate));
    const auto last = static_cast<std::ptrdiff_t>((around + range) * rate);
    const auto end =
        static_cast<std::ptrdiff_t>(source.size() - std::min(source.size(), wanted.size()));
    for (std::ptrdiff_t at = first; at <= std::min(last, end); ++at) {
        double product = 0;
        double here = 0;
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            const float sample = source[static_cast<std::size_t>(at) + i];
            product += static_cast<double>(sample) * wanted[i];
            here += static_cast<double>(sample) * sample;
        }
        const double correlation =
            energy > 0 && here > 0 ? product / std::sqrt(energy * here) : 0.0;
        if (correlation > best.correlation)
            best = {static_cast<double>(at) / rate, correlation};
    }
    return best;
}

double amplitudeOf(double frequency, const std::vector<float> &piece) {
    double cosine = 0;
    double sine = 0;
    for (std::size_t i = 0; i < piece.size(); ++i) {
        const double angle = 2 * std::numbers::pi * frequency * static_cast<double>(i) / sourceRate;
        cosine += piece[i] * std::cos(angle);
        sine += piece[i] * std::sin(angle);
    }
    return piece.empty() ? 0.0 : 2.0 * std::hypot(cosine, sine) / static_cast<double>(piece.size());
}

} // namespace velmora::tests
