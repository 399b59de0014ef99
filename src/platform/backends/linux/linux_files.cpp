#include "platform/backends/linux/linux_files.h"

#include "base/run_time_error.h"
#include "base/text.h"
#include "platform/backends/linux/atomic_write.h"
#include "platform/backends/linux/errors.h"
#include "platform/backends/linux/free_name.h"
#include "platform/backends/linux/line_reader.h"
#include "platform/backends/linux/open_file.h"
#include "platform/backends/linux/output_file.h"
#include "text/path_text.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace velmora::platform {

namespace {

struct OpenRegular {
    Descriptor file;
    struct ::stat info {};
};

OpenRegular openOrRaise(std::u16string_view path) {
    OpenRegular result;
    result.file = openRegular(systemPathOrRaise(path), result.info);
    if (!result.file)
        raiseSystemError(errno);
    return result;
}

template <class Answer> Answer inTime(std::optional<Answer> answer) {
    if (!answer)
        raiseSystemError(ETIMEDOUT);
    return *std::move(answer);
}

void write(std::u16string_view path, std::string_view bytes, bool durable, AtomicFile::Over over,
           const FileCalls &calls) {
    AtomicFile file(systemPathOrRaise(path), AtomicFile::While::Unnamed, over, calls);
    file.write(bytes);
    file.commit(durable);
}

void deleteFile(std::u16string_view path) {
    const std::string bytes = systemPathOrRaise(path);
    struct ::stat info {};
    if (::lstat(bytes.c_str(), &info) != 0)
        raiseSystemError(errno);
    if (S_ISDIR(info.st_mode))
        raiseSystemError(EISDIR);
    // By the bits alone: root could, and must not either.
    if (S_ISREG(info.st_mode) && (info.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0)
        raiseSystemError(EACCES);
    if (::unlink(bytes.c_str()) != 0)
        raiseSystemError(errno);
}

// Whether two names of a folder that differ in case alone are one file's: a file system that does
// not tell them apart lists only the one.
bool areOneFiles(std::u16string_view from, std::u16string_view to) {
    if (!equalsIgnoringCase(baseName(from), baseName(to)))
        return false;
    const std::u16string folder(folderPart(from));
    std::error_code error;
    bool hasOld = false;
    bool hasNew = false;
    for (std::filesystem::directory_iterator entry(folder.empty() ? "." : pathBytes(folder), error),
         end;
         !error && entry != end; entry.increment(error)) {
        const std::string name = entry->path().filename();
        hasOld = hasOld || name == pathBytes(baseName(from));
        hasNew = hasNew || name == pathBytes(baseName(to));
    }
    return !error && hasOld && !hasNew;
}

class LinuxFileObject : public FileSystemObject {
public:
    LinuxFileObject(const AnsiText &ansi, FileCalls calls, PatientDisk &disk)
        : ansi_(ansi), calls_(std::move(calls)), disk_(disk) {}

    void CreateTextFile(std::u16string_view path, std::u16string_view text) override {
        write(path, ansi_.encode(text), false, AtomicFile::Over::OldFile, calls_);
    }

    void DeleteFile(std::u16string_view path) override { deleteFile(path); }

    std::time_t DateCreated(std::u16string_view path) override {
        const std::string bytes = systemPathOrRaise(path);
        return inTime(disk_.ask(bytes, [bytes] {
            struct ::statx info {};
            if (::statx(AT_FDCWD, bytes.c_str(), 0, STATX_BTIME | STATX_MTIME, &info) != 0)
                raiseSystemError(errno);
            const bool hasBirth = (info.stx_mask & STATX_BTIME) != 0;
            return static_cast<std::time_t>(hasBirth ? info.stx_btime.tv_sec
                                                     : info.stx_mtime.tv_sec);
        }));
    }

private:
    const AnsiText &ansi_;
    FileCalls calls_;
    PatientDisk &disk_;
};

} // namespace

char16_t LinuxFiles::separatorOf(std::u16string_view path) const { return pathSeparatorOf(path); }

std::u16string LinuxFiles::Dir(std::u16string_view path, SearchFor what) {
    const auto bytes = systemPath(path);
    if (!bytes)
        return {};
    return disk_
        .ask(*bytes, [names = names_, path = std::u16string(path),
                      what] { return names->find(path, what); })
        .value_or(u"");
}

std::vector<std::u16string> LinuxFiles::list(std::u16string_view folder, SearchFor what,
                                             std::uint32_t walk) {
    const auto bytes = systemPath(folder);
    if (!bytes || disk_.isSilent(*bytes))
        return {};
    return walks_.list(folder, what, walk);
}

std::int64_t LinuxFiles::FileLen(std::u16string_view path) {
    const std::string bytes = systemPathOrRaise(path);
    return inTime(disk_.ask(bytes, [bytes]() -> std::int64_t {
        struct ::stat info {};
        if (::stat(bytes.c_str(), &info) != 0)
            raiseSystemError(errno);
        if (!S_ISREG(info.st_mode))
            raiseSystemError(S_ISDIR(info.st_mode) ? EISDIR : ESPIPE);
        return info.st_size;
    }));
}

std::unique_ptr<LineReader> LinuxFiles::openInput(std::u16string_view path) {
    raiseIfSilent(path);
    return std::make_unique<FileLineReader>(openOrRaise(path).file);
}

std::string LinuxFiles::readBytes(std::u16string_view path, std::int64_t offset,
                                  std::size_t count) {
    const auto read = [path = std::u16string(path), offset, count] {
        const OpenRegular open = openOrRaise(path);
        auto bytes = readAt(open.file.number(), offset, count);
        if (!bytes)
            raiseSystemError(errno);
        return *std::move(bytes);
    };
    return inTime(disk_.ask(systemPathOrRaise(path), read, PatientDisk::About::Bytes));
}

// For what cannot be left to itself, such as a write.
void LinuxFiles::raiseIfSilent(std::u16string_view path) {
    if (disk_.isSilent(systemPathOrRaise(path)))
        raiseSystemError(ETIMEDOUT);
}

void LinuxFiles::writeWhole(std::u16string_view path, std::string_view bytes, bool durable) {
    raiseIfSilent(path);
    write(path, bytes, durable, AtomicFile::Over::OldFile, calls_);
}

void LinuxFiles::writeNew(std::u16string_view path, std::string_view bytes, bool durable) {
    raiseIfSilent(path);
    write(path, bytes, durable, AtomicFile::Over::Nothing, calls_);
}

void LinuxFiles::keepAs(std::u16string_view path, std::u16string_view keptPath) {
    constexpr std::size_t step = std::size_t{1} << 20;
    const std::string file = afterLinks(systemPathOrRaise(path));
    replaceable(file);
    OpenRegular source;
    source.file = openRegular(file, source.info);
    // What may not be read cannot be copied, but it can be put aside whole.
    if (!source.file && errno == EACCES)
        return renameToFreeName(file, systemPathOrRaise(keptPath), calls_);
    if (!source.file)
        raiseSystemError(errno);
    AtomicFile kept(systemPathOrRaise(keptPath), AtomicFile::While::Unnamed,
                    AtomicFile::Over::Nothing, calls_);
    kept.takeAfter(source.file.number(), source.info);
    for (std::int64_t at = 0;;) {
        const auto bytes = readAt(source.file.number(), at, step);
        if (!bytes)
            raiseSystemError(errno);
        if (bytes->empty())
            break;
        kept.write(*bytes);
        at += static_cast<std::int64_t>(bytes->size());
    }
    kept.commit(true);
}

std::unique_ptr<OutputFile> LinuxFiles::CreateFileA(std::u16string_view path) {
    raiseIfSilent(path);
    return std::make_unique<LinuxOutputFile>(path);
}

void LinuxFiles::MkDir(std::u16string_view path) {
    raiseIfSilent(path);
    if (::mkdir(systemPathOrRaise(path).c_str(), 0777) != 0)
        raiseSystemError(errno);
}

void LinuxFiles::Name(std::u16string_view from, std::u16string_view to) {
    if (from == to)
        return;
    // Another folder means that the new name itself held a separator.
    const std::u16string_view name = baseName(to);
    if (folderPart(from) != folderPart(to) || name.empty() || name == u"." || name == u".." ||
        name.find(u'\0') != std::u16string_view::npos)
        raiseSystemError(EINVAL);
    const std::string source = systemPathOrRaise(from);
    const std::string target = pathBytes(to);
    try {
        renameToFreeName(source, target, calls_);
    } catch (const RunTimeError &error) {
        if (error.number() != ErrorNumber::FileExists || !areOneFiles(from, to))
            throw;
        if (calls_.rename(source.c_str(), target.c_str(), 0) != 0)
            raiseSystemError(errno);
    }
    syncFolder(folderOf(target)); // ahead of the list that knows the new name alone
}

std::u16string LinuxFiles::GetShortPathNameA(std::u16string_view path) { return shortPath(path); }

std::unique_ptr<FileSystemObject> LinuxFiles::CreateFileSystemObject() {
    return std::make_unique<LinuxFileObject>(ansi_, calls_, disk_);
}

} // namespace velmora::platform
