#include "catalogue/known_tags.h"

#include "base/text.h"
#include "catalogue/library.h"

#include <sqlite3.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace velmora::catalogue {

namespace {

constexpr int version = 1;
constexpr int application = 0x56656C63; // what tells this file from those of others

class Statement {
public:
    Statement(sqlite3 *database, const char *text) {
        sqlite3_prepare_v2(database, text, -1, &statement_, nullptr);
    }
    ~Statement() { sqlite3_finalize(statement_); }
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;

    explicit operator bool() const noexcept { return statement_ != nullptr; }
    void bind(int at, std::string_view bytes) {
        sqlite3_bind_blob64(statement_, at, bytes.data() != nullptr ? bytes.data() : "",
                            bytes.size(), SQLITE_TRANSIENT);
    }
    void bind(int at, std::int64_t value) { sqlite3_bind_int64(statement_, at, value); }
    int step() { return sqlite3_step(statement_); }
    bool run() {
        const int result = sqlite3_step(statement_);
        sqlite3_reset(statement_);
        return result == SQLITE_DONE;
    }
    std::int64_t integer(int at) const { return sqlite3_column_int64(statement_, at); }
    std::string bytes(int at) const {
        const void *blob = sqlite3_column_blob(statement_, at);
        const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement_, at));
        return blob != nullptr ? std::string(static_cast<const char *>(blob), size) : std::string();
    }

private:
    sqlite3_stmt *statement_ = nullptr;
};

KnownFile fileOf(const Statement &row) {
    const auto text = [&](int at) { return cutTag(fromUtf8(row.bytes(at))); };
    return {{row.bytes(0), row.integer(1), row.integer(2)},
            row.integer(3) != 0,
            {text(4), text(5), text(6)}};
}

} // namespace

KnownTags::~KnownTags() { close(); }

void KnownTags::close() noexcept {
    sqlite3_close(database_);
    database_ = nullptr;
}

bool KnownTags::run(const char *statement) {
    return sqlite3_exec(database_, statement, nullptr, nullptr, nullptr) == SQLITE_OK;
}

// Where the machine stops at the wrong moment the file may be damaged. `isSound` sees to that.
bool KnownTags::open() {
    constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOFOLLOW;
    return sqlite3_open_v2(path_.c_str(), &database_, flags, nullptr) == SQLITE_OK &&
           run("pragma locking_mode=exclusive") && run("pragma synchronous=off") &&
           run("pragma cell_size_check=on");
}

bool KnownTags::isSound() {
    const auto number = [&](const char *pragma) {
        Statement statement(database_, pragma);
        return statement && statement.step() == SQLITE_ROW ? statement.integer(0) : -1;
    };
    Statement check(database_, "pragma quick_check(1)");
    return number("pragma application_id") == application &&
           number("pragma user_version") == version && check && check.step() == SQLITE_ROW &&
           check.bytes(0) == "ok";
}

bool KnownTags::begin() {
    return open() && run(("pragma application_id=" + std::to_string(application)).c_str()) &&
           run("create table files (path blob primary key, bytes integer, changed integer, usable "
               "integer, title blob, artist blob, album blob) without rowid") &&
           run(("pragma user_version=" + std::to_string(version)).c_str());
}

// The head of every such file ends with the mark of whose it is, highest byte first.
bool KnownTags::mayUse(const std::string &path) {
    constexpr std::string_view beginning("SQLite format 3\0", 16);
    constexpr std::size_t markAt = 68;
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    if (error)
        return error == std::errc::no_such_file_or_directory;
    std::array<char, markAt + 4> head{};
    std::ifstream file(path, std::ios::binary);
    if (size == 0 || !file.read(head.data(), head.size()))
        return size == 0;
    std::uint32_t mark = 0;
    for (std::size_t i = markAt; i < head.size(); ++i)
        mark = mark << 8U | static_cast<unsigned char>(head[i]);
    return std::string_view(head.data(), beginning.size()) == beginning && mark == application;
}

std::vector<KnownFile> KnownTags::load() {
    std::vector<KnownFile> files;
    if (path_.empty() || !mayUse(path_))
        return files;
    std::error_code error;
    if (std::filesystem::exists(path_, error) && open() && isSound()) {
        Statement all(database_,
                      "select path, bytes, changed, usable, title, artist, album from files "
                      "order by path");
        int result = SQLITE_ERROR;
        while (all && (result = all.step()) == SQLITE_ROW)
            files.push_back(fileOf(all));
        if (result == SQLITE_DONE)
            return files;
    }
    // Another server's that is at work is no reason to take it away.
    const bool held = database_ != nullptr && sqlite3_errcode(database_) == SQLITE_BUSY;
    close();
    files.clear();
    if (held)
        return files;
    for (const char *end : {"", "-journal", "-wal", "-shm"})
        std::filesystem::remove(path_ + end, error);
    if (!begin())
        close();
    return files;
}

void KnownTags::store(const std::vector<KnownFile> &come, const std::vector<std::string> &gone) {
    if (database_ == nullptr || (come.empty() && gone.empty()) || !run("begin immediate"))
        return;
    Statement forget(database_, "delete from files where path=?");
    Statement keep(database_, "insert or replace into files values (?, ?, ?, ?, ?, ?, ?)");
    bool done = forget && keep;
    for (const std::string &path : gone) {
        forget.bind(1, path);
        done = done && forget.run();
    }
    for (const KnownFile &known : come) {
        keep.bind(1, known.file.path);
        keep.bind(2, known.file.bytes);
        keep.bind(3, known.file.changed);
        keep.bind(4, std::int64_t{known.usable});
        keep.bind(5, toUtf8(known.tags.title));
        keep.bind(6, toUtf8(known.tags.artist));
        keep.bind(7, toUtf8(known.tags.album));
        done = done && keep.run();
    }
    run(done ? "commit" : "rollback");
}

std::string knownTagsPath(const std::string &folder) {
    const auto given = [](const char *name) {
        const char *text = std::getenv(name);
        return std::string(text != nullptr ? text : "");
    };
    std::string place = given("CACHE_DIRECTORY");
    if (place.empty()) {
        const std::string cache = given("XDG_CACHE_HOME");
        const std::string home = given("HOME");
        if (cache.empty() && home.empty())
            return "";
        place = (cache.empty() ? home + "/.cache" : cache) + "/velmora";
    }
    std::error_code error;
    std::filesystem::create_directories(place, error);
    const auto whole = std::filesystem::weakly_canonical(folder, error);
    if (error)
        return "";
    std::string path = place + "/catalogue-" + idOf(whole.string()) + ".sqlite";
    if (!KnownTags::mayUse(path))
        std::filesystem::remove(path, error);
    return path;
}

} // namespace velmora::catalogue
