#include "platform/backends/qt/system/save_dialog.h"

#include "platform/backends/qt/screen/text_convert.h"
#include "platform/backends/qt/system/dialog_filters.h"

#include <QFileInfo>
#include <QLineEdit>

namespace velmora::platform::qt {

SaveDialog::SaveDialog(std::u16string filter, std::u16string defaultExtension)
    : filter_(std::move(filter)), extension_(toQString(defaultExtension)) {
    setAcceptMode(QFileDialog::AcceptSave);
    setFileMode(QFileDialog::AnyFile);
}

void SaveDialog::accept() {
    completeName();
    QFileDialog::accept();
}

void SaveDialog::completeName() {
    auto *box = findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
    const QStringList chosen = selectedFiles();
    if (extension_.isEmpty() || box == nullptr || box->text().isEmpty() || chosen.size() != 1)
        return;
    // The name of a folder is a way into it and no name of a file.
    const QFileInfo file(chosen.front());
    if (file.isDir() || matchesFilter(filter_, file.fileName()))
        return;
    // Quotes part names in the box; what they enclose is the name.
    const bool isPlain = !box->text().contains(QLatin1Char('"'));
    box->setText((isPlain ? box->text() : chosen.front()) + QLatin1Char('.') + extension_);
}

} // namespace velmora::platform::qt
