// What the program has done already, and what not yet, when a command goes to the engine.

#include "tests/fakes/fake_platform.h"
#include "tests/fakes/instead.h"
#include "tests/unit/pointer.h"

#include "base/text.h"
#include "lyrics/lrcForm.h"
#include "playback/Main.h"
#include "playback/MenuForm.h"
#include "playback/VideoScreen_Form.h"
#include "playback/miniForm.h"
#include "playback/player.h"
#include "playlist/listControl_Form.h"
#include "playlist/playList_Form.h"
#include "settings/setControl.h"
#include "ui/formSet.h"
#include "velmora.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

class WatchedMedia : public fakes::FakeMedia {
public:
    // Runs ahead of the first command that begins so.
    void at(std::u16string_view beginning, std::function<void()> look) {
        beginning_ = beginning;
        look_ = std::move(look);
    }
    bool reached() const { return look_ == nullptr; }
    platform::MciAnswer mciSendStringA(std::u16string_view command, int returnSize) override {
        if (look_ != nullptr && startsWith(command, beginning_)) {
            const auto look = std::move(look_);
            look_ = nullptr;
            look();
        }
        return FakeMedia::mciSendStringA(command, returnSize);
    }

private:
    std::u16string beginning_;
    std::function<void()> look_;
};

class CallOrder : public ::testing::Test {
protected:
    CallOrder() {
        app.setControl().init_PlaySet();
        for (const char16_t *path : {u"/m/a.mp3", u"/m/b.mp3"}) {
            list().playList_Item.addItem(app.player().getFileStem(path));
            list().List1.addItem(path);
            add(path);
        }
        app.Main().Volume_Set_BG.setWidth(1000);
        app.Main().Volume_Set.setWidth(0);
        app.player().open_File(u"/m/a.mp3");
        app.player().play_Sub();
        app.Main().play_Time.setCaption(playing);
        app.lrcForm().nowLrcLine = u"a line";
    }
    ~CallOrder() override { EXPECT_TRUE(media.reached()); }

    void add(std::u16string_view path) {
        fake.files.addFile(path, "sound");
        media.addMedium(fake.files.GetShortPathNameA(path));
    }
    playList_Form &list() { return app.playList_Form(); }
    // Whether the engine is told to close ahead of the stopped look, by this work.
    void expectClosedFirst(const std::function<void()> &work) {
        media.at(u"close ", [&] { EXPECT_EQ(app.Main().play_Time.caption(), playing); });
        work();
        EXPECT_NE(app.Main().play_Time.caption(), playing);
    }
    void sure() {
        fake.windows.expectMsgBox({u"是否决定该操作？", platform::MsgBoxButtons::YesNo,
                                   platform::MsgBoxIcon::None, app.Main().title.caption()},
                                  platform::MsgBoxResult::Yes);
    }

    static constexpr auto playing = u"00:00:07 - 00:01:00";
    fakes::FakePlatform fake;
    WatchedMedia media;
    Velmora app{fakes::with(fake.bundle(), {.media = &media})};
};

TEST_F(CallOrder, F4ClosesAheadOfTheStoppedLook) {
    expectClosedFirst([&] { app.formSet().form_KeyDown(115, 0, u"main"); });
}

TEST_F(CallOrder, TheMenusStopClosesAheadOfTheStoppedLook) {
    expectClosedFirst([&] { app.MenuForm().stop.choose(); });
}

TEST_F(CallOrder, TheMiniStripsStopClosesAheadOfTheStoppedLook) {
    expectClosedFirst([&] { clickOn(app.miniForm().stopButton); });
}

TEST_F(CallOrder, TheVideoWindowsF4ClosesAheadOfTheStoppedLook) {
    expectClosedFirst([&] {
        forms::KeyEvent key{115, 0};
        app.VideoScreen_Form().on().KeyDown(key);
    });
}

TEST_F(CallOrder, MainsStopBringsTheStoppedLookAheadOfTheClose) {
    media.at(u"close ", [&] { EXPECT_NE(app.Main().play_Time.caption(), playing); });
    clickOn(app.Main().stopButton);
}

TEST_F(CallOrder, PlayingARowCountsItAheadOfTheClose) {
    list().playList_Item.setSelected(1, true);
    app.player().nowPlay_Index = 0;
    media.at(u"close ", [&] { EXPECT_EQ(app.player().nowPlay_Index, 2); });
    list().playThis();
}

TEST_F(CallOrder, ADeletionFromTheDiskClosesUnderThePanelAheadOfItsSelection) {
    for (std::int32_t row = 0; row < 2; ++row)
        list().playList_Item.setSelected(row, false);
    sure();
    media.at(u"close ", [&] {
        EXPECT_TRUE(list().waitAdd.visible());
        EXPECT_EQ(list().playList_Item.selCount(), 0);
        EXPECT_TRUE(fake.files.hasFile(u"/m/a.mp3"));
    });
    list().delOne(1, true);
    EXPECT_FALSE(fake.files.hasFile(u"/m/a.mp3"));
}

TEST_F(CallOrder, ARenamingClosesAheadOfTheDiskAndOpensBehindTheLists) {
    add(u"/m/c.mp3");
    fake.files.remove(u"/m/c.mp3");
    list().playList_Item.setSelected(0, true);
    list().Alter_Click();
    app.listControl_Form().jieGuo.setText(u"c");
    media.at(u"close ", [&] {
        EXPECT_TRUE(fake.files.hasFile(u"/m/a.mp3"));
        media.at(u"open ", [&] {
            EXPECT_FALSE(fake.files.hasFile(u"/m/a.mp3"));
            EXPECT_EQ(list().List1.list(0), u"/m/c.mp3");
            EXPECT_EQ(list().playList_Item.list(0), u"c");
        });
    });
    clickOn(app.listControl_Form().OK);
    EXPECT_EQ(media.mode(), u"playing");
}

TEST_F(CallOrder, TheVolumeIsSetAheadOfTheFills) {
    app.Main().Volume_Set.setWidth(700);
    media.at(u"setaudio ", [&] { EXPECT_EQ(app.Main().Volume_Set.width(), 700); });
    app.Main().Volume_Set_BG_MouseUp(250);
    EXPECT_EQ(app.Main().Volume_Set.width(), 250);
    media.at(u"setaudio ", [&] { EXPECT_EQ(app.Main().Volume_Set.width(), 250); });
    app.Main().Volume_ICO_Click();
    EXPECT_EQ(app.Main().Volume_Set.width(), 0);
}

TEST_F(CallOrder, TheBusyPointerAndTheTextComeAheadOfTheSeek) {
    Main &main = app.Main();
    media.at(u"seek ", [&] {
        EXPECT_EQ(main.load_Played_BG.mousePointer(), 11);
        EXPECT_EQ(main.mousePointer(), 11);
        EXPECT_EQ(app.lrcForm().nowLrcLine, u"a line");
    });
    main.load_Played_BG_MouseUp(100);
    EXPECT_EQ(main.load_Played_BG.mousePointer(), 99);
    EXPECT_EQ(main.mousePointer(), 0);
}

} // namespace
} // namespace velmora
