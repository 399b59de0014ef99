#include "ui/zkButton.h"

#include "base/text.h"
#include "platform/contracts/windows.h"
#include "platform/forms/dispatch.h"
#include "platform/forms/form.h"
#include "platform/forms/keys.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace velmora {

namespace {

constexpr std::int32_t tickMs = 20;
constexpr std::int32_t defaultSpeed = 30;
constexpr std::int32_t backStep = 1;

// The designed colours: the face of buttons, red, blue.
constexpr Colour defaultForeColor = 0x8000000F;
constexpr Colour defaultHotColor = 0x000000FF;
constexpr Colour defaultPressedColor = 0x00C00000;

constexpr std::array pictures{forms::Picture::button_normal, forms::Picture::button_hot,
                              forms::Picture::button_pressed};

// A state picture is 6 by 32 logical pixels: corners and edges of 2 around a middle of 2 by 28.
constexpr double edgePixels = 2;
constexpr int edgesAcross = 3;
constexpr int edgesDown = 16;

// The sum of an unsigned 8-bit number and a step; where it leaves the range it stays at 255.
std::uint8_t stepped(std::uint8_t fade, std::int32_t step) noexcept {
    constexpr std::int64_t most = std::numeric_limits<std::uint8_t>::max();
    const std::int64_t sum = std::int64_t{fade} + step;
    return static_cast<std::uint8_t>(sum < 0 || sum > most ? most : sum);
}

} // namespace

zkButton::zkButton(forms::Container &container, const char *name)
    : UserControl(container, name), TimerPaint(container, "TimerPaint"),
      caption_(replaceAll(fromAscii(name), u"Shade", u"")), captionFont_(u"宋体", 9),
      foreColor_(defaultForeColor), hotColor_(defaultHotColor), pressedColor_(defaultPressedColor),
      captionColor_(defaultForeColor), speed_(defaultSpeed) {
    TimerPaint.setInterval(tickMs);
    TimerPaint.onTimer = [this] { tick(); };
}

zkButton::~zkButton() {
    for (platform::DeviceContext &context : state_DC_)
        platform::DeleteDC(context);
}

void zkButton::setCaption(std::u16string_view caption) {
    caption_ = caption;
    paint();
}

void zkButton::setSpeed(std::int32_t speed) {
    speed_ = speed;
    paint();
}

void zkButton::setForeColor(Colour colour) {
    if (foreColor_ == colour && captionColor_ == colour)
        return;
    foreColor_ = colour;
    captionColor_ = colour;
    changed(forms::Change::Look);
}

// The three looks at the present size, and the normal one into what is seen.
void zkButton::paint() {
    assembled_.fill(false);
    sized_ = false;
    shown_ = false;
    asked_ = true;
    changed(forms::Change::Look);
}

int zkButton::devicePixels(Twips twips) const {
    return static_cast<int>(std::lround(twips / twipsPerPixel * scale()));
}

void zkButton::drawShown() const {
    if (shown_ || !asked_)
        return;
    shown_ = true;
    if (!sized_) {
        sized_ = true;
        platform::SelectObject(picMain_, platform::CreateCompatibleBitmap(devicePixels(width()),
                                                                          devicePixels(height())));
        captionHeight_ = form().textExtent(caption_, captionFont_).height;
    }
    const forms::Surface &seen = *picMain_.selected;
    platform::BitBlt(picMain_, 0, 0, seen.width(), seen.height(), stateLook(State::ToNormal), 0, 0,
                     platform::SRCCOPY);
}

const platform::DeviceContext &zkButton::stateLook(State state) const {
    const auto index = static_cast<std::size_t>(state);
    if (!assembled_[index]) {
        assembled_[index] = true;
        assemble(index);
    }
    return state_DC_[index];
}

