// The client that reports its progress, on real sockets and a real disk.

#include "base/numbers.h"
#include "base/text.h"
#include "loopback_server.h"
#include "network/zkWininetDown.h"
#include "platform/curl/curl_internet.h"
#include "platform/linux/linux.h"
#include "tests/fakes/fake_platform.h"
#include "tests/unit/linux/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora {
namespace {

using testing::LoopbackServer;
using testing::Talk;
using namespace std::chrono_literals;

class Transfer : public ::testing::Test {
protected:
    TempFolder folder;
    fakes::FakePlatform fake;
    std::unique_ptr<platform::FileSystem> files = platform::makeFileSystem(fake.ansi);
    platform::InternetLimits limits;
    std::unique_ptr<platform::Internet> internet;
    std::optional<platform::Platform> bundle;
    std::optional<zkWininetDown> wd;
    std::vector<std::u16string> ends; // errors and the end, in order
    double total = -1;

    void SetUp() override {
        limits.stall = 500ms;
        internet = platform::makeInternet(
            fake.ansi, [] { return std::vector<std::u16string>(); }, limits);
        const platform::Platform all = fake.bundle();
        bundle.emplace(platform::Platform{.ansi = all.ansi,
                                          .clock = all.clock,
                                          .dialogs = all.dialogs,
                                          .files = *files,
                                          .folders = all.folders,
                                          .internet = *internet,
                                          .media = all.media,
                                          .processes = all.processes,
                                          .profiles = all.profiles,
                                          .registry = all.registry,
                                          .shell = all.shell,
                                          .versions = all.versions,
                                          .waitableTimers = all.waitableTimers,
                                          .waveOut = all.waveOut,
                                          .windows = all.windows});
        wd.emplace(*bundle);
        wd->FileName = folder.text("new/song.mp3");
        wd->Error = [this](std::int32_t code) { ends.push_back(u"Error " + decimal(code)); };
        wd->DownloadEnd = [this](bool success) { ends.push_back(success ? u"good" : u"bad"); };
        wd->Progress = [this](double all_, double, double) { total = all_; };
    }

    bool fetch(const std::u16string &url) {
        ends.clear();
        wd->URL = url;
        return wd->DownloadToFile(u"music");
    }
    // What the server says, then the connection's end.
    bool fetchFrom(const std::string &answer) {
        LoopbackServer server([answer](Talk &talk, const std::string &) { talk.send(answer); });
        return fetch(server.url(u"/song.mp3"));
    }
    std::string stored() { return folder.read("new/song.mp3"); }
    using Ends = std::vector<std::u16string>;
    void expectGood(const std::string &bytes, double size) {
        EXPECT_EQ(ends, Ends{u"good"});
        EXPECT_EQ(stored(), bytes);
        EXPECT_EQ(total, size);
    }
    void expectError(const char16_t *error) {
        EXPECT_EQ(ends, (Ends{error, u"bad"}));
        EXPECT_EQ(stored(), "");
    }
};

const std::string good = "HTTP/1.1 200 OK\r\nContent-Type: audio/mpeg\r\n";

TEST_F(Transfer, bringsAFileAsItIs) {
    std::string body;
    for (int i = 0; i < 100'000; ++i)
        body += static_cast<char>(i * 7 % 256);
    EXPECT_TRUE(fetchFrom(good + "Content-Length: 100000\r\n\r\n" + body));
    expectGood(body, 100'000);
}

TEST_F(Transfer, takesAnswersWithoutALengthOrWithAnOddOne) {
    EXPECT_TRUE(fetchFrom(good + "\r\nsound"));
    expectGood("sound", 1);
    EXPECT_TRUE(fetchFrom(good + "Content-Length: 3\r\n\r\nsound"));
    expectGood("sou", 3);
    EXPECT_TRUE(fetchFrom(good + "Content-Length: 5000\r\n\r\nsound"));
    expectGood("sound", 5000);
}

TEST_F(Transfer, takesABodyThatIsCut) {
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.send(good + "Content-Length: 5000\r\n\r\nsound");
        talk.reset();
    });
    EXPECT_TRUE(fetch(server.url(u"/song.mp3")));
    EXPECT_EQ(ends, Ends{u"good"});
    EXPECT_LE(stored().size(), 5U); // a reset may overtake what was sent
}

TEST_F(Transfer, comesBackFromABodyThatStalls) {
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.send(good + "Content-Length: 5000\r\n\r\nsound");
        talk.waitForClient();
    });
    EXPECT_TRUE(fetch(server.url(u"/song.mp3")));
    expectGood("sound", 5000);
}

TEST_F(Transfer, comesBackFromAServerThatNeverAnswers) {
    LoopbackServer server([](Talk &talk, const std::string &) { talk.waitForClient(); });
    EXPECT_FALSE(fetch(server.url(u"/song.mp3")));
    expectError(u"Error 8");
}

