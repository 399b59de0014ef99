#include "platform/registry/sqlite_database.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <utility>

namespace velmora::platform {

namespace {

// Keys by hive and upper-cased path; the path as it was written stands beside. A value is a text
// (with the byte count that was given) or an integer.
constexpr const char *schema =
    "BEGIN IMMEDIATE;"
    "CREATE TABLE IF NOT EXISTS keys (id INTEGER PRIMARY KEY, hive INTEGER NOT NULL,"
    " folded TEXT NOT NULL, path TEXT NOT NULL, UNIQUE (hive, folded));"
    "CREATE TABLE IF NOT EXISTS entries (key INTEGER NOT NULL, folded TEXT NOT NULL,"
    " name TEXT NOT NULL, type INTEGER NOT NULL, bytes INTEGER NOT NULL, data,"
    " PRIMARY KEY (key, folded)) WITHOUT ROWID;"
    "PRAGMA user_version = 1;"
    "COMMIT;";

constexpr const char *queryTexts[] = {
    "SELECT id FROM keys WHERE hive = ? AND folded = ?",
    "INSERT OR IGNORE INTO keys (hive, folded, path) VALUES (?, ?, ?)",
    // Everything between "KEY\" and "KEY]", the character behind "\", lies below the key.
    "SELECT 1 FROM keys WHERE hive = ? AND folded > ? AND folded < ? LIMIT 1",
    "DELETE FROM keys WHERE id = ?",
    "DELETE FROM entries WHERE key = ?",
    "SELECT e.type, e.bytes, e.data FROM keys k JOIN entries e ON e.key = k.id"
    " WHERE k.hive = ? AND k.folded = ? AND e.folded = ?",
    // A value that is already there is not written again.
    "INSERT INTO entries (key, folded, name, type, bytes, data) VALUES (?, ?, ?, ?, ?, ?)"
    " ON CONFLICT (key, folded) DO UPDATE SET name = excluded.name, type = excluded.type,"
    " bytes = excluded.bytes, data = excluded.data"
    " WHERE type IS NOT excluded.type OR bytes IS NOT excluded.bytes"
    " OR data IS NOT excluded.data",
};

bool isDamage(int code) noexcept {
    const int primary = code & 0xFF;
    return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB;
}

void makeFoldersOf(const std::string &path) {
    for (std::size_t at = path.find('/', 1); at != std::string::npos; at = path.find('/', at + 1))
        ::mkdir(path.substr(0, at).c_str(), 0700);
}

// Only a file may be opened; opening anything else could wait for ever.
bool isFileOrMissing(const std::string &path) noexcept {
    struct ::stat info {};
    return ::stat(path.c_str(), &info) != 0 || S_ISREG(info.st_mode);
}

bool exists(const std::string &path) noexcept { return ::access(path.c_str(), F_OK) == 0; }

std::string timeStamp() {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    ::localtime_r(&now, &parts);
    char buffer[32];
    const std::size_t size = std::strftime(buffer, sizeof buffer, "%Y%m%d-%H%M%S", &parts);
    return {buffer, size};
}

// A path as the engine's own address form, for its "read what is there" opening.
std::string immutableAddress(const std::string &path) {
    std::string address = "file:";
    for (const char c : path) {
        if (c == '%' || c == '?' || c == '#') {
            char escape[4];
            std::snprintf(escape, sizeof escape, "%%%02X", static_cast<unsigned char>(c));
            address += escape;
        } else {
            address += c;
        }
    }
    return address + "?immutable=1";
}

} // namespace

// --- statements ----------------------------------------------------------------------------------

SqliteStatement::SqliteStatement(SqliteStatement &&other) noexcept
    : database_(other.database_), statement_(std::exchange(other.statement_, nullptr)),
      failure_(other.failure_), bound_(other.bound_) {}

SqliteStatement::~SqliteStatement() {
    if (statement_ != nullptr) {
        sqlite3_reset(statement_);
        sqlite3_clear_bindings(statement_);
    }
}

SqliteStatement &SqliteStatement::bind(std::int64_t value) {
    if (statement_ != nullptr)
        sqlite3_bind_int64(statement_, ++bound_, value);
    return *this;
}

SqliteStatement &SqliteStatement::bind(std::string_view text) {
    if (statement_ != nullptr)
        sqlite3_bind_text64(statement_, ++bound_, text.empty() ? "" : text.data(), text.size(),
                            SQLITE_STATIC, SQLITE_UTF8);
    return *this;
}

bool SqliteStatement::row() {
    if (statement_ == nullptr)
        return false;
    const int code = sqlite3_step(statement_);
    failure_ = code == SQLITE_ROW || code == SQLITE_DONE ? SQLITE_OK : code;
    database_->noteResult(failure_, sqlite3_stmt_readonly(statement_) == 0);
    return code == SQLITE_ROW;
}

bool SqliteStatement::run() {
    while (row()) {
    }
    return failure_ == SQLITE_OK;
}

std::int64_t SqliteStatement::integer(int column) const {
    return sqlite3_column_int64(statement_, column);
}

bool SqliteStatement::isInteger(int column) const {
    return sqlite3_column_type(statement_, column) == SQLITE_INTEGER;
}

std::string SqliteStatement::bytes(int column) const {
    const auto *data = static_cast<const char *>(sqlite3_column_blob(statement_, column));
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement_, column));
    return data == nullptr ? std::string() : std::string(data, size);
}

