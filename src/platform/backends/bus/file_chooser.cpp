#include "platform/backends/bus/file_chooser.h"

#include "base/text.h"
#include "platform/backends/bus/opened_files.h"
#include "text/path_text.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <utility>

namespace velmora::platform::bus {

namespace {

constexpr const char *portalName = "org.freedesktop.portal.Desktop";
constexpr const char *portalPath = "/org/freedesktop/portal/desktop";
constexpr const char *chooserInterface = "org.freedesktop.portal.FileChooser";
constexpr const char *requestInterface = "org.freedesktop.portal.Request";

constexpr std::uint32_t foldersSince = 3;
constexpr std::uint32_t openingFolderSince = 4;
constexpr std::uint32_t globFilter = 0;

// What the answer begins with. Any other number is "some other end": what a chooser says that
// cannot be shown, but one of them also when its window is closed.
constexpr std::uint32_t chosen = 0;
constexpr std::uint32_t cancelled = 1;

int ignore(sd_bus_message * /*message*/, void * /*what*/, sd_bus_error * /*error*/) { return 1; }

// Below which the portal puts the objects of our questions.
std::string requestsOf(std::string asker) {
    asker.erase(0, 1); // the colon
    std::replace(asker.begin(), asker.end(), '.', '_');
    return "/org/freedesktop/portal/desktop/request/" + asker;
}

std::string shown(std::string_view path) {
    std::string text = toUtf8(pathFromBytes(path));
    return text.substr(0, text.find('\0'));
}

} // namespace

struct FileChooser::Portal {
    std::uint32_t version = 0;
    std::string owner; // unique names: the portal's, and ours
    std::string us;
};

// What is heard of one question. It is asked of the one process that answered with its version: no
// other one's signal counts, and its end is noticed.
struct FileChooser::Request {
    Request(Connection &connection, Portal found, std::string name,
            std::chrono::milliseconds soonest)
        : library(connection.library()), bus(connection.bus()), portal(std::move(found)),
          token(std::move(name)), path(requestsOf(portal.us) + "/" + token), soonestEnd(soonest) {
        // Ahead of the call, since the person's answer may come before we hear of the object, and
        // for all of ours: older portals give it another name than is asked for.
        const std::string response = "type='signal',sender='" + portal.owner +
                                     "',interface='org.freedesktop.portal.Request',"
                                     "member='Response',path_namespace='" +
                                     requestsOf(portal.us) + "'";
        const std::string end = "type='signal',sender='org.freedesktop.DBus',"
                                "interface='org.freedesktop.DBus',"
                                "member='NameOwnerChanged',arg0='" +
                                portal.owner + "'";
        library.addMatchAsync(bus, &answer, response.c_str(), onResponse, ignore, this);
        library.addMatchAsync(bus, &owner, end.c_str(), onGone, ignore, this);
    }
    ~Request() {
        library.slotUnref(answer);
        library.slotUnref(owner);
    }
    Request(const Request &) = delete;
    Request &operator=(const Request &) = delete;

    static int onGone(sd_bus_message * /*message*/, void *request, sd_bus_error * /*error*/) {
        static_cast<Request *>(request)->isOver = true;
        return 0;
    }

    static int onResponse(sd_bus_message *message, void *request, sd_bus_error * /*error*/) {
        auto &self = *static_cast<Request *>(request);
        std::uint32_t how = 0;
        if (self.isOver || self.path != self.library.getPath(message) ||
            self.library.read(message, "u", &how) <= 0)
            return 0;
        self.isOver = true;
        const auto lasted = std::chrono::steady_clock::now() - self.begun;
        if (how == chosen || how == cancelled || lasted >= self.soonestEnd)
            self.result.how = Answer::How::Cancelled;
        if (how == chosen)
            self.readFile(message);
        return 0;
    }

