#pragma once

// An array of texts that knows "never allocated", as the scan of result pages counts on.

#include "base/run_time_error.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

class LinkArray {
public:
    // The last index. Raises for an array that was never allocated or has been erased.
    std::int32_t upperBound() const {
        if (texts_.empty())
            raise(ErrorNumber::SubscriptOutOfRange);
        return static_cast<std::int32_t>(texts_.size()) - 1;
    }

    // Raise beyond the bounds.
    const std::u16string &at(std::int32_t index) const {
        check(index);
        return texts_[static_cast<std::size_t>(index)];
    }
    void store(std::int32_t index, std::u16string_view text) {
        check(index);
        texts_[static_cast<std::size_t>(index)] = text;
    }

    // Keeps what fits; new elements are empty.
    void resize(std::int32_t upperBound) {
        texts_.resize(static_cast<std::size_t>(upperBound) + 1);
    }
    void erase() noexcept { texts_.clear(); }

private:
    void check(std::int32_t index) const {
        if (index < 0 || static_cast<std::size_t>(index) >= texts_.size())
            raise(ErrorNumber::SubscriptOutOfRange);
    }

    std::vector<std::u16string> texts_; // empty: never allocated
};

} // namespace velmora
