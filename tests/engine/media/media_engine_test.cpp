// The command interpreter over both devices, as the program drives them: every kind of file, by
// command texts alone, on a private sound server that is recorded and a private display.

#include "picture_listening.h"
#include "xvfb_server.h"

#include "platform/backends/media/mci_interpreter.h"
#include "platform/backends/picture/picture.h"
#include "platform/backends/sound/device/sound.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <ostream>

namespace velmora::tests {
namespace {

using platform::MciAnswer;
using platform::media::MciInterpreter;

// What the program takes for the short path and the device type of a file.
std::u16string shortPathOf(const std::string &path) {
    std::u16string result;
    for (const char byte : path) {
        const auto value = static_cast<unsigned char>(byte);
        if (value > ' ' && value < 0x7F && value != '%' && value != '"') {
            result += static_cast<char16_t>(value);
        } else {
            const char *const digits = "0123456789ABCDEF";
            result += u'%';
            result += static_cast<char16_t>(digits[value / 16]);
            result += static_cast<char16_t>(digits[value % 16]);
        }
    }
    return result;
}

std::u16string typeOf(const std::string &path) {
    const std::string extension = path.substr(path.rfind('.') + 1);
    if (extension == "mid" || extension == "rmi")
        return u"Sequencer";
    return extension == "wav" ? u"Waveaudio" : u"MPEGVideo";
}

class MediaEngine : public PictureHeard {
protected:
    static void SetUpTestSuite() {
        PictureHeard::SetUpTestSuite();
        display_ = new XvfbServer;
        display_->exportToEnvironment();
    }
    static void TearDownTestSuite() {
        delete display_;
        PictureHeard::TearDownTestSuite();
    }

    MediaEngine()
        : parent_(x_.makeWindow(0, 0, 730, 525)),
          mci_(platform::sound::makeSoundOpener(), platform::makePictureOpener()) {}

    MciAnswer send(const std::u16string &command, int size = 80) {
        return mci_.mciSendStringA(command, size);
    }
    bool does(const std::u16string &command) { return send(command, 0).error == 0; }
    std::u16string mode() { return send(u"status NOWMUSIC mode", 255).text; }
    int number(const char16_t *item) {
        const std::u16string text = send(std::u16string(u"status NOWMUSIC ") + item).text;
        return std::atoi(std::string(text.begin(), text.end()).c_str());
    }
    int position() { return number(u"position"); }
    int length() { return number(u"length"); }

    std::uint32_t openAs(const std::string &path, const std::u16string &type) {
        const std::string parent = std::to_string(parent_);
        std::u16string command =
            u"open " + shortPathOf(path) + u" type " + type + u" alias NOWMUSIC";
        if (type == u"MPEGVideo")
            command += u" parent " + std::u16string(parent.begin(), parent.end()) + u" style CHILD";
        const std::uint32_t error = send(command, 0).error;
        send(u"set NOWMUSIC time format milliseconds", 0);
        return error;
    }
    std::uint32_t open(const std::string &file) { return openAs(mediaFile(file), typeOf(file)); }

    // Plays, and waits until a position is reached.
    bool playUpTo(int ms) {
        return does(u"play NOWMUSIC") && waitUntil([&] { return position() >= ms; });
    }
    static void passTime(int ms) {
        recorder_->waitForFrames(recorder_->frames() + recorder_->framesOf(ms), 30000);
    }

    // Whether the newest piece of the record is sound, and the same on both speakers.
    static bool isSameOnBothSpeakers() {
        const std::size_t count = recorder_->framesOf(50);
        const std::size_t from = recorder_->frames() - count;
        const auto left = recorder_->channel(0, from, count);
        return *std::max_element(left.begin(), left.end()) > loud &&
               left == recorder_->channel(1, from, count);
    }

