// Writing a lyric.

#include "playlist/saveOrOpenFile.h"

#include "base/run_time_error.h"
#include "lyrics/doLrcForm.h"
#include "lyrics/lrcForm.h"
#include "lyrics/lyric_file.h"
#include "platform/contracts/ansi.h"
#include "platform/contracts/files.h"
#include "velmora.h"

namespace velmora {

bool saveOrOpenFile::writeLrcFile(std::u16string_view path, LyricSource source) {
    if (source == LyricSource::Editor)
        return writeLrcFile(path, app_.doLrcForm().editedLyric());
    return passOver([&] { copyLyricFile(app_.platform(), app_.lrcForm().lrcPath, path); });
}

bool saveOrOpenFile::writeLrcFile(std::u16string_view path, std::u16string_view text) {
    return passOver([&] {
        if (isOnlyPlaceOf(app_.platform(), path, WrittenOverBy::Itself))
            keepOld(std::u16string(path));
        app_.platform().files.writeWhole(path, app_.platform().ansi.encode(text), true);
    });
}

} // namespace velmora
