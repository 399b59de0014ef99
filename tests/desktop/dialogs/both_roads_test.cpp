// The rules of the dialogs for files and folders, on the toolkit's road and on the desktop's: the
// same table of cases on both.

#include "tests/desktop/dialogs/portal_bus.h"
#include "tests/desktop/qt/desk.h"

#include "base/text.h"
#include "platform/backends/bus/desktop_bus.h"
#include "platform/backends/linux/linux.h"
#include "platform/backends/qt/system/qt_dialogs.h"
#include "text/ansi_conversion.h"
#include "text/dialog_filters.h"

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

namespace velmora::tests {
namespace {

using namespace std::string_view_literals;

enum class Kind { Open, Save, Folder };
enum class Road { Toolkit, Portal };

constexpr std::u16string_view lyrics = u"Lyrics\0*.lrc\0"sv;
constexpr std::string_view cancelled = "(cancelled)";

struct Case {
    const char *name;
    Kind kind;
    std::u16string proposed = {};
    // What the person does: takes what is proposed, another name, or nothing ("(cancelled)"); says
    // yes or no to a question whether to overwrite, and cancels the dialog behind a no.
    std::string taken = {};
    bool saysYes = true;
    std::string expected = {};
    // About which file it was asked whether to overwrite it.
    std::string asked = {};
    std::u16string_view filter = lyrics;
    std::u16string extension = u"lrc";
};

void PrintTo(const Case &one, std::ostream *out) { *out << one.name; }

// The folder has a file of these names: "old.lrc", "Old Song.lrc" and what is opened; "sub" is a
// folder.
const std::vector<Case> &cases() {
    static const std::vector<Case> all = {
        {"AFileIsOpened", Kind::Open, u"", "old.lrc", true, "old.lrc"},
        {"AFileIsOpenedWhoseNameIsHard", Kind::Open, u"", "50% a #1 \xE6\xAD\x8C.lrc", true,
         "50% a #1 \xE6\xAD\x8C.lrc"},
        {"OpeningIsCancelled", Kind::Open, u"", std::string(cancelled), true,
         std::string(cancelled)},
        {"AFolderIsChosen", Kind::Folder, u"", "sub", true, "sub"},
        {"TheFolderIsCancelled", Kind::Folder, u"", std::string(cancelled), true,
         std::string(cancelled)},
        {"TheProposedNameIsTaken", Kind::Save, u"New.lrc", "", true, "New.lrc"},
        {"TheProposedNameGetsItsExtension", Kind::Save, u"Mr. Blue", "", true, "Mr. Blue.lrc"},
        {"ATypedNameGetsItsExtension", Kind::Save, u"New.lrc", "Mr. Green", true, "Mr. Green.lrc"},
        {"CaseIsIgnoredInAPattern", Kind::Save, u"", "SONG.LRC", true, "SONG.LRC"},
        {"EveryPatternOfAFilterCounts", Kind::Save, u"", "Song.txt", true, "Song.txt", "",
         u"Texts\0*.lrc; *.txt\0"sv},
        {"AllFilesTakesANameWithoutPoint", Kind::Save, u"", "A SONG", true, "A SONG", "",
         u"All\0*.*\0"sv},
        {"NoExtensionIsNone", Kind::Save, u"", "A song. B", true, "A song. B", "", lyrics, u""},
        {"SavingIsCancelled", Kind::Save, u"New.lrc", std::string(cancelled), true,
         std::string(cancelled)},
        {"AnOldFileIsAskedAboutAndReplaced", Kind::Save, u"", "old.lrc", true, "old.lrc",
         "old.lrc"},
        {"AnOldFileIsAskedAboutAndLeft", Kind::Save, u"", "old.lrc", false, std::string(cancelled),
         "old.lrc"},
        {"ItIsAskedAboutTheNameThatIsWritten", Kind::Save, u"", "Old Song", true, "Old Song.lrc",
         "Old Song.lrc"},
        {"ANoToTheNameThatIsWrittenLeavesIt", Kind::Save, u"", "Old Song", false,
         std::string(cancelled), "Old Song.lrc"},
    };
    return all;
}

class BothRoads : public DeskTest, public testing::WithParamInterface<std::tuple<Road, Case>> {
protected:
    void SetUp() override {
        DeskTest::SetUp();
        for (const char *name : {"old.lrc", "Old Song.lrc", "50% a #1 \xE6\xAD\x8C.lrc"})
            folder_.write(name, "old");
        folder_.makeFolder("sub");
        if (std::get<Road>(GetParam()) == Road::Portal) {
            bus_ = std::make_unique<PortalBus>();
            bus_->startPortal();
            desktop_ = std::make_unique<platform::DesktopBus>(
                platform::homeFolders(), [](int descriptor, std::function<void()> ready) {
                    return desk().windows->watch(descriptor, std::move(ready));
                });
            platform::DialogHost host;
            host.wait = [](const auto &done, auto limit) {
                return desk().windows->waitModal(done, limit);
            };
            host.nativeWindow = [](platform::HWND window) {
                return desk().windows->nativeWindow(window);
            };
            host.coversOthers = [] { return false; };
            host.mayReplace = [this](std::u16string_view path, std::u16string_view title) {
                return own_->mayReplace(path, title);
            };
            dialogs_ = &desktop_->dialogs(*own_, std::move(host));
        }
    }

