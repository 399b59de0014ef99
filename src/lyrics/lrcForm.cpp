#include "lyrics/lrcForm.h"

#include "base/run_time_error.h"
#include "base/text.h"
#include "lyrics/lrc_text.h"
#include "platform/contracts/windows.h"
#include "playback/player.h"
#include "ui/formSet.h"
#include "ui/marquee.h"
#include "velmora.h"

#include <algorithm>
#include <cmath>

namespace velmora {

lrcForm::lrcForm(Velmora &app) : lrcForm_Design(app.platform().windows), app_(app) {}

void lrcForm::load() {
    lrc_Text.setCaption(u"");
    givenFont_ = lrc_Text.font();
    passOver([this] { app_.formSet().set_ColourKey(*this); });
    passOver([this] { app_.formSet().keep_Topmost(); });
    Timer1.onTimer = [this] { tick(); };
    app_.platform().windows.onScreensChanged = [this] { app_.formSet().screens_Changed(); };
    // The window stays for the whole run.
    on().QueryUnload = [](bool &cancel) { cancel = true; };
}

std::int16_t lrcForm::ListIndex(std::u16string_view text) const {
    const TextPart time(text);
    const std::int16_t rows = List1.listCount();
    for (std::int16_t row = 0; row < rows; ++row)
        if (time.isIn(List1.list(row)))
            return row;
    return -1;
}

void lrcForm::tick() {
    lineIndex = ListIndex(app_.player().get_PositionMMSS());
    if (lineIndex != -1)
        nowLrcLine = wordsOf(List1.list(lineIndex));
    passOver([this] { showLine(); });
}

void lrcForm::showLine() {
    if (isCentred_ && lrc_Text.caption() == nowLrcLine && lrc_Text.font() == centredFont_ &&
        lrc_Text.place() == RectTwips{0, 0, width(), lrc_Text.height()})
        return; // Nothing would come out differently, so nothing is fitted and drawn again.
    lrc_Text.setCaption(nowLrcLine);
    isCentred_ = lrc_Text.width() <= width();
    if (isCentred_) {
        centredFont_ = lrc_Text.font();
        lrc_Text.setAlignment(forms::Alignment::Centre);
        lrc_Text.move({0, 0, width(), lrc_Text.height()});
        return;
    }
    if (nowLrcLine != lrcShownLine) {
        lrc_Text.setAlignment(forms::Alignment::Left);
        lrc_Text.setLeft(0);
        lrcShownLine = nowLrcLine;
    }
    rollLabel(lrc_Text, width(), desktopMarquee);
}

// Letters that are higher than the screen would show nothing of the line, and take all its clicks.
forms::Font lrcForm::fittingFont(Twips room) const {
    forms::Font font = givenFont_;
    for (;;) {
        const Twips high = textExtent(lrc_Text.caption(), font).height;
        if (high <= room || font.size() <= 1 || room <= 0)
            return font;
        const float fitting = std::floor(font.size() * room / high);
        font.setSize(std::max(1.0F, std::min(fitting, font.size() - 1)));
    }
}

void lrcForm::position() {
    velmora::formSet &rules = app_.formSet();
    rules.read_Tray_Area();
    // The task bar's height counts in pixels here, as it always has.
    const auto floor = static_cast<Twips>(
        (rules.work_Area.bottom - rules.work_Area.top) * rules.twips_Per_Pixel - rules.tray_Height);
    if (const forms::Font font = fittingFont(floor); font != lrc_Text.font())
        lrc_Text.setFont(font);
    const Twips high = lrc_Text.height();
    move({0, floor - high, app_.platform().windows.screenWidth(), high});
    lrc_Text.move({0, 0, width(), high});
    isCentred_ = false; // a narrower window may be too narrow for the line
    hide();
    show();
    rules.set_Topmost(hWnd(), true);
}

} // namespace velmora
