// A machine on which the HTTP library cannot be loaded: what is found under its names is none.

#include "http_fixture.h"
#include "network/zkWininetDown.h"
#include "tests/fakes/fake_platform.h"
#include "tests/fakes/instead.h"

#include <cstdlib>
#include <unistd.h>

namespace velmora::testing {

namespace {

class WithoutTheHttpLibrary : public HttpTest {};

TEST_F(WithoutTheHttpLibrary, ThereIsNoSession) {
    EXPECT_EQ(internet().InternetOpenA(u"agent"), 0U);
    EXPECT_EQ(internet().InternetConnectA(0, u"host", 80, std::nullopt, u"",
                                          platform::INTERNET_SERVICE_HTTP),
              0U);
}

TEST_F(WithoutTheHttpLibrary, ATransferEndsWithItsFirstError) {
    fakes::FakePlatform fake;
    const platform::Platform all = fakes::with(fake.bundle(), {.internet = &internet()});
    zkWininetDown client(all);
    client.URL = u"http://127.0.0.1/x";
    client.FileName = u"/m/x.mp3";
    std::string events;
    client.Status = [&](std::int32_t code) { events += " " + std::to_string(code); };
    client.Error = [&](std::int32_t code) { events += " E" + std::to_string(code); };
    client.DownloadEnd = [&](bool) { events += " D"; };
    EXPECT_FALSE(client.DownloadToFile(u"music"));
    EXPECT_EQ(events, " 1 E1");
}

TEST_F(WithoutTheHttpLibrary, PagesRaiseAndSayWhy) {
    try {
        page(u"http://127.0.0.1/");
        FAIL();
    } catch (const RunTimeError &error) {
        EXPECT_EQ(error.description(), u"libcurl is not installed");
    }
}

TEST_F(WithoutTheHttpLibrary, FilesAndCookiesFail) {
    EXPECT_NE(internet().URLDownloadToFileA(u"http://127.0.0.1/", u"/tmp/velmora/none",
                                            platform::programFile),
              0);
    EXPECT_FALSE(internet().InternetSetCookieA(u"http://127.0.0.1/", u"", u"a=b"));
    EXPECT_EQ(internet().InternetGetCookieA(u"http://127.0.0.1/", u"", 255), std::nullopt);
    EXPECT_FALSE(internet().DeleteUrlCacheEntryA(u"http://127.0.0.1/"));
}

TEST_F(WithoutTheHttpLibrary, WhatNeedsNoNetworkWorks) {
    EXPECT_EQ(internet().decodeCharset("\xB8\xE8", u"gb2312"), u"\x6B4C");
    std::uint32_t flags = 7;
    EXPECT_GE(internet().InternetGetConnectedState(flags), 0);
    EXPECT_EQ(flags, 0U);
}

} // namespace

} // namespace velmora::testing

// Starts itself once more with the folder of such libraries ahead of the system's.
int main(int count, char **words) {
    constexpr const char *variable = "LD_LIBRARY_PATH";
    const char *now = std::getenv(variable);
    if (now == nullptr || std::string(now) != VELMORA_NO_LIBRARY) {
        ::setenv(variable, VELMORA_NO_LIBRARY, 1);
        ::execv("/proc/self/exe", words);
        return 1;
    }
    ::testing::InitGoogleTest(&count, words);
    return RUN_ALL_TESTS();
}
