// motion_probe [--quick]
//
// What moves, on a screen of its own. Prints the rows of a Markdown table.
//
//   fade   a button of the list: a tick with its pixels on the screen, and the CPU of a whole fade
//          to hot and back in real time
//   drag   the pointer drags the main window and the list with it, 60 steps a second: the CPU of
//          the program and of the X server, and the steps after which one of the windows was not
//          in its place when the next one came

#include "bench/screen_program.h"
#include "tests/desktop/x_screen.h"

#include <atomic>
#include <cmath>
#include <cstdio>
#include <string_view>
#include <thread>

using namespace velmora;
using namespace velmora::bench;

namespace {

using std::chrono::steady_clock;

constexpr auto frame = std::chrono::nanoseconds(1'000'000'000 / 60);

class Probe {
public:
    Probe(tests::XSession &session, bool quick)
        : quick_(quick), session_(session), program_(session, folder_.path()),
          screen_(session.display()) {}

    void fade();
    void drag();

private:
    void runFor(std::chrono::milliseconds time) {
        const auto end = steady_clock::now() + time;
        while (program_.windows->waitForEvents(end) != 0) {
        }
    }
    void press(const char *what);
    int dragAround(int startX, int startY, int steps);

    bool quick_;
    tests::XSession &session_;
    Folder folder_;
    ScreenProgram program_;
    tests::XScreen screen_;
};

void Probe::fade() {
    zkButton &button = program_.app.playList_Form().addFile;
    const forms::MouseEvent inside{0, 0, button.width() / 2, button.height() / 2};
    const forms::MouseEvent outside{0, 0, -15, -15};
    const auto pixels = [&] {
        const auto form = screen_.geometry(ScreenProgram::nativeOf(program_.app.playList_Form()));
        const auto pixel = [](Twips twips) { return static_cast<int>(twips / twipsPerPixel); };
        const RectTwips place = button.placeInForm();
        return screen_
            .picture(form->x + pixel(place.left), form->y + pixel(place.top), pixel(place.width),
                     pixel(place.height))
            .pixels;
    };
    program_.handle([&] {
        // The clock of the fade runs 50 times a second; to hot it takes 9 ticks, back 255.
        const auto time = std::chrono::milliseconds(quick_ ? 1000 : 5600);
        const double idleBefore = cpuSeconds();
        runFor(time);
        const double idle = cpuSeconds() - idleBefore;
        const double before = cpuSeconds();
        const double serverBefore = serverCpuSeconds(screen_.connection());
        const auto normal = pixels();
        button.mouseMove(inside);
        runFor(std::chrono::milliseconds(250));
        const bool seen = pixels() != normal;
        button.mouseMove(outside);
        runFor(time - std::chrono::milliseconds(250));
        const double cpu = cpuSeconds() - before;
        if (!seen)
            std::printf("| a fade | did not reach the screen |\n");
        std::printf("| a fade to hot and back, %.1f s | CPU %.0f ms (idle: %.0f ms), X server "
                    "%.0f ms |\n",
                    std::chrono::duration<double>(time).count(), cpu * 1000, idle * 1000,
                    (serverCpuSeconds(screen_.connection()) - serverBefore) * 1000);
    });
}

void Probe::press(const char *what) { session_.run({"xdotool", what, "1"}); }

// On a thread of its own, as the user is. Answers how many steps were late.
int Probe::dragAround(int startX, int startY, int steps) {
    tests::XScreen hand(session_.display());
    const xcb_window_t windows[] = {ScreenProgram::nativeOf(program_.app.Main()),
                                    ScreenProgram::nativeOf(program_.app.playList_Form())};
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(hand.connection())).data->root;
    tests::XScreen::Geometry from[2];
    for (int i = 0; i < 2; ++i)
        from[i] = hand.geometry(windows[i]).value_or(tests::XScreen::Geometry{});
    int late = 0;
    auto due = steady_clock::now();
    for (int step = 1; step <= steps; ++step) {
        const double angle = step * 0.08;
        const int x = static_cast<int>(std::lround(100 * std::sin(angle)));
        const int y = static_cast<int>(std::lround(60 * (1 - std::cos(angle))));
        xcb_warp_pointer(hand.connection(), XCB_NONE, root, 0, 0, 0, 0,
                         static_cast<std::int16_t>(startX + x),
                         static_cast<std::int16_t>(startY + y));
        xcb_flush(hand.connection());
        due += frame;
        std::this_thread::sleep_until(due);
        for (int i = 0; i < 2; ++i) {
            const auto now = hand.geometry(windows[i]);
            if (!now || now->x != from[i].x + x || now->y != from[i].y + y) {
                ++late;
                break;
            }
        }
    }
    return late;
}

void Probe::drag() {
    Main &main = program_.app.Main();
    const int steps = quick_ ? 60 : 600;
    program_.handle([&] {
        const auto place = screen_.geometry(ScreenProgram::nativeOf(main));
        if (!place)
            return;
        const int x = place->x + place->width / 2;
        const int y = place->y + static_cast<int>(main.title.top() / twipsPerPixel) + 6;
        session_.run({"xdotool", "mousemove", std::to_string(x), std::to_string(y)});
        runFor(std::chrono::milliseconds(200));
        press("mousedown");
        runFor(std::chrono::milliseconds(200));
        std::atomic<bool> done{false};
        int late = 0;
        const double before = cpuSeconds();
        const double serverBefore = serverCpuSeconds(screen_.connection());
        std::thread hand([&] {
            late = dragAround(x, y, steps);
            done = true;
        });
        while (!done)
            runFor(std::chrono::milliseconds(20));
        hand.join();
        const double seconds = steps / 60.0;
        std::printf("| both windows dragged, 60 steps a second, %.0f s | CPU %.1f %%, X server "
                    "%.1f %%; %d of %d steps late |\n",
                    seconds, (cpuSeconds() - before) / seconds * 100,
                    (serverCpuSeconds(screen_.connection()) - serverBefore) / seconds * 100, late,
                    steps);
        press("mouseup");
        runFor(std::chrono::milliseconds(200));
    });
}

} // namespace

int main(int count, char **arguments) {
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    tests::XSession session;
    if (!session.running())
        return 1;
    Probe probe(session, count > 1 && std::string_view(arguments[1]) == "--quick");
    probe.fade();
    probe.drag();
    return 0;
}
