#include "tests/desktop/x_session.h"

#include "tests/desktop/x_turn.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <thread>

extern char **environ;

namespace velmora::tests {

namespace {

constexpr int startLimitMs = 15000;

std::vector<char *> pointers(std::vector<std::string> &words) {
    std::vector<char *> result;
    for (std::string &word : words)
        result.push_back(word.data());
    result.push_back(nullptr);
    return result;
}

// `output` becomes standard output when it is a descriptor; otherwise nothing is heard of it.
pid_t spawn(std::vector<std::string> command, std::vector<std::string> environment, int output,
            int inherited = -1) {
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    if (output >= 0)
        posix_spawn_file_actions_adddup2(&files, output, 1);
    else
        posix_spawn_file_actions_addopen(&files, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&files, 2, "/dev/null", O_WRONLY, 0);
    if (inherited >= 0)
        posix_spawn_file_actions_adddup2(&files, inherited, inherited); // clears close-on-exec
    pid_t process = -1;
    const int failed = posix_spawnp(&process, command.front().c_str(), &files, nullptr,
                                    pointers(command).data(), pointers(environment).data());
    posix_spawn_file_actions_destroy(&files);
    return failed == 0 ? process : -1;
}

void endProcess(pid_t process) {
    if (process <= 0)
        return;
    kill(process, SIGTERM);
    if (!waitUntil([process] { return waitpid(process, nullptr, WNOHANG) != 0; }, 3000)) {
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
    }
}

std::string readAll(int descriptor) {
    std::string text;
    char piece[4096];
    for (ssize_t got = read(descriptor, piece, sizeof piece); got > 0;
         got = read(descriptor, piece, sizeof piece))
        text.append(piece, static_cast<std::size_t>(got));
    return text;
}

// The line that the server writes once it takes connections; empty when the limit passes first.
std::string readLine(int descriptor) {
    std::string line;
    pollfd waited{descriptor, POLLIN, 0};
    while (line.find('\n') == std::string::npos && poll(&waited, 1, startLimitMs) > 0) {
        char c = 0;
        if (read(descriptor, &c, 1) != 1)
            return {};
        line.push_back(c);
    }
    return line.substr(0, line.find('\n'));
}

// What of the user's own session programs on a screen go by. The density is the tests' own.
bool isTheUsers(std::string_view entry) {
    if (entry.starts_with("QT_SCALE_FACTOR="))
        return false;
    for (const std::string_view beginning :
         {"DISPLAY=", "WAYLAND_DISPLAY=", "XAUTHORITY=", "SESSION_MANAGER=", "XDG_",
          "HOME=", "DBUS_SESSION_BUS_ADDRESS=", "QT_", "LANG=", "LANGUAGE=", "LC_", "TZ="})
        if (entry.starts_with(beginning))
            return true;
    return false;
}

} // namespace

bool waitUntil(const std::function<bool()> &condition, int limitMs) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(limitMs);
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

XSession::XSession(XSessionOptions options) : options_(options) {
    std::string name = (std::filesystem::temp_directory_path() / "velmora-x-XXXXXX").string();
    home_ = mkdtemp(name.data()) != nullptr ? name : std::string();
    if (home_.empty())
        return;
    for (const char *folder : {"config", "data", "cache", "run"})
        std::filesystem::create_directory(home_ + "/" + folder);
    std::filesystem::permissions(home_ + "/run", std::filesystem::perms::owner_all);
    running_ = startServer() && (!options_.windowManager || startWindowManager());
}

XSession::~XSession() {
    for (auto child = children_.rbegin(); child != children_.rend(); ++child)
        endProcess(*child);
    endProcess(server_);
    std::error_code ignored;
    if (!home_.empty())
        std::filesystem::remove_all(home_, ignored);
}

std::vector<std::string> XSession::environment() const {
    std::vector<std::string> result;
    for (char **variable = environ; *variable != nullptr; ++variable)
        if (!isTheUsers(*variable))
            result.emplace_back(*variable);
    result.push_back("DISPLAY=" + display_);
    result.push_back("HOME=" + home_);
    result.push_back("XDG_CONFIG_HOME=" + home_ + "/config");
    result.push_back("XDG_DATA_HOME=" + home_ + "/data");
    result.push_back("XDG_CACHE_HOME=" + home_ + "/cache");
    result.push_back("XDG_RUNTIME_DIR=" + home_ + "/run");
    result.emplace_back("LC_ALL=C.UTF-8");
    return result;
}

void XSession::exportToEnvironment() const {
    std::vector<std::string> users;
    for (char **variable = environ; *variable != nullptr; ++variable) {
        const std::string_view entry = *variable;
        if (isTheUsers(entry))
            users.emplace_back(entry.substr(0, entry.find('=')));
    }
    for (const std::string &name : users)
        unsetenv(name.c_str());
    for (const std::string &entry : environment()) {
        const std::size_t equals = entry.find('=');
        setenv(entry.substr(0, equals).c_str(), entry.substr(equals + 1).c_str(), 1);
    }
}

bool XSession::startServer() {
    int numbers[2];
    if (pipe2(numbers, O_CLOEXEC) != 0)
        return false;
    const std::string screen =
        std::to_string(options_.width) + "x" + std::to_string(options_.height) + "x24";
    server_ = spawn({"Xvfb", "-displayfd", std::to_string(numbers[1]), "-screen", "0", screen,
                     "-nolisten", "tcp", "-noreset"},
                    environment(), -1, numbers[1]);
    close(numbers[1]);
    const std::string number = server_ > 0 ? readLine(numbers[0]) : std::string();
    close(numbers[0]);
    display_ = ":" + number;
    return !number.empty();
}

bool XSession::startWindowManager() {
    // Windows get the focus when they appear or are clicked, and nothing else happens by itself.
    return start({"openbox", "--sm-disable"}) > 0 &&
           waitUntil(
               [this] {
                   return run({"xprop", "-root", "_NET_SUPPORTING_WM_CHECK"}).find("window id") !=
                          std::string::npos;
               },
               startLimitMs) &&
           // It tells of itself before it looks at events: a window that came up in between stayed
           // unseen.
           XTurn(display_).managerTook(startLimitMs);
}

bool XSession::startCompositor() {
    if (compositor_ > 0)
        return true;
    compositor_ = start({"picom", "--backend", "xrender", "--config", "/dev/null"});
    // It draws the root window itself once it has redirected it.
    return compositor_ > 0 &&
           waitUntil(
               [this] {
                   return run({"xprop", "-root", "_NET_SUPPORTING_WM_CHECK"}).size() > 0 &&
                          run({"xdotool", "search", "--class", "picom"}).size() > 1;
               },
               startLimitMs);
}

bool XSession::stopCompositor() {
    end(compositor_);
    compositor_ = -1;
    return true;
}

pid_t XSession::start(const std::vector<std::string> &command) {
    const pid_t process = spawn(command, environment(), -1);
    if (process > 0)
        children_.push_back(process);
    return process;
}

void XSession::end(pid_t process) {
    if (std::erase(children_, process) != 0)
        endProcess(process);
}

std::string XSession::run(const std::vector<std::string> &command) const {
    int output[2];
    if (pipe2(output, O_CLOEXEC) != 0)
        return {};
    const pid_t process = spawn(command, environment(), output[1]);
    close(output[1]);
    std::string text = process > 0 ? readAll(output[0]) : std::string();
    close(output[0]);
    if (process > 0)
        waitpid(process, nullptr, 0);
    return text;
}

} // namespace velmora::tests
