#pragma once

// The command interpreter: media commands in, one open device behind them.

#include "base/within_time.h"
#include "platform/backends/media/device.h"
#include "platform/backends/media/mci_command.h"
#include "platform/contracts/media.h"

#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::platform::media {

// Commands, answers and errors are those of platform/media.h; the error numbers are those of
// mci_errors.h.
//
// What "open" does beyond the text: the path must lead to a regular file (nothing else is ever
// opened), and the devices are asked in turn, the sound device first unless the file begins like
// something for the picture device. The device type takes no part in the choice. The first device
// that opens the file has it. A disk that does not answer makes an open fail when its time is over,
// and no further device is asked.
class MciInterpreter : public MediaControl {
public:
    // Either opener may be null: a player without that kind of device.
    MciInterpreter(std::unique_ptr<DeviceOpener> sound, std::unique_ptr<DeviceOpener> picture,
                   std::chrono::milliseconds openLimit = std::chrono::seconds(10));
    ~MciInterpreter() override;

    MciAnswer mciSendStringA(std::u16string_view command, int returnSize) override;

private:
    struct Result {
        MciError error = MciError::None;
        std::u16string text;
    };

    // A question as it was worded. The player asks the same few with every tick of every window, so
    // that each wording is taken apart once only.
    struct Question {
        std::u16string text;
        std::u16string alias;
        StatusCommand asked;
    };

    static MciAnswer answer(Result result, int returnSize);
    const Question *knownQuestion(std::u16string_view command) const;
    void remember(std::u16string_view command, const MciCommand &parsed);

    MciError open(const OpenCommand &command, const std::u16string &alias);
    std::unique_ptr<Device> openWithSomeDevice(const OpenRequest &request,
                                               std::string_view beginning);
    bool isOpenAs(const std::u16string &alias) const;

    Result act(const CloseCommand &command);
    Result act(const PlayCommand &command);
    Result act(const PauseCommand &command);
    Result act(const SeekCommand &command);
    Result act(const SetTimeFormatCommand &command);
    Result act(const SetVolumeCommand &command);
    Result act(const SetChannelCommand &command);
    Result act(const StatusCommand &command);
    Result act(const PutCommand &command);

    std::unique_ptr<DeviceOpener> sound_;
    std::unique_ptr<DeviceOpener> picture_;
    std::chrono::milliseconds openLimit_;
    TimedHelper helper_;   // asks the disk
    std::u16string alias_; // of the open device
    std::unique_ptr<Device> device_;
    std::vector<Question> questions_;
};

} // namespace velmora::platform::media
