#include "platform/backends/sound/output/pulse_link.h"

#include <algorithm>
#include <cstring>
#include <poll.h>

namespace velmora::platform::sound {

PulseLink::PulseLink(PulseLinkOptions options, WakeUp &wakeUp)
    : options_(std::move(options)), wakeUp_(wakeUp),
      table_(std::make_unique<PulseTable>(LoadedLibrary(options_.library))) {
    if (!table_->complete)
        return;
    loop_ = table_->pa_mainloop_new();
    if (!loop_)
        return;
    pa_mainloop_api *api = table_->pa_mainloop_get_api(loop_);
    wakeEvent_ = api->io_new(
        api, wakeUp_.descriptor(), PA_IO_EVENT_INPUT,
        [](pa_mainloop_api *, pa_io_event *, int, pa_io_event_flags_t, void *wake) {
            static_cast<WakeUp *>(wake)->drain();
        },
        &wakeUp_);
}

PulseLink::~PulseLink() {
    disconnect();
    if (!loop_)
        return;
    pa_mainloop_api *api = table_->pa_mainloop_get_api(loop_);
    api->io_free(wakeEvent_);
    table_->pa_mainloop_free(loop_);
}

PulseLink::State PulseLink::state() const {
    if (!context_)
        return State::Down;
    switch (table_->pa_context_get_state(context_)) {
    case PA_CONTEXT_READY:
        return answered_ ? State::Ready : State::Connecting;
    case PA_CONTEXT_FAILED:
    case PA_CONTEXT_TERMINATED:
        return State::Down;
    default:
        return State::Connecting;
    }
}

void PulseLink::connect(bool mayStartServer) {
    if (!loop_)
        return;
    disconnect();
    pa_proplist *properties = table_->pa_proplist_new();
    table_->pa_proplist_sets(properties, PA_PROP_APPLICATION_NAME,
                             options_.applicationName.c_str());
    // Desktops know the program and its icon by one name.
    if (!options_.iconName.empty())
        for (const char *property : {PA_PROP_APPLICATION_ICON_NAME, PA_PROP_APPLICATION_ID})
            table_->pa_proplist_sets(properties, property, options_.iconName.c_str());
    context_ = table_->pa_context_new_with_proplist(table_->pa_mainloop_get_api(loop_),
                                                    options_.applicationName.c_str(), properties);
    table_->pa_proplist_free(properties);
    if (!context_)
        return;
    table_->pa_context_set_state_callback(
        context_,
        [](pa_context *context, void *self) {
            auto *link = static_cast<PulseLink *>(self);
            if (link->context_ != context || link->asked_ ||
                link->table_->pa_context_get_state(context) != PA_CONTEXT_READY)
                return;
            link->asked_ = true;
            if (pa_operation *operation =
                    link->table_->pa_context_get_server_info(context, serverInfo, self))
                link->table_->pa_operation_unref(operation);
        },
        this);
    const char *server = options_.server.empty() ? nullptr : options_.server.c_str();
    const auto flags = mayStartServer ? PA_CONTEXT_NOFLAGS : PA_CONTEXT_NOAUTOSPAWN;
    if (table_->pa_context_connect(context_, server, flags, nullptr) < 0)
        disconnect();
}

void PulseLink::disconnect() {
    if (!context_)
        return;
    pa_context *context = context_;
    context_ = nullptr;
    asked_ = answered_ = false;
    rewinds_ = true;
    table_->pa_context_set_state_callback(context, nullptr, nullptr);
    table_->pa_context_disconnect(context);
    table_->pa_context_unref(context);
}

void PulseLink::serverInfo(pa_context *context, const pa_server_info *info, void *self) {
    auto *link = static_cast<PulseLink *>(self);
    if (link->context_ != context)
        return;
    link->answered_ = true;
    if (info && info->server_name)
        link->rewinds_ = std::strstr(info->server_name, "PipeWire") == nullptr;
}

void PulseLink::wishQuiet(bool wanted) {
    if (options_.quiet)
        options_.quiet->set(wanted);
}

void PulseLink::wait(TimePoint due) {
    using namespace std::chrono;
    std::int64_t micros = -1;
    if (due != TimePoint::max()) {
        micros = ceil<microseconds>(due - Clock::now()).count();
        micros = std::clamp<std::int64_t>(micros, 0, 1'000'000'000);
    }
    if (loop_) {
        if (table_->pa_mainloop_prepare(loop_, static_cast<int>(micros)) >= 0 &&
            table_->pa_mainloop_poll(loop_) >= 0)
            table_->pa_mainloop_dispatch(loop_);
        return;
    }
    pollfd event{wakeUp_.descriptor(), POLLIN, 0};
    const timespec time{static_cast<time_t>(micros / 1'000'000),
                        static_cast<long>(micros % 1'000'000) * 1000};
    ppoll(&event, 1, micros < 0 ? nullptr : &time, nullptr);
    wakeUp_.drain();
}

} // namespace velmora::platform::sound
