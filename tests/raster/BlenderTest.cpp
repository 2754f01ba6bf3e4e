// SPDX-License-Identifier: Apache-2.0
#include "raster/ZvBlender.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "foundation/ZvLog.h"
#include "platform/host/LogCapture.h"
#include "tests/reference/BlenderReference.h"

namespace Zvex {
namespace {

using Bytes = std::vector<uint8_t>;

// A bitmap whose pixels lie between guard bytes.
class GuardedBitmap {
public:
    GuardedBitmap(uint32_t width, uint32_t height, uint32_t depth, std::mt19937* random)
        : mStore(kGuard + size_t{width} * height * depth + kGuard, kCanary) {
        bitmap.width = width;
        bitmap.height = height;
        bitmap.bytesPerPixel = depth;
        bitmap.format = depth == 4 ? 1 : 2;
        bitmap.pixels = mStore.data() + kGuard;
        const size_t count = bitmap.byteCount();
        for (size_t i = 0; i < count; ++i) bitmap.pixels[i] = static_cast<uint8_t>((*random)());
        // Empty and opaque pixels take branches of their own, and are the usual ones.
        for (size_t i = 3; depth == 4 && i < count; i += 4) {
            const uint32_t kind = (*random)() % 4;
            if (kind < 2) bitmap.pixels[i] = kind == 0 ? 0 : 255;
        }
    }
    GuardedBitmap(const GuardedBitmap& other) : bitmap(), mStore(other.mStore) {
        bitmap.width = other.bitmap.width;
        bitmap.height = other.bitmap.height;
        bitmap.bytesPerPixel = other.bitmap.bytesPerPixel;
        bitmap.format = other.bitmap.format;
        bitmap.pixels = mStore.data() + kGuard;
    }
    GuardedBitmap& operator=(const GuardedBitmap&) = delete;
    ~GuardedBitmap() { bitmap.pixels = nullptr; }

