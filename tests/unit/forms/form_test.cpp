#include "tests/unit/forms/form_fixture.h"

#include <cmath>

namespace velmora::forms {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class FormTest : public FormFixture {
protected:
    static std::vector<FormChange> changesOf(const fakes::FakeFormWindow &window) {
        std::vector<FormChange> changes;
        for (const auto &told : window.told)
            if (told.formChange)
                changes.push_back(*told.formChange);
        return changes;
    }
};

TEST_F(FormTest, ItsNumberIsNeverZeroAndNeverUsedAgain) {
    auto second = std::make_unique<Form>(windows, "second");
    const platform::HWND number = second->hWnd();
    EXPECT_NE(number, 0U);
    EXPECT_NE(number, form.hWnd());
    EXPECT_EQ(windows.formOf(number), second.get());
    second.reset();
    EXPECT_EQ(windows.formOf(number), nullptr);
    const Form third(windows, "third");
    EXPECT_NE(third.hWnd(), number);
}

TEST_F(FormTest, TheWindowIsMadeWhenTheFormIsFirstShown) {
    form.setCaption(u"before");
    EXPECT_EQ(form.window(), nullptr);
    form.show();
    EXPECT_NE(form.window(), nullptr);
    EXPECT_TRUE(form.visible());
    const forms::FormWindow *window = form.window();
    form.hide();
    form.show();
    EXPECT_EQ(form.window(), window);
}

TEST_F(FormTest, AWindowThatIsDroppedIsMadeAnewWhenTheFormIsShownAgain) {
    struct Film : Form {
        using Form::dropWindow;
        using Form::Form;
    };
    Film film(windows, "film");
    film.show();
    film.hide();
    film.dropWindow();
    EXPECT_EQ(film.window(), nullptr);
    film.show();
    EXPECT_NE(film.window(), nullptr);
}

TEST_F(FormTest, WithoutHandlersItUnloads) {
    Form plain(windows, "plain");
    plain.show();
    EXPECT_TRUE(plain.unload());
    EXPECT_FALSE(plain.visible());
}

TEST_F(FormTest, ShownAgainItsKeysBelongToTheControlThatHadThemHiddenThoughItBe) {
    TextBox first(form, "first");
    TextBox second(form, "second");
    form.show();
    form.setFocus(&second);
    second.setVisible(false);
    form.hide();
    EXPECT_EQ(form.activeControl(), &second);
    form.show();
    EXPECT_EQ(form.activeControl(), &second);
}

TEST_F(FormTest, WithoutAWindowThereIsNothingToPaintAnewOrToFocus) {
    TextBox box(form, "box");
    form.refresh();
    form.setFocus(&box);
    EXPECT_EQ(form.activeControl(), &box);
    EXPECT_EQ(fakes::FakeWindows::windowOf(form), nullptr);
}

TEST_F(FormTest, HideAndShowAreToldInTheirOrder) {
    auto &window = shown();
    form.hide();
    form.show();
    EXPECT_THAT(changesOf(window), ElementsAre(FormChange::Visible, FormChange::Visible));
    EXPECT_EQ(windows.shown, (Log{"form", "form"}));
}

TEST_F(FormTest, ShowingAShownFormBringsItToTheFront) {
    auto &window = shown();
    form.show();
    EXPECT_EQ(window.raises, 1);
    EXPECT_THAT(window.told, IsEmpty());
}

TEST_F(FormTest, AHiddenFormCannotBeRaised) {
    auto &window = shown();
    form.hide();
    form.raise();
    EXPECT_EQ(window.raises, 0);
}

TEST_F(FormTest, UnchangedValuesTellNothing) {
    auto &window = shown();
    form.setCaption(form.caption());
    form.move(form.place());
    form.setEnabled(true);
    form.setVisible(true);
    form.setWindowState(WindowState::Normal);
    form.setMousePointer(pointerDefault);
    form.setGround(Picture::None);
    form.setBackColor(form.backColor());
    form.setIcon(Picture::None);
    form.setLayered(false);
    form.setWindowKey({});
    form.setTopmost(false);
    EXPECT_THAT(window.told, IsEmpty());
}

TEST_F(FormTest, EachChangeIsToldByItsKind) {
    auto &window = shown();
    form.setCaption(u"x");
    form.setLeft(15);
    form.setEnabled(false);
    form.setWindowState(WindowState::Minimised);
    form.setMousePointer(pointerHourglass);
    form.setGround(Picture::body);
    form.setBackColor(5);
    form.setIcon(Picture::app_icon);
    form.setLayered(true);
    form.setWindowKey(keyColour);
    form.setTopmost(true);
    EXPECT_THAT(changesOf(window),
                ElementsAre(FormChange::Caption, FormChange::Place, FormChange::Enabled,
                            FormChange::State, FormChange::Pointer, FormChange::Look,
                            FormChange::Look, FormChange::Icon, FormChange::Look, FormChange::Look,
                            FormChange::Topmost));
}

TEST_F(FormTest, AMoveTellsTheRectangleBefore) {
    auto &window = shown();
    form.setTop(75);
    ASSERT_THAT(window.told, SizeIs(1));
    EXPECT_EQ(window.told[0].before, (RectTwips{0, 0, 3000, 3000}));
}

TEST_F(FormTest, PositionsKeepTheirFractions) {
    form.setLeft(10.25F);
    EXPECT_EQ(form.left(), 10.25F);
}

TEST_F(FormTest, ANewSizeRaisesResizeAndAMoveDoesNot) {
    int resizes = 0;
    form.on().Resize = [&] { ++resizes; };
    form.setLeft(15);
    EXPECT_EQ(resizes, 0);
    form.setWidth(4000);
    form.setHeight(100);
    EXPECT_EQ(resizes, 2);
}

TEST_F(FormTest, MovedByTheUserItsPlaceFollowsWithoutTellingBack) {
    auto &window = shown();
    form.movedTo(150, 300);
    EXPECT_EQ(form.left(), 150);
    EXPECT_EQ(form.top(), 300);
    form.stateChanged(WindowState::Minimised);
    EXPECT_EQ(form.windowState(), WindowState::Minimised);
    EXPECT_THAT(window.told, IsEmpty());
}

TEST_F(FormTest, StartsInTheMiddleOfTheWorkArea) {
    windows.workArea = {100, 0, 1100, 600};
    form.setStartCentred(true);
    EXPECT_EQ(form.place(), (RectTwips{600 * 15 - 1500, 300 * 15 - 1500, 3000, 3000}));
}

TEST_F(FormTest, ThatIsToStartElsewhereStaysWhereItIs) {
    form.setStartCentred(true);
    const RectTwips middle = form.place();
    windows.workArea = {100, 0, 1100, 600};
    form.setStartCentred(false);
    EXPECT_FALSE(form.startCentred());
    EXPECT_EQ(form.place(), middle);
}

TEST_F(FormTest, TheMiddleIsAWholePixel) {
    windows.workArea = {0, 0, 1001, 601};
    form.setStartCentred(true);
    EXPECT_EQ(std::fmod(form.left(), twipsPerPixel), 0);
    EXPECT_EQ(std::fmod(form.top(), twipsPerPixel), 0);
}

TEST_F(FormTest, StartsInTheMiddleOfTheScreenWhereTheWorkAreaCannotBeTold) {
    windows.workAreaFails = true;
    form.setStartCentred(true);
    EXPECT_EQ(form.left(), 640 * 15 - 1500);
    EXPECT_EQ(form.top(), 400 * 15 - 1500);
}

TEST_F(FormTest, APlaceGivenAfterwardsHolds) {
    form.setStartCentred(true);
    EXPECT_TRUE(form.startCentred());
    form.setHeight(100);
    EXPECT_TRUE(form.startCentred());
    form.setLeft(45);
    EXPECT_FALSE(form.startCentred());
    form.show();
    EXPECT_EQ(form.left(), 45);
}

// --- closing ---------------------------------------------------------------------------

TEST_F(FormTest, UnloadingAsksThenHidesThenTells) {
    Log log;
    form.show();
    form.on().QueryUnload = [&](bool &) { log.emplace_back(form.visible() ? "ask" : "late"); };
    form.on().Unload = [&] { log.emplace_back(form.visible() ? "early" : "gone"); };
    EXPECT_TRUE(form.unload());
    EXPECT_EQ(log, (Log{"ask", "gone"}));
}

TEST_F(FormTest, ACancelledUnloadLeavesTheFormAsItIs) {
    form.show();
    bool told = false;
    form.on().QueryUnload = [](bool &cancel) { cancel = true; };
    form.on().Unload = [&] { told = true; };
    EXPECT_FALSE(form.unload());
    EXPECT_TRUE(form.visible());
    EXPECT_FALSE(told);
}

TEST_F(FormTest, TheWindowManagersCloseIsAnUnload) {
    form.show();
    int asked = 0;
    form.on().QueryUnload = [&](bool &cancel) { cancel = ++asked == 1; };
    form.closeRequested();
    EXPECT_TRUE(form.visible());
    form.closeRequested();
    EXPECT_FALSE(form.visible());
}

TEST_F(FormTest, ACloseQueuedForADisabledFormIsDropped) {
    form.show();
    form.setEnabled(false);
    form.closeRequested();
    EXPECT_TRUE(form.visible());
}

TEST_F(FormTest, AFormMayEndInItsOwnQuestion) {
    auto second = std::make_unique<Form>(windows, "second");
    second->show();
    second->on().QueryUnload = [&](bool &) { second.reset(); };
    second->closeRequested();
    EXPECT_EQ(second, nullptr);
}

// --- the border of handlers ------------------------------------------------------------

TEST_F(FormTest, AnErrorEndsTheHandlerAndNothingElse) {
    Image image(form, "image");
    image.move({0, 0, 300, 300});
    Log log;
    image.on().MouseDown = [&](const MouseEvent &) {
        log.emplace_back("down");
        raise(ErrorNumber::General);
    };
    image.on().MouseUp = [&](const MouseEvent &) {
        log.emplace_back("up");
        raise(ErrorNumber::Overflow);
    };
    image.on().Click = [&] { log.emplace_back("click"); };
    click(10, 10);
    EXPECT_EQ(log, (Log{"down", "up", "click"}));
}

TEST_F(FormTest, TheProgramsEndPassesThroughEveryBorder) {
    Image image(form, "image");
    image.move({0, 0, 300, 300});
    image.on().Click = [] { throw fakes::ProcessEnded{0}; };
    press(10, 10);
    EXPECT_THROW(release(10, 10), fakes::ProcessEnded);
}

} // namespace velmora::forms
