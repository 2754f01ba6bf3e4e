// SPDX-License-Identifier: Apache-2.0
#include "raster/ZvBitmap.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <vector>

#include "raster/ZvRect.h"

namespace Zvex {
namespace {

std::vector<uint8_t> bytesOf(const ZvBitmap& bitmap) {
    return std::vector<uint8_t>(bitmap.pixels, bitmap.pixels + bitmap.byteCount());
}

std::vector<uint8_t> ramp(size_t count) {
    std::vector<uint8_t> bytes(count);
    for (size_t i = 0; i < count; ++i) bytes[i] = static_cast<uint8_t>(i + 1);
    return bytes;
}

TEST(Bitmap, StartsEmptyOrZeroFilledWithTheFormatOfItsDepth) {
    const ZvBitmap empty;
    EXPECT_EQ(empty.width, 0u);
    EXPECT_EQ(empty.height, 0u);
    EXPECT_EQ(empty.pixels, nullptr);
    EXPECT_EQ(empty.format, 4u);
    EXPECT_EQ(empty.bytesPerPixel, 0u);

    const ZvBitmap color(3, 5, 4);
    EXPECT_EQ(color.format, 1u);
    EXPECT_EQ(bytesOf(color), std::vector<uint8_t>(60, 0));
    const ZvBitmap mask(3, 5, 1);
    EXPECT_EQ(mask.format, 2u);
    EXPECT_EQ(bytesOf(mask), std::vector<uint8_t>(15, 0));

    std::vector<uint8_t> data = ramp(12);
    const ZvBitmap copied(1, 3, data.data(), 4);
    EXPECT_EQ(copied.format, 1u);
    EXPECT_EQ(bytesOf(copied), data);
    EXPECT_NE(copied.pixels, data.data());
}

TEST(Bitmap, SizesThatCannotBeAllocatedLeaveNoPixels) {
    // The products leave 32 bits (a wrapped one would be small enough to allocate) and 64 bits.
    for (const ZvBitmap& bitmap : {ZvBitmap(UINT_MAX, UINT_MAX, 4), ZvBitmap(1u << 31, 1u << 31, 4),
                                   ZvBitmap(UINT_MAX, UINT_MAX, UINT_MAX)}) {
        EXPECT_EQ(bitmap.pixels, nullptr);
        EXPECT_NE(bitmap.width, 0u);
    }
    EXPECT_EQ(ZvBitmap(1u << 31, 1u << 31, 4).byteCount(), 0u);
    EXPECT_EQ(ZvBitmap(0, 7, 4).pixels, nullptr);
}

TEST(Bitmap, CopiesAreDeepAndAssignmentReplaces) {
    std::vector<uint8_t> data = ramp(8);
    ZvBitmap source(2, 1, data.data(), 4);
    ZvBitmap copy(source);
    source.pixels[0] = 99;
    EXPECT_EQ(bytesOf(copy), data);

    ZvBitmap target(7, 7, 1);
    target = copy;
    EXPECT_EQ(target.width, 2u);
    EXPECT_EQ(target.format, 1u);
    EXPECT_EQ(target.bytesPerPixel, 4u);
    EXPECT_EQ(bytesOf(target), data);
    EXPECT_NE(target.pixels, copy.pixels);

    const ZvBitmap& self = target;
    target = self;
    EXPECT_EQ(bytesOf(target), data);
    target = ZvBitmap();
    EXPECT_EQ(target.pixels, nullptr);
    EXPECT_EQ(target.format, 4u);
}

TEST(Bitmap, CutOutCopiesTheRectangleOfAMask) {
    std::vector<uint8_t> data = ramp(4 * 3);
    const ZvBitmap mask(4, 3, data.data(), 1);
    ZvRect rect(1, 1, 3, 3);
    const ZvBitmap cut(mask, &rect);
    EXPECT_EQ(cut.width, 2u);
    EXPECT_EQ(cut.height, 2u);
    EXPECT_EQ(cut.format, 2u);
    EXPECT_EQ(bytesOf(cut), (std::vector<uint8_t>{6, 7, 10, 11}));
}

// Bytes as if both bitmaps had one byte a pixel: the source's first bytes land in the cut-out's first
// quarter.
TEST(Bitmap, CutOutOfAColourBitmapFillsItsFirstQuarterOnly) {
    std::vector<uint8_t> data = ramp(4 * 2 * 4);
    const ZvBitmap color(4, 2, data.data(), 4);
    ZvRect rect(1, 0, 3, 2);
    const ZvBitmap cut(color, &rect);
    EXPECT_EQ(cut.bytesPerPixel, 4u);
    ASSERT_EQ(cut.byteCount(), 16u);
    EXPECT_EQ(std::vector<uint8_t>(cut.pixels, cut.pixels + 4), (std::vector<uint8_t>{2, 3, 6, 7}));
}

TEST(Bitmap, CutOutOfAnInvertedRectangleIsSizedAndEmpty) {
    std::vector<uint8_t> data = ramp(16);
    const ZvBitmap mask(4, 4, data.data(), 1);
    for (const ZvRect& rect : {ZvRect(3, 0, 1, 3), ZvRect(1, 3, 3, 0), ZvRect(3, 3, 1, 0)}) {
        const ZvBitmap cut(mask, &rect);
        EXPECT_EQ(cut.width, 2u);
        EXPECT_EQ(cut.height, 3u);
        EXPECT_EQ(bytesOf(cut), std::vector<uint8_t>(6, 0));
    }
}

// Rectangles inside, across and far outside the source, its buffer being exactly as long as it says.
TEST(Bitmap, CutOutReadsZerosBeyondTheBuffer) {
    std::mt19937 random(20180806);
    const auto pick = [&random](int from, int to) {
        return static_cast<int>(from + random() % (to - from + 1));
    };
    for (int round = 0; round < 2000; ++round) {
        const int width = pick(0, 6), height = pick(0, 6), depth = pick(0, 1) == 0 ? 1 : 4;
        std::vector<uint8_t> data = ramp(static_cast<size_t>(width) * height * depth);
        const ZvBitmap source(width, height, data.data(), depth);
        const int left = pick(-9, 9), top = pick(-9, 9);
        ZvRect rect(left, top, left + pick(0, 9), top + pick(0, 9));
        SCOPED_TRACE(testing::Message()
                     << "round " << round << " source " << width << "x" << height << "x" << depth << " rect "
                     << rect.left << "," << rect.top << "," << rect.right << "," << rect.bottom);

        const ZvBitmap cut(source, &rect);
        std::vector<uint8_t> expected(cut.byteCount(), 0);
        for (int y = rect.top; y < rect.bottom; ++y) {
            for (int x = rect.left; x < rect.right; ++x) {
                const int from = y * width + x;
                if (from < 0 || from >= static_cast<int>(data.size())) continue;
                expected[static_cast<size_t>(y - rect.top) * cut.width + (x - rect.left)] = data[from];
            }
        }
        ASSERT_EQ(bytesOf(cut), expected);
    }
    // The widest rectangle there is cannot be allocated; thin ones at the ends of the range can.
    const ZvBitmap mask(2, 2, 1);
    ZvRect all(INT_MIN, INT_MIN, INT_MAX, INT_MAX);
    EXPECT_EQ(ZvBitmap(mask, &all).width, UINT_MAX);
    for (const ZvRect& rect : {ZvRect(INT_MAX - 1, INT_MAX - 1, INT_MAX, INT_MAX),
                               ZvRect(INT_MIN, INT_MIN, INT_MIN + 1, INT_MIN + 1)}) {
        EXPECT_EQ(bytesOf(ZvBitmap(mask, &rect)), std::vector<uint8_t>(1, 0));
    }
    EXPECT_EQ(ZvBitmap(mask, nullptr).pixels, nullptr);
}

}  // namespace
}  // namespace Zvex
