// The sound-card check finds the server that the player plays on: wherever it is, and while it is
// being started.

#include "device_fixture.h"
#include "ordinary_user.h"

#include "platform/backends/sound/device/server_query.h"

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <map>
#include <optional>
#include <pthread.h>
#include <unistd.h>

namespace velmora::platform::sound {
namespace {

using namespace velmora::tests;

// What libpulse and the check go by. Only what a test sets is there; the rest comes back at its
// end.
class SoundEnvironment {
public:
    explicit SoundEnvironment(const std::map<std::string, std::string> &values) {
        for (const char *name : names) {
            const char *value = getenv(name);
            old_[name] = value ? std::optional<std::string>(value) : std::nullopt;
            const auto wanted = values.find(name);
            set(name, wanted == values.end() ? std::nullopt : std::optional(wanted->second));
        }
    }
    ~SoundEnvironment() {
        for (const auto &[name, value] : old_)
            set(name.c_str(), value);
    }
    SoundEnvironment(const SoundEnvironment &) = delete;
    SoundEnvironment &operator=(const SoundEnvironment &) = delete;

private:
    static constexpr const char *names[] = {
        "HOME",         "XDG_CONFIG_HOME",    "XDG_RUNTIME_DIR",
        "PULSE_SERVER", "PULSE_RUNTIME_PATH", "PULSE_CLIENTCONFIG"};
    static void set(const char *name, const std::optional<std::string> &value) {
        if (value)
            setenv(name, value->c_str(), 1);
        else
            unsetenv(name);
    }
    std::map<std::string, std::optional<std::string>> old_;
};

Bytes bytesOf(const std::string &text) { return {text.begin(), text.end()}; }

// A server whose one device is known by this name.
PulseServer::Options named(const std::string &name) {
    PulseServer::Options options;
    options.nullSink = false;
    options.arguments = {
        "-L", "module-null-sink sink_name=one sink_properties=device.description=" + name};
    return options;
}

std::u16string deviceFound() {
    WaveOutCaps caps;
    const auto waves = makePulseWaveOut();
    return waves->waveOutGetDevCapsA(0, caps, 50) == 0 ? caps.productName : u"";
}

TEST(FindServer, InTheRuntimeFolderOfTheSession) {
    const PulseServer server(named("Own"));
    ASSERT_TRUE(server.running());
    const TemporaryFolder runtime;
    std::filesystem::create_directory(runtime.path("pulse"));
    std::filesystem::create_symlink(server.socketPath(), runtime.path("pulse/native"));
    {
        const SoundEnvironment session({{"XDG_RUNTIME_DIR", runtime.path("")}});
        EXPECT_EQ(deviceFound(), u"Own");
    }
    const SoundEnvironment elsewhere(
        {{"XDG_RUNTIME_DIR", runtime.path("")}, {"PULSE_SERVER", "unix:/nowhere/at/all"}});
    EXPECT_EQ(deviceFound(), u"");
}

TEST(FindServer, InTheHomeWhereTheSessionHasNoRuntimeFolder) {
    const PulseServer server(named("AtHome"));
    ASSERT_TRUE(server.running());
    const TemporaryFolder home;
    const SoundEnvironment session({{"HOME", home.path("")}});
    // The name of the folder is the machine's; whoever looks for a server makes it.
    EXPECT_EQ(deviceFound(), u"");
    std::filesystem::path runtime;
    for (const auto &entry : std::filesystem::directory_iterator(home.path(".config/pulse")))
        runtime = entry.is_symlink() ? entry.path() : runtime;
    ASSERT_FALSE(runtime.empty());
    std::filesystem::remove(std::filesystem::read_symlink(runtime));
    std::filesystem::remove(runtime);
    std::filesystem::create_symlink(server.directory(), runtime);
    EXPECT_EQ(deviceFound(), u"AtHome");
}

TEST(FindServer, WhereAFileBesideTheConfigurationNamesIt) {
    const PulseServer own(named("Own"));
    const PulseServer chosen(named("Chosen"));
    ASSERT_TRUE(own.running() && chosen.running());
    const TemporaryFolder home;
    std::filesystem::create_directories(home.path(".config/pulse/client.conf.d"));
    home.write(".config/pulse/client.conf", bytesOf("; nothing here\n"));
    const SoundEnvironment session(
        {{"HOME", home.path("")}, {"PULSE_RUNTIME_PATH", own.directory()}});
    EXPECT_EQ(deviceFound(), u"Own");
    const std::string line = "default-server = " + chosen.address() + "\n";
    home.write(".config/pulse/client.conf.d/10-other.txt", bytesOf(line));
    EXPECT_EQ(deviceFound(), u"Own");
    home.write(".config/pulse/client.conf.d/10-other.conf", bytesOf("# here\n" + line));
    EXPECT_EQ(deviceFound(), u"Chosen");
}

TEST(FindServer, ThatIsStartedByTheQuestion) {
    PulseServer::Options options = named("Started");
    options.startedByCallAfterMs = 1000;
    const PulseServer server(options);
    ASSERT_TRUE(server.running());
    const TemporaryFolder home;
    const SoundEnvironment session(
        {{"HOME", home.path("")}, {"PULSE_RUNTIME_PATH", server.directory()}});
    const auto start = Clock::now();
    EXPECT_EQ(deviceFound(), u"Started");
    EXPECT_GT(msSince(start), 900);
}

TEST(FindServer, AlsoWhileSignalsArrive) {
    PulseServer::Options options = named("Started");
    options.startedByCallAfterMs = 300;
    const PulseServer server(options);
    ASSERT_TRUE(server.running());
    struct sigaction interrupt = {}, old = {};
    interrupt.sa_handler = [](int) {};
    sigaction(SIGUSR1, &interrupt, &old);
    std::atomic<bool> isDone = false;
    std::thread signals([&isDone, asked = pthread_self()] {
        for (; !isDone; std::this_thread::sleep_for(Ms(1)))
            pthread_kill(asked, SIGUSR1);
    });
    EXPECT_EQ(makePulseWaveOut({server.address()})->waveOutGetNumDevs(), 1U);
    isDone = true;
    signals.join();
    sigaction(SIGUSR1, &old, nullptr);
}

TEST(FindServer, WhetherOneAnswersIsToldSoonWhateverItDoes) {
    PulseServer server(named("Own"));
    ASSERT_TRUE(server.running());
    EXPECT_TRUE(soundServerAnswers(server.address()));
    {
        const SoundEnvironment session({{"PULSE_RUNTIME_PATH", server.directory()}});
        EXPECT_TRUE(soundServerAnswers());
    }
    server.freeze();
    const auto start = Clock::now();
    EXPECT_FALSE(soundServerAnswers(server.address()));
    EXPECT_LT(msSince(start), 1000); // usually 100
    server.thaw();
    server.kill();
    EXPECT_FALSE(soundServerAnswers(server.address()));
    EXPECT_FALSE(soundServerAnswers("tcp:localhost"));
}

// As PipeWire begins: the session manager makes the devices a moment later.
class DummyFirst : public testing::Test {
protected:
    void SetUp() override {
        PulseServer::Options options;
        options.nullSink = false;
        server_.emplace(options);
        ASSERT_TRUE(server_->running());
        ASSERT_TRUE(waitFor(60000, [&] {
            const auto answer = queryBySocket(server_->socketPath(), Clock::now() + Ms(1000));
            return answer && !answer->sinks.empty();
        }));
    }
    std::unique_ptr<WaveOut> waves() const {
        return makePulseWaveOut({server_->address(), {}, cards_.path("")});
    }

