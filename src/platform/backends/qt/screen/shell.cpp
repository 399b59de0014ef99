#include "platform/backends/qt/screen/shell.h"

#include <QString>
#include <QStringList>
#include <QtGlobal>

namespace velmora::platform::qt {

bool isGnome() {
    return qEnvironmentVariable("XDG_CURRENT_DESKTOP")
        .split(QLatin1Char(':'))
        .contains(QLatin1String("GNOME"));
}

} // namespace velmora::platform::qt