    std::string chosen(const Case &one) {
        QTimer person;
        QObject::connect(&person, &QTimer::timeout, [&] { act(one); });
        person.start(10);
        if (bus_ != nullptr)
            tellPortal(one);
        if (one.kind == Kind::Folder) {
            const auto path =
                dialogs_->SHBrowseForFolderA({0, u"Folder", platform::BIF_RETURNONLYFSDIRS});
            return path ? within(*path) : std::string(cancelled);
        }
        platform::OPENFILENAME record;
        record.title = u"Which?";
        record.filter = one.filter;
        record.file = one.proposed + std::u16string(1, u'\0');
        record.initialDirectory = folder_.text();
        record.defaultExtension = one.extension;
        record.flags = one.kind == Kind::Save ? platform::OFN_OVERWRITEPROMPT : 0;
        const bool taken = one.kind == Kind::Save ? dialogs_->GetSaveFileNameA(record)
                                                  : dialogs_->GetOpenFileNameA(record);
        return taken ? within(untilNul(record.file)) : std::string(cancelled);
    }

    // Every file that a question was about, whoever asked.
    std::string asked() const {
        std::string all = asked_;
        if (bus_ != nullptr)
            for (const char *name : {"old.lrc", "Old Song.lrc"})
                if (bus_->heard("\"asked\": \"" + std::string(name) + "\""))
                    all += name;
        return all;
    }

    std::unique_ptr<PortalBus> bus_;

private:
    std::string within(std::u16string_view path) const {
        const std::u16string beginning = folder_.text() + u"/";
        EXPECT_TRUE(startsWith(path, beginning)) << toUtf8(path);
        return platform::pathBytes(path.substr(std::min(path.size(), beginning.size())));
    }

    // The chooser of the portal begins with what is proposed.
    void tellPortal(const Case &one) const {
        const std::string name =
            !one.taken.empty() ? one.taken
                               : toUtf8(platform::completedName(platform::dialogFilters(one.filter),
                                                                one.proposed, one.extension));
        const std::string answer = one.taken == cancelled
                                       ? "{\"response\": 1}"
                                       : "{\"uris\": [" + quotedUri(folder_.bytes(name)) +
                                             "], \"replace\": " + (one.saysYes ? "true" : "false") +
                                             "}";
        bus_->script("\"answers\": [" + answer + "]");
    }

    // What the person does in what the toolkit shows.
    void act(const Case &one) {
        QWidget *box = QApplication::activeModalWidget();
        if (box == nullptr || !box->isVisible() || box->testAttribute(Qt::WA_DontShowOnScreen))
            return;
        if (auto *question = qobject_cast<QMessageBox *>(box); question != nullptr) {
            for (const char *name : {"old.lrc", "Old Song.lrc"})
                if (question->text().contains(QLatin1String(name)))
                    asked_ += name;
            if (auto *button = question->button(one.saysYes ? QMessageBox::Yes : QMessageBox::No))
                button->click();
            else
                ADD_FAILURE() << question->text().toStdString();
            return;
        }
        auto *dialog = qobject_cast<QFileDialog *>(box);
        if (dialog == nullptr)
            return;
        if (one.taken == cancelled || (!asked_.empty() && !one.saysYes)) {
            dialog->reject();
            return;
        }
        if (one.kind == Kind::Folder)
            dialog->setDirectory(QString::fromStdString(folder_.path()));
        if (!one.taken.empty())
            dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"))
                ->setText(QString::fromStdString(one.taken));
        // Later: it may ask its question before it returns.
        if (!std::exchange(accepted_, true))
            QMetaObject::invokeMethod(dialog, "accept", Qt::QueuedConnection);
    }

    TempFolder folder_;
    std::string asked_;
    bool accepted_ = false;
    platform::AnsiConversion ansi_{{}};
    std::unique_ptr<platform::ToolkitDialogs> own_ =
        platform::makeQtDialogs(*desk().windows, ansi_);
    std::unique_ptr<platform::DesktopBus> desktop_;
    platform::Dialogs *dialogs_ = own_.get();
};

TEST_P(BothRoads, Rule) {
    const auto &[road, one] = GetParam();
    EXPECT_EQ(chosen(one), one.expected);
    EXPECT_EQ(asked(), one.asked);
    if (road == Road::Portal)
        EXPECT_TRUE(bus_->heard(one.kind == Kind::Save ? "SaveFile" : "OpenFile"));
}

std::string nameOf(const testing::TestParamInfo<std::tuple<Road, Case>> &tested) {
    const bool isPortal = std::get<Road>(tested.param) == Road::Portal;
    return std::get<Case>(tested.param).name + std::string(isPortal ? "_Portal" : "_Toolkit");
}

INSTANTIATE_TEST_SUITE_P(Dialogs, BothRoads,
                         testing::Combine(testing::Values(Road::Toolkit, Road::Portal),
                                          testing::ValuesIn(cases())),
                         nameOf);

} // namespace
} // namespace velmora::tests
