// What a power cut leaves of the registry's file: what was synced, and nothing else.

#include "tests/unit/registry/sqlite_file.h"

#include <sqlite3.h>

#include <map>

namespace velmora::platform {
namespace {

// The engine's files as they are, with a memory of what each held when it was last synced. What is
// there at the beginning is on the disk.
class Disk {
public:
    explicit Disk(const std::string &file) {
        real_ = sqlite3_vfs_find(nullptr);
        watched_ = *real_;
        watched_.zName = "watched";
        watched_.xOpen = &Disk::open;
        synced_.clear();
        names_.clear();
        syncs_ = 0;
        if (std::filesystem::exists(file))
            remember(file);
        sqlite3_vfs_register(&watched_, 1);
    }
    ~Disk() {
        sqlite3_vfs_unregister(&watched_);
        sqlite3_vfs_register(real_, 1);
    }
    Disk(const Disk &) = delete;
    Disk &operator=(const Disk &) = delete;

    // Puts what a power cut would leave at this moment into a folder.
    static void cutInto(const std::string &folder) {
        std::filesystem::create_directories(folder);
        for (const auto &[name, bytes] : synced_)
            std::ofstream(folder + "/" + std::filesystem::path(name).filename().string(),
                          std::ios::binary)
                << bytes;
    }
    static int syncs() { return syncs_; }

private:
    struct Kind {
        sqlite3_io_methods methods;
        int (*sync)(sqlite3_file *, int);
    };

    static int open(sqlite3_vfs *, const char *name, sqlite3_file *file, int flags, int *outFlags) {
        const int code = real_->xOpen(real_, name, file, flags, outFlags);
        if (code == SQLITE_OK && (flags & SQLITE_OPEN_MAIN_DB) != 0)
            watch<0>(file, name);
        else if (code == SQLITE_OK && (flags & SQLITE_OPEN_WAL) != 0)
            watch<1>(file, name);
        return code;
    }
    template <int kind> static void watch(sqlite3_file *file, const char *name) {
        names_[file] = name;
        kinds_[kind] = {*file->pMethods, file->pMethods->xSync};
        kinds_[kind].methods.xSync = [](sqlite3_file *which, int how) {
            ++syncs_;
            remember(names_[which]);
            return kinds_[kind].sync(which, how);
        };
        file->pMethods = &kinds_[kind].methods;
    }

    static void remember(const std::string &name) {
        std::ifstream now(name, std::ios::binary);
        synced_[name] = {std::istreambuf_iterator<char>(now), std::istreambuf_iterator<char>()};
    }

    inline static sqlite3_vfs *real_ = nullptr;
    inline static sqlite3_vfs watched_{};
    inline static Kind kinds_[2]{};
    inline static std::map<sqlite3_file *, std::string> names_;
    inline static std::map<std::string, std::string> synced_;
    inline static int syncs_ = 0;
};

struct PowerCut : SqliteFile {
    static std::int32_t sync(SqliteRegistry &registry) {
        RegistryHandle handle = 0;
        registry.RegCreateKeyA(HKEY_LOCAL_MACHINE, key, handle);
        const auto answer = registry.RegFlushKey(handle);
        registry.RegCloseKey(handle);
        return answer;
    }
    std::optional<std::u16string> afterACut(std::u16string_view name) {
        const std::string left = folder.bytes("after");
        std::filesystem::remove_all(left);
        Disk::cutInto(left);
        testing::internal::CaptureStderr();
        SqliteRegistry registry(left + "/registry.sqlite", ansi);
        const auto value = get(registry, name);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        return value;
    }
};

TEST_F(PowerCut, leavesWhatWasFlushed) {
    makeSound();
    const Disk disk(file);
    SqliteRegistry registry(file, ansi);
    for (const char16_t *value : {u"first", u"second", u"third"}) {
        set(registry, u"a", value);
        set(registry, u"v", value);
        EXPECT_EQ(sync(registry), ERROR_SUCCESS);
        EXPECT_EQ(afterACut(u"a"), value);
        EXPECT_EQ(afterACut(u"v"), value);
    }
}

TEST_F(PowerCut, leavesWhatWasFlushedIntoAFileThatWasMadeInThisRun) {
    const Disk disk(file);
    SqliteRegistry registry(file, ansi);
    for (const char16_t *value : {u"first", u"second"}) {
        set(registry, u"v", value);
        EXPECT_EQ(sync(registry), ERROR_SUCCESS);
        EXPECT_EQ(afterACut(u"v"), value);
    }
}

TEST_F(PowerCut, leavesTheWholeGroupThoughItsLastValueDidNotChange) {
    makeSound();
    const Disk disk(file);
    SqliteRegistry registry(file, ansi);
    set(registry, u"a", u"new");
    set(registry, u"v", u"kept");
    EXPECT_EQ(sync(registry), ERROR_SUCCESS);
    EXPECT_EQ(afterACut(u"a"), u"new");
}

TEST_F(PowerCut, aGroupCostsOneSync) {
    makeSound();
    const Disk disk(file);
    SqliteRegistry registry(file, ansi);
    set(registry, u"a", u"new"); // begins a journal
    const int before = Disk::syncs();
    for (const char16_t *name : {u"b", u"c", u"d"})
        set(registry, name, u"new");
    EXPECT_EQ(Disk::syncs(), before);
    sync(registry);
    EXPECT_EQ(Disk::syncs(), before + 1);
}

TEST_F(PowerCut, whatDidNotChangeIsNotSynced) {
    makeSound();
    SqliteRegistry registry(file, ansi);
    set(registry, u"v", u"new");
    sync(registry);
    registry.flush();
    const Disk disk(file);
    set(registry, u"v", u"new");
    EXPECT_EQ(sync(registry), ERROR_SUCCESS);
    EXPECT_EQ(Disk::syncs(), 0);
}

} // namespace
} // namespace velmora::platform
