#pragma once

// The texts of the command interpreter taken apart. Pure: no device and no file is touched.

#include "platform/backends/media/device.h"
#include "platform/backends/media/mci_errors.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace velmora::platform::media {

struct OpenCommand {
    std::u16string shortPath; // as written, still with its "%XX"
    std::u16string type;      // as written
    bool styleChild = false;
    std::uintptr_t parentWindow = 0;
};
struct CloseCommand {};
struct PlayCommand {};
struct PauseCommand {};
struct SeekCommand {
    std::int32_t ms = 0;
};
struct SetTimeFormatCommand {}; // milliseconds, the only format there is
struct SetVolumeCommand {
    std::int32_t level = 0;
};
struct SetChannelCommand {
    Channel channel = Channel::Stereo;
};
enum class StatusItem { Mode, Position, Length, WindowHandle };
struct StatusCommand {
    StatusItem item = StatusItem::Mode;
};
struct PutCommand {
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
};

using MciAction = std::variant<OpenCommand, CloseCommand, PlayCommand, PauseCommand, SeekCommand,
                               SetTimeFormatCommand, SetVolumeCommand, SetChannelCommand,
                               StatusCommand, PutCommand>;

struct MciCommand {
    std::u16string alias; // as written; compare without regard to case
    MciAction action;
};

// Takes one command text apart as platform/media.h lists them. Only U+0020 separates words.
// Returns MciError::None and fills `command`, or the reason why it is no command; `command` is
// unspecified then. Ranges of volumes and positions are not looked at here.
MciError parseMciCommand(std::u16string_view text, MciCommand &command);

// The device type in its own spelling ("mpegvideo" gives "MPEGVideo"); absent for a type that no
// device has.
std::optional<std::string> knownDeviceType(std::u16string_view type);

} // namespace velmora::platform::media
