// SPDX-License-Identifier: Apache-2.0
#include "raster/ZvBlender.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "tests/CpuTargets.h"
#include "tests/effect/TestPictures.h"
#include "tests/reference/BlenderReference.h"

namespace Zvex {
namespace {

using Bytes = std::vector<uint8_t>;

// Noise with runs of 0 and 255, which take code paths of their own.
Bytes noise(size_t count, std::mt19937* random) {
    Bytes bytes(count);
    uint32_t run = 0, draw = 0;
    for (uint8_t& byte : bytes) {
        if (run-- == 0) {
            draw = (*random)();
            run = draw >> 10 & 15 ? 0 : (draw >> 14) % 300;
        }
        byte = draw >> 8 & 1 ? (draw >> 9 & 1 ? 255 : 0) : static_cast<uint8_t>(draw);
    }
    return bytes;
}

// A bitmap whose pixels lie between guard bytes.
class GuardedBitmap {
public:
    GuardedBitmap(uint32_t width, uint32_t height, uint32_t depth, std::mt19937* random)
        : mStore(kGuard, kCanary) {
        const Bytes content = noise(size_t{width} * height * depth, random);
        mStore.insert(mStore.end(), content.begin(), content.end());
        mStore.resize(mStore.size() + kGuard, kCanary);
        bitmap.width = width;
        bitmap.height = height;
        bitmap.bytesPerPixel = depth;
        bitmap.format = depth == 4 ? 1 : 2;
        bitmap.pixels = mStore.data() + kGuard;
    }
    GuardedBitmap(const GuardedBitmap&) = delete;
    GuardedBitmap& operator=(const GuardedBitmap&) = delete;
    ~GuardedBitmap() { bitmap.pixels = nullptr; }

