// The program's download client over the real network and the real disk.

#include "http_fixture.h"
#include "network/zkWininetDown.h"
#include "tests/engine/newer_loopback.h"
#include "tests/fakes/fake_platform.h"
#include "tests/fakes/instead.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace velmora::testing {

namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

constexpr char song[] = "HTTP/1.0 200 OK\r\nContent-Type: audio/mpeg\r\n";

class HttpClient : public HttpTest {
protected:
    HttpClient() {
        std::string pattern = (fs::temp_directory_path() / "velmora-client-XXXXXX").string();
        folder_ = ::mkdtemp(pattern.data());
    }
    ~HttpClient() override { fs::remove_all(folder_); }

    platform::Platform bundle() {
        return fakes::with(fake_.bundle(), {.files = files_.get(), .internet = &internet()});
    }

    // Fetches into "new/song.mp3" and keeps what was raised: "1 2 3 4", "E8", "D0" and so on; the
    // packets in the middle as one "5".
    bool fetch(const std::u16string &url,
               const std::function<void(zkWininetDown &)> &onPacket = {}) {
        const platform::Platform all = bundle();
        zkWininetDown client(all);
        client.URL = url;
        client.FileName = fromUtf8(target());
        const auto note = [&](const std::string &what) {
            if (what != "5" || events_.substr(events_.size() - 2) != " 5")
                events_ += (events_.empty() ? "" : " ") + what;
        };
        client.Status = [&](std::int32_t code) { note(std::to_string(code)); };
        client.Error = [&](std::int32_t code) { note("E" + std::to_string(code)); };
        client.DownloadEnd = [&](bool success) { note(success ? "D1" : "D0"); };
        client.Progress = [&](double total, double, double) {
            total_ = total;
            ++packets_;
            if (onPacket)
                onPacket(client);
        };
        return client.DownloadToFile(u"music");
    }
    bool fetch(LoopbackServer &server) { return fetch(server.url(u"/song.mp3")); }

    void hurry() {
        InternetLimits limits;
        limits.connect = milliseconds(1500);
        limits.stall = milliseconds(1500);
        limit(limits);
    }
    std::string target() const { return (folder_ / "new" / "song.mp3").string(); }
    std::string content() const {
        std::ifstream file(target(), std::ios::binary);
        return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "(no file)";
    }
    void expectFailure(LoopbackServer::Script script, const std::string &error) {
        LoopbackServer server(std::move(script));
        EXPECT_FALSE(fetch(server));
        EXPECT_EQ(events_, "1 2 3 4 " + error + " D0");
        EXPECT_EQ(content(), "(no file)");
    }

    fs::path folder_;
    std::string events_;
    double total_ = 0;
    int packets_ = 0;
    fakes::FakePlatform fake_;
    std::unique_ptr<platform::FileSystem> files_ = platform::makeFileSystem(fake_.ansi);
};

constexpr char whole[] = "1 2 3 4 5 6 D1";

TEST_F(HttpClient, FetchesAWholeFileInPackets) {
    const std::string body(2500, 's');
    LoopbackServer server(always(response(body, "audio/mpeg")));
    EXPECT_TRUE(fetch(server));
    EXPECT_EQ(events_, whole);
    EXPECT_EQ(content(), body);
    EXPECT_EQ(total_, 2500);
    EXPECT_EQ(packets_, 3);
}

TEST_F(HttpClient, TakesAFileOfUnknownLengthForOneByte) {
    LoopbackServer server(always(std::string(song) + "\r\nall there is"));
    EXPECT_TRUE(fetch(server));
    EXPECT_EQ(content(), "all there is");
    EXPECT_EQ(total_, 1);
}

TEST_F(HttpClient, TakesAChunkedFileForOneByteToo) {
    LoopbackServer server(always("HTTP/1.1 200 OK\r\nContent-Type: video/mp4\r\n"
                                 "Transfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n0\r\n\r\n"));
    EXPECT_TRUE(fetch(server));
    EXPECT_EQ(content(), "abc");
    EXPECT_EQ(total_, 1);
}

