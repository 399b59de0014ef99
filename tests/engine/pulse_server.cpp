#include "pulse_server.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <sched.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velmora::tests {

namespace {

using namespace std::chrono_literals;

// A socket that a program takes over when somebody has called it.
struct Activation {
    int socket = -1;
    int afterMs = 0;
};

// As a service manager does it.
void waitForCall(const Activation &activation) {
    pollfd event{activation.socket, POLLIN, 0};
    poll(&event, 1, -1);
    poll(nullptr, 0, activation.afterMs);
    constexpr int firstHandedOver = 3;
    if (activation.socket == firstHandedOver)
        fcntl(firstHandedOver, F_SETFD, 0);
    else
        dup2(activation.socket, firstHandedOver);
    setenv("LISTEN_FDS", "1", 1);
    setenv("LISTEN_PID", std::to_string(getpid()).c_str(), 1);
}

// Runs a program that dies with this one. `output` becomes its standard output, -1: /dev/null.
pid_t spawn(const std::vector<std::string> &arguments,
            const std::vector<std::pair<std::string, std::string>> &environment, int output,
            const Activation &activation = {}) {
    std::vector<char *> argv;
    for (const std::string &argument : arguments)
        argv.push_back(const_cast<char *>(argument.c_str()));
    argv.push_back(nullptr);
    const pid_t pid = fork();
    if (pid != 0)
        return pid;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    for (const auto &[name, value] : environment)
        setenv(name.c_str(), value.c_str(), 1);
    const int null = open("/dev/null", O_RDWR);
    dup2(null, 0);
    dup2(output >= 0 ? output : null, 1);
    dup2(null, 2);
    if (activation.socket >= 0)
        waitForCall(activation);
    execvp(argv[0], argv.data());
    _exit(127);
}

void endProcess(pid_t &pid) {
    if (pid <= 0)
        return;
    ::kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
    pid = -1;
}

using SocketCall = int (*)(int, const sockaddr *, socklen_t);

// A socket bound or connected to a path; -1: it cannot be.
int socketAt(const std::string &path, SocketCall bindOrConnect) {
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (fd < 0 || path.size() >= sizeof address.sun_path)
        return -1;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    if (bindOrConnect(fd, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0)
        return fd;
    close(fd);
    return -1;
}

bool accepts(const std::string &path) {
    const int fd = socketAt(path, connect);
    if (fd < 0)
        return false;
    close(fd);
    return true;
}

} // namespace

namespace {

// Before all ordinary processes, where that is allowed.
bool putFirst(pid_t process) {
    const sched_param first{.sched_priority = 2};
    return sched_setscheduler(process, SCHED_RR, &first) == 0;
}

} // namespace

PulseServer::PulseServer(Options options) : options_(std::move(options)) {
    // Whoever listens in real time goes before what else the machine does, where that is allowed:
    // the server, the recorder and the threads of devices are all begun by this thread.
    if (!putFirst(0))
        setpriority(PRIO_PROCESS, 0, -10);
    std::string pattern =
        (std::filesystem::temp_directory_path() / "velmora-pulse-XXXXXX").string();
    if (mkdtemp(pattern.data()))
        directory_ = pattern;
    start();
}

PulseServer::~PulseServer() {
    kill();
    std::error_code ignored;
    if (!directory_.empty())
        std::filesystem::remove_all(directory_, ignored);
}

bool PulseServer::isInstalled() {
    return std::system("command -v pulseaudio >/dev/null && command -v parec >/dev/null") == 0;
}

bool PulseServer::start() {
    if (running() || directory_.empty())
        return running();
    unlink(socketPath().c_str());
    std::vector<std::string> arguments = {"pulseaudio",          "-n",
                                          "--daemonize=no",      "--use-pid-file=no",
                                          "--exit-idle-time=-1", "--disallow-exit",
                                          "--log-target=stderr"};
    if (options_.nullSink) {
        arguments.insert(
            arguments.end(),
            {"-L", "module-null-sink sink_name=null1 rate=" + std::to_string(options_.rate) +
                       " channels=" + std::to_string(options_.channels)});
    } else {
        arguments.insert(arguments.end(), {"-L", "module-always-sink"});
    }
    arguments.insert(arguments.end(), options_.arguments.begin(), options_.arguments.end());
    // Last, so that whoever can connect finds the sinks.
    arguments.insert(arguments.end(),
                     {"-L", "module-native-protocol-unix auth-anonymous=1 socket=" + socketPath()});
    const std::vector<std::pair<std::string, std::string>> environment = {
        {"XDG_RUNTIME_DIR", directory_}, {"HOME", directory_}, {"XDG_CONFIG_HOME", directory_}};
    if (options_.startedByCallAfterMs >= 0) {
        const int socket = socketAt(socketPath(), bind);
        if (socket >= 0 && listen(socket, 8) == 0)
            pid_ = spawn(arguments, environment, -1, {socket, options_.startedByCallAfterMs});
        close(socket);
        return running();
    }
    pid_ = spawn(arguments, environment, -1);
    const auto limit = std::chrono::steady_clock::now() + 60s;
    while (std::chrono::steady_clock::now() < limit) {
        if (accepts(socketPath())) {
            putFirst(pid_); // it has put itself back while it started
            return true;
        }
        int status = 0;
        if (waitpid(pid_, &status, WNOHANG) == pid_) {
            pid_ = -1;
            return false;
        }
        std::this_thread::sleep_for(2ms);
    }
    kill();
    return false;
}

void PulseServer::kill() { endProcess(pid_); }

void PulseServer::freeze() {
    if (running())
        ::kill(pid_, SIGSTOP);
}

void PulseServer::thaw() {
    if (running())
        ::kill(pid_, SIGCONT);
}

std::string PulseServer::tellsOfSink(const std::string &name) const {
    const std::string command = "LC_ALL=C pactl -s '" + address() + "' list sinks";
    FILE *answer = popen(command.c_str(), "r");
    if (!answer)
        return {};
    std::string text;
    for (std::array<char, 4096> part{}; fgets(part.data(), part.size(), answer);)
        text += part.data();
    pclose(answer);
    // Each sink begins with its number and its state; its name follows.
    const std::size_t sink = text.find("Name: " + sinkName() + "\n");
    if (sink == std::string::npos)
        return {};
    const std::size_t begin = text.rfind("Sink #", sink);
    const std::size_t at = text.find(name, begin);
    return at == std::string::npos ? "" : text.substr(at + name.size(), text.find('\n', at) - at);
}

int PulseServer::millisecondsOfSink(const std::string &name) const {
    const std::string micros = tellsOfSink(name);
    return micros.empty() ? -1 : static_cast<int>(std::atoll(micros.c_str()) / 1000);
}

int PulseServer::mixesAheadMs() const { return millisecondsOfSink("configured "); }

int PulseServer::mixedMs() const { return millisecondsOfSink("Latency: "); }

bool PulseServer::sinkPlays() const { return tellsOfSink("State: ").starts_with("RUNNING"); }

SilentPlayer::SilentPlayer(const PulseServer &server, int latencyMs)
    : pid_(spawn({"pacat", "-s", server.address(), "-d", server.sinkName(),
                  "--latency-msec=" + std::to_string(latencyMs), "/dev/zero"},
                 {{"HOME", server.directory()}}, -1)) {
    const auto limit = std::chrono::steady_clock::now() + 60s;
    while (!server.sinkPlays()) {
        if (std::chrono::steady_clock::now() >= limit) {
            endProcess(pid_);
            throw std::runtime_error("nobody plays");
        }
        std::this_thread::sleep_for(10ms);
    }
}

SilentPlayer::~SilentPlayer() { endProcess(pid_); }

void PulseServer::exportToEnvironment() const {
    setenv("PULSE_SERVER", address().c_str(), 1);
    setenv("XDG_RUNTIME_DIR", directory_.c_str(), 1);
    setenv("PULSE_RUNTIME_PATH", directory_.c_str(), 1);
}

MonitorRecorder::MonitorRecorder(const PulseServer &server, int latencyMs) : rate_(server.rate()) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return;
    pid_ = spawn({"parec", "-s", server.address(), "-d", server.sinkName() + ".monitor",
                  "--latency-msec=" + std::to_string(latencyMs), "--format=float32le",
                  "--rate=" + std::to_string(rate_), "--channels=2"},
                 {{"HOME", server.directory()}}, ends[1]);
    close(ends[1]);
    pipe_ = ends[0];
    reader_ = std::thread(&MonitorRecorder::read, this);
    if (waitForFrames(1, 60000))
        return;
    endProcess(pid_);
    reader_.join();
    close(pipe_);
    throw std::runtime_error("nothing is recorded");
}

