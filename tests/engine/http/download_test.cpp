// Whole files.

#include "http_fixture.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace velmora::testing {

namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

class HttpDownload : public HttpTest {
protected:
    HttpDownload() {
        std::string pattern = (fs::temp_directory_path() / "velmora-http-XXXXXX").string();
        folder_ = ::mkdtemp(pattern.data());
        std::ofstream(target()) << "old";
    }
    ~HttpDownload() override { fs::remove_all(folder_); }

    platform::FileLimits fileLimits_ = platform::programFile;
    std::string target() const { return (folder_ / "target.bin").string(); }
    std::string content() const {
        std::ifstream file(target(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    bool download(const std::u16string &url) { return downloadTo(url, target()); }
    bool downloadTo(const std::u16string &url, const std::string &path) {
        return internet().URLDownloadToFileA(url, fromUtf8(path), fileLimits_) == 0;
    }
    // The old file, and nothing else.
    ::testing::AssertionResult untouched() const {
        const auto entries = std::distance(fs::directory_iterator(folder_), {});
        if (content() == "old" && entries == 1)
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << entries << " entries, content " << content();
    }

    fs::path folder_;
};

TEST_F(HttpDownload, ReplacesTheTargetByTheWholeBody) {
    const std::string body(300'000, 'b');
    LoopbackServer server(always(response(body)));
    EXPECT_TRUE(download(server.url(u"/f")));
    EXPECT_EQ(content(), body);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_), {}), 1);
}

TEST_F(HttpDownload, MakesAFileThatWasNotThere) {
    LoopbackServer server(always(response("new")));
    fs::remove(target());
    EXPECT_TRUE(download(server.url(u"/f")));
    EXPECT_EQ(content(), "new");
}

// Whether it comes ahead of the header or behind it.
TEST_F(HttpDownload, ReplacesNothingThatCameMeanwhileToAFreePlace) {
    for (const bool isBehindHeader : {false, true}) {
        fs::remove(target());
        LoopbackServer server([&](Talk &talk, const std::string &) {
            const std::string whole = response("new");
            const std::size_t cut = isBehindHeader ? whole.size() - 1 : 0;
            talk.send(whole.substr(0, cut));
            std::ofstream(target()) << "old";
            talk.send(whole.substr(cut));
        });
        EXPECT_FALSE(download(server.url(u"/f")));
        EXPECT_TRUE(untouched());
    }
}

TEST_F(HttpDownload, TakesAnEmptyBodyAndOneWithoutLength) {
    LoopbackServer empty(always(response("")));
    EXPECT_TRUE(download(empty.url(u"/f")));
    EXPECT_EQ(content(), "");
    LoopbackServer open(always("HTTP/1.0 200 OK\r\n\r\nall"));
    EXPECT_TRUE(download(open.url(u"/f")));
    EXPECT_EQ(content(), "all");
}

TEST_F(HttpDownload, TakesEveryStatusFrom200To299AndNoOther) {
    for (const char *status : {"200 OK", "206 Part", "299 Odd"}) {
        LoopbackServer server(always(response(status, "x/y", status)));
        EXPECT_TRUE(download(server.url(u"/f"))) << status;
        EXPECT_EQ(content(), status);
    }
    std::ofstream(target()) << "old";
    for (const char *status : {"304 Same", "404 Not Found", "500 Bad", "300 Choose", "199 x"}) {
        LoopbackServer server(
            [&](Talk &talk, const std::string &) { talk.send(response(status, "x/y", status)); });
        InternetLimits limits;
        limits.stall = milliseconds(300); // after 199 nothing comes
        limit(limits);
        EXPECT_FALSE(download(server.url(u"/f"))) << status;
        EXPECT_TRUE(untouched()) << status;
    }
}

TEST_F(HttpDownload, FollowsRedirectsToTheFileButNotToLocalOnes) {
    LoopbackServer server([](Talk &talk, const std::string &request) {
        talk.send(request.find(" /real ") != std::string::npos
                      ? response("real")
                      : "HTTP/1.1 301 Moved\r\nLocation: /real\r\n\r\n");
    });
    EXPECT_TRUE(download(server.url(u"/f")));
    EXPECT_EQ(content(), "real");
    std::ofstream(target()) << "old";
    LoopbackServer thief(always("HTTP/1.1 301 Moved\r\nLocation: file:///etc/passwd\r\n\r\n"));
    EXPECT_FALSE(download(thief.url(u"/f")));
    EXPECT_TRUE(untouched());
}

TEST_F(HttpDownload, ThatIsCutLeavesTheTargetUntouched) {
    LoopbackServer server(always("HTTP/1.0 200 OK\r\nContent-Length: 99999\r\n\r\nnot all"));
    EXPECT_FALSE(download(server.url(u"/f")));
    EXPECT_TRUE(untouched());
}

TEST_F(HttpDownload, ThatStallsLeavesTheTargetUntouched) {
    InternetLimits limits;
    limits.stall = milliseconds(300);
    limit(limits);
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.send("HTTP/1.0 200 OK\r\nContent-Length: 99999\r\n\r\nnot all");
        talk.waitForClient();
    });
    EXPECT_FALSE(download(server.url(u"/f")));
    EXPECT_TRUE(untouched());
}

