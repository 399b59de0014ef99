#include "tests/unit/forms/form_fixture.h"

namespace velmora::forms {

using ::testing::IsEmpty;
using ::testing::SizeIs;

class LabelTest : public FormFixture {
protected:
    Label label{form, "label"};

    LabelTest() { label.move({300, 60, 900, 225}); }

    Twips widthOf(std::u16string_view text) { return form.textExtent(text, label.font()).width; }
};

TEST_F(LabelTest, KeepsItsWidthWithoutAutoSize) {
    label.setCaption(u"a text much longer than the label");
    EXPECT_EQ(label.width(), 900);
}

TEST_F(LabelTest, AutoSizeFitsTheWidthToTheCaptionAndKeepsLeft) {
    label.setAutoSize(true);
    label.setCaption(u"four");
    EXPECT_EQ(label.width(), widthOf(u"four"));
    EXPECT_EQ(label.left(), 300);
    EXPECT_EQ(label.top(), 60);
}

TEST_F(LabelTest, AutoSizeFitsTheHeightToTheFont) {
    label.setAutoSize(true);
    label.setFont(Font(u"Arial", 36));
    EXPECT_EQ(label.height(), form.textExtent(u"", label.font()).height);
}

TEST_F(LabelTest, AnAutoSizedEmptyCaptionHasNoWidth) {
    label.setAutoSize(true);
    EXPECT_EQ(label.width(), 0);
}

TEST_F(LabelTest, AutoSizeFitsWhenTheFontChanges) {
    label.setCaption(u"four");
    label.setAutoSize(true);
    label.setFont(Font(u"Arial", 18));
    EXPECT_EQ(label.width(), widthOf(u"four"));
}

TEST_F(LabelTest, AWidthWrittenAfterwardsHoldsUntilTheNextCaption) {
    label.setAutoSize(true);
    label.setCaption(u"four");
    label.setWidth(3000);
    EXPECT_EQ(label.width(), 3000);
    label.setCaption(u"four"); // even the same
    EXPECT_EQ(label.width(), widthOf(u"four"));
}

TEST_F(LabelTest, AutoSizeFitsAtOnceAndNotAgainWhereItIsOnAlready) {
    label.setCaption(u"four");
    label.setAutoSize(true);
    EXPECT_EQ(label.width(), widthOf(u"four"));
    label.setWidth(3000);
    label.setAutoSize(true);
    EXPECT_EQ(label.width(), 3000);
}

TEST_F(LabelTest, TheSameCaptionOnALabelThatFitsDrawsNothing) {
    label.setAutoSize(true);
    label.setCaption(u"four");
    auto &window = shown();
    windows.measures = 0;
    label.setCaption(u"four");
    EXPECT_THAT(window.told, IsEmpty());
    EXPECT_EQ(windows.measures, 0);
}

TEST_F(LabelTest, OfAFormWithoutAWindowIsMeasuredWhenItsSizeIsRead) {
    label.setAutoSize(true);
    label.setCaption(u"a caption of the design");
    label.setFont(Font(u"Arial", 18));
    label.setCaption(u"four");
    EXPECT_EQ(label.left(), 300);
    EXPECT_EQ(windows.measures, 0);
    const Twips width = label.width();
    EXPECT_EQ(windows.measures, 1);
    EXPECT_EQ(width, widthOf(u"four"));
}

TEST_F(LabelTest, EveryRoadToItsSizeMeasuresIt) {
    label.setAutoSize(true);
    const auto anew = [this] {
        label.setCaption(u"");
        label.setCaption(u"four");
    };
    const Twips high = form.textExtent(u"", label.font()).height;
    anew();
    EXPECT_EQ(label.height(), high);
    anew();
    EXPECT_EQ(label.place(), (RectTwips{300, 60, widthOf(u"four"), high}));
    anew();
    EXPECT_EQ(label.placeInForm(), (RectTwips{300, 60, widthOf(u"four"), high}));
    anew();
    label.setLeft(30);
    EXPECT_EQ(label.width(), widthOf(u"four"));
    anew();
    label.setHeight(30);
    EXPECT_EQ(label.place(), (RectTwips{30, 60, widthOf(u"four"), 30}));
}

TEST_F(LabelTest, APlaceWrittenBeforeItsSizeWasReadHoldsUntilTheNextCaption) {
    label.setAutoSize(true);
    label.setCaption(u"four");
    label.move({0, 0, 3000, 600});
    EXPECT_EQ(label.place(), (RectTwips{0, 0, 3000, 600}));
    label.setCaption(u"four"); // even the same
    EXPECT_EQ(label.width(), widthOf(u"four"));
}

TEST_F(LabelTest, KeepsTheLastFittedSizeBehindItsAutoSizeThoughNobodyReadIt) {
    label.setAutoSize(true);
    label.setCaption(u"four");
    label.setAutoSize(false);
    label.setCaption(u"a longer caption");
    EXPECT_EQ(label.width(), widthOf(u"four"));
}

TEST_F(LabelTest, TellsAWindowThePlaceThatItHadAtItsFirstShow) {
    PictureBox box{form, "box"};
    Label inner{box, "inner"};
    inner.setAutoSize(true);
    inner.setCaption(u"four");
    auto &window = shown();
    inner.setCaption(u"longer");
    ASSERT_THAT(window.told, ::testing::Not(IsEmpty()));
    EXPECT_EQ(window.told.front().change, Change::Place);
    EXPECT_EQ(window.told.front().before.width, widthOf(u"four"));
}

TEST_F(LabelTest, UnchangedLooksDrawNothing) {
    auto &window = shown();
    label.setFont(label.font());
    label.setForeColor(label.foreColor());
    label.setBackColor(label.backColor());
    label.setTransparent(label.transparent());
    label.setAlignment(label.alignment());
    label.setWordWrap(label.wordWrap());
    label.setRim(label.rim());
    EXPECT_THAT(window.told, IsEmpty());
}

TEST_F(LabelTest, EachLookIsToldOnce) {
    auto &window = shown();
    label.setCaption(u"x");
    label.setFont(Font(u"Arial", 20));
    label.setForeColor(1);
    label.setBackColor(2);
    label.setTransparent(false);
    label.setAlignment(Alignment::Centre);
    label.setWordWrap(true);
    label.setRim(true);
    EXPECT_THAT(window.told, SizeIs(8));
    for (const auto &told : window.told)
        EXPECT_EQ(told.change, Change::Look);
}

using OptionTest = FormFixture;

TEST_F(OptionTest, SettingOneTrueClearsTheOthersOfItsContainer) {
    Frame left{form, "left"};
    Frame right{form, "right"};
    OptionButton a{left, "a"};
    OptionButton b{left, "b"};
    OptionButton other{right, "other"};
    other.setValue(true);
    a.setValue(true);
    b.setValue(true);
    EXPECT_FALSE(a.value());
    EXPECT_TRUE(b.value());
    EXPECT_TRUE(other.value());
}

TEST_F(OptionTest, SettingOneFalseLeavesTheOthers) {
    OptionButton a{form, "a"};
    OptionButton b{form, "b"};
    a.setValue(true);
    a.setValue(false);
    EXPECT_FALSE(a.value());
    EXPECT_FALSE(b.value());
}

TEST_F(OptionTest, CodeRaisesNoClickAndTheUserDoes) {
    OptionButton a{form, "a"};
    OptionButton b{form, "b"};
    Log log;
    logEvents(a.on(), "a", log);
    logEvents(b.on(), "b", log);
    a.setValue(true);
    EXPECT_THAT(log, IsEmpty());
    b.userChose();
    EXPECT_EQ(log, Log{"b click"});
    EXPECT_FALSE(a.value());
    b.userChose(); // chosen already
    EXPECT_EQ(log, Log{"b click"});
}

TEST_F(OptionTest, ADisabledOneCannotBeChosen) {
    OptionButton a{form, "a"};
    a.setEnabled(false);
    a.userChose();
    EXPECT_FALSE(a.value());
}

using CheckTest = FormFixture;

TEST_F(CheckTest, EachLookIsToldOnceAndNoneThatStays) {
    CheckBox box{form, "box"};
    OptionButton option{form, "option"};
    auto &window = shown();
    for (int time = 0; time < 2; ++time) {
        box.setValue(2);
        box.setCaption(u"x");
        box.setFont(Font(u"Arial", 20));
        option.setValue(true);
        option.setCaption(u"x");
        option.setFont(Font(u"Arial", 20));
    }
    EXPECT_THAT(window.told, SizeIs(6));
    for (const auto &told : window.told)
        EXPECT_EQ(told.change, Change::Look);
}

TEST_F(CheckTest, TheUserTogglesBetween0And1AndRaisesClick) {
    CheckBox box{form, "box"};
    Log log;
    logEvents(box.on(), "box", log);
    box.userToggled();
    EXPECT_EQ(box.value(), 1);
    box.userToggled();
    EXPECT_EQ(box.value(), 0);
    EXPECT_EQ(log, (Log{"box click", "box click"}));
}

TEST_F(CheckTest, TheUserTurnsAGreyBoxOff) {
    CheckBox box{form, "box"};
    box.setValue(2);
    box.userToggled();
    EXPECT_EQ(box.value(), 0);
}

TEST_F(CheckTest, CodeRaisesNoClick) {
    CheckBox box{form, "box"};
    Log log;
    logEvents(box.on(), "box", log);
    box.setValue(1);
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(CheckTest, AValueOutside0To2Raises) {
    CheckBox box{form, "box"};
    EXPECT_EQ(errorOf([&] { box.setValue(3); }), invalidValue);
    EXPECT_EQ(errorOf([&] { box.setValue(-1); }), invalidValue);
    EXPECT_EQ(box.value(), 0);
}

TEST_F(CheckTest, AClickQueuedForADisabledBoxIsDropped) {
    CheckBox box{form, "box"};
    form.setEnabled(false);
    box.userToggled();
    EXPECT_EQ(box.value(), 0);
}

class TextTest : public FormFixture {
protected:
    TextBox box{form, "box"};
    int changes = 0;

    TextTest() {
        box.on().Change = [this] { ++changes; };
    }
};

TEST_F(TextTest, CodeRaisesNoChange) {
    box.setText(u"new");
    EXPECT_EQ(box.text(), u"new");
    EXPECT_EQ(changes, 0);
}

TEST_F(TextTest, TheUsersEditIsStoredBeforeChangeIsRaised) {
    std::u16string seen;
    box.on().Change = [&] { seen = box.text(); };
    box.userEdited(u"typed");
    EXPECT_EQ(seen, u"typed");
}

TEST_F(TextTest, AnEditThatChangesNothingRaisesNothing) {
    box.setText(u"same");
    box.userEdited(u"same");
    EXPECT_EQ(changes, 0);
}

TEST_F(TextTest, ALockedOrDisabledBoxTakesNoEdit) {
    box.setText(u"kept");
    box.setLocked(true);
    box.userEdited(u"typed");
    box.setLocked(false);
    box.setEnabled(false);
    box.userEdited(u"typed");
    EXPECT_EQ(box.text(), u"kept");
    EXPECT_EQ(changes, 0);
}

TEST_F(TextTest, CodeWritesIntoALockedBox) {
    box.setLocked(true);
    box.setText(u"code");
    EXPECT_EQ(box.text(), u"code");
}

TEST_F(TextTest, WithoutHandlersAnEditIsStored) {
    TextBox plain{form, "plain"};
    plain.userEdited(u"typed");
    EXPECT_EQ(plain.text(), u"typed");
}

TEST_F(OptionTest, WithoutHandlersItIsChosen) {
    OptionButton plain{form, "plain"};
    plain.userChose();
    EXPECT_TRUE(plain.value());
}

using LineTest = FormFixture;

TEST_F(LineTest, KeepsItsEndsAndLiesAroundThem) {
    Line line{form, "line"};
    line.setEnds(300, 450, 150, 150);
    EXPECT_EQ(line.x1(), 300);
    EXPECT_EQ(line.y2(), 150);
    EXPECT_EQ(line.place(), (RectTwips{150, 150, 165, 315})); // one pixel more on each side
}

TEST_F(LineTest, EachOfItsFourNumbersMovesItByItself) {
    Line line{form, "line"};
    line.setEnds(300, 300, 600, 600);
    line.setEnds(0, 300, 600, 600);
    EXPECT_EQ(line.left(), 0);
    line.setEnds(0, 0, 600, 600);
    EXPECT_EQ(line.top(), 0);
    line.setEnds(0, 0, 900, 600);
    EXPECT_EQ(line.width(), 915);
    line.setEnds(0, 0, 900, 900);
    EXPECT_EQ(line.height(), 915);
}

TEST_F(LineTest, TurningItInItsOwnRectangleRepaints) {
    Line line{form, "line"};
    line.setEnds(0, 0, 150, 150);
    auto &window = shown();
    line.setEnds(0, 150, 150, 0);
    ASSERT_THAT(window.told, SizeIs(1));
    EXPECT_EQ(window.told[0].change, Change::Look);
    line.setEnds(0, 150, 150, 0);
    EXPECT_THAT(window.told, SizeIs(1));
}

using PictureBoxTest = FormFixture;

TEST_F(PictureBoxTest, ItsNativeWindowIsMadeWhileTheFormIsHidden) {
    PictureBox box{form, "box"};
    EXPECT_EQ(form.window(), nullptr);
    EXPECT_NE(box.hWnd(), 0U);
    EXPECT_FALSE(form.visible());
}

TEST_F(PictureBoxTest, ItsInnerSizeIsItsSize) {
    PictureBox box{form, "box"};
    box.move({1, 2, 300, 200});
    EXPECT_EQ(box.scaleWidth(), 300);
    EXPECT_EQ(box.scaleHeight(), 200);
}

using PictureTest = FormFixture;

TEST_F(PictureTest, TheSamePictureDrawsNothing) {
    Image image{form, "image"};
    Shape shape{form, "shape"};
    image.setPicture(Picture::play);
    shape.setPicture(Picture::bar_fill);
    auto &window = shown();
    image.setPicture(Picture::play);
    shape.setPicture(Picture::bar_fill);
    shape.setFillColor(shape.fillColor());
    EXPECT_THAT(window.told, IsEmpty());
    image.setPicture(Picture::pause);
    EXPECT_THAT(window.told, SizeIs(1));
}

TEST_F(PictureTest, EachLookIsToldOnceAndNoneThatStays) {
    Image image{form, "image"};
    Shape shape{form, "shape"};
    Line line{form, "line"};
    PictureBox box{form, "box"};
    Frame frame{form, "frame"};
    TextBox text{form, "text"};
    const std::function<void()> looks[] = {
        [&] { image.setPicture(Picture::play); },  [&] { shape.setPicture(Picture::bar_fill); },
        [&] { shape.setFillColor(0x123456); },     [&] { line.setBorderColor(0x123456); },
        [&] { box.setPicture(Picture::play); },    [&] { box.setBackColor(0x123456); },
        [&] { frame.setCaption(u"x"); },           [&] { frame.setFont(Font(u"Arial", 20)); },
        [&] { text.setFont(Font(u"Arial", 20)); }, [&] { text.setForeColor(0x123456); },
        [&] { text.setBackColor(0x123456); },
    };
    auto &window = shown();
    for (std::size_t look = 0; look < std::size(looks); ++look) {
        window.told.clear();
        looks[look]();
        looks[look]();
        ASSERT_THAT(window.told, SizeIs(1)) << look;
        EXPECT_EQ(window.told[0].change, Change::Look) << look;
    }
}

using MenuTest = FormFixture;

TEST_F(MenuTest, EntriesStandInOrder) {
    Menu menu{form, "menu"};
    Menu first{menu, "first"};
    Menu second{menu, "second"};
    EXPECT_THAT(menu.entries(), ::testing::ElementsAre(&first, &second));
    EXPECT_EQ(&first.form(), &form);
}

TEST_F(MenuTest, AnEntryThatEndsLeavesItsMenu) {
    Menu menu{form, "menu"};
    { Menu brief{menu, "brief"}; }
    EXPECT_THAT(menu.entries(), IsEmpty());
}

TEST_F(MenuTest, ChoosingRaisesClick) {
    Menu menu{form, "menu"};
    Menu entry{menu, "entry"};
    int clicks = 0;
    entry.on().Click = [&] { ++clicks; };
    entry.choose();
    EXPECT_EQ(clicks, 1);
}

TEST_F(MenuTest, WhatIsDisabledHiddenOrASeparatorCannotBeChosen) {
    Menu menu{form, "menu"};
    Menu entry{menu, "entry"};
    int clicks = 0;
    entry.on().Click = [&] { ++clicks; };
    entry.setEnabled(false);
    entry.choose();
    entry.setEnabled(true);
    entry.setVisible(false);
    entry.choose();
    entry.setVisible(true);
    entry.setSeparator(true);
    entry.choose();
    EXPECT_EQ(clicks, 0);
}

} // namespace velmora::forms
