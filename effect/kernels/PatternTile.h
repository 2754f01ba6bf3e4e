// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_PATTERNTILE_H_
#define ZVEX_EFFECT_KERNELS_PATTERNTILE_H_

#include <cstdint>

#include "effect/kernels/Buffer.h"
#include "raster/ZvBitmap.h"

namespace Zvex {

// A picture, scaled and repeated over a box from its top-left on. The pattern repeats every (int)(scale *
// width) by (int)(scale * height) pixels; a pixel in between is mixed from two columns and two rows, the last
// ones with the first ones.
class PatternTile {
public:
    // Whether the pattern can be drawn: 4 bytes a pixel, a scale of 0.1 or more, at least one pixel wide and
    // high.
    static bool isUsable(const ZvBitmap* pattern, float scale);

    // For a box of that size; the pattern must be usable, and stay until the last row. Its bytes are alpha,
    // red, green, blue, straight; the opacity weights its alpha. Takes 4 bytes for each pixel that does not
    // repeat and lies in the box, and nothing for rows that do not. False when memory is short.
    bool make(const ZvBitmap& pattern, float scale, float opacity, int width, int height);

    // words[i] = the pixel at column `first` + i of row y of the box where coverage[i] is not 0, else 0:
    // 0xAARRGGBB, premultiplied. Not for columns or rows outside the box.
    void row(uint32_t* words, const uint8_t* coverage, int first, int count, int y);

private:
    void mix(uint32_t* words, int first, int count, int y) const;
    void takeFromTile(uint32_t* words, const uint8_t* coverage, int first, int count, int y);

    const ZvBitmap* mPattern = nullptr;
    float mScale = 0, mOpacity = 0;
    int mColumns = 0;                   // of the tile: all that the box has, or a multiple of what repeats
    int mRowPeriod = 0;                 // rows of the box between two repeats
    bool mRepeats = false;              // is any pixel of the tile taken twice?
    bool mKeepsRows = false;            // else the tile has one row
    Buffer<int32_t> mFirsts, mSeconds;  // of each column, in the pattern
    Buffer<uint32_t> mWeights;          // of the second one
    Buffer<uint32_t> mTile;             // premultiplied
    Buffer<int> mTileRows;              // which row of the box each of its rows holds, or -1
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_PATTERNTILE_H_
