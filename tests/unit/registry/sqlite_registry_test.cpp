// What the file behind the registry goes through: ends of the process, damage, locks, full disks.

#include "tests/unit/registry/sqlite_file.h"

#include "base/numbers.h"
#include "base/run_time_error.h"

#include <sqlite3.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>

namespace velmora::platform {
namespace {

// --- values as they are kept ---------------------------------------------------------------------

TEST_F(SqliteFile, keepsTypeAndByteCount) {
    SqliteRegistry registry(file, ansi);
    set(registry, u"PlayMode", u"1", 2);
    EXPECT_EQ(stored(registry, u"PlayMode"), (SqliteRegistry::Value{REG_SZ, 2, u"1", 0}));
    set(registry, u"name", u"微软雅黑", 12);
    EXPECT_EQ(stored(registry, u"name"), (SqliteRegistry::Value{REG_SZ, 12, u"微软雅黑", 0}));
    set(registry, u"nul", std::u16string_view(u"a\0b", 3), 3);
    EXPECT_EQ(stored(registry, u"nul"),
              (SqliteRegistry::Value{REG_SZ, 3, std::u16string(u"a\0b", 3), 0}));
    RegistryHandle handle = 0;
    registry.RegCreateKeyA(HKEY_LOCAL_MACHINE, key, handle);
    registry.RegSetValueExA(handle, u"n", 0xFFFFFFFFU);
    EXPECT_EQ(stored(registry, u"n"), (SqliteRegistry::Value{REG_DWORD, 4, u"", 0xFFFFFFFF}));
}

TEST_F(SqliteFile, aChangedByteCountAloneIsAChange) {
    SqliteRegistry registry(file, ansi);
    set(registry, u"v", u"1", 1);
    set(registry, u"v", u"1", 2);
    EXPECT_EQ(stored(registry, u"v").byteCount, 2U);
}

TEST_F(SqliteFile, marksACharacterThatTheByteCountSplits) {
    SqliteRegistry registry(file, ansi);
    set(registry, u"v", u"a中", 3);
    EXPECT_EQ(get(registry, u"v"), u"a\xFFFD");
    set(registry, u"v", u"a😀b", 4);
    EXPECT_EQ(get(registry, u"v"), u"a\xFFFD");
    set(registry, u"v", u"a😀b", 5);
    EXPECT_EQ(get(registry, u"v"), u"a😀");
}

TEST_F(SqliteFile, countsInThePageInForce) {
    const fakes::FakeAnsi gbk(936);
    SqliteRegistry registry(file, gbk);
    set(registry, u"v", u"中国", 4);
    EXPECT_EQ(get(registry, u"v"), u"中国");
    set(registry, u"v", u"中国", 2);
    EXPECT_EQ(get(registry, u"v"), u"中");
    set(registry, u"v", u"a\xDCFF", 4);
    EXPECT_EQ(get(registry, u"v"), u"a\xDCFF");
    // Where the page lacks a character the text is counted in UTF-8.
    set(registry, u"v", u"中😀", 7);
    EXPECT_EQ(get(registry, u"v"), u"中😀");
    set(registry, u"v", u"中😀", 4);
    EXPECT_EQ(get(registry, u"v"), u"中\xFFFD");
    set(registry, u"v", u"中\xDCFF", 6);
    EXPECT_EQ(get(registry, u"v"), u"中\xDCFF");
}

TEST_F(SqliteFile, keepsTextsWhenThePageChangesLater) {
    {
        const fakes::FakeAnsi gbk(936);
        SqliteRegistry registry(file, gbk);
        set(registry, u"v", u"中国", 4);
    }
    SqliteRegistry registry(file, ansi);
    EXPECT_EQ(get(registry, u"v"), u"中国");
    EXPECT_EQ(stored(registry, u"v").byteCount, 4U);
}

TEST_F(SqliteFile, readsANumberBeyondItsWidthAsAbsent) {
    makeSound();
    sqlite3 *raw = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &raw), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(raw,
                           "INSERT INTO entries SELECT key, 'BIG', 'Big', 4, 4, 4294967296"
                           " FROM entries; INSERT INTO entries SELECT key, 'TEXT', 'Text', 4, 4,"
                           " 'seven' FROM entries WHERE folded = 'V'; INSERT INTO entries SELECT"
                           " key, 'NEG', 'Neg', 4, 4, -1 FROM entries WHERE folded = 'V';",
                           nullptr, nullptr, nullptr),
              SQLITE_OK);
    sqlite3_close(raw);
    SqliteRegistry registry(file, ansi);
    const auto provider = registry.GetObject(u":StdRegProv");
    for (const char16_t *name : {u"big", u"text", u"neg"})
        EXPECT_EQ(provider->GetDWORDValue(HKEY_LOCAL_MACHINE, key, name), std::nullopt);
}

