#include "platform/backends/registry/sqlite_registry.h"

#include "base/run_time_error.h"
#include "base/text.h"
#include "text/utf8_units.h"

#include <sqlite3.h>

namespace velmora::platform {

namespace {

using Query = SqliteDatabase::Query;

std::int32_t errorOf(int code) noexcept {
    switch (code & 0xFF) {
    case SQLITE_OK:
        return ERROR_SUCCESS;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return ERROR_BUSY;
    case SQLITE_READONLY:
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
    case SQLITE_AUTH:
        return ERROR_ACCESS_DENIED;
    case SQLITE_FULL:
        return ERROR_DISK_FULL;
    default:
        return ERROR_REGISTRY_IO_FAILED;
    }
}

// Key paths without empty parts: a separator doubled or at an end means nothing.
std::u16string normalPath(std::u16string_view subKey) {
    std::u16string path;
    for (const std::u16string &part : split(subKey, u'\\'))
        if (!part.empty())
            path += path.empty() ? part : u"\\" + part;
    return path;
}

std::string folded(std::u16string_view name) { return encodeUtf8Units(upper(name)); }

class Provider : public StdRegProv {
public:
    explicit Provider(SqliteRegistry &registry) : registry_(registry) {}

    std::optional<std::u16string> GetStringValue(std::uint32_t hive, std::u16string_view subKey,
                                                 std::u16string_view valueName) override {
        const auto value = registry_.stored(hive, subKey, valueName);
        if (!value || value->type != REG_SZ)
            return std::nullopt;
        return std::u16string(untilNul(value->text));
    }

