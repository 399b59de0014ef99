#pragma once

// The wish of the system that the process end: signals, and the end of the desktop session.

#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace velmora::platform::qt {

class SessionEnd {
public:
    // `asked` is called from the loop.
    explicit SessionEnd(std::function<void()> asked);
    ~SessionEnd();
    SessionEnd(const SessionEnd &) = delete;
    SessionEnd &operator=(const SessionEnd &) = delete;

private:
    class LastWord;
    std::function<void()> asked_;
    std::unique_ptr<LastWord> lastWord_;
    int pipe_[2] = {-1, -1};
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace velmora::platform::qt
