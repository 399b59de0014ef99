#include "platform/backends/bus/status_menu.h"

#include "platform/backends/bus/metadata.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace velmora::platform::bus {

namespace {

constexpr const char *menuInterface = "com.canonical.dbusmenu";
constexpr std::int32_t rootNumber = 0;
// What one call may ask for: more than any menu has.
constexpr std::size_t mostAsked = 1024;

const StatusEntry *find(const std::vector<StatusEntry> &entries, std::int32_t number) {
    for (const StatusEntry &entry : entries) {
        if (entry.number == number)
            return &entry;
        if (const StatusEntry *found = find(entry.entries, number))
            return found;
    }
    return nullptr;
}

// The names of properties that were asked for; all of them where none was.
using Asked = std::vector<std::string>;

bool isAsked(const Asked &asked, const char *name) {
    return asked.empty() || std::find(asked.begin(), asked.end(), name) != asked.end();
}

// Writes what differs from what the convention takes for granted; negative on failure.
class EntryWriter {
public:
    EntryWriter(const BusLibrary &library, sd_bus_message *reply, const Asked &asked)
        : library_(library), reply_(reply), asked_(asked) {}

    int properties(const StatusEntry &entry) {
        int done = library_.openContainer(reply_, 'a', "{sv}");
        const auto add = [&](const char *name, const char *type, auto value) {
            if (done >= 0 && isAsked(asked_, name))
                done = library_.append(reply_, "{sv}", name, type, value);
        };
        if (entry.separator) {
            add("type", "s", "separator");
        } else if (entry.number != rootNumber) {
            const std::string label = menuLabel(entry.caption);
            add("label", "s", label.c_str());
        }
        if (!entry.enabled)
            add("enabled", "b", 0);
        if (entry.checked) {
            add("toggle-type", "s", "checkmark");
            add("toggle-state", "i", 1);
        }
        if (!entry.entries.empty())
            add("children-display", "s", "submenu");
        return done < 0 ? done : library_.closeContainer(reply_);
    }

    // An entry with those behind it, down to so many levels; all for a negative depth.
    int layout(const StatusEntry &entry, std::int32_t depth) {
        int done = library_.openContainer(reply_, 'r', "ia{sv}av");
        if (done >= 0)
            done = library_.append(reply_, "i", entry.number);
        if (done >= 0)
            done = properties(entry);
        if (done >= 0)
            done = library_.openContainer(reply_, 'a', "v");
        if (depth != 0) {
            for (const StatusEntry &inner : entry.entries) {
                if (done >= 0)
                    done = library_.openContainer(reply_, 'v', "(ia{sv}av)");
                if (done >= 0)
                    done = layout(inner, depth - 1);
                if (done >= 0)
                    done = library_.closeContainer(reply_);
            }
        }
        if (done >= 0)
            done = library_.closeContainer(reply_);
        return done < 0 ? done : library_.closeContainer(reply_);
    }

private:
    const BusLibrary &library_;
    sd_bus_message *reply_;
    const Asked &asked_;
};

int readNames(const BusLibrary &library, sd_bus_message *message, Asked &names) {
    int read = library.enterContainer(message, 'a', "s");
    const char *name = nullptr;
    while (read >= 0 && (read = library.read(message, "s", &name)) > 0)
        if (names.size() < mostAsked)
            names.emplace_back(name);
    return read < 0 ? read : library.exitContainer(message);
}

int readNumbers(const BusLibrary &library, sd_bus_message *message,
                std::vector<std::int32_t> &numbers) {
    int read = library.enterContainer(message, 'a', "i");
    std::int32_t number = 0;
    while (read >= 0 && (read = library.read(message, "i", &number)) > 0)
        if (numbers.size() < mostAsked)
            numbers.push_back(number);
    return read < 0 ? read : library.exitContainer(message);
}

int appendNumbers(const BusLibrary &library, sd_bus_message *reply,
                  const std::vector<std::int32_t> &numbers) {
    return library.appendArray(reply, 'i', numbers.data(), numbers.size() * sizeof(std::int32_t));
}

// Sends what `fill` writes as the answer.
template <typename Fill> int answer(const BusLibrary &library, sd_bus_message *call, Fill fill) {
    sd_bus_message *reply = nullptr;
    int done = library.newMethodReturn(call, &reply);
    if (done >= 0)
        done = fill(reply);
    if (done >= 0)
        done = library.send(nullptr, reply, nullptr);
    library.messageUnref(reply);
    return done < 0 ? done : 1;
}

} // namespace

struct StatusMenu::Calls {
    static StatusMenu &of(void *object) { return *static_cast<StatusMenu *>(object); }
    static const BusLibrary &library(void *object) { return of(object).connection_.library(); }
    static StatusEntry whole(void *object) {
        StatusEntry root;
        root.number = rootNumber;
        root.entries = of(object).entries_;
        return root;
    }
    static int noSuchEntry(void *object, sd_bus_error *error) {
        return library(object).errorSet(error, SD_BUS_ERROR_INVALID_ARGS,
                                        "There is no such entry.");
    }

