// SPDX-License-Identifier: Apache-2.0
#include <SkBitmap.h>
#include <SkCanvas.h>
#include <SkColorSpace.h>
#include <SkImageInfo.h>
#include <SkPaint.h>
#include <SkStream.h>
#include <SkTextBlob.h>
#include <SkTypeface.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "Fonts.h"
#include "platform/host/PixelMath.h"

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr uint8_t kCanary = 0x5A;

// An image of width x height whose rows lie a few bytes apart, with a canvas over it. Starts as zeros; the
// bytes between and after the rows must never change.
struct Picture {
    Picture(int width, int height, SkColorType type, sk_sp<SkColorSpace> space = nullptr)
        : width(width),
          height(height),
          bytesPerPixel(type == kAlpha_8_SkColorType ? 1 : 4),
          stride(static_cast<size_t>(width * bytesPerPixel) + 5),
          bytes(stride * static_cast<size_t>(height), kCanary) {
        for (int y = 0; y < height; ++y) std::memset(row(y), 0, stride - 5);
        const SkAlphaType alpha = type == kAlpha_8_SkColorType ? kPremul_SkAlphaType : kUnpremul_SkAlphaType;
        EXPECT_TRUE(bitmap.installPixels(SkImageInfo::Make(width, height, type, alpha, std::move(space)),
                                         bytes.data(), stride));
        canvas = std::make_unique<SkCanvas>(bitmap);
    }
    ~Picture() {
        for (int y = 0; y < height; ++y) {
            for (size_t i = stride - 5; i < stride; ++i) EXPECT_EQ(row(y)[i], kCanary) << "after row " << y;
        }
    }
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;

    uint8_t* row(int y) { return bytes.data() + static_cast<size_t>(y) * stride; }
    uint8_t coverage(int x, int y) { return row(y)[x]; }
    std::array<int, 4> colour(int x, int y) {
        const uint8_t* p = row(y) + 4 * x;
        return {p[0], p[1], p[2], p[3]};
    }
    // The coverage without what lies between the rows.
    std::vector<uint8_t> pixels() {
        std::vector<uint8_t> all;
        for (int y = 0; y < height; ++y) all.insert(all.end(), row(y), row(y) + width * bytesPerPixel);
        return all;
    }

    int width, height, bytesPerPixel;
    size_t stride;
    std::vector<uint8_t> bytes;
    SkBitmap bitmap;
    std::unique_ptr<SkCanvas> canvas;
};

SkPaint colored(SkColor color) {
    SkPaint paint;
    paint.setColor(color);
    return paint;
}

TEST(PixelMath, ByteProductsAreRoundedToTheNearest) {
    for (uint32_t a = 0; a < 256; ++a) {
        for (uint32_t b = 0; b < 256; ++b) {
            ASSERT_EQ(host::multiplyBytes(a, b), (2 * a * b + 255) / 510) << a << " * " << b;
        }
    }
}

// Every pair of alphas with random channels, against the definition in doubles, which are exact to far below
// a tie.
TEST(PixelMath, StraightSourceOverIsRoundedToTheNearest) {
    std::mt19937 random(11);
    for (int sa = 0; sa < 256; ++sa) {
        for (int da = 0; da < 256; ++da) {
            const uint8_t source = static_cast<uint8_t>(random()), target = static_cast<uint8_t>(random());
            uint8_t pixel[4] = {target, 0, 255, static_cast<uint8_t>(da)};
            host::straightOver(pixel, source, 255, 0, static_cast<uint8_t>(sa));
            if (sa == 0) {
                ASSERT_EQ(pixel[0], target);
                ASSERT_EQ(pixel[3], da);
                continue;
            }
            const double whole = sa * 255.0 + da * (255.0 - sa);
            const auto channel = [&](double s, double d) {
                return static_cast<int>(std::floor((s * sa * 255 + d * da * (255 - sa)) / whole + 0.5));
            };
            ASSERT_EQ(pixel[0], channel(source, target)) << sa << " over " << da;
            ASSERT_EQ(pixel[1], channel(255, 0)) << sa << " over " << da;
            ASSERT_EQ(pixel[2], channel(0, 255)) << sa << " over " << da;
            ASSERT_EQ(pixel[3], static_cast<int>(std::floor(whole / 255 + 0.5))) << sa << " over " << da;
        }
    }
}

