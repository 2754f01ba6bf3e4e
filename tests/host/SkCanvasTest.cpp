// SPDX-License-Identifier: Apache-2.0
#include <SkBitmap.h>
#include <SkCanvas.h>
#include <SkStream.h>
#include <SkTextBlob.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <tuple>

#include "Fonts.h"
#include "platform/host/PixelMath.h"

namespace {

using Bytes = std::vector<uint8_t>;
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr uint8_t kCanary = 0x5A;

// An image of zeros whose rows lie a few bytes apart, with a canvas over it. The bytes between the rows must
// never change.
struct Picture {
    Picture(int width, int height, SkColorType type)
        : height(height),
          rowBytes(static_cast<size_t>(type == kAlpha_8_SkColorType ? width : 4 * width)),
          bytes((rowBytes + 5) * static_cast<size_t>(height), kCanary) {
        for (int y = 0; y < height; ++y) std::memset(row(y), 0, rowBytes);
        const SkAlphaType alpha = type == kAlpha_8_SkColorType ? kPremul_SkAlphaType : kUnpremul_SkAlphaType;
        EXPECT_TRUE(
            bitmap.installPixels(SkImageInfo::Make(width, height, type, alpha), bytes.data(), rowBytes + 5));
        canvas = std::make_unique<SkCanvas>(bitmap);
    }
    uint8_t* row(int y) { return bytes.data() + static_cast<size_t>(y) * (rowBytes + 5); }
    Bytes pixels() {
        Bytes all;
        for (int y = 0; y < height; ++y) {
            EXPECT_EQ(Bytes(row(y) + rowBytes, row(y) + rowBytes + 5), Bytes(5, kCanary))
                << "after row " << y;
            all.insert(all.end(), row(y), row(y) + rowBytes);
        }
        return all;
    }
    void clip(float left, float top, float right, float bottom) {
        canvas->clipRect(SkRect::MakeLTRB(left, top, right, bottom), SkClipOp::kIntersect, true);
    }

