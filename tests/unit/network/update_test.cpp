// The program's own update.

#include "tests/unit/program_fixture.h"

#include "network/update.h"
#include "playback/startLoad_Form.h"

namespace velmora {
namespace {

using platform::MsgBoxButtons;
using platform::MsgBoxIcon;
using platform::MsgBoxResult;

class Update : public ProgramFixture {
protected:
    Update() {
        speak(1);
        files.addFolder(fake.folders.temporary);
        files.addFolder(u"/opt/velmora");
        fake.registry.setText(u"SOFTWARE\\Norvane\\zkPlayer\\hosts", u"maker", u"http://maker");
        app.Main().Vesion = u"2.9.9";
        app.Main().title.setCaption(u"Velmora 2011");
    }
    velmora::update &work() { return app.update(); }
    void serve(std::string text) {
        fake.internet.setDownload(u"http://maker/source/softwareDate/zkPlayerUpdate.php",
                                  std::move(text));
    }
    void serveVersion(const std::string &version, const std::string &more = {}) {
        serve("[check]\r\nvesion=" + version + "\r\ndownload=http://maker/new.exe\r\n" + more);
    }
    void serveProgram() { fake.internet.setDownload(u"http://maker/new.exe", "program"); }
    std::u16string shown() { return app.startLoad_Form().showText.caption(); }
    void expectBox(std::u16string_view text, MsgBoxIcon icon) {
        windows.expectMsgBox(boxOf(text, icon, u"Velmora 2011"), MsgBoxResult::Ok);
    }
    void expectQuestion(std::u16string_view text, MsgBoxResult answer) {
        windows.expectMsgBox(
            {std::u16string(text), MsgBoxButtons::YesNo, MsgBoxIcon::None, u"Velmora 2011"},
            answer);
    }
    std::u16string askText(const std::u16string &version, const std::u16string &notes = {}) {
        return std::u16string(app.Language().msg_Upgrade_Ask) + version + u"】？\r\n\r\n" + notes;
    }
    static constexpr auto newPath = u"/opt/velmora/zkPlayer [3.0.0].exe";
};

TEST_F(Update, WithoutANetworkIsToldToTheUserAlone) {
    fake.internet.connectedState = 0;
    work().check_Update(false);
    EXPECT_TRUE(windows.boxes.empty());
    expectBox(app.Language().msg_No_Network, MsgBoxIcon::Critical);
    work().check_Update(true);
}

TEST_F(Update, WithoutANetworkFetchesNothing) {
    fake.internet.connectedState = 0;
    serveVersion("2.9.9");
    work().check_Update(false);
    EXPECT_TRUE(fake.internet.log.empty() ||
                !startsWith(fake.internet.log.back(), u"URLDownloadToFileA"));
    fake.internet.connectedState = 1;
    work().check_Update(false);
    EXPECT_TRUE(startsWith(fake.internet.log.back(), u"URLDownloadToFileA"));
}

TEST_F(Update, AskedForByAPersonTriesHostsAnewThatDidNotAnswerAndByItselfDoesNot) {
    work().check_Update(false);
    EXPECT_EQ(fake.internet.triedAnew, 0);
    work().check_Update(true);
    EXPECT_EQ(fake.internet.triedAnew, 1);
}

TEST_F(Update, WithoutTheInformationFileIsSilentForTheUserToo) {
    work().check_Update(true);
    EXPECT_TRUE(windows.boxes.empty());
    EXPECT_NE(work().update_Result, 0);
}

TEST_F(Update, WithAnInformationFileOfNoUseIsSilentForTheUserToo) {
    for (const char *text : {"", "[check]\r\nvesion=3.0.0\r\n", "[check]\r\ndownload=http://x\r\n",
                             "[check]\r\nvesion=3.0.0\r\ndownload=  \r\n", "<html>404</html>"}) {
        serve(text);
        work().check_Update(true);
        EXPECT_FALSE(files.hasFile(work().update_TmpFile)) << "it goes all the same";
    }
    EXPECT_TRUE(windows.boxes.empty());
}

TEST_F(Update, HasNoNotesOfAnEarlierCheck) {
    serveVersion("3.0.0", "[Updates]\r\nUpdates_English=one\r\n");
    expectQuestion(askText(u"3.0.0", u"one\r\n"), MsgBoxResult::No);
    work().check_Update(false);
    serveVersion("3.0.0", "[Updates]\r\nUpdates_English=one\r\n");
    app.setControl().Language_Index = 7;
    expectQuestion(askText(u"3.0.0"), MsgBoxResult::No);
    work().check_Update(false);
}

TEST_F(Update, AsksUnderTheTitleThatMainHasThen) {
    serveVersion("3.0.0");
    windows.expectMsgBox(
        {askText(u"3.0.0"), MsgBoxButtons::YesNo, MsgBoxIcon::None, u"Velmora 2011"},
        MsgBoxResult::Yes, [&] { app.Main().title.setCaption(u"Song"); });
    windows.expectMsgBox(boxOf(app.Language().msg_Upgrade_Failed, MsgBoxIcon::Critical, u"Song"),
                         MsgBoxResult::Ok);
    work().check_Update(false);
}

TEST_F(Update, FetchesTheProgramInOneOrder) {
    work().new_Version = u"3.0.0";
    work().new_DownloadUrl = u"http://maker/new.exe";
    serveProgram();
    windows.onPump = [&] { fake.internet.log.emplace_back(u"pump"); };
    EXPECT_TRUE(work().fetch_NewProgram());
    EXPECT_EQ(fake.internet.log,
              (Texts{u"DeleteUrlCacheEntryA http://maker/new.exe", u"pump",
                     std::u16string(u"URLDownloadToFileA http://maker/new.exe ") + newPath}));
}

TEST_F(Update, IsFetchedFromNowhereThatCouldBeAnybody) {
    const auto fetches = [&](std::u16string_view maker, std::u16string address) {
        fake.registry.setText(u"SOFTWARE\\Norvane\\zkPlayer\\hosts", u"maker", maker);
        work().new_Version = u"3.0.0";
        work().new_DownloadUrl = address;
        return work().fetch_NewProgram();
    };
    // All of them could be had.
    for (const char16_t *address : {u"http://maker/new.exe", u"https://files.example/new.exe"})
        fake.internet.setDownload(address, "program");
    EXPECT_TRUE(fetches(u"http://maker", u"http://maker/new.exe"));
    EXPECT_FALSE(fetches(u"http://maker", u"http://other/new.exe"));
    EXPECT_NE(work().update_Result, 0);
    EXPECT_FALSE(fetches(u"https://maker.example", u"http://maker.example/new.exe"));
    EXPECT_FALSE(fetches(u"http://maker.example", u"http://maker.example/new.exe"));
    EXPECT_TRUE(fetches(u"https://maker.example", u"https://files.example/new.exe"));
}

TEST_F(Update, ThatIsNotFetchedTellsWhy) {
    work().new_Version = u"../3.0.0";
    work().new_DownloadUrl = u"http://maker/new.exe";
    EXPECT_FALSE(work().fetch_NewProgram());
    EXPECT_EQ(work().update_Result, 123) << "a name that is none";
    work().new_Version = u"3.0.0";
    work().new_DownloadUrl = u"http://other/new.exe";
    fake.internet.log.clear();
    EXPECT_FALSE(work().fetch_NewProgram());
    EXPECT_EQ(work().update_Result, 5) << "access denied";
    EXPECT_EQ(fake.internet.log, Texts{u"DeleteUrlCacheEntryA http://other/new.exe"});
}

TEST_F(Update, OfAFolderThatEndsInASeparatorHasNoSecondAheadOfItsName) {
    fake.processes.folder = u"/opt/velmora/";
    work().new_Version = u"3.0.0";
    work().new_DownloadUrl = u"http://maker/new.exe";
    serveProgram();
    EXPECT_TRUE(work().fetch_NewProgram());
    EXPECT_EQ(fake.internet.log.back(),
              std::u16string(u"URLDownloadToFileA http://maker/new.exe ") + newPath);
}

TEST_F(Update, TestsTheTemporaryFolderForTheProgramToo) {
    work().new_Version = u"3.0.0";
    work().new_DownloadUrl = u"http://maker/new.exe";
    files.setReadOnly(fake.folders.temporary);
    EXPECT_FALSE(work().fetch_NewProgram());
    EXPECT_EQ(fake.internet.log, Texts{u"DeleteUrlCacheEntryA http://maker/new.exe"});
    files.setReadOnly(fake.folders.temporary, false);
    fake.internet.failNext("DeleteUrlCacheEntryA");
    fake.internet.failNext("URLDownloadToFileA");
    serveProgram();
    EXPECT_FALSE(work().fetch_NewProgram());
    EXPECT_NE(work().update_Result, 0);
    files.setReadOnly(u"/opt/velmora"); // which only the download itself finds out
    EXPECT_FALSE(work().fetch_NewProgram());
    EXPECT_EQ(fake.internet.log.back(),
              std::u16string(u"URLDownloadToFileA http://maker/new.exe ") + newPath);
}

TEST_F(Update, FetchesTheInformationInOneOrder) {
    windows.onPump = [&] { fake.internet.log.emplace_back(u"pump"); };
    fake.shell.onCommandLine = [&](std::u16string_view) { fake.internet.log.emplace_back(u"del"); };
    serveVersion("3.0.0");
    EXPECT_TRUE(work().fetch_UpdateInfo());
    const std::u16string address = u"http://maker/source/softwareDate/zkPlayerUpdate.php";
    EXPECT_EQ(fake.internet.log,
              (Texts{u"DeleteUrlCacheEntryA " + address, u"del", u"pump",
                     u"URLDownloadToFileA " + address + u" " + work().update_TmpFile}));
}

TEST_F(Update, OfTheCurrentVersionIsToldToTheUserAlone) {
    serveVersion("2.9.9");
    work().check_Update(false);
    EXPECT_TRUE(windows.boxes.empty());
    expectBox(app.Language().msg_Latest_Version, MsgBoxIcon::Information);
    work().check_Update(true);
}

TEST_F(Update, FetchesTheInformationIntoTheTemporaryFolderAndDeletesIt) {
    serveVersion("2.0.0");
    work().check_Update(false);
    const std::u16string path = fake.folders.temporary + u"zkPlayerUpdate.tmp";
    EXPECT_EQ(work().update_TmpFile, path);
    EXPECT_EQ(fake.shell.commandLines,
              (Texts{u"cmd /c del \"" + path + u"\"", u"cmd /c del \"" + path + u"\""}));
    EXPECT_FALSE(files.hasFile(path));
    EXPECT_EQ(fake.internet.log.at(1),
              u"DeleteUrlCacheEntryA http://maker/source/softwareDate/zkPlayerUpdate.php");
}

TEST_F(Update, IsNotFetchedWhereTheTemporaryFolderCannotBeWritten) {
    files.setReadOnly(fake.folders.temporary);
    serveVersion("3.0.0");
    fake.internet.URLDownloadToFileA(u"http://maker/source/softwareDate/zkPlayerUpdate.php",
                                     u"/x/asked", platform::informationFile);
    const std::size_t asked = fake.internet.log.size();
    work().check_Update(true);
    for (std::size_t i = asked; i < fake.internet.log.size(); ++i)
        EXPECT_FALSE(startsWith(fake.internet.log[i], u"URLDownloadToFileA"));
}

TEST_F(Update, IsNotReadFromAnEarlierFileWhereTheTemporaryFolderCannotBeWrittenAnyMore) {
    serveVersion("2.0.0");
    work().check_Update(false);
    files.addFile(work().update_TmpFile, "[check]\r\nvesion=3.0.0\r\ndownload=http://maker/x\r\n");
    files.setReadOnly(fake.folders.temporary);
    work().check_Update(true);
    EXPECT_TRUE(windows.boxes.empty());
}

TEST_F(Update, ThatTheUserDeclinesFetchesNothing) {
    serveVersion("3.0.0");
    expectQuestion(askText(u"3.0.0"), MsgBoxResult::No);
    work().check_Update(true);
    EXPECT_FALSE(files.hasFile(newPath));
    EXPECT_EQ(shown(), u"发现最新版本：【3.0.0】，等待用户选择是否下载...");
    EXPECT_EQ(windows.boxSource, u"http://maker/new.exe") << "where it would come from";
}

struct NotesCase {
    std::int32_t language;
    const char16_t *notes;
};

class UpdateNotes : public Update, public ::testing::WithParamInterface<NotesCase> {};

TEST_P(UpdateNotes, AreThoseOfTheLanguageALineEach) {
    speak(1);
    serveVersion("3.0.0", "[Updates]\r\nUpdates_Chinese=一|二\r\nUpdates_English=one\r\n"
                          "Updates_French=un||deux\r\nUpdates_Japanese=い\r\n");
    app.setControl().Language_Index = GetParam().language;
    expectQuestion(askText(u"3.0.0", GetParam().notes), MsgBoxResult::No);
    work().check_Update(false);
}

INSTANTIATE_TEST_SUITE_P(Languages, UpdateNotes,
                         ::testing::Values(NotesCase{0, u"一\r\n二\r\n"}, NotesCase{1, u"one\r\n"},
                                           NotesCase{2, u"un\r\n\r\ndeux\r\n"},
                                           NotesCase{3, u"い\r\n"}, NotesCase{4, u""},
                                           NotesCase{-1, u""}));

TEST_F(Update, IsFetchedBesideTheProgramAndStaysUnusedWhenTheUserWantsNoRestart) {
    serveVersion("3.0.0");
    serveProgram();
    expectQuestion(askText(u"3.0.0"), MsgBoxResult::Yes);
    expectQuestion(app.Language().msg_Upgrade_Done, MsgBoxResult::No);
    work().check_Update(true);
    EXPECT_EQ(files.contents(newPath), "program");
    EXPECT_TRUE(fake.shell.executions.empty());
    EXPECT_EQ(shown(), u"成功下载最新版本：【3.0.0】，等待用户选择是否重启...");
}

TEST_F(Update, StartsTheNewProgramAndEndsThisOne) {
    serveVersion("3.0.0");
    serveProgram();
    expectQuestion(askText(u"3.0.0"), MsgBoxResult::Yes);
    expectQuestion(app.Language().msg_Upgrade_Done, MsgBoxResult::Yes);
    expectEnd([&] { work().check_Update(true); });
    ASSERT_EQ(fake.shell.executions.size(), 1U);
    EXPECT_EQ(fake.shell.executions[0].target, newPath);
    EXPECT_FALSE(files.hasFile(fake.folders.temporary + u"RestartZkPlayer.tmp")) << "no marker";
    EXPECT_EQ(shown(), u"准备重启...");
}

TEST_F(Update, ThatDoesNotStartIsToldAndTheProgramGoesOn) {
    serveVersion("3.0.0");
    serveProgram();
    fake.shell.answer = 5;
    expectQuestion(askText(u"3.0.0"), MsgBoxResult::Yes);
    expectQuestion(app.Language().msg_Upgrade_Done, MsgBoxResult::Yes);
    expectBox(app.Language().msg_Cannot_Start, MsgBoxIcon::Exclamation);
    work().check_Update(false);
    EXPECT_EQ(shown(), app.Language().msg_Cannot_Start);
}

TEST_F(Update, ThatCannotBeFetchedIsToldEvenWhenTheUserDidNotAsk) {
    serveVersion("3.0.0");
    expectQuestion(askText(u"3.0.0"), MsgBoxResult::Yes);
    expectBox(app.Language().msg_Upgrade_Failed, MsgBoxIcon::Critical);
    work().check_Update(false);
    EXPECT_EQ(shown(), app.Language().msg_Upgrade_Failed);
}

// A second check is begun by the tray's menu while the first one asks.
TEST_F(Update, FetchesAndStartsTheVersionThatItAskedAboutThoughAnotherCheckRanMeanwhile) {
    const auto checkAgain = [&] {
        serve("[check]\r\nvesion=4.0.0\r\ndownload=http://maker/newer.exe\r\n"
              "[Updates]\r\nUpdates_English=newer\r\n");
        expectQuestion(askText(u"4.0.0", u"newer\r\n"), MsgBoxResult::No);
        work().check_Update(true);
    };
    serveVersion("3.0.0");
    serveProgram();
    const auto expectFirst = [&](std::u16string_view text) {
        windows.expectMsgBox(
            {std::u16string(text), MsgBoxButtons::YesNo, MsgBoxIcon::None, u"Velmora 2011"},
            MsgBoxResult::Yes, checkAgain);
    };
    expectFirst(askText(u"3.0.0"));
    // Scripted here, so that the one of the check inside comes first.
    bool isDone = false;
    windows.onPump = [&] {
        if (isDone || !contains(shown(), u"正在下载"))
            return;
        isDone = true;
        checkAgain();
        expectFirst(app.Language().msg_Upgrade_Done);
    };
    expectEnd([&] { work().check_Update(true); });
    windows.onPump = nullptr;
    EXPECT_EQ(files.contents(newPath), "program");
    EXPECT_FALSE(files.hasFile(u"/opt/velmora/zkPlayer [4.0.0].exe"));
    ASSERT_EQ(fake.shell.executions.size(), 1U);
    EXPECT_EQ(fake.shell.executions[0].target, newPath);
}

TEST_F(Update, SaysOfWhichVersionItSpeaksThoughAnotherCheckRanMeanwhile) {
    serveVersion("3.0.0");
    serveProgram();
    windows.expectMsgBox(
        {askText(u"3.0.0"), MsgBoxButtons::YesNo, MsgBoxIcon::None, u"Velmora 2011"},
        MsgBoxResult::Yes, [&] {
            serve("[check]\r\nvesion=4.0.0\r\ndownload=http://maker/newer.exe\r\n");
            expectQuestion(askText(u"4.0.0"), MsgBoxResult::No);
            work().check_Update(true);
            expectQuestion(app.Language().msg_Upgrade_Done, MsgBoxResult::No);
        });
    work().check_Update(true);
    EXPECT_EQ(shown(), u"成功下载最新版本：【3.0.0】，等待用户选择是否重启...");
    EXPECT_EQ(files.contents(newPath), "program");
}

TEST_F(Update, ShowsThatItDownloads) {
    serveVersion("3.0.0");
    serveProgram();
    expectQuestion(askText(u"3.0.0"), MsgBoxResult::Yes);
    expectQuestion(app.Language().msg_Upgrade_Done, MsgBoxResult::No);
    std::u16string during;
    windows.onPump = [&] {
        if (contains(shown(), u"正在下载"))
            during = shown();
    };
    work().check_Update(true);
    EXPECT_EQ(during, u"正在下载最新版本：【3.0.0】，请稍后...");
}

TEST_F(Update, OverwritesAnEarlierFileOfTheSameVersion) {
    files.addFile(newPath, "earlier");
    serveVersion("3.0.0");
    serveProgram();
    expectQuestion(askText(u"3.0.0"), MsgBoxResult::Yes);
    expectQuestion(app.Language().msg_Upgrade_Done, MsgBoxResult::No);
    work().check_Update(true);
    EXPECT_EQ(files.contents(newPath), "program");
}

TEST_F(Update, OfAVersionThatIsNoFileNameFailsWithoutLeavingTheFolder) {
    serveVersion("3.0.0/../../evil");
    expectQuestion(askText(u"3.0.0/../../evil"), MsgBoxResult::Yes);
    expectBox(app.Language().msg_Upgrade_Failed, MsgBoxIcon::Critical);
    work().check_Update(true);
    for (const std::u16string &line : fake.internet.log)
        EXPECT_FALSE(contains(line, u"new.exe") && startsWith(line, u"URLDownloadToFileA"));
}

struct VersionCase {
    const char16_t *own;
    const char16_t *other;
    bool isNewer;
};

class NewVersion : public Update, public ::testing::WithParamInterface<VersionCase> {};

TEST_P(NewVersion, ComparesThreeNumbers) {
    app.Main().Vesion = GetParam().own;
    EXPECT_EQ(work().is_NewVersion(GetParam().other), GetParam().isNewer);
}

INSTANTIATE_TEST_SUITE_P(
    Versions, NewVersion,
    ::testing::Values(
        VersionCase{u"2.9.9", u"3.0.0", true}, VersionCase{u"2.9.9", u"2.10.0", true},
        VersionCase{u"2.9.9", u"2.9.10", true}, VersionCase{u"2.9.9", u"2.9.9", false},
        VersionCase{u"2.9.9", u"1.99.99", false}, VersionCase{u"2.9.9", u"2.8.99", false},
        VersionCase{u"2.9.9", u"2.9.9.5", false}, VersionCase{u"2.9.9.4", u"2.9.9.5", false},
        VersionCase{u"2.9.9", u"3", true}, VersionCase{u"2.9.9", u"2", false},
        VersionCase{u"2.9.9", u"2.10", true}, VersionCase{u"2.9.9", u"2.9", false},
        VersionCase{u"2.9", u"2.9.1", false}, VersionCase{u"", u"1.0.0", true},
        VersionCase{u"2.9.9", u"", false}, VersionCase{u"2.9.9", u"3x.y.z", true},
        VersionCase{u"2.9.9", u"x.9.9", false}));

} // namespace
} // namespace velmora
