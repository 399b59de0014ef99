#include "platform/backends/bus/status_notifier.h"

#include "platform/backends/bus/metadata.h"

#include <unistd.h>

#include <utility>

namespace velmora::platform::bus {

namespace {

constexpr const char *itemPath = "/StatusNotifierItem";
constexpr const char *itemInterface = "org.kde.StatusNotifierItem";
constexpr const char *watcherName = "org.kde.StatusNotifierWatcher"; // its interface, too
constexpr const char *watcherPath = "/StatusNotifierWatcher";

using Bus = sd_bus;

int ignore(sd_bus_message * /*message*/, void * /*object*/, sd_bus_error * /*error*/) { return 1; }

int appendPicture(const BusLibrary &library, sd_bus_message *reply, const StatusPicture &picture) {
    std::string bytes;
    bytes.reserve(4 * picture.pixels.size());
    for (const std::uint32_t pixel : picture.pixels)
        for (unsigned shift = 32; shift > 0; shift -= 8)
            bytes.push_back(static_cast<char>(pixel >> (shift - 8) & 0xFFU));
    int done = library.openContainer(reply, 'r', "iiay");
    if (done >= 0)
        done = library.append(reply, "ii", picture.width, picture.height);
    if (done >= 0)
        done = library.appendArray(reply, 'y', bytes.data(), bytes.size());
    return done < 0 ? done : library.closeContainer(reply);
}

int appendPictures(const BusLibrary &library, sd_bus_message *reply,
                   const std::vector<StatusPicture> &pictures) {
    int done = library.openContainer(reply, 'a', "(iiay)");
    for (const StatusPicture &picture : pictures)
        if (done >= 0)
            done = appendPicture(library, reply, picture);
    return done < 0 ? done : library.closeContainer(reply);
}

// Lines end there with LF alone.
std::string tipText(std::u16string_view tip) {
    std::u16string text(tip);
    std::erase(text, u'\r');
    return busText(text);
}

} // namespace

struct StatusNotifier::Calls {
    static StatusNotifier &of(void *object) { return *static_cast<StatusNotifier *>(object); }
    static const BusLibrary &library(void *object) { return of(object).connection_.library(); }

    // --- methods ---------------------------------------------------------------------------------
    template <StatusClick click>
    static int clicked(sd_bus_message *message, void *object, sd_bus_error * /*error*/) {
        PointPixels place;
        if (const int read = library(object).read(message, "ii", &place.x, &place.y); read < 0)
            return read;
        of(object).connection_.later([&self = of(object), place] {
            if (self.owner_ != nullptr)
                self.owner_->clicked(click, place);
        });
        return library(object).replyReturn(message, "");
    }
    // The wheel does nothing on the icon, nor does a token for the windows of another display.
    static int nothing(sd_bus_message *message, void *object, sd_bus_error * /*error*/) {
        return library(object).replyReturn(message, "");
    }

    // --- properties ------------------------------------------------------------------------------
    static int category(Bus *, const char *, const char *, const char *, sd_bus_message *reply,
                        void *object, sd_bus_error *) {
        return library(object).append(reply, "s", "ApplicationStatus");
    }
    static int id(Bus *, const char *, const char *, const char *, sd_bus_message *reply,
                  void *object, sd_bus_error *) {
        return library(object).append(reply, "s", "velmora");
    }
    static int title(Bus *, const char *, const char *, const char *, sd_bus_message *reply,
                     void *object, sd_bus_error *) {
        return library(object).append(reply, "s", "Velmora");
    }
    static int status(Bus *, const char *, const char *, const char *, sd_bus_message *reply,
                      void *object, sd_bus_error *) {
        return library(object).append(reply, "s", "Active");
    }
    static int none(Bus *, const char *, const char *, const char *, sd_bus_message *reply,
                    void *object, sd_bus_error *) {
        return library(object).append(reply, "s", "");
    }
    static int windowId(Bus *, const char *, const char *, const char *, sd_bus_message *reply,
                        void *object, sd_bus_error *) {
        return library(object).append(reply, "i", 0);
    }
    static int itemIsMenu(Bus *, const char *, const char *, const char *, sd_bus_message *reply,
                          void *object, sd_bus_error *) {
        return library(object).append(reply, "b", 0);
    }
    static int menu(Bus *, const char *, const char *, const char *, sd_bus_message *reply,
                    void *object, sd_bus_error *) {
        return library(object).append(reply, "o", statusMenuPath);
    }
    static int pictures(Bus *, const char *, const char *, const char *, sd_bus_message *reply,
                        void *object, sd_bus_error *) {
        return appendPictures(library(object), reply, of(object).owner_->pictures());
    }
    static int noPictures(Bus *, const char *, const char *, const char *, sd_bus_message *reply,
                          void *object, sd_bus_error *) {
        return appendPictures(library(object), reply, {});
    }
    static int toolTip(Bus *, const char *, const char *, const char *, sd_bus_message *reply,
                       void *object, sd_bus_error *) {
        const BusLibrary &calls = library(object);
        int done = calls.openContainer(reply, 'r', "sa(iiay)ss");
        if (done >= 0)
            done = calls.append(reply, "s", "");
        if (done >= 0)
            done = appendPictures(calls, reply, {});
        if (done >= 0)
            done = calls.append(reply, "ss", tipText(of(object).tip_).c_str(), "");
        return done < 0 ? done : calls.closeContainer(reply);
    }

