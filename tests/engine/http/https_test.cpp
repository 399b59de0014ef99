// Encrypted addresses: the maker's may be such ones. What the machine trusts is this test's own
// authority, and nothing else.

#include "http_fixture.h"
#include "tls_server.h"
#include "tunnel_proxy.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

namespace velmora::testing {

namespace {

namespace fs = std::filesystem;

// What all tests of the process share.
struct Trust {
    fs::path folder;
    bool isOurs = false;
};

const Trust &trust() {
    static const Trust made = [] {
        std::string pattern = (fs::temp_directory_path() / "velmora-https-XXXXXX").string();
        Trust trust{::mkdtemp(pattern.data()), false};
        const Authority own(trust.folder / "trusted");
        trust.isOurs = fs::exists(own.certificate()) && trustOnly(own.certificate());
        return trust;
    }();
    return made;
}

class Https : public HttpTest {
protected:
    void SetUp() override {
        if (!trust().isOurs)
            GTEST_SKIP() << "this system lets no process say what it trusts";
        fs::create_directories(pages_);
        put("page", response("secret <a href=x>"));
        std::ofstream(target()) << "old";
    }
    void TearDown() override { fs::remove_all(pages_); }

    void put(const std::string &name, const std::string &whole) {
        std::ofstream(pages_ / name, std::ios::binary) << whole;
    }
    std::string trusted(const std::string &subject = "IP:127.0.0.1", int days = 2) {
        return Authority(trust().folder / "trusted").issue(subject, days);
    }
    std::string target() const { return (pages_ / "target.bin").string(); }
    std::string content() const {
        std::ifstream file(target(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    bool download(const std::string &url) {
        return internet().URLDownloadToFileA(fromAscii(url), fromUtf8(target()),
                                             platform::programFile) == 0;
    }
    std::optional<std::string> pageAt(const std::string &url) { return page(fromAscii(url)); }
    void expectRefused(const std::string &certificate) {
        TlsServer server(certificate, pages_);
        ASSERT_TRUE(server.works());
        EXPECT_THROW(pageAt(server.url("/page")), RunTimeError);
        EXPECT_FALSE(download(server.url("/page")));
        EXPECT_EQ(content(), "old");
        // A plain address that leads there leads nowhere.
        LoopbackServer plain(always("HTTP/1.1 302 Found\r\nLocation: " + server.url("/page") +
                                    "\r\nContent-Length: 0\r\n\r\n"));
        EXPECT_FALSE(send(plain.port()).answered);
        EXPECT_THROW(page(plain.url(u"/")), RunTimeError);
    }

    const fs::path pages_ = trust().folder / "pages";
};

TEST_F(Https, OfATrustedAuthorityIsAPage) {
    TlsServer server(trusted(), pages_);
    ASSERT_TRUE(server.works());
    EXPECT_EQ(pageAt(server.url("/page")), "secret <a href=x>");
}

TEST_F(Https, OfATrustedAuthorityIsAFile) {
    put("file", response(std::string(300'000, 'f')));
    TlsServer server(trusted(), pages_);
    ASSERT_TRUE(server.works());
    EXPECT_TRUE(download(server.url("/file")));
    EXPECT_EQ(content(), std::string(300'000, 'f'));
}

TEST_F(Https, MayBeWhereAPlainAddressLeads) {
    TlsServer server(trusted(), pages_);
    ASSERT_TRUE(server.works());
    LoopbackServer plain(always("HTTP/1.1 302 Found\r\nLocation: " + server.url("/page") +
                                "\r\nContent-Length: 0\r\n\r\n"));
    EXPECT_EQ(page(plain.url(u"/")), "secret <a href=x>");
    EXPECT_TRUE(internet().URLDownloadToFileA(plain.url(u"/"), fromUtf8(target()),
                                              platform::programFile) == 0);
    EXPECT_EQ(content(), "secret <a href=x>");
    EXPECT_EQ(bodyOf(send(plain.port())).bytes, "secret <a href=x>");
}

TEST_F(Https, LeadsToNoPlainAddressAndToNoFileOfThisMachine) {
    LoopbackServer plain(always(response("open")));
    put("away", "HTTP/1.1 302 Found\r\nLocation: " + toUtf8(plain.url(u"/")) +
                    "\r\nContent-Length: 0\r\n\r\n");
    put("inside", "HTTP/1.1 302 Found\r\nLocation: file:///etc/passwd\r\n"
                  "Content-Length: 0\r\n\r\n");
    TlsServer server(trusted(), pages_);
    ASSERT_TRUE(server.works());
    EXPECT_THROW(pageAt(server.url("/away")), RunTimeError);
    EXPECT_FALSE(download(server.url("/away")));
    EXPECT_TRUE(plain.requests().empty());
    EXPECT_THROW(pageAt(server.url("/inside")), RunTimeError);
    EXPECT_FALSE(download(server.url("/inside")));
    EXPECT_EQ(content(), "old");
}

TEST_F(Https, ThatAPlainAddressLedToLeadsToNoPlainAddressEither) {
    LoopbackServer last(always(response("open")));
    put("away", "HTTP/1.1 302 Found\r\nLocation: " + toUtf8(last.url(u"/")) +
                    "\r\nContent-Length: 0\r\n\r\n");
    TlsServer server(trusted(), pages_);
    ASSERT_TRUE(server.works());
    LoopbackServer first(always("HTTP/1.1 302 Found\r\nLocation: " + server.url("/away") +
                                "\r\nContent-Length: 0\r\n\r\n"));
    EXPECT_THROW(page(first.url(u"/")), RunTimeError);
    EXPECT_FALSE(download(toUtf8(first.url(u"/"))));
    EXPECT_FALSE(send(first.port()).answered);
    EXPECT_TRUE(last.requests().empty());
    EXPECT_EQ(content(), "old");
}

TEST_F(Https, OfAnAuthorityThatNobodyTrustsIsRefused) {
    expectRefused(Authority(trust().folder / "stranger").issue("IP:127.0.0.1"));
}

TEST_F(Https, OfAnotherNameIsRefused) { expectRefused(trusted("DNS:elsewhere.invalid")); }

TEST_F(Https, ThatHasEndedIsRefused) { expectRefused(trusted("IP:127.0.0.1", -1)); }

TEST_F(Https, WithTheKeyThatIsKnownNeedsNeitherAuthorityNorName) {
    const std::string own = Authority(trust().folder / "stranger").issue("DNS:elsewhere.invalid");
    TlsServer server(own, pages_);
    ASSERT_TRUE(server.works());
    pin(server.url(""), Authority::pinOf(own));
    EXPECT_EQ(pageAt(server.url("/page")), "secret <a href=x>");
    EXPECT_TRUE(download(server.url("/page")));
    EXPECT_EQ(content(), "secret <a href=x>");
}

TEST_F(Https, WithAnotherKeyThanTheKnownOneIsRefusedThoughAnAuthorityVouchesForIt) {
    const std::string other =
        Authority::pinOf(Authority(trust().folder / "stranger").issue("IP:127.0.0.1"));
    TlsServer server(trusted(), pages_);
    ASSERT_TRUE(server.works());
    for (const std::string &known : {other, std::string("no pin"), std::string("/etc/passwd")}) {
        pin(server.url(""), known);
        internet().tryHostsAnew();
        EXPECT_THROW(pageAt(server.url("/page")), RunTimeError) << known;
        internet().tryHostsAnew();
        EXPECT_FALSE(download(server.url("/page"))) << known;
    }
    EXPECT_EQ(content(), "old");
}

TEST_F(Https, OfAnotherServerThanTheKnownOneGoesByItsAuthority) {
    const std::string own = Authority(trust().folder / "stranger").issue("IP:127.0.0.1");
    TlsServer stranger(own, pages_);
    TlsServer server(trusted(), pages_);
    ASSERT_TRUE(server.works() && stranger.works());
    pin("https://127.0.0.1:1", Authority::pinOf(own));
    EXPECT_EQ(pageAt(server.url("/page")), "secret <a href=x>");
    EXPECT_THROW(pageAt(stranger.url("/page")), RunTimeError);
}

TEST_F(Https, OfTheKnownServerLeadsToNoServerWithoutThatKey) {
    const std::string own = Authority(trust().folder / "stranger").issue("IP:127.0.0.1");
    TlsServer server(trusted(), pages_);
    put("away",
        "HTTP/1.1 302 Found\r\nLocation: " + server.url("/page") + "\r\nContent-Length: 0\r\n\r\n");
    TlsServer known(own, pages_);
    ASSERT_TRUE(server.works() && known.works());
    pin(known.url(""), Authority::pinOf(own));
    EXPECT_FALSE(download(known.url("/away")));
    EXPECT_EQ(content(), "old");
}

TEST_F(Https, GoesThroughAProxyWhoseAnswerIsNoPartOfIt) {
    TlsServer server(trusted("DNS:somewhere.invalid"), pages_);
    ASSERT_TRUE(server.works());
    TunnelProxy proxy(server.port());
    LoopbackServer plain(always("HTTP/1.1 302 Found\r\nLocation: https://somewhere.invalid/page\r\n"
                                "Content-Length: 0\r\n\r\n"));
    ::setenv("https_proxy", proxy.url().c_str(), 1);
    const std::optional<std::string> direct = page(u"https://somewhere.invalid/page");
    const Sent sent = send(plain.port());
    const std::optional<std::string> header = headerOf(sent);
    const std::string body = bodyOf(sent).bytes;
    ::unsetenv("https_proxy");
    EXPECT_EQ(direct, "secret <a href=x>");
    EXPECT_EQ(proxy.asked().substr(0, 30), "CONNECT somewhere.invalid:443 ");
    EXPECT_EQ(header, withNuls("HTTP/1.1 200 OK|Content-Length: 17|Content-Type: text/html|"));
    EXPECT_EQ(body, "secret <a href=x>");
}

TEST_F(Https, WhereNobodySpeaksItIsRefused) {
    InternetLimits limits;
    limits.connect = std::chrono::milliseconds(400);
    limit(limits);
    LoopbackServer plain(always(response("open")));
    const std::string url = "https://127.0.0.1:" + std::to_string(plain.port()) + "/";
    EXPECT_THROW(pageAt(url), RunTimeError);
    EXPECT_FALSE(download(url));
    EXPECT_EQ(content(), "old");
}

} // namespace

} // namespace velmora::testing

int main(int count, char **words) {
    ::testing::InitGoogleTest(&count, words);
    const std::filesystem::path folder =
        velmora::testing::trust().folder; // while there is one thread
    const int result = RUN_ALL_TESTS();
    std::filesystem::remove_all(folder);
    return result;
}
