#pragma once

// Processes, folders, version records, shell starts, clock and waiting.

#include <chrono>
#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::platform {

// --- processes --------------------------------------------------------------------------------

class Processes {
public:
    virtual ~Processes() = default;

    // The management query over running processes. The query text is opaque. One entry a process:
    // its executable's path, empty where it cannot be told. On Linux: this user's processes with
    // the same configuration home, without the process that started this one. Raises when the
    // service is not there.
    virtual std::vector<std::u16string> ExecQuery(std::u16string_view query,
                                                  std::int32_t flags) = 0;

    // Whether another instance of this program runs for this user. The first call takes the lock
    // that answers it and holds it for life; it waits up to 500 ms for an instance that is ending.
    virtual bool previousInstance() = 0;

    // Folder of the program file, without a trailing separator except for a root, and the file
    // name's stem (only a final ".exe" is taken off).
    virtual std::u16string applicationFolder() = 0;
    virtual std::u16string applicationStem() = 0;

    // GetSystemMetrics(SM_CLEANBOOT): 0 normal, 1 safe mode, 2 with network.
    virtual std::int32_t cleanBoot() = 0;

    // Ends the process. Never returns. Whatever the back-end still owes the disk is written first.
    // The fake throws an exception that no code catches.
    [[noreturn]] virtual void end(int status) = 0;
};

// --- folders ------------------------------------------------------------------------------------

class Folders {
public:
    virtual ~Folders() = default;
    // SHGetSpecialFolderLocation and SHGetPathFromIDListA. Absent where the system has none of that
    // number.
    virtual std::optional<std::u16string> SHGetSpecialFolder(std::int32_t number) = 0;
    virtual std::u16string GetWindowsDirectoryA() = 0;
    virtual std::u16string GetSystemDirectoryA() = 0;
    // The user's own temporary folder (mode 0700).
    virtual std::u16string GetTempPathA() = 0;
    // The root part of an absolute path: three characters where there is a drive letter, else the
    // program's data home with its separator.
    virtual std::u16string rootPart(std::u16string_view path) = 0;
    // The folder that a person means by a text: "~" at its beginning, alone or before a separator,
    // is the home. Anything else is the text itself.
    virtual std::u16string typedFolder(std::u16string_view text) = 0;
};

// --- version records ----------------------------------------------------------------------------

class VersionRecords {
public:
    virtual ~VersionRecords() = default;
    // Size of the file's version record in bytes; 0 when it has none or cannot be read.
    virtual std::uint32_t GetFileVersionInfoSizeA(std::u16string_view path) = 0;
    // The record itself, at most `size` bytes; empty on failure.
    virtual std::string GetFileVersionInfoA(std::u16string_view path, std::uint32_t size) = 0;
    // A query into a record: "\" gives the fixed part (52 bytes), "\VarFileInfo\Translation" the
    // language and code page words, "\StringFileInfo\XXXXXXXX\Name" a string's bytes in the ANSI
    // form without its terminator. Absent when it is not there. Damaged records never lead outside.
    virtual std::optional<std::string> VerQueryValueA(std::string_view record,
                                                      std::u16string_view query) = 0;
};

// --- shell --------------------------------------------------------------------------------------

class Shell {
public:
    virtual ~Shell() = default;
    // Hands a folder, file, or http, https or mailto address to the desktop; executes nothing but
    // the program's own restart and its downloaded successor. A number above 32 is success. `verb`
    // may be empty; `showCommand` 0 hidden, 1 normal.
    virtual std::int32_t ShellExecuteA(std::uintptr_t owner, std::u16string_view verb,
                                       std::u16string_view target, std::int32_t showCommand) = 0;
    // The command lines "cmd /c del " and "cmd /c md " with a path in double quotes. No shell is
    // ever started: `del` unlinks one regular file, `md` makes a folder with its parents. Hidden,
    // not waited for; no result.
    virtual void Shell_(std::u16string_view commandLine) = 0;
};

// --- clock and waiting --------------------------------------------------------------------------

class Clock {
public:
    virtual ~Clock() = default;
    // Steady milliseconds; for intervals.
    virtual std::int64_t steadyMs() = 0;
    // Wall clock.
    virtual std::time_t now() = 0;
    // Seconds since local midnight, with fractions.
    virtual double secondsSinceMidnight() = 0;
    // The locale's short date and time forms; ISO in the C locale.
    virtual std::u16string shortDate(std::time_t when) = 0;
    virtual std::u16string shortTime(std::time_t when) = 0;
};

using WaitHandle = std::int32_t;

class WaitableTimers {
public:
    virtual ~WaitableTimers() = default;
    // 0 on failure. `alreadyExists` tells the last system error 183.
    virtual WaitHandle CreateWaitableTimerA(bool manualReset, std::u16string_view name,
                                            bool &alreadyExists) = 0;
    // Due time as two 32-bit halves of 100 ns steps, negative for relative times.
    virtual bool SetWaitableTimer(WaitHandle timer, std::int32_t dueLow, std::int32_t dueHigh) = 0;
    // Waits for the timer or for any input or timer tick; 0: the timer.
    virtual std::uint32_t MsgWaitForMultipleObjects(WaitHandle timer) = 0;
    virtual bool CloseHandle(WaitHandle timer) = 0;
};

} // namespace velmora::platform
