#include "platform/backends/linux/user_dirs.h"

namespace velmora::platform {

namespace {

std::string_view withoutBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

// What stands between the quotes, with "\" taking the next character as it is.
std::optional<std::string> unquoted(std::string_view text) {
    if (text.empty() || text.front() != '"')
        return std::nullopt;
    std::string value;
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (text[i] == '"')
            return value;
        if (text[i] == '\\' && i + 1 < text.size())
            ++i;
        value += text[i];
    }
    return std::nullopt;
}

std::optional<std::string> folderOf(const std::string &value, const std::string &home) {
    constexpr std::string_view variable = "$HOME";
    std::string folder;
    if (value.compare(0, variable.size(), variable) == 0 && !home.empty() &&
        (value.size() == variable.size() || value[variable.size()] == '/'))
        folder = home + value.substr(variable.size());
    else if (!value.empty() && value.front() == '/')
        folder = value;
    else
        return std::nullopt;
    while (folder.size() > 1 && folder.back() == '/')
        folder.pop_back();
    return folder;
}

} // namespace

std::optional<std::string> userDir(std::string_view text, std::string_view name,
                                   const std::string &home) {
    const std::string key = "XDG_" + std::string(name) + "_DIR";
    std::optional<std::string> found;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view line = withoutBlanks(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos || withoutBlanks(line.substr(0, equals)) != key)
            continue;
        if (const auto value = unquoted(withoutBlanks(line.substr(equals + 1))))
            if (auto folder = folderOf(*value, home))
                found = std::move(folder);
    }
    return found;
}

} // namespace velmora::platform
