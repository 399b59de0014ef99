#pragma once

// Whether the machine has a sound output device, and what the first one can do.

#include "playback/check_SoundDriver_Form.design.h"

#include <cstdint>

namespace velmora {

class Velmora;

class check_SoundDriver_Form : public check_SoundDriver_Form_Design {
public:
    explicit check_SoundDriver_Form(Velmora &app);
    void load();

    // -1 when there is at least one output device, else 0.
    std::int16_t get_CheckResult();

    // Lists what the first device can do in the text box. Without a device, or when it does not
    // answer, the text box stays as it is and nothing is said.
    void check_Click();

    void close_Click();

private:
    Velmora &app_;
    std::uint32_t deviceCount_ = 0;
};

} // namespace velmora
