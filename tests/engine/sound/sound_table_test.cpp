// What every form, rate, width and channel count measures: length, seeks, first and last samples
// against decoders that are not ours. The numbers are written to sound_table.md in the build
// folder.

#include "odd_sounds.h"
#include "platform/backends/picture/picture.h"

#include <cstdlib>
#include <future>
#include <gtest/gtest.h>
#include <map>
#include <sstream>

namespace velmora::platform::sound {
namespace {

using namespace velmora::tests;

constexpr double seconds = 2.5;

// The ordinary run takes some rates and cuts of each form, and of some forms no odd ones; under the
// sanitizers fewer.
#ifdef VELMORA_SANITIZED
constexpr bool isSanitized = true; // everything lasts many times as long
#else
constexpr bool isSanitized = false;
#endif

class Table : public testing::Environment {
public:
    void row(const std::string &cells) { rows_ << cells << "\n"; }
    void TearDown() override {
        std::ofstream(VELMORA_SOUND_TABLE)
            << "| file | played by | told ms | length error ms | decoded less told ms | seek error "
               "ms | first | last | beside another decoder | remark |\n"
               "|---|---|---|---|---|---|---|---|---|---|\n"
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

// The first channel of what a command puts out as 32-bit floats.
std::vector<float> soundOf(const std::string &command, int channels) {
    std::vector<float> all;
    FILE *pipe = popen(("{ " + command + "; } 2>/dev/null </dev/null").c_str(), "r");
    if (pipe == nullptr)
        return all;
    std::vector<float> buffer(65536);
    while (const std::size_t got = fread(buffer.data(), sizeof(float), buffer.size(), pipe))
        all.insert(all.end(), buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(got));
    pclose(pipe);
    return firstChannel(all, static_cast<std::size_t>(std::max(channels, 1)));
}

// As ours has it, so that a wrong rate is a wrong length; what is so already, it leaves alone.
std::vector<float> soundByFfmpeg(const std::string &file, int channels, int rate) {
    return soundOf("ffmpeg -nostdin -v error -i '" + file + "' -map a:0 -ar " +
                       std::to_string(rate) + " -ac " + std::to_string(channels) +
                       " -f f32le -c:a pcm_f32le -",
                   channels);
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
    bool isPictured = false; // by the picture device
    double toldMs = 0;
    double decodedMs = 0;
    double referenceMs = 0;
    double seekMs = 0;
    double first = 0;
    double last = 0;
    std::optional<double> otherMs; // by a third decoder
    double otherDifference = 0;
};

double seekError(Reader &reader, const std::vector<float> &whole) {
    std::int64_t most = 0;
    for (const double part : {0.7, 0.1, 0.4}) {
        const auto place = static_cast<std::int64_t>(part * static_cast<double>(whole.size()));
        if (reader.seek(place))
            most = std::max(most, shiftOf(readChannel(reader, 3000), whole, place));
    }
    return static_cast<double>(most) * 1000 / reader.rate();
}

// `other`: the words that make a third decoder put the file out; empty: none.
Measured measure(const std::string &file, bool seeks, const std::string &other = "") {
    constexpr std::size_t most = 60'000'000;
    DecoderLibraries libraries{LibraryNames{}};
    Measured found;
    const auto reader = openReader(file, libraries, {}, false);
    found.isOurs = reader != nullptr;
    const int rate = reader ? reader->rate() : 44100;
    const auto reference = soundByFfmpeg(file, reader ? reader->channels() : 1, rate);
    const auto ms = [&](std::size_t frames) { return static_cast<double>(frames) * 1000 / rate; };
    found.referenceMs = ms(reference.size());
    if (!reader)
        return found;
    found.toldMs = lengthMs(*reader);
    const auto ours = readChannel(*reader, most);
    found.decodedMs = ms(ours.size());
    const std::size_t common = std::min(ours.size(), reference.size());
    found.first = difference(ours, 0, reference, 0, 1000);
    if (common >= 1000)
        found.last = difference(ours, common - 1000, reference, common - 1000, 1000);
    if (seeks)
        found.seekMs = seekError(*reader, ours);
    if (!other.empty()) {
        const auto third = soundOf(other, reader->channels());
        found.otherMs = ms(third.size());
        found.otherDifference = difference(ours, 0, third, 0, ours.size());
    }
    return found;
}

// In the order of their numbers; two at a time.
template <class Work> std::vector<Measured> measureAll(std::size_t count, Work work) {
    std::vector<Measured> all(count);
    const auto every = [&](std::size_t from) {
        for (std::size_t i = from; i < count; i += 2)
            all[i] = work(i);
    };
    auto others = std::async(std::launch::async, every, 1);
    every(0);
    others.get();
    return all;
}

void keep(const std::string &name, const Measured &found, double expectedMs,
          const std::string &remark = "") {
    std::ostringstream cells;
    cells.precision(4);
    cells << "| " << name << " | "
          << (found.isOurs       ? "the sound device"
              : found.isPictured ? "the picture device"
                                 : "nobody")
          << " | ";
    if (found.isOurs) {
        cells << found.toldMs << " | " << found.toldMs - expectedMs << " | "
              << found.decodedMs - found.toldMs << " | " << found.seekMs << " | " << found.first
              << " | " << found.last << " | ";
        if (found.otherMs)
            cells << found.toldMs - *found.otherMs << " ms, " << found.otherDifference;
    } else {
        cells << "| | | | | | ";
    }
    table->row(cells.str() + " | " + remark + " |");
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
    std::string name() const { return ending + " " + coder.substr(5); }
    friend void PrintTo(const Form &form, std::ostream *out) { *out << form.name(); }
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
            {"opus", "-c:a libopus -b:a 96k", {8000, 12000, 16000, 24000, 48000}, false},
            {"mp3", "-c:a libmp3lame -b:a 64k", mpegRates, false},
            {"mp3", "-c:a libmp3lame -q:a 4", mpegRates, false},
            {"mp3", "-c:a libmp3lame -q:a 4 -write_xing 0", mpegRates, false},
            {"mp3", "-c:a libmp3lame -b:a 64k -write_xing 0", mpegRates, false},
            {"mp2", "-c:a mp2", {16000, 22050, 24000, 32000, 44100, 48000}, false}};
}

std::string make(const Form &form, int rate, int channels, const std::string &name) {
    const std::string file = folder().path(name + "." + form.ending);
    const std::string rateText = std::to_string(rate);
    std::ostringstream command;
    command << "ffmpeg -nostdin -v error -y -f lavfi -i 'aevalsrc=0.5*sin(2*PI*(300*t+100*t*t)):s="
            << rateText << ":d=" << seconds << "' -ac " << channels << " " << form.coder << " '"
            << file << "'";
    return run(command.str()) ? file : "";
}

// A third opinion, of a program that has its own decoders. (Of MPEG audio it leaves other pieces
// out at both ends, and Opus it does not know.)
std::string thirdDecoder(const Form &form, const std::string &file) {
    if (form.ending == "flac")
        return "flac -s -d -c '" + file + "' | sox -t wav - -t f32 -";
    if (form.isExact || form.ending == "ogg")
        return "sox '" + file + "' -t f32 -";
    return "";
}

struct Case {
    Form form;
    int rate = 0;
    int channels = 0;
    std::string name() const {
        return form.name() + " " + std::to_string(rate) + " x" + std::to_string(channels);
    }
};

std::vector<Case> cases() {
    std::vector<Case> all;
    for (const Form &form : forms()) {
        for (std::size_t i = 0; i < form.rates.size(); ++i) {
            const bool isFirst = i == 0;
            const bool isLast = i + 1 == form.rates.size();
            // The ordinary run takes the lowest and the highest, or one alone.
            const bool isTaken = isWholeRun() || (isSanitized ? isLast : isFirst || isLast);
            for (const int channels : {1, 2, 6}) {
                const bool mpeg = form.ending == "mp3" || form.ending == "mp2";
                if (isTaken && (!mpeg || channels <= 2) &&
                    (isWholeRun() || channels == (isFirst ? 1 : 2)))
                    all.push_back({form, form.rates[i], channels});
            }
        }
    }
    return all;
}

TEST(SoundTable, EveryFormIsAsLongAsOtherDecodersMakeItAndSeeksLand) {
    const auto all = cases();
    std::vector<std::string> files(all.size());
    const auto measured = measureAll(all.size(), [&](std::size_t i) {
        const Case &now = all[i];
        files[i] = make(now.form, now.rate, now.channels, "made" + std::to_string(i));
        if (files[i].empty())
            return Measured{};
        // The third is asked in one of the runs of each form.
        const bool asked = isWholeRun() || i == 0 || all[i - 1].form.name() != now.form.name();
        return measure(files[i], true, asked ? thirdDecoder(now.form, files[i]) : "");
    });
    int made = 0;
    for (std::size_t i = 0; i < all.size(); ++i) {
        const std::string name = all[i].name();
        const Measured &found = measured[i];
        if (files[i].empty())
            continue; // the coder does not make it
        ++made;
        std::filesystem::remove(files[i]);
        keep(name, found, found.referenceMs);
        EXPECT_TRUE(found.isOurs) << name;
        EXPECT_NEAR(found.toldMs, found.referenceMs, 50) << name;
        EXPECT_NEAR(found.toldMs, found.decodedMs, 1) << name;
        EXPECT_LT(found.seekMs, 30) << name;
        if (found.otherMs) {
            EXPECT_NEAR(found.toldMs, *found.otherMs, 1) << name;
            EXPECT_LT(found.otherDifference, all[i].form.isExact ? 1e-6 : 1e-3) << name;
        }
        if (all[i].form.isExact) {
            EXPECT_LT(found.first, 1e-6) << name;
            EXPECT_LT(found.last, 1e-6) << name;
        }
    }
    // A coder refuses some rates and channel counts, never most.
    EXPECT_GT(made, static_cast<int>(all.size() * 3 / 4));
}

// Odd files whose length is not the one that the others make of it, or that are not played though
// others do, and why that is right. A name stands for all that begin so.
const char *const lostPage = "the other pages tell the time of the one that is lost, but the "
                             "library of this form goes on without a gap";
const char *const anythingBehind = "behind the sound of this form there may be anything";
const char *const otherRate =
    "the rate is that of the file's header, as the form's own decoder has "
    "it, whatever one each frame tells";
const char *const noMark = "a form is known by its mark, never by the name of the file";
const std::map<std::string, std::string> deliberate = {
    {"opus libopus -b:a 96k, junk between", lostPage},
    {"opus libopus -b:a 96k, a chance header inside", lostPage},
    {"opus libopus -b:a 96k, a tag in the middle", lostPage},
    {"ogg libvorbis -q:a 5, end at no place", "no packet ends on such a page by its own words"},
    {"flac flac -sample_fmt s16, byte 0 wrong", noMark},
    {"flac flac -sample_fmt s16, byte 1 wrong", noMark},
    {"flac flac -sample_fmt s16, byte 2 wrong", noMark},
    {"flac flac -sample_fmt s16, byte 3 wrong", noMark},
    {"flac flac -sample_fmt s32, byte 0 wrong", noMark},
    {"flac flac -sample_fmt s32, byte 1 wrong", noMark},
    {"flac flac -sample_fmt s32, byte 2 wrong", noMark},
    {"flac flac -sample_fmt s32, byte 3 wrong", noMark},
    {"flac flac -sample_fmt s16, byte 19 wrong", otherRate},
    {"flac flac -sample_fmt s32, byte 19 wrong", otherRate},
    {"wav pcm_f32le, byte 22 wrong", "no server takes 253 channels"},
    {"au pcm_s16be, size halved", anythingBehind},
    {"au pcm_s16be, byte 10 wrong", anythingBehind}, // of the size
};

const std::string *whyDeliberate(const std::string &name) {
    const auto found = std::find_if(deliberate.begin(), deliberate.end(), [&](const auto &entry) {
        return name.starts_with(entry.first);
    });
    return found == deliberate.end() ? nullptr : &found->second;
}

bool isPicturesToo(const std::string &file) {
    PictureOptions options;
    options.audioOutput = "null";
    media::OpenRequest request;
    request.path = file;
    return makePictureOpener(options)->open(request) != nullptr;
}

void expectPlayed(const std::string &name, const OddSound &odd, const Measured &found,
                  double wholeMs) {
    constexpr double hearable = 30; // what is shorter is no piece
    const bool isWhole = odd.keepsTime && std::abs(found.toldMs - wholeMs) <= 50;
    const double expected = odd.times ? *odd.times * wholeMs
                            : isWhole ? wholeMs
                                      : found.referenceMs;
    const std::string *reason = whyDeliberate(name);
    keep(name, found, expected, reason ? *reason : "");
    if (reason || std::max(found.decodedMs, found.referenceMs) < hearable)
        return;
    if (found.isOurs)
        EXPECT_NEAR(found.toldMs, found.decodedMs, 50) << name;
    if (found.isOurs && expected > hearable)
        EXPECT_NEAR(found.toldMs, expected, 50) << name;
    else if (!found.isOurs)
        EXPECT_TRUE(found.isPictured) << name;
}

std::vector<Form> formsToSpoil() {
    std::vector<Form> all;
    for (const Form &form : forms()) {
        const bool isUsual = form.coder.find("s24") == std::string::npos &&
                             form.coder.find("s32") == std::string::npos &&
                             form.coder.find("_u8") == std::string::npos &&
                             form.coder.find("f32") == std::string::npos;
        if (isWholeRun() || (isUsual && !(isSanitized && form.ending == "mp2")))
            all.push_back(form);
    }
    return all;
}

class OddSounds : public testing::TestWithParam<Form> {};

TEST_P(OddSounds, HaveTheirLengthAndArePlayedByWhomeverTheyArePlayedElsewhere) {
    const Form &form = GetParam();
    const bool has44 = std::find(form.rates.begin(), form.rates.end(), 44100) != form.rates.end();
    const std::string made = make(form, has44 ? 44100 : form.rates.back(), 2, "whole");
    ASSERT_FALSE(made.empty()) << form.coder;
    const Bytes whole = readFile(made);
    const double wholeMs = measure(made, false).referenceMs;
    auto odd = oddSounds(form.ending, whole,
                         isWholeRun() ? OddSteps{} : OddSteps{whole.size() / 3 + 1, 40});
    if (isSanitized && !isWholeRun())
        odd.resize(std::min<std::size_t>(odd.size(), 6));
    std::vector<std::string> files(odd.size());
    auto measured = measureAll(odd.size(), [&](std::size_t i) {
        files[i] = folder().path("odd" + std::to_string(i) + "." + form.ending);
        writeOdd(files[i], odd[i]);
        return measure(files[i], false);
    });
    for (std::size_t i = 0; i < odd.size(); ++i) {
        if (!measured[i].isOurs)
            measured[i].isPictured = isPicturesToo(files[i]);
        expectPlayed(form.name() + ", " + odd[i].what, odd[i], measured[i], wholeMs);
        std::filesystem::remove(files[i]);
    }
}

std::string nameOfCase(const testing::TestParamInfo<Form> &info) {
    std::string name = info.param.name();
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(SoundTable, OddSounds, testing::ValuesIn(formsToSpoil()), nameOfCase);

} // namespace
} // namespace velmora::platform::sound
