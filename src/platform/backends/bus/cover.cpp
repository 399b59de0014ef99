#include "platform/backends/bus/cover.h"

#include "base/within_time.h"
#include "platform/backends/bus/cover_cache.h"
#include "platform/backends/bus/metadata.h"
#include "platform/backends/bus/tag_picture.h"
#include "platform/backends/linux/open_file.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <memory>
#include <string_view>

namespace velmora::platform::bus {

namespace {

// In a folder with more names than any album has, whatever is found by then.
constexpr int mostNames = 10'000;

constexpr std::array<std::string_view, 3> stems{"cover", "folder", "front"};
constexpr std::array<std::string_view, 3> endings{".jpg", ".jpeg", ".png"};

// How early a name comes, 0 first; as many as there are for one that is no cover's.
constexpr std::size_t ranks = stems.size() * endings.size();
std::size_t rankOf(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    for (std::size_t stem = 0; stem < stems.size(); ++stem)
        for (std::size_t ending = 0; ending < endings.size(); ++ending)
            if (name == std::string(stems[stem]) + std::string(endings[ending]))
                return stem * endings.size() + ending;
    return ranks;
}

std::string find(const std::string &folder) {
    const std::unique_ptr<DIR, int (*)(DIR *)> open(opendir(folder.c_str()), closedir);
    std::size_t best = ranks;
    std::string found;
    for (int names = 0; open != nullptr && names < mostNames; ++names) {
        const dirent *entry = readdir(open.get());
        if (entry == nullptr)
            break;
        const std::size_t rank = rankOf(entry->d_name);
        struct ::stat info {};
        const std::string path = folder + entry->d_name;
        if (rank < best && stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode)) {
            best = rank;
            found = path;
        }
    }
    return found;
}

std::string inside(const std::string &track, const std::string &cache) {
    struct ::stat info {};
    const Descriptor file = openRegular(track, info);
    if (!file)
        return {};
    const std::string picture = pictureInTag([&file](std::uint64_t offset, std::size_t size) {
        const auto bytes = platform::readAt(file.number(), static_cast<std::int64_t>(offset), size);
        return bytes.value_or(std::string());
    });
    return picture.empty() ? picture : keepCover(cache, picture);
}

} // namespace

std::string coverOf(const std::string &track, const std::string &cache,
                    std::chrono::milliseconds patience) {
    std::string beside = coverBeside(track, patience);
    if (!beside.empty() || cache.empty())
        return beside;
    const auto found = withinTime(patience, [track, cache] { return inside(track, cache); });
    return found && !found->empty() ? fileUri(*found) : std::string();
}

std::string coverBeside(const std::string &track, std::chrono::milliseconds patience) {
    const std::size_t slash = track.rfind('/');
    if (slash == std::string::npos)
        return {};
    const auto found =
        withinTime(patience, [folder = track.substr(0, slash + 1)] { return find(folder); });
    return found && !found->empty() ? fileUri(*found) : std::string();
}

} // namespace velmora::platform::bus
