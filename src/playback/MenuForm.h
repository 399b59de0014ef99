#pragma once

// A hidden form that holds the two popup menus.

#include "playback/MenuForm.design.h"

namespace velmora {

class Velmora;

class MenuForm : public MenuForm_Design {
public:
    explicit MenuForm(Velmora &app);
    void load();

    // Opens the player's menu for a window; not while an operation on the list is at work.
    void open_Menu(forms::Form &owner);

    void mode_Click();
    void about_Click();
    void help_Click();

private:
    void loadListMenu();

    Velmora &app_;
};

} // namespace velmora
