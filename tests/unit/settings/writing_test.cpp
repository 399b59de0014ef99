// Writing values: order, types, byte counts.

#include "tests/unit/settings/settings_fixture.h"

namespace velmora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class Writing : public SettingsFixture {
protected:
    void fillGeneral() {
        settings.AutoUpadate = 1;
        settings.isAutoPlay = 0;
        settings.PlayMode = 2;
        settings.Language = 3;
        settings.VideoInterface = 1;
        app.playSetForm().save_Lrc_Path.setText(u"/words");
        app.playSetForm().save_PlayList_Path.setText(u"/列表");
        app.playSetForm().save_PlayCache_Path.setText(u"");
        registry.clearLog();
    }
};

TEST_F(Writing, GeneralSettingsGoOutInOrderWithTheirByteCounts) {
    fillGeneral();
    EXPECT_TRUE(settings.save_PlaySet());
    EXPECT_THAT(registry.log(),
                ElementsAre(u"create " + std::u16string(playSetKey), u"set AutoUpadate SZ 2 1",
                            u"set isAutoPlay SZ 2 0", u"set PlayMode SZ 2 2",
                            u"set Language SZ 2 3", u"set VideoInterface SZ 2 1",
                            u"set LrcSaveFolder SZ 6 /words", u"set PlayListSaveFolder SZ 7 /列表",
                            u"set PlayCacheSaveFolder SZ 0 ", u"close"));
}

TEST_F(Writing, WhatWasSavedIsOnTheDiskBehindTheSync) {
    settings.sync_PlaySet();
    EXPECT_THAT(registry.log(),
                ElementsAre(u"create " + std::u16string(playSetKey), u"flush", u"close"));
    EXPECT_EQ(registry.openHandles(), 0U);
}

TEST_F(Writing, AnOrderChosenFromOutsideIsWrittenAloneAndIsOnTheDiskBehindIt) {
    settings.PlayMode = 2;
    registry.clearLog();
    settings.save_PlayMode();
    EXPECT_THAT(registry.log(), ElementsAre(u"create " + std::u16string(playSetKey),
                                            u"set PlayMode SZ 2 2", u"flush", u"close"));
    EXPECT_EQ(registry.openHandles(), 0U);
}

TEST_F(Writing, GeneralSettingsReadBackAsTheyWere) {
    fillGeneral();
    settings.save_PlaySet();
    EXPECT_EQ(settings.get_AutoUpdate(), 1);
    EXPECT_EQ(settings.get_IsAutoPlay(), 0);
    EXPECT_EQ(settings.get_PlayMode(), 2);
    EXPECT_EQ(settings.get_VideoInterface(), 1);
    EXPECT_EQ(settings.get_LrcSaveFolder(), u"/words");
    EXPECT_EQ(settings.get_PlayListSaveFolder(), u"/列表");
    EXPECT_EQ(settings.get_PlayCacheSaveFolder(), u"");
    settings.load_Language();
    EXPECT_EQ(settings.Language_Index, 3);
}

TEST_F(Writing, ANumberOfTwoDigitsFillsItsTwoBytes) {
    settings.PlayMode = 12;
    settings.save_PlaySet();
    EXPECT_EQ(registry.value(playSetKey, u"PlayMode")->byteCount, 2U);
    EXPECT_EQ(settings.get_PlayMode(), 12);
}

TEST_F(Writing, TheFoldersThatTheUserTypedAreMadeAfterTheKeyIsClosed) {
    settings.init_PlaySet();
    settings.Path_Lrc = u"/typed/words";
    fake.shell.commandLines.clear();
    fake.shell.onCommandLine = [&](std::u16string_view) {
        EXPECT_EQ(registry.log().back(), u"close");
    };
    EXPECT_TRUE(settings.save_PlaySet());
    EXPECT_EQ(fake.shell.commandLines.size(), 6U);
    EXPECT_TRUE(files.hasFolder(u"/typed/words"));
}

TEST_F(Writing, TheFoldersAreMadeEvenWhereNothingCanBeStored) {
    settings.init_PlaySet();
    settings.Path_Lrc = u"/typed/words";
    registry.failWrites(platform::ERROR_ACCESS_DENIED);
    EXPECT_TRUE(settings.save_PlaySet());
    EXPECT_TRUE(files.hasFolder(u"/typed/words"));
}

TEST_F(Writing, AFontSetThatCannotBeStoredIsNoFailure) {
    registry.failWrites(platform::ERROR_ACCESS_DENIED);
    EXPECT_TRUE(settings.save_Lrc_Font(u"Desktop"));
    EXPECT_TRUE(settings.save_Lrc_Font(u"Other"));
    EXPECT_FALSE(registry.value(playSetKey, u"Desktop_Lrc_Name").has_value());
}

