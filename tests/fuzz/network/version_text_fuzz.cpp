// Two versions as texts, a line each: at most one of them is newer than the other, none than
// itself, and what stands behind the third number does not count.

#include "base/text.h"
#include "network/update.h"
#include "playback/Main.h"
#include "tests/fakes/fake_platform.h"
#include "tests/fuzz/network/one_page.h"
#include "velmora.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

using namespace velmora;
using namespace velmora::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char *>(data), size);
    const std::size_t middle = std::min(bytes.find('\n'), bytes.size());
    const std::u16string one = fromUtf8(bytes.substr(0, middle));
    const std::u16string other = fromUtf8(bytes.substr(std::min(middle + 1, bytes.size())));

    fakes::FakePlatform fake;
    Velmora app(fake.bundle());
    const auto isNewer = [&](const std::u16string &own, const std::u16string &offered) {
        app.Main().Vesion = own;
        return app.update().is_NewVersion(offered);
    };
    const bool forward = isNewer(one, other);
    require(!forward || !isNewer(other, one));
    require(!isNewer(one, one) && !isNewer(other, other));
    if (std::count(other.begin(), other.end(), u'.') >= 2)
        require(isNewer(one, other + u".9") == forward);
    return 0;
}
