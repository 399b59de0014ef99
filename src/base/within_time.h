#pragma once

// A wait with a limit for work that may never come back: a question to a disk that does not answer.

#include <chrono>
#include <future>
#include <memory>
#include <optional>
#include <system_error>
#include <thread>
#include <type_traits>
#include <utility>

namespace velmora {

// Does the work on a thread of its own and waits for its result; what it raises is raised here. No
// value: the time is over. The work then goes on unseen, for as long as it may take, so it must own
// all that it uses; its result goes with it. Where no thread is to be had the work is done here.
template <class Work> auto withinTime(std::chrono::milliseconds limit, Work work)
    -> std::optional<std::invoke_result_t<Work &>> {
    using Task = std::packaged_task<std::invoke_result_t<Work &>()>;
    const auto task = std::make_shared<Task>(std::move(work));
    auto result = task->get_future();
    try {
        std::thread([task] { (*task)(); }).detach();
    } catch (const std::system_error &) {
        (*task)();
    }
    if (result.wait_for(limit) != std::future_status::ready)
        return std::nullopt;
    return result.get();
}

} // namespace velmora
