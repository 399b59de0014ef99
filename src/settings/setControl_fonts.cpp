#include "settings/setControl.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "lyrics/lrcForm.h"
#include "settings/playSetForm.h"
#include "settings/registry_keys.h"
#include "velmora.h"

namespace velmora {

namespace {

// The switch of the desktop line lies under this name whichever set is written or read.
constexpr char16_t autoOpenName[] = u"Desktop_Lrc_AutoOpen";

constexpr char16_t freshFont[] = u"微软雅黑";
constexpr float freshDesktopSize = 36;          // points
constexpr Colour freshDesktopColour = 0x0000FF; // red
constexpr Colour freshOtherColour = 0x00FFFF;   // yellow

std::u16string nameIn(std::u16string_view set, std::u16string_view stem) {
    return std::u16string(set).append(u"_").append(stem);
}

} // namespace

bool setControl::save_Lrc_Font(std::u16string_view set) {
    try {
        openKey(keys::playSet);
        writeText(autoOpenName, decimal(app_.playSetForm().desktopLrc_AutoOpen.value()), 1);
        const auto writeNumber = [&](std::u16string_view stem, std::uint32_t value) {
            writeDword(nameIn(set, stem), value);
        };
        writeNumber(u"Lrc_Bold", Lrc_Bold ? 1 : 0);
        writeNumber(u"Lrc_Charset", static_cast<std::uint32_t>(Lrc_Charset));
        writeNumber(u"Lrc_Italic", Lrc_Italic ? 1 : 0);
        writeText(nameIn(set, u"Lrc_Name"), Lrc_Name);
        writeNumber(u"Lrc_Size", static_cast<std::uint32_t>(Lrc_Size));
        writeNumber(u"Lrc_Strikethrough", Lrc_Strikethrough ? 1 : 0);
        writeNumber(u"Lrc_Underline", Lrc_Underline ? 1 : 0);
        writeNumber(u"Lrc_Weight", static_cast<std::uint32_t>(Lrc_Weight));
        writeNumber(u"Lrc_ForeColor", Lrc_ForeColor);
        writeNumber(u"Lrc_BackColor", Lrc_BackColor);
        closeKey();
        return true;
    } catch (const RunTimeError &error) {
        noteSwallowed(error);
        return false;
    }
}

bool setControl::load_Lrc_Font(std::u16string_view set) {
    try {
        getProvider();
        readLrcFont(set);
        return true;
    } catch (const RunTimeError &error) {
        noteSwallowed(error);
        // Nothing is dressed for "Other", its own preview included.
        if (set == u"Desktop")
            dressPreviews();
        return false;
    }
}

void setControl::readLrcFont(std::u16string_view set) {
    const std::int32_t autoOpen = readNumber(autoOpenName);
    if (autoOpen == 0 || autoOpen == 1) {
        app_.lrcForm().desktopLrcAutoOpen = autoOpen == 1;
        app_.playSetForm().desktopLrc_AutoOpen.setValue(autoOpen == 1 ? 1 : 0);
    }
    const auto read = [&](std::u16string_view stem) { return readDword(nameIn(set, stem)); };
    Lrc_Bold = read(u"Lrc_Bold") == 1;
    Lrc_Charset = read(u"Lrc_Charset");
    Lrc_Italic = read(u"Lrc_Italic") == 1;
    Lrc_Name = readString(keys::playSet, nameIn(set, u"Lrc_Name"));
    Lrc_Size = read(u"Lrc_Size");
    Lrc_Strikethrough = read(u"Lrc_Strikethrough") == 1;
    Lrc_Underline = read(u"Lrc_Underline") == 1;
    Lrc_Weight = read(u"Lrc_Weight");
    Lrc_ForeColor = static_cast<Colour>(read(u"Lrc_ForeColor"));
    Lrc_BackColor = static_cast<Colour>(read(u"Lrc_BackColor"));
}

// The fresh look, for the previews alone: the labels keep their designed fonts.
void setControl::dressPreviews() {
    forms::TextBox &desktop = app_.playSetForm().desktop_Lrc_Preview;
    forms::Font font = desktop.font();
    font.setName(freshFont);
    font.setSize(freshDesktopSize);
    desktop.setFont(font);
    desktop.setForeColor(freshDesktopColour);

    forms::TextBox &other = app_.playSetForm().other_Lrc_Preview;
    font = other.font();
    font.setName(freshFont);
    other.setFont(font);
    other.setForeColor(freshOtherColour);
}

} // namespace velmora
