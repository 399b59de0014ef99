// The play list, kept files, renaming and copying on real disks that refuse much of what others
// allow, used by somebody to whom they do not belong, and on such disks when they are full.

#include "platform/backends/linux/file_copy.h"
#include "platform/backends/linux/linux_files.h"
#include "playlist/saveOrOpenFile.h"
#include "tests/fakes/instead.h"
#include "tests/unit/disks/other_disk.h"
#include "tests/unit/error_of.h"
#include "tests/unit/program_fixture.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace velmora {
namespace {

using Names = std::vector<std::string>;

constexpr OtherDisk::Kind kinds[] = {
    // The kernel's own, for the superuser: nobody else may set modes and times.
    {"vfat",
     "mkfs.vfat \"$image\" && "
     "mount -t vfat -o loop,umask=000,utf8=1 \"$image\" \"$place\"",
     ""},
    // Besides that no second names, no renaming that spares, no files without a name.
    {"exfat",
     "mkfs.exfat \"$image\" && "
     "mount -t exfat-fuse -o loop,umask=000 \"$image\" \"$place\"",
     ""},
    // The folder of another place, whose modes nobody may set.
    {"bindfs", "bindfs --chmod-deny --chown-deny -o allow_other \"$below\" \"$place\"",
     "bindfs --no-allow-other --chmod-deny --chown-deny \"$below\" \"$place\""},
    {"tmpfs", "mount -t tmpfs -o size=2M,mode=777 none \"$place\"", nullptr},
};

class OnAnotherDisk : public testing::TestWithParam<OtherDisk::Kind> {
protected:
    OtherDisk disk{GetParam()};
    fakes::FakePlatform fake;
    platform::LinuxFiles files{fake.ansi};
    Velmora app{fakes::with(fake.bundle(), {.files = &files})};

    void SetUp() override {
        if (!disk.lacking().empty())
            GTEST_SKIP() << disk.lacking();
        app.setControl().Path_List = text();
    }