    std::optional<std::uint32_t> GetDWORDValue(std::uint32_t hive, std::u16string_view subKey,
                                               std::u16string_view valueName) override {
        const auto value = registry_.stored(hive, subKey, valueName);
        if (!value || value->type != REG_DWORD)
            return std::nullopt;
        return value->number;
    }

private:
    SqliteRegistry &registry_;
};

} // namespace

SqliteRegistry::SqliteRegistry(std::string file, const AnsiText &ansi, FileCalls calls)
    : database_(std::move(file), std::move(calls)), ansi_(ansi) {}

SqliteRegistry::~SqliteRegistry() = default;

SqliteRegistry::Key SqliteRegistry::keyOf(std::uint32_t hive, std::u16string_view subKey) {
    return {hive, folded(normalPath(subKey))};
}

// --- keys ----------------------------------------------------------------------------------------

std::optional<std::int64_t> SqliteRegistry::findKey(const Key &key, std::int32_t &error) {
    auto find = database_.prepare(Query::FindKey);
    find.bind(key.hive).bind(key.folded);
    if (find.row())
        return find.integer(0);
    error = errorOf(find.failure());
    return std::nullopt;
}

std::int32_t SqliteRegistry::createWithParents(std::uint32_t hive, std::u16string_view subKey) {
    const std::u16string path = normalPath(subKey);
    if (!database_.begin())
        return errorOf(database_.failure());
    for (std::size_t end = 0; end != std::u16string::npos;) {
        end = path.find(u'\\', end + 1);
        const std::u16string_view part = std::u16string_view(path).substr(0, end);
        const std::string foldedPart = folded(part);
        const std::string plainPart = encodeUtf8Units(part);
        auto add = database_.prepare(Query::AddKey);
        if (!add.bind(hive).bind(foldedPart).bind(plainPart).run()) {
            const int failure = add.failure();
            database_.rollBack();
            return errorOf(failure);
        }
    }
    return database_.commit() ? ERROR_SUCCESS : errorOf(database_.failure());
}

std::int32_t SqliteRegistry::RegCreateKeyA(std::uint32_t hive, std::u16string_view subKey,
                                           RegistryHandle &handle) {
    Key key = keyOf(hive, subKey);
    std::int32_t error = ERROR_SUCCESS;
    if (!findKey(key, error)) {
        if (error == ERROR_SUCCESS)
            error = createWithParents(hive, subKey);
        if (error != ERROR_SUCCESS)
            return error;
    }
    handle = nextHandle_;
    nextHandle_ += 4;
    handles_[handle] = std::move(key);
    return ERROR_SUCCESS;
}

std::int32_t SqliteRegistry::RegFlushKey(RegistryHandle handle) {
    return handles_.count(handle) != 0 ? errorOf(database_.sync()) : ERROR_INVALID_HANDLE;
}

std::int32_t SqliteRegistry::RegCloseKey(RegistryHandle handle) {
    return handles_.erase(handle) != 0 ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

std::int32_t SqliteRegistry::RegDeleteKeyA(std::uint32_t hive, std::u16string_view subKey) {
    const Key key = keyOf(hive, subKey);
    if (!database_.begin())
        return errorOf(database_.failure());
    std::int32_t error = ERROR_SUCCESS;
    const auto id = findKey(key, error);
    if (!id && error == ERROR_SUCCESS)
        error = ERROR_FILE_NOT_FOUND;
    if (id) {
        const std::string from = key.folded + "\\";
        const std::string to = key.folded + "]";
        auto below = database_.prepare(Query::HasSubKeys);
        if (below.bind(hive).bind(from).bind(to).row())
            error = ERROR_ACCESS_DENIED;
        else
            error = errorOf(below.failure());
    }
    for (const Query query : {Query::DeleteValues, Query::DeleteKey}) {
        if (error != ERROR_SUCCESS)
            break;
        auto remove = database_.prepare(query);
        remove.bind(*id).run();
        error = errorOf(remove.failure());
    }
    if (error != ERROR_SUCCESS) {
        database_.rollBack();
        return error;
    }
    return database_.commit() ? ERROR_SUCCESS : errorOf(database_.failure());
}

// --- values --------------------------------------------------------------------------------------

// What a text is after its way through the code page, cut to the byte count. A character that the
// cut splits becomes U+FFFD.
std::u16string SqliteRegistry::keptText(std::u16string_view text, std::uint32_t byteCount) const {
    std::string bytes = ansi_.encode(text);
    if (bytes.size() <= byteCount)
        return ansi_.decode(bytes);
    bytes.resize(byteCount);
    std::u16string kept = ansi_.decodeTogether({bytes}, true).front();
    if (ansi_.byteCount(kept) < byteCount)
        kept += u'\xFFFD';
    return kept;
}

template <typename Data>
std::int32_t SqliteRegistry::write(RegistryHandle handle, std::u16string_view valueName,
                                   std::uint32_t type, std::uint32_t byteCount, const Data &data) {
    const auto open = handles_.find(handle);
    if (open == handles_.end())
        return ERROR_INVALID_HANDLE;
    std::int32_t error = ERROR_SUCCESS;
    const auto id = findKey(open->second, error);
    if (!id)
        return error == ERROR_SUCCESS ? ERROR_KEY_DELETED : error;
    const std::string foldedName = folded(valueName);
    const std::string plainName = encodeUtf8Units(valueName);
    auto put = database_.prepare(Query::Write);
    put.bind(*id).bind(foldedName).bind(plainName).bind(type).bind(byteCount).bind(data);
    put.run();
    return errorOf(put.failure());
}

std::int32_t SqliteRegistry::RegSetValueExA(RegistryHandle handle, std::u16string_view valueName,
                                            std::uint32_t type, std::u16string_view text,
                                            std::uint32_t byteCount) {
    return write(handle, valueName, type, byteCount, encodeUtf8Units(keptText(text, byteCount)));
}

std::int32_t SqliteRegistry::RegSetValueExA(RegistryHandle handle, std::u16string_view valueName,
                                            std::uint32_t value) {
    return write(handle, valueName, REG_DWORD, sizeof value, std::int64_t{value});
}

std::optional<SqliteRegistry::Value> SqliteRegistry::stored(std::uint32_t hive,
                                                            std::u16string_view subKey,
                                                            std::u16string_view valueName) {
    const Key key = keyOf(hive, subKey);
    const std::string name = folded(valueName);
    auto read = database_.prepare(Query::Read);
    if (!read.bind(key.hive).bind(key.folded).bind(name).row())
        return std::nullopt;
    return valueIn(read, 0);
}

// From the columns type, bytes and data.
std::optional<SqliteRegistry::Value> SqliteRegistry::valueIn(SqliteStatement &row,
                                                             int firstColumn) {
    constexpr std::int64_t widest = 0xFFFFFFFF;
    const std::int64_t type = row.integer(firstColumn);
    const std::int64_t byteCount = row.integer(firstColumn + 1);
    const int data = firstColumn + 2;
    if (type < 0 || type > widest || byteCount < 0 || byteCount > widest)
        return std::nullopt;
    Value value{static_cast<std::uint32_t>(type), static_cast<std::uint32_t>(byteCount), {}, 0};
    if (value.type == REG_DWORD) {
        const std::int64_t number = row.integer(data);
        if (!row.isInteger(data) || number < 0 || number > widest)
            return std::nullopt;
        value.number = static_cast<std::uint32_t>(number);
    } else {
        value.text = decodeUtf8UnitsAnyway(row.bytes(data));
    }
    return value;
}

std::int32_t SqliteRegistry::list(std::uint32_t hive, std::u16string_view subKey,
                                  std::vector<Entry> &entries) {
    const Key key = keyOf(hive, subKey);
    // As in HasSubKeys; below the hive itself lies everything.
    const std::string from = key.folded.empty() ? "" : key.folded + "\\";
    const std::string to = key.folded.empty() ? "\xFF" : key.folded + "]";
    auto rows = database_.prepare(Query::List);
    rows.bind(hive).bind(key.folded).bind(from).bind(to);
    constexpr int nameColumn = 1;
    constexpr int typeColumn = 2;
    while (rows.row()) {
        Entry entry{decodeUtf8UnitsAnyway(rows.bytes(0)), std::nullopt, {}};
        if (!rows.isNull(nameColumn)) {
            const auto value = valueIn(rows, typeColumn);
            if (!value)
                continue;
            entry.name = decodeUtf8UnitsAnyway(rows.bytes(nameColumn));
            entry.value = *value;
        }
        entries.push_back(std::move(entry));
    }
    return errorOf(rows.failure());
}

std::int32_t SqliteRegistry::removeValue(std::uint32_t hive, std::u16string_view subKey,
                                         std::u16string_view valueName) {
    if (!stored(hive, subKey, valueName))
        return ERROR_FILE_NOT_FOUND;
    const Key key = keyOf(hive, subKey);
    const std::string name = folded(valueName);
    auto remove = database_.prepare(Query::DeleteValue);
    remove.bind(name).bind(hive).bind(key.folded).run();
    return errorOf(remove.failure());
}

std::shared_ptr<StdRegProv> SqliteRegistry::GetObject(std::u16string_view moniker) {
    if (!contains(upper(moniker), u"STDREGPROV"))
        raise(ErrorNumber::General);
    return std::make_shared<Provider>(*this);
}

} // namespace velmora::platform
