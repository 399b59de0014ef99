// Every window is dragged by its bare ground, its title and the icon of its title.

#include "tests/unit/program_fixture.h"

#include "lyrics/doLrcForm.h"
#include "network/search_Lrc_Internet_Form.h"
#include "network/search_Song_Internet_Form.h"
#include "network/welcomeForm.h"
#include "playback/VideoScreen_Form.h"
#include "playback/check_SoundDriver_Form.h"
#include "playlist/another_PlayInfo_Form.h"
#include "playlist/listControl_Form.h"
#include "playlist/playInfo_Form.h"
#include "playlist/playList_Form.h"
#include "settings/playSetForm.h"
#include "ui/aboutForm.h"

#include <string>
#include <vector>

namespace velmora {
namespace {

class Drag : public ProgramFixture {
protected:
    struct Handle {
        forms::Form &form;
        PointTwips place; // where it is taken hold of
        const char *name;
    };

    template <typename Window> static void add(std::vector<Handle> &found, Window &form) {
        const auto middle = [](const forms::Control &control) {
            const RectTwips place = control.placeInForm();
            return PointTwips{place.left + place.width / 2, place.top + place.height / 2};
        };
        found.push_back({form, {20, 20}, "ground"});
        found.push_back({form, middle(form.title), "title"});
        found.push_back({form, middle(form.title_ICO), "icon"});
    }

    std::vector<Handle> handles() {
        std::vector<Handle> found;
        add(found, app.Main());
        add(found, app.playList_Form());
        add(found, app.listControl_Form());
        add(found, app.playInfo_Form());
        add(found, app.another_PlayInfo_Form());
        add(found, app.doLrcForm());
        add(found, app.search_Lrc_Internet_Form());
        add(found, app.search_Song_Internet_Form());
        add(found, app.welcomeForm());
        add(found, app.check_SoundDriver_Form());
        add(found, app.VideoScreen_Form());
        add(found, app.playSetForm());
        add(found, app.aboutForm());
        return found;
    }

