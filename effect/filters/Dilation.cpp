// SPDX-License-Identifier: Apache-2.0
//
// A maximum over kernel rows, 16 or 32 pixels at once. A row of a disc is a run of full cells and a few ramp
// cells, each of which gives its pixel's value less what the cell lacks of 255:
//
//     0 0 r F F F F F F F r 0 0
//           |<----->|              the run is two windows of 2^level pixels
//               |<----->|
//
// The maxima over windows of 2, 4, 8 ... pixels come from one another, once for every source row. The kernel
// rows as far above as below the centre are equal: the source rows under them are joined first, and likewise
// the cells to the left and to the right. Blocks of the target that no coverage reaches are skipped, those
// that have become full are left: most of the work is done where the outline runs. Sharing the windows is an
// idea of van Herk (1992) and of Gil and Werman (1993), here with powers of two. The definition is
// tests/reference/StrokeReference.h.

#include "effect/filters/Dilation.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>

#include "raster/CpuTarget.h"

namespace Zvex {

namespace {

constexpr int64_t BLOCK = 32;       // pixels that are skipped together
constexpr int64_t VECTOR_PAD = 64;  // readable bytes after the last pixel a row can be asked for

using RunTap = Dilation::RunTap;
using RampTap = Dilation::RampTap;

// What is laid over a row of the target.
struct Taps {
    const RunTap* runs;
    const RampTap* ramps;
    int64_t runCount, rampCount;
};

#define ZVEX_KERNELS "effect/filters/DilationKernels.inc"
#include "raster/ForEachTarget.h"

int64_t roundUp(int64_t value) {
    return (value + BLOCK - 1) / BLOCK * BLOCK;
}

struct CellRange {
    int64_t begin, end;
};

// Of full cells.
CellRange longestRun(const uint8_t* row, int64_t size) {
    CellRange longest = {0, 0};
    for (int64_t i = 0; i < size; ++i) {
        const int64_t begin = i;
        while (i < size && row[i] == 255) ++i;
        if (i - begin > longest.end - longest.begin) longest = {begin, i};
    }
    return longest;
}

bool isRamp(const uint8_t* row, int64_t i, const CellRange& run) {
    return row[i] != 0 && (i < run.begin || i >= run.end);
}

}  // namespace

// Reads a kernel row that lies over the source rows `upper` and `lower`.
void Dilation::readKernelRow(const uint8_t* row, int64_t upper, int64_t lower) {
    const int64_t size = param_.kernelSize;
    const CellRange run = longestRun(row, size);
    // Cell i brings column before_ - i to a pixel of the target.
    if (run.begin < run.end) {
        int level = 0;
        while (int64_t{2} << level <= run.end - run.begin) ++level;
        levelCount_ = std::max(levelCount_, level + 1);
        levelStep_[level] = 1;
        runs_[static_cast<size_t>(runCount_++)] = {upper, lower, before_ - run.end + 1,
                                                   before_ - run.begin + 1 - (int64_t{1} << level), level};
    }
    for (int64_t i = 0; i < size; ++i) {
        if (!isRamp(row, i, run)) continue;
        const int64_t mirror = 2 * before_ - i;
        const bool twice = mirror < size && isRamp(row, mirror, run) && row[mirror] == row[i];
        if (twice && mirror < i) continue;
        ramps_[static_cast<size_t>(rampCount_++)] = {
            upper, lower, before_ - i, before_ - (twice ? mirror : i), static_cast<uint8_t>(255 - row[i])};
    }
}

// From the centre outwards: the widest runs come first, and with them most of what becomes full.
bool Dilation::readKernel() {
    const int64_t size = param_.kernelSize;
    const uint8_t* kernel = param_.kernel;
    int64_t partial = 0;
    for (int64_t row = 0; row < size; ++row) {
        const CellRange run = longestRun(kernel + row * size, size);
        for (int64_t i = 0; i < size; ++i) partial += isRamp(kernel + row * size, i, run);
    }
    if (!runs_.allocate(size) || !ramps_.allocate(partial + 1)) return false;
    for (int64_t distance = 0; distance <= before_; ++distance) {
        const int64_t i = before_ - distance, mirror = before_ + distance;
        const uint8_t* row = kernel + i * size;
        if (mirror < size && std::memcmp(row, kernel + mirror * size, static_cast<size_t>(size)) == 0) {
            readKernelRow(row, -distance, distance);
            continue;
        }
        readKernelRow(row, distance, distance);
        if (mirror < size) readKernelRow(kernel + mirror * size, -distance, -distance);
    }
    return true;
}

bool Dilation::makeRows() {
    const int64_t reach = std::max(before_, after_);
    const int64_t sourceRows = rowEnd_ - rowBegin_;
    depth_ = std::min<int64_t>(param_.kernelSize + BATCH - 1, sourceRows);
    pad_ = roundUp(2 * reach + 2 * BLOCK);
    stride_ = roundUp(pad_ + columns_ + 2 * reach + 2 * BLOCK + VECTOR_PAD);
    // Row 0 of the memory stays zero, for rows without ink. Level 0 is always kept.
    levelStep_[0] = 1;
    int64_t count = 1;
    for (int level = 0; level < levelCount_; ++level) {
        levelStart_[level] = count * stride_;
        count += levelStep_[level] != 0 ? depth_ : 1;
        levelStep_[level] *= stride_;
    }
    const int64_t blocks = roundUp(endColumn_ - firstColumn_) / BLOCK;
    if (!rows_.allocateZeroed(count, stride_) || !ink_.allocateZeroed(depth_) ||
        !inkBlocks_.allocateZeroed(stride_ / BLOCK) || !lastInk_.allocate(blocks) ||
        !runTaps_.allocate(runCount_ + 1, BATCH) || !rampTaps_.allocate(rampCount_ + 1, BATCH))
        return false;
    std::fill_n(lastInk_.get(), blocks, INT64_MIN);
    return true;
}

bool Dilation::make(const DilationParam& param) {
    param_ = param;
    // Coverage 0 has nothing to give unless it is inverted.
    if (param.inverted == 0) param_.left = param_.top = param_.right = param_.bottom = 0;
    originX_ = int64_t{param.originX} - param_.left;
    columns_ = int64_t{param_.left} + std::max(param.columns, 0) + param_.right;
    rowBegin_ = int64_t{param.rowBegin} - param_.top;
    rowEnd_ = int64_t{param.rowEnd} + param_.bottom;

    const int64_t size = param.kernelSize;
    before_ = size / 2;
    after_ = size - 1 - before_;
    firstRow_ = std::max<int64_t>(0, param.originY + rowBegin_ - before_);
    endRow_ = std::min<int64_t>(param.targetHeight, param.originY + rowEnd_ + after_);
    firstColumn_ = std::max<int64_t>(-before_, -originX_);
    endColumn_ = std::min<int64_t>(columns_ + after_, param.targetWidth - originX_);
    if (size <= 0 || columns_ <= 0 || rowBegin_ >= rowEnd_ || firstRow_ >= endRow_ ||
        firstColumn_ >= endColumn_) {
        endRow_ = firstRow_;
        return true;
    }
    nextRow_ = std::max<int64_t>(rowBegin_, firstRow_ - param.originY - after_);
    return readKernel() && makeRows();
}

bool Dilation::hasInk(int64_t row) const {
    return row >= rowBegin_ && row < nextRow_ && ink_[slotOf(row)] != 0;
}

size_t Dilation::slotOf(int64_t row) const {
    return static_cast<size_t>((row - rowBegin_) % depth_);
}

uint8_t* Dilation::ringRow(int64_t row, int level) const {
    return rows_.get() + levelStart_[level] + static_cast<int64_t>(slotOf(row)) * levelStep_[level];
}

const uint8_t* Dilation::rowOf(int64_t row, int level) const {
    if (!hasInk(row)) return rows_.get();
    return ringRow(row, level);
}

// Takes a source row into the ring.
void Dilation::enterRow(int64_t row) {
    const size_t slot = slotOf(row);
    uint8_t* pixels = ringRow(row, 0);
    if (row >= param_.rowBegin && row < param_.rowEnd) {
        uint8_t* middle = pixels + pad_ + param_.left;
        std::memset(pixels + pad_, param_.inverted, static_cast<size_t>(param_.left));
        ZVEX_ON_TARGET(
            copyRow(middle, param_.source + row * param_.sourceStride, param_.columns, param_.inverted));
        std::memset(middle + param_.columns, param_.inverted, static_cast<size_t>(param_.right));
    } else {
        std::memset(pixels + pad_, param_.inverted, static_cast<size_t>(columns_));
    }
    uint8_t* inkBlocks = inkBlocks_.get();
    const int64_t firstBlock = pad_ / BLOCK;
    ink_[slot] = ZVEX_ON_TARGET(findInk(inkBlocks + firstBlock, pixels + pad_, roundUp(columns_) / BLOCK));
    if (ink_[slot] == 0) return;

    // A block of the target is reached from the blocks `low` to `high` of the row.
    const int64_t left = pad_ + firstColumn_;
    int64_t low = (left - after_) / BLOCK, high = (left + BLOCK - 1 + before_) / BLOCK, latest = -1;
    for (int64_t i = low; i < high; ++i) latest = inkBlocks[i] != 0 ? i : latest;
    const int64_t blocks = roundUp(endColumn_ - firstColumn_) / BLOCK;
    for (int64_t block = 0; block < blocks; ++block, ++low, ++high) {
        if (inkBlocks[high] != 0) latest = high;
        if (latest >= low) lastInk_[static_cast<size_t>(block)] = row;
    }

    for (int level = 1; level < levelCount_; ++level) {
        const int64_t step = int64_t{1} << (level - 1);
        const int64_t begin = (pad_ - 2 * step) / BLOCK * BLOCK;
        uint8_t* windows = ringRow(row, level);
        ZVEX_ON_TARGET(doubleWindows(windows + begin, pixels + begin, pad_ + columns_ - begin, step));
        pixels = windows;
    }
}

// What lies over the source row `over`, the rows with ink only; how many runs and ramps.
void Dilation::layTaps(int64_t over, RunTap* runTaps, int64_t* runs, RampTap* rampTaps,
                       int64_t* ramps) const {
    const int64_t column = pad_ + firstColumn_;
    *runs = *ramps = 0;
    for (int64_t i = 0; i < runCount_; ++i) {
        const Run& run = runs_[static_cast<size_t>(i)];
        if (!hasInk(over + run.upper) && !hasInk(over + run.lower)) continue;
        const uint8_t* upper = rowOf(over + run.upper, run.level) + column;
        const uint8_t* lower = rowOf(over + run.lower, run.level) + column;
        runTaps[(*runs)++] = {upper + run.left, upper + run.right, lower + run.left, lower + run.right};
    }
    for (int64_t i = 0; i < rampCount_; ++i) {
        const Ramp& ramp = ramps_[static_cast<size_t>(i)];
        if (!hasInk(over + ramp.upper) && !hasInk(over + ramp.lower)) continue;
        const uint8_t* upper = rowOf(over + ramp.upper, 0) + column;
        const uint8_t* lower = rowOf(over + ramp.lower, 0) + column;
        rampTaps[(*ramps)++] = {upper + ramp.left, upper + ramp.right, lower + ramp.left, lower + ramp.right,
                                ramp.missing};
    }
}

void Dilation::raise(int64_t row, int rows, uint8_t* target, int64_t stride) {
    const int64_t over = row - param_.originY;  // the source row under the kernel's centre
    const int64_t needed = std::min(rowEnd_, over + rows + before_);
    for (; nextRow_ < needed; ++nextRow_) enterRow(nextRow_);

    Taps taps[BATCH];
    for (int i = 0; i < rows; ++i) {
        RunTap* runTaps = runTaps_.get() + i * runCount_;
        RampTap* rampTaps = rampTaps_.get() + i * rampCount_;
        taps[i].runs = runTaps;
        taps[i].ramps = rampTaps;
        layTaps(over + i, runTaps, &taps[i].runCount, rampTaps, &taps[i].rampCount);
    }
    ZVEX_ON_TARGET(raiseRows(target + originX_ + firstColumn_, stride, endColumn_ - firstColumn_, taps, rows,
                             lastInk_.get(), over - after_));
}

bool dilate(const DilationParam& param) {
    Dilation dilation;
    if (!dilation.make(param)) return false;
    for (int64_t row = dilation.firstRow(); row < dilation.endRow(); row += Dilation::BATCH) {
        const int64_t rows = std::min<int64_t>(dilation.endRow() - row, Dilation::BATCH);
        dilation.raise(row, static_cast<int>(rows), param.target + row * param.targetWidth,
                       param.targetWidth);
    }
    return true;
}

}  // namespace Zvex
