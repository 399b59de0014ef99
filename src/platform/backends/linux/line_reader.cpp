#include "platform/backends/linux/line_reader.h"

#include "platform/backends/linux/errors.h"

#include <algorithm>
#include <cerrno>

namespace velmora::platform {

// Makes the buffer hold at least one unread byte. False at the end and on an error, which is kept.
bool FileLineReader::fill() {
    constexpr std::size_t bufferSize = std::size_t{64} << 10;
    while (at_ == buffer_.size() && !end_ && error_ == 0) {
        buffer_.resize(bufferSize);
        at_ = 0;
        const ssize_t got = ::read(file_.number(), buffer_.data(), buffer_.size());
        const int error = errno;
        buffer_.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
        if (got == 0)
            end_ = true;
        else if (got < 0 && error != EINTR)
            error_ = error;
    }
    return at_ < buffer_.size();
}

void FileLineReader::skipLineFeed() {
    if (!afterReturn_ || !fill())
        return;
    if (buffer_[at_] == '\n')
        ++at_;
    afterReturn_ = false;
}

void FileLineReader::fail(int error) {
    // The reader is at its end from now on: a loop that passes over the error comes to an end.
    end_ = true;
    error_ = 0;
    buffer_.clear();
    at_ = 0;
    raiseSystemError(error);
}

bool FileLineReader::endOfFile() {
    skipLineFeed();
    return !fill() && error_ == 0;
}

std::string FileLineReader::readLine() {
    constexpr int pastTheEnd = EIO;
    skipLineFeed();
    if (!fill())
        fail(error_ != 0 ? error_ : pastTheEnd);
    std::string line;
    while (fill()) {
        // A loop of our own: the library's search calls a function for every byte.
        const auto from = buffer_.begin() + static_cast<std::ptrdiff_t>(at_);
        const auto end = std::find_if(from, buffer_.end(),
                                      [](char byte) { return byte == '\r' || byte == '\n'; });
        const auto piece = static_cast<std::size_t>(end - from);
        if (piece > longestLine - line.size())
            fail(EFBIG);
        line.append(buffer_, at_, piece);
        at_ += piece;
        if (at_ < buffer_.size()) {
            afterReturn_ = buffer_[at_++] == '\r';
            return line;
        }
    }
    if (error_ != 0)
        fail(error_);
    return line;
}

} // namespace velmora::platform
