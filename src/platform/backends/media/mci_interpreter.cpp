#include "platform/backends/media/mci_interpreter.h"

#include "base/numbers.h"
#include "base/text.h"
#include "platform/backends/media/medium_file.h"
#include "text/path_text.h"

#include <algorithm>
#include <array>
#include <type_traits>
#include <utility>

namespace velmora::platform::media {

namespace {

constexpr std::int32_t greatestVolume = 1000;

// Four items under one alias, and as many worded otherwise.
constexpr std::size_t questionsKept = 8;

std::u16string modeText(Mode mode) {
    switch (mode) {
    case Mode::Stopped:
        return u"stopped";
    case Mode::Playing:
        return u"playing";
    case Mode::Paused:
        return u"paused";
    case Mode::Seeking:
        return u"seeking";
    }
    return u"stopped";
}

std::u16string statusText(Device &device, StatusItem item) {
    switch (item) {
    case StatusItem::Mode:
        return modeText(device.mode());
    case StatusItem::Position:
        return decimal(device.positionMs());
    case StatusItem::Length:
        return decimal(device.lengthMs());
    case StatusItem::WindowHandle:
        return decimal(static_cast<std::int64_t>(device.windowHandle()));
    }
    return {};
}

// A buffer of `returnSize` characters holds one less and the end mark.
std::u16string cutToBuffer(std::u16string text, int returnSize) {
    const std::size_t capacity = returnSize > 0 ? static_cast<std::size_t>(returnSize) - 1 : 0;
    if (text.size() > capacity)
        text.resize(capacity);
    return text;
}

} // namespace

MciInterpreter::MciInterpreter(std::unique_ptr<DeviceOpener> sound,
                               std::unique_ptr<DeviceOpener> picture,
                               std::chrono::milliseconds openLimit)
    : sound_(std::move(sound)), picture_(std::move(picture)), openLimit_(openLimit) {}

MciInterpreter::~MciInterpreter() = default;

MciAnswer MciInterpreter::mciSendStringA(std::u16string_view command, int returnSize) {
    if (const Question *question = knownQuestion(command))
        return answer(isOpenAs(question->alias) ? act(question->asked)
                                                : Result{MciError::InvalidDeviceName, {}},
                      returnSize);
    MciCommand parsed;
    const MciError fault = parseMciCommand(command, parsed);
    if (fault != MciError::None)
        return {static_cast<std::uint32_t>(fault), {}};
    remember(command, parsed);
    Result result = std::visit(
        [&](const auto &action) -> Result {
            if constexpr (std::is_same_v<std::decay_t<decltype(action)>, OpenCommand>)
                return {open(action, parsed.alias), {}};
            else if (!isOpenAs(parsed.alias))
                return {MciError::InvalidDeviceName, {}};
            else
                return act(action);
        },
        parsed.action);
    return answer(std::move(result), returnSize);
}

MciAnswer MciInterpreter::answer(Result result, int returnSize) {
    if (result.error != MciError::None)
        return {static_cast<std::uint32_t>(result.error), {}};
    return {0, cutToBuffer(std::move(result.text), returnSize)};
}

const MciInterpreter::Question *MciInterpreter::knownQuestion(std::u16string_view command) const {
    const auto found = std::find_if(questions_.begin(), questions_.end(),
                                    [&](const Question &known) { return known.text == command; });
    return found == questions_.end() ? nullptr : &*found;
}

void MciInterpreter::remember(std::u16string_view command, const MciCommand &parsed) {
    const auto *status = std::get_if<StatusCommand>(&parsed.action);
    if (status != nullptr && questions_.size() < questionsKept)
        questions_.push_back({std::u16string(command), parsed.alias, *status});
}

bool MciInterpreter::isOpenAs(const std::u16string &alias) const {
    return device_ != nullptr && equalsIgnoringCase(alias, alias_);
}

MciError MciInterpreter::open(const OpenCommand &command, const std::u16string &alias) {
    if (isOpenAs(alias))
        return MciError::DuplicateAlias;
    if (device_ != nullptr)
        return MciError::DeviceOpen;
    const auto type = knownDeviceType(command.type);
    if (!type)
        return MciError::InvalidDeviceName;
    const auto path = decodeShortPath(command.shortPath);
    if (!path)
        return MciError::FileNotFound;
    const auto end = std::chrono::steady_clock::now() + openLimit_;
    const auto file = helper_.within(openLimit_, [path = *path] { return lookAtMedium(path); });
    if (!file)
        return MciError::CannotLoad;
    if (!file->isRegular)
        return MciError::FileNotFound;
    device_ = openWithSomeDevice({*path, *type, command.styleChild, command.parentWindow, end},
                                 file->beginning);
    if (device_ == nullptr)
        return MciError::CannotLoad;
    alias_ = alias;
    return MciError::None;
}

std::unique_ptr<Device> MciInterpreter::openWithSomeDevice(const OpenRequest &request,
                                                           std::string_view beginning) {
    std::array<DeviceOpener *, 2> openers{sound_.get(), picture_.get()};
    if (belongsToPictureDevice(beginning))
        std::swap(openers[0], openers[1]);
    for (DeviceOpener *opener : openers) {
        if (opener == nullptr || std::chrono::steady_clock::now() >= request.end)
            continue;
        if (auto device = opener->open(request))
            return device;
    }
    return nullptr;
}

MciInterpreter::Result MciInterpreter::act(const CloseCommand &) {
    device_.reset();
    alias_.clear();
    return {};
}

MciInterpreter::Result MciInterpreter::act(const PlayCommand &) {
    return {device_->play() ? MciError::None : MciError::DeviceRefused, {}};
}

MciInterpreter::Result MciInterpreter::act(const PauseCommand &) {
    return {device_->pause() ? MciError::None : MciError::DeviceRefused, {}};
}

MciInterpreter::Result MciInterpreter::act(const SeekCommand &command) {
    if (command.ms < 0 || command.ms > device_->lengthMs())
        return {MciError::OutOfRange, {}};
    return {device_->seek(command.ms) ? MciError::None : MciError::DeviceRefused, {}};
}

MciInterpreter::Result MciInterpreter::act(const SetTimeFormatCommand &) { return {}; }

MciInterpreter::Result MciInterpreter::act(const SetVolumeCommand &command) {
    if (command.level < 0 || command.level > greatestVolume)
        return {MciError::OutOfRange, {}};
    return {device_->setVolume(command.level) ? MciError::None : MciError::DeviceRefused, {}};
}

MciInterpreter::Result MciInterpreter::act(const SetChannelCommand &command) {
    return {device_->setChannel(command.channel) ? MciError::None : MciError::DeviceRefused, {}};
}

MciInterpreter::Result MciInterpreter::act(const StatusCommand &command) {
    return {MciError::None, statusText(*device_, command.item)};
}

MciInterpreter::Result MciInterpreter::act(const PutCommand &command) {
    const bool done = device_->putWindow(command.x, command.y, command.width, command.height);
    return {done ? MciError::None : MciError::NoWindow, {}};
}

} // namespace velmora::platform::media
