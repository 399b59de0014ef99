#pragma once

// Version records of executables (contract: platform/system.h): the resources of Windows programs
// and the program's own section in an ELF file.

#include "platform/contracts/ansi.h"
#include "platform/contracts/system.h"

namespace velmora::platform {

class LinuxVersionRecords : public VersionRecords {
public:
    explicit LinuxVersionRecords(const AnsiText &ansi) : ansi_(ansi) {}

    std::uint32_t GetFileVersionInfoSizeA(std::u16string_view path) override;
    std::string GetFileVersionInfoA(std::u16string_view path, std::uint32_t size) override;
    std::optional<std::string> VerQueryValueA(std::string_view record,
                                              std::u16string_view query) override;

private:
    const AnsiText &ansi_;
};

} // namespace velmora::platform
