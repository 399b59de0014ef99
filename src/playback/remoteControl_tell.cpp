// What the player tells of itself.

#include "base/run_time_error.h"
#include "base/text.h"
#include "lyrics/lrcForm.h"
#include "platform/contracts/windows.h"
#include "playback/Main.h"
#include "playback/VideoScreen_Form.h"
#include "playback/player.h"
#include "playback/remoteControl.h"
#include "playlist/another_PlayInfo_Form.h"
#include "playlist/playInfo_Form.h"
#include "playlist/playList_Form.h"
#include "settings/setControl.h"
#include "velmora.h"

namespace velmora {

namespace {

using platform::RemoteLoop;
using platform::RemoteStatus;

} // namespace

template <typename Held, typename Value> void remoteControl::take(Held &held, const Value &value) {
    if (held != value) {
        held = value;
        changed_ = true;
    }
}

// A track is told of once, when it is whole: at the end of its fade-in, with its lyric found. What
// was opened or closed in this tick shows in the controls at the end of the next.
void remoteControl::tick(std::int32_t lengthMs) {
    const std::uint32_t closings = app_.player().closings();
    const bool settled = closings == closings_ && !app_.player().isStarting();
    closings_ = closings;
    if (settled) {
        readTrack(lengthMs);
        readState();
        watchHeld();
        if (std::exchange(changed_, false))
            app_.platform().remote.publish(now_);
        keepAwake();
    }
    if ((!waiting_.empty() || asked_) && !isStill())
        app_.platform().windows.whenIdle([this] { doWaiting(); });
}

void remoteControl::readTrack(std::int32_t lengthMs) {
    const std::u16string &path = app_.player().nowPlay_File;
    const bool opened = lengthMs != 0 && openedAt_ != closings_;
    if (opened || now_.path != path) {
        openedAt_ = closings_;
        take(now_.track, now_.track + 1);
        take(now_.path, path);
        take(now_.lengthMs, lengthMs);
        readTag();
    }
    readLyric();
}

// The boxes of a file without a tag keep what they had; the button that shows them tells.
void remoteControl::readTag() {
    velmora::another_PlayInfo_Form &tag = app_.another_PlayInfo_Form();
    const bool tagged = app_.playInfo_Form().anotherInfo_Button.enabled();
    const auto of = [tagged](const forms::TextBox &box) {
        return tagged ? trim(untilNul(box.text())) : std::u16string_view();
    };
    const std::u16string_view title = of(tag.playInfo_TitleText);
    take(now_.title, title.empty() ? app_.player().getFileStem(now_.path) : std::u16string(title));
    take(now_.artist, of(tag.playInfo_ArtistText));
    take(now_.album, of(tag.playInfo_AlbumText));
    take(now_.genre, of(tag.playInfo_GenreText));
    take(now_.comment, of(tag.playInfo_CommentText));
    take(now_.year, of(tag.playInfo_YearText));
}

void remoteControl::readLyric() {
    const velmora::lrcForm &lyric = app_.lrcForm();
    if (lyric.readings == lyric_ && now_.lyric.empty() == (lyric.List1.listCount() == 0))
        return;
    lyric_ = lyric.readings;
    std::u16string text;
    for (std::int32_t row = 0; row < lyric.List1.listCount(); ++row)
        text.append(lyric.List1.list(row)).append(1, u'\n');
    take(now_.lyric, text);
}

void remoteControl::readState() {
    const velmora::Main &main = app_.Main();
    const velmora::setControl &settings = app_.setControl();
    take(now_.status, status());
    take(now_.hasTrack, !now_.path.empty());
    take(now_.canSeek, now_.status != RemoteStatus::Stopped && now_.lengthMs > 0);
    take(now_.hasRows, app_.playList_Form().playList_Item.listCount() > 0);
    if (const Twips whole = main.Volume_Set_BG.width(); whole > 0)
        take(now_.volume, static_cast<double>(main.Volume_Set.width()) / whole);
    const bool follows = settings.isAutoPlay == 0;
    take(now_.shuffle, follows && settings.PlayMode == 1);
    take(now_.loop, !follows                 ? RemoteLoop::None
                    : settings.PlayMode == 2 ? RemoteLoop::Track
                                             : RemoteLoop::Playlist);
    const bool film = main.videoScreen_Button.visible() && app_.videoScreenLoaded() &&
                      app_.VideoScreen_Form().visible();
    take(now_.canSetFullscreen, film);
    take(now_.fullscreen, film && app_.player().isFullScreen != 0);
}

// Asked for at each change and never twice; the step from one track to the next is none.
void remoteControl::keepAwake() {
    const bool playing = now_.status == RemoteStatus::Playing;
    const bool seen = playing && now_.canSetFullscreen &&
                      app_.VideoScreen_Form().windowState() != forms::WindowState::Minimised;
    const platform::Awake awake{playing, seen};
    if (awake != awake_) {
        awake_ = awake;
        app_.platform().inhibitor.keep(awake);
    }
}

} // namespace velmora
