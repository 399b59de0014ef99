#pragma once

// The file system (contract: platform/files.h).

#include "platform/backends/linux/directory.h"
#include "platform/backends/linux/file_calls.h"
#include "platform/backends/linux/patient_disk.h"
#include "platform/contracts/ansi.h"
#include "platform/contracts/files.h"

namespace velmora::platform {

class LinuxFiles : public FileSystem {
public:
    // `ansi` encodes what `CreateTextFile` writes.
    explicit LinuxFiles(const AnsiText &ansi, FileCalls calls = {})
        : ansi_(ansi), calls_(std::move(calls)) {}

    char16_t separator() const override { return u'/'; }
    char16_t separatorOf(std::u16string_view path) const override;
    std::u16string Dir(std::u16string_view path, SearchFor what = SearchFor::Files) override;
    std::vector<std::u16string> list(std::u16string_view folder, SearchFor what,
                                     std::uint32_t walk = 0) override;
    std::int64_t FileLen(std::u16string_view path) override;
    std::unique_ptr<LineReader> openInput(std::u16string_view path) override;
    std::string readBytes(std::u16string_view path, std::int64_t offset,
                          std::size_t count) override;
    void writeWhole(std::u16string_view path, std::string_view bytes, bool durable) override;
    void writeNew(std::u16string_view path, std::string_view bytes, bool durable) override;
    void keepAs(std::u16string_view path, std::u16string_view keptPath) override;
    std::unique_ptr<OutputFile> CreateFileA(std::u16string_view path) override;
    void MkDir(std::u16string_view path) override;
    void Name(std::u16string_view from, std::u16string_view to) override;
    std::u16string GetShortPathNameA(std::u16string_view path) override;
    std::unique_ptr<FileSystemObject> CreateFileSystemObject() override;

private:
    void raiseIfSilent(std::u16string_view path);

    const AnsiText &ansi_;
    FileCalls calls_;
    PatientDisk disk_;
    FolderWalks walks_;
    // Goes on reading a folder that takes long when nobody waits any more.
    std::shared_ptr<NameSearch> names_ = std::make_shared<NameSearch>();
};

} // namespace velmora::platform
