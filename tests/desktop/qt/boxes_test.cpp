// Message boxes, popup menus, tool tips, and what the font dialog gives back.

#include "tests/desktop/qt/desk.h"

#include "platform/backends/linux/linux.h"
#include "platform/backends/qt/system/qt_dialogs.h"

#include <QApplication>
#include <QEventLoop>
#include <QFontDatabase>
#include <QFontDialog>
#include <QFontInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <QToolTip>

namespace velmora::tests {
namespace {

using platform::MsgBoxButtons;
using platform::MsgBoxIcon;
using platform::MsgBoxResult;

// Does something while a nested loop runs, once `ready` holds. A loop that goes on for ever is
// ended.
class Meanwhile : public TestForm {
public:
    Meanwhile(std::function<bool()> ready, std::function<void()> act)
        : TestForm("Meanwhile"), ready_(std::move(ready)), act_(std::move(act)) {
        timer.setInterval(10);
        timer.onTimer = [this] {
            if (++ticks == limit)
                end();
            if (settled_ >= 8 || !ready_() || ++settled_ < 8)
                return;
            act_();
        };
        timer.setRunning(true);
    }
    forms::Timer timer{*this, "timer"};
    int ticks = 0;

private:
    static constexpr int limit = 6000;
    static void end() {
        ADD_FAILURE() << "what was to be answered stays up";
        if (QWidget *menu = QApplication::activePopupWidget(); menu != nullptr)
            menu->close();
        if (QWidget *box = QApplication::activeModalWidget(); box != nullptr)
            box->close();
    }
    std::function<bool()> ready_;
    std::function<void()> act_;
    int settled_ = 0;
};

// It has the keyboard, too: a key that comes ahead of that is lost.
bool boxIsUp() {
    const QWidget *box = QApplication::activeModalWidget();
    return box != nullptr && box->isActiveWindow();
}

bool menuIsUp() {
    const QWidget *menu = QApplication::activePopupWidget();
    return menu != nullptr && menu->windowHandle() != nullptr && menu->windowHandle()->isExposed();
}

void press(const std::string &key) { desk().session.run({"xdotool", "key", key}); }

// Straight to the box, as if the person had been at it when it came up.
void typed(int key) {
    QWidget *box = QApplication::activeModalWidget();
    ASSERT_NE(box, nullptr) << "it has gone";
    QWidget *to = box->focusWidget() != nullptr ? box->focusWidget() : box;
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key, Qt::NoModifier);
        QCoreApplication::sendEvent(to, &event);
    }
}

class MessageBoxTest : public DeskTest {
protected:
    // Boxes answer at once behind this.
    void SetUp() override {
        DeskTest::SetUp();
        desk().windows->personAsked();
    }
    // Shows a box and presses keys one after the other until it is gone.
    MsgBoxResult answer(MsgBoxButtons buttons, const std::vector<std::string> &keys) {
        Meanwhile meanwhile(boxIsUp, [&] {
            for (const std::string &key : keys)
                press(key);
        });
        return desk().windows->MsgBox(u"Really?", buttons, MsgBoxIcon::Question, u"Velmora");
    }
};

TEST_F(MessageBoxTest, TellsItsSourceInTheTipOverTheText) {
    QString tip;
    QString said;
    Meanwhile meanwhile(boxIsUp, [&] {
        for (const QLabel *label : QApplication::activeModalWidget()->findChildren<QLabel *>()) {
            tip += label->toolTip();
            said += label->accessibleDescription();
        }
        press("n");
    });
    const std::u16string source = u"http://host/<b>new</b>?a&b" + std::u16string(400, u'x');
    EXPECT_EQ(desk().windows->MsgBox(u"Really?", MsgBoxButtons::YesNo, MsgBoxIcon::None, u"Velmora",
                                     source),
              MsgBoxResult::No);
    EXPECT_TRUE(tip.contains("http://host/&lt;b&gt;new&lt;/b&gt;?a&amp;b")) << tip.toStdString();
    EXPECT_LT(tip.size(), 400);
    EXPECT_TRUE(said.startsWith("http://host/<b>new</b>?a&b"));
}

// Ends a box that is still there then; one that has its answer takes the key with it, and no box of
// a later case meets it.
void refuseAfter(int milliseconds, QObject &box) {
    QTimer::singleShot(
        milliseconds, &box,
        [] {
            if (QApplication::activeModalWidget() != nullptr)
                typed(Qt::Key_N);
        });
}

