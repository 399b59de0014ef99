#pragma once

// Reads a file line by line through a buffer of fixed size.

#include "platform/backends/linux/descriptor.h"
#include "platform/contracts/files.h"

#include <string>

namespace velmora::platform {

class FileLineReader : public LineReader {
public:
    // The longest line; a longer one is a read error, so that a file without line ends does not
    // fill the memory.
    static constexpr std::size_t longestLine = std::size_t{32} << 20;

    explicit FileLineReader(Descriptor file) : file_(std::move(file)) {}

    bool endOfFile() override;
    std::string readLine() override;

private:
    bool fill();
    void skipLineFeed();
    [[noreturn]] void fail(int error);

    Descriptor file_;
    std::string buffer_;
    std::size_t at_ = 0;
    int error_ = 0; // of a read ahead, raised by the next line
    bool end_ = false;
    bool afterReturn_ = false; // the last line ended in CR: a LF that follows belongs to it
};

} // namespace velmora::platform
