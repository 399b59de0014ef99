#pragma once

// An operation on the list is at work from here to the end of the block: the buttons, keys and
// menus of `Main` and the list's own menu are still, so that nothing of them reaches into it. An
// operation inside another one leaves them still when it ends.

namespace velmora {

class Velmora;

class ListWork {
public:
    explicit ListWork(Velmora &app);
    ~ListWork();
    ListWork(const ListWork &) = delete;
    ListWork &operator=(const ListWork &) = delete;

    // Whether one is at work. The play button of `Main` tells: nothing else ever disables it.
    static bool isGoingOn(Velmora &app);

private:
    Velmora &app_;
    bool isOutermost_;
};

} // namespace velmora