    int height;
    size_t rowBytes;
    Bytes bytes;
    SkBitmap bitmap;
    std::unique_ptr<SkCanvas> canvas;
};

SkPaint colored(SkColor color) {
    SkPaint paint;
    paint.setColor(color);
    return paint;
}

// Every pair of alphas with random channels, compared with the definition in doubles, which are exact to far
// below a tie.
TEST(PixelMath, ProductsAndSourceOverAreRoundedToTheNearest) {
    std::mt19937 random(11);
    for (int sa = 0; sa < 256; ++sa) {
        for (int da = 0; da < 256; ++da) {
            ASSERT_EQ(host::multiplyBytes(static_cast<uint32_t>(sa), static_cast<uint32_t>(da)),
                      static_cast<uint32_t>(2 * sa * da + 255) / 510);
            const uint8_t source[3] = {static_cast<uint8_t>(random()), 255, 0};
            uint8_t pixel[4] = {static_cast<uint8_t>(random()), 0, 255, static_cast<uint8_t>(da)},
                    expected[4];
            const double whole = sa * 255.0 + da * (255.0 - sa);
            for (int c = 0; c < 3; ++c) {
                expected[c] = sa == 0
                                  ? pixel[c]
                                  : static_cast<uint8_t>(
                                        (source[c] * sa * 255 + pixel[c] * da * (255 - sa)) / whole + 0.5);
            }
            expected[3] = static_cast<uint8_t>(whole / 255 + 0.5);
            host::straightOver(pixel, source[0], source[1], source[2], static_cast<uint8_t>(sa));
            ASSERT_EQ(std::memcmp(pixel, expected, 4), 0) << sa << " over " << da;
        }
    }
}

// On both sides of every step from one quotient to the next.
TEST(PixelMath, QuotientsInFloatsAreExact) {
    for (int d = 1; d <= 255 * 255; d += d < 60000 ? 13 : 1) {
        for (int quotient = 1; quotient <= 255; ++quotient) {
            const int step = quotient * d - d / 2;
            const host::FourInts found =
                host::nearestQuotients(host::FourInts{step - 1, step, 0, 255 * d}, d);
            ASSERT_TRUE(found[0] == quotient - 1 && found[1] == quotient && found[2] == 0 && found[3] == 255)
                << step << " / " << d;
        }
    }
}

TEST(SkBitmap, RefusesWhatItCannotDraw) {
    uint8_t pixels[64] = {};
    const auto k8888 = kRGBA_8888_SkColorType;
    const auto k8 = kAlpha_8_SkColorType;
    const auto straight = kUnpremul_SkAlphaType, premultiplied = kPremul_SkAlphaType;
    const std::tuple<SkImageInfo, size_t, bool> cases[] = {
        {SkImageInfo::Make(4, 4, k8888, straight), 16, true},
        {SkImageInfo::Make(0, 4, k8, premultiplied), 0, true},
        {SkImageInfo::Make(4, 4, k8888, straight), 15, false},
        {SkImageInfo::Make(4, 4, k8888, premultiplied), 16, false},
        {SkImageInfo::Make(4, 4, kUnknown_SkColorType, straight), 16, false},
        {SkImageInfo::Make(-1, 4, k8, premultiplied), 16, false},
        {SkImageInfo::Make(4, -4, k8, premultiplied), 16, false},
        {SkImageInfo::Make(0x20000000, 1, k8888, straight), 0x80000000, false},
        {SkImageInfo::Make(1, 0x40000000, k8, premultiplied), 2, false},
    };
    for (const auto& [info, rowBytes, taken] : cases) {
        SkBitmap bitmap;
        EXPECT_EQ(bitmap.installPixels(info, pixels, rowBytes), taken);
        EXPECT_EQ(bitmap.getPixels() != nullptr, taken);
        if (!taken) SkCanvas(bitmap).drawColor(0xFFFFFFFF, SkBlendMode::kSrc);
    }
    EXPECT_EQ(pixels[0], 0);
    SkBitmap bitmap;
    EXPECT_TRUE(bitmap.installPixels(SkImageInfo::Make(4, 4, k8, premultiplied), nullptr, 4));
    SkCanvas(bitmap).drawColor(0xFFFFFFFF, SkBlendMode::kSrc);
}

TEST(SkCanvas, DrawColorWritesOrComposites) {
    Picture color(1, 1, kRGBA_8888_SkColorType), coverage(1, 1, kAlpha_8_SkColorType);
    color.canvas->drawColor(0x40102030, SkBlendMode::kSrc);
    EXPECT_EQ(color.pixels(), (Bytes{0x10, 0x20, 0x30, 0x40}));
    color.canvas->drawColor(0x80FF0000, SkBlendMode::kSrcOver);
    // A = 128 * 255 + 64 * 127 = 40768; red (255 * 32640 + 16 * 8128) / A = 207.3; alpha 159.9.
    EXPECT_EQ(color.pixels(), (Bytes{207, 6, 10, 160}));
    coverage.canvas->drawColor(0x80FFFFFF, SkBlendMode::kSrc);
    coverage.canvas->drawColor(0x80000000, SkBlendMode::kSrcOver);
    EXPECT_EQ(coverage.pixels(), Bytes{192});  // 128 + 128 * 127 / 255
}

TEST(SkCanvas, APixelBelongsToARectangleThatHoldsItsCentre) {
    const struct {
        float from, to;
        int first, count;
    } cases[] = {{2, 5, 2, 3},    {2.4f, 4.6f, 2, 3},    {2.5f, 4.5f, 2, 2}, {2.6f, 2.9f, 0, 0},
                 {5, 2, 2, 3},    {-kInfinity, 3, 0, 3}, {7, 1e30f, 7, 3},   {-1e30f, kInfinity, 0, 10},
                 {kNan, 4, 0, 0}, {3, kNan, 0, 0},       {-5, 0.5f, 0, 0},   {9.5f, 12, 9, 1},
                 {10, 20, 0, 0}};
    for (const auto& c : cases) {
        for (const int mode : {0, 1, 2, 3}) {
            const bool clip = mode % 2 != 0, across = mode / 2 != 0;
            Picture picture(10, 10, kAlpha_8_SkColorType);
            const SkRect rect =
                across ? SkRect::MakeLTRB(c.from, 1, c.to, 2) : SkRect::MakeLTRB(1, c.from, 2, c.to);
            if (clip) picture.canvas->clipRect(rect, SkClipOp::kIntersect, true);
            if (clip) picture.canvas->drawColor(0xFF000000, SkBlendMode::kSrc);
            if (!clip) picture.canvas->drawRect(rect, colored(0xFF000000));
            Bytes expected(100);
            for (int i = c.first; i < c.first + c.count; ++i) {
                expected[static_cast<size_t>(across ? 10 + i : 10 * i + 1)] = 255;
            }
            ASSERT_EQ(picture.pixels(), expected) << c.from << " to " << c.to << ", mode " << mode;
        }
    }
}

TEST(SkCanvas, ClipsOnlyShrink) {
    Picture picture(4, 2, kAlpha_8_SkColorType);
    picture.clip(1, 0, 4, 2);
    picture.clip(0, 1, 3, 40);
    picture.canvas->drawRect(SkRect::MakeLTRB(0, 0, 4, 2), colored(0x80000000));
    const Bytes expected = {0, 0, 0, 0, 0, 128, 128, 0};
    EXPECT_EQ(picture.pixels(), expected);
    picture.clip(3, 0, 4, 2);  // disjoint: nothing is left
    picture.clip(0, 0, 4, 2);
    picture.canvas->drawColor(0xFFFFFFFF, SkBlendMode::kSrc);
    EXPECT_EQ(picture.pixels(), expected);
}

// Bitmaps with runs of one alpha, which are handled at once, in rows of all widths, at positions around the
// clip and beyond the ints.
TEST(SkCanvas, BitmapsAreCompositedInsideTheClip) {
    const struct {
        float x, y;
        int left, top;
    } places[] = {{0, 0, 0, 0},         {2, 1, 2, 1},        {-2, -1, -2, -1},       {1.4f, 0.6f, 1, 1},
                  {5, 4, 5, 4},         {-4, 0, -4, 0},      {-0.5f, -0.6f, -1, -1}, {1e30f, 0, 100, 0},
                  {kNan, 0, 100, 0},    {0, -1e30f, 0, 100}, {0, kInfinity, 0, 100}, {2e9f, 2e9f, 100, 100},
                  {-2.68e8f, 0, 100, 0}};
    std::mt19937 random(5);
    for (int round = 0; round < 140; ++round) {
        const int width = 1 + round % 70, height = 3;
        const auto& place = places[static_cast<size_t>(round) % std::size(places)];
        Picture source(width, height, kRGBA_8888_SkColorType), target(width + 2, 5, kRGBA_8888_SkColorType);
        for (Picture* picture : {&source, &target}) {
            for (int y = 0; y < picture->height; ++y) {
                for (size_t i = 0; i < picture->rowBytes; ++i)
                    picture->row(y)[i] = static_cast<uint8_t>(random());
            }
        }
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width;) {
                const uint32_t kind = random() % 3, run = 1 + random() % (random() % 2 != 0 ? 40 : 3);
                for (const int end = std::min(width, x + static_cast<int>(run)); x < end; ++x) {
                    if (kind < 2) source.row(y)[4 * x + 3] = kind == 0 ? 0 : 255;
                }
            }
        }
        Bytes expected = target.pixels();
        for (int i = 0; i < 5 * (width + 2); ++i) {
            const int x = i % (width + 2), sx = x - place.left, sy = i / (width + 2) - place.top;
            if (x > width || sx < 0 || sx >= width || sy < 0 || sy >= height) continue;
            const uint8_t* p = source.row(sy) + 4 * sx;
            host::straightOver(&expected[static_cast<size_t>(4 * i)], p[0], p[1], p[2], p[3]);
        }
        target.clip(0, 0, static_cast<float>(width + 1), 5);
        target.canvas->drawBitmap(source.bitmap, place.x, place.y);
        ASSERT_EQ(target.pixels(), expected) << "width " << width << " at " << place.x << ", " << place.y;
    }

    // A paint scales the alpha; other layouts and empty bitmaps draw nothing.
    Picture source(1, 1, kRGBA_8888_SkColorType), target(1, 1, kRGBA_8888_SkColorType),
        mask(1, 1, kAlpha_8_SkColorType);
    source.canvas->drawColor(0xDC1E28C8, SkBlendMode::kSrc);
    const SkPaint half = colored(0x80000000);
    target.canvas->drawBitmap(source.bitmap, 0, 0, &half);
    target.canvas->drawBitmap(mask.bitmap, 0, 0);
    target.canvas->drawBitmap(SkBitmap(), 0, 0);
    EXPECT_EQ(target.pixels(), (Bytes{30, 40, 200, 110}));  // 220 * 128 / 255 = 110.4
    mask.canvas->drawBitmap(source.bitmap, 0, 0);
    EXPECT_EQ(mask.pixels(), Bytes(1));
}

