#pragma once

// The functions of libmpv that the device uses.

#include "base/loaded_library.h"

#include <mpv/client.h>

namespace velmora::platform::picture {

#define VELMORA_MPV_FUNCTIONS(F)                                                                   \
    F(mpv_create)                                                                                  \
    F(mpv_initialize)                                                                              \
    F(mpv_terminate_destroy)                                                                       \
    F(mpv_set_option_string)                                                                       \
    F(mpv_command_async)                                                                           \
    F(mpv_set_property_async)                                                                      \
    F(mpv_get_property_async)                                                                      \
    F(mpv_observe_property)                                                                        \
    F(mpv_set_wakeup_callback)                                                                     \
    F(mpv_wait_event)                                                                              \
    F(mpv_request_event)                                                                           \
    F(mpv_hook_add)                                                                                \
    F(mpv_hook_continue)

struct MpvLibrary {
    explicit MpvLibrary(const LoadedLibrary &library) { VELMORA_MPV_FUNCTIONS(VELMORA_TABLE_BIND) }
    // Null where the library is not installed or too old.
    static std::shared_ptr<const MpvLibrary> load() {
        return loadedTable<MpvLibrary>("libmpv.so.2");
    }

    bool complete = true;
    VELMORA_MPV_FUNCTIONS(VELMORA_TABLE_MEMBER)
};

} // namespace velmora::platform::picture
