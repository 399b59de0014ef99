// Composes and renders the piece that comes with the player, "Harbour Lights": a slow waltz for
// plucked strings and a soft pad, about 48 seconds, as a WAV file with an ID3v1 tag behind it.
//
//   demo_piece OUT.wav
//
// Everything is computed here, so that the project carries no sound data of anybody else's. The
// same program gives the same bytes every time.

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <numbers>
#include <string>
#include <vector>

namespace {

constexpr int sampleRate = 44100;
constexpr double beatSeconds = 0.5; // 120 beats a minute, three to a bar
constexpr int bars = 32;
constexpr int channels = 2;

struct Stereo {
    std::vector<float> left, right;
    explicit Stereo(std::size_t frames) : left(frames), right(frames) {}
};

double frequencyOf(int midiNote) { return 440.0 * std::exp2((midiNote - 69) / 12.0); }

// Noise that is the same on every machine.
class Noise {
public:
    float next() {
        state_ = state_ * 1664525U + 1013904223U;
        return static_cast<float>(static_cast<std::int32_t>(state_)) / 2147483648.0F;
    }

private:
    std::uint32_t state_ = 20110817U;
};

void mix(Stereo &out, std::size_t frame, float sample, float pan) {
    if (frame >= out.left.size())
        return;
    out.left[frame] += sample * (1.0F - pan);
    out.right[frame] += sample * pan;
}

// A plucked string: a burst of noise running round a delay line that loses its edge each time.
void pluck(Stereo &out, Noise &noise, double atSeconds, int note, double seconds, float level,
           float pan) {
    const auto length = static_cast<std::size_t>(sampleRate / frequencyOf(note));
    std::vector<float> line(length);
    float last = 0;
    for (float &cell : line) {
        last = 0.55F * last + 0.45F * noise.next();
        cell = last;
    }
    const auto start = static_cast<std::size_t>(atSeconds * sampleRate);
    const auto frames = static_cast<std::size_t>(seconds * sampleRate);
    std::size_t at = 0;
    for (std::size_t i = 0; i < frames; ++i) {
        const std::size_t following = (at + 1) % length;
        const float sample = line[at];
        line[at] = 0.4985F * (line[at] + line[following]);
        at = following;
        const float release = i + 2000 > frames ? static_cast<float>(frames - i) / 2000.0F : 1.0F;
        mix(out, start + i, sample * level * release, pan);
    }
}

// A pad: three slightly detuned sines that swell and fade over the bar.
void pad(Stereo &out, double atSeconds, int note, double seconds, float level) {
    const auto start = static_cast<std::size_t>(atSeconds * sampleRate);
    const auto frames = static_cast<std::size_t>(seconds * sampleRate);
    const double turn = 2.0 * std::numbers::pi * frequencyOf(note) / sampleRate;
    for (std::size_t i = 0; i < frames; ++i) {
        const double swell =
            std::sin(std::numbers::pi * static_cast<double>(i) / static_cast<double>(frames));
        const double t = static_cast<double>(i);
        const double tone = std::sin(turn * t) + 0.5 * std::sin(turn * 1.003 * t) +
                            0.25 * std::sin(turn * 2.001 * t);
        mix(out, start + i, static_cast<float>(tone * swell) * level,
            0.5F + 0.2F * static_cast<float>(std::sin(t / 9000.0)));
    }
}

// One chord a bar, twice round eight bars with a turn at the end of each.
constexpr std::array<std::array<int, 3>, 8> chords = {{
    {50, 57, 62}, // D
    {45, 57, 61}, // A over A
    {47, 59, 62}, // B minor
    {43, 55, 59}, // G
    {50, 57, 66}, // D
    {52, 59, 64}, // E minor
    {45, 57, 64}, // A
    {50, 57, 62}, // D
}};

// The tune: note numbers on the beats of eight bars, 0 for a rest.
constexpr std::array<int, 24> tune = {74, 0,  76, 73, 0,  69, 71, 74, 0,  71, 69, 67,
                                      66, 69, 74, 76, 74, 71, 69, 0,  73, 74, 0,  0};

void compose(Stereo &out) {
    Noise noise;
    for (int bar = 0; bar < bars; ++bar) {
        const auto &chord = chords[static_cast<std::size_t>(bar) % chords.size()];
        const double at = bar * 3 * beatSeconds;
        for (const int note : chord)
            pad(out, at, note, 3 * beatSeconds + 0.4, 0.018F);
        pluck(out, noise, at, chord[0] - 12, 1.4, 0.50F, 0.45F);
        pluck(out, noise, at + beatSeconds, chord[1], 0.9, 0.22F, 0.62F);
        pluck(out, noise, at + 2 * beatSeconds, chord[2], 0.9, 0.22F, 0.62F);
        if (bar < 4 || bar >= bars - 2)
            continue; // the accompaniment opens and closes alone
        for (int beat = 0; beat < 3; ++beat) {
            const int note = tune[static_cast<std::size_t>((bar * 3 + beat) % 24)];
            if (note != 0)
                pluck(out, noise, at + beat * beatSeconds, note, 1.8, 0.42F, 0.35F);
        }
    }
}

void append(std::string &out, std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        out += static_cast<char>(value >> (8 * i));
}

std::string field(const char *text, std::size_t size) {
    std::string out(text);
    out.resize(size, '\0');
    return out;
}

std::string wavOf(const Stereo &sound) {
    const auto dataBytes = static_cast<std::uint32_t>(sound.left.size() * channels * 2);
    std::string out = "RIFF";
    append(out, 36 + dataBytes, 4);
    out += "WAVEfmt ";
    append(out, 16, 4);
    append(out, 1, 2);
    append(out, channels, 2);
    append(out, sampleRate, 4);
    append(out, sampleRate * channels * 2, 4);
    append(out, channels * 2, 2);
    append(out, 16, 2);
    out += "data";
    append(out, dataBytes, 4);
    for (std::size_t i = 0; i < sound.left.size(); ++i) {
        for (const float sample : {sound.left[i], sound.right[i]}) {
            const auto level = std::tanh(static_cast<double>(sample) * 1.4);
            append(out, static_cast<std::uint16_t>(std::lround(level * 28000.0)), 2);
        }
    }
    out += "TAG" + field("Harbour Lights", 30) + field("Velmora", 30) + field("Lanterns", 30) +
           field("2026", 4) + field("Composed by the program", 30);
    out += static_cast<char>(13);
    return out;
}

} // namespace

int main(int count, char **arguments) {
    if (count != 2) {
        std::fprintf(stderr, "usage: demo_piece OUT.wav\n");
        return 2;
    }
    Stereo sound(static_cast<std::size_t>((bars * 3 * beatSeconds + 1.5) * sampleRate));
    compose(sound);
    const std::string bytes = wavOf(sound);
    std::FILE *file = std::fopen(arguments[1], "wb");
    const bool written =
        file != nullptr && std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    const bool closed = file != nullptr && std::fclose(file) == 0;
    if (!written || !closed) {
        std::fprintf(stderr, "demo_piece: cannot write %s\n", arguments[1]);
        return 1;
    }
    return 0;
}
