#include "platform/backends/qt/system/qt_dialogs.h"

#include "base/text.h"
#include "platform/backends/qt/screen/text_convert.h"
#include "platform/backends/qt/system/copy_file.h"
#include "platform/backends/qt/system/dialog_filters.h"
#include "platform/backends/qt/system/save_dialog.h"
#include "text/path_text.h"

#include <QColorDialog>
#include <QCoreApplication>
#include <QFile>
#include <QFileDialog>
#include <QFontDialog>
#include <QHeaderView>
#include <QLibraryInfo>
#include <QLocale>
#include <QMessageBox>
#include <QSplitter>
#include <QTranslator>
#include <QTreeView>

#include <algorithm>
#include <cmath>

namespace velmora::platform {

namespace {

constexpr int boldWeight = 700;
constexpr int regularWeight = 400;
constexpr int tenths = 10;
constexpr QSize fileDialogSize(760, 480);
constexpr int placesWidth = 140;

// The toolkit's paths and the program's meet in the bytes: a line break in a name is a unit of its
// own in the program. Names that are no text at all are not shown by the toolkit's dialogs.
std::u16string toPath(const QString &path) {
    const QByteArray bytes = QFile::encodeName(path);
    return pathFromBytes({bytes.constData(), static_cast<std::size_t>(bytes.size())});
}
QString fromPath(std::u16string_view path) {
    return QFile::decodeName(QByteArray::fromStdString(pathBytes(path)));
}

Colour toColour(const QColor &colour) {
    return static_cast<Colour>(colour.red()) | static_cast<Colour>(colour.green()) << 8 |
           static_cast<Colour>(colour.blue()) << 16;
}

class QtDialogs : public ToolkitDialogs {
public:
    QtDialogs(QtWindowSystem &windows, const AnsiText &ansi, FileCalls calls)
        : windows_(windows), ansi_(ansi), calls_(std::move(calls)) {}

    std::optional<std::u16string> SHBrowseForFolderA(const BROWSEINFO &record) override {
        speak();
        QFileDialog dialog;
        dialog.setWindowTitle(qt::toShown(record.title));
        dialog.setFileMode(QFileDialog::Directory);
        dialog.setOption(QFileDialog::ShowDirsOnly, (record.flags & BIF_RETURNONLYFSDIRS) != 0);
        return chosenFile(dialog);
    }

    bool ChooseColorA(CHOOSECOLOR &record) override {
        speak();
        QColorDialog dialog(qt::toQColor(record.result));
        for (int i = 0; i < 16 && i < QColorDialog::customCount(); ++i) {
            const std::size_t at = static_cast<std::size_t>(i) * 4;
            QColorDialog::setCustomColor(i, QColor(record.customColours[at],
                                                   record.customColours[at + 1],
                                                   record.customColours[at + 2]));
        }
        if (!runs(dialog))
            return false;
        record.result = toColour(dialog.selectedColor());
        return true;
    }

    bool GetOpenFileNameA(OPENFILENAME &record) override {
        speak();
        QFileDialog dialog;
        dialog.setAcceptMode(QFileDialog::AcceptOpen);
        dialog.setFileMode(QFileDialog::ExistingFile);
        return fileName(dialog, record);
    }

    bool GetSaveFileNameA(OPENFILENAME &record) override {
        speak();
        qt::SaveDialog dialog(record.filter, record.defaultExtension);
        dialog.setOption(QFileDialog::DontConfirmOverwrite,
                         (record.flags & OFN_OVERWRITEPROMPT) == 0);
        return fileName(dialog, record);
    }

    std::int32_t ChooseFontA(CHOOSEFONT &record) override {
        const std::u16string name =
            ansi_.decode(std::string_view(record.logFont.faceName)
                             .substr(0, record.logFont.faceName.find('\0')));
        QFont font(qt::toQString(name));
        font.setPointSizeF(std::max(1.0, static_cast<double>(record.pointSize) / tenths));
        font.setBold(record.logFont.weight >= boldWeight);
        font.setItalic(record.logFont.italic);
        font.setUnderline(record.logFont.underline);
        speak();
        QFontDialog dialog(font);
        // What it shows by itself for a font that is not installed: confirming that is no choice,
        // any other name is.
        const QString substitute = dialog.currentFont().family();
        if (!runs(dialog))
            return 0;
        const QFont chosen = dialog.selectedFont();
        record.logFont.weight = chosen.bold() ? boldWeight : regularWeight;
        record.logFont.italic = chosen.italic();
        record.logFont.underline = chosen.underline();
        if (chosen.family() != substitute)
            record.logFont.faceName = ansi_.encode(qt::fromQString(chosen.family()));
        record.pointSize = static_cast<std::int32_t>(std::lround(chosen.pointSizeF() * tenths));
        return 1;
    }

