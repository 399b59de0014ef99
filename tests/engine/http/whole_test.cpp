// Whole pages and whole files from servers of every kind: what the one and the other make of it.

#include "http_fixture.h"
#include "packed.h"
#include "tests/engine/newer_loopback.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace velmora::testing {

namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

constexpr const char *raises = nullptr; // for a page
constexpr const char *none = "(absent)";
constexpr const char *untouched = "old"; // for a file

struct Kind {
    const char *name;
    std::function<void(Talk &)> talk; // behind the request
    const char *page;
    const char *file;
};

class HttpWhole : public HttpTest {
protected:
    HttpWhole() {
        std::string pattern = (fs::temp_directory_path() / "velmora-whole-XXXXXX").string();
        folder_ = ::mkdtemp(pattern.data());
    }
    ~HttpWhole() override { fs::remove_all(folder_); }

    void hurry() {
        InternetLimits limits;
        limits.connect = milliseconds(1500);
        limits.stall = milliseconds(1500);
        limits.pageBytes = 1'000'000;
        limit(limits);
    }
    std::string pageAt(const std::u16string &url) { return page(url).value_or(none); }
    // The target's content behind a download over an old file.
    std::string fileAt(const std::u16string &url) {
        const std::string target = (folder_ / "target").string();
        std::ofstream(target) << "old";
        const bool isFetched =
            internet().URLDownloadToFileA(url, fromUtf8(target), platform::programFile) == 0;
        std::ifstream file(target, std::ios::binary);
        const std::string content{std::istreambuf_iterator<char>(file), {}};
        EXPECT_EQ(isFetched, content != "old") << content;
        EXPECT_EQ(std::distance(fs::directory_iterator(folder_), {}), 1);
        return content;
    }
    void expectBoth(const std::u16string &url, const char *page, const char *file) {
        if (page == raises)
            EXPECT_THROW(pageAt(url), RunTimeError);
        else
            EXPECT_EQ(pageAt(url), page);
        EXPECT_EQ(fileAt(url), file);
    }

    fs::path folder_;
};

class HttpWholeFrom : public HttpWhole, public ::testing::WithParamInterface<Kind> {};

TEST_P(HttpWholeFrom, AServerOfThisKind) {
    hurry();
    LoopbackServer server([](Talk &talk, const std::string &) { GetParam().talk(talk); });
    expectBoth(server.url(u"/f"), GetParam().page, GetParam().file);
}

std::function<void(Talk &)> says(std::string answer) {
    return [answer = std::move(answer)](Talk &talk) { talk.send(answer); };
}

std::string many(std::size_t count) { return std::string(count, 'y'); }

