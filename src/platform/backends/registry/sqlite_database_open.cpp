// How the file is opened, checked and, where it is damaged, kept aside.

#include "platform/backends/registry/sqlite_database.h"

#include "base/run_time_error.h"
#include "platform/backends/linux/free_name.h"

#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <charconv>
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

bool isDamage(int code) noexcept {
    const int primary = code & 0xFF;
    return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB;
}

// Something that opening needs is not to be had: room, memory, a right. Not a lock that somebody
// else holds: that one is waited for.
bool isWantOfMeans(int code) noexcept {
    switch (code & 0xFF) {
    case SQLITE_IOERR:
    case SQLITE_CANTOPEN:
    case SQLITE_READONLY:
    case SQLITE_FULL:
    case SQLITE_PERM:
        return true;
    default:
        return false;
    }
}

constexpr const char *holdAlone = "PRAGMA locking_mode = EXCLUSIVE";

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

bool isEmptyOrMissing(const std::string &path) noexcept {
    struct ::stat info {};
    return ::stat(path.c_str(), &info) != 0 || info.st_size == 0;
}

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

void SqliteDatabase::noteResult(int code, bool locks) noexcept {
    // A reader gets through beside a writer: only a lock that was had tells that nobody else
    // holds it.
    if (code == SQLITE_OK && locks)
        patienceLeftMs_ = patienceMs;
    damaged_ = damaged_ || (isDamage(code) && !newer_);
}

bool SqliteDatabase::open(Use use) {
    // What could only be read may be written by now.
    const bool anew = use == Use::Write && onlyRead_ && !newer_;
    if (handle_ != nullptr && !damaged_ && !anew)
        return true;
    if (damaged_)
        keepAside();
    failure_ = openOnce();
    // A read that failed once can look like damage: what is damaged says so again.
    if (isDamage(failure_)) {
        close();
        failure_ = openOnce();
    }
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
    close();
    // An empty name would be a database that nobody sees.
    if (path_.empty() || !isFileOrMissing(path_))
        return SQLITE_CANTOPEN;
    const bool fresh = !exists(path_);
    if (fresh)
        makeFoldersOf(path_);
    int code = openToWrite(Hold::Shared, fresh);
    if (!isWantOfMeans(code))
        return code;
    // The memory that programs share over the file cannot be had on a full disk, nor on file
    // systems that know no such thing. Who holds the file alone needs none.
    code = openToWrite(Hold::Alone, fresh);
    return code == SQLITE_OK || isDamage(code) ? code : openToRead();
}

int SqliteDatabase::openToWrite(Hold hold, bool fresh) {
    constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX |
                          SQLITE_OPEN_EXRESCODE | SQLITE_OPEN_PRIVATECACHE;
    int code = sqlite3_open_v2(path_.c_str(), &handle_, flags, nullptr);
    if (code == SQLITE_OK && hold == Hold::Alone)
        code = sqlite3_exec(handle_, holdAlone, nullptr, nullptr, nullptr);
    if (code == SQLITE_OK)
        code = configure(fresh);
    if (code != SQLITE_OK)
        close();
    return code;
}

