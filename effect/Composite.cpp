// SPDX-License-Identifier: Apache-2.0
//
// Straight loops over the picture with the common pixels (empty, opaque, wholly inside or outside the glyphs)
// taken first. The definitions, pixel by pixel, are tests/reference/CompositeReference.h.

#include "effect/Composite.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

#include "raster/ZvBitmap.h"

namespace Zvex {

namespace {

bool isColor(const ZvBitmap* bitmap) {
    return bitmap != nullptr && bitmap->pixels != nullptr && bitmap->bytesPerPixel == 4;
}

// floor(256 * k / d) for the bytes k and d >= 1, as (k * RECIPROCALS[d]) >> 16.
// RECIPROCALS[d] is 2^24 / d rounded up, too large by e / d with 0 <= e < d. The product then exceeds
// 2^16 * (256 * k / d) by k * e / d < 2^16 / d, less than lifts a quotient to the next whole number, and it
// stays below 2^32: 255 * 254 < 2^16, 255 * 2^24 < 2^32.
constexpr std::array<uint32_t, 256> makeReciprocals() {
    std::array<uint32_t, 256> table{};
    for (uint32_t d = 1; d < 256; ++d) table[d] = ((1u << 24) + d - 1) / d;
    return table;
}
constexpr std::array<uint32_t, 256> RECIPROCALS = makeReciprocals();

}  // namespace

void mergeBackLayer(ZvBitmap* picture, const ZvBitmap* back, const ZvBitmap* mask) {
    if (!isColor(picture) || !isColor(back) || mask == nullptr || mask->pixels == nullptr) return;
    if (mask->bytesPerPixel != 1) return;
    const size_t width = std::min({picture->width, back->width, mask->width});
    const size_t height = std::min({picture->height, back->height, mask->height});
    for (size_t y = 0; y < height; ++y) {
        uint8_t* front = picture->pixels + y * picture->width * 4;
        const uint8_t* behind = back->pixels + y * back->width * 4;
        const uint8_t* coverage = mask->pixels + y * mask->width;
        for (size_t x = 0; x < width; ++x, front += 4, behind += 4) {
            // The two weights add up to 255, so the sum of the halves is at most 255: no clamp. At full
            // coverage and at none the formula gives the one byte exactly.
            const unsigned m = coverage[x];
            if (m == 255) continue;
            if (m == 0) {
                std::memcpy(front, behind, 4);
                continue;
            }
            for (int i = 0; i < 4; ++i) {
                front[i] =
                    static_cast<uint8_t>(((behind[i] + 1u) * (255 - m) >> 8) + ((front[i] + 1u) * m >> 8));
            }
        }
    }
}

void finishPicture(ZvBitmap* picture, uint8_t textAlpha) {
    if (!isColor(picture)) return;
    const size_t count = size_t{picture->width} * picture->height;
    uint8_t* pixel = picture->pixels;
    for (size_t n = 0; n < count; ++n, pixel += 4) {
        const unsigned alpha = (pixel[3] + 1u) * textAlpha >> 8;  // at most 256 * 255 >> 8, a byte
        if (alpha == 0) {
            std::memset(pixel, 0, 4);
            continue;
        }
        if (alpha == 255) continue;  // only opaque under 255, where every colour byte comes back as it was
        pixel[3] = static_cast<uint8_t>(alpha);
        // The scaled colour's low byte is dropped before the division, so that it divides 256 * k.
        for (int i = 0; i < 3; ++i) {
            const unsigned k = (pixel[i] + 1u) * textAlpha >> 8;
            pixel[i] = static_cast<uint8_t>(std::min(k * RECIPROCALS[alpha] >> 16, 255u));
        }
    }
}

}  // namespace Zvex
