#pragma once

// The picture device: video, and every sound that the sound device does not know, on the general
// engine libmpv. The engine is loaded when the first medium is opened, never earlier; where it is
// not installed every open answers null.

#include "platform/backends/media/device.h"

#include <functional>
#include <memory>
#include <string>

namespace velmora::platform {

struct PictureOptions {
    // Where sound goes, in the engine's terms, the first that works. "null" keeps time silently.
    std::string audioOutput = "pulse,null";
    // How pictures are drawn, in the engine's terms. Empty: by the graphics card where there is
    // one, else by the processor.
    std::string videoOutput = {};
    // Names the sound stream and the engine's own window.
    std::string applicationName = "Velmora";
    // Device pixels to one pixel of `putWindow` and of the engine's own window, asked for at each.
    std::function<double()> pixelScale = [] { return 1.0; };
    // An open that has not come to an end by then fails.
    int openLimitMs = 10'000;
    // Whether a sound server answers just now. A medium that plays silently for want of one asks
    // every few seconds, in the thread of the program, and is heard from then on. Without it such a
    // medium stays silent.
    std::function<bool()> soundServerAnswers = {};
};

// The opener takes media with at least one sound or moving picture that can be decoded. Texts,
// still pictures, play lists and other files that only name files are no media, and no file that a
// medium refers to is ever followed. Cover art is no picture.
//
// With a parent window the picture lies in a child window that the device makes inside it, hidden
// and without extent until the first `putWindow`. Once put over the whole of its parent it keeps
// filling it when that changes its size. With "style child" alone the device has a window
// of its own, shown when the medium is open; closing it ends the picture, the sound goes on. With
// neither, or where no display can be reached, the sound alone plays.
//
// A device answers without waiting for its engine for more than some milliseconds, also where a
// sound server hangs, and its end takes at most some seconds however the engine fares.
std::unique_ptr<media::DeviceOpener> makePictureOpener(PictureOptions options = {});

} // namespace velmora::platform
