#pragma once

// A file open for writing piece by piece (contract: OutputFile of platform/files.h).

#include "platform/backends/linux/descriptor.h"
#include "platform/contracts/files.h"

#include <string>

namespace velmora::platform {

class LinuxOutputFile : public OutputFile {
public:
    // Opens the file or makes it; an existing one keeps its bytes. Refuses what a whole write
    // refuses: no regular file, no write bit, directly below the root. Raises.
    explicit LinuxOutputFile(std::u16string_view path);

    ~LinuxOutputFile() override;

    void SetFilePointer(std::int64_t position) override;
    bool WriteFile(std::string_view bytes) override;

private:
    bool flush();

    Descriptor file_;
    std::int64_t position_ = 0; // of what is collected
    std::string collected_;
};

} // namespace velmora::platform
