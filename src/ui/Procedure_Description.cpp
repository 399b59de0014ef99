#include "ui/Procedure_Description.h"

#include "base/ascii.h"
#include "base/numbers.h"
#include "base/run_time_error.h"
#include "base/text.h"
#include "platform/contracts/ansi.h"
#include "platform/contracts/system.h"
#include "velmora.h"

#include <array>
#include <cstddef>

namespace velmora {

namespace {

constexpr std::size_t fixedPartSize = 52;

// Words of the fixed part, counted in 32 bits.
enum Word : std::size_t {
    structure = 1,
    fileHigh = 2,
    fileLow = 3,
    productHigh = 4,
    productLow = 5,
    flags = 7,
    system = 8,
    type = 9,
    subtype = 10,
};

struct Wording {
    std::uint32_t value;
    std::u16string_view words;
};

constexpr std::uint32_t typeDriver = 3;
constexpr std::uint32_t typeFont = 4;

constexpr std::array<Wording, 6> flagWords{{{1, u"Debug "},
                                            {2, u"PreRel "},
                                            {4, u"Patched "},
                                            {8, u"Private "},
                                            {16, u"Info "},
                                            {32, u"Special "}}};
constexpr std::array<Wording, 8> systemWords{{{1, u"Win16位操作系统"},
                                              {4, u"Win32位操作系统"},
                                              {0x10000, u"DOS操作系统"},
                                              {0x10001, u"DOS-Win16操作系统"},
                                              {0x10004, u"DOS-Win32操作系统"},
                                              {0x20002, u"OS/2-16 PM-16操作系统"},
                                              {0x30003, u"OS/2-16 PM-32操作系统"},
                                              {0x40004, u"NT-Win32操作系统"}}};
constexpr std::array<Wording, 6> typeWords{{{1, u"应用程序"},
                                            {2, u"动态连接库"},
                                            {typeDriver, u"驱动程序"},
                                            {typeFont, u"字体"},
                                            {5, u"VxD"},
                                            {7, u"Lib"}}};
constexpr std::array<Wording, 11> driverWords{{{0, u"未知驱动程序"},
                                               {1, u"打印驱动程序"},
                                               {2, u"键盘驱动程序"},
                                               {3, u"语言模块"},
                                               {4, u"显示驱动程序"},
                                               {5, u"鼠标驱动程序"},
                                               {6, u"网络驱动程序"},
                                               {7, u"系统驱动程序"},
                                               {8, u"Installable"},
                                               {9, u"声音驱动程序"},
                                               {10, u"串行驱动程序"}}};
constexpr std::array<Wording, 3> fontWords{
    {{1, u"光栅字体"}, {2, u"矢量字体"}, {3, u"TrueType字体"}}};

template <std::size_t Count> std::u16string wordsFor(std::uint32_t value,
                                                     const std::array<Wording, Count> &table,
                                                     std::u16string_view otherwise) {
    for (const Wording &row : table)
        if (row.value == value)
            return std::u16string(row.words);
    return std::u16string(otherwise);
}

std::uint32_t byteAt(std::string_view bytes, std::size_t at) {
    return static_cast<unsigned char>(bytes[at]);
}

std::uint32_t halfAt(std::string_view bytes, std::size_t at) {
    return byteAt(bytes, at) | byteAt(bytes, at + 1) << 8U;
}

std::uint32_t wordAt(std::string_view fixedPart, Word word) {
    return halfAt(fixedPart, word * 4) | halfAt(fixedPart, word * 4 + 2) << 16U;
}

std::u16string twoNumbers(std::uint32_t word) {
    return decimal(word >> 16U) + u"." + decimal(word & 0xFFFFU);
}

std::u16string hex4(std::uint32_t half) {
    std::u16string digits;
    for (unsigned shift = 16; shift > 0;) {
        shift -= 4;
        digits += static_cast<char16_t>(hexDigit(half >> shift));
    }
    return digits;
}

} // namespace

Procedure_Description::Procedure_Description(Velmora &app) : app_(app) {}

void Procedure_Description::clear() {
    for (std::u16string *text :
         {&ver_FileDescription, &ver_ProductName, &ver_OriginalFilename, &ver_InternalName,
          &ver_CompanyName, &ver_LegalCopyright, &ver_StrucVersion, &ver_FileVersion,
          &ver_ProductVersion, &ver_Flags, &ver_OS, &ver_FileType, &ver_FileSubtype})
        text->clear();
}

void Procedure_Description::read_File_Version(std::u16string_view path) {
    clear();
    platform::VersionRecords &versions = app_.platform().versions;
    std::uint32_t size = 0;
    passOver([&] { size = versions.GetFileVersionInfoSizeA(path); });
    if (size < 1)
        return;
    std::string record;
    passOver([&] { record = versions.GetFileVersionInfoA(path, size); });
    passOver([&] { readFixedPart(record); });
    passOver([&] { readStrings(record); });
}

// A record without a sound fixed part says nothing, and nothing has numbers and words too.
void Procedure_Description::readFixedPart(std::string_view record) {
    std::string part(fixedPartSize, '\0');
    passOver([&] {
        const auto found = app_.platform().versions.VerQueryValueA(record, u"\\");
        if (found && found->size() >= fixedPartSize)
            part = *found;
    });
    ver_StrucVersion = twoNumbers(wordAt(part, structure));
    ver_FileVersion = twoNumbers(wordAt(part, fileHigh)) + u"." + twoNumbers(wordAt(part, fileLow));
    ver_ProductVersion =
        twoNumbers(wordAt(part, productHigh)) + u"." + twoNumbers(wordAt(part, productLow));
    for (const Wording &flag : flagWords)
        if ((wordAt(part, flags) & flag.value) != 0)
            ver_Flags = std::u16string(flag.words) + ver_Flags;
    ver_OS = wordsFor(wordAt(part, system), systemWords, u"未知操作系统");
    const std::uint32_t fileType = wordAt(part, type);
    ver_FileType = wordsFor(fileType, typeWords, u"未知");
    if (fileType == typeDriver)
        ver_FileSubtype = wordsFor(wordAt(part, subtype), driverWords, u"");
    else if (fileType == typeFont)
        ver_FileSubtype = wordsFor(wordAt(part, subtype), fontWords, u"");
}

// The strings of the record's first language.
void Procedure_Description::readStrings(std::string_view record) {
    platform::VersionRecords &versions = app_.platform().versions;
    const auto language = versions.VerQueryValueA(record, u"\\VarFileInfo\\Translation");
    if (!language || language->size() < 4)
        return;
    const std::u16string block =
        u"\\StringFileInfo\\" + hex4(halfAt(*language, 0)) + hex4(halfAt(*language, 2));
    struct Row {
        std::u16string_view name;
        std::u16string &text;
    };
    const Row rows[] = {
        {u"\\FileDescription", ver_FileDescription},   {u"\\ProductName", ver_ProductName},
        {u"\\OriginalFilename", ver_OriginalFilename}, {u"\\InternalName", ver_InternalName},
        {u"\\CompanyName", ver_CompanyName},           {u"\\LegalCopyright", ver_LegalCopyright},
    };
    for (const Row &row : rows) {
        passOver([&] {
            if (const auto bytes =
                    versions.VerQueryValueA(record, block + std::u16string(row.name)))
                row.text = untilNul(app_.platform().ansi.decode(*bytes));
        });
    }
}

} // namespace velmora
