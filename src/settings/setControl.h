#pragma once

// The settings: the only code that touches the registry. Fixes the program's folders, reads and
// writes the values, and resets them.
//
// A getter reads the registry anew at each call and nothing is cached; what lives in memory are the
// variables below. Every failure of the registry gives the documented default and no message.

#include "base/geometry.h"
#include "platform/contracts/registry.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace velmora {

class Velmora;

class setControl {
public:
    explicit setControl(Velmora &app);

    // --- the settings in memory ---
    std::int16_t AutoUpadate = 0;    // 1: look for a new version at start
    std::int16_t isAutoPlay = 0;     // inverted: 0 means that tracks follow each other
    std::int16_t PlayMode = 0;       // 0 in order, 1 random, 2 repeat the track
    std::int16_t VideoInterface = 0; // 1: video plays in the program's own window
    std::int16_t Language = 0;       // the language chosen in the settings window
    // The language in force: 0 Chinese, 1 English, 2 French, 3 Japanese.
    std::int32_t Language_Index = 0;

    // Folders, without a trailing separator.
    std::u16string Path_App;
    std::u16string Path_Lrc;
    std::u16string Path_Cache;
    std::u16string Path_List;
    std::u16string Path_Data;
    std::u16string Path_DelFilesLog;
    std::u16string System_Dir;
    std::u16string System_Root; // with its separator

    // The one staging set through which a lyric font passes between registry, previews and labels.
    bool Lrc_Bold = false;
    std::int32_t Lrc_Charset = 0;
    bool Lrc_Italic = false;
    std::u16string Lrc_Name;
    std::int32_t Lrc_Size = 0; // points
    bool Lrc_Strikethrough = false;
    bool Lrc_Underline = false;
    std::int32_t Lrc_Weight = 0;
    Colour Lrc_ForeColor = 0;
    Colour Lrc_BackColor = 0;

    // --- start ---
    // Folders, the identity record and the keys; every failure inside is passed over.
    void init_PlaySet();
    // The three folder settings into their variables and the boxes of playSetForm.
    void load_Save_Paths();
    // Makes the six folders; always true.
    bool make_Folders();

    // --- general settings ---
    // Writes the general values from memory and the folders from the boxes of playSetForm, then
    // makes the folders.
    bool save_PlaySet();
    // Waits until all that was saved is on the disk: once for all that an Apply stores, so that a
    // power cut takes the last one at most.
    void sync_PlaySet();
    // Writes the play mode from memory; a failure is passed over.
    void save_PlayMode();
    // Deletes the user's settings; true when the key went.
    bool delete_PlaySet();

    std::int32_t get_AutoUpdate();
    std::int32_t get_IsAutoPlay();
    std::int32_t get_PlayMode();
    std::int32_t get_VideoInterface();
    std::u16string get_LrcSaveFolder();
    std::u16string get_PlayListSaveFolder();
    std::u16string get_PlayCacheSaveFolder();

    // `Language_Index` from the registry, from `Language` on failure; then all texts.
    void load_Language();

    // --- lyric fonts ---
    // Sets are named "Desktop" and "Other".
    bool save_Lrc_Font(std::u16string_view set);
    // False, with the previews dressed as its rules say, when any value is missing.
    bool load_Lrc_Font(std::u16string_view set);

    // --- the rest ---
    void save_LastPlayFile(std::u16string_view path);
    std::u16string get_LastPlayFile(); // empty on failure
    // `state` is a text that reads as true or false ("True", "0", "2"); another one is not stored.
    void save_AutoShowWelcome(std::u16string_view state);
    bool get_AutoShowWelcome();

    // Asks, deletes the settings, asks again, restarts the program. Returns when the user says no
    // or something fails (with its message); otherwise the program ends.
    void restoreDefaults();

    // --- hosts ---
    // Scheme, host and port without a trailing "/", read anew at each call; empty when not set.
    std::u16string get_LrcSearchHost();
    std::u16string get_LrcSiteAHost();
    std::u16string get_LrcSiteBHost();
    std::u16string get_SongSearchHost();
    std::u16string get_MakerHost();
    // The key that proves the maker's server in place of an authority; empty: none is known.
    std::u16string get_MakerPin();

private:
    void getProvider();
    std::u16string readString(std::u16string_view key, std::u16string_view name);
    std::int32_t readNumber(std::u16string_view name);
    std::int32_t readDword(std::u16string_view name);
    std::int32_t getNumber(std::u16string_view name);
    std::u16string getFolder(std::u16string_view name, const std::u16string &otherwise);
    std::u16string getHost(std::u16string_view name);
    void openKey(std::u16string_view key);
    void flushKey();
    void closeKey();
    void writeText(std::u16string_view name, std::u16string_view text, std::uint32_t byteCount);
    void writeText(std::u16string_view name, std::u16string_view text);
    void writeDword(std::u16string_view name, std::uint32_t value);
    void fixFolders();
    void writeIdentity();
    void writePlaySet();
    void readLrcFont(std::u16string_view set);
    void dressPreviews();
    std::u16string programToRestart();
    bool restartProgram(std::u16string_view program);

    Velmora &app_;
    platform::RegistryHandle hKey_Settings_ = 0;         // shared by all writers
    std::shared_ptr<platform::StdRegProv> Reg_Provider_; // fetched anew by each reading routine
};

} // namespace velmora
