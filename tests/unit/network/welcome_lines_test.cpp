// The lines of the tabs of the maker's page.

#include "tests/unit/network/welcome_fixture.h"

namespace velmora {
namespace {

class WelcomeLines : public WelcomeFixture {};

TEST_F(WelcomeLines, ARetryAndASecondOpeningMeetTheLinesThatExistAndFail) {
    const std::string two = whole("[databases]\ndatabases_0_Ubound=2\ndatabases_0_0_Str=a\n"
                                  "databases_0_1_Str=b\n");
    start(two);
    EXPECT_FALSE(page().load_Failed);
    page().close_Click();
    start(two);
    EXPECT_TRUE(page().load_Failed);
    clickOn(page().loadStr);
    EXPECT_TRUE(page().load_Failed);
    page().load_Failed = false;
    fake.internet.log.clear();
    clickOn(page().loadStr);
    EXPECT_TRUE(fake.internet.log.empty()) << "nothing failed, so nothing is tried again";
}

TEST_F(WelcomeLines, OfOneLineATabOpensAsOftenAsOneLikes) {
    const std::string one = whole("[databases]\ndatabases_0_Ubound=1\ndatabases_0_0_Str=a\n");
    start(one);
    page().close_Click();
    start(one);
    EXPECT_FALSE(page().load_Failed);
}

TEST_F(WelcomeLines, WithACountBeyondTheDataStopsAtItsEnd) {
    start(whole("[databases]\ndatabases_0_Ubound=20000\ndatabases_0_0_Str=a\n"
                "databases_0_2_Link=http://c\n"));
    EXPECT_FALSE(page().load_Failed);
    EXPECT_EQ(lines(page().FrameDate_0).size(), 3U);
    page().close_Click();
    start(whole("[databases]\ndatabases_0_Ubound=4\ndatabases_0_0_Str=a\n"));
    EXPECT_TRUE(page().load_Failed) << "the empty lines are there, too";
}

TEST_F(WelcomeLines, EmptyLinesBehindTheDataAreThereForALaterLoadToMeet) {
    start(whole("[databases]\ndatabases_0_Ubound=500\ndatabases_0_0_Str=a\n"));
    EXPECT_FALSE(page().load_Failed);
    start(whole("[databases]\ndatabases_0_Ubound=2\ndatabases_0_0_Str=a\n"
                "databases_0_1_Str=b\n"));
    EXPECT_TRUE(page().load_Failed);
}

TEST_F(WelcomeLines, ACountOfOneWithoutDataMeetsNone) {
    const std::string empty = whole("[databases]\ndatabases_0_Ubound=1\n"
                                    "databases_1_Ubound=1\ndatabases_1_0_Str=c\n");
    start(whole("[databases]\ndatabases_0_Ubound=2\ndatabases_0_0_Str=a\n"
                "databases_0_1_Str=b\n"));
    page().close_Click();
    start(empty);
    EXPECT_FALSE(page().load_Failed) << "line 0 is the window's own";
    EXPECT_EQ(page().databases_1_0.caption(), u"c");
}

TEST_F(WelcomeLines, TakesAsManyLinesAsAnArrayHas) {
    start(whole("[databases]\ndatabases_0_Ubound=32768\ndatabases_0_0_Str=a\n"));
    EXPECT_FALSE(page().load_Failed);
    page().close_Click();
    start(whole("[databases]\ndatabases_1_Ubound=32769\ndatabases_1_0_Str=a\n"));
    EXPECT_TRUE(page().load_Failed);
}

TEST_F(WelcomeLines, CountsNoLineForAKeyThatIsNeitherTextNorLink) {
    start(whole("[databases]\ndatabases_0_Ubound=9\ndatabases_0_0_Str=a\ndatabases_0_7_Icon=b\n"));
    EXPECT_FALSE(page().load_Failed);
    EXPECT_EQ(lines(page().FrameDate_0).size(), 1U);
}

TEST_F(WelcomeLines, AsksForTheLinesOfItsThreeTabsAlone) {
    start(whole("[databases]\ndatabases_0_Ubound=1\ndatabases_0_0_Str=a\n"
                "databases_3_Ubound=2\ndatabases_3_0_Str=b\ndatabases_3_1_Str=c\n"));
    EXPECT_FALSE(page().load_Failed);
    EXPECT_TRUE(page().FrameDate_0.visible());
}

TEST_F(WelcomeLines, WithoutDataForItsCountOpens) {
    start(whole("[databases]\ndatabases_0_Ubound=2\n"));
    EXPECT_FALSE(page().load_Failed);
    EXPECT_EQ(lines(page().FrameDate_0).size(), 1U);
}

TEST_F(WelcomeLines, OfOneLineMeetsNoneThatALongerOneLeft) {
    start(whole("[databases]\ndatabases_0_Ubound=2\ndatabases_0_0_Str=a\ndatabases_0_1_Str=b\n"));
    start(whole("[databases]\ndatabases_0_Ubound=1\ndatabases_0_0_Str=c\n"));
    EXPECT_FALSE(page().load_Failed);
    EXPECT_EQ(page().databases_0_0.caption(), u"c");
}

TEST_F(WelcomeLines, OfTwoLinesMeetsTheSecondOfAnotherAlthoughItsOwnIsEmpty) {
    start(whole("[databases]\ndatabases_0_Ubound=2\ndatabases_0_0_Str=a\ndatabases_0_1_Str=b\n"));
    start(whole("[databases]\ndatabases_0_Ubound=2\ndatabases_0_0_Str=c\n"));
    EXPECT_TRUE(page().load_Failed);
}

TEST_F(WelcomeLines, WithMoreLinesThanAnArrayTakesFails) {
    start(whole("[databases]\ndatabases_0_Ubound=2000000000\ndatabases_0_0_Str=a\n"
                "[Advertising]\nAdvertisingNumbers=2000000000\nindex_0_Str=x\n"));
    EXPECT_TRUE(page().load_Failed);
    EXPECT_EQ(lines(page().FrameDate_0).size(), 1U);
    EXPECT_EQ(page().ad_Items.upperBound(), 4'000'000'000);
}

} // namespace
} // namespace velmora
