// Links taken from the text of a page.

#include "network/linkArray.h"
#include "network/linkReader.h"
#include "network/webPage.h"
#include "tests/fakes/fake_platform.h"

#include "base/text.h"

#include <gtest/gtest.h>

#include <ctime>

namespace velmora {
namespace {

class Links : public ::testing::Test {
protected:
    fakes::FakePlatform fake;

    // Every link of a page that begins with something else; "-" for one that yields nothing.
    std::vector<std::u16string> read(const std::u16string &page) {
        std::vector<std::int32_t> positions;
        countText(fake.windows, page, linkMarker, &positions);
        LinkReader reader(page);
        std::vector<std::u16string> links;
        for (const std::int32_t position : positions)
            links.emplace_back(reader.read(position).value_or(u"-"));
        return links;
    }
    using Texts = std::vector<std::u16string>;
};

TEST_F(Links, endAtAQuoteOrABracket) {
    EXPECT_EQ(read(u"<A HREF=\"X/Y\">"), Texts{u"\"X/Y"});
    EXPECT_EQ(read(u"<A HREF='X/Y'>"), Texts{u"'X/Y"});
    EXPECT_EQ(read(u"<A HREF=X/Y>"), Texts{u"X/Y"});
    EXPECT_EQ(read(u"<A HREF=X/Y'Z>"), Texts{u"X/Y"});
}

TEST_F(Links, keepAnOpeningQuoteAtTheirFirstUnitOnly) {
    EXPECT_EQ(read(u"<A HREF=\"\">"), Texts{u"\""});
    EXPECT_EQ(read(u"<A HREF=>X>"), Texts{u">X"});
    EXPECT_EQ(read(u"<A HREF=\"\"\">"), Texts{u"\""});
}

TEST_F(Links, skipFiveUnitsWhateverTheyAre) {
    EXPECT_EQ(read(u"<A HREFXAB>"), Texts{u"AB"});
    // A blank around the equals sign makes the link fail.
    EXPECT_EQ(read(u"<A HREF =\"X\">"), Texts{u"="});
    EXPECT_EQ(read(u"<A HREF= \"X\">"), Texts{u"-"});
}

TEST_F(Links, withAForbiddenSignAreDropped) {
    for (const std::u16string_view sign : {u"+", u"#", u" ", u"MAILTO"}) {
        EXPECT_EQ(read(u"<A HREF=\"X" + std::u16string(sign) + u"Y\">"), Texts{u"-"});
        EXPECT_EQ(read(u"<A HREF=\"X" + std::u16string(sign) + u"\">"), Texts{u"-"});
        EXPECT_EQ(read(u"<A HREF=" + std::u16string(sign) + u"X\">"), Texts{u"-"});
        // Behind the link it does no harm.
        EXPECT_EQ(read(u"<A HREF=\"X\"" + std::u16string(sign)), Texts{u"\"X"});
    }
    EXPECT_EQ(read(u"<A HREF=\"MAILT\"O"), Texts{u"\"MAILT"});
}

TEST_F(Links, withoutAnEndWithin300UnitsYieldNothing) {
    const auto page = [](std::size_t units) {
        return u"<A HREF=" + std::u16string(units, u'X') + u">";
    };
    EXPECT_EQ(read(page(299)), Texts{std::u16string(299, u'X')});
    EXPECT_EQ(read(page(300)), Texts{u"-"});
    EXPECT_EQ(read(u"<A HREF=ABC"), Texts{u"-"});
    EXPECT_EQ(read(u"<A HREF"), Texts{u"-"});
    EXPECT_EQ(read(u"<A HREF="), Texts{u"-"});
    EXPECT_EQ(read(u"<A HREF=\""), Texts{u"-"});
}

TEST_F(Links, atTheFirstUnitOfAPageAreNotCounted) {
    EXPECT_EQ(read(u"HREF=X>HREF=Y>"), Texts{u"Y"});
}

TEST_F(Links, areReadOneAfterTheOtherAlsoWhereTheyOverlap) {
    EXPECT_EQ(read(u" HREF=A>HREF=HREF=B+C>HREF=D>"), (Texts{u"A", u"-", u"-", u"D"}));
    EXPECT_EQ(read(u" HREFHREFHREF=Z>"), (Texts{u"REFHREF=Z", u"REF=Z", u"Z"}));
}

TEST_F(Links, areReadInATimeThatGrowsWithThePageAlone) {
    // Ten million units in which nothing ends, and ten in which each frame ends in one place.
    for (const std::u16string &tail : {std::u16string(u"HREF"), std::u16string(u"HREF>")}) {
        std::u16string page = u" ";
        for (std::size_t i = 0; i < 2'500'000; ++i)
            page.append(i % 74 == 73 ? tail : u"HREF");
        const std::clock_t begin = std::clock(); // the processor's time: others may have it, too
        EXPECT_EQ(read(page).size(), 2'500'000U);
        EXPECT_LT((std::clock() - begin) / CLOCKS_PER_SEC, 20);
    }
}

// --- addresses ----------------------------------------------------------------------------------

TEST_F(Links, countFromTheLastSlashOfThePagesAddress) {
    const auto base = [this](std::u16string address, std::u16string_view after = {}) {
        const std::u16string before = address;
        const std::u16string result = linkBase(fake.windows, address);
        EXPECT_EQ(address, after.empty() ? before : after);
        return result;
    };
    EXPECT_EQ(base(u"http://host/a/b?c"), u"http://host/a/");
    EXPECT_EQ(base(u"http://host", u"http://host/"), u"http://host/");
    EXPECT_EQ(base(u"http://host/"), u"http://host/");
    EXPECT_EQ(base(u"http:\\\\host\\a", u"http://host/a"), u"http://host/");
    EXPECT_EQ(base(u"http://host/m?w=AC/DC"), u"http://host/m?w=AC/");
    EXPECT_EQ(base(u"nothing"), u"");
}

TEST_F(Links, becomeAbsolute) {
    const auto normal = [](std::u16string_view link) { return normalLink(link, u"http://H/p/"); };
    EXPECT_EQ(normal(u"\"HTTP://X/Y"), u"HTTP://X/Y");
    EXPECT_EQ(normal(u"'HTTP://X/Y"), u"HTTP://X/Y");
    EXPECT_EQ(normal(u"JAVASCRIPT:X"), u"JAVASCRIPT:X");
    EXPECT_EQ(normal(u"\"/A/B"), u"http://H/p/A/B");
    EXPECT_EQ(normal(u"\\A"), u"http://H/p/A");
    EXPECT_EQ(normal(u"A/B"), u"http://H/p/a/b"); // lower case without a separator
    EXPECT_EQ(normal(u"?PN=3"), u"http://H/p/?pn=3");
    EXPECT_EQ(normal(u"\""), u"http://H/p/");
    EXPECT_EQ(normal(u"\"\"A"), u"http://H/p/\"a"); // one quote goes
}

// --- arrays -------------------------------------------------------------------------------------

TEST(LinkArrays, knowThatTheyWereNeverAllocated) {
    LinkArray links;
    EXPECT_THROW((void)links.upperBound(), RunTimeError);
    EXPECT_THROW((void)links.at(0), RunTimeError);
    EXPECT_THROW(links.store(0, u"x"), RunTimeError);
    links.resize(1);
    EXPECT_EQ(links.upperBound(), 1);
    links.store(1, u"x");
    EXPECT_THROW(links.store(2, u"y"), RunTimeError);
    EXPECT_THROW((void)links.at(-1), RunTimeError);
    links.resize(3);
    EXPECT_EQ(links.at(1), u"x");
    EXPECT_EQ(links.at(3), u"");
    links.erase();
    EXPECT_THROW((void)links.upperBound(), RunTimeError);
}

} // namespace
} // namespace velmora