    static int getLayout(sd_bus_message *message, void *object, sd_bus_error *error) {
        std::int32_t parent = 0;
        std::int32_t depth = 0;
        Asked asked;
        if (const int read = library(object).read(message, "ii", &parent, &depth); read < 0)
            return read;
        if (const int read = readNames(library(object), message, asked); read < 0)
            return read;
        of(object).refresh();
        const StatusEntry root = whole(object);
        const StatusEntry *entry = parent == rootNumber ? &root : find(root.entries, parent);
        if (entry == nullptr)
            return noSuchEntry(object, error);
        return answer(library(object), message, [&](sd_bus_message *reply) {
            const int done = library(object).append(reply, "u", of(object).revision_);
            return done < 0 ? done
                            : EntryWriter(library(object), reply, asked).layout(*entry, depth);
        });
    }

    static int getGroupProperties(sd_bus_message *message, void *object, sd_bus_error * /*error*/) {
        std::vector<std::int32_t> numbers;
        Asked asked;
        if (const int read = readNumbers(library(object), message, numbers); read < 0)
            return read;
        if (const int read = readNames(library(object), message, asked); read < 0)
            return read;
        of(object).refresh();
        const StatusEntry root = whole(object);
        if (numbers.empty())
            addNumbers(root, numbers);
        return answer(library(object), message, [&](sd_bus_message *reply) {
            EntryWriter writer(library(object), reply, asked);
            int done = library(object).openContainer(reply, 'a', "(ia{sv})");
            for (const std::int32_t number : numbers) {
                const StatusEntry *entry =
                    number == rootNumber ? &root : find(root.entries, number);
                if (entry == nullptr || done < 0)
                    continue;
                done = library(object).openContainer(reply, 'r', "ia{sv}");
                if (done >= 0)
                    done = library(object).append(reply, "i", number);
                if (done >= 0)
                    done = writer.properties(*entry);
                if (done >= 0)
                    done = library(object).closeContainer(reply);
            }
            return done < 0 ? done : library(object).closeContainer(reply);
        });
    }

    static void addNumbers(const StatusEntry &entry, std::vector<std::int32_t> &numbers) {
        numbers.push_back(entry.number);
        for (const StatusEntry &inner : entry.entries)
            addNumbers(inner, numbers);
    }

    static int getProperty(sd_bus_message *message, void *object, sd_bus_error *error) {
        std::int32_t number = 0;
        const char *name = nullptr;
        if (const int read = library(object).read(message, "is", &number, &name); read < 0)
            return read;
        of(object).refresh();
        const StatusEntry *entry = find(of(object).entries_, number);
        if (entry == nullptr)
            return noSuchEntry(object, error);
        const auto reply = [&](const char *type, auto value) {
            return library(object).replyReturn(message, "v", type, value);
        };
        const std::string label = menuLabel(entry->caption);
        if (std::strcmp(name, "label") == 0)
            return reply("s", label.c_str());
        if (std::strcmp(name, "enabled") == 0)
            return reply("b", entry->enabled ? 1 : 0);
        if (std::strcmp(name, "visible") == 0)
            return reply("b", 1);
        if (std::strcmp(name, "type") == 0)
            return reply("s", entry->separator ? "separator" : "standard");
        if (std::strcmp(name, "toggle-type") == 0)
            return reply("s", entry->checked ? "checkmark" : "");
        if (std::strcmp(name, "toggle-state") == 0)
            return reply("i", entry->checked ? 1 : 0);
        if (std::strcmp(name, "children-display") == 0)
            return reply("s", entry->entries.empty() ? "" : "submenu");
        return library(object).errorSet(error, SD_BUS_ERROR_INVALID_ARGS,
                                        "There is no such property.");
    }

    // False for an entry that is not there. What else happens to entries is the panel's own matter.
    static bool take(void *object, std::int32_t number, const char *what) {
        if (number != rootNumber && find(of(object).entries_, number) == nullptr)
            return false;
        if (std::strcmp(what, "clicked") == 0)
            of(object).connection_.later([&self = of(object), number] {
                if (self.owner_ != nullptr)
                    self.owner_->chosen(number);
            });
        return true;
    }

    static int event(sd_bus_message *message, void *object, sd_bus_error *error) {
        std::int32_t number = 0;
        const char *what = nullptr;
        if (const int read = library(object).read(message, "is", &number, &what); read < 0)
            return read;
        if (!take(object, number, what))
            return noSuchEntry(object, error);
        return library(object).replyReturn(message, "");
    }

    static int eventGroup(sd_bus_message *message, void *object, sd_bus_error * /*error*/) {
        std::vector<std::int32_t> unknown;
        int read = library(object).enterContainer(message, 'a', "(isvu)");
        while (read >= 0 && (read = library(object).enterContainer(message, 'r', "isvu")) > 0) {
            std::int32_t number = 0;
            const char *what = nullptr;
            read = library(object).read(message, "is", &number, &what);
            if (read >= 0 && !take(object, number, what))
                unknown.push_back(number);
            if (read >= 0)
                read = library(object).skip(message, "vu");
            if (read >= 0)
                read = library(object).exitContainer(message);
        }
        if (read < 0)
            return read;
        return answer(library(object), message, [&](sd_bus_message *reply) {
            return appendNumbers(library(object), reply, unknown);
        });
    }