class TextTest : public testing::Test {
protected:
    void SetUp() override {
        const auto& file = fonts::bytes(fonts::Role::kLatin);
        typeface = SkTypeface::MakeFromStream(new SkMemoryStream(file.data(), file.size()));
        font.setTextEncoding(SkPaint::kGlyphID_TextEncoding);
        font.setTypeface(typeface);
        font.setTextSize(20);
        font.setFlags(SkPaint::kAntiAlias_Flag | SkPaint::kSubpixelText_Flag);
    }
    void TearDown() override { host::setRendering(host::Rendering::Phone); }

    struct Glyph {
        SkGlyphID id;
        float x, y;
    };
    sk_sp<SkTextBlob> blobOf(const std::vector<Glyph>& glyphs) {
        SkTextBlobBuilder builder;
        const auto& run = builder.allocRunPos(font, static_cast<int>(glyphs.size()));
        for (size_t i = 0; i < glyphs.size(); ++i) {
            run.glyphs[i] = glyphs[i].id;
            run.pos[2 * i] = glyphs[i].x;
            run.pos[2 * i + 1] = glyphs[i].y;
        }
        return builder.make();
    }
    // A coverage picture with the face's image placed by hand.
    Bytes placed(SkGlyphID id, int x, int y, int quarterX) {
        host::GlyphStyle style;
        style.size = font.getTextSize();
        const auto image = typeface->face()->image(id, style, quarterX);
        Bytes all(kWidth * kHeight);
        for (size_t i = 0; i < image->coverage.size(); ++i) {
            const int at = static_cast<int>(i), tx = x + image->left + at % image->width,
                      ty = y + image->top + at / image->width;
            if (tx < 0 || tx >= kWidth || ty < 0 || ty >= kHeight) continue;
            all[static_cast<size_t>(ty * kWidth + tx)] = image->coverage[i];
        }
        return all;
    }
    Bytes drawn(const sk_sp<SkTextBlob>& blob, float x, float y,
                const SkPaint& paint = colored(SK_ColorBLACK)) {
        Picture picture(kWidth, kHeight, kAlpha_8_SkColorType);
        picture.canvas->drawTextBlob(blob, x, y, paint);
        return picture.pixels();
    }

