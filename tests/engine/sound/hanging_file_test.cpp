// A file whose reading does not return, as on a mount whose server has gone: what comes after it
// sounds all the same, and nothing waits for it.

#include "device_fixture.h"

#include "platform/backends/sound/device/sound_device.h"

#include <atomic>
#include <condition_variable>
#include <future>
#include <mutex>

namespace velmora::platform::sound {
namespace {

using namespace velmora::tests;

constexpr int rate = 44100;
constexpr auto none = MonitorRecorder::frameNone;

// What stands between a test and the thread that reads.
class Gate {
public:
    void close() {
        const std::lock_guard lock(mutex_);
        isClosed_ = true;
    }
    void open() {
        const std::lock_guard lock(mutex_);
        isClosed_ = false;
        changed_.notify_all();
    }
    void pass() {
        std::unique_lock lock(mutex_);
        ++waiting_;
        changed_.wait(lock, [this] { return !isClosed_; });
        --waiting_;
    }
    bool holdsSomebody() {
        const std::lock_guard lock(mutex_);
        return isClosed_ && waiting_ > 0;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool isClosed_ = false;
    int waiting_ = 0;
};

// A minute of a tone, and what was done with it.
struct File {
    Gate reading;
    Gate seeking;
    std::atomic<int> seeks = 0;
    std::atomic<std::int64_t> position = 0;
    std::atomic<bool> isGone = false;
};

class FileReader final : public Reader {
public:
    explicit FileReader(std::shared_ptr<File> file) : file_(std::move(file)) {}
    ~FileReader() override { file_->isGone = true; }

    int rate() const override { return sound::rate; }
    int channels() const override { return 2; }
    std::int64_t frames() const override { return std::int64_t{60} * sound::rate; }
    bool seek(std::int64_t frame) override {
        ++file_->seeks;
        file_->seeking.pass();
        file_->position = frame;
        return true;
    }
    std::size_t read(float *out, std::size_t count) override {
        file_->reading.pass();
        for (std::size_t i = 0; i < count; ++i) {
            const auto at = static_cast<double>(file_->position++);
            out[i * 2] = out[i * 2 + 1] =
                static_cast<float>(0.5 * std::sin(2 * M_PI * 500 * at / sound::rate));
        }
        return count;
    }

private:
    std::shared_ptr<File> file_;
};

class HangingFile : public testing::Test {
protected:
    HangingFile()
        : engine_(
              std::make_unique<OutputEngine>(PulseLinkOptions{"libthere-is-none.so", "", "", ""})) {
    }
    // No thread of a test may outlive it.
    void TearDown() override {
        for (const auto &file : files_) {
            file->reading.open();
            file->seeking.open();
        }
        engine_.reset();
        for (const auto &file : files_)
            EXPECT_TRUE(waitFor(60000, [&] { return file->isGone.load(); }));
    }
    std::shared_ptr<File> newFile() { return files_.emplace_back(std::make_shared<File>()); }
    std::unique_ptr<SoundDevice> open(const std::shared_ptr<File> &file) {
        return std::make_unique<SoundDevice>(std::make_unique<FileReader>(file), *engine_, "file");
    }

    std::unique_ptr<OutputEngine> engine_;
    std::vector<std::shared_ptr<File>> files_;
};

class HangingFileHeard : public HangingFile {
protected:
    HangingFileHeard() {
        engine_ = std::make_unique<OutputEngine>(
            PulseLinkOptions{LibraryNames().pulse, server_.address(), "Velmora", ""});
    }
    void SetUp() override { ASSERT_TRUE(server_.running()); }

