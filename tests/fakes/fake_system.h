#pragma once

// Processes, folders, version records, shell, clock and waitable timers in memory.

#include "platform/contracts/ansi.h"
#include "platform/contracts/system.h"
#include "text/path_text.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace velmora::fakes {

class FakeFiles;

// What the fake's `end` throws in place of ending the process. It derives from nothing, so that no
// handler of the program catches it.
struct ProcessEnded {
    int status = 0;
};

class FakeProcesses : public platform::Processes {
public:
    std::vector<std::u16string> executables; // what the query answers
    bool queryFails = false;                 // the service is not there
    bool otherInstance = false;
    std::u16string folder = u"/opt/velmora";
    std::u16string stem = u"velmora";
    std::int32_t bootMode = 0;

    // What was asked.
    std::vector<std::u16string> queries;
    std::vector<std::int32_t> queryFlags;
    int instanceTests = 0;
    std::vector<int> endStatuses;

    std::vector<std::u16string> ExecQuery(std::u16string_view query, std::int32_t flags) override;
    bool previousInstance() override;
    std::u16string applicationFolder() override { return folder; }
    std::u16string applicationStem() override { return stem; }
    std::int32_t cleanBoot() override { return bootMode; }
    [[noreturn]] void end(int status) override;
};

class FakeFolders : public platform::Folders {
public:
    std::map<std::int32_t, std::u16string> special = {{0, u"/home/user/Desktop"},
                                                      {5, u"/home/user/Documents"}};
    std::u16string windows = u"/usr";
    std::u16string system = u"/home/user/.local/share/velmora/System32";
    std::u16string temporary = u"/run/user/1000/velmora/";
    std::u16string dataHome = u"/home/user/.local/share/velmora/";
    std::u16string home = u"/home/user";
    std::vector<std::int32_t> asked;
    // Called before each answer; may raise.
    std::function<void(std::int32_t number)> onSpecial;
    std::function<void(std::u16string_view text)> onTyped;

    std::optional<std::u16string> SHGetSpecialFolder(std::int32_t number) override;
    std::u16string GetWindowsDirectoryA() override { return windows; }
    std::u16string GetSystemDirectoryA() override { return system; }
    std::u16string GetTempPathA() override { return temporary; }
    std::u16string rootPart(std::u16string_view path) override;
    std::u16string typedFolder(std::u16string_view text) override {
        if (onTyped)
            onTyped(text);
        return platform::typedFolder(text, home);
    }
};

// Holds records by path; asking them is the real reader's work.
class FakeVersionRecords : public platform::VersionRecords {
public:
    explicit FakeVersionRecords(const platform::AnsiText &ansi) : ansi_(ansi) {}

    struct Strings {
        std::u16string fileDescription, productName, originalFilename, internalName, companyName,
            legalCopyright; // an empty one has no entry
    };
    // A sound record with these strings and the version 1.0.0.0.
    void addRecord(std::u16string_view path, const Strings &strings);
    void addRecordBytes(std::u16string_view path, std::string record);
    // A record of a program with this internal name.
    void addProgram(std::u16string_view path, std::u16string_view internalName);
    std::vector<std::u16string> asked; // paths whose size was asked for

    std::uint32_t GetFileVersionInfoSizeA(std::u16string_view path) override;
    std::string GetFileVersionInfoA(std::u16string_view path, std::uint32_t size) override;
    std::optional<std::string> VerQueryValueA(std::string_view record,
                                              std::u16string_view query) override;

private:
    const platform::AnsiText &ansi_;
    std::map<std::u16string, std::string> records_;
};

class FakeShell : public platform::Shell {
public:
    struct Execution {
        std::uintptr_t owner;
        std::u16string verb;
        std::u16string target;
        std::int32_t showCommand;
        friend bool operator==(const Execution &, const Execution &) = default;
    };

    // With a disk, "cmd /c del " and "cmd /c md " act on it as the real ones do.
    explicit FakeShell(FakeFiles *files = nullptr) : files_(files) {}

    std::int32_t answer = 42; // above 32 is success
    std::vector<Execution> executions;
    std::vector<std::u16string> commandLines;
    // Runs before a command line does.
    std::function<void(std::u16string_view commandLine)> onCommandLine;

    std::int32_t ShellExecuteA(std::uintptr_t owner, std::u16string_view verb,
                               std::u16string_view target, std::int32_t showCommand) override;
    void Shell_(std::u16string_view commandLine) override;

private:
    FakeFiles *files_;
};

// Stands still until the test advances it.
class FakeClock : public platform::Clock {
public:
    std::int64_t steadyTime = 0;          // milliseconds
    std::time_t wallTime = 1'600'000'000; // 2020-09-13 12:26:40 UTC
    double sinceMidnight = 44'800.0;      // seconds

    // All three together.
    void advance(std::int64_t ms);

    std::int64_t steadyMs() override { return steadyTime; }
    std::time_t now() override { return wallTime; }
    double secondsSinceMidnight() override { return sinceMidnight; }
    std::u16string shortDate(std::time_t when) override; // ISO, UTC
    std::u16string shortTime(std::time_t when) override;

private:
    std::int64_t wallRemainder_ = 0;
};

// Timers that are due by the fake clock. A wait advances it to the due time and answers 0, unless
// the test scripts other answers first.
class FakeWaitableTimers : public platform::WaitableTimers {
public:
    explicit FakeWaitableTimers(FakeClock &clock) : clock_(clock) {}
    ~FakeWaitableTimers() override;

    bool creationFails = false;
    bool nameExists = false; // the last system error is 183
    // Answers of the next waits before the timer's own 0, such as 1 for an input. Left over: fails
    // the test.
    std::vector<std::uint32_t> nextAnswers;
    // Runs inside each wait: what input handlers and ticks would do.
    std::function<void()> onWait;

    // What was asked.
    struct Due {
        std::int32_t low;
        std::int32_t high;
        friend bool operator==(const Due &, const Due &) = default;
    };
    std::vector<std::u16string> names;
    std::vector<Due> dues;
    int waits = 0;
    std::size_t openTimers() const { return timers_.size(); }

    platform::WaitHandle CreateWaitableTimerA(bool manualReset, std::u16string_view name,
                                              bool &alreadyExists) override;
    bool SetWaitableTimer(platform::WaitHandle timer, std::int32_t dueLow,
                          std::int32_t dueHigh) override;
    std::uint32_t MsgWaitForMultipleObjects(platform::WaitHandle timer) override;
    bool CloseHandle(platform::WaitHandle timer) override;

private:
    FakeClock &clock_;
    std::map<platform::WaitHandle, std::int64_t> timers_; // due time in steady milliseconds
    platform::WaitHandle nextHandle_ = 0x100;
};

} // namespace velmora::fakes