// What file and journal hold at this moment, without a lock. The journal is another's perhaps, and
// is left as it lies.
int SqliteDatabase::openToRead() {
    constexpr int flags =
        SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_URI | SQLITE_OPEN_EXRESCODE;
    const bool asItLies = isEmptyOrMissing(path_ + "-wal");
    int code = asItLies ? sqlite3_open_v2(immutableAddress(path_).c_str(), &handle_, flags, nullptr)
                        : sqlite3_open_v2(path_.c_str(), &handle_, flags, "unix-none");
    if (code != SQLITE_OK)
        return code;
    onlyRead_ = true;
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    code = sqlite3_exec(handle_, holdAlone, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        return code;
    const auto version = answerOf("PRAGMA user_version", code);
    if (!version)
        return code;
    noteVersion(*version);
    return *version == "0" ? SQLITE_CANTOPEN : SQLITE_OK; // there is nothing in it
}

// Small and quick: a few dozen values, read and written one by one.
int SqliteDatabase::configure(bool fresh) {
    sqlite3_busy_handler(handle_, &SqliteDatabase::waitForLock, this);
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_LOOKASIDE, nullptr, 256, 32);
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_extended_result_codes(handle_, 1);
    // The version first: everything else would already read, or write, what a newer one may keep
    // in other ways.
    int code = SQLITE_OK;
    const auto version = answerOf("PRAGMA user_version", code);
    if (!version)
        return code;
    noteVersion(*version);
    if (newer_) {
        sqlite3_db_config(handle_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
        return sqlite3_exec(handle_, "PRAGMA query_only = 1", nullptr, nullptr, nullptr);
    }
    // A file that holds nothing yet needs no sync while it is made.
    unsyncedFile_ = unsyncedFile_ || fresh;
    code = sqlite3_exec(handle_, fresh ? "PRAGMA synchronous = OFF" : "PRAGMA synchronous = NORMAL",
                        nullptr, nullptr, nullptr);
    if (code == SQLITE_OK)
        code = sqlite3_exec(handle_,
                            "PRAGMA cache_size = -64; PRAGMA mmap_size = 0;"
                            "PRAGMA journal_mode = WAL; PRAGMA wal_autocheckpoint = 256;"
                            "PRAGMA trusted_schema = 0;",
                            nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        return code;
    if (*version == "0")
        return makeTables(fresh);
    code = checkPages();
    return code == SQLITE_OK ? checkTables() : code;
}

// A file that a later program made is that program's.
void SqliteDatabase::noteVersion(std::string_view version) {
    int number = 0;
    std::from_chars(version.data(), version.data() + version.size(), number);
    newer_ = number > 1;
    if (newer_)
        complain(path_ + " is of a newer version: it is read, and nothing is stored");
}

int SqliteDatabase::makeTables(bool fresh) {
    const int code = sqlite3_exec(handle_, schema, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        return code == SQLITE_ERROR ? SQLITE_CORRUPT : code; // somebody else's tables
    if (!fresh)
        return checkTables();
    return sqlite3_exec(handle_, "PRAGMA synchronous = NORMAL", nullptr, nullptr, nullptr);
}

// The file is a few pages long, so that damage anywhere in it is found here and not at some later
// write. A page that could not be read is told like a damaged one: what is damaged says so twice,
// and can be read.
int SqliteDatabase::checkPages() {
    bool isSound = false;
    for (int look = 0; look < 2 && !isSound; ++look) {
        int code = SQLITE_OK;
        const auto check = answerOf("PRAGMA quick_check(1)", code);
        if (!check)
            return code;
        isSound = *check == "ok";
    }
    if (isSound)
        return SQLITE_OK;
    return canBeRead(SQLITE_FCNTL_FILE_POINTER) && canBeRead(SQLITE_FCNTL_JOURNAL_POINTER)
               ? SQLITE_CORRUPT
               : SQLITE_IOERR_READ;
}

// The file itself or its journal, to its end.
bool SqliteDatabase::canBeRead(int which) {
    sqlite3_file *file = nullptr;
    sqlite3_int64 size = 0;
    if (sqlite3_file_control(handle_, "main", which, &file) != SQLITE_OK || file == nullptr ||
        file->pMethods == nullptr)
        return true; // there is none
    int code = file->pMethods->xFileSize(file, &size);
    char page[4096];
    for (sqlite3_int64 at = 0; code == SQLITE_OK && at < size; at += sqlite3_int64{sizeof page})
        code = file->pMethods->xRead(file, page, sizeof page, at);
    return code == SQLITE_OK || code == SQLITE_IOERR_SHORT_READ;
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
        try {
            renameToFreeName(path_, kept, calls_);
            break;
        } catch (const RunTimeError &error) {
            if (error.number() != ErrorNumber::FileExists)
                break;
        }
    }
    const bool moved = !exists(path_);
    if (moved) {
        // The journal belongs to the damaged file, and would spoil the fresh one.
        for (const char *suffix : {"-wal", "-shm"})
            ::rename((path_ + suffix).c_str(), (kept + suffix).c_str());
    }
    complain(moved ? "is damaged and was kept as " + kept : path_ + " is damaged and stays unused");
}

// Once: the file is opened at every statement while it does not open.
void SqliteDatabase::complain(const std::string &what) {
    if (!std::exchange(complained_, true))
        std::fprintf(stderr, "velmora: the settings file %s\n", what.c_str());
}

} // namespace velmora::platform
