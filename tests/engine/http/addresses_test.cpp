#include "platform/backends/curl/addresses.h"
#include "platform/backends/curl/curl_internet.h"
#include "platform/backends/curl/interfaces.h"
#include "platform/backends/linux/linux.h"

#include <gtest/gtest.h>

namespace velmora::platform::http {

namespace {

TEST(PartsOf, FindsHostAndPath) {
    const AddressParts parts = partsOf("HTTP://Some.Host:8080/a/b?c/d#e");
    EXPECT_FALSE(parts.secure);
    EXPECT_EQ(parts.host, "some.host");
    EXPECT_EQ(parts.path, "/a/b");
    EXPECT_TRUE(partsOf("https://x").secure);
}

TEST(PartsOf, TakesWhateverForm) {
    EXPECT_EQ(partsOf("host").host, "host");
    EXPECT_EQ(partsOf("host").path, "/");
    EXPECT_EQ(partsOf("http://host?x").host, "host");
    EXPECT_EQ(partsOf("http://user:pw@host:1/").host, "host");
    EXPECT_EQ(partsOf("http://[::1]:80/x").host, "::1");
    EXPECT_EQ(partsOf("::1").host, "::1");
    EXPECT_EQ(partsOf("http://[::1").host, "::1");
    EXPECT_EQ(partsOf("").host, "");
    EXPECT_EQ(partsOf("http://").host, "");
    EXPECT_EQ(partsOf("/x").host, "");
}

TEST(IsLoopback, KnowsThisMachineByItsNamesAndNumbers) {
    for (const char *host : {"localhost", "a.localhost", "127.0.0.1", "127.255.3.4", "::1"})
        EXPECT_TRUE(isLoopback(host)) << host;
    for (const char *host : {"", "host", "notlocalhost", "128.0.0.1", "127.0.0.1.example.org",
                             "::2", "10.0.0.1", "localhost.example.org"})
        EXPECT_FALSE(isLoopback(host)) << host;
}

TEST(IsHostText, RefusesWhatWouldMoveTheHost) {
    EXPECT_TRUE(isHostText("a.b-c:80"));
    EXPECT_TRUE(isHostText("[::1]:80"));
    for (const char *text : {"", "a/b", "a?b", "a#b", "a@b", "a\\b", "a b", "a\r\nb", "a\x7F"})
        EXPECT_FALSE(isHostText(text)) << text;
}

TEST(InternetGetConnectedState, IsAboveNothingWithALoopbackHost) {
    const auto ansi = makeAnsiText([] { return std::u16string(); });
    std::vector<std::u16string> hosts{u"", u"http://far.example.org"};
    const auto internet = makeInternet(*ansi, [&] { return hosts; });
    std::uint32_t flags = 99;
    EXPECT_EQ(internet->InternetGetConnectedState(flags) > 0, hasOutsideInterface());
    EXPECT_EQ(flags, 0U);
    hosts.emplace_back(u"http://127.0.0.1:8000");
    EXPECT_GT(internet->InternetGetConnectedState(flags), 0);
}

} // namespace

} // namespace velmora::platform::http
