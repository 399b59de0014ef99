#pragma once

#include "platform/forms/control.h"

namespace velmora::forms {

// An entry of a popup menu, or the popup itself when it has entries. Entries are members of their
// form's design, in order.
class Menu : public Control {
public:
    Menu(Container &form, const char *name); // a popup
    Menu(Menu &parent, const char *name);    // an entry
    ~Menu() override;
    Kind kind() const noexcept override { return Kind::Menu; }

    const std::u16string &caption() const noexcept { return caption_; }
    void setCaption(std::u16string_view caption);
    bool separator() const noexcept { return separator_; }
    void setSeparator(bool separator) noexcept { separator_ = separator; }
    bool checked() const noexcept { return checked_; }
    void setChecked(bool checked) noexcept { checked_ = checked; }
    const std::vector<Menu *> &entries() const noexcept { return entries_; }
    std::u16string accessibleName() const override { return caption_; }

    // The view's road: raises Click when the entry is enabled, shown and no separator.
    void choose();

private:
    std::u16string caption_;
    std::vector<Menu *> entries_;
    Menu *parent_ = nullptr; // null for a popup, and once the popup is gone
    bool separator_ = false;
    bool checked_ = false;
};

} // namespace velmora::forms