// On both sides of every step from one quotient to the next.
TEST(PixelMath, QuotientsInFloatsAreExact) {
    for (int d = 1; d <= 255 * 255; d += d < 60000 ? 13 : 1) {
        for (int quotient = 1; quotient <= 255; ++quotient) {
            const int step = quotient * d - d / 2;
            const host::FourInts numerators = {step - 1, step, 0, 255 * d};
            const host::FourInts found = host::nearestQuotients(numerators, d);
            ASSERT_EQ(found[0], quotient - 1) << d;
            ASSERT_EQ(found[1], quotient) << d;
            ASSERT_EQ(found[2], 0) << d;
            ASSERT_EQ(found[3], 255) << d;
        }
    }
}

TEST(SkBitmap, RefusesWhatItCannotDraw) {
    uint8_t pixels[64] = {};
    const auto k8888 = kRGBA_8888_SkColorType;
    const auto k8 = kAlpha_8_SkColorType;
    const auto straight = kUnpremul_SkAlphaType, premultiplied = kPremul_SkAlphaType;
    const struct {
        int width, height;
        SkColorType type;
        SkAlphaType alpha;
        size_t rowBytes;
        bool taken;
    } cases[] = {
        {4, 4, k8888, straight, 16, true},
        {0, 4, k8, premultiplied, 0, true},
        {4, 0, k8, premultiplied, 4, true},
        {4, 4, k8888, straight, 15, false},
        {4, 4, k8888, premultiplied, 16, false},
        {4, 4, kUnknown_SkColorType, straight, 16, false},
        {-1, 4, k8, premultiplied, 16, false},
        {4, -4, k8, premultiplied, 16, false},
        {0x20000000, 1, k8888, straight, 0x80000000, false},
        {1, 0x40000000, k8, premultiplied, 2, false},
    };
    for (const auto& c : cases) {
        SkBitmap bitmap;
        const SkImageInfo info = SkImageInfo::Make(c.width, c.height, c.type, c.alpha);
        EXPECT_EQ(bitmap.installPixels(info, pixels, c.rowBytes), c.taken) << &c - cases;
        EXPECT_EQ(bitmap.getPixels() != nullptr, c.taken) << &c - cases;
        if (!c.taken) SkCanvas(bitmap).drawColor(0xFFFFFFFF, SkBlendMode::kSrc);
    }
    EXPECT_EQ(pixels[0], 0);

    SkBitmap bitmap;
    EXPECT_TRUE(bitmap.installPixels(SkImageInfo::Make(4, 4, k8, premultiplied), nullptr, 4));
    SkCanvas canvas(bitmap);  // draws nothing
    canvas.drawColor(0xFFFFFFFF, SkBlendMode::kSrc);
    canvas.drawRect(SkRect::MakeLTRB(0, 0, 4, 4), colored(0xFF00FF00));
}

TEST(SkCanvas, DrawColorWritesOrComposites) {
    Picture colour(3, 2, kRGBA_8888_SkColorType);
    colour.canvas->drawColor(0x40102030, SkBlendMode::kSrc);
    EXPECT_EQ(colour.colour(2, 1), (std::array<int, 4>{0x10, 0x20, 0x30, 0x40}));
    colour.canvas->drawColor(0x80FF0000, SkBlendMode::kSrcOver);
    // A = 128 * 255 + 64 * 127 = 40768; red (255 * 32640 + 16 * 8128) / A = 207.3; alpha 159.9.
    EXPECT_EQ(colour.colour(0, 0), (std::array<int, 4>{207, 6, 10, 160}));
    colour.canvas->drawColor(0, SkBlendMode::kSrc);
    EXPECT_EQ(colour.colour(2, 0), (std::array<int, 4>{0, 0, 0, 0}));

    Picture coverage(3, 2, kAlpha_8_SkColorType);
    coverage.canvas->drawColor(0x80FFFFFF, SkBlendMode::kSrc);
    EXPECT_EQ(coverage.coverage(2, 1), 128);
    coverage.canvas->drawColor(0x80000000, SkBlendMode::kSrcOver);
    EXPECT_EQ(coverage.coverage(0, 0), 192);  // 128 + 128 * 127 / 255
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
            if (clip) {
                picture.canvas->clipRect(rect, SkClipOp::kIntersect, true);
                picture.canvas->drawColor(0xFF000000, SkBlendMode::kSrc);
            } else {
                picture.canvas->drawRect(rect, colored(0xFF000000));
            }
            std::vector<uint8_t> expected(100);
            for (int i = c.first; i < c.first + c.count; ++i) {
                expected[static_cast<size_t>(across ? 10 + i : 10 * i + 1)] = 255;
            }
            ASSERT_EQ(picture.pixels(), expected) << c.from << " to " << c.to << ", mode " << mode;
        }
    }
}

