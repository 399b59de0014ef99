#pragma once

// The language tables by their owner: the module of the messages, or a form. Each is defined beside
// the routine that puts it.

#include "settings/language_rows.h"

namespace velmora::texts {

template <typename Owner> std::span<const Row<Owner>> rowsOf();

} // namespace velmora::texts
