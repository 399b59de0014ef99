#pragma once

// The about window: texts, and the way back to the window that opened it.

#include "ui/aboutForm.design.h"

#include <string>
#include <string_view>

namespace velmora {

class Velmora;

class aboutForm : public aboutForm_Design {
public:
    explicit aboutForm(Velmora &app);
    void load();

    // Who opened it: "main", "playlist_Form" or "playset". That one is enabled again on closing.
    std::u16string caller_Name;

    // Shows the window for this opener, which the caller has disabled.
    void show_For(std::u16string_view caller);
    void close_Click();

private:
    Velmora &app_;
};

} // namespace velmora
