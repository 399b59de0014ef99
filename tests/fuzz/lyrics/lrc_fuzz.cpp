// A lyric file from outside: it loads or fails in order, and what the editor writes back loads the
// same again.

#include "base/run_time_error.h"
#include "base/text.h"
#include "lyrics/doLrcForm.h"
#include "lyrics/lrcForm.h"
#include "playlist/saveOrOpenFile.h"
#include "tests/fakes/fake_platform.h"
#include "velmora.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace velmora;

void require(bool holds) {
    if (!holds)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fakes::FakePlatform fake;
    Velmora app(fake.bundle());
    fake.files.addFile(u"/l/a.lrc", std::string(reinterpret_cast<const char *>(data), size));
    lrcForm &lyric = app.lrcForm();
    passOver([&] { lyric.startLoad(u"/l/a.lrc"); });
    require(lyric.hasLrc == (lyric.List1.listCount() > 0));
    for (std::int32_t row = 0; row < lyric.List1.listCount(); ++row)
        require(!trim(lyric.List1.list(row)).empty());
    lyric.ListIndex(u"00:01");
    if (!lyric.hasLrc)
        return 0;
    require(app.saveOrOpenFile().writeLrcFile(u"/l/b.lrc", LyricSource::Editor));
    app.doLrcForm().addFile_To_List(u"/l/b.lrc");
    // Without a row to stamp these raise, as in a handler.
    passOver([&] { app.doLrcForm().addTime_Label_Button_Click(); });
    passOver([&] { app.doLrcForm().delTime_Label_Button_Click(); });
    return 0;
}