MonitorRecorder::~MonitorRecorder() {
    endProcess(pid_);
    if (reader_.joinable())
        reader_.join();
    if (pipe_ >= 0)
        close(pipe_);
}

void MonitorRecorder::read() {
    std::vector<char> buffer(65536);
    std::size_t kept = 0; // bytes of an incomplete frame
    for (;;) {
        const ssize_t got = ::read(pipe_, buffer.data() + kept, buffer.size() - kept);
        if (got <= 0)
            return;
        const std::size_t bytes = kept + static_cast<std::size_t>(got);
        const std::size_t whole = bytes / 8 * 8;
        {
            const std::lock_guard lock(mutex_);
            const std::size_t old = samples_.size();
            samples_.resize(old + whole / 4);
            std::memcpy(samples_.data() + old, buffer.data(), whole);
            arrivals_.push_back({samples_.size() / 2, Clock::now()});
        }
        grown_.notify_all();
        kept = bytes - whole;
        std::memmove(buffer.data(), buffer.data() + whole, kept);
    }
}

std::size_t MonitorRecorder::frames() const {
    const std::lock_guard lock(mutex_);
    return samples_.size() / 2;
}

std::vector<float> MonitorRecorder::channel(int which, std::size_t from, std::size_t count) const {
    const std::lock_guard lock(mutex_);
    std::vector<float> result;
    const std::size_t end = std::min(from + count, samples_.size() / 2);
    for (std::size_t frame = from; frame < end; ++frame)
        result.push_back(samples_[frame * 2 + static_cast<std::size_t>(which)]);
    return result;
}

