#pragma once

// A file open for writing piece by piece (contract: OutputFile of platform/files.h).

#include "platform/files.h"
#include "platform/linux/descriptor.h"

namespace velmora::platform {

class LinuxOutputFile : public OutputFile {
public:
    // Opens the file or makes it; an existing one keeps its bytes. Refuses what a whole write
    // refuses: no regular file, no write bit, directly below the root. Raises.
    explicit LinuxOutputFile(std::u16string_view path);

    void SetFilePointer(std::int64_t position) override { position_ = position; }
    bool WriteFile(std::string_view bytes) override;

private:
    Descriptor file_;
    std::int64_t position_ = 0;
};

} // namespace velmora::platform
