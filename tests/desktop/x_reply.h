#pragma once

// What the X server answers, freed with its owner.

#include <cstdlib>
#include <memory>

namespace velmora::tests {

struct FreeReply {
    void operator()(void *reply) const noexcept { std::free(reply); }
};
template <typename Reply> std::unique_ptr<Reply, FreeReply> owned(Reply *reply) {
    return std::unique_ptr<Reply, FreeReply>(reply);
}

} // namespace velmora::tests
