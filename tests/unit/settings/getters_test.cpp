// Reading single values.

#include "tests/unit/settings/settings_fixture.h"

namespace velmora {
namespace {

using testing::ElementsAre;

struct NumberGetter {
    const char16_t *value;
    std::int32_t (setControl::*get)();
};

class ANumberSetting : public SettingsFixture, public testing::WithParamInterface<NumberGetter> {
protected:
    std::int32_t get() { return (settings.*GetParam().get)(); }
    void store(std::u16string_view text) { registry.setText(playSetKey, GetParam().value, text); }
};

INSTANTIATE_TEST_SUITE_P(Each, ANumberSetting,
                         testing::Values(NumberGetter{u"AutoUpadate", &setControl::get_AutoUpdate},
                                         NumberGetter{u"isAutoPlay", &setControl::get_IsAutoPlay},
                                         NumberGetter{u"PlayMode", &setControl::get_PlayMode},
                                         NumberGetter{u"VideoInterface",
                                                      &setControl::get_VideoInterface}));

TEST_P(ANumberSetting, IsItsDecimalText) {
    store(u"1");
    EXPECT_EQ(get(), 1);
    store(u"2");
    EXPECT_EQ(get(), 2);
}

TEST_P(ANumberSetting, IsZeroWhenMissing) { EXPECT_EQ(get(), 0); }

TEST_P(ANumberSetting, TakesTheLeadingNumberAndIgnoresTheRest) {
    store(u" 2abc");
    EXPECT_EQ(get(), 2);
    store(u"abc");
    EXPECT_EQ(get(), 0);
    store(u"");
    EXPECT_EQ(get(), 0);
}

TEST_P(ANumberSetting, IsRoundedHalfToEven) {
    store(u"0.5");
    EXPECT_EQ(get(), 0);
    store(u"1.5");
    EXPECT_EQ(get(), 2);
    store(u"2.5");
    EXPECT_EQ(get(), 2);
}

TEST_P(ANumberSetting, IsZeroWhenTheNumberIsTooWide) {
    store(u"3000000000");
    EXPECT_EQ(get(), 0);
    store(std::u16string(400, u'9'));
    EXPECT_EQ(get(), 0);
}

TEST_P(ANumberSetting, MayBeNegative) {
    store(u"-1");
    EXPECT_EQ(get(), -1);
}

TEST_P(ANumberSetting, IsZeroWhenTheValueHasAnotherType) {
    registry.setNumber(playSetKey, GetParam().value, 1);
    EXPECT_EQ(get(), 0);
}

TEST_P(ANumberSetting, IsZeroWithoutTheProvider) {
    store(u"1");
    registry.setProviderMissing(true);
    EXPECT_EQ(get(), 0);
}

TEST_P(ANumberSetting, IsReadAnewAtEachCallThroughAFreshProvider) {
    store(u"1");
    EXPECT_EQ(get(), 1);
    store(u"0");
    EXPECT_EQ(get(), 0);
    const std::u16string read = u"read " + std::u16string(playSetKey) + u" " + GetParam().value;
    EXPECT_THAT(registry.log(), ElementsAre(u"provider", read, u"provider", read));
}

TEST_P(ANumberSetting, IsAskedOfTheProviderByItsMoniker) {
    get();
    EXPECT_THAT(registry.monikers(),
                ElementsAre(u"winmgmts:{impersonationLevel=impersonate}!\\\\.\\root\\default:"
                            u"StdRegProv"));
}

// --- folders -------------------------------------------------------------------------------------

struct FolderGetter {
    const char16_t *value;
    std::u16string (setControl::*get)();
    std::u16string setControl::*otherwise;
};

class AFolderSetting : public SettingsFixture, public testing::WithParamInterface<FolderGetter> {
protected:
    // In steps: the sanitizer of this compiler mistakes the whole expression for another object's.
    std::u16string get() {
        setControl &control = settings;
        const auto getter = GetParam().get;
        return (control.*getter)();
    }
};

INSTANTIATE_TEST_SUITE_P(
    Each, AFolderSetting,
    testing::Values(FolderGetter{u"LrcSaveFolder", &setControl::get_LrcSaveFolder,
                                 &setControl::Path_Lrc},
                    FolderGetter{u"PlayListSaveFolder", &setControl::get_PlayListSaveFolder,
                                 &setControl::Path_List},
                    FolderGetter{u"PlayCacheSaveFolder", &setControl::get_PlayCacheSaveFolder,
                                 &setControl::Path_Cache}));

TEST_P(AFolderSetting, IsTheTextAsItIs) {
    registry.setText(playSetKey, GetParam().value, u" /my songs/é/ ");
    EXPECT_EQ(get(), u" /my songs/é/ ");
}

TEST_P(AFolderSetting, IsTheVariableWhenMissing) {
    settings.*GetParam().otherwise = u"/now";
    EXPECT_EQ(get(), u"/now");
}

TEST_P(AFolderSetting, IsTheVariableWithoutTheProvider) {
    registry.setText(playSetKey, GetParam().value, u"/stored");
    registry.setProviderMissing(true);
    settings.*GetParam().otherwise = u"/now";
    EXPECT_EQ(get(), u"/now");
}

TEST_P(AFolderSetting, IsTheVariableWhenTheValueHasAnotherType) {
    registry.setNumber(playSetKey, GetParam().value, 7);
    settings.*GetParam().otherwise = u"/now";
    EXPECT_EQ(get(), u"/now");
}

TEST_P(AFolderSetting, MayBeEmpty) {
    registry.setText(playSetKey, GetParam().value, u"");
    settings.*GetParam().otherwise = u"/now";
    EXPECT_EQ(get(), u"");
}

TEST_P(AFolderSetting, EndsAtItsFirstNul) {
    registry.setText(playSetKey, GetParam().value, std::u16string(u"/a\0b", 4));
    EXPECT_EQ(get(), u"/a");
}

// --- the rest ------------------------------------------------------------------------------------

using Getters = SettingsFixture;

TEST_F(Getters, TheWelcomePageShowsOnAnyNumberButZero) {
    EXPECT_FALSE(settings.get_AutoShowWelcome());
    registry.setText(playSetKey, u"AutoShowWelcome", u"1");
    EXPECT_TRUE(settings.get_AutoShowWelcome());
    registry.setText(playSetKey, u"AutoShowWelcome", u"-1");
    EXPECT_TRUE(settings.get_AutoShowWelcome());
    registry.setText(playSetKey, u"AutoShowWelcome", u"0");
    EXPECT_FALSE(settings.get_AutoShowWelcome());
    registry.setText(playSetKey, u"AutoShowWelcome", u"True");
    EXPECT_FALSE(settings.get_AutoShowWelcome());
}

TEST_F(Getters, TheLastFileIsEmptyWhenThereIsNone) {
    EXPECT_EQ(settings.get_LastPlayFile(), u"");
    registry.setProviderMissing(true);
    EXPECT_EQ(settings.get_LastPlayFile(), u"");
}

TEST_F(Getters, TheLastFileLiesInAKeyOfItsOwn) {
    registry.setText(parametersKey, u"lastPlayFileName", u"/m/晚霞.mp3");
    EXPECT_EQ(settings.get_LastPlayFile(), u"/m/晚霞.mp3");
}

TEST_F(Getters, TheLanguageComesFromTheRegistry) {
    registry.setText(playSetKey, u"Language", u"2");
    settings.load_Language();
    EXPECT_EQ(settings.Language_Index, 2);
}

TEST_F(Getters, TheLanguageOfTheSettingsWindowHoldsWhereNoneIsStored) {
    settings.Language = 3;
    settings.load_Language();
    EXPECT_EQ(settings.Language_Index, 3);
    registry.setText(playSetKey, u"Language", u"99999999999");
    settings.Language_Index = 0;
    settings.load_Language();
    EXPECT_EQ(settings.Language_Index, 3);
}

TEST_F(Getters, TheLanguagesRangeIsNotChecked) {
    registry.setText(playSetKey, u"Language", u"7");
    settings.load_Language();
    EXPECT_EQ(settings.Language_Index, 7);
    EXPECT_TRUE(app.Language().msg_Error.empty());
    EXPECT_TRUE(app.Language().msg_Already_Running.empty());
}

TEST_F(Getters, LoadingALanguageAppliesItEvenAfterAFailure) {
    settings.Language = 1;
    registry.setProviderMissing(true);
    settings.load_Language();
    EXPECT_EQ(app.Language().msg_Error, u"Error");
}

TEST_F(Getters, EachReadingRoutineFetchesTheProviderAnew) {
    const std::function<void()> routines[] = {
        [this] { settings.get_LrcSaveFolder(); },
        [this] { settings.get_PlayListSaveFolder(); },
        [this] { settings.get_PlayCacheSaveFolder(); },
        [this] { settings.get_LastPlayFile(); },
        [this] { settings.get_AutoShowWelcome(); },
        [this] { settings.load_Language(); },
        [this] { settings.load_Lrc_Font(u"Desktop"); },
        [this] { settings.load_Lrc_Font(u"Other"); },
        [this] { settings.get_MakerHost(); },
        [this] { settings.get_MakerPin(); },
    };
    settings.get_PlayMode();
    for (const auto &routine : routines) {
        registry.clearLog();
        routine();
        EXPECT_EQ(registry.log().front(), u"provider");
        EXPECT_EQ(logged(u"provider").size(), 1U);
    }
}

TEST_F(Getters, EachHostHasItsValueAndIsReadAnew) {
    registry.setText(hostsKey, u"lrcSearch", u"http://search:81");
    registry.setText(hostsKey, u"lrcSiteA", u"http://a");
    registry.setText(hostsKey, u"lrcSiteB", u"http://b");
    registry.setText(hostsKey, u"songSearch", u"http://songs");
    registry.setText(hostsKey, u"maker", u"http://maker");
    EXPECT_EQ(settings.get_LrcSearchHost(), u"http://search:81");
    EXPECT_EQ(settings.get_LrcSiteAHost(), u"http://a");
    EXPECT_EQ(settings.get_LrcSiteBHost(), u"http://b");
    EXPECT_EQ(settings.get_SongSearchHost(), u"http://songs");
    EXPECT_EQ(settings.get_MakerHost(), u"http://maker");
    registry.setText(hostsKey, u"maker", u"http://other");
    EXPECT_EQ(settings.get_MakerHost(), u"http://other");
}

TEST_F(Getters, AHostThatIsNotSetIsEmpty) {
    EXPECT_EQ(settings.get_MakerHost(), u"");
    registry.setProviderMissing(true);
    EXPECT_EQ(settings.get_LrcSearchHost(), u"");
}

TEST_F(Getters, TheMakersKeyIsReadAnewAsItStands) {
    EXPECT_EQ(settings.get_MakerPin(), u"");
    registry.setText(hostsKey, u"makerPin", u"sha256//abc/=");
    EXPECT_EQ(settings.get_MakerPin(), u"sha256//abc/=");
    registry.setProviderMissing(true);
    EXPECT_EQ(settings.get_MakerPin(), u"");
}

TEST_F(Getters, AHostHasNoSlashAtItsEnd) {
    registry.setText(hostsKey, u"maker", u"http://maker//");
    EXPECT_EQ(settings.get_MakerHost(), u"http://maker");
}

} // namespace
} // namespace velmora
