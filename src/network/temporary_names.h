#pragma once

// The files of the temporary folder into which the network puts what it reads at once. They are
// removed when they were read, and by the next start.

#include <string_view>

namespace velmora {

inline constexpr std::u16string_view updateFileName = u"zkPlayerUpdate.tmp";
inline constexpr std::u16string_view welcomeFileName = u"zkPlayerWelcome.tmp";

} // namespace velmora
