#pragma once

// Values in INI files, and the sizes that people read.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::platform {

class Profiles {
public:
    virtual ~Profiles() = default;

    // Sections and keys compare without regard to case; the first section and the first key win. A
    // ";" starts a comment only at a line's start. A value is trimmed of blanks and tabs and loses
    // one pair of matching ' or " around it. At most `size` - 1 UTF-16 units come back, never half
    // a pair. `fallback` when the file, section or key is missing.
    virtual std::u16string GetPrivateProfileStringA(std::u16string_view section,
                                                    std::u16string_view key,
                                                    std::u16string_view fallback, std::size_t size,
                                                    std::u16string_view file) = 0;

    // `GetPrivateProfileStringA` with a null key: the names of the section's keys, each once.
    virtual std::vector<std::u16string> GetPrivateProfileKeysA(std::u16string_view section,
                                                               std::u16string_view file) = 0;

    // A null value removes the key; the file is rewritten only when the key is there. A file that
    // does not exist is not made for that.
    virtual bool WritePrivateProfileStringA(std::u16string_view section, std::u16string_view key,
                                            std::optional<std::u16string_view> value,
                                            std::u16string_view file) = 0;

    // As long as the result lives the file is taken as it was found: it is read once, and the keys
    // that are removed go from it together, in one writing, with the result. For those who ask for
    // a great many keys of a file of somebody else's making: by itself each removal writes the
    // whole file. One at a time; the result must not outlive this object.
    class Hold {
    public:
        Hold() = default;
        Hold(const Hold &) = delete;
        Hold &operator=(const Hold &) = delete;
        virtual ~Hold() = default;
    };
    [[nodiscard]] virtual std::unique_ptr<Hold> holdFile(std::u16string_view file) = 0;

    // Below 1024 "N bytes", else KB, MB, GB behind a blank with three significant digits, cut and
    // not rounded ("1.30 KB", "22.9 KB", "235 KB"), always English.
    virtual std::u16string StrFormatByteSizeA(std::int32_t size) = 0;
};

} // namespace velmora::platform
