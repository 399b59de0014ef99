#include "platform/sound/pulse_link.h"
#include "platform/sound/server_query.h"

namespace velmora::platform::sound {

namespace {

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

} // namespace

std::optional<ServerDescription> queryByLibrary(const std::string &server,
                                                const std::string &pulseLibrary,
                                                std::chrono::steady_clock::time_point until) {
    Answers answers;
    WakeUp wakeUp;
    PulseLink link({pulseLibrary, server, "Velmora", ""}, wakeUp);
    if (!link.usable())
        return std::nullopt;
    answers.table = &link.table();
    link.connect();
    while (link.state() == PulseLink::State::Connecting && Clock::now() < until)
        link.wait(until);
    if (link.state() != PulseLink::State::Ready)
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

} // namespace velmora::platform::sound
