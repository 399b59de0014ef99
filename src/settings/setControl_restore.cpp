#include "settings/setControl.h"

#include "platform/contracts/files.h"
#include "platform/contracts/system.h"
#include "platform/contracts/windows.h"
#include "playback/Main.h"
#include "playback/startLoad_Form.h"
#include "playlist/playList_Form.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/Language.h"
#include "velmora.h"

namespace velmora {

using platform::MsgBoxButtons;
using platform::MsgBoxIcon;
using platform::MsgBoxResult;

void setControl::restoreDefaults() {
    platform::WindowSystem &windows = app_.platform().windows;
    const velmora::Language &texts = app_.Language();
    const auto title = [&]() -> const std::u16string & { return app_.Main().title.caption(); };
    const auto fails = [&](std::u16string_view text) {
        windows.MsgBox(text, MsgBoxButtons::Ok, MsgBoxIcon::Critical, texts.msg_Error);
    };

    if (windows.MsgBox(texts.msg_Restore_Ask, MsgBoxButtons::YesNo, MsgBoxIcon::None, title()) !=
        MsgBoxResult::Yes)
        return;
    if (!delete_PlaySet()) {
        windows.MsgBox(texts.msg_Restore_Failed, MsgBoxButtons::Ok, MsgBoxIcon::Critical, title());
        return;
    }
    if (windows.MsgBox(texts.msg_Restore_Restart, MsgBoxButtons::YesNo, MsgBoxIcon::None,
                       title()) != MsgBoxResult::Yes)
        return;

    const std::u16string program = programToRestart();
    if (program.empty())
        fails(u"No Found program！");
    else if (!restartProgram(program))
        fails(u"Restart Error！");
    else
        app_.startLoad_Form().unload();
}

// The program file as it can be started again, or empty.
std::u16string setControl::programToRestart() {
    platform::Processes &processes = app_.platform().processes;
    const char16_t separator = app_.platform().files.separator();
    std::u16string path = processes.applicationFolder();
    if (path.empty() || path.back() != separator)
        path += separator;
    path += processes.applicationStem();
    for (const std::u16string_view extension : {u".exe", u".bat", u""}) {
        std::u16string candidate = path + std::u16string(extension);
        if (app_.saveOrOpenFile().fileExists(candidate))
            return candidate;
    }
    return {};
}

// The marker first: the new instance must not take this one for a rival.
bool setControl::restartProgram(std::u16string_view program) {
    constexpr std::int32_t showNormal = 1;
    constexpr std::int32_t lastError = 32;
    if (app_.startLoad_Form().restart_Marker(true) != -1)
        return false;
    return app_.platform().shell.ShellExecuteA(app_.playList_Form().hWnd(), u"open", program,
                                               showNormal) > lastError;
}

} // namespace velmora
