#include "platform/backends/media/mci_command.h"

#include <gtest/gtest.h>

namespace velmora::platform::media {
namespace {

MciError errorOf(std::u16string_view text) {
    MciCommand command;
    return parseMciCommand(text, command);
}

// Parses a text that must be a command, and gives its action of the expected kind.
template <typename Action> Action parsed(std::u16string_view text) {
    MciCommand command;
    EXPECT_EQ(parseMciCommand(text, command), MciError::None);
    EXPECT_TRUE(std::holds_alternative<Action>(command.action));
    const Action *action = std::get_if<Action>(&command.action);
    return action != nullptr ? *action : Action{};
}

TEST(MciCommand, OpenWithoutStyleHasNoWindow) {
    const auto open = parsed<OpenCommand>(u"open /m/a.mp3 type MPEGVideo alias NOWMUSIC");
    EXPECT_EQ(open.shortPath, u"/m/a.mp3");
    EXPECT_EQ(open.type, u"MPEGVideo");
    EXPECT_FALSE(open.styleChild);
    EXPECT_EQ(open.parentWindow, 0U);
}

TEST(MciCommand, OpenWithStyleChildAndATrailingBlankAsksForTheEnginesWindow) {
    const auto open =
        parsed<OpenCommand>(u"open /m/a.avi type MPEGVideo alias NOWMUSIC style child ");
    EXPECT_TRUE(open.styleChild);
    EXPECT_EQ(open.parentWindow, 0U);
}

TEST(MciCommand, OpenWithParentAndUpperCaseChildNamesTheParent) {
    const auto open = parsed<OpenCommand>(
        u"open /m/a.avi type MPEGVideo alias NOWMUSIC parent 58720263 style CHILD");
    EXPECT_TRUE(open.styleChild);
    EXPECT_EQ(open.parentWindow, 58720263U);
}

TEST(MciCommand, OpenGivesTheAlias) {
    MciCommand command;
    ASSERT_EQ(parseMciCommand(u"open /a type Waveaudio alias NOWMUSIC", command), MciError::None);
    EXPECT_EQ(command.alias, u"NOWMUSIC");
}

TEST(MciCommand, AFileMayBeNamedLikeAKeyword) {
    EXPECT_EQ(parsed<OpenCommand>(u"open type type Waveaudio alias alias").shortPath, u"type");
}

TEST(MciCommand, EveryBareVerbIsKnown) {
    parsed<CloseCommand>(u"close NOWMUSIC");
    parsed<PlayCommand>(u"play NOWMUSIC");
    parsed<PauseCommand>(u"pause NOWMUSIC");
}

TEST(MciCommand, SeekTakesMilliseconds) {
    EXPECT_EQ(parsed<SeekCommand>(u"seek NOWMUSIC to 83456").ms, 83456);
    EXPECT_EQ(parsed<SeekCommand>(u"seek NOWMUSIC to -1").ms, -1);
    EXPECT_EQ(parsed<SeekCommand>(u"seek NOWMUSIC to 2147483647").ms, 2147483647);
}

TEST(MciCommand, TimeFormatIsMilliseconds) {
    parsed<SetTimeFormatCommand>(u"set NOWMUSIC time format milliseconds");
    EXPECT_EQ(errorOf(u"set NOWMUSIC time format frames"), MciError::UnrecognizedKeyword);
}

TEST(MciCommand, VolumeTakesALevel) {
    EXPECT_EQ(parsed<SetVolumeCommand>(u"setaudio NOWMUSIC volume to 0").level, 0);
    EXPECT_EQ(parsed<SetVolumeCommand>(u"setaudio NOWMUSIC volume to 1000").level, 1000);
}

TEST(MciCommand, SourceWithTwoBlanksIsTheSameCommand) {
    EXPECT_EQ(parsed<SetChannelCommand>(u"setaudio  NOWMUSIC source to left").channel,
              Channel::Left);
    EXPECT_EQ(parsed<SetChannelCommand>(u"setaudio  NOWMUSIC source to right").channel,
              Channel::Right);
    EXPECT_EQ(parsed<SetChannelCommand>(u"setaudio  NOWMUSIC source to stereo").channel,
              Channel::Stereo);
}

TEST(MciCommand, StatusKnowsItsFourItems) {
    EXPECT_EQ(parsed<StatusCommand>(u"status NOWMUSIC mode").item, StatusItem::Mode);
    EXPECT_EQ(parsed<StatusCommand>(u"status NOWMUSIC position").item, StatusItem::Position);
    EXPECT_EQ(parsed<StatusCommand>(u"status NOWMUSIC length").item, StatusItem::Length);
    EXPECT_EQ(parsed<StatusCommand>(u"status NOWMUSIC window handle").item,
              StatusItem::WindowHandle);
}

TEST(MciCommand, PutTakesFourNumbers) {
    const auto put = parsed<PutCommand>(u"put NOWMUSIC window at 1 -2 730 525");
    EXPECT_EQ(put.x, 1);
    EXPECT_EQ(put.y, -2);
    EXPECT_EQ(put.width, 730);
    EXPECT_EQ(put.height, 525);
}

TEST(MciCommand, WordsCompareWithoutRegardToCaseAndBlanksInARowCountAsOne) {
    EXPECT_EQ(parsed<SetVolumeCommand>(u"  SETAUDIO   nowMusic  Volume  TO   7  ").level, 7);
    EXPECT_EQ(parsed<StatusCommand>(u"Status A Window HANDLE").item, StatusItem::WindowHandle);
}

TEST(MciCommand, OnlyTheBlankSeparatesWords) {
    EXPECT_EQ(errorOf(u"play\tNOWMUSIC"), MciError::UnrecognizedCommand);
}

TEST(MciCommand, AnEmptyTextIsNoCommand) {
    EXPECT_EQ(errorOf(u""), MciError::MissingCommand);
    EXPECT_EQ(errorOf(u"    "), MciError::MissingCommand);
}

TEST(MciCommand, AnUnknownFirstWordIsNoCommand) {
    EXPECT_EQ(errorOf(u"stop NOWMUSIC"), MciError::UnrecognizedCommand);
    EXPECT_EQ(errorOf(u"playNOWMUSIC"), MciError::UnrecognizedCommand);
    EXPECT_EQ(errorOf(u"播放 NOWMUSIC"), MciError::UnrecognizedCommand);
}

class CutShort : public testing::TestWithParam<std::u16string_view> {};

// Every command with its last word gone is incomplete, down to the verb alone.
TEST_P(CutShort, LacksAParameterAtEveryWord) {
    std::u16string_view text = GetParam();
    for (std::size_t blank = text.rfind(u' '); blank != std::u16string_view::npos;
         blank = text.rfind(u' ')) {
        text = text.substr(0, blank);
        EXPECT_EQ(errorOf(text), MciError::MissingParameter);
    }
}

// And one word too many is too much.
TEST_P(CutShort, TakesNoFurtherWord) {
    EXPECT_EQ(errorOf(std::u16string(GetParam()) + u" more"), MciError::UnrecognizedKeyword);
}

INSTANTIATE_TEST_SUITE_P(EveryCommand, CutShort,
                         testing::Values(u"close A", u"play A", u"pause A", u"seek A to 5",
                                         u"set A time format milliseconds",
                                         u"setaudio A volume to 5", u"setaudio A source to left",
                                         u"status A mode", u"status A position", u"status A length",
                                         u"status A window handle", u"put A window at 0 0 1 1"));

TEST(MciCommand, AnOpenThatEndsTooEarlyLacksAParameter) {
    for (const auto *text :
         {u"open", u"open /a", u"open /a type", u"open /a type Waveaudio",
          u"open /a type Waveaudio alias", u"open /a type Waveaudio alias A style",
          u"open /a type Waveaudio alias A parent", u"open /a type Waveaudio alias A parent 5",
          u"open /a type Waveaudio alias A parent 5 style"})
        EXPECT_EQ(errorOf(text), MciError::MissingParameter);
}

TEST(MciCommand, AnOpenWithAStrangeWordFails) {
    for (const auto *text :
         {u"open /a kind Waveaudio alias A", u"open /a type Waveaudio as A",
          u"open /a type Waveaudio alias A shareable",
          u"open /a type Waveaudio alias A style popup",
          u"open /a type Waveaudio alias A style child x", u"open /a b type Waveaudio alias A"})
        EXPECT_EQ(errorOf(text), MciError::UnrecognizedKeyword);
}

TEST(MciCommand, ANumberIsAWholeDecimalOf32Bits) {
    for (const auto *number : {u"", u"x", u"5x", u"5.0", u"0x5", u"+5", u"2147483648",
                               u"99999999999999999999", u"-", u"５"}) {
        if (*number == u'\0')
            continue;
        EXPECT_EQ(errorOf(std::u16string(u"seek A to ") + number), MciError::BadInteger);
        EXPECT_EQ(errorOf(std::u16string(u"setaudio A volume to ") + number), MciError::BadInteger);
        EXPECT_EQ(errorOf(std::u16string(u"put A window at 0 0 0 ") + number),
                  MciError::BadInteger);
    }
}

TEST(MciCommand, AParentIsAWindowNumber) {
    EXPECT_EQ(errorOf(u"open /a type Waveaudio alias A parent -5 style child"),
              MciError::BadInteger);
    EXPECT_EQ(errorOf(u"open /a type Waveaudio alias A parent x style child"),
              MciError::BadInteger);
    EXPECT_EQ(errorOf(u"open /a type Waveaudio alias A parent 99999999999999999999 style child"),
              MciError::BadInteger);
}

TEST(MciCommand, OtherItemsOfKnownVerbsFail) {
    for (const auto *text :
         {u"status A ready", u"status A ready handle", u"status A window", u"setaudio A bass to 5",
          u"setaudio A source to middle", u"seek A from 5", u"put A source at 1"})
        EXPECT_NE(errorOf(text), MciError::None);
}

TEST(DeviceType, KnownTypesComeInTheirOwnSpelling) {
    EXPECT_EQ(knownDeviceType(u"mpegvideo"), "MPEGVideo");
    EXPECT_EQ(knownDeviceType(u"MPEGVIDEO2"), "MPEGVideo2");
    EXPECT_EQ(knownDeviceType(u"WaveAudio"), "Waveaudio");
    EXPECT_EQ(knownDeviceType(u"sequencer"), "Sequencer");
    EXPECT_EQ(knownDeviceType(u"AVIVideo"), "AVIVideo");
}

TEST(DeviceType, OthersAreUnknown) {
    for (const auto *type : {u"", u"RealPlayer", u"CDAudio", u"MPEGVideo3", u"MPEG"})
        EXPECT_EQ(knownDeviceType(type), std::nullopt);
}

} // namespace
} // namespace velmora::platform::media
