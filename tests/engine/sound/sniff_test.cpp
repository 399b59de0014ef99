#include "platform/backends/sound/readers/sniff.h"

#include "midi_bytes.h"

#include <gtest/gtest.h>
#include <random>
#include <string_view>

namespace velmora::platform::sound {
namespace {

using namespace velmora::tests;
using namespace std::string_view_literals;

Bytes bytesOf(std::string_view text, std::size_t size = 0) {
    Bytes bytes(text.begin(), text.end());
    if (size > bytes.size())
        bytes.resize(size);
    return bytes;
}

Content contentOf(const Bytes &bytes) { return sniff(MemorySource(bytes)).content; }

Bytes mpegFrames(int count) {
    Bytes bytes;
    for (int i = 0; i < count; ++i) {
        append(bytes, {0xFF, 0xFB, 0x90, 0x64});
        bytes.insert(bytes.end(), 413, 0);
    }
    return bytes;
}

TEST(Sniff, TheFormsOfSoundFilesByTheirFirstBytes) {
    for (const std::string_view beginning :
         {"RIFF\x24\0\0\0WAVEfmt "sv, "RIFX\0\0\0\x24WAVEfmt "sv, "RF64\xFF\xFF\xFF\xFFWAVE"sv,
          "FORM\0\0\1\0AIFF"sv, "FORM\0\0\1\0AIFC"sv, ".snd\0\0\0\x1C"sv, "fLaC\0\0\0\x22"sv,
          "caff\0\1\0\0"sv})
        EXPECT_EQ(contentOf(bytesOf(beginning, 64)), Content::SoundFile) << beginning;
    EXPECT_EQ(contentOf(bytesOf("MThd\0\0\0\6"sv, 64)), Content::Midi);
}

TEST(Sniff, OtherFilesInTheSameWrappingAreNotOurs) {
    for (const std::string_view beginning :
         {"RIFF\x24\0\0\0AVI LIST"sv, "RIFF\x24\0\0\0WEBPVP8 "sv, "FORM\0\0\1\0ILBM"sv})
        EXPECT_EQ(contentOf(bytesOf(beginning, 64)), Content::Other) << beginning;
}

TEST(Sniff, RiffMidiHandsOverTheFileInside) {
    const Bytes midi = midiFile(0, 480, {MidiTrack().event(0, {0x90, 60, 1}).end(480)});
    const Sniffed sniffed = sniff(MemorySource(riffMidi(midi)));
    EXPECT_EQ(sniffed.content, Content::Midi);
    EXPECT_EQ(sniffed.start, 20);
    EXPECT_EQ(sniffed.size, static_cast<std::int64_t>(midi.size()));
}

Bytes oggPage(std::string_view codec, bool beginning = true) {
    Bytes page = bytesOf("OggS\0"sv);
    page.push_back(beginning ? 2 : 0);
    page.resize(26);
    page.push_back(1);
    page.push_back(static_cast<std::uint8_t>(codec.size()));
    append(page, bytesOf(codec));
    return page;
}

TEST(Sniff, AnOggFileIsSoundUnlessOneOfItsStreamsIsAPicture) {
    const Bytes vorbis = oggPage("\1vorbis--------------"sv);
    const Bytes opus = oggPage("OpusHead-------------"sv);
    const Bytes theora = oggPage("\x80theora-------------"sv);
    const Bytes skeleton = oggPage("fishead\0------------"sv);
    const Bytes data = oggPage("data that follows     "sv, false);
    const auto pages = [](std::initializer_list<Bytes> list) {
        Bytes all;
        for (const Bytes &page : list)
            append(all, page);
        return all;
    };
    EXPECT_EQ(contentOf(pages({vorbis, data})), Content::SoundFile);
    EXPECT_EQ(contentOf(pages({opus, data})), Content::SoundFile);
    EXPECT_EQ(contentOf(pages({skeleton, vorbis, data})), Content::SoundFile);
    EXPECT_EQ(contentOf(pages({theora, vorbis, data})), Content::Other);
    EXPECT_EQ(contentOf(pages({vorbis, theora, data})), Content::Other);
    EXPECT_EQ(contentOf(pages({oggPage("Speex   1.2----------"sv), data})), Content::Other);
}

TEST(Sniff, FramesOfMpegSoundBareAndBehindTags) {
    const Bytes frames = mpegFrames(6);
    EXPECT_EQ(sniff(MemorySource(frames)).content, Content::Mpeg);
    EXPECT_EQ(sniff(MemorySource(frames)).start, 0);
    Bytes tagged = bytesOf("ID3\4\0\0\0\0\1\0"sv, 10 + 128);
    append(tagged, frames);
    EXPECT_EQ(sniff(MemorySource(tagged)).content, Content::Mpeg);
    EXPECT_EQ(sniff(MemorySource(tagged)).start, 138);
    // Padding that the tag does not count, and a second tag.
    Bytes padded = bytesOf("ID3\4\0\0\0\0\1\0"sv, 10 + 128);
    append(padded, bytesOf("ID3\3\0\0\0\0\0\5"sv, 15));
    padded.resize(padded.size() + 20000);
    const auto start = static_cast<std::int64_t>(padded.size());
    append(padded, frames);
    EXPECT_EQ(sniff(MemorySource(padded)).content, Content::Mpeg);
    EXPECT_EQ(sniff(MemorySource(padded)).start, start);
    EXPECT_EQ(sniff(MemorySource(padded)).size, static_cast<std::int64_t>(frames.size()));
}

TEST(Sniff, FlacBehindATagIsFlac) {
    Bytes bytes = bytesOf("ID3\4\0\0\0\0\0\5"sv, 15);
    append(bytes, bytesOf("fLaC\0\0\0\x22"sv, 60));
    EXPECT_EQ(sniff(MemorySource(bytes)).content, Content::SoundFile);
    EXPECT_EQ(sniff(MemorySource(bytes)).start, 15);
}

TEST(Sniff, FramesInsideFilesOfOtherKindsAreNotTakenOut) {
    const Bytes frames = mpegFrames(20);
    for (const std::string_view beginning :
         {"\0\0\1\xBA\x44"sv, "\0\0\1\xB3\x16"sv, "\x1A\x45\xDF\xA3"sv, "FLV\1\5"sv, "PK\3\4\x14"sv,
          "%PDF-1.4"sv,
          "\x7F"
          "ELF\2\1"sv,
          "MZ\x90\0"sv,
          "\0\0\0\x18"
          "ftypmp42"sv,
          "RIFF\xFF\xFF\0\0AVI LIST"sv, "0&\xB2u\x8E\x66\xCF\x11"sv, "MAC \x96\x0F"sv, "TTA1\1\0"sv,
          "OggS\0\2"sv}) {
        Bytes bytes = bytesOf(beginning);
        append(bytes, frames);
        EXPECT_EQ(contentOf(bytes), Content::Other) << beginning;
    }
    // Packets of 188 bytes.
    Bytes transport;
    for (int i = 0; i < 40; ++i) {
        transport.push_back(0x47);
        transport.insert(transport.end(), 187, 0);
    }
    append(transport, frames);
    EXPECT_EQ(contentOf(transport), Content::Other);
    // Text with frames far behind its beginning.
    Bytes text(8000, 'a');
    append(text, frames);
    EXPECT_EQ(contentOf(text), Content::Other);
}

TEST(Sniff, NothingAndLittleIsNothing) {
    EXPECT_EQ(contentOf({}), Content::Other);
    for (const std::string_view text : {"R"sv, "RIF"sv, "RIFF"sv, "ID3"sv, "OggS"sv, "FORM"sv,
                                        "\xFF\xFB\x90\x64"sv, "RIFF\0\0\0\0RMID"sv})
        EXPECT_NE(contentOf(bytesOf(text)), Content::Mpeg) << text;
    EXPECT_EQ(contentOf(bytesOf("ID3\4\0\0\x7F\x7F\x7F\x7F"sv)), Content::Other);
}

TEST(Sniff, RandomBytesAreNeverSound) {
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        Bytes bytes(20000);
        for (auto &byte : bytes)
            byte = static_cast<std::uint8_t>(random() % 3 == 0 ? 0xFF : random());
        EXPECT_EQ(contentOf(bytes), Content::Other) << round;
    }
}

TEST(Sniff, MpegInsideAWaveFileIsItsData) {
    Bytes bytes = bytesOf("RIFF\0\0\0\0WAVEfmt \x12\0\0\0\x55\0\2\0"sv, 12 + 8 + 18);
    append(bytes, bytesOf("data\xFF\xFF\xFF\x7F"sv));
    const auto start = static_cast<std::int64_t>(bytes.size());
    append(bytes, mpegFrames(4));
    const Sniffed sniffed = sniff(MemorySource(bytes));
    EXPECT_EQ(sniffed.content, Content::Mpeg);
    EXPECT_EQ(sniffed.start, start);
    EXPECT_EQ(sniffed.size, 4 * 417);
}

} // namespace
} // namespace velmora::platform::sound
