// One step of a rolling text.

#include "ui/marquee.h"

#include "platform/forms/controls.h"
#include "tests/unit/forms/form_fixture.h"

namespace velmora {
namespace {

TEST(MarqueeStep, MovesLeftAndTurnsWhenTheEndIsTheMarginBeyond) {
    EXPECT_EQ(marqueeStep({0, false}, 1000, 800, lyricMarquee), (MarqueeState{-50, false}));
    EXPECT_EQ(marqueeStep({-349, false}, 1000, 800, lyricMarquee), (MarqueeState{-399, false}));
    EXPECT_EQ(marqueeStep({-350, false}, 1000, 800, lyricMarquee), (MarqueeState{-400, true}));
}

TEST(MarqueeStep, MovesRightAndTurnsAtTheMargin) {
    EXPECT_EQ(marqueeStep({100, true}, 1000, 800, lyricMarquee), (MarqueeState{150, true}));
    EXPECT_EQ(marqueeStep({149, true}, 1000, 800, lyricMarquee), (MarqueeState{199, true}));
    EXPECT_EQ(marqueeStep({150, true}, 1000, 800, lyricMarquee), (MarqueeState{200, false}));
}

TEST(MarqueeStep, OfTheDesktopLineIs150WithAMarginOf1000) {
    EXPECT_EQ(marqueeStep({0, false}, 9000, 8000, desktopMarquee), (MarqueeState{-150, false}));
    EXPECT_EQ(marqueeStep({-1849, false}, 9000, 8000, desktopMarquee),
              (MarqueeState{-1999, false}));
    EXPECT_EQ(marqueeStep({849, true}, 9000, 8000, desktopMarquee), (MarqueeState{999, true}));
    EXPECT_EQ(marqueeStep({850, true}, 9000, 8000, desktopMarquee), (MarqueeState{1000, false}));
}

TEST(MarqueeStep, OfTheDesktopLineMovesBackRightInTheTickThatTurnsItThere) {
    EXPECT_EQ(marqueeStep({-1850, false}, 9000, 8000, desktopMarquee), (MarqueeState{-1850, true}));
    EXPECT_EQ(marqueeStep({-1900, false}, 9000, 8000, desktopMarquee), (MarqueeState{-1900, true}));
    EXPECT_EQ(marqueeStep({-1850, true}, 9000, 8000, desktopMarquee), (MarqueeState{-1700, true}));
}

TEST(MarqueeStep, OfTheDesktopLineTurnsLeftWithoutMovingThereInThatTick) {
    EXPECT_EQ(marqueeStep({900, true}, 9000, 8000, desktopMarquee), (MarqueeState{1050, false}));
    EXPECT_EQ(marqueeStep({1050, false}, 9000, 8000, desktopMarquee), (MarqueeState{900, false}));
}

TEST(TextInSight, StaysWhereItIs) {
    for (const Twips left : {-999.0F, -200.0F, 0.0F, 799.0F})
        EXPECT_EQ(leftInSight(left, 1000, 800, titleMarquee), left);
}

TEST(TextInSight, ComesBackWithTheEndThatIsNearer) {
    for (const Twips left : {-1000.0F, -30000.0F})
        EXPECT_EQ(leftInSight(left, 1000, 800, titleMarquee), -400);
    for (const Twips left : {800.0F, 30000.0F})
        EXPECT_EQ(leftInSight(left, 1000, 800, titleMarquee), 200);
}

class SettledText : public forms::FormFixture {
protected:
    forms::Label label{form, "label"};

    Twips settled(Twips left, Twips width) {
        label.setAutoSize(false);
        label.move({left, 0, width, 200});
        settleLabel(label, 800, titleMarquee);
        return label.left();
    }
};

TEST_F(SettledText, ThatIsWiderThanItsBoxStaysInSight) {
    EXPECT_EQ(settled(-300, 1000), -300);
    EXPECT_EQ(settled(-1200, 1000), -400);
    EXPECT_EQ(settled(900, 1000), 200);
}

TEST_F(SettledText, ThatFitsIsCentred) {
    EXPECT_EQ(settled(-300, 400), 200);
    EXPECT_EQ(settled(-300, 800), 0);
}

} // namespace
} // namespace velmora
