// SPDX-License-Identifier: Apache-2.0
#include "tests/reference/BlenderReference.h"

#include <algorithm>
#include <array>
#include <functional>

namespace reference {

namespace {

using Pixel = std::array<int, 4>;  // red, green, blue, alpha

Pixel fromWord(uint32_t word) {
    return {static_cast<int>(word >> 16 & 255), static_cast<int>(word >> 8 & 255),
            static_cast<int>(word & 255), static_cast<int>(word >> 24)};
}

Pixel load(const uint8_t* bytes) {
    return {bytes[0], bytes[1], bytes[2], bytes[3]};
}

void store(uint8_t* bytes, const Pixel& p) {
    for (size_t i = 0; i < 4; ++i) bytes[i] = static_cast<uint8_t>(p[i]);
}

// factor of 255 times the byte; at most 255.
int scaled(int byte, int factor) {
    return std::min((byte + 1) * factor >> 8, 255);
}

// Each channel alike.
template <typename Mix>
Pixel mixed(const Pixel& d, const Pixel& c, Mix mix) {
    Pixel result;
    for (size_t i = 0; i < 4; ++i) result[i] = std::min(mix(d[i], c[i]), 255);
    return result;
}

// One pixel d under the coverage s in a colour. Modes 1, 2, 3, 7; any other gives the pixel back.
Pixel blend8(const Pixel& d, int s, uint32_t color, int mode) {
    const Pixel c = fromWord(color);
    const int a = scaled(c[3], s), j = 255 - d[3];
    if (s == 0 || (mode == 1 && a == 0) || ((mode == 2 || mode == 3) && j == 0)) return d;
    if (mode == 1 && a == 255) return c;
    if (mode == 3 && j == 255) return c;
    if (mode == 1) return mixed(d, c, [=](int b, int f) { return scaled(b, 255 - a) + scaled(f, s); });
    if (mode == 2)
        return mixed(d, c,
                     [=](int b, int f) { return j == 255 ? scaled(f, s) : b + scaled(scaled(f, s), j); });
    if (mode == 3 || (mode == 7 && s == 255 && j != 255))
        return mixed(d, c, [=](int b, int f) { return b + scaled(f, j); });
    if (mode != 7) return d;
    if (j == 255) return mixed(d, c, [=](int, int f) { return scaled(f, s); });
    if (j == 0) return mixed(d, c, [=](int b, int) { return scaled(b, s); });
    return mixed(d, c, [=](int b, int f) { return scaled(b + scaled(scaled(f, s), j), s); });
}

// One pixel d under a premultiplied one. Modes 1 and 2; any other gives the pixel back.
Pixel blend32(const Pixel& d, const Pixel& c, int mode) {
    if (mode == 1)
        return c[3] == 255 ? c : mixed(d, c, [=](int b, int f) { return scaled(b, 255 - c[3]) + f; });
    if (mode != 2 || d[3] == 255 || c[3] == 0) return d;
    return d[3] == 0 ? c : mixed(d, c, [=](int b, int f) { return b + scaled(f, 255 - d[3]); });
}

// Every pixel of dst that the source covers, top to bottom and left to right.
void forCovered(int x, int y, const Zvex::ZvBitmap* dst, int w, int h,
                const std::function<void(int64_t column, int64_t row)>& visit) {
    if (dst == nullptr || dst->pixels == nullptr) return;
    for (int64_t row = 0; row < dst->height; ++row) {
        for (int64_t column = 0; column < dst->width; ++column) {
            if (row < y || row >= int64_t{y} + h || column < x || column >= int64_t{x} + w) continue;
            visit(column, row);
        }
    }
}

}  // namespace

void drawBitmapBlend8(int x, int y, const Zvex::ZvBitmap* dst, const uint8_t* src, int w, int h,
                      int srcStride, uint32_t color, int mode) {
    if (src == nullptr) return;
    forCovered(x, y, dst, w, h, [=](int64_t column, int64_t row) {
        uint8_t* at = dst->pixels + (row * dst->width + column) * 4;
        store(at, blend8(load(at), src[(row - y) * srcStride + (column - x)], color, mode));
    });
}

void drawBitmapBlend32(int x, int y, const Zvex::ZvBitmap* dst, const uint32_t* src, int w, int h,
                       int srcStride, int mode) {
    if (src == nullptr) return;
    forCovered(x, y, dst, w, h, [=](int64_t column, int64_t row) {
        uint8_t* at = dst->pixels + (row * dst->width + column) * 4;
        store(at, blend32(load(at), fromWord(src[(row - y) * srcStride + (column - x)]), mode));
    });
}

void drawBitmapBlend32(int x, int y, const Zvex::ZvBitmap* dst, const uint8_t* src, int w, int h,
                       int srcStride, int /*ignored*/, int order) {
    if (src == nullptr) return;
    bool stopped = false;
    forCovered(x, y, dst, w, h, [&, order](int64_t column, int64_t row) {
        uint8_t* at = dst->pixels + (row * dst->width + column) * 4;
        if (at[3] == 255 || stopped) return;
        // Bytes left of dst are skipped as bytes; from there on the row advances by pixels.
        const int64_t skipped = x < 0 ? -int64_t{x} : 0;
        const int64_t firstColumn = x < 0 ? 0 : x;
        const uint8_t* from = src + (row - y) * srcStride + skipped + 4 * (column - firstColumn);
        if (order == 1) {
            store(at, blend32(load(at), {from[0], from[1], from[2], from[3]}, 2));
        } else if (order == 0) {
            store(at, blend32(load(at), {from[1], from[2], from[3], from[0]}, 2));
        } else {
            stopped = true;
        }
    });
}

void drawBitmap(int x, int y, const Zvex::ZvBitmap* dst, const uint8_t* src, int w, int h, uint32_t color) {
    if (src == nullptr) return;
    const Pixel c = fromWord(color);
    forCovered(x, y, dst, w, h, [=](int64_t column, int64_t row) {
        const int s = src[(row - y) * w + (column - x)];
        if (dst->bytesPerPixel == 4) {
            const int64_t firstColumn = x < 0 ? 0 : x;
            uint8_t* at = dst->pixels + (row * dst->width + firstColumn) + 4 * (column - firstColumn);
            store(at, {c[0], c[1], c[2], scaled(c[3], s)});
        } else {
            uint8_t* at = dst->pixels + row * dst->width + column;
            if (s > *at) *at = static_cast<uint8_t>(s);
        }
    });
}

}  // namespace reference
