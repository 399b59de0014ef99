#include "playback/check_SoundDriver_Form.h"

#include "base/run_time_error.h"
#include "platform/media.h"
#include "ui/formSet.h"
#include "velmora.h"

namespace velmora {

check_SoundDriver_Form::check_SoundDriver_Form(Velmora &app)
    : check_SoundDriver_Form_Design(app.platform().windows), app_(app) {}

void check_SoundDriver_Form::load() {
    passOver([this] { app_.formSet().set_ColourKey(*this); });
    app_.formSet().make_Draggable(*this, on());
    app_.formSet().make_Draggable(*this, title.on());
    app_.formSet().make_Draggable(*this, title_ICO.on());
    close.on().Click = [this] { close_Click(); };
    on().QueryUnload = [this](bool &cancel) {
        cancel = true;
        close_Click();
    };
}

std::int16_t check_SoundDriver_Form::get_CheckResult() {
    deviceCount_ = app_.platform().waveOut.waveOutGetNumDevs();
    return deviceCount_ >= 1 ? -1 : 0;
}

void check_SoundDriver_Form::close_Click() { hide(); }

} // namespace velmora
