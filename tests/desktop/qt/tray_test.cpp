// The icon in the tray, in a real tray.

#include "tests/desktop/qt/desk.h"

#include "platform/backends/qt/boxes/tray.h"
#include "tests/fakes/fake_status_item.h"

#include <algorithm>
#include <utility>

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
        desk().windows->setStatusItem(nullptr);
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
    void note() {
        desk().windows->hookWindowProc(
            form.hWnd(),
            [this](platform::HWND, std::uint32_t message, std::int32_t, std::int32_t lParam) {
                if (message == trayMessage)
                    noted.push_back(lParam);
                return 0;
            });
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
    std::vector<int> noted;
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

// --- in a panel that draws it itself -------------------------------------------------------------

struct MenuInAPanel {
    explicit MenuInAPanel(forms::Form &form) : menu(form, "menu") {
        play.setCaption(u"&Play");
        more.setCaption(u"More");
        inner.setCaption(u"Inner");
        off.setCaption(u"Off");
        off.setEnabled(false);
        line.setSeparator(true);
        ticked.setCaption(u"Ticked");
        ticked.setChecked(true);
        for (forms::Menu *entry : {&play, &inner, &off, &ticked})
            entry->on().Click = [this, entry] { chosen.emplace_back(entry->name()); };
    }
    forms::Menu menu;
    forms::Menu play{menu, "play"};
    forms::Menu more{menu, "more"};
    forms::Menu inner{more, "inner"};
    forms::Menu off{menu, "off"};
    forms::Menu line{menu, "null_1"};
    forms::Menu ticked{menu, "ticked"};
    std::vector<std::string> chosen;
};

class TrayInAPanel : public TrayTest {
protected:
    void SetUp() override {
        TrayTest::SetUp();
        desk().windows->setStatusItem(&panels);
        desk().windows->setTrayMenu(entries.menu, [this] { return opens; });
        panels.hasPanel = true;
    }
    void TearDown() override {
        TrayTest::TearDown();
        EXPECT_EQ(panels.owner, nullptr);
    }
    void offer() {
        platform::NotifyIconData data = base();
        data.flags = platform::NIF_MESSAGE | platform::NIF_ICON | platform::NIF_TIP;
        data.callbackMessage = trayMessage;
        data.icon = forms::Picture::app_icon;
        data.tip = u"A tip\r\nof two lines";
        ASSERT_TRUE(desk().windows->Shell_NotifyIconA(platform::NIM_ADD, data));
        runUntil([&] { return panels.owner != nullptr; });
        ASSERT_NE(panels.owner, nullptr);
    }
    platform::StatusItemOwner &owner() { return *panels.owner; }

    fakes::FakeStatusItem panels;
    MenuInAPanel entries{form};
    bool opens = true;
};

TEST_F(TrayInAPanel, HasNoWindowInTheOlderTrayUntilThePanelGoes) {
    offer();
    int rounds = 0;
    runUntil([&] { return ++rounds > 15; });
    EXPECT_FALSE(find());
    panels.setPanel(false);
    runUntil([&] { return find(); });
    EXPECT_TRUE(find());
    panels.setPanel(true);
    runUntil([&] { return !find(); });
    EXPECT_FALSE(find());
}

TEST_F(TrayInAPanel, TellsPicturesOfEachSizeAndTheWholeTip) {
    offer();
    EXPECT_EQ(owner().tip(), u"A tip\r\nof two lines");
    std::vector<int> sizes;
    for (const platform::StatusPicture &picture : owner().pictures()) {
        sizes.push_back(picture.width);
        ASSERT_EQ(picture.width, picture.height);
        ASSERT_EQ(picture.pixels.size(), static_cast<std::size_t>(picture.width * picture.height));
        const auto isSolid = [](std::uint32_t pixel) { return pixel >> 24 == 0xFF; };
        const auto isClear = [](std::uint32_t pixel) { return pixel >> 24 == 0; };
        EXPECT_TRUE(std::any_of(picture.pixels.begin(), picture.pixels.end(), isSolid));
        EXPECT_TRUE(std::any_of(picture.pixels.begin(), picture.pixels.end(), isClear));
    }
    EXPECT_EQ(sizes, (std::vector<int>{16, 22, 24, 32, 44, 48, 64, 96}));
}

TEST_F(TrayInAPanel, ClicksOfAPanelAreThoseOnAWindow) {
    offer();
    note();
    for (const auto click :
         {platform::StatusClick::Left, platform::StatusClick::Right, platform::StatusClick::Middle})
        owner().clicked(click, {5, 6});
    EXPECT_EQ(noted, (std::vector<int>{0x201, 0x202, 0x204, 0x205, 0x207, 0x208}));
    desk().windows->unhookWindowProc(form.hWnd(), 0);
}

TEST_F(TrayInAPanel, TheMenuIsToldAsItIsEachTime) {
    offer();
    const std::vector<platform::StatusEntry> all = owner().menu();
    ASSERT_EQ(all.size(), 5U);
    EXPECT_EQ(all[0].caption, u"&Play");
    EXPECT_TRUE(all[0].enabled);
    ASSERT_EQ(all[1].entries.size(), 1U);
    EXPECT_EQ(all[1].entries[0].caption, u"Inner");
    EXPECT_FALSE(all[2].enabled);
    EXPECT_TRUE(all[3].separator);
    EXPECT_TRUE(all[4].checked);
    entries.play.setCaption(u"Jouer");
    EXPECT_EQ(owner().menu()[0].caption, u"Jouer");
    // One that is hidden takes no other's number.
    entries.more.setVisible(false);
    const std::vector<platform::StatusEntry> fewer = owner().menu();
    ASSERT_EQ(fewer.size(), 4U);
    EXPECT_EQ(fewer[1].number, all[2].number);
    owner().chosen(fewer[3].number);
    EXPECT_EQ(entries.chosen, std::vector<std::string>{"ticked"});
}

TEST_F(TrayInAPanel, WhatIsChosenThereIsClicked) {
    offer();
    const std::vector<platform::StatusEntry> all = owner().menu();
    owner().chosen(all[1].entries[0].number);
    owner().chosen(all[2].number); // disabled
    owner().chosen(all[3].number); // a line
    owner().chosen(all[4].number);
    owner().chosen(0);
    owner().chosen(99);
    EXPECT_EQ(entries.chosen, (std::vector<std::string>{"inner", "ticked"}));
}

TEST_F(TrayInAPanel, NothingCanBeChosenWhileTheMenuWouldNotOpen) {
    offer();
    const std::int32_t play = owner().menu()[0].number;
    opens = false;
    owner().chosen(play);
    EXPECT_TRUE(entries.chosen.empty());
    opens = true;
    owner().chosen(play);
    EXPECT_EQ(entries.chosen, std::vector<std::string>{"play"});
}

TEST_F(TrayInAPanel, ABoxThatIsUpKeepsClicksFromItAsFromAWindow) {
    offer();
    note();
    form.appear();
    forms::Timer timer{form, "timer"};
    bool asked = false;
    timer.setInterval(20);
    timer.onTimer = [&] {
        if (!desk().windows->isModal())
            return;
        if (!std::exchange(asked, true)) {
            owner().clicked(platform::StatusClick::Left, {});
            owner().chosen(1);
        }
        desk().session.run({"xdotool", "key", "Return"});
    };
    timer.setRunning(true);
    desk().windows->MsgBox(u"Wait", platform::MsgBoxButtons::Ok, platform::MsgBoxIcon::None, u"V");
    timer.setRunning(false);
    EXPECT_TRUE(asked);
    EXPECT_TRUE(noted.empty());
    EXPECT_TRUE(entries.chosen.empty());
    owner().chosen(1);
    EXPECT_EQ(entries.chosen, std::vector<std::string>{"play"});
    desk().windows->unhookWindowProc(form.hWnd(), 0);
}

TEST_F(TrayInAPanel, PanelsLearnOfAnotherTipAndOfAnotherPicture) {
    offer();
    platform::NotifyIconData data = base();
    data.flags = platform::NIF_TIP;
    data.tip = u"Another";
    desk().windows->Shell_NotifyIconA(platform::NIM_MODIFY, data);
    runUntil([&] { return panels.updates == 1; });
    EXPECT_EQ(owner().tip(), u"Another");
    EXPECT_EQ(panels.otherPictures, 0);
    data.flags = platform::NIF_ICON;
    data.icon = forms::Picture::None;
    desk().windows->Shell_NotifyIconA(platform::NIM_MODIFY, data);
    runUntil([&] { return panels.updates == 2; });
    EXPECT_EQ(panels.otherPictures, 1);
    EXPECT_TRUE(owner().pictures().empty());
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
