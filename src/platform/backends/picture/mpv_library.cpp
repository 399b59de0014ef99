#include "platform/backends/picture/mpv_library.h"

namespace velmora::platform::picture {

MpvLibrary::MpvLibrary() : library_("libmpv.so.2") {}

bool MpvLibrary::findAll() {
    return library_.find("mpv_create", create) && library_.find("mpv_initialize", initialize) &&
           library_.find("mpv_terminate_destroy", terminateDestroy) &&
           library_.find("mpv_set_option_string", setOptionString) &&
           library_.find("mpv_command_async", commandAsync) &&
           library_.find("mpv_set_property_async", setPropertyAsync) &&
           library_.find("mpv_get_property_async", getPropertyAsync) &&
           library_.find("mpv_observe_property", observeProperty) &&
           library_.find("mpv_set_wakeup_callback", setWakeupCallback) &&
           library_.find("mpv_wait_event", waitEvent) &&
           library_.find("mpv_request_event", requestEvent) &&
           library_.find("mpv_hook_add", hookAdd) &&
           library_.find("mpv_hook_continue", hookContinue);
}

std::shared_ptr<const MpvLibrary> MpvLibrary::load() {
    std::shared_ptr<MpvLibrary> library(new MpvLibrary);
    return library->findAll() ? library : nullptr;
}

} // namespace velmora::platform::picture