TEST_F(HttpClient, TakesAFileBeyondTwoGigabytesForOneByteAndStopsWhenTold) {
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.send(std::string(song) + "Content-Length: 2147483648\r\n\r\n");
        talk.sendZeros(std::uint64_t{1} << 31);
    });
    EXPECT_FALSE(fetch(server.url(u"/"), [this](zkWininetDown &client) {
        if (packets_ == 100)
            client.bStop();
    }));
    EXPECT_EQ(events_, "1 2 3 4 5 E4 D0");
    EXPECT_EQ(total_, 1);
    EXPECT_EQ(fs::file_size(target()), 100U * 1024U) << "what came stays";
}

TEST_F(HttpClient, CountsACutFileAsWhole) {
    for (const std::size_t byte : {1U, 1024U, 3000U}) {
        LoopbackServer server(
            always(std::string(song) + "Content-Length: 5000\r\n\r\n" + std::string(byte, 'x')));
        events_.clear();
        EXPECT_TRUE(fetch(server));
        EXPECT_EQ(events_, whole);
        EXPECT_EQ(content(), std::string(byte, 'x'));
        EXPECT_EQ(total_, 5000);
    }
}

TEST_F(HttpClient, CountsAStalledFileAsWhole) {
    hurry();
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.send(std::string(song) + "Content-Length: 5000\r\n\r\nhalf");
        talk.waitForClient();
    });
    EXPECT_TRUE(fetch(server));
    EXPECT_EQ(events_, whole);
    EXPECT_EQ(content(), "half");
}

TEST_F(HttpClient, WaitsForAFileThatDrips) {
    hurry();
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.send(std::string(song) + "Content-Length: 5\r\n\r\n");
        for (const char byte : std::string("sound")) {
            talk.wait(milliseconds(50));
            talk.send({&byte, 1});
        }
    });
    EXPECT_TRUE(fetch(server));
    EXPECT_EQ(content(), "sound");
}

TEST_F(HttpClient, WaitsForAServerThatIsSlowToAccept) {
    LoopbackServer server(
        [](Talk &talk) {
            talk.receive();
            talk.send(response("sound", "audio/mpeg"));
        },
        milliseconds(200));
    EXPECT_TRUE(fetch(server));
    EXPECT_EQ(content(), "sound");
}

TEST_F(HttpClient, TakesNoMoreThanTheLengthThatWasSaid) {
    LoopbackServer server(always(std::string(song) + "Content-Length: 3\r\n\r\nsound"));
    EXPECT_TRUE(fetch(server));
    EXPECT_EQ(content(), "sou");
    EXPECT_EQ(total_, 3);
}

TEST_F(HttpClient, LeavesAPackedFilePacked) {
    LoopbackServer server(
        always(response("\x1F\x8B packed", "audio/mpeg", "200 OK", "Content-Encoding: gzip\r\n")));
    EXPECT_TRUE(fetch(server));
    EXPECT_EQ(content(), "\x1F\x8B packed");
}

TEST_F(HttpClient, TakesAnErrorPageOfTheRightTypeForAFile) {
    LoopbackServer server(always(response("gone", "audio/mpeg", "404 Not Found")));
    EXPECT_TRUE(fetch(server));
    EXPECT_EQ(content(), "gone");
}

TEST_F(HttpClient, RefusesAnotherType) {
    expectFailure(always(response("<html>", "text/html")), "E9");
}

TEST_F(HttpClient, RefusesAnEmptyFile) { expectFailure(always(response("", "audio/mpeg")), "E8"); }

TEST_F(HttpClient, RefusesAHeaderOverItsCapacity) {
    expectFailure(
        always(response("x", "audio/mpeg", "200 OK", "X: " + std::string(1024, 'y') + "\r\n")),
        "E8");
}

TEST_F(HttpClient, DoesNotFindFieldsInSmallLetters) {
    expectFailure(
        always("HTTP/1.0 200 OK\r\ncontent-length: 1\r\ncontent-type: audio/mpeg\r\n\r\nx"), "E9");
}