TEST_F(Transfer, waitsForABodyThatDrips) {
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.send(good + "Content-Length: 5\r\n\r\n");
        for (const char byte : std::string("sound")) {
            talk.wait(50ms);
            talk.send({&byte, 1});
        }
    });
    EXPECT_TRUE(fetch(server.url(u"/song.mp3")));
    expectGood("sound", 5);
}

TEST_F(Transfer, takesTheAnswerOf404ForASong) {
    EXPECT_TRUE(fetchFrom("HTTP/1.1 404 Not Found\r\nContent-Type: audio/x\r\n\r\ngone"));
    EXPECT_EQ(stored(), "gone");
}

TEST_F(Transfer, undoesChunksAndNoCompression) {
    EXPECT_TRUE(
        fetchFrom(good + "Transfer-Encoding: chunked\r\n\r\n3\r\nsou\r\n2\r\nnd\r\n0\r\n\r\n"));
    expectGood("sound", 1);
    EXPECT_TRUE(
        fetchFrom(good + "Content-Encoding: gzip\r\nContent-Length: 4\r\n\r\n\x1F\x8B\x08\x01"));
    expectGood("\x1F\x8B\x08\x01", 4);
}

TEST_F(Transfer, refusesAnswersByTheirHeader) {
    EXPECT_FALSE(fetchFrom(good + "Content-Length: 0\r\n\r\n"));
    expectError(u"Error 8");
    EXPECT_FALSE(fetchFrom(good + "X: " + std::string(1024, 'x') + "\r\n\r\nsound"));
    expectError(u"Error 8");
    EXPECT_FALSE(fetchFrom("HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\nsound"));
    expectError(u"Error 9");
    EXPECT_FALSE(
        fetchFrom("HTTP/1.1 200 OK\r\ncontent-type: audio/mpeg\r\ncontent-length: 5\r\n\r\nsound"));
    expectError(u"Error 9");
}

TEST_F(Transfer, failsWhereNobodyAnswers) {
    EXPECT_FALSE(fetchFrom("")); // closed at once
    expectError(u"Error 8");
    EXPECT_FALSE(fetch(u"http://127.0.0.1:" + decimal(LoopbackServer::closedPort()) + u"/"));
    expectError(u"Error 8");
    EXPECT_FALSE(fetch(u"http://nowhere.invalid/song.mp3"));
    expectError(u"Error 8");
    EXPECT_FALSE(fetch(u"https://127.0.0.1/song.mp3")); // a host "https", and no port
    EXPECT_EQ(ends.back(), u"bad");
    EXPECT_FALSE(fetch(u"http://[::1]:80/song.mp3")); // a host "["
    EXPECT_EQ(ends.back(), u"bad");
}

TEST_F(Transfer, followsRedirectsWithinTheWebAndNotForEver) {
    LoopbackServer server([](Talk &talk, const std::string &request) {
        const auto sendTo = [&talk](const std::string &place) {
            talk.send("HTTP/1.1 302 Found\r\nContent-Type: audio/x\r\nContent-Length: 5\r\n"
                      "Location: " +
                      place + "\r\n\r\nmoved");
        };
        if (request.starts_with("GET /once"))
            sendTo("/there");
        else if (request.starts_with("GET /loop"))
            sendTo("/loop");
        else if (request.starts_with("GET /file"))
            sendTo("file:///etc/hostname");
        else
            talk.send(good + "Content-Length: 5\r\n\r\nsound");
    });
    EXPECT_TRUE(fetch(server.url(u"/once")));
    expectGood("sound", 5);
    fetch(server.url(u"/loop"));
    EXPECT_LE(server.requests().size(), 2U + 11U);
    fetch(server.url(u"/file"));
    EXPECT_THAT(stored(), ::testing::AnyOf("", "moved", "sound")); // never the file
}

TEST_F(Transfer, isStoppedInTheMiddleOfALargeFile) {
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.send(good + "Content-Length: 3000000000\r\n\r\n");
        talk.sendZeros(3'000'000'000);
    });
    int packets = 0;
    fake.windows.onPump = [&] {
        if (++packets == 100)
            wd->bStop();
    };
    EXPECT_FALSE(fetch(server.url(u"/song.mp3")));
    EXPECT_EQ(ends, (Ends{u"Error 4", u"bad"}));
    EXPECT_EQ(total, 1); // a size beyond 32 bits is not known
    EXPECT_EQ(stored(), std::string(100 * 1024, '\0'));
}

TEST_F(Transfer, waitsForAServerThatIsSlowToAccept) {
    LoopbackServer server(
        [](Talk &talk) {
            talk.receive();
            talk.send(good + "Content-Length: 5\r\n\r\nsound");
        },
        200ms);
    EXPECT_TRUE(fetch(server.url(u"/song.mp3")));
    expectGood("sound", 5);
}

} // namespace
} // namespace velmora