TEST(SkCanvas, ClipsOnlyShrink) {
    Picture picture(10, 4, kAlpha_8_SkColorType);
    const auto clip = [&picture](float left, float top, float right, float bottom) {
        picture.canvas->clipRect(SkRect::MakeLTRB(left, top, right, bottom), SkClipOp::kIntersect, true);
    };
    clip(2, 0, 8, 4);
    clip(0, 1, 6, 40);
    picture.canvas->drawRect(SkRect::MakeLTRB(0, 0, 10, 4), colored(0x80000000));
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 10; ++x) EXPECT_EQ(picture.coverage(x, y), x >= 2 && x < 6 && y >= 1 ? 128 : 0);
    }
    clip(7, 0, 9, 4);  // disjoint: nothing is left
    const std::vector<uint8_t> before = picture.pixels();
    clip(0, 0, 10, 4);
    picture.canvas->drawColor(0xFFFFFFFF, SkBlendMode::kSrc);
    EXPECT_EQ(picture.pixels(), before);
}

TEST(SkCanvas, BitmapsAreCompositedInsideTheClip) {
    Picture source(4, 3, kRGBA_8888_SkColorType);
    for (int i = 0; i < 12; ++i) {
        const int x = i % 4, y = i / 4, channels[4] = {10 * x, 20 * y, 200, 60 * x + 20 * y};
        std::copy(channels, channels + 4, source.row(y) + 4 * x);
    }
    const struct {
        float x, y;
        int left, top;
    } places[] = {{0, 0, 0, 0},         {2, 1, 2, 1},           {-2, -1, -2, -1},
                  {1.4f, 0.6f, 1, 1},   {5, 4, 5, 4},           {-0.5f, -0.6f, -1, -1},
                  {-4, 0, -4, 0},       {1e30f, 0, 100, 0},     {kNan, 0, 100, 0},
                  {0, -1e30f, 0, 100},  {0, kInfinity, 0, 100}, {2e9f, 2e9f, 100, 100},
                  {-2.68e8f, 0, 100, 0}};
    for (const auto& place : places) {
        Picture target(6, 5, kRGBA_8888_SkColorType);
        target.canvas->drawColor(0x77334455, SkBlendMode::kSrc);
        target.canvas->clipRect(SkRect::MakeLTRB(0, 0, 5, 5), SkClipOp::kIntersect, true);
        target.canvas->drawBitmap(source.bitmap, place.x, place.y);
        for (int i = 0; i < 30; ++i) {
            uint8_t expected[4] = {0x33, 0x44, 0x55, 0x77};
            const int x = i % 6, y = i / 6, sx = x - place.left, sy = y - place.top;
            if (x < 5 && sx >= 0 && sx < 4 && sy >= 0 && sy < 3) {
                const uint8_t* p = source.row(sy) + 4 * sx;
                host::straightOver(expected, p[0], p[1], p[2], p[3]);
            }
            ASSERT_EQ(std::memcmp(target.row(y) + 4 * x, expected, 4), 0)
                << "at " << place.x << ", " << place.y << " pixel " << x << ", " << y;
        }
    }

    // A paint scales the alpha; other layouts and empty bitmaps draw nothing.
    Picture target(4, 3, kRGBA_8888_SkColorType), mask(4, 3, kAlpha_8_SkColorType);
    const SkPaint half = colored(0x80000000);
    target.canvas->drawBitmap(source.bitmap, 0, 0, &half);
    EXPECT_EQ(target.colour(3, 2), (std::array<int, 4>{30, 40, 200, 110}));  // 220 * 128 / 255 = 110.4
    const std::vector<uint8_t> before = target.pixels();
    target.canvas->drawBitmap(mask.bitmap, 0, 0);
    target.canvas->drawBitmap(SkBitmap(), 0, 0);
    mask.canvas->drawBitmap(source.bitmap, 0, 0);
    EXPECT_EQ(target.pixels(), before);
    EXPECT_EQ(mask.pixels(), std::vector<uint8_t>(12, 0));
}

// Runs of one alpha are taken at once: runs of all lengths, in rows of all widths.
TEST(SkCanvas, RunsOfABitmapAreCompositedAsItsPixels) {
    std::mt19937 random(5);
    for (int width = 1; width <= 70; ++width) {
        Picture source(width, 1, kRGBA_8888_SkColorType), target(width, 1, kRGBA_8888_SkColorType);
        for (int x = 0; x < width;) {
            const uint32_t kind = random() % 3, run = 1 + random() % (random() % 2 != 0 ? 40 : 3);
            for (const int end = std::min(width, x + static_cast<int>(run)); x < end; ++x) {
                for (int c = 0; c < 4; ++c) {
                    source.row(0)[4 * x + c] = static_cast<uint8_t>(random());
                    target.row(0)[4 * x + c] = static_cast<uint8_t>(random());
                }
                if (kind < 2) source.row(0)[4 * x + 3] = kind == 0 ? 0 : 255;
            }
        }
        std::vector<uint8_t> expected = target.pixels();
        for (int x = 0; x < width; ++x) {
            const uint8_t* p = source.row(0) + 4 * x;
            host::straightOver(&expected[static_cast<size_t>(4 * x)], p[0], p[1], p[2], p[3]);
        }
        target.canvas->drawBitmap(source.bitmap, 0, 0);
        ASSERT_EQ(target.pixels(), expected) << "width " << width;
    }
}

