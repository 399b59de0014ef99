#include "platform/backends/qt/window/window_place.h"

#include <algorithm>

namespace velmora::platform::qt {

namespace {
constexpr std::size_t most = 64;
}

void WindowPlace::asked(QPoint position) {
    if (!asked_.empty() && asked_.back() == position)
        return;
    if (asked_.size() == most)
        asked_.pop_front();
    asked_.push_back(position);
}

std::optional<QPoint> WindowPlace::reported(QPoint position) {
    const auto found = std::find(asked_.begin(), asked_.end(), position);
    if (found == asked_.end()) {
        asked_.clear();
        return position;
    }
    // Reports come in order: what was asked for before this one was passed over. The last one is
    // kept: it may be reported again.
    asked_.erase(asked_.begin(), found);
    return std::nullopt;
}

} // namespace velmora::platform::qt
