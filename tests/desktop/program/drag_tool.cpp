// velmora_drag WINDOW X Y [TYPE]
//
// Drags what standard input holds onto a place of the screen in a window, as data of the type
// (files if none is named). Prints the action that the target chose; the status is 1 when it
// refused.

#include "tests/desktop/x_drag.h"

#include <cstdlib>
#include <iostream>
#include <iterator>

int main(int count, char **values) {
    const char *display = std::getenv("DISPLAY");
    if (count < 4 || display == nullptr) {
        std::cerr << "usage: velmora_drag WINDOW X Y [TYPE] < data, with DISPLAY set\n";
        return 2;
    }
    const std::string data{std::istreambuf_iterator<char>(std::cin), {}};
    velmora::tests::DragSource source(display);
    const bool taken = source.drop(static_cast<xcb_window_t>(std::strtoul(values[1], nullptr, 0)),
                                   std::atoi(values[2]), std::atoi(values[3]),
                                   count > 4 ? values[4] : "text/uri-list", data);
    std::cout << source.action() << "\n";
    return taken ? 0 : 1;
}
