#pragma once

// The program over its real disk, registry and network, inside a folder that was prepared for it;
// its windows, its sound and its clock are in memory. Nobody sits before it: every question is
// answered Yes, and what a person would have been told is kept for the report.

#include "platform/backends/curl/curl_internet.h"
#include "platform/backends/linux/file_copy.h"
#include "platform/backends/linux/linux.h"
#include "platform/backends/registry/sqlite_registry.h"
#include "tests/fakes/fake_platform.h"
#include "velmora.h"

#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::proof {

class World;

// Message boxes are answered at once: the first button, whatever is asked.
class AnsweringWindows : public fakes::FakeWindows {
public:
    explicit AnsweringWindows(fakes::FakeClock &clock) : fakes::FakeWindows(clock) {}
    // Boxes with this text are answered No.
    std::u16string refused;
    platform::MsgBoxResult MsgBox(std::u16string_view text, platform::MsgBoxButtons buttons,
                                  platform::MsgBoxIcon icon, std::u16string_view title,
                                  std::u16string_view /*source*/ = {}) override;
};

// The real lock and the real end; the machine's other processes and the program file are not the
// matter here.
class OwnProcesses : public platform::Processes {
public:
    OwnProcesses(std::unique_ptr<platform::Processes> real, std::u16string folder)
        : real_(std::move(real)), folder_(std::move(folder)) {}
    std::vector<std::u16string> ExecQuery(std::u16string_view, std::int32_t) override { return {}; }
    bool previousInstance() override { return real_->previousInstance(); }
    std::u16string applicationFolder() override { return folder_; }
    std::u16string applicationStem() override { return u"velmora"; }
    std::int32_t cleanBoot() override { return 0; }
    [[noreturn]] void end(int status) override {
        real_->end(status);
        std::abort();
    }

private:
    std::unique_ptr<platform::Processes> real_;
    std::u16string folder_;
};

// Makes folders and removes files; what would be handed to the desktop is kept.
class KeepingShell : public platform::Shell {
public:
    explicit KeepingShell(std::unique_ptr<platform::Shell> real) : real_(std::move(real)) {}
    std::vector<std::u16string> opened;
    std::int32_t ShellExecuteA(std::uintptr_t, std::u16string_view, std::u16string_view target,
                               std::int32_t) override {
        opened.emplace_back(target);
        return 42;
    }
    void Shell_(std::u16string_view commandLine) override { real_->Shell_(commandLine); }

private:
    std::unique_ptr<platform::Shell> real_;
};

class CopyingDialogs : public fakes::FakeDialogs {
public:
    CopyingDialogs(AnsweringWindows &windows, platform::FileCalls calls)
        : windows_(windows), calls_(std::move(calls)) {}
    std::int32_t SHFileOperationA(platform::SHFILEOPSTRUCT &operation) override;

private:
    AnsweringWindows &windows_;
    platform::FileCalls calls_;
};

class World {
public:
    // `root`: the prepared folder's path in the system's own bytes. The environment names the homes
    // in it already.
    explicit World(std::string root);

    // Runs the start sequence.
    void start();

    // A path in the folder.
    std::u16string path(std::u16string_view below) const;

    // What the program would tell and what it holds, for the runner, in one line. Asks nothing of
    // the disk.
    void report();
    std::u16string raised;     // what ended the operation
    std::u16string lastPlayed; // as the settings have it, where the operation looked

    fakes::FakePlatform fake;

private:
    std::string root_;
    platform::HomeFolders homes_;
    platform::SqliteRegistry *settings_ = nullptr;
    std::unique_ptr<platform::AnsiText> ansi_;

public:
    platform::SqliteRegistry registry;

private:
    platform::FileCalls calls_;
    std::unique_ptr<platform::FileSystem> files_;
    std::unique_ptr<platform::Folders> folders_;
    std::unique_ptr<platform::Profiles> profiles_;
    std::unique_ptr<platform::Internet> internet_;

public:
    AnsweringWindows windows;
    OwnProcesses processes;
    KeepingShell shell;
    CopyingDialogs dialogs;
    Velmora app;

private:
    platform::Platform joined();
};

// One thing that a person does. What stands ahead of it is done in `prepare`, unseen by the tracer.
struct Operation {
    std::string_view name;
    void (*prepare)(World &world);
    void (*act)(World &world);
};

std::vector<Operation> listOperations();
std::vector<Operation> lyricOperations();
std::vector<Operation> settingsOperations();
std::vector<Operation> networkOperations();

} // namespace velmora::proof
