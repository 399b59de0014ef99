#pragma once

// The rows of the skin's tables, and what is done with them.

#include "platform/forms/controls.h"
#include "playback/Main.h"
#include "settings/members.h"

#include <span>

namespace velmora::skin {

// The title strip of every window (twips).
inline constexpr std::int16_t titleStripTop = 50;
inline constexpr std::int16_t titleStripHeight = 300;

// An image that takes the picture of one on Main.
template <typename Form> struct Handed {
    forms::Image &(*target)(Form &);
    forms::Image Main_Design::*source;
};
template <auto Member> inline constexpr auto shared = +[](OwnerOf<Member> &form) -> forms::Image & {
    return form.*Member;
};

// A control with the hand cursor.
template <typename Form> using Hand = forms::Control &(*)(Form &);
template <auto Member> inline constexpr auto hand = +[](OwnerOf<Member> &form) -> forms::Control & {
    return form.*Member;
};

inline void giveHand(forms::Control &control, const velmora::Main &main) {
    control.setMouseIcon(main.playButton.mouseIcon());
    control.setMousePointer(forms::pointerCustom);
}

template <typename Form>
void giveHands(Form &form, std::span<const Hand<Form>> hands, const velmora::Main &main) {
    for (const Hand<Form> control : hands)
        giveHand(control(form), main);
}

// What takes a picture is clickable, and takes the cursor as well.
template <typename Form>
void handOut(Form &form, std::span<const Handed<Form>> pictures, const velmora::Main &main) {
    for (const Handed<Form> &row : pictures) {
        forms::Image &image = row.target(form);
        image.setPicture((main.*row.source).picture());
        giveHand(image, main);
    }
}

} // namespace velmora::skin
