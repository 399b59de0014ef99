// Servers that misbehave, and servers that are not there.

#include "http_fixture.h"
#include "tests/engine/newer_loopback.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <poll.h>
#include <thread>

namespace velmora::testing {

namespace {

using std::chrono::milliseconds;

// An address of this machine by which others reach it; empty where there is none.
std::string outsideAddress() {
    ifaddrs *all = nullptr;
    std::string found;
    if (::getifaddrs(&all) != 0)
        return found;
    for (const ifaddrs *one = all; one != nullptr && found.empty(); one = one->ifa_next) {
        if (one->ifa_addr == nullptr || one->ifa_addr->sa_family != AF_INET ||
            (one->ifa_flags & IFF_LOOPBACK) != 0 || (one->ifa_flags & IFF_UP) == 0)
            continue;
        char text[INET_ADDRSTRLEN] = "";
        const auto *place = reinterpret_cast<const sockaddr_in *>(one->ifa_addr);
        found = ::inet_ntop(AF_INET, &place->sin_addr, text, sizeof text);
    }
    ::freeifaddrs(all);
    return found;
}

class HttpTrouble : public HttpTest {
protected:
    // Short enough to wait for.
    void hurry() {
        InternetLimits limits;
        limits.connect = milliseconds(1500);
        limits.stall = milliseconds(1500);
        limit(limits);
    }
};

TEST_F(HttpTrouble, ACutBodyGivesWhatCameAndThenFails) {
    for (const std::size_t byte : {1U, 1023U, 1024U, 1500U}) {
        LoopbackServer server([&](Talk &talk, const std::string &) {
            talk.send("HTTP/1.0 200 OK\r\nContent-Length: 5000\r\n\r\n" + std::string(byte, 'x'));
        });
        const Body body = bodyOf(send(server.port()));
        EXPECT_EQ(body.bytes, std::string(byte, 'x'));
        EXPECT_TRUE(body.cut) << byte;
    }
}

// --- bodies that nobody reads for a while ---

// What the loop does while a box stands over a transfer.
class HttpUnread : public HttpTest {
protected:
    HttpUnread() {
        watch_ = [this](int descriptor, std::function<void()> ready) {
            pollfd_.fd = descriptor;
            ready_ = std::move(ready);
            return [](bool) {};
        };
    }
    // Turns of the loop do not bring all of a long song; who reads gets the whole.
    void expectToStandAndGoOn(const InternetLimits &limits) {
        limit(limits);
        constexpr std::uint64_t bytes = 60'000'000;
        LoopbackServer server(song(bytes));
        const Sent sent = send(server.port());
        for (int i = 0; i < 8; ++i)
            ASSERT_TRUE(turn());
        EXPECT_LT(server.bytesSent(), bytes);
        EXPECT_EQ(bodyOf(sent, 1 << 20).bytes.size(), bytes);
    }
    // Another turn of the loop; false where nothing is ready for seconds.
    bool turn() {
        pollfd_.events = POLLIN;
        if (::poll(&pollfd_, 1, 20'000) != 1)
            return false;
        ready_();
        return true;
    }
    static LoopbackServer::Script song(std::uint64_t bytes) {
        return [bytes](Talk &talk, const std::string &) {
            talk.send("HTTP/1.0 200 OK\r\nContent-Length: " + std::to_string(bytes) + "\r\n\r\n");
            talk.sendZeros(bytes);
        };
    }

    pollfd pollfd_{};
    std::function<void()> ready_;
};

TEST_F(HttpUnread, AreTakenAheadSoThatAServerWithoutPatienceDoesNotCutThem) {
    constexpr std::uint64_t bytes = 40'000'000; // more than lies on the way
    LoopbackServer server(song(bytes));
    const Sent sent = send(server.port());
    std::string first;
    ASSERT_TRUE(internet().InternetReadFile(sent.request, 1000, first));
    for (int i = 0; i < 400 && server.bytesSent() < bytes; ++i)
        ASSERT_TRUE(ready_ && turn()) << "nothing goes on";
    EXPECT_GE(server.bytesSent(), bytes) << "the server waits";
    const Body rest = bodyOf(sent, 1 << 20);
    EXPECT_EQ(first.size() + rest.bytes.size(), bytes);
    EXPECT_FALSE(rest.cut);
}

TEST_F(HttpUnread, AreTakenAheadAsFarAsTheLimitGoes) {
    InternetLimits limits;
    limits.unread = milliseconds(0);
    limits.aheadBytes = 1'000'000;
    expectToStandAndGoOn(limits);
}

TEST_F(HttpUnread, AreLeftOnTheWayWhileSomebodyReads) {
    InternetLimits limits;
    limits.unread = std::chrono::hours(1);
    expectToStandAndGoOn(limits);
}

// --- hosts that are not there ---

TEST_F(HttpTrouble, AHostThatCannotBeReachedFailsAtOnceUntilThePersonAsks) {
    InternetLimits limits;
    limits.unreached = std::chrono::hours(1);
    limit(limits);
    // Lets connections lie unaccepted: a client waits for the limit.
    const int port = LoopbackServer::closedPort();
    EXPECT_FALSE(send(port).answered);
    LoopbackServer back(always(response("here")), port);
    ASSERT_TRUE(back.works());
    const std::u16string url = back.url(u"/");
    EXPECT_THROW(page(url), RunTimeError);
    EXPECT_FALSE(send(port).answered);
    EXPECT_EQ(back.connections(), 0) << "it was not asked";
    internet().tryHostsAnew();
    EXPECT_EQ(page(url), "here");
    EXPECT_TRUE(send(port).answered) << "what answers is not remembered as away";
}

TEST_F(HttpTrouble, AHostIsTriedAgainByItselfAfterAWhile) {
    InternetLimits limits;
    limits.unreached = milliseconds(300);
    limit(limits);
    const int port = LoopbackServer::closedPort();
    EXPECT_FALSE(send(port).answered);
    LoopbackServer back(always(response("here")), port);
    ASSERT_TRUE(back.works());
    const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!send(port).answered && std::chrono::steady_clock::now() < until)
        std::this_thread::yield();
    EXPECT_EQ(back.connections(), 1);
}

TEST_F(HttpTrouble, AHostThatAnswersBadlyIsNoHostThatIsAway) {
    LoopbackServer server(always("nonsense\r\n\r\n"));
    EXPECT_THROW(page(server.url(u"/")), RunTimeError);
    EXPECT_THROW(page(server.url(u"/")), RunTimeError);
    EXPECT_EQ(server.connections(), 2);
}

// --- headers and redirects ---

TEST_F(HttpTrouble, AllRedirectsTogetherHaveOneLimit) {
    InternetLimits limits;
    limits.header = milliseconds(1400);
    limit(limits);
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.wait(milliseconds(400)); // each by itself is quick enough
        talk.send("HTTP/1.1 302 Found\r\nLocation: /again\r\nContent-Length: 0\r\n\r\n");
    });
    EXPECT_THROW(page(server.url(u"/")), RunTimeError);
    EXPECT_LE(server.connections(), 5);
}

TEST_F(HttpTrouble, AServerElsewhereLeadsToNoServiceOfThisMachine) {
    const std::string own = outsideAddress();
    if (own.empty())
        GTEST_SKIP() << "this machine has no address but its own";
    LoopbackServer inside(always(response("secret")));
    const auto leads = always("HTTP/1.1 302 Found\r\nLocation: " + toUtf8(inside.url(u"/")) +
                              "\r\nContent-Length: 0\r\n\r\n");
    LoopbackServer outside(leads, LoopbackServer::Address::Everywhere);
    const std::string port = ":" + std::to_string(outside.port()) + "/";
    EXPECT_THROW(page(fromAscii("http://" + own + port)), RunTimeError);
    EXPECT_TRUE(inside.requests().empty());
    EXPECT_EQ(page(fromAscii("http://127.0.0.1" + port)), "secret");
}

TEST_F(HttpTrouble, ABodyReadPieceByPieceNeedsNoFewerThanOneKilobyteInItsTime) {
    InternetLimits limits;
    limits.read = milliseconds(300);
    limit(limits);
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.send("HTTP/1.0 200 OK\r\nContent-Length: 5000\r\n\r\n" + std::string(1500, 'x'));
        while (talk.send("y")) // at most 50 bytes a second
            talk.wait(milliseconds(20));
    });
    const Body body = bodyOf(send(server.port()));
    EXPECT_TRUE(body.cut);
    EXPECT_LT(body.bytes.size(), 3000U);
}

