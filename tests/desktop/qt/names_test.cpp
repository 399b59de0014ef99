// What the window manager and the panels call a window.

#include "tests/desktop/qt/desk.h"
#include "tests/desktop/x_reply.h"

#include <QAbstractNativeEventFilter>
#include <QCoreApplication>

#include <string>
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

// How often this program is told that a property of a window has changed.
class Told : public QAbstractNativeEventFilter {
public:
    Told(xcb_window_t window, const std::string &property)
        : window_(window),
          property_(
              owned(xcb_intern_atom_reply(
                        connection_,
                        xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(property.size()),
                                        property.data()),
                        nullptr))
                  ->atom) {
        QCoreApplication::instance()->installNativeEventFilter(this);
    }
    ~Told() override { QCoreApplication::instance()->removeNativeEventFilter(this); }
    Told(const Told &) = delete;
    Told &operator=(const Told &) = delete;

    // By a program that is not this one.
    void changeByAnother() {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, property_, XCB_ATOM_STRING,
                            8, 1, "x");
        xcb_flush(connection_);
    }

    bool nativeEventFilter(const QByteArray & /*type*/, void *message,
                           qintptr * /*result*/) override {
        const auto *event = static_cast<const xcb_generic_event_t *>(message);
        if ((event->response_type & 0x7f) != XCB_PROPERTY_NOTIFY)
            return false;
        const auto *change = static_cast<const xcb_property_notify_event_t *>(message);
        if (change->window == window_ && change->atom == property_)
            ++times;
        return false;
    }

    int times = 0;

private:
    xcb_connection_t *connection_ = desk().screen->connection();
    xcb_window_t window_;
    xcb_atom_t property_;
};

TEST_F(NamesTest, IsNotToldOfTheCaptionsThatItWroteButOfWhatOthersWrite) {
    TestForm form;
    form.appear();
    Told names(nativeOf(form), "_NET_WM_NAME");
    Told others(nativeOf(form), "_VELMORA_OF_OTHERS");
    for (int roll = 0; roll < 3; ++roll) {
        form.setCaption(u"one");
        form.setCaption(u"two");
        ASSERT_TRUE(desk().settle());
        others.changeByAnother();
        EXPECT_TRUE(desk().pump([&] { return others.times == roll + 1; }));
    }
    EXPECT_EQ(names.times, 0) << "its own writes wake it";
    names.changeByAnother();
    EXPECT_TRUE(desk().pump([&] { return names.times == 1; }));
}

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
