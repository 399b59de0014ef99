#pragma once

// The rest of the desktop in memory: notes what it is told, and lets a test ask.

#include "platform/contracts/inhibitor.h"
#include "platform/contracts/remote.h"

#include <vector>

namespace velmora::fakes {

class FakeRemote : public platform::Remote {
public:
    platform::RemoteControlled *player = nullptr; // once it can be asked
    std::vector<platform::NowPlaying> published;
    std::vector<std::int32_t> jumps;
    int raisedOthers = 0;

    const platform::NowPlaying &now() const { return published.back(); }

    void start(platform::RemoteControlled &controlled) override { player = &controlled; }
    void publish(const platform::NowPlaying &now) noexcept override { published.push_back(now); }
    void seeked(std::int32_t ms) noexcept override { jumps.push_back(ms); }
    void raiseOther() noexcept override { ++raisedOthers; }
};

class FakeInhibitor : public platform::Inhibitor {
public:
    std::vector<platform::Awake> kept; // each wish, in order

    platform::Awake now() const { return kept.empty() ? platform::Awake() : kept.back(); }
    void keep(const platform::Awake &awake) noexcept override { kept.push_back(awake); }
};

} // namespace velmora::fakes