TEST_F(HttpTrouble, AChunkThatIsCutFails) {
    LoopbackServer server(
        always("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nff\r\nnot so many"));
    const Body body = bodyOf(send(server.port()));
    EXPECT_EQ(body.bytes, "not so many");
    EXPECT_TRUE(body.cut);
}

TEST_F(HttpTrouble, AConnectionThatIsResetFails) {
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.send("HTTP/1.0 200 OK\r\nContent-Length: 5000\r\n\r\nxyz");
        talk.reset();
    });
    const Sent sent = send(server.port());
    // The reset may overtake everything.
    EXPECT_TRUE(!sent.answered || bodyOf(sent).cut);
}

TEST_F(HttpTrouble, AHeaderThatIsCutIsNoResponse) {
    for (const char *part : {"", "HTTP/1.0 200", "HTTP/1.0 200 OK\r\nContent-Le"}) {
        LoopbackServer server(always(part));
        const Sent sent = send(server.port());
        EXPECT_FALSE(sent.answered && headerOf(sent)->find("Content-Length") != std::string::npos)
            << part;
    }
}

TEST_F(HttpTrouble, AServerThatClosesAtOnceIsNoResponse) {
    LoopbackServer server([](Talk &talk) { talk.reset(); }, milliseconds(0));
    const Sent sent = send(server.port());
    EXPECT_FALSE(sent.answered);
    EXPECT_EQ(headerOf(sent), std::nullopt);
    std::string bytes = "old";
    EXPECT_FALSE(internet().InternetReadFile(sent.request, 1024, bytes));
    EXPECT_EQ(bytes, "");
}

