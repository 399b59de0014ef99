// The captions of a menu in the words of a panel that draws it.

#include "platform/backends/bus/status_menu.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

using platform::bus::menuLabel;

TEST(MenuLabel, MarksALetterThePanelsWay) {
    EXPECT_EQ(menuLabel(u"&Play"), "_Play");
    EXPECT_EQ(menuLabel(u"E&xit(ESC)"), "E_xit(ESC)");
}

TEST(MenuLabel, KeepsWhatIsAMarkInOneOfTheTwoAlone) {
    EXPECT_EQ(menuLabel(u"a_b"), "a__b");
    EXPECT_EQ(menuLabel(u"This && that"), "This & that");
    EXPECT_EQ(menuLabel(u"_&_"), "___"
                                 "__");
    EXPECT_EQ(menuLabel(u"Last&"), "Last");
    EXPECT_EQ(menuLabel(u""), "");
}

TEST(MenuLabel, IsTextOfAnyLanguage) {
    EXPECT_EQ(menuLabel(u"退出(Esc)"), "\xE9\x80\x80\xE5\x87\xBA(Esc)");
    EXPECT_EQ(menuLabel(std::u16string(u"a") + char16_t(0xD800)), "a\xEF\xBF\xBD");
}

} // namespace
} // namespace velmora
