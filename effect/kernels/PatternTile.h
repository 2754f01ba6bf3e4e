// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_PATTERNTILE_H_
#define ZVEX_EFFECT_KERNELS_PATTERNTILE_H_

#include <cstdint>

#include "effect/kernels/Buffer.h"
#include "raster/ZvBitmap.h"

namespace Zvex {

// A picture, scaled and repeated over a box from its top-left on. The pattern repeats every (int)(scale *
// width) by (int)(scale * height) pixels. A pixel in between is mixed from two columns and two rows; the last
// ones mix with the first ones.
class PatternTile {
public:
    // Whether the pattern can be drawn: 4 bytes a pixel, a scale of at least 0.1, at least one pixel wide and
    // high.
    static bool isUsable(const ZvBitmap* pattern, float scale);

    // Prepares a box of that size. The pattern must be usable and must live until the last row. Its bytes are
    // alpha, red, green, blue, straight; the opacity scales its alpha. A pattern that repeats within
    // the box is kept as a tile of 4 bytes a pixel, of one row if only columns repeat. False if memory is
    // short.
    bool make(const ZvBitmap& pattern, float scale, float opacity, int width, int height);

    // Writes row y of the box, from column `first` on: words[i] = the pixel, premultiplied 0xAARRGGBB, where
    // coverage[i] is not 0, else 0. Columns and rows must be inside the box.
    void row(uint32_t* words, const uint8_t* coverage, int first, int count, int y);

private:
    void mix(uint32_t* words, int first, int count, int y) const;
    void takeFromTile(uint32_t* words, const uint8_t* coverage, int first, int count, int y);

    const ZvBitmap* mPattern = nullptr;
    float mScale = 0, mOpacity = 0;
    int mColumns = 0;                   // of the tile: the whole box, or a multiple of the period
    int mRowPeriod = 0;                 // rows of the box between two repeats
    bool mRepeats = false;              // whether any pixel of the tile is used twice
    bool mKeepsRows = false;            // else the tile has one row
    Buffer<int32_t> mFirsts, mSeconds;  // of each column, in the pattern
    Buffer<uint32_t> mWeights;          // of the second one
    Buffer<uint32_t> mTile;             // premultiplied
    Buffer<int> mTileRows;              // the row of the box that each row of the tile holds, or -1
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_PATTERNTILE_H_
