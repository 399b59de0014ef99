// list_probe [--quick | PART [TREE]]
//
// Works on the play list as a user does, on a screen of its own: real windows, files and saves.
// Prints the rows of a Markdown table. With the name of a part (adding, choosing, scrolling,
// removing) only that one; a tree is added in place of one made for it.
//
//   adding     a folder tree of 100,000 files, 30,000 of them media, with its subfolders, beside
//              `find` on the same tree; the longest time in which no event was handled
//   choosing   all of 32,767 rows, and a search in them
//   scrolling  32,767 rows at each step from the wheel's or thumb's move to the pixels on the
//              screen, and what is late when the steps come 60 times a second
//   removing   1,000 of 10,000 rows, with the save for each row

#include "bench/screen_program.h"
#include "playlist/listControl_Form.h"
#include "ui/formSet.h"

#include <xcb/xcb.h>

#include <cstdio>
#include <string_view>

using namespace velmora;
using namespace velmora::bench;

namespace {

using std::chrono::steady_clock;

constexpr int mostRows = 32767;
constexpr auto frame = std::chrono::nanoseconds(1'000'000'000 / 60);

int framesOf(bool quick) { return quick ? 60 : 600; }

class Probe {
public:
    Probe(const tests::XSession &session, bool quick)
        : quick_(quick), program_(session, folder_.path()),
          connection_(xcb_connect(session.display().c_str(), nullptr)) {}
    ~Probe() { xcb_disconnect(connection_); }
    Probe(const Probe &) = delete;
    Probe &operator=(const Probe &) = delete;

    void adding(std::string tree);
    void choosing();
    void scrolling();
    void removing();

private:
    void makeTree(const std::string &root) const;
    double cpuOfFind(const std::string &tree) const;
    double addTree(
        const std::string &tree, const std::function<void()> &onYes = [] {});
    void longestGap(const std::string &tree);
    void waitForServer() const;
    double scrollTo(std::int32_t row);
    void scrollPaced(const char *name, int rowsAStep);
    int paced(std::vector<double> &times, const std::function<double(int)> &work);
    void paintPaced();

    playList_Form &form() { return program_.app.playList_Form(); }

    bool quick_;
    double mostWorkMs_ = 0; // of the program in one step of scrolling
    Folder folder_;
    ScreenProgram program_;
    xcb_connection_t *connection_;
};

// --- adding --------------------------------------------------------------------------------------

// 100 artists of 20 albums of 50 files: 15 tracks and what else lies beside them.
void Probe::makeTree(const std::string &root) const {
    const int artists = quick_ ? 10 : 100;
    for (int artist = 0; artist < artists; ++artist) {
        for (int album = 0; album < 20; ++album) {
            const std::string at = root + "/Artist " + std::to_string(artist) + "/Album " +
                                   std::to_string(album) + "/";
            std::filesystem::create_directories(at);
            for (int file = 0; file < 50; ++file) {
                const std::string name = std::to_string(file) + " A name of usual length";
                std::ofstream(at + name + (file < 15 ? ".mp3" : ".jpg"));
            }
        }
    }
}

double Probe::cpuOfFind(const std::string &tree) const {
    const std::string command = "exec find '" + tree + "' -type f >/dev/null";
    std::vector<double> times;
    for (int run = 0; run < 7; ++run) {
        const double before = cpuSeconds(RUSAGE_CHILDREN);
        if (std::system(command.c_str()) != 0)
            return 0;
        times.push_back(cpuSeconds(RUSAGE_CHILDREN) - before);
    }
    return quantile(times, 0.5);
}

double Probe::addTree(const std::string &tree, const std::function<void()> &onYes) {
    form().playList_Item.clear();
    form().List1.clear();
    program_.fake.dialogs.expectFolder(fromUtf8(tree));
    double took = 0;
    program_.handle([&] {
        double before = 0;
        program_.answerYes([&] {
            before = cpuSeconds();
            onYes();
        });
        form().addDir_Click();
        took = cpuSeconds() - before;
    });
    return took;
}

// An event is due all the time; it is handled when the program lets events through.
void Probe::longestGap(const std::string &tree) {
    Ms longest{0};
    double longestCpu = 0;
    auto last = steady_clock::now();
    double lastCpu = 0;
    QTimer beat;
    const auto reached = [&] {
        longest = std::max(longest, since(last));
        longestCpu = std::max(longestCpu, cpuSeconds() - lastCpu);
        last = steady_clock::now();
        lastCpu = cpuSeconds();
    };
    QObject::connect(&beat, &QTimer::timeout, reached);
    addTree(tree, [&] {
        last = steady_clock::now();
        lastCpu = cpuSeconds();
        beat.start(1);
    });
    reached(); // the save at the end is part of it
    std::printf(
        "| longest time without an event handled | %.1f ms, the most work between two %.1f ms |\n",
        longest.count(), longestCpu * 1000);
}

void Probe::adding(std::string tree) {
    const Folder made;
    if (tree.empty()) {
        tree = made.path();
        makeTree(tree);
    }
    const double find = cpuOfFind(tree);
    std::vector<double> cpu;
    std::vector<double> wall;
    const double serverBefore = serverCpuSeconds(connection_);
    const int runs = 5;
    for (int run = 0; run < runs; ++run) {
        const auto begun = steady_clock::now();
        cpu.push_back(addTree(tree));
        wall.push_back(since(begun).count());
    }
    const double server = (serverCpuSeconds(connection_) - serverBefore) / runs;
    const int tracks = form().List1.listCount();
    const double program = quantile(cpu, 0.5);
    std::printf("| add a tree, %d tracks found | CPU %.0f ms (`find`: %.0f ms; %.1f times), "
                "X server %.0f ms, %.0f ms in all |\n",
                tracks, program * 1000, find * 1000, find > 0 ? program / find : 0.0, server * 1000,
                quantile(wall, 0.5));
    longestGap(tree);
}

// --- choosing ------------------------------------------------------------------------------------

void Probe::choosing() {
    program_.fill(mostRows);
    program_.app.listControl_Form().listControl_Result = u"length 99";
    std::vector<double> all;
    std::vector<double> searching;
    program_.handle([&] {
        for (int run = 0; run < 21; ++run) {
            auto begun = steady_clock::now();
            program_.app.formSet().form_KeyDown(65, 2, u"playlist_Form");
            all.push_back(since(begun).count());
            begun = steady_clock::now();
            form().search_Jieguo();
            searching.push_back(since(begun).count());
        }
    });
    std::printf("| select all of %d rows | %.1f ms, at most %.1f |\n", mostRows, quantile(all, 0.5),
                quantile(all, 1));
    std::printf("| search %d rows | %.1f ms, at most %.1f |\n", mostRows, quantile(searching, 0.5),
                quantile(searching, 1));
}

// --- scrolling -----------------------------------------------------------------------------------

// Returns when the server has drawn all that was sent to it so far.
void Probe::waitForServer() const {
    std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

// From the move to the pixels on the screen, in milliseconds.
double Probe::scrollTo(std::int32_t row) {
    const auto begun = steady_clock::now();
    const double workBefore = cpuSeconds();
    form().playList_Item.userScrolled(row);
    QCoreApplication::processEvents();
    waitForServer();
    mostWorkMs_ = std::max(mostWorkMs_, (cpuSeconds() - workBefore) * 1000);
    return since(begun).count();
}

// Steps of some work, 60 in a second; how many came late.
int Probe::paced(std::vector<double> &times, const std::function<double(int)> &work) {
    int dropped = 0;
    auto due = steady_clock::now();
    for (int step = 0; step < framesOf(quick_); ++step) {
        due += frame;
        while (program_.windows->waitForEvents(due) != 0) {
        }
        times.push_back(work(step));
        if (steady_clock::now() > due + frame)
            ++dropped;
    }
    return dropped;
}

// Steps of so many rows, from the beginning on.
void Probe::scrollPaced(const char *name, int rowsAStep) {
    std::vector<double> times;
    mostWorkMs_ = 0;
    const int dropped = paced(times, [&](int step) {
        return scrollTo(step * rowsAStep % (mostRows - form().visibleRows));
    });
    std::printf("| scroll %d rows, %s, 60 steps a second | a step %.2f ms, 99 %% within %.2f, at "
                "most %.2f, work at most %.2f; %d of %d frames late |\n",
                mostRows, name, quantile(times, 0.5), quantile(times, 0.99), quantile(times, 1),
                mostWorkMs_, dropped, framesOf(quick_));
}

// The least that a window of that size can be late on this machine: it is filled and nothing else.
void Probe::paintPaced() {
    QWidget bare(nullptr, Qt::FramelessWindowHint);
    bare.setAutoFillBackground(true);
    bare.setFixedSize(static_cast<int>(form().width() / twipsPerPixel),
                      static_cast<int>(form().height() / twipsPerPixel));
    bare.show();
    std::vector<double> times;
    const int dropped = paced(times, [&](int) {
        const auto begun = steady_clock::now();
        bare.update();
        QCoreApplication::processEvents();
        waitForServer();
        return since(begun).count();
    });
    std::printf("| a bare window of the list's size, 60 steps a second | a step %.2f ms, 99 %% "
                "within %.2f, at most %.2f; %d of %d frames late |\n",
                quantile(times, 0.5), quantile(times, 0.99), quantile(times, 1), dropped,
                framesOf(quick_));
}

void Probe::scrolling() {
    program_.fill(mostRows);
    program_.handle([&] {
        scrollTo(100);
        scrollPaced("by the wheel", 3);
        scrollPaced("by the thumb", 4973);
        paintPaced();
        std::vector<double> times;
        mostWorkMs_ = 0;
        for (int step = 0; step < (quick_ ? 300 : 3000); ++step)
            times.push_back(scrollTo(step * 4973 % (mostRows - form().visibleRows)));
        std::printf("| scroll %d rows, one step after the other | a step %.2f ms, 99 %% within "
                    "%.2f, at most %.2f, work at most %.2f |\n",
                    mostRows, quantile(times, 0.5), quantile(times, 0.99), quantile(times, 1),
                    mostWorkMs_);
    });
}

// --- removing ------------------------------------------------------------------------------------

void Probe::removing() {
    std::vector<double> wall;
    std::vector<double> cpu;
    for (int run = 0; run < (quick_ ? 1 : 5); ++run) {
        program_.fill(10000);
        form().List1.contains(u"the index is there"); // as behind a load
        for (int row = 0; row < 10000; row += 10)
            form().playList_Item.setSelected(row, true);
        program_.handle([&] {
            double before = 0;
            auto begun = steady_clock::now();
            program_.answerYes([&] {
                before = cpuSeconds();
                begun = steady_clock::now();
            });
            form().delOne(0, false);
            wall.push_back(since(begun).count());
            cpu.push_back(cpuSeconds() - before);
        });
    }
    std::printf("| remove 1,000 of 10,000 rows, a save for each | %.0f ms, CPU %.0f ms; %d rows "
                "left |\n",
                quantile(wall, 0.5), quantile(cpu, 0.5) * 1000, form().List1.listCount());
}

} // namespace

int main(int count, char **arguments) {
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    const std::string_view part = count > 1 ? arguments[1] : "";
    const bool quick = part == "--quick";
    const tests::XSession session;
    if (!session.running())
        return 1;
    Probe probe(session, quick);
    const auto wants = [&](std::string_view name) { return quick || part.empty() || part == name; };
    if (wants("adding"))
        probe.adding(count > 2 ? arguments[2] : "");
    if (wants("choosing"))
        probe.choosing();
    if (wants("scrolling"))
        probe.scrolling();
    if (wants("removing"))
        probe.removing();
    return 0;
}
