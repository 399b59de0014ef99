// Makes the platform and hands it to the program. The only file that knows both sides.

#include "playback/Main.h"
#include "base/run_time_error.h"
#include "platform/backends/bus/desktop_bus.h"
#include "platform/backends/curl/curl_internet.h"
#include "platform/backends/linux/home_folders.h"
#include "platform/backends/linux/linux.h"
#include "platform/backends/media/mci_interpreter.h"
#include "platform/backends/picture/picture.h"
#include "platform/backends/qt/system/qt_dialogs.h"
#include "platform/backends/qt/system/qt_windows.h"
#include "platform/backends/registry/active_page.h"
#include "platform/backends/registry/sqlite_registry.h"
#include "platform/backends/sound/device/sound.h"
#include "playback/remoteControl.h"
#include "settings/setControl.h"
#include "velmora.h"

#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using namespace velmora;

// Who depends on assistive technology would rather wait for a slow bus than do without.
constexpr std::chrono::seconds busPatience{2};

void note(std::string_view line) {
    std::fprintf(stderr, "velmora: %.*s\n", static_cast<int>(line.size()), line.data());
}

std::vector<std::u16string> hostsOf(setControl &settings) {
    return {settings.get_LrcSearchHost(), settings.get_LrcSiteAHost(), settings.get_LrcSiteBHost(),
            settings.get_SongSearchHost(), settings.get_MakerHost()};
}

platform::DialogHost dialogHost(platform::QtWindowSystem &windows, platform::ToolkitDialogs &own) {
    platform::DialogHost host;
    host.wait = [&windows](const auto &done, auto limit) { return windows.waitModal(done, limit); };
    host.nativeWindow = [&windows](platform::HWND window) { return windows.nativeWindow(window); };
    host.coversOthers = [&windows] { return windows.coversOthers(); };
    host.mayReplace = [&own](std::u16string_view path, std::u16string_view title) {
        return own.mayReplace(path, title);
    };
    return host;
}

// `running` is null until there is a program whose settings can be asked; all must outlive the
// result.
std::unique_ptr<platform::Internet> internetOf(const platform::AnsiText &ansi,
                                               const platform::FileCalls &calls,
                                               platform::QtWindowSystem &windows,
                                               Velmora *const &running) {
    const auto hosts = [&running] {
        return running != nullptr ? hostsOf(running->setControl()) : std::vector<std::u16string>();
    };
    const auto pinned = [&running] {
        return running != nullptr ? platform::PinnedServer{running->setControl().get_MakerHost(),
                                                           running->setControl().get_MakerPin()}
                                  : platform::PinnedServer();
    };
    const auto watch = [&windows](int descriptor, std::function<void()> ready) {
        return windows.watch(descriptor, std::move(ready));
    };
    return platform::makeInternet(ansi, hosts, {}, calls, pinned, watch);
}

int play() {
    platform::QtOptions windowOptions;
    windowOptions.note = note;
    windowOptions.withoutBus = !platform::sessionBusAnswers(busPatience);
    const auto windows = platform::QtWindowSystem::make(windowOptions);
    if (windows == nullptr)
        return 1; // it has said why

    const platform::HomeFolders homes = platform::homeFolders();
    platform::SqliteRegistry *settings = nullptr;
    const auto ansi = platform::makeAnsiText(
        [&settings] { return platform::activePage(*settings); }, platform::textLocale());
    platform::SqliteRegistry registry(homes.registryFile(), *ansi);
    settings = &registry;
    const auto clock = platform::makeClock();
    const platform::FileCalls calls = platform::makeFileCalls(homes);
    const auto files = platform::makeFileSystem(*ansi, calls);
    const auto folders = platform::makeFolders(homes);
    platform::PictureOptions pictures;
    pictures.pixelScale = [&windows] { return windows->pixelScale(); };
    pictures.soundServerAnswers = [] { return platform::sound::soundServerAnswers(); };
    platform::sound::SoundOptions sound;
    sound.quiet = std::make_shared<platform::sound::QuietWish>();
    const auto quiet = sound.quiet;
    platform::media::MciInterpreter media(platform::sound::makeSoundOpener(std::move(sound)),
                                          platform::makePictureOpener(pictures));
    platform::DesktopBus *onBus = nullptr;
    const auto processes = platform::makeProcesses(homes, [&registry, &onBus] {
        registry.flush();
        if (onBus != nullptr)
            onBus->beforeEnd();
    });
    const auto shell = platform::makeShell();
    const auto versions = platform::makeVersionRecords(*ansi);
    const auto waitableTimers =
        platform::makeWaitableTimers([&windows](std::chrono::steady_clock::time_point due) {
            return windows->waitForEvents(due);
        });
    const auto waveOut = platform::sound::makePulseWaveOut();
    const auto profiles = platform::makeProfiles(*files, *ansi);
    Velmora *running = nullptr;
    const auto internet = internetOf(*ansi, calls, *windows, running);
    const auto ownDialogs = platform::makeQtDialogs(*windows, *ansi, calls);

    platform::DesktopBus desktop(homes, [&windows](int descriptor, std::function<void()> ready) {
        return windows->watch(descriptor, std::move(ready));
    });

    windows->setStatusItem(&desktop.statusItem());
    onBus = &desktop;
    platform::Dialogs &dialogs = desktop.dialogs(*ownDialogs, dialogHost(*windows, *ownDialogs));

    Velmora program({*ansi, *clock, dialogs, *files, *folders, desktop.inhibitor(), *internet,
                     media, *processes, *profiles, registry, desktop.remote(), *shell, *versions,
                     *waitableTimers, *waveOut, *windows});
    running = &program; // NOLINT(clang-analyzer-deadcode.DeadStores): what was handed it reads it
    // The session's end is the close button.
    windows->onSessionEnd = [&program] { program.Main().closeButton_Click(); };
    const auto watched = windows->watch(
        quiet->descriptor(), [&program, &quiet] { program.remoteControl().quiet(quiet->take()); });
    program.start();
    return windows->run();
}

} // namespace

int main() { return play(); }
