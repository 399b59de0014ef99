// Selection, current row, scrolling and the user's input of a list box.

#include "platform/forms/listbox.h"

#include "platform/forms/dispatch.h"

#include <algorithm>

namespace velmora::forms {

namespace {

std::int16_t narrow(std::int64_t row) noexcept { return static_cast<std::int16_t>(row); }

} // namespace

bool ListBox::selected(std::int32_t row) const noexcept {
    return has(row) && rows_[static_cast<std::size_t>(row)].selected;
}

void ListBox::mark(std::int32_t row, bool selected) noexcept {
    bool &flag = at(row).selected;
    if (flag != selected) {
        flag = selected;
        selCount_ = narrow(selCount_ + (selected ? 1 : -1));
    }
}

void ListBox::markOnly(std::int32_t first, std::int32_t last) noexcept {
    for (std::int32_t row = 0; row < listCount(); ++row)
        mark(row, row >= first && row <= last);
}

void ListBox::setSelected(std::int32_t row, bool selected) {
    if (!has(row))
        raise(ErrorNumber::InvalidCall);
    if (selected && !multiSelect_)
        ensureVisible(row);
    const bool isNew = at(row).selected != selected;
    const bool moves = selected && listIndex_ != row;
    if (!isNew && !moves)
        return;
    if (selected && !multiSelect_)
        markOnly(row, row);
    else
        mark(row, selected);
    if (selected) {
        listIndex_ = narrow(row);
        anchor_ = listIndex_;
    }
    changed(Change::Selection);
    if (selected && !multiSelect_)
        raiseClick();
}

std::int16_t ListBox::firstSelected() const noexcept {
    if (selCount_ == 0)
        return -1;
    const auto found =
        std::find_if(rows_.begin(), rows_.end(), [](const Row &row) { return row.selected; });
    return narrow(found - rows_.begin());
}

void ListBox::setListIndex(std::int32_t row) {
    if (row < -1 || row >= listCount())
        raise(ErrorNumber::InvalidPropertyValue);
    if (!multiSelect_)
        ensureVisible(row);
    if (listIndex_ == row)
        return;
    listIndex_ = narrow(row);
    anchor_ = listIndex_;
    if (!multiSelect_)
        markOnly(row, row);
    changed(Change::Selection);
    if (row >= 0)
        raiseClick();
}

void ListBox::clampTop() noexcept {
    const int most = std::max(0, listCount() - designRows_);
    topIndex_ = narrow(std::clamp<int>(topIndex_, 0, most));
}

void ListBox::setTopIndex(std::int32_t row) {
    const std::int16_t before = topIndex_;
    const std::int32_t most = std::max(0, listCount() - designRows_);
    topIndex_ = narrow(std::clamp(row, 0, most));
    if (topIndex_ != before)
        changed(Change::Scroll);
}

void ListBox::ensureVisible(std::int32_t row) {
    if (!has(row))
        return;
    if (row < topIndex_)
        setTopIndex(row);
    else if (row >= topIndex_ + designRows_)
        setTopIndex(row - designRows_ + 1);
}

void ListBox::setDesignRows(std::int16_t rows) {
    if (rows < 1 || (rows == designRows_ && designHeight_ == height()))
        return;
    designRows_ = rows;
    designHeight_ = height();
    clampTop();
    changed(Change::Look);
}

Twips ListBox::rowHeight() const noexcept {
    const Twips design = designHeight_ > 0 ? designHeight_ : height();
    return design / static_cast<Twips>(designRows_);
}

void ListBox::raiseClick() {
    if (events() != nullptr)
        raiseEvent(events()->Click);
}

void ListBox::extendTo(std::int32_t row, bool keepOthers) {
    if (anchor_ < 0)
        anchor_ = narrow(listIndex_ >= 0 ? listIndex_ : row);
    const std::int32_t first = std::min<std::int32_t>(anchor_, row);
    const std::int32_t last = std::max<std::int32_t>(anchor_, row);
    if (!keepOthers) {
        markOnly(first, last);
        return;
    }
    for (std::int32_t i = first; i <= last; ++i)
        mark(i, true);
}

// A drag that began with Ctrl gives each row it covers the state of the pressed one, and each row
// it has left the state from before.
void ListBox::dragTo(std::int32_t row) {
    if (beforeDrag_.empty()) {
        extendTo(row, false);
        return;
    }
    const bool state = selected(anchor_);
    const std::int32_t first = std::min<std::int32_t>(anchor_, row);
    const std::int32_t last = std::max<std::int32_t>(anchor_, row);
    for (std::int32_t i = 0; i < listCount(); ++i)
        mark(i, i >= first && i <= last ? state : beforeDrag_[static_cast<std::size_t>(i)]);
}

// The end of every choice by the user.
void ListBox::chosen(std::int32_t row) {
    listIndex_ = narrow(row);
    changed(Change::Selection);
    ensureVisible(row);
    raiseClick();
}

void ListBox::userClicked(std::int32_t row, std::int16_t shift, bool dragging) {
    if (!isLive() || !has(row) || (dragging && row == listIndex_))
        return;
    const bool ctrl = (shift & ctrlMask) != 0;
    if (!multiSelect_) {
        markOnly(row, row);
    } else if (dragging) {
        dragTo(row);
    } else if ((shift & shiftMask) != 0) {
        beforeDrag_.clear();
        extendTo(row, ctrl);
    } else {
        beforeDrag_.clear();
        anchor_ = narrow(row);
        if (ctrl) {
            mark(row, !selected(row));
            beforeDrag_.reserve(rows_.size());
            for (const Row &one : rows_)
                beforeDrag_.push_back(one.selected);
        } else {
            markOnly(row, row);
        }
    }
    chosen(row);
}

void ListBox::userRightClicked(std::int32_t row) {
    if (!selected(row))
        userClicked(row, 0, false);
}

void ListBox::userMoved(std::int32_t row, std::int16_t shift) {
    if (!isLive() || rows_.empty())
        return;
    row = std::clamp<std::int32_t>(row, 0, listCount() - 1);
    beforeDrag_.clear();
    if (multiSelect_ && (shift & shiftMask) != 0) {
        extendTo(row, (shift & ctrlMask) != 0);
    } else if (multiSelect_ && (shift & ctrlMask) != 0) {
        listIndex_ = narrow(row);
        changed(Change::Selection);
        ensureVisible(row);
        return;
    } else {
        markOnly(row, row);
        anchor_ = narrow(row);
    }
    chosen(row);
}

void ListBox::userDoubleClicked(std::int32_t row) {
    const bool wanted = has(row) || rows_.empty();
    if (row != listIndex_)
        userClicked(row, 0, false);
    if (isLive() && wanted && events() != nullptr)
        raiseEvent(events()->DblClick);
}

void ListBox::userScrolled(std::int32_t topRow) {
    if (isLive())
        setTopIndex(topRow);
}

} // namespace velmora::forms
