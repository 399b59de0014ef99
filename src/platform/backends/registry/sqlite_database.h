#pragma once

// One SQLite file that holds the registry, and its statements. It is opened at the first statement
// and again after `close`.
//
// A damaged file is kept aside under another name, told once on standard error, and a fresh one
// made. A file of a newer version is read as far as it answers, and neither written nor kept aside;
// that is told once as well. Where no shared memory or no room for it is to be had the file is held
// alone, and where nothing can be written it is only read: a statement that writes then tries to
// open it anew. Where the file cannot be read, locked or made, statements say so and nothing else
// happens: the next one tries again.

#include "platform/backends/linux/file_calls.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace velmora::platform {

class SqliteDatabase;

// One run of a statement. Made by `SqliteDatabase::prepare`; reset at the end of its life.
class SqliteStatement {
public:
    SqliteStatement(SqliteStatement &&other) noexcept;
    SqliteStatement(const SqliteStatement &) = delete;
    ~SqliteStatement();

    SqliteStatement &bind(std::int64_t value);
    SqliteStatement &bind(std::string_view text); // must outlive the run

    // Steps once. True: a row is there. False: done, or failed; see `failure`.
    bool row();
    // Runs to the end. True when nothing failed.
    bool run();
    // The engine's result code where the statement failed, else 0.
    int failure() const noexcept { return failure_; }

    std::int64_t integer(int column) const;
    bool isInteger(int column) const;
    bool isNull(int column) const;
    std::string bytes(int column) const;

private:
    friend class SqliteDatabase;
    SqliteStatement(SqliteDatabase &database, sqlite3_stmt *statement, int failure) noexcept
        : database_(&database), statement_(statement), failure_(failure) {}

    SqliteDatabase *database_;
    sqlite3_stmt *statement_; // null where the database could not be opened
    int failure_;
    int bound_ = 0;
};

class SqliteDatabase {
public:
    // `path` is the file's own bytes. Nothing is touched yet. `calls` renames what is damaged.
    explicit SqliteDatabase(std::string path, FileCalls calls = {});
    ~SqliteDatabase();
    SqliteDatabase(const SqliteDatabase &) = delete;
    SqliteDatabase &operator=(const SqliteDatabase &) = delete;

    enum class Query {
        FindKey,
        AddKey,
        HasSubKeys,
        DeleteKey,
        DeleteValues,
        Read,
        Write,
        List,
        DeleteValue,
        Count
    };
    SqliteStatement prepare(Query query);

    // A transaction of several statements: false where it cannot begin (`failure` tells why) or
    // end. One that is not committed is rolled back by `rollBack`.
    bool begin();
    bool commit();
    void rollBack();
    int failure() const noexcept { return failure_; }

    // What was committed since the last call lies on the disk afterwards. The engine's result code.
    int sync() noexcept;

    // Moves everything into the one file and closes it.
    void close() noexcept;

private:
    friend class SqliteStatement;

    enum class Use { Read, Write };
    enum class Hold { Shared, Alone };

    static const char *const queryTexts[];

    bool open(Use use);
    int openOnce();
    int openToWrite(Hold hold, bool fresh);
    int openToRead();
    int configure(bool fresh);
    int makeTables(bool fresh);
    int checkPages();
    bool canBeRead(int which);
    int checkTables();
    void noteVersion(std::string_view version);
    std::optional<std::string> answerOf(const char *text, int &failure);
    bool execute(const char *sql);
    void noteResult(int code, bool locks) noexcept;
    void keepAside();
    void complain(const std::string &what);
    static int waitForLock(void *self, int attempt);

    // How long all waiting for another process's lock may take until a lock is had again.
    static constexpr int patienceMs = 200;

    std::string path_;
    FileCalls calls_;
    sqlite3 *handle_ = nullptr;
    sqlite3_stmt *statements_[static_cast<int>(Query::Count)] = {};
    int failure_ = 0;
    int patienceLeftMs_ = patienceMs;
    int changesSynced_ = 0;
    bool unsyncedFile_ = false; // made in this run without a sync
    bool onlyRead_ = false;
    bool newer_ = false;
    bool damaged_ = false;
    bool complained_ = false;
};

} // namespace velmora::platform
