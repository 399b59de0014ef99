#include "platform/backends/sound/output/quiet_thread.h"

#include <csignal>
#include <system_error>

namespace velmora::platform::sound {

std::thread startQuietThread(std::function<void()> work) {
    std::thread thread;
    // It takes over what is blocked when it begins.
    sigset_t all, old;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &old);
    try {
        thread = std::thread(std::move(work));
    } catch (const std::system_error &) {
        // Told by what is returned.
    }
    pthread_sigmask(SIG_SETMASK, &old, nullptr);
    return thread;
}

} // namespace velmora::platform::sound