TEST_F(SqliteFile, hasNoOtherProvider) {
    SqliteRegistry registry(file, ansi);
    EXPECT_THROW(registry.GetObject(u"winmgmts:\\\\.\\root\\cimv2"), RunTimeError);
    EXPECT_NE(registry.GetObject(u"winmgmts:\\\\.\\root\\default:stdregprov"), nullptr);
}

TEST_F(SqliteFile, takesDoubledSeparatorsInKeysForOne) {
    SqliteRegistry registry(file, ansi);
    RegistryHandle handle = 0;
    registry.RegCreateKeyA(HKEY_LOCAL_MACHINE, u"\\SOFTWARE\\\\Norvane\\zkPlayer\\playSet\\",
                           handle);
    registry.RegSetValueExA(handle, u"v", REG_SZ, u"x", 1);
    EXPECT_EQ(get(registry, u"v"), u"x");
}

// --- the file ------------------------------------------------------------------------------------

TEST_F(SqliteFile, isMadeWithItsFoldersAtTheFirstUse) {
    SqliteRegistry registry(file, ansi);
    EXPECT_FALSE(folder.exists("config"));
    EXPECT_EQ(get(registry, u"v"), std::nullopt);
    EXPECT_TRUE(folder.exists("config/velmora/registry.sqlite"));
    EXPECT_EQ(folder.mode("config/velmora"), 0700U);
}

TEST_F(SqliteFile, isOneFileAfterAFlushAndOpensAgain) {
    SqliteRegistry registry(file, ansi);
    set(registry, u"v", u"x");
    EXPECT_TRUE(folder.exists("config/velmora/registry.sqlite-wal"));
    registry.flush();
    EXPECT_FALSE(folder.exists("config/velmora/registry.sqlite-wal"));
    EXPECT_FALSE(folder.exists("config/velmora/registry.sqlite-shm"));
    EXPECT_EQ(get(registry, u"v"), u"x");
    RegistryHandle handle = 0;
    ASSERT_EQ(registry.RegCreateKeyA(HKEY_LOCAL_MACHINE, key, handle), ERROR_SUCCESS);
    registry.flush();
    EXPECT_EQ(registry.RegSetValueExA(handle, u"v", REG_SZ, u"y", 1), ERROR_SUCCESS);
    EXPECT_EQ(get(registry, u"v"), u"y");
}

TEST_F(SqliteFile, servesTwoProcessesAtOnce) {
    SqliteRegistry one(file, ansi);
    SqliteRegistry two(file, ansi);
    set(one, u"v", u"1");
    EXPECT_EQ(get(two, u"v"), u"1");
    set(two, u"v", u"2");
    EXPECT_EQ(get(one, u"v"), u"2");
}

TEST_F(SqliteFile, survivesBeingKilledInTheMiddleOfManyWrites) {
    for (int round = 0; round < 5; ++round) {
        int ends[2];
        ASSERT_EQ(::pipe(ends), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            // Counts up as fast as it goes and tells each number before it is written.
            SqliteRegistry registry(file, ansi);
            for (std::int32_t i = round * 1'000'000;; ++i) {
                if (::write(ends[1], &i, sizeof i) != sizeof i)
                    ::_exit(1);
                set(registry, u"count", decimal(i));
                set(registry, u"again", decimal(i));
            }
        }
        ::close(ends[1]);
        std::int32_t last = 0;
        for (int i = 0; i < 200 + round * 37; ++i)
            ASSERT_EQ(::read(ends[0], &last, sizeof last), ssize_t{sizeof last});
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        for (std::int32_t next = 0; ::read(ends[0], &next, sizeof next) == sizeof next;)
            last = next;
        ::close(ends[0]);
        SqliteRegistry registry(file, ansi);
        const std::int32_t count = leadingInt32(get(registry, u"count").value_or(u""));
        const std::int32_t again = leadingInt32(get(registry, u"again").value_or(u""));
        EXPECT_GE(count, last - 1);
        EXPECT_LE(count, last);
        EXPECT_GE(again, count - 1);
        EXPECT_LE(again, count);
        EXPECT_TRUE(damaged().empty());
    }
}

// --- damage --------------------------------------------------------------------------------------

struct Damage {
    const char *name;
    void (*apply)(const std::string &file);
};

void overwrite(const std::string &file, std::streamoff at, const std::string &bytes) {
    std::fstream stream(file, std::ios::binary | std::ios::in | std::ios::out);
    stream.seekp(at);
    stream << bytes;
}

struct DamagedFile : SqliteFile, testing::WithParamInterface<Damage> {};

