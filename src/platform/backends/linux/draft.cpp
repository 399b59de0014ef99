#include "platform/backends/linux/draft.h"

#include "platform/backends/linux/errors.h"
#include "platform/backends/linux/free_name.h"
#include "platform/backends/linux/open_file.h"
#include "platform/backends/linux/passing_name.h"

#include <fcntl.h>
#include <sys/xattr.h>

#include <cerrno>

namespace velmora::platform {

namespace {

constexpr int mostNames = 100;
constexpr mode_t modeBits = 07777;
constexpr char accessRights[] = "system.posix_acl_access";

// The rights of single users, which the folder may have given the new file and the old one had not;
// and what people and programs have noted beside the content. Other attributes are the system's.
bool isKept(std::string_view attribute) noexcept {
    return attribute == accessRights || attribute.substr(0, 5) == "user.";
}

std::string attributeNames(int file) {
    const ssize_t size = ::flistxattr(file, nullptr, 0);
    std::string names(size > 0 ? static_cast<std::size_t>(size) : 0, '\0');
    const ssize_t got = ::flistxattr(file, names.data(), names.size());
    names.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
    return names;
}

void copyAttribute(int from, int to, const char *name) {
    const ssize_t size = ::fgetxattr(from, name, nullptr, 0);
    if (size < 0)
        return;
    std::string value(static_cast<std::size_t>(size), '\0');
    const ssize_t got = ::fgetxattr(from, name, value.data(), value.size());
    if (got >= 0)
        ::fsetxattr(to, name, value.data(), static_cast<std::size_t>(got), 0);
}

void copyAttributes(int from, int to) {
    ::fremovexattr(to, accessRights);
    const std::string names = attributeNames(from);
    for (std::size_t at = 0; at < names.size();
         at += std::char_traits<char>::length(&names[at]) + 1)
        if (isKept(&names[at]))
            copyAttribute(from, to, &names[at]);
}

// A file of another user, written by root, stays that user's, and one of a group its group's. Where
// that is not allowed the new file is the writer's, as with any program.
void copyOwnership(int to, const struct ::stat &old) {
    constexpr auto sameUser = static_cast<uid_t>(-1);
    struct ::stat now {};
    if (::fstat(to, &now) == 0 && now.st_uid == old.st_uid && now.st_gid == old.st_gid)
        return;
    [[maybe_unused]] const bool isAllowed =
        ::fchown(to, old.st_uid, old.st_gid) == 0 || ::fchown(to, sameUser, old.st_gid) == 0;
}

// Whether an error says that a file without a name can be given none here.
bool isNotLinkable(int error) noexcept {
    return isNotKnownHere(error) || error == EXDEV || error == ENOENT;
}

} // namespace

Draft::Draft(std::string folder, While writing, FileCalls calls)
    : calls_(std::move(calls)), folder_(std::move(folder)) {
    if (writing == While::Unnamed)
        file_ = Descriptor(calls_.openNameless(folder_.c_str()));
    if (!file_)
        makeNamed();
    holdUnfinished(file_.number());
}

Draft::~Draft() {
    if (!passing_.empty())
        ::unlink(passing_.c_str());
}

void Draft::makeNamed() {
    calls_.beforePassingName(folder_);
    for (int number = 0; number < mostNames; ++number) {
        std::string name = passingName(folder_, number);
        file_ = Descriptor(::open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        if (file_) {
            passing_ = std::move(name);
            return;
        }
        if (errno != EEXIST)
            break;
    }
    raiseSystemError(errno);
}

void Draft::write(std::string_view bytes) {
    if (!writeAll(file_.number(), bytes))
        raiseSystemError(errno);
    written_ += bytes.size();
}

void Draft::setMode(mode_t mode) {
    if (calls_.setMode(file_.number(), mode) != 0 && !isNotKnownHere(errno))
        raiseSystemError(errno);
}

void Draft::setTimes(const std::timespec &access, const std::timespec &change) {
    const std::timespec both[] = {access, change};
    if (calls_.setTimes(file_.number(), both) != 0 && !isNotKnownHere(errno))
        raiseSystemError(errno);
}

void Draft::takeAfter(int other, const struct ::stat &about) {
    copyOwnership(file_.number(), about);
    copyAttributes(other, file_.number());
    setMode(about.st_mode & modeBits); // last, since owner and rights change it
}

void Draft::finish(Sure sure) {
    struct ::stat info {};
    if (::fstat(file_.number(), &info) != 0)
        raiseSystemError(errno);
    if (info.st_size < 0 || static_cast<std::size_t>(info.st_size) != written_)
        raiseSystemError(EIO);
    sure_ = sure;
    sync();
    // A network file system reports the last write here. One without a name lies on a local disk,
    // and is gone when it is closed.
    if (!passing_.empty() && file_.close() != 0)
        raiseSystemError(errno);
}

void Draft::sync() {
    int outcome = 0;
    if (sure_ == Sure::All)
        outcome = ::fsync(file_.number());
    else if (sure_ == Sure::Content && !calls_.putsContentFirst(file_.number()))
        outcome = calls_.syncContent(file_.number());
    if (outcome != 0 && !isNotKnownHere(errno))
        raiseSystemError(errno);
}

// 0, or why the file cannot have this name, in the system's numbers.
int Draft::link(const std::string &name) {
    const std::string itself = "/proc/self/fd/" + std::to_string(file_.number());
    return calls_.link(itself.c_str(), name.c_str(), AT_SYMLINK_FOLLOW) == 0 ? 0 : errno;
}

// A file without a name cannot take another one's at once: it gets a passing one first.
void Draft::replace(const std::string &target) {
    int error = EEXIST;
    if (passing_.empty())
        calls_.beforePassingName(folder_);
    for (int number = 0; passing_.empty() && error == EEXIST && number < mostNames; ++number) {
        std::string name = passingName(folder_, number);
        error = link(name);
        if (error == 0)
            passing_ = std::move(name);
        else if (isNotLinkable(error))
            rewriteNamed();
    }
    if (passing_.empty())
        raiseSystemError(error);
    if (calls_.rename(passing_.c_str(), target.c_str(), 0) != 0)
        raiseSystemError(errno);
    passing_.clear();
    syncName();
}

void Draft::takeFreeName(const std::string &target) {
    const int error = passing_.empty() ? link(target) : 0;
    if (isNotLinkable(error))
        rewriteNamed();
    else if (error != 0)
        raiseSystemError(error);
    if (!passing_.empty())
        renameToFreeName(passing_, target, calls_);
    passing_.clear();
    syncName();
}

// The same content once more, with a passing name.
void Draft::rewriteNamed() {
    constexpr std::size_t step = std::size_t{1} << 20;
    struct ::stat about {};
    const Descriptor nameless = std::move(file_);
    if (::fstat(nameless.number(), &about) != 0)
        raiseSystemError(errno);
    makeNamed();
    holdUnfinished(file_.number());
    for (written_ = 0; written_ < static_cast<std::size_t>(about.st_size);) {
        const auto bytes = readAt(nameless.number(), static_cast<std::int64_t>(written_), step);
        if (!bytes || bytes->empty())
            raiseSystemError(bytes ? EIO : errno);
        write(*bytes);
    }
    takeAfter(nameless.number(), about);
    setTimes(about.st_atim, about.st_mtim);
    finish(sure_);
}

// The content is in place: a folder that cannot be synced is no failure of the write.
void Draft::syncName() {
    if (sure_ == Sure::All)
        syncFolder(folder_);
}

} // namespace velmora::platform
