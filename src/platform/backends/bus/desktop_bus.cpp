#include "platform/backends/bus/desktop_bus.h"

#include "platform/backends/bus/application.h"
#include "platform/backends/bus/connection.h"
#include "platform/backends/bus/cover.h"
#include "platform/backends/bus/inhibition.h"
#include "platform/backends/bus/media_player.h"
#include "platform/backends/bus/names.h"
#include "platform/backends/bus/portal_dialogs.h"
#include "platform/backends/bus/status_notifier.h"
#include "text/path_text.h"

#include <utility>

namespace velmora::platform {

struct DesktopBus::Parts final : Remote, Inhibitor {
    Parts(const HomeFolders &homes, WatchDescriptor watch)
        : ofConfiguration(bus::nameOfConfiguration(homes.programConfig())),
          covers(HomeFolders::below(homes.programCache(), "/covers")), connection(std::move(watch)),
          media(connection), application(connection), names(connection, ofConfiguration),
          suspend(connection, bus::Inhibition::Of::Suspend),
          idle(connection, bus::Inhibition::Of::Idle), statusItem(connection) {
        connection.onOpened = [this] { opened(); };
        connection.onLost = [this] {
            suspend.lost();
            idle.lost();
            statusItem.lost();
        };
    }

    void opened() {
        if (started)
            serve();
        statusItem.opened();
    }

    void serve() {
        media.attach();
        application.attach();
        names.request();
        suspend.opened();
        idle.opened();
    }

    void start(RemoteControlled &player) override {
        media.setControlled(player);
        application.setControlled(player);
        started = true;
        if (connection.isOpen())
            serve();
        else
            connection.open();
    }

    // A bus that came late or came back is found when there is something to tell.
    void publish(const NowPlaying &now) noexcept override {
        connection.open();
        // Looked for once a track, and only for somebody.
        if (connection.isOpen() && now.track != coverOf) {
            coverOf = now.track;
            cover = bus::coverOf(pathBytes(now.path), covers);
        }
        media.publish(now, cover);
    }

    void seeked(std::int32_t ms) noexcept override { media.seeked(ms); }

    void raiseOther() noexcept override {
        if (!connection.open())
            return;
        const bus::BusLibrary &library = connection.library();
        connection.call(
            {ofConfiguration.c_str(), bus::applicationPath, bus::applicationInterface, "Activate"},
            [&library](sd_bus_message *message) {
                library.setAutoStart(message, 0);
                return library.append(message, "a{sv}", 0);
            },
            [](sd_bus_message *, bool) {});
    }

    void keep(const Awake &awake) noexcept override {
        connection.open();
        suspend.want(awake.sound);
        idle.want(awake.picture);
    }

    const std::string ofConfiguration;
    const std::string covers; // the folder of those out of tags
    bool started = false;
    std::uint32_t coverOf = 0; // the track whose cover is known
    std::string cover;
    bus::Connection connection;
    bus::MediaPlayer media;
    bus::Application application;
    bus::Names names;
    bus::Inhibition suspend;
    bus::Inhibition idle;
    bus::StatusNotifier statusItem;
    std::unique_ptr<bus::PortalDialogs> dialogs;
};

bool sessionBusAnswers(std::chrono::milliseconds limit) {
    const auto library = bus::BusLibrary::load();
    sd_bus *bus = nullptr;
    if (library == nullptr)
        return true;
    if (library->openUser(&bus) < 0)
        return false;
    const auto end = std::chrono::steady_clock::now() + limit;
    while (library->isReady(bus) == 0 && library->process(bus, nullptr) >= 0) {
        const auto left = std::chrono::duration_cast<std::chrono::microseconds>(
            end - std::chrono::steady_clock::now());
        if (left.count() <= 0 || library->isReady(bus) != 0)
            break;
        library->wait(bus, static_cast<std::uint64_t>(left.count()));
    }
    const bool answers = library->isReady(bus) > 0;
    library->closeUnref(bus);
    return answers;
}

DesktopBus::DesktopBus(const HomeFolders &homes, WatchDescriptor watch)
    : parts_(std::make_unique<Parts>(homes, std::move(watch))) {}

DesktopBus::~DesktopBus() = default;

Remote &DesktopBus::remote() { return *parts_; }
Inhibitor &DesktopBus::inhibitor() { return *parts_; }
StatusItem &DesktopBus::statusItem() { return parts_->statusItem; }

Dialogs &DesktopBus::dialogs(Dialogs &own, DialogHost host) {
    parts_->dialogs =
        std::make_unique<bus::PortalDialogs>(parts_->connection, own, std::move(host));
    return *parts_->dialogs;
}

void DesktopBus::beforeEnd() {
    if (parts_->dialogs != nullptr)
        parts_->dialogs->letGo();
}

} // namespace velmora::platform
