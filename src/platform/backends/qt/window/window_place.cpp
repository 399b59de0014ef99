#include "platform/backends/qt/window/window_place.h"

#include <algorithm>

namespace velmora::platform::qt {

namespace {
constexpr std::size_t most = 64;
// A window manager that does not tell what it took is not expected to take longer to answer; what
// comes later is a move of its own.
constexpr std::chrono::seconds answerLimit{1};
constexpr std::chrono::milliseconds restTime{300};
constexpr std::chrono::milliseconds silence{700};
// One that tells is known to be still at it, unless it has gone.
constexpr std::chrono::seconds turnLimit{5};
} // namespace

void WindowPlace::asked(QPoint position, bool isManaged, Clock::time_point now) {
    askedAt_ = now;
    awaitsAnswer_ = isManaged;
    heard_ = false;
    if (isManaged)
        ++asks_;
    if (!asked_.empty() && asked_.back() == position)
        return;
    if (asked_.size() == most)
        asked_.pop_front();
    asked_.push_back(position);
}

void WindowPlace::took(std::uint64_t asks) { took_ = std::max(took_, asks); }

bool WindowPlace::isAtRest(Clock::time_point now) const {
    if (!awaitsAnswer_ || tookAll())
        return true;
    return now - askedAt_ >= (took_ != 0 ? turnLimit : restTime);
}

bool WindowPlace::isUnanswered(Clock::time_point now) const {
    const bool isAtIt = took_ != 0 && !tookAll();
    return isAwaited() && now - askedAt_ >= (isAtIt ? turnLimit : Clock::duration(silence));
}

WindowPlace::Report WindowPlace::reported(QPoint position, Clock::time_point now) {
    const auto found = std::find(asked_.begin(), asked_.end(), position);
    if (found != asked_.end()) {
        // Reports come in order: what was asked for before this one was passed over. The last one
        // is kept: it may be reported again.
        asked_.erase(asked_.begin(), found);
        if (asked_.size() > 1)
            return Report::Passed;
        heard_ = true;
        awaitsAnswer_ = false;
        return Report::Granted;
    }
    heard_ = true;
    const bool isAtIt = took_ != 0 && !tookAll();
    if (awaitsAnswer_ && now - askedAt_ < (isAtIt ? turnLimit : answerLimit))
        return Report::Refused;
    asked_.clear();
    return Report::Moved;
}

WindowPlace::Report WindowPlace::found(QPoint position, Clock::time_point now) {
    if (!isAwaited()) {
        asked_.clear();
        return Report::Moved;
    }
    asked_.erase(asked_.begin(), asked_.end() - 1);
    if (asked_.front() == position)
        return reported(position, now);
    // A manager that is only slow may still grant it.
    askedAt_ = now;
    heard_ = true;
    return Report::Refused;
}

} // namespace velmora::platform::qt
