// What the download client makes of an address and of a server's header: the first line is the
// address, the lines up to an empty one are the header, the rest is the body. Whatever they are, a
// transfer ends, says so once, and writes its one file or none.

#include "base/text.h"
#include "network/zkWininetDown.h"
#include "tests/fakes/fake_platform.h"
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

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    std::string_view rest(reinterpret_cast<const char *>(data), size);
    const std::string address = upTo(rest, "\n");
    std::string header = upTo(rest, "\n\n") + "\n";
    std::replace(header.begin(), header.end(), '\n', '\0');
    const std::string body(rest.substr(0, 10'000));

    fakes::FakePlatform fake;
    fake.files.addFolder(u"/d/cache");
    const platform::Platform platform = fake.bundle();
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
    fake.internet.respond({header, body, std::nullopt});
    const bool isFetched = client.DownloadToFile(u"music");
    require(errors + (isFetched ? 1 : 0) == 1);
    require(ends == 1 || (ends == 0 && errors == 1)); // none where there is no connection
    for (const std::u16string &path : fake.files.files())
        require(path == client.FileName);
    require(!isFetched || fake.files.contents(client.FileName) == body);
    fake.internet.forgetResponses();
    return 0;
}
