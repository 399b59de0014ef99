// Folders by number.

#include "tests/unit/program_fixture.h"

#include "base/numbers.h"
#include "ui/system_SpecialFolder.h"

namespace velmora {
namespace {

class SpecialFolder : public ProgramFixture {
protected:
    std::u16string folder(std::int32_t number) {
        return app.system_SpecialFolder().get_Special_Folder(number);
    }
};

TEST_F(SpecialFolder, OfTheShellsNumbersComesFromTheShell) {
    for (const int number :
         {0, 2, 5, 6, 7, 8, 9, 11, 19, 20, 21, 22, 23, 24, 25, 26, 27, 32, 33, 34, 38}) {
        fake.folders.special[number] = u"/folder/" + decimal(number);
        EXPECT_EQ(folder(number), u"/folder/" + decimal(number) + u"/");
    }
    EXPECT_EQ(fake.folders.asked.size(), 21U);
}

TEST_F(SpecialFolder, OfWindowsSystemAndTemporaryFilesComesFromTheirOwnCalls) {
    EXPECT_EQ(folder(36), u"/usr/");
    EXPECT_EQ(folder(37), u"/home/user/.local/share/velmora/System32/");
    EXPECT_EQ(folder(51), u"/run/user/1000/velmora/");
    EXPECT_TRUE(fake.folders.asked.empty());
}

TEST_F(SpecialFolder, OfAnyOtherNumberIsTheLoneSeparator) {
    for (const int number : {-1, 1, 3, 4, 10, 12, 18, 28, 31, 35, 39, 50, 52, 1000}) {
        fake.folders.special[number] = u"/never/asked";
        EXPECT_EQ(folder(number), u"/") << number;
    }
    EXPECT_TRUE(fake.folders.asked.empty());
}

TEST_F(SpecialFolder, ThatTheShellDoesNotHaveIsTheLoneSeparator) {
    fake.folders.special.clear();
    EXPECT_EQ(folder(5), u"/");
}

TEST_F(SpecialFolder, IsCutAtTheFirstNul) {
    fake.folders.special[5] = std::u16string(u"/docs\0rest", 10);
    EXPECT_EQ(folder(5), u"/docs/");
}

TEST_F(SpecialFolder, EndsInOneSeparator) {
    fake.folders.special[5] = u"/docs/";
    EXPECT_EQ(folder(5), u"/docs/");
    fake.folders.special[5] = u"C:\\docs";
    EXPECT_EQ(folder(5), u"C:\\docs\\");
}

} // namespace
} // namespace velmora
