#include "catalogue/folder.h"

#include "music_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <system_error>

namespace velmora::catalogue {

namespace {

namespace fs = std::filesystem;

std::vector<std::string> pathsOf(const Folder &folder) {
    std::vector<std::string> paths;
    for (const FileEntry &file : folder.list().files)
        paths.push_back(file.path);
    return paths;
}

TEST(Folder, ListsRegularFilesOfAllDepthsSorted) {
    const MusicFolder music;
    music.put("b/c.mp3", "123");
    music.put("a.mp3", "");
    music.put("b/a/x", "");
    const Folder folder(music.path());
    EXPECT_THAT(pathsOf(folder), ::testing::ElementsAre("a.mp3", "b/a/x", "b/c.mp3"));
    EXPECT_EQ(folder.list().files[2].bytes, 3);
    EXPECT_GT(folder.list().files[2].changed, 0);
}

TEST(Folder, ShowsNothingHiddenNoLinkAndNoPipe) {
    const MusicFolder outside;
    outside.put("secret.mp3", "secret");
    const MusicFolder music;
    music.put(".hidden.mp3", "x");
    music.put(".git/x.mp3", "x");
    music.put("real.mp3", "x");
    fs::create_symlink(outside / "secret.mp3", music / "link.mp3");
    fs::create_directory_symlink(outside.path(), music / "folder");
    fs::create_symlink(music / "real.mp3", music / "inner.mp3");
    ASSERT_EQ(::mkfifo((music / "pipe.mp3").c_str(), 0600), 0);
    const Folder folder(music.path());
    EXPECT_THAT(pathsOf(folder), ::testing::ElementsAre("real.mp3"));
}

TEST(Folder, OpensNothingOutsideAndFollowsNoLink) {
    const MusicFolder outside;
    outside.put("secret.mp3", "secret");
    const MusicFolder music;
    music.put("sub/real.mp3", "real");
    fs::create_symlink(outside / "secret.mp3", music / "link.mp3");
    fs::create_directory_symlink(outside.path(), music / "folder");
    ASSERT_EQ(::mkfifo((music / "pipe.mp3").c_str(), 0600), 0);
    const std::string name = fs::path(outside.path()).filename().string();
    const Folder folder(music.path());
    EXPECT_EQ(folder.read("sub/real.mp3", 100), "real");
    EXPECT_EQ(folder.read("sub/real.mp3", 2), "re");
    for (const std::string &path :
         {std::string("link.mp3"), std::string("folder/secret.mp3"), std::string("pipe.mp3"),
          "../" + name + "/secret.mp3", "sub/../../" + name + "/secret.mp3",
          (outside / "secret.mp3").string(), std::string("/etc/passwd"), std::string(""),
          std::string("sub"), std::string("sub/"), std::string("./sub/real.mp3"),
          std::string("sub//real.mp3"), std::string("none"), std::string("sub/real.mp3\0x", 14)})
        EXPECT_FALSE(folder.open(path).has_value()) << path;
}

TEST(Folder, StaysWhatItWasWhenAFolderBecomesALink) {
    const MusicFolder outside;
    outside.put("song.mp3", "secret");
    const MusicFolder music;
    music.put("sub/song.mp3", "real");
    const Folder folder(music.path());
    EXPECT_EQ(pathsOf(folder).size(), 1U);
    fs::rename(music / "sub", music / "old");
    fs::create_directory_symlink(outside.path(), music / "sub");
    EXPECT_FALSE(folder.open("sub/song.mp3").has_value());
}

TEST(Folder, RaisesForWhatIsNone) {
    const MusicFolder music;
    music.put("file", "");
    EXPECT_THROW(Folder((music / "none").string()), std::system_error);
    EXPECT_THROW(Folder((music / "file").string()), std::system_error);
}

} // namespace

} // namespace velmora::catalogue
