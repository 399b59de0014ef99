#pragma once

// A wait with a limit for work that may never come back: a question to a disk that does not answer.

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <thread>
#include <type_traits>
#include <utility>

namespace velmora {

// Does one work after the other on a thread that lasts: beginning a thread takes longer than most
// of what it would do. The thread begins with the first work and waits without a cost. One whose
// work is late is given up, and the next work gets another. Used from one thread.
class TimedHelper {
public:
    TimedHelper() = default;
    ~TimedHelper();
    TimedHelper(const TimedHelper &) = delete;
    TimedHelper &operator=(const TimedHelper &) = delete;

    // Does the work there and waits for its result; what it raises is raised here. No value: the
    // time is over. The work then goes on unseen, for as long as it may take, so it must own all
    // that it uses; its result goes with it. Where no thread is to be had the work is done here.
    template <class Work> auto within(std::chrono::milliseconds limit, Work work)
        -> std::optional<std::invoke_result_t<Work &>> {
        using Task = std::packaged_task<std::invoke_result_t<Work &>()>;
        const auto task = std::make_shared<Task>(std::move(work));
        auto result = task->get_future();
        if (!give([task] { (*task)(); }))
            (*task)();
        if (result.wait_for(limit) != std::future_status::ready) {
            letGo();
            return std::nullopt;
        }
        return result.get();
    }

private:
    struct Desk;
    static void serve(Desk &desk);
    bool give(std::function<void()> work); // false: there is no thread
    void letGo();

    std::shared_ptr<Desk> desk_; // shared with the thread; null: there is none
    std::thread thread_;
};

// The same for work that comes alone.
template <class Work> auto withinTime(std::chrono::milliseconds limit, Work work) {
    TimedHelper helper;
    return helper.within(limit, std::move(work));
}

} // namespace velmora
