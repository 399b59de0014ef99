#pragma once

// A file system in memory. Paths are absolute and separate at "/" (or "\" with a drive letter); a
// file's folders come into being with it. Exact bytes, failures on request, a log of what changed
// the disk.

#include "base/run_time_error.h"
#include "platform/contracts/ansi.h"
#include "platform/contracts/files.h"

#include <functional>
#include <map>
#include <set>

namespace velmora::fakes {

class FakeFiles : public platform::FileSystem {
public:
    explicit FakeFiles(const platform::AnsiText &ansi) : ansi_(ansi) {}
    ~FakeFiles() override;

    // --- what lies on the disk ---
    void addFile(std::u16string_view path, std::string bytes = {});
    void addFolder(std::u16string_view path);
    // Something that is neither file nor folder: a pipe, a device, a dangling link.
    void addSpecial(std::u16string_view path);
    void remove(std::u16string_view path);
    bool hasFile(std::u16string_view path) const;
    bool hasFolder(std::u16string_view path) const;
    // A file's bytes; a missing file fails the test.
    std::string contents(std::u16string_view path) const;
    // Every file's path in order.
    std::vector<std::u16string> files() const;
    void setDateCreated(std::u16string_view path, std::time_t when);
    // A file of this length whose bytes are not held; reading it gives zeros.
    void setLength(std::u16string_view path, std::int64_t bytes);

    // --- failures, until taken back ---
    // A file that nothing may write to or delete; a folder in which nothing may be made or removed.
    void setReadOnly(std::u16string_view path, bool readOnly = true);
    // A file that nothing may read, a folder that lists empty.
    void setUnreadable(std::u16string_view path, bool unreadable = true);
    // A file that the disk cannot tell of: a search does not find it, all else raises DeviceIo.
    void setUnreachable(std::u16string_view path, bool unreachable = true);
    // Bytes that can still be written before the disk is full; absent: no limit.
    void setFreeSpace(std::optional<std::size_t> bytes) { freeSpace_ = bytes; }
    // Reading line `line` (from 0) of the file raises.
    void failReadAtLine(std::u16string_view path, std::size_t line);
    // The next such operation raises this, whatever the path. Never asked for: fails the test.
    // Operations: "CreateTextFile", "DeleteFile", "DateCreated", "FileLen", "openInput",
    // "readBytes", "writeWhole", "writeNew", "keepAs", "Name", "CreateFileSystemObject",
    // "CreateFileA", "MkDir"; "WriteFile" gives false instead of raising.
    void failNext(const std::string &operation, ErrorNumber number = ErrorNumber::DeviceIo,
                  std::u16string description = {});

    // --- what was asked ---
    // How often an operation ran, failed ones included; also "Dir", "list", "GetShortPathNameA".
    int calls(const std::string &operation) const;
    void clearCalls() { calls_.clear(); }
    // "write PATH", "delete PATH", "rename FROM TO", "keep FROM TO" that succeeded, in order;
    // a durable write is "sync PATH"; a file opened for writing is "open PATH", a
    // folder "make PATH".
    const std::vector<std::u16string> &changes() const { return changes_; }
    void clearChanges() { changes_.clear(); }
    // Runs at each counted operation, with its name, before it does anything; also when a file that
    // was opened for writing is closed ("CloseHandle").
    std::function<void(const std::string &operation)> onCall;
    // Runs before each line is read, for tests of what happens meanwhile.
    std::function<void(std::u16string_view path, std::size_t line)> beforeLine;

    // --- the contract ---
    char16_t separator() const override { return u'/'; }
    char16_t separatorOf(std::u16string_view path) const override;
    std::u16string Dir(std::u16string_view path,
                       platform::SearchFor what = platform::SearchFor::Files) override;
    std::vector<std::u16string> list(std::u16string_view folder, platform::SearchFor what,
                                     std::uint32_t walk = 0) override;
    std::int64_t FileLen(std::u16string_view path) override;
    std::unique_ptr<platform::LineReader> openInput(std::u16string_view path) override;
    std::string readBytes(std::u16string_view path, std::int64_t offset,
                          std::size_t count) override;
    void writeWhole(std::u16string_view path, std::string_view bytes, bool durable) override;
    void writeNew(std::u16string_view path, std::string_view bytes, bool durable) override;
    void keepAs(std::u16string_view path, std::u16string_view keptPath) override;
    std::unique_ptr<platform::OutputFile> CreateFileA(std::u16string_view path) override;
    void MkDir(std::u16string_view path) override;
    void Name(std::u16string_view from, std::u16string_view to) override;
    std::u16string GetShortPathNameA(std::u16string_view path) override;
    std::unique_ptr<platform::FileSystemObject> CreateFileSystemObject() override;

private:
    class Object;
    class Output;
    class Reader;
    enum class Kind { File, Folder, Special };
    struct Entry {
        Kind kind = Kind::File;
        std::string bytes;
        std::int64_t length = -1; // stands for the bytes' own when not negative
        std::time_t created = 0;
        bool readOnly = false;
        bool unreadable = false;
        bool unreachable = false;
        std::optional<std::size_t> failAtLine;
    };
    struct Failure {
        ErrorNumber number;
        std::u16string description;
    };

    static std::u16string normal(std::u16string_view path);
    static std::u16string parentOf(std::u16string_view path);
    void makeParents(std::u16string_view path);
    const Entry *find(std::u16string_view path) const;
    Entry *find(std::u16string_view path);
    Entry &readable(std::u16string_view path);
    void count(const std::string &operation);
    void checkFolderWritable(std::u16string_view path) const;
    void checkTarget(std::u16string_view path) const;
    void store(std::u16string_view path, std::string_view bytes);
    void deleteFile(std::u16string_view path);
    std::time_t dateCreated(std::u16string_view path);
    void note(std::u16string_view what, std::u16string_view path, std::u16string_view target = {});

    const platform::AnsiText &ansi_;
    std::map<std::u16string, Entry> entries_;
    std::map<std::string, int> calls_;
    std::multimap<std::string, Failure> failures_;
    std::vector<std::u16string> changes_;
    std::optional<std::size_t> freeSpace_;
    std::map<std::uint32_t, std::set<std::u16string>> walks_;
};

} // namespace velmora::fakes
