#pragma once

// The media engine behind text commands, and the wave output devices.

#include <cstdint>
#include <string>
#include <string_view>

namespace velmora::platform {

struct MciAnswer {
    // 0 done; any other number: the command failed and changed nothing that it does not say.
    std::uint32_t error = 0;
    // What the engine wrote into the return buffer. Empty on an error.
    std::u16string text;
};

// One device is open at a time, under the alias that the open command names ("NOWMUSIC").
//
// Commands (blanks in a row count as one, words compare without regard to case):
//   open PATH type TYPE alias A [style child | parent HWND style child]
//        PATH is the short path: what `FileSystem::GetShortPathNameA` gave. Synchronous: when it
//        returns 0 the medium is open, stopped at 0 and its length is known; it fails in bounded
//        time otherwise. TYPE is a hint; the reader is chosen by what the file holds. "Sequencer"
//        needs a sound font. Fails while a device is open under the same alias.
//   close A                        fails when nothing is open
//   play A                         from the present position; a medium at its end starts over
//   pause A
//   seek A to MS                   outside 0..length: fails, nothing changes. Leaves "paused" (or
//                                  "stopped" at 0 never played), never "stopped" at the end
//   set A time format milliseconds
//   setaudio A volume to V         0..1000, linear in amplitude; heard within 30 ms
//   setaudio A source to stereo|left|right   a single channel is heard on both speakers
//   status A mode                  "playing", "paused", "stopped", "seeking"
//   status A position | length     decimal milliseconds
//   status A window handle         decimal number of the picture's window, 0 if there is none
//   put A window at X Y W H        pixels inside the parent; fails without a picture stream
// Any other text fails. With nothing open everything but "open" fails with an empty answer.
class MediaControl {
public:
    virtual ~MediaControl() = default;

    // `returnSize` is the capacity of the return buffer in characters, 0 where no answer is wanted
    // (then `text` comes back empty). A longer answer is cut to returnSize - 1.
    virtual MciAnswer mciSendStringA(std::u16string_view command, int returnSize) = 0;
};

// What the platform tells of an output device (the ANSI form of its capability record).
struct WaveOutCaps {
    std::uint16_t manufacturerId = 0;
    std::uint16_t productId = 0;
    std::uint16_t driverVersion = 0; // major in the high byte, minor in the low byte
    std::u16string productName;      // at most 31 units, may hold NULs behind its end
    std::uint32_t formats = 0;       // bit 0 to 11: 11.025/22.05/44.1 kHz x mono/stereo x 8/16 bit
    std::uint16_t channels = 0;
    std::uint32_t support = 0; // 1 pitch, 2 playback rate, 4 volume, 8 left-right volume, 16 sync
};

class WaveOut {
public:
    virtual ~WaveOut() = default;
    // Number of output devices; 0 without a sound server. Answers in bounded time.
    virtual std::uint32_t waveOutGetNumDevs() = 0;
    // 0 done and `caps` filled, else an error number and `caps` untouched. Device 0 is the default.
    virtual std::uint32_t waveOutGetDevCapsA(std::uint32_t device, WaveOutCaps &caps,
                                             std::uint32_t recordSize) = 0;
};

} // namespace velmora::platform
