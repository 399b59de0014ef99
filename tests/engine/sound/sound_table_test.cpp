// What every form, rate, width and channel count measures: length, seeks, first and last samples
// against a decoder that is not ours. The numbers are written to sound_table.md in the build
// folder.

#include "midi_bytes.h"
#include "sound_testing.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <random>
#include <sstream>

namespace velmora::platform::sound {
namespace {

using namespace velmora::tests;

constexpr double seconds = 2.5;

bool isWhole() { return std::getenv("VELMORA_WHOLE_TABLE") != nullptr; }

class Table : public testing::Environment {
public:
    void row(const std::string &cells) { rows_ << cells << "\n"; }
    void TearDown() override {
        std::ofstream(VELMORA_SOUND_TABLE)
            << "| file | played by | length error ms | seek error ms | first | last |\n"
               "|---|---|---|---|---|---|\n"
            << rows_.str();
    }

private:
    std::ostringstream rows_;
};
Table *const table =
    static_cast<Table *>(testing::AddGlobalTestEnvironment(new Table)); // NOLINT: the framework's

bool run(const std::string &command) {
    return std::system((command + " </dev/null >/dev/null 2>&1").c_str()) == 0;
}

std::vector<float> firstChannel(const std::vector<float> &all, std::size_t channels) {
    std::vector<float> one;
    for (std::size_t i = 0; i + channels <= all.size(); i += channels)
        one.push_back(all[i]);
    return one;
}

// The first channel as another program decodes it.
std::vector<float> reference(const std::string &file, int channels) {
    const std::string command =
        "ffmpeg -nostdin -v error -i '" + file + "' -map a:0 -f f32le -c:a pcm_f32le - 2>/dev/null";
    std::vector<float> all;
    FILE *pipe = popen(command.c_str(), "r");
    if (pipe == nullptr)
        return all;
    std::vector<float> buffer(65536);
    while (const std::size_t got = fread(buffer.data(), sizeof(float), buffer.size(), pipe))
        all.insert(all.end(), buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(got));
    pclose(pipe);
    return firstChannel(all, static_cast<std::size_t>(std::max(channels, 1)));
}

std::vector<float> read(Reader &reader, std::size_t frames) {
    const auto channels = static_cast<std::size_t>(reader.channels());
    std::vector<float> all(frames * channels);
    std::size_t done = 0;
    while (done < frames) {
        const std::size_t got = reader.read(all.data() + done * channels, frames - done);
        if (got == 0)
            break;
        done += got;
    }
    all.resize(done * channels);
    return firstChannel(all, channels);
}

double difference(const std::vector<float> &a, std::size_t from, const std::vector<float> &b,
                  std::size_t at, std::size_t count) {
    double most = 0;
    for (std::size_t i = 0; i < count && from + i < a.size() && at + i < b.size(); ++i)
        most = std::max(most, std::abs(double{a[from + i]} - b[at + i]));
    return most;
}

// How far from its place the sound of a seek lies, in frames; a decoder begins with a moment that
// does not count.
std::int64_t shiftOf(const std::vector<float> &piece, const std::vector<float> &whole,
                     std::int64_t place) {
    constexpr std::size_t settling = 2000;
    std::int64_t best = 5000;
    double least = 1e9;
    for (std::int64_t step = 0; step < 5000; ++step) {
        for (const std::int64_t shift : {step, -step}) {
            const std::int64_t at = place + shift + static_cast<std::int64_t>(settling);
            if (at < 0)
                continue;
            const double now =
                difference(piece, settling, whole, static_cast<std::size_t>(at), 500);
            if (now < least - 1e-6) {
                least = now;
                best = shift;
            }
        }
        if (least < 0.02)
            break;
    }
    return std::abs(best);
}

struct Measured {
    bool isOurs = false;
    double toldMs = 0;
    double decodedMs = 0;
    double referenceMs = 0;
    double seekMs = 0;
    double first = 0;
    double last = 0;
};

Measured measure(const std::string &name, const std::string &file, bool seeks) {
    DecoderLibraries libraries{LibraryNames{}};
    Measured found;
    const auto reader = openReader(file, libraries, {}, false);
    found.isOurs = reader != nullptr;
    const auto other = reference(file, reader ? reader->channels() : 1);
    std::ostringstream cells;
    cells.precision(3);
    if (!reader) {
        table->row("| " + name + " | " + (other.size() > 1000 ? "the picture device" : "nobody") +
                   " | | | | |");
        return found;
    }
    const double rate = reader->rate();
    const double told = static_cast<double>(reader->frames());
    const auto ours = read(*reader, std::size_t{100'000'000} / reader->channels());
    found.toldMs = told * 1000 / rate;
    found.decodedMs = static_cast<double>(ours.size()) * 1000 / rate;
    found.referenceMs = static_cast<double>(other.size()) * 1000 / rate;
    const std::size_t common = std::min(ours.size(), other.size());
    found.first = difference(ours, 0, other, 0, 1000);
    found.last = common < 1000 ? 0 : difference(ours, common - 1000, other, common - 1000, 1000);
    for (const double part : {0.7, 0.1, 0.4}) {
        const auto place = static_cast<std::int64_t>(part * static_cast<double>(ours.size()));
        if (!seeks || !reader->seek(place))
            continue;
        const auto shift = shiftOf(read(*reader, 3000), ours, place);
        found.seekMs = std::max(found.seekMs, static_cast<double>(shift) * 1000 / rate);
    }
    cells << "| " << name << " | the sound device | " << found.toldMs - found.referenceMs << " | "
          << found.seekMs << " | " << found.first << " | " << found.last << " |";
    table->row(cells.str());
    return found;
}

const TemporaryFolder &folder() {
    static const TemporaryFolder theFolder;
    return theFolder;
}

struct Form {
    std::string ending;
    std::string coder; // words for ffmpeg
    std::vector<int> rates;
    bool isExact; // sample by sample
};

const std::vector<int> allRates = {8000,  11025, 16000,  22050,  32000,  44100, 48000,
                                   88200, 96000, 176400, 192000, 352800, 384000};
const std::vector<int> mpegRates = {8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000};

std::vector<Form> forms() {
    return {{"wav", "-c:a pcm_u8", allRates, true},
            {"wav", "-c:a pcm_s16le", allRates, true},
            {"wav", "-c:a pcm_s24le", allRates, true},
            {"wav", "-c:a pcm_s32le", allRates, true},
            {"wav", "-c:a pcm_f32le", allRates, true},
            {"aiff", "-c:a pcm_s16be", allRates, true},
            {"aiff", "-c:a pcm_s24be", allRates, true},
            {"au", "-c:a pcm_s16be", allRates, true},
            {"flac", "-c:a flac -sample_fmt s16", allRates, true},
            {"flac", "-c:a flac -sample_fmt s32", allRates, true},
            {"ogg", "-c:a libvorbis -q:a 5", {8000, 22050, 44100, 48000, 96000, 192000}, false},
            {"opus", "-c:a libopus -b:a 96k", {48000}, false},
            {"mp3", "-c:a libmp3lame -b:a 64k", mpegRates, false},
            {"mp3", "-c:a libmp3lame -q:a 4", mpegRates, false},
            {"mp3", "-c:a libmp3lame -q:a 4 -write_xing 0", mpegRates, false},
            {"mp3", "-c:a libmp3lame -b:a 64k -write_xing 0", mpegRates, false},
            {"mp2", "-c:a mp2", {16000, 22050, 24000, 32000, 44100, 48000}, false}};
}

std::string make(const Form &form, int rate, int channels) {
    const std::string file = folder().path("made." + form.ending);
    const std::string rateText = std::to_string(rate);
    std::ostringstream command;
    command << "ffmpeg -nostdin -v error -y -f lavfi -i 'aevalsrc=0.5*sin(2*PI*(300*t+100*t*t)):s="
            << rateText << ":d=" << seconds << "' -ac " << channels << " " << form.coder << " '"
            << file << "'";
    return run(command.str()) ? file : "";
}

TEST(SoundTable, EveryFormIsAsLongAsAnotherDecoderMakesItAndSeeksLand) {
    for (const Form &form : forms()) {
        for (std::size_t i = 0; i < form.rates.size(); ++i) {
            const int rate = form.rates[i];
            // The ordinary run takes the lowest, the highest and the usual ones.
            if (!isWhole() && i != 0 && i + 1 != form.rates.size() && rate != 44100)
                continue;
            for (const int channels : {1, 2, 6}) {
                const bool mpeg = form.ending == "mp3" || form.ending == "mp2";
                if ((mpeg && channels > 2) || (!isWhole() && channels != (i == 0 ? 1 : 2)))
                    continue;
                const std::string name = form.ending + " " + form.coder.substr(5) + " " +
                                         std::to_string(rate) + " x" + std::to_string(channels);
                const std::string file = make(form, rate, channels);
                if (file.empty())
                    continue; // the coder does not make it
                const Measured found = measure(name, file, true);
                ASSERT_TRUE(found.isOurs) << name;
                EXPECT_NEAR(found.toldMs, found.referenceMs, 50) << name;
                EXPECT_NEAR(found.toldMs, found.decodedMs, 1) << name;
                EXPECT_LT(found.seekMs, 30) << name;
                if (form.isExact) {
                    EXPECT_LT(found.first, 1e-6) << name;
                    EXPECT_LT(found.last, 1e-6) << name;
                }
            }
        }
    }
}

Bytes withId3(std::size_t size, const Bytes &sound) {
    Bytes tag = {'I', 'D', '3', 4, 0, 0};
    for (int i = 3; i >= 0; --i)
        tag.push_back(static_cast<std::uint8_t>(size >> (7 * i) & 0x7F));
    tag.resize(10 + size, 0x41);
    append(tag, sound);
    return tag;
}

Bytes put(Bytes into, std::size_t at, const Bytes &what) {
    into.insert(into.begin() + static_cast<std::ptrdiff_t>(at), what.begin(), what.end());
    return into;
}

TEST(SoundTable, OddFilesArePlayedByWhomeverTheyArePlayedElsewhere) {
    std::mt19937 random(4);
    Bytes junk(5000);
    for (auto &byte : junk)
        byte = static_cast<std::uint8_t>(random());
    for (const Form &form : forms()) {
        if (!isWhole() && form.ending == "wav" && form.coder != "-c:a pcm_s16le")
            continue;
        const bool has44 =
            std::find(form.rates.begin(), form.rates.end(), 44100) != form.rates.end();
        const std::string made = make(form, has44 ? 44100 : form.rates.back(), 2);
        ASSERT_FALSE(made.empty()) << form.coder;
        const Bytes whole = readFile(made);
        std::vector<std::pair<std::string, Bytes>> odd = {
            {"junk before", put(whole, 0, junk)},
            {"junk behind", put(whole, whole.size(), junk)},
            {"junk between", put(whole, whole.size() / 2, junk)},
            {"joined", put(whole, whole.size(), whole)}};
        if (form.ending == "mp3" || form.ending == "mp2" || form.ending == "flac")
            odd.emplace_back("behind a tag of 50 MB", withId3(50'000'000, whole));
        if (form.ending == "mp3" || form.ending == "mp2")
            odd.emplace_back("tag in the middle", put(whole, whole.size(), withId3(3000, whole)));
        const std::size_t step = isWhole() ? 1024 : whole.size() / 4 + 1;
        for (std::size_t size = step; size < whole.size(); size += step)
            odd.emplace_back(
                "cut at " + std::to_string(size),
                Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
        for (const auto &[what, bytes] : odd) {
            const std::string name = form.ending + " " + form.coder.substr(5) + ", " + what;
            const Measured found = measure(name, folder().write("odd", bytes), false);
            // Of a coder's page that is lost in junk the rest may be past decoding for anybody.
            const bool othersStopThere = std::abs(found.decodedMs - found.referenceMs) < 50;
            if (found.isOurs && !othersStopThere) {
                EXPECT_NEAR(found.toldMs, found.decodedMs, 50) << name;
            }
        }
    }
}

} // namespace
} // namespace velmora::platform::sound