TEST_F(HttpTrouble, WhatIsNoHttpIsNoResponse) {
    LoopbackServer server(always("220 smtp.example.org ESMTP\r\n"));
    EXPECT_FALSE(send(server.port()).answered);
}

TEST_F(HttpTrouble, AServerThatSaysNothingIsGivenUp) {
    hurry();
    LoopbackServer server([](Talk &talk, const std::string &) { talk.waitForClient(); });
    EXPECT_FALSE(send(server.port()).answered);
}

TEST_F(HttpTrouble, AHeaderThatDripsIsGivenUp) {
    hurry();
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.send("HTTP/1.0 200 OK\r\n");
        while (talk.send("X: y\r\n"))
            talk.wait(milliseconds(20));
    });
    EXPECT_FALSE(send(server.port()).answered);
}

TEST_F(HttpTrouble, AnEndlessHeaderIsGivenUp) {
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.send("HTTP/1.0 200 OK\r\n");
        while (talk.send("X: " + std::string(1000, 'y') + "\r\n"))
            ;
    });
    EXPECT_FALSE(send(server.port()).answered);
    EXPECT_LT(server.bytesSent(), std::uint64_t{64} << 20);
}

TEST_F(HttpTrouble, ABodyThatStallsGivesWhatCameAndThenFails) {
    hurry();
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.send("HTTP/1.0 200 OK\r\nContent-Length: 5000\r\n\r\n" + std::string(1500, 'x'));
        talk.waitForClient();
    });
    const Body body = bodyOf(send(server.port()));
    EXPECT_EQ(body.bytes.size(), 1500U);
    EXPECT_TRUE(body.cut);
}