TEST_F(HttpClient, RefusesARedirectInARingAndOneToAFile) {
    expectFailure(always("HTTP/1.1 302 Found\r\nLocation: /\r\n\r\n"), "E8");
    events_.clear();
    expectFailure(always("HTTP/1.1 302 Found\r\nLocation: file:///etc/passwd\r\n\r\n"), "E8");
}

TEST_F(HttpClient, FollowsARedirectToTheFile) {
    LoopbackServer server([](Talk &talk, const std::string &request) {
        talk.send(request.find(" /real ") != std::string::npos
                      ? response("real", "audio/mpeg")
                      : "HTTP/1.1 301 Moved\r\nLocation: /real\r\nContent-Length: 0\r\n\r\n");
    });
    EXPECT_TRUE(fetch(server));
    EXPECT_EQ(content(), "real");
}

TEST_F(HttpClient, SeesNothingToFetchWhereNobodyAnswers) {
    hurry();
    const std::u16string port = fromAscii(std::to_string(LoopbackServer::closedPort()));
    LoopbackServer silent([](Talk &talk, const std::string &) { talk.waitForClient(); });
    LoopbackServer closes([](Talk &talk) { talk.reset(); }, milliseconds(0));
    for (const std::u16string &url :
         {u"http://127.0.0.1:" + port + u"/x", std::u16string(u"http://no-such-host.invalid/x"),
          silent.url(u"/"), closes.url(u"/"), std::u16string(u"https://127.0.0.1/x")}) {
        events_.clear();
        EXPECT_FALSE(fetch(url));
        EXPECT_EQ(events_, "1 2 3 4 E8 D0") << toUtf8(url);
        EXPECT_EQ(content(), "(no file)");
    }
}

TEST_F(HttpClient, ReachesAServerOfTheNewerProtocolAloneByItsName) {
    LoopbackServer server(always(response("six", "audio/mpeg")), LoopbackServer::Address::V6);
    if (!tests::hasNewerLoopback())
        GTEST_SKIP() << "this machine has no IPv6";
    ASSERT_TRUE(server.works());
    const std::u16string port = fromAscii(std::to_string(server.port()));
    EXPECT_TRUE(fetch(u"http://localhost:" + port + u"/x"));
    EXPECT_EQ(content(), "six");
    // Where a ":" comes first the host ends, so that the bare address is none.
    events_.clear();
    fs::remove(target());
    EXPECT_FALSE(fetch(u"http://[::1]:" + port + u"/x"));
    EXPECT_EQ(events_, "1 2 3 4 E8 D0");
}

TEST_F(HttpClient, SendsWhatItWasGiven) {
    LoopbackServer server(always(response("text", "text/html")));
    const platform::Platform all = bundle();
    zkWininetDown client(all);
    client.URL = server.url(u"/a b?c");
    client.Method = u"POST";
    client.Referer = u"http://from/";
    client.Cookie = u"id=7";
    client.PostData = u"q=\x4E2D"; // five bytes, three characters
    EXPECT_EQ(client.DownLoadToText(), u"text");
    EXPECT_EQ(
        server.lastRequest(),
        "POST /a%20b?c HTTP/1.0\r\nHost: 127.0.0.1:" + std::to_string(server.port()) +
            "\r\nUser-Agent: Mozilla/4.0 (compatible; MSIE 6.0; Windows NT 5.1)\r\n"
            "Cookie: id=7\r\nPragma: no-cache\r\nReferer: http://from/\r\n"
            "Content-Type: application/x-www-form-urlencoded\r\nContent-Length: 3\r\n\r\nq=\xE4");
    EXPECT_EQ(client.GetCookie(u"id"), std::u16string(u"id=7") + std::u16string(252, u' '));
    EXPECT_EQ(client.GetCookie(u"none"), u"");
}

TEST_F(HttpClient, HasNoConnectionWithoutAHost) {
    EXPECT_FALSE(fetch(u""));
    EXPECT_EQ(events_, "1 2 E2");
}

} // namespace

} // namespace velmora::testing
