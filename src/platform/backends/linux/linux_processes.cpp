#include "platform/backends/linux/linux_processes.h"

#include "base/text.h"
#include "platform/backends/linux/errors.h"
#include "platform/backends/linux/open_file.h"
#include "text/path_text.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace velmora::platform {

namespace {

// The program file behind a process; empty where it cannot be told.
std::string executableOf(const std::string &process) {
    constexpr std::string_view deleted = " (deleted)";
    char buffer[PATH_MAX];
    const ssize_t size = ::readlink((process + "/exe").c_str(), buffer, sizeof buffer);
    std::string path(buffer, static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    if (path.size() > deleted.size() &&
        path.compare(path.size() - deleted.size(), deleted.size(), deleted) == 0)
        path.resize(path.size() - deleted.size());
    return path;
}

std::string configHomeOfProcess(const std::string &process) {
    constexpr std::size_t mostBytes = std::size_t{1} << 20;
    const Descriptor file(::open((process + "/environ").c_str(), O_RDONLY | O_CLOEXEC));
    const auto environment = file ? readAt(file.number(), 0, mostBytes) : std::nullopt;
    return environment && !environment->empty() ? configHomeOf(*environment) : std::string();
}

// The numbers of this user's processes, ascending.
std::vector<long> processesOfUser() {
    ::DIR *folder = ::opendir("/proc");
    if (folder == nullptr)
        raiseSystemError(errno);
    std::vector<long> numbers;
    while (const ::dirent *entry = ::readdir(folder)) {
        char *end = nullptr;
        const long number = std::strtol(entry->d_name, &end, 10);
        struct ::stat info {};
        if (number > 0 && *end == '\0' &&
            ::fstatat(::dirfd(folder), entry->d_name, &info, 0) == 0 && info.st_uid == ::geteuid())
            numbers.push_back(number);
    }
    ::closedir(folder);
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

} // namespace

LinuxProcesses::LinuxProcesses(HomeFolders homes, std::function<void()> beforeEnd)
    : homes_(std::move(homes)), beforeEnd_(std::move(beforeEnd)) {}

std::vector<std::u16string> LinuxProcesses::ExecQuery(std::u16string_view, std::int32_t) {
    const long self = ::getpid();
    const long starter = ::getppid();
    std::vector<std::u16string> executables;
    for (const long number : processesOfUser()) {
        if (number == starter)
            continue;
        const std::string process = "/proc/" + std::to_string(number);
        const std::string executable = executableOf(process);
        if (executable.empty())
            continue;
        if (number == self || configHomeOfProcess(process) == homes_.config)
            executables.push_back(pathFromBytes(executable));
    }
    return executables;
}

bool LinuxProcesses::previousInstance() {
    using namespace std::chrono_literals;
    constexpr auto patience = 500ms; // for an instance that is ending
    constexpr auto step = 5ms;
    if (lock_)
        return false;
    // Without a folder to lock in nothing can be told; then nobody is kept from starting.
    if (!makeFolders(homes_.programConfig(), 0700))
        return false;
    Descriptor file(::open((homes_.programConfig() + "/instance.lock").c_str(),
                           O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW, 0600));
    if (!file)
        return false;
    const auto giveUp = std::chrono::steady_clock::now() + patience;
    while (::flock(file.number(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR)
            return false;
        if (std::chrono::steady_clock::now() >= giveUp)
            return true;
        std::this_thread::sleep_for(step);
    }
    lock_ = std::move(file);
    return false;
}

std::u16string LinuxProcesses::applicationFolder() {
    return folderOfProgram(pathFromBytes(ownExecutable()));
}

std::u16string LinuxProcesses::applicationStem() {
    return stemOfProgram(pathFromBytes(ownExecutable()));
}

void LinuxProcesses::end(int status) {
    if (beforeEnd_)
        beforeEnd_();
    std::fflush(nullptr);
    ::_exit(status);
}

std::u16string folderOfProgram(std::u16string_view path) {
    std::u16string_view folder = folderPart(path);
    if (folder.size() > 1)
        folder.remove_suffix(1);
    return std::u16string(folder);
}

std::u16string stemOfProgram(std::u16string_view path) {
    constexpr std::u16string_view extension = u".exe";
    std::u16string_view name = baseName(path);
    if (equalsIgnoringCase(rightPart(name, extension.size()), extension))
        name.remove_suffix(extension.size());
    return std::u16string(name);
}

std::string ownExecutable() { return executableOf("/proc/self"); }

} // namespace velmora::platform
