#pragma once

// The system's common dialogs and its file operations with their own progress and questions. Each
// runs to its end before it returns; timers go on meanwhile, other windows take no input.
//
// The records carry what the design's platform took, under its names; members that are not here
// were always zero.

#include "base/geometry.h"
#include "platform/forms/form.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace velmora::platform {

inline constexpr std::uint32_t BIF_RETURNONLYFSDIRS = 1;
inline constexpr std::uint32_t CC_SOLIDCOLOR = 128;
inline constexpr std::uint32_t OFN_OVERWRITEPROMPT = 0x2;
inline constexpr std::uint32_t OFN_HIDEREADONLY = 0x4;
inline constexpr std::uint32_t OFN_PATHMUSTEXIST = 0x800;
inline constexpr std::uint32_t OFN_FILEMUSTEXIST = 0x1000;
inline constexpr std::uint32_t CF_SCREENFONTS = 0x1;
inline constexpr std::uint32_t CF_EFFECTS = 0x100;
inline constexpr std::uint32_t FO_COPY = 2;
inline constexpr std::uint16_t FOF_ALLOWUNDO = 0x40;

struct BROWSEINFO {
    HWND owner = 0;
    std::u16string title;
    std::uint32_t flags = 0;
};

struct CHOOSECOLOR {
    std::uint32_t size = 0;
    HWND owner = 0;
    std::uintptr_t instance = 0;
    Colour result = 0;                            // in: the start; out: the chosen colour
    std::array<std::uint8_t, 64> customColours{}; // sixteen colours of four bytes
    std::uint32_t flags = 0;
};

struct OPENFILENAME {
    std::uint32_t size = 0;
    HWND owner = 0;
    std::u16string filter; // description and pattern in turns, each ended by NUL; "*.*" is any file
    std::uint32_t filterIndex = 0;
    std::u16string file; // in: the proposed name, padded with NULs; out: the path, then a NUL
    std::uint32_t maxFile = 0;
    std::u16string fileTitle;
    std::uint32_t maxFileTitle = 0;
    std::u16string initialDirectory;
    std::u16string title;
    std::u16string defaultExtension;
    std::uint32_t flags = 0;
};

struct LOGFONT {
    std::int32_t weight = 0;
    bool italic = false;
    bool underline = false;
    std::string faceName; // bytes of the code page, ended by NUL or by its own length
};

struct CHOOSEFONT {
    std::uint32_t size = 0;
    HWND owner = 0;
    LOGFONT logFont;
    std::int32_t pointSize = 0; // tenths of a point
    std::uint32_t flags = 0;
};

struct SHFILEOPSTRUCT {
    std::uint32_t function = 0;
    std::u16string from; // ended by two NULs
    std::u16string to;   // a folder, ended by two NULs
    std::uint16_t flags = 0;
    bool anyOperationsAborted = false; // out
};

class Dialogs {
public:
    virtual ~Dialogs() = default;

    // SHBrowseForFolderA and SHGetPathFromIDListA in one: the folder's path, absent on cancel.
    virtual std::optional<std::u16string> SHBrowseForFolderA(const BROWSEINFO &record) = 0;
    // True after OK.
    virtual bool ChooseColorA(CHOOSECOLOR &record) = 0;
    virtual bool GetOpenFileNameA(OPENFILENAME &record) = 0;
    virtual bool GetSaveFileNameA(OPENFILENAME &record) = 0;
    // 1 after OK; any other number is none.
    virtual std::int32_t ChooseFontA(CHOOSEFONT &record) = 0;

    // Copies one file into a folder under its own name: to a temporary name, then renamed; asks
    // before overwriting, shows its progress, keeps the time stamp, and leaves nothing half done.
    // 0 with `anyOperationsAborted` when the user cancelled; another number on an error, which it
    // has shown itself. A copy onto itself is an error.
    virtual std::int32_t SHFileOperationA(SHFILEOPSTRUCT &operation) = 0;
};

} // namespace velmora::platform
