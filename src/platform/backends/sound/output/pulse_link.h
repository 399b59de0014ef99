#pragma once

// The connection to the sound server and the waiting of the output thread. Works as a mere wait
// where the library is missing or no server answers.

#include "platform/backends/sound/output/output_stream.h"
#include "platform/backends/sound/output/pulse_table.h"
#include "platform/backends/sound/output/quiet_wish.h"
#include "platform/backends/sound/output/wake_up.h"

#include <memory>
#include <optional>
#include <string>

namespace velmora::platform::sound {

struct PulseLinkOptions {
    std::string library;         // file name of libpulse
    std::string server;          // empty: as the library finds it
    std::string applicationName; // UTF-8, shown by mixers
    std::string iconName;
    std::shared_ptr<QuietWish> quiet = {}; // may be null
};

class PulseLink {
public:
    enum class State { Down, Connecting, Ready };

    // Loads the library.
    PulseLink(PulseLinkOptions options, WakeUp &wakeUp);
    ~PulseLink();
    PulseLink(const PulseLink &) = delete;
    PulseLink &operator=(const PulseLink &) = delete;

    // False: the library is missing; the state stays Down for ever.
    bool usable() const { return loop_ != nullptr; }
    State state() const;
    // Down only. Where there is no server it may be started, as the user's settings have it; this
    // call or wait() then lasts until it is up.
    void connect(bool mayStartServer);
    void disconnect();
    // Whether the server takes back what it has already mixed (PulseAudio does, PipeWire does not).
    bool rewinds() const { return rewinds_; }
    const PulseTable &table() const { return *table_; }
    pa_context *context() const { return context_; }

    // The server asks whoever plays music to be quiet, or to go on.
    void wishQuiet(bool wanted);

    // Handles what the server sent; waits for it, for the wake-up or until `due`.
    void wait(TimePoint due);

private:
    static void serverInfo(pa_context *context, const pa_server_info *info, void *link);

    PulseLinkOptions options_;
    WakeUp &wakeUp_;
    std::unique_ptr<PulseTable> table_;
    pa_mainloop *loop_ = nullptr;
    pa_io_event *wakeEvent_ = nullptr;
    pa_context *context_ = nullptr;
    bool asked_ = false;
    bool answered_ = false;
    bool rewinds_ = true;
};

} // namespace velmora::platform::sound
