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

} // namespace
} // namespace velmora
