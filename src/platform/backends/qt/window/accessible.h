#pragma once

// What assistive technology learns of a window: every painted control that says or does something,
// with its name, role, place and value, the rows of a list, and what changes of them. Made only
// once somebody asks.

#include "platform/forms/form.h"

namespace velmora::platform::qt {

class Scene;

// To be called once, after the application object was made.
void installAccessibility();

// A control of the window's changed, or the focus went elsewhere: whoever listens is told. Costs
// one question where nobody does.
void announce(Scene &scene, const forms::Control &control, forms::Change what);
void announceFocus(Scene &scene, const forms::Form &form);

} // namespace velmora::platform::qt
