// What Apply and OK do.

#include "settings/playSetForm.h"

#include "base/numbers.h"
#include "lyrics/lrcForm.h"
#include "platform/contracts/system.h"
#include "playback/Main.h"
#include "playback/player.h"
#include "settings/setControl.h"
#include "settings/skinSet.h"
#include "ui/formSet.h"
#include "velmora.h"

namespace velmora {

void playSetForm::apply_PlaySet() {
    velmora::setControl &settings = app_.setControl();
    takeChoices();
    takeAutoOpen();
    takeFolders();
    settings.save_PlaySet();

    // One staging set serves both fonts, so each is stored before the next is taken.
    takePreview(desktop_Lrc_Preview);
    settings.save_Lrc_Font(u"Desktop");
    app_.skinSet().apply_Desktop_Lrc_Font(false);
    takePreview(other_Lrc_Preview);
    settings.save_Lrc_Font(u"Other");
    app_.skinSet().apply_Other_Lrc_Font(false);
    settings.sync_PlaySet();

    settings.load_Language();
    app_.formSet().tray_Tip(app_.Main().title.caption() + u" 【" + app_.player().nowPlay_Title +
                            u"】");
}

// A box in its third state and a group without a choice leave their setting as it is.
void playSetForm::takeChoices() {
    velmora::setControl &settings = app_.setControl();
    if (autoUpdate.value() == 1)
        settings.AutoUpadate = 1;
    else if (autoUpdate.value() == 0)
        settings.AutoUpadate = 0;
    // Inverted, as it is stored.
    if (isAutoPlay.value() == 1)
        settings.isAutoPlay = 0;
    else if (isAutoPlay.value() == 0)
        settings.isAutoPlay = 1;

    const forms::OptionButton *const modes[] = {&Play_Order, &Play_Random, &Play_RepeatPlay};
    for (std::size_t i = 0; i < std::size(modes); ++i)
        if (modes[i]->value())
            settings.PlayMode = static_cast<std::int16_t>(i);
    settings.VideoInterface = openVideo_Interface.value() == 1 ? 1 : 0;

    const auto languages = languageChoices();
    for (std::size_t i = 0; i < std::size(languages); ++i)
        if (languages[i]->value())
            settings.Language = static_cast<std::int16_t>(i);
}

// The desktop line shows by itself while the box is ticked and a lyric is there; else it shows when
// the user has switched it on. Showing it anew also draws it anew.
void playSetForm::takeAutoOpen() {
    velmora::lrcForm &lyric = app_.lrcForm();
    lyric.desktopLrcAutoOpen = desktopLrc_AutoOpen.value() == 1;
    const auto showAnew = [&lyric] {
        lyric.lrc_Text.setVisible(false);
        lyric.lrc_Text.setVisible(true);
    };
    if (lyric.desktopLrcAutoOpen) {
        if (lyric.hasLrc)
            showAnew();
    } else if (lyric.hasLrc && lyric.desktopLrcOn) {
        showAnew();
    } else {
        lyric.lrc_Text.setVisible(false);
    }
}

// From here on the list of this run is saved elsewhere; nothing moves what is there already.
void playSetForm::takeFolders() {
    velmora::setControl &settings = app_.setControl();
    platform::Folders &folders = app_.platform().folders;
    settings.Path_List = folders.typedFolder(save_PlayList_Path.text());
    settings.Path_Lrc = folders.typedFolder(save_Lrc_Path.text());
    settings.Path_Cache = folders.typedFolder(save_PlayCache_Path.text());
}

void playSetForm::takePreview(const forms::TextBox &preview) {
    velmora::setControl &settings = app_.setControl();
    const forms::Font &font = preview.font();
    settings.Lrc_Bold = font.bold();
    settings.Lrc_Charset = font.charset();
    settings.Lrc_Italic = font.italic();
    settings.Lrc_Name = font.name();
    settings.Lrc_Size = roundToInt32(font.size());
    settings.Lrc_Strikethrough = font.strikethrough();
    settings.Lrc_Underline = font.underline();
    settings.Lrc_Weight = font.weight();
    settings.Lrc_ForeColor = preview.foreColor();
    settings.Lrc_BackColor = preview.backColor();
}

} // namespace velmora
