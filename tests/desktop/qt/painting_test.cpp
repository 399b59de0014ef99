// What is drawn, and when.

#include "tests/desktop/qt/desk.h"

#include <QEvent>
#include <QPaintEvent>
#include <QWidget>

#include <algorithm>
#include <chrono>
#include <functional>

namespace velmora::tests {
namespace {

struct PaintForm : TestForm {
    forms::Shape bar{*this, "bar"};
    forms::Line line{*this, "line"};
    forms::Label label{*this, "label"};
    forms::PictureBox box{*this, "box"};
    forms::Label inner{box, "inner"};
    forms::Image image{*this, "image"};
    PaintForm() {
        bar.move({300, 300, 1500, 150});   // 20,20 100x10
        bar.setFillColor(0x000000FF);      // red
        line.setEnds(300, 750, 1800, 750); // 20,50 to 120,50
        line.setBorderColor(0x0000FF00);
        label.move({300, 1050, 1500, 300}); // 20,70
        label.setCaption(u"Label");
        label.setForeColor(0x00FFFFFF);
        label.setTransparent(false);
        label.setBackColor(0x00FF0000);  // blue
        box.move({2250, 300, 900, 600}); // 150,20 60x40
        box.setBackColor(0x00000000);
        inner.move({-300, 0, 3000, 600});
        inner.setTransparent(false);
        inner.setBackColor(0x0000FFFF);     // yellow
        image.move({2250, 1200, 450, 450}); // 150,80 30x30
        image.setPicture(forms::Picture::play);
    }
};

// Counts what the toolkit is made to paint in a window.
class PaintCounter : public QObject {
public:
    explicit PaintCounter(const forms::Form &form)
        : top_(static_cast<platform::qt::QtFormWindow *>(form.window())->top()) {
        top_->installEventFilter(this);
    }
    ~PaintCounter() override { top_->removeEventFilter(this); }
    bool eventFilter(QObject *, QEvent *event) override {
        if (event->type() == QEvent::Paint) {
            ++count;
            area += static_cast<QPaintEvent *>(event)->region();
        }
        return false;
    }
    int count = 0;
    QRegion area;

private:
    QWidget *top_;
};

class PaintTest : public DeskTest {};

TEST_F(PaintTest, ShapesLinesLabelsAndBoxesStandWhereTheDesignPutsThem) {
    PaintForm form;
    form.appear();
    EXPECT_TRUE(desk().pump([&] { return form.pixel(20, 20) == 0xFF0000; }));
    EXPECT_EQ(form.pixel(119, 29), 0xFF0000U);
    EXPECT_EQ(form.pixel(120, 25), 0x232A35U) << "the ground";
    EXPECT_EQ(form.pixel(20, 50), 0x00FF00U);
    EXPECT_EQ(form.pixel(100, 50), 0x00FF00U);
    EXPECT_EQ(form.pixel(100, 49), 0x232A35U) << "one pixel, not blurred";
    EXPECT_EQ(form.pixel(100, 51), 0x232A35U);
    EXPECT_EQ(form.pixel(119, 89), 0x0000FFU);
    EXPECT_EQ(form.pixel(150, 20), 0xFFFF00U);
    EXPECT_EQ(form.pixel(209, 59), 0xFFFF00U);
    EXPECT_EQ(form.pixel(210, 40), 0x232A35U) << "what is contained is clipped";
    EXPECT_EQ(form.pixel(149, 40), 0x232A35U);
}

TEST_F(PaintTest, ARingStandsRoundThePaintedControlThatHasTheKeyboard) {
    constexpr std::uint32_t accent = 0x5BE0CF;
    PaintForm form;
    forms::TextBox text(form, "text");
    text.move({2250, 1950, 900, 300});
    form.image.setTabStop(true);
    form.label.setTabStop(true);
    form.appear();
    const auto ringed = [&](bool image, bool label) {
        return desk().pump([&] {
            return (form.pixel(165, 81) == accent) == image &&
                   (form.pixel(70, 71) == accent) == label;
        });
    };
    EXPECT_TRUE(ringed(false, false)); // the box has it
    form.setFocus(&form.image);
    EXPECT_TRUE(ringed(true, false));
    form.setFocus(&form.label);
    EXPECT_TRUE(ringed(false, true));
    // A click into the box takes it away from there.
    desk().click(form.screenX(170), form.screenY(140));
    EXPECT_TRUE(ringed(false, false));
    EXPECT_EQ(form.activeControl(), &text);
}

TEST_F(PaintTest, LettersAreDrawnInTheLabel) {
    PaintForm form;
    form.appear();
    const ScreenPicture picture =
        desk().screen->picture(form.screenX(20), form.screenY(70), 100, 20);
    const auto white = std::count_if(picture.pixels.begin(), picture.pixels.end(),
                                     [](std::uint32_t p) { return (p & 0xFF00) > 0x8000; });
    EXPECT_GT(white, 30);
}

TEST_F(PaintTest, AlignmentPutsTheTextLeftRightOrInTheMiddle) {
    PaintForm form;
    form.appear();
    const auto inkedColumns = [&] {
        const ScreenPicture picture =
            desk().screen->picture(form.screenX(20), form.screenY(70), 100, 20);
        int first = 100;
        int last = -1;
        for (int y = 0; y < 20; ++y)
            for (int x = 0; x < 100; ++x)
                if ((picture.at(x, y) & 0xFF00) > 0x6000) {
                    first = std::min(first, x);
                    last = std::max(last, x);
                }
        return std::pair(first, last);
    };
    ASSERT_TRUE(desk().pump([&] { return inkedColumns().second > 0; }));
    EXPECT_LT(inkedColumns().first, 4);
    form.label.setAlignment(forms::Alignment::Right);
    EXPECT_TRUE(desk().pump([&] { return inkedColumns().second > 95; }));
    form.label.setAlignment(forms::Alignment::Centre);
    EXPECT_TRUE(desk().pump([&] {
        const auto [first, last] = inkedColumns();
        return std::abs(first - (99 - last)) <= 2;
    }));
}

TEST_F(PaintTest, AnAutosizeLabelIsExactlyAsWideAsItsText) {
    PaintForm form;
    form.label.setAutoSize(true);
    form.label.setCaption(u"Wide 灯火 text");
    const auto extent = desk().windows->textExtent(u"Wide 灯火 text", form.label.font());
    EXPECT_FLOAT_EQ(form.label.width(), extent.width);
    EXPECT_FLOAT_EQ(static_cast<float>(static_cast<int>(extent.width / 15)) * 15, extent.width);
    EXPECT_GT(extent.width, 0);
    EXPECT_FLOAT_EQ(desk().windows->textExtent(u"", form.label.font()).width, 0);
    EXPECT_FLOAT_EQ(desk().windows->textExtent(u"a\r\nb", form.label.font()).height,
                    2 * desk().windows->textExtent(u"a", form.label.font()).height);
}

std::u16string repeated(std::u16string_view text, int times) {
    std::u16string all;
    for (int i = 0; i < times; ++i)
        all += text;
    return all;
}

TEST_F(PaintTest, ALongLineIsAsWideAsItsWords) {
    const forms::Font font(u"Arial", 9);
    const auto widthOf = [&](int words) {
        return desk().windows->textExtent(repeated(u"word ", words), font).width;
    };
    const float word = (widthOf(90) - widthOf(30)) / 60;
    EXPECT_NEAR(widthOf(1000), widthOf(90) + 910 * word, 60 * 15);
    const auto pairs = desk().windows->textExtent(repeated(u"\U00020000", 1500), font);
    const auto pair = desk().windows->textExtent(u"\U00020000", font);
    EXPECT_NEAR(pairs.width, 1500 * pair.width, 1500 * 15);
    EXPECT_FLOAT_EQ(pairs.height, pair.height);
}

TEST_F(PaintTest, OfALineWithoutEndOnlyTheBeginningCounts) {
    const forms::Font font(u"Arial", 36);
    const auto most = desk().windows->textExtent(std::u16string(8192, u'x'), font);
    EXPECT_GT(most.width, 8000 * 15 * 15);
    EXPECT_FLOAT_EQ(desk().windows->textExtent(std::u16string(15'000'000, u'x'), font).width,
                    most.width);
}

TEST_F(PaintTest, ALongLineIsSeenAllAlong) {
    PaintForm form;
    form.appear();
    form.label.setAutoSize(true);
    form.label.setCaption(repeated(u"word ", 1600));
    const int wide = static_cast<int>(form.label.width() / 15);
    // The widest gap between letters of this colour, and whether there are any.
    const auto gapOf = [&](bool red) {
        const ScreenPicture picture =
            desk().screen->picture(form.screenX(0), form.screenY(70), 150, 14);
        int gap = 0;
        int widest = 0;
        for (int x = 0; x < 150; ++x) {
            bool inked = false;
            for (int y = 0; y < 14; ++y)
                inked |= (picture.at(x, y) >> (red ? 16 : 8) & 0xFF) > 0x60;
            gap = inked ? 0 : gap + 1;
            widest = std::max(widest, gap);
        }
        return widest;
    };
    // Wherever it is shifted to there are letters, and no gap wider than a blank.
    bool red = false;
    for (const int shift : {0, 700, 5'000, 11'900, 24'100, wide / 2, wide - 300}) {
        red = !red;
        form.label.setForeColor(red ? 0x000000FF : 0x0000FF00);
        form.label.setLeft(static_cast<Twips>(-shift) * 15);
        EXPECT_TRUE(desk().pump([&] { return gapOf(red) <= 6; }, 2000))
            << shift << ": " << gapOf(red);
    }
}

TEST_F(PaintTest, BoldIsWiderAndChineseIsAsWideAsItsSize) {
    const forms::Font plain(u"Arial", 9);
    const forms::Font bold(u"Arial", 9, true);
    auto &windows = *desk().windows;
    EXPECT_GT(windows.textExtent(u"Velmora", bold).width,
              windows.textExtent(u"Velmora", plain).width);
    EXPECT_NEAR(windows.textExtent(u"灯火映在水面", plain).width, 6 * 12 * 15, 15);
    EXPECT_NEAR(windows.textExtent(u"灯火映在水面", forms::Font(u"微软雅黑", 9)).width, 6 * 12 * 15,
                15);
}

TEST_F(PaintTest, HalfSurrogatesAndNulsAreShownAsTheReplacementSign) {
    const forms::Font font(u"Arial", 9);
    auto &windows = *desk().windows;
    const float sign = windows.textExtent(u"\xFFFD", font).width;
    const char16_t half[] = {0xD83D, 0};
    EXPECT_FLOAT_EQ(windows.textExtent(std::u16string_view(half, 1), font).width, sign);
    EXPECT_FLOAT_EQ(windows.textExtent(std::u16string_view(u"\0", 1), font).width, sign);
}

TEST_F(PaintTest, OnlyWhatChangedIsPainted) {
    PaintForm form;
    form.appear();
    PaintCounter counter(form);
    form.bar.setWidth(750);
    ASSERT_TRUE(desk().pump([&] { return counter.count == 1; }));
    EXPECT_TRUE(QRect(18, 18, 105, 15).contains(counter.area.boundingRect()))
        << counter.area.boundingRect().width();
    EXPECT_TRUE(desk().pump([&] { return form.pixel(100, 25) == 0x232A35U; }));
}

TEST_F(PaintTest, AMovedControlIsPaintedWhereItWasAndWhereItIs) {
    PaintForm form;
    form.appear();
    form.bar.setTop(2250);
    EXPECT_TRUE(desk().pump([&] { return form.pixel(50, 155) == 0xFF0000U; }));
    EXPECT_EQ(form.pixel(50, 25), 0x232A35U);
}

TEST_F(PaintTest, ATickThatChangesNothingDrawsNothing) {
    PaintForm form;
    form.appear();
    PaintCounter counter(form);
    for (int i = 0; i < 50; ++i) {
        form.label.setCaption(u"Label");
        form.bar.setWidth(1500);
        form.image.setPicture(forms::Picture::play);
        form.image.setVisible(true);
        desk().letPass(2);
    }
    EXPECT_EQ(counter.count, 0);
}

TEST_F(PaintTest, WhatIsHiddenDrawsNothing) {
    PaintForm form;
    form.box.setVisible(false);
    form.appear();
    PaintCounter counter(form);
    form.inner.setCaption(u"changes in a hidden box");
    desk().letPass(40);
    EXPECT_EQ(counter.count, 0);
    form.hide();
    desk().letPass(40);
    const int before = counter.count;
    for (int i = 0; i < 20; ++i) {
        form.bar.setWidth(static_cast<float>(100 * i));
        form.refresh();
        desk().letPass(2);
    }
    EXPECT_EQ(counter.count, before);
}

TEST_F(PaintTest, AForcedRepaintIsThereAtOnceWithoutHandlingInput) {
    PaintForm form;
    int presses = 0;
    form.on().MouseDown = [&](const forms::MouseEvent &) { ++presses; };
    form.appear();
    desk().movePointer(form.screenX(250), form.screenY(180));
    desk().session.run({"xdotool", "click", "1"});
    form.bar.setFillColor(0x0000FF00);
    form.refresh();
    EXPECT_TRUE(waitUntil([&] { return form.pixel(50, 25) == 0x00FF00U; }, 500));
    EXPECT_EQ(presses, 0);
    EXPECT_TRUE(desk().pump([&] { return presses == 1; })) << "kept for the loop";
}

TEST_F(PaintTest, ARefreshOfAWindowNotYetSeenWaitsForItsFirstExposure) {
    PaintForm form;
    int ticks = 0;
    forms::Timer timer{form, "timer"};
    timer.setInterval(1);
    timer.onTimer = [&] { ++ticks; };
    timer.setRunning(true);
    form.show();
    form.label.setCaption(u"first");
    form.refresh();
    EXPECT_TRUE(waitUntil([&] { return form.pixel(25, 25) == 0xFF0000U; }, 1000));
    EXPECT_EQ(ticks, 0) << "no timer ran";
    timer.setRunning(false);
}

TEST_F(PaintTest, DrawnAtMostOnceInSixteenMillisecondsWhileTheLoopRuns) {
    PaintForm form;
    form.appear();
    forms::Timer timer{form, "timer"};
    timer.setInterval(10);
    int painted = 0;
    timer.onTimer = [&] {
        timer.setRunning(false);
        PaintCounter counter(form);
        for (int i = 0; i < 400; ++i) {
            form.bar.setWidth(static_cast<float>(15 * (i % 90)));
            form.refresh();
        }
        painted = counter.count;
        desk().windows->quit(0);
    };
    timer.setRunning(true);
    desk().windows->run();
    EXPECT_GE(painted, 1);
    EXPECT_LE(painted, 60);
}

// Runs `work` as a handler of the running loop.
void handle(const std::function<void()> &work) {
    PaintForm clock;
    forms::Timer timer{clock, "timer"};
    timer.setInterval(1);
    timer.onTimer = [&] {
        timer.setRunning(false);
        work();
        desk().windows->quit(0);
    };
    timer.setRunning(true);
    desk().windows->run();
}

// One pump that is not passed over for coming too soon.
void pumpOnce() {
    const auto due = std::chrono::steady_clock::now() + std::chrono::milliseconds(2);
    while (std::chrono::steady_clock::now() < due) {
    }
    desk().windows->DoEvents();
}

TEST_F(PaintTest, ManyPumpsInAHandlerPaintAsOftenAsTheEyeFollowsAndTheLastStateAtTheEnd) {
    PaintForm form;
    form.appear();
    handle([&] {
        PaintCounter counter(form);
        const auto begun = std::chrono::steady_clock::now();
        constexpr int pumps = 200;
        for (int i = 0; i < pumps; ++i) {
            form.bar.setFillColor(i % 2 == 0 ? 0x000000FF : 0x00FF0000);
            pumpOnce();
        }
        const std::chrono::duration<double, std::milli> took =
            std::chrono::steady_clock::now() - begun;
        EXPECT_GE(counter.count, 5);
        EXPECT_LE(counter.count, took.count() / 16 + 6);
        form.bar.setFillColor(0x0000FF00);
        pumpOnce();
    });
    EXPECT_TRUE(desk().pump([&] { return form.pixel(50, 25) == 0x00FF00U; }));
}

TEST_F(PaintTest, AFewPumpsInAHandlerPaintEachState) {
    PaintForm form;
    form.appear();
    handle([&] {
        PaintCounter counter(form);
        for (const Colour colour : {0x0000FF00U, 0x00FF0000U, 0x0000FFFFU}) {
            form.bar.setFillColor(colour);
            pumpOnce();
        }
        EXPECT_EQ(counter.count, 3);
    });
}

TEST_F(PaintTest, ARefreshPaintsWhatThePumpsHavePutOff) {
    PaintForm form;
    form.appear();
    handle([&] {
        for (int i = 0; i < 30; ++i) {
            form.bar.setFillColor(i % 2 == 0 ? 0x000000FF : 0x00FF0000);
            pumpOnce();
        }
        form.bar.setFillColor(0x0000FF00);
        desk().windows->DoEvents();
        form.refresh();
        EXPECT_TRUE(waitUntil([&] { return form.pixel(50, 25) == 0x00FF00U; }, 500));
    });
}

TEST_F(PaintTest, AChangeBehindAPaintIsPaintedLikeTheFirst) {
    PaintForm form;
    form.appear();
    for (const int round : {1, 2, 3}) {
        form.inner.setBackColor(0x0000FF00);
        form.inner.setBackColor(0x00FF0000);
        EXPECT_TRUE(desk().pump([&] { return form.pixel(160, 30) == 0x0000FFU; })) << round;
        form.box.setVisible(false);
        form.inner.setBackColor(0x0000FF00);
        EXPECT_TRUE(desk().pump([&] { return form.pixel(160, 30) == 0x232A35U; })) << round;
        form.box.setVisible(true);
        EXPECT_TRUE(desk().pump([&] { return form.pixel(160, 30) == 0x00FF00U; })) << round;
    }
}

TEST_F(PaintTest, HidingAControlUncoversWhatLiesBelow) {
    PaintForm form;
    form.box.move({150, 150, 1800, 600});
    form.appear();
    ASSERT_TRUE(desk().pump([&] { return form.pixel(50, 25) == 0xFFFF00U; }));
    form.box.setVisible(false);
    EXPECT_TRUE(desk().pump([&] { return form.pixel(50, 25) == 0xFF0000U; }));
    form.box.setVisible(true);
    ASSERT_TRUE(desk().pump([&] { return form.pixel(50, 25) == 0xFFFF00U; }));
    form.bar.zOrder(0);
    EXPECT_TRUE(desk().pump([&] { return form.pixel(50, 25) == 0xFF0000U; }));
}

TEST_F(PaintTest, ALabelOverATextBoxIsSeen) {
    PaintForm form;
    forms::TextBox text{form, "text"};
    text.move({300, 2100, 3000, 450}); // 20,140 200x30
    forms::Label above{form, "above"};
    above.move({600, 2175, 900, 300}); // 40,145 60x20
    above.setTransparent(false);
    above.setBackColor(0x0000FF00);
    form.appear();
    EXPECT_TRUE(desk().pump([&] { return form.pixel(45, 150) == 0x00FF00U; }));
    above.setVisible(false);
    EXPECT_TRUE(desk().pump([&] { return form.pixel(45, 150) != 0x00FF00U; }));
}

TEST_F(PaintTest, APictureWindowIsMadeBeforeItsFormIsShownAndLiesAtItsBox) {
    PaintForm form;
    const std::uintptr_t native = form.box.hWnd();
    ASSERT_NE(native, 0U);
    EXPECT_EQ(form.box.hWnd(), native);
    EXPECT_FALSE(form.visible());
    form.appear();
    EXPECT_EQ(form.box.hWnd(), native);
    const auto place = desk().screen->geometry(static_cast<xcb_window_t>(native));
    ASSERT_TRUE(place);
    EXPECT_TRUE(place->mapped);
    EXPECT_EQ(place->x, form.screenX(150));
    EXPECT_EQ(place->y, form.screenY(20));
    EXPECT_EQ(place->width, 60);
    EXPECT_EQ(place->height, 40);
    form.box.setWidth(1500);
    EXPECT_TRUE(desk().pump(
        [&] { return desk().screen->geometry(static_cast<xcb_window_t>(native))->width == 100; }));
}

} // namespace
} // namespace velmora::tests
