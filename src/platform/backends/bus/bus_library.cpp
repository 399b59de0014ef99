#include "platform/backends/bus/bus_library.h"

#include <dlfcn.h>

namespace velmora::platform::bus {

namespace {

template <typename Function> bool find(void *library, const char *name, Function *&function) {
    function = reinterpret_cast<Function *>(dlsym(library, name));
    return function != nullptr;
}

} // namespace

bool BusLibrary::findAll(void *library) {
    return find(library, "sd_bus_open_user", openUser) &&
           find(library, "sd_bus_close_unref", closeUnref) &&
           find(library, "sd_bus_is_open", isOpen) && find(library, "sd_bus_get_fd", getFd) &&
           find(library, "sd_bus_get_events", getEvents) &&
           find(library, "sd_bus_get_n_queued_write", queuedWrites) &&
           find(library, "sd_bus_process", process) &&
           find(library, "sd_bus_add_object_vtable", addObjectVtable) &&
           find(library, "sd_bus_request_name_async", requestNameAsync) &&
           find(library, "sd_bus_release_name_async", releaseNameAsync) &&
           find(library, "sd_bus_match_signal_async", matchSignalAsync) &&
           find(library, "sd_bus_add_match_async", addMatchAsync) &&
           find(library, "sd_bus_emit_properties_changed_strv", emitPropertiesChanged) &&
           find(library, "sd_bus_emit_signal", emitSignal) &&
           find(library, "sd_bus_call_async", callAsync) && find(library, "sd_bus_call", call) &&
           find(library, "sd_bus_wait", wait) && find(library, "sd_bus_error_free", errorFree) &&
           find(library, "sd_bus_slot_unref", slotUnref) &&
           find(library, "sd_bus_reply_method_return", replyReturn) &&
           find(library, "sd_bus_error_set", errorSet) &&
           find(library, "sd_bus_message_new_method_call", newMethodCall) &&
           find(library, "sd_bus_message_set_auto_start", setAutoStart) &&
           find(library, "sd_bus_message_unref", messageUnref) &&
           find(library, "sd_bus_message_is_method_error", isMethodError) &&
           find(library, "sd_bus_message_append", append) &&
           find(library, "sd_bus_message_append_strv", appendStrv) &&
           find(library, "sd_bus_message_open_container", openContainer) &&
           find(library, "sd_bus_message_close_container", closeContainer) &&
           find(library, "sd_bus_message_read", read) &&
           find(library, "sd_bus_message_enter_container", enterContainer) &&
           find(library, "sd_bus_message_exit_container", exitContainer) &&
           find(library, "sd_bus_message_skip", skip) &&
           find(library, "sd_bus_object_vtable_format", vtableFormat);
}

std::shared_ptr<const BusLibrary> BusLibrary::load() {
    // Systems without systemd have the same functions in another library.
    for (const char *name : {"libsystemd.so.0", "libelogind.so.0"}) {
        void *library = dlopen(name, RTLD_LAZY | RTLD_LOCAL);
        std::shared_ptr<BusLibrary> result(new BusLibrary);
        if (library != nullptr && result->findAll(library))
            return result;
    }
    return nullptr;
}

} // namespace velmora::platform::bus
