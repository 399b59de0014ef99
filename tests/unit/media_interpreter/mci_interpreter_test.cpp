#include "platform/backends/media/mci_interpreter.h"

#include "fake_devices.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sys/stat.h>

namespace velmora::tests {
namespace {

using platform::MciAnswer;
using testing::ElementsAre;
using testing::IsEmpty;

class Interpreter : public testing::Test {
protected:
    Interpreter() {
        std::string pattern = (std::filesystem::temp_directory_path() / "mciXXXXXX").string();
        folder_ = mkdtemp(pattern.data());
        write("song.mp3", "\xFF\xFB\x90\x64");
        write("film.avi", std::string("RIFF\0\0\0\0AVI LIST", 16));
        make(sound_, picture_);
    }
    ~Interpreter() override { std::filesystem::remove_all(folder_); }

    // Null media: openers that refuse.
    void make(std::shared_ptr<FakeMedium> sound, std::shared_ptr<FakeMedium> picture) {
        mci_ = std::make_unique<MciInterpreter>(
            std::make_unique<FakeOpener>("sound", log_, std::move(sound)),
            std::make_unique<FakeOpener>("picture", log_, std::move(picture)));
    }

    std::string write(const std::string &name, const std::string &bytes) {
        const std::string path = folder_ / name;
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }

    std::u16string pathOf(const std::string &name) { return fromAscii(folder_ / name); }

    static std::u16string fromAscii(const std::string &text) { return {text.begin(), text.end()}; }

    std::uint32_t errorOf(const std::u16string &command) {
        const MciAnswer answer = mci_->mciSendStringA(command, 80);
        if (answer.error != 0)
            EXPECT_EQ(answer.text, u"");
        return answer.error;
    }

    std::uint32_t open(const std::string &name, const std::u16string &more = u"") {
        return errorOf(u"open " + pathOf(name) + u" type MPEGVideo alias NOWMUSIC" + more);
    }

    std::u16string answerOf(const std::u16string &command, int size = 80) {
        const MciAnswer answer = mci_->mciSendStringA(command, size);
        EXPECT_EQ(answer.error, 0U);
        return answer.text;
    }

