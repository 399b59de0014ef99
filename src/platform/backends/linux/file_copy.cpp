#include "platform/backends/linux/file_copy.h"

#include "platform/backends/linux/errors.h"
#include "platform/backends/linux/passing_name.h"
#include "text/path_text.h"

#include <fcntl.h>

#include <cerrno>

namespace velmora::platform {

namespace {

constexpr std::size_t pieceBytes = std::size_t{1} << 20;
constexpr mode_t permissionBits = 0777;

std::string withoutSeparators(std::string folder) {
    while (folder.size() > 1 && folder.back() == '/')
        folder.pop_back();
    return folder;
}

// Puts the copy in its place; false when what came there since it was looked is to stay.
bool finish(FileCopy &copy, bool replacing, const CopyTalk &talk) {
    try {
        copy.finish(replacing);
        return true;
    } catch (const RunTimeError &error) {
        if (error.number() != ErrorNumber::FileExists)
            throw;
    }
    if (!talk.mayReplace())
        return false;
    copy.finish(true);
    return true;
}

CopyOutcome copyOrRaise(std::u16string_view source, std::u16string_view folder,
                        const CopyTalk &talk, const FileCalls &calls, std::u16string &concerned) {
    concerned = source;
    FileCopy copy(pathBytes(source), pathBytes(folder), calls);
    const bool replacing = copy.isTaken();
    if (replacing && !talk.mayReplace())
        return CopyOutcome::Cancelled;
    concerned = folder;
    copy.begin();
    concerned = baseName(source);
    return talk.copyAll(copy) && finish(copy, replacing, talk) ? CopyOutcome::Done
                                                               : CopyOutcome::Cancelled;
}

} // namespace

FileCopy::FileCopy(const std::string &from, const std::string &folder, FileCalls calls)
    : folder_(withoutSeparators(folder)), target_(folder_ + "/" + from.substr(from.rfind('/') + 1)),
      calls_(std::move(calls)),
      source_(::open(from.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {
    if (!source_ || ::fstat(source_.number(), &about_) != 0)
        raiseSystemError(errno);
    if (!S_ISREG(about_.st_mode))
        raiseSystemError(EINVAL);
}

bool FileCopy::isTaken() const {
    struct ::stat there {};
    if (::stat(target_.c_str(), &there) == 0 && there.st_dev == about_.st_dev &&
        there.st_ino == about_.st_ino)
        raiseSystemError(EEXIST);
    if (::lstat(target_.c_str(), &there) != 0) {
        if (errno != ENOENT)
            raiseSystemError(errno);
        return false;
    }
    if (S_ISDIR(there.st_mode))
        raiseSystemError(EISDIR);
    return true;
}

void FileCopy::begin() {
    clearUnfinished(folder_);
    draft_.emplace(folder_, Draft::While::Unnamed, calls_);
    piece_.resize(pieceBytes);
}

bool FileCopy::copyPiece() {
    const ssize_t count = ::read(source_.number(), piece_.data(), piece_.size());
    if (count < 0 && errno != EINTR)
        raiseSystemError(errno);
    if (count > 0) {
        draft_->write({piece_.data(), static_cast<std::size_t>(count)});
        copied_ += count;
    }
    return count != 0;
}

double FileCopy::share() const noexcept {
    return about_.st_size > 0 ? static_cast<double>(copied_) / static_cast<double>(about_.st_size)
                              : 0.0;
}

void FileCopy::finish(bool replacing) {
    if (!isComplete_) {
        draft_->setMode(about_.st_mode & permissionBits);
        draft_->setTimes(about_.st_atim, about_.st_mtim);
        draft_->finish(Draft::Sure::All);
        isComplete_ = true;
    }
    if (replacing)
        draft_->replace(target_);
    else
        draft_->takeFreeName(target_);
}

CopyOutcome copyIntoFolder(std::u16string_view source, std::u16string_view folder,
                           const CopyTalk &talk, const FileCalls &calls) {
    std::u16string concerned;
    try {
        return copyOrRaise(source, folder, talk, calls, concerned);
    } catch (const RunTimeError &error) {
        talk.tellError(concerned, error);
        return CopyOutcome::Failed;
    }
}

} // namespace velmora::platform
