#pragma once

// The border of event handlers: an error that reaches it ends that handler and nothing else.

#include "base/run_time_error.h"

#include <utility>

namespace velmora::forms {

// Calls a handler if there is one. The handler is copied first, because it may end the life of the
// control that holds it.
template <typename Handler, typename... Arguments>
void raiseEvent(const Handler &handler, Arguments &&...arguments) {
    if (!handler)
        return;
    const Handler kept = handler;
    try {
        kept(std::forward<Arguments>(arguments)...);
    } catch (const RunTimeError &error) {
        noteSwallowed(error); // an event has no caller that could be told
    }
}

} // namespace velmora::forms
