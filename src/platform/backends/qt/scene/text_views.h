#pragma once

#include "platform/backends/qt/scene/child_view.h"
#include "platform/forms/controls.h"

namespace velmora::platform::qt {

// One line or several. Lines of a text end with CR LF in the model.
std::unique_ptr<ChildView> makeTextView(forms::TextBox &box, const ViewTools &tools,
                                        QWidget *parent);

} // namespace velmora::platform::qt
