// SPDX-License-Identifier: Apache-2.0
//
// A maximum over kernel rows, 16 or 32 pixels at once. A row of a disc is a run of full cells and a few ramp
// cells:
//
//     0 0 r F F F F F F F r 0 0      maximum over the run F: two windows of 2^level pixels, overlapping
//         |<------>|                 maximum over the cells r: value - what the cell lacks of 255, not below
//         0
//             |<------>|
//
// The maxima over windows of 2, 4, 8 ... pixels come from one another, once for every source row. The rows as
// far above as below the centre are equal: the source rows under them are joined first. A row of the target
// stops at blocks that no coverage reaches, at the first kernel row that makes a block full, and before the
// ramps where the runs made it full, so that most of the work is done where the outline runs. Joining rows
// and doubling windows is Gil and Werman's idea (1993) with the simpler windows of powers of two. The
// definition is tests/reference/StrokeReference.h.

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
using Cell = Dilation::Cell;

// What is laid over a row of the target.
struct Taps {
    const RunTap* runs;
    const RampTap* ramps;
    int64_t runCount, rampCount;
};

// The intrinsics are always inlined, so that no copy of them can stray into another build.
#define ZVEX_KERNELS "effect/filters/DilationKernels.inc"
#include "raster/ForEachTarget.h"

int64_t roundUp(int64_t value) {
    return (value + BLOCK - 1) / BLOCK * BLOCK;
}

}  // namespace

// Reads a kernel row that lies over the source rows `upper` and `lower`, from its longest run outwards.
void Dilation::readKernelRow(const uint8_t* row, int64_t upper, int64_t lower) {
    const int64_t size = param_.kernelSize;
    int64_t runBegin = 0, runEnd = 0;
    for (int64_t i = 0; i < size; ++i) {
        if (row[i] != 255) continue;
        const int64_t begin = i;
        while (i < size && row[i] == 255) ++i;
        if (i - begin > runEnd - runBegin) {
            runBegin = begin;
            runEnd = i;
        }
    }
    // Cell i brings column before_ - i to a pixel of the target.
    if (runBegin < runEnd) {
        int level = 0;
        while (int64_t{2} << level <= runEnd - runBegin) ++level;
        levelCount_ = std::max(levelCount_, level + 1);
        levelStep_[level] = 1;
        runs_[static_cast<size_t>(runCount_++)] = {upper, lower, before_ - runEnd + 1,
                                                   before_ - runBegin + 1 - (int64_t{1} << level), level};
    }
    const int64_t cellBegin = cellCount_;
    const auto isRamp = [&](int64_t i) {
        return i >= 0 && i < size && row[i] != 0 && (i < runBegin || i >= runEnd);
    };
    for (int64_t i = 0; i < size; ++i) {
        if (!isRamp(i)) continue;
        const int64_t mirror = 2 * before_ - i;
        const bool twice = isRamp(mirror) && row[mirror] == row[i];
        if (twice && mirror < i) continue;
        cells_[static_cast<size_t>(cellCount_++)] = {static_cast<int32_t>(before_ - i),
                                                     static_cast<int32_t>(before_ - (twice ? mirror : i)),
                                                     static_cast<uint8_t>(255 - row[i])};
    }
    if (cellBegin < cellCount_)
        ramps_[static_cast<size_t>(rampCount_++)] = {upper, lower, cellBegin, cellCount_};
}

// From the centre outwards: the widest runs come first, and with them most of what becomes full.
bool Dilation::readKernel() {
    const int64_t size = param_.kernelSize;
    const uint8_t* kernel = param_.kernel;
    int64_t partial = 0;
    for (int64_t i = 0; i < size * size; ++i) partial += kernel[i] != 0;
    if (!runs_.allocate(size) || !ramps_.allocate(size) || !cells_.allocate(partial + 1)) return false;
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
    const int64_t sourceRows = std::max<int64_t>(int64_t{param_.rowEnd} - param_.rowBegin, 1);
    depth_ = std::min<int64_t>(param_.kernelSize, sourceRows);
    pad_ = roundUp(2 * reach + 2 * BLOCK);
    stride_ = roundUp(pad_ + param_.columns + 2 * reach + 2 * BLOCK + VECTOR_PAD);
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
        !runTaps_.allocate(runCount_ + 1) || !rampTaps_.allocate(rampCount_ + 1))
        return false;
    std::fill_n(lastInk_.get(), blocks, INT64_MIN);
    return true;
}

