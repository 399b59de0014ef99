#include "platform/backends/bus/object_table.h"

namespace velmora::platform::bus {

ObjectTable::ObjectTable(const BusLibrary &library) {
    sd_bus_vtable start = {};
    start.type = _SD_BUS_VTABLE_START;
    start.x.start.element_size = sizeof(sd_bus_vtable);
    start.x.start.features = _SD_BUS_VTABLE_PARAM_NAMES;
    start.x.start.vtable_format_reference = library.vtableFormat;
    entries_.push_back(start);
}

void ObjectTable::method(const char *name, const char *arguments, const char *names,
                         sd_bus_message_handler_t handler, const char *results) {
    sd_bus_vtable entry = {};
    entry.type = _SD_BUS_VTABLE_METHOD;
    entry.flags = SD_BUS_VTABLE_UNPRIVILEGED;
    entry.x.method.member = name;
    entry.x.method.signature = arguments;
    entry.x.method.result = results;
    entry.x.method.handler = handler;
    entry.x.method.names = names;
    entries_.push_back(entry);
}

void ObjectTable::signal(const char *name, const char *arguments, const char *names) {
    sd_bus_vtable entry = {};
    entry.type = _SD_BUS_VTABLE_SIGNAL;
    entry.x.signal.member = name;
    entry.x.signal.signature = arguments;
    entry.x.signal.names = names;
    entries_.push_back(entry);
}

void ObjectTable::add(const char *name, const char *type, sd_bus_property_get_t get,
                      sd_bus_property_set_t set, std::uint64_t flags) {
    sd_bus_vtable entry = {};
    entry.type = set != nullptr ? _SD_BUS_VTABLE_WRITABLE_PROPERTY : _SD_BUS_VTABLE_PROPERTY;
    entry.flags = flags;
    if (set != nullptr)
        entry.flags |= SD_BUS_VTABLE_UNPRIVILEGED;
    entry.x.property.member = name;
    entry.x.property.signature = type;
    entry.x.property.get = get;
    entry.x.property.set = set;
    entries_.push_back(entry);
}

void ObjectTable::constant(const char *name, const char *type, sd_bus_property_get_t get) {
    add(name, type, get, nullptr, SD_BUS_VTABLE_PROPERTY_CONST);
}

void ObjectTable::property(const char *name, const char *type, sd_bus_property_get_t get,
                           sd_bus_property_set_t set) {
    add(name, type, get, set, SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE);
}

void ObjectTable::silentProperty(const char *name, const char *type, sd_bus_property_get_t get) {
    add(name, type, get, nullptr, 0);
}

const sd_bus_vtable *ObjectTable::entries() {
    sd_bus_vtable end = {};
    end.type = _SD_BUS_VTABLE_END;
    entries_.push_back(end);
    return entries_.data();
}

} // namespace velmora::platform::bus
