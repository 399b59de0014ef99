#pragma once

// A list of eight rows, and what the user does to it.

#include "tests/unit/forms/form_fixture.h"

#include <algorithm>

namespace velmora::forms {

class SelectionTest : public FormFixture {
protected:
    ListBox list{form, "list"};
    Log log;

    SelectionTest() {
        for (const char16_t *text : {u"0", u"1", u"2", u"3", u"4", u"5", u"6", u"7"})
            list.addItem(text);
        logEvents(list.on(), "list", log);
    }

    std::vector<int> chosen() const {
        std::vector<int> rows;
        for (int row = 0; row < list.listCount(); ++row)
            if (list.selected(row))
                rows.push_back(row);
        EXPECT_EQ(list.selCount(), static_cast<int>(rows.size()));
        return rows;
    }
    int clicks() const {
        return static_cast<int>(std::count(log.begin(), log.end(), "list click"));
    }
    void userClick(int row, std::int16_t shift = 0) { list.userClicked(row, shift, false); }
    void userDrag(int row, std::int16_t shift = 0) { list.userClicked(row, shift, true); }
};

} // namespace velmora::forms
