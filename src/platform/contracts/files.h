#pragma once

// Files, folders and paths.
//
// Paths are the platform's own texts. A path with a drive letter or a leading "\\" separates at
// "\", any other at "/", so that a list brought from another machine shows proper names. Where the
// program composes a path it asks for `separator()`. A path goes to the operating system as its own
// bytes. "*" and "?" are ordinary characters. An empty path never exists.
//
// Operations that fail raise RunTimeError with the system's own description, unless they say what
// they answer instead.

#include "base/geometry.h"

#include <cstdint>
#include <ctime>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::platform {

// What a directory search asks for.
enum class SearchFor { Files, Folders };

// Reads a text file line by line. A line ends at CR, CR LF or LF; a last line without an end
// counts. A bare LF is taken here alone, because every text tool of this system writes it.
class LineReader {
public:
    virtual ~LineReader() = default;
    virtual bool endOfFile() = 0;
    // The next line's bytes without its end. Raises on a read error, on a line of more than 32 MB,
    // and at the end of the file. After a raised error the reader is at its end.
    virtual std::string readLine() = 0;
};

// A file open for writing piece by piece: what a transfer stores its packets in. Small pieces are
// collected; all of it lies in the file when the object goes, at the latest. What was written
// stays, whole or not.
class OutputFile {
public:
    virtual ~OutputFile() = default;
    // Absolute position in bytes from the start.
    virtual void SetFilePointer(std::int64_t position) = 0;
    // False when not every byte went out: of this piece, or of those collected before it.
    virtual bool WriteFile(std::string_view bytes) = 0;
};

// The platform's object for whole files.
class FileSystemObject {
public:
    virtual ~FileSystemObject() = default;
    // CreateTextFile(path, True), Write, Close in one: the ANSI form of `text` is the whole
    // content. An existing file is replaced only by a complete new one.
    virtual void CreateTextFile(std::u16string_view path, std::u16string_view text) = 0;
    // Unlinks the exact name: a link goes, never its target. A folder, a missing file and a file
    // without any write bit raise.
    virtual void DeleteFile(std::u16string_view path) = 0;
    // Birth time where the file system keeps one, else modification time.
    virtual std::time_t DateCreated(std::u16string_view path) = 0;
};

class FileSystem {
public:
    virtual ~FileSystem() = default;

    // The separator for new paths: "/" here.
    virtual char16_t separator() const = 0;
    // The separator at which this path divides.
    virtual char16_t separatorOf(std::u16string_view path) const = 0;

    // A directory search for one path: the bare name as it is on disk, or empty. Compares without
    // regard to case, an exact match first. Files: regular files, after links; dangling links,
    // pipes and devices are not found. Folders: folders only. Never raises.
    virtual std::u16string Dir(std::u16string_view path, SearchFor what = SearchFor::Files) = 0;

    // All names of a folder, sorted by upper-cased name, without those that begin with a dot; a
    // folder entered before in the same walk (device, inode) is empty. An unreadable folder is
    // empty. `walk` is the identity of the walk, 0 for a single listing.
    virtual std::vector<std::u16string> list(std::u16string_view folder, SearchFor what,
                                             std::uint32_t walk = 0) = 0;

    // Bytes; raises when the file is missing.
    virtual std::int64_t FileLen(std::u16string_view path) = 0;

    // "Open for input". Raises when it cannot be opened. Reading never blocks on a pipe or device:
    // those are refused.
    virtual std::unique_ptr<LineReader> openInput(std::u16string_view path) = 0;

    // Reads `count` bytes at `offset`; fewer at the end of the file. Raises on errors.
    virtual std::string readBytes(std::u16string_view path, std::int64_t offset,
                                  std::size_t count) = 0;

    // "Open for output, write, close": the whole new content at once. Written beside the old file
    // and renamed over it, every byte count and flush checked, so a failure of any kind leaves the
    // old file as it was and raises. Follows links and keeps the file's mode, rights and attributes
    // as far as the file system lets it. Refuses a target that is no regular file or has no write
    // bit, and any target directly below the root: that is where an empty folder leads. `durable`
    // also syncs file and folder; else a power cut leaves the old file or the new one, whole.
    virtual void writeWhole(std::u16string_view path, std::string_view bytes, bool durable) = 0;

    // The same for a file that is not there yet: whatever lies under that exact name, a dangling
    // link too, stays as it is, and "file exists" is raised. No link is followed.
    virtual void writeNew(std::u16string_view path, std::string_view bytes, bool durable) = 0;

    // Keeps the present file as a copy under another path before it is written over; one that may
    // be written but not read goes there itself. Raises as `writeWhole` does for the present file,
    // and when there is none, and as `writeNew` does for the copy.
    virtual void keepAs(std::u16string_view path, std::u16string_view keptPath) = 0;

    // CreateFileA with GENERIC_WRITE, no sharing and OPEN_ALWAYS: an existing file keeps its bytes
    // until they are overwritten. Raises when the target cannot be opened or is no regular file.
    virtual std::unique_ptr<OutputFile> CreateFileA(std::u16string_view path) = 0;

    // Makes one folder. Raises when something of that name is there or its own folder is not.
    virtual void MkDir(std::u16string_view path) = 0;

    // Renames within a folder, without ever replacing. The same path is success without action; a
    // file system that ignores case still spells its file anew. A new bare name with a separator or
    // NUL, or "." or "..", raises before the disk is touched: so does a new path in another folder,
    // since only such a name leads there.
    virtual void Name(std::u16string_view from, std::u16string_view to) = 0;

    // The path with every blank, quote, "%", control and non-ASCII byte as %XX: a text that needs
    // no quoting and is plain ASCII, of any length. Only the media engine decodes it.
    virtual std::u16string GetShortPathNameA(std::u16string_view path) = 0;

    virtual std::unique_ptr<FileSystemObject> CreateFileSystemObject() = 0;
};

} // namespace velmora::platform
