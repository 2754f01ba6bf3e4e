// SPDX-License-Identifier: Apache-2.0
#include "scene/Png.h"

#include <gtest/gtest.h>
#include <png.h>

#include <array>
#include <cstring>
#include <functional>
#include <random>

#include "tests/scene/PngBytes.h"
#include "tests/scene/Refusal.h"

namespace Zvex::scene {
namespace {

// The file read by libpng: bytes of red, green, blue and alpha.
std::vector<uint8_t> byLibpng(const std::string& bytes, size_t pixels) {
    std::vector<uint8_t> rgba(pixels * 4);
    std::string rest = bytes;
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_read_fn(png, &rest, [](png_structp p, png_bytep target, size_t count) {
        auto& left = *static_cast<std::string*>(png_get_io_ptr(p));
        std::memcpy(target, left.data(), count);
        left.erase(0, count);
    });
    png_read_info(png, info);
    png_set_expand(png);
    png_set_scale_16(png);
    png_set_gray_to_rgb(png);
    png_set_add_alpha(png, 0xFF, PNG_FILLER_AFTER);
    const int passes = png_set_interlace_handling(png);
    png_read_update_info(png, info);
    const size_t height = png_get_image_height(png, info);
    for (int pass = 0; pass < passes; ++pass) {
        for (size_t y = 0; y < height; ++y) png_read_row(png, &rgba[y * rgba.size() / height], nullptr);
    }
    png_destroy_read_struct(&png, &info, nullptr);
    return rgba;
}

TEST(Png, ReadsEveryKindAsLibpngDoes) {
    constexpr size_t kSide = 11;  // every Adam7 pass has pixels, rows of 1, 2 and 4 bits end within a byte
    const struct {
        int colorType, channels;
        std::vector<int> depths;
    } kKinds[] = {
        {0, 1, {1, 2, 4, 8, 16}}, {2, 3, {8, 16}}, {3, 1, {1, 2, 4, 8}}, {4, 2, {8, 16}}, {6, 4, {8, 16}}};
    std::mt19937 random(7);
    for (const auto& kind : kKinds) {
        for (const int depth : kind.depths) {
            for (const int way : {0, 1, 2, 3}) {
                const bool interlaced = way % 2 == 1, transparent = way >= 2 && kind.colorType < 4;
                std::string rows;
                for (const auto& [x, y, dx, dy] : {std::array<size_t, 4>{0, 0, 8, 8},
                                                   {4, 0, 8, 8},
                                                   {0, 4, 4, 8},
                                                   {2, 0, 4, 4},
                                                   {0, 2, 2, 4},
                                                   {1, 0, 2, 2},
                                                   {0, 1, 1, 2}}) {
                    const size_t width = interlaced ? (kSide - x + dx - 1) / dx : kSide;
                    const size_t height = interlaced ? (kSide - y + dy - 1) / dy : kSide;
                    for (size_t row = 0; row < height; ++row) {
                        rows += '\0';
                        const size_t bits = width * static_cast<size_t>(kind.channels * depth);
                        for (size_t i = 0; i < (bits + 7) / 8; ++i)
                            rows += static_cast<char>(random() % 4 * 85);
                    }
                    if (!interlaced) break;
                }
                std::string extras = chunk("gAMA", bigEndian(30000));  // not applied
                std::string palette, alphas("\0\x64", 2), color;
                for (int i = 0; i < 3 << depth && i < 768; ++i) palette += static_cast<char>(i * 5);
                for (int i = 0; i < (kind.colorType == 0 ? 1 : 3); ++i)
                    color +=
                        std::string("\0\1", 2).replace(0, depth == 16 ? 2 : 0, depth == 16 ? "\x55\x55" : "");
                if (kind.colorType == 3) extras += chunk("PLTE", palette);
                if (transparent) extras += chunk("tRNS", kind.colorType == 3 ? alphas : color);
                const std::string file = pngOf(kSide, kSide, depth, kind.colorType, interlaced, extras, rows);
                const Picture picture = decodePng("", file);
                const std::vector<uint8_t> expected = byLibpng(file, kSide * kSide);
                ASSERT_EQ(picture.pixels.size(), kSide * kSide);
                for (size_t i = 0; i < kSide * kSide; ++i) {
                    const uint8_t* p = &expected[4 * i];
                    ASSERT_EQ(picture.pixels[i],
                              uint32_t{p[3]} << 24 | uint32_t{p[0]} << 16 | p[1] << 8 | p[2])
                        << "colour type " << kind.colorType << ", " << depth << " bits, tRNS " << transparent
                        << ", interlaced " << interlaced << ", pixel " << i;
                }
            }
        }
    }
}

// Sizes of the files of a picture, which libpng reads back to its pixels, by compression.
std::array<size_t, 3> writtenSizes(const char* name, int width, int height,
                                   const std::function<uint32_t(int x, int y)>& pixelAt) {
    Picture picture{width, height, {}};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) picture.pixels.push_back(pixelAt(x, y));
    }
    std::array<size_t, 3> sizes = {};
    for (const auto compression : {Compression::Fast, Compression::Default, Compression::Small}) {
        const std::string file = encodePng(picture, 72, compression);
        EXPECT_EQ(byLibpng(file, picture.pixels.size()), pixelBytes(picture)) << name;
        sizes[static_cast<size_t>(compression)] = file.size();
    }
    EXPECT_LE(sizes[2], sizes[1]) << name;
    return sizes;
}

