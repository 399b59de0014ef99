#include "platform/forms/drawing.h"

#include <gtest/gtest.h>

#include <string>

namespace velmora::platform {

namespace {

// A context with one row of pixels.
DeviceContext row(std::initializer_list<std::uint32_t> pixels) {
    DeviceContext context;
    SelectObject(context, CreateCompatibleBitmap(static_cast<int>(pixels.size()), 1));
    int x = 0;
    for (const std::uint32_t pixel : pixels)
        context.selected->setPixel(x++, 0, 0xFF000000U | pixel);
    return context;
}

std::string text(const DeviceContext &context) {
    std::string result;
    for (int y = 0; y < context.selected->height(); ++y) {
        result += y == 0 ? "" : "/";
        for (int x = 0; x < context.selected->width(); ++x)
            result += static_cast<char>('0' + (context.selected->pixel(x, y) & 0xFFU));
    }
    return result;
}

BlendFunction alpha(std::uint8_t value) { return {0, 0, value, 0}; }

} // namespace

TEST(Drawing, ANewBitmapIsBlack) {
    DeviceContext context;
    SelectObject(context, CreateCompatibleBitmap(2, 3));
    EXPECT_EQ(context.selected->width(), 2);
    EXPECT_EQ(context.selected->height(), 3);
    EXPECT_EQ(context.selected->pixel(1, 2), forms::Surface::black);
}

TEST(Drawing, SidesBelowZeroCountAsZeroAndMonstersAreHeld) {
    EXPECT_TRUE(CreateCompatibleBitmap(-5, 10)->empty());
    EXPECT_EQ(CreateCompatibleBitmap(1, 2'000'000'000)->height(), forms::Surface::mostPixels);
}

TEST(Drawing, ADeletedBitmapStaysUsableWhereItIsSelected) {
    DeviceContext context;
    Bitmap bitmap = CreateCompatibleBitmap(1, 1);
    SelectObject(context, bitmap);
    DeleteObject(bitmap);
    EXPECT_EQ(bitmap, nullptr);
    ASSERT_NE(context.selected, nullptr);
    EXPECT_EQ(context.selected->width(), 1);
}

TEST(Drawing, SelectingAnswersTheBitmapBefore) {
    DeviceContext context;
    const Bitmap first = CreateCompatibleBitmap(1, 1);
    EXPECT_EQ(SelectObject(context, first), nullptr);
    EXPECT_EQ(SelectObject(context, CreateCompatibleBitmap(1, 1)), first);
}

TEST(Drawing, OutsideASurfaceIsBlackAndWritingDoesNothing) {
    forms::Surface surface(1, 1);
    surface.setPixel(5, 5, 0xFFFFFFFF);
    surface.setPixel(-1, 0, 0xFFFFFFFF);
    EXPECT_EQ(surface.pixel(5, 5), forms::Surface::black);
    EXPECT_EQ(surface, forms::Surface(1, 1));
}

TEST(Drawing, CopiesAPart) {
    DeviceContext target = row({0, 0, 0, 0, 0});
    const DeviceContext source = row({1, 2, 3, 4, 5});
    EXPECT_TRUE(BitBlt(target, 1, 0, 2, 1, source, 3, 0, SRCCOPY));
    EXPECT_EQ(text(target), "04500");
}

TEST(Drawing, WhatFallsOutsideTheTargetIsCutOff) {
    DeviceContext target = row({0, 0, 0});
    const DeviceContext source = row({1, 2, 3});
    EXPECT_TRUE(BitBlt(target, -1, 0, 3, 1, source, 0, 0, SRCCOPY));
    EXPECT_EQ(text(target), "230");
    EXPECT_TRUE(BitBlt(target, 2, -4, 30, 9, source, 0, -4, SRCCOPY));
    EXPECT_EQ(text(target), "231");
}

TEST(Drawing, StretchesByRepeating) {
    DeviceContext target = row({0, 0, 0, 0, 0, 0});
    EXPECT_TRUE(StretchBlt(target, 0, 0, 6, 1, row({1, 2}), 0, 0, 2, 1, SRCCOPY));
    EXPECT_EQ(text(target), "111222");
}

TEST(Drawing, ShrinksByLeavingOut) {
    DeviceContext target = row({0, 0});
    EXPECT_TRUE(StretchBlt(target, 0, 0, 2, 1, row({1, 2, 3, 4}), 0, 0, 4, 1, SRCCOPY));
    EXPECT_EQ(text(target), "13");
}

TEST(Drawing, StretchesDown) {
    DeviceContext target;
    SelectObject(target, CreateCompatibleBitmap(1, 4));
    EXPECT_TRUE(StretchBlt(target, 0, 0, 1, 4, row({7}), 0, 0, 1, 1, SRCCOPY));
    EXPECT_EQ(text(target), "7/7/7/7");
}

TEST(Drawing, ANegativeWidthMirrorsAndEndsAtX) {
    DeviceContext target = row({0, 0, 0, 0, 0});
    EXPECT_TRUE(StretchBlt(target, 4, 0, -3, 1, row({1, 2, 3}), 0, 0, 3, 1, SRCCOPY));
    EXPECT_EQ(text(target), "03210");
}

TEST(Drawing, ASideOfZeroDrawsNothing) {
    DeviceContext target = row({0, 0});
    EXPECT_TRUE(StretchBlt(target, 0, 0, 0, 1, row({1, 2}), 0, 0, 2, 1, SRCCOPY));
    EXPECT_TRUE(StretchBlt(target, 0, 0, 2, 0, row({1, 2}), 0, 0, 2, 1, SRCCOPY));
    EXPECT_EQ(text(target), "00");
}

TEST(Drawing, OtherRasterOperationsAreRefused) {
    DeviceContext target = row({0});
    EXPECT_FALSE(BitBlt(target, 0, 0, 1, 1, row({1}), 0, 0, 0x00660046));
    EXPECT_EQ(text(target), "0");
}

TEST(Drawing, AContextWithoutABitmapRefuses) {
    DeviceContext empty;
    DeviceContext target = row({0});
    EXPECT_FALSE(BitBlt(empty, 0, 0, 1, 1, target, 0, 0, SRCCOPY));
    EXPECT_FALSE(BitBlt(target, 0, 0, 1, 1, empty, 0, 0, SRCCOPY));
    EXPECT_FALSE(AlphaBlend(target, 0, 0, 1, 1, empty, 0, 0, alpha(255)));
    EXPECT_FALSE(BitBlt(target, 0, 0, 1, 1, target, 0, 0, SRCCOPY));
}

TEST(Drawing, BlendsByTheConstantAlpha) {
    const DeviceContext source = row({0x00FF8000});
    struct Case {
        std::uint8_t alpha;
        std::uint32_t expected;
    };
    for (const Case &one : {Case{0, 0xFF000000}, Case{255, 0xFFFF8000}, Case{30, 0xFF1E0F00},
                            Case{128, 0xFF804000}}) {
        DeviceContext target = row({0});
        EXPECT_TRUE(AlphaBlend(target, 0, 0, 1, 1, source, 0, 0, alpha(one.alpha)));
        EXPECT_EQ(target.selected->pixel(0, 0), one.expected) << int{one.alpha};
    }
}

TEST(Drawing, BlendingOverAndOverComesToTheSource) {
    DeviceContext target = row({0x00102030});
    const DeviceContext source = row({0x00F0E0D0});
    for (int i = 0; i < 60; ++i)
        AlphaBlend(target, 0, 0, 1, 1, source, 0, 0, alpha(30));
    for (const unsigned shift : {0U, 8U, 16U}) {
        const int reached = static_cast<int>(target.selected->pixel(0, 0) >> shift & 0xFFU);
        const int wanted = static_cast<int>(source.selected->pixel(0, 0) >> shift & 0xFFU);
        EXPECT_NEAR(reached, wanted, 5);
    }
}

TEST(Drawing, OtherBlendsAreRefused) {
    DeviceContext target = row({0});
    const DeviceContext source = row({1});
    EXPECT_FALSE(AlphaBlend(target, 0, 0, 1, 1, source, 0, 0, {1, 0, 255, 0}));
    EXPECT_FALSE(AlphaBlend(target, 0, 0, 1, 1, source, 0, 0, {0, 1, 255, 0}));
    EXPECT_FALSE(AlphaBlend(target, 0, 0, 1, 1, source, 0, 0, {0, 0, 255, 1}));
    EXPECT_EQ(text(target), "0");
}

} // namespace velmora::platform
