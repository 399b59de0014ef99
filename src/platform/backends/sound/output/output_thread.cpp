#include "platform/backends/sound/output/output_thread.h"

#include "platform/backends/sound/output/pulse_stream.h"
#include "platform/backends/sound/output/quiet_thread.h"

#include <algorithm>
#include <iterator>
#include <pthread.h>
#include <utility>

namespace velmora::platform::sound {

namespace {

using namespace std::chrono_literals;

constexpr TimePoint never = TimePoint::max();

constexpr auto silentAfter = 400ms; // without an answer of the server play begins in silence
constexpr auto connectLimit = 5s;
constexpr auto retryEach = 3s;
constexpr auto closeLimit = 150ms;
constexpr auto takeUpLimit = 100ms; // usually some microseconds
constexpr auto endLimit = 300ms;

bool usable(const OutputStream *stream) {
    return stream && stream->state() != OutputStream::State::Lost;
}

} // namespace

OutputThread::OutputThread(PulseLinkOptions options) : options_(std::move(options)) {}

std::shared_ptr<OutputThread> OutputThread::start(PulseLinkOptions options) {
    auto made = std::make_shared<OutputThread>(std::move(options));
    made->thread_ = startQuietThread([made] { made->run(); });
    if (!made->thread_.joinable())
        return nullptr;
    pthread_setname_np(made->thread_.native_handle(), "sound");
    return made;
}

void OutputThread::add(std::vector<std::unique_ptr<Voice>> voices) {
    {
        const std::lock_guard lock(mutex_);
        if (added_.empty())
            addedAt_ = Clock::now();
        std::move(voices.begin(), voices.end(), std::back_inserter(added_));
    }
    wake();
}

std::vector<std::unique_ptr<Voice>> OutputThread::takeBack() {
    const std::lock_guard lock(mutex_);
    // Another thread would not load the library any sooner.
    if (!begun_ || added_.empty() || Clock::now() < addedAt_ + takeUpLimit)
        return {};
    return std::exchange(added_, {});
}

void OutputThread::wake() {
    if (!signalled_.exchange(true))
        wakeUp_.signal();
}

void OutputThread::leave() {
    {
        const std::lock_guard lock(mutex_);
        left_ = true;
    }
    wakeUp_.signal();
    thread_.detach();
}

void OutputThread::end() {
    std::unique_lock lock(mutex_);
    quit_ = true;
    wakeUp_.signal();
    if (!thread_.joinable())
        return;
    const bool ended = hasEnded_.wait_for(lock, endLimit, [this] { return ended_; });
    lock.unlock();
    if (ended)
        thread_.join();
    else
        thread_.detach();
}

void OutputThread::run() {
    {
        PulseLink link(options_, wakeUp_);
        while (!isOver()) {
            signalled_ = false;
            const TimePoint now = Clock::now();
            takeNew(now);
            const TimePoint due = turn(link, now);
            if (!isOver())
                link.wait(due);
        }
        lines_.clear(); // the streams go before the link
    }
    const std::lock_guard lock(mutex_);
    ended_ = true;
    hasEnded_.notify_all();
}

bool OutputThread::isOver() {
    const std::lock_guard lock(mutex_);
    return quit_ || (left_ && lines_.empty() && added_.empty());
}

void OutputThread::takeNew(TimePoint now) {
    const std::lock_guard lock(mutex_);
    begun_ = true;
    for (std::unique_ptr<Voice> &voice : added_) {
        Line line;
        line.voice = std::move(voice);
        line.since = line.retry = now;
        lines_.push_back(std::move(line));
    }
    added_.clear();
}

TimePoint OutputThread::turn(PulseLink &link, TimePoint now) {
    TimePoint due = lines_.empty() ? never : connect(link, now);
    for (Line &line : lines_)
        due = std::min(due, serve(line, link, now));
    const auto finished = [now](const Line &line) {
        return line.voice->finished(now) || now >= line.closeBy;
    };
    lines_.erase(std::remove_if(lines_.begin(), lines_.end(), finished), lines_.end());
    return due;
}

// Keeps trying to reach the server while somebody wants to be heard.
TimePoint OutputThread::connect(PulseLink &link, TimePoint now) {
    if (!link.usable() || link.state() == PulseLink::State::Ready)
        return never;
    if (link.state() == PulseLink::State::Connecting) {
        if (now < connectSince_ + connectLimit)
            return connectSince_ + connectLimit;
        link.disconnect();
        connectRetry_ = now + retryEach;
        return connectRetry_;
    }
    // A medium just opened is worth a try at once; one that stands still is not worth waking up.
    const bool fresh = std::any_of(
        lines_.begin(), lines_.end(),
        [this](const Line &line) { return !line.voice->stream() && line.since > connectSince_; });
    const bool playing = std::any_of(lines_.begin(), lines_.end(),
                                     [](const Line &line) { return line.voice->wantsToPlay(); });
    if (!fresh && !playing)
        return never;
    if (!fresh && now < connectRetry_)
        return connectRetry_;
    connectSince_ = now;
    connectRetry_ = now + retryEach;
    link.connect(fresh);
    return link.state() == PulseLink::State::Connecting ? connectSince_ + connectLimit
                                                        : connectRetry_;
}

TimePoint OutputThread::serve(Line &line, PulseLink &link, TimePoint now) {
    TimePoint due = provide(line, link, now);
    due = std::min(due, line.voice->service(now));
    if (line.voice->closing()) {
        line.closeBy = std::min(line.closeBy, now + closeLimit);
        due = std::min(due, line.closeBy);
    }
    // A stream that the server would not have, or that hangs, must not keep the others from it.
    if (!usable(line.voice->stream()) && line.voice->stream())
        due = now;
    return due;
}

// Sees to it that the voice has the best stream that is to be had.
TimePoint OutputThread::provide(Line &line, PulseLink &link, TimePoint now) {
    OutputStream *present = line.voice->stream();
    if (usable(present) && !present->silent())
        return never;
    if (present && !usable(present)) {
        line.coming.reset();
        line.retry = link.state() == PulseLink::State::Ready ? now + retryEach : now;
        line.voice->attach(std::make_unique<SilentStream>(line.voice->rate()), now);
        return now;
    }
    if (line.coming && line.coming->state() == OutputStream::State::Idle) {
        line.voice->attach(std::move(line.coming), now);
        return never;
    }
    if (line.coming && !usable(line.coming.get())) {
        line.coming.reset();
        line.retry = now + retryEach;
    }
    const bool ready = link.state() == PulseLink::State::Ready;
    if (!line.coming && ready && now >= line.retry && (!present || line.voice->wantsToPlay()))
        line.coming =
            std::make_unique<PulseStream>(link, line.voice->rate(), line.voice->name(), now);
    if (!present) {
        const bool hope = link.usable() && (line.coming || link.state() != PulseLink::State::Down);
        if (hope && now < line.since + silentAfter)
            return line.since + silentAfter;
        line.voice->attach(std::make_unique<SilentStream>(line.voice->rate()), now);
        return now;
    }
    const bool again = !line.coming && ready && line.voice->wantsToPlay();
    return again ? line.retry : never;
}

} // namespace velmora::platform::sound
