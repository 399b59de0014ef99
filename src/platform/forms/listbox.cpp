#include "platform/forms/listbox.h"

#include "platform/forms/dispatch.h"

#include <algorithm>
#include <limits>
#include <unordered_map>

namespace velmora::forms {

namespace {

constexpr std::size_t mostRows = std::numeric_limits<std::int16_t>::max();

std::int16_t narrow(std::int64_t row) noexcept { return static_cast<std::int16_t>(row); }

} // namespace

// How often each text occurs. The views point into the rows' own texts.
class ListBox::Index {
public:
    explicit Index(const std::vector<Row> &rows) {
        counts_.reserve(rows.size());
        for (const Row &row : rows) {
            add(*row.text);
        }
    }

    void add(const std::u16string &text) {
        std::vector<const std::u16string *> &places = counts_[text];
        places.push_back(&text);
    }

    // Called while the text is still there.
    void remove(const std::u16string &text) {
        const auto found = counts_.find(text);
        std::vector<const std::u16string *> places = std::move(found->second);
        // The key may be a view of the very text that goes.
        counts_.erase(found);
        std::erase(places, &text);
        if (!places.empty()) {
            const std::u16string_view key = *places.front();
            counts_.emplace(key, std::move(places));
        }
    }

    bool contains(std::u16string_view text) const { return counts_.contains(text); }

private:
    std::unordered_map<std::u16string_view, std::vector<const std::u16string *>> counts_;
};

ListBox::ListBox(Container &container, const char *name) : Control(container, name) {}

ListBox::~ListBox() = default;

const std::u16string &ListBox::list(std::int32_t row) const noexcept {
    static const std::u16string empty;
    return has(row) ? *rows_[static_cast<std::size_t>(row)].text : empty;
}

void ListBox::setList(std::int32_t row, std::u16string_view text) {
    if (!has(row)) {
        raise(ErrorNumber::InvalidCall);
    }
    std::unique_ptr<std::u16string> &held = rows_[static_cast<std::size_t>(row)].text;
    if (*held == text) {
        return;
    }
    auto fresh = std::make_unique<std::u16string>(text);
    if (index_) {
        index_->add(*fresh);
        index_->remove(*held);
    }
    held = std::move(fresh);
    changed(Change::Rows);
}

void ListBox::addItem(std::u16string_view text) { addItem(text, listCount()); }

void ListBox::addItem(std::u16string_view text, std::int32_t row) {
    if (row < 0 || row > listCount()) {
        raise(ErrorNumber::InvalidCall);
    }
    if (rows_.size() >= mostRows) {
        raise(ErrorNumber::Overflow);
    }
    const auto place = rows_.begin() + row;
    const Row &added = *rows_.insert(place, Row{std::make_unique<std::u16string>(text), false});
    if (index_) {
        index_->add(*added.text);
    }
    if (listIndex_ >= row) {
        ++listIndex_;
    }
    if (anchor_ >= row) {
        ++anchor_;
    }
    changed(Change::Rows);
}

void ListBox::removeItem(std::int32_t row) {
    if (!has(row)) {
        raise(ErrorNumber::InvalidCall);
    }
    mark(row, false);
    if (index_) {
        index_->remove(*rows_[static_cast<std::size_t>(row)].text);
    }
    rows_.erase(rows_.begin() + row);
    if (listIndex_ > row) {
        --listIndex_;
    } else if (listIndex_ >= listCount()) {
        listIndex_ = -1;
    }
    if (anchor_ > row || anchor_ >= listCount()) {
        --anchor_;
    }
    clampTop();
    changed(Change::Rows);
}

void ListBox::clear() {
    listIndex_ = -1;
    anchor_ = -1;
    selCount_ = 0;
    topIndex_ = 0;
    if (rows_.empty()) {
        return;
    }
    index_.reset();
    rows_.clear();
    changed(Change::Rows);
}

bool ListBox::contains(std::u16string_view text) const {
    if (!index_) {
        index_ = std::make_unique<Index>(rows_);
    }
    return index_->contains(text);
}

std::int16_t ListBox::find(std::u16string_view text) const {
    if (!contains(text)) {
        return -1;
    }
    const auto found = std::find_if(rows_.begin(), rows_.end(),
                                    [text](const Row &row) { return *row.text == text; });
    return narrow(found - rows_.begin());
}

bool ListBox::selected(std::int32_t row) const noexcept {
    return has(row) && rows_[static_cast<std::size_t>(row)].selected;
}

void ListBox::mark(std::int32_t row, bool selected) noexcept {
    bool &flag = rows_[static_cast<std::size_t>(row)].selected;
    if (flag != selected) {
        flag = selected;
        selCount_ = narrow(selCount_ + (selected ? 1 : -1));
    }
}

void ListBox::markOnly(std::int32_t first, std::int32_t last) noexcept {
    for (std::int32_t row = 0; row < listCount(); ++row) {
        mark(row, row >= first && row <= last);
    }
}

void ListBox::setSelected(std::int32_t row, bool selected) {
    if (!has(row)) {
        raise(ErrorNumber::InvalidCall);
    }
    const bool isNew = rows_[static_cast<std::size_t>(row)].selected != selected;
    const bool moves = selected && listIndex_ != row;
    if (!isNew && !moves) {
        return;
    }
    if (selected && !multiSelect_) {
        markOnly(row, row);
    } else {
        mark(row, selected);
    }
    if (selected) {
        listIndex_ = narrow(row);
    }
    changed(Change::Selection);
    if (selected && !multiSelect_) {
        raiseClick();
    }
}

std::int16_t ListBox::firstSelected() const noexcept {
    if (selCount_ == 0) {
        return -1;
    }
    const auto found =
        std::find_if(rows_.begin(), rows_.end(), [](const Row &row) { return row.selected; });
    return narrow(found - rows_.begin());
}

void ListBox::setListIndex(std::int32_t row) {
    if (row < -1 || row >= listCount()) {
        raise(ErrorNumber::InvalidPropertyValue);
    }
    if (listIndex_ == row) {
        return;
    }
    listIndex_ = narrow(row);
    if (!multiSelect_) {
        markOnly(row, row);
    }
    changed(Change::Selection);
    if (row >= 0) {
        raiseClick();
    }
}

void ListBox::clampTop() noexcept {
    const int most = std::max(0, listCount() - designRows_);
    topIndex_ = narrow(std::clamp<int>(topIndex_, 0, most));
}

void ListBox::setTopIndex(std::int32_t row) {
    const std::int16_t before = topIndex_;
    const std::int32_t most = std::max(0, listCount() - designRows_);
    topIndex_ = narrow(std::clamp(row, 0, most));
    if (topIndex_ != before) {
        changed(Change::Scroll);
    }
}

void ListBox::ensureVisible(std::int32_t row) {
    if (!has(row)) {
        return;
    }
    if (row < topIndex_) {
        setTopIndex(row);
    } else if (row >= topIndex_ + designRows_) {
        setTopIndex(row - designRows_ + 1);
    }
}

void ListBox::setDesignRows(std::int16_t rows) {
    if (rows < 1 || rows == designRows_) {
        return;
    }
    designRows_ = rows;
    designHeight_ = height();
    clampTop();
    changed(Change::Look);
}

Twips ListBox::rowHeight() const noexcept {
    const Twips design = designHeight_ > 0 ? designHeight_ : height();
    return design / static_cast<Twips>(designRows_);
}

void ListBox::setFont(const Font &font) {
    if (font_ == font) {
        return;
    }
    font_ = font;
    changed(Change::Look);
}

void ListBox::setForeColor(Colour colour) {
    if (foreColor_ != colour) {
        foreColor_ = colour;
        changed(Change::Look);
    }
}

void ListBox::setBackColor(Colour colour) {
    if (backColor_ != colour) {
        backColor_ = colour;
        changed(Change::Look);
    }
}

void ListBox::raiseClick() {
    if (events() != nullptr) {
        raiseEvent(events()->Click);
    }
}

void ListBox::choose(std::int32_t row, std::int16_t shift, bool extend) {
    const bool ctrl = (shift & ctrlMask) != 0;
    if (!multiSelect_) {
        markOnly(row, row);
    } else if (extend) {
        const std::int32_t from = anchor_ < 0 ? row : anchor_;
        if (!ctrl) {
            markOnly(std::min(from, row), std::max(from, row));
        } else {
            for (std::int32_t i = std::min(from, row); i <= std::max(from, row); ++i) {
                mark(i, true);
            }
        }
    } else if (ctrl) {
        mark(row, !selected(row));
    } else {
        markOnly(row, row);
    }
    if (!extend || anchor_ < 0) {
        anchor_ = narrow(row);
    }
    listIndex_ = narrow(row);
    changed(Change::Selection);
}

void ListBox::userClicked(std::int32_t row, std::int16_t shift, bool dragging) {
    if (!isLive() || !has(row)) {
        return;
    }
    if (dragging && row == listIndex_) {
        return;
    }
    choose(row, shift, dragging || (shift & shiftMask) != 0);
    ensureVisible(row);
    raiseClick();
}

void ListBox::userMoved(std::int32_t row, std::int16_t shift) {
    if (!isLive() || rows_.empty()) {
        return;
    }
    row = std::clamp<std::int32_t>(row, 0, listCount() - 1);
    choose(row, static_cast<std::int16_t>(shift & shiftMask), (shift & shiftMask) != 0);
    ensureVisible(row);
    raiseClick();
}

void ListBox::userDoubleClicked(std::int32_t row) {
    const bool wanted = has(row) || rows_.empty();
    if (isLive() && wanted && events() != nullptr) {
        raiseEvent(events()->DblClick);
    }
}

void ListBox::userScrolled(std::int32_t topRow) {
    if (isLive()) {
        setTopIndex(topRow);
    }
}

} // namespace velmora::forms
