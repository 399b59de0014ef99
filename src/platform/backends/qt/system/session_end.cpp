#include "platform/backends/qt/system/session_end.h"

#include <QEvent>
#include <QGuiApplication>

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>

namespace velmora::platform::qt {

namespace {

constexpr int handled[] = {SIGTERM, SIGINT, SIGHUP};
// A peer that has gone and a limit on the size of files fail the write that meets them, no more.
constexpr int ignored[] = {SIGPIPE, SIGXFSZ};

// A signal handler has no other way to know where to write.
std::atomic<int> signalPipe{-1};

void onSignal(int) {
    const int before = errno;
    const char one = 1;
    [[maybe_unused]] const ssize_t written = write(signalPipe.load(), &one, 1);
    errno = before;
}

} // namespace

// What the toolkit makes of the session manager's last word; its question ahead of that, whether
// there is anything to save, is no end: whoever logs out may change their mind.
class SessionEnd::LastWord : public QObject {
public:
    explicit LastWord(const std::function<void()> &asked) : asked_(asked) {
        qGuiApp->installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override {
        if (event->type() != QEvent::Quit || watched != qGuiApp)
            return false;
        asked_();
        return true;
    }

private:
    const std::function<void()> &asked_;
};

SessionEnd::SessionEnd(std::function<void()> asked)
    : asked_(std::move(asked)), lastWord_(std::make_unique<LastWord>(asked_)) {
    for (const int signal : ignored)
        std::signal(signal, SIG_IGN);
    if (pipe2(pipe_, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    notifier_ = std::make_unique<QSocketNotifier>(pipe_[0], QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] {
        char bytes[16];
        while (read(pipe_[0], bytes, sizeof bytes) > 0) {
        }
        asked_();
    });
    signalPipe = pipe_[1];
    struct sigaction action = {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const int signal : handled)
        sigaction(signal, &action, nullptr);
}

SessionEnd::~SessionEnd() {
    if (pipe_[0] < 0)
        return;
    for (const int signal : handled)
        std::signal(signal, SIG_DFL);
    signalPipe = -1;
    notifier_.reset();
    close(pipe_[0]);
    close(pipe_[1]);
}

} // namespace velmora::platform::qt
