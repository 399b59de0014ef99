#pragma once

// A platform that takes some of its services from elsewhere, real ones mostly, and the rest as they
// are. A test names what it replaces, and stays as it is when the platform gets another service.

#include "platform/contracts/platform.h"

namespace velmora::fakes {

// What stands in for a service; null keeps the one there is.
struct Instead {
    platform::AnsiText *ansi = nullptr;
    platform::Clock *clock = nullptr;
    platform::Dialogs *dialogs = nullptr;
    platform::FileSystem *files = nullptr;
    platform::Folders *folders = nullptr;
    platform::Inhibitor *inhibitor = nullptr;
    platform::Internet *internet = nullptr;
    platform::MediaControl *media = nullptr;
    platform::Processes *processes = nullptr;
    platform::Profiles *profiles = nullptr;
    platform::Registry *registry = nullptr;
    platform::Remote *remote = nullptr;
    platform::Shell *shell = nullptr;
    platform::VersionRecords *versions = nullptr;
    platform::WaitableTimers *waitableTimers = nullptr;
    platform::WaveOut *waveOut = nullptr;
    platform::WindowSystem *windows = nullptr;
};

inline platform::Platform with(const platform::Platform &all, const Instead &instead) {
    const auto pick = [](auto *other, auto &own) -> auto & {
        return other != nullptr ? *other : own;
    };
    return {.ansi = pick(instead.ansi, all.ansi),
            .clock = pick(instead.clock, all.clock),
            .dialogs = pick(instead.dialogs, all.dialogs),
            .files = pick(instead.files, all.files),
            .folders = pick(instead.folders, all.folders),
            .inhibitor = pick(instead.inhibitor, all.inhibitor),
            .internet = pick(instead.internet, all.internet),
            .media = pick(instead.media, all.media),
            .processes = pick(instead.processes, all.processes),
            .profiles = pick(instead.profiles, all.profiles),
            .registry = pick(instead.registry, all.registry),
            .remote = pick(instead.remote, all.remote),
            .shell = pick(instead.shell, all.shell),
            .versions = pick(instead.versions, all.versions),
            .waitableTimers = pick(instead.waitableTimers, all.waitableTimers),
            .waveOut = pick(instead.waveOut, all.waveOut),
            .windows = pick(instead.windows, all.windows)};
}

} // namespace velmora::fakes
