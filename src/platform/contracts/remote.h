#pragma once

// The player as the rest of the desktop meets it: media keys, the shell's media card, other
// programs and command lines. All calls come and go on the interface thread; none of them waits,
// and without anybody out there nothing happens and nothing is said.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::platform {

enum class RemoteStatus : std::uint8_t { Stopped, Paused, Playing };
enum class RemoteLoop : std::uint8_t { None, Track, Playlist };
enum class RemoteCommand : std::uint8_t {
    Raise,
    Quit,
    Play,
    Pause,
    PlayPause,
    Stop,
    Next,
    Previous,
};

// What the player tells of itself. Empty texts and a length of 0 stand for what is not known.
struct NowPlaying {
    RemoteStatus status = RemoteStatus::Stopped;
    std::uint32_t track = 0; // another number for each medium that was opened; 0: none so far
    std::u16string path;
    std::u16string title;
    std::u16string artist;
    std::u16string album;
    std::u16string genre;
    std::u16string comment;
    std::u16string year;
    std::int32_t lengthMs = 0;
    std::u16string lyric; // with its time labels; each line ends with a LF
    double volume = 0;    // 0 to 1
    RemoteLoop loop = RemoteLoop::None;
    bool shuffle = false;
    bool hasTrack = false; // there is something that "play" would play
    bool hasRows = false;
    bool canSeek = false;
    bool canSetFullscreen = false;
    bool fullscreen = false;
    friend bool operator==(const NowPlaying &, const NowPlaying &) = default;
};

// What is asked of the player.
class RemoteControlled {
public:
    virtual ~RemoteControlled() = default;
    virtual void command(RemoteCommand command) = 0;
    // Milliseconds into the track; 0 when stopped.
    virtual std::int32_t positionMs() = 0;
    virtual void seekBy(std::int64_t ms) = 0;
    // Only while `track` is the one that plays.
    virtual void seekTo(std::uint32_t track, std::int64_t ms) = 0;
    virtual void setVolume(double volume) = 0;
    // False where the player has no such order of tracks.
    virtual bool setLoop(RemoteLoop loop) = 0;
    virtual bool setShuffle(bool shuffle) = 0;
    virtual void setFullscreen(bool fullscreen) = 0;
    // Files and folders. The first is played, unless they are only to be put behind the list.
    virtual void open(std::vector<std::u16string> paths, bool enqueue) = 0;
};

class Remote {
public:
    virtual ~Remote() = default;
    // From here on the player can be found and asked. `player` outlives the process's last event.
    virtual void start(RemoteControlled &player) = 0;
    // What holds from now on; what is as it was is told to nobody again.
    virtual void publish(const NowPlaying &now) noexcept = 0;
    // The position has jumped to here. Ordinary playing is no jump, nor is another track.
    virtual void seeked(std::int32_t ms) noexcept = 0;
    // Asks the instance that runs already, of this user and configuration, to show itself.
    virtual void raiseOther() noexcept = 0;
};

} // namespace velmora::platform
