#pragma once

// The button of the main window that opens the play list.

namespace velmora {

class Main;

// Keeps in the main window whether the play list is open, and shows it by the button's look: lit
// while it is.
void markListShown(Main &main, bool shown);

} // namespace velmora
