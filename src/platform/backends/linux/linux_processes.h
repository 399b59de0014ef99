#pragma once

// Processes (contract: platform/system.h).

#include "platform/backends/linux/descriptor.h"
#include "platform/backends/linux/home_folders.h"
#include "platform/contracts/system.h"

#include <functional>

namespace velmora::platform {

class LinuxProcesses : public Processes {
public:
    // `beforeEnd` runs in `end`, before the process goes: it writes what is still owed.
    LinuxProcesses(HomeFolders homes, std::function<void()> beforeEnd);

    std::vector<std::u16string> ExecQuery(std::u16string_view query, std::int32_t flags) override;
    bool previousInstance() override;
    std::u16string applicationFolder() override;
    std::u16string applicationStem() override;
    std::int32_t cleanBoot() override { return 0; }
    [[noreturn]] void end(int status) override;

private:
    HomeFolders homes_;
    std::function<void()> beforeEnd_;
    Descriptor lock_;
};

// The parts of a program file's path: the folder without a trailing separator except for the root,
// and the name less a final ".exe".
std::u16string folderOfProgram(std::u16string_view path);
std::u16string stemOfProgram(std::u16string_view path);

// The path of this process's program file; " (deleted)" taken off.
std::string ownExecutable();

} // namespace velmora::platform
