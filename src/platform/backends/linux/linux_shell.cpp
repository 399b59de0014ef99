#include "platform/backends/linux/linux_shell.h"

#include "base/text.h"
#include "platform/backends/linux/file_calls.h"
#include "platform/backends/linux/home_folders.h"
#include "platform/backends/linux/linux_processes.h"
#include "platform/backends/linux/open_file.h"
#include "platform/backends/linux/start_program.h"
#include "text/path_text.h"

#include <sys/stat.h>

#include <cctype>
#include <cerrno>

namespace velmora::platform {

namespace {

// Results of ShellExecuteA: above 32 is success.
constexpr std::int32_t started = 42;
constexpr std::int32_t fileNotFound = 2;
constexpr std::int32_t accessDenied = 5;
constexpr std::int32_t noAssociation = 31;

std::int32_t answerOf(int error) noexcept {
    switch (error) {
    case 0:
        return started;
    case EACCES:
    case EPERM:
        return accessDenied;
    case ENOENT:
        return fileNotFound;
    default:
        return noAssociation;
    }
}

bool hasScheme(std::u16string_view target) noexcept {
    const std::size_t colon = target.find(u':');
    if (colon == std::u16string_view::npos || colon < 2) // one letter is a drive
        return false;
    for (const char16_t unit : target.substr(0, colon))
        if (!(unit < 0x80 && (std::isalnum(static_cast<int>(unit)) != 0 || unit == u'+' ||
                              unit == u'-' || unit == u'.')))
            return false;
    return true;
}

bool beginsIgnoringCase(std::u16string_view text, std::u16string_view beginning) {
    return equalsIgnoringCase(leftPart(text, static_cast<std::ptrdiff_t>(beginning.size())),
                              beginning);
}

// The desktop's own opener decides what shows a file or an address.
std::int32_t handToDesktop(const std::string &target) {
    int error = startProgram({"xdg-open", target});
    if (error == ENOENT)
        error = startProgram({"gio", "open", target});
    return error == ENOENT ? noAssociation : answerOf(error);
}

std::int32_t execute(const std::string &path, bool makeExecutable) {
    struct ::stat info {};
    if (::stat(path.c_str(), &info) != 0)
        return answerOf(errno);
    if (!S_ISREG(info.st_mode))
        return accessDenied;
    if (makeExecutable) { // whoever may read it may run it then
        const mode_t mode = info.st_mode & 07777;
        if (::chmod(path.c_str(), mode | (mode & 0444) >> 2 | S_IXUSR) != 0 &&
            !isNotKnownHere(errno)) // where modes cannot be set they are the mount's
            return answerOf(errno);
    }
    return answerOf(startProgram({path}));
}

std::string addressBytes(std::u16string_view address) {
    return pathBytes(replaceAll(address, u" ", u"%20"));
}

} // namespace

TargetKind targetKind(std::u16string_view target, const std::string &ownExecutable) {
    for (const std::u16string_view scheme : {u"http://", u"https://", u"mailto:"})
        if (beginsIgnoringCase(target, scheme))
            return TargetKind::Address;
    const std::u16string own = pathFromBytes(ownExecutable);
    if (!own.empty() && folderPart(target) == folderPart(own)) {
        const std::u16string_view name = baseName(target);
        const std::u16string stem = stemOfProgram(own);
        if (name == baseName(own) || name == stem || name == stem + u".exe" ||
            name == stem + u".bat")
            return TargetKind::Restart;
        constexpr std::u16string_view before = u"zkPlayer [";
        constexpr std::u16string_view behind = u"].exe";
        if (startsWith(name, before) && name.size() > before.size() + behind.size() &&
            rightPart(name, behind.size()) == behind)
            return TargetKind::Successor;
    }
    return hasScheme(target) ? TargetKind::Refused : TargetKind::Local;
}

std::int32_t LinuxShell::ShellExecuteA(std::uintptr_t, std::u16string_view,
                                       std::u16string_view target, std::int32_t) {
    const TargetKind kind = targetKind(target, ownExecutable_);
    const auto path = systemPath(target);
    if (!path)
        return fileNotFound;
    switch (kind) {
    case TargetKind::Address:
        return handToDesktop(addressBytes(target));
    case TargetKind::Restart:
        return execute(*path, false);
    case TargetKind::Successor:
        return execute(*path, true);
    case TargetKind::Refused:
        return noAssociation;
    case TargetKind::Local:
        break;
    }
    struct ::stat info {};
    if (::stat(path->c_str(), &info) != 0)
        return answerOf(errno);
    if (!S_ISREG(info.st_mode) && !S_ISDIR(info.st_mode))
        return noAssociation;
    // In front of a relative name, so that none reads as an option or an address.
    return handToDesktop(path->front() == '/' ? *path : "./" + *path);
}

std::u16string_view quotedPath(std::u16string_view commandLine, std::u16string_view command) {
    if (!beginsIgnoringCase(commandLine, command))
        return {};
    commandLine.remove_prefix(command.size());
    if (commandLine.size() < 2 || commandLine.front() != u'"' || commandLine.back() != u'"')
        return {};
    return commandLine.substr(1, commandLine.size() - 2);
}

void LinuxShell::Shell_(std::u16string_view commandLine) {
    if (const auto path = systemPath(quotedPath(commandLine, u"cmd /c del "))) {
        struct ::stat info {};
        if (::lstat(path->c_str(), &info) == 0 && S_ISREG(info.st_mode))
            ::unlink(path->c_str());
    } else if (const auto folder = systemPath(quotedPath(commandLine, u"cmd /c md "))) {
        // The root folder is what an unknown folder's number leads to: nothing is made in it.
        const std::string &text = *folder;
        const std::size_t first = text.find_first_not_of('/');
        const std::size_t end = first == std::string::npos ? first : text.find('/', first);
        struct ::stat info {};
        if (text.front() == '/' &&
            (first == std::string::npos || ::stat(text.substr(0, end).c_str(), &info) != 0))
            return;
        makeFolders(text, 0777);
    }
}

} // namespace velmora::platform