    // An address that is no file of this machine is nothing that could be opened.
    void readFile(sd_bus_message *message) {
        if (library.enterContainer(message, 'a', "{sv}") <= 0)
            return;
        while (library.enterContainer(message, 'e', "sv") > 0) {
            const char *key = nullptr;
            const char *uri = nullptr;
            if (library.read(message, "s", &key) <= 0)
                return;
            if (std::strcmp(key, "uris") == 0) {
                if (library.enterContainer(message, 'v', "as") > 0 &&
                    library.enterContainer(message, 'a', "s") > 0 &&
                    library.read(message, "s", &uri) > 0)
                    take(uri);
                return;
            }
            if (library.skip(message, "v") < 0 || library.exitContainer(message) < 0)
                return;
        }
    }
    void take(const char *uri) {
        for (const std::u16string &file : openedFiles(uri)) {
            result.how = Answer::How::Chosen;
            result.path = pathBytes(file);
        }
    }

    const BusLibrary &library;
    sd_bus *bus;
    const Portal portal;
    const std::string token;
    std::string path;
    const std::chrono::milliseconds soonestEnd;
    const std::chrono::steady_clock::time_point begun = std::chrono::steady_clock::now();
    Answer result;
    bool isOver = false;
    sd_bus_slot *answer = nullptr;
    sd_bus_slot *owner = nullptr;
};

FileChooser::Answer FileChooser::ask(const Question &question) {
    // One that still owes an answer would be waited for each time anew.
    if (!owed_.expired() || !connection_.open())
        return {};
    const std::optional<Portal> portal = findPortal();
    if (!portal || (question.kind == Kind::Folder && portal->version < foldersSince))
        return {};
    Request request(connection_, *portal, "velmora" + std::to_string(++asked_), host_.soonestEnd);
    Request *before = std::exchange(up_, &request);
    if (open(question, request))
        host_.wait([&] { return request.isOver || connection_.bus() != request.bus; },
                   std::nullopt);
    up_ = before;
    return request.result;
}

void FileChooser::letGo() {
    if (up_ != nullptr)
        close(*up_);
}

std::optional<FileChooser::Portal> FileChooser::findPortal() {
    const BusLibrary &library = connection_.library();
    Portal found;
    const bool isThere = callAndWait(
        {portalName, portalPath, "org.freedesktop.DBus.Properties", "Get"},
        [&](sd_bus_message *message) {
            return library.append(message, "ss", chooserInterface, "version");
        },
        [&](sd_bus_message *message) {
            const char *owner = library.getSender(message);
            const char *us = library.getDestination(message);
            if (owner == nullptr || us == nullptr || *us != ':' ||
                library.enterContainer(message, 'v', "u") <= 0 ||
                library.read(message, "u", &found.version) <= 0)
                return false;
            found.owner = owner;
            found.us = us;
            return true;
        },
        [] { return false; });
    return isThere ? std::optional(found) : std::nullopt;
}

// Whether the call was answered, or `enough` happened meanwhile. What comes later is not taken.
bool FileChooser::callAndWait(const Connection::Call &call,
                              const std::function<int(sd_bus_message *)> &fill,
                              const std::function<bool(sd_bus_message *)> &take,
                              const std::function<bool()> &enough) {
    struct State {
        const std::function<bool(sd_bus_message *)> *take;
        bool isAnswered = false;
        bool isTaken = false;
    };
    const auto state = std::make_shared<State>(State{&take});
    const sd_bus *bus = connection_.bus();
    const bool sent = connection_.call(call, fill, [state](sd_bus_message *message, bool failed) {
        state->isAnswered = true;
        state->isTaken = !failed && state->take != nullptr && (*state->take)(message);
    });
    if (!sent)
        return false;
    host_.wait([&] { return state->isAnswered || enough() || connection_.bus() != bus; },
               host_.patience);
    state->take = nullptr;
    if (state->isAnswered)
        return state->isTaken;
    owed_ = state;
    return enough();
}

bool FileChooser::open(const Question &question, Request &request) {
    const BusLibrary &library = connection_.library();
    const bool isUp = callAndWait(
        {request.portal.owner.c_str(), portalPath, chooserInterface,
         question.kind == Kind::Save ? "SaveFile" : "OpenFile"},
        [&](sd_bus_message *message) { return fill(question, request, message); },
        [&](sd_bus_message *message) {
            const char *handle = nullptr;
            if (library.read(message, "o", &handle) <= 0)
                return false;
            request.path = handle;
            return true;
        },
        [&] { return request.isOver; });
    // A dialog that comes up after all would be a second one.
    if (!isUp)
        close(request);
    return isUp;
}

int FileChooser::fill(const Question &question, const Request &request,
                      sd_bus_message *message) const {
    const BusLibrary &library = connection_.library();
    int done = library.append(message, "ss", question.parent.c_str(), question.title.c_str());
    if (done >= 0)
        done = library.openContainer(message, 'a', "{sv}");
    if (done >= 0)
        done = library.append(message, "{sv}{sv}", "handle_token", "s", request.token.c_str(),
                              "modal", "b", 1);
    if (done >= 0 && question.kind == Kind::Folder)
        done = library.append(message, "{sv}", "directory", "b", 1);
    if (done >= 0 && !question.filters.empty())
        done = fillFilters(question.filters, message);
    if (done >= 0)
        done = fillPlace(question, request, message);
    return done < 0 ? done : library.closeContainer(message);
}

// A name goes as text, which not every one is; that of a file that is there goes as it is.
int FileChooser::fillPlace(const Question &question, const Request &request,
                           sd_bus_message *message) const {
    if (question.isThere)
        return fillBytes("current_file", question.folder + question.name, message);
    int done = 0;
    if (!question.name.empty())
        done = connection_.library().append(message, "{sv}", "current_name", "s",
                                            shown(question.name).c_str());
    const bool takesFolder =
        question.kind == Kind::Save || request.portal.version >= openingFolderSince;
    if (done >= 0 && !question.folder.empty() && takesFolder)
        done = fillBytes("current_folder", question.folder, message);
    return done;
}

// Choosers compare with case, and some take the ending of a name from the first pattern, as it
// stands: so each is given plainly first, then for every case.
int FileChooser::fillFilters(const std::vector<DialogFilter> &filters,
                             sd_bus_message *message) const {
    const BusLibrary &library = connection_.library();
    int done = library.openContainer(message, 'e', "sv");
    if (done >= 0)
        done = library.append(message, "s", "filters");
    if (done >= 0)
        done = library.openContainer(message, 'v', "a(sa(us))");
    if (done >= 0)
        done = library.openContainer(message, 'a', "(sa(us))");
    for (const DialogFilter &filter : filters) {
        if (done >= 0)
            done = library.openContainer(message, 'r', "sa(us)");
        if (done >= 0)
            done = library.append(message, "s", toUtf8(filter.name).c_str());
        if (done >= 0)
            done = library.openContainer(message, 'a', "(us)");
        for (const std::u16string &pattern : filter.patterns) {
            const std::u16string every = ignoringCase(pattern);
            if (done >= 0)
                done = library.append(message, "(us)", globFilter, toUtf8(pattern).c_str());
            if (done >= 0 && every != pattern)
                done = library.append(message, "(us)", globFilter, toUtf8(every).c_str());
        }
        for (int level = 0; level < 2 && done >= 0; ++level)
            done = library.closeContainer(message);
    }
    for (int level = 0; level < 3 && done >= 0; ++level)
        done = library.closeContainer(message);
    return done;
}

// Paths are bytes that end with a NUL.
int FileChooser::fillBytes(const char *key, const std::string &bytes,
                           sd_bus_message *message) const {
    const BusLibrary &library = connection_.library();
    int done = library.openContainer(message, 'e', "sv");
    if (done >= 0)
        done = library.append(message, "s", key);
    if (done >= 0)
        done = library.openContainer(message, 'v', "ay");
    if (done >= 0)
        done = library.appendArray(message, 'y', bytes.c_str(), bytes.size() + 1);
    for (int level = 0; level < 2 && done >= 0; ++level)
        done = library.closeContainer(message);
    return done;
}

void FileChooser::close(const Request &request) {
    if (connection_.bus() == request.bus)
        connection_.call(
            {request.portal.owner.c_str(), request.path.c_str(), requestInterface, "Close"},
            [](sd_bus_message *) { return 0; }, [](sd_bus_message *, bool) {});
}

} // namespace velmora::platform::bus
