#pragma once

// One engine: commands go out without waiting, readings are waited for only briefly, and the end is
// bounded. So a core that hangs (in a sound server, in a file system) holds nobody else up.

#include "platform/backends/picture/mpv_library.h"
#include "platform/backends/picture/x_error_handler.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace velmora::platform::picture {

class MpvCore {
public:
    using Clock = std::chrono::steady_clock;
    using Options = std::vector<std::pair<std::string, std::string>>;
    // Gets every event that is no answer to a reading. Runs inside the calls of this class only.
    using Listener = std::function<void(const mpv_event &)>;

    // Null when the engine refuses to start. An option it does not know is passed over: options
    // come and go with its versions.
    static std::unique_ptr<MpvCore> start(std::shared_ptr<const MpvLibrary> library,
                                          const Options &options);
    // Waits up to `endLimit` for the engine's end, and leaves it to end alone beyond.
    ~MpvCore();
    MpvCore(const MpvCore &) = delete;
    MpvCore &operator=(const MpvCore &) = delete;

    void listen(Listener listener) { listener_ = std::move(listener); }

    // Sends a command or a setting; each is done in the order sent. The number comes back in the
    // reply event; 0 when it could not even be sent.
    std::uint64_t command(const std::vector<std::string> &words);
    std::uint64_t set(const char *property, double value);
    std::uint64_t set(const char *property, std::int64_t value);
    std::uint64_t set(const char *property, bool value);
    std::uint64_t set(const char *property, const std::string &value);

    // Waits for what was sent to be done. False when it failed or the limit passed.
    bool finish(std::uint64_t id, std::chrono::milliseconds limit);

    // Readings; absent when the property has no value or the engine does not answer in time. While
    // an answer is overdue, further readings are absent at once.
    std::optional<double> number(const char *property,
                                 std::chrono::milliseconds limit = readingLimit);
    std::optional<bool> flag(const char *property, std::chrono::milliseconds limit = readingLimit);
    std::optional<std::string> text(const char *property,
                                    std::chrono::milliseconds limit = readingLimit);

    // From now on each change of the property comes as an event, with its value as a flag.
    void observeFlag(const char *property);

    // Hands on the events that have come; waits for the first up to `wait`. False when none came.
    bool pump(std::chrono::milliseconds wait = std::chrono::milliseconds(0));

    void hook(const char *name);
    void continueHook(std::uint64_t id);

    static constexpr std::chrono::milliseconds readingLimit{25};
    static constexpr std::chrono::milliseconds endLimit{3000};

private:
    MpvCore(std::shared_ptr<const MpvLibrary> library, mpv_handle *handle);

    // The engine holds only so many commands that are not yet answered; beyond, it is waited for.
    std::uint64_t send(const std::function<int(std::uint64_t id)> &submit);
    std::uint64_t send(const char *property, mpv_format format, void *value);
    // Asks for a property and hands its value to `take` when it comes in time.
    void read(const char *property, mpv_format format, std::chrono::milliseconds limit,
              const std::function<void(const mpv_event_property &)> &take);
    void dispatch(const mpv_event &event);

    std::shared_ptr<const MpvLibrary> library_;
    mpv_handle *handle_;
    XErrorHandlerKeeper errorHandler_;
    // Set by the engine's threads when an event has come. A look into an empty queue is a sleep of
    // its own for the engine, some fifty microseconds, too dear for each answer of a device.
    std::shared_ptr<std::atomic<bool>> hasEvents_ = std::make_shared<std::atomic<bool>>(true);
    Listener listener_;
    std::uint64_t lastId_ = 0;
    int overdue_ = 0;            // readings given up whose answer is still to come
    std::uint64_t finished_ = 0; // the last command or setting that is done
    int finishedError_ = 0;
};

} // namespace velmora::platform::picture
