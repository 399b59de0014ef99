#include "platform/forms/menu.h"

#include "platform/forms/dispatch.h"
#include "platform/forms/form.h"

namespace velmora::forms {

Menu::Menu(Container &form, const char *name) : Control(form, name) {}

Menu::Menu(Menu &parent, const char *name) : Control(parent.form(), name), parent_(&parent) {
    parent.entries_.push_back(this);
}

Menu::~Menu() {
    if (parent_ != nullptr)
        std::erase(parent_->entries_, this);
    for (Menu *entry : entries_)
        entry->parent_ = nullptr;
}

void Menu::setCaption(std::u16string_view caption) {
    if (caption_ == caption)
        return;
    caption_ = caption;
    changed(Change::Look);
}

void Menu::choose() {
    if (enabled() && visible() && !separator_ && events() != nullptr)
        raiseEvent(events()->Click);
}

} // namespace velmora::forms