TEST_P(DamagedFile, isKeptAsideAndReplacedWithOneLine) {
    makeSound();
    GetParam().apply(file);
    const std::string bytes = folder.read("config/velmora/registry.sqlite");
    SqliteRegistry registry(file, ansi);
    testing::internal::CaptureStderr();
    EXPECT_EQ(get(registry, u"v"), std::nullopt);
    EXPECT_EQ(set(registry, u"v", u"new"), ERROR_SUCCESS);
    EXPECT_EQ(get(registry, u"v"), u"new");
    const std::string told = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
    EXPECT_NE(told.find("damaged"), std::string::npos);
    ASSERT_EQ(damaged().size(), 1U);
    EXPECT_EQ(folder.read("config/velmora/" + damaged().front()), bytes);
}

INSTANTIATE_TEST_SUITE_P(
    Registry, DamagedFile,
    testing::Values(
        Damage{"isNoDatabase",
               [](const std::string &file) { std::ofstream(file) << std::string(5000, 'x'); }},
        Damage{"isAShortText", [](const std::string &file) { std::ofstream(file) << "hello"; }},
        Damage{"hasAWrongHeader", [](const std::string &file) { overwrite(file, 0, "XQLite"); }},
        Damage{"isCutShort",
               [](const std::string &file) { std::filesystem::resize_file(file, 4096 + 100); }},
        Damage{"hasAPageOfNoise",
               [](const std::string &file) { overwrite(file, 4096, std::string(4096, '\xA5')); }},
        Damage{"hasItsSchemaOverwritten",
               [](const std::string &file) { overwrite(file, 100, std::string(3996, '\xFF')); }}),
    [](const auto &row) { return std::string(row.param.name); });

TEST_F(SqliteFile, keepsSeveralDamagedFilesApart) {
    testing::internal::CaptureStderr();
    for (int i = 0; i < 3; ++i) {
        makeSound();
        std::ofstream(file) << std::string(5000, static_cast<char>('a' + i));
        SqliteRegistry registry(file, ansi);
        EXPECT_EQ(get(registry, u"v"), std::nullopt);
    }
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(damaged().size(), 3U);
}

TEST_F(SqliteFile, takesAForeignDatabaseForDamage) {
    std::filesystem::create_directories(folder.bytes("config/velmora"));
    sqlite3 *raw = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &raw), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(raw, "CREATE TABLE entries (other TEXT); CREATE TABLE keys (x INTEGER)",
                           nullptr, nullptr, nullptr),
              SQLITE_OK);
    sqlite3_close(raw);
    testing::internal::CaptureStderr();
    SqliteRegistry registry(file, ansi);
    EXPECT_EQ(set(registry, u"v", u"x"), ERROR_SUCCESS);
    EXPECT_EQ(get(registry, u"v"), u"x");
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(damaged().size(), 1U);
}

TEST_F(SqliteFile, noticesDamageWhileItIsOpen) {
    makeSound();
    SqliteRegistry registry(file, ansi);
    EXPECT_EQ(get(registry, u"v"), u"kept");
    registry.flush();
    overwrite(file, 0, std::string(8192, '\x5A'));
    testing::internal::CaptureStderr();
    EXPECT_EQ(get(registry, u"v"), std::nullopt);
    EXPECT_EQ(set(registry, u"v", u"x"), ERROR_SUCCESS);
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(get(registry, u"v"), u"x");
}

TEST_F(SqliteFile, anEmptyFileIsAFreshOne) {
    std::filesystem::create_directories(folder.bytes("config/velmora"));
    folder.write("config/velmora/registry.sqlite", "");
    SqliteRegistry registry(file, ansi);
    EXPECT_EQ(set(registry, u"v", u"x"), ERROR_SUCCESS);
    EXPECT_TRUE(damaged().empty());
}

// --- no way to it --------------------------------------------------------------------------------

TEST_F(SqliteFile, failsQuicklyWhileAnotherProcessHoldsTheLock) {
    makeSound();
    sqlite3 *other = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &other), SQLITE_OK);
    ASSERT_EQ(
        sqlite3_exec(other, "BEGIN IMMEDIATE; DELETE FROM entries", nullptr, nullptr, nullptr),
        SQLITE_OK);
    SqliteRegistry registry(file, ansi);
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(set(registry, u"v", u"x"), ERROR_BUSY);
    EXPECT_EQ(get(registry, u"v"), u"kept"); // readers are not kept out by a writer
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
    sqlite3_exec(other, "ROLLBACK", nullptr, nullptr, nullptr);
    sqlite3_close(other);
    EXPECT_EQ(set(registry, u"v", u"x"), ERROR_SUCCESS);
}

