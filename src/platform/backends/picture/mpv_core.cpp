#include "platform/backends/picture/mpv_core.h"

#include <clocale>
#include <condition_variable>
#include <cstring>
#include <malloc.h>
#include <mutex>
#include <system_error>
#include <thread>

namespace velmora::platform::picture {

using std::chrono::milliseconds;

namespace {

// The engine reads and writes numbers by the C library and refuses to start under a locale with
// another decimal point. It asks for the process's locale, so that of the thread alone would not
// do, and it needs the setting for as long as it lives; the program never formats by the locale.
void useDecimalPoint() {
    const char *locale = std::setlocale(LC_NUMERIC, nullptr);
    if (locale == nullptr || std::strcmp(locale, "C") != 0)
        std::setlocale(LC_NUMERIC, "C");
}

// By itself the C library takes ever larger blocks from the heap once such a block was freed, and
// each of the engine's threads has a heap, which outlives it: a few films of a large picture held
// hundreds of megabytes for ever. From a megabyte on blocks are the system's, and go back to it
// when they are freed.
void keepLargeBlocksOutOfTheHeap() {
    constexpr int large = 1 << 20;
    mallopt(M_MMAP_THRESHOLD, large);
    mallopt(M_TRIM_THRESHOLD, large);
}

// Smaller ones stay in those heaps, between what is kept: 30 MB after 75 media. To give them back
// takes a millisecond or two.
void giveBackWhatIsFree() { malloc_trim(0); }

// Starts a thread that nobody waits for. False: the system has none to give.
bool startAlone(const std::function<void()> &work) {
    try {
        std::thread(work).detach();
    } catch (const std::system_error &) {
        return false;
    }
    return true;
}

// Runs `work` on a thread of its own and waits for it up to the limit; without a limit where there
// is no thread to be had.
void runBounded(const std::function<void()> &work, milliseconds limit) {
    struct Shared {
        std::mutex mutex;
        std::condition_variable done;
        bool isDone = false;
    };
    auto shared = std::make_shared<Shared>();
    const bool isAlone = startAlone([shared, work] {
        work();
        const std::lock_guard lock(shared->mutex);
        shared->isDone = true;
        shared->done.notify_all();
    });
    if (!isAlone) {
        work();
        return;
    }
    std::unique_lock lock(shared->mutex);
    shared->done.wait_for(lock, limit, [&] { return shared->isDone; });
}

} // namespace

std::unique_ptr<MpvCore> MpvCore::start(std::shared_ptr<const MpvLibrary> library,
                                        const Options &options) {
    // The engine would wait for its own threads for ever.
    if (!startAlone([] {}))
        return nullptr;
    useDecimalPoint();
    keepLargeBlocksOutOfTheHeap();
    mpv_handle *handle = library->mpv_create();
    if (handle == nullptr)
        return nullptr;
    std::unique_ptr<MpvCore> core(new MpvCore(std::move(library), handle));
    for (const auto &[name, value] : options)
        core->library_->mpv_set_option_string(handle, name.c_str(), value.c_str());
    if (core->library_->mpv_initialize(handle) < 0)
        return nullptr;
    return core;
}

MpvCore::MpvCore(std::shared_ptr<const MpvLibrary> library, mpv_handle *handle)
    : library_(std::move(library)), handle_(handle) {
    library_->mpv_set_wakeup_callback(
        handle_, [](void *hasEvents) { static_cast<std::atomic<bool> *>(hasEvents)->store(true); },
        hasEvents_.get());
}

MpvCore::~MpvCore() {
    // An engine that ends late still has its flag to set.
    runBounded(
        [library = library_, handle = handle_, hasEvents = hasEvents_] {
            library->mpv_terminate_destroy(handle);
            startAlone(giveBackWhatIsFree);
        },
        endLimit);
    errorHandler_.restore();
}

std::uint64_t MpvCore::command(const std::vector<std::string> &words) {
    std::vector<const char *> arguments;
    arguments.reserve(words.size() + 1);
    for (const std::string &word : words)
        arguments.push_back(word.c_str());
    arguments.push_back(nullptr);
    return send([&](std::uint64_t id) {
        return library_->mpv_command_async(handle_, id, arguments.data());
    });
}

std::uint64_t MpvCore::send(const std::function<int(std::uint64_t)> &submit) {
    const std::uint64_t id = ++lastId_;
    const auto end = Clock::now() + readingLimit;
    for (;;) {
        const int error = submit(id);
        if (error >= 0)
            return id;
        if (error != MPV_ERROR_EVENT_QUEUE_FULL || Clock::now() >= end)
            return 0;
        pump(milliseconds(1));
    }
}

std::uint64_t MpvCore::send(const char *property, mpv_format format, void *value) {
    return send([&](std::uint64_t id) {
        return library_->mpv_set_property_async(handle_, id, property, format, value);
    });
}

std::uint64_t MpvCore::set(const char *property, double value) {
    return send(property, MPV_FORMAT_DOUBLE, &value);
}

std::uint64_t MpvCore::set(const char *property, std::int64_t value) {
    return send(property, MPV_FORMAT_INT64, &value);
}

std::uint64_t MpvCore::set(const char *property, bool value) {
    int flag = value ? 1 : 0;
    return send(property, MPV_FORMAT_FLAG, &flag);
}

std::uint64_t MpvCore::set(const char *property, const std::string &value) {
    const char *text = value.c_str();
    return send(property, MPV_FORMAT_STRING, &text);
}

bool MpvCore::finish(std::uint64_t id, milliseconds limit) {
    const auto end = Clock::now() + limit;
    while (id != 0 && finished_ < id) {
        const auto left = std::chrono::duration_cast<milliseconds>(end - Clock::now());
        if (left.count() <= 0 || (!pump(left) && Clock::now() >= end))
            return false;
    }
    return id != 0 && (finished_ != id || finishedError_ >= 0);
}

void MpvCore::read(const char *property, mpv_format format, milliseconds limit,
                   const std::function<void(const mpv_event_property &)> &take) {
    pump();
    const std::uint64_t id = ++lastId_;
    if (overdue_ > 0 || library_->mpv_get_property_async(handle_, id, property, format) < 0)
        return;
    // Events may be left behind the answer, and the engine tells of its first one only.
    hasEvents_->store(true);
    const auto end = Clock::now() + limit;
    for (;;) {
        const std::chrono::duration<double> left = end - Clock::now();
        const mpv_event *event = library_->mpv_wait_event(handle_, std::max(left.count(), 0.0));
        if (event->event_id == MPV_EVENT_GET_PROPERTY_REPLY && event->reply_userdata == id) {
            if (event->error >= 0)
                take(*static_cast<const mpv_event_property *>(event->data));
            return;
        }
        if (event->event_id != MPV_EVENT_NONE) {
            dispatch(*event);
        } else if (Clock::now() >= end) {
            ++overdue_;
            return;
        }
    }
}

std::optional<double> MpvCore::number(const char *property, milliseconds limit) {
    std::optional<double> result;
    read(property, MPV_FORMAT_DOUBLE, limit, [&](const mpv_event_property &value) {
        result = *static_cast<const double *>(value.data);
    });
    return result;
}

std::optional<bool> MpvCore::flag(const char *property, milliseconds limit) {
    std::optional<bool> result;
    read(property, MPV_FORMAT_FLAG, limit, [&](const mpv_event_property &value) {
        result = *static_cast<const int *>(value.data) != 0;
    });
    return result;
}

std::optional<std::string> MpvCore::text(const char *property, milliseconds limit) {
    std::optional<std::string> result;
    read(property, MPV_FORMAT_STRING, limit, [&](const mpv_event_property &value) {
        result = *static_cast<char *const *>(value.data);
    });
    return result;
}

void MpvCore::observeFlag(const char *property) {
    library_->mpv_observe_property(handle_, 0, property, MPV_FORMAT_FLAG);
}

bool MpvCore::pump(milliseconds wait) {
    if (!hasEvents_->exchange(false) && wait.count() <= 0)
        return false;
    bool any = false;
    for (;;) {
        const double seconds = any ? 0.0 : static_cast<double>(wait.count()) / 1000.0;
        const mpv_event *event = library_->mpv_wait_event(handle_, seconds);
        if (event->event_id == MPV_EVENT_NONE)
            return any;
        any = true;
        dispatch(*event);
    }
}

void MpvCore::dispatch(const mpv_event &event) {
    if (event.event_id == MPV_EVENT_GET_PROPERTY_REPLY) {
        // Only answers that came too late get here.
        overdue_ = std::max(overdue_ - 1, 0);
        return;
    }
    if (event.event_id == MPV_EVENT_SET_PROPERTY_REPLY ||
        event.event_id == MPV_EVENT_COMMAND_REPLY) {
        if (event.reply_userdata > finished_) {
            finished_ = event.reply_userdata;
            finishedError_ = event.error;
        }
    }
    if (listener_)
        listener_(event);
}

void MpvCore::hook(const char *name) { library_->mpv_hook_add(handle_, 0, name, 0); }

void MpvCore::continueHook(std::uint64_t id) { library_->mpv_hook_continue(handle_, id); }

} // namespace velmora::platform::picture
