// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/PngWriter.h"

#include <png.h>

#include <cmath>
#include <csetjmp>
#include <new>

#include "tools/zvtext/OutputFile.h"

namespace zvtext {

namespace {

void onPngError(png_structp png, png_const_charp) {
    png_longjmp(png, 1);
}

void onPngWarning(png_structp, png_const_charp) {}

// No exception crosses libpng.
void onPngWrite(png_structp png, png_bytep data, size_t size) {
    bool kept = true;
    try {
        static_cast<std::string*>(png_get_io_ptr(png))->append(reinterpret_cast<const char*>(data), size);
    } catch (const std::bad_alloc&) {
        kept = false;
    }
    if (!kept) png_error(png, "no memory");
}

// False where memory is short, which is all that can fail. No object with a destructor lives across the long
// jump.
bool encode(const Picture& picture, png_uint_32 pixelsPerMetre, unsigned char* row, std::string& bytes) {
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, onPngError, onPngWarning);
    if (png == nullptr) return false;
    png_infop info = png_create_info_struct(png);
    if (info == nullptr || setjmp(png_jmpbuf(png)) != 0) {
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_set_write_fn(png, &bytes, onPngWrite, nullptr);
    png_set_user_limits(png, 0x7fffffff, 0x7fffffff);
    const auto width = static_cast<png_uint_32>(picture.width);
    const auto height = static_cast<png_uint_32>(picture.height);
    png_set_IHDR(png, info, width, height, 8, PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_sRGB(png, info, PNG_sRGB_INTENT_PERCEPTUAL);
    png_set_pHYs(png, info, pixelsPerMetre, pixelsPerMetre, PNG_RESOLUTION_METER);
    png_write_info(png, info);
    for (png_uint_32 y = 0; y < height; ++y) {
        const uint32_t* source = picture.pixels.data() + static_cast<size_t>(y) * width;
        uint32_t any = 0;
        for (png_uint_32 x = 0; x < width; ++x) {
            any |= source[x];
            row[4 * x + 0] = static_cast<unsigned char>(source[x] >> 16);
            row[4 * x + 1] = static_cast<unsigned char>(source[x] >> 8);
            row[4 * x + 2] = static_cast<unsigned char>(source[x]);
            row[4 * x + 3] = static_cast<unsigned char>(source[x] >> 24);
        }
        // For a row of zeros libpng tries every filter and takes none: most of a picture's border goes
        // quicker without, to the same bytes. The first row says which buffers and which compression the
        // others get.
        if (y > 0) png_set_filter(png, PNG_FILTER_TYPE_BASE, any != 0 ? PNG_ALL_FILTERS : PNG_FILTER_NONE);
        png_write_row(png, row);
    }
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return true;
}

}  // namespace

std::string encodePng(const Picture& picture, double dpi) {
    std::string bytes;
    std::vector<unsigned char> row(static_cast<size_t>(picture.width) * 4);
    const auto pixelsPerMetre = static_cast<png_uint_32>(std::lround(dpi / 0.0254));
    if (!encode(picture, pixelsPerMetre, row.data(), bytes)) throw std::bad_alloc();
    return bytes;
}

void writePng(const Picture& picture, const std::string& path, const std::string& option) {
    writeFile(encodePng(picture), path, option);
}

}  // namespace zvtext
