#pragma once

// The entries of an object's interface, as the library reads them.

#include "platform/backends/bus/bus_library.h"

#include <vector>

namespace velmora::platform::bus {

class ObjectTable {
public:
    explicit ObjectTable(const BusLibrary &library);

    // `names` holds the names of the arguments and of the results, each ended by a NUL.
    void method(const char *name, const char *arguments, const char *names,
                sd_bus_message_handler_t handler, const char *results = "");
    void signal(const char *name, const char *arguments, const char *names);
    void constant(const char *name, const char *type, sd_bus_property_get_t get);
    // One whose changes are told, and one whose changes are not.
    void property(const char *name, const char *type, sd_bus_property_get_t get,
                  sd_bus_property_set_t set = nullptr);
    void silentProperty(const char *name, const char *type, sd_bus_property_get_t get);

    // To be called once; the table must not change from then on and outlive the object.
    const sd_bus_vtable *entries();

private:
    void add(const char *name, const char *type, sd_bus_property_get_t get,
             sd_bus_property_set_t set, std::uint64_t flags);

    std::vector<sd_bus_vtable> entries_;
};

} // namespace velmora::platform::bus
