#include "platform/backends/picture/picture_device.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace velmora::platform::picture {

using media::Channel;
using media::Mode;
using std::chrono::milliseconds;

namespace {

constexpr std::int32_t greatestVolume = 1000;

// The engine's own volume is a percentage whose cube is the amplitude.
double engineVolume(std::int32_t level) {
    return 100.0 * std::cbrt(static_cast<double>(level) / greatestVolume);
}

// One side on both speakers: whatever the medium has is made stereo first by the engine's own
// rules, so that six channels are mixed down as they are for stereo.
std::string channelFilter(Channel channel) {
    switch (channel) {
    case Channel::Stereo:
        return {};
    case Channel::Left:
        return "format=channels=stereo,lavfi=[pan=stereo|c0=c0|c1=c0]";
    case Channel::Right:
        return "format=channels=stereo,lavfi=[pan=stereo|c0=c1|c1=c1]";
    }
    return {};
}

} // namespace

PictureDevice::PictureDevice(OpenMedium medium) : medium_(std::move(medium)), core_(*medium_.core) {
    core_.listen([this](const mpv_event &event) { handle(event); });
    core_.observeFlag("eof-reached");
}

// The engine goes first: it draws into the window.
PictureDevice::~PictureDevice() {
    core_.listen({});
    if (medium_.window != nullptr)
        medium_.window->hide();
    medium_.core.reset();
}

void PictureDevice::handle(const mpv_event &event) {
    switch (event.event_id) {
    case MPV_EVENT_COMMAND_REPLY:
        seeks_.taken(event.reply_userdata, event.error < 0);
        break;
    case MPV_EVENT_SEEK:
        seeks_.begun();
        watchClosely();
        break;
    case MPV_EVENT_PLAYBACK_RESTART:
        seeks_.done();
        watchClosely();
        handOverPicture();
        break;
    case MPV_EVENT_PROPERTY_CHANGE: {
        const auto *changed = static_cast<const mpv_event_property *>(event.data);
        mayBeAtEnd_ = changed->format == MPV_FORMAT_FLAG && *static_cast<int *>(changed->data) != 0;
        break;
    }
    case MPV_EVENT_HOOK:
        // Only a reload gets here: its tracks are known.
        beginLoaded();
        core_.continueHook(static_cast<const mpv_event_hook *>(event.data)->id);
        break;
    case MPV_EVENT_END_FILE:
        isUnloaded_ = true;
        loading_.reset();
        seeks_.forget();
        break;
    case MPV_EVENT_FILE_LOADED:
        isUnloaded_ = false;
        if (const auto target = std::exchange(loading_, std::nullopt); target != begun_)
            sendSeek(target.value_or(0.0));
        break;
    case MPV_EVENT_AUDIO_RECONFIG:
        mayBeUnheard_ = true;
        break;
    case MPV_EVENT_QUEUE_OVERFLOW:
        seeks_.forget();
        break;
    case MPV_EVENT_SHUTDOWN:
        isShut_ = true;
        seeks_.forget();
        break;
    default:
        break;
    }
}

void PictureDevice::refresh() {
    core_.pump();
    const auto now = Clock::now();
    if (now - watched_ >= closeInterval) {
        watched_ = now;
        watchWindow();
    }
    if (mode_ != Mode::Playing)
        return;
    if (isUnloaded_ || isShut_)
        endReached();
    else if (!loading_ && seeks_.isSettled() && isReadingDue(now))
        readEngine();
    if (mayBeUnheard_ && mode_ == Mode::Playing && !loading_ && now - looked_ >= serverInterval)
        lookForServer(now);
}

void PictureDevice::lookForServer(Clock::time_point now) {
    looked_ = now;
    const bool canBeHeard = medium_.hasSound && medium_.soundServerAnswers;
    const auto output = canBeHeard ? core_.text("current-ao") : std::nullopt;
    if (canBeHeard && !output)
        return; // between two
    mayBeUnheard_ = output == "null";
    if (!mayBeUnheard_ || !medium_.soundServerAnswers())
        return;
    watchClosely();
    if (medium_.window == nullptr || isPictureGone_)
        core_.command({"ao-reload"});
    dropBufferedSound();
}

bool PictureDevice::isReadingDue(Clock::time_point now) const {
    const bool isClose = mayBeAtEnd_ || now < settling_;
    return now - read_ >= (isClose ? closeInterval : steadyInterval);
}

void PictureDevice::readEngine() {
    read_ = Clock::now();
    if (core_.flag("eof-reached").value_or(false) && seeks_.isSettled()) {
        endReached();
        return;
    }
    const auto when = Clock::now();
    // What is heard now; the other only moves with each picture.
    auto position = core_.number("audio-pts");
    if (!position)
        position = core_.number("time-pos");
    if (position && seeks_.isSettled() && Clock::now() - when < closeInterval)
        clock_.correct(*position, when);
    if (hangsAtEnd(Clock::now()))
        endReached();
}

// The engine takes the sound for heard when the server tells that it has run out. Where that comes
// while the output is just begun anew, as on a busy machine, it is missed: behind the last piece
// the engine then waits for it for ever.
bool PictureDevice::hangsAtEnd(Clock::time_point now) const {
    return clock_.standsFor(now) >= hangsAfter && clock_.at(now) >= seconds();
}

void PictureDevice::endReached() {
    mode_ = Mode::Stopped;
    isAtEnd_ = true;
    clock_.stopAt(seconds());
}

