// The about window.

#include "tests/unit/pointer.h"
#include "tests/unit/program_fixture.h"

#include "settings/playSetForm.h"
#include "ui/aboutForm.h"
#include "ui/formSet.h"

namespace velmora {
namespace {

using testing::IsEmpty;

class About : public ProgramFixture {
protected:
    aboutForm &form = app.aboutForm();

    void disableAll() {
        app.Main().setEnabled(false);
        app.playList_Form().setEnabled(false);
        app.playSetForm().setEnabled(false);
    }
    static void click(forms::Control &control) { clickOn(control); }
};

TEST_F(About, OpensForMainByKeyWithMainAndListDisabled) {
    app.formSet().form_KeyDown(123, 0, u"main");
    EXPECT_TRUE(form.visible());
    EXPECT_EQ(form.caller_Name, u"main");
    EXPECT_FALSE(app.Main().enabled());
    EXPECT_FALSE(app.playList_Form().enabled());
}

TEST_F(About, GivesMainAndListBackToEitherOfThem) {
    for (const char16_t *caller : {u"main", u"playlist_Form", u"MAIN", u"PLAYLIST_form"}) {
        disableAll();
        form.show_For(caller);
        click(form.close);
        EXPECT_TRUE(app.Main().enabled());
        EXPECT_TRUE(app.playList_Form().enabled());
        EXPECT_FALSE(app.playSetForm().enabled());
        EXPECT_FALSE(form.visible());
    }
}

TEST_F(About, GivesTheSettingsBackToThemAlone) {
    for (const char16_t *caller : {u"playset", u"PlaySet"}) {
        disableAll();
        form.show_For(caller);
        click(form.close);
        EXPECT_TRUE(app.playSetForm().enabled());
        EXPECT_FALSE(app.Main().enabled());
        EXPECT_FALSE(app.playList_Form().enabled());
        EXPECT_FALSE(form.visible());
    }
}

TEST_F(About, IsHiddenForAnUnknownOpenerAndGivesNothingBack) {
    disableAll();
    form.show_For(u"somebody");
    click(form.close);
    EXPECT_FALSE(form.visible());
    EXPECT_FALSE(app.Main().enabled() || app.playSetForm().enabled());
}

TEST_F(About, ClosedByTheWindowManagerIsLeftInTheSameWay) {
    disableAll();
    form.show_For(u"playset");
    form.closeRequested();
    EXPECT_FALSE(form.visible());
    EXPECT_TRUE(app.playSetForm().enabled());
    EXPECT_EQ(&form, &app.aboutForm());
}

TEST_F(About, WritesAMailToTheAddressOfTheLine) {
    form.email.setCaption(u"me@here.example");
    form.Cooperation_Email.setCaption(u"you@there.example");
    click(form.email);
    click(form.Cooperation_Email);
    ASSERT_EQ(fake.shell.executions.size(), 2U);
    EXPECT_EQ(fake.shell.executions[0].verb, u"");
    EXPECT_EQ(fake.shell.executions[0].target, u"mailto:me@here.example");
    EXPECT_EQ(fake.shell.executions[1].target, u"mailto:you@there.example");
}

TEST_F(About, StaysWhereNoMailProgramCanBeOpened) {
    fake.shell.answer = 2;
    form.show_For(u"main");
    click(form.email);
    EXPECT_TRUE(form.visible());
    EXPECT_THAT(windows.boxes, IsEmpty());
}

TEST_F(About, ShowsTheAddressesInEachLanguage) {
    for (std::int32_t language = 0; language < 4; ++language) {
        app.setControl().Language_Index = language;
        app.Language_Set().language_aboutForm();
        for (const forms::Label *line : {&form.email, &form.Cooperation_Email}) {
            EXPECT_TRUE(contains(line->caption(), u"@"));
            EXPECT_FALSE(contains(line->caption(), u" "));
        }
    }
}

TEST_F(About, IsDraggedByFormTitleAndIcon) {
    form.show_For(u"main");
    for (forms::ControlEvents *handle : {static_cast<forms::ControlEvents *>(&form.on()),
                                         &form.title.on(), &form.title_ICO.on()}) {
        const auto left = form.left();
        windows.cursor = {500, 300};
        handle->MouseDown({forms::leftButton, 0, 0, 0});
        windows.cursor = {520, 310};
        handle->MouseMove({forms::leftButton, 0, 0, 0});
        EXPECT_EQ(form.left(), left + 20 * 15);
    }
}

TEST_F(About, HasTextsThatCanBeReadButNotChanged) {
    for (const forms::TextBox *box : {&form.information, &form.zkShow, &form.announce}) {
        EXPECT_TRUE(box->locked());
        EXPECT_TRUE(box->multiLine());
    }
}

} // namespace
} // namespace velmora
