#pragma once

// The icons of the toolkit's own dialogs, from the drawings of the skin.

#include <QIcon>
#include <QStyle>

namespace velmora::platform::qt {

// A null icon for what the skin has no drawing of.
QIcon darkIcon(QStyle::StandardPixmap which);

} // namespace velmora::platform::qt
