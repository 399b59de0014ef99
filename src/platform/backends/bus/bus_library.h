#pragma once

// The functions of sd-bus that the desktop's back-end uses, under their own names and types.

#include "base/loaded_library.h"

#include <systemd/sd-bus.h>

#include <memory>

namespace velmora::platform::bus {

// Loads once and stays for the life of the process.
struct BusLibrary {
    // Null where the library is not installed or too old.
    static std::shared_ptr<const BusLibrary> load();

    decltype(sd_bus_open_user) *openUser = nullptr;
    decltype(sd_bus_close_unref) *closeUnref = nullptr;
    decltype(sd_bus_is_open) *isOpen = nullptr;
    decltype(sd_bus_is_ready) *isReady = nullptr;
    decltype(sd_bus_get_fd) *getFd = nullptr;
    decltype(sd_bus_get_events) *getEvents = nullptr;
    decltype(sd_bus_get_n_queued_write) *queuedWrites = nullptr;
    decltype(sd_bus_process) *process = nullptr;
    decltype(sd_bus_add_object_vtable) *addObjectVtable = nullptr;
    decltype(sd_bus_request_name_async) *requestNameAsync = nullptr;
    decltype(sd_bus_release_name_async) *releaseNameAsync = nullptr;
    decltype(sd_bus_match_signal_async) *matchSignalAsync = nullptr;
    decltype(sd_bus_add_match_async) *addMatchAsync = nullptr;
    decltype(sd_bus_emit_properties_changed_strv) *emitPropertiesChanged = nullptr;
    decltype(sd_bus_emit_signal) *emitSignal = nullptr;
    decltype(sd_bus_call_async) *callAsync = nullptr;
    decltype(sd_bus_call) *call = nullptr;
    decltype(sd_bus_wait) *wait = nullptr;
    decltype(sd_bus_error_free) *errorFree = nullptr;
    decltype(sd_bus_slot_unref) *slotUnref = nullptr;
    decltype(sd_bus_reply_method_return) *replyReturn = nullptr;
    decltype(sd_bus_error_set) *errorSet = nullptr;
    decltype(sd_bus_message_new_method_call) *newMethodCall = nullptr;
    decltype(sd_bus_message_new_method_return) *newMethodReturn = nullptr;
    decltype(sd_bus_send) *send = nullptr;
    decltype(sd_bus_message_set_auto_start) *setAutoStart = nullptr;
    decltype(sd_bus_message_unref) *messageUnref = nullptr;
    decltype(sd_bus_message_is_method_error) *isMethodError = nullptr;
    decltype(sd_bus_message_append) *append = nullptr;
    decltype(sd_bus_message_append_strv) *appendStrv = nullptr;
    decltype(sd_bus_message_append_array) *appendArray = nullptr;
    decltype(sd_bus_message_get_sender) *getSender = nullptr;
    decltype(sd_bus_message_get_path) *getPath = nullptr;
    decltype(sd_bus_message_get_destination) *getDestination = nullptr;
    decltype(sd_bus_message_open_container) *openContainer = nullptr;
    decltype(sd_bus_message_close_container) *closeContainer = nullptr;
    decltype(sd_bus_message_read) *read = nullptr;
    decltype(sd_bus_message_enter_container) *enterContainer = nullptr;
    decltype(sd_bus_message_exit_container) *exitContainer = nullptr;
    decltype(sd_bus_message_skip) *skip = nullptr;
    const unsigned *vtableFormat = nullptr; // what the first entry of a table points at

private:
    BusLibrary() = default;
    bool findAll(const LoadedLibrary &library);
};

} // namespace velmora::platform::bus
