#include "platform/backends/linux/linux.h"

#include "platform/backends/linux/linux_clock.h"
#include "platform/backends/linux/linux_files.h"
#include "platform/backends/linux/linux_folders.h"
#include "platform/backends/linux/linux_processes.h"
#include "platform/backends/linux/linux_shell.h"
#include "platform/backends/linux/linux_timers.h"
#include "platform/backends/linux/linux_versions.h"
#include "platform/backends/linux/unfinished_folders.h"
#include "text/ansi_conversion.h"
#include "text/ini_profiles.h"
#include "text/locale_page.h"

#include <cstdlib>

namespace velmora::platform {

std::unique_ptr<AnsiText> makeAnsiText(std::function<std::u16string()> activePage,
                                       std::string_view locale) {
    return std::make_unique<AnsiConversion>(std::move(activePage), legacyPageOf(locale));
}

// The order is the C library's.
std::string textLocale() {
    for (const char *variable : {"LC_ALL", "LC_CTYPE", "LANG"})
        if (const char *value = std::getenv(variable); value != nullptr && *value != '\0')
            return value;
    return {};
}

FileCalls makeFileCalls(const HomeFolders &homes) {
    const auto folders = std::make_shared<UnfinishedFolders>(homes.programCache());
    folders->clear();
    FileCalls calls;
    calls.beforePassingName = [folders](const std::string &folder) { folders->note(folder); };
    return calls;
}

std::unique_ptr<FileSystem> makeFileSystem(const AnsiText &ansi, FileCalls calls) {
    return std::make_unique<LinuxFiles>(ansi, std::move(calls));
}

std::unique_ptr<Folders> makeFolders(const HomeFolders &homes) {
    return std::make_unique<LinuxFolders>(homes);
}

std::unique_ptr<Processes> makeProcesses(const HomeFolders &homes,
                                         std::function<void()> beforeEnd) {
    return std::make_unique<LinuxProcesses>(homes, std::move(beforeEnd));
}

std::unique_ptr<VersionRecords> makeVersionRecords(const AnsiText &ansi) {
    return std::make_unique<LinuxVersionRecords>(ansi);
}

std::unique_ptr<Shell> makeShell() { return std::make_unique<LinuxShell>(ownExecutable()); }

std::unique_ptr<Profiles> makeProfiles(FileSystem &files, const AnsiText &ansi) {
    return std::make_unique<IniProfiles>(files, ansi);
}

std::unique_ptr<Clock> makeClock() { return std::make_unique<LinuxClock>(); }

std::unique_ptr<WaitableTimers>
makeWaitableTimers(std::function<std::uint32_t(std::chrono::steady_clock::time_point due)> wait) {
    return std::make_unique<LinuxWaitableTimers>(std::move(wait));
}

} // namespace velmora::platform