// No key or click of the last second asked for it.
TEST_F(MessageBoxTest, ThatComesUpByItselfIsDeafToItsAnswersForHalfASecond) {
    MsgBoxResult result = MsgBoxResult::Ok;
    QTimer::singleShot(1200, [&] {
        QObject box;
        QTimer::singleShot(0, [] {
            for (const int key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space, Qt::Key_Y})
                typed(key);
        });
        refuseAfter(600, box);
        result = desk().windows->MsgBox(u"Really?", MsgBoxButtons::YesNo, MsgBoxIcon::Question,
                                        u"Velmora");
        desk().windows->quit(0);
    });
    desk().windows->run();
    EXPECT_EQ(result, MsgBoxResult::No);
}

// An update that the player finds while it starts.
TEST_F(MessageBoxTest, ThatComesUpInTheStartIsDeafAsWell) {
    QEventLoop loop;
    QTimer::singleShot(1200, &loop, &QEventLoop::quit);
    loop.exec();
    QObject box;
    QTimer::singleShot(0, [] { typed(Qt::Key_Return); });
    refuseAfter(600, box);
    EXPECT_EQ(desk().windows->MsgBox(u"Really?", MsgBoxButtons::YesNo, MsgBoxIcon::Question, u"V"),
              MsgBoxResult::No);
}

TEST_F(MessageBoxTest, ThatWasAskedForAnswersAtOnce) {
    MsgBoxResult result = MsgBoxResult::Ok;
    QTimer::singleShot(1200, [&] {
        desk().windows->personAsked();
        QObject box;
        QTimer::singleShot(0, [] { typed(Qt::Key_Return); });
        refuseAfter(600, box);
        result = desk().windows->MsgBox(u"Really?", MsgBoxButtons::YesNo, MsgBoxIcon::Question,
                                        u"Velmora");
        desk().windows->quit(0);
    });
    desk().windows->run();
    EXPECT_EQ(result, MsgBoxResult::Yes);
}

TEST_F(MessageBoxTest, TheFirstButtonIsTheDefault) {
    EXPECT_EQ(answer(MsgBoxButtons::YesNo, {"Return"}), MsgBoxResult::Yes);
    EXPECT_EQ(answer(MsgBoxButtons::YesNoCancel, {"Return"}), MsgBoxResult::Yes);
    EXPECT_EQ(answer(MsgBoxButtons::Ok, {"Return"}), MsgBoxResult::Ok);
}

TEST_F(MessageBoxTest, YAndNAreKeys) {
    EXPECT_EQ(answer(MsgBoxButtons::YesNo, {"y"}), MsgBoxResult::Yes);
    EXPECT_EQ(answer(MsgBoxButtons::YesNo, {"n"}), MsgBoxResult::No);
    EXPECT_EQ(answer(MsgBoxButtons::YesNoCancel, {"n"}), MsgBoxResult::No);
}

TEST_F(MessageBoxTest, YesNoCannotBeEscaped) {
    EXPECT_EQ(answer(MsgBoxButtons::YesNo, {"Escape", "Escape", "n"}), MsgBoxResult::No);
    EXPECT_EQ(answer(MsgBoxButtons::YesNo, {"Escape", "y"}), MsgBoxResult::Yes);
}

TEST_F(MessageBoxTest, EscapeIsCancelWhereThereIsOne) {
    EXPECT_EQ(answer(MsgBoxButtons::YesNoCancel, {"Escape"}), MsgBoxResult::Cancel);
    EXPECT_EQ(answer(MsgBoxButtons::Ok, {"Escape"}), MsgBoxResult::Ok);
}

TEST_F(MessageBoxTest, ArrowsAndTabReachTheOtherButtons) {
    EXPECT_EQ(answer(MsgBoxButtons::YesNo, {"Tab", "Return"}), MsgBoxResult::No);
    EXPECT_EQ(answer(MsgBoxButtons::YesNoCancel, {"Tab", "Tab", "space"}), MsgBoxResult::Cancel);
}

TEST_F(MessageBoxTest, AForcedCloseCountsAsNo) {
    Meanwhile meanwhile(boxIsUp, [] {
        desk().screen->askToClose(
            static_cast<xcb_window_t>(QApplication::activeModalWidget()->winId()));
    });
    EXPECT_EQ(desk().windows->MsgBox(u"Really?", MsgBoxButtons::YesNo, MsgBoxIcon::Question, u"V"),
              MsgBoxResult::No);
}

