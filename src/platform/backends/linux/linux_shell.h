#pragma once

// Shell starts (contract: platform/system.h), without any shell.

#include "platform/contracts/system.h"

#include <string>

namespace velmora::platform {

class LinuxShell : public Shell {
public:
    // `ownExecutable` is this program's file: the restart and a downloaded successor lie beside it.
    explicit LinuxShell(std::string ownExecutable) : ownExecutable_(std::move(ownExecutable)) {}

    std::int32_t ShellExecuteA(std::uintptr_t owner, std::u16string_view verb,
                               std::u16string_view target, std::int32_t showCommand) override;
    void Shell_(std::u16string_view commandLine) override;

private:
    std::string ownExecutable_;
};

// What a target is. Pure but for the look at the disk that the caller gives.
enum class TargetKind {
    Address,   // http, https, mailto: for the desktop
    Local,     // a path, which may or may not exist
    Restart,   // the program itself: its stem bare, with ".exe" or ".bat", in its own folder
    Successor, // "zkPlayer [VERSION].exe" in its own folder
    Refused,   // any other scheme
};
TargetKind targetKind(std::u16string_view target, const std::string &ownExecutable);

// The path in the command line `command` + a path in double quotes; empty when it is not that.
std::u16string_view quotedPath(std::u16string_view commandLine, std::u16string_view command);

} // namespace velmora::platform
