#include "open/arguments.h"

#include "platform/backends/bus/metadata.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace velmora::open_tool {

namespace {

using platform::RemoteCommand;

struct Option {
    std::string_view name;
    char letter; // NUL: none
    Action action;
    RemoteCommand command = RemoteCommand::Raise; // of Command
    bool takesAmount() const { return action == Action::Seek || action == Action::Volume; }
};
constexpr Option options[] = {
    {"enqueue", 'e', Action::Enqueue},
    {"play", '\0', Action::Command, RemoteCommand::Play},
    {"pause", '\0', Action::Command, RemoteCommand::Pause},
    {"play-pause", '\0', Action::Command, RemoteCommand::PlayPause},
    {"stop", '\0', Action::Command, RemoteCommand::Stop},
    {"next", '\0', Action::Command, RemoteCommand::Next},
    {"previous", '\0', Action::Command, RemoteCommand::Previous},
    {"seek", '\0', Action::Seek},
    {"volume", '\0', Action::Volume},
    {"raise", '\0', Action::Command, RemoteCommand::Raise},
    {"quit", '\0', Action::Command, RemoteCommand::Quit},
    {"status", '\0', Action::Status},
    {"lyrics", '\0', Action::Lyrics},
    {"help", 'h', Action::Help},
    {"version", 'V', Action::Version},
};

// The option that a long name stands for, whole or as a beginning that only one has.
const Option *optionOf(std::string_view name, std::string &complaint) {
    const Option *found = nullptr;
    for (const Option &option : options) {
        if (option.name == name)
            return &option;
        if (name.empty() || !option.name.starts_with(name))
            continue;
        if (found != nullptr) {
            complaint = "option '--" + std::string(name) + "' is ambiguous";
            return nullptr;
        }
        found = &option;
    }
    if (found == nullptr)
        complaint = "unrecognized option '--" + std::string(name) + "'";
    return found;
}

const Option *optionOf(char letter) {
    for (const Option &option : options)
        if (option.letter == letter)
            return &option;
    return nullptr;
}

class Reader {
public:
    Reader(const std::vector<std::string> &words, std::string &complaint)
        : words_(words), complaint_(complaint) {}

    std::optional<Request> read() {
        for (; next_ < words_.size(); ++next_)
            if (!take(words_[next_]))
                return std::nullopt;
        if (!request_.files.empty() && request_.action != Action::Open &&
            request_.action != Action::Enqueue && !isInformation())
            return refuse("'" + request_.files.front() + "': this option takes no files");
        if (request_.action == Action::Enqueue && request_.files.empty())
            return refuse("'--enqueue' needs files");
        return request_;
    }

private:
    std::nullopt_t refuse(std::string complaint) {
        complaint_ = std::move(complaint);
        return std::nullopt;
    }

    bool isInformation() const {
        return request_.action == Action::Help || request_.action == Action::Version;
    }

    bool take(const std::string &word) {
        if (onlyFiles_ || word.size() < 2 || word.front() != '-') {
            request_.files.push_back(word);
            return true;
        }
        if (word == "--") {
            onlyFiles_ = true;
            return true;
        }
        return word[1] == '-' ? takeLong(std::string_view(word).substr(2)) : takeShort(word);
    }

    bool takeShort(std::string_view word) {
        for (const char letter : word.substr(1)) {
            const Option *option = letter == '\0' ? nullptr : optionOf(letter);
            if (option == nullptr) {
                complaint_ = std::string("invalid option -- '") + letter + "'";
                return false;
            }
            if (!choose(*option))
                return false;
        }
        return true;
    }

    bool takeLong(std::string_view word) {
        const std::size_t equals = word.find('=');
        const Option *option = optionOf(word.substr(0, equals), complaint_);
        if (option == nullptr)
            return false;
        const std::string name = "'--" + std::string(option->name) + "'";
        std::optional<std::string_view> value;
        if (equals != std::string_view::npos)
            value = word.substr(equals + 1);
        if (value && !option->takesAmount()) {
            complaint_ = "option " + name + " doesn't allow an argument";
            return false;
        }
        if (option->takesAmount()) {
            if (!value && next_ + 1 < words_.size())
                value = words_[++next_];
            if (!value) {
                complaint_ = "option " + name + " requires an argument";
                return false;
            }
            const auto amount = readAmount(*value);
            if (!amount) {
                complaint_ = name + ": '" + std::string(*value) + "' is no number";
                return false;
            }
            request_.amount = *amount;
        }
        return choose(*option);
    }

    // One thing at a time; help and version go ahead of everything.
    bool choose(const Option &option) {
        if (isInformation())
            return true;
        const bool information = option.action == Action::Help || option.action == Action::Version;
        if (chosen_ && !information) {
            complaint_ = "'--" + std::string(option.name) + "': only one thing at a time";
            return false;
        }
        chosen_ = true;
        request_.action = option.action;
        request_.command = option.command;
        return true;
    }

    const std::vector<std::string> &words_;
    std::string &complaint_;
    std::size_t next_ = 0;
    bool onlyFiles_ = false;
    bool chosen_ = false;
    Request request_;
};

std::optional<double> readPart(std::string_view text) {
    double number = 0;
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
    if (text.empty() || error != std::errc() || end != text.data() + text.size() ||
        !std::isfinite(number) || number < 0 || number > 1e9)
        return std::nullopt;
    return number;
}

} // namespace

std::optional<Request> readWords(const std::vector<std::string> &words, std::string &complaint) {
    return Reader(words, complaint).read();
}

std::optional<Amount> readAmount(std::string_view text) {
    Amount amount;
    double sign = 1;
    if (!text.empty() && (text.front() == '+' || text.front() == '-')) {
        amount.isStep = true;
        sign = text.front() == '-' ? -1 : 1;
        text.remove_prefix(1);
    }
    for (int parts = 0; parts < 3; ++parts) {
        const std::size_t colon = text.find(':');
        const auto part = readPart(text.substr(0, colon));
        if (!part)
            return std::nullopt;
        amount.number = amount.number * 60 + *part;
        if (colon == std::string_view::npos) {
            amount.number *= sign;
            return amount;
        }
        text.remove_prefix(colon + 1);
    }
    return std::nullopt;
}

std::optional<std::string> addressOf(std::string_view word, std::string_view folder) {
    const std::size_t colon = word.find(':');
    const std::string_view scheme = word.substr(0, colon);
    const bool isAddress =
        colon != std::string_view::npos && colon > 1 &&
        std::all_of(scheme.begin(), scheme.end(),
                    [](char c) {
                        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                               (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
                    }) &&
        word.substr(colon + 1).starts_with('/');
    if (isAddress) {
        std::string lower(scheme);
        std::transform(lower.begin(), lower.end(), lower.begin(),
                       [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
        if (lower == "file")
            return std::string(word);
        if (word.substr(colon + 1).starts_with("//"))
            return std::nullopt;
    }
    if (word.empty())
        return std::nullopt;
    std::string path(word);
    if (path.front() != '/')
        path = std::string(folder) + (folder.ends_with('/') ? "" : "/") + path;
    return platform::bus::fileUri(path);
}

} // namespace velmora::open_tool
