#pragma once

// A recording media engine. By itself it behaves as the contract says over media that the test adds
// (open, play, pause, seek, status ... of one device); a test may script any answer instead.

#include "platform/contracts/media.h"

#include <deque>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace velmora::fakes {

class FakeMedia : public platform::MediaControl {
public:
    struct Medium {
        std::int32_t lengthMs = 60'000;
        bool picture = false;
    };
    // What one command was sent with.
    struct Command {
        std::u16string text;
        int returnSize;
        friend bool operator==(const Command &, const Command &) = default;
    };

    ~FakeMedia() override;

    // A medium that opens, by the path in the open command (the short path).
    void addMedium(std::u16string_view shortPath, std::int32_t lengthMs = 60'000,
                   bool picture = false);
    void removeMedium(std::u16string_view shortPath);

    // Answers every command of exactly this text, until taken back by `answerAsUsual`.
    void answerAlways(std::u16string_view command, platform::MciAnswer answer);
    // Answers the next such command. Never asked for: fails the test.
    void answerOnce(std::u16string_view command, platform::MciAnswer answer);
    void answerAsUsual(std::u16string_view command);
    // Every command that begins so fails, until the empty text takes it back.
    void failBeginningWith(std::u16string_view beginning) { failing_ = beginning; }

    // --- the device's state, as a test reads or moves it ---
    bool isOpen() const { return medium_.has_value(); }
    const std::u16string &openPath() const { return path_; }
    const std::u16string &mode() const { return mode_; }
    std::int32_t positionMs() const { return position_; }
    std::int32_t volume() const { return volume_; }
    const std::u16string &source() const { return source_; }
    // Plays on by so much; reaching the end stops the medium there.
    void advance(std::int32_t ms);
    void reachEnd();
    void setMode(std::u16string_view mode) { mode_ = mode; }
    std::uintptr_t windowHandle = 0x5001; // of an open medium with a picture

    // --- what was sent, in order ---
    const std::vector<Command> &commands() const { return commands_; }
    std::vector<std::u16string> texts() const;
    // The commands without those that begin with "status".
    std::vector<std::u16string> actions() const;
    std::size_t count(std::u16string_view text) const;
    void clearCommands() { commands_.clear(); }

    platform::MciAnswer mciSendStringA(std::u16string_view command, int returnSize) override;

private:
    platform::MciAnswer perform(const std::vector<std::u16string> &words);
    platform::MciAnswer open(const std::vector<std::u16string> &words);
    platform::MciAnswer status(const std::vector<std::u16string> &words) const;
    platform::MciAnswer seek(const std::vector<std::u16string> &words);
    platform::MciAnswer setAudio(const std::vector<std::u16string> &words);

    std::map<std::u16string, Medium> media_;
    std::map<std::u16string, platform::MciAnswer> always_;
    std::deque<std::pair<std::u16string, platform::MciAnswer>> once_;
    std::u16string failing_;
    std::vector<Command> commands_;

    std::optional<Medium> medium_;
    std::u16string path_;
    std::u16string mode_;
    std::u16string source_ = u"stereo";
    std::int32_t position_ = 0;
    std::int32_t volume_ = 1000;
};

class FakeWaveOut : public platform::WaveOut {
public:
    std::vector<platform::WaveOutCaps> devices;
    std::uint32_t capsError = 0; // what waveOutGetDevCapsA answers when not 0

    // What was asked.
    int countQueries = 0;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> capsQueries; // device, record size

    // A device with plausible capabilities.
    void addDevice(std::u16string_view name = u"Null Output");

    std::uint32_t waveOutGetNumDevs() override;
    std::uint32_t waveOutGetDevCapsA(std::uint32_t device, platform::WaveOutCaps &caps,
                                     std::uint32_t recordSize) override;
};

} // namespace velmora::fakes