TEST_F(HttpDownload, ThatDripsSlowerThanTheLeastRateIsGivenUp) {
    InternetLimits limits;
    limits.stall = milliseconds(500);
    limits.downloadBytesPerSecond = 1'000'000;
    limit(limits);
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.send("HTTP/1.0 200 OK\r\n\r\n");
        while (talk.send(std::string(1000, 'x'))) // at most 100 kB a second
            talk.wait(milliseconds(10));
    });
    EXPECT_FALSE(download(server.url(u"/f")));
    EXPECT_TRUE(untouched());
}

TEST_F(HttpDownload, OfMoreThanItMayBeIsGivenUp) {
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.send("HTTP/1.0 200 OK\r\n\r\n");
        talk.sendZeros(std::uint64_t{1} << 40);
    });
    fileLimits_.bytes = std::size_t{1} << 20;
    EXPECT_FALSE(download(server.url(u"/f")));
    EXPECT_TRUE(untouched());
    EXPECT_LT(server.bytesSent(), std::uint64_t{64} << 20);
    LoopbackServer fitting(always(response(std::string(fileLimits_.bytes, 'x'))));
    EXPECT_TRUE(download(fitting.url(u"/f")));
    EXPECT_EQ(content().size(), fileLimits_.bytes);
}

TEST_F(HttpDownload, ThatTakesLongerThanItMayIsGivenUpThoughItNeverStalls) {
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.send("HTTP/1.0 200 OK\r\n\r\n");
        while (talk.send(std::string(4096, 'x')))
            talk.wait(milliseconds(20));
    });
    fileLimits_.time = milliseconds(500);
    EXPECT_FALSE(download(server.url(u"/f")));
    EXPECT_TRUE(untouched());
}

TEST_F(HttpDownload, NeedsAWebAddress) {
    for (const char16_t *url : {u"", u"file:///etc/passwd", u"ftp://127.0.0.1/x", u"127.0.0.1/x",
                                u"/etc/passwd", u"http://", u"http:///x"})
        EXPECT_FALSE(download(url)) << toUtf8(url);
    EXPECT_TRUE(untouched());
}

TEST_F(HttpDownload, NeedsAnAbsolutePathThatCanBeWritten) {
    LoopbackServer server(always(response("new")));
    for (const std::string &path :
         {std::string(), std::string("relative.bin"), folder_.string(),
          (folder_ / "no folder" / "x").string(), std::string("/dev/null"), std::string("/x.bin"),
          (folder_ / std::string(300, 'x')).string(),
          (folder_ / "x").string() + std::string(1, '\0') + "y"})
        EXPECT_FALSE(downloadTo(server.url(u"/f"), path)) << path;
    EXPECT_TRUE(untouched());
}

TEST_F(HttpDownload, LeavesAReadOnlyTargetUntouched) {
    LoopbackServer server(always(response("new")));
    fs::permissions(target(), fs::perms::owner_read);
    EXPECT_FALSE(download(server.url(u"/f")));
    EXPECT_TRUE(untouched());
}

TEST_F(HttpDownload, FailsWhereNobodyAnswers) {
    const std::string url = "http://127.0.0.1:" + std::to_string(LoopbackServer::closedPort());
    EXPECT_FALSE(download(fromAscii(url)));
    EXPECT_TRUE(untouched());
}

TEST_F(HttpDownload, HasNoCacheToClear) {
    EXPECT_FALSE(internet().DeleteUrlCacheEntryA(u"http://127.0.0.1/"));
}

} // namespace

} // namespace velmora::testing
