#pragma once

// A file descriptor that closes itself.

#include <unistd.h>

#include <utility>

namespace velmora::platform {

class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int number) noexcept : number_(number) {}
    Descriptor(Descriptor &&other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor &operator=(Descriptor &&other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor() {
        if (number_ >= 0)
            ::close(number_);
    }

    explicit operator bool() const noexcept { return number_ >= 0; }
    int number() const noexcept { return number_; }

    // Closes now; the answer of close(), whose failure may be the first word of a failed write.
    int close() noexcept { return ::close(std::exchange(number_, -1)); }
    // Gives the number away without closing.
    int release() noexcept { return std::exchange(number_, -1); }

private:
    int number_ = -1;
};

} // namespace velmora::platform