bool Dilation::make(const DilationParam& param) {
    param_ = param;
    const int64_t size = param.kernelSize;
    before_ = size / 2;
    after_ = size - 1 - before_;
    firstRow_ = std::max<int64_t>(0, int64_t{param.originY} + param.rowBegin - before_);
    endRow_ = std::min<int64_t>(param.targetHeight, int64_t{param.originY} + param.rowEnd + after_);
    firstColumn_ = std::max<int64_t>(-before_, -int64_t{param.originX});
    endColumn_ =
        std::min<int64_t>(int64_t{param.columns} + after_, int64_t{param.targetWidth} - param.originX);
    if (size <= 0 || param.columns <= 0 || param.rowBegin >= param.rowEnd || firstRow_ >= endRow_ ||
        firstColumn_ >= endColumn_) {
        endRow_ = firstRow_;
        return true;
    }
    nextRow_ = std::max<int64_t>(param.rowBegin, firstRow_ - param.originY - after_);
    return readKernel() && makeRows();
}

bool Dilation::hasInk(int64_t row) const {
    return row >= param_.rowBegin && row < nextRow_ && ink_[static_cast<size_t>(row % depth_)] != 0;
}

const uint8_t* Dilation::rowOf(int64_t row, int level) const {
    if (!hasInk(row)) return rows_.get();
    return rows_.get() + levelStart_[level] + row % depth_ * levelStep_[level];
}

// Takes a source row into the ring.
void Dilation::enterRow(int64_t row) {
    const size_t slot = static_cast<size_t>(row % depth_);
    uint8_t* pixels = rows_.get() + levelStart_[0] + row % depth_ * levelStep_[0];
    const uint8_t* source = param_.source + row * param_.sourceStride;
    ZVEX_ON_TARGET(copyRow(pixels + pad_, source, param_.columns, param_.inverted));
    uint8_t* inkBlocks = inkBlocks_.get();
    const int64_t firstBlock = pad_ / BLOCK;
    ink_[slot] =
        ZVEX_ON_TARGET(findInk(inkBlocks + firstBlock, pixels + pad_, roundUp(param_.columns) / BLOCK));
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
        uint8_t* windows = rows_.get() + levelStart_[level] + row % depth_ * levelStep_[level];
        ZVEX_ON_TARGET(doubleWindows(windows + begin, pixels + begin, pad_ + param_.columns - begin, step));
        pixels = windows;
    }
}

void Dilation::raise(int64_t row, uint8_t* target) {
    const int64_t over = row - param_.originY;  // the source row under the kernel's centre
    for (; nextRow_ < param_.rowEnd && nextRow_ <= over + before_; ++nextRow_) enterRow(nextRow_);

    const int64_t column = pad_ + firstColumn_;
    Taps taps = {runTaps_.get(), rampTaps_.get(), 0, 0};
    for (int64_t i = 0; i < runCount_; ++i) {
        const Run& run = runs_[static_cast<size_t>(i)];
        if (!hasInk(over + run.upper) && !hasInk(over + run.lower)) continue;
        const uint8_t* upper = rowOf(over + run.upper, run.level) + column;
        const uint8_t* lower = rowOf(over + run.lower, run.level) + column;
        runTaps_[static_cast<size_t>(taps.runCount++)] = {upper + run.left, upper + run.right,
                                                          lower + run.left, lower + run.right};
    }
    for (int64_t i = 0; i < rampCount_; ++i) {
        const Ramp& ramp = ramps_[static_cast<size_t>(i)];
        if (!hasInk(over + ramp.upper) && !hasInk(over + ramp.lower)) continue;
        rampTaps_[static_cast<size_t>(taps.rampCount++)] = {
            rowOf(over + ramp.upper, 0) + column, rowOf(over + ramp.lower, 0) + column,
            cells_.get() + ramp.cellBegin, cells_.get() + ramp.cellEnd};
    }
    ZVEX_ON_TARGET(raiseRow(target + param_.originX + firstColumn_, endColumn_ - firstColumn_, taps,
                            lastInk_.get(), over - after_));
}

bool dilate(const DilationParam& param) {
    Dilation dilation;
    if (!dilation.make(param)) return false;
    for (int64_t row = dilation.firstRow(); row < dilation.endRow(); ++row) {
        dilation.raise(row, param.target + row * param.targetWidth);
    }
    return true;
}

}  // namespace Zvex
