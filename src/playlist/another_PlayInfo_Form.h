#pragma once

// The ID3v1 tag of the open track. Its six boxes are where the rest of the program reads the tag.

#include "playlist/another_PlayInfo_Form.design.h"

namespace velmora {

class Velmora;

class another_PlayInfo_Form : public another_PlayInfo_Form_Design {
public:
    explicit another_PlayInfo_Form(Velmora &app);
    void load();
    // Hides the window and gives playInfo_Form back.
    void close_Click();

private:
    Velmora &app_;
};

} // namespace velmora
