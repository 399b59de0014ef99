// The catalogue on the network, asked by the player's network back-end.

#include "base/run_time_error.h"
#include "base/text.h"
#include "catalogue/server.h"
#include "music_folder.h"
#include "platform/backends/curl/curl_internet.h"
#include "platform/backends/linux/descriptor.h"
#include "platform/backends/linux/linux.h"
#include "platform/backends/registry/sqlite_registry.h"
#include "tests/engine/newer_loopback.h"

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <memory>
#include <vector>

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
            catalogue_->readNow();
            server_.emplace(*catalogue_, "127.0.0.1", 0, patience_);
        }
        return *server_;
    }
    std::u16string url(std::u16string_view path) {
        return fromAscii("http://" + server().hostAndPort()) + std::u16string(path);
    }
    std::u16string songPath() {
        server();
        const Item &song = *catalogue_->library()->songs().front();
        return u"/song/" + fromAscii(song.id()) + u".mp3";
    }

    // A connection to the server, whose every wait ends after half a minute.
    platform::Descriptor connected() { return connectedTo("127.0.0.1", server().port()); }
    // From a loopback address of that number.
    static platform::Descriptor connectedTo(const char *from, int port) {
        platform::Descriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        sockaddr_in place{};
        place.sin_family = AF_INET;
        place.sin_addr.s_addr = ::inet_addr(from);
        ::bind(socket.number(), reinterpret_cast<sockaddr *>(&place), sizeof place);
        place.sin_port = htons(static_cast<std::uint16_t>(port));
        place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const timeval limit{30, 0};
        ::setsockopt(socket.number(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
        if (::connect(socket.number(), reinterpret_cast<sockaddr *>(&place), sizeof place) != 0)
            ADD_FAILURE() << "the server takes no connection";
        return socket;
    }
    static bool say(const platform::Descriptor &socket, const std::string &words) {
        return ::send(socket.number(), words.data(), words.size(), MSG_NOSIGNAL) ==
               static_cast<ssize_t>(words.size());
    }
    // What comes until the server closes.
    static std::string rest(const platform::Descriptor &socket) {
        std::string answer;
        char bytes[65536];
        ssize_t got = 0;
        while ((got = ::recv(socket.number(), bytes, sizeof bytes, 0)) > 0)
            answer.append(bytes, static_cast<std::size_t>(got));
        EXPECT_FALSE(got < 0 && errno == EAGAIN) << "the connection does not end";
        return answer;
    }
    // Says something to the server and answers everything it says until it closes, or goes away
    // without listening.
    std::string talk(const std::string &request, bool listens = true) {
        const platform::Descriptor socket = connected();
        if (!say(socket, request))
            return "";
        ::shutdown(socket.number(), SHUT_WR);
        return listens ? rest(socket) : "";
    }

    MusicFolder music_;
    Patience patience_;
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

TEST_F(CatalogueServer, EndsTheConnectionWhereAFileGetsShorterWhileItIsServed) {
    constexpr std::uintmax_t whole = 32U << 20; // more than a connection holds by itself
    std::filesystem::resize_file(music_ / "Song.mp3", whole);
    const platform::Descriptor socket = connected();
    ASSERT_TRUE(say(socket, "GET " + toUtf8(songPath()) + " HTTP/1.1\r\nHost: localhost\r\n\r\n"));
    char first = 0;
    ASSERT_EQ(::recv(socket.number(), &first, 1, 0), 1);
    std::filesystem::resize_file(music_ / "Song.mp3", 1000);
    EXPECT_LT(rest(socket).size(), whole);
}

TEST_F(CatalogueServer, EndsTheConnectionOfWhoeverDripsARequest) {
    patience_ = {std::chrono::milliseconds(400), std::chrono::milliseconds(400), 600};
    const platform::Descriptor drips = connected();
    const timeval limit{0, 20'000};
    ::setsockopt(drips.number(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    say(drips, "GET / HTTP/1.1\r\nHost: localhost\r\nX: ");
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    bool ended = false;
    for (char byte = 0; !ended && std::chrono::steady_clock::now() < end;) {
        const ssize_t got = ::recv(drips.number(), &byte, 1, 0);
        ended = got == 0 || (got < 0 && errno != EAGAIN) || !say(drips, "x");
    }
    EXPECT_TRUE(ended);
}

TEST_F(CatalogueServer, LetsWhoeverHasAskedTakeItsTime) {
    patience_ = {std::chrono::milliseconds(300), std::chrono::milliseconds(300), 600};
    constexpr std::uintmax_t whole = 32U << 20;
    std::filesystem::resize_file(music_ / "Song.mp3", whole);
    const platform::Descriptor takes = connected();
    ASSERT_TRUE(say(takes, "GET " + toUtf8(songPath()) +
                               " HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n"));
    // Somebody else is sent away meanwhile, twice the limit later.
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(rest(connected()), "");
    EXPECT_GT(rest(takes).size(), whole);
}

TEST_F(CatalogueServer, SendsThePartOfASongThatABrowserSeeks) {
    music_.put("Song.mp3", "0123456789");
    const auto asked = [&](const std::string &fields, const char *verb = "GET") {
        return talk(std::string(verb) + " " + toUtf8(songPath()) +
                    " HTTP/1.1\r\nHost: localhost\r\n" + fields + "Connection: close\r\n\r\n");
    };
    const std::string part = asked("Range: bytes=2-4\r\n");
    EXPECT_EQ(part.substr(9, 3), "206");
    EXPECT_THAT(part, HasSubstr("\r\nContent-Range: bytes 2-4/10\r\n"));
    EXPECT_THAT(part, HasSubstr("\r\nContent-Length: 3\r\n"));
    EXPECT_EQ(part.substr(part.size() - 7), "\r\n\r\n234");
    const std::string whole = asked("");
    EXPECT_EQ(whole.substr(9, 3), "200");
    EXPECT_THAT(whole, HasSubstr("\r\nAccept-Ranges: bytes\r\n"));
    EXPECT_LT(whole.find("\r\nContent-Type: audio/mpeg"), whole.find("X-Content-Type-Options"))
        << "the player takes the first of that name";
    EXPECT_EQ(asked("Range: bytes=10-\r\n").substr(9, 3), "416");
    const std::size_t at = whole.find("ETag: ") + 6;
    const std::string tag = whole.substr(at, whole.find('\r', at) - at);
    EXPECT_EQ(asked("If-None-Match: " + tag + "\r\n").substr(9, 3), "304");
    EXPECT_EQ(asked("If-None-Match: \"other\"\r\n").substr(9, 3), "200");
    EXPECT_EQ(asked("Range: bytes=2-4\r\nIf-Range: " + tag + "\r\n").substr(9, 3), "206");
    EXPECT_EQ(asked("Range: bytes=2-4\r\nIf-Range: \"other\"\r\n").substr(9, 3), "200")
        << "of a file that is another one now the whole comes";
    const std::string head = asked("Range: bytes=2-4\r\n", "HEAD");
    EXPECT_EQ(head.substr(head.size() - 4), "\r\n\r\n");
}

TEST_F(CatalogueServer, SaysWhyItCannotListen) {
    Catalogue other(music_.path(), "x");
    try {
        const Server second(other, "127.0.0.1", server().port());
        ADD_FAILURE() << "two at one port";
    } catch (const std::runtime_error &error) {
        EXPECT_THAT(error.what(), HasSubstr("Address already in use"));
    }
}

TEST_F(CatalogueServer, ListensByTheNameOfThisMachine) {
    Catalogue other(music_.path(), "x");
    const Server here(other, "localhost", 0);
    EXPECT_TRUE(internet_->XmlHttpGet(fromAscii(here.addressHere() + "/")).has_value());
}

TEST_F(CatalogueServer, TellsOthersANumberThatLeadsToThisMachine) {
    Catalogue other(music_.path(), "x");
    const Server all(other, "0.0.0.0", 0);
    EXPECT_EQ(all.hostAndPort(), "127.0.0.1:" + std::to_string(all.port()));
    EXPECT_EQ(all.addressForOthers().find("0.0.0.0"), std::string::npos);
    EXPECT_TRUE(internet_->XmlHttpGet(fromAscii(all.addressForOthers() + "/")).has_value());
}

TEST_F(CatalogueServer, LeavesPlacesForOthersBesideOneThatTakesMany) {
    Catalogue other(music_.path(), "x");
    const Server all(other, "0.0.0.0", 0);
    std::vector<platform::Descriptor> taken;
    for (int i = 0; i < 40; ++i)
        taken.push_back(connectedTo("127.0.0.1", all.port()));
    EXPECT_EQ(rest(taken.back()), "") << "sent away at once";
    const platform::Descriptor another = connectedTo("127.0.0.2", all.port());
    ASSERT_TRUE(say(another, "GET / HTTP/1.0\r\nHost: localhost\r\n\r\n"));
    EXPECT_EQ(rest(another).substr(9, 3), "200");
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

// Wherever in them it is: what the library refuses while it stops has no answer.
TEST_F(CatalogueServer, StopsAmidRequestsThatAreTooLong) {
    const std::string endless = "GET /" + std::string(60'000, 'a');
    for (int run = 0; run < 20; ++run) {
        Catalogue other(music_.path(), "127.0.0.1");
        auto brief = std::make_unique<Server>(other, "127.0.0.1", 0);
        std::vector<platform::Descriptor> sockets;
        for (int i = 0; i < 8; ++i)
            sockets.push_back(connectedTo("127.0.0.1", brief->port()));
        for (const platform::Descriptor &socket : sockets)
            say(socket, endless);
        const auto begun = std::chrono::steady_clock::now();
        brief.reset();
        EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(4));
    }
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