    static int aboutToShow(sd_bus_message *message, void *object, sd_bus_error * /*error*/) {
        return library(object).replyReturn(message, "b", of(object).refresh() ? 1 : 0);
    }

    static int aboutToShowGroup(sd_bus_message *message, void *object, sd_bus_error * /*error*/) {
        std::vector<std::int32_t> numbers;
        if (const int read = readNumbers(library(object), message, numbers); read < 0)
            return read;
        const bool changed = of(object).refresh();
        std::vector<std::int32_t> unknown;
        std::vector<std::int32_t> known;
        for (const std::int32_t number : numbers)
            (number == rootNumber || find(of(object).entries_, number) != nullptr ? known : unknown)
                .push_back(number);
        if (!changed)
            known.clear();
        return answer(library(object), message, [&](sd_bus_message *reply) {
            const int done = appendNumbers(library(object), reply, known);
            return done < 0 ? done : appendNumbers(library(object), reply, unknown);
        });
    }

    static int version(sd_bus *, const char *, const char *, const char *, sd_bus_message *reply,
                       void *object, sd_bus_error *) {
        constexpr std::uint32_t ofTheConvention = 3;
        return library(object).append(reply, "u", ofTheConvention);
    }
    static int direction(sd_bus *, const char *, const char *, const char *, sd_bus_message *reply,
                         void *object, sd_bus_error *) {
        return library(object).append(reply, "s", "ltr");
    }
    static int status(sd_bus *, const char *, const char *, const char *, sd_bus_message *reply,
                      void *object, sd_bus_error *) {
        return library(object).append(reply, "s", "normal");
    }
    static int themePath(sd_bus *, const char *, const char *, const char *, sd_bus_message *reply,
                         void *object, sd_bus_error *) {
        return library(object).append(reply, "as", 0);
    }
};

std::string menuLabel(std::u16string_view caption) {
    std::string label;
    const std::string text = busText(caption);
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '_') {
            label += "__";
        } else if (text[at] != '&') {
            label += text[at];
        } else if (at + 1 < text.size() && text[at + 1] == '&') {
            label += '&';
            ++at;
        } else if (at + 1 < text.size()) {
            label += '_';
        }
    }
    return label;
}

void StatusMenu::setOwner(StatusItemOwner *owner) {
    owner_ = owner;
    entries_ = owner != nullptr ? owner->menu() : std::vector<StatusEntry>();
}

// Tells whoever has read the menu; the one who is asking learns it by the answer.
bool StatusMenu::refresh() {
    std::vector<StatusEntry> now = owner_ != nullptr ? owner_->menu() : std::vector<StatusEntry>();
    if (now == entries_)
        return false;
    entries_ = std::move(now);
    ++revision_;
    if (connection_.isOpen() && !connection_.isStuck())
        connection_.library().emitSignal(connection_.bus(), statusMenuPath, menuInterface,
                                         "LayoutUpdated", "ui", revision_, rootNumber);
    return true;
}

sd_bus_slot *StatusMenu::attach() {
    const BusLibrary &library = connection_.library();
    if (table_ == nullptr) {
        using C = Calls;
        table_ = std::make_unique<ObjectTable>(library);
        table_->method("GetLayout", "iias",
                       "parentId\0recursionDepth\0propertyNames\0revision\0layout\0", C::getLayout,
                       "u(ia{sv}av)");
        table_->method("GetGroupProperties", "aias", "ids\0propertyNames\0properties\0",
                       C::getGroupProperties, "a(ia{sv})");
        table_->method("GetProperty", "is", "id\0name\0value\0", C::getProperty, "v");
        table_->method("Event", "isvu", "id\0eventId\0data\0timestamp\0", C::event);
        table_->method("EventGroup", "a(isvu)", "events\0idErrors\0", C::eventGroup, "ai");
        table_->method("AboutToShow", "i", "id\0needUpdate\0", C::aboutToShow, "b");
        table_->method("AboutToShowGroup", "ai", "ids\0updatesNeeded\0idErrors\0",
                       C::aboutToShowGroup, "aiai");
        table_->signal("ItemsPropertiesUpdated", "a(ia{sv})a(ias)", "updatedProps\0removedProps\0");
        table_->signal("LayoutUpdated", "ui", "revision\0parent\0");
        table_->signal("ItemActivationRequested", "iu", "id\0timestamp\0");
        table_->constant("Version", "u", C::version);
        table_->constant("TextDirection", "s", C::direction);
        table_->constant("Status", "s", C::status);
        table_->constant("IconThemePath", "as", C::themePath);
        members_ = table_->entries();
    }
    sd_bus_slot *slot = nullptr;
    library.addObjectVtable(connection_.bus(), &slot, statusMenuPath, menuInterface, members_,
                            this);
    return slot;
}

} // namespace velmora::platform::bus
