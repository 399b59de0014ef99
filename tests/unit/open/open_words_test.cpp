// The command line of velmora-open, the lyric that it follows, and the addresses of files.

#include "open/arguments.h"
#include "open/lyric_clock.h"
#include "platform/backends/bus/metadata.h"
#include "text/file_uris.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora {
namespace {

using open_tool::Action;

std::optional<open_tool::Request> read(const std::vector<std::string> &words) {
    std::string complaint;
    return open_tool::readWords(words, complaint);
}

std::string complaintOf(const std::vector<std::string> &words) {
    std::string complaint;
    EXPECT_FALSE(open_tool::readWords(words, complaint));
    return complaint;
}

TEST(OpenWords, WithoutAnyThePlayerShowsItself) {
    const auto request = read({});
    ASSERT_TRUE(request);
    EXPECT_EQ(request->action, Action::Open);
    EXPECT_TRUE(request->files.empty());
}

TEST(OpenWords, FilesMayStandAnywhereAndBehindTwoDashesBeginWithOne) {
    const auto request = read({"a.mp3", "-e", "-", "--", "--play", "-x"});
    ASSERT_TRUE(request);
    EXPECT_EQ(request->action, Action::Enqueue);
    EXPECT_THAT(request->files, ::testing::ElementsAre("a.mp3", "-", "--play", "-x"));
}

TEST(OpenWords, AnOptionMayBeShortenedWhileItIsTheOnlyOne) {
    EXPECT_EQ(read({"--ne"})->command, platform::RemoteCommand::Next);
    EXPECT_EQ(read({"--play"})->command, platform::RemoteCommand::Play);
    EXPECT_THAT(complaintOf({"--p"}), ::testing::HasSubstr("ambiguous"));
}

TEST(OpenWords, AWrongWordIsNamed) {
    EXPECT_THAT(complaintOf({"--nonsense"}), ::testing::HasSubstr("--nonsense"));
    EXPECT_THAT(complaintOf({"-z"}), ::testing::HasSubstr("'z'"));
    EXPECT_THAT(complaintOf({"--seek"}), ::testing::HasSubstr("requires an argument"));
    EXPECT_THAT(complaintOf({"--seek", "soon"}), ::testing::HasSubstr("soon"));
    EXPECT_THAT(complaintOf({"--next=2"}), ::testing::HasSubstr("doesn't allow"));
    EXPECT_THAT(complaintOf({"--next", "a.mp3"}), ::testing::HasSubstr("a.mp3"));
    EXPECT_THAT(complaintOf({"--next", "--stop"}), ::testing::HasSubstr("one thing"));
    EXPECT_THAT(complaintOf({"--enqueue"}), ::testing::HasSubstr("needs files"));
}

TEST(OpenWords, HelpGoesAheadOfEverything) {
    EXPECT_EQ(read({"--stop", "--help", "--next"})->action, Action::Help);
}

TEST(OpenWords, AnAmountIsATimeOrAStep) {
    EXPECT_EQ(open_tool::readAmount("90")->number, 90);
    EXPECT_FALSE(open_tool::readAmount("90")->isStep);
    EXPECT_EQ(open_tool::readAmount("1:01:30")->number, 3690);
    EXPECT_EQ(open_tool::readAmount("-1:30")->number, -90);
    EXPECT_TRUE(open_tool::readAmount("+5")->isStep);
    for (const char *wrong : {"", "-", "1:", ":1", "1:2:3:4", "nan", "inf", "1e3", "--1", "1 "})
        EXPECT_FALSE(open_tool::readAmount(wrong)) << wrong;
}

TEST(OpenWords, EveryNameComesThroughAsItsOwnBytes) {
    std::string name = "/m/";
    for (int byte = 1; byte < 256; ++byte)
        if (byte != '/')
            name.push_back(static_cast<char>(byte));
    const auto address = open_tool::addressOf(name, "/elsewhere");
    ASSERT_TRUE(address);
    EXPECT_EQ(platform::localPath(*address, "here"), name);
}

TEST(OpenWords, APathIsTakenFromWhereOneStands) {
    EXPECT_EQ(open_tool::addressOf("a b.mp3", "/m"), "file:///m/a%20b.mp3");
    EXPECT_EQ(open_tool::addressOf("a.mp3", "/"), "file:///a.mp3");
    EXPECT_EQ(open_tool::addressOf("12:30.mp3", "/m"), "file:///m/12%3A30.mp3");
    EXPECT_EQ(open_tool::addressOf("file:///x.mp3", "/m"), "file:///x.mp3");
    EXPECT_FALSE(open_tool::addressOf("https://host/a.mp3", "/m"));
    EXPECT_FALSE(open_tool::addressOf("", "/m"));
}

TEST(FileAddress, OnlyThisMachinesFilesHaveAPath) {
    EXPECT_EQ(platform::localPath("file:///a", "here"), "/a");
    EXPECT_EQ(platform::localPath("FILE://here/a", "here"), "/a");
    EXPECT_EQ(platform::localPath("file:/a", "here"), "/a");
    EXPECT_FALSE(platform::localPath("file://there/a", "here"));
    EXPECT_FALSE(platform::localPath("file:a", "here"));
    EXPECT_FALSE(platform::localPath("file:///a%00b", "here"));
}

TEST(FileAddress, OfAFolderHasAPathWithoutASlashAtItsEndHoweverThatIsWritten) {
    EXPECT_EQ(platform::localPath("file:///a/", "here"), "/a");
    EXPECT_EQ(platform::localPath("file:///a%2F/%2f", "here"), "/a");
    EXPECT_EQ(platform::localPath("file:///%2F", "here"), "/");
}

TEST(LyricClock, GivesTheLineOfATimeAndTheTimeOfTheNext) {
    const open_tool::LyricClock clock("[ti:Title]\n[00:02.50]two\n[00:01.00][00:04]one\nplain\n");
    EXPECT_EQ(clock.lineAt(999), "");
    EXPECT_EQ(clock.lineAt(1000), "one");
    EXPECT_EQ(clock.lineAt(2500), "two");
    EXPECT_EQ(clock.lineAt(9000), "one");
    EXPECT_EQ(clock.nextAfter(0), 1000);
    EXPECT_EQ(clock.nextAfter(2500), 4000);
    EXPECT_FALSE(clock.nextAfter(4000));
}

TEST(LyricClock, OddLabelsAreNoTimes) {
    const open_tool::LyricClock clock("[00:xx]a\n[99999:00]b\n[00:01\n[]c\n[00:01.]d");
    EXPECT_FALSE(clock.nextAfter(-1) && *clock.nextAfter(-1) != 1000);
}

TEST(BusText, IsCutBetweenLetters) {
    EXPECT_EQ(platform::bus::busText(u"aé", 2), "a");
    EXPECT_EQ(platform::bus::busText(u"aé", 3), "aé");
    EXPECT_EQ(platform::bus::busText(std::u16string(u"a\0b", 3)), "a");
    EXPECT_EQ(platform::bus::busText(std::u16string(1, u'\xDC80')), "\xEF\xBF\xBD");
}

} // namespace
} // namespace velmora
