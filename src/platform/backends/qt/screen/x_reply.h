#pragma once

#include <cstdlib>
#include <memory>

namespace velmora::platform::qt {

struct FreeReply {
    void operator()(void *reply) const noexcept { std::free(reply); }
};
// What the X library hands out and leaves to its caller.
template <typename Reply> using Owned = std::unique_ptr<Reply, FreeReply>;

} // namespace velmora::platform::qt