    std::int32_t SHFileOperationA(SHFILEOPSTRUCT &operation) override {
        if (operation.function != FO_COPY)
            return 1;
        windows_.beforeNestedLoop();
        const auto outcome =
            qt::copyIntoFolder(windows_, untilNul(operation.from), untilNul(operation.to), calls_);
        operation.anyOperationsAborted = outcome == CopyOutcome::Cancelled;
        return outcome == CopyOutcome::Failed ? 1 : 0;
    }

    bool mayReplace(std::u16string_view path, std::u16string_view title) override {
        speak();
        const QString text = QCoreApplication::translate(
            "QFileDialog", "%1 already exists.\nDo you want to replace it?");
        QMessageBox box(QMessageBox::Warning, qt::toShown(title),
                        text.arg(qt::toShown(baseName(path))), QMessageBox::Yes | QMessageBox::No);
        box.setTextFormat(Qt::PlainText);
        box.setDefaultButton(QMessageBox::No);
        box.setWindowModality(Qt::ApplicationModal);
        box.setWindowFlag(Qt::WindowStaysOnTopHint);
        windows_.beforeDialog(box);
        return box.exec() == QMessageBox::Yes;
    }

private:
    // The toolkit's words for its dialogs, in the system's language, from the first dialog on;
    // English without them.
    void speak() {
        if (words_ != nullptr)
            return;
        words_ = std::make_unique<QTranslator>();
        if (words_->load(QLocale(), QStringLiteral("qtbase"), QStringLiteral("_"),
                         QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
            QCoreApplication::installTranslator(words_.get());
    }

    bool runs(QDialog &dialog) {
        dialog.setWindowModality(Qt::ApplicationModal);
        // As message boxes are: a film over the whole screen would hide what it waits for.
        dialog.setWindowFlag(Qt::WindowStaysOnTopHint);
        windows_.beforeDialog(dialog);
        return dialog.exec() == QDialog::Accepted;
    }

    // Room for names, sizes and dates beside the places.
    static void layOut(QFileDialog &dialog) {
        dialog.resize(fileDialogSize);
        if (auto *parts = dialog.findChild<QSplitter *>(); parts != nullptr)
            parts->setSizes({placesWidth, fileDialogSize.width() - placesWidth});
        if (auto *table = dialog.findChild<QTreeView *>(); table != nullptr) {
            table->header()->setStretchLastSection(false);
            // By the rows in sight: the kinds of a thousand files take long to find out.
            table->header()->setResizeContentsPrecision(0);
            table->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
            table->header()->setSectionResizeMode(0, QHeaderView::Stretch);
        }
    }

    std::optional<std::u16string> chosenFile(QFileDialog &dialog) {
        layOut(dialog);
        if (!runs(dialog) || dialog.selectedFiles().isEmpty())
            return std::nullopt;
        return toPath(dialog.selectedFiles().front());
    }

    bool fileName(QFileDialog &dialog, OPENFILENAME &record) {
        dialog.setWindowTitle(qt::toShown(record.title));
        dialog.setNameFilters(qt::nameFilters(record.filter));
        if (!record.initialDirectory.empty())
            dialog.setDirectory(fromPath(record.initialDirectory));
        const std::u16string_view proposed = untilNul(record.file);
        if (!proposed.empty())
            dialog.selectFile(fromPath(proposed));
        const auto chosen = chosenFile(dialog);
        if (chosen)
            record.file = *chosen + std::u16string(1, u'\0');
        return chosen.has_value();
    }

    QtWindowSystem &windows_;
    const AnsiText &ansi_;
    FileCalls calls_;
    std::unique_ptr<QTranslator> words_;
};

} // namespace

std::unique_ptr<ToolkitDialogs> makeQtDialogs(QtWindowSystem &windows, const AnsiText &ansi,
                                              FileCalls calls) {
    return std::make_unique<QtDialogs>(windows, ansi, std::move(calls));
}

} // namespace velmora::platform
