// SPDX-License-Identifier: Apache-2.0
//
// A maximum over every cell of the kernel, of a copy of the source with blank pixels around it, so that no
// cell reads outside. The plain form is tests/reference/StrokeReference.h.

#include "effect/kernels/SmallDilation.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

#include "effect/kernels/Buffer.h"
#include "foundation/OutOfMemory.h"
#include "raster/CpuTarget.h"
#include "raster/Intrinsics.h"

namespace Zvex {

namespace {

constexpr int kMostSize = 9;              // of the kernel
constexpr int64_t kMostReads = 40'000;    // of 32 pixels each
constexpr int64_t kReadBeyond = 64 + 64;  // bytes after the last pixel that may be read

struct Ramp {
    ptrdiff_t offset;
    uint8_t missing;  // what the cell lacks of 255
};
// Offsets lead from the pixel under the kernel's centre to that under the cell.
struct Cells {
    ptrdiff_t full[kMostSize * kMostSize];
    Ramp ramps[kMostSize * kMostSize];
    int fullCount = 0, rampCount = 0;
};

#define ZVEX_KERNELS "effect/kernels/SmallDilationKernels.inc"
#include "raster/ForEachTarget.h"

void copyRow(uint8_t* __restrict target, const uint8_t* __restrict source, int count, uint8_t inverted) {
    if (count <= 0) return;
    std::memcpy(target, source, static_cast<size_t>(count));
    if (inverted == 0) return;
    for (int i = 0; i < count; ++i) target[i] ^= inverted;
}

class SmallDilation : public Dilation {
public:
    // False if it is not small.
    bool place(const DilationParam& param);
    // False if memory is short.
    bool copySource();
    void raise(int64_t row, int rows, uint8_t* target, int64_t stride) override;

private:
    void readKernel();

    DilationParam mParam;
    int64_t mX = 0, mY = 0, mWidth = 0, mHeight = 0;  // of the source, with its sides, in the target
    Cells mCells;
    Buffer<uint8_t> mSource;
    int64_t mStride = 0;
    int64_t mOrigin = 0;  // in mSource, of what lies under the target's first column that is raised, in row 0
    int64_t mFirstColumn = 0, mColumns = 0;
};

bool SmallDilation::place(const DilationParam& param) {
    mParam = param;
    const int64_t size = param.kernelSize, before = size / 2, after = size - 1 - before;
    if (size < 1 || size > kMostSize) return false;
    // Coverage 0 gives nothing unless it is inverted.
    if (param.inverted == 0) mParam.left = mParam.top = mParam.right = mParam.bottom = 0;
    mX = int64_t{param.originX} - mParam.left;
    mY = int64_t{param.originY} + param.rowBegin - mParam.top;
    mWidth = int64_t{mParam.left} + std::max(param.columns, 0) + mParam.right;
    mHeight = int64_t{mParam.top} + param.rowEnd - param.rowBegin + mParam.bottom;
    mFirstColumn = std::max<int64_t>(0, mX - before);
    mColumns = std::min<int64_t>(param.targetWidth, mX + mWidth + after) - mFirstColumn;
    mFirstRow = std::max<int64_t>(0, mY - before);
    mEndRow = std::min<int64_t>(param.targetHeight, mY + mHeight + after);
    const int64_t rows = mEndRow - mFirstRow;
    if (mWidth <= 0 || mHeight <= 0 || mColumns <= 0 || rows <= 0 || rows > kMostReads) return false;
    if (mWidth > kMostReads || mHeight > kMostReads) return false;
    mStride = mWidth + 2 * size + kReadBeyond;
    readKernel();
    const int64_t vectors = (mColumns + 63) / 64 * 2;
    return (mCells.fullCount + mCells.rampCount) * vectors <= kMostReads / rows;
}

// Cell i of a kernel row moves the pixel `before` - i columns further right.
void SmallDilation::readKernel() {
    const int size = mParam.kernelSize, before = size / 2;
    for (int row = 0; row < size; ++row) {
        for (int i = 0; i < size; ++i) {
            const uint8_t cell = mParam.kernel[row * size + i];
            const ptrdiff_t offset = (before - row) * mStride + before - i;
            if (cell == 255) {
                mCells.full[mCells.fullCount++] = offset;
            } else if (cell != 0) {
                mCells.ramps[mCells.rampCount++] = {offset, static_cast<uint8_t>(255 - cell)};
            }
        }
    }
}

// The pixels at the sides count as source pixels, too.
bool SmallDilation::copySource() {
    const int64_t margin = mParam.kernelSize;
    if (!mSource.allocateZeroed(mHeight + 2 * margin, mStride)) return false;
    uint8_t* line = mSource.get() + margin * (mStride + 1);
    for (int64_t y = 0; y < mHeight; ++y, line += mStride) {
        if (mParam.inverted != 0) std::memset(line, mParam.inverted, static_cast<size_t>(mWidth));
        const int64_t row = y - mParam.top + mParam.rowBegin;
        if (row < mParam.rowBegin || row >= mParam.rowEnd) continue;
        copyRow(line + mParam.left, mParam.source + row * mParam.sourceStride, mParam.columns,
                mParam.inverted);
    }
    mOrigin = (margin - mY) * mStride + margin - mX + mFirstColumn;
    return true;
}

void SmallDilation::raise(int64_t row, int rows, uint8_t* target, int64_t stride) {
    const uint8_t* source = mSource.get() + (mOrigin + row * mStride);
    for (int i = 0; i < rows; ++i, target += stride, source += mStride)
        ZVEX_ON_TARGET(raiseRow(target + mFirstColumn, source, mColumns, mCells));
}

}  // namespace

bool makeSmallDilation(const DilationParam& param, std::unique_ptr<Dilation>* dilation) {
    auto small = tryMake<SmallDilation>();
    if (small != nullptr && !small->place(param)) return false;
    if (small != nullptr && small->copySource()) *dilation = std::move(small);
    return true;
}

}  // namespace Zvex