// Nine slices. The corners are copied; the edges stretch along the button, the middle both ways. On
// a dense screen picture and slices grow to whole device pixels. Nothing guards against a button
// smaller than its corners: the stretched sizes are negative then, and mirror.
void zkButton::assemble(std::size_t index) const {
    const int width = devicePixels(this->width());
    const int height = devicePixels(this->height());
    const int edge = std::max(1, static_cast<int>(std::lround(edgePixels * scale())));
    const int pictureWidth = edgesAcross * edge;
    const int pictureHeight = edgesDown * edge;
    platform::DeviceContext picture;
    platform::SelectObject(picture, std::make_shared<forms::Surface>(form().host().pictureSurface(
                                        pictures[index], pictureWidth, pictureHeight)));
    platform::DeviceContext &target = state_DC_[index];
    platform::Bitmap bitmap = platform::CreateCompatibleBitmap(width, height);
    platform::SelectObject(target, bitmap);
    // Deleted at once; the context keeps what it has selected.
    platform::DeleteObject(bitmap);

    struct Slice {
        int at;
        int size;
        int sourceAt;
        int sourceSize;
    };
    const std::array columns{Slice{0, edge, 0, edge},
                             Slice{edge, width - 2 * edge, edge, pictureWidth - 2 * edge},
                             Slice{width - edge, edge, pictureWidth - edge, edge}};
    const std::array rows{Slice{0, edge, 0, edge},
                          Slice{edge, height - 2 * edge, edge, pictureHeight - 2 * edge},
                          Slice{height - edge, edge, pictureHeight - edge, edge}};
    const auto draw = [&](const Slice &column, const Slice &row) {
        platform::StretchBlt(target, column.at, row.at, column.size, row.size, picture,
                             column.sourceAt, row.sourceAt, column.sourceSize, row.sourceSize,
                             platform::SRCCOPY);
    };
    draw(columns[1], rows[1]);
    for (const std::size_t side : {std::size_t{0}, std::size_t{2}}) {
        draw(columns[0], rows[side]);
        draw(columns[2], rows[side]);
    }
    for (const std::size_t side : {std::size_t{0}, std::size_t{2}})
        draw(columns[1], rows[side]);
    for (const std::size_t side : {std::size_t{0}, std::size_t{2}})
        draw(columns[side], rows[1]);
}

void zkButton::mouseMove(const forms::MouseEvent &event) {
    if (event.x == last_X_ && event.y == last_Y_)
        return;
    last_X_ = event.x;
    last_Y_ = event.y;
    const forms::Watch watch(*this);
    if (event.x > 0 && event.x < width() && event.y > 0 && event.y < height()) {
        TimerPaint.setRunning(true);
        UserControl::mouseMove(event);
        if (watch && event.button == 0) {
            fade_ = 0;
            state_ = State::ToHot;
        }
        return;
    }
    forms::raiseEvent(MouseOut);
    if (watch) {
        // The way back goes on from the alpha where the fade stands. A button that had come to rest
        // has to go it too: it would stay as it is until the pointer comes again.
        state_ = State::ToNormal;
        if (rested_ != State::ToNormal && enabled())
            TimerPaint.setRunning(true);
    }
}

void zkButton::mouseDown(const forms::MouseEvent &event) {
    last_X_ = event.x;
    last_Y_ = event.y;
    const forms::Watch watch(*this);
    UserControl::mouseDown(event);
    if (watch && event.button == forms::leftButton) {
        state_ = State::ToPressed;
        fade_ = 0;
    }
}

void zkButton::mouseUp(const forms::MouseEvent &event) {
    const forms::Watch watch(*this);
    UserControl::mouseUp(event);
    if (!watch)
        return;
    fade_ = 0;
    state_ = State::ToHot;
    // The next move counts even where the pointer stands still.
    last_X_ += 1.0F;
}

void zkButton::keyDown(forms::KeyEvent &event) {
    const forms::Watch watch(*this);
    UserControl::keyDown(event);
    if (watch && (event.keyCode == forms::keyEnter || event.keyCode == forms::keySpace)) {
        event.keyCode = 0;
        click();
    }
}

void zkButton::tick() {
    if (state_ == State::Idle) {
        TimerPaint.setRunning(false);
        return;
    }
    switch (state_) {
    case State::ToNormal:
        fade_ = stepped(fade_, backStep);
        captionColor_ = foreColor_;
        break;
    case State::ToHot:
        fade_ = stepped(fade_, speed_);
        captionColor_ = hotColor_;
        break;
    case State::ToPressed:
        fade_ = stepped(fade_, speed_);
        captionColor_ = pressedColor_;
        break;
    case State::Idle:
        break;
    }
    if (asked_) {
        drawShown();
        const forms::Surface &seen = *picMain_.selected;
        platform::AlphaBlend(picMain_, 0, 0, seen.width(), seen.height(), stateLook(state_), 0, 0,
                             {0, 0, fade_, 0});
    }
    changed(forms::Change::Look);
    if (fade_ == std::numeric_limits<std::uint8_t>::max()) {
        fade_ = 0;
        rested_ = std::exchange(state_, State::Idle);
    }
}

// A disabled button is still and looks normal, whatever it was about.
void zkButton::enabledChanged() {
    if (enabled())
        return;
    TimerPaint.setRunning(false);
    state_ = State::Idle;
    rested_ = State::ToNormal;
    fade_ = 0;
    captionColor_ = foreColor_;
    if (asked_) {
        shown_ = false;
        changed(forms::Change::Look);
    }
}

forms::CustomLook zkButton::look() const {
    drawShown();
    forms::CustomLook look;
    look.surface = picMain_.selected.get();
    look.caption = caption_;
    look.captionFont = captionFont_;
    look.captionColor = captionColor_;
    look.captionPlace = {0, (height() - captionHeight_) / 2, width(), captionHeight_};
    look.captionDimmed = !looksEnabled();
    return look;
}

} // namespace velmora
