#include "tests/desktop/gallery/boxes.h"

#include "platform/backends/qt/system/qt_dialogs.h"
#include "playback/Main.h"
#include "playback/MenuForm.h"
#include "settings/Language.h"
#include "tests/fakes/fake_ansi.h"

#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QMenu>
#include <QTimer>
#include <QToolTip>

#include <functional>
#include <iostream>

namespace velmora {

namespace {

constexpr int lookEveryMs = 20;
constexpr int settledMs = 150;
constexpr int limitMs = 10000;

class Boxes {
public:
    Boxes(platform::QtWindowSystem &windows, QString folder)
        : windows_(windows), folder_(std::move(folder)) {}

    // Runs `show`, which comes back when what it shows is closed.
    bool keep(const char *name, const std::function<void()> &show) {
        bool kept = false;
        QElapsedTimer clock;
        clock.start();
        QTimer look;
        look.setInterval(lookEveryMs);
        QObject::connect(&look, &QTimer::timeout, [&] {
            QWidget *box = upNow();
            if (box == nullptr || clock.elapsed() < settledMs)
                return;
            if (auto *menu = qobject_cast<QMenu *>(box); menu != nullptr)
                menu->setActiveAction(menu->actions().value(2));
            kept = box->grab().save(folder_ + "/box_" + name + ".png");
            look.stop();
            box->close();
        });
        look.start();
        show();
        if (!kept)
            std::cerr << name << " did not appear\n";
        return kept;
    }

    bool keepTip(Velmora &app) {
        const QString words =
            QString::fromStdU16String(std::u16string(app.Language().msg_Rename_Prompt));
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < limitMs) {
            windows_.DoEvents();
            // A window that goes takes the tip along.
            if (!QToolTip::isVisible())
                QToolTip::showText(QPoint(200, 200), words);
            for (QWidget *widget : QApplication::topLevelWidgets())
                if (widget->windowType() == Qt::ToolTip && widget->isVisible() &&
                    clock.elapsed() > settledMs) {
                    const bool kept = widget->grab().save(folder_ + "/box_tip.png");
                    QToolTip::hideText();
                    return kept;
                }
        }
        std::cerr << "the tip did not appear\n";
        return false;
    }

private:
    static QWidget *upNow() {
        QWidget *popup = QApplication::activePopupWidget();
        QWidget *box = popup != nullptr ? popup : QApplication::activeModalWidget();
        return box != nullptr && box->isVisible() ? box : nullptr;
    }

    platform::QtWindowSystem &windows_;
    QString folder_;
};

} // namespace

bool keepBoxes(platform::QtWindowSystem &windows, Velmora &app, const QString &folder) {
    using platform::MsgBoxButtons;
    using platform::MsgBoxIcon;
    Boxes boxes(windows, folder);
    const fakes::FakeAnsi ansi;
    const auto dialogs = platform::makeQtDialogs(windows, ansi);
    const std::u16string prompt(app.Language().msg_Rename_Prompt);
    const auto message = [&](MsgBoxButtons buttons, MsgBoxIcon icon) {
        return [&windows, &prompt, buttons, icon] {
            windows.MsgBox(prompt, buttons, icon, u"Velmora 2011");
        };
    };
    const auto menu = [&](forms::Menu &shown) {
        return [&app, &shown, &windows] { windows.PopupMenu(app.MenuForm(), shown); };
    };
    bool good = boxes.keepTip(app);
    good &= boxes.keep("ask", message(MsgBoxButtons::YesNoCancel, MsgBoxIcon::Question));
    good &= boxes.keep("warn", message(MsgBoxButtons::Ok, MsgBoxIcon::Exclamation));
    good &= boxes.keep("fail", message(MsgBoxButtons::Ok, MsgBoxIcon::Critical));
    good &= boxes.keep("tell", message(MsgBoxButtons::Ok, MsgBoxIcon::Information));
    good &= boxes.keep("menu", menu(app.MenuForm().menu));
    good &= boxes.keep("list_menu", menu(app.MenuForm().playlist_Menu));
    platform::OPENFILENAME file;
    file.title = u"Velmora 2011";
    good &= boxes.keep(
        "open", [&] { dialogs->GetOpenFileNameA(file); });
    good &= boxes.keep(
        "save", [&] { dialogs->GetSaveFileNameA(file); });
    good &= boxes.keep("folder", [&] { dialogs->SHBrowseForFolderA({}); });
    platform::CHOOSECOLOR colour;
    good &= boxes.keep("colour", [&] { dialogs->ChooseColorA(colour); });
    platform::CHOOSEFONT font;
    font.logFont.faceName = "Arial";
    font.pointSize = 140;
    good &= boxes.keep("font", [&] { dialogs->ChooseFontA(font); });
    return good;
}

} // namespace velmora
