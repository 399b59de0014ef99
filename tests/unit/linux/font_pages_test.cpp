// Pages of fonts that were read once.

#include "platform/backends/linux/font_pages.h"

#include "tests/unit/linux/temp_folder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <numeric>

namespace velmora::platform {
namespace {

// A file mapped as a whole, all of it touched.
class Mapping {
public:
    Mapping(const std::string &path, int rights) {
        std::ofstream(path) << std::string(bytes, 'x');
        const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
        at_ = static_cast<char *>(::mmap(nullptr, bytes, rights, MAP_PRIVATE, file, 0));
        ::close(file);
        touched_ = touch();
    }
    ~Mapping() { ::munmap(at_, bytes); }
    Mapping(const Mapping &) = delete;
    Mapping &operator=(const Mapping &) = delete;

    char *at() const { return at_; }
    long touch() const { return std::accumulate(at_, at_ + bytes, 0L); }
    // KB of it that are mapped at present.
    long residentKb() const {
        std::ifstream maps("/proc/self/smaps");
        char start[32];
        std::snprintf(start, sizeof start, "%zx-", reinterpret_cast<std::size_t>(at_));
        bool here = false;
        for (std::string line; std::getline(maps, line);) {
            here = here || line.starts_with(start);
            if (here && line.starts_with("Rss:"))
                return std::stol(line.substr(4));
        }
        return -1;
    }

    static constexpr std::size_t bytes = 256 * 1024;

private:
    char *at_ = nullptr;
    volatile long touched_ = 0; // else nothing would have to be read
};

TEST(FontPages, goAndComeBackWithTheirBytesWhenTheyAreRead) {
    const TempFolder folder;
    const Mapping font(folder.bytes("a face.ttc"), PROT_READ);
    const long sum = font.touch();
    ASSERT_EQ(font.residentKb(), 256);
    EXPECT_GE(letGoOfFontPages(), 1);
    EXPECT_EQ(font.residentKb(), 0);
    EXPECT_EQ(font.touch(), sum);
    EXPECT_EQ(font.residentKb(), 256);
}

TEST(FontPages, areNothingElseOfTheMemory) {
    const TempFolder folder;
    const Mapping other(folder.bytes("a.dat"), PROT_READ);
    const Mapping written(folder.bytes("b.ttf"), PROT_READ | PROT_WRITE);
    written.at()[0] = 'y';
    EXPECT_EQ(letGoOfFontPages(), 0);
    EXPECT_EQ(other.residentKb(), 256);
    EXPECT_EQ(written.at()[0], 'y');
}

} // namespace
} // namespace velmora::platform
