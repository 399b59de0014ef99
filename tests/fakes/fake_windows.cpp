#include "tests/fakes/fake_windows.h"

#include "base/text.h"
#include "platform/forms/controls.h"
#include "platform/forms/menu.h"
#include "tests/fakes/fake_system.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <gtest/gtest.h>
#include <utility>

namespace velmora::fakes {

namespace {

constexpr platform::HWND taskBarWindow = 0x1;

// A failing destructor must not speak while an exception (the program's end) unwinds the stack, or
// it would hide what the test is about.
bool leavingByException() { return std::uncaught_exceptions() > 0; }

} // namespace

FakeFormWindow::~FakeFormWindow() = default;

void FakeFormWindow::controlChanged(forms::Control &control, forms::Change what,
                                    const RectTwips &before) {
    told.push_back({control.name(), what, {}, before});
    const bool seen = form_.visible() && (control.isShown() || what == forms::Change::Visible);
    if (seen && what != forms::Change::Pointer && what != forms::Change::ToolTip &&
        control.kind() != forms::Kind::Timer && control.kind() != forms::Kind::Menu)
        ++paints;
}

void FakeFormWindow::controlGone(forms::Control &control) {
    if (focused == &control)
        focused = nullptr;
}

void FakeFormWindow::formChanged(forms::FormChange what, const RectTwips &before) {
    told.push_back({{}, {}, what, before});
    if (what == forms::FormChange::Visible && form_.visible())
        windows_.shown.emplace_back(form_.name());
}

void FakeFormWindow::refresh(forms::Control * /*control*/) {
    ++refreshes;
    ++windows_.refreshes;
}

std::uintptr_t FakeFormWindow::pictureWindow(forms::PictureBox & /*box*/) {
    return 0x7000U + static_cast<std::uintptr_t>(form_.hWnd() & 0xFFFU);
}

FakeWindows::FakeWindows(FakeClock &clock)
    : clock_(clock), timers_([&clock] { return clock.steadyMs(); }) {}

FakeWindows::~FakeWindows() {
    if (leavingByException())
        return;
    for (const ScriptedBox &box : scriptedBoxes_)
        ADD_FAILURE() << "a message box was expected and never came: " << toUtf8(box.box.text);
    for (const auto &[menu, entry, meanwhile] : scriptedPopups_)
        ADD_FAILURE() << "a popup menu was expected and never came: " << menu << ", " << entry;
}

void FakeWindows::advance(std::int64_t ms) {
    const std::int64_t end = clock_.steadyMs() + ms;
    for (;;) {
        const std::optional<std::int64_t> due = timers_.nextDueMs();
        if (!due || *due > end)
            break;
        if (*due > clock_.steadyMs())
            clock_.advance(*due - clock_.steadyMs());
        ++depth_;
        timers_.runDue();
        --depth_;
        runIdleWork();
    }
    if (end > clock_.steadyMs())
        clock_.advance(end - clock_.steadyMs());
    runIdleWork();
}

void FakeWindows::atNextPump(std::function<void()> work) { pumpWork_.push_back(std::move(work)); }

bool FakeWindows::dropPumpWork() {
    const bool any = !pumpWork_.empty();
    pumpWork_.clear();
    return any;
}

void FakeWindows::expectMsgBox(Box box, platform::MsgBoxResult answer,
                               std::function<void()> meanwhile) {
    scriptedBoxes_.push_back({std::move(box), answer, std::move(meanwhile)});
}

void FakeWindows::expectPopup(std::string menu, std::string entry,
                              std::function<void()> meanwhile) {
    scriptedPopups_.push_back({std::move(menu), std::move(entry), std::move(meanwhile)});
}

std::int32_t FakeWindows::send(platform::HWND window, std::uint32_t message, std::int32_t wParam,
                               std::int32_t lParam) {
    const auto hook = hooks_.find(window);
    return hook == hooks_.end() ? 0 : hook->second(window, message, wParam, lParam);
}

forms::Form *FakeWindows::formOf(platform::HWND window) const {
    const auto found = forms_.find(window);
    return found == forms_.end() ? nullptr : found->second;
}

FakeFormWindow *FakeWindows::windowOf(const forms::Form &form) {
    return static_cast<FakeFormWindow *>(form.window());
}

platform::HWND FakeWindows::formMade(forms::Form &form) {
    forms_[nextWindow_] = &form;
    return nextWindow_++;
}

void FakeWindows::formGone(forms::Form &form) {
    forms_.erase(form.hWnd());
    hooks_.erase(form.hWnd());
}

std::unique_ptr<forms::FormWindow> FakeWindows::makeWindow(forms::Form &form) {
    return std::make_unique<FakeFormWindow>(*this, form);
}

void FakeWindows::DoEvents() {
    ++pumps;
    ++depth_;
    if (onPump)
        onPump();
    if (!pumpWork_.empty()) {
        const std::function<void()> work = std::move(pumpWork_.front());
        pumpWork_.pop_front();
        work();
    }
    timers_.runDue();
    --depth_;
}

void FakeWindows::whenIdle(std::function<void()> work) { idleWork_.push_back(std::move(work)); }

void FakeWindows::runIdleWork() {
    while (depth_ == 0 && !idleWork_.empty()) {
        std::vector<std::function<void()>> work;
        work.swap(idleWork_);
        for (const auto &one : work)
            one();
    }
}

forms::TextExtent FakeWindows::textExtent(std::u16string_view text, const forms::Font &font) {
    ++measures;
    double units = 0;
    for (const char16_t unit : text)
        units += unit > 0x2E7F ? 2 : 1;
    const double scale = font.size() / 9.0;
    const double pixels = std::ceil(units * 8 * scale);
    return {static_cast<Twips>(pixels) * twipsPerPixel,
            static_cast<Twips>(std::ceil(15 * scale)) * twipsPerPixel};
}

forms::Surface FakeWindows::pictureSurface(forms::Picture picture, int width, int height) {
    picturesDrawn.push_back(picture);
    forms::Surface surface(width, height);
    for (int y = 0; y < surface.height(); ++y) {
        for (int x = 0; x < surface.width(); ++x) {
            surface.setPixel(x, y,
                             forms::Surface::black | static_cast<std::uint32_t>(picture) << 16U |
                                 static_cast<std::uint32_t>(x & 0xFF) << 8U |
                                 static_cast<std::uint32_t>(y & 0xFF));
        }
    }
    return surface;
}

std::int32_t FakeWindows::GetWindowLongA(platform::HWND window, std::int32_t index) {
    const forms::Form *form = formOf(window);
    return form != nullptr && index == platform::GWL_EXSTYLE && form->layered()
               ? platform::WS_EX_LAYERED
               : 0;
}

std::int32_t FakeWindows::SetWindowLongA(platform::HWND window, std::int32_t index,
                                         std::int32_t value) {
    const std::int32_t before = GetWindowLongA(window, index);
    if (forms::Form *form = formOf(window); form != nullptr && index == platform::GWL_EXSTYLE)
        form->setLayered((value & platform::WS_EX_LAYERED) != 0);
    return before;
}

bool FakeWindows::SetLayeredWindowAttributes(platform::HWND window, Colour key,
                                             std::uint8_t /*alpha*/, std::uint32_t flags) {
    forms::Form *form = formOf(window);
    if (form == nullptr || !form->layered())
        return false;
    if ((flags & platform::LWA_COLORKEY) != 0)
        form->setWindowKey(key);
    return true;
}

std::int32_t FakeWindows::SetWindowPos(platform::HWND window, std::int32_t insertAfter,
                                       std::int32_t /*x*/, std::int32_t /*y*/,
                                       std::int32_t /*width*/, std::int32_t /*height*/,
                                       std::uint32_t flags) {
    forms::Form *form = formOf(window);
    if (form == nullptr)
        return 0;
    positionings.push_back({form->name(), insertAfter, flags});
    form->setTopmost(insertAfter == platform::HWND_TOPMOST);
    return 1;
}

std::int32_t FakeWindows::hookWindowProc(platform::HWND window, platform::WindowProc procedure) {
    if (formOf(window) != nullptr)
        hooks_[window] = std::move(procedure);
    return 0;
}

void FakeWindows::unhookWindowProc(platform::HWND window, std::int32_t /*before*/) {
    hooks_.erase(window);
}

// The window's own procedure answers with the message's number.
std::int32_t FakeWindows::CallWindowProcA(std::int32_t /*procedure*/, platform::HWND /*window*/,
                                          std::uint32_t message, std::int32_t /*wParam*/,
                                          std::int32_t /*lParam*/) {
    return static_cast<std::int32_t>(message);
}

bool FakeWindows::FlashWindow(platform::HWND window, bool /*invert*/) {
    const forms::Form *form = formOf(window);
    if (form == nullptr)
        return false;
    flashes.emplace_back(form->name());
    return true;
}

bool FakeWindows::SystemParametersInfoA(std::uint32_t action, RectPixels &area) {
    if (workAreaFails || action != platform::SPI_GETWORKAREA)
        return false;
    area = workArea;
    return true;
}

platform::HWND FakeWindows::FindWindowA(std::u16string_view className) {
    return hasTaskBar && className == u"Shell_TrayWnd" ? taskBarWindow : 0;
}

bool FakeWindows::GetWindowRect(platform::HWND window, RectPixels &rect) {
    if (window == taskBarWindow && hasTaskBar) {
        rect = taskBar;
        return true;
    }
    const forms::Form *form = formOf(window);
    if (form == nullptr)
        return false;
    const auto pixels = [](Twips twips) {
        return static_cast<std::int32_t>(std::lround(twips / twipsPerPixel));
    };
    const std::int32_t width = pixels(form->width());
    const std::int32_t height = pixels(form->height());
    rect.left = pixels(form->left());
    rect.top = pixels(form->top());
    if (keepsInside) {
        rect.left = std::clamp(rect.left, keepsInside->left, keepsInside->right - width);
        rect.top = std::clamp(rect.top, keepsInside->top, keepsInside->bottom - height);
    }
    rect.right = rect.left + width;
    rect.bottom = rect.top + height;
    return true;
}

bool FakeWindows::GetCursorPos(PointPixels &position) {
    ++pointerAsks;
    if (cursorFails)
        return false;
    position = cursor;
    return true;
}

std::vector<RectPixels> FakeWindows::monitors() {
    std::vector<RectPixels> all = otherMonitors;
    all.push_back({0, 0, screen.x, screen.y});
    return all;
}

platform::MsgBoxResult FakeWindows::MsgBox(std::u16string_view text,
                                           platform::MsgBoxButtons buttons,
                                           platform::MsgBoxIcon icon, std::u16string_view title,
                                           std::u16string_view source) {
    if (!source.empty())
        boxSource = source;
    const Box shownBox{std::u16string(text), buttons, icon, std::u16string(title)};
    boxes.push_back(shownBox);
    if (scriptedBoxes_.empty()) {
        ADD_FAILURE() << "a message box that nobody expected: " << toUtf8(text) << " ("
                      << toUtf8(title) << ")";
        return buttons == platform::MsgBoxButtons::Ok ? platform::MsgBoxResult::Ok
                                                      : platform::MsgBoxResult::No;
    }
    const ScriptedBox scripted = std::move(scriptedBoxes_.front());
    scriptedBoxes_.pop_front();
    EXPECT_EQ(toUtf8(scripted.box.text), toUtf8(shownBox.text));
    EXPECT_EQ(toUtf8(scripted.box.title), toUtf8(shownBox.title));
    EXPECT_EQ(scripted.box.buttons, shownBox.buttons);
    EXPECT_EQ(scripted.box.icon, shownBox.icon);
    if (scripted.meanwhile) {
        const bool before = std::exchange(modal, true);
        scripted.meanwhile();
        modal = before;
    }
    return scripted.answer;
}

void FakeWindows::PopupMenu(forms::Form & /*owner*/, forms::Menu &menu) {
    if (scriptedPopups_.empty()) {
        ADD_FAILURE() << "a popup menu that nobody expected: " << menu.name();
        return;
    }
    const auto [name, wanted, meanwhile] = std::move(scriptedPopups_.front());
    scriptedPopups_.pop_front();
    EXPECT_EQ(name, menu.name());
    if (meanwhile)
        meanwhile();
    if (wanted.empty())
        return;
    std::vector<forms::Menu *> looking(menu.entries());
    while (!looking.empty()) {
        forms::Menu *entry = looking.back();
        looking.pop_back();
        if (wanted == entry->name()) {
            entry->choose();
            return;
        }
        looking.insert(looking.end(), entry->entries().begin(), entry->entries().end());
    }
    ADD_FAILURE() << "the menu " << name << " has no entry " << wanted;
}

bool FakeWindows::Shell_NotifyIconA(std::uint32_t operation, const platform::NotifyIconData &data) {
    trayCalls.push_back({operation, data});
    return !trayFails;
}

} // namespace velmora::fakes