    std::filesystem::path folder_;
    std::shared_ptr<OpenLog> log_ = std::make_shared<OpenLog>();
    std::shared_ptr<FakeMedium> sound_ = std::make_shared<FakeMedium>();
    std::shared_ptr<FakeMedium> picture_ = std::make_shared<FakeMedium>();
    std::unique_ptr<MciInterpreter> mci_;
};

const std::vector<std::u16string> everyCommandButOpen{
    u"close NOWMUSIC",
    u"play NOWMUSIC",
    u"pause NOWMUSIC",
    u"seek NOWMUSIC to 0",
    u"set NOWMUSIC time format milliseconds",
    u"setaudio NOWMUSIC volume to 500",
    u"setaudio  NOWMUSIC source to stereo",
    u"status NOWMUSIC mode",
    u"status NOWMUSIC position",
    u"status NOWMUSIC length",
    u"status NOWMUSIC window handle",
    u"put NOWMUSIC window at 0 0 10 10",
};

TEST_F(Interpreter, WithNothingOpenEveryCommandFailsWithAnEmptyAnswer) {
    for (const auto &command : everyCommandButOpen)
        EXPECT_EQ(errorOf(command), 263U);
}

TEST_F(Interpreter, WithAMediumOpenEveryCommandSucceeds) {
    for (const auto &command : everyCommandButOpen) {
        errorOf(u"close NOWMUSIC");
        ASSERT_EQ(open("song.mp3"), 0U);
        EXPECT_EQ(errorOf(command), 0U);
    }
}

TEST_F(Interpreter, EveryCommandToAnotherAliasFails) {
    ASSERT_EQ(open("song.mp3"), 0U);
    for (auto command : everyCommandButOpen) {
        command.replace(command.find(u"NOWMUSIC"), 8, u"OTHER");
        EXPECT_EQ(errorOf(command), 263U);
    }
    EXPECT_THAT(sound_->calls, IsEmpty());
    EXPECT_FALSE(sound_->isClosed);
}

TEST_F(Interpreter, TheAliasIsComparedWithoutRegardToCase) {
    ASSERT_EQ(open("song.mp3"), 0U);
    EXPECT_EQ(errorOf(u"play nowMusic"), 0U);
    EXPECT_THAT(sound_->calls, ElementsAre("play"));
}

TEST_F(Interpreter, OpenHandsOnPathTypeAndWindow) {
    write("My Song 100%.mp3", "x");
    std::u16string path = pathOf("My%20Song%20100%25.mp3");
    ASSERT_EQ(errorOf(u"open " + path + u" type mpegvideo alias A parent 77 style CHILD"), 0U);
    ASSERT_EQ(log_->requests.size(), 1U);
    EXPECT_EQ(log_->requests[0].path, folder_ / "My Song 100%.mp3");
    EXPECT_EQ(log_->requests[0].type, "MPEGVideo");
    EXPECT_TRUE(log_->requests[0].styleChild);
    EXPECT_EQ(log_->requests[0].parentWindow, 77U);
}

TEST_F(Interpreter, AFileNameThatIsNoTextOpensByItsBytes) {
    write("\xB8\xE8.mp3", "x");
    EXPECT_EQ(open("%B8%E8.mp3"), 0U);
    EXPECT_EQ(log_->requests.at(0).path, folder_ / "\xB8\xE8.mp3");
}

TEST_F(Interpreter, StyleChildAloneAsksForTheEnginesWindow) {
    ASSERT_EQ(open("film.avi", u" style child "), 0U);
    EXPECT_TRUE(log_->requests.at(0).styleChild);
    EXPECT_EQ(log_->requests.at(0).parentWindow, 0U);
}

TEST_F(Interpreter, ASoundGoesToTheSoundDeviceWithoutAskingTheOther) {
    ASSERT_EQ(open("song.mp3", u" style child "), 0U);
    EXPECT_THAT(log_->asked, ElementsAre("sound"));
}

TEST_F(Interpreter, AFilmGoesToThePictureDeviceWithoutAskingTheOther) {
    ASSERT_EQ(open("film.avi"), 0U);
    EXPECT_THAT(log_->asked, ElementsAre("picture"));
}

TEST_F(Interpreter, TheContentDecidesAndNotTheExtension) {
    write("film.mp3", std::string("RIFF\0\0\0\0AVI LIST", 16));
    write("song.avi", "\xFF\xFB\x90\x64");
    ASSERT_EQ(open("film.mp3"), 0U);
    errorOf(u"close NOWMUSIC");
    ASSERT_EQ(open("song.avi"), 0U);
    EXPECT_THAT(log_->asked, ElementsAre("picture", "sound"));
}

TEST_F(Interpreter, WhatTheSoundDeviceRefusesThePictureDeviceIsAskedFor) {
    make(nullptr, picture_);
    EXPECT_EQ(open("song.mp3"), 0U);
    EXPECT_THAT(log_->asked, ElementsAre("sound", "picture"));
}

TEST_F(Interpreter, WhatThePictureDeviceRefusesTheSoundDeviceIsAskedFor) {
    make(sound_, nullptr);
    EXPECT_EQ(open("film.avi"), 0U);
    EXPECT_THAT(log_->asked, ElementsAre("picture", "sound"));
}

TEST_F(Interpreter, WhatNoDevicePlaysFailsAndLeavesNothingOpen) {
    make(nullptr, nullptr);
    EXPECT_EQ(open("song.mp3"), 277U);
    EXPECT_EQ(errorOf(u"status NOWMUSIC length"), 263U);
}

TEST_F(Interpreter, AMissingDeviceIsPassedOver) {
    mci_ = std::make_unique<MciInterpreter>(
        nullptr, std::make_unique<FakeOpener>("picture", log_, picture_));
    EXPECT_EQ(open("song.mp3"), 0U);
    mci_ = std::make_unique<MciInterpreter>(nullptr, nullptr);
    EXPECT_EQ(open("song.mp3"), 277U);
}

// Takes all the time that an open has, and opens nothing.
class SlowOpener : public DeviceOpener {
public:
    std::unique_ptr<Device> open(const OpenRequest &request) override {
        while (std::chrono::steady_clock::now() < request.end)
            std::this_thread::yield();
        return nullptr;
    }
};

TEST_F(Interpreter, WhenTheTimeOfAnOpenIsOverNoFurtherDeviceIsAsked) {
    mci_ = std::make_unique<MciInterpreter>(std::make_unique<SlowOpener>(),
                                            std::make_unique<FakeOpener>("picture", log_, picture_),
                                            std::chrono::milliseconds(100));
    EXPECT_EQ(open("song.mp3"), 277U);
    EXPECT_THAT(log_->asked, ElementsAre());
    EXPECT_EQ(errorOf(u"status NOWMUSIC length"), 263U);
}

TEST_F(Interpreter, EachOpenIsToldWhenItsTimeIsOver) {
    const auto before = std::chrono::steady_clock::now();
    ASSERT_EQ(open("song.mp3"), 0U);
    EXPECT_GE(log_->requests[0].end, before + std::chrono::seconds(10));
    EXPECT_LE(log_->requests[0].end, std::chrono::steady_clock::now() + std::chrono::seconds(10));
}

TEST_F(Interpreter, AMissingFileAFolderAndAPipeFailBeforeAnyDeviceIsAsked) {
    ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(open("missing.mp3"), 275U);
    EXPECT_EQ(open(""), 275U);
    EXPECT_EQ(open("pipe"), 275U);
    EXPECT_EQ(errorOf(u"open /dev/zero type MPEGVideo alias A"), 275U);
    EXPECT_THAT(log_->asked, IsEmpty());
}

TEST_F(Interpreter, AShortPathThatDecodesToNothingFails) {
    EXPECT_EQ(open("song.mp3%"), 275U);
    EXPECT_EQ(open("song.mp3%00"), 275U);
}

TEST_F(Interpreter, AnUnknownDeviceTypeFails) {
    EXPECT_EQ(errorOf(u"open " + pathOf("song.mp3") + u" type RealPlayer alias A"), 263U);
    EXPECT_THAT(log_->asked, IsEmpty());
}

TEST_F(Interpreter, OpenFailsWhileTheAliasIsOpenAndLeavesItsMediumAlone) {
    ASSERT_EQ(open("song.mp3"), 0U);
    EXPECT_EQ(open("film.avi"), 289U);
    EXPECT_FALSE(sound_->isClosed);
    EXPECT_EQ(errorOf(u"play NOWMUSIC"), 0U);
    EXPECT_THAT(log_->asked, ElementsAre("sound"));
}

TEST_F(Interpreter, OpenFailsUnderASecondAliasToo) {
    ASSERT_EQ(open("song.mp3"), 0U);
    EXPECT_EQ(errorOf(u"open " + pathOf("film.avi") + u" type MPEGVideo alias OTHER"), 265U);
    EXPECT_FALSE(sound_->isClosed);
}

TEST_F(Interpreter, CloseEndsTheDeviceAndASecondCloseFails) {
    ASSERT_EQ(open("song.mp3"), 0U);
    EXPECT_EQ(errorOf(u"close NOWMUSIC"), 0U);
    EXPECT_TRUE(sound_->isClosed);
    EXPECT_EQ(errorOf(u"close NOWMUSIC"), 263U);
}

TEST_F(Interpreter, AfterACloseTheNextMediumOpensUnderTheSameAlias) {
    ASSERT_EQ(open("song.mp3"), 0U);
    ASSERT_EQ(errorOf(u"close NOWMUSIC"), 0U);
    ASSERT_EQ(open("film.avi"), 0U);
    EXPECT_EQ(errorOf(u"pause NOWMUSIC"), 0U);
    EXPECT_THAT(picture_->calls, ElementsAre("pause"));
}

TEST_F(Interpreter, TheEndOfTheInterpreterClosesTheMedium) {
    ASSERT_EQ(open("song.mp3"), 0U);
    mci_.reset();
    EXPECT_TRUE(sound_->isClosed);
}

TEST_F(Interpreter, EachCommandReachesTheDevice) {
    ASSERT_EQ(open("song.mp3"), 0U);
    errorOf(u"set NOWMUSIC time format milliseconds");
    errorOf(u"setaudio NOWMUSIC volume to 0");
    errorOf(u"play NOWMUSIC");
    errorOf(u"setaudio NOWMUSIC volume to 1000");
    errorOf(u"setaudio  NOWMUSIC source to stereo");
    errorOf(u"setaudio  NOWMUSIC source to left");
    errorOf(u"setaudio  NOWMUSIC source to right");
    errorOf(u"pause NOWMUSIC");
    errorOf(u"seek NOWMUSIC to 200000");
    errorOf(u"put NOWMUSIC window at 0 -1 730 525");
    EXPECT_THAT(sound_->calls, ElementsAre("volume 0", "play", "volume 1000", "stereo", "left",
                                           "right", "pause", "seek 200000", "put 0 -1 730 525"));
}

TEST_F(Interpreter, WhatTheDeviceRefusesFails) {
    ASSERT_EQ(open("song.mp3"), 0U);
    sound_->refuses = true;
    EXPECT_EQ(errorOf(u"play NOWMUSIC"), 262U);
    EXPECT_EQ(errorOf(u"pause NOWMUSIC"), 262U);
    EXPECT_EQ(errorOf(u"seek NOWMUSIC to 5"), 262U);
    EXPECT_EQ(errorOf(u"setaudio NOWMUSIC volume to 5"), 262U);
    EXPECT_EQ(errorOf(u"setaudio NOWMUSIC source to left"), 262U);
    EXPECT_EQ(errorOf(u"put NOWMUSIC window at 0 0 1 1"), 346U);
}

TEST_F(Interpreter, ASeekOutsideTheMediumNeverReachesTheDevice) {
    ASSERT_EQ(open("song.mp3"), 0U);
    EXPECT_EQ(errorOf(u"seek NOWMUSIC to -1"), 282U);
    EXPECT_EQ(errorOf(u"seek NOWMUSIC to 200001"), 282U);
    EXPECT_THAT(sound_->calls, IsEmpty());
}

TEST_F(Interpreter, AVolumeOutsideItsRangeNeverReachesTheDevice) {
    ASSERT_EQ(open("song.mp3"), 0U);
    EXPECT_EQ(errorOf(u"setaudio NOWMUSIC volume to -1"), 282U);
    EXPECT_EQ(errorOf(u"setaudio NOWMUSIC volume to 1001"), 282U);
    EXPECT_THAT(sound_->calls, IsEmpty());
}

TEST_F(Interpreter, ModesHaveTheirEnglishNames) {
    ASSERT_EQ(open("song.mp3"), 0U);
    const std::vector<std::pair<Mode, std::u16string>> names{{Mode::Stopped, u"stopped"},
                                                             {Mode::Playing, u"playing"},
                                                             {Mode::Paused, u"paused"},
                                                             {Mode::Seeking, u"seeking"}};
    for (const auto &[mode, name] : names) {
        sound_->mode = mode;
        EXPECT_EQ(answerOf(u"status NOWMUSIC mode", 255), name);
    }
}

TEST_F(Interpreter, NumbersAreAnsweredInDecimal) {
    ASSERT_EQ(open("song.mp3"), 0U);
    sound_->positionMs = 83456;
    sound_->lengthMs = 2147483647;
    sound_->windowHandle = 4294967295U;
    EXPECT_EQ(answerOf(u"status NOWMUSIC position"), u"83456");
    EXPECT_EQ(answerOf(u"status NOWMUSIC length"), u"2147483647");
    EXPECT_EQ(answerOf(u"status NOWMUSIC window handle"), u"4294967295");
    sound_->windowHandle = 0;
    EXPECT_EQ(answerOf(u"status NOWMUSIC window handle"), u"0");
}

TEST_F(Interpreter, AnAnswerIsCutToOneLessThanTheBuffer) {
    ASSERT_EQ(open("song.mp3"), 0U);
    EXPECT_EQ(answerOf(u"status NOWMUSIC mode", 8), u"stopped");
    EXPECT_EQ(answerOf(u"status NOWMUSIC mode", 7), u"stoppe");
    EXPECT_EQ(answerOf(u"status NOWMUSIC mode", 1), u"");
    EXPECT_EQ(answerOf(u"status NOWMUSIC mode", 0), u"");
    EXPECT_EQ(answerOf(u"status NOWMUSIC mode", -1), u"");
}

TEST_F(Interpreter, AQuestionAskedAgainIsAnsweredAsThingsAreThen) {
    const std::u16string question = u"status NOWMUSIC mode";
    EXPECT_NE(errorOf(question), 0U);
    ASSERT_EQ(open("song.mp3"), 0U);
    sound_->mode = Mode::Playing;
    EXPECT_EQ(answerOf(question), u"playing");
    sound_->mode = Mode::Paused;
    EXPECT_EQ(answerOf(question), u"paused");
    EXPECT_EQ(answerOf(question, 4), u"pau");
    ASSERT_EQ(errorOf(u"close NOWMUSIC"), 0U);
    EXPECT_NE(errorOf(question), 0U);
}

TEST_F(Interpreter, AnyNumberOfWordingsOfAQuestionIsAnswered) {
    ASSERT_EQ(open("song.mp3"), 0U);
    sound_->mode = Mode::Playing;
    sound_->lengthMs = 1234;
    for (int round = 0; round < 2; ++round) {
        for (std::size_t blanks = 1; blanks < 20; ++blanks) {
            const std::u16string gap(blanks, u' ');
            EXPECT_EQ(answerOf(u"status" + gap + u"NOWMUSIC mode"), u"playing");
            EXPECT_EQ(answerOf(u"status NOWMUSIC" + gap + u"length"), u"1234");
            EXPECT_NE(errorOf(u"status" + gap + u"OTHER mode"), 0U);
        }
    }
}

TEST_F(Interpreter, CommandsWithoutAnAnswerLeaveTheTextEmpty) {
    ASSERT_EQ(open("song.mp3"), 0U);
    EXPECT_EQ(answerOf(u"play NOWMUSIC"), u"");
    EXPECT_EQ(answerOf(u"setaudio NOWMUSIC volume to 5"), u"");
}

TEST_F(Interpreter, HostileTextsFailAndReachNoDevice) {
    ASSERT_EQ(open("song.mp3"), 0U);
    std::u16string withNul = u"play NOWMUSIC";
    withNul += u'\0';
    for (const std::u16string &text :
         {std::u16string(1'000'000, u' '), std::u16string(1'000'000, u'x'), withNul,
          u"play " + std::u16string(1'000'000, u'N'), std::u16string(u"\xD800 \xDC00"),
          u"seek NOWMUSIC to " + std::u16string(100'000, u'9'),
          std::u16string(u"play \"NOWMUSIC\""), std::u16string(u"play NOWMUSIC; close NOWMUSIC")})
        EXPECT_NE(errorOf(text), 0U);
    EXPECT_THAT(sound_->calls, IsEmpty());
    EXPECT_FALSE(sound_->isClosed);
}

TEST_F(Interpreter, RandomWordsOfTheLanguageNeverBreakIt) {
    const std::vector<std::u16string> words{u"open",      u"close",       u"play",
                                            u"pause",     u"seek",        u"set",
                                            u"setaudio",  u"status",      u"put",
                                            u"A",         u"to",          u"type",
                                            u"alias",     u"parent",      u"style",
                                            u"child",     u"window",      u"at",
                                            u"mode",      u"0",           u"-1",
                                            u"5",         u"volume",      u"source",
                                            u"left",      u"handle",      pathOf("song.mp3"),
                                            u"MPEGVideo", u"%",           u"time",
                                            u"format",    u"milliseconds"};
    std::mt19937 random(7);
    for (int round = 0; round < 20'000; ++round) {
        std::u16string text;
        for (unsigned count = random() % 8; count > 0; --count)
            text += words[random() % words.size()] + u' ';
        const MciAnswer answer = mci_->mciSendStringA(text, static_cast<int>(random() % 10));
        if (answer.error != 0)
            ASSERT_EQ(answer.text, u"");
    }
}

} // namespace
} // namespace velmora::tests
