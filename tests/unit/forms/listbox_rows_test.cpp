#include "tests/unit/forms/form_fixture.h"

#include <algorithm>
#include <chrono>
#include <random>

namespace velmora::forms {

using ::testing::IsEmpty;
using ::testing::SizeIs;

class ListRowsTest : public FormFixture {
protected:
    ListBox list{form, "list"};

    void fill(int rows) {
        for (int row = 0; row < rows; ++row)
            list.addItem(u"row " + decimalText(row));
    }
    static std::u16string decimalText(int number) { return fromAscii(std::to_string(number)); }

    std::vector<std::u16string> rows() const {
        std::vector<std::u16string> texts;
        for (int row = 0; row < list.listCount(); ++row)
            texts.push_back(list.list(row));
        return texts;
    }
};

TEST_F(ListRowsTest, RowsAreAddedAtTheEndOrBeforeARow) {
    list.addItem(u"b");
    list.addItem(u"d");
    list.addItem(u"a", 0);
    list.addItem(u"c", 2);
    list.addItem(u"e", 4);
    EXPECT_EQ(rows(), (std::vector<std::u16string>{u"a", u"b", u"c", u"d", u"e"}));
}

TEST_F(ListRowsTest, ReadingOutOfRangeGivesTheEmptyText) {
    list.addItem(u"a");
    EXPECT_EQ(list.list(-1), u"");
    EXPECT_EQ(list.list(1), u"");
    EXPECT_EQ(list.list(100'000), u"");
}

TEST_F(ListRowsTest, WritingAndRemovingOutOfRangeRaise) {
    list.addItem(u"a");
    EXPECT_EQ(errorOf([&] { list.setList(1, u"x"); }), invalidCall);
    EXPECT_EQ(errorOf([&] { list.setList(-1, u"x"); }), invalidCall);
    EXPECT_EQ(errorOf([&] { list.removeItem(1); }), invalidCall);
    EXPECT_EQ(errorOf([&] { list.removeItem(-1); }), invalidCall);
    EXPECT_EQ(errorOf([&] { list.addItem(u"x", 2); }), invalidCall);
    EXPECT_EQ(errorOf([&] { list.addItem(u"x", -1); }), invalidCall);
    EXPECT_EQ(rows(), std::vector<std::u16string>{u"a"});
}

TEST_F(ListRowsTest, OneRowMoreThan32767RaisesOverflowAndAddsNothing) {
    for (int row = 0; row < 32'767; ++row)
        list.addItem(u"x");
    EXPECT_EQ(errorOf([&] { list.addItem(u"one too many"); }), overflow);
    EXPECT_EQ(errorOf([&] { list.addItem(u"one too many", 0); }), overflow);
    EXPECT_EQ(list.listCount(), 32'767);
    EXPECT_EQ(list.find(u"one too many"), -1);
    list.removeItem(0);
    EXPECT_EQ(errorOf([&] { list.addItem(u"fits again"); }), 0);
}

TEST_F(ListRowsTest, ClearTakesEverything) {
    list.setMultiSelect(true);
    fill(40);
    list.setSelected(3, true);
    list.setTopIndex(20);
    list.clear();
    EXPECT_EQ(list.listCount(), 0);
    EXPECT_EQ(list.listIndex(), -1);
    EXPECT_EQ(list.topIndex(), 0);
    EXPECT_EQ(list.selCount(), 0);
    EXPECT_EQ(list.find(u"row 3"), -1);
}

TEST_F(ListRowsTest, ChangesOfRowsAreToldAndUnchangedTextsAreNot) {
    auto &window = shown();
    list.addItem(u"a");
    list.setList(0, u"b");
    list.setList(0, u"b");
    list.removeItem(0);
    list.clear();
    ASSERT_THAT(window.told, SizeIs(3));
    for (const auto &told : window.told)
        EXPECT_EQ(told.change, Change::Rows);
}

TEST_F(ListRowsTest, ATextHandedOutStaysWhileRowsComeAndGo) {
    list.addItem(u"kept");
    const std::u16string &text = list.list(0);
    for (int i = 0; i < 1000; ++i)
        list.addItem(u"before", 0);
    EXPECT_EQ(&text, &list.list(1000));
    EXPECT_EQ(text, u"kept");
}

TEST_F(ListRowsTest, FindIsExact) {
    list.addItem(u"/music/A.mp3");
    EXPECT_EQ(list.find(u"/music/A.mp3"), 0);
    EXPECT_EQ(list.find(u"/music/a.mp3"), -1);
    EXPECT_EQ(list.find(u"/music/A.mp"), -1);
    EXPECT_EQ(list.find(u""), -1);
    EXPECT_TRUE(list.contains(u"/music/A.mp3"));
    EXPECT_FALSE(list.contains(u""));
}

TEST_F(ListRowsTest, FindGivesTheLowestOfEqualRows) {
    for (const char16_t *text : {u"x", u"same", u"y", u"same", u"same"})
        list.addItem(text);
    EXPECT_EQ(list.find(u"same"), 1);
    list.removeItem(1);
    EXPECT_EQ(list.find(u"same"), 2);
    list.addItem(u"same", 0);
    EXPECT_EQ(list.find(u"same"), 0);
    list.setList(0, u"other");
    EXPECT_EQ(list.find(u"same"), 3);
    list.removeItem(3);
    EXPECT_EQ(list.find(u"same"), 3);
    list.removeItem(3);
    EXPECT_EQ(list.find(u"same"), -1);
}

TEST_F(ListRowsTest, FindAndContainsFollowEveryChange) {
    std::mt19937 random(7);
    std::vector<std::u16string> model;
    EXPECT_FALSE(list.contains(u"builds the index"));
    for (int step = 0; step < 6000; ++step) {
        const auto pick = [&](std::size_t limit) {
            return std::uniform_int_distribution<std::size_t>(0, limit)(random);
        };
        const std::u16string text = decimalText(static_cast<int>(pick(60)));
        const std::size_t action = pick(9);
        if (action < 5 || model.empty()) {
            const std::size_t at = pick(model.size());
            model.insert(model.begin() + static_cast<std::ptrdiff_t>(at), text);
            list.addItem(text, static_cast<std::int32_t>(at));
        } else if (action < 8) {
            const std::size_t at = pick(model.size() - 1);
            model.erase(model.begin() + static_cast<std::ptrdiff_t>(at));
            list.removeItem(static_cast<std::int32_t>(at));
        } else {
            const std::size_t at = pick(model.size() - 1);
            model[at] = text;
            list.setList(static_cast<std::int32_t>(at), text);
        }
        const auto expected = std::find(model.begin(), model.end(), text);
        ASSERT_EQ(list.find(text), expected == model.end() ? -1 : expected - model.begin())
            << "step " << step;
        ASSERT_EQ(list.contains(text), expected != model.end()) << "step " << step;
    }
    EXPECT_EQ(rows(), model);
}

// Quadratic hashing or searching would take minutes here, not the limit's seconds.
TEST_F(ListRowsTest, ABigListIsFilledSearchedAndEmptiedInReasonableTime) {
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_FALSE(list.contains(u"builds the index"));
    for (int row = 0; row < 32'000; ++row) {
        const std::u16string path =
            u"/home/someone/Music/a long folder name/" + decimalText(row) + u".mp3";
        if (!list.contains(path))
            list.addItem(path);
    }
    for (int row = 0; row < 32'000; ++row)
        ASSERT_TRUE(list.contains(list.list(row)));
    while (list.listCount() > 0)
        list.removeItem(list.listCount() / 2);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(90));
}

TEST_F(ListRowsTest, ManyEqualRowsAreNoTrap) {
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_FALSE(list.contains(u"builds the index"));
    for (int row = 0; row < 32'000; ++row)
        list.addItem(u"the same");
    while (list.listCount() > 0) {
        ASSERT_TRUE(list.contains(u"the same"));
        list.removeItem(list.listCount() - 1);
    }
    EXPECT_FALSE(list.contains(u"the same"));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
}

// --- the current row -------------------------------------------------------------------

TEST_F(ListRowsTest, TheCurrentRowIsNoneUntilOneIsChosen) {
    fill(3);
    EXPECT_EQ(list.listIndex(), -1);
}

TEST_F(ListRowsTest, TheCurrentRowFollowsItsRowOnInsertionAbove) {
    list.setMultiSelect(true);
    fill(5);
    list.setSelected(2, true);
    list.addItem(u"above", 0);
    EXPECT_EQ(list.listIndex(), 3);
    list.addItem(u"at its place", 3);
    EXPECT_EQ(list.listIndex(), 4);
    list.addItem(u"below", 5);
    EXPECT_EQ(list.listIndex(), 4);
    EXPECT_EQ(list.list(4), u"row 2");
    EXPECT_TRUE(list.selected(4));
}

TEST_F(ListRowsTest, TheCurrentRowFollowsItsRowOnRemovalAbove) {
    list.setMultiSelect(true);
    fill(5);
    list.setSelected(3, true);
    list.removeItem(0);
    EXPECT_EQ(list.listIndex(), 2);
    list.removeItem(4 - 1);
    EXPECT_EQ(list.listIndex(), 2);
    EXPECT_EQ(list.list(2), u"row 3");
}

TEST_F(ListRowsTest, WhenTheCurrentRowGoesTheNextOneIsCurrentAndNotSelected) {
    list.setMultiSelect(true);
    fill(5);
    list.setSelected(2, true);
    list.removeItem(2);
    EXPECT_EQ(list.listIndex(), 2);
    EXPECT_EQ(list.list(2), u"row 3");
    EXPECT_FALSE(list.selected(2));
    EXPECT_EQ(list.selCount(), 0);
}

TEST_F(ListRowsTest, WhenTheLastRowGoesWhileCurrentNoneIs) {
    fill(3);
    list.setListIndex(2);
    list.removeItem(2);
    EXPECT_EQ(list.listIndex(), -1);
}

TEST_F(ListRowsTest, RemovingARowKeepsTheOthersSelection) {
    list.setMultiSelect(true);
    fill(5);
    list.setSelected(1, true);
    list.setSelected(3, true);
    list.removeItem(1);
    EXPECT_EQ(list.selCount(), 1);
    EXPECT_TRUE(list.selected(2));
    EXPECT_EQ(list.firstSelected(), 2);
}

// --- the top row -----------------------------------------------------------------------

TEST_F(ListRowsTest, TheTopRowLiesIn0ToRowsLessThoseThatFit) {
    list.setDesignRows(17);
    fill(40);
    list.setTopIndex(100);
    EXPECT_EQ(list.topIndex(), 23);
    list.setTopIndex(-5);
    EXPECT_EQ(list.topIndex(), 0);
    list.setTopIndex(10);
    EXPECT_EQ(list.topIndex(), 10);
}

TEST_F(ListRowsTest, AShortListStaysAtItsTop) {
    fill(10);
    list.setTopIndex(5);
    EXPECT_EQ(list.topIndex(), 0);
}

TEST_F(ListRowsTest, TheTopRowIsHeldInRangeWhenRowsGo) {
    fill(40);
    list.setTopIndex(23);
    for (int i = 0; i < 10; ++i)
        list.removeItem(0);
    EXPECT_EQ(list.topIndex(), 13);
}

TEST_F(ListRowsTest, ScrollingIsToldOnceForEachNewTop) {
    fill(40);
    auto &window = shown();
    list.setTopIndex(3);
    list.setTopIndex(3);
    list.userScrolled(3);
    ASSERT_THAT(window.told, SizeIs(1));
    EXPECT_EQ(window.told[0].change, Change::Scroll);
}

TEST_F(ListRowsTest, EnsureVisibleScrollsTheLeast) {
    fill(40);
    list.ensureVisible(16);
    EXPECT_EQ(list.topIndex(), 0);
    list.ensureVisible(17);
    EXPECT_EQ(list.topIndex(), 1);
    list.ensureVisible(39);
    EXPECT_EQ(list.topIndex(), 23);
    list.ensureVisible(23);
    EXPECT_EQ(list.topIndex(), 23);
    list.ensureVisible(5);
    EXPECT_EQ(list.topIndex(), 5);
    list.ensureVisible(99);
    EXPECT_EQ(list.topIndex(), 5);
}

TEST_F(ListRowsTest, TheRowHeightIsTheDesignHeightByTheDesignRows) {
    list.setHeight(3400);
    list.setDesignRows(17);
    EXPECT_EQ(list.rowHeight(), 200);
    list.setHeight(1700);
    EXPECT_EQ(list.rowHeight(), 200);
}

TEST_F(ListRowsTest, OneDesignRowIsTheWholeHeightAndNoneIsRefused) {
    list.setHeight(3400);
    list.setDesignRows(1);
    EXPECT_EQ(list.designRows(), 1);
    EXPECT_EQ(list.rowHeight(), 3400);
    list.setDesignRows(0);
    EXPECT_EQ(list.designRows(), 1);
}

TEST_F(ListRowsTest, WithoutDesignRowsOfItsOwnTheRowHeightIsOfItsHeight) {
    list.setHeight(1700);
    EXPECT_EQ(list.rowHeight(), 100);
}

TEST_F(ListRowsTest, DesignRowsAreToldTakenForANewHeightAndScrollBackWhatTheyLeaveNoRoomFor) {
    fill(40);
    list.setHeight(3400);
    list.setDesignRows(17);
    list.setTopIndex(23);
    auto &window = shown();
    list.setDesignRows(17);
    EXPECT_THAT(window.told, IsEmpty());
    list.setDesignRows(20);
    EXPECT_EQ(list.topIndex(), 20);
    ASSERT_THAT(window.told, SizeIs(1));
    EXPECT_EQ(window.told[0].change, Change::Look);
    list.setHeight(4000);
    list.setDesignRows(20);
    EXPECT_EQ(list.rowHeight(), 200);
}

TEST_F(ListRowsTest, TheUserScrollsItUnlessItIsDisabled) {
    fill(40);
    list.userScrolled(3);
    EXPECT_EQ(list.topIndex(), 3);
    list.setEnabled(false);
    list.userScrolled(5);
    EXPECT_EQ(list.topIndex(), 3);
}

TEST_F(ListRowsTest, AnEmptyListHasNoRowToSelect) {
    EXPECT_THAT(rows(), IsEmpty());
    EXPECT_EQ(list.firstSelected(), -1);
    EXPECT_FALSE(list.selected(0));
}

} // namespace velmora::forms