TEST(Png, FiltersPayWhereThePictureIsSmooth) {
    std::mt19937 random(19);
    const auto noise = [&](int, int) { return static_cast<uint32_t>(random()); };
    for (const auto& [width, height] : {std::pair{1, 1}, {1, 70}, {70, 1}, {33, 9}, {300, 250}})
        writtenSizes("noise", width, height, noise);
    const auto pixel = [](int alpha, int red, int green) {
        return static_cast<uint32_t>(alpha << 24 | (red & 255) << 16 | (green & 255) << 8);
    };
    // No pixel comes twice within reach, but neighbours tell what it is: without a filter a byte in two is
    // left.
    const auto slope = [&](int x, int y) {
        return pixel(255 - y / 8, x + x * x / 700 + y, 2 * y + x * y / 90);
    };
    const auto smooth = writtenSizes("slope", 300, 300, slope);
    EXPECT_LT(smooth[1] * 3, smooth[0] * 2) << "the trial found the filter";
    // The same pixels over and over, none like the next: differences would only hide that.
    std::vector<uint32_t> letters(64);
    for (uint32_t& letter : letters) letter = static_cast<uint32_t>(random());
    const auto repeated = [&](int x, int y) { return letters[static_cast<size_t>((x * 5 + y * 3) % 64)]; };
    const auto text = writtenSizes("letters", 300, 300, repeated);
    EXPECT_LT(text[1], 300u * 300u * 4 / 50);
    // Only differences to the left repeat.
    const auto left =
        writtenSizes("left", 251, 90, [&](int x, int y) { return pixel(255, x, x + y * y * 37); });
    EXPECT_LT(left[2], 2000u);
}

TEST(Png, RefusesWhatIsCutShortDamagedOrTooLarge) {
    const std::string whole = encodePng({2, 2, {1, 0x80FF00FF, 3, 0xFFFFFFFF}});
    EXPECT_EQ(decodePng("", whole).pixels, (std::vector<uint32_t>{1, 0x80FF00FF, 3, 0xFFFFFFFF}));
    for (size_t length = 0; length + 12 < whole.size(); ++length) {
        EXPECT_EQ(refusal([&] { decodePng("x", whole.substr(0, length)); }).rfind("x is ", 0), 0u) << length;
    }
    for (size_t i = 0; i < whole.size(); ++i) {  // no crash; most are caught by a checksum
        std::string damaged = whole;
        damaged[i] = static_cast<char>(damaged[i] ^ 0x20);
        refusal([&] { decodePng("", damaged); });
    }
    EXPECT_EQ(refusal([] { decodePng("x", pngOf(0x4001, 9, 8, 6, false, "", "")); }),
              "x is 16385 x 9 pixels; at most 16384 a side and 64000000 in all");
}

}  // namespace
}  // namespace Zvex::scene