INSTANTIATE_TEST_SUITE_P(
    Kinds, HttpWholeFrom,
    ::testing::Values(
        Kind{"NoLength", says("HTTP/1.0 200 OK\r\n\r\nall there is"), "all there is",
             "all there is"},
        Kind{"LongerThanItsLength", says("HTTP/1.0 200 OK\r\nContent-Length: 3\r\n\r\nabcdef"),
             "abc", "abc"},
        Kind{"ShorterThanItsLength", says("HTTP/1.0 200 OK\r\nContent-Length: 9\r\n\r\nabcdef"),
             none, untouched},
        Kind{"ALengthThatIsNone", says("HTTP/1.0 200 OK\r\nContent-Length: many\r\n\r\nabc"),
             raises, untouched},
        Kind{"AHeaderOver1024Bytes",
             says(response("x", "a/b", "200 OK", "X: " + many(2000) + "\r\n")), "x", "x"},
        Kind{"LowerCaseHeaders",
             says("HTTP/1.0 200 ok\r\ncontent-length: 3\r\ncontent-type: a/b\r\n\r\nabcdef"), "abc",
             "abc"},
        Kind{"AnotherType", says(response("x", "image/png")), "x", "x"},
        Kind{"NoType", says("HTTP/1.0 200 OK\r\nContent-Length: 1\r\n\r\nx"), "x", "x"},
        Kind{"AnEmptyBody", says(response("")), "", ""},
        Kind{"AnErrorPage", says(response("gone", "a/b", "404 Not Found")), "gone", untouched},
        Kind{"Chunks",
             says("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n0\r\n\r\n"),
             "abc", "abc"},
        Kind{"ACutChunk", says("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nff\r\nabc"),
             none, untouched},
        Kind{"ACutHeader", says("HTTP/1.0 200 OK\r\nContent-Le"), raises, untouched},
        Kind{"AResetBehindTheRequest", [](Talk &talk) { talk.reset(); }, raises, untouched},
        Kind{"NoHttp", says("220 smtp.example.org ESMTP\r\n"), raises, untouched},
        Kind{"ARedirectInARing", says("HTTP/1.1 302 Found\r\nLocation: /\r\n\r\n"), raises,
             untouched},
        Kind{"ARedirectToAFile", says("HTTP/1.1 302 Found\r\nLocation: file:///etc/passwd\r\n\r\n"),
             raises, untouched},
        Kind{"ARedirectToNowhere",
             says("HTTP/1.1 302 Found\r\nLocation: http://no-such-host.invalid/\r\n\r\n"), raises,
             untouched},
        Kind{"AStall",
             [](Talk &talk) {
                 talk.send("HTTP/1.0 200 OK\r\nContent-Length: 9\r\n\r\nhalf");
                 talk.waitForClient();
             },
             raises, untouched},
        Kind{"Silence", [](Talk &talk) { talk.waitForClient(); }, raises, untouched},
        Kind{"AHeaderThatDrips",
             [](Talk &talk) {
                 talk.send("HTTP/1.0 200 OK\r\n");
                 while (talk.send("X: y\r\n"))
                     talk.wait(milliseconds(20));
             },
             raises, untouched},
        Kind{"ABodyThatDripsAndEnds",
             [](Talk &talk) {
                 talk.send("HTTP/1.0 200 OK\r\n\r\n");
                 for (const char byte : std::string("words")) {
                     talk.wait(milliseconds(20));
                     talk.send({&byte, 1});
                 }
             },
             "words", "words"},
        Kind{"ABodyOfTwoGigabytesThatIsCut",
             [](Talk &talk) {
                 talk.send("HTTP/1.0 200 OK\r\nContent-Type: audio/mpeg\r\n"
                           "Content-Length: 2147483648\r\n\r\n");
                 talk.sendZeros(std::uint64_t{8} << 20);
             },
             raises, untouched}),
    [](const auto &kind) { return std::string(kind.param.name); });

TEST_F(HttpWhole, APackedPageIsUnpackedAndAPackedFileStays) {
    const std::string bytes = packed("unpacked");
    LoopbackServer server(
        always(response(bytes, "text/html", "200 OK", "content-encoding: GZIP\r\n")));
    EXPECT_EQ(pageAt(server.url(u"/")), "unpacked");
    EXPECT_EQ(fileAt(server.url(u"/")), bytes);
}

TEST_F(HttpWhole, AServerThatIsSlowToAcceptIsWaitedFor) {
    LoopbackServer server(
        [](Talk &talk) {
            talk.receive();
            talk.send(response("late"));
        },
        milliseconds(200));
    expectBoth(server.url(u"/"), "late", "late");
}

TEST_F(HttpWhole, AServerThatClosesAtOnceAndOneThatNobodyTakesFail) {
    hurry();
    LoopbackServer closes([](Talk &talk) { talk.reset(); }, milliseconds(0));
    expectBoth(closes.url(u"/"), raises, untouched);
    LoopbackServer never([](Talk &talk) { talk.waitForClient(); }, std::chrono::minutes(5));
    expectBoth(never.url(u"/"), raises, untouched);
}

TEST_F(HttpWhole, APortThatIsClosedANameThatIsNoneAndAnAddressThatIsNoneFail) {
    hurry();
    const std::u16string closed = fromAscii(std::to_string(LoopbackServer::closedPort()));
    for (const std::u16string &url :
         {u"http://127.0.0.1:" + closed + u"/", std::u16string(u"http://no-such-host.invalid/"),
          std::u16string(u"http://127.0.0.1:70000/"), std::u16string(u"http://[/"),
          std::u16string(u"http:// /"), std::u16string(u"http://")})
        expectBoth(url, raises, untouched);
}

TEST_F(HttpWhole, AServerOfTheNewerProtocolAloneIsReached) {
    LoopbackServer server(always(response("six")), LoopbackServer::Address::V6);
    if (!tests::hasNewerLoopback())
        GTEST_SKIP() << "this machine has no IPv6";
    ASSERT_TRUE(server.works());
    const std::u16string port = fromAscii(std::to_string(server.port()));
    expectBoth(u"http://[::1]:" + port + u"/", "six", "six");
    expectBoth(u"http://localhost:" + port + u"/", "six", "six");
}

} // namespace

} // namespace velmora::testing
