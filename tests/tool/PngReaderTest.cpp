// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/PngReader.h"

#include <gtest/gtest.h>
#include <png.h>
#include <unistd.h>
#include <zlib.h>

#include <fstream>
#include <vector>

#include "tests/tool/Refusal.h"

namespace zvtext {
namespace {

// 11 x 9: every Adam7 pass has pixels, and rows of 1, 2 and 4 bits end within a byte.
constexpr uint32_t kWidth = 11, kHeight = 9;

struct Kind {
    int colorType, depth;
    bool transparent;  // a tRNS chunk
};

// The sample of `channel` at (x, y), in the file's depth; the first pixel is the one that tRNS names.
unsigned sample(uint32_t x, uint32_t y, int channel, int depth) {
    return (x * 7919 + y * 104729 + static_cast<unsigned>(channel) * 37813 + 5) * 2654435761u >> (32 - depth);
}

int channelsOf(int colorType) {
    return colorType == PNG_COLOR_TYPE_RGB          ? 3
           : colorType == PNG_COLOR_TYPE_RGB_ALPHA  ? 4
           : colorType == PNG_COLOR_TYPE_GRAY_ALPHA ? 2
                                                    : 1;
}

png_color paletteEntry(unsigned index) {
    return {static_cast<png_byte>(index * 5), static_cast<png_byte>(255 - index),
            static_cast<png_byte>(index)};
}

// A file of that kind, by the writer's low-level interface; the samples go in as they are.
std::string encode(const Kind& kind, bool interlaced) {
    std::string bytes;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &bytes,
        [](png_structp p, png_bytep data, size_t size) {
            static_cast<std::string*>(png_get_io_ptr(p))->append(reinterpret_cast<char*>(data), size);
        },
        nullptr);
    png_set_IHDR(png, info, kWidth, kHeight, kind.depth, kind.colorType,
                 interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    if (kind.colorType == PNG_COLOR_TYPE_PALETTE) {
        std::vector<png_color> palette;
        for (unsigned i = 0; i < 1u << kind.depth; ++i) palette.push_back(paletteEntry(i));
        png_set_PLTE(png, info, palette.data(), static_cast<int>(palette.size()));
    }
    if (kind.transparent) {
        png_byte alphas[2] = {0, 100};  // of palette entries 0 and 1
        png_color_16 color = {};
        color.red = static_cast<png_uint_16>(sample(0, 0, 0, kind.depth));
        color.green = static_cast<png_uint_16>(sample(0, 0, 1, kind.depth));
        color.blue = static_cast<png_uint_16>(sample(0, 0, 2, kind.depth));
        color.gray = color.red;
        png_set_tRNS(png, info, alphas, 2, &color);
    }
    const int channels = channelsOf(kind.colorType);
    std::vector<std::vector<png_byte>> rows(kHeight, std::vector<png_byte>(kWidth * 8));
    std::vector<png_bytep> pointers;
    for (uint32_t y = 0; y < kHeight; ++y) {
        size_t bit = 0;
        for (uint32_t x = 0; x < kWidth; ++x) {
            for (int c = 0; c < channels; ++c) {
                const unsigned value = sample(x, y, c, kind.depth);
                for (int b = kind.depth - 1; b >= 0; --b, ++bit) {
                    rows[y][bit / 8] |= static_cast<png_byte>((value >> b & 1) << (7 - bit % 8));
                }
            }
        }
        pointers.push_back(rows[y].data());
    }
    png_write_info(png, info);
    png_write_image(png, pointers.data());
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return bytes;
}

// What a pixel of such a file is: samples widened or narrowed to the nearest byte.
uint32_t expectedPixel(const Kind& kind, uint32_t x, uint32_t y) {
    const unsigned top = (1u << kind.depth) - 1;
    const auto byte = [&](int channel) { return (sample(x, y, channel, kind.depth) * 255 + top / 2) / top; };
    const auto pack = [](uint32_t a, uint32_t r, uint32_t g, uint32_t b) {
        return a << 24 | r << 16 | g << 8 | b;
    };
    const auto named = [&](int channels) {
        for (int c = 0; c < channels; ++c) {
            if (sample(x, y, c, kind.depth) != sample(0, 0, c, kind.depth)) return false;
        }
        return kind.transparent;
    };
    switch (kind.colorType) {
        case PNG_COLOR_TYPE_PALETTE: {
            const unsigned index = sample(x, y, 0, kind.depth);
            const png_color color = paletteEntry(index);
            const uint32_t alpha = kind.transparent && index < 2 ? (index == 0 ? 0u : 100u) : 255u;
            return pack(alpha, color.red, color.green, color.blue);
        }
        case PNG_COLOR_TYPE_GRAY:
            return pack(named(1) ? 0 : 255, byte(0), byte(0), byte(0));
        case PNG_COLOR_TYPE_GRAY_ALPHA:
            return pack(byte(1), byte(0), byte(0), byte(0));
        case PNG_COLOR_TYPE_RGB:
            return pack(named(3) ? 0 : 255, byte(0), byte(1), byte(2));
        default:
            return pack(byte(3), byte(0), byte(1), byte(2));
    }
}

class PngReader : public testing::Test {
protected:
    ~PngReader() override { unlink(mPath.c_str()); }

