// What the window manager and the panels call a window.

#include "tests/desktop/qt/desk.h"
#include "tests/desktop/x_reply.h"

#include <vector>

namespace velmora::tests {
namespace {

class NamesTest : public DeskTest {};

// As if the window manager told of nothing that it knows.
class OldManager {
public:
    OldManager() {
        const auto reply = owned(xcb_get_property_reply(
            connection_,
            xcb_get_property(connection_, 1, root_, supported_, XCB_ATOM_ATOM, 0, mostAtoms),
            nullptr));
        const auto *first = static_cast<const xcb_atom_t *>(xcb_get_property_value(reply.get()));
        known_.assign(first, first + reply->value_len);
    }
    ~OldManager() {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, root_, supported_, XCB_ATOM_ATOM,
                            32, static_cast<std::uint32_t>(known_.size()), known_.data());
        xcb_flush(connection_);
    }
    OldManager(const OldManager &) = delete;
    OldManager &operator=(const OldManager &) = delete;

private:
    static constexpr std::uint32_t mostAtoms = 1024;

    xcb_connection_t *connection_ = desk().screen->connection();
    xcb_window_t root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    xcb_atom_t supported_ =
        owned(xcb_intern_atom_reply(connection_,
                                    xcb_intern_atom(connection_, 0, 14, "_NET_SUPPORTED"), nullptr))
            ->atom;
    std::vector<xcb_atom_t> known_;
};

TEST_F(NamesTest, ShowsItsCaptionToTheWindowManager) {
    TestForm form;
    form.setCaption(u"灯火 【one】");
    form.appear();
    EXPECT_EQ(desk().screen->text(nativeOf(form), "_NET_WM_NAME"), "灯火 【one】");
    form.setCaption(u"two");
    EXPECT_TRUE(
        desk().pump([&] { return desk().screen->text(nativeOf(form), "_NET_WM_NAME") == "two"; }));
    ASSERT_TRUE(desk().settle());
    EXPECT_NE(desk().screen->text(nativeOf(form), "WM_NAME"), "two")
        << "the name of old wakes everybody once more, and nobody needs it";
}

TEST_F(NamesTest, ShowsItsCaptionToAManagerThatKnowsNoNameButTheOneOfOld) {
    TestForm form;
    form.appear();
    form.setCaption(u"one");
    {
        const OldManager old;
        ASSERT_TRUE(desk().settle());
        form.setCaption(u"two");
        EXPECT_TRUE(
            desk().pump([&] { return desk().screen->text(nativeOf(form), "WM_NAME") == "two"; }));
        form.setCaption(u"三");
        EXPECT_TRUE(
            desk().pump([&] { return desk().screen->text(nativeOf(form), "WM_NAME") == "三"; }));
    }
    ASSERT_TRUE(desk().settle());
    form.setCaption(u"four");
    EXPECT_TRUE(
        desk().pump([&] { return desk().screen->text(nativeOf(form), "_NET_WM_NAME") == "four"; }));
    ASSERT_TRUE(desk().settle());
    EXPECT_EQ(desk().screen->text(nativeOf(form), "WM_NAME"), "三") << "another manager has come";
}

TEST_F(NamesTest, HasATitleInTheTaskBarOfItsOwnOnlyWhereThatIsNotItsName) {
    TestForm form;
    form.setShowInTaskbar(true);
    form.setCaption(u"one");
    form.appear();
    const auto has = [&] {
        return desk().screen->hasProperty(nativeOf(form), "_NET_WM_ICON_NAME");
    };
    desk().windows->setAppTitle(u"one");
    ASSERT_TRUE(desk().settle());
    EXPECT_FALSE(has());
    desk().windows->setAppTitle(u"灯火");
    ASSERT_TRUE(desk().settle());
    EXPECT_EQ(desk().screen->text(nativeOf(form), "_NET_WM_ICON_NAME"), "灯火");
    desk().windows->setAppTitle(u"one");
    ASSERT_TRUE(desk().settle());
    EXPECT_FALSE(has());
}

} // namespace
} // namespace velmora::tests
