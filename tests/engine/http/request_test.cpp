// What goes out.

#include "http_fixture.h"

#include <cstdlib>

namespace velmora::testing {

namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class HttpRequest : public HttpTest {
protected:
    LoopbackServer server_{always(response("x"))};

    std::string sentFor(std::u16string_view object) {
        send(server_.port(), object);
        return server_.lastRequest();
    }
    std::string lineFor(std::u16string_view object) {
        const std::string request = sentFor(object);
        return request.substr(0, request.find('\r'));
    }
};

TEST_F(HttpRequest, IsOfTheOldProtocolAndSaysNoMoreThanItMust) {
    const std::string host = "Host: 127.0.0.1:" + std::to_string(server_.port()) + "\r\n";
    EXPECT_EQ(sentFor(u"/a/b.mp3?c=d"), "GET /a/b.mp3?c=d HTTP/1.0\r\n" + host +
                                            "User-Agent: Agent 007\r\nPragma: no-cache\r\n\r\n");
}

TEST_F(HttpRequest, EscapesBlanksQuotesControlsAndWhatIsNotAscii) {
    EXPECT_EQ(lineFor(u"/a b\"c\x01\x7F\x4E2D"), "GET /a%20b%22c%01%7F%E4%B8%AD HTTP/1.0");
}

TEST_F(HttpRequest, LeavesTheOtherSignsAsTheyStand) {
    EXPECT_EQ(lineFor(u"/%zz%20&+\\'<>{}|^`~!$*();=@,?[]"),
              "GET /%zz%20&+\\'<>{}|^`~!$*();=@,?[] HTTP/1.0");
}

TEST_F(HttpRequest, KeepsDotsInItsPath) {
    EXPECT_EQ(lineFor(u"/a/../b/./c"), "GET /a/../b/./c HTTP/1.0");
}

TEST_F(HttpRequest, EndsAtTheNumberSign) { EXPECT_EQ(lineFor(u"/a#b"), "GET /a HTTP/1.0"); }

TEST_F(HttpRequest, GoesOutInTheCodePageInForce) {
    usePage(u"936");
    EXPECT_EQ(lineFor(u"/\x4E2D"), "GET /%D6%D0 HTTP/1.0");
}

TEST_F(HttpRequest, CannotBeTurnedIntoTwoByWhatItAsksFor) {
    EXPECT_EQ(lineFor(u"/a HTTP/1.0\r\nX: y"), "GET /a%20HTTP/1.0%0D%0AX:%20y HTTP/1.0");
}

TEST_F(HttpRequest, CarriesAddedHeadersReplacingThoseOfTheSameName) {
    const Sent sent = open(server_.port(), u"/");
    addHeaders(sent, u"Referer: http://a/\r\nX-One: 1\r\n");
    addHeaders(sent, u"referer: http://b/\r\n");
    ASSERT_TRUE(internet().HttpSendRequestA(sent.request, u"", 0));
    EXPECT_THAT(server_.lastRequest(), HasSubstr("\r\nreferer: http://b/\r\n"));
    EXPECT_THAT(server_.lastRequest(), HasSubstr("\r\nX-One: 1\r\n"));
    EXPECT_THAT(server_.lastRequest(), Not(HasSubstr("http://a/")));
}

TEST_F(HttpRequest, SaysThatALineWithoutAColonIsNoHeader) {
    const Sent sent = open(server_.port(), u"/");
    EXPECT_FALSE(internet().HttpAddRequestHeadersA(sent.request, u"no header\r\n",
                                                   platform::HTTP_ADDREQ_FLAG_ADD));
    EXPECT_TRUE(
        internet().HttpAddRequestHeadersA(sent.request, u"", platform::HTTP_ADDREQ_FLAG_ADD));
}

TEST_F(HttpRequest, PostsTheFirstBytesOfTheConvertedText) {
    const Sent sent = open(server_.port(), u"/", u"POST");
    addHeaders(sent, u"Content-Type: application/x-www-form-urlencoded\r\n");
    // Three characters, five bytes, and the length counts characters.
    ASSERT_TRUE(internet().HttpSendRequestA(sent.request,
                                            u"a\x4E2D"
                                            u"b",
                                            3));
    const std::string request = server_.lastRequest();
    EXPECT_THAT(request, StartsWith("POST / HTTP/1.0\r\n"));
    EXPECT_THAT(request, HasSubstr("\r\nContent-Length: 3\r\n"));
    EXPECT_THAT(request, HasSubstr("\r\nContent-Type: application/x-www-form-urlencoded\r\n"));
    EXPECT_THAT(request, EndsWith("\r\n\r\na\xE4\xB8"));
}

TEST_F(HttpRequest, PostsNothingWithALengthOfNothing) {
    const Sent sent = open(server_.port(), u"/", u"POST");
    ASSERT_TRUE(internet().HttpSendRequestA(sent.request, u"", 0));
    EXPECT_THAT(server_.lastRequest(), HasSubstr("\r\nContent-Length: 0\r\n"));
    EXPECT_THAT(server_.lastRequest(), Not(HasSubstr("Content-Type")));
}

TEST_F(HttpRequest, SendsNoMoreOfABodyThanThereIs) {
    const Sent sent = open(server_.port(), u"/", u"POST");
    ASSERT_TRUE(internet().HttpSendRequestA(sent.request, u"ab", 1000));
    EXPECT_THAT(server_.lastRequest(), EndsWith("\r\nContent-Length: 2\r\n\r\nab"));
}

TEST_F(HttpRequest, KeepsAnUnusualVerb) {
    const Sent sent = open(server_.port(), u"/", u"get");
    ASSERT_TRUE(internet().HttpSendRequestA(sent.request, u"", 0));
    EXPECT_THAT(server_.lastRequest(), StartsWith("get / HTTP/1.0\r\n"));
}

TEST_F(HttpRequest, RefusesAVerbThatIsNoWord) {
    EXPECT_EQ(open(server_.port(), u"/", u"GET /evil HTTP/1.0\r\n").request, 0U);
}

TEST_F(HttpRequest, CarriesNoCredentialsWithoutAUser) {
    EXPECT_THAT(sentFor(u"/"), Not(HasSubstr("Authorization")));
}

TEST_F(HttpRequest, CarriesTheCredentialsOfAUser) {
    const InternetHandle session = internet().InternetOpenA(u"");
    const InternetHandle connection = internet().InternetConnectA(
        session, u"127.0.0.1", server_.port(), u"me", u"pw", platform::INTERNET_SERVICE_HTTP);
    const InternetHandle request =
        internet().HttpOpenRequestA(connection, u"GET", u"/", u"HTTP/1.0", 0);
    ASSERT_TRUE(internet().HttpSendRequestA(request, u"", 0));
    EXPECT_THAT(server_.lastRequest(), HasSubstr("\r\nAuthorization: Basic bWU6cHc=\r\n"));
}

TEST_F(HttpRequest, GoesToNoProxyForThisMachine) {
    const std::string proxy = "http://127.0.0.1:" + std::to_string(LoopbackServer::closedPort());
    ::setenv("http_proxy", proxy.c_str(), 1);
    const bool direct = send(server_.port()).answered;
    ::setenv("no_proxy", "example.org", 1);
    const bool directBesideOthers = send(server_.port()).answered;
    ::unsetenv("no_proxy");
    ::unsetenv("http_proxy");
    EXPECT_TRUE(direct);
    EXPECT_TRUE(directBesideOthers);
}

TEST_F(HttpRequest, GoesToTheProxyForOtherHosts) {
    const std::string proxy = "http://127.0.0.1:" + std::to_string(server_.port());
    ::setenv("http_proxy", proxy.c_str(), 1);
    const bool answered = send(80, u"/a", u"somewhere.invalid").answered;
    ::unsetenv("http_proxy");
    EXPECT_TRUE(answered);
    EXPECT_THAT(server_.lastRequest(), StartsWith("GET http://somewhere.invalid/a HTTP/1.0\r\n"));
}

TEST_F(HttpRequest, GoesToTheDefaultPortForPortZero) {
    const std::string proxy = "http://127.0.0.1:" + std::to_string(server_.port());
    ::setenv("http_proxy", proxy.c_str(), 1);
    const bool zero = send(0, u"/a", u"somewhere.invalid").answered;
    const std::string line = server_.lastRequest();
    const bool other = send(81, u"/a", u"somewhere.invalid").answered;
    ::unsetenv("http_proxy");
    EXPECT_TRUE(zero);
    EXPECT_THAT(line, StartsWith("GET http://somewhere.invalid/a HTTP/1.0\r\n"
                                 "Host: somewhere.invalid\r\n"));
    EXPECT_TRUE(other);
    EXPECT_THAT(server_.lastRequest(),
                StartsWith("GET http://somewhere.invalid:81/a HTTP/1.0\r\n"));
}

TEST_F(HttpRequest, CanBeSentAgain) {
    const Sent sent = send(server_.port());
    EXPECT_EQ(bodyOf(sent).bytes, "x");
    EXPECT_TRUE(internet().HttpSendRequestA(sent.request, u"", 0));
    EXPECT_EQ(bodyOf(sent).bytes, "x");
    EXPECT_EQ(server_.requests().size(), 2U);
}

TEST_F(HttpRequest, CarriesTheCookiesOfItsHost) {
    ASSERT_TRUE(internet().InternetSetCookieA(server_.url(u"/any"), u"", u"a=1"));
    ASSERT_TRUE(internet().InternetSetCookieA(server_.url(u"/any"), u"b", u"2; path=/deep"));
    ASSERT_TRUE(internet().InternetSetCookieA(u"http://elsewhere.invalid/", u"", u"c=3"));
    EXPECT_THAT(sentFor(u"/"), HasSubstr("\r\nCookie: a=1\r\n"));
    EXPECT_THAT(sentFor(u"/deep/x"), HasSubstr("\r\nCookie: b=2; a=1\r\n"));
}

TEST_F(HttpRequest, CarriesNoCookieThatIsNone) {
    EXPECT_FALSE(internet().InternetSetCookieA(server_.url(u"/"), u"", u"no pair"));
    EXPECT_FALSE(internet().InternetSetCookieA(server_.url(u"/"), u"", u"a=b\r\nX: y"));
    EXPECT_FALSE(internet().InternetSetCookieA(u"", u"", u"a=b"));
    EXPECT_THAT(sentFor(u"/"), Not(HasSubstr("Cookie")));
}

TEST_F(HttpRequest, BringsBackTheCookiesThatAServerGave) {
    LoopbackServer giver(
        always(response("x", "text/html", "200 OK", "Set-Cookie: id=77; path=/\r\n")));
    send(giver.port());
    EXPECT_EQ(internet().InternetGetCookieA(giver.url(u"/a"), u"", 255), u"id=77");
    EXPECT_EQ(internet().InternetGetCookieA(giver.url(u"/a"), u"id", 255), u"id=77");
    EXPECT_EQ(internet().InternetGetCookieA(giver.url(u"/a"), u"other", 255), std::nullopt);
    EXPECT_EQ(internet().InternetGetCookieA(giver.url(u"/a"), u"id", 5), u"id=77");
    EXPECT_EQ(internet().InternetGetCookieA(giver.url(u"/a"), u"id", 4), std::nullopt);
    send(giver.port());
    EXPECT_THAT(giver.lastRequest(), HasSubstr("\r\nCookie: id=77\r\n"));
}

TEST_F(HttpRequest, HandlesAreNeverUsedAgainAndCloseOnce) {
    const Sent first = send(server_.port());
    EXPECT_TRUE(internet().InternetCloseHandle(first.request));
    EXPECT_FALSE(internet().InternetCloseHandle(first.request));
    EXPECT_FALSE(internet().InternetCloseHandle(0));
    const Sent second = send(server_.port());
    EXPECT_GT(second.session, first.request);
}

TEST_F(HttpRequest, GoesWithItsSession) {
    const Sent sent = send(server_.port());
    EXPECT_TRUE(internet().InternetCloseHandle(sent.session));
    EXPECT_FALSE(internet().InternetCloseHandle(sent.connection));
    EXPECT_EQ(headerOf(sent), std::nullopt);
    std::string bytes;
    EXPECT_FALSE(internet().InternetReadFile(sent.request, 10, bytes));
}

TEST_F(HttpRequest, IsNoneWithoutItsConnection) {
    EXPECT_EQ(internet().HttpOpenRequestA(0, u"GET", u"/", u"HTTP/1.0", 0), 0U);
    EXPECT_FALSE(internet().HttpSendRequestA(12345, u"", 0));
    EXPECT_FALSE(internet().HttpAddRequestHeadersA(12345, u"", 0));
}

TEST_F(HttpRequest, ConnectsToNoEmptyHost) {
    const InternetHandle session = internet().InternetOpenA(u"x");
    EXPECT_EQ(internet().InternetConnectA(session, u"", 80, std::nullopt, u"",
                                          platform::INTERNET_SERVICE_HTTP),
              0U);
}

TEST_F(HttpRequest, TouchesTheNetworkOnlyWhenItIsSent) {
    open(server_.port(), u"/");
    EXPECT_EQ(server_.connections(), 0);
}

TEST_F(HttpRequest, IsRefusedForAHostThatIsPartOfAnAddress) {
    EXPECT_FALSE(send(server_.port(), u"/", u"127.0.0.1/x").answered);
    EXPECT_FALSE(send(server_.port(), u"/", u"user@127.0.0.1").answered);
    EXPECT_FALSE(send(server_.port(), u"/", u"127.0.0.1?x").answered);
    EXPECT_EQ(server_.connections(), 0);
}

} // namespace

} // namespace velmora::testing
