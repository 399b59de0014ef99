#pragma once

// The language tables by their owner (the module of the messages, or a form), and the one way in
// which a routine puts its table. Each table is defined beside its routine.

#include "settings/language_rows.h"
#include "settings/setControl.h"
#include "velmora.h"

namespace velmora::texts {

template <typename Owner> std::span<const Row<Owner>> rowsOf();

// Puts the language in force, when it is one of the four; an owner is touched only then. `touch` is
// the program's accessor of the owner.
template <typename Owner, typename Touched> void putIn(Velmora &app, Touched &(Velmora::*touch)()) {
    const std::int32_t index = app.setControl().Language_Index;
    if (!isLanguage(index))
        return;
    Owner &owner = (app.*touch)();
    for (const Row<Owner> &row : rowsOf<Owner>())
        row.put(owner, textOf(row.texts, index));
}

} // namespace velmora::texts
