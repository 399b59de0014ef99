#pragma once

// What is known of the open track: the facts of its file and the tags and text of its lyric.

#include "playlist/playInfo_Form.design.h"

namespace velmora {

class Velmora;

class playInfo_Form : public playInfo_Form_Design {
public:
    explicit playInfo_Form(Velmora &app);
    void load();

    // Toggles the tag's window; this one is disabled while that is open.
    void anotherInfo_Button_Click();
    // Opens the folder of the lyric file.
    void openLrcFile_Click();
    void close_Click();

private:
    void tick();

    Velmora &app_;
    std::u16string shownLine_; // the line for which the marquee last restarted
};

} // namespace velmora
