#pragma once

// Gives up the superuser's rights over files for the time of a test, so that a file that nobody may
// read is one in a run as root, too. Does nothing for an ordinary user.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <unistd.h>

namespace velmora {

class PlainUser {
public:
    // The folder is given to that user, so that it can be worked in.
    explicit PlainUser(const std::string &folder) {
        constexpr ::uid_t nobody = 65534;
        if (::geteuid() != 0)
            return;
        for (const auto &entry : std::filesystem::recursive_directory_iterator(folder))
            give(entry.path().string(), nobody);
        give(folder, nobody);
        EXPECT_EQ(::seteuid(nobody), 0);
    }
    ~PlainUser() {
        if (::getuid() == 0)
            EXPECT_EQ(::seteuid(0), 0);
    }
    PlainUser(const PlainUser &) = delete;
    PlainUser &operator=(const PlainUser &) = delete;

private:
    static void give(const std::string &path, ::uid_t user) {
        EXPECT_EQ(::lchown(path.c_str(), user, static_cast<::gid_t>(-1)), 0) << path;
    }
};

} // namespace velmora