TEST_F(Writing, ARegistryThatRefusesGivesNoMessageAndTheMemoryGoesOn) {
    fillGeneral();
    registry.failWrites(platform::ERROR_ACCESS_DENIED);
    EXPECT_TRUE(settings.save_PlaySet());
    EXPECT_EQ(settings.PlayMode, 2);
    EXPECT_EQ(settings.get_PlayMode(), 0);
}

TEST_F(Writing, TheLastFileIsStoredWithTheLengthOfItsCodePage) {
    settings.save_LastPlayFile(u"/m/晚霞.mp3");
    EXPECT_THAT(registry.log(), ElementsAre(u"create " + std::u16string(parametersKey),
                                            u"set lastPlayFileName SZ 13 /m/晚霞.mp3", u"close"));
    EXPECT_EQ(settings.get_LastPlayFile(), u"/m/晚霞.mp3");
}

TEST_F(Writing, ALastFileWhoseNameIsNoTextSurvives) {
    const std::u16string path = std::u16string(u"/m/") + char16_t(0xDCFF) + u".mp3";
    settings.save_LastPlayFile(path);
    EXPECT_EQ(settings.get_LastPlayFile(), path);
}

TEST_F(Writing, ALastFileThatCannotBeStoredIsPassedOver) {
    registry.failWrites(platform::ERROR_ACCESS_DENIED);
    settings.save_LastPlayFile(u"/m/a.mp3");
    EXPECT_EQ(settings.get_LastPlayFile(), u"");
}

TEST_F(Writing, TheWelcomeSwitchIsOneDigitWithoutATerminator) {
    settings.save_AutoShowWelcome(u"1");
    EXPECT_EQ(registry.log()[1], u"set AutoShowWelcome SZ 1 1");
    settings.save_AutoShowWelcome(u"0");
    EXPECT_EQ(registry.value(playSetKey, u"AutoShowWelcome")->text, u"0");
    EXPECT_EQ(registry.log().back(), u"close");
}

TEST_F(Writing, TheWelcomeSwitchUnderstandsTextsThatReadAsABoolean) {
    const std::pair<const char16_t *, const char16_t *> cases[] = {
        {u"True", u"1"}, {u"false", u"0"}, {u"-1", u"1"}, {u"2", u"1"}, {u" 0 ", u"0"}};
    for (const auto &[state, stored] : cases) {
        settings.save_AutoShowWelcome(state);
        EXPECT_EQ(registry.value(playSetKey, u"AutoShowWelcome")->text, stored) << toUtf8(state);
    }
}

TEST_F(Writing, AWelcomeSwitchThatIsNoBooleanIsNotStored) {
    settings.save_AutoShowWelcome(u"perhaps");
    settings.save_AutoShowWelcome(u"");
    EXPECT_FALSE(registry.value(playSetKey, u"AutoShowWelcome").has_value());
    EXPECT_EQ(registry.openHandles(), 0U);
}

TEST_F(Writing, WhatThePersonSwitchesIsOnTheDiskAtOnceAndTheLastFileWhenTheSystemWritesIt) {
    settings.save_AutoShowWelcome(u"1");
    EXPECT_THAT(logged(u"flush"), SizeIs(1));
    settings.save_LastPlayFile(u"/m/a.mp3"); // at every track: no wait for the disk
    EXPECT_THAT(logged(u"flush"), SizeIs(1));
}

TEST_F(Writing, DeletingTheSettingsTakesTheirKeyAlone) {
    settings.init_PlaySet();
    settings.save_LastPlayFile(u"/m/a.mp3");
    settings.save_PlaySet();
    EXPECT_TRUE(settings.delete_PlaySet());
    EXPECT_FALSE(registry.hasKey(playSetKey));
    EXPECT_EQ(settings.get_LastPlayFile(), u"/m/a.mp3");
    EXPECT_TRUE(registry.value(identityKey, u"DisplayName").has_value());
}

TEST_F(Writing, DeletingSettingsThatAreNotThereFails) { EXPECT_FALSE(settings.delete_PlaySet()); }

TEST_F(Writing, DeletingFailsWhereTheRegistryRefuses) {
    settings.init_PlaySet();
    registry.failWrites(platform::ERROR_ACCESS_DENIED);
    EXPECT_FALSE(settings.delete_PlaySet());
}

TEST_F(Writing, NoHandleIsLeftOpenByAnyWriter) {
    settings.save_PlaySet();
    settings.save_Lrc_Font(u"Desktop");
    settings.save_LastPlayFile(u"/a");
    settings.save_AutoShowWelcome(u"1");
    EXPECT_EQ(registry.openHandles(), 0U);
}

TEST_F(Writing, NothingIsWrittenByReading) {
    settings.get_PlayMode();
    settings.load_Lrc_Font(u"Desktop");
    settings.load_Language();
    settings.load_Save_Paths();
    EXPECT_THAT(logged(u"set "), IsEmpty());
    EXPECT_THAT(logged(u"create "), IsEmpty());
}

} // namespace
} // namespace velmora
