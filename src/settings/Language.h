#pragma once

// The message texts in the language in force, read at the moment of use. Empty until
// `Language_Set::language_Messages` has run once. They view literals: assigning one costs nothing.

#include <string_view>

namespace velmora {

class Velmora;

class Language {
public:
    explicit Language(Velmora &) {}

    // Updates and welcome.
    std::u16string_view msg_Cannot_Start;
    std::u16string_view msg_Upgrade_Ask; // ends at the opening bracket before the version
    std::u16string_view msg_Upgrade_Done;
    std::u16string_view msg_Upgrade_Failed;
    std::u16string_view msg_Latest_Version;
    std::u16string_view msg_Welcome;

    // The play list.
    std::u16string_view msg_Media_Filter; // descriptions and patterns in turns, between NULs
    std::u16string_view msg_AddMedia_Title;
    std::u16string_view msg_Select_Folder;
    std::u16string_view msg_Loading_Tracks;
    std::u16string_view msg_Rename_Prompt;
    std::u16string_view msg_Rename_Title;
    std::u16string_view msg_Find_Prompt;
    std::u16string_view msg_Find_Title;
    std::u16string_view msg_Error;
    std::u16string_view msg_One_Dir_Only;
    std::u16string_view msg_Copy_Failed;
    std::u16string_view msg_Select_One_File;
    std::u16string_view msg_Bad_Path;

    // The system.
    std::u16string_view msg_No_Network;
    std::u16string_view msg_Safe_Mode;
    std::u16string_view msg_Already_Running;
    std::u16string_view msg_No_Sound_Card;

    // Playing.
    std::u16string_view msg_No_Track_Desktop_Lrc;
    std::u16string_view msg_No_Track_Info;
    std::u16string_view msg_Seeking;

    // Restore to defaults.
    std::u16string_view msg_Restore_Ask;
    std::u16string_view msg_Restore_Failed;
    std::u16string_view msg_Restore_Restart;

    // Track information.
    std::u16string_view msg_Track_Name;
    std::u16string_view msg_Directory;
    std::u16string_view msg_File_Size;
    std::u16string_view msg_Created;
    std::u16string_view msg_Format;

    // The sound device.
    std::u16string_view msg_Output_Channels;
    std::u16string_view msg_Formats_List;
    std::u16string_view msg_Extended_List;
    std::u16string_view msg_Driver_Version;
    std::u16string_view msg_Product_Name;
    std::u16string_view msg_Driver_Id;
    std::u16string_view msg_Product_Id;
};

} // namespace velmora
