// Restore to defaults.

#include "playback/startLoad_Form.h"
#include "playlist/playList_Form.h"
#include "tests/unit/settings/settings_fixture.h"

namespace velmora {
namespace {

using platform::MsgBoxButtons;
using platform::MsgBoxIcon;
using platform::MsgBoxResult;
using testing::ElementsAre;
using testing::IsEmpty;

class RestoreToDefaults : public SettingsFixture {
protected:
    void SetUp() override {
        speak(1);
        app.Main().title.setCaption(u"The Player");
        files.addFolder(u"/run/user/1000/velmora");
        settings.init_PlaySet();
        settings.save_PlaySet();
    }

    void expectAsk(MsgBoxResult answer) {
        windows.expectMsgBox({std::u16string(app.Language().msg_Restore_Ask), MsgBoxButtons::YesNo,
                              MsgBoxIcon::None, u"The Player"},
                             answer);
    }
    void expectRestart(MsgBoxResult answer) {
        windows.expectMsgBox({std::u16string(app.Language().msg_Restore_Restart),
                              MsgBoxButtons::YesNo, MsgBoxIcon::None, u"The Player"},
                             answer);
    }
    void expectFailure(const std::u16string &text) {
        windows.expectMsgBox({text, MsgBoxButtons::Ok, MsgBoxIcon::Critical, u"Error"},
                             MsgBoxResult::Ok);
    }
    std::u16string marker() { return app.startLoad_Form().restart_Marker_Path(); }
};

TEST_F(RestoreToDefaults, ANoAtTheFirstQuestionChangesNothing) {
    expectAsk(MsgBoxResult::No);
    settings.restoreDefaults();
    EXPECT_TRUE(registry.hasKey(playSetKey));
}

TEST_F(RestoreToDefaults, AFailedDeletionSaysSoAndEnds) {
    registry.failWrites(platform::ERROR_ACCESS_DENIED);
    expectAsk(MsgBoxResult::Yes);
    windows.expectMsgBox({std::u16string(app.Language().msg_Restore_Failed), MsgBoxButtons::Ok,
                          MsgBoxIcon::Critical, u"The Player"},
                         MsgBoxResult::Ok);
    settings.restoreDefaults();
    EXPECT_THAT(fake.shell.executions, IsEmpty());
}

TEST_F(RestoreToDefaults, ANoAtTheRestartKeepsTheSettingsInMemoryAndTheNextConfirmationStoresThem) {
    settings.PlayMode = 2;
    expectAsk(MsgBoxResult::Yes);
    expectRestart(MsgBoxResult::No);
    settings.restoreDefaults();
    EXPECT_FALSE(registry.hasKey(playSetKey));
    EXPECT_EQ(settings.PlayMode, 2);
    EXPECT_EQ(settings.get_PlayMode(), 0);
    settings.save_PlaySet();
    EXPECT_EQ(settings.get_PlayMode(), 2);
}

TEST_F(RestoreToDefaults, TheLowestAnswerThatIsNoErrorIsAProgramThatStarts) {
    files.addFile(u"/opt/velmora/velmora");
    fake.shell.answer = 33;
    expectAsk(MsgBoxResult::Yes);
    expectRestart(MsgBoxResult::Yes);
    expectEnd([&] { settings.restoreDefaults(); });
}

TEST_F(RestoreToDefaults, TheRestartWritesTheMarkerStartsTheProgramAndEndsThisOne) {
    files.addFile(u"/opt/velmora/velmora");
    expectAsk(MsgBoxResult::Yes);
    expectRestart(MsgBoxResult::Yes);
    expectEnd([&] { settings.restoreDefaults(); });
    EXPECT_EQ(files.contents(marker()), "The Player");
    EXPECT_THAT(fake.shell.executions,
                ElementsAre(fakes::FakeShell::Execution{app.playList_Form().hWnd(), u"open",
                                                        u"/opt/velmora/velmora", 1}));
}

TEST_F(RestoreToDefaults, TheLastFileAndTheIdentityStay) {
    settings.save_LastPlayFile(u"/m/a.mp3");
    files.addFile(u"/opt/velmora/velmora");
    expectAsk(MsgBoxResult::Yes);
    expectRestart(MsgBoxResult::Yes);
    expectEnd([&] { settings.restoreDefaults(); });
    EXPECT_EQ(settings.get_LastPlayFile(), u"/m/a.mp3");
    EXPECT_TRUE(registry.value(identityKey, u"Publisher").has_value());
}

TEST_F(RestoreToDefaults, ThePreferredProgramFileIsTheExeThenTheBatThenTheBareName) {
    const char16_t *const names[] = {u"/opt/velmora/velmora.exe", u"/opt/velmora/velmora.bat",
                                     u"/opt/velmora/velmora"};
    for (const char16_t *name : names)
        files.addFile(name);
    for (const char16_t *name : names) {
        settings.save_PlaySet();
        fake.processes.endStatuses.clear();
        fake.shell.executions.clear();
        expectAsk(MsgBoxResult::Yes);
        expectRestart(MsgBoxResult::Yes);
        expectEnd([&] { settings.restoreDefaults(); });
        ASSERT_EQ(fake.shell.executions.size(), 1U);
        EXPECT_EQ(fake.shell.executions[0].target, name);
        files.remove(name);
    }
}

TEST_F(RestoreToDefaults, AProgramInTheRootIsFound) {
    fake.processes.folder = u"/";
    files.addFile(u"/velmora");
    expectAsk(MsgBoxResult::Yes);
    expectRestart(MsgBoxResult::Yes);
    expectEnd([&] { settings.restoreDefaults(); });
    EXPECT_EQ(fake.shell.executions[0].target, u"/velmora");
}

TEST_F(RestoreToDefaults, AProgramFileThatIsGoneSaysSoAndWritesNoMarker) {
    expectAsk(MsgBoxResult::Yes);
    expectRestart(MsgBoxResult::Yes);
    expectFailure(u"No Found program！");
    settings.restoreDefaults();
    EXPECT_FALSE(files.hasFile(marker()));
    EXPECT_THAT(fake.shell.executions, IsEmpty());
}

TEST_F(RestoreToDefaults, AMarkerThatCannotBeWrittenSaysSoAndStartsNothing) {
    files.addFile(u"/opt/velmora/velmora");
    files.failNext("CreateTextFile");
    expectAsk(MsgBoxResult::Yes);
    expectRestart(MsgBoxResult::Yes);
    expectFailure(u"Restart Error！");
    settings.restoreDefaults();
    EXPECT_THAT(fake.shell.executions, IsEmpty());
}

TEST_F(RestoreToDefaults, AProgramThatCannotBeStartedSaysSoAndThisOneGoesOn) {
    files.addFile(u"/opt/velmora/velmora");
    fake.shell.answer = 32;
    expectAsk(MsgBoxResult::Yes);
    expectRestart(MsgBoxResult::Yes);
    expectFailure(u"Restart Error！");
    settings.restoreDefaults();
    EXPECT_THAT(fake.processes.endStatuses, IsEmpty());
}

TEST_F(RestoreToDefaults, TheIconOfTheSettingsWindowAsks) {
    expectAsk(MsgBoxResult::No);
    app.playSetForm().playSet_Resume_Click();
}

} // namespace
} // namespace velmora
