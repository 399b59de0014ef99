// The last bytes of a music file from outside, read as a tag: of a file that is there, of one whose
// bytes the disk does not give, of none; and the name of any number of a genre.

#include "base/run_time_error.h"
#include "playlist/another_PlayInfo_Form.h"
#include "playlist/playerInfo.h"
#include "tests/fakes/fake_platform.h"
#include "velmora.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    using namespace velmora;
    fakes::FakePlatform fake;
    Velmora app(fake.bundle());
    app.playerInfo().buildGenreTable();
    fake.files.addFile(u"/m/a.mp3", std::string(reinterpret_cast<const char *>(data), size));
    const bool isTag = app.playerInfo().readId3v1(u"/m/a.mp3");
    const std::string bytes(reinterpret_cast<const char *>(data), size);
    if (isTag != (size >= 128 && bytes.compare(size - 128, 3, "TAG") == 0))
        std::abort();
    if (app.another_PlayInfo_Form().playInfo_TitleText.text().size() > 30)
        std::abort();
    // The table has the names of 0 to 148; what is beyond has none, what is far below raises.
    std::int32_t code = 0;
    std::memcpy(&code, data, std::min(size, sizeof code));
    std::u16string name;
    const bool isKnown = passOver([&] { name = app.playerInfo().genreName(code); });
    if (isKnown != (code >= -148) || (isKnown && name.empty() != (code > 148)))
        std::abort();
    fake.files.setUnreadable(u"/m/a.mp3");
    if (app.playerInfo().readId3v1(u"/m/a.mp3") || !app.playerInfo().readId3v1(u"/m/b.mp3"))
        std::abort();
    return 0;
}
