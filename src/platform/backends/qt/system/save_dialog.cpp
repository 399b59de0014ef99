#include "platform/backends/qt/system/save_dialog.h"

#include "platform/backends/qt/screen/text_convert.h"

#include <QFileInfo>
#include <QLineEdit>

namespace velmora::platform::qt {

SaveDialog::SaveDialog(std::u16string_view filter, std::u16string defaultExtension)
    : filters_(dialogFilters(filter)), extension_(std::move(defaultExtension)) {
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
    if (box == nullptr || box->text().isEmpty() || chosen.size() != 1)
        return;
    // The name of a folder is a way into it and no name of a file.
    const QFileInfo file(chosen.front());
    const std::u16string name = fromQString(file.fileName());
    const std::u16string completed = completedName(filters_, name, extension_);
    if (file.isDir() || completed == name)
        return;
    // Quotes part names in the box; what they enclose is the name.
    const bool isPlain = !box->text().contains(QLatin1Char('"'));
    box->setText((isPlain ? box->text() : chosen.front()) +
                 toQString(completed.substr(name.size())));
}

} // namespace velmora::platform::qt