TEST_F(SqliteFile, readsNothingWhileTheWholeFileIsLocked) {
    makeSound();
    sqlite3 *other = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other,
                           "PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE;"
                           "DELETE FROM entries",
                           nullptr, nullptr, nullptr),
              SQLITE_OK);
    {
        SqliteRegistry registry(file, ansi);
        const auto begin = std::chrono::steady_clock::now();
        for (int i = 0; i < 20; ++i) {
            EXPECT_EQ(get(registry, u"v"), std::nullopt);
            EXPECT_EQ(set(registry, u"v", u"x"), ERROR_BUSY);
        }
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
        sqlite3_exec(other, "ROLLBACK", nullptr, nullptr, nullptr);
        sqlite3_close(other);
        EXPECT_EQ(get(registry, u"v"), u"kept");
    }
    EXPECT_TRUE(damaged().empty());
}

TEST_F(SqliteFile, answersErrorsWhereNoFolderCanBe) {
    folder.write("file", "");
    SqliteRegistry registry(folder.bytes("file/velmora/registry.sqlite"), ansi);
    EXPECT_EQ(get(registry, u"v"), std::nullopt);
    EXPECT_EQ(set(registry, u"v", u"x"), ERROR_ACCESS_DENIED);
    RegistryHandle handle = 0;
    EXPECT_EQ(registry.RegCreateKeyA(HKEY_LOCAL_MACHINE, key, handle), ERROR_ACCESS_DENIED);
    EXPECT_EQ(handle, 0);
    EXPECT_EQ(registry.RegDeleteKeyA(HKEY_LOCAL_MACHINE, key), ERROR_ACCESS_DENIED);
    registry.flush();
}

TEST_F(SqliteFile, keepsNothingWithoutAName) {
    SqliteRegistry registry("", ansi);
    EXPECT_EQ(set(registry, u"v", u"x"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(get(registry, u"v"), std::nullopt);
}

TEST_F(SqliteFile, doesNotWaitOnAPipeOrTakeAFolder) {
    folder.pipe("pipe");
    SqliteRegistry pipe(folder.bytes("pipe"), ansi);
    EXPECT_EQ(get(pipe, u"v"), std::nullopt);
    EXPECT_EQ(set(pipe, u"v", u"x"), ERROR_ACCESS_DENIED);
    SqliteRegistry directory(folder.path(), ansi);
    EXPECT_EQ(get(directory, u"v"), std::nullopt);
    EXPECT_EQ(set(directory, u"v", u"x"), ERROR_ACCESS_DENIED);
}

TEST_F(SqliteFile, readsAFileThatCannotBeWritten) {
    makeSound();
    folder.mode("config/velmora/registry.sqlite", 0444);
    folder.mode("config/velmora", 0555);
    int answer = 0;
    const pid_t child = ::fork();
    if (child == 0) { // as nobody: root may write anything
        if (::geteuid() == 0) {
            std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
            std::filesystem::permissions(folder.bytes("config"), std::filesystem::perms(0755));
            if (::setgid(65534) != 0 || ::setuid(65534) != 0)
                ::_exit(77);
        }
        SqliteRegistry registry(file, ansi);
        const bool read = get(registry, u"v") == u"kept";
        const bool refused = set(registry, u"v", u"x") == ERROR_ACCESS_DENIED;
        const bool stays = get(registry, u"v") == u"kept";
        ::_exit(read && refused && stays ? 0 : 1);
    }
    ::waitpid(child, &answer, 0);
    folder.mode("config/velmora", 0700);
    EXPECT_TRUE(WIFEXITED(answer) && WEXITSTATUS(answer) == 0) << answer;
    SqliteRegistry registry(file, ansi);
    EXPECT_EQ(get(registry, u"v"), u"kept");
}

TEST_F(SqliteFile, keepsWhatItHasWhenTheDiskIsFull) {
    makeSound();
    SqliteRegistry registry(file, ansi);
    EXPECT_EQ(get(registry, u"v"), u"kept");
    ::rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const ::rlimit limit{20'000, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    const std::u16string big(200'000, u'x');
    const auto answer = set(registry, u"big", big);
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_NE(answer, ERROR_SUCCESS);
    EXPECT_EQ(get(registry, u"v"), u"kept");
    EXPECT_EQ(get(registry, u"big"), std::nullopt);
    EXPECT_EQ(set(registry, u"big", big), ERROR_SUCCESS);
    EXPECT_EQ(get(registry, u"big"), big);
    EXPECT_TRUE(damaged().empty());
}

// --- cost ----------------------------------------------------------------------------------------

TEST_F(SqliteFile, opensAndReadsInAFewMilliseconds) {
    makeSound();
    const auto begin = std::chrono::steady_clock::now();
    SqliteRegistry registry(file, ansi);
    EXPECT_EQ(get(registry, u"v"), u"kept");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2)); // usually 1 ms
}

} // namespace
} // namespace velmora::platform
