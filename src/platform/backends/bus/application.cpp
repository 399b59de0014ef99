#include "platform/backends/bus/application.h"

#include "platform/backends/bus/opened_files.h"

#include <cstring>
#include <optional>

namespace velmora::platform::bus {

namespace {

struct NamedCommand {
    const char *name;
    RemoteCommand command;
};
constexpr NamedCommand actions[] = {
    {"play", RemoteCommand::Play},
    {"pause", RemoteCommand::Pause},
    {"play-pause", RemoteCommand::PlayPause},
    {"next", RemoteCommand::Next},
    {"previous", RemoteCommand::Previous},
    {"stop", RemoteCommand::Stop},
    {"quit", RemoteCommand::Quit},
};

// Reads an array of addresses; negative on failure.
int readFiles(const BusLibrary &library, sd_bus_message *message,
              std::vector<std::u16string> &paths) {
    int read = library.enterContainer(message, 'a', "s");
    const char *uri = nullptr;
    while (read >= 0 && (read = library.read(message, "s", &uri)) > 0)
        for (std::u16string &path : openedFiles(uri))
            paths.push_back(std::move(path));
    return read < 0 ? read : library.exitContainer(message);
}

} // namespace

struct Application::Calls {
    static Application &of(void *object) { return *static_cast<Application *>(object); }

    static void raise(void *object) {
        of(object).connection_.later(
            [player = of(object).player_] { player->command(RemoteCommand::Raise); });
    }

    static int activate(sd_bus_message *message, void *object, sd_bus_error * /*error*/) {
        raise(object);
        return of(object).connection_.library().replyReturn(message, "");
    }

    static int open(sd_bus_message *message, void *object, sd_bus_error *error) {
        return take(message, object, error, false);
    }

    static int take(sd_bus_message *message, void *object, sd_bus_error *error, bool enqueue) {
        const BusLibrary &library = of(object).connection_.library();
        std::vector<std::u16string> paths;
        if (const int read = readFiles(library, message, paths); read < 0)
            return read;
        if (paths.empty())
            return library.errorSet(error, SD_BUS_ERROR_NOT_SUPPORTED,
                                    "None of these is a file of this machine.");
        if (!enqueue)
            raise(object);
        of(object).connection_.later(
            [player = of(object).player_, paths, enqueue] { player->open(paths, enqueue); });
        return library.replyReturn(message, "");
    }

    static int activateAction(sd_bus_message *message, void *object, sd_bus_error *error) {
        const BusLibrary &library = of(object).connection_.library();
        const char *name = nullptr;
        if (const int read = library.read(message, "s", &name); read < 0)
            return read;
        if (std::strcmp(name, "enqueue") == 0)
            return enqueue(message, object, error);
        for (const NamedCommand &action : actions) {
            if (std::strcmp(name, action.name) != 0)
                continue;
            of(object).connection_.later([player = of(object).player_, command = action.command] {
                player->command(command);
            });
            return library.replyReturn(message, "");
        }
        return library.errorSet(error, SD_BUS_ERROR_INVALID_ARGS, "There is no such action.");
    }

    // Its parameter is the array of addresses.
    static int enqueue(sd_bus_message *message, void *object, sd_bus_error *error) {
        const BusLibrary &library = of(object).connection_.library();
        int read = library.enterContainer(message, 'a', "v");
        if (read > 0)
            read = library.enterContainer(message, 'v', "as");
        if (read <= 0)
            return library.errorSet(error, SD_BUS_ERROR_INVALID_ARGS,
                                    "It takes an array of files.");
        return take(message, object, error, true);
    }
};

void Application::attach() {
    const BusLibrary &library = connection_.library();
    if (table_ == nullptr) {
        table_ = std::make_unique<ObjectTable>(library);
        table_->method("Activate", "a{sv}", "platform_data\0", Calls::activate);
        table_->method("Open", "asa{sv}", "uris\0platform_data\0", Calls::open);
        table_->method("ActivateAction", "sava{sv}", "action_name\0parameter\0platform_data\0",
                       Calls::activateAction);
        entries_ = table_->entries();
    }
    library.addObjectVtable(connection_.bus(), nullptr, applicationPath, applicationInterface,
                            entries_, this);
}

} // namespace velmora::platform::bus