// --- the database --------------------------------------------------------------------------------

SqliteDatabase::SqliteDatabase(std::string path) : path_(std::move(path)) {}

SqliteDatabase::~SqliteDatabase() { close(); }

SqliteStatement SqliteDatabase::prepare(Query query) {
    if (!open())
        return {*this, nullptr, failure_};
    sqlite3_stmt *&statement = statements_[static_cast<int>(query)];
    if (statement == nullptr) {
        const int code = sqlite3_prepare_v3(handle_, queryTexts[static_cast<int>(query)], -1,
                                            SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
        noteResult(code, false);
        if (code != SQLITE_OK)
            return {*this, nullptr, code};
    }
    return {*this, statement, SQLITE_OK};
}

bool SqliteDatabase::execute(const char *sql) {
    failure_ = sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr);
    noteResult(failure_, true);
    return failure_ == SQLITE_OK;
}

bool SqliteDatabase::begin() { return open() && execute("BEGIN IMMEDIATE"); }

bool SqliteDatabase::commit() {
    if (execute("COMMIT"))
        return true;
    const int code = failure_;
    rollBack();
    failure_ = code;
    return false;
}

void SqliteDatabase::rollBack() {
    if (handle_ != nullptr)
        sqlite3_exec(handle_, "ROLLBACK", nullptr, nullptr, nullptr);
}

void SqliteDatabase::noteResult(int code, bool locks) noexcept {
    // A reader gets through beside a writer: only a lock that was had tells that nobody else
    // holds it.
    if (code == SQLITE_OK && locks)
        patienceLeftMs_ = patienceMs;
    damaged_ = damaged_ || isDamage(code);
}

void SqliteDatabase::close() noexcept {
    for (sqlite3_stmt *&statement : statements_) {
        sqlite3_finalize(statement);
        statement = nullptr;
    }
    sqlite3_close(handle_); // the last one to close folds the journal into the file
    handle_ = nullptr;
}

// Called while another process holds the lock.
int SqliteDatabase::waitForLock(void *self, int) {
    constexpr int stepMs = 5;
    auto &database = *static_cast<SqliteDatabase *>(self);
    if (database.patienceLeftMs_ < stepMs)
        return 0;
    database.patienceLeftMs_ -= stepMs;
    sqlite3_sleep(stepMs);
    return 1;
}

bool SqliteDatabase::open() {
    if (handle_ != nullptr && !damaged_)
        return true;
    if (damaged_)
        keepAside();
    failure_ = openOnce();
    if (isDamage(failure_)) {
        keepAside();
        failure_ = openOnce();
    }
    if (failure_ != SQLITE_OK)
        close();
    damaged_ = false;
    return failure_ == SQLITE_OK;
}

int SqliteDatabase::openOnce() {
    // An empty name would be a database that nobody sees.
    if (path_.empty() || !isFileOrMissing(path_))
        return SQLITE_CANTOPEN;
    const bool fresh = !exists(path_);
    if (fresh)
        makeFoldersOf(path_);
    constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX |
                          SQLITE_OPEN_EXRESCODE | SQLITE_OPEN_PRIVATECACHE;
    int code = sqlite3_open_v2(path_.c_str(), &handle_, flags, nullptr);
    if (code == SQLITE_OK)
        code = configure(fresh);
    const int primary = code & 0xFF;
    if ((primary == SQLITE_CANTOPEN || primary == SQLITE_READONLY) && !fresh &&
        !exists(path_ + "-wal")) {
        // A folder that cannot be written to: no journal is possible, but what the file says can
        // still be read.
        close();
        code = sqlite3_open_v2(immutableAddress(path_).c_str(), &handle_,
                               SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_URI |
                                   SQLITE_OPEN_EXRESCODE,
                               nullptr);
    }
    return code;
}

