#include "tests/unit/forms/form_fixture.h"

#include <limits>

namespace velmora::forms {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class ControlTest : public FormFixture {
protected:
    PictureBox box{form, "box"};
    Label inner{box, "inner"};
    Image image{form, "image"};

    ControlTest() {
        box.move({100, 200, 1000, 1000});
        inner.move({10, 20, 300, 150});
        image.move({2000, 2000, 150, 150});
    }
};

TEST_F(ControlTest, KnowsItsFormThroughItsContainers) {
    EXPECT_EQ(&inner.form(), &form);
    EXPECT_EQ(&inner.container(), static_cast<Container *>(&box));
    EXPECT_EQ(inner.name(), std::string("inner"));
}

TEST_F(ControlTest, ItsPlaceInTheFormCountsTheContainers) {
    EXPECT_EQ(inner.placeInForm(), (RectTwips{110, 220, 300, 150}));
}

TEST_F(ControlTest, StandsOnTopOfWhatCameBeforeIt) {
    EXPECT_THAT(form.controls(), ElementsAre(&box, &image));
}

TEST_F(ControlTest, LeavesItsContainerAtTheEndOfItsLife) {
    {
        Label brief(form, "brief");
        EXPECT_THAT(form.controls(), SizeIs(3));
    }
    EXPECT_THAT(form.controls(), ElementsAre(&box, &image));
}

TEST_F(ControlTest, ZOrderBringsToTheFrontAndToTheBack) {
    box.zOrder();
    EXPECT_THAT(form.controls(), ElementsAre(&image, &box));
    box.zOrder(1);
    EXPECT_THAT(form.controls(), ElementsAre(&box, &image));
}

TEST_F(ControlTest, AZOrderThatIsThereAlreadyTellsNothing) {
    auto &window = shown();
    image.zOrder();
    box.zOrder(1);
    EXPECT_THAT(window.told, IsEmpty());
}

TEST_F(ControlTest, NothingWaitsForAWindowThatWasNeverMade) {
    image.setLeft(15);
    image.setVisible(false);
    image.refresh();
    EXPECT_EQ(form.window(), nullptr);
}

TEST_F(ControlTest, AMoveTellsTheWindowTheRectangleBefore) {
    auto &window = shown();
    inner.setLeft(40);
    ASSERT_THAT(window.told, SizeIs(1));
    EXPECT_EQ(window.told[0].control, "inner");
    EXPECT_EQ(window.told[0].change, Change::Place);
    EXPECT_EQ(window.told[0].before, (RectTwips{110, 220, 300, 150}));
}

TEST_F(ControlTest, UnchangedValuesDrawNothing) {
    inner.setToolTip(u"tip");
    auto &window = shown();
    inner.move(inner.place());
    inner.setLeft(10);
    inner.setTop(20);
    inner.setWidth(300);
    inner.setHeight(150);
    inner.setVisible(true);
    inner.setEnabled(true);
    inner.setToolTip(u"tip");
    inner.setMousePointer(pointerDefault);
    inner.setMouseIcon(MouseIcon::None);
    EXPECT_THAT(window.told, IsEmpty());
    EXPECT_EQ(window.paints, 0);
}

TEST_F(ControlTest, EachChangeIsToldByItsKind) {
    auto &window = shown();
    image.setVisible(false);
    image.setEnabled(false);
    image.setToolTip(u"tip");
    image.setMousePointer(pointerHourglass);
    image.setMouseIcon(MouseIcon::Hand);
    image.zOrder(1);
    std::vector<Change> changes;
    for (const auto &told : window.told)
        changes.push_back(*told.change);
    EXPECT_THAT(changes, ElementsAre(Change::Visible, Change::Enabled, Change::ToolTip,
                                     Change::Pointer, Change::Pointer, Change::Order));
}

TEST_F(ControlTest, IsShownOnlyWithAllItsContainers) {
    EXPECT_TRUE(inner.isShown()); // on a hidden form, too
    box.setVisible(false);
    EXPECT_FALSE(inner.isShown());
    EXPECT_TRUE(inner.visible());
    box.setVisible(true);
    inner.setVisible(false);
    EXPECT_FALSE(inner.isShown());
}

TEST_F(ControlTest, IsLiveOnlyWithAllItsContainersAndTheForm) {
    EXPECT_TRUE(inner.isLive());
    box.setEnabled(false);
    EXPECT_FALSE(inner.isLive());
    EXPECT_TRUE(inner.enabled());
    box.setEnabled(true);
    form.setEnabled(false);
    EXPECT_FALSE(inner.isLive());
    EXPECT_FALSE(image.isLive());
}

TEST_F(ControlTest, ASizeBelowZeroCountsAsZero) {
    image.setWidth(-15);
    image.setHeight(-0.5F);
    EXPECT_EQ(image.place(), (RectTwips{2000, 2000, 0, 0}));
    form.setWidth(-1);
    EXPECT_EQ(form.width(), 0);
}

TEST_F(ControlTest, APlaceThatIsNoNumberRaisesAndChangesNothing) {
    constexpr Twips infinite = std::numeric_limits<Twips>::infinity();
    constexpr Twips none = std::numeric_limits<Twips>::quiet_NaN();
    EXPECT_EQ(errorOf([&] { image.setLeft(none); }), invalidValue);
    EXPECT_EQ(errorOf([&] { image.setWidth(infinite); }), invalidValue);
    EXPECT_EQ(errorOf([&] { form.setTop(-infinite); }), invalidValue);
    EXPECT_EQ(image.place(), (RectTwips{2000, 2000, 150, 150}));
    EXPECT_EQ(form.top(), 0);
}

TEST_F(ControlTest, RefreshPaintsAtOnceWithoutAChange) {
    auto &window = shown();
    image.refresh();
    form.refresh();
    EXPECT_EQ(window.refreshes, 2);
    EXPECT_THAT(window.told, IsEmpty());
}

TEST_F(ControlTest, ATagIsStoredAndToldToNobody) {
    auto &window = shown();
    image.setTag(u"1");
    EXPECT_EQ(image.tag(), u"1");
    EXPECT_THAT(window.told, IsEmpty());
}

TEST_F(ControlTest, TheWindowHearsOfAControlsEndUnlessTheDesignDroppedIt) {
    auto lone = std::make_unique<TextBox>(form, "lone");
    auto &window = shown();
    EXPECT_EQ(window.focused, lone.get());
    lone.reset();
    EXPECT_EQ(window.focused, nullptr);
    EXPECT_EQ(form.activeControl(), nullptr);
}

TEST_F(ControlTest, IsNamedForAssistiveTechnology) {
    image.setToolTip(u"next");
    EXPECT_EQ(image.accessibleName(), u"next");
    inner.setToolTip(u"tip");
    EXPECT_EQ(inner.accessibleName(), u"tip");
    inner.setCaption(u"caption");
    EXPECT_EQ(inner.accessibleName(), u"caption");
}

TEST_F(ControlTest, MayBeNamedByAnother) {
    inner.setCaption(u"caption");
    image.setToolTip(u"next");
    image.setBond(Bond::Named, inner);
    EXPECT_EQ(image.accessibleName(), u"caption");
    EXPECT_EQ(image.bond(), Bond::Named);
    EXPECT_EQ(image.bondedTo(), &inner);
}

TEST_F(ControlTest, AWatchTellsTheEndOfAControl) {
    auto label = std::make_unique<Label>(form, "label");
    const Watch watch(*label);
    const Watch other(image);
    EXPECT_TRUE(watch);
    label.reset();
    EXPECT_FALSE(watch);
    EXPECT_TRUE(other);
}

TEST_F(ControlTest, AWatchTellsTheEndOfAForm) {
    auto second = std::make_unique<Form>(windows, "second");
    const Watch watch(*second);
    EXPECT_TRUE(watch);
    second.reset();
    EXPECT_FALSE(watch);
}

} // namespace velmora::forms