MonitorRecorder::Clock::time_point MonitorRecorder::arrivalOf(std::size_t frame) const {
    const std::lock_guard lock(mutex_);
    const auto found = std::upper_bound(arrivals_.begin(), arrivals_.end(), frame,
                                        [](std::size_t f, const Arrival &a) { return f < a.end; });
    return found == arrivals_.end() ? Clock::time_point::max() : found->time;
}

bool MonitorRecorder::waitForFrames(std::size_t count, int limitMs) const {
    std::unique_lock lock(mutex_);
    return grown_.wait_for(lock, std::chrono::milliseconds(limitMs),
                           [&] { return samples_.size() / 2 >= count; });
}

std::size_t MonitorRecorder::findLoud(float threshold, std::size_t from) const {
    for (std::size_t i = from * 2; i < samples_.size(); ++i)
        if (std::abs(samples_[i]) >= threshold)
            return i / 2;
    return frameNone;
}

std::size_t MonitorRecorder::waitForLoud(float threshold, std::size_t from, int limitMs) const {
    std::unique_lock lock(mutex_);
    std::size_t found = frameNone;
    std::size_t next = from;
    grown_.wait_for(lock, std::chrono::milliseconds(limitMs), [&] {
        found = findLoud(threshold, next);
        next = std::max(from, samples_.size() / 2);
        return found != frameNone;
    });
    return found;
}

std::size_t MonitorRecorder::waitForSilence(float threshold, int ms, std::size_t from,
                                            int limitMs) const {
    std::unique_lock lock(mutex_);
    const std::size_t needed = framesOf(ms);
    std::size_t start = from;
    std::size_t found = frameNone;
    grown_.wait_for(lock, std::chrono::milliseconds(limitMs), [&] {
        for (;;) {
            const std::size_t loud = findLoud(threshold, start);
            const std::size_t end = loud == frameNone ? samples_.size() / 2 : loud;
            if (end >= start + needed) {
                found = start;
                return true;
            }
            if (loud == frameNone)
                return false;
            start = loud + 1;
        }
    });
    return found;
}

} // namespace velmora::tests
