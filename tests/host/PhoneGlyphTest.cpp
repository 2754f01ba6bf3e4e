// SPDX-License-Identifier: Apache-2.0
#include <SkBitmap.h>
#include <SkCanvas.h>
#include <SkColorSpace.h>
#include <SkTextBlob.h>
#include <gtest/gtest.h>
#include <png.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "Lines.h"
#include "platform/host/PathRaster.h"
#include "platform/host/Rendering.h"

namespace {

struct StoredPicture {
    int width = 0, height = 0;
    std::vector<uint8_t> pixels;

    StoredPicture(const std::string& folder, const std::string& name, png_uint_32 format) {
        png_image image;
        std::memset(&image, 0, sizeof image);
        image.version = PNG_IMAGE_VERSION;
        const std::string path = ZVEX_HOST_DATA "/" + folder + "/" + name + ".png";
        if (png_image_begin_read_from_file(&image, path.c_str()) == 0) return;
        image.format = format;
        pixels.resize(PNG_IMAGE_SIZE(image));
        width = static_cast<int>(image.width);
        height = static_cast<int>(image.height);
        png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr);
    }
};

// The line, laid out and drawn as the library draws a line's coverage.
std::vector<uint8_t> drawnLine(const hosttest::Line& line, const StoredPicture& like) {
    std::vector<uint8_t> pixels(like.pixels.size());
    SkBitmap bitmap;
    bitmap.installPixels(
        SkImageInfo::Make(like.width, like.height, kAlpha_8_SkColorType, kPremul_SkAlphaType), pixels.data(),
        static_cast<size_t>(like.width));
    const minikin::Layout layout = line.layOut();
    SkTextBlobBuilder builder;
    for (int i = 0; i < static_cast<int>(layout.nGlyphs()); ++i) {
        SkPaint paint = line.paint;
        android::MinikinFontSkia::populateSkPaint(&paint, layout.getFont(i), layout.getFakery(i));
        paint.setTextEncoding(SkPaint::kGlyphID_TextEncoding);
        const auto& run = builder.allocRunPos(paint, 1);
        *run.glyphs = static_cast<SkGlyphID>(layout.getGlyphId(i));
        run.pos[0] = layout.getX(i);
        run.pos[1] = layout.getY(i);
    }
    minikin::MinikinRect bounds;
    layout.getBounds(&bounds);
    SkCanvas(bitmap).drawTextBlob(builder.make(), -bounds.mLeft, -bounds.mTop, line.paint);
    return pixels;
}

// Counts, of the pixels that either picture has, those that are near and equal.
struct Agreement {
    size_t ink = 0, near = 0, equal = 0;
    void add(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
        for (size_t i = 0; i < a.size(); ++i) {
            if (a[i] == 0 && b[i] == 0) continue;
            const int apart = std::abs(a[i] - b[i]);
            ++ink;
            near += apart <= 1;
            equal += apart == 0;
        }
    }
    double nearShare() const { return static_cast<double>(near) / static_cast<double>(ink); }
    double equalShare() const { return static_cast<double>(equal) / static_cast<double>(ink); }
};

// Paths, above 256 pixels, are nearest. The lines of Arabic at 24.5 and Devanagari at 12 pixels show whether
// control values are scaled exactly as in the phone's FreeType.
TEST(PhoneGlyphs, CoverageIsThePhones) {
    int pictures = 0;
    Agreement all;
    for (const hosttest::Line::Fields& fields : hosttest::casesOf("phone")) {
        const std::string name = fields.at("name");
        const bool path = fields.at("size") == "300";
        const StoredPicture expected("phone", name, PNG_FORMAT_GRAY);
        if (expected.pixels.empty()) continue;
        ++pictures;
        Agreement one;
        const std::vector<uint8_t> drawn = drawnLine(hosttest::Line(fields), expected);
        one.add(drawn, expected.pixels);
        EXPECT_GE(one.nearShare(), path ? 0.999 : 0.99) << name;
        EXPECT_GE(one.equalShare(), path ? 0.99 : 0.95) << name;
        all.add(drawn, expected.pixels);
    }
    EXPECT_GE(pictures, 24);
    EXPECT_GE(all.nearShare(), 0.997);
    EXPECT_GE(all.equalShare(), 0.997);
}

// The stored pictures are from when the port's glyphs were FreeType's (FontFaceTest.cpp) and their skew,
// boldness and strikes had been measured.
TEST(PlainGlyphs, CoverageStays) {
    host::setRendering(host::Rendering::Plain);
    for (const hosttest::Line::Fields& fields : hosttest::casesOf("plain")) {
        const StoredPicture expected("plain", fields.at("name"), PNG_FORMAT_GRAY);
        EXPECT_TRUE(drawnLine(hosttest::Line(fields), expected) == expected.pixels) << fields.at("name");
        EXPECT_FALSE(expected.pixels.empty()) << fields.at("name");
    }
    host::setRendering(host::Rendering::Phone);
}

