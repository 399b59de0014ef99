#include "platform/backends/linux/patient_disk.h"

#include <sys/stat.h>

#include <algorithm>
#include <fstream>
#include <sstream>

namespace velmora::platform {

namespace {

// Blanks and the like stand as a backslash and three octal digits.
std::string unescaped(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 3 < text.size()) {
            result += static_cast<char>((text[i + 1] - '0') * 64 + (text[i + 2] - '0') * 8 +
                                        (text[i + 3] - '0'));
            i += 3;
        } else {
            result += text[i];
        }
    }
    return result;
}

bool liesBelow(std::string_view path, std::string_view mount) {
    return path.starts_with(mount) &&
           (path.size() == mount.size() || mount.ends_with('/') || path[mount.size()] == '/');
}

std::string mounts() {
    std::ifstream file("/proc/self/mountinfo");
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

} // namespace

std::string mountPointOf(std::string_view path, std::string_view mounts) {
    std::istringstream lines{std::string(mounts)};
    std::string best;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream fields(line);
        std::string number;
        std::string parent;
        std::string device;
        std::string root;
        std::string point;
        fields >> number >> parent >> device >> root >> point;
        point = unescaped(point);
        if (!point.empty() && point.size() >= best.size() && liesBelow(path, point))
            best = point;
    }
    return best;
}

bool PatientDisk::hasJustAnswered(const std::string &folder) const {
    constexpr std::chrono::seconds recently(1);
    return answeredAt_ != Clock::time_point() && folder == answeredFolder_ &&
           now_() - answeredAt_ < recently;
}

bool PatientDisk::owesAnswer(const std::string &path) {
    std::erase_if(owed_, [](const Owed &owed) { return owed.answered->load(); });
    if (owed_.empty())
        return false;
    const std::string all = mounts();
    const std::string mount = mountPointOf(path, all);
    return std::any_of(owed_.begin(), owed_.end(),
                       [&](const Owed &owed) { return mountPointOf(owed.folder, all) == mount; });
}

bool PatientDisk::isSilent(const std::string &path) {
    return owesAnswer(path) && !ask(
                                   path,
                                   [path] {
                                       struct ::stat info {};
                                       return ::stat(path.c_str(), &info);
                                   });
}

void PatientDisk::note(std::string folder, bool inTime,
                       std::shared_ptr<std::atomic<bool>> answered) {
    if (!inTime) {
        owed_.push_back({std::move(folder), std::move(answered)});
        if (answeredFolder_ == owed_.back().folder)
            answeredFolder_.clear();
        return;
    }
    answeredFolder_ = std::move(folder);
    answeredAt_ = now_();
}

} // namespace velmora::platform
