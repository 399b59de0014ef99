// What goes into the system's dialogs, and what is read out of them.

#include "tests/unit/program_fixture.h"

#include "ui/myCommondialog.h"

namespace velmora {
namespace {

using platform::CHOOSEFONT;

class SystemDialogs : public ProgramFixture {
protected:
    static constexpr platform::HWND owner = 77;

    myCommondialog &dialogs() { return app.myCommondialog(); }
    std::u16string pick(std::int32_t mode, std::u16string_view name = u"") {
        return dialogs().file_Dialog(owner, mode, u"a title", name,
                                     std::u16string_view(u"All\0*.*\0", 8), u"/start", u"m3u");
    }
    // What the user makes of the font's record, answered with OK.
    void choose(std::function<void(CHOOSEFONT &)> work, std::int32_t answer = 1) {
        fake.dialogs.expectFont([work = std::move(work), answer](CHOOSEFONT &record) {
            work(record);
            return answer;
        });
    }
};

// --- a folder ------------------------------------------------------------------------------------

TEST_F(SystemDialogs, AFolderIsAskedForWithOwnerTitleAndRealFoldersAlone) {
    fake.dialogs.expectFolder(u"/music");
    EXPECT_EQ(dialogs().browse_Folder(owner, u"where to"), u"/music/");
    const platform::BROWSEINFO &record = fake.dialogs.browses.at(0);
    EXPECT_EQ(record.owner, owner);
    EXPECT_EQ(record.title, u"where to");
    EXPECT_EQ(record.flags, 1U);
}

TEST_F(SystemDialogs, AFolderKeepsTheOneSeparatorThatItHas) {
    fake.dialogs.expectFolder(u"/music/");
    EXPECT_EQ(dialogs().browse_Folder(owner, u""), u"/music/");
    fake.dialogs.expectFolder(u"/");
    EXPECT_EQ(dialogs().browse_Folder(owner, u""), u"/");
}

TEST_F(SystemDialogs, AFolderIsCutAtItsFirstNul) {
    fake.dialogs.expectFolder(std::u16string(u"/music\0rest", 11));
    EXPECT_EQ(dialogs().browse_Folder(owner, u""), u"/music/");
}

TEST_F(SystemDialogs, ACancelledFolderIsTheEmptyText) {
    fake.dialogs.expectFolder(std::nullopt);
    EXPECT_EQ(dialogs().browse_Folder(owner, u""), u"");
}

// --- a colour ------------------------------------------------------------------------------------

TEST_F(SystemDialogs, AColourIsAskedForFromBlackWithSixteenDarkCustomColours) {
    Colour colour = 0x00ABCDEF;
    fake.dialogs.expectColour(0x00112233);
    EXPECT_TRUE(dialogs().choose_Color(owner, colour));
    EXPECT_EQ(colour, 0x00112233U);
    const platform::CHOOSECOLOR &record = fake.dialogs.colourRecords.at(0);
    EXPECT_EQ(record.size, 36U);
    EXPECT_EQ(record.owner, owner);
    EXPECT_EQ(record.result, 0U);
    EXPECT_EQ(record.flags, 128U);
    EXPECT_EQ(record.customColours.size(), 64U);
    EXPECT_THAT(record.customColours, testing::Each(2));
}

TEST_F(SystemDialogs, ACancelledColourIsFalseAndKeepsTheOldOne) {
    Colour colour = 0x00ABCDEF;
    fake.dialogs.expectColour(std::nullopt);
    EXPECT_FALSE(dialogs().choose_Color(owner, colour));
    EXPECT_EQ(colour, 0x00ABCDEFU);
}

// --- a file --------------------------------------------------------------------------------------

TEST_F(SystemDialogs, AFileToOpenIsAskedForByTheWholeRecord) {
    fake.dialogs.expectOpen(u"/m/a.mp3");
    EXPECT_EQ(pick(1, u"name"), u"/m/a.mp3") << "cut at its first NUL";
    const platform::OPENFILENAME &record = fake.dialogs.files.at(0);
    EXPECT_EQ(record.size, 76U);
    EXPECT_EQ(record.owner, owner);
    EXPECT_EQ(record.filter, std::u16string(u"All\0*.*\0", 8));
    EXPECT_EQ(record.filterIndex, 1U);
    EXPECT_EQ(record.file, u"name" + std::u16string(246, u'\0'));
    EXPECT_EQ(record.maxFile, 255U);
    EXPECT_EQ(record.fileTitle, std::u16string(255, u'\0'));
    EXPECT_EQ(record.maxFileTitle, 255U);
    EXPECT_EQ(record.initialDirectory, u"/start");
    EXPECT_EQ(record.title, u"a title");
    EXPECT_EQ(record.defaultExtension, u"m3u");
    EXPECT_EQ(record.flags, 6148U);
}

TEST_F(SystemDialogs, AnyOtherModeThanOneSaves) {
    for (const std::int32_t mode : {0, 2, 3, -1}) {
        fake.dialogs.expectSave(u"/m/b.m3u");
        EXPECT_EQ(pick(mode), u"/m/b.m3u");
        EXPECT_EQ(fake.dialogs.files.back().flags, 2054U);
    }
}

TEST_F(SystemDialogs, ACancelledFileIsTheEmptyTextWhateverNameWasProposed) {
    fake.dialogs.expectOpen(std::nullopt);
    EXPECT_EQ(pick(1, u"name"), u"");
    fake.dialogs.expectSave(std::nullopt);
    EXPECT_EQ(pick(2, u"name"), u"");
}

TEST_F(SystemDialogs, AProposedNameOf250UnitsIsTakenAndALongerOneFailsWithoutADialog) {
    fake.dialogs.expectSave(u"/m/x");
    EXPECT_EQ(pick(2, std::u16string(250, u'x')), u"/m/x");
    EXPECT_EQ(fake.dialogs.files.back().file, std::u16string(250, u'x'));
    EXPECT_EQ(pick(2, std::u16string(251, u'x')), u"");
}

TEST_F(SystemDialogs, AChosenPathMayBeOfAnyLength) {
    const std::u16string path = u"/" + std::u16string(900, u'n');
    fake.dialogs.expectOpen(path);
    EXPECT_EQ(pick(1), path);
}

// --- a font --------------------------------------------------------------------------------------

TEST_F(SystemDialogs, AFontIsAskedForByTheWholeRecord) {
    forms::Font font(u"微软雅黑", 14.25F);
    font.setBold(true);
    font.setItalic(true);
    font.setUnderline(true);
    choose([](CHOOSEFONT &) {});
    dialogs().choose_Font(owner, font);
    const CHOOSEFONT &record = fake.dialogs.fontRecords.at(0);
    EXPECT_EQ(record.size, 60U);
    EXPECT_EQ(record.owner, owner);
    EXPECT_EQ(record.flags, 257U);
    EXPECT_EQ(record.pointSize, 142) << "half to even";
    EXPECT_EQ(record.logFont.weight, 700);
    EXPECT_TRUE(record.logFont.italic);
    EXPECT_TRUE(record.logFont.underline);
    EXPECT_EQ(record.logFont.faceName, "微软雅黑");
}

TEST_F(SystemDialogs, AFontThatIsNotBoldHasTheWeightZero) {
    forms::Font font(u"Arial", 8);
    choose([](CHOOSEFONT &) {});
    dialogs().choose_Font(owner, font);
    const CHOOSEFONT &record = fake.dialogs.fontRecords.at(0);
    EXPECT_EQ(record.logFont.weight, 0);
    EXPECT_FALSE(record.logFont.italic);
    EXPECT_FALSE(record.logFont.underline);
}

TEST_F(SystemDialogs, AChosenFontIsReadBackButForColourAndStrikethrough) {
    forms::Font font(u"Arial", 8);
    font.setStrikethrough(true);
    choose([](CHOOSEFONT &record) {
        record.logFont.weight = 700;
        record.logFont.italic = true;
        record.logFont.underline = true;
        record.logFont.faceName = std::string("Noto Serif\0rest", 15);
        record.pointSize = 240;
    });
    EXPECT_TRUE(dialogs().choose_Font(owner, font));
    EXPECT_TRUE(font.bold());
    EXPECT_TRUE(font.italic());
    EXPECT_TRUE(font.underline());
    EXPECT_TRUE(font.strikethrough());
    EXPECT_EQ(font.name(), u"Noto Serif");
    EXPECT_EQ(font.size(), 24);
}

TEST_F(SystemDialogs, AFontIsBoldFromTheWeight700On) {
    forms::Font font(u"Arial", 8);
    font.setBold(true);
    choose([](CHOOSEFONT &record) { record.logFont.weight = 699; });
    EXPECT_TRUE(dialogs().choose_Font(owner, font));
    EXPECT_FALSE(font.bold());
    choose([](CHOOSEFONT &record) { record.logFont.weight = 900; });
    dialogs().choose_Font(owner, font);
    EXPECT_TRUE(font.bold());
}

TEST_F(SystemDialogs, AFontsSizeIsRoundedToWholePointsHalfToEven) {
    forms::Font font(u"Arial", 8);
    choose([](CHOOSEFONT &record) { record.pointSize = 105; });
    dialogs().choose_Font(owner, font);
    EXPECT_EQ(font.size(), 10);
    choose([](CHOOSEFONT &record) { record.pointSize = 115; });
    dialogs().choose_Font(owner, font);
    EXPECT_EQ(font.size(), 12);
}

TEST_F(SystemDialogs, AnyAnswerButOneLeavesTheFontAsItWas) {
    const forms::Font before(u"Arial", 8);
    for (const std::int32_t answer : {0, 2, -1}) {
        forms::Font font = before;
        choose(
            [](CHOOSEFONT &record) {
                record.logFont.weight = 700;
                record.pointSize = 300;
                record.logFont.faceName = "Other";
            },
            answer);
        EXPECT_FALSE(dialogs().choose_Font(owner, font));
        EXPECT_EQ(font, before);
    }
}

} // namespace
} // namespace velmora
