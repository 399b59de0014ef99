#pragma once

// The one-line input box that renaming and searching share.

#include "playlist/listControl_Form.design.h"

#include <cstdint>

namespace velmora {

class Velmora;

class listControl_Form : public listControl_Form_Design {
public:
    explicit listControl_Form(Velmora &app);
    void load();

    std::int16_t listMode = 0; // 1 search, 2 rename

    // Gives the windows behind back and hides this one.
    void close_Box();

private:
    Velmora &app_;
};

} // namespace velmora
