#include "platform/backends/picture/opening.h"

#include "platform/backends/picture/medium_length.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>

namespace velmora::platform::picture {

using std::chrono::milliseconds;

namespace {

// The engine may take so long to decode the first frame and to open its outputs; a sound server
// that hangs does not make the open fail.
constexpr milliseconds readyLimit{3000};
constexpr milliseconds scanLimit{5000};
// The core is idle while the medium's tracks are looked at.
constexpr milliseconds answerLimit{1000};
constexpr int mostTracks = 64;
// A picture up to full HD is decoded within a fraction of its time on the screen.
constexpr double mostLightPixels = 1920.0 * 1088.0;

// A path that begins with "/" is no address of any protocol, whatever follows.
std::string absolutePath(const std::string &path) {
    std::error_code error;
    const auto absolute = std::filesystem::absolute(path, error);
    return error ? path : absolute.string();
}

// How many seconds before its target the engine has to begin reading for an exact seek. Decoders
// of sound need what came before their first packet. A stream without an index is searched by its
// time stamps, which lands anywhere between two whole pictures.
double seekLead(const std::string &format, bool hasPicture) {
    constexpr double soundLead = 0.5;
    constexpr double wholePictureLead = 3.0;
    if (!hasPicture || format == "asf")
        return soundLead;
    const bool hasNoIndex =
        format == "mpeg" || format == "mpegts" || format == "mpegvideo" || format == "vob";
    return hasNoIndex ? wholePictureLead : 0.0;
}

} // namespace

Opening::Opening(std::unique_ptr<MpvCore> core, const media::OpenRequest &request,
                 const PictureOptions &options)
    : request_(request), options_(options),
      end_(std::min(Clock::now() + milliseconds(options.openLimitMs), request.end)), core_(*core) {
    medium_.core = std::move(core);
    medium_.path = absolutePath(request.path);
    medium_.pixelScale = options.pixelScale;
    medium_.soundServerAnswers = options.soundServerAnswers;
    core_.listen([this](const mpv_event &event) { handle(event); });
}

void Opening::handle(const mpv_event &event) {
    switch (event.event_id) {
    case MPV_EVENT_START_FILE:
        isStarted_ = true;
        break;
    case MPV_EVENT_HOOK:
        hook_ = static_cast<const mpv_event_hook *>(event.data)->id;
        stage_ = Stage::TracksKnown;
        break;
    case MPV_EVENT_FILE_LOADED:
        stage_ = Stage::Loaded;
        break;
    case MPV_EVENT_PLAYBACK_RESTART:
        stage_ = Stage::Ready;
        break;
    case MPV_EVENT_END_FILE:
        // One may come for what was there before.
        if (isStarted_)
            stage_ = Stage::Failed;
        break;
    case MPV_EVENT_SHUTDOWN:
        stage_ = Stage::Failed;
        break;
    default:
        break;
    }
}

bool Opening::reach(Stage stage, Clock::time_point end) {
    while (stage_ < stage) {
        const auto left = std::chrono::duration_cast<milliseconds>(end - Clock::now());
        if (left.count() <= 0)
            return false;
        core_.pump(left);
    }
    return stage_ != Stage::Failed;
}

std::optional<OpenMedium> Opening::run() {
    core_.command({"keybind", "CLOSE_WIN", "ignore"});
    core_.hook("on_preloaded");
    if (!loadUpToTracks() || !lookAtTracks() || !chooseWindow())
        return std::nullopt;
    core_.set("hr-seek-demuxer-offset", seekLead(fileFormat(), medium_.window != nullptr));
    core_.continueHook(hook_);
    if (!reach(Stage::Loaded, end_))
        return std::nullopt;
    const bool isReady = reach(Stage::Ready, std::min(end_, Clock::now() + readyLimit));
    if (stage_ == Stage::Failed || (isReady && !canBeDecoded()))
        return std::nullopt;
    const auto length = lengthMs();
    if (!length)
        return std::nullopt;
    medium_.lengthMs = *length;
    showOwnWindow();
    core_.listen({});
    return std::move(medium_);
}

bool Opening::loadUpToTracks() {
    core_.command({"loadfile", medium_.path});
    return reach(Stage::TracksKnown, end_);
}

std::string Opening::fileFormat() { return core_.text("file-format", answerLimit).value_or(""); }

std::string Opening::trackText(int track, const char *item) {
    const std::string property = "track-list/" + std::to_string(track) + "/" + item;
    return core_.text(property.c_str(), answerLimit).value_or("");
}

// Infinitely many where the file does not tell.
double Opening::pixels(int track) {
    const std::string item = "track-list/" + std::to_string(track) + "/demux-";
    const auto width = core_.number((item + "w").c_str(), answerLimit);
    const auto height = core_.number((item + "h").c_str(), answerLimit);
    return width && height ? *width * *height : std::numeric_limits<double>::infinity();
}

bool Opening::lookAtTracks() {
    const double count = core_.number("track-list/count", answerLimit).value_or(0.0);
    for (int track = 0; track < std::min(static_cast<int>(count), mostTracks); ++track) {
        const std::string type = trackText(track, "type");
        const bool isStill =
            trackText(track, "albumart") == "yes" || trackText(track, "image") == "yes";
        medium_.hasSound = medium_.hasSound || type == "audio";
        if (type == "video" && !isStill) {
            hasMovingPicture_ = true;
            isHeavy_ = isHeavy_ || pixels(track) > mostLightPixels;
        }
    }
    // Now, before the engine has read ahead: later it takes what it has read for the length.
    headerSeconds_ = core_.number("duration", answerLimit);
    return medium_.hasSound || hasMovingPicture_;
}

// Where the picture goes, while the engine waits with choosing its tracks.
bool Opening::chooseWindow() {
    if (hasMovingPicture_ && request_.styleChild) {
        medium_.isOwnWindow = request_.parentWindow == 0;
        const std::string title = std::filesystem::path(request_.path).stem().string();
        medium_.window =
            medium_.isOwnWindow
                ? PictureWindow::onScreen(title, options_.applicationName)
                : PictureWindow::insideParent(static_cast<std::uint32_t>(request_.parentWindow));
    }
    if (medium_.window == nullptr)
        return core_.finish(core_.set("vid", std::string("no")), answerLimit);
    // Handing each frame from thread to thread costs more than it saves here. The sound keeps its
    // thread: the picture stands by the time that the engine waits for a server that hangs.
    if (!isHeavy_)
        core_.set("vd-queue-enable", false);
    return core_.finish(core_.set("wid", std::int64_t{medium_.window->id()}), answerLimit);
}

// A stream may be found and its codec be unknown, or not one frame come out of it.
bool Opening::canBeDecoded() {
    const bool sounds = core_.number("audio-params/samplerate", answerLimit).has_value();
    const bool shows = core_.number("video-params/w", answerLimit).has_value();
    medium_.isMono = core_.number("audio-params/channel-count", answerLimit) == 1.0;
    medium_.hasSound = sounds;
    if (!shows)
        medium_.window.reset();
    return sounds || shows;
}

std::optional<std::int32_t> Opening::lengthMs() {
    const std::string format = fileFormat();
    const auto limit =
        std::min(scanLimit, std::chrono::duration_cast<milliseconds>(end_ - Clock::now()));
    const auto seconds =
        measureLength(medium_.path, lengthSource(format, headerSeconds_.has_value()),
                      headerSeconds_, std::max(limit, milliseconds(100)));
    constexpr double most = std::numeric_limits<std::int32_t>::max();
    if (!seconds || !(*seconds > 0.0))
        return std::nullopt;
    return static_cast<std::int32_t>(std::clamp(std::round(*seconds * 1000.0), 1.0, most));
}

void Opening::showOwnWindow() {
    if (medium_.window == nullptr || !medium_.isOwnWindow)
        return;
    const double width = core_.number("dwidth", answerLimit).value_or(640.0);
    const double height = core_.number("dheight", answerLimit).value_or(360.0);
    const auto scaled = [scale = options_.pixelScale()](double pixels) {
        return static_cast<std::int32_t>(std::clamp(pixels * scale, 1.0, 32'000.0));
    };
    medium_.window->showSized(scaled(width), scaled(height));
}

} // namespace velmora::platform::picture
