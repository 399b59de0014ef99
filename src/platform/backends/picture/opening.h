#pragma once

// One medium on its way from a path to an open engine.

#include "platform/backends/media/device.h"
#include "platform/backends/picture/mpv_core.h"
#include "platform/backends/picture/picture.h"
#include "platform/backends/picture/picture_device.h"

#include <chrono>
#include <optional>
#include <string>

namespace velmora::platform::picture {

class Opening {
public:
    Opening(std::unique_ptr<MpvCore> core, const media::OpenRequest &request,
            const PictureOptions &options);

    // Loads the medium within the limit of the options. Absent when it is none that can be played.
    std::optional<OpenMedium> run();

private:
    using Clock = std::chrono::steady_clock;
    enum class Stage { Waiting, TracksKnown, Loaded, Ready, Failed };

    void handle(const mpv_event &event);
    // Waits until the stage is reached; false when it failed or the time is over.
    bool reach(Stage stage, Clock::time_point end);
    bool loadUpToTracks();
    bool lookAtTracks();
    bool chooseWindow();
    bool canBeDecoded();
    std::optional<std::int32_t> lengthMs();
    void showOwnWindow();
    std::string fileFormat();
    std::string trackText(int track, const char *item);
    double pixels(int track);

    media::OpenRequest request_;
    PictureOptions options_;
    Clock::time_point end_;
    OpenMedium medium_;
    MpvCore &core_;
    Stage stage_ = Stage::Waiting;
    bool isStarted_ = false;
    std::uint64_t hook_ = 0;
    bool hasMovingPicture_ = false;
    bool isHeavy_ = false; // too much for a decoder between the engine's other work
    std::optional<double> headerSeconds_;
};

} // namespace velmora::platform::picture
