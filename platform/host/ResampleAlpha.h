// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_RESAMPLEALPHA_H_
#define ZVEX_PLATFORM_HOST_RESAMPLEALPHA_H_

#include <cstddef>
#include <cstdint>

namespace host {

// Scales and slants 8-bit alpha. A target pixel is the mean of the source under a box. The box is as wide and
// high as the pixel is in the source, but at least one source pixel: this averages by area when shrinking and
// blends linearly when enlarging. Outside the source alpha is 0.
//
// All arithmetic is on integers: positions have 16 fraction bits, the weights of a box add up to exactly
// 65536, the vertical mean keeps 8 fraction bits, and the horizontal one is rounded to the nearest, halves
// up.
struct ResampleParam {
    const uint8_t* source;  // the alpha of the top left pixel
    int sourceWidth, sourceHeight;
    ptrdiff_t sourceStride;  // bytes from row to row, may be negative
    int sourceStep;          // bytes from pixel to pixel
    uint8_t* target;         // rows of targetWidth bytes; all are written
    int targetWidth, targetHeight;
    // The centre of target pixel (i, j) is at source position (x + i * xStep + j * xShear, y + j * yStep),
    // where source pixel k spans k to k + 1; 16 fraction bits. xStep may be negative, yStep is positive.
    // Steps are below 2^47, positions below 2^62.
    int64_t x, xStep, xShear;
    int64_t y, yStep;
};

void resampleAlpha(const ResampleParam& p);

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_RESAMPLEALPHA_H_