// The buttons would lie below the screen, and the first of them still be the one that Enter
// presses.
TEST_F(MessageBoxTest, ATextHigherThanTheScreenScrollsAboveItsButtons) {
    std::u16string text;
    for (int line = 0; line < 900; ++line)
        text += u"What is new\r\n";
    QRect box;
    QRect button;
    int down = 0;
    int up = -1;
    Meanwhile meanwhile(boxIsUp, [&] {
        QWidget *shown = QApplication::activeModalWidget();
        box = shown->frameGeometry();
        const auto buttons = shown->findChildren<QPushButton *>();
        button = QRect(buttons.front()->mapToGlobal(QPoint()), buttons.front()->size());
        auto *area = shown->findChild<QScrollArea *>();
        ASSERT_NE(area, nullptr);
        QObject::connect(area->verticalScrollBar(), &QScrollBar::valueChanged, [&](int value) {
            down = std::max(down, value);
            up = value;
        });
        for (const char *key : {"Next", "Next", "Prior", "Prior"})
            press(key);
        press("n");
    });
    EXPECT_EQ(desk().windows->MsgBox(text, MsgBoxButtons::YesNo, MsgBoxIcon::None, u"V"),
              MsgBoxResult::No);
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    EXPECT_TRUE(screen.contains(box)) << box.top() << " to " << box.bottom();
    EXPECT_TRUE(box.contains(button));
    EXPECT_GT(down, 0);
    EXPECT_EQ(up, 0);
}

TEST_F(MessageBoxTest, NoOtherWindowTakesInputAndTimersGoOn) {
    TestForm form;
    int downs = 0;
    form.on().MouseDown = [&](const forms::MouseEvent &) { ++downs; };
    form.move({150, 150, 1500, 1500});
    form.appear();
    Meanwhile meanwhile(boxIsUp, [&] {
        desk().session.run({"xdotool", "mousemove", "20", "20", "click", "1"});
        press("Return");
    });
    desk().windows->MsgBox(u"Wait", MsgBoxButtons::Ok, MsgBoxIcon::Information, u"V");
    ASSERT_TRUE(desk().settle());
    EXPECT_EQ(downs, 0);
    EXPECT_GE(meanwhile.ticks, 8);
}

TEST_F(MessageBoxTest, LiesAboveATopmostWindow) {
    TestForm form;
    form.setTopmost(true);
    form.move({0, 0, 1280 * 15, 700 * 15});
    form.appear();
    bool above = false;
    Meanwhile meanwhile(boxIsUp, [&] {
        above = desk().screen->isAbove(
            static_cast<xcb_window_t>(QApplication::activeModalWidget()->winId()), nativeOf(form));
        press("Return");
    });
    desk().windows->MsgBox(u"Wait", MsgBoxButtons::Ok, MsgBoxIcon::Exclamation, u"V");
    EXPECT_TRUE(above);
}

TEST_F(MessageBoxTest, ShowsItsTitleToTheWindowManagerAndIsDark) {
    std::string title;
    std::uint32_t pixel = 0xFFFFFF;
    Meanwhile meanwhile(boxIsUp, [&] {
        const QWidget *box = QApplication::activeModalWidget();
        title = desk().screen->text(static_cast<xcb_window_t>(box->winId()), "_NET_WM_NAME");
        pixel = desk().screen->pixel(box->x() + 5, box->y() + box->height() - 5);
        press("Return");
    });
    desk().windows->MsgBox(u"Text with <b>no</b> markup", MsgBoxButtons::Ok, MsgBoxIcon::Critical,
                           u"标题");
    EXPECT_EQ(title, "标题");
    EXPECT_LT((pixel >> 8) & 0xFF, 0x40U);
}

class FontDialogTest : public DeskTest {
protected:
    static constexpr auto missing = "No Such Face";

    // Opens it for a face, picks another in its list if one is named, and confirms. Answers the
    // name that comes back.
    std::string pick(const std::string &asked, const QString &family = {}) {
        const auto ansi = platform::makeAnsiText([] { return std::u16string(); });
        const auto dialogs = platform::makeQtDialogs(*desk().windows, *ansi);
        platform::CHOOSEFONT record;
        record.logFont.faceName = asked;
        record.pointSize = 200;
        Meanwhile meanwhile(boxIsUp, [&] {
            auto *dialog = qobject_cast<QFontDialog *>(QApplication::activeModalWidget());
            if (dialog != nullptr) {
                shownFirst = dialog->currentFont().family();
                auto *families = dialog->findChild<QListView *>(); // the first of its lists
                const QModelIndexList rows = families->model()->match(
                    families->model()->index(0, 0), Qt::DisplayRole, family, 1, Qt::MatchExactly);
                if (!family.isEmpty() && !rows.isEmpty())
                    families->setCurrentIndex(rows.front());
            }
            press("Return");
        });
        EXPECT_EQ(dialogs->ChooseFontA(record), 1);
        return record.logFont.faceName;
    }
    QString shownFirst; // by the dialog itself
};

