// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_FILTERS_DILATION_H_
#define ZVEX_EFFECT_FILTERS_DILATION_H_

#include <cstdint>

#include "effect/filters/Buffer.h"

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

// The same, a row of the target at a time, for callers who need no plane of it. The kernel may be any bytes;
// a row of it costs two reads for its longest run of 255 and one for each further cell, half of that where it
// repeats on the other side of the centre.
class Dilation {
public:
    // What a row of the target is raised by, for the kernels; rows of the source as they lie over it.
    //
    // A run of full cells in a row of the kernel, and in the row as far on the other side of the centre if
    // that is the same: the maximum over the run is that over two windows of a power of two, one at either
    // end.
    struct RunTap {
        const uint8_t *upperLeft, *upperRight, *lowerLeft, *lowerRight;
    };
    // A cell that is not full: what its source pixel lacks of 255. Its mirror images in the row and, as with
    // a run, in the other row come with it if they are as full.
    struct RampTap {
        const uint8_t *upperLeft, *upperRight, *lowerLeft, *lowerRight;
        uint8_t missing;
    };

    // Memory for all the rows; false when it is short. Reads the kernel and keeps the source, which must
    // last. `target` is not read.
    bool make(const DilationParam& param);

    // Half-open; the rows of the target that can be raised.
    int64_t firstRow() const { return firstRow_; }
    int64_t endRow() const { return endRow_; }

    // Raises up to BATCH rows from `row` on, `target` being the place of the first one's first pixel and
    // `stride` the bytes from row to row. From firstRow() to endRow(), each row once at most.
    static constexpr int BATCH = 8;
    void raise(int64_t row, int rows, uint8_t* target, int64_t stride);

private:
    // The same before the rows are known; all counted from the target's row and column.
    struct Run {
        int64_t upper, lower;
        int64_t left, right;  // first columns of the windows, which are 2^level wide
        int level;
    };
    struct Ramp {
        int64_t upper, lower;
        int64_t left, right;  // columns
        uint8_t missing;
    };

    bool readKernel();
    void readKernelRow(const uint8_t* row, int64_t upper, int64_t lower);
    bool makeRows();
    size_t slotOf(int64_t row) const;
    uint8_t* ringRow(int64_t row, int level) const;
    const uint8_t* rowOf(int64_t row, int level) const;
    bool hasInk(int64_t row) const;
    void enterRow(int64_t row);
    void layTaps(int64_t over, RunTap* runTaps, int64_t* runs, RampTap* rampTaps, int64_t* ramps) const;

    DilationParam param_;
    int64_t firstRow_ = 0, endRow_ = 0;
    int64_t firstColumn_ = 0, endColumn_ = 0;  // of the target, counted from the origin
    int64_t before_ = 0, after_ = 0;           // rows and columns of the kernel before and after its centre

    // The source with its sides.
    int64_t originX_ = 0;  // place in target of its first column
    int64_t columns_ = 0;
    int64_t rowBegin_ = 0, rowEnd_ = 0;

    Buffer<Run> runs_;
    Buffer<Ramp> ramps_;
    int64_t runCount_ = 0, rampCount_ = 0;

    // The source rows that the kernel reaches, in a ring; for each, as many as the levels, the maxima over
    // windows of 2^level pixels. `pad_` zeros stand before the first pixel.
    static constexpr int LEVELS = 32;
    Buffer<uint8_t> rows_;
    int64_t levelStart_[LEVELS] = {};  // of a level's ring within rows_
    int64_t levelStep_[LEVELS] = {};   // from row to row; 0 for a level that is only passed through
    int levelCount_ = 1;
    int64_t depth_ = 0, stride_ = 0, pad_ = 0;
    int64_t nextRow_ = 0;  // the first source row that has not been read

    Buffer<uint8_t> ink_;        // whether the rows of the ring have any
    Buffer<uint8_t> inkBlocks_;  // of the row that is read
    Buffer<int64_t> lastInk_;    // for each block of the target the last source row with ink in its reach
    Buffer<RunTap> runTaps_;
    Buffer<RampTap> rampTaps_;
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_FILTERS_DILATION_H_
