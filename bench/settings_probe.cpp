// settings_probe
//
// Times the settings window as a user sees it, on the display of the environment: real windows, a
// registry on the disk, the rest of the platform in memory. Prints one line for each figure, in
// milliseconds: the median and the largest of the warm runs, and the first run of all, which makes
// the window and measures its texts.
//
//   open MEDIAN MAX FIRST      from the click to the painted settings window
//   language MEDIAN MAX FIRST  all texts of all forms, with Main, the list and the settings shown
//   apply MEDIAN MAX FIRST     from the click to every window painted anew

#include "platform/backends/linux/linux.h"
#include "platform/backends/qt/system/qt_windows.h"
#include "platform/backends/registry/sqlite_registry.h"
#include "playback/Main.h"
#include "playlist/playList_Form.h"
#include "settings/Language_Set.h"
#include "settings/playSetForm.h"
#include "settings/setControl.h"
#include "settings/skinSet.h"
#include "tests/fakes/fake_platform.h"
#include "tests/fakes/instead.h"
#include "ui/formSet.h"
#include "velmora.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <system_error>
#include <vector>

using namespace velmora;

namespace {

constexpr int runs = 25;

class Probe {
public:
    Probe(platform::QtWindowSystem &windows, const std::string &folder)
        : windows_(windows), registry_(folder + "/registry.sqlite", fake_.ansi), app_(bundle()) {
        app_.skinSet().skin_All();
        app_.Language_Set().apply_Language();
        app_.Main().show();
        app_.playList_Form().show();
        settle();
    }

    void run() {
        std::int32_t language = 0;
        const auto next = [&language] { return language = (language + 1) % 4; };
        measure(
            "open", [this] { app_.Main().playSet_Button_Click(); },
            [this] { app_.playSetForm().qx_Click(); });
        app_.Main().playSet_Button_Click();
        settle();
        measure(
            "language",
            [this, next] {
                app_.setControl().Language_Index = next();
                app_.Language_Set().apply_Language();
            },
            [] {});
        measure(
            "apply",
            [this, next] {
                app_.playSetForm().language_Load(next());
                app_.playSetForm().yy_Click();
            },
            [] {});
    }

private:
    platform::Platform bundle() {
        return fakes::with(fake_.bundle(), {.registry = &registry_, .windows = &windows_});
    }

    // Handles what is pending and paints what has changed.
    void settle() {
        for (int i = 0; i < 5; ++i)
            windows_.DoEvents();
        for (forms::Form *form : std::initializer_list<forms::Form *>{
                 &app_.Main(), &app_.playList_Form(), &app_.playSetForm()})
            if (form->visible())
                form->refresh();
    }

    void measure(const char *name, const std::function<void()> &work,
                 const std::function<void()> &afterwards) {
        std::vector<double> times;
        for (int run = 0; run <= runs; ++run) {
            const auto begun = std::chrono::steady_clock::now();
            work();
            settle();
            const std::chrono::duration<double, std::milli> took =
                std::chrono::steady_clock::now() - begun;
            times.push_back(took.count());
            afterwards();
            settle();
        }
        const double first = times.front();
        times.erase(times.begin());
        std::sort(times.begin(), times.end());
        std::printf("%s %.1f %.1f %.1f\n", name, times[times.size() / 2], times.back(), first);
    }

    platform::QtWindowSystem &windows_;
    fakes::FakePlatform fake_;
    platform::SqliteRegistry registry_;
    Velmora app_;
};

} // namespace

int main() {
    char pattern[] = "/tmp/velmora-probe-XXXXXX";
    const char *folder = ::mkdtemp(pattern);
    const auto windows = platform::QtWindowSystem::make({});
    if (folder == nullptr || windows == nullptr)
        return 1;
    {
        Probe probe(*windows, folder);
        probe.run();
    }
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
    return 0;
}