    const Bytes& store() const { return mStore; }  // guards included
    ZvBitmap bitmap;

private:
    static constexpr size_t kGuard = 64;
    static constexpr uint8_t kCanary = 0xA5;
    Bytes mStore;
};

Bytes noise(size_t count, std::mt19937* random) {
    Bytes bytes(count);
    for (uint8_t& byte : bytes) {
        const uint32_t draw = (*random)();
        byte = draw >> 8 & 1 ? (draw >> 9 & 1 ? 255 : 0) : static_cast<uint8_t>(draw);
    }
    return bytes;
}

enum class Source { kCoverage, kWords, kBytes, kCopy };

struct Operation {
    const char* name;
    Source source;
    int mode;  // the mode, or the byte order of kBytes, or dst's depth for kCopy
};

const Operation kOperations[] = {
    {"coverage-mode=1", Source::kCoverage, 1}, {"coverage-mode=2", Source::kCoverage, 2},
    {"coverage-mode=3", Source::kCoverage, 3}, {"coverage-mode=7", Source::kCoverage, 7},
    {"coverage-mode=5", Source::kCoverage, 5}, {"words-mode=1", Source::kWords, 1},
    {"words-mode=2", Source::kWords, 2},       {"words-mode=3", Source::kWords, 3},
    {"bytes-order=0", Source::kBytes, 0},      {"bytes-order=1", Source::kBytes, 1},
    {"bytes-order=2", Source::kBytes, 2},      {"copy-depth=1", Source::kCopy, 1},
    {"copy-depth=4", Source::kCopy, 4},
};

class BlenderAgainstPlain : public testing::TestWithParam<Operation> {};

// Every side clipped and not, strides wider than the row, targets between canaries, and sources that end with
// their last pixel so that the address sanitizer sees a read beyond it.
TEST_P(BlenderAgainstPlain, SameBytes) {
    const Operation& operation = GetParam();
    std::mt19937 random(4711);
    const auto pick = [&random](int from, int to) {
        return static_cast<int>(from + random() % (to - from + 1));
    };
    for (int round = 0; round < 3000; ++round) {
        const int width = pick(0, 40), height = pick(0, 12), w = pick(0, 48), h = pick(0, 14);
        const int x = pick(-w - 2, width + 2), y = pick(-h - 2, height + 2);
        const int wider = pick(0, 2) == 0 ? pick(1, 9) : 0;
        const uint32_t color = pick(0, 3) == 0 ? random() | 0xFF000000u : static_cast<uint32_t>(random());
        const int depth = operation.source == Source::kCopy ? operation.mode : 4;
        GuardedBitmap actual(width, height, depth, &random);
        GuardedBitmap expected(actual);

        const size_t pixels = w == 0 || h == 0 ? 0 : static_cast<size_t>(h - 1) * (w + wider) + w;
        switch (operation.source) {
            case Source::kCoverage: {
                const Bytes source = noise(pixels, &random);
                ZvBlender::drawBitmapBlend8(x, y, &actual.bitmap, source.data(), w, h, w + wider, color,
                                            operation.mode);
                reference::drawBitmapBlend8(x, y, &expected.bitmap, source.data(), w, h, w + wider, color,
                                            operation.mode);
                break;
            }
            case Source::kWords: {
                const Bytes bytes = noise(pixels * 4, &random);
                std::vector<uint32_t> source(pixels);
                if (pixels > 0) std::memcpy(source.data(), bytes.data(), bytes.size());
                ZvBlender::drawBitmapBlend32(x, y, &actual.bitmap, source.data(), w, h, w + wider,
                                             operation.mode);
                reference::drawBitmapBlend32(x, y, &expected.bitmap, source.data(), w, h, w + wider,
                                             operation.mode);
                break;
            }
            case Source::kBytes: {
                const int stride = 4 * w + wider;
                const size_t count = w == 0 || h == 0 ? 0 : static_cast<size_t>(h - 1) * stride + 4 * w;
                const Bytes source = noise(count, &random);
                ZvBlender::drawBitmapBlend32(x, y, &actual.bitmap, source.data(), w, h, stride, pick(0, 9),
                                             operation.mode);
                reference::drawBitmapBlend32(x, y, &expected.bitmap, source.data(), w, h, stride, 0,
                                             operation.mode);
                break;
            }
            case Source::kCopy: {
                const Bytes source = noise(static_cast<size_t>(w) * h, &random);
                ZvBlender::drawBitmap(x, y, &actual.bitmap, source.data(), w, h, color);
                reference::drawBitmap(x, y, &expected.bitmap, source.data(), w, h, color);
                break;
            }
        }
        ASSERT_EQ(actual.store(), expected.store())
            << "round " << round << ": " << w << "x" << h << " (stride +" << wider << ") at " << x << "," << y
            << " onto " << width << "x" << height << std::hex << ", color " << color;
    }
}

INSTANTIATE_TEST_SUITE_P(Blender, BlenderAgainstPlain, testing::ValuesIn(kOperations), [](const auto& info) {
    std::string name = info.param.name;
    for (char& c : name) {
        if (c == '-' || c == '=') c = '_';
    }
    return name;
});

// 65536 pixels in a row: every coverage over every target alpha, with every colour channel met on the way.
TEST(Blender, CoverageBlendsAgreeOnEveryCoverageAndTargetAlpha) {
    std::mt19937 random(1);
    std::vector<uint32_t> colors = {0xFFFFFFFFu, 0xFF000000u, 0x00FFFFFFu, 0,
                                    0x01020304u, 0x80FF7F00u, 0xFE01FE80u};
    for (int i = 0; i < 40; ++i) colors.push_back(random());
    Bytes coverage(65536);
    for (size_t i = 0; i < coverage.size(); ++i) coverage[i] = static_cast<uint8_t>(i);
    for (const int mode : {1, 2, 3, 7}) {
        for (const uint32_t color : colors) {
            ZvBitmap target(65536, 1, 4);
            for (size_t i = 0; i < coverage.size(); ++i) {
                for (int channel = 0; channel < 3; ++channel) {
                    target.pixels[4 * i + channel] = static_cast<uint8_t>(random());
                }
                target.pixels[4 * i + 3] = static_cast<uint8_t>(i >> 8);
            }
            ZvBitmap expected(target);
            ZvBlender::drawBitmapBlend8(0, 0, &target, coverage.data(), 65536, 1, 65536, color, mode);
            reference::drawBitmapBlend8(0, 0, &expected, coverage.data(), 65536, 1, 65536, color, mode);
            for (size_t i = 0; i < target.byteCount(); ++i) {
                ASSERT_EQ(target.pixels[i], expected.pixels[i])
                    << "mode " << mode << std::hex << " color " << color << std::dec << " coverage "
                    << int{coverage[i / 4]} << " target alpha " << i / 4 / 256 << " byte " << i % 4;
            }
        }
    }
}

TEST(Blender, ColourBlendsAgreeOnEverySourceAndTargetAlpha) {
    std::mt19937 random(2);
    std::vector<uint32_t> source(65536);
    for (const int mode : {1, 2}) {
        for (int round = 0; round < 20; ++round) {
            ZvBitmap target(65536, 1, 4);
            for (size_t i = 0; i < source.size(); ++i) {
                source[i] = (static_cast<uint32_t>(i & 255) << 24) | (random() & 0xFFFFFFu);
                for (int channel = 0; channel < 3; ++channel) {
                    target.pixels[4 * i + channel] = static_cast<uint8_t>(random());
                }
                target.pixels[4 * i + 3] = static_cast<uint8_t>(i >> 8);
            }
            ZvBitmap expected(target);
            ZvBlender::drawBitmapBlend32(0, 0, &target, source.data(), 65536, 1, 65536, mode);
            reference::drawBitmapBlend32(0, 0, &expected, source.data(), 65536, 1, 65536, mode);
            ASSERT_EQ(std::memcmp(target.pixels, expected.pixels, target.byteCount()), 0)
                << "mode " << mode << " round " << round;
        }
    }
}

// Numbers worked out apart from either form.
TEST(Blender, KnownPixels) {
    struct Row {
        const char* what;
        int mode;
        uint8_t target[4], coverage;
        uint32_t color;
        uint8_t expected[4];
    };
    const Row rows[] = {
        {"source over mixes", 1, {10, 20, 30, 40}, 200, 0x80FF4020u, {206, 62, 43, 124}},
        {"source over, opaque, writes the colour", 1, {10, 20, 30, 40}, 255, 0xFF804020u, {128, 64, 32, 255}},
        {"source over, colour alpha 0, leaves the pixel",
         1,
         {10, 20, 30, 40},
         255,
         0x00FFFFFFu,
         {10, 20, 30, 40}},
        {"destination over onto nothing writes the covered colour",
         2,
         {9, 9, 9, 0},
         128,
         0xFF804020u,
         {64, 32, 16, 128}},
        {"destination over leaves an opaque pixel", 2, {1, 2, 3, 255}, 255, 0xFF804020u, {1, 2, 3, 255}},
        {"destination over fills the rest", 2, {10, 20, 30, 100}, 128, 0xFF804020u, {49, 39, 40, 178}},
        {"without source alpha any coverage writes the colour",
         3,
         {9, 9, 9, 0},
         1,
         0x40102030u,
         {16, 32, 48, 64}},
        {"without source alpha an opaque pixel stays", 3, {1, 2, 3, 255}, 9, 0x40102030u, {1, 2, 3, 255}},
        {"scaled: an opaque pixel is cut down", 7, {255, 100, 0, 255}, 128, 0xFFFFFFFFu, {128, 50, 0, 128}},
        {"scaled: full coverage fills the rest", 7, {10, 20, 30, 100}, 255, 0xFF804020u, {88, 59, 49, 255}},
        {"scaled: coverage 0 changes nothing", 7, {10, 20, 30, 100}, 0, 0xFF804020u, {10, 20, 30, 100}},
    };
    for (const Row& row : rows) {
        ZvBitmap target(1, 1, row.target, 4);
        ZvBlender::drawBitmapBlend8(0, 0, &target, &row.coverage, 1, 1, 1, row.color, row.mode);
        EXPECT_EQ(Bytes(target.pixels, target.pixels + 4), Bytes(row.expected, row.expected + 4)) << row.what;
    }
}

TEST(Blender, ClipsAtTheEndsOfInt) {
    std::mt19937 random(3);
    GuardedBitmap target(5, 4, 4, &random);
    const Bytes before = target.store();
    const Bytes coverage(1, 255);
    const uint32_t word = 0xFFFFFFFFu;
    for (const int at : {INT_MIN, INT_MIN + 1, -INT_MAX / 2, INT_MAX - 1, INT_MAX}) {
        for (const int size : {INT_MIN, -1, 0, 1, 1000, INT_MAX / 4}) {
            for (const bool across : {false, true}) {
                const int x = across ? at : 0, y = across ? 0 : at;
                const int w = across ? size : 1, h = across ? 1 : size;
                for (const int mode : {1, 2, 3, 7}) {
                    ZvBlender::drawBitmapBlend8(x, y, &target.bitmap, coverage.data(), w, h, w, 0xFFFFFFFFu,
                                                mode);
                    ZvBlender::drawBitmapBlend32(x, y, &target.bitmap, &word, w, h, w, mode);
                }
                ZvBlender::drawBitmapBlend32(x, y, &target.bitmap, coverage.data(), w, h, w, 0, 1);
                ZvBlender::drawBitmap(x, y, &target.bitmap, coverage.data(), w, h, 0xFFFFFFFFu);
            }
        }
    }
    EXPECT_EQ(target.store(), before);

    // A source said to be enormous is read only where it meets the target.
    const Bytes row(5, 255);
    ZvBlender::drawBitmapBlend8(0, 3, &target.bitmap, row.data(), INT_MAX, INT_MAX, INT_MAX, 0xFF010203u, 1);
    EXPECT_EQ(target.bitmap.pixels[3 * 20 + 4 * 4], 1);
    EXPECT_EQ(target.bitmap.pixels[3 * 20 + 4 * 4 + 3], 255);
}

// Seen from outside: a picture that hangs out to the left by one pixel begins with the second BYTE of its
// row.
TEST(Blender, ByteSourceSkipsBytesAtNegativeX) {
    const Bytes source = {11, 12, 13, 14, 21, 22, 23, 24, 31, 32, 33, 34};
    ZvBitmap target(4, 1, 4);
    ZvBlender::drawBitmapBlend32(-1, 0, &target, source.data(), 3, 1, 12, 0, 1);
    EXPECT_EQ(Bytes(target.pixels, target.pixels + 12), (Bytes{12, 13, 14, 21, 22, 23, 24, 31, 0, 0, 0, 0}));

    ZvBitmap lower(4, 2, 4);
    ZvBlender::drawBitmapBlend32(1, -1, &lower, source.data(), 1, 3, 4, 0, 0);
    EXPECT_EQ(Bytes(lower.pixels + 4, lower.pixels + 8), (Bytes{22, 23, 24, 21}))
        << "order 0 has the alpha first";
}

TEST(Blender, FillStartsRowsAtByteOffsets) {
    const Bytes source = {255, 255};
    ZvBitmap target(3, 2, 4);
    ZvBlender::drawBitmap(1, 0, &target, source.data(), 1, 2, 0xFF0A0B0Cu);
    // Row 0 at byte 1, row 1 at byte 3 + 1, over the last byte of row 0.
    EXPECT_EQ(Bytes(target.pixels, target.pixels + 10), (Bytes{0, 10, 11, 12, 10, 11, 12, 255, 0, 0}));
    // The lowest, rightmost pixel of a one-row bitmap ends with its buffer.
    ZvBitmap row(3, 1, 4);
    ZvBlender::drawBitmap(0, 0, &row, Bytes(3, 0).data(), 3, 1, 0xFF0A0B0Cu);
    EXPECT_EQ(Bytes(row.pixels + 8, row.pixels + 12), (Bytes{10, 11, 12, 0})) << "coverage 0 writes too";
}

TEST(Blender, MergingMasksKeepsTheLargerCoverage) {
    ZvBitmap mask(4, 1, 1);
    const Bytes first = {10, 200, 30}, second = {100, 100, 100};
    ZvBlender::drawBitmap(0, 0, &mask, first.data(), 3, 1, 0xFF000000u);
    ZvBitmap glyph(3, 1, second.data(), 1);
    ZvBlender::drawBitmap(1, 0, &mask, &glyph, 0xFF000000u);
    EXPECT_EQ(Bytes(mask.pixels, mask.pixels + 4), (Bytes{10, 200, 100, 100}));
}

TEST(Blender, NothingToDrawOnOrFromIsIgnored) {
    const Bytes bytes(16, 255);
    const uint32_t words[4] = {~0u, ~0u, ~0u, ~0u};
    ZvBitmap mask(2, 2, 1), color(2, 2, 4), unallocated;
    unallocated.width = unallocated.height = 2;
    unallocated.bytesPerPixel = 4;
    const unsigned char* noBytes = nullptr;
    const unsigned int* noWords = nullptr;
    const ZvBitmap* noBitmap = nullptr;
    for (const int mode : {1, 2, 3, 7}) {
        // A mask is no target of a colour blend: four bytes a pixel would leave its buffer.
        for (const ZvBitmap* target :
             {noBitmap, static_cast<const ZvBitmap*>(&unallocated), static_cast<const ZvBitmap*>(&mask)}) {
            ZvBlender::drawBitmapBlend8(0, 0, target, bytes.data(), 2, 2, 2, 0xFFFFFFFFu, mode);
            ZvBlender::drawBitmapBlend32(0, 0, target, words, 2, 2, 2, mode);
            ZvBlender::drawBitmapBlend32(0, 0, target, bytes.data(), 2, 2, 8, 0, 1);
        }
        ZvBlender::drawBitmapBlend8(0, 0, &color, noBytes, 2, 2, 2, 0xFFFFFFFFu, mode);
        ZvBlender::drawBitmapBlend32(0, 0, &color, noWords, 2, 2, 2, mode);
    }
    ZvBlender::drawBitmapBlend32(0, 0, &color, noBytes, 2, 2, 8, 0, 1);
    ZvBlender::drawBitmap8To32(0, 0, &mask, bytes.data(), 2, 2, 0xFFFFFFFFu);
    ZvBlender::drawBitmap(0, 0, &unallocated, bytes.data(), 2, 2, 0xFFFFFFFFu);
    ZvBlender::drawBitmap(0, 0, noBitmap, bytes.data(), 2, 2, 0xFFFFFFFFu);
    ZvBlender::drawBitmap(0, 0, &color, noBytes, 2, 2, 0xFFFFFFFFu);
    ZvBlender::drawBitmap(0, 0, &color, noBitmap, 0xFFFFFFFFu);
    ZvBlender::convertBGRAToARGB(nullptr);
    ZvBlender::convertBGRAToARGB(&unallocated);
    ZvBlender::convertBGRAToARGB(&mask);
    EXPECT_EQ(Bytes(mask.pixels, mask.pixels + 4), Bytes(4, 0));
    EXPECT_EQ(Bytes(color.pixels, color.pixels + 16), Bytes(16, 0));
}

TEST(Blender, ExchangesRedAndBlueAndBack) {
    const Bytes bytes = {1, 2, 3, 4, 250, 251, 252, 253};
    ZvBitmap bitmap(2, 1, bytes.data(), 4);
    ZvBlender::convertBGRAToARGB(&bitmap);
    EXPECT_EQ(Bytes(bitmap.pixels, bitmap.pixels + 8), (Bytes{3, 2, 1, 4, 252, 251, 250, 253}));
    ZvBlender::convertBGRAToARGB(&bitmap);
    EXPECT_EQ(Bytes(bitmap.pixels, bitmap.pixels + 8), bytes);
}

// The lines belong to builds with debug lines; others write none.
TEST(Blender, RareModesWriteADebugLine) {
    ZvBitmap target(1, 1, 4);
    const uint8_t coverage = 255;
    host::LogCapture capture;
    for (const int mode : {1, 2, 3, 5, 7}) {
        ZvBlender::drawBitmapBlend8(0, 0, &target, &coverage, 1, 1, 1, 0xFFFFFFFFu, mode);
    }
    const auto lines = capture.lines();
    if (!ZvLog::IsAllLogEnable()) {
        EXPECT_TRUE(lines.empty());
        return;
    }
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].priority, ANDROID_LOG_DEBUG);
    EXPECT_EQ(lines[0].tag, "Blender");
    EXPECT_EQ(lines[0].text, "Blender - ZVE_BLEND_DST_OVER_NSA");
    EXPECT_EQ(lines[1].text, "Blender - ZVE_BLEND_OTHER");
}

}  // namespace
}  // namespace Zvex
