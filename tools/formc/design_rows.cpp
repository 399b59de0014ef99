#include "design_rows.h"

#include <algorithm>
#include <array>

namespace velmora::formc {

namespace {

using namespace kinds;

constexpr KindSet onForm = controls | timer | menu;
constexpr KindSet inBox = controls | timer;

constexpr std::string_view controlsHeader = "platform/forms/controls.h";

constexpr std::array kindTable{
    KindRow{"form", form, onForm, "forms::Form", "platform/forms/form.h"},
    KindRow{"Label", label, 0, "forms::Label", controlsHeader},
    KindRow{"Image", image, 0, "forms::Image", controlsHeader},
    KindRow{"PictureBox", pictureBox, inBox, "forms::PictureBox", controlsHeader},
    KindRow{"ListBox", listBox, 0, "forms::ListBox", "platform/forms/listbox.h"},
    KindRow{"TextBox", textBox, 0, "forms::TextBox", controlsHeader},
    KindRow{"CheckBox", checkBox, 0, "forms::CheckBox", controlsHeader},
    KindRow{"OptionButton", optionButton, 0, "forms::OptionButton", controlsHeader},
    KindRow{"Frame", frame, inBox, "forms::Frame", controlsHeader},
    KindRow{"Shape", shape, 0, "forms::Shape", controlsHeader},
    KindRow{"Line", line, 0, "forms::Line", controlsHeader},
    KindRow{"Timer", timer, 0, "forms::Timer", "platform/forms/timer.h"},
    KindRow{"Menu", menu, menu, "forms::Menu", "platform/forms/menu.h"},
    KindRow{"zkButton", button, 0, "zkButton", "ui/zkButton.h"},
    KindRow{"zkProgress", progress, 0, "zkProgress", "ui/zkProgress.h"},
};

constexpr KindSet captioned =
    form | label | frame | checkBox | optionButton | menu | button | progress;
constexpr KindSet lettered = form | label | frame | listBox | textBox | checkBox | optionButton;
constexpr std::int64_t maxInterval = 65535;
constexpr std::int64_t maxRows = 1000;
constexpr std::int64_t maxSpeed = 255;

constexpr std::array propertyTable{
    PropertyRow{"at", Shape::Point, form | boxed, "", Phase::Place},
    PropertyRow{"size", Shape::Extent, form | boxed, "", Phase::Place},
    PropertyRow{"ends", Shape::Ends, line, "setEnds", Phase::Place},
    PropertyRow{"font", Shape::Font, lettered, "setFont"},
    PropertyRow{"font", Shape::Font, progress, "setCaptionFont"},
    PropertyRow{"caption", Shape::Shown, captioned, "setCaption"},
    PropertyRow{"text", Shape::Shown, textBox, "setText"},
    PropertyRow{"line", Shape::Text, textBox, "setText", Phase::Look, 0, 0, true},
    PropertyRow{"tip", Shape::Shown, controls, "setToolTip"},
    PropertyRow{"named", Shape::Control, listBox | textBox | pictureBox,
                "setBond(forms::Bond::Named, "},
    PropertyRow{"part", Shape::Control, image | pictureBox, "setBond(forms::Bond::Part, "},
    PropertyRow{"slider", Shape::Control, image, "setBond(forms::Bond::Slider, "},
    PropertyRow{"tab", Shape::Control, button, "setBond(forms::Bond::Tab, "},
    PropertyRow{"click", Shape::Answer, controls | menu, "Click"},
    PropertyRow{"dblclick", Shape::Answer, controls, "DblClick"},
    PropertyRow{"tag", Shape::Text, controls | timer | menu, "setTag"},
    PropertyRow{"fore", Shape::Colour, label | listBox | textBox | progress, "setForeColor"},
    PropertyRow{"back", Shape::Colour, form | label | pictureBox | listBox | textBox | progress,
                "setBackColor"},
    PropertyRow{"fill", Shape::Colour, shape | progress, "setFillColor"},
    PropertyRow{"border", Shape::Colour, line, "setBorderColor"},
    PropertyRow{"picture", Shape::Picture, image | pictureBox | shape, "setPicture"},
    PropertyRow{"ground", Shape::Picture, form, "setGround"},
    PropertyRow{"icon", Shape::Picture, form, "setIcon"},
    PropertyRow{"align", Shape::Align, label, "setAlignment"},
    PropertyRow{"pointer", Shape::Pointer, form | controls, "setMousePointer"},
    PropertyRow{"hidden", Shape::Flag, controls | menu, "setVisible(false)"},
    PropertyRow{"disabled", Shape::Flag, controls | menu, "setEnabled(false)"},
    PropertyRow{"opaque", Shape::Flag, label | pictureBox, "setTransparent(false)"},
    PropertyRow{"transparent", Shape::Flag, label | pictureBox, "setTransparent(true)"},
    PropertyRow{"tabstop", Shape::Flag, label | image, "setTabStop(true)"},
    PropertyRow{"wrap", Shape::Flag, label, "setWordWrap(true)"},
    PropertyRow{"rim", Shape::Flag, label, "setRim(true)"},
    PropertyRow{"multiline", Shape::Flag, textBox, "setMultiLine(true)"},
    PropertyRow{"locked", Shape::Flag, textBox, "setLocked(true)"},
    PropertyRow{"multiselect", Shape::Flag, listBox, "setMultiSelect(true)"},
    PropertyRow{"separator", Shape::Flag, menu, "setSeparator(true)"},
    PropertyRow{"checked", Shape::Flag, menu, "setChecked(true)"},
    PropertyRow{"taskbar", Shape::Flag, form, "setShowInTaskbar(true)"},
    PropertyRow{"unmanaged", Shape::Flag, form, "setUnmanaged(true)"},
    PropertyRow{"centred", Shape::Flag, form, "setStartCentred(true)", Phase::Late},
    PropertyRow{"value", Shape::Whole, checkBox, "setValue", Phase::Look, 0, 2},
    PropertyRow{"value", Shape::Whole, optionButton, "setValue", Phase::Look, 0, 1},
    PropertyRow{"interval", Shape::Whole, timer, "setInterval", Phase::Look, 0, maxInterval},
    PropertyRow{"running", Shape::Flag, timer, "setRunning(true)", Phase::Late},
    PropertyRow{"autosize", Shape::Flag, label, "setAutoSize(true)", Phase::Late},
    PropertyRow{"rows", Shape::Whole, listBox, "setDesignRows", Phase::Late, 1, maxRows},
    PropertyRow{"speed", Shape::Whole, button, "setSpeed", Phase::Late, 0, maxSpeed},
    PropertyRow{"style", Shape::Whole, progress, "setCaptionStyle", Phase::Late, 0, 3},
};

} // namespace

std::span<const KindRow> kindRows() { return kindTable; }
std::span<const PropertyRow> propertyRows() { return propertyTable; }

const KindRow *findKind(std::string_view word) {
    const auto row = std::ranges::find(kindTable, word, &KindRow::word);
    return row == kindTable.end() ? nullptr : &*row;
}

const KindRow &formKind() { return kindTable.front(); }

const PropertyRow *findProperty(std::string_view word, KindSet kind) {
    const auto row = std::ranges::find_if(propertyTable, [&](const PropertyRow &candidate) {
        return candidate.word == word && (candidate.kinds & kind) != 0;
    });
    return row == propertyTable.end() ? nullptr : &*row;
}

bool isProperty(std::string_view word) {
    return std::ranges::any_of(
        propertyTable, [&](const PropertyRow &row) { return row.word == word; });
}

} // namespace velmora::formc
