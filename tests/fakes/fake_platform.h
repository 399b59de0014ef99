#pragma once

// One of each fake, and the bundle that the program takes.

#include "platform/contracts/platform.h"
#include "tests/fakes/fake_ansi.h"
#include "tests/fakes/fake_dialogs.h"
#include "tests/fakes/fake_files.h"
#include "tests/fakes/fake_internet.h"
#include "tests/fakes/fake_media.h"
#include "tests/fakes/fake_profiles.h"
#include "tests/fakes/fake_registry.h"
#include "tests/fakes/fake_remote.h"
#include "tests/fakes/fake_system.h"
#include "tests/fakes/fake_windows.h"

namespace velmora::fakes {

struct FakePlatform {
    FakeAnsi ansi;
    FakeClock clock;
    FakeDialogs dialogs;
    FakeFiles files{ansi};
    FakeFolders folders;
    FakeInhibitor inhibitor;
    FakeInternet internet{ansi, files};
    FakeMedia media;
    FakeProcesses processes;
    FakeProfiles profiles{ansi, files};
    FakeRegistry registry{ansi};
    FakeRemote remote;
    FakeShell shell{&files};
    FakeVersionRecords versions{ansi};
    FakeWaitableTimers waitableTimers{clock};
    FakeWaveOut waveOut;
    FakeWindows windows{clock};

    platform::Platform bundle() {
        return {ansi,     clock,    dialogs,        files,    folders,  inhibitor,
                internet, media,    processes,      profiles, registry, remote,
                shell,    versions, waitableTimers, waveOut,  windows};
    }
};

} // namespace velmora::fakes
