// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_DILATION_H_
#define ZVEX_EFFECT_KERNELS_DILATION_H_

#include <cstdint>
#include <memory>

namespace Zvex {

// One dilation of a coverage plane by a structuring element of coverage: a glyph grows by the element's
// shape, and its smooth edges stay smooth.
struct DilationParam {
    const uint8_t* source = nullptr;  // first pixel to read
    int64_t sourceStride = 0;         // bytes
    int columns = 0;                  // pixels to read from each row
    uint8_t inverted = 0;             // 0: dilates the coverage; 255: dilates 255 minus it

    uint8_t* target = nullptr;  // packed plane, only raised; must not overlap source
    int targetWidth = 0;        // pixels and bytes
    int targetHeight = 0;
    int originX = 0;  // place in target of the first source pixel; any int
    int originY = 0;

    const uint8_t* kernel = nullptr;  // kernelSize x kernelSize, centred on cell kernelSize / 2
    int kernelSize = 0;

    int rowBegin = 0, rowEnd = 0;  // half-open, rows of source counted from its first pixel

    // Pixels of coverage 0 beside those rows and columns that count as source pixels too.
    int left = 0, top = 0, right = 0, bottom = 0;
};

// For all source pixels of the rows and all cells that lie on a target byte when the kernel is centred on
// that source pixel: the byte becomes the largest of itself and max(0, value + cell - 255). Cells outside the
// target are left out. Needs a few bytes for each column and each row of the kernel; returns false and leaves
// the target unchanged if memory is short.
bool dilate(const DilationParam& param);

// The same, a few rows of the target at a time, for callers who need no whole plane. The kernel may hold any
// bytes. Each kernel row costs one or two reads for its longest run of 255 and one for each other cell, and
// only where there is coverage within its reach.
class Dilation {
public:
    static constexpr int kBatch = 8;

    // Allocates for all the rows; null if memory is short. Reads the kernel at once. The source must outlive
    // the dilation. `target` is not read.
    static std::unique_ptr<Dilation> make(const DilationParam& param);
    virtual ~Dilation() = default;

    // Half-open: the rows of the target that can be raised.
    int64_t firstRow() const { return mFirstRow; }
    int64_t endRow() const { return mEndRow; }

    // Raises up to kBatch rows from `row` on; `target` is the first pixel of the first one, `stride` the
    // bytes from row to row. Rows must come in order from firstRow() to endRow(), each at most once.
    virtual void raise(int64_t row, int rows, uint8_t* target, int64_t stride) = 0;

protected:
    int64_t mFirstRow = 0, mEndRow = 0;
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_DILATION_H_
