#pragma once

// A hidden form that holds the two popup menus.

#include "playback/MenuForm.design.h"

namespace velmora {

class Velmora;

class MenuForm : public MenuForm_Design {
public:
    explicit MenuForm(Velmora &app);
    void load();

private:
    void mode_Click();
    void about_Click();
    void help_Click();

    Velmora &app_;
};

} // namespace velmora
