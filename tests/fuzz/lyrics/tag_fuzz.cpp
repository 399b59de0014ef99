// The last bytes of a music file from outside, read as a tag.

#include "playlist/another_PlayInfo_Form.h"
#include "playlist/playerInfo.h"
#include "tests/fakes/fake_platform.h"
#include "velmora.h"

#include <cstdint>
#include <cstdlib>
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
    return 0;
}
