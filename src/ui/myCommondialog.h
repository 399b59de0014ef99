#pragma once

// The four system dialogs without any control of the form library: each routine fills the system's
// record itself and reads it back. Every failure is passed over; it shows only as an empty text or
// false.

#include "platform/contracts/dialogs.h"
#include "platform/forms/font.h"

#include <string>
#include <string_view>

namespace velmora {

class Velmora;

// The modes of `file_Dialog`.
inline constexpr std::int32_t dialogOpen = 1;
inline constexpr std::int32_t dialogSave = 2;

class myCommondialog {
public:
    explicit myCommondialog(Velmora &app);

    // The folder with its trailing separator, or empty on cancel.
    std::u16string browse_Folder(platform::HWND owner, std::u16string_view title);

    // True after OK, when `foreColor` is the chosen colour.
    bool choose_Color(platform::HWND owner, Colour &foreColor);

    // The chosen path, or empty. Mode 1 opens, any other saves. A proposed name of more than 250
    // units fails.
    std::u16string file_Dialog(platform::HWND owner, std::int32_t mode, std::u16string_view title,
                               std::u16string_view fileName, std::u16string_view filter,
                               std::u16string_view initialDirectory,
                               std::u16string_view defaultExtension);

    // True after OK, when the font has been changed: bold, italic, underline, name and size.
    bool choose_Font(platform::HWND owner, forms::Font &font);

private:
    Velmora &app_;
};

} // namespace velmora
