// SPDX-License-Identifier: Apache-2.0
#include "raster/BlendRows.h"

#include <algorithm>

namespace Zvex::BlendRows {

namespace {

struct Channels {
    uint32_t red, green, blue, alpha;  // each 0..255
};

Channels channelsOf(uint32_t word) {
    return {(word >> 16) & 0xFF, (word >> 8) & 0xFF, word & 0xFF, word >> 24};
}

// value * weight in the library's stead for a division by 255: at most `weight`, for a value up to 255, and
// `value` itself for a weight of 255. It is not that division: scaled(127, 2) is 1 although 127 * 2 / 255 is
// less, and scaled(3, 63) is 0 although 3 * 63 / 255 is nearer to 1.
uint32_t scaled(uint32_t value, uint32_t weight) {
    return ((value + 1) * weight) >> 8;
}

// Channels of a premultiplied colour never exceed its alpha, and then no sum below does; but targets and
// sources need not keep that promise, so colour sums saturate. Alpha sums cannot: A + scaled(B, 255 - A) <=
// 255.
uint8_t saturated(uint32_t sum) {
    return static_cast<uint8_t>(std::min<uint32_t>(sum, 255));
}

void store(uint8_t* pixel, const Channels& c) {
    pixel[0] = static_cast<uint8_t>(c.red);
    pixel[1] = static_cast<uint8_t>(c.green);
    pixel[2] = static_cast<uint8_t>(c.blue);
    pixel[3] = static_cast<uint8_t>(c.alpha);
}

// The colour with every channel scaled by the coverage.
Channels covered(const Channels& color, uint32_t coverage) {
    return {scaled(color.red, coverage), scaled(color.green, coverage), scaled(color.blue, coverage),
            scaled(color.alpha, coverage)};
}

// Source over pixel: the pixel keeps what the source's alpha leaves of it.
void over(uint8_t* pixel, const Channels& source) {
    const uint32_t left = 255 - source.alpha;
    pixel[0] = saturated(scaled(pixel[0], left) + source.red);
    pixel[1] = saturated(scaled(pixel[1], left) + source.green);
    pixel[2] = saturated(scaled(pixel[2], left) + source.blue);
    pixel[3] = saturated(scaled(pixel[3], left) + source.alpha);
}

// Source under pixel, which is neither empty nor opaque: the source shows through what the pixel's alpha
// leaves.
void under(uint8_t* pixel, const Channels& source) {
    const uint32_t left = 255 - pixel[3];
    pixel[0] = saturated(pixel[0] + scaled(source.red, left));
    pixel[1] = saturated(pixel[1] + scaled(source.green, left));
    pixel[2] = saturated(pixel[2] + scaled(source.blue, left));
    pixel[3] = saturated(pixel[3] + scaled(source.alpha, left));
}

void dstOverPixel(uint8_t* pixel, const Channels& source) {
    if (pixel[3] == 0) {
        store(pixel, source);
    } else {
        under(pixel, source);
    }
}

}  // namespace

void srcOver8To32(uint8_t* target, const uint8_t* coverage, size_t count, uint32_t color) {
    const Channels full = channelsOf(color);
    for (size_t i = 0; i < count; ++i, target += 4) {
        const uint32_t alpha = scaled(full.alpha, coverage[i]);
        if (alpha == 0) continue;  // coverage 0, or too little of both to count
        if (alpha == 255) {
            store(target, full);
        } else {
            over(target, covered(full, coverage[i]));
        }
    }
}

void dstOver8To32(uint8_t* target, const uint8_t* coverage, size_t count, uint32_t color) {
    const Channels full = channelsOf(color);
    for (size_t i = 0; i < count; ++i, target += 4) {
        if (coverage[i] == 0 || target[3] == 255) continue;
        dstOverPixel(target, covered(full, coverage[i]));
    }
}

void dstOver8To32NSA(uint8_t* target, const uint8_t* coverage, size_t count, uint32_t color) {
    const Channels full = channelsOf(color);
    for (size_t i = 0; i < count; ++i, target += 4) {
        if (coverage[i] == 0 || target[3] == 255) continue;
        dstOverPixel(target, full);
    }
}

void dstOverSA8To32(uint8_t* target, const uint8_t* coverage, size_t count, uint32_t color) {
    const Channels full = channelsOf(color);
    for (size_t i = 0; i < count; ++i, target += 4) {
        const uint32_t s = coverage[i];
        if (s == 0) continue;
        const Channels source = covered(full, s);
        if (target[3] == 0) {
            store(target, source);
            continue;
        }
        // The sum is scaled before it saturates. At full coverage that is destination-over itself, and of an
        // opaque pixel, which lets nothing of the source through, it makes the pixel cut down to the
        // coverage.
        const uint32_t left = 255 - target[3];
        target[0] = saturated(scaled(target[0] + scaled(source.red, left), s));
        target[1] = saturated(scaled(target[1] + scaled(source.green, left), s));
        target[2] = saturated(scaled(target[2] + scaled(source.blue, left), s));
        target[3] = saturated(scaled(target[3] + scaled(source.alpha, left), s));
    }
}

void srcOver32To32(uint8_t* target, const uint32_t* source, size_t count) {
    for (size_t i = 0; i < count; ++i, target += 4) {
        const Channels pixel = channelsOf(source[i]);
        if (pixel.alpha == 255) {
            store(target, pixel);
        } else {
            over(target, pixel);
        }
    }
}

void dstOver32To32(uint8_t* target, const uint32_t* source, size_t count) {
    for (size_t i = 0; i < count; ++i, target += 4) {
        const Channels pixel = channelsOf(source[i]);
        if (target[3] == 255 || pixel.alpha == 0) continue;
        dstOverPixel(target, pixel);
    }
}

void dstOverRGBA(uint8_t* target, const uint8_t* source, size_t count) {
    for (size_t i = 0; i < count; ++i, target += 4, source += 4) {
        if (target[3] == 255 || source[3] == 0) continue;
        dstOverPixel(target, {source[0], source[1], source[2], source[3]});
    }
}

void dstOverARGB(uint8_t* target, const uint8_t* source, size_t count) {
    for (size_t i = 0; i < count; ++i, target += 4, source += 4) {
        if (target[3] == 255 || source[0] == 0) continue;
        dstOverPixel(target, {source[1], source[2], source[3], source[0]});
    }
}

void fill8To32(uint8_t* target, const uint8_t* coverage, size_t count, uint32_t color) {
    const Channels full = channelsOf(color);
    for (size_t i = 0; i < count; ++i, target += 4) {
        store(target, {full.red, full.green, full.blue, scaled(full.alpha, coverage[i])});
    }
}

void max8To8(uint8_t* target, const uint8_t* coverage, size_t count) {
    for (size_t i = 0; i < count; ++i) target[i] = std::max(target[i], coverage[i]);
}

}  // namespace Zvex::BlendRows
