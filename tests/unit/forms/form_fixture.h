#pragma once

// A form with controls to try things on, in the window system in memory.

#include "base/run_time_error.h"
#include "base/text.h"
#include "platform/forms/controls.h"
#include "platform/forms/form.h"
#include "platform/forms/listbox.h"
#include "platform/forms/menu.h"
#include "platform/forms/timer.h"
#include "platform/forms/user_control.h"
#include "tests/fakes/fake_system.h"
#include "tests/fakes/fake_windows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velmora::forms {

using Log = std::vector<std::string>;

// The number of the error that the work raises; 0 for none.
template <typename Work> int errorOf(Work &&work) {
    try {
        std::forward<Work>(work)();
    } catch (const RunTimeError &error) {
        return static_cast<int>(error.number());
    }
    return 0;
}

inline constexpr int invalidCall = static_cast<int>(ErrorNumber::InvalidCall);
inline constexpr int overflow = static_cast<int>(ErrorNumber::Overflow);
inline constexpr int invalidValue = static_cast<int>(ErrorNumber::InvalidPropertyValue);

class FormFixture : public ::testing::Test {
protected:
    fakes::FakeClock clock;
    fakes::FakeWindows windows{clock};
    Form form{windows, "form"};

    FormFixture() { form.move({0, 0, 3000, 3000}); }

    // Shows the form and forgets what its window was told so far.
    fakes::FakeFormWindow &shown() {
        form.show();
        fakes::FakeFormWindow &window = *fakes::FakeWindows::windowOf(form);
        window.told.clear();
        window.paints = 0;
        window.raises = 0;
        return window;
    }

    // Writes each event of the control into the log, as "name event".
    static void logEvents(ControlEvents &events, const std::string &name, Log &log) {
        const auto note = [&log, name](const char *event) {
            return [&log, name, event](auto &&...) { log.push_back(name + ' ' + event); };
        };
        events.Click = note("click");
        events.DblClick = note("double");
        events.MouseDown = note("down");
        events.MouseMove = note("move");
        events.MouseUp = note("up");
        events.KeyDown = note("key");
        events.KeyUp = note("keyup");
    }

    void press(Twips x, Twips y, std::int16_t button = leftButton) {
        form.pointerPressed({x, y}, button, 0);
    }
    void release(Twips x, Twips y, std::int16_t button = leftButton) {
        form.pointerReleased({x, y}, button, 0);
    }
    void click(Twips x, Twips y, std::int16_t button = leftButton) {
        press(x, y, button);
        release(x, y, button);
    }
    void move(Twips x, Twips y, std::int16_t buttons = 0) { form.pointerMoved({x, y}, buttons, 0); }
};

} // namespace velmora::forms