    std::u16string text(const std::string &name = {}) const {
        return platform::pathFromBytes(name.empty() ? disk.path() : bytes(name));
    }
    std::string bytes(const std::string &name) const { return disk.path() + "/" + name; }
    void write(const std::string &name, const std::string &content) const {
        std::ofstream(bytes(name), std::ios::binary) << content;
    }
    std::string read(const std::string &name) const {
        std::ifstream file(bytes(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
    Names names() const {
        Names found;
        for (const auto &entry : std::filesystem::directory_iterator(disk.path()))
            found.push_back(entry.path().filename());
        std::sort(found.begin(), found.end());
        return found;
    }
    bool ignoresCase() const {
        write("case", "");
        const bool answer = std::filesystem::exists(bytes("CASE"));
        std::filesystem::remove(bytes("case"));
        return answer;
    }
    // Leaves no room for a single byte.
    void fill() const {
        const int file = ::open(bytes("filler").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
        ASSERT_GE(file, 0);
        for (std::size_t step : {std::size_t{1} << 20, std::size_t{4096}, std::size_t{1}}) {
            const std::string piece(step, 'f');
            while (::write(file, piece.data(), piece.size()) > 0) {
            }
        }
        ::close(file);
    }

    void add(std::u16string_view path) {
        app.playList_Form().playList_Item.addItem(app.player().getFileStem(path));
        app.playList_Form().List1.addItem(path);
    }
    void save() { app.saveOrOpenFile().savePlayList(); }
    bool load() { return app.saveOrOpenFile().loadPlayList(); }
    std::int32_t rows() { return app.playList_Form().List1.listCount(); }
    void copy(const std::string &source, bool replacing) {
        platform::FileCopy copying(source, disk.path());
        copying.begin();
        while (copying.copyPiece()) {
        }
        copying.finish(replacing);
    }
};

TEST_P(OnAnotherDisk, TheListIsSavedReadAndSavedAgain) {
    add(u"/m/a.mp3");
    save();
    EXPECT_EQ(read("zkPlayList.m3u"), "/m/a.mp3\r\n");
    add(u"/音乐/晚霞.mp3");
    app.saveOrOpenFile().savePlayList(SaveKind::Step);
    save();
    EXPECT_EQ(read("zkPlayList.m3u"), "/m/a.mp3\r\n/音乐/晚霞.mp3\r\n");
    EXPECT_TRUE(load());
    EXPECT_EQ(rows(), 2);
    EXPECT_EQ(names(), Names{"zkPlayList.m3u"});
}

TEST_P(OnAnotherDisk, AListThatWasNotReadIsKept) {
    write("zkPlayList.m3u", "/m/1.mp3\r\n/m/2.mp3\r\n");
    add(u"/m/a.mp3");
    save();
    EXPECT_EQ(read("zkPlayList.m3u.old"), "/m/1.mp3\r\n/m/2.mp3\r\n");
    EXPECT_EQ(read("zkPlayList.m3u"), "/m/a.mp3\r\n");
    EXPECT_EQ(names(), (Names{"zkPlayList.m3u", "zkPlayList.m3u.old"}));
}

TEST_P(OnAnotherDisk, AListInAnotherCaseIsReadAndStaysTheOnlyOne) {
    write("ZKPLAYLIST.M3U", "/m/1.mp3\r\n");
    EXPECT_TRUE(load());
    EXPECT_EQ(rows(), 1);
    add(u"/m/a.mp3");
    save();
    EXPECT_EQ(names().size(), 1U);
    EXPECT_EQ(read(names().front()), "/m/1.mp3\r\n/m/a.mp3\r\n");
}

TEST_P(OnAnotherDisk, AFolderThatCanBeWrittenIsOne) {
    EXPECT_TRUE(app.saveOrOpenFile().canWriteFolder(text()));
    EXPECT_EQ(names(), Names{});
}

TEST_P(OnAnotherDisk, NewFilesReplaceNothing) {
    files.writeNew(text("f"), "first", true);
    EXPECT_EQ(errorOf([&] { files.writeNew(text("f"), "second", true); }), ErrorNumber::FileExists);
    EXPECT_EQ(read("f"), "first");
    EXPECT_EQ(names(), Names{"f"});
}

TEST_P(OnAnotherDisk, FilesAreRenamedAndNeverReplaced) {
    write("a.mp3", "A");
    write("b.mp3", "B");
    EXPECT_EQ(errorOf([&] { files.Name(text("a.mp3"), text("b.mp3")); }), ErrorNumber::FileExists);
    files.Name(text("a.mp3"), text("曲 c.mp3"));
    EXPECT_EQ(names(), (Names{"b.mp3", "曲 c.mp3"}));
    EXPECT_EQ(read("曲 c.mp3"), "A");
    EXPECT_EQ(read("b.mp3"), "B");
    if (ignoresCase()) {
        EXPECT_EQ(errorOf([&] { files.Name(text("曲 c.mp3"), text("B.MP3")); }),
                  ErrorNumber::FileExists);
    }
}

TEST_P(OnAnotherDisk, AFileIsSpeltAnewInCapitals) {
    write("song.mp3", "x");
    files.Name(text("song.mp3"), text("Song.MP3"));
    EXPECT_EQ(names(), Names{"Song.MP3"});
    EXPECT_EQ(read("Song.MP3"), "x");
}

TEST_P(OnAnotherDisk, FilesAreCopiedWhole) {
    const TempFolder source;
    const std::string content = std::string(1'200'000, 's') + "end";
    source.write("a.mp3", content);
    copy(source.bytes("a.mp3"), false);
    EXPECT_TRUE(read("a.mp3") == content);
    source.write("a.mp3", "changed");
    EXPECT_TRUE(platform::FileCopy(source.bytes("a.mp3"), disk.path()).isTaken());
    EXPECT_EQ(errorOf([&] { copy(source.bytes("a.mp3"), false); }), ErrorNumber::FileExists);
    EXPECT_TRUE(read("a.mp3") == content);
    copy(source.bytes("a.mp3"), true);
    EXPECT_EQ(read("a.mp3"), "changed");
    EXPECT_EQ(names(), Names{"a.mp3"});
}

TEST_P(OnAnotherDisk, ACopyThatIsStoppedLeavesNothing) {
    const TempFolder source;
    source.write("a.mp3", std::string(1'200'000, 's'));
    {
        platform::FileCopy copying(source.bytes("a.mp3"), disk.path());
        copying.begin();
        EXPECT_TRUE(copying.copyPiece());
    }
    EXPECT_EQ(names(), Names{});
}

TEST_P(OnAnotherDisk, ThatIsFullEverythingStaysAsItWas) {
    if (GetParam().name == std::string("bindfs"))
        return; // a folder of another disk has that one's room
    const std::string others = "/m/1.mp3\r\n/m/2.mp3\r\n";
    const TempFolder source;
    source.write("a.mp3", std::string(1'200'000, 's'));
    write("a.mp3", "old");
    write("zkPlayList.m3u", others);
    fill();
    const Names before = names();
    for (int row = 0; row < 5000; ++row)
        add(u"/m/" + fromAscii(std::to_string(row)) + u".mp3");
    save(); // which would have to keep the old one first
    EXPECT_EQ(read("zkPlayList.m3u"), others);
    EXPECT_TRUE(load());
    EXPECT_EQ(rows(), 2);
    for (int row = 0; row < 5000; ++row)
        add(u"/m/" + fromAscii(std::to_string(row)) + u".mp3");
    save();
    EXPECT_EQ(read("zkPlayList.m3u"), others);
    EXPECT_EQ(errorOf([&] { copy(source.bytes("a.mp3"), true); }), ErrorNumber::DiskFull);
    EXPECT_EQ(read("a.mp3"), "old");
    EXPECT_EQ(errorOf([&] { files.writeNew(text("new"), std::string(100'000, 'n'), true); }),
              ErrorNumber::DiskFull);
    EXPECT_EQ(names(), before);
    files.Name(text("a.mp3"), text("b.mp3")); // takes no room
    EXPECT_EQ(read("b.mp3"), "old");
    // With room again all of it is saved.
    std::filesystem::remove(bytes("filler"));
    save();
    EXPECT_EQ(read("zkPlayList.m3u").size(),
              others.size() + 5000 * 9 + 10 + 90 * 2 + 900 * 3 + 4000 * 4);
}

INSTANTIATE_TEST_SUITE_P(Disks, OnAnotherDisk, testing::ValuesIn(kinds),
                         [](const auto &kind) { return std::string(kind.param.name); });

} // namespace
} // namespace velmora
