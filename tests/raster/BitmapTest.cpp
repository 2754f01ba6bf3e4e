// SPDX-License-Identifier: Apache-2.0
#include "raster/ZvBitmap.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cstdlib>
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

void expectShape(const ZvBitmap& bitmap, uint32_t width, uint32_t height, uint32_t depth, uint32_t format) {
    EXPECT_EQ((std::array{bitmap.width, bitmap.height, bitmap.bytesPerPixel, bitmap.format}),
              (std::array{width, height, depth, format}));
}

TEST(Bitmap, StartsEmptyOrZeroFilledWithTheFormatOfItsDepth) {
    const ZvBitmap empty, color(3, 5, 4), mask(3, 5, 1);
    expectShape(empty, 0, 0, 0, 4);
    EXPECT_EQ(empty.pixels, nullptr);
    expectShape(color, 3, 5, 4, 1);
    EXPECT_EQ(bytesOf(color), std::vector<uint8_t>(60, 0));
    expectShape(mask, 3, 5, 1, 2);
    EXPECT_EQ(bytesOf(mask), std::vector<uint8_t>(15, 0));
}

TEST(Bitmap, SizesThatCannotBeAllocatedLeaveNoPixels) {
    // The products exceed 32 bits (a wrapped one would be small enough to allocate) and 64 bits.
    for (const ZvBitmap& bitmap : {ZvBitmap(UINT_MAX, UINT_MAX, 4), ZvBitmap(1u << 31, 1u << 31, 4),
                                   ZvBitmap(UINT_MAX, UINT_MAX, UINT_MAX)}) {
        EXPECT_EQ(bitmap.pixels, nullptr);
        EXPECT_NE(bitmap.width, 0u);
    }
    EXPECT_EQ(ZvBitmap(1u << 31, 1u << 31, 4).byteCount(), 0u);
    EXPECT_EQ(ZvBitmap(0, 7, 4).pixels, nullptr);
}

TEST(Bitmap, CopiesAreDeepAndAssignmentReplaces) {
    const std::vector<uint8_t> data = ramp(8);
    std::vector<uint8_t> given = data;
    ZvBitmap source(2, 1, given.data(), 4);
    given[1] = 99;
    const ZvBitmap copy(source);
    source.pixels[0] = 99;
    EXPECT_EQ(bytesOf(copy), data);
    ZvBitmap target(7, 7, 1);
    target = copy;
    const ZvBitmap& self = target;
    target = self;
    expectShape(target, 2, 1, 4, 1);
    EXPECT_EQ(bytesOf(target), data);
    EXPECT_NE(target.pixels, copy.pixels);
    target = ZvBitmap();
    expectShape(target, 0, 0, 0, 4);
    EXPECT_EQ(target.pixels, nullptr);
}

// Rectangles inside, across and far outside the source, whose buffer has exactly its size. An inverted one
// has a size and reads as 0.
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
        ZvRect rect(left, top, left + pick(-3, 9), top + pick(-3, 9));
        const ZvBitmap cut(source, &rect);
        expectShape(cut, std::abs(rect.right - rect.left), std::abs(rect.bottom - rect.top), depth,
                    depth == 4 ? 1 : 2);
        std::vector<uint8_t> expected(cut.byteCount(), 0);
        for (int y = rect.top; y < rect.bottom; ++y) {
            for (int x = rect.left; x < rect.right; ++x) {
                const int from = y * width + x;
                if (from < 0 || from >= static_cast<int>(data.size())) continue;
                expected[static_cast<size_t>(y - rect.top) * cut.width + (x - rect.left)] = data[from];
            }
        }
        ASSERT_EQ(bytesOf(cut), expected) << "round " << round;
    }
    // The widest rectangle cannot be allocated; thin ones at the ends of the range can.
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
