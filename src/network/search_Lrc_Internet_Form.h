#pragma once

// The window in which the user searches lyrics on the Internet, and fetches one. Its texts stay
// Chinese in every language; the title alone is translated.
//
// Each row of the list is the address of a lyric file, in lower case. An existing lyric of the same
// name is overwritten without asking, and kept as ".old" first where it could not be read.

#include "network/search_Lrc_Internet_Form.design.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace velmora {

class Velmora;

class search_Lrc_Internet_Form : public search_Lrc_Internet_Form_Design {
public:
    explicit search_Lrc_Internet_Form(Velmora &app);
    void load();

    std::int16_t visibleRows = 11; // rows that the list shows

    // Prepares the window each time it is shown: an empty list, and what the present track's tag or
    // name gives to look for.
    void startLoad();

    void search_Button_Click();
    void save_Click();        // into the lyric folder, under the track's name
    void anotherSave_Click(); // to a path that the user chooses
    void goto_Internet_Click();
    void close_Click();

private:
    void setHandlers();
    void fetchAndMatch();
    void search(const std::u16string &name, const std::u16string &singer);
    void enableSaving(bool flag);
    bool chosenOrComplain();
    std::u16string lyricTarget();
    std::u16string chosenAddress() const;
    bool fetch(std::u16string_view address, const std::u16string &target, bool canWrite,
               std::u16string_view notWritable);
    void showTip(Twips y);

    Velmora &app_;
};

} // namespace velmora
