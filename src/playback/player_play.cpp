// Playing: the fade-in, the state and what follows a track's end, the order of tracks.

#include "playback/player.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "base/text.h"
#include "lyrics/lrcForm.h"
#include "platform/contracts/system.h"
#include "platform/contracts/windows.h"
#include "playback/Main.h"
#include "playback/VideoScreen_Form.h"
#include "playback/remoteControl.h"
#include "playlist/Search.h"
#include "playlist/playList_Form.h"
#include "settings/setControl.h"
#include "ui/zkMySleep.h"
#include "velmora.h"

#include <cmath>

namespace velmora {

namespace {

constexpr std::int16_t done = -1;
constexpr std::int32_t fadeJump = 5; // volume units that a round adds beyond its own one
constexpr std::int32_t fadeWaitMs = 1;

constexpr std::int16_t asBoolean(bool value) { return value ? done : std::int16_t{0}; }

// The track that follows: the last one is followed by the first.
std::int16_t nextIndex(std::int16_t now, std::int16_t rows) {
    return now < rows ? static_cast<std::int16_t>(now + 1) : std::int16_t{1};
}

// The track before: the first one stays.
std::int16_t previousIndex(std::int16_t now, std::int16_t rows) {
    return now >= 2 && rows >= now - 1 ? static_cast<std::int16_t>(now - 1) : std::int16_t{1};
}

// Any track but the last one.
std::int16_t randomIndex(double rnd, std::int16_t rows) {
    return static_cast<std::int16_t>(std::floor(rnd * (rows - 1)) + 1);
}

class Starting {
public:
    explicit Starting(int &count) : count_(count) { ++count_; }
    ~Starting() { --count_; }
    Starting(const Starting &) = delete;
    Starting &operator=(const Starting &) = delete;

private:
    int &count_;
};

} // namespace

std::int16_t player::set_Volume(std::int32_t level) {
    return asBoolean(send(u"setaudio NOWMUSIC volume to " + decimal(level)));
}

std::int16_t player::set_AudioSource(std::int16_t channel) {
    // Two blanks behind the verb: the command's form, kept as it always was.
    std::u16string command = u"setaudio  NOWMUSIC source to ";
    switch (channel) {
    case 0:
        command += u"stereo";
        break;
    case 1:
        command += u"left";
        break;
    case 2:
        command += u"right";
        break;
    default:
        break;
    }
    return asBoolean(send(command));
}

std::int16_t player::pause_Sub() { return asBoolean(send(u"pause NOWMUSIC")); }

std::int16_t player::seek_To(std::int32_t ms) {
    if (!send(u"seek NOWMUSIC to " + decimal(ms)))
        return 0;
    app_.remoteControl().seeked(ms);
    play_Sub();
    return done;
}

std::int16_t player::play_Sub() {
    std::int16_t result = 0;
    const Starting starting(starting_);
    passOver([&] {
        set_Volume(0);
        send(u"play NOWMUSIC");
        if (get_Length() == 0) {
            app_.Main().stop_Sub();
            return;
        }
        const Medium played = medium();
        fadeIn();
        restoreChannel();
        if (!isGone(played))
            app_.Search().findTrackLyric(nowPlay_File);
        // Events ran in both: what was stopped meanwhile is not in use, and a track that has begun
        // has done all this for itself.
        if (isGone(played)) {
            result = asBoolean(get_Length() != 0);
            return;
        }
        app_.lrcForm().Timer1.setRunning(true);
        app_.Main().rotation_Count = 0;
        result = done;
    });
    return result;
}

std::int32_t player::volumeTarget() {
    const velmora::Main &main = app_.Main();
    const double whole = main.Volume_Set_BG.width();
    if (whole == 0)
        raise(ErrorNumber::DivisionByZero);
    return roundToInt32(main.Volume_Set.width() / whole * 1000);
}

// Both widths are read anew in each round, so a user who moves the bar meanwhile is followed.
// Events run here: another open or seek may, and this fade then goes on against that medium.
void player::fadeIn() {
    std::int32_t target = volumeTarget();
    for (std::int32_t counter = 0; counter <= target; ++counter) {
        set_Volume(counter);
        target = volumeTarget();
        if (target > counter + fadeJump)
            counter += fadeJump;
        app_.platform().windows.DoEvents();
        zkMySleep(app_).Wait(fadeWaitMs);
    }
}

// The engine forgets the channel at each open; Main's images remember it.
void player::restoreChannel() {
    const velmora::Main &main = app_.Main();
    if (main.AudioSource_H.visible())
        set_AudioSource(0);
    else if (main.AudioSource_L.visible())
        set_AudioSource(1);
    else if (main.AudioSource_R.visible())
        set_AudioSource(2);
    velmora::VideoScreen_Form &video = app_.VideoScreen_Form();
    video.AudioSource_H.setVisible(main.AudioSource_H.visible());
    video.AudioSource_L.setVisible(main.AudioSource_L.visible());
    video.AudioSource_R.setVisible(main.AudioSource_R.visible());
}

std::int32_t player::get_PlayStatus() {
    const std::u16string mode = ask(u"status NOWMUSIC mode", 255);
    wasOpen_ = !mode.empty();
    if (startsWith(mode, u"playing") || startsWith(mode, u"播放"))
        return statusPlaying;
    if (!startsWith(mode, u"stopped") && !startsWith(mode, u"停止"))
        return statusOther;
    if (app_.setControl().isAutoPlay != 0)
        return statusEnded;
    if (isDoLrc_Open == 0)
        afterEnd();
    return statusChanged;
}

void player::afterEnd() {
    switch (app_.setControl().PlayMode) {
    case 0:
        next_Sub(directionNext);
        break;
    case 1:
        next_Sub(directionRandom);
        break;
    case 2:
        close_Sub(0);
        open_File(nowPlay_File);
        play_Sub();
        break;
    default:
        break;
    }
}

void player::next_Sub(std::int16_t direction) {
    if (isDoLrc_Open != 0) {
        // The lyric editor needs its track to stay.
        open_File(nowPlay_File);
        play_Sub();
        return;
    }
    const forms::ListBox &paths = app_.playList_Form().List1;
    const std::int16_t rows = app_.playList_Form().playList_Item.listCount();
    switch (direction) {
    case directionNext:
        nowPlay_Index = nextIndex(nowPlay_Index, rows);
        break;
    case directionPrevious:
        if (rows == 0)
            return;
        nowPlay_Index = previousIndex(nowPlay_Index, rows);
        break;
    case directionRandom:
        random_.Randomize(app_.platform().clock.secondsSinceMidnight());
        nowPlay_Index = randomIndex(random_.Rnd(), rows);
        break;
    default:
        return;
    }
    open_File(paths.list(nowPlay_Index - 1));
    play_Sub();
}

} // namespace velmora
