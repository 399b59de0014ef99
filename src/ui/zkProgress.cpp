#include "ui/zkProgress.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "base/text.h"

#include <algorithm>
#include <cmath>

namespace velmora {

void zkProgress::setCaption(std::u16string_view caption) { Caption_ = trim(caption); }

std::u16string zkProgress::textFor(double shown) const {
    if (CaptionStyle_ == 0)
        return {};
    if (CaptionStyle_ == 1)
        return Caption_;
    if (Max_ == Min_)
        raise(ErrorNumber::DivisionByZero);
    const double ratio = (shown - Min_) / (static_cast<double>(Max_) - Min_);
    const std::u16string percent = format0_00(ratio * 100) + u"%";
    return CaptionStyle_ == 2 || Caption_.empty() ? percent : Caption_ + u" " + percent;
}

std::optional<double> zkProgress::progress() const {
    return width() > 0 ? shownLook_.bar.width / width() : 0.0;
}

// The text first, then the bar over it in the inverting pen; it takes the height from a wider
// measure, so that it always reaches the bottom.
void zkProgress::setValue(double value) {
    value_ = roundToInt32(value);
    const double shown =
        std::max(std::min(value, static_cast<double>(Max_)), static_cast<double>(Min_));
    if (Max_ == Min_) {
        shownLook_.caption.clear();
        shownLook_.bar = {};
        changed(forms::Change::Look); // cleared, although what follows raises
        textFor(shown);
        raise(ErrorNumber::InvalidPropertyValue);
    }
    const double share = (shown - Min_) / (static_cast<double>(Max_) - Min_);
    const RectTwips bar{0, 0, static_cast<Twips>(share * static_cast<double>(width())), height()};
    // A transfer tells its progress at every kilobyte, and nobody sees less than a twip of it.
    bool isNew = std::floor(bar.width) != std::floor(shownLook_.bar.width) ||
                 bar.height != shownLook_.bar.height;
    shownLook_.bar = bar;
    const auto show = [&](auto &held, const auto &now) {
        isNew = forms::differs(held, now) || isNew;
    };
    show(shownLook_.ground, BackColor_);
    show(shownLook_.border, BorderStyle_ != 0);
    show(shownLook_.caption, textFor(shown));
    show(shownLook_.captionFont, font_);
    show(shownLook_.captionColor, ForeColor_);
    show(shownLook_.captionPlace, RectTwips{0, 0, width(), height()});
    show(shownLook_.barColor, FillColor_);
    if (isNew)
        changed(forms::Change::Look);
}

} // namespace velmora
