#include "tests/fakes/fake_media.h"

#include "base/numbers.h"
#include "base/text.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace velmora::fakes {

using platform::MciAnswer;
using Words = std::vector<std::u16string>;

namespace {

const MciAnswer failed{263, {}}; // "not an open device", as good as any other number

Words wordsOf(std::u16string_view command) {
    Words words = split(command, u' ');
    words.erase(std::remove(words.begin(), words.end(), u""), words.end());
    return words;
}

bool is(const Words &words, std::size_t at, std::u16string_view word) {
    return at < words.size() && equalsIgnoringCase(words[at], word);
}

} // namespace

FakeMedia::~FakeMedia() {
    for (const auto &[command, answer] : once_)
        ADD_FAILURE() << "scripted answer never asked for: " << toUtf8(command);
}

void FakeMedia::addMedium(std::u16string_view shortPath, std::int32_t lengthMs, bool picture) {
    media_[std::u16string(shortPath)] = {lengthMs, picture};
}

void FakeMedia::removeMedium(std::u16string_view shortPath) {
    media_.erase(std::u16string(shortPath));
}

void FakeMedia::answerAlways(std::u16string_view command, MciAnswer answer) {
    always_[std::u16string(command)] = std::move(answer);
}

void FakeMedia::answerOnce(std::u16string_view command, MciAnswer answer) {
    once_.emplace_back(command, std::move(answer));
}

void FakeMedia::answerAsUsual(std::u16string_view command) {
    always_.erase(std::u16string(command));
}

void FakeMedia::advance(std::int32_t ms) {
    if (!medium_ || mode_ != u"playing")
        return;
    position_ = std::min(position_ + ms, medium_->lengthMs);
    if (position_ == medium_->lengthMs)
        mode_ = u"stopped";
}

void FakeMedia::reachEnd() {
    if (medium_)
        advance(medium_->lengthMs);
}

std::vector<std::u16string> FakeMedia::texts() const {
    std::vector<std::u16string> result;
    for (const Command &command : commands_)
        result.push_back(command.text);
    return result;
}

std::vector<std::u16string> FakeMedia::actions() const {
    std::vector<std::u16string> result;
    for (const Command &command : commands_)
        if (!startsWith(command.text, u"status"))
            result.push_back(command.text);
    return result;
}

std::size_t FakeMedia::count(std::u16string_view text) const {
    return static_cast<std::size_t>(std::count_if(
        commands_.begin(), commands_.end(),
        [&](const Command &command) { return command.text == text; }));
}

MciAnswer FakeMedia::mciSendStringA(std::u16string_view command, int returnSize) {
    commands_.push_back({std::u16string(command), returnSize});
    MciAnswer answer;
    const auto once = std::find_if(once_.begin(), once_.end(),
                                   [&](const auto &row) { return row.first == command; });
    const auto always = always_.find(std::u16string(command));
    if (once != once_.end()) {
        answer = once->second;
        once_.erase(once);
    } else if (always != always_.end()) {
        answer = always->second;
    } else if (!failing_.empty() && startsWith(command, failing_)) {
        answer = failed;
    } else {
        answer = perform(wordsOf(command));
    }
    if (answer.error != 0 || returnSize <= 0)
        answer.text.clear();
    else if (answer.text.size() >= static_cast<std::size_t>(returnSize))
        answer.text.resize(static_cast<std::size_t>(returnSize) - 1);
    return answer;
}

MciAnswer FakeMedia::perform(const Words &words) {
    if (is(words, 0, u"open"))
        return open(words);
    if (!medium_ || words.size() < 2)
        return failed;
    if (is(words, 0, u"close")) {
        medium_.reset();
        path_.clear();
        mode_.clear();
        return {};
    }
    if (is(words, 0, u"play")) {
        if (position_ >= medium_->lengthMs)
            position_ = 0;
        mode_ = u"playing";
        return {};
    }
    if (is(words, 0, u"pause")) {
        mode_ = u"paused";
        return {};
    }
    if (is(words, 0, u"seek"))
        return seek(words);
    if (is(words, 0, u"status"))
        return status(words);
    if (is(words, 0, u"setaudio"))
        return setAudio(words);
    if (is(words, 0, u"set"))
        return is(words, 2, u"time") && is(words, 4, u"milliseconds") ? MciAnswer{} : failed;
    if (is(words, 0, u"put"))
        return medium_->picture && words.size() == 8 ? MciAnswer{} : failed;
    return failed;
}

MciAnswer FakeMedia::open(const Words &words) {
    if (medium_ || words.size() < 6 || !is(words, 2, u"type") || !is(words, 4, u"alias"))
        return failed;
    const auto found = media_.find(words[1]);
    if (found == media_.end())
        return failed;
    medium_ = found->second;
    path_ = words[1];
    mode_ = u"stopped";
    source_ = u"stereo";
    position_ = 0;
    volume_ = 1000;
    return {};
}

MciAnswer FakeMedia::seek(const Words &words) {
    const auto target = words.size() == 4 ? strictInt32(words[3]) : std::nullopt;
    if (!target || *target < 0 || *target > medium_->lengthMs)
        return failed;
    position_ = *target;
    mode_ = u"paused";
    return {};
}

MciAnswer FakeMedia::status(const Words &words) const {
    if (is(words, 2, u"mode"))
        return {0, mode_};
    if (is(words, 2, u"position"))
        return {0, decimal(position_)};
    if (is(words, 2, u"length"))
        return {0, decimal(medium_->lengthMs)};
    if (is(words, 2, u"window") && is(words, 3, u"handle"))
        return {0, decimal(medium_->picture ? static_cast<std::int64_t>(windowHandle) : 0)};
    return failed;
}

MciAnswer FakeMedia::setAudio(const Words &words) {
    if (words.size() != 5 || !is(words, 3, u"to"))
        return failed;
    if (is(words, 2, u"volume")) {
        const auto level = strictInt32(words[4]);
        if (!level || *level < 0 || *level > 1000)
            return failed;
        volume_ = *level;
        return {};
    }
    if (is(words, 2, u"source")) {
        source_ = words[4];
        return {};
    }
    return failed;
}

void FakeWaveOut::addDevice(std::u16string_view name) {
    platform::WaveOutCaps caps;
    caps.driverVersion = 0x1001;
    caps.productName = name;
    caps.formats = 0xFFF;
    caps.channels = 2;
    caps.support = 4 | 8;
    devices.push_back(std::move(caps));
}

std::uint32_t FakeWaveOut::waveOutGetNumDevs() {
    ++countQueries;
    return static_cast<std::uint32_t>(devices.size());
}

std::uint32_t FakeWaveOut::waveOutGetDevCapsA(std::uint32_t device, platform::WaveOutCaps &caps,
                                              std::uint32_t recordSize) {
    constexpr std::uint32_t badDevice = 2;
    capsQueries.emplace_back(device, recordSize);
    if (capsError != 0)
        return capsError;
    if (device >= devices.size())
        return badDevice;
    caps = devices[device];
    return 0;
}

} // namespace velmora::fakes
