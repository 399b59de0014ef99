#pragma once

// For the processes of death tests, which may be begun by root.

#include <sys/resource.h>
#include <unistd.h>

namespace velmora::tests {

// Nothing is started or allowed for root that is not for others: goes on as one of them.
inline void becomeOrdinaryUser() {
    constexpr gid_t nogroup = 65534;
    constexpr uid_t nobody = 65534;
    if (getuid() == 0 &&
        (setresgid(nogroup, nogroup, nogroup) != 0 || setresuid(nobody, nobody, nobody) != 0))
        _exit(100);
}

inline void allowNoMoreThreads() {
    becomeOrdinaryUser();
    const rlimit none{0, 0};
    setrlimit(RLIMIT_NPROC, &none);
}

} // namespace velmora::tests
