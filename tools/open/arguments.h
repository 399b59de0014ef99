#pragma once

// What the words of the command line ask for.

#include "platform/contracts/remote.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::open_tool {

enum class Action : std::uint8_t {
    Open, // without files: the player shows itself
    Enqueue,
    Command,
    Seek,
    Volume,
    Status,
    Lyrics,
    Help,
    Version,
};

// A number that stands for itself or, with its sign, for a step.
struct Amount {
    double number = 0;
    bool isStep = false;
};

struct Request {
    Action action = Action::Open;
    platform::RemoteCommand command = platform::RemoteCommand::Raise; // of Command
    Amount amount; // of Seek (seconds) and Volume (0 to 100)
    std::vector<std::string> files;
};

// Absent after a complaint in one line, which names the word at fault.
std::optional<Request> readWords(const std::vector<std::string> &words, std::string &complaint);

// "90", "1:30", "1:01:30", "+10", "-10", "12.5"
std::optional<Amount> readAmount(std::string_view text);

// The address of a file: an address of "file:" as it is, a path made absolute against `folder`.
// Absent for an address of any other kind.
std::optional<std::string> addressOf(std::string_view word, std::string_view folder);

} // namespace velmora::open_tool
