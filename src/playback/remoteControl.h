#pragma once

// The player as the rest of the desktop meets it. What is told is read from the controls, and the
// engine gets no command for it; what is asked for is the click on the button that it names.
//
// Nothing is done while a click could do nothing: during the start, while `Main` is disabled, while
// an operation on the list is at work, and while a box is up. What is to be opened waits for that;
// anything else asked for meanwhile is lost, as a click is.

#include "platform/contracts/inhibitor.h"
#include "platform/contracts/remote.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace velmora {

class Velmora;

class remoteControl final : public platform::RemoteControlled {
public:
    explicit remoteControl(Velmora &app);

    // From here on the player can be found.
    void start();
    // Tells what has changed; the last of each of Main's ticks, with the length (ms, 0 for none)
    // for which that tick has asked.
    void tick(std::int32_t lengthMs);
    // The position has jumped.
    void seeked(std::int32_t ms);
    // Somebody's call wants what plays to be quiet, or is over: it pauses, and goes on by itself
    // unless a person has done anything with it meanwhile.
    void quiet(bool wanted);

    void command(platform::RemoteCommand command) override;
    std::int32_t positionMs() override;
    void seekBy(std::int64_t ms) override;
    void seekTo(std::uint32_t track, std::int64_t ms) override;
    void setVolume(double volume) override;
    bool setLoop(platform::RemoteLoop loop) override;
    bool setShuffle(bool shuffle) override;
    void setFullscreen(bool fullscreen) override;
    void open(std::vector<std::u16string> paths, bool enqueue) override;

private:
    struct Order {
        std::vector<std::u16string> paths;
        bool enqueue;
    };
    // What waits for the end of a call: a medium, known by how many were closed before.
    struct Interrupted {
        std::uint32_t closings;
        bool isPaused; // the controls show it
    };
    class AtWork;

    bool isStill();
    platform::RemoteStatus status();
    void perform(platform::RemoteCommand command);
    void jump(std::int64_t ms);
    bool setPlayMode(std::int16_t mode);

    void readTrack(std::int32_t lengthMs);
    void readTag();
    void readLyric();
    void readState();
    template <typename Held, typename Value> void take(Held &held, const Value &value);
    void keepAwake();
    void watchHeld();

    void doWaiting();
    void openWaiting();
    void openNow(const Order &order);
    void openOne(const std::u16string &path);
    void playFirst(const Order &order);

    Velmora &app_;
    platform::NowPlaying now_; // what was told last
    bool changed_ = true;      // of it, since then
    std::uint32_t closings_ = 0;
    std::uint32_t openedAt_ = 0; // closings when the track was counted
    std::uint32_t lyric_ = 0;    // the reading that `now_` has
    platform::Awake awake_;
    std::optional<Interrupted> held_;              // for a call
    std::optional<platform::RemoteCommand> asked_; // during the start, the last that was
    std::deque<Order> waiting_;
    std::size_t waitingPaths_ = 0;
    int atWork_ = 0; // commands whose work, with the events in it, goes on
};

} // namespace velmora
