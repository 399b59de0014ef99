// The catalogue on the network, asked by the player's network back-end.

#include "base/run_time_error.h"
#include "base/text.h"
#include "catalogue/server.h"
#include "music_folder.h"
#include "platform/backends/curl/curl_internet.h"
#include "platform/backends/linux/linux.h"
#include "platform/backends/registry/sqlite_registry.h"
#include "tests/engine/newer_loopback.h"

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace velmora::catalogue {

namespace {

using ::testing::HasSubstr;

class CatalogueServer : public ::testing::Test {
protected:
    void SetUp() override {
        music_.putTagged("Song.mp3", "Song", "Singer", "Album");
        music_.put("Song.lrc", "[00:01.00]x");
    }

    Server &server() {
        if (!server_) {
            catalogue_.emplace(music_.path(), "127.0.0.1");
            server_.emplace(*catalogue_, "127.0.0.1", 0);
        }
        return *server_;
    }
    std::u16string url(std::u16string_view path) {
        return fromAscii("http://" + server().hostAndPort()) + std::u16string(path);
    }
    std::u16string songPath() {
        server();
        const Item &song = *catalogue_->library().songs().front();
        return u"/song/" + fromAscii(song.id) + u".mp3";
    }

    // Says something to the server and answers everything it says until it closes, or goes away
    // without listening.
    std::string talk(const std::string &request, bool listens = true) {
        const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in place{};
        place.sin_family = AF_INET;
        place.sin_port = htons(static_cast<std::uint16_t>(server().port()));
        place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        std::string answer;
        if (::connect(socket, reinterpret_cast<sockaddr *>(&place), sizeof place) == 0 &&
            ::send(socket, request.data(), request.size(), MSG_NOSIGNAL) > 0) {
            ::shutdown(socket, SHUT_WR);
            char bytes[4096];
            for (ssize_t got; listens && (got = ::recv(socket, bytes, sizeof bytes, 0)) > 0;)
                answer.append(bytes, static_cast<std::size_t>(got));
        }
        ::close(socket);
        return answer;
    }

    MusicFolder music_;
    std::unique_ptr<platform::AnsiText> ansi_ =
        platform::makeAnsiText([] { return std::u16string(); });
    std::unique_ptr<platform::Internet> internet_ =
        platform::makeInternet(*ansi_, [] { return std::vector<std::u16string>(); });

private:
    std::optional<Catalogue> catalogue_;
    std::optional<Server> server_;
};

TEST_F(CatalogueServer, AnswersAnOldRequestWithLengthAndTypeInAShortHeaderAndNoChunks) {
    using namespace platform;
    const auto session = internet_->InternetOpenA(u"x");
    const auto connection = internet_->InternetConnectA(session, u"127.0.0.1", server().port(),
                                                        std::nullopt, u"", INTERNET_SERVICE_HTTP);
    const auto request = internet_->HttpOpenRequestA(connection, u"GET", songPath(), u"HTTP/1.0",
                                                     INTERNET_FLAG_RELOAD);
    ASSERT_TRUE(internet_->HttpSendRequestA(request, u"", 0));
    const auto header = internet_->HttpQueryInfoA(request, HTTP_QUERY_RAW_HEADERS, 1024);
    ASSERT_TRUE(header.has_value());
    const auto text = [&](const char *name) {
        const std::size_t at = header->find(name) + std::string(name).size() + 2;
        return header->substr(at, header->find('\0', at) - at);
    };
    EXPECT_EQ(text("Content-Length"), std::to_string(4298));
    EXPECT_EQ(text("Content-Type"), "audio/mpeg");
    EXPECT_EQ(header->find("chunked"), std::string::npos);
    EXPECT_EQ(header->find("Content-Encoding"), std::string::npos);
    std::string bytes;
    ASSERT_TRUE(internet_->InternetReadFile(request, 100'000, bytes));
    EXPECT_EQ(bytes.size(), 4298U);
    EXPECT_EQ(bytes.substr(bytes.size() - 128, 7), "TAGSong");
}

TEST_F(CatalogueServer, SendsWholeFiles) {
    const std::string target = (music_ / "downloaded").string();
    EXPECT_EQ(
        internet_->URLDownloadToFileA(url(songPath()), fromUtf8(target), platform::programFile), 0);
    EXPECT_EQ(std::filesystem::file_size(target), 4298U);
    EXPECT_NE(internet_->URLDownloadToFileA(url(u"/song/none.mp3"), fromUtf8(target),
                                            platform::programFile),
              0);
}

TEST_F(CatalogueServer, AnswersSearches) {
    const auto page = internet_->XmlHttpGet(
        url(u"/m?f=ms&rn=10&tn=baidump3lyric&ct=150994944&word=song singer &lm=-1"));
    ASSERT_TRUE(page.has_value());
    EXPECT_THAT(*page, HasSubstr("http://" + server().hostAndPort() + "/LrcDown/"));
}

TEST_F(CatalogueServer, TakesNamesThatItWasNotAskedByForStrangers) {
    const std::string answer = talk("GET / HTTP/1.1\r\nHost: evil.example\r\n"
                                    "Connection: close\r\n\r\n");
    EXPECT_EQ(answer.substr(0, 12), "HTTP/1.1 403");
}

TEST_F(CatalogueServer, OnlyReads) {
    for (const char *verb : {"POST", "PUT", "DELETE", "OPTIONS"}) {
        const std::string answer =
            talk(std::string(verb) + " / HTTP/1.1\r\nHost: localhost\r\nContent-Length: 5\r\n"
                                     "Connection: close\r\n\r\nabcde");
        EXPECT_EQ(answer.substr(0, 12), "HTTP/1.1 405") << verb;
    }
    const std::string head =
        talk("HEAD / HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n");
    EXPECT_EQ(head.substr(0, 12), "HTTP/1.1 200");
    EXPECT_EQ(head.substr(head.size() - 4), "\r\n\r\n");
}

TEST_F(CatalogueServer, LeadsNowhereOutside) {
    for (const char *path :
         {"/../../../../etc/passwd", "/song/../../../../../etc/passwd", "//etc/passwd",
          "/LrcDown/..%2f..%2f..%2fetc%2fpasswd.lrc", "/%2e%2e/%2e%2e/etc/passwd",
          "/asp/lrc.asp?id=../../etc/passwd", "/program", "http://other/etc/passwd"}) {
        const std::string answer =
            talk(std::string("GET ") + path + " HTTP/1.0\r\nHost: localhost\r\n\r\n");
        EXPECT_EQ(answer.substr(9, 3), "404") << path;
    }
}

TEST_F(CatalogueServer, OutlivesNonsense) {
    for (const std::string &request :
         {std::string("\r\n\r\n"), std::string("GET\r\n\r\n"), std::string(100'000, 'x'),
          "GET /" + std::string(60'000, 'a') + " HTTP/1.1\r\nHost: localhost\r\n\r\n",
          std::string("GET /%zz%00%ff?%%%=&&& HTTP/1.0\r\n\r\n"),
          std::string("GET / HTTP/9.9\r\n\r\n"), std::string("\0\1\2\3\r\n\r\n", 8)})
        talk(request, false);
    EXPECT_TRUE(internet_->XmlHttpGet(url(u"/")).has_value());
}

TEST_F(CatalogueServer, NeedsAnAddressOfItsOwnAndAFreePort) {
    Catalogue other(music_.path(), "x");
    EXPECT_THROW(Server(other, "somewhere", 0), std::runtime_error);
    EXPECT_THROW(Server(other, "192.0.2.1", 0), std::runtime_error);
    EXPECT_THROW(Server(other, "127.0.0.1", server().port()), std::runtime_error);
}

TEST_F(CatalogueServer, ListensAtTheNewerLoopbackToo) {
    Catalogue other(music_.path(), "x");
    if (!tests::hasNewerLoopback())
        GTEST_SKIP() << "this machine has no IPv6";
    const Server six(other, "::1", 0);
    const auto page = internet_->XmlHttpGet(fromAscii("http://" + six.hostAndPort() + "/m"));
    EXPECT_THAT(page.value_or(""), HasSubstr("\"http://" + six.hostAndPort() + "/\""));
}

} // namespace

} // namespace velmora::catalogue
