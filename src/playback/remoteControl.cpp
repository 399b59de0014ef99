// What is asked of the player from outside.

#include "playback/remoteControl.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "platform/contracts/files.h"
#include "platform/contracts/windows.h"
#include "playback/Main.h"
#include "playback/VideoScreen_Form.h"
#include "playback/bars.h"
#include "playback/display.h"
#include "playback/player.h"
#include "playlist/Search.h"
#include "playlist/list_work.h"
#include "playlist/playList_Form.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/playSetForm.h"
#include "settings/setControl.h"
#include "ui/formSet.h"
#include "velmora.h"

#include <algorithm>
#include <utility>

namespace velmora {

namespace {

using platform::RemoteCommand;
using platform::RemoteLoop;
using platform::RemoteStatus;

constexpr std::int16_t inOrder = 0;
constexpr std::int16_t randomly = 1;
constexpr std::int16_t repeatTrack = 2;

// Each command may handle events, and in them the next one: as many as a hand could bring.
constexpr int deepest = 8;

} // namespace

class remoteControl::AtWork {
public:
    explicit AtWork(int &count) : count_(count) { ++count_; }
    ~AtWork() { --count_; }
    AtWork(const AtWork &) = delete;
    AtWork &operator=(const AtWork &) = delete;

private:
    int &count_;
};

remoteControl::remoteControl(Velmora &app) : app_(app) {}

void remoteControl::start() { app_.platform().remote.start(*this); }

// The tick of Main runs from the end of the start on.
bool remoteControl::isStill() {
    return !app_.Main().Timer1.running() || !app_.Main().enabled() || ListWork::isGoingOn(app_) ||
           app_.platform().windows.isModal() || atWork_ >= deepest;
}

// The question that tells it for certain starts the next track, so the controls are read, to which
// Main's tick has written the answer.
RemoteStatus remoteControl::status() {
    if (app_.Main().pauseButton.visible())
        return RemoteStatus::Playing;
    return app_.Main().play_Time.caption() != stoppedTime ? RemoteStatus::Paused
                                                          : RemoteStatus::Stopped;
}

// --- transport -----------------------------------------------------------------------------------

void remoteControl::command(RemoteCommand command) {
    // To be found again is no button's work, and what is in the way of one is no reason against it.
    if (command == RemoteCommand::Raise) {
        app_.formSet().show_Player();
        return;
    }
    // The start that a command itself may have caused ends with it.
    if (!app_.Main().Timer1.running())
        asked_ = command;
    if (isStill())
        return;
    const AtWork work(atWork_);
    passOver([&] { perform(command); });
}

void remoteControl::doWaiting() {
    openWaiting();
    if (asked_ && !isStill())
        command(*std::exchange(asked_, std::nullopt));
}

void remoteControl::perform(RemoteCommand command) {
    velmora::Main &main = app_.Main();
    const bool starting = app_.player().isStarting();
    const bool playing = starting || status() == RemoteStatus::Playing;
    if (command == RemoteCommand::PlayPause)
        command = playing ? RemoteCommand::Pause : RemoteCommand::Play;
    switch (command) {
    case RemoteCommand::Play:
        if (!playing)
            main.playButton_Click();
        break;
    case RemoteCommand::Pause:
        if (playing)
            main.pauseButton_Click();
        break;
    case RemoteCommand::Stop:
        if (playing || status() != RemoteStatus::Stopped)
            main.stopButton_Click();
        break;
    case RemoteCommand::Next:
        if (app_.playList_Form().playList_Item.listCount() > 0)
            main.nextButton_Click();
        break;
    case RemoteCommand::Previous:
        if (app_.playList_Form().playList_Item.listCount() > 0)
            main.upButton_Click();
        break;
    case RemoteCommand::Quit:
        main.closeButton_Click();
        break;
    case RemoteCommand::PlayPause:
    case RemoteCommand::Raise:
        break;
    }
}

void remoteControl::quiet(bool wanted) {
    if (!wanted) {
        const auto held = std::exchange(held_, std::nullopt);
        if (held && held->closings == app_.player().closings() && status() == RemoteStatus::Paused)
            command(RemoteCommand::Play);
    } else if (!held_ && (app_.player().isStarting() || status() == RemoteStatus::Playing)) {
        command(RemoteCommand::Pause);
        held_ = Interrupted{app_.player().closings(), false};
    }
}

// Once it plays again, or anything else does, the call's end has nothing to let go.
void remoteControl::watchHeld() {
    if (!held_)
        return;
    const bool isPaused = status() == RemoteStatus::Paused;
    if (held_->closings != app_.player().closings() || (held_->isPaused && !isPaused))
        held_.reset();
    else
        held_->isPaused = held_->isPaused || isPaused;
}

std::int32_t remoteControl::positionMs() {
    return status() == RemoteStatus::Stopped
               ? 0
               : std::clamp(app_.player().position(), 0, std::max(now_.lengthMs, 0));
}

void remoteControl::seekBy(std::int64_t ms) {
    if (isStill() || !now_.canSeek)
        return;
    // Beyond any track either way; the sum is then one, too.
    constexpr std::int64_t farthest = std::int64_t{1} << 40;
    const std::int64_t target = positionMs() + std::clamp(ms, -farthest, farthest);
    if (target > now_.lengthMs)
        command(RemoteCommand::Next);
    else
        jump(std::max<std::int64_t>(target, 0));
}

void remoteControl::seekTo(std::uint32_t track, std::int64_t ms) {
    if (!isStill() && now_.canSeek && track == now_.track && ms >= 0 && ms <= now_.lengthMs)
        jump(ms);
}

void remoteControl::jump(std::int64_t ms) {
    const AtWork work(atWork_);
    passOver([&] { app_.Main().seek_To_Position(static_cast<std::int32_t>(ms)); });
}

void remoteControl::seeked(std::int32_t ms) { app_.platform().remote.seeked(ms); }

// --- volume, order, full screen ------------------------------------------------------------------

void remoteControl::setVolume(double volume) {
    if (!isStill())
        passOver([&] { setVolumeByShare(app_, volume); });
}

bool remoteControl::setLoop(RemoteLoop loop) {
    const std::int16_t mode = app_.setControl().PlayMode;
    switch (loop) {
    case RemoteLoop::Track:
        return setPlayMode(repeatTrack);
    case RemoteLoop::Playlist:
        return setPlayMode(mode == repeatTrack ? inOrder : mode);
    case RemoteLoop::None:
        break;
    }
    return false;
}

bool remoteControl::setShuffle(bool shuffle) {
    const std::int16_t mode = app_.setControl().PlayMode;
    if (shuffle)
        return setPlayMode(randomly);
    return setPlayMode(mode == randomly ? inOrder : mode);
}

// The choice can be made where tracks follow each other, and there alone, as in the settings.
bool remoteControl::setPlayMode(std::int16_t mode) {
    velmora::setControl &settings = app_.setControl();
    if (settings.isAutoPlay != 0)
        return false;
    if (isStill() || mode == settings.PlayMode)
        return true;
    velmora::playSetForm &form = app_.playSetForm();
    forms::OptionButton *const modes[] = {&form.Play_Order, &form.Play_Random,
                                          &form.Play_RepeatPlay};
    modes[mode]->setValue(true);
    settings.PlayMode = mode;
    settings.save_PlayMode();
    return true;
}

void remoteControl::setFullscreen(bool fullscreen) {
    if (isStill() || !now_.canSetFullscreen || !app_.videoScreenLoaded() ||
        fullscreen == (app_.player().isFullScreen != 0))
        return;
    const AtWork work(atWork_);
    passOver([&] { app_.VideoScreen_Form().fullScreen_Button_Click(); });
}

// --- opening -------------------------------------------------------------------------------------

void remoteControl::open(std::vector<std::u16string> paths, bool enqueue) {
    // No list holds more, however often somebody asks while the answer must wait.
    constexpr std::size_t most = forms::ListBox::mostRows;
    if (paths.empty() || waitingPaths_ >= most)
        return;
    paths.resize(std::min(paths.size(), most - waitingPaths_));
    waitingPaths_ += paths.size();
    waiting_.push_back({std::move(paths), enqueue});
    if (!isStill())
        openWaiting();
}

void remoteControl::openWaiting() {
    while (!waiting_.empty() && !isStill()) {
        const Order order = std::move(waiting_.front());
        waiting_.pop_front();
        waitingPaths_ -= order.paths.size();
        const AtWork work(atWork_);
        passOver([&] { openNow(order); });
    }
}

void remoteControl::openNow(const Order &order) {
    app_.platform().windows.personAsked();
    const std::u16string &first = order.paths.front();
    if (!order.enqueue && order.paths.size() == 1 &&
        !app_.saveOrOpenFile().fileOnDisk(first).empty()) {
        openOne(first);
        return;
    }
    app_.playList_Form().filesOpened(order.paths);
    if (!order.enqueue)
        playFirst(order);
}

// The open button's way; what it does not do for a track in the list is to play it.
void remoteControl::openOne(const std::u16string &path) {
    const bool listed = app_.Search().isInPlayList(path);
    app_.playList_Form().setEnabled(false);
    app_.Main().setEnabled(false);
    app_.Main().take_Chosen_File(path);
    if (listed)
        app_.playList_Form().playThis(ListChoice{{}, path});
}

void remoteControl::playFirst(const Order &order) {
    const platform::FileSystem &files = app_.platform().files;
    const forms::ListBox &rows = app_.playList_Form().List1;
    for (const std::u16string &path : order.paths) {
        if (rows.find(path) >= 0) {
            app_.playList_Form().playThis(ListChoice{{}, path});
            return;
        }
        const std::u16string folder = path + files.separatorOf(path);
        for (std::int32_t row = 0; row < rows.listCount(); ++row) {
            if (rows.list(row).starts_with(folder)) {
                app_.playList_Form().playThis(ListChoice{{}, rows.list(row)});
                return;
            }
        }
    }
}

} // namespace velmora