// As damaged fonts have them at large sizes. The sanitizers see overflows; pixels outside the picture must
// cost nothing, or the flat edges take a minute.
TEST(PhoneGlyphs, FarPathsAreFilled) {
    constexpr float kFar = 1e30f, kNever = HUGE_VALF;
    const host::PathPoint whole[] = {{4, -kFar}, {kFar, kFar}, {-kFar, kFar}, {4, -kFar}};
    const host::PathPoint flat[] = {{-2e7f, 0}, {2e7f, 2000}, {-2e7f, 4000}, {-2e7f, 0}};
    const host::PathPoint endless[] = {{1, 2}, {kNever, 10}, {kNever, 3}, {5, 6}};
    for (const int flatOnes : {0, 1, 20000}) {
        host::PathRaster raster(8, 2000, 0, 0);
        raster.moveTo(whole[0]);
        for (int i = 1; i < 4; ++i) raster.add(whole + i, 1);
        for (int i = 0; i < flatOnes; ++i) {
            raster.moveTo(flat[0]);
            for (int j = 1; j < 4; ++j) raster.add(flat + j, 1);
        }
        std::vector<uint8_t> levels(8 * 2000);
        raster.fill(levels.data());
        EXPECT_EQ(std::count(levels.begin(), levels.end(), 255), 8 * 2000) << flatOnes;
    }
    host::PathRaster curves(8, 8, 0, 0);
    curves.moveTo(endless[0]);
    curves.add(endless + 1, 2);
    curves.add(endless + 1, 3);
    std::vector<uint8_t> levels(64);
    curves.fill(levels.data());
}

// A picture that shows a part of a path has the levels of the whole one there, except that the canvas rounds
// levels below 8 and above 247 in rows that it fills in strips.
TEST(PhoneGlyphs, PathsAreCutAtTheClip) {
    const auto face = fonts::open(fonts::Role::kLatinSmall);
    host::GlyphStyle style;
    for (const float size : {300.0f, 2000.0f}) {
        style.size = size;
        for (uint32_t glyph = 30; glyph < 130; ++glyph) {
            const auto whole = face->pathImage(glyph, style, 0.25f, 0, {-9999, -9999, 9999, 9999});
            const int right = whole.left + whole.width * 2 / 3, bottom = whole.top + whole.height * 2 / 3;
            const host::GlyphBox clip = {whole.left + whole.width / 3, whole.top + whole.height / 3, right,
                                         bottom};
            const auto part = face->pathImage(glyph, style, 0.25f, 0, clip);
            int most = 0;
            for (size_t i = 0; i < part.coverage.size(); ++i) {
                const int x = part.left - whole.left + static_cast<int>(i) % part.width;
                const int y = part.top - whole.top + static_cast<int>(i) / part.width;
                const auto at = static_cast<size_t>(y * whole.width + x);
                most = std::max(most, std::abs(whole.coverage[at] - part.coverage[i]));
            }
            EXPECT_LE(most, 8) << glyph << " at " << size;
        }
    }
}

// Unhinted text differs from Plain only by the table.
TEST(PhoneGlyphs, LevelsPassTheGammaTable) {
    const auto face = fonts::open(fonts::Role::kLatinSmall);
    host::GlyphStyle phone;
    phone.size = 90;
    phone.linear = true;
    host::GlyphStyle plain = phone;
    plain.rendering = host::Rendering::Plain;
    std::array<int, 256> table;
    table.fill(-1);
    for (uint32_t glyph = 30; glyph < 130; ++glyph) {
        const auto exact = face->image(glyph, plain, 0), shown = face->image(glyph, phone, 0);
        ASSERT_EQ(exact->coverage.size(), shown->coverage.size());
        for (size_t i = 0; i < exact->coverage.size(); ++i) table[exact->coverage[i]] = shown->coverage[i];
    }
    for (int level = 0; level < 256; ++level) {
        if (table[static_cast<size_t>(level)] < 0) continue;
        const double shown = std::round(255 * (1 - std::pow(1 - level / 255.0, 1 / 1.4)));
        EXPECT_NEAR(table[static_cast<size_t>(level)], shown, 1) << level;
    }
    EXPECT_EQ(table[64], 48);
    EXPECT_EQ(table[128], 101);
    EXPECT_EQ(table[192], 162);
}

// A straight picture of every alpha on six backgrounds, sRGB: red is the column, green 255 minus that.
TEST(PhoneGlyphs, CanvasesBlendInLinearLight) {
    std::vector<uint8_t> picture(256 * 256 * 4), target(picture.size());
    for (size_t i = 0; i < 65536; ++i) {
        const uint8_t bytes[4] = {static_cast<uint8_t>(i), static_cast<uint8_t>(255 - i % 256), 128,
                                  static_cast<uint8_t>(i / 256)};
        std::memcpy(&picture[4 * i], bytes, 4);
    }
    const SkImageInfo info =
        SkImageInfo::Make(256, 256, kRGBA_8888_SkColorType, kUnpremul_SkAlphaType, SkColorSpace::MakeSRGB());
    SkBitmap source, bitmap;
    source.installPixels(info, picture.data(), 1024);
    bitmap.installPixels(info, target.data(), 1024);
    for (const char* background : {"00000000", "01ffffff", "80ff8000", "ff000000", "ff2060c0", "ffffffff"}) {
        const StoredPicture expected("phone", std::string("compose-") + background, PNG_FORMAT_RGBA);
        ASSERT_EQ(expected.pixels.size(), target.size());
        SkCanvas canvas(bitmap);
        canvas.drawColor(static_cast<SkColor>(std::strtoul(background, nullptr, 16)), SkBlendMode::kSrc);
        canvas.drawBitmap(source, 0, 0);
        size_t equal = 0;
        for (size_t i = 0; i < target.size(); ++i) {
            ASSERT_LE(std::abs(target[i] - expected.pixels[i]), 1) << background << " byte " << i;
            equal += target[i] == expected.pixels[i];
        }
        const bool empty = std::strcmp(background, "00000000") == 0;
        EXPECT_GE(equal, empty ? target.size() : target.size() * 998 / 1000) << background;
    }
}

}  // namespace
