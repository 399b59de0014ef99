#pragma once

// INI files on the disk in memory, by the rules of the contract, with a log of the calls.

#include "platform/ansi.h"
#include "platform/profiles.h"

#include <string>
#include <vector>

namespace velmora::fakes {

class FakeFiles;

class FakeProfiles : public platform::Profiles {
public:
    FakeProfiles(const platform::AnsiText &ansi, FakeFiles &files) : ansi_(ansi), files_(files) {}

    // "read SECTION KEY FALLBACK SIZE FILE", "write SECTION KEY VALUE FILE" ("-": a null value),
    // "size NUMBER".
    std::vector<std::u16string> log;
    bool writesFail = false;

    std::u16string GetPrivateProfileStringA(std::u16string_view section, std::u16string_view key,
                                            std::u16string_view fallback, std::size_t size,
                                            std::u16string_view file) override;
    std::vector<std::u16string> GetPrivateProfileKeysA(std::u16string_view section,
                                                       std::u16string_view file) override;
    bool WritePrivateProfileStringA(std::u16string_view section, std::u16string_view key,
                                    std::optional<std::u16string_view> value,
                                    std::u16string_view file) override;
    // Holds nothing back: each write lies on the disk at once. "hold FILE", "release FILE".
    std::unique_ptr<Hold> holdFile(std::u16string_view file) override;
    std::u16string StrFormatByteSizeA(std::int32_t size) override;

private:
    struct Place {
        std::vector<std::u16string> lines;
        std::size_t sectionEnd = 0;      // where a new key goes; 0: no such section
        std::optional<std::size_t> line; // of the key
    };
    Place find(std::u16string_view section, std::u16string_view key, std::u16string_view file);

    const platform::AnsiText &ansi_;
    FakeFiles &files_;
};

} // namespace velmora::fakes