TEST_F(FontDialogTest, EveryFaceThatIsPickedComesBackTheFirstTimeToo) {
    pick(missing);
    int picked = 0;
    for (const QString &family : QFontDatabase::families()) {
        const bool named = family == QFontInfo(QFont(missing)).family() ||
                           family == QLatin1String("Liberation Mono");
        if (!named || family == shownFirst)
            continue;
        ++picked;
        EXPECT_EQ(pick(missing, family), family.toStdString());
    }
    // The face that stands in for a missing one, unless it is what the dialog shows; and another.
    EXPECT_GE(picked, 1);
}

TEST_F(FontDialogTest, WhatItShowsByItselfIsNoChoice) {
    EXPECT_EQ(pick(missing), missing);
    EXPECT_EQ(pick(missing, shownFirst), missing);
    EXPECT_EQ(pick("Liberation Mono"), "Liberation Mono");
}

struct MenuOwner : TestForm {
    forms::Menu menu{*this, "menu"};
    forms::Menu play{menu, "play"};
    forms::Menu line{menu, "null_1"};
    forms::Menu more{menu, "more"};
    forms::Menu inner{more, "inner"};
    forms::Menu off{menu, "off"};
    forms::Menu quit{menu, "quit"};
    std::string chosen;
    MenuOwner() {
        play.setCaption(u"Play");
        line.setSeparator(true);
        more.setCaption(u"More");
        inner.setCaption(u"Inner");
        off.setCaption(u"Off");
        off.setEnabled(false);
        quit.setCaption(u"Quit");
        play.on().Click = [this] { chosen += "play "; };
        inner.on().Click = [this] { chosen += "inner "; };
        off.on().Click = [this] { chosen += "off "; };
        quit.on().Click = [this] { chosen += "quit "; };
    }
};

class MenuTest : public DeskTest {
protected:
    std::string choose(MenuOwner &owner, const std::vector<std::string> &keys) {
        desk().movePointer(400, 300);
        Meanwhile meanwhile(menuIsUp, [&] {
            for (const std::string &key : keys)
                press(key);
        });
        desk().windows->PopupMenu(owner, owner.menu);
        return owner.chosen;
    }
};

TEST_F(MenuTest, TheEntryChosenRaisesItsClick) {
    MenuOwner owner;
    owner.appear();
    EXPECT_EQ(choose(owner, {"Down", "Return"}), "play ");
}

TEST_F(MenuTest, SeparatorsAndDisabledEntriesAreNoStops) {
    MenuOwner owner;
    owner.appear();
    EXPECT_EQ(choose(owner, {"Down", "Down", "Down", "Return"}), "quit ");
}

TEST_F(MenuTest, EntriesWithEntriesOpen) {
    MenuOwner owner;
    owner.appear();
    EXPECT_EQ(choose(owner, {"Down", "Down", "Right", "Return"}), "inner ");
}

TEST_F(MenuTest, EscapeChoosesNothing) {
    MenuOwner owner;
    owner.appear();
    EXPECT_EQ(choose(owner, {"Down", "Escape"}), "");
}

TEST_F(MenuTest, OpensAtThePointerAndTakesAClick) {
    MenuOwner owner;
    owner.appear();
    desk().movePointer(400, 300);
    QPoint at;
    Meanwhile meanwhile(menuIsUp, [&] {
        at = QApplication::activePopupWidget()->pos();
        desk().session.run({"xdotool", "mousemove", "430", "320", "click", "1"});
    });
    desk().windows->PopupMenu(owner, owner.menu);
    EXPECT_EQ(at, QPoint(400, 300));
    EXPECT_EQ(owner.chosen, "play ");
}

TEST_F(DeskTest, AToolTipShowsTheTextAsItStands) {
    TestForm form;
    forms::Image image{form, "image"};
    image.move({750, 750, 900, 900});
    image.setToolTip(u"<b>track</b>.mp3");
    form.appear();
    desk().movePointer(form.screenX(60), form.screenY(60));
    desk().movePointer(form.screenX(62), form.screenY(62));
    ASSERT_TRUE(desk().pump([] { return QToolTip::isVisible(); }));
    EXPECT_NE(QToolTip::text().indexOf(QStringLiteral("&lt;b&gt;")), -1);
    image.setToolTip(u"plain");
    EXPECT_TRUE(desk().pump([] { return QToolTip::text() == QStringLiteral("plain"); }));
    image.setToolTip(u"");
    EXPECT_TRUE(desk().pump([] { return !QToolTip::isVisible(); }));
}

} // namespace
} // namespace velmora::tests
