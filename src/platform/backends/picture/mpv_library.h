#pragma once

// The functions of libmpv that the device uses, under their own names and types.

#include "platform/backends/picture/shared_library.h"

#include <memory>
#include <mpv/client.h>

namespace velmora::platform::picture {

struct MpvLibrary {
    // Null where the library is not installed or too old.
    static std::shared_ptr<const MpvLibrary> load();

    decltype(mpv_create) *create = nullptr;
    decltype(mpv_initialize) *initialize = nullptr;
    decltype(mpv_terminate_destroy) *terminateDestroy = nullptr;
    decltype(mpv_set_option_string) *setOptionString = nullptr;
    decltype(mpv_command_async) *commandAsync = nullptr;
    decltype(mpv_set_property_async) *setPropertyAsync = nullptr;
    decltype(mpv_get_property_async) *getPropertyAsync = nullptr;
    decltype(mpv_observe_property) *observeProperty = nullptr;
    decltype(mpv_set_wakeup_callback) *setWakeupCallback = nullptr;
    decltype(mpv_wait_event) *waitEvent = nullptr;
    decltype(mpv_request_event) *requestEvent = nullptr;
    decltype(mpv_hook_add) *hookAdd = nullptr;
    decltype(mpv_hook_continue) *hookContinue = nullptr;

private:
    MpvLibrary();
    bool findAll();

    SharedLibrary library_;
};

} // namespace velmora::platform::picture
