#include "playback/random.h"

#include <gtest/gtest.h>

#include <set>

namespace velmora {
namespace {

TEST(RandomNumber, LiesFrom0To1Exclusive) {
    Random random;
    for (int seed = 0; seed < 10'000; ++seed) {
        random.Randomize(seed / 100.0);
        const double number = random.Rnd();
        ASSERT_GE(number, 0.0);
        ASSERT_LT(number, 1.0);
    }
}

TEST(RandomNumber, IsTheSameForTheSameSeed) {
    Random a;
    Random b;
    a.Randomize(1234.5);
    b.Randomize(1234.5);
    EXPECT_EQ(a.Rnd(), b.Rnd());
    EXPECT_EQ(a.Rnd(), b.Rnd());
}

TEST(RandomNumber, OfNeighbouringSeedsSpreadsEvenly) {
    Random random;
    int counts[10] = {};
    for (int tick = 0; tick < 10'000; ++tick) {
        random.Randomize(40'000 + tick * 0.01);
        ++counts[static_cast<int>(random.Rnd() * 10)];
    }
    for (const int count : counts) {
        EXPECT_GT(count, 850);
        EXPECT_LT(count, 1150);
    }
}

} // namespace
} // namespace velmora
