// The icon in the tray, in a real tray.

#include "tests/desktop/qt/desk.h"

#include "platform/backends/qt/boxes/tray.h"

#include <algorithm>

namespace velmora::tests {
namespace {

constexpr std::uint32_t trayMessage = 2025;

class TrayTest : public DeskTest {
protected:
    void SetUp() override {
        DeskTest::SetUp();
        tray_ = desk().session.start({"trayer", "--edge", "top", "--align", "left", "--widthtype",
                                      "pixel", "--width", "40", "--heighttype", "pixel", "--height",
                                      "30", "--tint", "0x000000", "--transparent", "false"});
        ASSERT_GT(tray_, 0);
    }
    void TearDown() override {
        platform::NotifyIconData data = base();
        desk().windows->Shell_NotifyIconA(platform::NIM_DELETE, data);
        desk().session.end(tray_);
        DeskTest::TearDown();
    }
    platform::NotifyIconData base() {
        platform::NotifyIconData data;
        data.window = form.hWnd();
        return data;
    }
    // Adds the icon and runs the loop until the tray has it; answers its place on the screen.
    bool add() {
        platform::NotifyIconData data = base();
        data.flags = platform::NIF_MESSAGE | platform::NIF_ICON;
        data.callbackMessage = trayMessage;
        data.icon = forms::Picture::app_icon;
        if (!desk().windows->Shell_NotifyIconA(platform::NIM_ADD, data))
            return false;
        runUntil([&] { return find(); });
        return find();
    }
    // The tray's icon needs the loop itself, not only rounds of it.
    void runUntil(const std::function<bool()> &condition, int limitMs = 5000) {
        forms::Timer timer{form, "timer"};
        int left = limitMs / 20;
        timer.setInterval(20);
        timer.onTimer = [&] {
            if (condition() || --left < 0)
                desk().windows->quit(0);
        };
        timer.setRunning(true);
        desk().windows->run();
    }
    // The icon's lit green inside the tray's dark strip.
    bool find() {
        const ScreenPicture picture = desk().screen->picture(0, 0, 60, 40);
        for (int y = 0; y < 40; ++y)
            for (int x = 0; x < 60; ++x) {
                const std::uint32_t pixel = picture.at(x, y);
                if (((pixel >> 8) & 0xFF) > 0x90 && ((pixel >> 16) & 0xFF) < 0x70) {
                    iconX = x;
                    iconY = y;
                    return true;
                }
            }
        return false;
    }
    std::vector<int> clickIcon(const std::vector<std::string> &how) {
        std::vector<int> seen;
        desk().windows->hookWindowProc(form.hWnd(), [&](platform::HWND, std::uint32_t message,
                                                        std::int32_t, std::int32_t lParam) {
            if (message == trayMessage)
                seen.push_back(lParam);
            return 0;
        });
        desk().session.run({"xdotool", "mousemove", std::to_string(iconX), std::to_string(iconY)});
        std::vector<std::string> command = {"xdotool", "click"};
        command.insert(command.end(), how.begin(), how.end());
        desk().session.run(command);
        int rounds = 0;
        runUntil([&] { return ++rounds > 15; });
        desk().windows->unhookWindowProc(form.hWnd(), 0);
        return seen;
    }

    static std::ptrdiff_t releases(const std::vector<int> &seen) {
        return std::count(seen.begin(), seen.end(), 0x202);
    }

    TestForm form;
    pid_t tray_ = -1;
    int iconX = 0;
    int iconY = 0;
};

TEST_F(TrayTest, ALeftClickArrivesAsItsMessageWhenTheButtonIsReleased) {
    ASSERT_TRUE(add());
    const auto seen = clickIcon({"1"});
    EXPECT_EQ(std::count(seen.begin(), seen.end(), 0x202), 1);
    EXPECT_EQ(std::count(seen.begin(), seen.end(), 0x205), 0);
}

TEST_F(TrayTest, ARightClickArrivesAsItsMessage) {
    ASSERT_TRUE(add());
    const auto seen = clickIcon({"3"});
    EXPECT_EQ(std::count(seen.begin(), seen.end(), 0x205), 1);
    EXPECT_EQ(std::count(seen.begin(), seen.end(), 0x202), 0);
}

TEST_F(TrayTest, ADoubleClickIsTheLeftReleaseTwice) {
    ASSERT_TRUE(add());
    const auto seen = clickIcon({"--repeat", "2", "--delay", "60", "1"});
    EXPECT_EQ(std::count(seen.begin(), seen.end(), 0x202), 2);
}

TEST_F(TrayTest, WithoutAHookTheMessagesGoNowhere) {
    ASSERT_TRUE(add());
    // One click heard, then one without the hook, then one heard again: had the second been kept
    // for later, or the icon died of it, the third would not come alone.
    EXPECT_EQ(releases(clickIcon({"1"})), 1);
    desk().session.run(
        {"xdotool", "mousemove", std::to_string(iconX), std::to_string(iconY), "click", "1"});
    int rounds = 0;
    runUntil([&] { return ++rounds > 10; });
    EXPECT_EQ(releases(clickIcon({"1"})), 1);
}

TEST_F(TrayTest, GoesWhenItIsDeleted) {
    ASSERT_TRUE(add());
    platform::NotifyIconData data = base();
    EXPECT_TRUE(desk().windows->Shell_NotifyIconA(platform::NIM_DELETE, data));
    runUntil([&] { return !find(); });
    EXPECT_FALSE(find());
    EXPECT_FALSE(desk().windows->Shell_NotifyIconA(platform::NIM_DELETE, data));
    data.flags = platform::NIF_TIP;
    EXPECT_FALSE(desk().windows->Shell_NotifyIconA(platform::NIM_MODIFY, data));
}

TEST(TrayTip, IsCutAtSixtyFourUnitsButNeverInsideAPair) {
    const std::u16string longTip(100, u'a');
    EXPECT_EQ(platform::qt::cutTip(longTip).size(), 64U);
    std::u16string pair(63, u'a');
    pair += u"\xD83D\xDE00";
    EXPECT_EQ(platform::qt::cutTip(pair).size(), 63U);
    EXPECT_EQ(platform::qt::cutTip(u"short"), u"short");
}

} // namespace
} // namespace velmora::tests
