#pragma once

// One medium open in one engine of its own.

#include "platform/backends/media/device.h"
#include "platform/backends/picture/mpv_core.h"
#include "platform/backends/picture/picture_window.h"
#include "platform/backends/picture/playback_clock.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace velmora::platform::picture {

// What the opener found out.
struct OpenMedium {
    // Ahead of the engine, which draws into it and so has to go first.
    std::unique_ptr<PictureWindow> window; // null without a picture
    std::unique_ptr<MpvCore> core;         // with the medium loaded and paused at its beginning
    std::string path;                      // absolute, as the engine took it
    bool hasSound = false;
    bool isMono = false;
    bool isOwnWindow = false; // not inside a window of the program
    std::int32_t lengthMs = 0;
    std::function<double()> pixelScale;       // see PictureOptions
    std::function<bool()> soundServerAnswers; // see PictureOptions; may be empty
};

class PictureDevice : public media::Device {
public:
    explicit PictureDevice(OpenMedium medium);
    ~PictureDevice() override;

    bool play() override;
    bool pause() override;
    bool seek(std::int32_t ms) override;
    bool setVolume(std::int32_t level) override;
    bool setChannel(media::Channel channel) override;
    bool putWindow(std::int32_t x, std::int32_t y, std::int32_t width,
                   std::int32_t height) override;

    media::Mode mode() override;
    std::int32_t positionMs() override;
    std::int32_t lengthMs() override { return medium_.lengthMs; }
    std::uintptr_t windowHandle() override;

private:
    using Clock = std::chrono::steady_clock;

    void handle(const mpv_event &event);
    // Brings position, mode and window up to date.
    void refresh();
    // A reading wakes the engine and waits for it: the clock tells the time between two of them.
    bool isReadingDue(Clock::time_point now) const;
    void readEngine();
    // What was started, moved or changed takes a while to run evenly.
    void watchClosely() { settling_ = Clock::now() + settlingTime; }
    // The engine stands where the medium ends, but does not say so.
    bool hangsAtEnd(Clock::time_point now) const;
    void endReached();
    void watchWindow();
    // Has the screen show what the engine has drawn.
    void handOverPicture();
    bool hasPicture();
    double seconds() const;
    void seekEngine(double seconds);
    void sendSeek(double seconds);
    void reload(double seconds);
    // Tells the engine where to begin with the medium whose tracks it knows.
    void beginLoaded();
    void dropBufferedSound();
    // Until the engine has begun with the last seek, for a bounded time.
    void awaitSeek();
    // The engine puts sound out into nothing where it found no server, and never looks again.
    void lookForServer(Clock::time_point now);

    static constexpr std::chrono::milliseconds settlingTime{1000};
    static constexpr std::chrono::milliseconds closeInterval{10};
    static constexpr std::chrono::milliseconds steadyInterval{250};
    static constexpr std::chrono::milliseconds serverInterval{3000};
    static constexpr std::chrono::milliseconds hangsAfter{3000};
    static constexpr std::chrono::milliseconds seekLimit{200};

    OpenMedium medium_;
    MpvCore &core_;
    media::Mode mode_ = media::Mode::Stopped;
    media::Channel channel_ = media::Channel::Stereo;
    bool wasPlayed_ = false;  // played or moved since the open
    bool isAtEnd_ = false;    // the next play starts from the beginning
    bool isUnloaded_ = false; // the engine has let go of the medium, at a fault in it
    // While the engine loads the medium anew it takes no seek: where it is to be then, and where
    // it was told to begin.
    std::optional<double> loading_;
    std::optional<double> begun_;
    bool isShut_ = false; // the engine itself has ended
    bool isPictureGone_ = false;
    PlaybackClock clock_;
    SeekTracker seeks_;
    bool mayBeAtEnd_ = false;      // the engine's last word; its end may be that of an earlier run
    Clock::time_point settling_{}; // until then it is read closely
    Clock::time_point read_{};
    Clock::time_point watched_{};
    bool mayBeUnheard_ = true; // the engine has begun its output anew since it was looked at
    Clock::time_point looked_ = Clock::now();
};

} // namespace velmora::platform::picture
