#pragma once

// The lyric editor: times a lyric against the playing track. It works on its own copy of the lines;
// the lyric in memory changes only when the user saves. Every load of a lyric, and every opening
// and closing of the window, fills it anew, and what was not saved is gone.

#include "lyrics/doLrcForm.design.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace velmora {

class Velmora;

class doLrcForm : public doLrcForm_Design {
public:
    explicit doLrcForm(Velmora &app);
    void load();

    // Empties the editor and takes the lyric in memory.
    void startLoad();
    // What can be edited, or the panel that says that there is nothing to edit.
    void all_Enabled(bool flag);
    // Fills the editor from a text or LRC file; an empty path does nothing. A read error ends the
    // reading and what was read stays; a file without a line to edit is told to the user.
    void addFile_To_List(std::u16string_view path);

    // What would be saved now: the four tags, then every row, each line ended by CR LF.
    std::u16string editedLyric() const;

    void addTime_Label_Button_Click();
    void delTime_Label_Button_Click();
    void save_Button_Click();
    void anotherSave_Button_Click();
    void openFile_Button_Click();
    void list_Load_Click() { loadFromLyric(); }
    void close_Click();

    std::int16_t nowRow = 0; // the row that the next time label goes to
    bool hasText = false;    // the file opened last held a line to edit
    std::u16string savePath; // what the last open or save dialog answered

private:
    void setListHandlers();
    void showRow();
    void released();
    void keyPressed(std::int16_t keyCode, std::int16_t shift);
    void emptyControls();
    void loadFromLyric();
    void takeLine(std::u16string_view line);
    void selectRow(std::int32_t row);
    void saveAs(std::u16string_view stem, std::u16string_view lyric);
    bool lyricExists(std::u16string_view stem) const;
    void tell(std::u16string_view stem, std::u16string_view outcome, std::u16string_view path,
              bool isFailure);

    Velmora &app_;
};

} // namespace velmora
