#include "device_fixture.h"

#include "platform/backends/sound/device/server_query.h"

namespace velmora::platform::sound {
namespace {

using namespace velmora::tests;

constexpr std::uint32_t record = 50;

PulseServer::Options with(std::vector<std::string> modules) {
    PulseServer::Options options;
    for (const std::string &module : modules) {
        options.arguments.emplace_back("-L");
        options.arguments.push_back(module);
    }
    return options;
}

TEST(WaveOut, WithoutAServerThereIsNoDevice) {
    const auto waves = makePulseWaveOut({"unix:/nowhere/at/all"});
    EXPECT_EQ(waves->waveOutGetNumDevs(), 0U);
    WaveOutCaps caps;
    caps.channels = 77;
    EXPECT_NE(waves->waveOutGetDevCapsA(0, caps, record), 0U);
    EXPECT_EQ(caps.channels, 77);
}

TEST(WaveOut, TellsTheDefaultDevicesCapabilities) {
    const PulseServer server(with({}));
    ASSERT_TRUE(server.running());
    const auto waves = makePulseWaveOut({server.address()});
    EXPECT_EQ(waves->waveOutGetNumDevs(), 1U);
    WaveOutCaps caps;
    ASSERT_EQ(waves->waveOutGetDevCapsA(0, caps, record), 0U);
    EXPECT_EQ(caps.productName, u"Null Output");
    EXPECT_EQ(caps.channels, 2);
    EXPECT_EQ(caps.formats, 0xFFFU);
    EXPECT_EQ(caps.support, 12U); // volume, left-right
    EXPECT_EQ(caps.manufacturerId, 0);
    EXPECT_EQ(caps.productId, 0);
    EXPECT_GE(caps.driverVersion >> 8, 10);
}

TEST(WaveOut, VendorAndProductAreTheSinksNumbers) {
    const PulseServer server(
        with({"module-null-sink sink_name=card sink_properties=\"device.vendor.id=8086 "
              "device.product.id=a0c8 device.description='A Card'\"",
              "module-null-sink sink_name=plain"}));
    ASSERT_TRUE(server.running());
    ASSERT_EQ(std::system(("pactl -s " + server.address() + " set-default-sink card").c_str()), 0);
    WaveOutCaps caps;
    ASSERT_EQ(makePulseWaveOut({server.address()})->waveOutGetDevCapsA(0, caps, record), 0U);
    EXPECT_EQ(caps.productName, u"A Card");
    EXPECT_EQ(caps.manufacturerId, 0x8086);
    EXPECT_EQ(caps.productId, 0xA0C8);
    // The two ways of asking agree.
    const auto until = Clock::now() + Ms(5000);
    const auto socket = queryBySocket(server.socketPath(), until);
    const auto library = queryByLibrary(server.address(), LibraryNames().pulse, until);
    ASSERT_TRUE(socket && library);
    EXPECT_EQ(socket->version, library->version);
    EXPECT_EQ(socket->defaultSink, library->defaultSink);
    ASSERT_EQ(socket->sinks.size(), library->sinks.size());
    for (std::size_t i = 0; i < socket->sinks.size(); ++i) {
        EXPECT_EQ(socket->sinks[i].name, library->sinks[i].name);
        EXPECT_EQ(socket->sinks[i].description, library->sinks[i].description);
        EXPECT_EQ(socket->sinks[i].channels, library->sinks[i].channels);
        EXPECT_EQ(socket->sinks[i].vendorId, library->sinks[i].vendorId);
        EXPECT_EQ(socket->sinks[i].productId, library->sinks[i].productId);
    }
}

TEST(WaveOut, DeviceZeroIsTheDefaultOneAndMonoHasNoStereo) {
    const PulseServer server(with({"module-null-sink sink_name=single channels=1 "
                                   "sink_properties=device.description=Single"}));
    ASSERT_TRUE(server.running());
    ASSERT_EQ(std::system(("pactl -s " + server.address() + " set-default-sink single").c_str()),
              0);
    const auto waves = makePulseWaveOut({server.address()});
    EXPECT_EQ(waves->waveOutGetNumDevs(), 2U);
    WaveOutCaps caps;
    ASSERT_EQ(waves->waveOutGetDevCapsA(0, caps, record), 0U);
    EXPECT_EQ(caps.productName, u"Single");
    EXPECT_EQ(caps.channels, 1);
    EXPECT_EQ(caps.formats, 0x555U);
    EXPECT_EQ(caps.support, 4U);
    ASSERT_EQ(waves->waveOutGetDevCapsA(1, caps, record), 0U);
    EXPECT_EQ(caps.productName, u"Null Output");
    EXPECT_EQ(waves->waveOutGetDevCapsA(2, caps, record), 2U);
}

TEST(WaveOut, ALongNameIsCutToItsPlace) {
    const PulseServer server(
        with({"module-null-sink sink_name=long "
              "sink_properties=device.description=ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"}));
    ASSERT_TRUE(server.running());
    ASSERT_EQ(std::system(("pactl -s " + server.address() + " set-default-sink long").c_str()), 0);
    WaveOutCaps caps;
    ASSERT_EQ(makePulseWaveOut({server.address()})->waveOutGetDevCapsA(0, caps, record), 0U);
    EXPECT_EQ(caps.productName, u"ABCDEFGHIJKLMNOPQRSTUVWXYZ01234");
}

TEST(WaveOut, TheServersOwnDummyIsNoDevice) {
    PulseServer::Options options;
    options.nullSink = false;
    const PulseServer server(options);
    ASSERT_TRUE(server.running());
    // The server makes it a moment after its start.
    ASSERT_TRUE(waitFor(60000, [&] {
        const auto answer = queryBySocket(server.socketPath(), Clock::now() + Ms(1000));
        return answer && !answer->sinks.empty();
    }));
    const auto waves = makePulseWaveOut({server.address()});
    EXPECT_EQ(waves->waveOutGetNumDevs(), 0U);
    WaveOutCaps caps;
    EXPECT_EQ(waves->waveOutGetDevCapsA(0, caps, record), 2U);
}

TEST(WaveOut, ARecordTooSmallIsRefused) {
    const PulseServer server;
    WaveOutCaps caps;
    const auto waves = makePulseWaveOut({server.address()});
    EXPECT_EQ(waves->waveOutGetDevCapsA(0, caps, 49), 11U);
    EXPECT_EQ(waves->waveOutGetDevCapsA(0, caps, 52), 0U);
}

TEST(WaveOut, AServerThatHangsIsWaitedForSomeSecondsAtMost) {
    PulseServer server;
    ASSERT_TRUE(server.running());
    server.freeze();
    const auto start = Clock::now();
    EXPECT_EQ(makePulseWaveOut({server.address()})->waveOutGetNumDevs(), 0U);
    EXPECT_LT(msSince(start), 20000); // usually 5000
    server.thaw();
}

TEST(WaveOut, LoadsNoLibraryForAServerOnThisMachine) {
    const PulseServer server;
    LibraryNames names;
    names.pulse = "libthere-is-no-such-thing.so.0";
    EXPECT_EQ(makePulseWaveOut({server.address(), names})->waveOutGetNumDevs(), 1U);
}

} // namespace
} // namespace velmora::platform::sound
