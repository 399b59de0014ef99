// Steps of opening and playing that show only from the platform's side, at the moment of a call.

#include "tests/fakes/instead.h"
#include "tests/unit/program_fixture.h"

#include "lyrics/lrcForm.h"
#include "playback/VideoScreen_Form.h"
#include "playback/startLoad_Form.h"
#include "ui/formSet.h"

namespace velmora {
namespace {

class HookWatch : public fakes::FakeWindows {
public:
    using FakeWindows::FakeWindows;
    static constexpr std::int32_t designedProcedure = 4711;
    platform::HWND hookedWindow = 0;
    platform::WindowProc procedure;
    std::vector<std::int32_t> passedOn; // procedure, message, wParam, lParam of each call

    std::int32_t GetWindowLongA(platform::HWND window, std::int32_t index) override {
        return index == platform::GWL_WNDPROC ? designedProcedure
                                              : FakeWindows::GetWindowLongA(window, index);
    }
    std::int32_t hookWindowProc(platform::HWND window, platform::WindowProc work) override {
        hookedWindow = window;
        procedure = std::move(work);
        return designedProcedure;
    }
    std::int32_t CallWindowProcA(std::int32_t before, platform::HWND, std::uint32_t message,
                                 std::int32_t wParam, std::int32_t lParam) override {
        passedOn = {before, static_cast<std::int32_t>(message), wParam, lParam};
        return 99;
    }
};

class CommandWatch : public fakes::FakeMedia {
public:
    std::function<void(std::u16string_view)> onCommand;
    platform::MciAnswer mciSendStringA(std::u16string_view command, int returnSize) override {
        if (onCommand)
            onCommand(command);
        return FakeMedia::mciSendStringA(command, returnSize);
    }
};

class UnseenSteps : public ::testing::Test {
protected:
    UnseenSteps() {
        app.Main().Volume_Set.setWidth(0);
        for (const char16_t *path : {u"/m/film.avi", u"/m/sound.mp3"}) {
            fake.files.addFile(path, "sound");
            media.addMedium(path, 60'000, std::u16string_view(path).ends_with(u"avi"));
        }
    }
    fakes::FakePlatform fake;
    HookWatch windows{fake.clock};
    CommandWatch media;
    Velmora app{fakes::with(fake.bundle(), {.media = &media, .windows = &windows})};
};

TEST_F(UnseenSteps, ThePicturesMessagesPassThroughToTheProcedureThatWasThere) {
    app.setControl().VideoInterface = 1;
    app.player().open_File(u"/m/film.avi");
    EXPECT_EQ(windows.hookedWindow, app.VideoScreen_Form().videoScreen.hWnd());
    EXPECT_EQ(app.player().video_OldWndProc, HookWatch::designedProcedure);
    ASSERT_TRUE(windows.procedure);
    EXPECT_EQ(windows.procedure(windows.hookedWindow, 0x200, 7, 8), 99);
    EXPECT_EQ(windows.passedOn,
              (std::vector<std::int32_t>{HookWatch::designedProcedure, 0x200, 7, 8}));
}

TEST_F(UnseenSteps, ThePictureIsHookedAheadOfTheOpen) {
    app.setControl().VideoInterface = 1;
    bool hooked = false;
    media.onCommand = [&](std::u16string_view command) {
        if (command.starts_with(u"open "))
            hooked = static_cast<bool>(windows.procedure);
    };
    app.player().open_File(u"/m/film.avi");
    EXPECT_TRUE(hooked);
}

TEST_F(UnseenSteps, ThePictureIsNotHookedForTheEnginesOwnWindow) {
    app.player().open_File(u"/m/film.avi");
    EXPECT_FALSE(windows.procedure);
}

TEST_F(UnseenSteps, TheChannelIsPutBackAheadOfTheLyricAndTheLyricAheadOfItsTick) {
    fake.files.addFile(u"/m/sound.lrc", "[00:01.00]line");
    app.player().open_File(u"/m/sound.mp3");
    int linesAtChannel = -1;
    media.onCommand = [&](std::u16string_view command) {
        if (command.starts_with(u"setaudio  "))
            linesAtChannel = app.lrcForm().List1.listCount();
    };
    app.player().play_Sub();
    EXPECT_EQ(linesAtChannel, 0);
    EXPECT_EQ(app.lrcForm().List1.listCount(), 1);
}

TEST_F(UnseenSteps, TheFileIsKnownAndStoredBeforeTheEngineIsAsked) {
    std::u16string known;
    std::u16string stored;
    media.onCommand = [&](std::u16string_view command) {
        if (command.starts_with(u"open ")) {
            known = app.player().nowPlay_File;
            stored = app.setControl().get_LastPlayFile();
        }
    };
    app.player().open_File(u"/m/sound.mp3");
    EXPECT_EQ(known, u"/m/sound.mp3");
    EXPECT_EQ(stored, u"/m/sound.mp3");
}

TEST_F(UnseenSteps, TheMediumIsClosedBeforeItsWindowsAreReset) {
    app.player().open_File(u"/m/sound.mp3");
    app.player().play_Sub();
    bool tickedAtClose = false;
    media.onCommand = [&](std::u16string_view command) {
        if (command == u"close NOWMUSIC")
            tickedAtClose = app.lrcForm().Timer1.running();
    };
    app.player().close_Sub(0);
    EXPECT_TRUE(tickedAtClose);
    EXPECT_FALSE(app.lrcForm().Timer1.running());
}

TEST_F(UnseenSteps, TheEndClosesTheMediumBeforeItTakesTheTrayIconAway) {
    app.formSet().tray_Add(app.Main());
    bool iconAtClose = false;
    media.onCommand = [&](std::u16string_view command) {
        if (command == u"close NOWMUSIC")
            iconAtClose = windows.trayCalls.back().operation != platform::NIM_DELETE;
    };
    EXPECT_THROW(app.startLoad_Form().end(0), fakes::ProcessEnded);
    EXPECT_TRUE(iconAtClose);
    EXPECT_EQ(windows.trayCalls.back().operation, platform::NIM_DELETE);
}

} // namespace
} // namespace velmora
