// The rows of a list box, and the index that knows their texts.

#include "base/run_time_error.h"
#include "platform/forms/listbox.h"

#include <algorithm>

namespace velmora::forms {

const std::u16string &ListBox::list(std::int32_t row) const noexcept {
    static const std::u16string empty;
    return has(row) ? *rows_[static_cast<std::size_t>(row)].text : empty;
}

void ListBox::setList(std::int32_t row, std::u16string_view text) {
    if (!has(row))
        raise(ErrorNumber::InvalidCall);
    Row &held = at(row);
    if (*held.text == text)
        return;
    auto fresh = std::make_unique<std::u16string>(text);
    forget(*held.text);
    held.text = std::move(fresh);
    if (index_)
        index_->insert(held.text.get());
    changed(Change::Rows);
}

void ListBox::addItem(std::u16string_view text) { addItem(text, listCount()); }

void ListBox::addItem(std::u16string_view text, std::int32_t row) {
    if (row < 0 || row > listCount())
        raise(ErrorNumber::InvalidCall);
    if (listCount() == mostRows)
        raise(ErrorNumber::Overflow);
    rows_.insert(rows_.begin() + row, Row{std::make_unique<std::u16string>(text)});
    if (index_)
        index_->insert(at(row).text.get());
    beforeDrag_.clear();
    if (listIndex_ >= row)
        ++listIndex_;
    if (anchor_ >= row)
        ++anchor_;
    changed(Change::Rows);
}

void ListBox::removeItem(std::int32_t row) {
    if (!has(row))
        raise(ErrorNumber::InvalidCall);
    mark(row, false);
    forget(*at(row).text);
    rows_.erase(rows_.begin() + row);
    beforeDrag_.clear();
    if (listIndex_ > row)
        --listIndex_;
    else if (listIndex_ >= listCount())
        listIndex_ = -1;
    if (anchor_ > row || anchor_ >= listCount())
        --anchor_;
    clampTop();
    changed(Change::Rows);
}

void ListBox::clear() {
    listIndex_ = -1;
    anchor_ = -1;
    selCount_ = 0;
    topIndex_ = 0;
    beforeDrag_.clear();
    if (rows_.empty())
        return;
    index_.reset();
    rows_.clear();
    changed(Change::Rows);
}

std::int16_t ListBox::find(std::u16string_view text) const noexcept {
    const auto found =
        std::find_if(rows_.begin(), rows_.end(), [&](const Row &row) { return *row.text == text; });
    return found == rows_.end() ? std::int16_t{-1}
                                : static_cast<std::int16_t>(found - rows_.begin());
}

bool ListBox::contains(std::u16string_view text) const {
    if (!index_) {
        index_.emplace();
        index_->reserve(rows_.size());
        for (const Row &row : rows_)
            index_->insert(row.text.get());
    }
    return index_->contains(text);
}

// Of equal texts it is this very one that leaves the index.
void ListBox::forget(const std::u16string &text) noexcept {
    if (!index_)
        return;
    auto place = index_->find(&text); // equal ones stand side by side
    while (*place != &text)
        ++place;
    index_->erase(place);
}

} // namespace velmora::forms