class TextTest : public testing::Test {
protected:
    void SetUp() override {
        const auto& file = fonts::bytes(fonts::Role::kLatin);
        typeface = SkTypeface::MakeFromStream(new SkMemoryStream(file.data(), file.size()));
        ASSERT_TRUE(typeface);
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
        const SkRect bounds = SkRect::MakeLTRB(0, 0, 1, 1);
        const auto& run = builder.allocRunPos(font, static_cast<int>(glyphs.size()), &bounds);
        for (size_t i = 0; i < glyphs.size(); ++i) {
            run.glyphs[i] = glyphs[i].id;
            run.pos[2 * i] = glyphs[i].x;
            run.pos[2 * i + 1] = glyphs[i].y;
        }
        return builder.make();
    }
    // A coverage picture with the face's image put at the given place by hand.
    std::vector<uint8_t> placed(SkGlyphID id, int x, int y, int quarterX) {
        host::GlyphStyle style;
        style.size = font.getTextSize();
        style.subpixel = font.isSubpixelText();
        const auto image = typeface->face()->image(id, style, quarterX);
        std::vector<uint8_t> all(kWidth * kHeight);
        for (int row = 0; row < image->height; ++row) {
            for (int column = 0; column < image->width; ++column) {
                const int tx = x + image->left + column, ty = y + image->top + row;
                if (tx < 0 || tx >= kWidth || ty < 0 || ty >= kHeight) continue;
                all[static_cast<size_t>(ty * kWidth + tx)] =
                    image->coverage[static_cast<size_t>(row * image->width + column)];
            }
        }
        return all;
    }
    std::vector<uint8_t> drawn(const sk_sp<SkTextBlob>& blob, float x, float y,
                               SkColor color = SK_ColorBLACK) {
        Picture picture(kWidth, kHeight, kAlpha_8_SkColorType);
        picture.canvas->drawTextBlob(blob, x, y, colored(color));
        return picture.pixels();
    }

    static constexpr int kWidth = 60, kHeight = 40;
    static constexpr SkGlyphID kA = 36, kO = 50;
    sk_sp<SkTypeface> typeface;
    SkPaint font;
};

TEST_F(TextTest, OriginsAreTakenToQuarterPixelsOrWholeOnes) {
    struct Place {
        float x, y;            // of the blob
        float glyphX, glyphY;  // in the blob
        int quarterPixel, quarter, wholePixel, row;
    };
    const Place places[] = {
        {10, 30, 0, 0, 10, 0, 10, 30},        {10, 30, 0.24f, 0.49f, 10, 0, 10, 30},
        {10, 30, 0.25f, 0.5f, 10, 1, 10, 31}, {10.5f, 29, 0.49f, 0.75f, 10, 3, 11, 30},
        {0, 20, 12.5f, -0.5f, 12, 2, 13, 20}, {-3, 20, -0.25f, -0.75f, -4, 3, -3, 19},
        {55.75f, 2, 0, 0, 55, 3, 56, 2},      {-20, 35.4f, 0.1f, 0, -20, 0, -20, 35},
    };
    for (const host::Rendering rendering : {host::Rendering::Plain, host::Rendering::Phone}) {
        host::setRendering(rendering);
        // To the quarter below, on the phone to the nearest.
        const float nudge = rendering == host::Rendering::Phone ? -0.125f : 0;
        for (const Place& place : places) {
            SCOPED_TRACE(testing::Message() << place.x << " + " << place.glyphX << " nudged by " << nudge);
            const sk_sp<SkTextBlob> subpixel = blobOf({{kA, place.glyphX, place.glyphY}});
            EXPECT_EQ(drawn(subpixel, place.x + nudge, place.y),
                      placed(kA, place.quarterPixel, place.row, place.quarter));
            font.setFlags(SkPaint::kAntiAlias_Flag);
            const sk_sp<SkTextBlob> whole = blobOf({{kA, place.glyphX, place.glyphY}});
            EXPECT_EQ(drawn(whole, place.x, place.y), placed(kA, place.wholePixel, place.row, 0));
            font.setFlags(SkPaint::kAntiAlias_Flag | SkPaint::kSubpixelText_Flag);
        }
    }
}

