#pragma once

// Devices in memory for the interpreter: they record what reaches them and refuse on request.

#include "platform/backends/media/device.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace velmora::tests {

using namespace platform::media;

// Outlives the device, so that a test sees what a closed device was told.
struct FakeMedium {
    std::vector<std::string> calls;
    bool refuses = false;
    bool isClosed = false;
    Mode mode = Mode::Stopped;
    std::int32_t positionMs = 0;
    std::int32_t lengthMs = 200'000;
    std::uintptr_t windowHandle = 0;
};

class FakeDevice : public Device {
public:
    explicit FakeDevice(std::shared_ptr<FakeMedium> medium) : medium_(std::move(medium)) {}
    ~FakeDevice() override { medium_->isClosed = true; }

    bool play() override { return told("play"); }
    bool pause() override { return told("pause"); }
    bool seek(std::int32_t ms) override { return told("seek " + std::to_string(ms)); }
    bool setVolume(std::int32_t level) override { return told("volume " + std::to_string(level)); }
    bool setChannel(Channel channel) override {
        return told(channel == Channel::Left    ? "left"
                    : channel == Channel::Right ? "right"
                                                : "stereo");
    }
    bool putWindow(std::int32_t x, std::int32_t y, std::int32_t width,
                   std::int32_t height) override {
        return told("put " + std::to_string(x) + " " + std::to_string(y) + " " +
                    std::to_string(width) + " " + std::to_string(height));
    }
    Mode mode() override { return medium_->mode; }
    std::int32_t positionMs() override { return medium_->positionMs; }
    std::int32_t lengthMs() override { return medium_->lengthMs; }
    std::uintptr_t windowHandle() override { return medium_->windowHandle; }

private:
    bool told(const std::string &call) {
        medium_->calls.push_back(call);
        return !medium_->refuses;
    }

    std::shared_ptr<FakeMedium> medium_;
};

// What the openers were asked, in order, over both of them.
struct OpenLog {
    std::vector<std::string> asked;
    std::vector<OpenRequest> requests;
};

class FakeOpener : public DeviceOpener {
public:
    FakeOpener(std::string name, std::shared_ptr<OpenLog> log, std::shared_ptr<FakeMedium> medium)
        : name_(std::move(name)), log_(std::move(log)), medium_(std::move(medium)) {}

    // Null `medium` refuses every file.
    std::unique_ptr<Device> open(const OpenRequest &request) override {
        log_->asked.push_back(name_);
        log_->requests.push_back(request);
        if (medium_ == nullptr)
            return nullptr;
        return std::make_unique<FakeDevice>(medium_);
    }

private:
    std::string name_;
    std::shared_ptr<OpenLog> log_;
    std::shared_ptr<FakeMedium> medium_;
};

} // namespace velmora::tests
