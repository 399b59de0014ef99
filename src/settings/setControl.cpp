#include "settings/setControl.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "base/text.h"
#include "platform/contracts/ansi.h"
#include "platform/contracts/files.h"
#include "platform/contracts/system.h"
#include "playback/Main.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/Language_Set.h"
#include "settings/playSetForm.h"
#include "settings/registry_keys.h"
#include "ui/system_SpecialFolder.h"
#include "velmora.h"

namespace velmora {

namespace {

// A routine that jumps to its handler on the first failure and answers a default there.
template <typename Result, typename Read> Result orElse(const Result &otherwise, Read read) {
    try {
        return read();
    } catch (const RunTimeError &error) {
        noteSwallowed(error);
        return otherwise;
    }
}

} // namespace

setControl::setControl(Velmora &app) : app_(app) {}

// --- start ---------------------------------------------------------------------------------------

void setControl::init_PlaySet() {
    fixFolders();
    load_Save_Paths();
    make_Folders();
    writeIdentity();
    // Both keys are there from now on, without values. The handles opened so far are overwritten;
    // only the last one is closed.
    passOver([&] { openKey(keys::playSet); });
    passOver([&] { openKey(keys::playParameters); });
    passOver([&] { closeKey(); });
}

void setControl::fixFolders() {
    const platform::Platform &platform = app_.platform();
    const std::u16string separator(1, platform.files.separator());
    passOver([&] { System_Dir = platform.folders.GetSystemDirectoryA(); });
    passOver([&] { System_Root = platform.folders.rootPart(System_Dir); });
    Path_App = System_Root + u"Program Files" + separator + u"Norvane软件" + separator + u"Velmora";
    Path_Lrc = Path_App + separator + u"Lyrics";
    Path_Cache = Path_App + separator + u"Cache";
    Path_List = Path_App + separator + u"List";
    passOver([&] {
        Path_Data = app_.system_SpecialFolder().get_Special_Folder(folderMyDocuments) + u"Norvane" +
                    separator + u"Velmora";
    });
    Path_DelFilesLog = Path_Data + separator + u"DelFilesLog";
}

void setControl::load_Save_Paths() {
    const auto stripped = [&](std::u16string_view text) {
        std::u16string folder = app_.platform().folders.typedFolder(text);
        if (!folder.empty() && folder.back() == app_.platform().files.separatorOf(folder))
            folder.pop_back();
        return folder;
    };
    velmora::playSetForm &form = app_.playSetForm();
    struct Row {
        std::u16string &folder;
        std::u16string (setControl::*stored)();
        forms::TextBox &box;
    };
    const Row rows[] = {
        {Path_Lrc, &setControl::get_LrcSaveFolder, form.save_Lrc_Path},
        {Path_List, &setControl::get_PlayListSaveFolder, form.save_PlayList_Path},
        {Path_Cache, &setControl::get_PlayCacheSaveFolder, form.save_PlayCache_Path},
    };
    for (const Row &row : rows)
        passOver([&] {
            row.folder = stripped((this->*row.stored)());
            row.box.setText(row.folder);
        });
}

bool setControl::make_Folders() {
    for (const std::u16string *folder :
         {&Path_App, &Path_Lrc, &Path_Cache, &Path_List, &Path_Data, &Path_DelFilesLog})
        passOver([&] { app_.saveOrOpenFile().shellMd(*folder); });
    return true;
}

void setControl::writeIdentity() {
    const auto write = [&](std::u16string_view name, std::u16string_view text) {
        passOver([&] { openKey(keys::identity); });
        passOver([&] { writeText(name, text); });
    };
    write(u"DisplayName", u"Velmora");
    write(u"DisplayVersion", trim(app_.Main().Vesion));
    write(u"Publisher", u"Norvane");
    write(u"URLInfoAbout", u"http://norvane.example");
}

// --- reading -------------------------------------------------------------------------------------

void setControl::getProvider() {
    Reg_Provider_ = app_.platform().registry.GetObject(keys::provider);
}

std::u16string setControl::readString(std::u16string_view key, std::u16string_view name) {
    const auto value = Reg_Provider_->GetStringValue(platform::HKEY_LOCAL_MACHINE, key, name);
    if (!value)
        raise(ErrorNumber::TypeMismatch);
    return *value;
}

std::int32_t setControl::readNumber(std::u16string_view name) {
    return roundToInt32(leadingNumber(readString(keys::playSet, name)));
}

std::int32_t setControl::readDword(std::u16string_view name) {
    const auto value =
        Reg_Provider_->GetDWORDValue(platform::HKEY_LOCAL_MACHINE, keys::playSet, name);
    if (!value)
        raise(ErrorNumber::TypeMismatch);
    return static_cast<std::int32_t>(*value);
}

std::int32_t setControl::getNumber(std::u16string_view name) {
    return orElse(
        0,
        [&] {
            getProvider();
            return readNumber(name);
        });
}

std::u16string setControl::getFolder(std::u16string_view name, const std::u16string &otherwise) {
    return orElse(
        otherwise,
        [&] {
            getProvider();
            return readString(keys::playSet, name);
        });
}

std::u16string setControl::getHost(std::u16string_view name) {
    return orElse(
        std::u16string(),
        [&] {
            getProvider();
            std::u16string host = readString(keys::hosts, name);
            while (!host.empty() && host.back() == u'/')
                host.pop_back();
            return host;
        });
}

std::int32_t setControl::get_AutoUpdate() { return getNumber(u"AutoUpadate"); }
std::int32_t setControl::get_IsAutoPlay() { return getNumber(u"isAutoPlay"); }
std::int32_t setControl::get_PlayMode() { return getNumber(u"PlayMode"); }
std::int32_t setControl::get_VideoInterface() { return getNumber(u"VideoInterface"); }

std::u16string setControl::get_LrcSaveFolder() { return getFolder(u"LrcSaveFolder", Path_Lrc); }
std::u16string setControl::get_PlayListSaveFolder() {
    return getFolder(u"PlayListSaveFolder", Path_List);
}
std::u16string setControl::get_PlayCacheSaveFolder() {
    return getFolder(u"PlayCacheSaveFolder", Path_Cache);
}

std::u16string setControl::get_LrcSearchHost() { return getHost(u"lrcSearch"); }
std::u16string setControl::get_LrcSiteAHost() { return getHost(u"lrcSiteA"); }
std::u16string setControl::get_LrcSiteBHost() { return getHost(u"lrcSiteB"); }
std::u16string setControl::get_SongSearchHost() { return getHost(u"songSearch"); }
std::u16string setControl::get_MakerHost() { return getHost(u"maker"); }

std::u16string setControl::get_MakerPin() {
    return orElse(
        std::u16string(),
        [&] {
            getProvider();
            return readString(keys::hosts, u"makerPin");
        });
}

void setControl::load_Language() {
    Language_Index = orElse(static_cast<std::int32_t>(Language), [&] {
        getProvider();
        return readNumber(u"Language");
    });
    app_.Language_Set().apply_Language();
}

std::u16string setControl::get_LastPlayFile() {
    return orElse(
        std::u16string(),
        [&] {
            getProvider();
            return readString(keys::playParameters, u"lastPlayFileName");
        });
}

bool setControl::get_AutoShowWelcome() { return getNumber(u"AutoShowWelcome") != 0; }

// --- writing -------------------------------------------------------------------------------------

void setControl::openKey(std::u16string_view key) {
    app_.platform().registry.RegCreateKeyA(platform::HKEY_LOCAL_MACHINE, key, hKey_Settings_);
}

void setControl::flushKey() { app_.platform().registry.RegFlushKey(hKey_Settings_); }

void setControl::closeKey() { app_.platform().registry.RegCloseKey(hKey_Settings_); }

void setControl::writeText(std::u16string_view name, std::u16string_view text,
                           std::uint32_t byteCount) {
    app_.platform().registry.RegSetValueExA(hKey_Settings_, name, platform::REG_SZ, text,
                                            byteCount);
}

void setControl::writeText(std::u16string_view name, std::u16string_view text) {
    writeText(name, text, static_cast<std::uint32_t>(app_.platform().ansi.byteCount(text)));
}

void setControl::writeDword(std::u16string_view name, std::uint32_t value) {
    app_.platform().registry.RegSetValueExA(hKey_Settings_, name, value);
}

bool setControl::save_PlaySet() {
    return orElse(
        false,
        [&] {
            writePlaySet();
            make_Folders();
            return true;
        });
}

void setControl::writePlaySet() {
    // A digit and its terminating zero.
    const auto writeNumber = [&](std::u16string_view name, std::int16_t number) {
        writeText(name, decimal(number), 2);
    };
    openKey(keys::playSet);
    writeNumber(u"AutoUpadate", AutoUpadate);
    writeNumber(u"isAutoPlay", isAutoPlay);
    writeNumber(u"PlayMode", PlayMode);
    writeNumber(u"Language", Language);
    writeNumber(u"VideoInterface", VideoInterface);
    const velmora::playSetForm &form = app_.playSetForm();
    writeText(u"LrcSaveFolder", form.save_Lrc_Path.text());
    writeText(u"PlayListSaveFolder", form.save_PlayList_Path.text());
    writeText(u"PlayCacheSaveFolder", form.save_PlayCache_Path.text());
    closeKey();
}

void setControl::save_PlayMode() {
    passOver([&] { openKey(keys::playSet); });
    passOver([&] { writeText(u"PlayMode", decimal(PlayMode), 2); });
    passOver([&] { flushKey(); });
    passOver([&] { closeKey(); });
}

void setControl::sync_PlaySet() {
    passOver([&] { openKey(keys::playSet); });
    passOver([&] { flushKey(); });
    passOver([&] { closeKey(); });
}

bool setControl::delete_PlaySet() {
    return orElse(
        false,
        [&] {
            return app_.platform().registry.RegDeleteKeyA(platform::HKEY_LOCAL_MACHINE,
                                                          keys::playSet) == platform::ERROR_SUCCESS;
        });
}

void setControl::save_LastPlayFile(std::u16string_view path) {
    passOver([&] { openKey(keys::playParameters); });
    passOver([&] { writeText(u"lastPlayFileName", path); });
    passOver([&] { closeKey(); });
}

void setControl::save_AutoShowWelcome(std::u16string_view state) {
    const auto number = strictInt32(state);
    const bool isFalse = equalsIgnoringCase(state, u"False") || number == 0;
    const bool isTrue = equalsIgnoringCase(state, u"True") || number.value_or(0) != 0;
    passOver([&] { openKey(keys::playSet); });
    if (isTrue || isFalse)
        passOver([&] { writeText(u"AutoShowWelcome", isTrue ? u"1" : u"0", 1); });
    passOver([&] { flushKey(); });
    passOver([&] { closeKey(); });
}

} // namespace velmora
