// Where a damaged file goes, whatever the file system knows of renaming.

#include "tests/unit/registry/sqlite_file.h"

#include <cerrno>

namespace velmora::platform {
namespace {

// What a file system may answer to a renaming that must replace nothing, and to a second name.
struct AsideCase {
    const char *name;
    int rename; // 0: as it is
    int link;
};

struct KeptAside : SqliteFile, testing::WithParamInterface<AsideCase> {
    FileCalls calls() const {
        FileCalls calls;
        if (GetParam().rename != 0)
            calls.rename = [error = GetParam().rename,
                            real = calls.rename](const char *from, const char *to, unsigned flags) {
                return flags == 0 ? real(from, to, 0) : (errno = error, -1);
            };
        if (GetParam().link != 0)
            calls.link = [error = GetParam().link](const char *, const char *, int) {
                return errno = error, -1;
            };
        return calls;
    }
};

TEST_P(KeptAside, isADamagedFileWhateverTheFileSystemKnowsOfRenaming) {
    testing::internal::CaptureStderr();
    for (int i = 0; i < 2; ++i) { // the second within the second of the first, perhaps
        makeSound();
        std::ofstream(file) << std::string(5000, static_cast<char>('a' + i));
        SqliteRegistry registry(file, ansi, calls());
        EXPECT_EQ(get(registry, u"v"), std::nullopt);
        EXPECT_EQ(set(registry, u"v", u"new"), ERROR_SUCCESS);
        EXPECT_EQ(get(registry, u"v"), u"new");
    }
    testing::internal::GetCapturedStderr();
    ASSERT_EQ(damaged().size(), 2U);
    std::string kept;
    for (const std::string &name : damaged())
        kept += folder.read("config/velmora/" + name).front();
    EXPECT_EQ(kept, "ab");
}

INSTANTIATE_TEST_SUITE_P(Registry, KeptAside,
                         testing::Values(AsideCase{"asEverywhere", 0, 0},
                                         AsideCase{"withSecondNamesAlone", EINVAL, 0},
                                         AsideCase{"withNeither", EINVAL, EPERM},
                                         AsideCase{"onAnOldKernel", ENOSYS, ENOTSUP}),
                         [](const auto &row) { return std::string(row.param.name); });

} // namespace
} // namespace velmora::platform
