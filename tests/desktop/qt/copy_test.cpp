// The system's copy of a file with its progress and its questions.

#include "platform/backends/qt/system/copy_file.h"
#include "tests/desktop/qt/desk.h"
#include "tests/unit/linux/temp_folder.h"
#include "text/path_text.h"

#include <QApplication>
#include <QLabel>
#include <QProgressDialog>

namespace velmora::tests {
namespace {

using platform::CopyOutcome;

// The window of the progress, shown or not yet.
QProgressDialog *progress() {
    for (QWidget *window : QApplication::topLevelWidgets())
        if (auto *found = qobject_cast<QProgressDialog *>(window))
            return found;
    return nullptr;
}

bool isAsking() {
    const QWidget *modal = QApplication::activeModalWidget();
    return modal != nullptr && qobject_cast<const QProgressDialog *>(modal) == nullptr;
}

class CopyTest : public DeskTest {
protected:
    TempFolder folder;
    const std::string name = "<b>x & y.mp3";

    void SetUp() override {
        DeskTest::SetUp();
        folder.makeFolder("stick");
        folder.write(name, "");
        std::filesystem::resize_file(folder.bytes(name), 64U << 20U);
    }

    // Copies while `tick` runs again and again.
    CopyOutcome copy(std::function<void()> tick) {
        TestForm form("Meanwhile");
        forms::Timer timer(form, "timer");
        timer.setInterval(1);
        timer.onTimer = std::move(tick);
        timer.setRunning(true);
        return platform::qt::copyIntoFolder(*desk().windows, folder.text(name),
                                            folder.text("stick/"));
    }
    // A file comes to the place of the copy while it is made; the question then gets this answer.
    CopyOutcome copyWhileAFileComes(const std::string &answer) {
        bool came = false;
        bool asked = false;
        const CopyOutcome outcome = copy([&] {
            if (!came && progress() != nullptr) {
                folder.write("stick/" + name, "came meanwhile");
                came = true;
            } else if (isAsking()) {
                desk().session.run({"xdotool", "key", answer});
                asked = true;
            }
        });
        EXPECT_TRUE(came) << "the copy was over first";
        EXPECT_TRUE(asked);
        return outcome;
    }
    std::string copied() const { return folder.read("stick/" + name); }
    std::size_t countOnStick() const {
        const std::filesystem::directory_iterator stick(folder.bytes("stick"));
        return static_cast<std::size_t>(std::distance(begin(stick), end(stick)));
    }
};

TEST_F(CopyTest, ShowsANameAsItIsAndNotAsMarkup) {
    QString shown;
    Qt::TextFormat format = Qt::AutoText;
    EXPECT_EQ(copy([&] {
                  if (const QProgressDialog *window = progress()) {
                      shown = window->findChild<QLabel *>()->text();
                      format = window->findChild<QLabel *>()->textFormat();
                  }
              }),
              CopyOutcome::Done);
    EXPECT_EQ(shown.toStdString(), name);
    EXPECT_EQ(format, Qt::PlainText);
    EXPECT_EQ(copied().size(), 64U << 20U);
}

TEST_F(CopyTest, AsksAboutAFileThatCameMeanwhileAndLeavesIt) {
    EXPECT_EQ(copyWhileAFileComes("n"), CopyOutcome::Cancelled);
    EXPECT_TRUE(copied() == "came meanwhile") << copied().size() << " bytes";
    EXPECT_EQ(countOnStick(), 1U);
}

TEST_F(CopyTest, AsksAboutAFileThatCameMeanwhileAndReplacesIt) {
    EXPECT_EQ(copyWhileAFileComes("y"), CopyOutcome::Done);
    EXPECT_EQ(copied().size(), 64U << 20U);
    EXPECT_EQ(countOnStick(), 1U);
}

TEST_F(CopyTest, AsksAboutADanglingLink) {
    folder.link("stick/" + name, "nowhere");
    bool asked = false;
    EXPECT_EQ(copy([&] {
                  if (isAsking()) {
                      desk().session.run({"xdotool", "key", "n"});
                      asked = true;
                  }
              }),
              CopyOutcome::Cancelled);
    EXPECT_TRUE(asked);
    EXPECT_TRUE(std::filesystem::is_symlink(folder.bytes("stick/" + name)));
}

} // namespace
} // namespace velmora::tests