// Ends the picture once its window is gone. A medium without sound goes on unseen: without its only
// stream the engine would take it for ended.
void PictureDevice::watchWindow() {
    if (isPictureGone_ || medium_.window == nullptr || !medium_.window->isGone())
        return;
    isPictureGone_ = true;
    medium_.window->hide();
    if (medium_.hasSound)
        core_.set("vid", std::string("no"));
}

// The engine's drawing is on its way to the screen only when the thread that draws is next awake,
// and where a picture took longer to draw than it lasts, a film that stands wakes it after ten
// seconds. A question that only that thread can answer does at once.
void PictureDevice::handOverPicture() {
    if (medium_.window != nullptr && !isPictureGone_)
        core_.command({"expand-text", "${display-names}"});
}

bool PictureDevice::hasPicture() {
    watchWindow();
    return medium_.window != nullptr && !isPictureGone_;
}

double PictureDevice::seconds() const { return static_cast<double>(medium_.lengthMs) / 1000.0; }

void PictureDevice::seekEngine(double target) {
    clock_.stopAt(target);
    if (loading_)
        loading_ = target;
    else
        sendSeek(target);
}

void PictureDevice::sendSeek(double target) {
    const std::uint64_t id = core_.command({"seek", std::to_string(target), "absolute+exact"});
    if (id != 0)
        seeks_.sent(id);
}

void PictureDevice::reload(double target) {
    clock_.stopAt(target);
    core_.command({"loadfile", medium_.path});
    isUnloaded_ = false;
    loading_ = target;
}

void PictureDevice::beginLoaded() {
    begun_ = loading_;
    core_.set("start", std::to_string(begun_.value_or(0.0)));
}

// A seek drops what was buffered only when the engine gets to it: an output that goes on before
// would put that out first.
void PictureDevice::awaitSeek() {
    const auto end = Clock::now() + seekLimit;
    for (auto now = Clock::now(); seeks_.isToBegin() && now < end; now = Clock::now())
        core_.pump(std::chrono::ceil<milliseconds>(end - now));
}

bool PictureDevice::play() {
    refresh();
    if (isShut_)
        return false;
    if (mode_ == Mode::Playing)
        return true;
    if (isUnloaded_)
        reload(0.0);
    else if (isAtEnd_)
        seekEngine(0.0);
    isAtEnd_ = false;
    wasPlayed_ = true;
    awaitSeek();
    mode_ = Mode::Playing;
    clock_.run();
    watchClosely();
    return core_.set("pause", false) != 0;
}

bool PictureDevice::pause() {
    refresh();
    if (isShut_)
        return false;
    if (mode_ != Mode::Playing)
        return true;
    mode_ = Mode::Paused;
    clock_.stopAt(std::min(clock_.at(Clock::now()), seconds()));
    return core_.set("pause", true) != 0;
}

bool PictureDevice::seek(std::int32_t ms) {
    refresh();
    if (isShut_ || ms < 0 || ms > medium_.lengthMs)
        return false;
    core_.set("pause", true);
    const double target = static_cast<double>(ms) / 1000.0;
    if (isUnloaded_)
        reload(target);
    else
        seekEngine(target);
    isAtEnd_ = ms == medium_.lengthMs;
    if (wasPlayed_ || ms > 0)
        mode_ = Mode::Paused;
    wasPlayed_ = wasPlayed_ || ms > 0;
    return true;
}

bool PictureDevice::setVolume(std::int32_t level) {
    core_.pump();
    if (isShut_ || level < 0 || level > greatestVolume)
        return false;
    return core_.set("volume", engineVolume(level)) != 0;
}

bool PictureDevice::setChannel(Channel channel) {
    refresh();
    if (isShut_)
        return false;
    // One channel is on both sides as it is.
    if (channel == channel_ || !medium_.hasSound || medium_.isMono)
        return true;
    if (core_.set("af", channelFilter(channel)) == 0)
        return false;
    channel_ = channel;
    watchClosely();
    if (!isUnloaded_ && !isAtEnd_)
        dropBufferedSound();
    return true;
}

// What went through the filters before must not be heard after. A medium of sound alone seeks to
// where it is. With pictures a seek would cost a decode from the last key frame: there the sound
// stream is taken away and given back, which starts it anew at the picture's time.
void PictureDevice::dropBufferedSound() {
    if (medium_.window != nullptr && !isPictureGone_) {
        core_.set("aid", std::string("no"));
        core_.set("aid", std::string("auto"));
        return;
    }
    const bool isRunning = clock_.isRunning();
    if (isRunning && seeks_.isSettled())
        readEngine();
    if (mode_ == Mode::Stopped && isAtEnd_)
        return;
    seekEngine(std::min(clock_.at(Clock::now()), seconds()));
    if (isRunning)
        clock_.run();
}

bool PictureDevice::putWindow(std::int32_t x, std::int32_t y, std::int32_t width,
                              std::int32_t height) {
    if (!hasPicture())
        return false;
    const auto scaled = [scale = medium_.pixelScale()](std::int32_t pixels) {
        const double value = std::round(pixels * scale);
        return static_cast<std::int32_t>(std::clamp(value, -100'000.0, 100'000.0));
    };
    return medium_.window->place(scaled(x), scaled(y), scaled(width), scaled(height));
}

Mode PictureDevice::mode() {
    refresh();
    return mode_;
}

std::int32_t PictureDevice::positionMs() {
    refresh();
    const double position = std::clamp(clock_.at(Clock::now()), 0.0, seconds());
    return std::min(static_cast<std::int32_t>(std::lround(position * 1000.0)), medium_.lengthMs);
}

std::uintptr_t PictureDevice::windowHandle() { return hasPicture() ? medium_.window->id() : 0; }

} // namespace velmora::platform::picture
