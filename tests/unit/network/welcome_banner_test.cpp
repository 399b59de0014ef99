// The rolling banner of the maker's page.

#include "base/run_time_error.h"
#include "tests/unit/network/welcome_fixture.h"

namespace velmora {
namespace {

class Banner : public WelcomeFixture {
protected:
    void startWith(int count, const std::string &entries) {
        start(whole("[Advertising]\nAdvertisingNumbers=" + std::to_string(count) + "\n" + entries));
    }
    forms::Label &label() { return page().Advertising; }
    static constexpr auto standing =
        u"Velmora是一款无需安装的绿色版播放器，它具有强大的媒体播放功能，皮肤精美，"
        u"是不想安装的用户的最佳选择。";
};

TEST_F(Banner, OfNoEntriesIsTheStandingTextWithoutALink) {
    startWith(0, "index_0_Str=a\n");
    EXPECT_EQ(label().caption(), standing);
    EXPECT_EQ(label().tag(), u"");
    tick(200);
    EXPECT_EQ(label().caption(), standing);
}

TEST_F(Banner, OfNoEntriesBehindOneWithALinkLeadsNowhere) {
    startWith(1, "index_0_Str=a\nindex_0_Link=http://a\n");
    ASSERT_EQ(label().tag(), u"http://a");
    page().close_Click();
    startWith(0, "");
    EXPECT_EQ(label().caption(), standing);
    EXPECT_EQ(label().tag(), u"");
}

TEST_F(Banner, OfOneEmptyEntryOrANegativeCountIsTheStandingText) {
    startWith(1, "");
    EXPECT_EQ(label().caption(), standing);
    page().close_Click();
    startWith(-3, "index_0_Str=a\n");
    EXPECT_EQ(label().caption(), standing);
}

TEST_F(Banner, OfANegativeCountKeepsTheStandingTextWhenItHasRunOut) {
    startWith(-3, "index_0_Str=a\n");
    ASSERT_GT(label().width(), page().AdvertisingBOX.width());
    label().setLeft(-(label().width() + 50));
    tick(2);
    EXPECT_GT(label().left(), 0) << "it begins anew";
    EXPECT_EQ(label().caption(), standing);
}

TEST_F(Banner, OfOneEntryShowsItAgainAndAgain) {
    startWith(1, "index_0_Str=a\nindex_0_Link=http://a\n");
    EXPECT_EQ(label().caption(), u"a");
    EXPECT_EQ(label().tag(), u"http://a");
    tick(50);
    EXPECT_EQ(label().caption(), u"a");
    EXPECT_EQ(page().ad_Index, 0);
}

TEST_F(Banner, OfOneEmptyEntryShowsItsEmptyTextOnceTheStandingTextHasRunOut) {
    startWith(1, "");
    ASSERT_GT(label().width(), page().AdvertisingBOX.width());
    label().setLeft(-(label().width() + 50));
    tick();
    EXPECT_EQ(label().caption(), standing);
    tick();
    EXPECT_EQ(label().caption(), u"");
}

TEST_F(Banner, OfACountThatIsNoNumberIsTheStandingText) {
    start(whole("[Advertising]\nAdvertisingNumbers=many\nindex_0_Str=a\n"));
    EXPECT_EQ(label().caption(), standing);
    EXPECT_THROW(page().ad_Items.upperBound(), RunTimeError);
}

TEST_F(Banner, OfOneEntryWithALinkAloneIsShown) {
    startWith(1, "index_0_Link=http://a\n");
    EXPECT_EQ(label().caption(), u"");
    EXPECT_EQ(label().tag(), u"http://a");
}

TEST_F(Banner, LoadedAnewBeginsWithItsFirstEntryAndWaitsItsWholeTime) {
    startWith(2, "index_0_Str=a\nindex_1_Str=b\n");
    tick(70);
    EXPECT_EQ(label().caption(), u"b");
    EXPECT_EQ(page().ad_Index, 2);
    EXPECT_EQ(page().ad_Wait, 20);
    startWith(2, "index_0_Str=a\nindex_1_Str=b\n");
    EXPECT_EQ(label().caption(), u"a");
    EXPECT_EQ(page().ad_Index, 0);
    EXPECT_EQ(page().ad_Wait, 0);
}

TEST_F(Banner, ThatFitsStandsAtTheLeft) {
    startWith(2, "index_0_Str=a\nindex_1_Str=b\n");
    label().setLeft(-300);
    tick();
    EXPECT_EQ(label().left(), 0);
}

TEST_F(Banner, ExactlyAsWideAsItsBoxFits) {
    startWith(2, "index_0_Str=a\nindex_1_Str=b\n");
    label().setWidth(page().AdvertisingBOX.width());
    label().setLeft(-300);
    tick();
    EXPECT_EQ(label().left(), 0);
    EXPECT_EQ(page().ad_Wait, 1);
    label().setWidth(page().AdvertisingBOX.width() + 1);
    tick();
    EXPECT_EQ(label().left(), -50);
    EXPECT_EQ(page().ad_Wait, 1);
}

TEST_F(Banner, WiderThanItsBoxHasRunOutAHundredBehindItsWidth) {
    startWith(1, "index_0_Str=" + std::string(300, 'w') + "\nindex_0_Link=http://a\n");
    label().setLeft(-(label().width() + 49));
    tick();
    EXPECT_EQ(label().left(), -(label().width() + 99));
    EXPECT_EQ(label().tag(), u"http://a");
    label().setLeft(-(label().width() + 50));
    tick();
    EXPECT_EQ(label().tag(), u"1");
}

TEST_F(Banner, WithALinkThatIsANumberStepsOnAtOnce) {
    startWith(2, "index_0_Str=" + std::string(300, 'w') + "\nindex_0_Link=5\nindex_1_Str=" +
                     std::string(300, 'v') + "\nindex_1_Link= 0 \n");
    tick();
    EXPECT_EQ(label().caption().front(), u'v');
    EXPECT_EQ(label().left(), page().AdvertisingBOX.width() + 100);
    tick();
    EXPECT_EQ(label().left(), page().AdvertisingBOX.width() + 50) << "0 is no step";
}

TEST_F(Banner, OfOneWideEntryKeepsItsLinkAgain) {
    startWith(1, "index_0_Str=" + std::string(300, 'w') + "\nindex_0_Link=http://a\n");
    label().setTag(u"1");
    tick();
    EXPECT_EQ(label().tag(), u"http://a");
    EXPECT_EQ(page().ad_Index, 0);
}

TEST_F(Banner, OfTwoEntriesHasAnEmptyPassBehindTheLast) {
    startWith(2, "index_0_Str=a\nindex_0_Link=http://a\nindex_1_Str=b\nindex_1_Link=http://b\n");
    Texts seen;
    for (int i = 0; i < 4; ++i) {
        seen.push_back(label().caption() + u" " + label().tag());
        tick(49);
        EXPECT_EQ(label().caption() + u" " + label().tag(), seen.back()) << "not one tick early";
        tick();
    }
    EXPECT_EQ(seen, (Texts{u"a http://a", u"b http://b", u" http://b", u"a http://a"}));
}

TEST_F(Banner, WiderThanItsBoxRunsOutAtTheLeftAndTheNextComesInFromTheRight) {
    const std::string wide(300, 'w');
    startWith(2, "index_0_Str=" + wide + "\nindex_1_Str=" + wide + "2\nindex_1_Link=http://b\n");
    ASSERT_GT(label().width(), page().AdvertisingBOX.width());
    label().setLeft(0);
    tick();
    EXPECT_EQ(label().left(), -50);
    label().setLeft(-(label().width() + 60));
    tick();
    EXPECT_EQ(label().tag(), u"1");
    tick();
    EXPECT_EQ(label().left(), page().AdvertisingBOX.width() + 100);
    EXPECT_EQ(label().caption().back(), u'2');
    EXPECT_EQ(label().tag(), u"http://b");
    tick();
    EXPECT_EQ(label().left(), page().AdvertisingBOX.width() + 50);
}

TEST_F(Banner, OfTheStandingTextKeepsTheWordsOfItsTag) {
    startWith(0, "");
    label().setCaption(std::u16string(300, u'w'));
    label().setTag(u"1");
    tick();
    EXPECT_EQ(label().tag(), u"0");
    EXPECT_EQ(label().caption(), std::u16string(300, u'w'));
    clickOn(label());
    EXPECT_EQ(opened(), u"") << "the word is no address, and comes to nothing";
}

TEST_F(Banner, OfOneEntryWithoutALinkIsShown) {
    startWith(1, "index_0_Str=a\n");
    EXPECT_EQ(label().caption(), u"a");
    EXPECT_EQ(label().tag(), u"");
}

TEST_F(Banner, ThatHasRunThroughBeginsAnewWithItsFirstEntryAndGoesOnWithItsSecond) {
    startWith(2, "index_0_Str=a\nindex_1_Str=b\n");
    tick(4 * 50);
    EXPECT_EQ(label().caption(), u"b");
    EXPECT_EQ(page().ad_Index, 2);
}

TEST_F(Banner, OfThreeElementsGoesOnToItsThirdAsALinkOfNothing) {
    startWith(1, "index_0_Str=a|■|b\nindex_0_Link=c\n");
    tick(50);
    EXPECT_EQ(label().caption(), u"c");
    EXPECT_EQ(label().tag(), u"");
    EXPECT_EQ(page().ad_Index, 2);
}

TEST_F(Banner, OfMoreElementsThanANumberCountsStaysAtTheLastThatItCounts) {
    startWith(2'000'000'000, "index_0_Str=a\n");
    page().ad_Index = 2'147'483'645;
    tick(50);
    EXPECT_EQ(page().ad_Index, 2'147'483'647);
    tick(50);
    EXPECT_EQ(page().ad_Index, 2'147'483'647);
    page().ad_Index = 2'147'483'646;
    tick(50);
    EXPECT_EQ(page().ad_Index, 2'147'483'646);
}

TEST_F(Banner, DividesEntriesAtTheMarkThatJoinsThem) {
    startWith(1, "index_0_Str=a|■|b\nindex_0_Link=c\n");
    EXPECT_EQ(page().ad_Items.upperBound(), 3);
    EXPECT_EQ(label().tag(), u"b");
}

// What lies between the entries is counted and neither stored nor asked for: with a string for each
// this took gigabytes and minutes.
TEST_F(Banner, OfEntriesFarApartCostsWhatIsThereAlone) {
    startWith(2'000'000'000, "index_0_Str=a\nindex_1999999999_Str=z\nindex_1999999999_Link=end\n");
    EXPECT_EQ(label().caption(), u"a");
    EXPECT_EQ(page().ad_Items.upperBound(), 4'000'000'000);
    EXPECT_EQ(page().ad_Items.at(3'999'999'998), u"z");
    EXPECT_EQ(page().ad_Items.at(3'999'999'999), u"end");
    EXPECT_EQ(page().ad_Items.at(2'000'000'000), u"");
    EXPECT_LT(page().ad_Text.size(), 100U);
}

TEST_F(Banner, OfANumberBeyondTheCountIsNotThere) {
    startWith(2, "index_0_Str=a\nindex_2_Str=c\nindex_2147483647_Str=z\nindex_-1_Str=y\n");
    EXPECT_EQ(page().ad_Items.upperBound(), 4);
    EXPECT_EQ(page().ad_Items.at(0), u"a");
    EXPECT_EQ(page().ad_Items.at(4), u"");
}

// Against the plain way: all entries joined as one text, which is divided at the marks.
TEST_F(Banner, IsDividedAsIfAllWereJoined) {
    const std::vector<std::string> texts = {"",      "a", "a|■",     "|■|",  "■|",
                                            "b|■|c", "|", "x|■|■|y", "|■|■", "■"};
    for (std::size_t seed = 0; seed < 200; ++seed) {
        std::string entries;
        std::u16string joined;
        constexpr std::size_t count = 24;
        for (std::size_t i = 0; i < count; ++i) {
            const bool there = (i + seed) % 11 == 0 || i == seed % 5;
            for (const char *kind : {"_Str", "_Link"}) {
                const std::string &text =
                    texts[(i * 7 + seed * 3 + (kind[1] == 'S' ? 0 : seed)) % texts.size()];
                if (there && !text.empty()) {
                    entries += "index_" + std::to_string(i) + kind + "=" + text + "\n";
                    joined += fromUtf8(text);
                }
                joined += u"|■|";
            }
        }
        startWith(count, entries);
        std::int64_t index = 0;
        for (std::size_t at = 0;; ++index) {
            const std::size_t end = joined.find(u"|■|", at);
            EXPECT_EQ(page().ad_Items.at(index), joined.substr(at, end - at)) << entries;
            if (end == joined.npos)
                break;
            at = end + 3;
        }
        EXPECT_EQ(page().ad_Items.upperBound(), index) << entries;
    }
}

} // namespace
} // namespace velmora
