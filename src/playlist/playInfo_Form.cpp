#include "playlist/playInfo_Form.h"

#include "base/run_time_error.h"
#include "base/text.h"
#include "platform/contracts/windows.h"
#include "playback/Main.h"
#include "playlist/Search.h"
#include "playlist/another_PlayInfo_Form.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/Language.h"
#include "ui/formSet.h"
#include "ui/marquee.h"
#include "velmora.h"

namespace velmora {

playInfo_Form::playInfo_Form(Velmora &app)
    : playInfo_Form_Design(app.platform().windows), app_(app) {}

void playInfo_Form::load() {
    app_.formSet().set_ColourKey(*this);
    app_.formSet().dress(*this, {&title, &title_ICO}, [this] { close_Click(); });
    wire(*this);
    Timer1.onTimer = [this] { tick(); };
}

void playInfo_Form::close_Click() { hide(); }

void playInfo_Form::anotherInfo_Button_Click() {
    velmora::another_PlayInfo_Form &tag = app_.another_PlayInfo_Form();
    tag.setVisible(!tag.visible());
    if (tag.visible())
        setEnabled(false);
}

void playInfo_Form::openLrcFile_Click() {
    const std::u16string folder = app_.Search().getFolderPart(lrc_Path_Str.text());
    if (folder.empty()) {
        app_.platform().windows.MsgBox(u"歌词文件地址解析错误，无法打开！",
                                       platform::MsgBoxButtons::Ok, platform::MsgBoxIcon::Critical,
                                       app_.Language().msg_Error);
        return;
    }
    app_.saveOrOpenFile().shellOpen(folder);
}

// The same line as in the other windows, while somebody can see it here.
void playInfo_Form::tick() {
    if (visible())
        showLyricLine(app_, lrc_Text, lrc.width(), shownLine_);
    else
        Timer1.rest();
}

} // namespace velmora
