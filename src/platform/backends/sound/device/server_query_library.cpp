#include "platform/backends/sound/device/server_query.h"
#include "platform/backends/sound/output/pulse_link.h"
#include "platform/backends/sound/output/quiet_thread.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>

namespace velmora::platform::sound {

namespace {

using namespace std::chrono_literals;

constexpr auto connectLimit = 1s; // to another machine

struct Answers {
    const PulseTable *table = nullptr;
    ServerDescription server;
    bool infoDone = false;
    bool sinksDone = false;
};

void takeInfo(pa_context *, const pa_server_info *info, void *data) {
    auto *answers = static_cast<Answers *>(data);
    answers->infoDone = true;
    if (!info)
        return;
    answers->server.version = info->server_version ? info->server_version : "";
    answers->server.defaultSink = info->default_sink_name ? info->default_sink_name : "";
}

void takeSink(pa_context *, const pa_sink_info *info, int end, void *data) {
    auto *answers = static_cast<Answers *>(data);
    if (end != 0 || !info) {
        answers->sinksDone = true;
        return;
    }
    const auto property = [&](const char *name) {
        const char *value = answers->table->pa_proplist_gets(info->proplist, name);
        return std::string(value ? value : "");
    };
    answers->server.sinks.push_back(
        {info->name ? info->name : "", info->description ? info->description : "",
         info->sample_spec.channels, parseHexId(property(PA_PROP_DEVICE_VENDOR_ID)),
         parseHexId(property(PA_PROP_DEVICE_PRODUCT_ID))});
}

bool isReady(PulseLink &link, TimePoint until) {
    const TimePoint connectUntil = std::min(until, Clock::now() + connectLimit);
    while (link.state() == PulseLink::State::Connecting) {
        const bool called =
            link.table().pa_context_get_state(link.context()) != PA_CONTEXT_CONNECTING;
        const TimePoint end = called ? until : connectUntil;
        if (Clock::now() >= end)
            return false;
        link.wait(end);
    }
    return link.state() == PulseLink::State::Ready;
}

std::optional<ServerDescription> ask(const std::string &server, const std::string &pulseLibrary,
                                     TimePoint until) {
    Answers answers;
    WakeUp wakeUp;
    PulseLink link({pulseLibrary, server, "Velmora", ""}, wakeUp);
    if (!link.usable())
        return std::nullopt;
    answers.table = &link.table();
    link.connect(true);
    if (!isReady(link, until))
        return std::nullopt;
    pa_operation *info =
        link.table().pa_context_get_server_info(link.context(), takeInfo, &answers);
    pa_operation *sinks =
        link.table().pa_context_get_sink_info_list(link.context(), takeSink, &answers);
    while (info && sinks && !(answers.infoDone && answers.sinksDone) &&
           link.state() == PulseLink::State::Ready && Clock::now() < until)
        link.wait(until);
    // What comes later must not reach answers that are gone.
    for (pa_operation *operation : {info, sinks}) {
        if (operation) {
            link.table().pa_operation_cancel(operation);
            link.table().pa_operation_unref(operation);
        }
    }
    if (!answers.infoDone || !answers.sinksDone)
        return std::nullopt;
    return answers.server;
}

} // namespace

// On a thread of its own: the library waits without a limit for a server that it starts.
std::optional<ServerDescription> queryByLibrary(const std::string &server,
                                                const std::string &pulseLibrary, TimePoint until) {
    struct Shared {
        std::mutex mutex;
        std::condition_variable done;
        bool isDone = false;
        std::optional<ServerDescription> answer;
    };
    const auto shared = std::make_shared<Shared>();
    std::thread thread = startQuietThread([=] {
        auto answer = ask(server, pulseLibrary, until);
        const std::lock_guard lock(shared->mutex);
        shared->answer = std::move(answer);
        shared->isDone = true;
        shared->done.notify_all();
    });
    if (!thread.joinable())
        return std::nullopt;
    std::unique_lock lock(shared->mutex);
    const bool inTime =
        shared->done.wait_until(lock, until + 100ms, [&] { return shared->isDone; });
    lock.unlock();
    if (inTime)
        thread.join();
    else
        thread.detach();
    return inTime ? std::move(shared->answer) : std::nullopt;
}

} // namespace velmora::platform::sound
