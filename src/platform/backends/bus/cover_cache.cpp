#include "platform/backends/bus/cover_cache.h"

#include "base/run_time_error.h"
#include "platform/backends/bus/tag_picture.h"
#include "platform/backends/linux/atomic_write.h"
#include "platform/backends/linux/home_folders.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace velmora::platform::bus {

namespace {

constexpr unsigned ownFolder = 0700;
constexpr std::size_t nameDigits = 32;
// In a folder with more names than were ever put there.
constexpr int mostNames = 10'000;

std::uint64_t hashOf(std::string_view bytes, std::uint64_t hash) {
    constexpr std::uint64_t prime = 1099511628211U;
    for (const char byte : bytes)
        hash = (hash ^ static_cast<std::uint8_t>(byte)) * prime;
    return hash;
}

std::string nameOf(const std::string &bytes) {
    constexpr std::uint64_t basis = 14695981039346656037U;
    const std::uint64_t first = hashOf(bytes, basis);
    std::array<char, nameDigits + 1> digits{};
    std::snprintf(digits.data(), digits.size(), "%016llx%016llx",
                  static_cast<unsigned long long>(first),
                  static_cast<unsigned long long>(hashOf(bytes, first ^ bytes.size())));
    return digits.data() + std::string(endingOfPicture(bytes));
}

bool isOurs(std::string_view name) {
    return name.size() == nameDigits + 4 &&
           name.find_first_not_of("0123456789abcdef") == nameDigits &&
           (name.ends_with(".jpg") || name.ends_with(".png"));
}

struct Kept {
    std::string path;
    std::uint64_t bytes;
    std::pair<std::int64_t, std::int64_t> used;
};

std::vector<Kept> keptIn(const std::string &folder) {
    std::vector<Kept> kept;
    const std::unique_ptr<DIR, int (*)(DIR *)> open(opendir(folder.c_str()), closedir);
    for (int names = 0; open != nullptr && names < mostNames; ++names) {
        const dirent *entry = readdir(open.get());
        if (entry == nullptr)
            break;
        struct ::stat info {};
        const std::string path = folder + "/" + entry->d_name;
        if (isOurs(entry->d_name) && lstat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode))
            kept.push_back({path,
                            static_cast<std::uint64_t>(info.st_size),
                            {info.st_mtim.tv_sec, info.st_mtim.tv_nsec}});
    }
    return kept;
}

void makeRoom(const std::string &folder, std::uint64_t bytes) {
    std::vector<Kept> kept = keptIn(folder);
    std::sort(kept.begin(), kept.end(),
              [](const Kept &a, const Kept &b) { return a.used > b.used; });
    std::uint64_t all = bytes;
    std::size_t count = 1;
    for (const Kept &one : kept) {
        all += one.bytes;
        ++count;
        if (count > mostCoversKept || all > mostCoverBytesKept)
            unlink(one.path.c_str());
    }
}

} // namespace

std::string keepCover(const std::string &folder, const std::string &bytes) {
    if (folder.empty() || *endingOfPicture(bytes) == '\0' || !makeFolders(folder, ownFolder))
        return {};
    std::string path = folder + "/" + nameOf(bytes);
    struct ::stat info {};
    if (lstat(path.c_str(), &info) == 0) {
        // It counts as used now.
        utimensat(AT_FDCWD, path.c_str(), nullptr, AT_SYMLINK_NOFOLLOW);
        const bool isIt =
            S_ISREG(info.st_mode) && static_cast<std::uint64_t>(info.st_size) == bytes.size();
        return isIt ? path : std::string();
    }
    makeRoom(folder, bytes.size());
    try {
        AtomicFile file(path, AtomicFile::While::Unnamed, AtomicFile::Over::Nothing);
        file.write(bytes);
        file.commit(false);
    } catch (const RunTimeError &) {
        return {};
    }
    return path;
}

} // namespace velmora::platform::bus
