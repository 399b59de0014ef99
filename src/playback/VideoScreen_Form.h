#pragma once

// The window in which the engine draws the picture of a video, with a control strip below. It is
// let go at every open and close of a medium and made anew when next touched, so everything that
// must outlive it lies in Main and in the player.

#include "playback/VideoScreen_Form.design.h"

#include <cstdint>

namespace velmora {

class Velmora;

class VideoScreen_Form : public VideoScreen_Form_Design {
public:
    static constexpr std::int32_t defaultWidth = 10950; // twips; the smallest that shows a picture
    static constexpr std::int32_t defaultHeight = 7875;

    explicit VideoScreen_Form(Velmora &app);
    void load();

    // Sizes (twips) with `keep`: no command goes to the engine, whose picture keeps its size until
    // the next put. Without it the picture stands still meanwhile and is put and played anew.
    void setScreenSize(std::int32_t newWidth, std::int32_t newHeight, bool keep);
    void setScreenSize_Default();
    void setFullScreen(bool keep);
    // Fills the screen as it is now, if it filled the one before.
    void screen_Changed();
    void fullScreen_Button_Click();
    void playButton_Click();
    // Places the title's label and its box.
    void set_Str_ControlVideo_Place();

    // Hides the window; the sound goes on.
    void close_Click();

private:
    void setClickHandlers();
    void setBarHandlers();
    void setDragHandlers();
    void keyDown(const forms::KeyEvent &key);
    void spaceKey();
    void showTitleRow(bool visible);
    void layOut(bool fullScreen, bool keep);
    void layTransport();
    void layVolume();
    void layStrip();
    bool isCurrent() const;
    bool putAndPlay();
    void tick();

    Velmora &app_;
    PointTwips before_{}; // where the window stood before it took the whole screen
    bool isWhole_ = false;
};

} // namespace velmora