    static constexpr int kWidth = 60, kHeight = 40;
    static constexpr SkGlyphID kA = 36, kO = 50;
    sk_sp<SkTypeface> typeface;
    SkPaint font;
};

TEST_F(TextTest, OriginsAreTakenToQuarterPixelsOrWholeOnes) {
    const struct {
        float x, y;            // of the blob
        float glyphX, glyphY;  // in the blob
        int quarterPixel, quarter, wholePixel, row;
    } places[] = {
        {10, 30, 0, 0, 10, 0, 10, 30},        {10, 30, 0.24f, 0.49f, 10, 0, 10, 30},
        {10, 30, 0.25f, 0.5f, 10, 1, 10, 31}, {10.5f, 29, 0.49f, 0.75f, 10, 3, 11, 30},
        {0, 20, 12.5f, -0.5f, 12, 2, 13, 20}, {-3, 20, -0.25f, -0.75f, -4, 3, -3, 19},
        {55.75f, 2, 0, 0, 55, 3, 56, 2},      {-20, 35.4f, 0.1f, 0, -20, 0, -20, 35},
    };
    for (const host::Rendering rendering : {host::Rendering::Plain, host::Rendering::Phone}) {
        host::setRendering(rendering);
        // Plain takes the quarter below, the phone the nearest one.
        const float nudge = rendering == host::Rendering::Phone ? -0.125f : 0;
        for (const auto& place : places) {
            font.setFlags(SkPaint::kAntiAlias_Flag | SkPaint::kSubpixelText_Flag);
            EXPECT_EQ(drawn(blobOf({{kA, place.glyphX, place.glyphY}}), place.x + nudge, place.y),
                      placed(kA, place.quarterPixel, place.row, place.quarter))
                << place.x << " + " << place.glyphX << " nudged by " << nudge;
            font.setFlags(SkPaint::kAntiAlias_Flag);
            EXPECT_EQ(drawn(blobOf({{kA, place.glyphX, place.glyphY}}), place.x, place.y),
                      placed(kA, place.wholePixel, place.row, 0))
                << place.x << " + " << place.glyphX;
        }
    }
}

