// The dressing of the lyric labels: staging set, preview, labels.

#include "settings/skinSet.h"

#include "lyrics/lrcForm.h"
#include "playback/Main.h"
#include "playlist/playInfo_Form.h"
#include "settings/playSetForm.h"
#include "settings/setControl.h"
#include "velmora.h"

namespace velmora {

namespace {

void takeStaging(forms::TextBox &preview, const setControl &staging) {
    forms::Font font = preview.font();
    font.setBold(staging.Lrc_Bold);
    font.setCharset(staging.Lrc_Charset);
    font.setItalic(staging.Lrc_Italic);
    font.setName(staging.Lrc_Name);
    font.setSize(static_cast<float>(staging.Lrc_Size));
    font.setStrikethrough(staging.Lrc_Strikethrough);
    font.setUnderline(staging.Lrc_Underline);
    font.setWeight(staging.Lrc_Weight);
    preview.setFont(font);
    preview.setForeColor(staging.Lrc_ForeColor);
}

void dress(forms::Label &label, const forms::TextBox &preview) {
    label.setFont(preview.font());
    label.setForeColor(preview.foreColor());
}

} // namespace

void skinSet::apply_Desktop_Lrc_Font(bool fromStaging) {
    forms::TextBox &preview = app_.playSetForm().desktop_Lrc_Preview;
    if (fromStaging)
        takeStaging(preview, app_.setControl());
    velmora::lrcForm &lyric = app_.lrcForm();
    lyric.lrc_Text.setForeColor(preview.foreColor());
    lyric.dress(preview.font());
    lyric.position();
}

void skinSet::apply_Other_Lrc_Font(bool fromStaging) {
    forms::TextBox &preview = app_.playSetForm().other_Lrc_Preview;
    if (fromStaging)
        takeStaging(preview, app_.setControl());
    dress(app_.Main().lrc_Text, preview);
    dress(app_.playInfo_Form().lrc_Text, preview);
    app_.playInfo_Form().lrc_Text.setBackColor(preview.backColor());
}

} // namespace velmora
