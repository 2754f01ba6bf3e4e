// SPDX-License-Identifier: Apache-2.0
#include "tests/reference/BlenderReference.h"

#include <functional>

namespace reference {

namespace {

int sat(int v) {
    return v > 255 ? 255 : v;
}

Pixel fromWord(uint32_t word) {
    return {static_cast<int>(word >> 16 & 255), static_cast<int>(word >> 8 & 255),
            static_cast<int>(word & 255), static_cast<int>(word >> 24)};
}

Pixel load(const uint8_t* bytes) {
    return {bytes[0], bytes[1], bytes[2], bytes[3]};
}

void store(uint8_t* bytes, Pixel p) {
    bytes[0] = static_cast<uint8_t>(p.red);
    bytes[1] = static_cast<uint8_t>(p.green);
    bytes[2] = static_cast<uint8_t>(p.blue);
    bytes[3] = static_cast<uint8_t>(p.alpha);
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

Pixel blend8(Pixel d, int s, uint32_t color, int mode) {
    if (s == 0) return d;
    const Pixel c = fromWord(color);
    const int a = sat(((c.alpha + 1) * s) >> 8);
    const auto k = [s](int channel) { return sat(((channel + 1) * s) >> 8); };
    const Pixel scaledColor = {k(c.red), k(c.green), k(c.blue), a};

    if (mode == 1) {
        if (a == 0) return d;
        if (a == 255) return {c.red, c.green, c.blue, 255};
        const int i = 255 - a;
        const auto mix = [=](int cd, int cc) { return sat((((cd + 1) * i) >> 8) + (((cc + 1) * s) >> 8)); };
        return {mix(d.red, c.red), mix(d.green, c.green), mix(d.blue, c.blue),
                sat(a + (((d.alpha + 1) * i) >> 8))};
    }
    if (mode == 2) {
        if (d.alpha == 255) return d;
        if (d.alpha == 0) return scaledColor;
        const int j = 255 - d.alpha;
        const auto mix = [=](int cd, int cc) { return sat(cd + ((j * (k(cc) + 1)) >> 8)); };
        return {mix(d.red, c.red), mix(d.green, c.green), mix(d.blue, c.blue),
                sat(d.alpha + (((a + 1) * j) >> 8))};
    }
    if (mode == 3) {
        if (d.alpha == 255) return d;
        if (d.alpha == 0) return c;
        const int j = 255 - d.alpha;
        const auto mix = [=](int cd, int cc) { return sat(cd + (((cc + 1) * j) >> 8)); };
        return {mix(d.red, c.red), mix(d.green, c.green), mix(d.blue, c.blue),
                sat(d.alpha + (((c.alpha + 1) * j) >> 8))};
    }
    if (mode == 7) {
        if (d.alpha == 0) return scaledColor;
        const int j = 255 - d.alpha;
        if (s == 255) {
            const auto mix = [=](int cd, int cc) { return sat(cd + (((cc + 1) * j) >> 8)); };
            return {mix(d.red, c.red), mix(d.green, c.green), mix(d.blue, c.blue),
                    sat(d.alpha + (((a + 1) * j) >> 8))};
        }
        if (d.alpha == 255) {
            const auto cut = [=](int cd) { return sat(((cd + 1) * s) >> 8); };
            return {cut(d.red), cut(d.green), cut(d.blue), s};
        }
        const auto mix = [=](int cd, int cc) { return sat((s * (cd + (((k(cc) + 1) * j) >> 8) + 1)) >> 8); };
        return {mix(d.red, c.red), mix(d.green, c.green), mix(d.blue, c.blue),
                sat(((d.alpha + (((a + 1) * j) >> 8) + 1) * s) >> 8)};
    }
    return d;
}

Pixel blend32(Pixel d, Pixel c, int mode) {
    if (mode == 1) {
        if (c.alpha == 255) return c;
        const int i = 255 - c.alpha;
        const auto mix = [=](int cd, int cs) { return sat((((cd + 1) * i) >> 8) + cs); };
        return {mix(d.red, c.red), mix(d.green, c.green), mix(d.blue, c.blue), mix(d.alpha, c.alpha)};
    }
    if (mode == 2) {
        if (d.alpha == 255 || c.alpha == 0) return d;
        if (d.alpha == 0) return c;
        const int j = 255 - d.alpha;
        const auto mix = [=](int cd, int cs) { return sat(cd + (((cs + 1) * j) >> 8)); };
        return {mix(d.red, c.red), mix(d.green, c.green), mix(d.blue, c.blue), mix(d.alpha, c.alpha)};
    }
    return d;
}

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
            store(at, {c.red, c.green, c.blue, sat(((c.alpha + 1) * s) >> 8)});
        } else {
            uint8_t* at = dst->pixels + row * dst->width + column;
            if (s > *at) *at = static_cast<uint8_t>(s);
        }
    });
}

}  // namespace reference