    // Where the next sound to be heard lies in the source.
    SourceSound::Match seekAndHear(int target, int side) {
        return hearUntorn([&] { return seekAndHearOnce(target, side); });
    }
    SourceSound::Match seekAndHearOnce(int target, int side) {
        const std::string text = std::to_string(target);
        EXPECT_TRUE(does(u"seek NOWMUSIC to " + std::u16string(text.begin(), text.end())));
        EXPECT_EQ(mode(), u"paused");
        passTime(80);
        const std::size_t from = recorder_->frames();
        EXPECT_TRUE(does(u"play NOWMUSIC"));
        const std::size_t first = waitForSound(from);
        if (first == MonitorRecorder::frameNone)
            return {};
        return findFrom(first, 1, side, target / 1000.0, 0.3);
    }

    inline static XvfbServer *display_ = nullptr;
    XClient x_;
    xcb_window_t parent_;
    MciInterpreter mci_;
};

struct Kind {
    const char *file;
    bool isFilm = false;
    bool isMono = false;
    // Silence that the encoder put in front and no header tells of.
    double codecDelayMs = 0.0;
};

void PrintTo(const Kind &kind, std::ostream *out) { *out << kind.file; }

class EveryKind : public MediaEngine, public testing::WithParamInterface<Kind> {};

TEST_P(EveryKind, OpensStoppedWithItsLengthAndOnlyAFilmHasAPicture) {
    ASSERT_EQ(open(GetParam().file), 0U);
    EXPECT_EQ(mode(), u"stopped");
    EXPECT_EQ(position(), 0);
    EXPECT_NEAR(length(), 12'000, 50);
    EXPECT_EQ(does(u"put NOWMUSIC window at 0 0 730 525"), GetParam().isFilm);
    EXPECT_EQ(number(u"window handle") != 0, GetParam().isFilm);
    EXPECT_NE(open(GetParam().file), 0U); // the alias is taken
}

TEST_P(EveryKind, ASeekIsHeardAtItsPlace) {
    ASSERT_EQ(open(GetParam().file), 0U);
    for (const int target : {8040, 2515}) {
        const auto match = seekAndHear(target, GetParam().isMono ? 0 : 1);
        EXPECT_GT(match.correlation, 0.7) << target;
        EXPECT_NEAR(match.seconds * 1000.0 + GetParam().codecDelayMs, target, 50.0);
    }
    EXPECT_FALSE(does(u"seek NOWMUSIC to 12100"));
    EXPECT_EQ(mode(), u"playing");
}

TEST_P(EveryKind, OneSideIsHeardOnBothSpeakers) {
    ASSERT_EQ(open(GetParam().file), 0U);
    ASSERT_TRUE(playUpTo(200));
    ASSERT_TRUE(does(u"setaudio  NOWMUSIC source to left"));
    const auto match = seekAndHear(5030, 0);
    EXPECT_GT(match.correlation, 0.7);
    EXPECT_NEAR(match.seconds * 1000.0 + GetParam().codecDelayMs, 5030.0, 50.0);
    EXPECT_TRUE(isSameOnBothSpeakers());
}

TEST_P(EveryKind, AVolumeIsHeardAndACloseIsSilent) {
    ASSERT_EQ(open(GetParam().file), 0U);
    ASSERT_TRUE(does(u"setaudio NOWMUSIC volume to 0"));
    std::size_t from = recorder_->frames();
    ASSERT_TRUE(playUpTo(400));
    for (const float sample : heard(0, from, 300))
        ASSERT_LT(std::abs(sample), loud);
    ASSERT_TRUE(does(u"setaudio NOWMUSIC volume to 1000"));
    ASSERT_NE(waitForSound(recorder_->frames()), MonitorRecorder::frameNone);
    ASSERT_TRUE(does(u"close NOWMUSIC"));
    from = recorder_->frames();
    EXPECT_NE(recorder_->waitForSilence(loud, 60, from, 30000), MonitorRecorder::frameNone);
    const MciAnswer answer = send(u"status NOWMUSIC mode");
    EXPECT_NE(answer.error, 0U);
    EXPECT_EQ(answer.text, u"");
}

TEST_P(EveryKind, PlayAfterTheEndStartsOver) {
    ASSERT_EQ(open(GetParam().file), 0U);
    const std::string last = std::to_string(length() - 300);
    ASSERT_TRUE(does(u"seek NOWMUSIC to " + std::u16string(last.begin(), last.end())));
    ASSERT_TRUE(does(u"play NOWMUSIC"));
    ASSERT_TRUE(waitUntil([&] { return mode() == u"stopped"; }));
    EXPECT_EQ(position(), length());
    ASSERT_TRUE(does(u"play NOWMUSIC"));
    EXPECT_EQ(mode(), u"playing");
    EXPECT_TRUE(waitUntil([&] { return position() >= 100; }));
    EXPECT_LT(position(), 2000);
}

INSTANTIATE_TEST_SUITE_P(
    Files, EveryKind,
    testing::Values(Kind{"cbr.mp3"}, Kind{"vbr.mp3"}, Kind{"vbr_headless.mp3"},
                    Kind{"rate8000.mp3"}, Kind{"rate11025.mp3"}, Kind{"rate16000.mp3"},
                    Kind{"rate22050.mp3"}, Kind{"rate24000.mp3"}, Kind{"rate32000.mp3"},
                    Kind{"rate48000.mp3"}, Kind{"mono.mp3", false, true}, Kind{"bits8.wav"},
                    Kind{"source.wav"}, Kind{"bits24.wav"}, Kind{"bits32.wav"}, Kind{"float.wav"},
                    Kind{"sound.flac"}, Kind{"sound.ogg"}, Kind{"sound.opus"}, Kind{"sound.aiff"},
                    Kind{"sound.au"}, Kind{"sound.wma", false, false, 46.0}, Kind{"sound.tta"},
                    Kind{"sound.m4a"}, Kind{"film.mp4", true}, Kind{"film.flv", true},
                    Kind{"film.avi", true}, Kind{"film.mpg", true},
                    Kind{"film.wmv", true, false, 46.0}),
    [](const auto &kind) {
        std::string name = kind.param.file;
        std::replace(name.begin(), name.end(), '.', '_');
        return name;
    });

class EveryFilm : public EveryKind {};

// Far ahead, back, and to a place that the engine has read already.
TEST_P(EveryFilm, ASeekRightBehindAChangeOfTheSideIsHeardAtItsPlace) {
    ASSERT_EQ(open(GetParam().file), 0U);
    bool isLeft = false;
    for (const int target : {9650, 1210, 2130}) {
        ASSERT_TRUE(playUpTo(position() + 200));
        isLeft = !isLeft;
        ASSERT_TRUE(does(isLeft ? u"setaudio NOWMUSIC source to left"
                                : u"setaudio NOWMUSIC source to stereo"));
        const auto match = seekAndHear(target, isLeft ? 0 : 1);
        EXPECT_GT(match.correlation, 0.7) << target;
        EXPECT_NEAR(match.seconds * 1000.0 + GetParam().codecDelayMs, target, 50.0);
    }
}

INSTANTIATE_TEST_SUITE_P(Files, EveryFilm,
                         testing::Values(Kind{"film.mp4", true}, Kind{"film.flv", true},
                                         Kind{"film.avi", true}, Kind{"film.mpg", true},
                                         Kind{"film.wmv", true, false, 46.0}),
                         [](const auto &kind) { return std::string(kind.param.file).substr(5); });

class EveryMidi : public MediaEngine, public testing::WithParamInterface<const char *> {};

// Four notes, one a second.
TEST_P(EveryMidi, PlaysByTheSequencer) {
    if (!std::filesystem::exists("/usr/share/sounds/sf2/TimGM6mb.sf2"))
        GTEST_SKIP() << "no sound font here";
    ASSERT_EQ(open(GetParam()), 0U);
    EXPECT_EQ(mode(), u"stopped");
    EXPECT_NEAR(length(), 4000, 50);
    EXPECT_FALSE(does(u"put NOWMUSIC window at 0 0 730 525"));
    ASSERT_TRUE(does(u"seek NOWMUSIC to 2100"));
    passTime(80);
    const std::size_t from = recorder_->frames();
    ASSERT_TRUE(playUpTo(3200));
    EXPECT_NE(waitForSound(from), MonitorRecorder::frameNone);
    ASSERT_TRUE(waitUntil([&] { return mode() == u"stopped"; }));
    ASSERT_TRUE(does(u"play NOWMUSIC"));
    EXPECT_TRUE(waitUntil([&] { return position() >= 100; }));
    EXPECT_LT(position(), 2000);
}

INSTANTIATE_TEST_SUITE_P(Files, EveryMidi, testing::Values("sound.mid", "sound.rmi"),
                         [](const auto &file) { return std::string(file.param).substr(6); });

class WrongNames : public MediaEngine {
protected:
    WrongNames() {
        std::string pattern = (std::filesystem::temp_directory_path() / "namesXXXXXX").string();
        folder_ = mkdtemp(pattern.data());
    }
    ~WrongNames() override { std::filesystem::remove_all(folder_); }

    // A medium under another name, opened as the program would by that name.
    std::uint32_t openNamed(const std::string &file, const std::string &name) {
        std::filesystem::copy_file(mediaFile(file), folder_ / name);
        return openAs(folder_ / name, typeOf(name));
    }

    std::filesystem::path folder_;
};

TEST_F(WrongNames, TheContentDecidesWhichReaderTakesAFile) {
    for (const auto &[file, name] : {std::pair{"film.mp4", "a.mp3"},
                                     {"film.mpg", "b.mp3"},
                                     {"film.avi", "c.wav"},
                                     {"cbr.mp3", "d.mp4"},
                                     {"cbr.mp3", "e.wav"},
                                     {"cbr.mp3", "f.mid"},
                                     {"source.wav", "g.mp3"},
                                     {"source.wav", "h.avi"},
                                     {"sound.flac", "i.mp3"},
                                     {"sound.opus", "j.flac"},
                                     {"sound.tta", "k.wav"},
                                     {"sound.wma", "l.mp3"},
                                     {"sound.m4a", "m.mp3"},
                                     {"sound.aiff", "n.mpg"},
                                     {"film.wmv", "o.ogg"},
                                     {"film.flv", "p.wma"},
                                     {"sound.aac", "q.mp3"},
                                     {"sound.ogg", "no extension"},
                                     {"source.wav", "r.mid"}}) {
        ASSERT_EQ(openNamed(file, name), 0U) << name;
        EXPECT_NEAR(length(), 12'000, 50) << name;
        EXPECT_TRUE(playUpTo(150)) << name;
        ASSERT_TRUE(does(u"close NOWMUSIC"));
    }
}

TEST_F(WrongNames, AFilmUnderTheNameOfASoundShowsItsPicture) {
    ASSERT_EQ(openNamed("film.mpg", "film.mp3"), 0U);
    EXPECT_TRUE(does(u"put NOWMUSIC window at 0 0 730 525"));
    EXPECT_NE(number(u"window handle"), 0);
}

TEST_F(WrongNames, WhatIsNoMediumFailsUnderEveryName) {
    for (const char *file : {"empty.mp4", "text.mp4", "random.mp4", "list.mp4"}) {
        for (const char *ending : {".mp3", ".wav", ".mid", ".avi", ".ogg", ".wma"}) {
            EXPECT_NE(openNamed(file, file + std::string(ending)), 0U) << file << ending;
            EXPECT_EQ(length(), 0);
        }
    }
}

TEST_F(WrongNames, NamesOfEveryKindOfByteOpen) {
    int opened = 0;
    for (const std::string name :
         {"My Song (1).mp3", "100%.mp3", "\"quoted\".mp3", "\xE6\xAD\x8C.mp3", "\xB8\xE8.mp3",
          "a\nb.mp3", "type x alias y.mp3"}) {
        ASSERT_EQ(openNamed("cbr.mp3", name), 0U) << testing::PrintToString(name);
        EXPECT_NEAR(length(), 12'000, 50);
        ASSERT_TRUE(does(u"close NOWMUSIC"));
        ++opened;
    }
    EXPECT_EQ(opened, 7);
}

} // namespace
} // namespace velmora::tests
