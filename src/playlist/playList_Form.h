#pragma once

// The window of the play list, and its one store: row i of `playList_Item` (names) and of `List1`
// (full paths, each at most once) is one track. Insertions and removals happen in both at the same
// row, first in `playList_Item`.

#include "playlist/playList_Form.design.h"

#include <cstdint>

namespace velmora {

class Velmora;

class playList_Form : public playList_Form_Design {
public:
    explicit playList_Form(Velmora &app);
    void load();

    // Rows that the list shows; doLrcForm reads this one, too.
    std::int16_t visibleRows = 17;

    // Enables or disables everything that starts an operation on the list; brackets each long one.
    void controlEnabled(bool flag);

    // Reads the play list file again.
    void afresh_Load_Click();

    void close_Click();

private:
    Velmora &app_;
};

} // namespace velmora
