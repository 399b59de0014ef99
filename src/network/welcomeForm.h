#pragma once

// The window of news and links that the maker serves.

#include "network/welcomeForm.design.h"

namespace velmora {

class Velmora;

class welcomeForm : public welcomeForm_Design {
public:
    explicit welcomeForm(Velmora &app);
    void load();
    void close_Click();

private:
    Velmora &app_;
};

} // namespace velmora
