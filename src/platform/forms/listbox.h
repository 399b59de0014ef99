#pragma once

#include "platform/forms/control.h"
#include "platform/forms/font.h"

#include <limits>
#include <memory>
#include <optional>
#include <unordered_set>

namespace velmora::forms {

// A list of text rows with selection, one current row and a top row. Rows count in 16 bits: a list
// holds at most 32,767; one more raises Overflow.
//
// Reading a row out of range gives the empty text; writing or removing one raises. Writing a row's
// selection true makes it the current row (and, in a single-selection list, raises Click when it
// changes the selection by code, and brings the row into view); false does not. The current row is
// -1 until one is chosen. It follows its row on insertion and removal above; if its row goes, the
// row now at that index is current, and is not selected by that (-1 when none is left there).
//
// The index behind `contains` lives here; nothing outside holds a second copy of the rows.
class ListBox : public Control {
public:
    using Control::Control;
    Kind kind() const noexcept override { return Kind::ListBox; }
    bool takesFocus() const noexcept override { return true; }

    static constexpr std::int16_t mostRows = std::numeric_limits<std::int16_t>::max();
    std::int16_t listCount() const noexcept { return static_cast<std::int16_t>(rows_.size()); }
    const std::u16string &list(std::int32_t row) const noexcept; // the empty text out of range
    void setList(std::int32_t row, std::u16string_view text);
    void addItem(std::u16string_view text);
    void addItem(std::u16string_view text, std::int32_t row); // row 0..listCount
    void removeItem(std::int32_t row);
    void clear();

    // The lowest row whose text equals `text` exactly, or -1. The time grows with the list.
    std::int16_t find(std::u16string_view text) const noexcept;
    // Whether there is one. The time does not grow with the list: the index is built when first
    // asked and kept from then on.
    bool contains(std::u16string_view text) const;

    bool multiSelect() const noexcept { return multiSelect_; }
    void setMultiSelect(bool multi) noexcept { multiSelect_ = multi; }
    bool selected(std::int32_t row) const noexcept; // false out of range
    void setSelected(std::int32_t row, bool selected);
    std::int16_t selCount() const noexcept { return selCount_; }
    // The lowest selected row, or -1.
    std::int16_t firstSelected() const noexcept;
    std::int16_t listIndex() const noexcept { return listIndex_; }
    void setListIndex(std::int32_t row);

    // 0 to max(0, rows - rows that fit); writing clamps.
    std::int16_t topIndex() const noexcept { return topIndex_; }
    void setTopIndex(std::int32_t row);
    // Brings the row into view with the least scrolling.
    void ensureVisible(std::int32_t row);

    // Rows that fit at the design height. The row height is design height / that number.
    std::int16_t designRows() const noexcept { return designRows_; }
    void setDesignRows(std::int16_t rows);
    Twips rowHeight() const noexcept;

    const Font &font() const noexcept { return font_; }
    void setFont(const Font &font) { set(font_, font, Change::Look); }
    Colour foreColor() const noexcept { return foreColor_; }
    void setForeColor(Colour colour) { set(foreColor_, colour, Change::Look); }
    Colour backColor() const noexcept { return backColor_; }
    void setBackColor(Colour colour) { set(backColor_, colour, Change::Look); }

    // The view's roads for the user's input; a disabled list ignores them, and so do they rows that
    // are not there. `userClicked` is a press of the left button, or (`dragging`) its move to
    // another row while held. A simple list selects that row alone. An extended one: alone selects
    // it alone, Ctrl turns it, Shift selects from the anchor to it, Ctrl and Shift add that
    // stretch; a drag goes from the anchor to the row, with Ctrl in the state that the press gave,
    // and leaves alone what it no longer covers. The anchor is the last row chosen without Shift.
    // Raises Click.
    void userClicked(std::int32_t row, std::int16_t shift, bool dragging);
    // Arrow, page, home and end keys; a row beyond the ends counts as the end. Shift selects from
    // the anchor; Ctrl moves the current row of an extended list alone, and raises nothing.
    void userMoved(std::int32_t row, std::int16_t shift);
    // A press of the right button: a row that is not selected is chosen alone, whatever keys are
    // held; a selected one leaves everything as it is.
    void userRightClicked(std::int32_t row);
    // A second press chooses its row alone if another one has become current since the first.
    // DblClick is raised on a row, or on a list without rows.
    void userDoubleClicked(std::int32_t row);
    void userScrolled(std::int32_t topRow);

private:
    struct Row {
        std::unique_ptr<std::u16string> text; // a text handed out stays where it is
        bool selected = false;
    };
    // Not noexcept: the set then keeps each text's hash instead of asking for it again and again.
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::u16string_view text) const {
            return std::hash<std::u16string_view>()(text);
        }
        std::size_t operator()(const std::u16string *text) const {
            return (*this)(std::u16string_view(*text));
        }
    };
    struct Equal {
        using is_transparent = void;
        bool operator()(const std::u16string *a, const std::u16string *b) const noexcept {
            return *a == *b;
        }
        bool operator()(std::u16string_view a, const std::u16string *b) const noexcept {
            return a == *b;
        }
    };
    using Index = std::unordered_multiset<const std::u16string *, Hash, Equal>;

    bool has(std::int32_t row) const noexcept { return row >= 0 && row < listCount(); }
    Row &at(std::int32_t row) noexcept { return rows_[static_cast<std::size_t>(row)]; }
    void forget(const std::u16string &text) noexcept;
    void mark(std::int32_t row, bool selected) noexcept;
    void markOnly(std::int32_t first, std::int32_t last) noexcept;
    void extendTo(std::int32_t row, bool keepOthers);
    void dragTo(std::int32_t row);
    void chosen(std::int32_t row);
    void clampTop() noexcept;
    void raiseClick();

    std::vector<Row> rows_;
    mutable std::optional<Index> index_; // the texts of the rows
    std::vector<bool> beforeDrag_;       // the selection at a press with Ctrl; else empty
    Font font_;
    Colour foreColor_ = 0;
    Colour backColor_ = 0x00FFFFFF;
    Twips designHeight_ = 0;
    std::int16_t designRows_ = 17;
    std::int16_t selCount_ = 0;
    std::int16_t listIndex_ = -1;
    std::int16_t topIndex_ = 0;
    std::int16_t anchor_ = -1;
    bool multiSelect_ = false;
};

} // namespace velmora::forms
