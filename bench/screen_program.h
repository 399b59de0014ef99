#pragma once

// The program on a private screen, for probes: a real X server, window manager and windows, files
// on the real disk; settings, sound and the dialogs of files and folders in memory.

#include "base/numbers.h"
#include "base/text.h"
#include "platform/backends/linux/linux.h"
#include "platform/backends/qt/system/qt_windows.h"
#include "platform/backends/qt/window/form_window.h"
#include "playback/Main.h"
#include "playlist/playList_Form.h"
#include "settings/Language_Set.h"
#include "settings/setControl.h"
#include "settings/skinSet.h"
#include "tests/desktop/x_session.h"
#include "tests/fakes/fake_platform.h"
#include "tests/fakes/instead.h"
#include "velmora.h"

#include <QApplication>
#include <QKeyEvent>
#include <QTimer>

#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

namespace velmora::bench {

using Ms = std::chrono::duration<double, std::milli>;

inline double secondsOf(const ::timeval &time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

// User and system time of this process (RUSAGE_SELF) or of its children that have ended.
inline double cpuSeconds(__rusage_who who = RUSAGE_SELF) {
    struct ::rusage usage {};
    ::getrusage(who, &usage);
    return secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime);
}

// User and system time of the X server at the other end of a connection.
inline double serverCpuSeconds(xcb_connection_t *connection) {
    struct ::ucred server {};
    ::socklen_t size = sizeof server;
    ::getsockopt(xcb_get_file_descriptor(connection), SOL_SOCKET, SO_PEERCRED, &server, &size);
    std::ifstream stat("/proc/" + std::to_string(server.pid) + "/stat");
    std::string line;
    std::getline(stat, line);
    const std::size_t behindName = line.rfind(')');
    if (behindName == std::string::npos)
        return 0;
    const char *at = line.c_str() + behindName + 2;
    for (int field = 3; field < 14; ++field) // to the user time
        at = std::strchr(at, ' ') + 1;
    char *rest = nullptr;
    const long user = std::strtol(at, &rest, 10);
    const long system = std::strtol(rest, nullptr, 10);
    return static_cast<double>(user + system) / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

inline Ms since(std::chrono::steady_clock::time_point begun) {
    return std::chrono::steady_clock::now() - begun;
}

// The value below which that share of the values lies.
inline double quantile(std::vector<double> values, double share) {
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    const auto at = static_cast<std::size_t>(share * static_cast<double>(values.size() - 1) + 0.5);
    return values[at];
}

// A folder of its own on the disk.
class Folder {
public:
    Folder() {
        char pattern[] = "/tmp/velmora-probe-XXXXXX";
        path_ = ::mkdtemp(pattern);
    }
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    Folder(const Folder &) = delete;
    Folder &operator=(const Folder &) = delete;
    const std::string &path() const { return path_; }

private:
    std::string path_;
};

class ScreenProgram {
public:
    explicit ScreenProgram(const tests::XSession &session, const std::string &folder)
        : windows(startWindows(session)), app(bundle()) {
        app.setControl().Path_List = fromUtf8(folder);
        app.setControl().Language_Index = 1;
        app.Language_Set().apply_Language();
        app.skinSet().skin_All();
        app.Main().show();
        app.playList_Form().show();
        for (int i = 0; i < 50; ++i)
            windows->waitForEvents(std::chrono::steady_clock::now() + std::chrono::milliseconds(5));
    }

    // Runs `work` as a handler of the running message loop, as a click would.
    void handle(const std::function<void()> &work) {
        QTimer::singleShot(0, [&] {
            windows->whenIdle([&] {
                work();
                windows->quit(0);
            });
        });
        windows->run();
    }

    // Answers the next question with Yes by its key, once it is on the screen, after calling
    // `ahead`. One that nobody at the screen asked for is deaf at first: it is answered again.
    void answerYes(const std::function<void()> &ahead) {
        QTimer::singleShot(
            30,
            [this, ahead] {
                QWidget *box = QApplication::activeModalWidget();
                if (box == nullptr) {
                    answerYes(ahead);
                    return;
                }
                ahead();
                QKeyEvent press(QEvent::KeyPress, Qt::Key_Y, Qt::NoModifier, "y");
                QApplication::sendEvent(box, &press);
                if (QApplication::activeModalWidget() == box)
                    answerYes(ahead);
            });
    }

    void fill(int rows) {
        playList_Form &list = app.playList_Form();
        list.playList_Item.clear();
        list.List1.clear();
        for (int row = 0; row < rows; ++row) {
            const std::u16string name = u"A song with a name of usual length " + decimal(row);
            list.playList_Item.addItem(name);
            list.List1.addItem(u"/home/somebody/Music/An artist/An album/" + name + u".mp3");
        }
    }

    static xcb_window_t nativeOf(const forms::Form &form) {
        const auto *window = static_cast<const platform::qt::QtFormWindow *>(form.window());
        return window != nullptr ? window->nativeWindow() : xcb_window_t{0};
    }

private:
    static std::unique_ptr<platform::QtWindowSystem> startWindows(const tests::XSession &session) {
        session.exportToEnvironment();
        return platform::QtWindowSystem::make({});
    }

    platform::Platform bundle() {
        return fakes::with(fake.bundle(),
                           {.ansi = ansi_.get(), .files = files_.get(), .windows = windows.get()});
    }

    std::unique_ptr<platform::AnsiText> ansi_ =
        platform::makeAnsiText([] { return std::u16string(); });
    std::unique_ptr<platform::FileSystem> files_ = platform::makeFileSystem(*ansi_);

public:
    std::unique_ptr<platform::QtWindowSystem> windows;
    fakes::FakePlatform fake;
    Velmora app;
};

} // namespace velmora::bench
