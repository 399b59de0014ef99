// The rows of a list box, and the index that finds one by its text.

#include "base/run_time_error.h"
#include "platform/forms/listbox.h"

#include <algorithm>
#include <set>
#include <unordered_map>

namespace velmora::forms {

namespace {

// The distance of labels at the end of the list, and the share of a gap that a run of insertions at
// one place takes each time; both make it rare that all rows must be labelled anew.
constexpr std::int64_t labelStep = std::int64_t{1} << 32;
constexpr std::int64_t runShare = 64;

} // namespace

// Hashes of texts, and the labels of the rows that have them. A removal costs one hash and one
// look-up however many rows there are, and however many of them are alike.
class ListBox::Index {
public:
    explicit Index(const std::vector<Row> &rows) {
        places_.reserve(rows.size());
        for (const Row &row : rows) {
            add(*row.text, row.label);
        }
    }

    void add(std::u16string_view text, std::int64_t label) {
        const auto [place, isNew] = places_.try_emplace(hash(text), Places{label, nullptr});
        if (isNew) {
            return;
        }
        Places &places = place->second;
        if (!places.others) {
            places.others = std::make_unique<std::set<std::int64_t>>();
        }
        places.others->insert(std::max(label, places.first));
        places.first = std::min(label, places.first);
    }

    void remove(std::u16string_view text, std::int64_t label) {
        const auto place = places_.find(hash(text));
        Places &places = place->second;
        if (!places.others) {
            places_.erase(place);
            return;
        }
        if (places.first == label) {
            places.first = *places.others->begin();
            places.others->erase(places.others->begin());
        } else {
            places.others->erase(label);
        }
        if (places.others->empty()) {
            places.others.reset();
        }
    }

    // Calls `is(label)` for the rows whose text may be this one, from the lowest on, until it says
    // yes.
    template <typename Is> void first(std::u16string_view text, Is &&is) const {
        const auto place = places_.find(hash(text));
        if (place == places_.end() || is(place->second.first) || !place->second.others) {
            return;
        }
        for (const std::int64_t label : *place->second.others) {
            if (is(label)) {
                return;
            }
        }
    }

private:
    // Most texts stand in one row.
    struct Places {
        std::int64_t first;
        std::unique_ptr<std::set<std::int64_t>> others;
    };

    static std::size_t hash(std::u16string_view text) noexcept {
        return std::hash<std::u16string_view>()(text);
    }

    std::unordered_map<std::size_t, Places> places_;
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
    Row &held = at(row);
    if (*held.text == text) {
        return;
    }
    auto fresh = std::make_unique<std::u16string>(text);
    if (index_) {
        index_->remove(*held.text, held.label);
        index_->add(*fresh, held.label);
    }
    held.text = std::move(fresh);
    changed(Change::Rows);
}

void ListBox::addItem(std::u16string_view text) { addItem(text, listCount()); }

void ListBox::addItem(std::u16string_view text, std::int32_t row) {
    if (row < 0 || row > listCount()) {
        raise(ErrorNumber::InvalidCall);
    }
    if (listCount() == mostRows) {
        raise(ErrorNumber::Overflow);
    }
    lastLabel_ = labelFor(row);
    rows_.insert(rows_.begin() + row,
                 Row{std::make_unique<std::u16string>(text), lastLabel_, false});
    if (index_) {
        index_->add(text, lastLabel_);
    }
    beforeDrag_.clear();
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
        index_->remove(*at(row).text, at(row).label);
    }
    rows_.erase(rows_.begin() + row);
    beforeDrag_.clear();
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
    beforeDrag_.clear();
    if (rows_.empty()) {
        return;
    }
    index_.reset();
    rows_.clear();
    changed(Change::Rows);
}

// A label between those of the neighbours that a new row at this place will have.
std::int64_t ListBox::labelFor(std::int32_t row) {
    if (rows_.empty()) {
        return 0;
    }
    if (row == listCount()) {
        return rows_.back().label + labelStep;
    }
    if (row == 0) {
        return rows_.front().label - labelStep;
    }
    if (at(row).label - at(row - 1).label < 2) {
        relabel();
    }
    const std::int64_t before = at(row - 1).label;
    const std::int64_t after = at(row).label;
    const std::int64_t gap = after - before;
    const std::int64_t share = std::max<std::int64_t>(1, gap / runShare);
    if (before == lastLabel_) {
        return before + share;
    }
    return after == lastLabel_ ? after - share : before + gap / 2;
}

void ListBox::relabel() noexcept {
    std::int64_t label = 0;
    for (Row &row : rows_) {
        row.label = label;
        label += labelStep;
    }
    lastLabel_ = -1;
    index_.reset(); // built again when somebody asks
}

std::int32_t ListBox::rowOf(std::int64_t label) const noexcept {
    const auto place =
        std::lower_bound(rows_.begin(), rows_.end(), label,
                         [](const Row &row, std::int64_t wanted) { return row.label < wanted; });
    return static_cast<std::int32_t>(place - rows_.begin());
}

std::int16_t ListBox::find(std::u16string_view text) const {
    if (!index_) {
        index_ = std::make_unique<Index>(rows_);
    }
    std::int32_t found = -1;
    index_->first(text, [&](std::int64_t label) {
        const std::int32_t row = rowOf(label);
        if (list(row) != text) {
            return false; // another text with the same hash
        }
        found = row;
        return true;
    });
    return static_cast<std::int16_t>(found);
}

} // namespace velmora::forms
