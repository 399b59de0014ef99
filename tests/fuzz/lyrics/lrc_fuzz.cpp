// A lyric file from outside: it loads or fails in order, and what the editor writes back loads the
// same again.

#include "base/run_time_error.h"
#include "base/text.h"
#include "lyrics/doLrcForm.h"
#include "lyrics/lrcForm.h"
#include "lyrics/lyric_file.h"
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

// A copy has the lines as they are; what stands in no other place is not written over.
void tryCopies(fakes::FakePlatform &fake) {
    const platform::Platform platform = fake.bundle();
    const bool isCopied = passOver([&] { copyLyricFile(platform, u"/l/a.lrc", u"/l/c.lrc"); });
    require(isCopied == fake.files.hasFile(u"/l/c.lrc"));
    if (isCopied)
        require(readLyricFile(platform, u"/l/c.lrc").lines ==
                readLyricFile(platform, u"/l/a.lrc").lines);
    const bool byOthers = isOnlyPlaceOf(platform, u"/l/a.lrc", WrittenOverBy::Another);
    require(!byOthers || isOnlyPlaceOf(platform, u"/l/a.lrc", WrittenOverBy::Itself));
    require(!isOnlyPlaceOf(platform, u"/l/none.lrc", WrittenOverBy::Itself));
}

// No name, a file that cannot be read, one that is far too long.
void tryTrouble(fakes::FakePlatform &fake, lrcForm &lyric) {
    constexpr std::int64_t farTooLong = std::int64_t{17} * 1024 * 1024;
    lyric.startLoad(u" ");
    require(!lyric.hasLrc);
    fake.files.addFile(u"/l/bad.lrc", "[00:01]words");
    fake.files.setUnreadable(u"/l/bad.lrc");
    require(!passOver([&] { lyric.startLoad(u"/l/bad.lrc"); }));
    fake.files.addFile(u"/l/long.lrc");
    fake.files.setLength(u"/l/long.lrc", farTooLong);
    const platform::Platform platform = fake.bundle();
    require(readLyricFile(platform, u"/l/long.lrc").failure.has_value());
    require(!passOver([&] { copyLyricFile(platform, u"/l/long.lrc", u"/l/d.lrc"); }));
    require(isOnlyPlaceOf(platform, u"/l/long.lrc", WrittenOverBy::Another));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fakes::FakePlatform fake;
    Velmora app(fake.bundle());
    fake.files.addFile(u"/l/a.lrc", std::string(reinterpret_cast<const char *>(data), size));
    lrcForm &lyric = app.lrcForm();
    lyric.desktopLrcOn = size % 2 != 0;
    passOver([&] { lyric.startLoad(u"/l/a.lrc"); });
    require(lyric.hasLrc == (lyric.List1.listCount() > 0));
    for (std::int32_t row = 0; row < lyric.List1.listCount(); ++row)
        require(!trim(lyric.List1.list(row)).empty());
    lyric.ListIndex(u"00:01");
    tryCopies(fake);
    tryTrouble(fake, lyric);
    passOver([&] { lyric.startLoad(u"/l/a.lrc"); });
    if (!lyric.hasLrc)
        return 0;
    require(app.saveOrOpenFile().writeLrcFile(u"/l/b.lrc", LyricSource::Editor));
    app.doLrcForm().addFile_To_List(u"/l/b.lrc");
    // Without a row to stamp these raise, as in a handler.
    passOver([&] { app.doLrcForm().addTime_Label_Button_Click(); });
    passOver([&] { app.doLrcForm().delTime_Label_Button_Click(); });
    return 0;
}
