#pragma once

// A folder of music that lasts as long as a test.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace velmora::catalogue {

class MusicFolder {
public:
    MusicFolder() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "velmora-music-XXXXXX").string();
        path_ = ::mkdtemp(pattern.data());
    }
    ~MusicFolder() { std::filesystem::remove_all(path_); }
    MusicFolder(const MusicFolder &) = delete;
    MusicFolder &operator=(const MusicFolder &) = delete;

    std::string path() const { return path_.string(); }
    std::filesystem::path operator/(const std::string &name) const { return path_ / name; }

    // Makes the folders on the way.
    void put(const std::string &name, const std::string &bytes) const {
        std::filesystem::create_directories((path_ / name).parent_path());
        std::ofstream(path_ / name, std::ios::binary) << bytes;
    }

    // An MPEG file that holds nothing but a tag of 128 bytes behind some sound.
    void putTagged(const std::string &name, const std::string &title, const std::string &artist,
                   const std::string &album) const {
        const auto field = [](std::string text, std::size_t size) {
            text.resize(size, '\0');
            return text;
        };
        // One silent frame of 128 kilobits at 44100 Hz, ten times.
        std::string frame("\xFF\xFB\x90\x64", 4);
        frame.resize(417, '\0');
        std::string bytes;
        for (int i = 0; i < 10; ++i)
            bytes += frame;
        bytes += "TAG" + field(title, 30) + field(artist, 30) + field(album, 30);
        put(name, bytes + field("2026", 4) + field("", 30) + std::string(1, '\xFF'));
    }

private:
    std::filesystem::path path_;
};

} // namespace velmora::catalogue
