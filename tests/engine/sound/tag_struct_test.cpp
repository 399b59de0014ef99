#include "platform/backends/sound/device/tag_struct.h"

#include "platform/backends/sound/device/server_query.h"

#include <gtest/gtest.h>
#include <random>

namespace velmora::platform::sound {
namespace {

TEST(TagStruct, WhatIsWrittenIsRead) {
    TagWriter writer;
    writer.number(0xDEADBEEF);
    writer.properties({{"device.vendor.id", "8086"}, {"name", "Ünïcode"}, {"empty", ""}});
    writer.number(7);
    TagReader reader(writer.message());
    EXPECT_EQ(reader.number(), 0xDEADBEEF);
    const auto properties = reader.properties();
    EXPECT_EQ(properties.at("device.vendor.id"), "8086");
    EXPECT_EQ(properties.at("name"), "Ünïcode");
    EXPECT_EQ(properties.at("empty"), "");
    EXPECT_EQ(reader.number(), 7U);
    EXPECT_TRUE(reader.good());
    EXPECT_TRUE(reader.atEnd());
}

TEST(TagStruct, ReadsTheFixedTypes) {
    const std::vector<std::uint8_t> message = {'t',  'a', 'b', 0, 'N', '1', '0', 'U', 0, 0, 0,
                                               1,    0,   0,   0, 2,   'a', 3,   6,   0, 0, 0xAC,
                                               0x44, 'm', 2,   1, 2,   'v', 1,   0,   1, 0, 0};
    TagReader reader(message);
    EXPECT_EQ(reader.text(), "ab");
    EXPECT_EQ(reader.text(), ""); // null
    EXPECT_TRUE(reader.flag());
    EXPECT_FALSE(reader.flag());
    EXPECT_EQ(reader.microseconds(), (std::uint64_t{1} << 32) + 2);
    EXPECT_EQ(reader.sampleSpecChannels(), 6);
    reader.channelMap();
    reader.channelVolumes();
    EXPECT_TRUE(reader.good());
    EXPECT_TRUE(reader.atEnd());
}

TEST(TagStruct, AnotherTypeOrACutMessageIsNoticedAndStays) {
    const std::vector<std::uint8_t> message = {'L', 0, 0, 0, 5, 't', 'a'};
    TagReader wrong(message);
    EXPECT_EQ(wrong.text(), "");
    EXPECT_FALSE(wrong.good());
    EXPECT_EQ(wrong.number(), 0U);
    TagReader cut(message);
    EXPECT_EQ(cut.number(), 5U);
    EXPECT_EQ(cut.text(), "");
    EXPECT_FALSE(cut.good());
    TagReader empty({});
    EXPECT_EQ(empty.microseconds(), 0U);
    EXPECT_FALSE(empty.good());
}

TEST(TagStruct, AnyMessageIsSurvived) {
    std::mt19937 random(3);
    for (int round = 0; round < 20000; ++round) {
        std::vector<std::uint8_t> message(random() % 60);
        for (auto &byte : message)
            byte = static_cast<std::uint8_t>("LtxPNa1mvU\0\1"[random() % 12]);
        TagReader reader(message);
        switch (random() % 4) {
        case 0:
            reader.properties();
            break;
        case 1:
            reader.text();
            reader.channelMap();
            break;
        case 2:
            reader.channelVolumes();
            reader.properties();
            break;
        default:
            reader.sampleSpecChannels();
            reader.flag();
        }
        reader.number();
    }
}

TEST(HexId, OnlyAWholeSixteenBitNumberCounts) {
    EXPECT_EQ(parseHexId("8086"), 0x8086);
    EXPECT_EQ(parseHexId("0x1af4"), 0x1AF4);
    EXPECT_EQ(parseHexId("ffff"), 0xFFFF);
    for (const char *text : {"", "12345", "usb", "80 86", "-1", "0x"})
        EXPECT_EQ(parseHexId(text), 0) << text;
}

} // namespace
} // namespace velmora::platform::sound
