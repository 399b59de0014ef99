// Answers of every well-behaved kind.

#include "http_fixture.h"

#include <sys/resource.h>

namespace velmora::testing {

namespace {

class HttpResponse : public HttpTest {};

std::string redirectTo(const std::string &place) {
    return "HTTP/1.1 302 Found\r\nLocation: " + place +
           "\r\nContent-Length: 5\r\nX-Old: yes\r\n\r\nmoved";
}

// Answers "/N" with a redirect to "/N-1", and "/0" with a page.
LoopbackServer::Script countdown() {
    return [](Talk &talk, const std::string &request) {
        const int number = std::atoi(request.c_str() + 5);
        talk.send(number == 0 ? response("arrived") : redirectTo("/" + std::to_string(number - 1)));
    };
}

TEST_F(HttpResponse, HeaderIsTheStatusLineAndTheFieldsAsReceivedEachEndedByNul) {
    LoopbackServer server(always("HTTP/1.0 200 Fine\r\ncontent-LENGTH: 2\r\nServer:x\r\n"
                                 "Date:  y \r\n\r\nab"));
    EXPECT_EQ(headerOf(send(server.port())),
              withNuls("HTTP/1.0 200 Fine|content-LENGTH: 2|Server:x|Date:  y |"));
}

TEST_F(HttpResponse, HeaderOfExactlyTheCapacityFitsAndOneByteMoreDoesNot) {
    // The status line with its NUL is 16 bytes, "X: " with its NUL 4.
    for (const std::size_t length : {1024U, 1025U}) {
        LoopbackServer server(
            always("HTTP/1.0 200 OK\r\nX: " + std::string(length - 20, 'y') + "\r\n\r\nbody"));
        const Sent sent = send(server.port());
        EXPECT_TRUE(sent.answered);
        EXPECT_EQ(headerOf(sent).has_value(), length == 1024) << length;
        EXPECT_EQ(bodyOf(sent).bytes, "body") << "a header that does not fit is a response";
    }
}

TEST_F(HttpResponse, OfAnyStatusIsOne) {
    LoopbackServer server(always(response("gone", "text/html", "404 Not Found")));
    const Sent sent = send(server.port());
    EXPECT_TRUE(sent.answered);
    EXPECT_EQ(headerOf(sent), withNuls("HTTP/1.1 404 Not Found|Content-Length: 4|"
                                       "Content-Type: text/html|"));
    EXPECT_EQ(bodyOf(sent).bytes, "gone");
}

TEST_F(HttpResponse, WithoutALengthEndsWithTheConnection) {
    LoopbackServer server(always("HTTP/1.0 200 OK\r\n\r\nall there is"));
    const Body body = bodyOf(send(server.port()), 5);
    EXPECT_EQ(body.bytes, "all there is");
    EXPECT_FALSE(body.cut);
}

TEST_F(HttpResponse, LongerThanItsLengthEndsThere) {
    LoopbackServer server(always("HTTP/1.0 200 OK\r\nContent-Length: 3\r\n\r\nabcdef"));
    const Body body = bodyOf(send(server.port()));
    EXPECT_EQ(body.bytes, "abc");
    EXPECT_FALSE(body.cut);
}

TEST_F(HttpResponse, WithoutABodyIsAtItsEndAtOnce) {
    LoopbackServer server(always(response("", "audio/mpeg")));
    const Sent sent = send(server.port());
    std::string bytes = "old";
    EXPECT_TRUE(internet().InternetReadFile(sent.request, 1024, bytes));
    EXPECT_EQ(bytes, "");
}

TEST_F(HttpResponse, IsReadInPacketsOfExactlyTheSizeAskedFor) {
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.send("HTTP/1.0 200 OK\r\n\r\n");
        for (int i = 0; i < 300; ++i)
            talk.send("1234567"); // pieces that fit no packet
    });
    const Sent sent = send(server.port());
    std::string bytes;
    for (const std::size_t expected : {1024U, 1024U, 52U, 0U}) {
        ASSERT_TRUE(internet().InternetReadFile(sent.request, 1024, bytes));
        EXPECT_EQ(bytes.size(), expected);
    }
}

TEST_F(HttpResponse, IsTakenOutOfItsChunks) {
    LoopbackServer server(
        always("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
               "4\r\nfour\r\nA;x=y\r\n and eleven\r\n0\r\nTrailer: late\r\n\r\n"));
    const Sent sent = send(server.port());
    // The size says ten, so the last letter belongs to no chunk.
    EXPECT_TRUE(sent.answered);
    LoopbackServer proper(
        always("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
               "4\r\nfour\r\nb;x=y\r\n and eleven\r\n0\r\nTrailer: late\r\n\r\n"));
    const Sent second = send(proper.port());
    const Body body = bodyOf(second);
    EXPECT_EQ(body.bytes, "four and eleven");
    EXPECT_FALSE(body.cut);
    EXPECT_EQ(headerOf(second), withNuls("HTTP/1.1 200 OK|Transfer-Encoding: chunked|"));
    EXPECT_TRUE(bodyOf(sent).cut);
}

TEST_F(HttpResponse, StaysPacked) {
    LoopbackServer server(
        always(response("\x1F\x8B packed", "audio/mpeg", "200 OK", "Content-Encoding: gzip\r\n")));
    EXPECT_EQ(bodyOf(send(server.port())).bytes, "\x1F\x8B packed");
}

