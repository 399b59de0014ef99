// A disk that does not answer, for any program that loads this library ahead of the C library: what
// asks about a path below the folder VELMORA_DEAD_DISK hangs for as long as the file of that name
// and ".dead" is there. With "reads" in it only the reading of bytes hangs: the system still knows
// names and sizes of what it was asked before.

#include <cstdarg>
#include <cstdlib>
#include <ctime>
#include <dlfcn.h>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// Never freed: whoever hangs here is still at it when the program ends.
const std::string &folder() {
    static const auto *const theFolder = [] {
        const char *name = std::getenv("VELMORA_DEAD_DISK");
        return new std::string(name ? name : "");
    }();
    return *theFolder;
}

std::string gate() {
    static const auto *const name = new std::string(folder() + ".dead");
    const long file = syscall(SYS_openat, AT_FDCWD, name->c_str(), O_RDONLY | O_CLOEXEC, 0);
    if (file < 0)
        return {};
    char text[8] = {};
    const long size = syscall(SYS_read, file, text, sizeof text);
    syscall(SYS_close, file);
    return "x" + std::string(text, static_cast<std::size_t>(size > 0 ? size : 0));
}

bool liesThere(std::string_view path) {
    return !folder().empty() && path.starts_with(folder()) &&
           (path.size() == folder().size() || path[folder().size()] == '/');
}

void hangWhile(bool names) {
    for (std::string text = gate(); !text.empty(); text = gate()) {
        if (names && text.starts_with("xreads"))
            return;
        const timespec moment{0, 5'000'000};
        syscall(SYS_nanosleep, &moment, nullptr);
    }
}

void askName(const char *path) {
    if (path != nullptr && liesThere(path))
        hangWhile(true);
}

void askBytes(int file) {
    if (folder().empty())
        return;
    char path[4096];
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    const long size = syscall(SYS_readlink, link.c_str(), path, sizeof path);
    if (size > 0 && liesThere({path, static_cast<std::size_t>(size)}))
        hangWhile(false);
}

template <class Function> Function *next(const char *name) {
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

int stat(const char *path, struct stat *info) {
    askName(path);
    return next<int(const char *, struct stat *)>("stat")(path, info);
}

int lstat(const char *path, struct stat *info) {
    askName(path);
    return next<int(const char *, struct stat *)>("lstat")(path, info);
}

int statx(int at, const char *path, int flags, unsigned mask, struct statx *info) {
    askName(path);
    return next<int(int, const char *, int, unsigned, struct statx *)>("statx")(at, path, flags,
                                                                                mask, info);
}

int open(const char *path, int flags, ...) {
    std::va_list more;
    va_start(more, flags);
    const auto mode = va_arg(more, mode_t);
    va_end(more);
    askName(path);
    return next<int(const char *, int, ...)>("open")(path, flags, mode);
}

int open64(const char *path, int flags, ...) {
    std::va_list more;
    va_start(more, flags);
    const auto mode = va_arg(more, mode_t);
    va_end(more);
    askName(path);
    return next<int(const char *, int, ...)>("open64")(path, flags, mode);
}

FILE *fopen(const char *path, const char *mode) {
    askName(path);
    return next<FILE *(const char *, const char *)>("fopen")(path, mode);
}

FILE *fopen64(const char *path, const char *mode) {
    askName(path);
    return next<FILE *(const char *, const char *)>("fopen64")(path, mode);
}

ssize_t read(int file, void *bytes, size_t count) {
    askBytes(file);
    return next<ssize_t(int, void *, size_t)>("read")(file, bytes, count);
}

ssize_t pread(int file, void *bytes, size_t count, off_t offset) {
    askBytes(file);
    return next<ssize_t(int, void *, size_t, off_t)>("pread")(file, bytes, count, offset);
}

ssize_t pread64(int file, void *bytes, size_t count, off64_t offset) {
    askBytes(file);
    return next<ssize_t(int, void *, size_t, off64_t)>("pread64")(file, bytes, count, offset);
}

} // extern "C"
