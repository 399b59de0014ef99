#include "platform/backends/curl/header_block.h"

#include <gtest/gtest.h>

namespace velmora::platform::http {

namespace {

HeaderBlock taking(std::initializer_list<const char *> lines) {
    HeaderBlock block;
    for (const char *line : lines)
        EXPECT_TRUE(block.take(line));
    return block;
}

TEST(HeaderBlock, IsCompleteAtTheEmptyLine) {
    HeaderBlock block = taking({"HTTP/1.1 200 OK\r\n", "A: b\r\n"});
    EXPECT_FALSE(block.complete());
    block.take("\r\n");
    EXPECT_TRUE(block.complete());
    EXPECT_EQ(block.status(), 200);
    EXPECT_EQ(block.bytes(), std::string("HTTP/1.1 200 OK\0A: b\0", 21));
}

TEST(HeaderBlock, TakesBareLineFeeds) { EXPECT_TRUE(taking({"HTTP/1.0 200\n", "\n"}).complete()); }

TEST(HeaderBlock, IsNotCompleteAfterAnInterimResponse) {
    const HeaderBlock block = taking({"HTTP/1.1 100 Continue\r\n", "\r\n"});
    EXPECT_FALSE(block.complete());
    EXPECT_FALSE(block.leadsElsewhere());
}

TEST(HeaderBlock, LeadsElsewhereWithAPlaceAndAStatusOfItsKind) {
    EXPECT_TRUE(taking({"HTTP/1.1 302 x\r\n", "location: /y\r\n", "\r\n"}).leadsElsewhere());
    EXPECT_TRUE(taking({"HTTP/1.1 399 x\r\n", "Location:/y\r\n", "\r\n"}).leadsElsewhere());
    EXPECT_TRUE(taking({"HTTP/1.1 302 x\r\n", "Location: \t\r\n", "\r\n"}).complete());
    EXPECT_TRUE(taking({"HTTP/1.1 302 x\r\n", "\r\n"}).complete());
    EXPECT_TRUE(taking({"HTTP/1.1 201 x\r\n", "Location: /y\r\n", "\r\n"}).complete());
}

TEST(HeaderBlock, DropsTheResponsesBeforeTheLast) {
    const HeaderBlock block =
        taking({"HTTP/1.1 302 x\r\n", "Location: /y\r\n", "\r\n", "HTTP/1.1 404 z\r\n", "\r\n"});
    EXPECT_TRUE(block.complete());
    EXPECT_FALSE(block.leadsElsewhere());
    EXPECT_EQ(block.bytes(), std::string("HTTP/1.1 404 z\0", 15));
}

TEST(HeaderBlock, PassesOverTrailers) {
    const HeaderBlock block = taking({"HTTP/1.1 200 x\r\n", "\r\n", "Late: y\r\n", "\r\n"});
    EXPECT_EQ(block.bytes(), std::string("HTTP/1.1 200 x\0", 15));
}

TEST(HeaderBlock, ReadsOnlyAStatusThatIsOne) {
    EXPECT_EQ(taking({"HTTP/1.1\r\n"}).status(), 0);
    EXPECT_EQ(taking({"HTTP/1.1 abc\r\n"}).status(), 0);
    EXPECT_EQ(taking({"HTTP/1.1  2000\r\n"}).status(), 200);
}

TEST(HeaderBlock, RefusesMoreThanTheMost) {
    HeaderBlock block;
    const std::string line(HeaderBlock::most / 2, 'x');
    EXPECT_TRUE(block.take(line));
    EXPECT_TRUE(block.take(line));
    EXPECT_FALSE(block.take("y"));
}

} // namespace

} // namespace velmora::platform::http
