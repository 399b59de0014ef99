// velmora_taken [WINDOW]
//
// Returns once the window manager has taken in all that was sent to the screen before; with a
// window, once its program has as well. The status is 1 when one of them stays silent.

#include "tests/desktop/x_turn.h"

#include <cstdlib>
#include <iostream>

namespace {
constexpr int limitMs = 20000;
}

int main(int count, char **values) {
    const char *display = std::getenv("DISPLAY");
    if (count > 2 || display == nullptr) {
        std::cerr << "usage: velmora_taken [WINDOW], with DISPLAY set\n";
        return 2;
    }
    velmora::tests::XTurn turn(display);
    const bool taken =
        turn.managerTook(limitMs) &&
        (count < 2 ||
         turn.programTook(static_cast<xcb_window_t>(std::strtoul(values[1], nullptr, 0)), limitMs));
    return taken ? 0 : 1;
}
