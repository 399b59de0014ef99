#include "platform/backends/sound/output/wake_up.h"

#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>

namespace velmora::platform::sound {

WakeUp::WakeUp() : fd_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

WakeUp::~WakeUp() {
    if (fd_ >= 0)
        close(fd_);
}

void WakeUp::signal() {
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(fd_, &one, sizeof one);
}

void WakeUp::drain() {
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t got = read(fd_, &count, sizeof count);
}

} // namespace velmora::platform::sound
