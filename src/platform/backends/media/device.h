#pragma once

// What a media device is to the command interpreter. Two exist: the sound device (src/platform/
// sound) and the picture device (src/platform/picture). A device holds at most one medium for its
// whole life: it is made by its opener with the medium open, and destroying it closes the medium.
//
// Called from one thread only; a device's own threads never call out.

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

namespace velmora::platform::media {

enum class Mode { Stopped, Playing, Paused, Seeking };

enum class Channel { Stereo, Left, Right };

// What the open command asked for.
struct OpenRequest {
    std::string path;        // the file's own bytes
    std::string type;        // "MPEGVideo", "MPEGVideo2", "Waveaudio", "Sequencer", "AVIVideo"
    bool styleChild = false; // "style child" was given
    std::uintptr_t parentWindow = 0; // the window after "parent", 0 if none
    // An open that is not done by then is to fail: nobody sees the program wait for longer.
    std::chrono::steady_clock::time_point end = std::chrono::steady_clock::time_point::max();
};

class Device {
public:
    virtual ~Device() = default;

    // Each answers false when it cannot be done; nothing has changed then.
    virtual bool play() = 0; // at the end: from the beginning
    virtual bool pause() = 0;
    virtual bool seek(std::int32_t ms) = 0;         // 0..lengthMs(), else false; leaves Paused
    virtual bool setVolume(std::int32_t level) = 0; // 0..1000, linear in amplitude
    virtual bool setChannel(Channel channel) = 0;
    virtual bool putWindow(std::int32_t x, std::int32_t y, std::int32_t width,
                           std::int32_t height) = 0; // pixels; false without a picture stream

    virtual Mode mode() = 0;
    virtual std::int32_t positionMs() = 0; // 0..lengthMs()
    virtual std::int32_t lengthMs() = 0;
    virtual std::uintptr_t windowHandle() = 0; // 0 without a picture
};

// Opens media of its kind. Null: not a medium this device plays (the next opener is asked) or it
// cannot be opened. Answers in bounded time whatever the file holds and the disk does.
class DeviceOpener {
public:
    virtual ~DeviceOpener() = default;
    virtual std::unique_ptr<Device> open(const OpenRequest &request) = 0;
};

} // namespace velmora::platform::media
