// The keys in a list box.

#include "tests/unit/forms/selection_fixture.h"

namespace velmora::forms {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(SelectionTest, KeysSelectAloneAndShiftExtends) {
    list.setMultiSelect(true);
    list.userMoved(2, 0);
    list.userMoved(3, shiftMask);
    list.userMoved(4, shiftMask);
    EXPECT_THAT(chosen(), ElementsAre(2, 3, 4));
    list.userMoved(5, 0);
    EXPECT_THAT(chosen(), ElementsAre(5));
    EXPECT_EQ(clicks(), 4);
}

TEST_F(SelectionTest, KeysWithCtrlMoveTheCurrentRowAlone) {
    list.setMultiSelect(true);
    userClick(2);
    list.userMoved(5, ctrlMask);
    EXPECT_EQ(list.listIndex(), 5);
    EXPECT_THAT(chosen(), ElementsAre(2));
    EXPECT_EQ(clicks(), 1);
}

TEST_F(SelectionTest, KeysWithShiftKeepTheOthersWithCtrlAlone) {
    list.setMultiSelect(true);
    userClick(0);
    userClick(6, ctrlMask);
    list.userMoved(5, static_cast<std::int16_t>(shiftMask | ctrlMask));
    EXPECT_THAT(chosen(), ElementsAre(0, 5, 6));
    list.userMoved(4, shiftMask);
    EXPECT_THAT(chosen(), ElementsAre(4, 5, 6));
}

TEST_F(SelectionTest, AKeyAloneSetsTheRowThatShiftStartsAt) {
    list.setMultiSelect(true);
    userClick(0);
    list.userMoved(3, 0);
    userClick(5, shiftMask);
    EXPECT_THAT(chosen(), ElementsAre(3, 4, 5));
}

TEST_F(SelectionTest, KeysWithCtrlBringTheCurrentRowIntoView) {
    list.setMultiSelect(true);
    for (int i = 0; i < 40; ++i)
        list.addItem(u"more");
    list.userMoved(40, ctrlMask);
    EXPECT_EQ(list.topIndex(), 24);
}

TEST_F(SelectionTest, KeysBeyondTheEndsStopAtThem) {
    list.userMoved(100, 0);
    EXPECT_EQ(list.listIndex(), 7);
    list.userMoved(-3, 0);
    EXPECT_EQ(list.listIndex(), 0);
}

TEST_F(SelectionTest, KeysInAnEmptyListDoNothing) {
    list.clear();
    log.clear();
    list.userMoved(0, 0);
    EXPECT_EQ(list.listIndex(), -1);
    EXPECT_THAT(log, IsEmpty());
}

} // namespace velmora::forms
