#include "ui/zkProgress.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "base/text.h"

#include <algorithm>

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
    shownLook_.caption.clear();
    shownLook_.bar = {};
    changed(forms::Change::Look); // cleared, even where what follows raises
    const std::u16string text = textFor(shown);
    if (Max_ == Min_)
        raise(ErrorNumber::InvalidPropertyValue);
    const double share = (shown - Min_) / (static_cast<double>(Max_) - Min_);
    shownLook_.ground = BackColor_;
    shownLook_.border = BorderStyle_ != 0;
    shownLook_.caption = text;
    shownLook_.captionFont = font_;
    shownLook_.captionColor = ForeColor_;
    shownLook_.captionPlace = {0, 0, width(), height()};
    shownLook_.bar = {0, 0, static_cast<Twips>(share * static_cast<double>(width())), height()};
    shownLook_.barColor = FillColor_;
    changed(forms::Change::Look);
}

} // namespace velmora