    Picture read(const std::string& bytes) const {
        std::ofstream(mPath, std::ios::binary) << bytes;
        return readPng("--pattern", mPath);
    }

    const std::string mPath = testing::TempDir() + "png-reader-" + std::to_string(getpid()) + ".png";
};

TEST_F(PngReader, ReadsEveryKind) {
    std::vector<Kind> kinds;
    for (const bool transparent : {false, true}) {
        for (const int depth : {1, 2, 4, 8}) kinds.push_back({PNG_COLOR_TYPE_PALETTE, depth, transparent});
        for (const int depth : {1, 2, 4, 8, 16}) kinds.push_back({PNG_COLOR_TYPE_GRAY, depth, transparent});
        for (const int depth : {8, 16}) kinds.push_back({PNG_COLOR_TYPE_RGB, depth, transparent});
    }
    for (const int depth : {8, 16}) {
        kinds.push_back({PNG_COLOR_TYPE_GRAY_ALPHA, depth, false});
        kinds.push_back({PNG_COLOR_TYPE_RGB_ALPHA, depth, false});
    }
    for (const Kind& kind : kinds) {
        for (const bool interlaced : {false, true}) {
            const Picture picture = read(encode(kind, interlaced));
            ASSERT_EQ(picture.width, static_cast<int>(kWidth));
            ASSERT_EQ(picture.pixels.size(), kWidth * kHeight);
            for (uint32_t i = 0; i < picture.pixels.size(); ++i) {
                ASSERT_EQ(picture.pixels[i], expectedPixel(kind, i % kWidth, i / kWidth))
                    << "colour type " << kind.colorType << ", " << kind.depth << " bits, tRNS "
                    << kind.transparent << ", interlaced " << interlaced << ", pixel " << i;
            }
        }
    }
}

TEST_F(PngReader, RefusesWhatIsCutShortDamagedOrTooLarge) {
    const std::string whole = encode({PNG_COLOR_TYPE_RGB_ALPHA, 8, false}, true);
    const std::string name = "--pattern: '" + mPath + "' is ";
    for (size_t length = 0; length < whole.size(); ++length) {
        EXPECT_EQ(refusal([&] { read(whole.substr(0, length)); }).rfind(name, 0), 0u) << length;
    }
    for (size_t i = 0; i < whole.size(); ++i) {  // no crash; most are caught by a checksum
        std::string damaged = whole;
        damaged[i] = static_cast<char>(damaged[i] ^ 0x20);
        refusal([&] { read(damaged); });
    }
    const std::string limits = " pixels; at most 16384 a side and 64000000 in all";
    const std::vector<uint32_t> widths = {0x4001, 0x40000000};
    for (const uint32_t width : widths) {
        std::string wide = whole;  // that width in the header, its checksum made right
        for (size_t i = 0; i < 4; ++i) wide[16 + i] = static_cast<char>(width >> (24 - 8 * i));
        const uLong crc = crc32(0, reinterpret_cast<const Bytef*>(wide.data()) + 12, 17);
        for (size_t i = 0; i < 4; ++i) wide[29 + i] = static_cast<char>(crc >> (24 - 8 * i));
        EXPECT_EQ(refusal([&] { read(wide); }), name + std::to_string(width) + " x 9" + limits);
    }
    EXPECT_EQ(refusal([] { readPng("--pattern", "/no/such.png"); }).rfind("--pattern: cannot read", 0), 0u);
}

TEST(PatternBitmap, HoldsAlphaRedGreenBlueStraight) {
    const Zvex::ZvBitmap bitmap = patternBitmap({2, 1, {0x40102030, 0xFFFEFDFC}});
    const std::vector<uint8_t> expected = {0x40, 0x10, 0x20, 0x30, 0xFF, 0xFE, 0xFD, 0xFC};
    EXPECT_EQ(std::vector<uint8_t>(bitmap.pixels, bitmap.pixels + bitmap.byteCount()), expected);
}

}  // namespace
}  // namespace zvtext