    std::optional<PulseServer> server_;
    TemporaryFolder cards_;
};

TEST_F(DummyFirst, AServerWhoseDevicesAreYetToComeIsAskedAgainWhereThereIsACard) {
    cards_.write("card0", {});
    const std::string load = "(sleep 0.5; pactl -s " + server_->address() +
                             " load-module module-null-sink sink_name=late >/dev/null) &";
    const auto start = Clock::now();
    ASSERT_EQ(std::system(load.c_str()), 0);
    EXPECT_EQ(waves()->waveOutGetNumDevs(), 1U);
    EXPECT_GT(msSince(start), 400);
}

TEST_F(DummyFirst, AMachineWithoutACardIsToldSoAtOnce) {
    cards_.write("version", {});
    const auto start = Clock::now();
    EXPECT_EQ(waves()->waveOutGetNumDevs(), 0U);
    EXPECT_LT(msSince(start), 1500); // usually some milliseconds
}

// --- a server that is started by whoever wants sound ---------------------------------------------

// A home of an ordinary user, since for root nothing is started, whose settings have a server of
// their own started.
class StartingHome {
public:
    // `start` begins the server.
    explicit StartingHome(const std::string &start) {
        std::filesystem::create_directories(home_.path(".config/pulse"));
        std::filesystem::create_directory(home_.path("run"));
        std::filesystem::permissions(home_.path("run"), std::filesystem::perms(0700));
        home_.write("start", bytesOf("#!/bin/sh\necho >>" + home_.path("starts") + "\n" + start));
        std::filesystem::permissions(home_.path("start"), std::filesystem::perms(0700));
        home_.write(".config/pulse/client.conf",
                    bytesOf("autospawn = yes\ndaemon-binary = " + home_.path("start") + "\n"));
        environment_.emplace(std::map<std::string, std::string>{
            {"HOME", home_.path("")}, {"PULSE_RUNTIME_PATH", home_.path("run")}});
    }
    ~StartingHome() {
        int server = 0;
        if (std::ifstream(home_.path("run/pid")) >> server) {
            kill(server, SIGKILL);
            waitFor(60000, [&] { return kill(server, 0) != 0; });
        }
    }
    StartingHome(const StartingHome &) = delete;
    StartingHome &operator=(const StartingHome &) = delete;

