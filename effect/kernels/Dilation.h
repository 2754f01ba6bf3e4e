// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_DILATION_H_
#define ZVEX_EFFECT_KERNELS_DILATION_H_

#include <cstdint>
#include <memory>

namespace Zvex {

// One dilation of a coverage plane by a structuring element of coverage: a glyph grows by the element's
// shape, its smooth edges kept smooth.
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

    // Pixels of coverage 0 on the sides of those rows and columns that count as source pixels too.
    int left = 0, top = 0, right = 0, bottom = 0;
};

// Each byte of target becomes the largest of itself and of max(0, value + cell - 255) over all source pixels
// of the rows and all cells that fall on it when the kernel is centred on the source pixel. Cells that fall
// outside target are left out. False, and the target untouched, when memory is short: a few bytes for each
// column and row of the kernel.
bool dilate(const DilationParam& param);

// The same, some rows of the target at a time, for callers who need no plane of it. The kernel may be any
// bytes. A row of it costs a read or two for its longest run of 255 and one for each further cell, and only
// where there is coverage within its reach.
class Dilation {
public:
    static constexpr int kBatch = 8;

    // With memory for all the rows; null when it is short. Reads the kernel and keeps the source, which must
    // last. `target` is not read.
    static std::unique_ptr<Dilation> make(const DilationParam& param);
    virtual ~Dilation() = default;

    // Half-open; the rows of the target that can be raised.
    int64_t firstRow() const { return mFirstRow; }
    int64_t endRow() const { return mEndRow; }

    // Raises up to kBatch rows from `row` on, `target` being the place of the first one's first pixel and
    // `stride` the bytes from row to row. From firstRow() to endRow(), each row once at most.
    virtual void raise(int64_t row, int rows, uint8_t* target, int64_t stride) = 0;

protected:
    int64_t mFirstRow = 0, mEndRow = 0;
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_DILATION_H_
