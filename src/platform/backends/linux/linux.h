#pragma once

// What the start of the program makes of this back-end. Each object stands alone; references given
// to one must outlive it.

#include "platform/backends/linux/file_calls.h"
#include "platform/backends/linux/home_folders.h"
#include "platform/contracts/ansi.h"
#include "platform/contracts/files.h"
#include "platform/contracts/profiles.h"
#include "platform/contracts/system.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace velmora::platform {

// `activePage` answers the code page that is set in the registry, empty for none. It is asked once,
// at the first text that is not plain ASCII. `locale` names the language whose old texts are read
// where none is set; empty stands for Chinese.
std::unique_ptr<AnsiText> makeAnsiText(std::function<std::u16string()> activePage,
                                       std::string_view locale = {});

// The name of the locale that decides about characters; empty for none.
std::string textLocale();

// The calls of all that write files here. Takes away what earlier runs had to leave unfinished, and
// notes in the cache where this run may leave something.
FileCalls makeFileCalls(const HomeFolders &homes);

std::unique_ptr<FileSystem> makeFileSystem(const AnsiText &ansi, FileCalls calls = {});

std::unique_ptr<Folders> makeFolders(const HomeFolders &homes);

// `beforeEnd` runs in `Processes::end`: it writes what is still owed to the disk.
std::unique_ptr<Processes> makeProcesses(const HomeFolders &homes, std::function<void()> beforeEnd);

std::unique_ptr<VersionRecords> makeVersionRecords(const AnsiText &ansi);

std::unique_ptr<Shell> makeShell();

std::unique_ptr<Profiles> makeProfiles(FileSystem &files, const AnsiText &ansi);

std::unique_ptr<Clock> makeClock();

// `wait` runs the event loop until the time given (never, at the greatest time point) or until an
// input or a timer tick came: 0 when the time is reached, else 1.
std::unique_ptr<WaitableTimers>
makeWaitableTimers(std::function<std::uint32_t(std::chrono::steady_clock::time_point due)> wait);

} // namespace velmora::platform
