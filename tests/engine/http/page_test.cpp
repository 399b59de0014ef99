// Whole pages.

#include "http_fixture.h"
#include "packed.h"

namespace velmora::testing {

namespace {

using std::chrono::milliseconds;

std::string packedResponse(const std::string &body) {
    return response(body, "text/html", "200 OK", "Content-Encoding: gzip\r\n");
}

class HttpPage : public HttpTest {
protected:
    void limitBytes(std::size_t bytes) {
        InternetLimits limits;
        limits.pageBytes = bytes;
        limit(limits);
    }
};

TEST_F(HttpPage, IsItsBytes) {
    LoopbackServer server(always(response("<a href=\"x\">\xD6\xD0</a>")));
    EXPECT_EQ(page(server.url(u"/m?word=a b")), "<a href=\"x\">\xD6\xD0</a>");
    EXPECT_EQ(server.lastRequest().substr(0, 17), "GET /m?word=a%20b");
}

TEST_F(HttpPage, OfAnyStatusIsOne) {
    LoopbackServer server(always(response("sorry", "text/html", "500 Internal Server Error")));
    EXPECT_EQ(page(server.url(u"/")), "sorry");
}

TEST_F(HttpPage, MayBeEmpty) {
    LoopbackServer server(always(response("")));
    EXPECT_EQ(page(server.url(u"/")), "");
}

TEST_F(HttpPage, IsUnpacked) {
    const std::string text(100'000, 'p');
    LoopbackServer server(always(packedResponse(packed(text))));
    EXPECT_EQ(page(server.url(u"/")), text);
    EXPECT_THAT(server.lastRequest(), ::testing::HasSubstr("\r\nAccept-Encoding: gzip"));
}

TEST_F(HttpPage, OfExactlyTheMostBytesIsTakenAndOneMoreRaises) {
    limitBytes(1000);
    LoopbackServer fits(always(response(std::string(1000, 'x'))));
    EXPECT_EQ(page(fits.url(u"/"))->size(), 1000U);
    LoopbackServer over(always(response(std::string(1001, 'x'))));
    EXPECT_THROW(page(over.url(u"/")), RunTimeError);
}

TEST_F(HttpPage, ThatUnpacksToTooMuchRaises) {
    limitBytes(100'000);
    const std::string bomb = packed(std::string(50'000'000, '\0'));
    LoopbackServer server(always(packedResponse(bomb)));
    EXPECT_LT(bomb.size(), 100'000U);
    EXPECT_THROW(page(server.url(u"/")), RunTimeError);
}

TEST_F(HttpPage, WithoutEndRaises) {
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.send("HTTP/1.0 200 OK\r\n\r\n");
        talk.sendZeros(~std::uint64_t{0});
    });
    EXPECT_THROW(page(server.url(u"/")), RunTimeError);
}

TEST_F(HttpPage, ThatTakesTooLongRaises) {
    InternetLimits limits;
    limits.page = milliseconds(300);
    limit(limits);
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.send("HTTP/1.0 200 OK\r\n\r\n");
        while (talk.send("drip"))
            talk.wait(milliseconds(10));
    });
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_THROW(page(server.url(u"/")), RunTimeError);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10))
        << "neither the stall limit nor the connection's";
}

TEST(HttpLimits, AreThose) {
    const InternetLimits limits;
    EXPECT_EQ(limits.connect, std::chrono::seconds(10));
    EXPECT_EQ(limits.stall, std::chrono::seconds(30));
    EXPECT_EQ(limits.page, std::chrono::seconds(60));
    EXPECT_EQ(limits.pageBytes, std::size_t{16} << 20);
    EXPECT_EQ(limits.downloadBytesPerSecond, 1024U);
}

TEST_F(HttpPage, ThatStallsRaises) {
    InternetLimits limits;
    limits.stall = milliseconds(300);
    limit(limits);
    LoopbackServer server([](Talk &talk, const std::string &) {
        talk.send("HTTP/1.0 200 OK\r\nContent-Length: 10\r\n\r\nhalf");
        talk.waitForClient();
    });
    EXPECT_THROW(page(server.url(u"/")), RunTimeError);
}

TEST_F(HttpPage, ThatIsCutIsAbsent) {
    LoopbackServer server(always("HTTP/1.0 200 OK\r\nContent-Length: 10\r\n\r\nhalf"));
    EXPECT_EQ(page(server.url(u"/")), std::nullopt);
    LoopbackServer damaged(always(packedResponse("no such form")));
    EXPECT_EQ(page(damaged.url(u"/")), std::nullopt);
}

TEST_F(HttpPage, ThatNobodySendsRaises) {
    const std::string url = "http://127.0.0.1:" + std::to_string(LoopbackServer::closedPort());
    EXPECT_THROW(page(fromAscii(url) + u"/"), RunTimeError);
    LoopbackServer closes([](Talk &talk) { talk.reset(); }, milliseconds(0));
    EXPECT_THROW(page(closes.url(u"/")), RunTimeError);
}

TEST_F(HttpPage, NeedsAWebAddress) {
    EXPECT_THROW(page(u""), RunTimeError);
    EXPECT_THROW(page(u"/m?word=x"), RunTimeError);
    EXPECT_THROW(page(u"file:///etc/passwd"), RunTimeError);
}

TEST_F(HttpPage, FailureTellsWhy) {
    try {
        page(u"http://127.0.0.1:" + fromAscii(std::to_string(LoopbackServer::closedPort())));
        FAIL();
    } catch (const RunTimeError &error) {
        EXPECT_EQ(error.description(), u"Couldn't connect to server");
    }
}

} // namespace

} // namespace velmora::testing
