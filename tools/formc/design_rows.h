#pragma once

// The two tables behind the compiler: kinds of control and their properties. A new kind or property
// is a row here and nothing else.

#include <cstdint>
#include <span>
#include <string_view>

namespace velmora::formc {

using KindSet = std::uint32_t;

namespace kinds {
inline constexpr KindSet form = 1U << 0;
inline constexpr KindSet label = 1U << 1;
inline constexpr KindSet image = 1U << 2;
inline constexpr KindSet pictureBox = 1U << 3;
inline constexpr KindSet listBox = 1U << 4;
inline constexpr KindSet textBox = 1U << 5;
inline constexpr KindSet checkBox = 1U << 6;
inline constexpr KindSet optionButton = 1U << 7;
inline constexpr KindSet frame = 1U << 8;
inline constexpr KindSet shape = 1U << 9;
inline constexpr KindSet line = 1U << 10;
inline constexpr KindSet timer = 1U << 11;
inline constexpr KindSet menu = 1U << 12;
inline constexpr KindSet button = 1U << 13;   // zkButton
inline constexpr KindSet progress = 1U << 14; // zkProgress
inline constexpr KindSet boxed = label | image | pictureBox | listBox | textBox | checkBox |
                                 optionButton | frame | shape | button | progress;
inline constexpr KindSet controls = boxed | line;
} // namespace kinds

struct KindRow {
    std::string_view word;    // in the design
    KindSet bit = 0;          // exactly one
    KindSet holds = 0;        // what may be nested
    std::string_view type;    // C++ type of the member, in namespace velmora
    std::string_view include; // header that declares it
};

enum class Shape : std::uint8_t {
    Flag,    // no value
    Whole,   // one whole number from min to max
    Point,   // two numbers
    Extent,  // two numbers, neither negative
    Ends,    // four numbers
    Text,    // one string
    Shown,   // one string, or @ENTRY of the texts
    Font,    // "NAME" POINTS [bold] [italic] [underline] [strike]
    Colour,  // @palette name or 0xBBGGRR
    Picture, // name of a drawing [from FORM.IMAGE, which the skin hands it out from]
    Align,   // left right centre
    Pointer, // hand hourglass; hand [from FORM]
    Control, // the name of another control of the form
    Answer,  // the routine that answers the event; without, NAME_EVENT
};

// When a setting takes effect in the generated constructor: looks first, then the place, then what
// depends on the place (auto-size, rows at design height).
enum class Phase : std::uint8_t { Look, Place, Late };

struct PropertyRow {
    std::string_view word;
    Shape shape = Shape::Flag;
    KindSet kinds = 0;
    // The call on the control: a flag's whole call, else the setter's name; of an answer the event.
    std::string_view call;
    Phase phase = Phase::Look;
    std::int64_t min = 0;
    std::int64_t max = 0;
    bool repeats = false; // given again it is the next line of the same text
};

std::span<const KindRow> kindRows();
std::span<const PropertyRow> propertyRows();

const KindRow *findKind(std::string_view word);
const KindRow &formKind();
// The row of that word which fits the kind; null when the kind has no such property.
const PropertyRow *findProperty(std::string_view word, KindSet kind);
bool isProperty(std::string_view word);

} // namespace velmora::formc