    PulseServer server_;
};

TEST_F(HangingFileHeard, TheNextMediumIsHeardAlthoughTheReadingOfTheLastHangs) {
    const MonitorRecorder recorder(server_);
    const auto hanging = newFile();
    auto device = open(hanging);
    device->play();
    ASSERT_NE(recorder.waitForLoud(0.05F, 0, 30000), none);
    hanging->reading.close();
    ASSERT_TRUE(waitFor(60000, [&] { return hanging->reading.holdsSomebody(); }));
    device.reset();
    // What the server has of the old one ends by itself.
    const std::size_t quiet = recorder.waitForSilence(0.0005F, 200, recorder.frames(), 30000);
    ASSERT_NE(quiet, none);
    const std::size_t from = recorder.frames();
    device = open(newFile());
    device->play();
    // Whoever asks where it is, as the program does all the time, notices that the other hangs.
    EXPECT_TRUE(waitFor(60000, [&] { return device->positionMs() > 200; }));
    EXPECT_EQ(device->mode(), Mode::Playing);
    EXPECT_NE(recorder.waitForLoud(0.05F, from, 30000), none);
}

TEST_F(HangingFileHeard, SoIsTheNextAfterASeekThatHangs) {
    const MonitorRecorder recorder(server_);
    const auto hanging = newFile();
    auto device = open(hanging);
    hanging->seeking.close();
    device->seek(30000);
    device->play();
    ASSERT_TRUE(waitFor(60000, [&] { return hanging->seeking.holdsSomebody(); }));
    device.reset();
    device = open(newFile());
    device->play();
    EXPECT_TRUE(waitFor(60000, [&] { return device->positionMs() > 200; }));
    EXPECT_NE(recorder.waitForLoud(0.05F, 0, 30000), none);
}

TEST_F(HangingFileHeard, WhatHungIsServedToItsEndOnceItComesBack) {
    const auto hanging = newFile();
    auto device = open(hanging);
    hanging->reading.close();
    device->play();
    ASSERT_TRUE(waitFor(60000, [&] { return hanging->reading.holdsSomebody(); }));
    const auto other = open(newFile());
    other->play();
    ASSERT_TRUE(waitFor(60000, [&] { return other->positionMs() > 100; }));
    hanging->reading.open();
    EXPECT_TRUE(waitFor(60000, [&] { return device->positionMs() > 100; }));
    ASSERT_TRUE(device->seek(59900));
    device->play();
    EXPECT_TRUE(waitFor(60000, [&] { return device->mode() == Mode::Stopped; }));
    device.reset();
    EXPECT_TRUE(waitFor(60000, [&] { return hanging->isGone.load(); }));
}

TEST_F(HangingFileHeard, TheEndOfTheEngineWaitsForNoFile) {
    const auto hanging = newFile();
    auto device = open(hanging);
    hanging->reading.close();
    device->play();
    ASSERT_TRUE(waitFor(60000, [&] { return hanging->reading.holdsSomebody(); }));
    device.reset();
    auto ended = std::async(std::launch::async, [this] { engine_.reset(); });
    EXPECT_EQ(ended.wait_for(Ms(5000)), std::future_status::ready); // usually 300
    hanging->reading.open();
}

TEST_F(HangingFile, ManyThatHangLeaveTheNextAlone) {
    for (int i = 0; i < 5; ++i) {
        const auto hanging = newFile();
        auto device = open(hanging);
        hanging->seeking.close();
        device->seek(30000 + i);
        device->play();
        ASSERT_TRUE(waitFor(60000, [&] {
            device->mode();
            return hanging->seeking.holdsSomebody();
        })) << i;
    }
    const auto device = open(newFile());
    device->play();
    EXPECT_TRUE(waitFor(60000, [&] { return device->positionMs() > 100; }));
}

TEST_F(HangingFileHeard, ClosingAsksNothingOfTheFile) {
    const auto file = newFile();
    auto device = open(file);
    device->seek(20000);
    device->play();
    // So far that its beginning is no longer kept.
    ASSERT_TRUE(waitFor(60000, [&] { return device->positionMs() > 23000; }));
    const int seeks = file->seeks;
    const std::int64_t position = file->position;
    device.reset();
    ASSERT_TRUE(waitFor(60000, [&] { return file->isGone.load(); }));
    EXPECT_EQ(file->seeks, seeks);
    EXPECT_GE(file->position, position);
}

} // namespace
} // namespace velmora::platform::sound
