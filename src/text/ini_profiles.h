#pragma once

// INI files over the file system (contract: platform/profiles.h).

#include "platform/contracts/ansi.h"
#include "platform/contracts/files.h"
#include "platform/contracts/profiles.h"
#include "text/ini_text.h"

namespace velmora::platform {

class IniProfiles : public Profiles {
public:
    // A longer file counts as unreadable.
    static constexpr std::int64_t longestFile = std::int64_t{16} << 20;

    IniProfiles(FileSystem &files, const AnsiText &ansi) : files_(files), ansi_(ansi) {}

    std::u16string GetPrivateProfileStringA(std::u16string_view section, std::u16string_view key,
                                            std::u16string_view fallback, std::size_t size,
                                            std::u16string_view file) override;
    std::vector<std::u16string> GetPrivateProfileKeysA(std::u16string_view section,
                                                       std::u16string_view file) override;
    bool WritePrivateProfileStringA(std::u16string_view section, std::u16string_view key,
                                    std::optional<std::u16string_view> value,
                                    std::u16string_view file) override;
    std::unique_ptr<Hold> holdFile(std::u16string_view file) override;
    std::u16string StrFormatByteSizeA(std::int32_t size) override;

private:
    class HoldOfFile;
    // A file that is held, and which of its lines are to go.
    struct Held {
        std::u16string file;
        std::string bytes;
        IniText text;
        std::vector<FileLine> lines;
        std::vector<bool> isRemoved;
        bool isChanged = false;
    };

    std::optional<std::string> bytesOf(std::u16string_view file);
    const IniText &parsed(const std::string &bytes);
    bool isHeld(std::u16string_view file) const { return held_ && held_->file == file; }
    void hold(std::u16string_view file);
    void release();
    bool removeHeld(std::u16string_view section, std::u16string_view key);

    FileSystem &files_;
    const AnsiText &ansi_;
    // The last content read: its readers ask for one value after the other.
    std::string lastBytes_;
    IniText last_;
    std::optional<Held> held_;
};

} // namespace velmora::platform
