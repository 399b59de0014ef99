#pragma once

// The real INI files over the disk in memory, with a log of the calls and writes that fail on
// request: what a test proves of them is what the program does.

#include "platform/contracts/ansi.h"
#include "platform/contracts/profiles.h"
#include "tests/fakes/fake_files.h"
#include "text/ini_profiles.h"

#include <string>
#include <vector>

namespace velmora::fakes {

class FakeProfiles : public platform::Profiles {
public:
    FakeProfiles(const platform::AnsiText &ansi, FakeFiles &files) : real_(files, ansi) {}

    // "read SECTION KEY FALLBACK SIZE FILE", "keys SECTION FILE", "write SECTION KEY VALUE FILE"
    // ("-": a null value), "size NUMBER", "hold FILE", "release FILE".
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
    std::unique_ptr<Hold> holdFile(std::u16string_view file) override;
    std::u16string StrFormatByteSizeA(std::int32_t size) override;

private:
    platform::IniProfiles real_;
};

} // namespace velmora::fakes
