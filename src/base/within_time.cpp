#include "base/within_time.h"

#include <condition_variable>
#include <mutex>
#include <system_error>

namespace velmora {

struct TimedHelper::Desk {
    std::mutex mutex;
    std::condition_variable changed;
    std::function<void()> work;
    bool isClosed = false;
};

TimedHelper::~TimedHelper() {
    if (!desk_)
        return;
    {
        const std::lock_guard lock(desk_->mutex);
        desk_->isClosed = true;
    }
    desk_->changed.notify_one();
    thread_.join();
}

void TimedHelper::serve(Desk &desk) {
    std::unique_lock lock(desk.mutex);
    for (;;) {
        desk.changed.wait(lock, [&] { return desk.work || desk.isClosed; });
        if (!desk.work)
            return;
        auto work = std::exchange(desk.work, nullptr);
        lock.unlock();
        work();
        work = nullptr; // what it owns may take its time to go, too
        lock.lock();
    }
}

bool TimedHelper::give(std::function<void()> work) {
    if (!desk_) {
        const auto desk = std::make_shared<Desk>();
        try {
            thread_ = std::thread([desk] { serve(*desk); });
        } catch (const std::system_error &) {
            return false;
        }
        desk_ = desk;
    }
    {
        const std::lock_guard lock(desk_->mutex);
        desk_->work = std::move(work);
    }
    desk_->changed.notify_one();
    return true;
}

void TimedHelper::letGo() {
    if (!desk_)
        return;
    {
        const std::lock_guard lock(desk_->mutex);
        desk_->isClosed = true;
    }
    desk_->changed.notify_one();
    thread_.detach();
    desk_.reset();
}

} // namespace velmora
