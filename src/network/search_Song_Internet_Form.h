#pragma once

// The window in which the user searches songs on the Internet.

#include "network/search_Song_Internet_Form.design.h"

#include <cstdint>

namespace velmora {

class Velmora;

class search_Song_Internet_Form : public search_Song_Internet_Form_Design {
public:
    explicit search_Song_Internet_Form(Velmora &app);
    void load();

    std::int16_t visibleRows = 11; // rows that the list shows

    void close_Click();

private:
    Velmora &app_;
};

} // namespace velmora
