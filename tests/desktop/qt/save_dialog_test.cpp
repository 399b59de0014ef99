// The dialog for a name to save under: which name it answers, and which file it asks about.

#include "base/text.h"
#include "platform/backends/qt/system/qt_dialogs.h"
#include "tests/desktop/qt/desk.h"
#include "tests/unit/linux/temp_folder.h"
#include "text/ansi_conversion.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QTimer>

namespace velmora::tests {
namespace {

using namespace std::string_view_literals;

class SaveDialogTest : public DeskTest {
protected:
    TempFolder folder;
    QStringList asked; // about which file the dialog asked whether to overwrite it

    // Accepts the dialog as it comes up with this name; a question is answered with no, and the
    // dialog then cancelled. The chosen path within the folder.
    std::string choose(std::u16string_view name, std::u16string_view filter = lyrics,
                       std::u16string_view extension = u"lrc") {
        QTimer user;
        QWidget *answered = nullptr;
        int settled = 0;
        QObject::connect(&user, &QTimer::timeout, [&] {
            QWidget *box = QApplication::activeModalWidget();
            if (box == nullptr || box == answered || !box->isActiveWindow() || ++settled < 8)
                return;
            settled = 0;
            const bool isQuestion = qobject_cast<QMessageBox *>(box) != nullptr;
            if (isQuestion)
                asked += qobject_cast<QMessageBox *>(box)->text();
            answered = isQuestion ? nullptr : box;
            // A dialog that is back behind its question is cancelled.
            const bool isBack = !isQuestion && !asked.isEmpty();
            desk().session.run({"xdotool", "key", isQuestion || isBack ? "Escape" : "Return"});
        });
        user.start(10);
        platform::OPENFILENAME record;
        record.title = u"Save";
        record.filter = filter;
        record.file = std::u16string(name) + std::u16string(1, u'\0');
        record.initialDirectory = folder.text();
        record.defaultExtension = extension;
        record.flags = platform::OFN_OVERWRITEPROMPT;
        if (!dialogs_->GetSaveFileNameA(record))
            return "cancelled";
        const std::u16string path(untilNul(record.file));
        EXPECT_EQ(path.substr(0, folder.text().size() + 1), folder.text() + u"/");
        return platform::pathBytes(path.substr(folder.text().size() + 1));
    }

    static constexpr std::u16string_view lyrics = u"Lyrics\0*.lrc\0"sv;

private:
    platform::AnsiConversion ansi_{{}};
    std::unique_ptr<platform::Dialogs> dialogs_ = platform::makeQtDialogs(*desk().windows, ansi_);
};

TEST_F(SaveDialogTest, ANameThatNoPatternTakesGetsTheExtension) {
    EXPECT_EQ(choose(u"Song"), "Song.lrc");
    EXPECT_EQ(choose(u"Mr. Blue"), "Mr. Blue.lrc");
    EXPECT_EQ(choose(u"01. 歌.txt"), "01. 歌.txt.lrc");
    EXPECT_EQ(choose(u"Song."), "Song..lrc");
}

TEST_F(SaveDialogTest, ANameThatAPatternTakesStays) {
    EXPECT_EQ(choose(u"Mr. Blue.lrc"), "Mr. Blue.lrc");
    EXPECT_EQ(choose(u"SONG.LRC"), "SONG.LRC");
    EXPECT_EQ(choose(u"Song.txt", u"Texts\0*.lrc; *.txt\0"sv), "Song.txt");
    EXPECT_EQ(choose(u"A SONG", u"All\0*.*\0"sv), "A SONG");
    EXPECT_EQ(choose(u"A song. B", lyrics, u""), "A song. B");
}

TEST_F(SaveDialogTest, AsksAboutTheFileThatWillBeWritten) {
    folder.write("Mr. Blue", "not meant");
    EXPECT_EQ(choose(u"Mr. Blue"), "Mr. Blue.lrc");
    EXPECT_EQ(asked, QStringList());
    folder.write("Mr. Red.lrc", "meant");
    EXPECT_EQ(choose(u"Mr. Red"), "cancelled");
    ASSERT_EQ(asked.size(), 1);
    EXPECT_TRUE(asked.front().contains(QLatin1String("Mr. Red.lrc")))
        << asked.front().toStdString();
}

TEST_F(SaveDialogTest, TheNameOfAFolderLeadsIntoIt) {
    folder.makeFolder("sub");
    QTimer user;
    QString inside;
    int settled = 0;
    QObject::connect(&user, &QTimer::timeout, [&] {
        auto *box = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
        if (box == nullptr || box->directory().dirName() != QLatin1String("sub") || ++settled < 8)
            return;
        inside = box->directory().dirName();
        user.stop();
        box->reject();
    });
    user.start(10);
    EXPECT_EQ(choose(u"sub"), "cancelled");
    EXPECT_EQ(inside, QLatin1String("sub"));
}

} // namespace
} // namespace velmora::tests
