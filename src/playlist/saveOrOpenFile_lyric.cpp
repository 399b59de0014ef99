// Writing a lyric.

#include "playlist/saveOrOpenFile.h"

#include "base/run_time_error.h"
#include "base/text.h"
#include "lyrics/doLrcForm.h"
#include "lyrics/lrcForm.h"
#include "lyrics/lyric_file.h"
#include "platform/ansi.h"
#include "platform/files.h"
#include "velmora.h"

namespace velmora {

namespace {

void addLines(std::u16string &text, const forms::ListBox &list) {
    for (std::int32_t row = 0; row < list.listCount(); ++row) {
        text.append(list.row(row)).append(crLf);
    }
}

std::u16string editedLyric(const velmora::doLrcForm &editor) {
    std::u16string text;
    text.append(u"[Ti:").append(editor.lrc_Ti_Str.text()).append(u"]").append(crLf);
    text.append(u"[Ar:").append(editor.lrc_Ar_Str.text()).append(u"]").append(crLf);
    text.append(u"[Al:").append(editor.lrc_Al_Str.text()).append(u"]").append(crLf);
    text.append(u"[By:").append(editor.lrc_By_Str.text()).append(u"]").append(crLf);
    addLines(text, editor.lrcList);
    return text;
}

} // namespace

bool saveOrOpenFile::writeLrcFile(std::u16string_view path, LyricSource source) {
    return passOver([&] {
        std::u16string text;
        if (source == LyricSource::Memory) {
            addLines(text, app_.lrcForm().List1);
        } else {
            text = editedLyric(app_.doLrcForm());
        }
        app_.platform().files.writeWhole(pathOnDisk(app_.platform(), path),
                                         app_.platform().ansi.encode(text), true);
    });
}

} // namespace velmora
