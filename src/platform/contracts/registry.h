#pragma once

// The registry: keys and typed values below a hive, kept with their exact bytes.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace velmora::platform {

inline constexpr std::uint32_t HKEY_LOCAL_MACHINE = 0x80000002;

inline constexpr std::uint32_t REG_SZ = 1;
inline constexpr std::uint32_t REG_DWORD = 4;

inline constexpr std::int32_t ERROR_SUCCESS = 0;
inline constexpr std::int32_t ERROR_FILE_NOT_FOUND = 2;
inline constexpr std::int32_t ERROR_ACCESS_DENIED = 5;
inline constexpr std::int32_t ERROR_INVALID_HANDLE = 6;

using RegistryHandle = std::int32_t;

// What is asked for through the management provider: a separate reading road on the design's
// platform. A value that is missing, lies below a missing key or has another type is absent.
class StdRegProv {
public:
    virtual ~StdRegProv() = default;
    virtual std::optional<std::u16string> GetStringValue(std::uint32_t hive,
                                                         std::u16string_view subKey,
                                                         std::u16string_view valueName) = 0;
    virtual std::optional<std::uint32_t> GetDWORDValue(std::uint32_t hive,
                                                       std::u16string_view subKey,
                                                       std::u16string_view valueName) = 0;
};

// Key and value names compare without regard to case; "\" separates keys in every system.
class Registry {
public:
    virtual ~Registry() = default;

    // Opens or creates the key with its parents. The results are ERROR_ numbers.
    virtual std::int32_t RegCreateKeyA(std::uint32_t hive, std::u16string_view subKey,
                                       RegistryHandle &handle) = 0;

    // REG_SZ: the first `byteCount` bytes of the text's ANSI form, which may take in a terminating
    // zero; the text ends at its first NUL when read. The count is kept as part of the value.
    virtual std::int32_t RegSetValueExA(RegistryHandle handle, std::u16string_view valueName,
                                        std::uint32_t type, std::u16string_view text,
                                        std::uint32_t byteCount) = 0;
    // REG_DWORD: four bytes.
    virtual std::int32_t RegSetValueExA(RegistryHandle handle, std::u16string_view valueName,
                                        std::uint32_t value) = 0;

    // Waits until what was written so far lies on the disk; where nothing changed, for nothing.
    virtual std::int32_t RegFlushKey(RegistryHandle handle) = 0;

    virtual std::int32_t RegCloseKey(RegistryHandle handle) = 0;

    // Deletes the key with its values; ERROR_FILE_NOT_FOUND when there is none. A key that still
    // has sub-keys stays, with ERROR_ACCESS_DENIED.
    virtual std::int32_t RegDeleteKeyA(std::uint32_t hive, std::u16string_view subKey) = 0;

    // The provider, obtained anew by moniker for each reading routine. Raises when there is none.
    virtual std::shared_ptr<StdRegProv> GetObject(std::u16string_view moniker) = 0;
};

} // namespace velmora::platform
