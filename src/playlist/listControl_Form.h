#pragma once

// The one-line input box that renaming and searching share.

#include "playlist/listControl_Form.design.h"

#include <cstdint>
#include <string>

namespace velmora {

class Velmora;

class listControl_Form : public listControl_Form_Design {
public:
    explicit listControl_Form(Velmora &app);
    void load();

    std::int16_t listMode = 0; // 1 search, 2 rename
    // What the user entered; emptied before each use.
    std::u16string listControl_Result;

    void OK_Click();
    // Gives the windows behind back and hides this one.
    void close_Box();
    void clear_Box();

private:
    Velmora &app_;
};

} // namespace velmora
