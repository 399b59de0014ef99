// The request: splitting the address, the order of the calls, the header.

#include "tests/unit/network/download_fixture.h"

#include "base/run_time_error.h"

namespace velmora {
namespace {

using fakes::FakeInternet;

class Request : public DownloadFixture {
protected:
    // Host, port and path that the address is taken for.
    void expectSplit(std::u16string_view url, std::u16string_view host, std::u16string_view port,
                     std::u16string_view path) {
        SCOPED_TRACE(toUtf8(url));
        net.log.clear();
        wd.URL = url;
        wd.Download();
        const Lines connect = logFrom(u"InternetConnectA");
        ASSERT_FALSE(connect.empty());
        EXPECT_THAT(toUtf8(connect[0]),
                    ::testing::EndsWith(
                        toUtf8(std::u16string(u" ").append(host).append(u" ").append(port).append(
                            u" - HTTP/1.0 3"))));
        const Lines request = logFrom(u"HttpOpenRequestA");
        if (host.empty()) {
            EXPECT_TRUE(request.empty()); // refused by the connection
            return;
        }
        EXPECT_THAT(toUtf8(request[0]),
                    ::testing::EndsWith(toUtf8(
                        std::u16string(u" GET ").append(path).append(u" HTTP/1.0 2147483648"))));
    }
};

TEST_F(Request, hasTheDefaultsOfAFreshObject) {
    const zkWininetDown fresh(platform);
    EXPECT_EQ(fresh.Version(), u"zkPlayer WininetDown 1.0.0");
    EXPECT_EQ(fresh.Method, u"GET");
    EXPECT_EQ(fresh.UserAgent, u"Mozilla/4.0 (compatible; MSIE 6.0; Windows NT 5.1)");
    EXPECT_EQ(fresh.Charset, u"gb2312");
    EXPECT_EQ(fresh.Pakesize, 1024);
    EXPECT_TRUE(fresh.ReDown);
    EXPECT_FALSE(fresh.IsUpload);
    EXPECT_EQ(fresh.URL + fresh.Referer + fresh.Cookie + fresh.FileName + fresh.PostData +
                  fresh.SplitCode,
              u"");
}

TEST_F(Request, runsItsStagesInOrder) {
    net.respond(FakeInternet::answer("body"));
    EXPECT_TRUE(wd.Download());
    EXPECT_EQ(net.log, (Lines{u"Status 1",
                              u"InternetOpenA Mozilla/4.0 (compatible; MSIE 6.0; Windows NT 5.1)",
                              u"Status 2", u"InternetConnectA 1 host 80 - HTTP/1.0 3", u"Status 3",
                              u"HttpOpenRequestA 2 GET /song HTTP/1.0 2147483648", u"Status 4",
                              u"HttpAddRequestHeadersA 3  2684354560", u"HttpSendRequestA 3  0",
                              u"HttpQueryInfoA 3 21 1024"}));
}

TEST_F(Request, setsACookieAheadOfSendingOnlyWhenThereIsOne) {
    wd.Cookie = u"a=b";
    net.respond(FakeInternet::answer("body"));
    wd.Download();
    EXPECT_EQ(
        logFrom(u"HttpAddRequestHeadersA"),
        (Lines{u"HttpAddRequestHeadersA 3  2684354560", u"InternetSetCookieA http://host/song  a=b",
               u"HttpSendRequestA 3  0", u"HttpQueryInfoA 3 21 1024"}));
}

TEST_F(Request, namesItsRefererAndTheTypeOfAPost) {
    wd.Referer = u"http://other/";
    wd.Method = u"post";
    wd.PostData = u"歌=1";
    net.respond(FakeInternet::answer("body"));
    wd.Download();
    EXPECT_EQ(logFrom(u"HttpOpenRequestA")[0],
              u"HttpOpenRequestA 2 post /song HTTP/1.0 2147483648");
    EXPECT_EQ(logFrom(u"HttpAddRequestHeadersA")[0],
              u"HttpAddRequestHeadersA 3 Referer: http://other/\r\n"
              u"Content-Type: application/x-www-form-urlencoded\r\n 2684354560");
    // As many bytes go out as the body has characters.
    EXPECT_EQ(net.sentBodies, (std::vector<std::string>{"\xE6\xAD\x8C"}));
}

struct Stage {
    const char *call;
    Lines events;
};
class RequestThatFailsAtAStage : public DownloadFixture,
                                 public ::testing::WithParamInterface<Stage> {};

TEST_P(RequestThatFailsAtAStage, endsThereWithoutStoppingAndWithoutAnEnd) {
    const Stage &stage = GetParam();
    for (const bool toFile : {true, false}) {
        net.log.clear();
        net.failNext(stage.call);
        if (toFile)
            EXPECT_FALSE(wd.DownloadToFile(u"music"));
        else
            EXPECT_EQ(wd.DownLoadToText(), u"");
        EXPECT_EQ(events(), stage.events);
        EXPECT_EQ(count(u"InternetCloseHandle"), 0);
        EXPECT_EQ(count(u"HttpSendRequestA"), 0);
        EXPECT_EQ(count(u"file"), 0);
    }
    // It still counts as running: a header is looked for, not stopped for.
    net.log.clear();
    EXPECT_EQ(wd.GetHeader(u"Date"), u"0");
    EXPECT_EQ(net.log, Lines());
}

INSTANTIATE_TEST_SUITE_P(
    Stages, RequestThatFailsAtAStage,
    ::testing::Values(Stage{"InternetOpenA", {u"Status 1", u"Error 1"}},
                      Stage{"InternetConnectA", {u"Status 1", u"Status 2", u"Error 2"}},
                      Stage{"HttpOpenRequestA",
                            {u"Status 1", u"Status 2", u"Status 3", u"Error 3"}}),
    [](const auto &stage) { return std::string(stage.param.call); });

TEST_F(Request, isNotConcernedByWhatFailsBehindItsHandles) {
    net.failNext("HttpAddRequestHeadersA");
    net.failNext("InternetSetCookieA");
    net.failNext("HttpSendRequestA");
    wd.Cookie = u"a=b";
    EXPECT_TRUE(wd.Download());
    EXPECT_EQ(events(), (Lines{u"Status 1", u"Status 2", u"Status 3", u"Status 4"}));
}

TEST_F(Request, splitsItsAddress) {
    expectSplit(u"http://host/a/b?c=d", u"host", u"80", u"/a/b?c=d");
    expectSplit(u"http://host", u"host", u"80", u"/");
    expectSplit(u"host/x", u"host", u"80", u"/x");
    expectSplit(u"HtTp://Host:8080/x", u"Host", u"8080", u"/x");
    expectSplit(u"http://host:/x", u"host", u"0", u"/x");
    expectSplit(u"http://host: 81b:5/x", u"host", u"81", u"/x");
    // A port in the path is none.
    expectSplit(u"http://host/x:99", u"host", u"80", u"/x:99");
    // "http://" goes from everywhere.
    expectSplit(u"http://host/?u=http://other/y", u"host", u"80", u"/?u=other/y");
    expectSplit(u"http://http://host/hHTTP://ttp://z", u"host", u"80", u"/http://z");
    // The secure scheme is not known: its word is the host and its port empty.
    expectSplit(u"https://host/x", u"https", u"0", u"//host/x");
    expectSplit(u"http://", u"", u"80", u"/");
    expectSplit(u"http://[::1]:8080/x", u"[", u"0", u"/x");
    expectSplit(u"http://host:99999999999/x", u"host", u"2147483647", u"/x");
}

TEST_F(Request, goesWhereTheLastOneWentWhenItHasNoAddress) {
    expectSplit(u"http://host:81/x", u"host", u"81", u"/x");
    expectSplit(u"", u"host", u"81", u"/x");
    wd.URL = u"http://other";
    expectSplit(u"http://other", u"other", u"80", u"/");
}

// --- the header -----------------------------------------------------------------------------

class Header : public DownloadFixture {
protected:
    void receive(std::initializer_list<std::string> header) {
        respondWith(header);
        wd.Download();
        net.log.clear();
    }
};

TEST_F(Header, namesAreTakenInAnyCaseAndSearchedInOne) {
    receive({"HTTP/1.1 200 OK", "Date: Monday", "Server: s/1", "Last-Modified: Sunday",
             "Content-Type: audio/mpeg", "Content-Length: 17", "X-Other: z"});
    EXPECT_EQ(wd.GetHeader(u"date"), u"Monday");
    EXPECT_EQ(wd.GetHeader(u"SERVER"), u"s/1");
    EXPECT_EQ(wd.GetHeader(u"Last-Modified"), u"Sunday");
    EXPECT_EQ(wd.GetHeader(u"content-type"), u"audio/mpeg");
    EXPECT_EQ(wd.GetHeader(u"CONTENT-length"), u"17");
    EXPECT_EQ(wd.FileSize(), 17);
    EXPECT_EQ(wd.FileType(), u"audio/mpeg");
    // Nobody knows another name, whether it is there or not.
    EXPECT_EQ(wd.GetHeader(u"X-Other"), u"0");
    EXPECT_EQ(wd.GetHeader(u"Cookie"), u"0");
    EXPECT_EQ(net.log, Lines());
}

TEST_F(Header, isHandedOutWholeForAnEmptyName) {
    receive({"HTTP/1.1 200 OK", "Date: Monday"});
    EXPECT_EQ(wd.GetHeader(u""), std::u16string(u"HTTP/1.1 200 OK\0Date: Monday\0", 29));
}

TEST_F(Header, thatIsAbsentReadsFromAFixedPlaceOfTheBlock) {
    receive({"HTTP/1.1 404 Not Found", "Other: x"});
    EXPECT_EQ(wd.GetHeader(u"Content-Length"), u"t Found"); // from the 16th unit on
    EXPECT_EQ(wd.GetHeader(u"Content-Type"), u"Not Found"); // the 14th
    EXPECT_EQ(wd.GetHeader(u"Date"), u"1.1 404 Not Found");
    EXPECT_EQ(wd.GetHeader(u"Server"), u"1 404 Not Found");
    EXPECT_EQ(wd.GetHeader(u"Last-Modified"), u"ot Found");
    EXPECT_EQ(wd.FileSize(), 1);
}

TEST_F(Header, thatIsAbsentBehindAShortBlockIsEmpty) {
    receive({"HTTP/1.1 200 OK"});
    EXPECT_EQ(wd.GetHeader(u"Content-Length"), u"");
    EXPECT_EQ(wd.FileSize(), 1);
    receive({"X"});
    EXPECT_EQ(wd.GetHeader(u"Content-Length"), u"");
}

TEST_F(Header, isFoundAnywhereInTheBlock) {
    receive({"HTTP/1.1 200 OK", "X-Content-Length: 5", "Content-Length: 9"});
    EXPECT_EQ(wd.FileSize(), 5);
    receive({"HTTP/1.1 200 OK", "X-Up: no Date: there", "Date: Monday"});
    EXPECT_EQ(wd.GetHeader(u"Date"), u"there");
}

TEST_F(Header, inAnotherCaseIsAbsent) {
    receive({"HTTP/1.1 200 OK", "content-length: 9", "content-type: audio/mpeg"});
    EXPECT_EQ(wd.FileSize(), 1);
    EXPECT_EQ(wd.FileType(), u"OK");
}

TEST_F(Header, givesASizeOfOneForWhatIsNoNumber) {
    for (const char *text : {"", "x", "12x", "4294967296", "2147483648", "1.5", "0x10"}) {
        receive({"HTTP/1.1 200 OK", std::string("Content-Length: ") + text});
        EXPECT_EQ(wd.FileSize(), 1) << text;
    }
    receive({"HTTP/1.1 200 OK", "Content-Length:  2147483647 "});
    EXPECT_EQ(wd.FileSize(), 2147483647);
    receive({"HTTP/1.1 200 OK", "Content-Length: -5"});
    EXPECT_EQ(wd.FileSize(), -5);
}

TEST_F(Header, ofMoreThan1024BytesIsNoHeader) {
    const std::string ends = "HTTP/1.1 200 OK"; // with its NUL 16 bytes
    receive({ends, "Content-Length: 9", "X: " + std::string(1024 - 16 - 18 - 4, 'x')});
    EXPECT_EQ(wd.FileSize(), 9);
    receive({ends, "Content-Length: 9", "X: " + std::string(1025 - 16 - 18 - 4, 'x')});
    EXPECT_EQ(wd.GetHeader(u"Content-Length"), u"0");
    EXPECT_EQ(wd.GetHeader(u""), u"0");
    EXPECT_EQ(wd.FileSize(), 0);
    EXPECT_EQ(wd.FileType(), u"0");
}

TEST_F(Header, askedForWhenNothingRunsStopsOnceMore) {
    receive({"HTTP/1.1 200 OK", "Content-Length: 9"});
    wd.bStop();
    EXPECT_EQ(net.log, stopLines);
    EXPECT_EQ(wd.GetHeader(u"Content-Length"), u"0");
    EXPECT_EQ(net.log, stopLines + stopLines);
    EXPECT_EQ(wd.FileSize(), 0);
}

TEST_F(Header, ofALastRequestIsForgottenByTheNext) {
    receive({"HTTP/1.1 200 OK", "Content-Length: 9"});
    net.failNext("HttpQueryInfoA");
    receive({"HTTP/1.1 200 OK", "Content-Length: 9"});
    EXPECT_EQ(wd.FileSize(), 0);
}

TEST_F(Header, beforeAnyRequestIsNothing) {
    EXPECT_EQ(wd.GetHeader(u"Date"), u"0");
    EXPECT_EQ(net.log, (Lines{u"InternetCloseHandle 0", u"InternetCloseHandle 0",
                              u"InternetCloseHandle 0", u"DeleteUrlCacheEntryA http://host/song"}));
}

// --- stopping, cookies --------------------------------------------------------------------------

TEST_F(Header, stoppingGoesOnWhereACallRaises) {
    receive({"HTTP/1.1 200 OK", "Content-Length: 9"});
    net.log.clear();
    net.failNext("InternetCloseHandle"); // the first of three
    EXPECT_NO_THROW(wd.bStop());
    EXPECT_EQ(net.log, stopLines);
    net.failNext("DeleteUrlCacheEntryA");
    EXPECT_NO_THROW(wd.bStop());
}

class CookieOfTheAddress : public DownloadFixture {};

TEST_F(CookieOfTheAddress, comesPaddedTo256UnitsWithoutLineEnds) {
    net.cookies[u"name"] = std::u16string(u"a\r\nb\0c", 6);
    std::u16string expected = u"abc";
    expected.resize(256, u' ');
    EXPECT_EQ(wd.GetCookie(u"name"), expected);
    EXPECT_EQ(net.log, (Lines{u"InternetGetCookieA http://host/song name 255"}));
    EXPECT_EQ(wd.GetCookie(u"other"), u"");
}

TEST_F(CookieOfTheAddress, longerThanItsPlaceIsNone) {
    net.cookies[u"fits"] = std::u16string(255, u'x');
    EXPECT_EQ(wd.GetCookie(u"fits"), std::u16string(255, u'x') + u" ");
    net.cookies[u"long"] = std::u16string(256, u'x');
    EXPECT_EQ(wd.GetCookie(u"long"), u"");
    net.cookies[u"wide"] = std::u16string(86, u'歌'); // three bytes each
    EXPECT_EQ(wd.GetCookie(u"wide"), u"");
    net.failNext("InternetGetCookieA");
    EXPECT_EQ(wd.GetCookie(u"fits"), u"");
}

} // namespace
} // namespace velmora
