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

    // Hides the window; the sound goes on.
    void close_Click();

    // The program lets the window go; a wish to close from outside only hides it.
    bool lettingGo = false;

private:
    void setScreenSize(std::int32_t newWidth, std::int32_t newHeight);

    Velmora &app_;
};

} // namespace velmora
