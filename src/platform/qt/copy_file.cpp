#include "platform/qt/copy_file.h"

#include "base/text.h"
#include "platform/linux/text/path_text.h"
#include "platform/qt/text_convert.h"

#include <QCoreApplication>
#include <QProgressDialog>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace velmora::platform::qt {

namespace {

constexpr std::size_t pieceBytes = 1 << 20;
constexpr int steps = 1000;
constexpr int patienceMs = 400; // no window for a copy that is over before one would notice
constexpr mode_t permissionBits = 0777;

class Descriptor {
public:
    explicit Descriptor(int number) noexcept : number_(number) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    int get() const noexcept { return number_; }
    bool close() noexcept {
        const int number = number_;
        number_ = -1;
        return number < 0 || ::close(number) == 0;
    }

private:
    int number_;
};

// The unfinished copy: gone at the end of its life unless it was renamed into place.
class Unfinished {
public:
    explicit Unfinished(std::string path) : path_(std::move(path)) {}
    ~Unfinished() {
        if (!path_.empty()) {
            ::unlink(path_.c_str());
        }
    }
    Unfinished(const Unfinished &) = delete;
    Unfinished &operator=(const Unfinished &) = delete;
    const std::string &path() const noexcept { return path_; }
    bool renameTo(const std::string &target) noexcept {
        if (::rename(path_.c_str(), target.c_str()) != 0) {
            return false;
        }
        path_.clear();
        return true;
    }

private:
    std::string path_;
};

bool writeAll(int file, const char *bytes, std::size_t count) {
    while (count > 0) {
        const ssize_t written = ::write(file, bytes, count);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        bytes += written;
        count -= static_cast<std::size_t>(written);
    }
    return true;
}

enum class Piece { More, End, Cancelled, Failed };

Piece copyPiece(int from, int to, std::vector<char> &buffer, std::int64_t &copied) {
    const ssize_t count = ::read(from, buffer.data(), buffer.size());
    if (count < 0) {
        return errno == EINTR ? Piece::More : Piece::Failed;
    }
    if (count == 0) {
        return Piece::End;
    }
    copied += count;
    return writeAll(to, buffer.data(), static_cast<std::size_t>(count)) ? Piece::More
                                                                        : Piece::Failed;
}

// After `Failed`, `error` is the system's number for it.
Piece copyBytes(int from, int to, std::int64_t size, const QString &label, int &error) {
    QProgressDialog progress(label, QStringLiteral("Esc"), 0, steps);
    progress.setWindowModality(Qt::ApplicationModal);
    progress.setMinimumDuration(patienceMs);
    std::vector<char> buffer(pieceBytes);
    std::int64_t copied = 0;
    for (;;) {
        const Piece piece = copyPiece(from, to, buffer, copied);
        error = errno; // before the window's end makes calls of its own
        if (piece != Piece::More) {
            return piece;
        }
        progress.setValue(size > 0 ? static_cast<int>(copied * (steps - 1) / size) : 0);
        QCoreApplication::processEvents();
        if (progress.wasCanceled()) {
            return Piece::Cancelled;
        }
    }
}

CopyOutcome tellError(QtWindowSystem &windows, std::u16string_view name, int error) {
    windows.MsgBox(std::u16string(name) + crLf + fromUtf8(std::strerror(error)), MsgBoxButtons::Ok,
                   MsgBoxIcon::Critical, u"Velmora 2011");
    return CopyOutcome::Failed;
}

} // namespace

CopyOutcome copyIntoFolder(QtWindowSystem &windows, std::u16string_view source,
                           std::u16string_view folder) {
    const std::u16string name(baseName(source));
    const std::string from = pathBytes(source);
    const std::string to = pathBytes(std::u16string(folder)) + "/" + pathBytes(name);

    Descriptor in(::open(from.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat about {};
    if (in.get() < 0 || ::fstat(in.get(), &about) != 0) {
        return tellError(windows, source, errno);
    }
    if (!S_ISREG(about.st_mode)) {
        return tellError(windows, source, EINVAL);
    }
    struct stat there {};
    if (::stat(to.c_str(), &there) == 0) {
        if (there.st_dev == about.st_dev && there.st_ino == about.st_ino) {
            return tellError(windows, source, EEXIST); // onto itself
        }
        if (windows.MsgBox(name + u"\r\n" + u"该文件已存在，是否覆盖？", MsgBoxButtons::YesNo,
                           MsgBoxIcon::Question, u"Velmora 2011") != MsgBoxResult::Yes) {
            return CopyOutcome::Cancelled;
        }
    }
    std::string pattern = pathBytes(std::u16string(folder)) + "/.velmora-copy-XXXXXX";
    Descriptor out(::mkostemp(pattern.data(), O_CLOEXEC));
    if (out.get() < 0) {
        return tellError(windows, folder, errno);
    }
    Unfinished unfinished(pattern);
    int error = 0;
    const Piece end = copyBytes(in.get(), out.get(), about.st_size, toShown(name), error);
    if (end == Piece::Cancelled) {
        return CopyOutcome::Cancelled;
    }
    if (end == Piece::Failed) {
        return tellError(windows, name, error);
    }
    const timespec times[2] = {about.st_atim, about.st_mtim};
    if (::fchmod(out.get(), about.st_mode & permissionBits) != 0 ||
        ::futimens(out.get(), times) != 0 || ::fsync(out.get()) != 0 || !out.close() ||
        !unfinished.renameTo(to)) {
        return tellError(windows, name, errno);
    }
    return CopyOutcome::Done;
}

} // namespace velmora::platform::qt
