#include "platform/backends/linux/linux_files.h"

#include "base/run_time_error.h"
#include "tests/fakes/fake_ansi.h"
#include "tests/unit/linux/temp_folder.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <csignal>

namespace velmora::platform {
namespace {

struct AFileWrittenByPieces : testing::Test {
    TempFolder folder;
    fakes::FakeAnsi ansi;
    LinuxFiles files{ansi};

    ErrorNumber refusalOf(const std::u16string &path) {
        try {
            files.CreateFileA(path);
        } catch (const RunTimeError &error) {
            return error.number();
        }
        ADD_FAILURE() << "it was opened";
        return ErrorNumber::General;
    }
};

TEST_F(AFileWrittenByPieces, isMadeAndTakesPieceAfterPiece) {
    auto file = files.CreateFileA(folder.text("f"));
    EXPECT_TRUE(folder.exists("f"));
    EXPECT_TRUE(file->WriteFile("one"));
    EXPECT_TRUE(file->WriteFile(std::string_view("\0two", 4)));
    EXPECT_TRUE(file->WriteFile(""));
    file.reset();
    EXPECT_EQ(folder.read("f"), std::string("one\0two", 7));
}

TEST_F(AFileWrittenByPieces, growsOnTheDiskWhileItIsOpen) {
    auto file = files.CreateFileA(folder.text("f"));
    std::string all;
    for (int i = 0; i < 80; ++i) {
        const std::string packet(1024, static_cast<char>('A' + i % 26));
        EXPECT_TRUE(file->WriteFile(packet));
        all += packet;
    }
    EXPECT_EQ(folder.read("f"), all.substr(0, 64 * 1024));
    file.reset();
    EXPECT_EQ(folder.read("f"), all);
}

TEST_F(AFileWrittenByPieces, keepsTheBytesOfAnExistingFileUntilTheyAreOverwritten) {
    folder.write("f", "abcdefgh");
    auto file = files.CreateFileA(folder.text("f"));
    EXPECT_EQ(folder.read("f"), "abcdefgh");
    EXPECT_TRUE(file->WriteFile("12"));
    file->SetFilePointer(4);
    EXPECT_EQ(folder.read("f"), "12cdefgh");
    EXPECT_TRUE(file->WriteFile("345"));
    file->SetFilePointer(0);
    EXPECT_EQ(folder.read("f"), "12cd345h");
    EXPECT_TRUE(file->WriteFile("X"));
    file.reset();
    EXPECT_EQ(folder.read("f"), "X2cd345h");
}

TEST_F(AFileWrittenByPieces, isRefusedWhereAWholeWriteIsRefused) {
    EXPECT_EQ(refusalOf(u""), ErrorNumber::FileNotFound);
    EXPECT_EQ(refusalOf(folder.text("missing/f")), ErrorNumber::FileNotFound);
    EXPECT_EQ(refusalOf(u"/velmora-test-file"), ErrorNumber::PermissionDenied);
    EXPECT_EQ(refusalOf(folder.text("f") + std::u16string(1, u'\0')), ErrorNumber::FileNotFound);
    folder.makeFolder("d");
    refusalOf(folder.text("d"));
    folder.pipe("pipe");
    refusalOf(folder.text("pipe")); // without waiting for a reader
    folder.write("locked", "kept");
    folder.mode("locked", 0444);
    EXPECT_EQ(refusalOf(folder.text("locked")), ErrorNumber::PermissionDenied);
    EXPECT_EQ(folder.read("locked"), "kept");
}

TEST_F(AFileWrittenByPieces, tellsWhenNotEveryByteWentOut) {
    const auto file = files.CreateFileA(folder.text("f"));
    struct ::rlimit before {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const struct ::rlimit small { 5, before.rlim_max };
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool wrote = file->WriteFile("12345678" + std::string(80'000, 'x'));
    const bool wroteAgain = file->WriteFile(std::string(80'000, 'y'));
    EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(wrote);
    EXPECT_FALSE(wroteAgain);
    EXPECT_EQ(folder.read("f"), "12345");
}

} // namespace
} // namespace velmora::platform
