#include "playback/VideoScreen_Form.h"

#include "settings/Language_Set.h"
#include "velmora.h"

namespace velmora {

namespace {

constexpr Twips belowTitle = 10;

} // namespace

VideoScreen_Form::VideoScreen_Form(Velmora &app)
    : VideoScreen_Form_Design(app.platform().windows), app_(app) {}

void VideoScreen_Form::load() {
    close.on().Click = [this] { close_Click(); };
    on().QueryUnload = [this](bool &cancel) {
        if (!lettingGo) {
            cancel = true;
            close_Click();
        }
    };
    app_.Language_Set().language_VideoScreen_Form();
    setScreenSize(defaultWidth, defaultHeight);
}

void VideoScreen_Form::setScreenSize(std::int32_t newWidth, std::int32_t newHeight) {
    const auto whole = static_cast<Twips>(newWidth);
    const auto high = static_cast<Twips>(newHeight);
    const Twips titleEnd = title_ICO.top() + title_ICO.height();
    move({left(), top(), whole, high});
    videoScreen.move(
        {0, titleEnd + belowTitle, whole, high - titleEnd - videoScreen_Control.height()});
}

void VideoScreen_Form::close_Click() { hide(); }

} // namespace velmora