    std::size_t starts() const { return readFile(home_.path("starts")).size(); }
    std::string socketPath() const { return home_.path("run/native"); }

    static constexpr const char *realServer =
        "exec pulseaudio -n --daemonize=yes --exit-idle-time=30 "
        "-L 'module-null-sink sink_name=own' -L module-native-protocol-unix 2>/dev/null\n";

private:
    TemporaryFolder home_;
    std::optional<SoundEnvironment> environment_;
};

// The work of the tests below, in a process of its own. 0: all was as it should be.
int checkStartsAServer() {
    const StartingHome home(StartingHome::realServer);
    return makePulseWaveOut()->waveOutGetNumDevs() == 1 && home.starts() == 1 ? 0 : 1;
}

int playStartsAServer(const std::string &file) {
    const StartingHome home(StartingHome::realServer);
    const auto opener = makeSoundOpener();
    const auto device = opener->open({file, "Waveaudio"});
    if (!device)
        return 1;
    device->play();
    if (!waitFor(60000, [&] { return device->positionMs() > 200; }))
        return 2;
    if (!queryBySocket(home.socketPath(), Clock::now() + Ms(5000)))
        return 3;
    return home.starts() == 1 ? 0 : 4;
}

int playStartsOneAtMost(const std::string &file) {
    const StartingHome home("exit 1\n");
    const auto opener = makeSoundOpener();
    const auto device = opener->open({file, "Waveaudio"});
    if (!device)
        return 1;
    device->play();
    // The server is looked for every three seconds.
    if (!waitFor(60000, [&] { return device->positionMs() > 4000; }))
        return 2;
    return home.starts() == 1 ? 0 : 3;
}

class StartedServer : public testing::Test {
protected:
    StartedServer() {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        file_ = folder_.write("tone.wav", readFile(mediaFile("tone.wav")));
        std::filesystem::permissions(folder_.path(""), std::filesystem::perms(0755));
    }
    TemporaryFolder folder_;
    std::string file_;
};

TEST_F(StartedServer, TheCheckHasOneStartedAsTheSettingsAllow) {
    EXPECT_EXIT((becomeOrdinaryUser(), _exit(checkStartsAServer())), testing::ExitedWithCode(0),
                "");
}

TEST_F(StartedServer, AMediumJustOpenedHasOneStarted) {
    EXPECT_EXIT((becomeOrdinaryUser(), _exit(playStartsAServer(file_))), testing::ExitedWithCode(0),
                "");
}

TEST_F(StartedServer, WhereItCannotBeStartedItIsTriedOnceForEachMedium) {
    EXPECT_EXIT((becomeOrdinaryUser(), _exit(playStartsOneAtMost(file_))),
                testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace velmora::platform::sound
