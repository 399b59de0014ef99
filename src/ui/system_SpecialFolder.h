#pragma once

#include <cstdint>
#include <string>

namespace velmora {

class Velmora;

inline constexpr std::int32_t folderMyDocuments = 5;
inline constexpr std::int32_t folderTemporary = 51;

class system_SpecialFolder {
public:
    explicit system_SpecialFolder(Velmora &app);

    // The folder of this number, ending in a separator. A number without a folder gives the lone
    // separator, which nothing may write to.
    std::u16string get_Special_Folder(std::int32_t number) const;

private:
    std::u16string folderOf(std::int32_t number) const;

    Velmora &app_;
};

} // namespace velmora
