#include "platform/backends/bus/bus_library.h"

namespace velmora::platform::bus {

bool BusLibrary::findAll(const LoadedLibrary &library) {
    return library.bind(openUser, "sd_bus_open_user") &&
           library.bind(closeUnref, "sd_bus_close_unref") &&
           library.bind(isOpen, "sd_bus_is_open") && library.bind(isReady, "sd_bus_is_ready") &&
           library.bind(getFd, "sd_bus_get_fd") && library.bind(getEvents, "sd_bus_get_events") &&
           library.bind(queuedWrites, "sd_bus_get_n_queued_write") &&
           library.bind(process, "sd_bus_process") &&
           library.bind(addObjectVtable, "sd_bus_add_object_vtable") &&
           library.bind(requestNameAsync, "sd_bus_request_name_async") &&
           library.bind(releaseNameAsync, "sd_bus_release_name_async") &&
           library.bind(matchSignalAsync, "sd_bus_match_signal_async") &&
           library.bind(addMatchAsync, "sd_bus_add_match_async") &&
           library.bind(emitPropertiesChanged, "sd_bus_emit_properties_changed_strv") &&
           library.bind(emitSignal, "sd_bus_emit_signal") &&
           library.bind(callAsync, "sd_bus_call_async") && library.bind(call, "sd_bus_call") &&
           library.bind(wait, "sd_bus_wait") && library.bind(errorFree, "sd_bus_error_free") &&
           library.bind(slotUnref, "sd_bus_slot_unref") &&
           library.bind(replyReturn, "sd_bus_reply_method_return") &&
           library.bind(errorSet, "sd_bus_error_set") &&
           library.bind(newMethodCall, "sd_bus_message_new_method_call") &&
           library.bind(newMethodReturn, "sd_bus_message_new_method_return") &&
           library.bind(send, "sd_bus_send") &&
           library.bind(setAutoStart, "sd_bus_message_set_auto_start") &&
           library.bind(messageUnref, "sd_bus_message_unref") &&
           library.bind(isMethodError, "sd_bus_message_is_method_error") &&
           library.bind(append, "sd_bus_message_append") &&
           library.bind(appendStrv, "sd_bus_message_append_strv") &&
           library.bind(appendArray, "sd_bus_message_append_array") &&
           library.bind(getSender, "sd_bus_message_get_sender") &&
           library.bind(getPath, "sd_bus_message_get_path") &&
           library.bind(getDestination, "sd_bus_message_get_destination") &&
           library.bind(openContainer, "sd_bus_message_open_container") &&
           library.bind(closeContainer, "sd_bus_message_close_container") &&
           library.bind(read, "sd_bus_message_read") &&
           library.bind(enterContainer, "sd_bus_message_enter_container") &&
           library.bind(exitContainer, "sd_bus_message_exit_container") &&
           library.bind(skip, "sd_bus_message_skip") &&
           library.bind(vtableFormat, "sd_bus_object_vtable_format");
}

std::shared_ptr<const BusLibrary> BusLibrary::load() {
    // Systems without systemd have the same functions in another library.
    for (const char *name : {"libsystemd.so.0", "libelogind.so.0"}) {
        std::shared_ptr<BusLibrary> result(new BusLibrary);
        if (result->findAll(LoadedLibrary(name)))
            return result;
    }
    return nullptr;
}

} // namespace velmora::platform::bus
