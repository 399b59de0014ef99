// The one exit, and that nothing runs behind it.

#include "tests/unit/playback/start_fixture.h"
#include "tests/unit/pointer.h"

#include "playback/MenuForm.h"
#include "playback/miniForm.h"
#include "ui/formSet.h"

namespace velmora {
namespace {

// --- the end -------------------------------------------------------------------------------------

class End : public Start {
protected:
    End() {
        addTrack(u"/m/a.mp3");
        savedList({u"/m/a.mp3"});
        lastPlayed(u"/m/a.mp3");
        app.start();
        media.clearCommands();
        windows.trayCalls.clear();
        files.clearChanges();
        fake.registry.clearLog();
    }
};

TEST_F(End, ClosesTheMediumBareThenTheTrayThenTheProcess) {
    expectEnd([&] { clickOn(app.Main().closeButton); });
    EXPECT_EQ(media.texts(), Texts{u"close NOWMUSIC"});
    ASSERT_EQ(windows.trayCalls.size(), 1U);
    EXPECT_EQ(windows.trayCalls[0].operation, platform::NIM_DELETE);
    EXPECT_FALSE(windows.hooked(app.Main().hWnd()));
}

TEST_F(End, SavesNothing) {
    expectEnd([&] { app.Main().closeButton_Click(); });
    EXPECT_TRUE(files.changes().empty());
    EXPECT_TRUE(fake.registry.log().empty());
}

TEST_F(End, ComesByEachOfItsRoads) {
    const std::function<void()> roads[] = {
        [&] { clickOn(app.Main().closeButton); },
        [&] { app.Main().closeRequested(); },
        [&] { clickOn(app.miniForm().close); },
        [&] { app.miniForm().closeRequested(); },
        [&] { app.MenuForm().close.choose(); },
        [&] { app.formSet().form_KeyDown(27, 0, u"main"); },
        [&] { app.startLoad_Form().unload(); },
    };
    for (const auto &road : roads) {
        fake.processes.endStatuses.clear();
        expectEnd(road);
    }
}

TEST_F(End, WithNothingOpenIsTheSame) {
    app.player().close_Sub(0);
    expectEnd([&] { app.Main().closeButton_Click(); });
}

TEST_F(End, IsNotCaughtOnTheWayThroughATick) {
    app.Main().Timer2.onTimer = [&] { app.Main().closeButton_Click(); };
    EXPECT_THROW(windows.advance(300), fakes::ProcessEnded);
}

TEST_F(End, LeavesNothingToRunInAListThatWasBeingRead) {
    windows.atNextPump([&] { app.Main().closeButton_Click(); });
    files.clearChanges();
    expectEnd([&] { app.playList_Form().afresh_Load_Click(); });
    EXPECT_TRUE(files.changes().empty());
}

} // namespace
} // namespace velmora
