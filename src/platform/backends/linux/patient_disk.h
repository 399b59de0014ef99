#pragma once

// Questions to disks that may not answer: the mount of a server that is gone, a failing drive. The
// window cannot be drawn while its thread waits for one, so each waits for a while only.

#include "base/within_time.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velmora::platform {

// The mount point that a path lies on by its text alone, without asking the disk: links on the way
// do not count. `mounts`: what the system tells of its mounts (/proc/self/mountinfo).
std::string mountPointOf(std::string_view path, std::string_view mounts);

// Used from one thread.
class PatientDisk {
public:
    using Clock = std::chrono::steady_clock;
    enum class About { Names, Bytes };

    explicit PatientDisk(std::chrono::milliseconds limit = std::chrono::seconds(3),
                         std::function<Clock::time_point()> now = Clock::now)
        : limit_(limit), now_(std::move(now)) {}

    // Does what asks the disk about this path. No value: it does not answer in time. The work owns
    // all that it uses, since it may go on for long. A disk that owes an answer is not waited for
    // so long again. A folder that has just answered is asked for names without further care: a
    // thread for each of a thousand would cost more than they do. Bytes are another matter: the
    // system may know the names by heart.
    template <class Work> auto ask(const std::string &path, Work work, About about = About::Names)
        -> std::optional<std::invoke_result_t<Work &>> {
        std::string folder = path.substr(0, path.rfind('/') + 1);
        if (about == About::Names && hasJustAnswered(folder))
            return work();
        const bool owes = owesAnswer(path);
        if (owed_.size() >= mostOwed)
            return std::nullopt;
        const auto answered = std::make_shared<std::atomic<bool>>(false);
        auto answer =
            withinTime(owes ? limit_ / 10 : limit_, [work = std::move(work), answered]() mutable {
                const Mark mark{*answered};
                return work();
            });
        note(std::move(folder), answer.has_value(), answered);
        return answer;
    }

    // Whether the disk of this path owes an answer and gives none now.
    bool isSilent(const std::string &path);

private:
    // Each holds a thread.
    static constexpr std::size_t mostOwed = 32;

    struct Mark {
        std::atomic<bool> &mark;
        ~Mark() { mark = true; }
    };
    struct Owed {
        std::string folder;
        std::shared_ptr<std::atomic<bool>> answered;
    };

    bool hasJustAnswered(const std::string &folder) const;
    bool owesAnswer(const std::string &path);
    void note(std::string folder, bool inTime, std::shared_ptr<std::atomic<bool>> answered);

    std::chrono::milliseconds limit_;
    std::function<Clock::time_point()> now_;
    std::string answeredFolder_;
    Clock::time_point answeredAt_;
    std::vector<Owed> owed_;
};

} // namespace velmora::platform