    // Presses there and moves by 37 to the right and 19 up, in pixels, as a window hands it on.
    void drag(const Handle &handle) {
        constexpr std::int16_t button = forms::leftButton;
        windows.cursor = {400, 300};
        handle.form.pointerPressed(handle.place, button, 0);
        windows.cursor = {437, 281};
        handle.form.pointerMoved(handle.place, button, 0);
        handle.form.pointerReleased(handle.place, button, 0);
    }
};

TEST_F(Drag, MovesEachWindowByItsGroundItsTitleAndItsIcon) {
    for (const Handle &handle : handles()) {
        SCOPED_TRACE(std::string(handle.form.name()) + " by its " + handle.name);
        handle.form.show();
        const RectTwips before = handle.form.place();
        drag(handle);
        EXPECT_EQ(handle.form.left(), before.left + 37 * 15);
        EXPECT_EQ(handle.form.top(), before.top - 19 * 15);
        EXPECT_EQ(handle.form.width(), before.width);
        EXPECT_EQ(handle.form.height(), before.height);
        handle.form.hide();
    }
}

TEST_F(Drag, OfMainOrTheListByAnyHandleTakesTheOtherAlong) {
    std::vector<Handle> pair;
    add(pair, app.Main());
    add(pair, app.playList_Form());
    app.Main().show();
    app.playList_Form().show();
    for (const Handle &handle : pair) {
        SCOPED_TRACE(std::string(handle.form.name()) + " by its " + handle.name);
        forms::Form &other = &handle.form == &app.Main()
                                 ? static_cast<forms::Form &>(app.playList_Form())
                                 : app.Main();
        const RectTwips before = other.place();
        drag(handle);
        EXPECT_EQ(other.left(), before.left + 37 * 15);
        EXPECT_EQ(other.top(), before.top - 19 * 15);
    }
}

// A box that comes up meanwhile takes the release; so does whatever disables the form.
TEST_F(Drag, WhoseReleaseIsLostLeavesNothingAboveTheOthers) {
    struct Grip {
        forms::Form &form;
        const char *name;
    };
    const Grip grips[] = {{app.Main(), "the main window"}, {app.playList_Form(), "the list"}};
    for (const Grip &grip : grips) {
        for (const bool byBox : {true, false}) {
            SCOPED_TRACE(std::string(grip.name) + (byBox ? " by a box" : " by being disabled"));
            app.Main().show();
            app.playList_Form().show();
            windows.cursor = {400, 300};
            grip.form.pointerPressed({20, 20}, forms::leftButton, 0);
            ASSERT_TRUE(app.Main().topmost());
            if (byBox) {
                grip.form.pointerLost();
            } else {
                grip.form.setEnabled(false);
                grip.form.pointerReleased({20, 20}, forms::leftButton, 0);
                grip.form.setEnabled(true);
            }
            EXPECT_FALSE(app.Main().topmost());
            EXPECT_FALSE(app.playList_Form().topmost());
        }
    }
}

TEST_F(Drag, APressOnAButtonWhoseReleaseIsLostChangesNoOrder) {
    app.Main().show();
    windows.positionings.clear();
    const RectTwips place = app.Main().stopButton.placeInForm();
    app.Main().pointerPressed({place.left + 30, place.top + 30}, forms::leftButton, 0);
    app.Main().pointerLost();
    EXPECT_TRUE(windows.positionings.empty());
}

// A window manager that keeps windows on its screen, and the two windows side by side on it.
class HeldPair : public Drag {
protected:
    void SetUp() override {
        Drag::SetUp();
        main().show();
        list().show();
        main().move({160 * 15, 300 * 15, main().width(), main().height()});
        list().move(
            {main().left() + main().width(), main().top(), list().width(), list().height()});
        windows.keepsInside = RectPixels{0, 0, 1280, 800};
    }
    Main &main() { return app.Main(); }
    playList_Form &list() { return app.playList_Form(); }
    RectPixels seen(const forms::Form &form) {
        RectPixels rect;
        windows.GetWindowRect(form.hWnd(), rect);
        return rect;
    }
    // Takes hold at a place in the window that is seen, in pixels, and moves by so much, and back
    // by so much.
    void haul(forms::Form &form, PointPixels by, PointPixels back) {
        const RectPixels at = seen(form);
        const PointTwips where{20, 20};
        constexpr std::int16_t button = forms::leftButton;
        windows.cursor = {at.left + 5, at.top + 5};
        form.pointerPressed(where, button, 0);
        for (const PointPixels step : {by, back}) {
            for (int part = 0; part < 10; ++part) {
                windows.cursor.x += step.x / 10;
                windows.cursor.y += step.y / 10;
                form.pointerMoved(where, button, 0);
            }
        }
        form.pointerReleased(where, button, 0);
    }
    void expectTogether() {
        EXPECT_EQ(seen(list()).left, seen(main()).right);
        EXPECT_EQ(seen(list()).top, seen(main()).top);
    }
};

constexpr PointPixels outwards[] = {{-600, 0}, {600, 0}, {0, -600}, {0, 600}, {600, 600}};

TEST_F(HeldPair, IsTogetherAgainWhenADragThatWasHeldAtAnEdgeComesBack) {
    for (forms::Form *handle :
         {static_cast<forms::Form *>(&main()), static_cast<forms::Form *>(&list())}) {
        for (const PointPixels out : outwards) {
            SCOPED_TRACE(std::to_string(out.x) + "," + std::to_string(out.y));
            const RectPixels before = seen(*handle);
            haul(*handle, out, {-out.x, -out.y});
            expectTogether();
            EXPECT_EQ(seen(*handle), before);
        }
    }
}

TEST_F(HeldPair, LeftAtAnEdgeIsTogetherAgainAfterTheNextDrag) {
    for (const PointPixels out : outwards) {
        SCOPED_TRACE(std::to_string(out.x) + "," + std::to_string(out.y));
        main().move({160 * 15, 300 * 15, main().width(), main().height()});
        list().move(
            {main().left() + main().width(), main().top(), list().width(), list().height()});
        haul(main(), out, {0, 0});
        const RectPixels held = seen(main());
        const PointPixels inwards{160 - held.left, 300 - held.top};
        haul(main(), {inwards.x / 10 * 10, inwards.y / 10 * 10}, {0, 0});
        expectTogether();
        // It is where the pointer took it from where it was held, not from where it had been meant.
        EXPECT_NEAR(seen(main()).left, 160, 10);
        EXPECT_NEAR(seen(main()).top, 300, 10);
    }
}

TEST_F(HeldPair, IsPutTogetherByTheReleaseOfTheLeftButtonAlone) {
    const std::pair<forms::Form *, forms::Control *> handles[] = {{&main(), &main().title},
                                                                  {&list(), &list().title}};
    for (const auto &[form, title] : handles) {
        main().move({-300, 300 * 15, main().width(), main().height()});
        list().move({-300, 300 * 15, list().width(), list().height()});
        if (form == &main())
            windows.expectPopup("menu", "");
        title->on().MouseUp({forms::rightButton, 0, 0, 0});
        EXPECT_EQ(form->left(), -300);
        title->on().MouseUp({forms::leftButton, 0, 0, 0});
        EXPECT_EQ(form->left(), 0);
    }
}

TEST_F(HeldPair, ByASinglePixelIsPutTogetherToo) {
    main().move({-15, 300 * 15, main().width(), main().height()});
    list().move({main().left() + main().width(), 300 * 15, list().width(), list().height()});
    main().on().MouseUp({forms::leftButton, 0, 0, 0});
    EXPECT_EQ(main().left(), 0);
    EXPECT_EQ(list().left(), main().width());
}

TEST_F(HeldPair, ByASinglePixelAboveTheScreenIsPutTogetherToo) {
    main().move({300 * 15, -15, main().width(), main().height()});
    list().move({main().left() + main().width(), -15, list().width(), list().height()});
    main().on().MouseUp({forms::leftButton, 0, 0, 0});
    EXPECT_EQ(main().top(), 0);
    EXPECT_EQ(list().top(), 0);
}

TEST_F(HeldPair, ByLessThanAPixelStaysAsItIs) {
    main().move({-14, 300 * 15, main().width(), main().height()});
    main().on().MouseUp({forms::leftButton, 0, 0, 0});
    EXPECT_EQ(main().left(), -14);
}

TEST_F(HeldPair, MainGoesBesideTheListThatIsHeld) {
    haul(list(), {600, 0}, {0, 0});
    EXPECT_EQ(seen(list()).right, 1280);
    expectTogether();
}

TEST_F(HeldPair, SoIsAWindowAloneTakenFromWhereItWasHeld) {
    playInfo_Form &alone = app.playInfo_Form();
    alone.show();
    for (const PointPixels out : outwards) {
        SCOPED_TRACE(std::to_string(out.x) + "," + std::to_string(out.y));
        alone.move({500 * 15, 300 * 15, alone.width(), alone.height()});
        haul(alone, out, {0, 0});
        const RectPixels held = seen(alone);
        haul(alone, {out.x < 0 ? 100 : -100, out.y < 0 ? 100 : -100}, {0, 0});
        EXPECT_EQ(seen(alone).left - held.left, out.x < 0 ? 100 : -100);
        EXPECT_EQ(seen(alone).top - held.top, out.y < 0 ? 100 : -100);
    }
}

TEST_F(HeldPair, TheOtherGoesBesideOneThatIsHeldAndHasRoomThere) {
    haul(main(), {-600, 0}, {0, 0});
    EXPECT_EQ(seen(main()).left, 0);
    expectTogether();
}

} // namespace
} // namespace velmora
