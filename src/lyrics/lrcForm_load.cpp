// From a file to the lyric in memory.

#include "lyrics/lrcForm.h"

#include "base/run_time_error.h"
#include "base/text.h"
#include "lyrics/doLrcForm.h"
#include "lyrics/lrc_text.h"
#include "lyrics/lyric_file.h"
#include "playlist/playInfo_Form.h"
#include "velmora.h"

namespace velmora {

void lrcForm::startLoad(std::u16string_view path) {
    ++readings;
    List1.clear();
    if (trim(path).empty()) {
        forgetLyric();
        followLyric();
        return;
    }
    try {
        readFile(path);
        if (List1.listCount() == 0)
            forgetLyric();
        followLyric();
    } catch (const RunTimeError &error) {
        noteSwallowed(error);
        // The box that would tell of it takes a text that is no number as part of its title, so it
        // never comes up: that second error is what the caller meets.
        velmora::raise(ErrorNumber::TypeMismatch);
    }
}

void lrcForm::readFile(std::u16string_view path) {
    lrcFullText.clear();
    const LyricLines read = readLyricFile(app_.platform(), path);
    for (const std::u16string &line : read.lines)
        takeLine(line);
    if (read.failure)
        throw RunTimeError(*read.failure);
    lrcPath = path;
    nowLrcLine.clear();
    hasLrc = true;
    showFacts();
}

void lrcForm::takeLine(const std::u16string &line) {
    const std::u16string_view words = wordsOf(line);
    if (!words.empty())
        lrcFullText.append(words).append(crLf);
    List1.addItem(line);
    const std::optional<TagLine> found = tagOf(line);
    if (!found)
        return;
    switch (found->tag) {
    case LyricTag::Ti:
        lrcTi = found->value;
        break;
    case LyricTag::Ar:
        lrcAr = found->value;
        break;
    case LyricTag::Al:
        lrcAl = found->value;
        break;
    case LyricTag::By:
        lrcBy = found->value;
        break;
    }
}

void lrcForm::showFacts() {
    velmora::playInfo_Form &info = app_.playInfo_Form();
    info.lrc_Path_Str.setText(lrcPath);
    info.lrc_Full.setText(lrcFullText);
    info.lrc_Ti_Str.setText(lrcTi);
    info.lrc_Ar_Str.setText(lrcAr);
    info.lrc_Al_Str.setText(lrcAl);
    info.lrc_By_Str.setText(lrcBy);
}

void lrcForm::forgetLyric() {
    hasLrc = false;
    noLrcText = lrcMissText;
    nowLrcLine = noLrcText;
    lrc_Text.setVisible(false);
    velmora::playInfo_Form &info = app_.playInfo_Form();
    for (forms::TextBox *box : {&info.lrc_Path_Str, &info.lrc_Full, &info.lrc_Ti_Str,
                                &info.lrc_Ar_Str, &info.lrc_Al_Str, &info.lrc_By_Str})
        box->setText(u"");
}

// The desktop line and the editor follow whatever is loaded now.
void lrcForm::followLyric() {
    lrc_Text.setVisible(false);
    if (hasLrc && (desktopLrcOn || desktopLrcAutoOpen)) {
        lrc_Text.setVisible(true);
        position();
    }
    app_.doLrcForm().startLoad();
}

} // namespace velmora
