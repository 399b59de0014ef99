#pragma once

// The version record of an executable file, as texts.

#include <cstdint>
#include <string>
#include <string_view>

namespace velmora {

class Velmora;

class Procedure_Description {
public:
    explicit Procedure_Description(Velmora &app);

    std::u16string ver_FileDescription;
    std::u16string ver_ProductName;
    std::u16string ver_OriginalFilename;
    std::u16string ver_InternalName;
    std::u16string ver_CompanyName;
    std::u16string ver_LegalCopyright;
    std::u16string ver_StrucVersion;   // two numbers joined by "."
    std::u16string ver_FileVersion;    // four numbers joined by "."
    std::u16string ver_ProductVersion; // the same
    std::u16string ver_Flags;
    std::u16string ver_OS;
    std::u16string ver_FileType;
    std::u16string ver_FileSubtype;

    // Fills the texts from the record of this file; all are empty when it has none. What a record
    // lacks stays empty. Never raises.
    void read_File_Version(std::u16string_view path);

private:
    void clear();
    void readFixedPart(std::string_view record);
    void readStrings(std::string_view record);

    Velmora &app_;
};

} // namespace velmora