    const Bytes& store() const { return mStore; }  // guards included
    ZvBitmap bitmap;

private:
    static constexpr size_t kGuard = 64;
    static constexpr uint8_t kCanary = 0xA5;
    Bytes mStore;
};

enum class Source { kCoverage, kWords, kBytes, kCopy };

struct Operation {
    Source source;
    int mode;  // the mode, or the byte order of kBytes, or dst's depth for kCopy
};

const Operation kOperations[] = {
    {Source::kCoverage, 1}, {Source::kCoverage, 2}, {Source::kCoverage, 3}, {Source::kCoverage, 7},
    {Source::kCoverage, 5}, {Source::kWords, 1},    {Source::kWords, 2},    {Source::kWords, 3},
    {Source::kBytes, 0},    {Source::kBytes, 1},    {Source::kBytes, 2},    {Source::kCopy, 1},
    {Source::kCopy, 4},
};

// Every side clipped and not, strides wider than the row, targets between guard bytes, and sources that end
// with their last pixel, so that the address sanitizer sees a read beyond it.
void compareWithPlain(const Operation& operation) {
    std::mt19937 random(4711);
    const auto pick = [&random](int from, int to) {
        return static_cast<int>(from + random() % (to - from + 1));
    };
    for (int round = 0; round < 1500; ++round) {
        const int most = pick(0, 9) == 0 ? 300 : 40;
        const int width = pick(0, most), height = pick(0, 12), w = pick(0, most + 8), h = pick(0, 14);
        const int x = pick(-w - 2, width + 2), y = pick(-h - 2, height + 2);
        const int wider = pick(0, 2) == 0 ? pick(1, 9) : 0;
        const uint32_t color = pick(0, 3) == 0 ? random() | 0xFF000000u : static_cast<uint32_t>(random());
        const int depth = operation.source == Source::kCopy ? operation.mode : 4;
        std::mt19937 again = random;
        GuardedBitmap expected(width, height, depth, &again), actual(width, height, depth, &random);

        // The source's rows are `stride` units of `unit` bytes apart.
        const int unit = operation.source == Source::kWords ? 4 : 1;
        const int rowUnits = operation.source == Source::kBytes ? 4 * w : w;
        const int stride = rowUnits + (operation.source == Source::kCopy ? 0 : wider);
        const size_t count = w == 0 || h == 0 ? 0 : static_cast<size_t>(h - 1) * stride + rowUnits;
        const Bytes source = noise(count * unit, &random);
        std::vector<uint32_t> words(count);
        if (unit == 4 && count > 0) std::memcpy(words.data(), source.data(), source.size());
        const uint8_t* bytes = source.data();
        const int mode = operation.mode;
        ZvBitmap* to = &actual.bitmap;
        switch (operation.source) {
            case Source::kCoverage:
                ZvBlender::drawBitmapBlend8(x, y, to, bytes, w, h, stride, color, mode);
                reference::drawBitmapBlend8(x, y, &expected.bitmap, bytes, w, h, stride, color, mode);
                break;
            case Source::kWords:
                ZvBlender::drawBitmapBlend32(x, y, to, words.data(), w, h, stride, mode);
                reference::drawBitmapBlend32(x, y, &expected.bitmap, words.data(), w, h, stride, mode);
                break;
            case Source::kBytes:
                ZvBlender::drawBitmapBlend32(x, y, to, bytes, w, h, stride, pick(0, 9), mode);
                reference::drawBitmapBlend32(x, y, &expected.bitmap, bytes, w, h, stride, 0, mode);
                break;
            case Source::kCopy:
                ZvBlender::drawBitmap(x, y, to, bytes, w, h, color);
                reference::drawBitmap(x, y, &expected.bitmap, bytes, w, h, color);
                break;
        }
        ASSERT_EQ(actual.store(), expected.store())
            << "round " << round << ": " << w << "x" << h << " (stride +" << wider << ") at " << x << "," << y
            << " onto " << width << "x" << height << std::hex << ", color " << color;
    }
}

TEST(Blender, EqualsThePlainForm) {
    for (const Operation& operation : kOperations) {
        SCOPED_TRACE("source " + std::to_string(static_cast<int>(operation.source)) + ", mode " +
                     std::to_string(operation.mode));
        forEachCpuTarget([&] { compareWithPlain(operation); });
    }
}

void drawInEveryWay(int x, int y, const ZvBitmap* target, const uint8_t* bytes, const uint32_t* words, int w,
                    int h) {
    for (const int mode : {1, 2, 3, 7}) {
        ZvBlender::drawBitmapBlend8(x, y, target, bytes, w, h, w, ~0u, mode);
        ZvBlender::drawBitmapBlend32(x, y, target, words, w, h, w, mode);
    }
    ZvBlender::drawBitmapBlend32(x, y, target, bytes, w, h, 4 * w, 0, 1);
    ZvBlender::drawBitmap8To32(x, y, target, bytes, w, h, ~0u);
    if (target == nullptr || target->bytesPerPixel == 4)
        ZvBlender::drawBitmap(x, y, target, bytes, w, h, ~0u);
}

TEST(Blender, ClipsAtTheEndsOfInt) {
    std::mt19937 random(3);
    GuardedBitmap target(5, 4, 4, &random);
    const Bytes before = target.store(), one(4, 255);
    const uint32_t word = ~0u;
    for (const int at : {INT_MIN, INT_MIN + 1, -INT_MAX / 2, INT_MAX - 1, INT_MAX}) {
        for (const int size : {INT_MIN / 4, -1, 0, 1, 1000, INT_MAX / 4}) {
            drawInEveryWay(at, 0, &target.bitmap, one.data(), &word, size, 1);
            drawInEveryWay(0, at, &target.bitmap, one.data(), &word, 1, size);
        }
    }
    EXPECT_EQ(target.store(), before);

    // A source said to be enormous is read only where it meets the target.
    const Bytes row(5, 255);
    ZvBlender::drawBitmapBlend8(0, 3, &target.bitmap, row.data(), INT_MAX, INT_MAX, INT_MAX, 0xFF010203u, 1);
    EXPECT_EQ(target.bitmap.pixels[3 * 20 + 4 * 4], 1);
    EXPECT_EQ(target.bitmap.pixels[3 * 20 + 4 * 4 + 3], 255);
}

TEST(Blender, NothingToDrawOnOrFromIsIgnored) {
    const Bytes full(16, 255);
    const uint32_t words[4] = {~0u, ~0u, ~0u, ~0u};
    ZvBitmap mask(2, 2, 1), color(2, 2, 4), unallocated;
    unallocated.width = unallocated.height = 2;
    unallocated.bytesPerPixel = 4;
    // A mask is not a target of a colour blend: writing four bytes a pixel would leave its buffer.
    for (ZvBitmap* target : {static_cast<ZvBitmap*>(nullptr), &unallocated, &mask}) {
        drawInEveryWay(0, 0, target, full.data(), words, 2, 2);
        ZvBlender::convertBGRAToARGB(target);
    }
    drawInEveryWay(0, 0, &color, nullptr, nullptr, 2, 2);
    ZvBlender::drawBitmap(0, 0, &color, static_cast<const ZvBitmap*>(nullptr), ~0u);
    EXPECT_EQ(Bytes(mask.pixels, mask.pixels + 4), Bytes(4, 0));
    EXPECT_EQ(Bytes(color.pixels, color.pixels + 16), Bytes(16, 0));
}

TEST(Blender, ExchangesRedAndBlue) {
    forEachCpuTarget([] {
        for (uint32_t width = 1; width < 70; ++width) {
            ZvBitmap bitmap(width, 1, 4), exchanged(bitmap);
            for (size_t i = 0; i < bitmap.byteCount(); ++i) {
                bitmap.pixels[i] = static_cast<uint8_t>(i);
                exchanged.pixels[i % 4 == 0 ? i + 2 : i % 4 == 2 ? i - 2 : i] = static_cast<uint8_t>(i);
            }
            ZvBlender::convertBGRAToARGB(&bitmap);
            EXPECT_TRUE(samePixels(exchanged, bitmap));
        }
    });
}

}  // namespace
}  // namespace Zvex
