#include "platform/backends/qt/system/copy_file.h"

#include "base/run_time_error.h"
#include "base/text.h"
#include "platform/backends/qt/screen/text_convert.h"
#include "text/path_text.h"

#include <QCoreApplication>
#include <QLabel>
#include <QProgressDialog>

#include <algorithm>
#include <string>

namespace velmora::platform::qt {

namespace {

constexpr int steps = 1000;
constexpr int patienceMs = 400; // no window for a copy that is over before one would notice
constexpr std::u16string_view heading = u"Velmora 2011";

// False when the user stops it.
bool copyShowing(FileCopy &copy, const QString &name) {
    QProgressDialog progress(QString(), QStringLiteral("Esc"), 0, steps);
    auto *label = new QLabel(name, &progress);
    label->setTextFormat(Qt::PlainText); // a name may look like markup
    label->setAlignment(Qt::AlignCenter);
    progress.setLabel(label);
    progress.setWindowModality(Qt::ApplicationModal);
    progress.setMinimumDuration(patienceMs);
    while (copy.copyPiece()) {
        progress.setValue(static_cast<int>(std::min(copy.share(), 1.0) * (steps - 1)));
        QCoreApplication::processEvents();
        if (progress.wasCanceled())
            return false;
    }
    return true;
}

} // namespace

CopyOutcome copyIntoFolder(QtWindowSystem &windows, std::u16string_view source,
                           std::u16string_view folder, const FileCalls &calls) {
    const std::u16string name(baseName(source));
    CopyTalk talk;
    talk.mayReplace = [&] {
        return windows.MsgBox(name + u"\r\n" + u"该文件已存在，是否覆盖？", MsgBoxButtons::YesNo,
                              MsgBoxIcon::Question, heading) == MsgBoxResult::Yes;
    };
    talk.copyAll = [&](FileCopy &copy) { return copyShowing(copy, toShown(name)); };
    talk.tellError = [&](std::u16string_view concerned, const RunTimeError &error) {
        windows.MsgBox(std::u16string(concerned) + crLf + error.description(), MsgBoxButtons::Ok,
                       MsgBoxIcon::Critical, heading);
    };
    return platform::copyIntoFolder(source, folder, talk, calls);
}

} // namespace velmora::platform::qt
