#include "platform/backends/linux/start_program.h"

#include <pthread.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdint>

namespace velmora::platform {

namespace {

void *reap(void *process) {
    const auto number = static_cast<pid_t>(reinterpret_cast<std::intptr_t>(process));
    while (::waitpid(number, nullptr, 0) < 0 && errno == EINTR) {
    }
    return nullptr;
}

// The process stays a direct child, so that a successor can tell who started it; a small thread
// waits for its end. Without the thread it would be a zombie until this process ends: no harm.
void reapLater(pid_t process) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    pthread_attr_setstacksize(&attributes, std::size_t{64} << 10);
    pthread_t thread{};
    // Signals are for the program's own thread.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    pthread_create(
        &thread, &attributes, &reap,
        reinterpret_cast<void *>(static_cast<std::intptr_t>(process))); // NOLINT: a number
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    pthread_attr_destroy(&attributes);
}

} // namespace

int startProgram(const std::vector<std::string> &arguments) {
    std::vector<char *> words;
    words.reserve(arguments.size() + 1);
    for (const std::string &argument : arguments)
        words.push_back(const_cast<char *>(argument.c_str())); // the interface's fault
    words.push_back(nullptr);

    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t all;
    sigset_t none;
    sigfillset(&all);
    sigemptyset(&none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes,
                             POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    pid_t process = 0;
    const int error =
        ::posix_spawnp(&process, words.front(), nullptr, &attributes, words.data(), environ);
    posix_spawnattr_destroy(&attributes);
    if (error == 0)
        reapLater(process);
    return error;
}

} // namespace velmora::platform
