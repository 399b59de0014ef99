#pragma once

// The settings window: six pages over the same rectangle, and what confirms them. Its controls hold
// the choices that setControl reads and writes, the folders, and the two previews whose fonts the
// lyric labels are dressed from. Nothing takes effect before Apply or OK, and Cancel undoes
// nothing: what was changed stays in the controls until the next opening reads it anew, which the
// folders and the previews never are.

#include "settings/playSetForm.design.h"
#include "settings/texts.h"

#include <array>
#include <cstdint>

namespace velmora {

class Velmora;

class playSetForm : public playSetForm_Design {
public:
    explicit playSetForm(Velmora &app);
    void load();

    // What there is of each language, in the order of the stored numbers: its choice, and the boxes
    // of its long texts, which lie over one another.
    template <typename Kind> using OfEachLanguage = std::array<Kind *, texts::languageCount>;
    OfEachLanguage<forms::OptionButton> languageChoices();
    OfEachLanguage<forms::TextBox> helpTexts();
    OfEachLanguage<forms::TextBox> shortcutTexts();

    // Shows one page.
    void help_Click();
    // Ticks the option button of a language and clears the others; another number clears all.
    void language_Load(std::int32_t index);
    // The play mode can be chosen only while tracks follow each other.
    void isAutoPlay_Click();
    // Takes everything over into memory, stores it, and shows it at once in every window. What is
    // stored is read back: where storing failed, the language chosen holds for this run.
    void apply_PlaySet();

    // Apply, OK, Cancel and the close button.
    void yy_Click();
    void qd_Click();
    void qx_Click();
    void close_Click();

    // The system's dialogs on the previews and the folder boxes. The size of the other lyrics is 14
    // after its font dialog, whatever that answered.
    void desktop_Lrc_Font_Button_Click();
    void desktop_Lrc_FroeColor_Button_Click();
    void other_Lrc_Font_Button_Click();
    void other_Lrc_FroeColor_Button_Click();
    void save_Lrc_Path_Image_Click();
    void save_PlayList_Path_Image_Click();
    void save_PlayCache_Path_Image_Click();

    // The about window, which gives this one back when it closes.
    void abount_Click();
    // Restore to defaults.
    void playSet_Resume_Click();

private:
    void layPages();
    void setTabHandlers();
    void listenForKeys(forms::Container &container);
    void keyDown(forms::KeyEvent &key);
    void showPage(const forms::Frame &page);
    void leave();
    void takeChoices();
    void takeAutoOpen();
    void takeFolders();
    void takePreview(const forms::TextBox &preview);
    void chooseFont(forms::TextBox &preview);
    void chooseColour(forms::TextBox &preview);
    void chooseFolder(forms::TextBox &box);

    Velmora &app_;
};

} // namespace velmora
