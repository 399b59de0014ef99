#pragma once

// The registry over one SQLite file (contract: platform/registry.h).
//
// Each value written is a transaction of its own, in a write-ahead journal without a sync: ending
// the process at any instant leaves the last or the last but one state. A power cut may take what
// was written since the last `RegFlushKey`. Texts are kept as Unicode with the type and the byte
// count that were given.
//
// Where the file cannot be written or made, writes answer an ERROR_ number; where it is locked by
// another process or missing, reads answer absence, after at most 200 ms of waiting in all. A
// damaged file is kept aside and a fresh one made; one of a newer version is read alone.

#include "platform/backends/registry/sqlite_database.h"
#include "platform/contracts/ansi.h"
#include "platform/contracts/registry.h"

#include <map>
#include <utility>
#include <vector>

namespace velmora::platform {

inline constexpr std::int32_t ERROR_DISK_FULL = 112;
inline constexpr std::int32_t ERROR_BUSY = 170;
inline constexpr std::int32_t ERROR_REGISTRY_IO_FAILED = 1016;
inline constexpr std::int32_t ERROR_KEY_DELETED = 1018;

class SqliteRegistry : public Registry {
public:
    // `file` is the path's own bytes; the file and its folders are made at the first use. `ansi`
    // measures byte counts, and is first asked when a text beyond ASCII is written.
    SqliteRegistry(std::string file, const AnsiText &ansi, FileCalls calls = {});
    ~SqliteRegistry() override;

    std::int32_t RegCreateKeyA(std::uint32_t hive, std::u16string_view subKey,
                               RegistryHandle &handle) override;
    std::int32_t RegSetValueExA(RegistryHandle handle, std::u16string_view valueName,
                                std::uint32_t type, std::u16string_view text,
                                std::uint32_t byteCount) override;
    std::int32_t RegSetValueExA(RegistryHandle handle, std::u16string_view valueName,
                                std::uint32_t value) override;
    std::int32_t RegFlushKey(RegistryHandle handle) override;
    std::int32_t RegCloseKey(RegistryHandle handle) override;
    std::int32_t RegDeleteKeyA(std::uint32_t hive, std::u16string_view subKey) override;
    std::shared_ptr<StdRegProv> GetObject(std::u16string_view moniker) override;

    struct Value {
        std::uint32_t type = REG_SZ;
        std::uint32_t byteCount = 0;
        std::u16string text;      // whole, NULs included
        std::uint32_t number = 0; // of a REG_DWORD
        friend bool operator==(const Value &, const Value &) = default;
    };
    // A value as it is kept; absent where there is none.
    std::optional<Value> stored(std::uint32_t hive, std::u16string_view subKey,
                                std::u16string_view valueName);

    struct Entry {
        std::u16string path;                // of its key, as it was written
        std::optional<std::u16string> name; // none: a key without values
        Value value;
    };
    // What lies in a key and below it, by path and name; of the hive with an empty path. Values
    // that cannot be read are left out.
    std::int32_t list(std::uint32_t hive, std::u16string_view subKey, std::vector<Entry> &entries);

    // ERROR_FILE_NOT_FOUND when there is no such value.
    std::int32_t removeValue(std::uint32_t hive, std::u16string_view subKey,
                             std::u16string_view valueName);

    // Moves everything to the one file and closes it: for the end of the process. A later use opens
    // it again.
    void flush() noexcept { database_.close(); }

private:
    struct Key {
        std::uint32_t hive = 0;
        std::string folded; // upper-cased path
    };

    static std::optional<Value> valueIn(SqliteStatement &row, int firstColumn);
    static Key keyOf(std::uint32_t hive, std::u16string_view subKey);
    std::int32_t createWithParents(std::uint32_t hive, std::u16string_view subKey);
    std::optional<std::int64_t> findKey(const Key &key, std::int32_t &error);
    std::u16string keptText(std::u16string_view text, std::uint32_t byteCount) const;
    template <typename Data> std::int32_t write(RegistryHandle handle,
                                                std::u16string_view valueName, std::uint32_t type,
                                                std::uint32_t byteCount, const Data &data);

    SqliteDatabase database_;
    const AnsiText &ansi_;
    std::map<RegistryHandle, Key> handles_;
    RegistryHandle nextHandle_ = 0x40;
};

} // namespace velmora::platform
