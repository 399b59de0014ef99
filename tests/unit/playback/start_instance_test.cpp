// One instance at a time, and the marker by which a restart is expected.

#include "tests/unit/playback/start_fixture.h"

namespace velmora {
namespace {

// --- one instance --------------------------------------------------------------------------------

class StartingTwice : public Start {
protected:
    void expectRefusal() {
        speak(0);
        windows.expectMsgBox(boxOf(app.Language().msg_Already_Running,
                                   platform::MsgBoxIcon::Exclamation, u"Velmora 2011"),
                             platform::MsgBoxResult::Ok);
        expectEnd([&] { app.start(); });
    }
};

TEST_F(StartingTwice, AsksTheProcessServiceWithItsOwnWords) {
    app.start();
    EXPECT_EQ(fake.processes.queries, Texts{u"Select * Form Win32_Process"});
    EXPECT_EQ(fake.processes.queryFlags, std::vector<std::int32_t>{48});
}

TEST_F(StartingTwice, IsRefusedWhenTwoProcessesHaveTheInternalName) {
    fake.processes.executables = {programPath, programPath};
    expectRefusal();
}

TEST_F(StartingTwice, IsRefusedForARenamedCopyByItsInternalNameInAnyCase) {
    files.addFile(u"/tmp/other name");
    fake.versions.addProgram(u"/tmp/other name", u"ZKPLAYER");
    fake.processes.executables = {programPath, u"/tmp/other name"};
    expectRefusal();
}

TEST_F(StartingTwice, IsRefusedByThePlatformsOwnTest) {
    fake.processes.otherInstance = true;
    expectRefusal();
}

TEST_F(StartingTwice, HasMadeFoldersAndIdentityBeforeItIsRefused) {
    fake.processes.executables = {programPath, programPath};
    expectRefusal();
    EXPECT_EQ(fake.shell.commandLines.size(), 6U);
    EXPECT_TRUE(fake.registry.hasKey(identityKey));
    EXPECT_TRUE(fake.registry.hasKey(playSetKey));
    EXPECT_TRUE(fake.registry.hasKey(parametersKey));
}

TEST_F(StartingTwice, WhenRefusedLeavesToTheFirstWhatItIsFetching) {
    fake.processes.otherInstance = true;
    files.addFile(fake.folders.temporary + u"zkPlayerUpdate.tmp", "[check]");
    expectRefusal();
    EXPECT_TRUE(files.hasFile(fake.folders.temporary + u"zkPlayerUpdate.tmp"));
}

TEST_F(StartingTwice, WhenRefusedBringsTheFirstForward) {
    fake.processes.otherInstance = true;
    expectRefusal();
    EXPECT_EQ(fake.remote.raisedOthers, 1);
}

TEST_F(StartingTwice, WhenRefusedAddsNoTrayIconAndShowsNoMain) {
    fake.processes.executables = {programPath, programPath};
    expectRefusal();
    for (const auto &call : windows.trayCalls)
        EXPECT_NE(call.operation, platform::NIM_ADD);
    EXPECT_FALSE(app.Main().visible());
    EXPECT_EQ(media.texts(), Texts{u"close NOWMUSIC"});
}

TEST_F(StartingTwice, CountsOnlyFilesThatExistAndHaveTheName) {
    files.addFile(u"/bin/sh");
    fake.versions.addProgram(u"/bin/sh", u"zkPlayer2");
    fake.versions.addProgram(u"/gone", u"zkPlayer");
    fake.processes.executables = {u"", u"/gone", u"/bin/sh", programPath};
    app.start();
    EXPECT_TRUE(app.Main().visible());
}

TEST_F(StartingTwice, StopsCountingAtTwo) {
    files.addFile(u"/bin/third");
    fake.processes.executables = {programPath, programPath, u"/bin/third"};
    expectRefusal();
    for (const auto &path : fake.versions.asked)
        EXPECT_NE(path, u"/bin/third");
}

TEST_F(StartingTwice, IsNotRefusedWhenTheServiceFails) {
    fake.processes.queryFails = true;
    fake.processes.otherInstance = true;
    app.start();
    EXPECT_TRUE(app.Main().visible());
}

TEST_F(StartingTwice, IsExpectedWhenTheMarkerLiesThere) {
    files.addFile(markerPath, "Velmora 2011");
    fake.processes.executables = {programPath, programPath};
    fake.processes.otherInstance = true;
    app.start();
    EXPECT_TRUE(app.Main().visible());
    EXPECT_TRUE(fake.processes.queries.empty());
    EXPECT_FALSE(files.hasFile(markerPath));
}

// The next start has to find it by the lock, whoever started it.
TEST_F(StartingTwice, TheExpectedOneIsAnInstanceLikeAnyOther) {
    files.addFile(markerPath);
    app.start();
    EXPECT_EQ(fake.processes.instanceTests, 1);
    EXPECT_TRUE(app.Main().visible());
}

TEST_F(StartingTwice, IsExpectedEvenWhenTheMarkerCannotBeDeleted) {
    files.addFile(markerPath);
    files.setReadOnly(markerPath);
    fake.processes.executables = {programPath, programPath};
    app.start();
    EXPECT_TRUE(app.Main().visible());
}

TEST_F(Start, TheMarkerHoldsTheTitleAndIsTakenAway) {
    EXPECT_EQ(splash().restart_Marker(true), -1);
    EXPECT_EQ(files.contents(markerPath), "Velmora 2011");
    EXPECT_EQ(splash().restart_Marker(false), -1);
    EXPECT_FALSE(files.hasFile(markerPath));
    EXPECT_EQ(splash().restart_Marker(false), 0) << "there is none to delete";
}

TEST_F(Start, TheMarkerThatCannotBeWrittenAnswers0) {
    files.failNext("CreateTextFile");
    EXPECT_EQ(splash().restart_Marker(true), 0);
}

} // namespace
} // namespace velmora
