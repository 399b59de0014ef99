// What the download client makes of an address and of a server's header: the first line is the
// address, the lines up to an empty one are the header, the rest is the body. Whatever they are, a
// transfer ends, says so once, and writes its one file or none.

#include "base/text.h"
#include "network/zkWininetDown.h"
#include "tests/fakes/fake_platform.h"
#include "tests/fakes/instead.h"
#include "tests/fuzz/network/one_page.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace velmora;
using namespace velmora::fuzz;

std::string upTo(std::string_view &rest, std::string_view end) {
    const std::size_t at = std::min(rest.find(end), rest.size());
    std::string piece(rest.substr(0, at));
    rest.remove_prefix(std::min(at + end.size(), rest.size()));
    return piece;
}

void readHeader(zkWininetDown &client) {
    for (const char16_t *name :
         {u"", u"Content-Length", u"content-type", u"DATE", u"Last-Modified", u"server"}) {
        const std::u16string value = client.GetHeader(name);
        require(*name == 0 || !contains(value, std::u16string_view(u"\0", 1)));
    }
    require(client.GetHeader(u"Other") == u"0");
    client.FileSize();
    client.FileType();
}

// A library that refuses one of the handles, where one is named.
class RefusingInternet : public fakes::FakeInternet {
public:
    using FakeInternet::FakeInternet;
    std::size_t refused = 0; // from 1 on, in the order in which they are asked for
    platform::InternetHandle InternetOpenA(std::u16string_view agent) override {
        return refused == 1 ? 0 : FakeInternet::InternetOpenA(agent);
    }
    platform::InternetHandle InternetConnectA(platform::InternetHandle session,
                                              std::u16string_view host, std::int32_t port,
                                              std::optional<std::u16string_view> user,
                                              std::u16string_view password,
                                              std::uint32_t service) override {
        return refused == 2
                   ? 0
                   : FakeInternet::InternetConnectA(session, host, port, user, password, service);
    }
    platform::InternetHandle HttpOpenRequestA(platform::InternetHandle connection,
                                              std::u16string_view verb, std::u16string_view object,
                                              std::u16string_view version,
                                              std::uint32_t flags) override {
        return refused == 3
                   ? 0
                   : FakeInternet::HttpOpenRequestA(connection, verb, object, version, flags);
    }
};

// The same answer as a text, asked for with all that a request may carry. The charset and the
// cookie are words of a server, too.
void readAsText(RefusingInternet &internet, zkWininetDown &client,
                const fakes::FakeInternet::Response &answer) {
    const std::string &body = answer.body;
    client.Method = u"POST";
    client.Referer = client.URL;
    client.Cookie = fromUtf8(body.substr(0, 20));
    client.Charset = body.size() % 2 == 0 ? u"utf-8" : fromUtf8(body.substr(0, 10));
    client.DownloadEnd = nullptr;
    client.Error = nullptr;
    bool isKnown = true;
    client.Status = [&](std::int32_t code) { isKnown = isKnown && code > 0 && code < 7; };
    client.Progress = [&](double, double, double) {
        if (body.size() % 5 == 0)
            client.bStop(); // whoever waits for it has changed their mind
    };
    internet.cookies[u"name"] = client.Cookie;
    internet.respond(answer);
    client.DownLoadToText();
    const std::u16string cookie = client.GetCookie(u"name");
    require(isKnown && (cookie.empty() || cookie.size() == 256));
    require(client.GetCookie(u"other").empty());
    require(client.GetHeader(u"Date") == u"0"); // nothing runs any more
    internet.forgetResponses();
    internet.refused = body.size() % 4;
    internet.respond(answer);
    client.DownLoadToText();
    internet.forgetResponses();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    std::string_view rest(reinterpret_cast<const char *>(data), size);
    const std::string address = upTo(rest, "\n");
    std::string header = upTo(rest, "\n\n") + "\n";
    std::replace(header.begin(), header.end(), '\n', '\0');
    const std::string body(rest.substr(0, 10'000));

    fakes::FakePlatform fake;
    fake.files.addFolder(u"/d/cache");
    RefusingInternet internet(fake.ansi, fake.files);
    const platform::Platform platform = fakes::with(fake.bundle(), {.internet = &internet});
    zkWininetDown client(platform);
    client.URL = fromUtf8(address);
    client.FileName = u"/d/cache/new/song.mp3";
    int ends = 0;
    int errors = 0;
    client.DownloadEnd = [&](bool success) {
        ++ends;
        require(success == (errors == 0));
    };
    client.Error = [&](std::int32_t code) {
        ++errors;
        require(code >= 2 && code <= 9);
    };
    double received = 0;
    client.Progress = [&](double, double now, double) {
        require(now > received);
        received = now;
        readHeader(client);
    };
    internet.respond({header, body, std::nullopt});
    const bool isFetched = client.DownloadToFile(u"music");
    require(errors + (isFetched ? 1 : 0) == 1);
    require(ends == 1 || (ends == 0 && errors == 1)); // none where there is no connection
    for (const std::u16string &path : fake.files.files())
        require(path == client.FileName);
    require(!isFetched || fake.files.contents(client.FileName) == body);
    internet.forgetResponses();
    readAsText(internet, client, {header, body, body.size() / 2});
    return 0;
}
