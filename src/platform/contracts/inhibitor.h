#pragma once

// Keeping the machine awake.

namespace velmora::platform {

// What the machine must not do by itself. A person who sends it to sleep is always obeyed.
struct Awake {
    bool sound = false;   // it does not suspend for want of input
    bool picture = false; // nor does the screen go dark
    friend bool operator==(const Awake &, const Awake &) = default;
};

class Inhibitor {
public:
    virtual ~Inhibitor() = default;
    // What holds from now on; the end of the process lets all of it go. Where nobody can be asked,
    // nothing happens.
    virtual void keep(const Awake &awake) noexcept = 0;
};

} // namespace velmora::platform
