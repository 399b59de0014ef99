// The picture of a video: the engine's own window, or the program's.

#include "playback/player.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "platform/contracts/windows.h"
#include "playback/VideoScreen_Form.h"
#include "settings/setControl.h"
#include "settings/skinSet.h"
#include "velmora.h"

namespace velmora {

namespace {

constexpr std::int16_t done = -1;

bool isVideoDevice(std::u16string_view device) {
    return device == u"MPEGVideo" || device == u"AVIVideo" || device == u"MPEGVideo2";
}

} // namespace

void player::embedVideo(std::u16string_view device, std::u16string &command) {
    if (!isVideoDevice(device))
        return;
    if (app_.setControl().VideoInterface == 0) {
        command += u" style child ";
    } else if (app_.setControl().VideoInterface == 1) {
        app_.unloadVideoScreen();
        command += u" parent " +
                   decimal(static_cast<std::int64_t>(app_.VideoScreen_Form().videoScreen.hWnd())) +
                   u" style CHILD ";
    }
}

// The picture's messages pass through a procedure that does nothing of its own.
void player::hookVideoWindow() {
    platform::WindowSystem &windows = app_.platform().windows;
    video_Hwnd = get_VideoHwnd();
    const platform::HWND picture = app_.VideoScreen_Form().videoScreen.hWnd();
    video_OldWndProc = windows.GetWindowLongA(picture, platform::GWL_WNDPROC);
    windows.hookWindowProc(picture, [this](platform::HWND window, std::uint32_t message,
                                           std::int32_t wParam, std::int32_t lParam) {
        return app_.platform().windows.CallWindowProcA(video_OldWndProc, window, message, wParam,
                                                       lParam);
    });
}

std::int32_t player::get_VideoHwnd() {
    // The buffer behind this answer holds 160 characters; 80 is the length that is told.
    return leadingInt32(ask(u"status NOWMUSIC window handle", 80));
}

std::int16_t player::put_VideoWindow(std::int32_t left, std::int32_t top, std::int32_t width,
                                     std::int32_t height) {
    std::int16_t result = 0;
    passOver([&] {
        const velmora::VideoScreen_Form &window = app_.VideoScreen_Form();
        const bool largeEnough =
            window.width() >= static_cast<Twips>(VideoScreen_Form::defaultWidth) &&
            window.height() >= static_cast<Twips>(VideoScreen_Form::defaultHeight);
        if (!largeEnough || !send(u"put NOWMUSIC window at " + decimal(left) + u" " + decimal(top) +
                                  u" " + decimal(width) + u" " + decimal(height))) {
            app_.unloadVideoScreen();
            return;
        }
        app_.VideoScreen_Form().show();
        app_.skinSet().skin_VideoScreen_Form();
        app_.VideoScreen_Form().hide();
        app_.VideoScreen_Form().show();
        result = done;
    });
    return result;
}

std::int16_t player::put_VideoWindowWhole() {
    const forms::PictureBox &picture = app_.VideoScreen_Form().videoScreen;
    return put_VideoWindow(0, 0, roundToInt32(picture.scaleWidth() / twipsPerPixel),
                           roundToInt32(picture.scaleHeight() / twipsPerPixel));
}

} // namespace velmora
