// How the file behind the registry opens where something is missing: room, shared memory, the right
// to write, or the program that a newer file was made by.

#include "tests/unit/registry/sqlite_file.h"

#include "tests/unit/registry/failing_reads.h"
#include "tests/unit/small_disk.h"
#include "tests/unit/write_limit.h"

#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <functional>

namespace velmora::platform {
namespace {

constexpr char journal[] = "config/velmora/registry.sqlite-wal";
constexpr char sharedMemory[] = "config/velmora/registry.sqlite-shm";

struct Opening : SqliteFile {
    // A program that ends without a farewell leaves its last value in the journal.
    void leaveInJournal(std::u16string_view text) {
        const pid_t child = ::fork();
        if (child == 0) {
            SqliteRegistry registry(file, ansi);
            ::_exit(set(registry, u"v", text) == ERROR_SUCCESS ? 0 : 1);
        }
        int answer = 1;
        ::waitpid(child, &answer, 0);
        ASSERT_EQ(answer, 0);
        ASSERT_NE(folder.read(journal), "");
        std::filesystem::remove(folder.bytes(sharedMemory));
    }

    // In a child process that is nobody, since root may write anything. Its answer, 0 as expected.
    int asNobody(const std::function<int()> &work) const {
        const pid_t child = ::fork();
        if (child == 0) {
            if (::geteuid() == 0) {
                for (const char *name : {"config/velmora", "config/velmora/registry.sqlite"})
                    if (::chown(folder.bytes(name).c_str(), 65534, 65534) != 0)
                        ::_exit(77);
                std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
                std::filesystem::permissions(folder.bytes("config"), std::filesystem::perms(0755));
                if (::setgid(65534) != 0 || ::setuid(65534) != 0)
                    ::_exit(77);
            }
            ::_exit(work());
        }
        int answer = 1;
        ::waitpid(child, &answer, 0);
        return WIFEXITED(answer) ? WEXITSTATUS(answer) : 1;
    }
};

// --- a disk that stammers ------------------------------------------------------------------------

TEST_F(Opening, takesNoReadThatFailsForDamage) {
    makeSound();
    int reads = 0;
    for (int spared = 0; spared == 0 || spared < reads; ++spared)
        for (const int failing : {1, 1000}) {
            {
                const int before = FailingReads::reads();
                const FailingReads stammer(spared, failing);
                SqliteRegistry registry(file, ansi);
                get(registry, u"v");
                reads = std::max(reads, FailingReads::reads() - before);
            }
            EXPECT_TRUE(damaged().empty()) << spared << ' ' << failing;
            SqliteRegistry registry(file, ansi);
            EXPECT_EQ(get(registry, u"v"), u"kept") << spared << ' ' << failing;
        }
    EXPECT_GT(reads, 4);
}

TEST_F(Opening, readsAllTheSameWhereOneReadFailsInTheCheck) {
    makeSound();
    const FailingReads stammer(4, 1);
    SqliteRegistry registry(file, ansi);
    EXPECT_EQ(get(registry, u"v"), u"kept");
}

// --- room ----------------------------------------------------------------------------------------

TEST_F(Opening, readsAWholeFileWhereNothingMoreCanBeWritten) {
    makeSound();
    SqliteRegistry registry(file, ansi);
    {
        const WriteLimit limit(1000);
        EXPECT_EQ(get(registry, u"v"), u"kept");
        EXPECT_NE(set(registry, u"v", u"new"), ERROR_SUCCESS);
        EXPECT_EQ(get(registry, u"v"), u"kept");
    }
    EXPECT_EQ(set(registry, u"v", u"with room again"), ERROR_SUCCESS);
    EXPECT_EQ(get(registry, u"v"), u"with room again");
    EXPECT_TRUE(damaged().empty());
}

TEST_F(Opening, readsWhatOnlyTheJournalHoldsWhereNothingMoreCanBeWritten) {
    makeSound();
    leaveInJournal(u"newer");
    const WriteLimit limit(1000);
    SqliteRegistry registry(file, ansi);
    EXPECT_EQ(get(registry, u"v"), u"newer");
    EXPECT_TRUE(damaged().empty());
}

TEST_F(Opening, readsFromAFullDiskAndKeepsWhenThereIsRoomAgain) {
    folder.makeFolder("config/velmora");
    const std::string filler = folder.bytes("config/velmora/filler");
    const int answer = onSmallDisk(folder.bytes("config/velmora"), "128k", [&] {
        makeSound();
        std::ofstream(filler) << std::string(1'000'000, 'x'); // as much as there is room for
        SqliteRegistry registry(file, ansi);
        int wrong = get(registry, u"v") != u"kept";
        wrong += set(registry, u"v", std::u16string(20'000, u'x')) == ERROR_SUCCESS;
        wrong += get(registry, u"v") != u"kept";
        std::filesystem::remove(filler);
        wrong += set(registry, u"v", u"new") != ERROR_SUCCESS;
        wrong += get(registry, u"v") != u"new";
        registry.flush();
        wrong += get(registry, u"v") != u"new";
        wrong += !damaged().empty();
        return wrong;
    });
    if (answer == noSmallDisk)
        GTEST_SKIP() << "no file system can be mounted here";
    EXPECT_EQ(answer, 0);
}

// --- shared memory -------------------------------------------------------------------------------

// The engine's files as they are on a file system without shared memory.
class NoSharedMemory {
public:
    NoSharedMemory() {
        real_ = sqlite3_vfs_find(nullptr);
        without_ = *real_;
        without_.zName = "without";
        without_.xOpen = &NoSharedMemory::open;
        sqlite3_vfs_register(&without_, 1);
    }
    ~NoSharedMemory() {
        sqlite3_vfs_unregister(&without_);
        sqlite3_vfs_register(real_, 1);
    }
    NoSharedMemory(const NoSharedMemory &) = delete;
    NoSharedMemory &operator=(const NoSharedMemory &) = delete;

private:
    static int open(sqlite3_vfs *, const char *name, sqlite3_file *file, int flags, int *outFlags) {
        const int code = real_->xOpen(real_, name, file, flags, outFlags);
        if (code == SQLITE_OK && (flags & SQLITE_OPEN_MAIN_DB) != 0) {
            methods_ = *file->pMethods;
            methods_.xShmMap = [](sqlite3_file *, int, int, int, void volatile **) {
                return SQLITE_IOERR_SHMMAP;
            };
            file->pMethods = &methods_;
        }
        return code;
    }

    inline static sqlite3_vfs *real_ = nullptr;
    inline static sqlite3_vfs without_{};
    inline static sqlite3_io_methods methods_{};
};

TEST_F(Opening, readsAndKeepsWhereNoMemoryCanBeShared) {
    makeSound();
    const NoSharedMemory missing;
    {
        SqliteRegistry registry(file, ansi);
        EXPECT_EQ(get(registry, u"v"), u"kept");
        EXPECT_EQ(set(registry, u"v", u"new"), ERROR_SUCCESS);
    }
    SqliteRegistry registry(file, ansi);
    EXPECT_EQ(get(registry, u"v"), u"new");
    EXPECT_TRUE(damaged().empty());
}

TEST_F(Opening, isMadeWhereNoMemoryCanBeShared) {
    const NoSharedMemory missing;
    makeSound();
    SqliteRegistry registry(file, ansi);
    EXPECT_EQ(get(registry, u"v"), u"kept");
}

// --- the right to write --------------------------------------------------------------------------

TEST_F(Opening, readsAJournalWithoutItsSharedMemoryThatCannotBeWritten) {
    makeSound();
    leaveInJournal(u"newer");
    const std::string whole = folder.read("config/velmora/registry.sqlite");
    const std::string kept = folder.read(journal);
    folder.mode("config/velmora/registry.sqlite", 0444);
    folder.mode(journal, 0444);
    folder.mode("config/velmora", 0555);
    const int answer = asNobody([&] {
        SqliteRegistry registry(file, ansi);
        int wrong = get(registry, u"v") != u"newer";
        wrong += set(registry, u"v", u"x") != ERROR_ACCESS_DENIED;
        wrong += get(registry, u"v") != u"newer";
        return wrong;
    });
    folder.mode("config/velmora", 0700);
    EXPECT_EQ(answer, 0);
    EXPECT_EQ(folder.read("config/velmora/registry.sqlite"), whole);
    EXPECT_EQ(folder.read(journal), kept);
}

TEST_F(Opening, readingAJournalNeverTakesItFromAnotherProgram) {
    makeSound();
    leaveInJournal(u"newer");
    const std::string whole = folder.read("config/velmora/registry.sqlite");
    const std::string kept = folder.read(journal);
    {
        const NoSharedMemory missing;
        sqlite3 *other = nullptr; // reads, so that the file cannot be had alone
        ASSERT_EQ(sqlite3_open_v2(file.c_str(), &other, SQLITE_OPEN_READONLY, "unix"), SQLITE_OK);
        ASSERT_EQ(
            sqlite3_exec(other, "BEGIN; SELECT count(*) FROM entries", nullptr, nullptr, nullptr),
            SQLITE_OK);
        SqliteRegistry registry(file, ansi);
        EXPECT_EQ(get(registry, u"v"), u"newer");
        EXPECT_NE(set(registry, u"v", u"x"), ERROR_SUCCESS);
        registry.flush();
        EXPECT_EQ(folder.read(journal), kept);
        sqlite3_exec(other, "COMMIT", nullptr, nullptr, nullptr);
        sqlite3_close(other);
        EXPECT_EQ(set(registry, u"v", u"written at last"), ERROR_SUCCESS) << "it is not tried anew";
    }
    SqliteRegistry registry(file, ansi);
    EXPECT_EQ(get(registry, u"v"), u"written at last");
}

TEST_F(Opening, keepsAgainAsSoonAsTheFolderCanBeWritten) {
    makeSound();
    folder.mode("config/velmora", 0555);
    const int answer = asNobody([&] {
        SqliteRegistry registry(file, ansi);
        int wrong = get(registry, u"v") != u"kept";
        wrong += set(registry, u"v", u"x") != ERROR_ACCESS_DENIED;
        folder.mode("config/velmora", 0755);
        wrong += set(registry, u"v", u"new") != ERROR_SUCCESS;
        wrong += get(registry, u"v") != u"new";
        return wrong;
    });
    folder.mode("config/velmora", 0700);
    EXPECT_EQ(answer, 0);
    SqliteRegistry registry(file, ansi);
    EXPECT_EQ(get(registry, u"v"), u"new");
}

// --- a later program's file ----------------------------------------------------------------------

struct NewerFile : Opening {
    // What a later program might make of a sound file.
    void change(const std::string &statements) {
        makeSound();
        sqlite3 *later = nullptr;
        ASSERT_EQ(sqlite3_open(file.c_str(), &later), SQLITE_OK);
        ASSERT_EQ(sqlite3_exec(later, ("PRAGMA user_version = 2;" + statements).c_str(), nullptr,
                               nullptr, nullptr),
                  SQLITE_OK);
        sqlite3_close(later);
    }
    std::string told(const std::function<void()> &work) {
        testing::internal::CaptureStderr();
        work();
        return testing::internal::GetCapturedStderr();
    }
    // The file's bytes are the same afterwards, nothing lies aside, and one line was told.
    void expectReadAlone(std::optional<std::u16string_view> value) {
        const std::string whole = folder.read("config/velmora/registry.sqlite");
        const std::string line = told([&] {
            SqliteRegistry registry(file, ansi);
            for (int i = 0; i < 2; ++i) {
                EXPECT_EQ(get(registry, u"v"), value);
                EXPECT_NE(set(registry, u"v", u"x"), ERROR_SUCCESS);
                EXPECT_NE(set(registry, u"w", u"x"), ERROR_SUCCESS);
                EXPECT_NE(registry.RegDeleteKeyA(HKEY_LOCAL_MACHINE, key), ERROR_SUCCESS);
                RegistryHandle handle = 0;
                EXPECT_NE(registry.RegCreateKeyA(HKEY_LOCAL_MACHINE, u"new", handle),
                          ERROR_SUCCESS);
                registry.flush();
            }
        });
        EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1) << line;
        EXPECT_NE(line.find("newer version"), std::string::npos) << line;
        EXPECT_EQ(folder.read("config/velmora/registry.sqlite"), whole);
        EXPECT_TRUE(damaged().empty());
    }
};

TEST_F(NewerFile, isReadAndNeverWritten) {
    change("ALTER TABLE entries ADD COLUMN later INTEGER NOT NULL DEFAULT 7");
    expectReadAlone(u"kept");
}

TEST_F(NewerFile, keepsAnotherJournalMode) {
    change("PRAGMA journal_mode = DELETE");
    expectReadAlone(u"kept");
}

TEST_F(NewerFile, thatAnswersNothingStaysWhereItIs) {
    change("ALTER TABLE entries RENAME TO settings");
    expectReadAlone(std::nullopt);
}

TEST_F(NewerFile, keepsItsJournalToo) {
    change("");
    const pid_t child = ::fork();
    if (child == 0) { // the later program, ended by force
        sqlite3 *later = nullptr;
        sqlite3_open(file.c_str(), &later);
        ::_exit(
            sqlite3_exec(later, "UPDATE entries SET data = 'newer'", nullptr, nullptr, nullptr));
    }
    int answer = 1;
    ::waitpid(child, &answer, 0);
    ASSERT_EQ(answer, 0);
    const std::string kept = folder.read(journal);
    ASSERT_NE(kept, "");
    expectReadAlone(u"newer");
    EXPECT_EQ(folder.read(journal), kept);
}

TEST_F(NewerFile, isReadWhereItCannotBeOpenedForWriting) {
    change("");
    const WriteLimit limit(1000);
    SqliteRegistry registry(file, ansi);
    const std::string line = told([&] {
        EXPECT_EQ(get(registry, u"v"), u"kept");
        EXPECT_NE(set(registry, u"v", u"x"), ERROR_SUCCESS);
    });
    EXPECT_NE(line.find("newer version"), std::string::npos) << line;
}

} // namespace
} // namespace velmora::platform
