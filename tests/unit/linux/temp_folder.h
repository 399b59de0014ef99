#pragma once

// A folder of its own for a test, gone at the end, and plain ways to look at what lies in it.

#include "text/path_text.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace velmora {

class TempFolder {
public:
    TempFolder() {
        std::string name =
            (std::filesystem::temp_directory_path() / "velmora-test-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr)
            std::abort();
        path_ = name;
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempFolder(const TempFolder &) = delete;
    TempFolder &operator=(const TempFolder &) = delete;

    const std::string &path() const { return path_; }
    std::string bytes(const std::string &name) const { return path_ + "/" + name; }
    // As the program names it.
    std::u16string text(const std::string &name) const {
        return platform::pathFromBytes(bytes(name));
    }
    std::u16string text() const { return platform::pathFromBytes(path_); }

    void write(const std::string &name, const std::string &content) const {
        std::ofstream(bytes(name), std::ios::binary) << content;
    }
    std::string read(const std::string &name) const {
        std::ifstream file(bytes(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
    void makeFolder(const std::string &name) const {
        std::filesystem::create_directories(bytes(name));
    }
    void link(const std::string &name, const std::string &target) const {
        std::filesystem::create_symlink(target, bytes(name));
    }
    void pipe(const std::string &name) const { ASSERT_EQ(::mkfifo(bytes(name).c_str(), 0600), 0); }
    void mode(const std::string &name, unsigned bits) const {
        ASSERT_EQ(::chmod(bytes(name).c_str(), bits), 0);
    }
    unsigned mode(const std::string &name) const {
        struct ::stat info {};
        return ::stat(bytes(name).c_str(), &info) == 0 ? info.st_mode & 07777U : 0U;
    }
    bool exists(const std::string &name) const {
        return std::filesystem::symlink_status(bytes(name)).type() !=
               std::filesystem::file_type::not_found;
    }
    // Everything in the folder itself, hidden names too.
    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto &entry : std::filesystem::directory_iterator(path_))
            found.push_back(entry.path().filename().string());
        std::sort(found.begin(), found.end());
        return found;
    }

private:
    std::string path_;
};

} // namespace velmora
