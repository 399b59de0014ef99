#include "catalogue/ranges.h"

#include <gtest/gtest.h>

namespace velmora::catalogue {

namespace {

TEST(Ranges, TellThePartThatIsAskedFor) {
    const auto part = [](const char *field) {
        const PartAsked asked = partOf(field, 100);
        EXPECT_TRUE(!asked.whole && asked.possible) << field;
        return asked.part;
    };
    EXPECT_EQ(part("bytes=0-9"), (Part{0, 10}));
    EXPECT_EQ(part("Bytes=99-99"), (Part{99, 1}));
    EXPECT_EQ(part("bytes=90-"), (Part{90, 10}));
    EXPECT_EQ(part("bytes=90-1000"), (Part{90, 10}));
    EXPECT_EQ(part("bytes=-10"), (Part{90, 10}));
    EXPECT_EQ(part("bytes=-1000"), (Part{0, 100}));
}

TEST(Ranges, GiveTheWholeForSeveralPartsAndForNonsense) {
    for (const char *field :
         {"", "bytes", "bytes=", "bytes=-", "bytes=5", "bytes=5-4", "bytes=0-1,3-4", "bytes=a-b",
          "bytes=-5-6", "bytes=+1-2", "bytes= 1-2", "lines=1-2", "bytes=0-1x",
          "bytes=99999999999999999999-", "bytes=0-99999999999999999999"}) {
        const PartAsked asked = partOf(field, 100);
        EXPECT_TRUE(asked.whole && asked.possible) << field;
        EXPECT_EQ(asked.part, (Part{0, 100})) << field;
    }
}

TEST(Ranges, RefuseWhatLiesBehindTheEnd) {
    for (const char *field : {"bytes=100-", "bytes=100-200", "bytes=-0"})
        EXPECT_FALSE(partOf(field, 100).possible) << field;
    EXPECT_FALSE(partOf("bytes=-5", 0).possible);
    EXPECT_EQ(contentRange(partOf("bytes=100-", 100), 100), "bytes */100");
    EXPECT_EQ(contentRange(partOf("bytes=10-19", 100), 100), "bytes 10-19/100");
}

} // namespace

} // namespace velmora::catalogue
