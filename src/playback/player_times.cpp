// Lengths and positions, the texts made from them, and the arithmetic of the seek bars.

#include "playback/player.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "base/text.h"
#include "playback/Main.h"
#include "playback/VideoScreen_Form.h"
#include "playback/miniForm.h"
#include "velmora.h"

#include <cmath>

namespace velmora {

namespace {

constexpr int numberSize = 80;             // capacity told for an answer that is a number
constexpr std::size_t longestText = 32767; // where the growing time text stops
constexpr Twips barMargin = 60;            // what a click on a bar takes off its width

struct Clock {
    std::u16string hours, minutes, seconds;
};

Clock clockOf(std::int32_t ms) {
    const std::int32_t hours = ms / 1000 / 60 / 60;
    const std::int32_t minutes = ms / 1000 / 60 - hours * 60;
    return {format00(hours), format00(minutes), format00(ms / 1000 % 60)};
}

} // namespace

// The pair of controls that makes a window's seek bar.
struct player::Bar {
    const forms::Control &background;
    const forms::Control &fill;
};

player::Bar player::barOf(PlayerWindow window) {
    switch (window) {
    case PlayerWindow::Main:
        return {app_.Main().load_Played_BG, app_.Main().load_Played};
    case PlayerWindow::miniForm:
        return {app_.miniForm().load_Played_BG, app_.miniForm().load_Played};
    case PlayerWindow::VideoScreen_Form:
        return {app_.VideoScreen_Form().load_Played_BG, app_.VideoScreen_Form().load_Played};
    }
    raise(ErrorNumber::InvalidCall);
}

std::int32_t player::get_Length() {
    return leadingInt32(ask(u"status NOWMUSIC length", numberSize));
}

std::int32_t player::position() {
    return leadingInt32(ask(u"status NOWMUSIC position", numberSize));
}

std::u16string player::get_LengthText() {
    const Clock clock = clockOf(get_Length());
    len_H = clock.hours;
    len_M = clock.minutes;
    len_S = clock.seconds;
    return len_H + u":" + len_M + u":" + len_S;
}

std::u16string player::get_PositionText() {
    const Clock clock = clockOf(position());
    pos_H = clock.hours;
    pos_M = clock.minutes;
    pos_S = clock.seconds;
    return pos_H + u":" + pos_M + u":" + pos_S;
}

std::u16string player::get_LrcTimeTag() {
    const std::int32_t ms = position();
    const std::u16string digits = decimal(ms);
    return u"[" + format00(ms / 1000 / 60) + u":" + format00(ms / 1000 % 60) + u"." +
           std::u16string(leftPart(rightPart(digits, 3), 2)) + u"]";
}

std::u16string player::get_PositionMMSS() {
    const std::int32_t seconds = roundToInt32(position() / 1000.0);
    const std::int32_t minutes = seconds / 60;
    if (minutes < 10)
        pos_MMSS = u"0";
    pos_MMSS += decimal(minutes) + u":";
    if (seconds % 60 < 10)
        pos_MMSS += u"0";
    pos_MMSS += decimal(seconds % 60);
    if (pos_MMSS.size() > longestText)
        pos_MMSS.resize(longestText);
    return pos_MMSS;
}

std::int32_t player::get_PlayedWidth(PlayerWindow window) {
    const Bar bar = barOf(window);
    const double at = leadingNumber(ask(u"status NOWMUSIC position", numberSize));
    if (std::trunc(at) <= 0)
        return roundToInt32(bar.background.width());
    const double usable = bar.background.width() - 2.0 * (bar.fill.left() - bar.background.left());
    const std::int32_t length = get_Length();
    if (length == 0)
        raise(ErrorNumber::DivisionByZero);
    return roundToInt32(usable / length * at);
}

void player::seek_ByBar(PlayerWindow window, Twips x) {
    const double usable = barOf(window).background.width() - barMargin;
    if (usable == 0)
        raise(ErrorNumber::DivisionByZero);
    seek_To(roundToInt32(x / usable * get_Length()));
}

} // namespace velmora
