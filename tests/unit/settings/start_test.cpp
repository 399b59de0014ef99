// What every start does to folders and registry.

#include "tests/unit/settings/settings_fixture.h"

#include "base/run_time_error.h"

namespace velmora {
namespace {

using testing::ElementsAre;

class AtTheStart : public SettingsFixture {
protected:
    void SetUp() override { app.Main().Vesion = u"1.2.3"; }
    const std::u16string home =
        u"/home/user/.local/share/velmora/Program Files/Norvane软件/Velmora";
    const std::u16string data = u"/home/user/Documents/Norvane/Velmora";
};

TEST_F(AtTheStart, TheFoldersAreFixedBelowTheRootAndMyDocuments) {
    settings.init_PlaySet();
    EXPECT_EQ(settings.System_Dir, u"/home/user/.local/share/velmora/System32");
    EXPECT_EQ(settings.System_Root, u"/home/user/.local/share/velmora/");
    EXPECT_EQ(settings.Path_App, home);
    EXPECT_EQ(settings.Path_Lrc, home + u"/Lyrics");
    EXPECT_EQ(settings.Path_Cache, home + u"/Cache");
    EXPECT_EQ(settings.Path_List, home + u"/List");
    EXPECT_EQ(settings.Path_Data, data);
    EXPECT_EQ(settings.Path_DelFilesLog, data + u"/DelFilesLog");
}

TEST_F(AtTheStart, SixFoldersAreMadeInOrderByOneHiddenCommandEach) {
    settings.init_PlaySet();
    EXPECT_THAT(fake.shell.commandLines,
                ElementsAre(u"cmd /c md \"" + home + u"\"", u"cmd /c md \"" + home + u"/Lyrics\"",
                            u"cmd /c md \"" + home + u"/Cache\"",
                            u"cmd /c md \"" + home + u"/List\"", u"cmd /c md \"" + data + u"\"",
                            u"cmd /c md \"" + data + u"/DelFilesLog\""));
    EXPECT_TRUE(files.hasFolder(home + u"/List"));
    EXPECT_TRUE(files.hasFolder(data + u"/DelFilesLog"));
}

TEST_F(AtTheStart, TheFoldersOfTheUserAreMadeInPlaceOfTheDefaults) {
    registry.setText(playSetKey, u"LrcSaveFolder", u"/songs/words");
    registry.setText(playSetKey, u"PlayListSaveFolder", u"/songs/lists");
    registry.setText(playSetKey, u"PlayCacheSaveFolder", u"/songs/cache");
    settings.init_PlaySet();
    EXPECT_TRUE(files.hasFolder(u"/songs/words"));
    EXPECT_TRUE(files.hasFolder(u"/songs/lists"));
    EXPECT_TRUE(files.hasFolder(u"/songs/cache"));
    EXPECT_FALSE(files.hasFolder(home + u"/Lyrics"));
}

TEST_F(AtTheStart, ASecondStartDoesTheSameWithoutHarm) {
    settings.init_PlaySet();
    files.addFile(home + u"/List/zkPlayList.m3u", "/m/a.mp3\r\n");
    settings.init_PlaySet();
    EXPECT_EQ(files.contents(home + u"/List/zkPlayList.m3u"), "/m/a.mp3\r\n");
    EXPECT_EQ(settings.Path_List, home + u"/List");
}

TEST_F(AtTheStart, TheIdentityRecordIsWrittenInOrderWithoutTerminators) {
    settings.init_PlaySet();
    EXPECT_THAT(logged(u"set "),
                ElementsAre(u"set DisplayName SZ 7 Velmora", u"set DisplayVersion SZ 5 1.2.3",
                            u"set Publisher SZ 7 Norvane",
                            u"set URLInfoAbout SZ 22 http://norvane.example"));
    EXPECT_EQ(registry.value(identityKey, u"DisplayVersion")->byteCount, 5U);
}

TEST_F(AtTheStart, TheVersionIsTrimmed) {
    app.Main().Vesion = u" 1.2.3  ";
    settings.init_PlaySet();
    EXPECT_EQ(registry.value(identityKey, u"DisplayVersion")->text, u"1.2.3");
}

TEST_F(AtTheStart, EachValueOfTheIdentityOpensItsKeyAnewAndOneHandleIsClosed) {
    settings.init_PlaySet();
    EXPECT_EQ(logged(u"create " + std::u16string(identityKey)).size(), 4U);
    EXPECT_THAT(logged(u"close"), ElementsAre(u"close"));
    EXPECT_EQ(registry.openHandles(), 5U);
}

TEST_F(AtTheStart, BothOtherKeysExistAfterwardsAndHoldNothing) {
    settings.init_PlaySet();
    EXPECT_TRUE(registry.hasKey(playSetKey));
    EXPECT_TRUE(registry.hasKey(parametersKey));
    EXPECT_FALSE(registry.value(playSetKey, u"PlayMode").has_value());
    EXPECT_FALSE(registry.value(parametersKey, u"lastPlayFileName").has_value());
}

TEST_F(AtTheStart, TheFoldersAreReadBeforeTheyAreMadeAndTheIdentityFollows) {
    registry.setText(playSetKey, u"LrcSaveFolder", u"/words");
    settings.init_PlaySet();
    const auto &log = registry.log();
    const auto find = [&](const std::u16string &line) {
        return std::find(log.begin(), log.end(), line) - log.begin();
    };
    EXPECT_LT(find(u"read " + std::u16string(playSetKey) + u" PlayCacheSaveFolder"),
              find(u"create " + std::u16string(identityKey)));
    EXPECT_EQ(log.back(), u"close");
    EXPECT_EQ(log[log.size() - 2], u"create " + std::u16string(parametersKey));
    EXPECT_EQ(log[log.size() - 3], u"create " + std::u16string(playSetKey));
}

TEST_F(AtTheStart, TheFoldersAreMadeBetweenTheReadingOfTheirSettingsAndTheIdentity) {
    std::vector<std::u16string> lastEntries;
    fake.shell.onCommandLine = [&](std::u16string_view) {
        lastEntries.push_back(registry.log().empty() ? u"(none)" : registry.log().back());
    };
    settings.init_PlaySet();
    const std::u16string lastRead = u"read " + std::u16string(playSetKey) + u" PlayCacheSaveFolder";
    EXPECT_EQ(lastEntries, std::vector<std::u16string>(6, lastRead));
}

TEST_F(AtTheStart, ARegistryThatRefusesEverythingStopsNothing) {
    registry.failWrites(platform::ERROR_ACCESS_DENIED);
    registry.setProviderMissing(true);
    settings.init_PlaySet();
    EXPECT_EQ(settings.Path_List, home + u"/List");
    EXPECT_TRUE(files.hasFolder(home + u"/List"));
}

// --- the three folder settings -------------------------------------------------------------------

TEST_F(AtTheStart, AFolderThatCannotBeMadeKeepsNoOtherFromBeingMade) {
    fake.shell.onCommandLine = [&](std::u16string_view line) {
        if (contains(line, u"Lyrics") || contains(line, u"List"))
            raise(ErrorNumber::General);
    };
    settings.init_PlaySet();
    EXPECT_EQ(fake.shell.commandLines.size(), 6U);
    EXPECT_TRUE(files.hasFolder(home + u"/Cache"));
    EXPECT_TRUE(files.hasFolder(data + u"/DelFilesLog"));
    EXPECT_TRUE(registry.value(identityKey, u"URLInfoAbout").has_value());
}

TEST_F(AtTheStart, AFolderThatCannotBeReadKeepsNoOtherFromBeingRead) {
    registry.setText(playSetKey, u"LrcSaveFolder", u"~words");
    registry.setText(playSetKey, u"PlayListSaveFolder", u"/lists");
    fake.folders.onTyped = [](std::u16string_view text) {
        if (text == u"~words")
            raise(ErrorNumber::General);
    };
    settings.init_PlaySet();
    EXPECT_EQ(settings.Path_Lrc, home + u"/Lyrics");
    EXPECT_EQ(settings.Path_List, u"/lists");
    EXPECT_TRUE(files.hasFolder(u"/lists"));
}

TEST_F(AtTheStart, WithoutADocumentsFolderTheOthersAreFixed) {
    fake.folders.onSpecial = [](std::int32_t) { raise(ErrorNumber::General); };
    settings.init_PlaySet();
    EXPECT_EQ(settings.Path_Data, u"");
    EXPECT_EQ(settings.Path_DelFilesLog, u"/DelFilesLog");
    EXPECT_TRUE(files.hasFolder(home + u"/List"));
}

TEST_F(AtTheStart, AFolderSettingLosesOneSeparatorAtItsEnd) {
    registry.setText(playSetKey, u"LrcSaveFolder", u"/words/");
    registry.setText(playSetKey, u"PlayListSaveFolder", u"/lists//");
    registry.setText(playSetKey, u"PlayCacheSaveFolder", u"/cache");
    settings.load_Save_Paths();
    EXPECT_EQ(settings.Path_Lrc, u"/words");
    EXPECT_EQ(settings.Path_List, u"/lists/");
    EXPECT_EQ(settings.Path_Cache, u"/cache");
}

TEST_F(AtTheStart, AFolderOfAnotherSystemLosesThatSystemsSeparator) {
    registry.setText(playSetKey, u"LrcSaveFolder", u"D:\\words\\");
    registry.setText(playSetKey, u"PlayListSaveFolder", u"/lists\\");
    settings.load_Save_Paths();
    EXPECT_EQ(settings.Path_Lrc, u"D:\\words");
    EXPECT_EQ(settings.Path_List, u"/lists\\");
}

TEST_F(AtTheStart, TheFolderBoxesShowWhatTheVariablesHold) {
    registry.setText(playSetKey, u"LrcSaveFolder", u"/words/");
    settings.init_PlaySet();
    EXPECT_EQ(app.playSetForm().save_Lrc_Path.text(), u"/words");
    EXPECT_EQ(app.playSetForm().save_PlayList_Path.text(), home + u"/List");
    EXPECT_EQ(app.playSetForm().save_PlayCache_Path.text(), home + u"/Cache");
}

TEST_F(AtTheStart, TheFoldersAreReadInTheOrderLyricListCache) {
    settings.load_Save_Paths();
    const std::u16string read = u"read " + std::u16string(playSetKey);
    EXPECT_THAT(logged(u"read "),
                ElementsAre(read + u" LrcSaveFolder", read + u" PlayListSaveFolder",
                            read + u" PlayCacheSaveFolder"));
}

TEST_F(AtTheStart, AnEmptyFolderSettingStaysEmpty) {
    registry.setText(playSetKey, u"PlayListSaveFolder", u"");
    settings.init_PlaySet();
    EXPECT_EQ(settings.Path_List, u"");
}

TEST_F(AtTheStart, TheRootAsAFolderBecomesEmpty) {
    registry.setText(playSetKey, u"PlayListSaveFolder", u"/");
    settings.init_PlaySet();
    EXPECT_EQ(settings.Path_List, u"");
}

TEST_F(AtTheStart, FoldersWithLineBreaksOrRelativeOnesAreTakenAsTheyAre) {
    registry.setText(playSetKey, u"LrcSaveFolder", u"/a\r\nb");
    registry.setText(playSetKey, u"PlayListSaveFolder", u"lists");
    settings.load_Save_Paths();
    EXPECT_EQ(settings.Path_Lrc, u"/a\r\nb");
    EXPECT_EQ(settings.Path_List, u"lists");
}

TEST_F(AtTheStart, AFolderThatBeginsWithATildeLiesInTheHome) {
    registry.setText(playSetKey, u"LrcSaveFolder", u"~/words/");
    registry.setText(playSetKey, u"PlayListSaveFolder", u"~");
    registry.setText(playSetKey, u"PlayCacheSaveFolder", u"~cache");
    settings.init_PlaySet();
    EXPECT_EQ(settings.Path_Lrc, u"/home/user/words");
    EXPECT_EQ(app.playSetForm().save_Lrc_Path.text(), u"/home/user/words");
    EXPECT_EQ(settings.Path_List, u"/home/user");
    EXPECT_EQ(settings.Path_Cache, u"~cache");
    EXPECT_TRUE(files.hasFolder(u"/home/user/words"));
}

TEST_F(AtTheStart, AFreshMachineHasTheDefaultsEverywhere) {
    start();
    EXPECT_TRUE(files.hasFolder(home + u"/Lyrics"));
    EXPECT_TRUE(files.hasFolder(home + u"/Cache"));
    EXPECT_TRUE(files.hasFolder(data));
    EXPECT_EQ(settings.get_AutoUpdate(), 0);
    EXPECT_EQ(settings.get_IsAutoPlay(), 0);
    EXPECT_EQ(settings.get_PlayMode(), 0);
    EXPECT_EQ(settings.get_VideoInterface(), 0);
    EXPECT_EQ(settings.Language_Index, 0);
    EXPECT_FALSE(settings.get_AutoShowWelcome());
    const forms::TextBox &preview = app.playSetForm().desktop_Lrc_Preview;
    EXPECT_EQ(preview.font().name(), u"微软雅黑");
    EXPECT_EQ(preview.font().size(), 36.0F);
    EXPECT_EQ(preview.foreColor(), 0x0000FFU);
}

} // namespace
} // namespace velmora
