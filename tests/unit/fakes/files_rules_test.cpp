// The rules of files: the real file system and its fake keep the same ones, so that what the
// program's tests show on the fake holds on the disk.

#include "base/run_time_error.h"
#include "platform/backends/linux/linux_files.h"
#include "tests/fakes/fake_ansi.h"
#include "tests/fakes/fake_files.h"
#include "tests/unit/error_of.h"
#include "tests/unit/linux/temp_folder.h"

#include <gtest/gtest.h>

#include <functional>

namespace velmora::platform {
namespace {

using List = std::vector<std::u16string>;

template <typename Kind> struct Disk;

template <> struct Disk<LinuxFiles> {
    TempFolder folder;
    fakes::FakeAnsi ansi;
    LinuxFiles files{ansi};

    std::u16string path(const std::string &name) { return folder.text(name); }
    void file(const std::string &name, const std::string &bytes) { folder.write(name, bytes); }
    void makeFolder(const std::string &name) { folder.makeFolder(name); }
    void special(const std::string &name) { folder.pipe(name); }
    void readOnly(const std::string &name) { folder.mode(name, 0444); }
    std::string content(const std::string &name) { return folder.read(name); }
};

template <> struct Disk<fakes::FakeFiles> {
    fakes::FakeAnsi ansi;
    fakes::FakeFiles files{ansi};

    Disk() { files.addFolder(u"/disk"); }
    std::u16string path(const std::string &name) { return u"/disk/" + pathFromBytes(name); }
    void file(const std::string &name, const std::string &bytes) {
        files.addFile(path(name), bytes);
    }
    void makeFolder(const std::string &name) { files.addFolder(path(name)); }
    void special(const std::string &name) { files.addSpecial(path(name)); }
    void readOnly(const std::string &name) { files.setReadOnly(path(name)); }
    std::string content(const std::string &name) { return files.contents(path(name)); }
};

template <typename Kind> struct FilesRules : testing::Test, Disk<Kind> {
    std::vector<std::string> lines(const std::string &name) {
        std::vector<std::string> result;
        const auto reader = this->files.openInput(this->path(name));
        while (!reader->endOfFile())
            result.push_back(reader->readLine());
        return result;
    }
};

using Kinds = testing::Types<LinuxFiles, fakes::FakeFiles>;
TYPED_TEST_SUITE(FilesRules, Kinds);

TYPED_TEST(FilesRules, readLinesByEveryLineEnd) {
    this->file("f", "a\rb\r\nc\n\r\n\nd");
    EXPECT_EQ(this->lines("f"), (std::vector<std::string>{"a", "b", "c", "", "", "d"}));
    this->file("g", "a\r\n");
    EXPECT_EQ(this->lines("g"), std::vector<std::string>{"a"});
    this->file("h", "");
    EXPECT_EQ(this->lines("h"), std::vector<std::string>{});
}

TYPED_TEST(FilesRules, findNamesWithoutRegardToCase) {
    this->file("Song.Lrc", "");
    this->makeFolder("Folder");
    this->special("special");
    EXPECT_EQ(this->files.Dir(this->path("sONG.lRC")), u"Song.Lrc");
    EXPECT_EQ(this->files.Dir(this->path("Song.Lrc")), u"Song.Lrc");
    EXPECT_EQ(this->files.Dir(this->path("Folder")), u"");
    EXPECT_EQ(this->files.Dir(this->path("special")), u"");
    EXPECT_EQ(this->files.Dir(this->path("missing")), u"");
    EXPECT_EQ(this->files.Dir(u""), u"");
    EXPECT_EQ(this->files.Dir(this->path("FOLDER"), SearchFor::Folders), u"Folder");
    EXPECT_EQ(this->files.Dir(this->path("Song.Lrc"), SearchFor::Folders), u"");
    this->file("song.lrc", "");
    EXPECT_EQ(this->files.Dir(this->path("song.lrc")), u"song.lrc");
}

TYPED_TEST(FilesRules, listByUpperCasedNameOnceInAWalk) {
    this->makeFolder("sub");
    for (const char *name : {"b", "A", ".hidden", "C"})
        this->file(std::string("sub/") + name, "");
    EXPECT_EQ(this->files.list(this->path("sub"), SearchFor::Files, 0), (List{u"A", u"b", u"C"}));
    EXPECT_EQ(this->files.list(this->path("sub"), SearchFor::Folders, 0), List{});
    EXPECT_EQ(this->files.list(this->path("missing"), SearchFor::Files, 0), List{});
    EXPECT_EQ(this->files.list(this->path("sub"), SearchFor::Files, 5).size(), 3U);
    EXPECT_EQ(this->files.list(this->path("sub"), SearchFor::Files, 5), List{});
    EXPECT_EQ(this->files.list(this->path("sub"), SearchFor::Files, 6).size(), 3U);
}

TYPED_TEST(FilesRules, writeWholeFilesOrRaise) {
    this->files.writeWhole(this->path("f"), "one", false);
    this->files.writeWhole(this->path("f"), "two", true);
    EXPECT_EQ(this->content("f"), "two");
    this->readOnly("f");
    EXPECT_EQ(errorOf([&] { this->files.writeWhole(this->path("f"), "x", false); }),
              ErrorNumber::PermissionDenied);
    EXPECT_EQ(this->content("f"), "two");
    this->makeFolder("sub");
    this->special("special");
    errorOf([&] { this->files.writeWhole(this->path("sub"), "x", false); });
    errorOf([&] { this->files.writeWhole(this->path("special"), "x", false); });
    errorOf([&] { this->files.writeWhole(this->path("no/f"), "x", false); });
    errorOf([&] { this->files.writeWhole(u"/in-the-root", "x", false); });
    errorOf([&] { this->files.writeWhole(u"", "x", false); });
}

TYPED_TEST(FilesRules, writeNewFilesAndLeaveWhatIsThere) {
    this->files.writeNew(this->path("f"), "one", true);
    EXPECT_EQ(this->content("f"), "one");
    this->makeFolder("sub");
    this->special("special");
    for (const char *name : {"f", "sub", "special"})
        EXPECT_EQ(errorOf([&] { this->files.writeNew(this->path(name), "two", false); }),
                  ErrorNumber::FileExists)
            << name;
    EXPECT_EQ(this->content("f"), "one");
    errorOf([&] { this->files.writeNew(this->path("no/f"), "x", false); });
    errorOf([&] { this->files.writeNew(u"/in-the-root", "x", false); });
    errorOf([&] { this->files.writeNew(u"", "x", false); });
}

TYPED_TEST(FilesRules, renameWithoutReplacing) {
    this->file("a", "A");
    this->file("b", "B");
    const auto name = [&](const std::u16string &to) {
        return [this, to] { this->files.Name(this->path("a"), to); };
    };
    EXPECT_EQ(errorOf(name(this->path("b"))), ErrorNumber::FileExists);
    EXPECT_EQ(errorOf(name(this->path("sub/c"))), ErrorNumber::InvalidCall);
    EXPECT_EQ(errorOf(name(this->path(".."))), ErrorNumber::InvalidCall);
    EXPECT_EQ(errorOf(name(this->path(""))), ErrorNumber::InvalidCall);
    name(this->path("a"))();
    name(this->path("c"))();
    EXPECT_EQ(this->content("c"), "A");
    EXPECT_EQ(errorOf(name(this->path("d"))), ErrorNumber::FileNotFound);
}

TYPED_TEST(FilesRules, deleteTheExactFileOnly) {
    this->file("Song", "x");
    this->file("locked", "x");
    this->readOnly("locked");
    this->makeFolder("sub");
    const auto object = this->files.CreateFileSystemObject();
    const auto remove = [&](const std::string &name) {
        return [this, &object, name] { object->DeleteFile(this->path(name)); };
    };
    EXPECT_EQ(errorOf(remove("song")), ErrorNumber::FileNotFound);
    EXPECT_EQ(errorOf(remove("sub")), ErrorNumber::PermissionDenied);
    EXPECT_EQ(errorOf(remove("locked")), ErrorNumber::PermissionDenied);
    remove("Song")();
    EXPECT_EQ(this->files.Dir(this->path("Song")), u"");
}

TYPED_TEST(FilesRules, tellLengthsAndGiveBytes) {
    this->file("f", "0123456789");
    EXPECT_EQ(this->files.FileLen(this->path("f")), 10);
    EXPECT_EQ(this->files.readBytes(this->path("f"), 7, 100), "789");
    EXPECT_EQ(this->files.readBytes(this->path("f"), 100, 1), "");
    EXPECT_EQ(errorOf([&] { this->files.FileLen(this->path("no")); }), ErrorNumber::FileNotFound);
    EXPECT_EQ(errorOf([&] { this->files.readBytes(this->path("f"), -1, 1); }),
              ErrorNumber::InvalidCall);
}

TYPED_TEST(FilesRules, refuseToOpenWhatIsNoFile) {
    this->makeFolder("sub");
    this->special("special");
    EXPECT_EQ(errorOf([&] { this->files.openInput(this->path("sub")); }),
              ErrorNumber::PermissionDenied);
    EXPECT_EQ(errorOf([&] { this->files.openInput(this->path("special")); }),
              ErrorNumber::DeviceIo);
    EXPECT_EQ(errorOf([&] { this->files.openInput(this->path("no")); }), ErrorNumber::FileNotFound);
}

TYPED_TEST(FilesRules, writeTextsInTheirAnsiFormAndKeepOldFiles) {
    this->files.CreateFileSystemObject()->CreateTextFile(this->path("f"), u"é曲");
    EXPECT_EQ(this->content("f"), "é曲");
    this->files.keepAs(this->path("f"), this->path("f.old"));
    EXPECT_EQ(this->content("f.old"), "é曲");
    EXPECT_EQ(this->content("f"), "é曲");
    errorOf([&] { this->files.keepAs(this->path("no"), this->path("x")); });
}

TYPED_TEST(FilesRules, doNotKeepWhatMayNotBeReplacedAnyway) {
    this->file("locked", "x");
    this->readOnly("locked");
    EXPECT_EQ(errorOf([&] { this->files.keepAs(this->path("locked"), this->path("kept")); }),
              ErrorNumber::PermissionDenied);
    EXPECT_EQ(this->files.Dir(this->path("kept")), u"");
}

} // namespace
} // namespace velmora::platform
