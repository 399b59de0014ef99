#include "platform/backends/registry/sqlite_database.h"

#include <sqlite3.h>

#include <utility>

namespace velmora::platform {

const char *const SqliteDatabase::queryTexts[] = {
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
    "SELECT k.path, e.name, e.type, e.bytes, e.data FROM keys k LEFT JOIN entries e ON e.key = k.id"
    " WHERE k.hive = ? AND (k.folded = ? OR (k.folded > ? AND k.folded < ?))"
    " ORDER BY k.folded, e.folded",
    "DELETE FROM entries WHERE folded = ? AND key ="
    " (SELECT id FROM keys WHERE hive = ? AND folded = ?)",
};

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

bool SqliteStatement::isNull(int column) const {
    return sqlite3_column_type(statement_, column) == SQLITE_NULL;
}

std::string SqliteStatement::bytes(int column) const {
    const auto *data = static_cast<const char *>(sqlite3_column_blob(statement_, column));
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement_, column));
    return data == nullptr ? std::string() : std::string(data, size);
}

// --- the database --------------------------------------------------------------------------------

SqliteDatabase::SqliteDatabase(std::string path, FileCalls calls)
    : path_(std::move(path)), calls_(std::move(calls)) {}

SqliteDatabase::~SqliteDatabase() { close(); }

SqliteStatement SqliteDatabase::prepare(Query query) {
    const bool reads = query == Query::FindKey || query == Query::HasSubKeys ||
                       query == Query::Read || query == Query::List;
    if (!open(reads ? Use::Read : Use::Write))
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

bool SqliteDatabase::begin() { return open(Use::Write) && execute("BEGIN IMMEDIATE"); }

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

int SqliteDatabase::sync() noexcept {
    if (handle_ == nullptr || sqlite3_total_changes(handle_) == changesSynced_)
        return SQLITE_OK;
    int code = SQLITE_OK;
    if (unsyncedFile_) {
        code = sqlite3_wal_checkpoint_v2(handle_, nullptr, SQLITE_CHECKPOINT_PASSIVE, nullptr,
                                         nullptr);
    } else { // the journal alone: it holds all that changed
        sqlite3_file *journal = nullptr;
        code = sqlite3_file_control(handle_, nullptr, SQLITE_FCNTL_JOURNAL_POINTER, &journal);
        if (code == SQLITE_OK && journal->pMethods != nullptr)
            code = journal->pMethods->xSync(journal, SQLITE_SYNC_NORMAL);
    }
    if (code == SQLITE_OK) {
        changesSynced_ = sqlite3_total_changes(handle_);
        unsyncedFile_ = false;
    }
    return code;
}

void SqliteDatabase::close() noexcept {
    for (sqlite3_stmt *&statement : statements_) {
        sqlite3_finalize(statement);
        statement = nullptr;
    }
    sqlite3_close(handle_); // the last one to close folds the journal into the file
    handle_ = nullptr;
    onlyRead_ = false;
    changesSynced_ = 0;
}

} // namespace velmora::platform