// Glyphs narrower than 8 pixels, than 32 and wider, from one side by side to the other.
TEST_F(TextTest, GlyphsLieOverEachOtherInOrder) {
    for (const float size : {9.0f, 20.0f, 40.0f}) {
        font.setTextSize(size);
        int overlapped = 0;
        for (int shift = -12; shift <= 12; ++shift) {
            SCOPED_TRACE(std::to_string(size) + " by " + std::to_string(shift));
            const int left = 20 + shift;
            const sk_sp<SkTextBlob> both = blobOf({{kA, 20, 30}, {kO, static_cast<float>(left) + 0.5f, 30}});
            const std::vector<uint8_t> a = placed(kA, 20, 30, 0), o = placed(kO, left, 30, 2);
            const std::vector<uint8_t> result = drawn(both, 0, 0), faint = drawn(both, 0, 0, 0x80123456);
            Picture colour(kWidth, kHeight, kRGBA_8888_SkColorType);
            colour.canvas->drawColor(0xFFFFFFFF, SkBlendMode::kSrc);
            colour.canvas->drawTextBlob(both, 0, 0, colored(0xFF0000FF));
            const std::vector<uint8_t> blue = colour.pixels();
            for (size_t i = 0; i < result.size(); ++i) {
                ASSERT_EQ(result[i], host::coverageOver(o[i], a[i]));
                const auto half = [](uint8_t c) { return static_cast<uint8_t>(host::multiplyBytes(c, 128)); };
                ASSERT_EQ(faint[i], host::coverageOver(half(o[i]), half(a[i])));
                uint8_t pixel[4] = {255, 255, 255, 255};
                for (const uint8_t coverage : {a[i], o[i]}) host::straightOver(pixel, 0, 0, 255, coverage);
                ASSERT_EQ(std::memcmp(&blue[4 * i], pixel, 4), 0);
                overlapped += a[i] != 0 && o[i] != 0;
            }
        }
        EXPECT_GT(overlapped, 5);
    }
}

TEST_F(TextTest, TheRunsPaintSetsTheFontAndTheDrawingPaintTheColour) {
    SkTextBlobBuilder builder;
    *builder.allocRunPos(font, 1).glyphs = kA;
    const auto& second = builder.allocRunPos(font, 1);
    *second.glyphs = kO;
    second.pos[0] = 40;
    const sk_sp<SkTextBlob> blob = builder.make();
    EXPECT_FALSE(builder.make());
    SkPaint other;
    other.setTextSize(99);
    other.setFakeBoldText(true);
    Picture picture(kWidth, kHeight, kAlpha_8_SkColorType);
    picture.canvas->drawTextBlob(blob, 5, 30, other);
    EXPECT_EQ(picture.pixels(), drawn(blobOf({{kA, 5, 30}, {kO, 45, 30}}), 0, 0));
}

TEST_F(TextTest, WhatCannotBeDrawnLeavesThePicture) {
    const std::vector<uint8_t> nothing(kWidth * kHeight);
    for (const float far : {kNan, kInfinity, -kInfinity, 1e30f, -1e30f, 3e9f, -3e9f, 2.7e8f, -2.6e8f}) {
        EXPECT_EQ(drawn(blobOf({{kA, far, 0}}), 10, 30), nothing) << far;
        EXPECT_EQ(drawn(blobOf({{kA, 0, far}}), 10, 30), nothing) << far;
        EXPECT_EQ(drawn(blobOf({{kA, 0, 0}}), far, 30), nothing) << far;
    }
    EXPECT_EQ(drawn(nullptr, 10, 30), nothing);
    EXPECT_EQ(drawn(blobOf({{kA, 10, 30}}), 0, 0, 0x00FFFFFF), nothing);
    EXPECT_EQ(drawn(blobOf({{65535, 10, 30}}), 0, 0), nothing);
    font.setTypeface(nullptr);
    EXPECT_EQ(drawn(blobOf({{kA, 10, 30}}), 0, 0), nothing);

    SkTextBlobBuilder builder;
    EXPECT_EQ(builder.allocRunPos(font, 0).glyphs, nullptr);
    EXPECT_EQ(builder.allocRunPos(font, -1).pos, nullptr);
    font.setTextEncoding(SkPaint::kUTF16_TextEncoding);
    EXPECT_EQ(builder.allocRunPos(font, 3).glyphs, nullptr);
    EXPECT_FALSE(builder.make());
}

}  // namespace
