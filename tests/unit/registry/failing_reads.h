#pragma once

// While it lives, some of the engine's reads of database files fail, as on a disk that stammers.

#include <sqlite3.h>

#include <cstring>

namespace velmora::platform {

class FailingReads {
public:
    // Of the reads from now on, `count` fail behind the first `spared` ones.
    FailingReads(int spared, int count) : vfs_(*sqlite3_vfs_find(nullptr)) {
        spared_ = spared;
        count_ = count;
        real_ = sqlite3_vfs_find(nullptr);
        vfs_.zName = "failing";
        vfs_.pNext = nullptr;
        vfs_.xOpen = &open;
        sqlite3_vfs_register(&vfs_, 1);
    }
    ~FailingReads() {
        sqlite3_vfs_unregister(&vfs_);
        sqlite3_vfs_register(real_, 1);
    }
    FailingReads(const FailingReads &) = delete;
    FailingReads &operator=(const FailingReads &) = delete;

    static int reads() { return reads_; }

private:
    static int open(sqlite3_vfs *, const char *name, sqlite3_file *file, int flags, int *out) {
        const int code = real_->xOpen(real_, name, file, flags, out);
        if (code == SQLITE_OK && (flags & SQLITE_OPEN_MAIN_DB) != 0) {
            methods_ = file->pMethods;
            failing_ = *methods_;
            failing_.xRead = &read;
            file->pMethods = &failing_;
        }
        return code;
    }
    static int read(sqlite3_file *file, void *bytes, int size, sqlite3_int64 at) {
        ++reads_;
        if (spared_ > 0)
            --spared_;
        else if (count_ > 0 && count_-- > 0)
            return SQLITE_IOERR_READ;
        return methods_->xRead(file, bytes, size, at);
    }

    sqlite3_vfs vfs_;
    static inline sqlite3_vfs *real_ = nullptr;
    static inline const sqlite3_io_methods *methods_ = nullptr;
    static inline sqlite3_io_methods failing_{};
    static inline int spared_ = 0;
    static inline int count_ = 0;
    static inline int reads_ = 0;
};

} // namespace velmora::platform