// Glyphs narrower than 8 pixels, than 32 and wider, placed from one beyond the left side to one beyond the
// right. The run's paint sets the font, the drawing paint the colour.
TEST_F(TextTest, GlyphsLieOverEachOtherInOrder) {
    for (const float size : {9.0f, 20.0f, 40.0f}) {
        font.setTextSize(size);
        int overlapped = 0;
        for (int shift = -12; shift <= 12; ++shift) {
            const int left = 20 + shift;
            const sk_sp<SkTextBlob> both = blobOf({{kA, 20, 30}, {kO, static_cast<float>(left) + 0.5f, 30}});
            const Bytes a = placed(kA, 20, 30, 0), o = placed(kO, left, 30, 2);
            SkPaint half = colored(0x80123456);
            half.setTextSize(99);
            half.setFakeBoldText(true);
            const Bytes result = drawn(both, 0, 0), faint = drawn(both, 0, 0, half);
            Picture color(kWidth, kHeight, kRGBA_8888_SkColorType);
            color.canvas->drawColor(0xFFFFFFFF, SkBlendMode::kSrc);
            color.canvas->drawTextBlob(both, 0, 0, colored(0xFF0000FF));
            const Bytes blue = color.pixels();
            for (size_t i = 0; i < result.size(); ++i) {
                const auto halved = [](uint8_t c) {
                    return static_cast<uint8_t>(host::multiplyBytes(c, 128));
                };
                uint8_t pixel[4] = {255, 255, 255, 255};
                for (const uint8_t coverage : {a[i], o[i]}) host::straightOver(pixel, 0, 0, 255, coverage);
                ASSERT_EQ(result[i], host::coverageOver(o[i], a[i])) << size << " by " << shift;
                ASSERT_EQ(faint[i], host::coverageOver(halved(o[i]), halved(a[i])))
                    << size << " by " << shift;
                ASSERT_EQ(std::memcmp(&blue[4 * i], pixel, 4), 0) << size << " by " << shift;
                overlapped += a[i] != 0 && o[i] != 0;
            }
        }
        EXPECT_GT(overlapped, 5);
    }
    SkTextBlobBuilder builder;  // with several runs
    *builder.allocRunPos(font, 1).glyphs = kA;
    const auto& second = builder.allocRunPos(font, 1);
    *second.glyphs = kO;
    second.pos[0] = 40;
    EXPECT_EQ(drawn(builder.make(), 5, 30), drawn(blobOf({{kA, 5, 30}, {kO, 45, 30}}), 0, 0));
    EXPECT_FALSE(builder.make());
}

TEST_F(TextTest, WhatCannotBeDrawnLeavesThePicture) {
    const Bytes nothing(kWidth * kHeight);
    for (const float far : {kNan, kInfinity, -1e30f, 3e9f, -3e9f, 2.7e8f, -2.6e8f}) {
        EXPECT_EQ(drawn(blobOf({{kA, far, 0}}), 10, 30), nothing) << far;
        EXPECT_EQ(drawn(blobOf({{kA, 0, 0}}), 10, far), nothing) << far;
    }
    EXPECT_EQ(drawn(nullptr, 10, 30), nothing);
    EXPECT_EQ(drawn(blobOf({{kA, 10, 30}}), 0, 0, colored(0x00FFFFFF)), nothing);
    EXPECT_EQ(drawn(blobOf({{65535, 10, 30}}), 0, 0), nothing);
    font.setTypeface(nullptr);
    EXPECT_EQ(drawn(blobOf({{kA, 10, 30}}), 0, 0), nothing);

    SkTextBlobBuilder builder;
    EXPECT_EQ(builder.allocRunPos(font, -1).pos, nullptr);
    font.setTextEncoding(SkPaint::kUTF16_TextEncoding);
    EXPECT_EQ(builder.allocRunPos(font, 3).glyphs, nullptr);
    EXPECT_FALSE(builder.make());
}

}  // namespace
