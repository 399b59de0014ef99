#pragma once

// The one gateway to the media engine: opening, playing, seeking, closing, the state of the medium
// and the texts made from its times. No other module sends a media command.
//
// One medium is open at a time, under the alias NOWMUSIC. Times are milliseconds, volume is 0 to
// 1000, a channel is 0 stereo, 1 left, 2 right. Results of type int16 are the platform's booleans:
// -1 done, 0 not. An engine that refuses is never reported to the user: it shows through
// `get_Length` being 0 and through `get_PlayStatus`.

#include "base/geometry.h"
#include "playback/random.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace velmora {

class Velmora;

// Which window's seek bar is meant.
enum class PlayerWindow : std::int16_t { Main = 0, miniForm = 1, VideoScreen_Form = 2 };

// Which way `next_Sub` goes.
inline constexpr std::int16_t directionNext = 1;
inline constexpr std::int16_t directionPrevious = 2;
inline constexpr std::int16_t directionRandom = 3;

// What `get_PlayStatus` answers.
inline constexpr std::int32_t statusChanged = 0; // the medium had ended and something was done
inline constexpr std::int32_t statusEnded = 1;   // the medium has ended and stays so
inline constexpr std::int32_t statusOther = 2;   // paused, seeking, nothing open
inline constexpr std::int32_t statusPlaying = 3;

class player {
public:
    explicit player(Velmora &app);

    // --- the playing state; nothing in the program holds a second copy ---------------------------
    std::u16string nowPlay_File;    // full path of the medium last opened; stays after a stop
    std::u16string nowPlay_Title;   // what the windows show for it
    std::int16_t nowPlay_Index = 0; // its track number in the play list, from 1
    std::int16_t isDoLrc_Open = 0;  // the lyric editor is open (written by Main's tick alone)
    std::int16_t isFullScreen = 0;  // outlives the video window, which is made anew for each medium
    std::int32_t media_Kind = 0;    // 4 once a file of the RealPlayer family was refused
    std::int32_t video_Hwnd = 0;    // the picture's window as the engine told ahead of an open
    std::int32_t video_OldWndProc = 0;

    // The last formatted parts of length and position.
    std::u16string len_H, len_M, len_S;
    std::u16string pos_H, pos_M, pos_S;
    // The buffer of `get_PositionMMSS`.
    std::u16string pos_MMSS;

    // --- opening and closing ---------------------------------------------------------------------
    // Opens a file with the device that its extension selects. A missing file leaves everything as
    // it is, the open medium included. An error inside ends the routine with the result so far.
    std::int16_t open_File(std::u16string path);
    // Mode 0 also resets what the windows keep for an open medium; any other mode only closes.
    // -1 when the engine had something to close.
    std::int16_t close_Sub(std::int16_t mode);
    // "Sequencer", "Waveaudio", "MPEGVideo2", "RealPlayer" or "MPEGVideo" for a short path.
    std::u16string get_DeviceType(std::u16string_view shortPath) const;

    // What is open now, for what works on it while events run.
    struct Medium {
        std::u16string file;
        std::uint32_t closings = 0;
    };
    Medium medium() const { return {nowPlay_File, closings_}; }
    // Whether it was closed since, and its file is not the one that is open by now. The engine is
    // asked only where something was closed.
    bool isGone(const Medium &medium);
    // How often a medium, or none, was closed.
    std::uint32_t closings() const { return closings_; }

    // --- playing ---------------------------------------------------------------------------------
    // Plays from the present position with a fade-in to the volume that Main's bar shows, handling
    // events meanwhile; then puts the channel back. With nothing open: stop_Sub of Main, result 0.
    std::int16_t play_Sub();
    // Whether it is at work now, with events handled in it.
    bool isStarting() const { return starting_ > 0; }
    std::int16_t pause_Sub();
    std::int16_t seek_To(std::int32_t ms);
    // Picks and starts a track; see the directions above.
    void next_Sub(std::int16_t direction);
    std::int16_t set_Volume(std::int32_t level);
    std::int16_t set_AudioSource(std::int16_t channel);

    // Asks for the state, and has a side effect: a medium found ended is followed by what the play
    // mode says. See the status numbers above.
    std::int32_t get_PlayStatus();
    // Whether a medium was open when it was last asked.
    bool wasOpen() const { return wasOpen_; }

    // --- times -----------------------------------------------------------------------------------
    std::int32_t get_Length(); // 0 with nothing open
    std::int32_t position();
    std::u16string get_LengthText();   // HH:MM:SS
    std::u16string get_PositionText(); // HH:MM:SS
    // mm:ss below ten minutes. From ten minutes on the text grows with each call (up to 32,767
    // units) and so matches no line of a lyric any more.
    std::u16string get_PositionMMSS();
    std::u16string get_LrcTimeTag(); // [mm:ss.cc], the lyric editor's stamp

    // --- seek bars -------------------------------------------------------------------------------
    // Width (twips) of the fill for the present position; the whole background at position 0.
    std::int32_t get_PlayedWidth(PlayerWindow window);
    // Seeks to where the bar was clicked; `x` in twips from its left edge. Not the inverse of
    // `get_PlayedWidth`.
    void seek_ByBar(PlayerWindow window, Twips x);

    // --- video -----------------------------------------------------------------------------------
    std::int32_t get_VideoHwnd();
    // Puts the picture (pixels inside its control) and shows the video window. Acts only while that
    // window has its default size or more; otherwise, and when the engine refuses, lets it go.
    std::int16_t put_VideoWindow(std::int32_t left, std::int32_t top, std::int32_t width,
                                 std::int32_t height);
    // The picture control's inner size goes into `put_VideoWindow`.
    std::int16_t put_VideoWindowWhole();

    // --- files and the list ----------------------------------------------------------------------
    // The file name without folder and extension; empty when the last "." stands in a folder's
    // name.
    std::u16string getFileStem(std::u16string_view path) const;
    // Fills the four labels of playInfo_Form.
    void show_FileInfo(std::u16string_view path);
    // Makes a row that was just added at the list's end the current track: one beyond it, as the
    // row has been counted already. So the next track is the first one, also of a full list.
    void countAddedRow();
    // Selects the row of this path alone and brings it into view. An empty path does nothing.
    void selectEntryOfFile(std::u16string_view path);

private:
    struct Bar;

    void openFile(const std::u16string &path, std::int16_t &result);
    void embedVideo(std::u16string_view device, std::u16string &command);
    void hookVideoWindow();
    void readTitle();
    void fadeIn();
    void restoreChannel();
    void afterEnd();
    Bar barOf(PlayerWindow window);
    std::int32_t volumeTarget();
    // Sends a command that expects no answer; whether the engine took it.
    bool send(std::u16string_view command);
    std::u16string ask(std::u16string_view command, int returnSize);

    Velmora &app_;
    Random random_;
    std::uint32_t closings_ = 0; // of a medium, or of none
    bool wasOpen_ = false;
    int starting_ = 0; // calls of play_Sub, one inside another
};

} // namespace velmora
