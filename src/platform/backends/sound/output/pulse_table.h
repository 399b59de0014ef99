#pragma once

// The functions of libpulse that are used, filled when sound is first wanted.

#include "base/loaded_library.h"

#include <pulse/pulseaudio.h>

namespace velmora::platform::sound {

#define VELMORA_PULSE_FUNCTIONS(F)                                                                 \
    F(pa_mainloop_new)                                                                             \
    F(pa_mainloop_free)                                                                            \
    F(pa_mainloop_get_api)                                                                         \
    F(pa_mainloop_prepare)                                                                         \
    F(pa_mainloop_poll)                                                                            \
    F(pa_mainloop_dispatch)                                                                        \
    F(pa_context_new_with_proplist)                                                                \
    F(pa_context_set_state_callback)                                                               \
    F(pa_context_connect)                                                                          \
    F(pa_context_disconnect)                                                                       \
    F(pa_context_unref)                                                                            \
    F(pa_context_get_state)                                                                        \
    F(pa_context_get_server_info)                                                                  \
    F(pa_context_get_sink_info_list)                                                               \
    F(pa_context_get_sink_info_by_index)                                                           \
    F(pa_proplist_new)                                                                             \
    F(pa_proplist_sets)                                                                            \
    F(pa_proplist_gets)                                                                            \
    F(pa_proplist_free)                                                                            \
    F(pa_stream_set_event_callback)                                                                \
    F(pa_stream_new_with_proplist)                                                                 \
    F(pa_stream_set_state_callback)                                                                \
    F(pa_stream_set_started_callback)                                                              \
    F(pa_stream_connect_playback)                                                                  \
    F(pa_stream_disconnect)                                                                        \
    F(pa_stream_unref)                                                                             \
    F(pa_stream_get_state)                                                                         \
    F(pa_stream_begin_write)                                                                       \
    F(pa_stream_write)                                                                             \
    F(pa_stream_cork)                                                                              \
    F(pa_stream_flush)                                                                             \
    F(pa_stream_set_buffer_attr)                                                                   \
    F(pa_stream_get_buffer_attr)                                                                   \
    F(pa_stream_get_device_index)                                                                  \
    F(pa_stream_update_timing_info)                                                                \
    F(pa_stream_get_timing_info)                                                                   \
    F(pa_operation_cancel)                                                                         \
    F(pa_operation_get_state)                                                                      \
    F(pa_operation_unref)

struct PulseTable {
    explicit PulseTable(const LoadedLibrary &library);
    bool complete = true;
    VELMORA_PULSE_FUNCTIONS(VELMORA_TABLE_MEMBER)
};

} // namespace velmora::platform::sound
