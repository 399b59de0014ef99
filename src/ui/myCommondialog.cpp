#include "ui/myCommondialog.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "base/text.h"
#include "platform/contracts/ansi.h"
#include "platform/contracts/files.h"
#include "velmora.h"

namespace velmora {

namespace {

constexpr std::size_t fileNamePadding = 250;
constexpr std::uint32_t bufferCapacity = 255;
constexpr std::uint8_t customColourByte = 2; // each custom colour starts as 0x02020202
constexpr std::int32_t boldWeight = 700;

// The record's buffer: the name padded with NULs to its length. A longer name has no padding to
// speak of, which is an error.
std::u16string padded(std::u16string_view name) {
    if (name.size() > fileNamePadding)
        raise(ErrorNumber::InvalidCall);
    std::u16string buffer(name);
    buffer.resize(fileNamePadding, u'\0');
    return buffer;
}

} // namespace

myCommondialog::myCommondialog(Velmora &app) : app_(app) {}

std::u16string myCommondialog::browse_Folder(platform::HWND owner, std::u16string_view title) {
    std::u16string result;
    passOver([&] {
        const platform::BROWSEINFO record{owner, std::u16string(title),
                                          platform::BIF_RETURNONLYFSDIRS};
        const auto chosen = app_.platform().dialogs.SHBrowseForFolderA(record);
        if (!chosen)
            return;
        result = untilNul(*chosen);
        const char16_t separator = app_.platform().files.separator();
        if (result.empty() || result.back() != separator)
            result += separator;
    });
    return result;
}

bool myCommondialog::choose_Color(platform::HWND owner, Colour &foreColor) {
    bool chosen = false;
    passOver([&] {
        platform::CHOOSECOLOR record;
        record.size = 36;
        record.owner = owner;
        record.customColours.fill(customColourByte);
        record.flags = platform::CC_SOLIDCOLOR;
        if (app_.platform().dialogs.ChooseColorA(record)) {
            foreColor = record.result;
            chosen = true;
        }
    });
    return chosen;
}

std::u16string myCommondialog::file_Dialog(platform::HWND owner, std::int32_t mode,
                                           std::u16string_view title, std::u16string_view fileName,
                                           std::u16string_view filter,
                                           std::u16string_view initialDirectory,
                                           std::u16string_view defaultExtension) {
    std::u16string result;
    passOver([&] {
        platform::OPENFILENAME record;
        record.size = 76;
        record.owner = owner;
        record.filter = filter;
        record.filterIndex = 1;
        record.file = padded(fileName);
        record.maxFile = bufferCapacity;
        record.fileTitle = std::u16string(bufferCapacity, u'\0');
        record.maxFileTitle = bufferCapacity;
        record.initialDirectory = initialDirectory;
        record.title = title;
        record.defaultExtension = defaultExtension;
        bool chosen = false;
        if (mode == dialogOpen) {
            record.flags = platform::OFN_FILEMUSTEXIST | platform::OFN_PATHMUSTEXIST |
                           platform::OFN_HIDEREADONLY;
            chosen = app_.platform().dialogs.GetOpenFileNameA(record);
        } else {
            record.flags = platform::OFN_PATHMUSTEXIST | platform::OFN_HIDEREADONLY |
                           platform::OFN_OVERWRITEPROMPT;
            chosen = app_.platform().dialogs.GetSaveFileNameA(record);
        }
        if (chosen)
            result = untilNul(record.file);
    });
    return result;
}

bool myCommondialog::choose_Font(platform::HWND owner, forms::Font &font) {
    bool chosen = false;
    passOver([&] {
        const platform::AnsiText &ansi = app_.platform().ansi;
        platform::CHOOSEFONT record;
        record.size = 60;
        record.owner = owner;
        record.logFont.weight = font.bold() ? boldWeight : 0;
        record.logFont.italic = font.italic();
        record.logFont.underline = font.underline();
        record.logFont.faceName = ansi.encode(font.name());
        record.pointSize = roundToInt32(static_cast<double>(font.size()) * 10);
        record.flags = platform::CF_SCREENFONTS | platform::CF_EFFECTS;
        if (app_.platform().dialogs.ChooseFontA(record) != 1)
            return;
        font.setBold(record.logFont.weight >= boldWeight);
        font.setItalic(record.logFont.italic);
        font.setUnderline(record.logFont.underline);
        const std::string &face = record.logFont.faceName;
        font.setName(ansi.decode(std::string_view(face).substr(0, face.find('\0'))));
        font.setSize(static_cast<float>(roundHalfEven(record.pointSize / 10.0)));
        chosen = true;
    });
    return chosen;
}

} // namespace velmora
