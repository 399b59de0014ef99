// What the sound-card check lists, and what it keeps silent about.

#include "tests/unit/pointer.h"
#include "tests/unit/program_fixture.h"

#include "playback/MenuForm.h"
#include "playback/check_SoundDriver_Form.h"

namespace velmora {
namespace {

class SoundCheck : public ProgramFixture {
protected:
    SoundCheck() { speak(1); }
    check_SoundDriver_Form &form() { return app.check_SoundDriver_Form(); }
    platform::WaveOutCaps &device() {
        if (fake.waveOut.devices.empty())
            fake.waveOut.addDevice(u"Card");
        return fake.waveOut.devices.front();
    }
    std::u16string press() {
        clickOn(form().check);
        return form().checkResult_Text.text();
    }
    // The lines of the list behind a heading up to the next empty line or the end.
    Texts linesBehind(std::u16string_view heading) {
        const Texts all = lines();
        const auto at = std::find(all.begin(), all.end(), heading);
        EXPECT_NE(at, all.end());
        return at == all.end() ? Texts{} : Texts(at + 1, std::find(at, all.end(), u""));
    }
    Texts lines() {
        Texts found;
        std::u16string rest = press();
        for (auto end = rest.find(u"\r\n"); end != std::u16string::npos; end = rest.find(u"\r\n")) {
            found.push_back(rest.substr(0, end));
            rest.erase(0, end + 2);
        }
        EXPECT_EQ(rest, u"") << "each line ends with a line break";
        return found;
    }
    Texts formats() { return linesBehind(app.Language().msg_Formats_List.data()); }
    Texts support() { return linesBehind(app.Language().msg_Extended_List.data()); }
};

// --- is there a device ---------------------------------------------------------------------------

TEST_F(SoundCheck, AnswersFalseWithoutADeviceAndTrueWithOneOrMore) {
    EXPECT_EQ(form().get_CheckResult(), 0);
    fake.waveOut.addDevice();
    EXPECT_EQ(form().get_CheckResult(), -1);
    fake.waveOut.addDevice();
    EXPECT_EQ(form().get_CheckResult(), -1);
}

TEST_F(SoundCheck, WithoutADeviceTheStartSaysSoAndItsControlsAreGone) {
    prepareMachine();
    fake.waveOut.devices.clear();
    windows.expectMsgBox(boxOf(u"您的系统未安装声卡或声卡驱动无效，这将影响您的视听效果。"
                               u"建议您安装声卡或检测声卡驱动故障！",
                               platform::MsgBoxIcon::Critical, u"Velmora 2011"),
                         platform::MsgBoxResult::Ok);
    app.start();
    EXPECT_FALSE(app.Main().check_SoundDriver.visible());
    EXPECT_FALSE(app.MenuForm().check_SoundDriver.enabled());
    EXPECT_TRUE(app.Main().visible()) << "the start goes on";
}

TEST_F(SoundCheck, WithADeviceItsControlsStand) {
    start();
    EXPECT_TRUE(app.Main().check_SoundDriver.visible());
    EXPECT_TRUE(app.MenuForm().check_SoundDriver.enabled());
}

// --- the list ------------------------------------------------------------------------------------

TEST_F(SoundCheck, ListsNameNumbersVersionChannelsFormatsAndAbilities) {
    device() = {1, 2, 0x1001, u"Card", 0x003, 2, 4 | 8};
    EXPECT_EQ(press(), u"Name：Card\r\n"
                       u"Products Id：2\r\n"
                       u"Drivers Id：1\r\n"
                       u"Driver Version：16.1\r\n"
                       u"Output channel：2\r\n"
                       u"\r\n"
                       u"List of supported formats：\r\n"
                       u"   11.025Khz,Mono,8bit,11Kb/Ps\r\n"
                       u"   11.025Khz,Stereo,8bit,22Kb/Ps\r\n"
                       u"\r\n"
                       u"Extend the output list of features：\r\n"
                       u"   Support Volume Control\r\n"
                       u"   Support Left-Right Channals\r\n");
}

TEST_F(SoundCheck, AsksForTheFirstDeviceWithARecordOf50Bytes) {
    device();
    fake.waveOut.addDevice(u"Second");
    EXPECT_EQ(lines().front(), u"Name：Card");
    EXPECT_EQ(fake.waveOut.capsQueries,
              (std::vector<std::pair<std::uint32_t, std::uint32_t>>{{0, 50}}));
}

TEST_F(SoundCheck, NumbersFromTheUpperHalfAreNegative) {
    device().productId = 0xFFFF;
    device().manufacturerId = 0x8086;
    EXPECT_EQ(lines()[1], u"Products Id：-1");
    EXPECT_EQ(lines()[2], u"Drivers Id：-32634");
}

TEST_F(SoundCheck, TheVersionsHalvesAreTwoNumbers) {
    for (const auto &[word, text] : std::vector<std::pair<std::uint16_t, std::u16string>>{
             {0, u"0.0"}, {0x00FF, u"0.255"}, {0x0100, u"1.0"}, {0xFFFE, u"255.254"}}) {
        device().driverVersion = word;
        EXPECT_EQ(lines()[3], u"Driver Version：" + text);
    }
}

TEST_F(SoundCheck, TheNameEndsAtItsFirstNul) {
    device().productName = std::u16string(u"Card\0rest\0", 10);
    EXPECT_EQ(lines().front(), u"Name：Card");
    device().productName.clear();
    EXPECT_EQ(lines().front(), u"Name：");
    device().productName = std::u16string(1, u'\0');
    EXPECT_EQ(lines().front(), u"Name：");
}

TEST_F(SoundCheck, EachFormatBitHasItsText) {
    const std::u16string_view texts[] = {
        u"   11.025Khz,Mono,8bit,11Kb/Ps",  u"   11.025Khz,Stereo,8bit,22Kb/Ps",
        u"   11.025Khz,Mono,16bit,22Kb/Ps", u"   11.025Khz,Stereo,16bit,43Kb/Ps",
        u"   22.05Khz,Mono,8bit,22Kb/Ps",   u"   22.05Khz,Stereo,8bit,43Kb/Ps",
        u"   22.05Khz,Mono,16bit,43Kb/Ps",  u"   22.05Khz,Stereo,16bit,86Kb/Ps",
        u"   44.1Khz,Mono,8bit,43Kb/Ps",    u"   44.1Khz,Stereo,8bit,86Kb/Ps",
        u"   44.1Khz,Mono,16bit,86Kb/Ps",   u"   44.1Khz,Stereo,16bit,172Kb/Ps",
    };
    std::uint32_t bit = 1;
    for (const auto text : texts) {
        device().formats = bit;
        EXPECT_EQ(formats(), Texts{std::u16string(text)}) << bit;
        bit *= 2;
    }
    device().formats = 0xFFF;
    EXPECT_EQ(formats(), Texts(std::begin(texts), std::end(texts)));
}

TEST_F(SoundCheck, EachAbilityBitHasItsText) {
    const std::u16string_view texts[] = {
        u"   Support Pitch",           u"   Support Playback",
        u"   Support Volume Control",  u"   Support Left-Right Channals",
        u"   Support Synchronization",
    };
    std::uint32_t bit = 1;
    for (const auto text : texts) {
        device().support = bit;
        EXPECT_EQ(support(), Texts{std::u16string(text)}) << bit;
        bit *= 2;
    }
    device().support = 0x1F;
    EXPECT_EQ(support(), Texts(std::begin(texts), std::end(texts)));
}

TEST_F(SoundCheck, BitsBeyondTheTablesSayNothing) {
    device().formats = 0xFFFFF000;
    device().support = 0xFFFFFFE0;
    EXPECT_EQ(formats(), Texts{});
    EXPECT_EQ(support(), Texts{});
}

TEST_F(SoundCheck, HeadingsFollowTheLanguageAndTheListsAreEnglishInEach) {
    device().formats = 0x800;
    device().support = 8;
    const Texts headings = {u"支持格式列表：", u"List of supported formats："};
    for (std::int32_t language = 0; language < 4; ++language) {
        speak(language);
        const auto &texts = app.Language();
        const Texts all = lines();
        ASSERT_EQ(all.size(), 11U);
        EXPECT_EQ(all[0], std::u16string(texts.msg_Product_Name) + u"Card");
        EXPECT_EQ(all[1], std::u16string(texts.msg_Product_Id) + u"0");
        EXPECT_EQ(all[2], std::u16string(texts.msg_Driver_Id) + u"0");
        EXPECT_EQ(all[3], std::u16string(texts.msg_Driver_Version) + u"16.1");
        EXPECT_EQ(all[4], std::u16string(texts.msg_Output_Channels) + u"2");
        EXPECT_EQ(all[5], u"");
        EXPECT_EQ(all[6], texts.msg_Formats_List);
        EXPECT_EQ(all[7], u"   44.1Khz,Stereo,16bit,172Kb/Ps");
        EXPECT_EQ(all[8], u"");
        EXPECT_EQ(all[9], texts.msg_Extended_List);
        EXPECT_EQ(all[10], u"   Support Left-Right Channals");
        if (language < 2)
            EXPECT_EQ(all[6], headings[static_cast<std::size_t>(language)]);
    }
}

TEST_F(SoundCheck, PressedTwiceGivesTheSameText) {
    device();
    const std::u16string first = press();
    EXPECT_FALSE(first.empty());
    EXPECT_EQ(press(), first);
}

TEST_F(SoundCheck, ReplacesWhateverStoodThere) {
    device();
    form().checkResult_Text.setText(u"left over");
    EXPECT_EQ(lines().front(), u"Name：Card");
}

// --- failures ------------------------------------------------------------------------------------

TEST_F(SoundCheck, WithoutADeviceAPressLeavesTheTextAndSaysNothing) {
    form().checkResult_Text.setText(u"as it was");
    EXPECT_EQ(press(), u"as it was");
    EXPECT_TRUE(fake.waveOut.capsQueries.empty()) << "the second question is not put";
}

TEST_F(SoundCheck, ADeviceThatDoesNotAnswerLeavesTheTextAndSaysNothing) {
    device();
    const std::u16string before = press();
    device().productName = u"Other";
    for (const std::uint32_t error : {1U, 6U, 0xFFFFFFFFU}) {
        fake.waveOut.capsError = error;
        EXPECT_EQ(press(), before);
    }
    fake.waveOut.capsError = 0;
    EXPECT_NE(press(), before);
}

TEST_F(SoundCheck, ADevicePulledOutSinceTheStartLeavesTheText) {
    device();
    const std::u16string before = press();
    fake.waveOut.devices.clear();
    EXPECT_EQ(press(), before);
}

// --- the window ----------------------------------------------------------------------------------

TEST_F(SoundCheck, IsShownByMainsButtonAndTheMenuWithAnEmptyList) {
    start();
    clickOn(app.Main().check_SoundDriver);
    EXPECT_TRUE(form().visible());
    EXPECT_EQ(form().checkResult_Text.text(), u"") << "the list comes with the press alone";
    form().hide();
    app.MenuForm().check_SoundDriver.choose();
    EXPECT_TRUE(form().visible());
}

TEST_F(SoundCheck, CloseHidesItAndKeepsTheList) {
    device();
    const std::u16string list = press();
    form().show();
    clickOn(form().close);
    EXPECT_FALSE(form().visible());
    form().show();
    form().closeRequested();
    EXPECT_FALSE(form().visible());
    form().show();
    EXPECT_EQ(form().checkResult_Text.text(), list);
}

TEST_F(SoundCheck, TheListCannotBeWrittenTo) {
    EXPECT_TRUE(form().checkResult_Text.locked());
    EXPECT_TRUE(form().checkResult_Text.multiLine());
}

TEST_F(SoundCheck, IsDraggedByItsGroundItsTitleAndItsIcon) {
    form().show();
    for (forms::ControlEvents *area : {static_cast<forms::ControlEvents *>(&form().on()),
                                       &form().title.on(), &form().title_ICO.on()}) {
        const auto before = form().place();
        windows.cursor = {100, 100};
        area->MouseDown({forms::leftButton, 0, 1, 1});
        windows.cursor = {110, 120};
        area->MouseMove({forms::leftButton, 0, 1, 1});
        EXPECT_EQ(form().left(), before.left + 150);
        EXPECT_EQ(form().top(), before.top + 300);
    }
}

} // namespace
} // namespace velmora
