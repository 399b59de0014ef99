#pragma once

// The lyric editor's window.

#include "lyrics/doLrcForm.design.h"

namespace velmora {

class Velmora;

class doLrcForm : public doLrcForm_Design {
public:
    explicit doLrcForm(Velmora &app);
    void load();
    void close_Click();

private:
    Velmora &app_;
};

} // namespace velmora
