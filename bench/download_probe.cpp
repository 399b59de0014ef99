// download_probe MEGABYTES
//
// Fetches a song of that size from a server of its own on the loopback interface, through the song
// search window on the display of the environment: real windows, network and disk, packets of 1024
// bytes, every event and every pump. Prints seconds, medians of three rounds:
//
//   window WALL CPU       the download with its window shown
//   longest MILLISECONDS  between two moments at which the window could answer
//   floor WALL CPU        the least program that does it: the same library, the same writes, and a
//                         bare window that tells of each packet at most once in 16 ms
//   curl WALL CPU         the same file by the curl tool, where there is one

#include "bench/download_floor.h"
#include "loopback_server.h"
#include "network/search_Song_Internet_Form.h"
#include "platform/backends/curl/curl_internet.h"
#include "platform/backends/linux/linux.h"
#include "platform/backends/qt/system/qt_windows.h"
#include "playback/Main.h"
#include "settings/setControl.h"
#include "settings/skinSet.h"
#include "tests/fakes/fake_platform.h"
#include "tests/fakes/instead.h"
#include "velmora.h"

#include <QTimer>

#include <sys/resource.h>

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

constexpr int rounds = 3;

double secondsOf(const ::timeval &time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

// User and system time of a thread (the server has its own) or of the children.
double cpuSeconds(int who) {
    struct ::rusage usage {};
    ::getrusage(static_cast<__rusage_who_t>(who), &usage);
    return secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime);
}

struct Cost {
    double wall = 0; // seconds
    double cpu = 0;
};

Cost costOf(int who, const std::function<void()> &work) {
    const double before = cpuSeconds(who);
    const auto begun = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begun;
    return {took.count(), cpuSeconds(who) - before};
}

// The one with the median processor time.
void print(const char *name, std::vector<Cost> costs) {
    std::sort(costs.begin(), costs.end(),
              [](const Cost &a, const Cost &b) { return a.cpu < b.cpu; });
    const Cost &median = costs[costs.size() / 2];
    std::printf("%s %.2f %.2f\n", name, median.wall, median.cpu);
}

class Probe {
public:
    Probe(platform::QtWindowSystem &windows, const std::string &folder)
        : windows_(windows), files_(platform::makeFileSystem(fake_.ansi)),
          profiles_(platform::makeProfiles(*files_, fake_.ansi)), clock_(platform::makeClock()),
          internet_(
              platform::makeInternet(fake_.ansi, [] { return std::vector<std::u16string>(); })),
          app_(bundle()) {
        app_.skinSet().skin_All();
        app_.setControl().Path_Cache = fake_.ansi.decodePath(folder);
        app_.Main().show();
        form_.show();
        for (int i = 0; i < 20; ++i)
            windows_.DoEvents();
    }

    bool fetch(const std::u16string &url, Cost &cost) {
        form_.search_Song_List.clear();
        form_.List1.clear();
        form_.List2.clear();
        form_.search_Song_List.addItem(url);
        form_.List1.addItem(url);
        form_.List2.addItem(u"0@@SONG@@ALBUM@@SINGER@@1@@MP3");
        form_.search_Song_List.setListIndex(0);
        cost = costOf(RUSAGE_THREAD, [this] { form_.save_Click(); });
        return form_.title.caption() == u"曲目网络搜索 - 下载成功！";
    }

    // Fetches it in a round of its own, since a clock that is read at each packet has its cost.
    bool watch(const std::u16string &url, double &longestMs) {
        const auto progress = form_.wd.Progress;
        auto last = std::chrono::steady_clock::now();
        std::chrono::duration<double, std::milli> longest{};
        form_.wd.Progress = [&](double total, double received, double speed) {
            progress(total, received, speed);
            const auto now = std::chrono::steady_clock::now();
            longest = std::max<std::chrono::duration<double, std::milli>>(longest, now - last);
            last = now;
        };
        Cost passed;
        const bool good = fetch(url, passed);
        form_.wd.Progress = progress;
        longestMs = longest.count();
        return good;
    }

private:
    platform::Platform bundle() {
        return fakes::with(fake_.bundle(), {.clock = clock_.get(),
                                            .files = files_.get(),
                                            .internet = internet_.get(),
                                            .profiles = profiles_.get(),
                                            .windows = &windows_});
    }

    platform::QtWindowSystem &windows_;
    fakes::FakePlatform fake_;
    std::unique_ptr<platform::FileSystem> files_;
    std::unique_ptr<platform::Profiles> profiles_;
    std::unique_ptr<platform::Clock> clock_;
    std::unique_ptr<platform::Internet> internet_;
    Velmora app_;
    search_Song_Internet_Form &form_ = app_.search_Song_Internet_Form();
};

} // namespace

int main(int count, char **arguments) {
    const std::uint64_t bytes = (count > 1 ? std::strtoull(arguments[1], nullptr, 10) : 64) << 20;
    char pattern[] = "/tmp/velmora-probe-XXXXXX";
    const char *folder = ::mkdtemp(pattern);
    const auto windows = platform::QtWindowSystem::make({});
    if (folder == nullptr || windows == nullptr)
        return 1;
    testing::LoopbackServer server([bytes](testing::Talk &talk, const std::string &) {
        talk.send("HTTP/1.1 200 OK\r\nContent-Type: audio/mpeg\r\nContent-Length: " +
                  std::to_string(bytes) + "\r\n\r\n");
        talk.sendZeros(bytes);
    });
    const std::string address = "http://127.0.0.1:" + std::to_string(server.port()) + "/song.mp3";
    const std::string command = "curl -s -o " + std::string(folder) + "/curl.mp3 " + address;
    Probe probe(*windows, folder);
    std::vector<Cost> window;
    std::vector<Cost> floor;
    std::vector<Cost> curl;
    const auto makeRoom = [folder] {
        for (const auto &entry : std::filesystem::directory_iterator(folder))
            std::filesystem::remove_all(entry);
    };
    bool good = true;
    double longestMs = 0;
    const auto measure = [&] {
        // The first round counts for nothing: who first fills the disk's cache pays for memory that
        // the machine never used before.
        for (int round = 0; round <= rounds; ++round) {
            Cost own;
            good &= probe.fetch(server.url(u"/song.mp3"), own);
            window.push_back(own);
            makeRoom();
            floor.push_back(costOf(RUSAGE_THREAD, [&] {
                good &= bench::fetchLeast(address, std::string(folder) + "/floor.mp3");
            }));
            makeRoom();
            curl.push_back(
                costOf(RUSAGE_CHILDREN, [&] { good &= std::system(command.c_str()) == 0; }));
            makeRoom();
        }
        good &= probe.watch(server.url(u"/song.mp3"), longestMs);
        makeRoom();
        windows->quit(0);
    };
    // From inside the loop, as a click has it: ahead of the loop, in the start sequence, each pump
    // paints whatever changed.
    QTimer::singleShot(0, measure);
    windows->run();
    for (std::vector<Cost> *costs : {&window, &floor, &curl})
        costs->erase(costs->begin());
    print("window", window);
    std::printf("longest %.1f\n", longestMs);
    print("floor", floor);
    print("curl", curl);
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
    return good ? 0 : 1;
}
