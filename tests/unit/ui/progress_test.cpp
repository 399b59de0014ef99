// The progress bar: its properties, its text, its bar, and when it repaints.

#include "ui/zkProgress.h"

#include "base/run_time_error.h"
#include "tests/unit/forms/form_fixture.h"

#include <cmath>

namespace velmora {
namespace {

class Progress : public forms::FormFixture {
protected:
    zkProgress bar{form, "bar"};

    Progress() { bar.move({0, 0, 1000, 300}); }

    std::u16string text() const { return bar.look().caption; }
    // Of the whole width, in hundredths.
    float share() const { return bar.look().bar.width / bar.width() * 100; }
    std::u16string textOf(double value) {
        bar.setValue(value);
        return text();
    }
};

TEST_F(Progress, BeginsWithItsDefaults) {
    EXPECT_EQ(bar.Max(), 100);
    EXPECT_EQ(bar.Min(), 0);
    EXPECT_EQ(bar.value(), 0);
    EXPECT_EQ(bar.Caption(), u"");
    EXPECT_EQ(bar.CaptionStyle(), 2);
    EXPECT_EQ(bar.FillColor(), 0xFF0000U);
    EXPECT_EQ(bar.BorderStyle(), 1);
    EXPECT_TRUE(bar.enabled());
}

TEST_F(Progress, TrimsItsCaptionOfBlanksAtBothEnds) {
    bar.setCaption(u"  a b\t ");
    EXPECT_EQ(bar.Caption(), u"a b\t");
}

TEST_F(Progress, StoresItsValueRoundedAndPaintsItAsItIs) {
    EXPECT_EQ(textOf(33.336), u"33.34%");
    EXPECT_EQ(bar.value(), 33);
    EXPECT_FLOAT_EQ(share(), 33.336F);
    bar.setValue(2.5);
    EXPECT_EQ(bar.value(), 2); // half to even
    bar.setValue(3.5);
    EXPECT_EQ(bar.value(), 4);
}

TEST_F(Progress, AboveItsRangeIsFull) {
    EXPECT_EQ(textOf(250), u"100.00%");
    EXPECT_FLOAT_EQ(share(), 100);
    EXPECT_EQ(bar.value(), 250); // the value is kept as it was written
}

TEST_F(Progress, BelowItsRangeIsEmpty) {
    EXPECT_EQ(textOf(-5), u"0.00%");
    EXPECT_FLOAT_EQ(share(), 0);
    EXPECT_EQ(bar.value(), -5);
}

TEST_F(Progress, CountsFromItsLeastValue) {
    bar.setMin(50);
    bar.setMax(150);
    EXPECT_EQ(textOf(75), u"25.00%");
    EXPECT_FLOAT_EQ(share(), 25);
    bar.setMin(-2147483647);
    bar.setMax(2147483647);
    EXPECT_EQ(textOf(0), u"50.00%");
}

struct Style {
    std::int16_t number;
    const char16_t *caption;
    const char16_t *text;
};

class ProgressStyle : public Progress, public ::testing::WithParamInterface<Style> {};

TEST_P(ProgressStyle, GivesTheText) {
    bar.setCaptionStyle(GetParam().number);
    bar.setCaption(GetParam().caption);
    EXPECT_EQ(textOf(33), GetParam().text);
    EXPECT_FLOAT_EQ(share(), 33);
}

INSTANTIATE_TEST_SUITE_P(Styles, ProgressStyle,
                         ::testing::Values(Style{0, u"Down", u""}, Style{1, u"Down", u"Down"},
                                           Style{1, u"", u""}, Style{2, u"Down", u"33.00%"},
                                           Style{3, u"Down", u"Down 33.00%"},
                                           Style{3, u"", u"33.00%"}, Style{3, u"  ", u"33.00%"},
                                           Style{-1, u"Down", u"Down 33.00%"},
                                           Style{4, u"Down", u"Down 33.00%"}));

TEST_F(Progress, StandsInItsMiddleUnderTheBar) {
    bar.setValue(40);
    const forms::CustomLook look = bar.look();
    EXPECT_EQ(look.captionAlignment, forms::Alignment::Centre);
    EXPECT_EQ(look.captionPlace.width, bar.width());
    EXPECT_EQ(look.captionPlace.height, bar.height());
    EXPECT_EQ(look.bar.left, 0);
    EXPECT_EQ(look.bar.top, 0);
    EXPECT_GE(look.bar.height, bar.height());
    EXPECT_EQ(look.barColor, 0xFF0000U);
}

TEST_F(Progress, LooksAnewOnlyWhenItsValueIsWritten) {
    bar.setValue(10);
    const forms::CustomLook before = bar.look();
    fakes::FakeFormWindow &window = shown();
    bar.setCaptionStyle(3);
    bar.setCaption(u"Down");
    bar.setMax(20);
    bar.setMin(-20);
    bar.setFillColor(1);
    bar.setForeColor(2);
    bar.setBackColor(3);
    bar.setBorderStyle(0);
    bar.setAppearance(1);
    forms::Font font;
    font.setName(u"Mono");
    bar.setCaptionFont(font);
    EXPECT_EQ(window.paints, 0);
    EXPECT_EQ(text(), before.caption);
    EXPECT_EQ(bar.look().barColor, before.barColor);
    EXPECT_EQ(bar.look().ground, before.ground);
    EXPECT_EQ(bar.look().border, before.border);
    EXPECT_EQ(bar.look().captionFont.name(), before.captionFont.name());
    bar.setValue(10);
    EXPECT_GT(window.paints, 0);
    EXPECT_EQ(text(), u"Down 75.00%");
    EXPECT_FLOAT_EQ(share(), 75);
    EXPECT_EQ(bar.look().barColor, 1U);
    EXPECT_EQ(bar.look().captionColor, 2U);
    EXPECT_EQ(bar.look().ground, 3U);
    EXPECT_FALSE(bar.look().border);
    EXPECT_EQ(bar.look().captionFont.name(), u"Mono");
    EXPECT_EQ(bar.CaptionFont().name(), u"Mono");
    EXPECT_EQ(bar.Appearance(), 1);
}

TEST_F(Progress, PaintsNothingOfAStepThatNobodySees) {
    bar.setValue(50.01);
    fakes::FakeFormWindow &window = shown();
    bar.setValue(50.011);
    EXPECT_EQ(window.paints, 0);
    EXPECT_FLOAT_EQ(share(), 50.011F);
    bar.setValue(50.11);
    EXPECT_GT(window.paints, 0) << "a twip of the bar";
    bar.setCaptionStyle(0);
    bar.setValue(0.11);
    window.paints = 0;
    bar.setValue(0.19);
    EXPECT_EQ(window.paints, 0);
    bar.setValue(0.21);
    EXPECT_GT(window.paints, 0);
}

TEST_F(Progress, ResizedKeepsWhatItShows) {
    bar.setValue(10);
    bar.move({0, 0, 500, 300});
    EXPECT_EQ(text(), u"10.00%");
}

TEST_F(Progress, WithoutARangeRaisesWithWhatItShowedGone) {
    bar.setValue(10);
    bar.setMin(100);
    for (const std::int16_t style : {0, 1, 2, 3}) {
        bar.setCaptionStyle(style);
        EXPECT_THROW(bar.setValue(20), RunTimeError) << style;
        EXPECT_EQ(bar.value(), 20);
        EXPECT_EQ(text(), u"");
        EXPECT_FLOAT_EQ(share(), 0);
    }
}

TEST_F(Progress, OfAValueBeyondItsWidthRaisesAndKeepsWhatItShows) {
    bar.setValue(10);
    for (const double value : {2147483648.0, -2147483649.0, 1e300, std::nan("")}) {
        EXPECT_THROW(bar.setValue(value), RunTimeError);
        EXPECT_EQ(bar.value(), 10);
        EXPECT_EQ(text(), u"10.00%");
    }
}

TEST_F(Progress, TellsItsTextToThoseWhoDoNotSeeIt) {
    bar.setValue(10);
    EXPECT_EQ(bar.accessibleName(), u"10.00%");
}

TEST_F(Progress, IsToldInSharesOfItsWidth) {
    bar.setValue(25);
    EXPECT_DOUBLE_EQ(bar.progress().value(), 0.25);
    bar.setValue(0);
    EXPECT_DOUBLE_EQ(bar.progress().value(), 0);
    bar.move({0, 0, 0, 300});
    EXPECT_DOUBLE_EQ(bar.progress().value(), 0);
    bar.move({0, 0, 1, 300});
    bar.setValue(100);
    EXPECT_DOUBLE_EQ(bar.progress().value(), 1);
}

TEST_F(Progress, WithoutARangeItsPercentageDividesByNothingAndItsCaptionAloneDoesNot) {
    bar.setMax(0);
    EXPECT_EQ(forms::errorOf([&] { bar.setValue(1); }), 11);
    bar.setCaptionStyle(1);
    EXPECT_EQ(forms::errorOf([&] { bar.setValue(1); }), forms::invalidValue);
}

TEST_F(Progress, DrawsItsBorderAndItsTextOverTheWholeBar) {
    bar.setValue(1);
    EXPECT_TRUE(bar.look().border);
    EXPECT_EQ(bar.look().captionPlace, (RectTwips{0, 0, 1000, 300}));
    bar.setBorderStyle(0);
    bar.setValue(1);
    EXPECT_FALSE(bar.look().border);
}

} // namespace
} // namespace velmora
