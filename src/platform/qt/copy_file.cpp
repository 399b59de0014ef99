#include "platform/qt/copy_file.h"

#include "base/run_time_error.h"
#include "base/text.h"
#include "platform/linux/file_copy.h"
#include "platform/linux/text/path_text.h"
#include "platform/qt/text_convert.h"

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
        if (progress.wasCanceled()) {
            return false;
        }
    }
    return true;
}

bool mayReplace(QtWindowSystem &windows, const std::u16string &name) {
    return windows.MsgBox(name + u"\r\n" + u"该文件已存在，是否覆盖？", MsgBoxButtons::YesNo,
                          MsgBoxIcon::Question, heading) == MsgBoxResult::Yes;
}

// Puts the copy in its place. What came there since it was looked is asked about as well; false
// when it is to stay.
bool finish(FileCopy &copy, bool replacing, QtWindowSystem &windows, const std::u16string &name) {
    try {
        copy.finish(replacing);
        return true;
    } catch (const RunTimeError &error) {
        if (error.number() != ErrorNumber::FileExists) {
            throw;
        }
    }
    if (!mayReplace(windows, name)) {
        return false;
    }
    copy.finish(true);
    return true;
}

// `concerned` is what an error is about.
CopyOutcome copyOrRaise(QtWindowSystem &windows, std::u16string_view source,
                        std::u16string_view folder, const FileCalls &calls,
                        std::u16string &concerned) {
    const std::u16string name(baseName(source));
    concerned = source;
    FileCopy copy(pathBytes(source), pathBytes(folder), calls);
    const bool replacing = copy.isTaken();
    if (replacing && !mayReplace(windows, name)) {
        return CopyOutcome::Cancelled;
    }
    concerned = folder;
    copy.begin();
    concerned = name;
    return copyShowing(copy, toShown(name)) && finish(copy, replacing, windows, name)
               ? CopyOutcome::Done
               : CopyOutcome::Cancelled;
}

} // namespace

CopyOutcome copyIntoFolder(QtWindowSystem &windows, std::u16string_view source,
                           std::u16string_view folder, const FileCalls &calls) {
    std::u16string concerned;
    try {
        return copyOrRaise(windows, source, folder, calls, concerned);
    } catch (const RunTimeError &error) {
        windows.MsgBox(concerned + crLf + error.description(), MsgBoxButtons::Ok,
                       MsgBoxIcon::Critical, heading);
        return CopyOutcome::Failed;
    }
}

} // namespace velmora::platform::qt