    // --- the watcher -----------------------------------------------------------------------------
    static int onOwner(sd_bus_message *message, void *object, sd_bus_error * /*error*/) {
        const char *name = nullptr;
        const char *before = nullptr;
        const char *now = nullptr;
        if (library(object).read(message, "sss", &name, &before, &now) < 0)
            return 0;
        const bool isThere = *now != '\0';
        ++of(object).offers_; // the one before answers no more
        of(object).connection_.later([&self = of(object), isThere] {
            if (isThere)
                self.offer();
            else
                self.tell(false);
        });
        return 0;
    }
    static int onPanel(sd_bus_message * /*message*/, void *object, sd_bus_error * /*error*/) {
        of(object).connection_.later([&self = of(object)] { self.askForPanel(); });
        return 0;
    }
};

StatusNotifier::StatusNotifier(Connection &connection)
    : connection_(connection), menu_(connection),
      name_("org.kde.StatusNotifierItem-" + std::to_string(getpid()) + "-1") {}

StatusNotifier::~StatusNotifier() { dropSlots(); }

void StatusNotifier::show(StatusItemOwner &owner) noexcept {
    owner_ = &owner;
    tip_ = owner.tip();
    told_.reset();
    menu_.setOwner(&owner);
    if (connection_.isOpen())
        opened();
    else if (!connection_.open())
        tell(false);
}

void StatusNotifier::hide() noexcept {
    owner_ = nullptr;
    menu_.setOwner(nullptr);
    ++offers_;
    const bool had = !slots_.empty();
    dropSlots();
    if (had && connection_.isOpen()) {
        connection_.library().releaseNameAsync(connection_.bus(), nullptr, name_.c_str(), ignore,
                                               nullptr);
        connection_.flush();
    }
}

void StatusNotifier::update(bool otherPictures) noexcept {
    if (owner_ == nullptr || !connection_.isOpen())
        return;
    if (std::exchange(tip_, owner_->tip()) != tip_)
        emit("NewToolTip");
    if (otherPictures)
        emit("NewIcon");
    menu_.update();
    connection_.flush();
}

void StatusNotifier::emit(const char *signal) {
    if (!connection_.isStuck())
        connection_.library().emitSignal(connection_.bus(), itemPath, itemInterface, signal, "");
}

// The name goes ahead of the offer, which the bus hands on behind it.
void StatusNotifier::opened() {
    if (owner_ == nullptr || !slots_.empty())
        return;
    const BusLibrary &library = connection_.library();
    makeTable();
    sd_bus_slot *slot = nullptr;
    library.addObjectVtable(connection_.bus(), &slot, itemPath, itemInterface, members_, this);
    slots_ = {slot, menu_.attach()};
    watch();
    library.requestNameAsync(connection_.bus(), nullptr, name_.c_str(), 0, ignore, nullptr);
    offer();
}

void StatusNotifier::watch() {
    const std::string ofWatcher =
        std::string("',path='") + watcherPath + "',interface='" + watcherName + "'";
    const std::pair<std::string, sd_bus_message_handler_t> rules[] = {
        {std::string("type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
                     "member='NameOwnerChanged',arg0='") +
             watcherName + "'",
         Calls::onOwner},
        {"type='signal',member='StatusNotifierHostRegistered" + ofWatcher, Calls::onPanel},
        {"type='signal',member='StatusNotifierHostUnregistered" + ofWatcher, Calls::onPanel},
    };
    for (const auto &[rule, handler] : rules) {
        sd_bus_slot *slot = nullptr;
        connection_.library().addMatchAsync(connection_.bus(), &slot, rule.c_str(), handler, ignore,
                                            this);
        slots_.push_back(slot);
    }
}

void StatusNotifier::lost() {
    dropSlots();
    ++offers_;
    tell(false);
}

// The connection's objects, watches and slots are the library's; they must go while it is there.
void StatusNotifier::dropSlots() {
    for (sd_bus_slot *slot : slots_)
        connection_.library().slotUnref(slot);
    slots_.clear();
}

void StatusNotifier::offer() {
    if (owner_ == nullptr || !connection_.isOpen())
        return;
    const BusLibrary &library = connection_.library();
    const bool sent = connection_.call(
        {watcherName, watcherPath, watcherName, "RegisterStatusNotifierItem"},
        [&](sd_bus_message *message) {
            library.setAutoStart(message, 0);
            return library.append(message, "s", name_.c_str());
        },
        [this, number = ++offers_](sd_bus_message * /*answer*/, bool failed) {
            if (number != offers_)
                return;
            if (failed)
                connection_.later([this] { tell(false); });
            else
                askForPanel();
        });
    if (!sent)
        tell(false);
}

// A watcher that does not say is one for which there is a panel.
void StatusNotifier::askForPanel() {
    if (owner_ == nullptr || !connection_.isOpen())
        return;
    const BusLibrary &library = connection_.library();
    connection_.call(
        {watcherName, watcherPath, "org.freedesktop.DBus.Properties", "Get"},
        [&library](sd_bus_message *message) {
            library.setAutoStart(message, 0);
            return library.append(message, "ss", watcherName, "IsStatusNotifierHostRegistered");
        },
        [this, &library, number = offers_](sd_bus_message *answer, bool failed) {
            int isThere = 1;
            if (number != offers_)
                return;
            if (!failed && library.read(answer, "v", "b", &isThere) < 0)
                isThere = 1;
            connection_.later([this, isThere] { tell(isThere != 0); });
        });
}

void StatusNotifier::tell(bool taken) {
    if (owner_ == nullptr || std::exchange(told_, taken) == taken)
        return;
    owner_->taken(taken);
}

void StatusNotifier::makeTable() {
    if (table_ != nullptr)
        return;
    using C = Calls;
    table_ = std::make_unique<ObjectTable>(connection_.library());
    table_->method("ContextMenu", "ii", "x\0y\0", C::clicked<StatusClick::Right>);
    table_->method("Activate", "ii", "x\0y\0", C::clicked<StatusClick::Left>);
    table_->method("SecondaryActivate", "ii", "x\0y\0", C::clicked<StatusClick::Middle>);
    table_->method("Scroll", "is", "delta\0orientation\0", C::nothing);
    table_->method("ProvideXdgActivationToken", "s", "token\0", C::nothing);
    for (const char *signal :
         {"NewTitle", "NewIcon", "NewAttentionIcon", "NewOverlayIcon", "NewToolTip", "NewMenu"})
        table_->signal(signal, "", "");
    table_->signal("NewStatus", "s", "status\0");
    table_->constant("Category", "s", C::category);
    table_->constant("Id", "s", C::id);
    table_->silentProperty("Title", "s", C::title);
    table_->silentProperty("Status", "s", C::status);
    table_->silentProperty("WindowId", "i", C::windowId);
    for (const char *name : {"IconName", "OverlayIconName", "AttentionIconName",
                             "AttentionMovieName", "IconThemePath"})
        table_->silentProperty(name, "s", C::none);
    table_->silentProperty("IconPixmap", "a(iiay)", C::pictures);
    table_->silentProperty("OverlayIconPixmap", "a(iiay)", C::noPictures);
    table_->silentProperty("AttentionIconPixmap", "a(iiay)", C::noPictures);
    table_->silentProperty("ToolTip", "(sa(iiay)ss)", C::toolTip);
    table_->constant("ItemIsMenu", "b", C::itemIsMenu);
    table_->constant("Menu", "o", C::menu);
    members_ = table_->entries();
}

} // namespace velmora::platform::bus
