#include "platform/backends/qt/scene/child_view.h"

#include "platform/backends/qt/scene/list_view.h"
#include "platform/backends/qt/scene/text_views.h"
#include "platform/backends/qt/scene/toggle_views.h"
#include "platform/forms/controls.h"

namespace velmora::platform::qt {

namespace {

class ListChild : public ChildView {
public:
    ListChild(forms::ListBox &list, const ViewTools &tools, QWidget *parent)
        : ChildView(new ListView(list, tools.texts, tools.loop, parent)) {}

    void changed(forms::Change what) override {
        if (what != forms::Change::ToolTip && what != forms::Change::Pointer && widget())
            widget()->update();
    }
};

} // namespace

bool hasChildView(const forms::Control &control) {
    switch (control.kind()) {
    case forms::Kind::ListBox:
    case forms::Kind::TextBox:
    case forms::Kind::CheckBox:
    case forms::Kind::OptionButton:
        return true;
    default:
        return false;
    }
}

std::unique_ptr<ChildView> makeChildView(forms::Control &control, const ViewTools &tools,
                                         QWidget *parent) {
    switch (control.kind()) {
    case forms::Kind::ListBox:
        return std::make_unique<ListChild>(static_cast<forms::ListBox &>(control), tools, parent);
    case forms::Kind::TextBox:
        return makeTextView(static_cast<forms::TextBox &>(control), tools, parent);
    case forms::Kind::CheckBox:
        return makeCheckView(static_cast<forms::CheckBox &>(control), tools, parent);
    case forms::Kind::OptionButton:
        return makeOptionView(static_cast<forms::OptionButton &>(control), tools, parent);
    default:
        return nullptr;
    }
}

} // namespace velmora::platform::qt