TEST_F(HttpTrouble, ABodyThatDripsByTheByteIsGivenUp) {
    hurry();
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.send("HTTP/1.0 200 OK\r\n\r\n");
        while (talk.send("x"))
            talk.wait(milliseconds(10));
    });
    const Body body = bodyOf(send(server.port()));
    EXPECT_LT(body.bytes.size(), 1024U);
    EXPECT_TRUE(body.cut);
}

TEST_F(HttpTrouble, ABodyThatComesSlowlyButSteadilyArrives) {
    InternetLimits limits;
    limits.stall = milliseconds(3000);
    limit(limits);
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.send("HTTP/1.0 200 OK\r\n\r\n");
        for (int i = 0; i < 10; ++i) {
            talk.send(std::string(512, 'x'));
            talk.wait(milliseconds(20));
        }
    });
    const Body body = bodyOf(send(server.port()));
    EXPECT_EQ(body.bytes.size(), 5120U);
    EXPECT_FALSE(body.cut);
}

TEST_F(HttpTrouble, AConnectionThatIsTakenLateIsWaitedFor) {
    LoopbackServer server(
        [](Talk &talk) {
            talk.receive();
            talk.send(response("late"));
        },
        milliseconds(200));
    EXPECT_EQ(bodyOf(send(server.port())).bytes, "late");
}

TEST_F(HttpTrouble, AConnectionThatNobodyTakesIsGivenUp) {
    hurry();
    LoopbackServer server([](Talk &talk) { talk.waitForClient(); }, std::chrono::minutes(5));
    EXPECT_FALSE(send(server.port()).answered);
}

TEST_F(HttpTrouble, APortOnWhichNobodyListensFails) {
    EXPECT_FALSE(send(LoopbackServer::closedPort()).answered);
}

TEST_F(HttpTrouble, ANameThatDoesNotResolveFails) {
    hurry();
    EXPECT_FALSE(send(80, u"/", u"no-such-host.invalid").answered);
    EXPECT_FALSE(send(80, u"/", u"no such host").answered);
    EXPECT_FALSE(send(80, u"/", u"\x4E2D\x6587.invalid").answered);
}

TEST_F(HttpTrouble, APortThatIsNoneFails) {
    EXPECT_FALSE(send(70'000).answered);
    EXPECT_FALSE(send(-5).answered);
}

TEST_F(HttpTrouble, AServerOfTheNewerProtocolAloneIsReached) {
    LoopbackServer server(always(response("six")), LoopbackServer::Address::V6);
    if (!tests::hasNewerLoopback())
        GTEST_SKIP() << "this machine has no IPv6";
    ASSERT_TRUE(server.works());
    EXPECT_EQ(bodyOf(send(server.port(), u"/", u"localhost")).bytes, "six");
    EXPECT_EQ(bodyOf(send(server.port(), u"/", u"::1")).bytes, "six");
    EXPECT_EQ(bodyOf(send(server.port(), u"/", u"[::1]")).bytes, "six");
}

TEST_F(HttpTrouble, ARedirectInARingIsNoResponse) {
    LoopbackServer server(always("HTTP/1.1 302 Found\r\nLocation: /\r\n\r\n"));
    const Sent sent = send(server.port());
    EXPECT_FALSE(sent.answered);
    EXPECT_EQ(headerOf(sent), std::nullopt);
    EXPECT_EQ(server.requests().size(), 11U);
}

TEST_F(HttpTrouble, ATransferMayBeLeftInTheMiddle) {
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.send("HTTP/1.0 200 OK\r\n\r\n");
        talk.sendZeros(std::uint64_t{1} << 30);
    });
    const Sent sent = send(server.port());
    std::string bytes;
    EXPECT_TRUE(internet().InternetReadFile(sent.request, 1024, bytes));
    EXPECT_TRUE(internet().InternetCloseHandle(sent.request));
    EXPECT_FALSE(internet().InternetReadFile(sent.request, 1024, bytes));
}

} // namespace

} // namespace velmora::testing
