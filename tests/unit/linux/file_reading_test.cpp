#include "platform/backends/linux/line_reader.h"
#include "platform/backends/linux/linux_files.h"

#include "base/run_time_error.h"
#include "tests/fakes/fake_ansi.h"
#include "tests/unit/error_of.h"
#include "tests/unit/linux/temp_folder.h"

#include <gtest/gtest.h>

#include <fcntl.h>

#include <functional>

namespace velmora::platform {
namespace {

using List = std::vector<std::u16string>;

struct Reading : testing::Test {
    TempFolder folder;
    fakes::FakeAnsi ansi;
    LinuxFiles files{ansi};

    std::vector<std::string> lines(const std::string &name) {
        std::vector<std::string> result;
        const auto reader = files.openInput(folder.text(name));
        while (!reader->endOfFile())
            result.push_back(reader->readLine());
        return result;
    }
};

using Lines = std::vector<std::string>;

// --- lines ---------------------------------------------------------------------------------------

TEST_F(Reading, endsALineAtEachKindOfLineEnd) {
    folder.write("f", "one\rtwo\r\nthree\nfour");
    EXPECT_EQ(lines("f"), (Lines{"one", "two", "three", "four"}));
}

TEST_F(Reading, takesABareLineFeedForALineEnd) {
    folder.write("f", "/m/a.mp3\n/m/b.mp3\n");
    EXPECT_EQ(lines("f"), (Lines{"/m/a.mp3", "/m/b.mp3"}));
}

TEST_F(Reading, keepsEmptyLinesAndMakesNoneAtTheEnd) {
    folder.write("f", "\r\n\r\n\n\ra\r\n");
    EXPECT_EQ(lines("f"), (Lines{"", "", "", "", "a"}));
    folder.write("empty", "");
    EXPECT_EQ(lines("empty"), Lines{});
    folder.write("end", "\n");
    EXPECT_EQ(lines("end"), Lines{""});
}

TEST_F(Reading, takesNulAndByte26ForData) {
    const std::string content("a\0b\x1A"
                              "c\r\nd",
                              8);
    folder.write("f", content);
    EXPECT_EQ(lines("f"), (Lines{content.substr(0, 5), "d"}));
}

TEST_F(Reading, joinsALineEndThatABufferCutsInTwo) {
    for (const std::size_t size : {65534U, 65535U, 65536U, 131071U}) {
        folder.write("f", std::string(size, 'x') + "\r\nnext");
        EXPECT_EQ(lines("f"), (Lines{std::string(size, 'x'), "next"}));
        folder.write("f", std::string(size, 'x') + "\r\n");
        EXPECT_EQ(lines("f"), (Lines{std::string(size, 'x')}));
        folder.write("f", std::string(size, 'x') + "\r\rnext");
        EXPECT_EQ(lines("f"), (Lines{std::string(size, 'x'), "", "next"}));
    }
}

TEST_F(Reading, acceptsALineOfFifteenMegabytes) {
    const std::string line(15'000'000, 'y');
    folder.write("f", line + "\r\nz");
    EXPECT_EQ(lines("f"), (Lines{line, "z"}));
}

TEST_F(Reading, refusesALineWithoutEndBeforeItFillsTheMemory) {
    folder.write("f", "first\r\n");
    std::filesystem::resize_file(folder.bytes("f"), std::uintmax_t{1} << 30); // a sparse gigabyte
    const auto reader = files.openInput(folder.text("f"));
    EXPECT_EQ(reader->readLine(), "first");
    EXPECT_FALSE(reader->endOfFile());
    errorOf([&] { reader->readLine(); });
    EXPECT_TRUE(reader->endOfFile());
}

TEST_F(Reading, raisesPastTheEndAndStaysThere) {
    folder.write("f", "a");
    const auto reader = files.openInput(folder.text("f"));
    EXPECT_EQ(reader->readLine(), "a");
    EXPECT_TRUE(reader->endOfFile());
    errorOf([&] { reader->readLine(); });
    EXPECT_TRUE(reader->endOfFile());
}

TEST_F(Reading, aReadErrorIsRaisedOnceAndEndsTheFile) {
    // The memory of a process reads with an error at its beginning.
    Descriptor broken(::open("/proc/self/mem", O_RDONLY | O_CLOEXEC));
    ASSERT_TRUE(broken);
    FileLineReader reader(std::move(broken));
    EXPECT_FALSE(reader.endOfFile());
    EXPECT_EQ(errorOf([&] { reader.readLine(); }), ErrorNumber::DeviceIo);
    EXPECT_TRUE(reader.endOfFile());
}

// --- what may be opened --------------------------------------------------------------------------

TEST_F(Reading, refusesWhatIsNoFileWithoutWaiting) {
    folder.makeFolder("sub");
    folder.pipe("pipe");
    folder.link("dangling", "nowhere");
    folder.link("loop", "loop");
    EXPECT_EQ(errorOf([&] { files.openInput(folder.text("sub")); }), ErrorNumber::PermissionDenied);
    EXPECT_EQ(errorOf([&] { files.openInput(folder.text("pipe")); }), ErrorNumber::DeviceIo);
    EXPECT_EQ(errorOf([&] { files.openInput(u"/dev/zero"); }), ErrorNumber::DeviceIo);
    EXPECT_EQ(errorOf([&] { files.openInput(folder.text("dangling")); }),
              ErrorNumber::FileNotFound);
    EXPECT_EQ(errorOf([&] { files.openInput(folder.text("loop")); }), ErrorNumber::PathNotFound);
    EXPECT_EQ(errorOf([&] { files.openInput(folder.text("missing")); }), ErrorNumber::FileNotFound);
    EXPECT_EQ(errorOf([&] { files.openInput(u""); }), ErrorNumber::FileNotFound);
}

TEST_F(Reading, refusesAPathWithANulInsteadOfCuttingIt) {
    folder.write("f", "x");
    const std::u16string path = folder.text("f") + std::u16string(1, u'\0') + u"tail";
    EXPECT_EQ(errorOf([&] { files.openInput(path); }), ErrorNumber::FileNotFound);
    EXPECT_EQ(errorOf([&] { files.FileLen(path); }), ErrorNumber::FileNotFound);
    EXPECT_EQ(files.Dir(path), u"");
}

TEST_F(Reading, opensNamesOfAnyBytesAndLinksToFiles) {
    for (const std::string name : {"\xD6\xD0.mp3", "a\nb", "曲 目.txt", "*?.m3u"}) {
        folder.write(name, "content");
        EXPECT_EQ(lines(name), Lines{"content"});
    }
    folder.link("link", "曲 目.txt");
    EXPECT_EQ(lines("link"), Lines{"content"});
}

// --- bytes ---------------------------------------------------------------------------------------

TEST_F(Reading, givesBytesAtAPlaceAndFewerAtTheEnd) {
    folder.write("f", "0123456789");
    EXPECT_EQ(files.readBytes(folder.text("f"), 2, 3), "234");
    EXPECT_EQ(files.readBytes(folder.text("f"), 8, 100), "89");
    EXPECT_EQ(files.readBytes(folder.text("f"), 10, 1), "");
    EXPECT_EQ(files.readBytes(folder.text("f"), 1'000'000, 1), "");
    EXPECT_EQ(files.readBytes(folder.text("f"), 0, 0), "");
}

TEST_F(Reading, takesNoMemoryForBytesThatAreNotThere) {
    folder.write("f", "abc");
    EXPECT_EQ(files.readBytes(folder.text("f"), 0, std::size_t{1} << 40), "abc");
}

TEST_F(Reading, raisesForBytesThatCannotBeRead) {
    folder.write("f", "abc");
    EXPECT_EQ(errorOf([&] { files.readBytes(folder.text("f"), -1, 1); }), ErrorNumber::InvalidCall);
    folder.pipe("pipe");
    EXPECT_EQ(errorOf([&] { files.readBytes(folder.text("pipe"), 0, 1); }), ErrorNumber::DeviceIo);
    EXPECT_EQ(errorOf([&] { files.readBytes(folder.text("no"), 0, 1); }),
              ErrorNumber::FileNotFound);
}

TEST_F(Reading, tellsLengthsBeyondThirtyTwoBits) {
    folder.write("f", "");
    EXPECT_EQ(files.FileLen(folder.text("f")), 0);
    std::filesystem::resize_file(folder.bytes("f"), 5'000'000'000);
    EXPECT_EQ(files.FileLen(folder.text("f")), 5'000'000'000);
    EXPECT_EQ(files.readBytes(folder.text("f"), 4'999'999'999, 9), std::string(1, '\0'));
}

TEST_F(Reading, hasNoLengthOfWhatIsNoFile) {
    folder.makeFolder("sub");
    EXPECT_EQ(errorOf([&] { files.FileLen(folder.text("sub")); }), ErrorNumber::PermissionDenied);
    EXPECT_EQ(errorOf([&] { files.FileLen(folder.text("missing")); }), ErrorNumber::FileNotFound);
    EXPECT_EQ(errorOf([&] { files.FileLen(u""); }), ErrorNumber::FileNotFound);
}

TEST_F(Reading, datesAFileByItsBirthOrItsChange) {
    const std::time_t before = std::time(nullptr) - 5;
    folder.write("f", "x");
    const auto object = files.CreateFileSystemObject();
    EXPECT_GE(object->DateCreated(folder.text("f")), before);
    EXPECT_LE(object->DateCreated(folder.text("f")), std::time(nullptr) + 5);
    errorOf([&] { object->DateCreated(folder.text("missing")); });
}

TEST_F(Reading, describesFailuresInTheWordsOfTheSystem) {
    try {
        files.openInput(folder.text("missing"));
        FAIL();
    } catch (const RunTimeError &error) {
        EXPECT_EQ(error.description(), u"No such file or directory");
    }
}

} // namespace
} // namespace velmora::platform
