#pragma once

#include "platform/backends/qt/scene/child_view.h"
#include "platform/forms/controls.h"

namespace velmora::platform::qt {

std::unique_ptr<ChildView> makeCheckView(forms::CheckBox &box, const ViewTools &tools,
                                         QWidget *parent);
std::unique_ptr<ChildView> makeOptionView(forms::OptionButton &option, const ViewTools &tools,
                                          QWidget *parent);

} // namespace velmora::platform::qt
