// Three ways to stop, two orders: the stop button shows the stopped look and then closes; the mini
// strip, the menu and F4 close and then show it. The closing flashes Main, which is where one can
// look.

#include "tests/fakes/instead.h"
#include "tests/unit/pointer.h"
#include "tests/unit/program_fixture.h"

#include "playback/MenuForm.h"
#include "playback/miniForm.h"
#include "ui/formSet.h"

namespace velmora {
namespace {

class FlashWatch : public fakes::FakeWindows {
public:
    using FakeWindows::FakeWindows;
    std::function<void()> onFlash;
    bool FlashWindow(platform::HWND window, bool invert) override {
        if (onFlash)
            onFlash();
        return FakeWindows::FlashWindow(window, invert);
    }
};

class StopOrder : public ::testing::Test {
protected:
    StopOrder() {
        app.Main().play_Time.setCaption(u"playing");
        windows.onFlash = [this] { atClose = app.Main().play_Time.caption(); };
    }
    fakes::FakePlatform fake;
    FlashWatch windows{fake.clock};
    Velmora app{fakes::with(fake.bundle(), {.windows = &windows})};
    std::u16string atClose;
};

constexpr auto stopped = u"00:00:00 - 00:00:00";

TEST_F(StopOrder, OfTheStopButtonIsLookThenClose) {
    clickOn(app.Main().stopButton);
    EXPECT_EQ(atClose, stopped);
}

TEST_F(StopOrder, OfTheMiniStripIsCloseThenLook) {
    clickOn(app.miniForm().stopButton);
    EXPECT_EQ(atClose, u"playing");
    EXPECT_EQ(app.Main().play_Time.caption(), stopped);
}

TEST_F(StopOrder, OfTheMenuIsCloseThenLook) {
    app.MenuForm().stop.choose();
    EXPECT_EQ(atClose, u"playing");
    EXPECT_EQ(app.Main().play_Time.caption(), stopped);
}

TEST_F(StopOrder, OfF4IsCloseThenLook) {
    app.formSet().form_KeyDown(115, 0, u"main");
    EXPECT_EQ(atClose, u"playing");
    EXPECT_EQ(app.Main().play_Time.caption(), stopped);
}

TEST_F(StopOrder, OfAnOpenIsCloseThenLook) {
    fake.files.addFile(u"/m/a.mp3");
    app.player().open_File(u"/m/a.mp3");
    EXPECT_EQ(atClose, u"playing");
    EXPECT_EQ(app.Main().play_Time.caption(), stopped);
}

} // namespace
} // namespace velmora