// Small and quick: a few dozen values, read and written one by one.
int SqliteDatabase::configure(bool fresh) {
    sqlite3_busy_handler(handle_, &SqliteDatabase::waitForLock, this);
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_LOOKASIDE, nullptr, 256, 32);
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_extended_result_codes(handle_, 1);
    // A file that holds nothing yet needs no sync while it is made.
    int code =
        sqlite3_exec(handle_, fresh ? "PRAGMA synchronous = OFF" : "PRAGMA synchronous = NORMAL",
                     nullptr, nullptr, nullptr);
    if (code == SQLITE_OK)
        code = sqlite3_exec(handle_,
                            "PRAGMA cache_size = -64; PRAGMA mmap_size = 0;"
                            "PRAGMA journal_mode = WAL; PRAGMA wal_autocheckpoint = 256;"
                            "PRAGMA trusted_schema = 0;",
                            nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        return code;
    const auto version = answerOf("PRAGMA user_version", code);
    if (!version)
        return code;
    if (*version == "0") {
        code = sqlite3_exec(handle_, schema, nullptr, nullptr, nullptr);
        if (code != SQLITE_OK)
            return code == SQLITE_ERROR ? SQLITE_CORRUPT : code; // somebody else's tables
        if (!fresh)
            return checkTables();
        return sqlite3_exec(handle_, "PRAGMA synchronous = NORMAL", nullptr, nullptr, nullptr);
    }
    // The file is a few pages long, so that damage anywhere in it is found here and not at some
    // later write.
    const auto check = answerOf("PRAGMA quick_check(1)", code);
    if (!check)
        return code;
    return *check == "ok" ? checkTables() : SQLITE_CORRUPT;
}

// Tables of other columns are as good as damage: every query must be one that the file can answer.
int SqliteDatabase::checkTables() {
    for (const char *text : {queryTexts[0], queryTexts[5]}) {
        sqlite3_stmt *question = nullptr;
        const int code = sqlite3_prepare_v2(handle_, text, -1, &question, nullptr);
        sqlite3_finalize(question);
        if (code != SQLITE_OK)
            return (code & 0xFF) == SQLITE_ERROR ? SQLITE_CORRUPT : code;
    }
    return SQLITE_OK;
}

// The first column of the first row of a question; absent, with the reason, where there is none.
std::optional<std::string> SqliteDatabase::answerOf(const char *text, int &failure) {
    sqlite3_stmt *question = nullptr;
    std::optional<std::string> answer;
    failure = sqlite3_prepare_v2(handle_, text, -1, &question, nullptr);
    if (failure == SQLITE_OK && (failure = sqlite3_step(question)) == SQLITE_ROW) {
        const unsigned char *column = sqlite3_column_text(question, 0);
        answer = column == nullptr ? "" : reinterpret_cast<const char *>(column);
        failure = SQLITE_OK;
    }
    sqlite3_finalize(question);
    return answer;
}

void SqliteDatabase::keepAside() {
    close();
    std::string kept;
    const std::string base = path_ + ".damaged-" + timeStamp();
    for (int number = 1; number < 100; ++number) {
        kept = number == 1 ? base : base + "-" + std::to_string(number);
        if (::renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, kept.c_str(), RENAME_NOREPLACE) == 0 ||
            errno != EEXIST)
            break;
    }
    const bool moved = !exists(path_);
    if (moved) {
        // The journal belongs to the damaged file, and would spoil the fresh one.
        for (const char *suffix : {"-wal", "-shm"})
            ::rename((path_ + suffix).c_str(), (kept + suffix).c_str());
    }
    if (!complained_) {
        complained_ = true;
        if (moved)
            std::fprintf(stderr, "velmora: the settings file is damaged and was kept as %s\n",
                         kept.c_str());
        else
            std::fprintf(stderr, "velmora: the settings file %s is damaged and stays unused\n",
                         path_.c_str());
    }
}

} // namespace velmora::platform
