// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/PngReader.h"

#include <png.h>

#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <new>

#include "tools/zvtext/Failure.h"
#include "tools/zvtext/TextInput.h"

namespace zvtext {

namespace {

constexpr size_t kMaxPngBytes = size_t{512} << 20;

// One file in the reading. libpng ends its calls with a long jump, so each step that calls it is a function
// of its own without objects to destroy, and answers whether it got to its end.
class PngDecoder {
public:
    explicit PngDecoder(const std::string& bytes)
        : mRest(bytes.data()),
          mLeft(bytes.size()),
          mPng(png_create_read_struct(PNG_LIBPNG_VER_STRING, this, onError, onWarning)),
          mInfo(mPng != nullptr ? png_create_info_struct(mPng) : nullptr) {
        if (mInfo == nullptr) {
            png_destroy_read_struct(&mPng, nullptr, nullptr);
            throw std::bad_alloc();
        }
    }
    ~PngDecoder() { png_destroy_read_struct(&mPng, &mInfo, nullptr); }
    PngDecoder(const PngDecoder&) = delete;
    PngDecoder& operator=(const PngDecoder&) = delete;

    bool readHeader() {
        if (setjmp(png_jmpbuf(mPng)) != 0) return false;
        png_set_read_fn(mPng, this, onRead);
        png_set_user_limits(mPng, 0x7fffffff, 0x7fffffff);  // ours are checked by the caller
        // Texts, profiles and all else that the pixels do not need (tRNS they do): compressed ones could fill
        // the memory, a thousand of them 8 MB each by libpng's own limits.
        png_set_keep_unknown_chunks(mPng, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
        png_read_info(mPng, mInfo);
        return true;
    }

    uint32_t width() const { return png_get_image_width(mPng, mInfo); }
    uint32_t height() const { return png_get_image_height(mPng, mInfo); }

    // Into rows of width * 4 bytes: red, green, blue, alpha.
    bool readRows(uint8_t* rgba) {
        if (setjmp(png_jmpbuf(mPng)) != 0) return false;
        png_set_expand(mPng);  // palettes, depths below 8 and transparent colours
        png_set_scale_16(mPng);
        png_set_gray_to_rgb(mPng);
        png_set_add_alpha(mPng, 0xFF, PNG_FILLER_AFTER);
        const int passes = png_set_interlace_handling(mPng);
        png_read_update_info(mPng, mInfo);
        const size_t stride = size_t{width()} * 4;
        if (png_get_rowbytes(mPng, mInfo) != stride) png_error(mPng, "unexpected row size");
        for (int pass = 0; pass < passes; ++pass) {
            for (uint32_t y = 0; y < height(); ++y) png_read_row(mPng, rgba + y * stride, nullptr);
        }
        png_read_end(mPng, nullptr);
        return true;
    }

    const char* error() const { return mError; }

private:
    static void onRead(png_structp png, png_bytep target, size_t count) {
        auto* decoder = static_cast<PngDecoder*>(png_get_io_ptr(png));
        if (count > decoder->mLeft) png_error(png, "the file ends too early");
        std::memcpy(target, decoder->mRest, count);
        decoder->mRest += count;
        decoder->mLeft -= count;
    }

    static void onError(png_structp png, png_const_charp message) {
        auto* decoder = static_cast<PngDecoder*>(png_get_error_ptr(png));
        std::snprintf(decoder->mError, sizeof decoder->mError, "%s", message);
        png_longjmp(png, 1);
    }

    static void onWarning(png_structp, png_const_charp) {}

    const char* mRest;
    size_t mLeft;
    char mError[160] = "";
    png_structp mPng;
    png_infop mInfo;
};

}  // namespace

Picture readPng(const std::string& option, const std::string& path, const FolderScope& scope) {
    const std::string bytes = readFile(option, path == "-" ? "./-" : path, kMaxPngBytes, scope);
    const std::string name = option + ": '" + path + "'";
    PngDecoder decoder(bytes);
    if (!decoder.readHeader()) throw Failure(name + " is no PNG that can be read: " + decoder.error());
    const uint32_t width = decoder.width(), height = decoder.height();
    if (width > kMaxPngSide || height > kMaxPngSide || int64_t{width} * height > kMaxPngPixels) {
        throw Failure(name + " is " + std::to_string(width) + " x " + std::to_string(height) +
                      " pixels; at most " + std::to_string(kMaxPngSide) + " a side and " +
                      std::to_string(kMaxPngPixels) + " in all");
    }
    Picture picture;
    picture.width = static_cast<int>(width);
    picture.height = static_cast<int>(height);
    picture.pixels.resize(size_t{width} * height);
    auto* rgba = reinterpret_cast<uint8_t*>(picture.pixels.data());
    if (!decoder.readRows(rgba)) throw Failure(name + " is damaged: " + decoder.error());
    for (size_t i = 0; i < picture.pixels.size(); ++i) {
        const uint8_t* p = rgba + 4 * i;
        picture.pixels[i] = uint32_t{p[3]} << 24 | uint32_t{p[0]} << 16 | uint32_t{p[1]} << 8 | p[2];
    }
    return picture;
}

Zvex::ZvBitmap patternBitmap(const Picture& picture) {
    Zvex::ZvBitmap bitmap(static_cast<unsigned>(picture.width), static_cast<unsigned>(picture.height), 4);
    if (bitmap.pixels == nullptr) throw std::bad_alloc();
    uint8_t* target = bitmap.pixels;
    for (const uint32_t pixel : picture.pixels) {
        for (int shift = 24; shift >= 0; shift -= 8) *target++ = static_cast<uint8_t>(pixel >> shift);
    }
    return bitmap;
}

}  // namespace zvtext
