#pragma once

// Ends the process's right to write beyond some bytes, as a full disk does, while it lives.

#include <csignal>
#include <sys/resource.h>

namespace velmora {

class WriteLimit {
public:
    explicit WriteLimit(::rlim_t bytes) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        handler_ = ::signal(SIGXFSZ, SIG_IGN);
        ::rlimit limit = before_;
        limit.rlim_cur = bytes;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~WriteLimit() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        ::signal(SIGXFSZ, handler_);
    }
    WriteLimit(const WriteLimit &) = delete;
    WriteLimit &operator=(const WriteLimit &) = delete;

private:
    ::rlimit before_{};
    void (*handler_)(int) = SIG_DFL;
};

} // namespace velmora