TEST_F(HttpResponse, ComesAfterInterimOnes) {
    LoopbackServer server(always("HTTP/1.1 103 Early Hints\r\nLink: x\r\n\r\n" + response("real")));
    const Sent sent = send(server.port());
    EXPECT_EQ(headerOf(sent),
              withNuls("HTTP/1.1 200 OK|Content-Length: 4|Content-Type: text/html|"));
    EXPECT_EQ(bodyOf(sent).bytes, "real");
}

TEST_F(HttpResponse, IsTheOneThatRedirectsLeadTo) {
    LoopbackServer server(countdown());
    const Sent sent = send(server.port(), u"/1");
    EXPECT_EQ(headerOf(sent),
              withNuls("HTTP/1.1 200 OK|Content-Length: 7|Content-Type: text/html|"));
    EXPECT_EQ(bodyOf(sent).bytes, "arrived");
}

TEST_F(HttpResponse, LiesTenRedirectsAwayAtMost) {
    LoopbackServer server(countdown());
    EXPECT_TRUE(send(server.port(), u"/10").answered);
    EXPECT_FALSE(send(server.port(), u"/11").answered);
}

// The close comes when the next request is already on its way.
TEST_F(HttpResponse, LiesTenRedirectsAwayOfAServerThatClosesBehindEach) {
    const LoopbackServer::Script redirecting = countdown();
    LoopbackServer server([&](Talk &talk, const std::string &request) {
        redirecting(talk, request);
        talk.receive();
    });
    EXPECT_EQ(bodyOf(send(server.port(), u"/10")).bytes, "arrived");
}

TEST_F(HttpResponse, OfARedirectWithoutAPlaceIsTheResponse) {
    LoopbackServer server(always("HTTP/1.1 304 Not Modified\r\nETag: x\r\n\r\n"));
    EXPECT_EQ(headerOf(send(server.port())), withNuls("HTTP/1.1 304 Not Modified|ETag: x|"));
    LoopbackServer empty(always("HTTP/1.1 302 Found\r\nLocation: \r\nContent-Length: 1\r\n\r\nx"));
    EXPECT_EQ(bodyOf(send(empty.port())).bytes, "x");
}

TEST_F(HttpResponse, IsNotAFileOfThisMachine) {
    for (const char *place :
         {"file:///etc/passwd", "ftp://127.0.0.1/x", "gopher://127.0.0.1/", "dict://127.0.0.1/x"}) {
        LoopbackServer server(always(redirectTo(place)));
        const Sent sent = send(server.port());
        EXPECT_FALSE(sent.answered) << place;
        EXPECT_EQ(headerOf(sent), std::nullopt) << place;
    }
}

TEST_F(HttpResponse, ToAPostThatIsRedirectedIsFetched) {
    LoopbackServer server([](Talk &talk, const std::string &request) {
        talk.send(request.find(" /0 ") != std::string::npos ? response("arrived")
                                                            : redirectTo("/0"));
    });
    const Sent sent = open(server.port(), u"/form", u"POST");
    ASSERT_TRUE(internet().HttpSendRequestA(sent.request, u"a=b", 3));
    EXPECT_EQ(server.lastRequest().substr(0, 7), "GET /0 ");
}

TEST_F(HttpResponse, FromAnotherHostGotNoCredentials) {
    LoopbackServer other(always(response("x")));
    LoopbackServer server(
        always(redirectTo("http://localhost:" + std::to_string(other.port()) + "/")));
    const InternetHandle session = internet().InternetOpenA(u"");
    const InternetHandle connection = internet().InternetConnectA(
        session, u"127.0.0.1", server.port(), u"me", u"pw", platform::INTERNET_SERVICE_HTTP);
    const InternetHandle request =
        internet().HttpOpenRequestA(connection, u"GET", u"/", u"HTTP/1.0", 0);
    ASSERT_TRUE(internet().HttpSendRequestA(request, u"", 0));
    EXPECT_NE(server.lastRequest().find("Authorization"), std::string::npos);
    EXPECT_EQ(other.lastRequest().find("Authorization"), std::string::npos);
}

TEST_F(HttpResponse, IsThereWhenItsHeaderIs) {
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.send("HTTP/1.0 200 OK\r\nContent-Length: 4\r\n\r\n");
        talk.waitForClient();
    });
    InternetLimits limits;
    limits.stall = std::chrono::seconds(20);
    limit(limits);
    const auto before = std::chrono::steady_clock::now();
    EXPECT_TRUE(send(server.port()).answered);
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(10));
}

TEST_F(HttpResponse, OfTwoGigabytesIsNotFetchedAhead) {
    constexpr std::uint64_t length = 2147483648U;
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.send("HTTP/1.0 200 OK\r\nContent-Type: audio/mpeg\r\nContent-Length: 2147483648\r\n"
                  "\r\n");
        talk.sendZeros(length);
    });
    rusage before{};
    ::getrusage(RUSAGE_SELF, &before);
    const Sent sent = send(server.port());
    constexpr int packets = 200'000; // about 200 MB
    std::string bytes;
    for (int i = 0; i < packets; ++i)
        ASSERT_TRUE(internet().InternetReadFile(sent.request, 1024, bytes));
    rusage after{};
    ::getrusage(RUSAGE_SELF, &after);
#ifndef VELMORA_SANITIZED // it keeps what is freed
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 32 * 1024) << "kilobytes";
#endif
    // What the sockets hold is the system's.
    EXPECT_LT(server.bytesSent(), packets * 1024ULL + (std::uint64_t{64} << 20));
    EXPECT_TRUE(internet().InternetCloseHandle(sent.request));
}

} // namespace

} // namespace velmora::testing
