#include "playlist/copyFile.h"

#include "base/run_time_error.h"
#include "platform/contracts/dialogs.h"
#include "platform/contracts/windows.h"
#include "settings/Language.h"
#include "velmora.h"

namespace velmora {

copyFile::copyFile(Velmora &app) : app_(app) {}

bool copyFile::copyOneFile(std::u16string_view source, std::u16string_view destination) {
    passOver([&] {
        app_.platform().windows.DoEvents();
        platform::SHFILEOPSTRUCT operation;
        operation.function = platform::FO_COPY;
        operation.from = std::u16string(source) + std::u16string(2, u'\0');
        operation.to = std::u16string(destination) + std::u16string(2, u'\0');
        operation.flags = platform::FOF_ALLOWUNDO;
        if (app_.platform().dialogs.SHFileOperationA(operation) == 0 &&
            operation.anyOperationsAborted)
            app_.platform().windows.MsgBox(
                app_.Language().msg_Copy_Failed, platform::MsgBoxButtons::Ok,
                platform::MsgBoxIcon::Critical, app_.Language().msg_Error);
    });
    return false;
}

} // namespace velmora
