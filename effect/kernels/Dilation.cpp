// SPDX-License-Identifier: Apache-2.0
//
// A maximum over kernel rows, 16 or 32 pixels at once. A row of a disc is a run of full cells and a few ramp
// cells at its ends. Each cell gives its pixel's value minus what the cell lacks of 255:
//
//     0 0 r F F F F F F F r 0 0
//           |<----->|              the run is two windows of 2^level pixels
//               |<----->|
//
// The maxima over windows of 2, 4, 8 ... pixels are computed from one another, once for each source row. This
// is an idea of van Herk (1992) and of Gil and Werman (1993), here with powers of two.
//
// The target is raised in tiles of kBatch rows, which stay in registers while the kernel rows are applied. It
// is fast because it skips most reads:
// - A tile that no coverage reaches is skipped. Work on a tile stops when all its pixels are full. Most tiles
//   fill at once, from the row at their centre or from the row that filled the tile above.
// - In other tiles, along the outline, few pixels are not full yet. A kernel row is read only if there is
//   coverage within its reach of these pixels. If all of that coverage lies on one side, only that side is
//   read. Coverage 0 gives nothing under any cell, so what is skipped could not have raised a pixel. One word
//   tells which of 64 patches of a few pixels around a block have coverage.
//
// The plain form is tests/reference/StrokeReference.h.

#include "effect/kernels/Dilation.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "effect/kernels/Buffer.h"
#include "effect/kernels/SmallDilation.h"
#include "foundation/OutOfMemory.h"
#include "raster/CpuTarget.h"
#include "raster/Intrinsics.h"

namespace Zvex {

namespace {

constexpr int kBatch = Dilation::kBatch;
constexpr int64_t kBlock = 32;      // pixels that are skipped together
constexpr int64_t kVectorPad = 64;  // readable bytes after the last pixel that may be asked of a line
constexpr int64_t kCacheLine = 64;
constexpr int64_t kSmallestDepth = 5 * kBatch;        // limits the share of a ring that is repeated
constexpr int kSmallestPatch = 2, kLargestPatch = 5;  // log2 of pixels: 4 pixels, a block

// The part of a source row that a kernel row reads around a block of the target: one bit for each patch.
struct Reach {
    uint64_t patches;
    uint64_t always;  // all ones for a row that reaches beyond the bits
};
// Offsets lead from a pixel of the target to the bytes read of a line.
struct KernelRow {
    int64_t offset;  // from the target's row to the source row
    Reach reach;
    // The longest run of full cells: the maxima over two windows, one at either end. The first window is
    // enough where no coverage lies at or after the pixel (firstAlone); the last one where none lies at or
    // before it (lastAlone).
    bool hasRun, firstAlone, lastAlone;
    int level;  // the windows are 2^level wide
    ptrdiff_t firstRun, lastRun;
    int64_t rampBegin, rampEnd;  // the other cells
};
// A cell that is not full, and its mirror image if that has the same value, else the same cell again.
struct RampCells {
    ptrdiff_t first, last;  // first <= last
    uint8_t missing;        // what the cell lacks of 255
};
// A kernel row, placed over the first of the rows that are raised.
struct Line {
    const uint8_t* pixels;
    const uint8_t* ink;
    Reach reach;
    const KernelRow* kernel;
};
// A line that brings coverage to some pixels, and whether it has none within reach after them or before them.
struct Seen {
    const Line* line;
    bool noneAfter, noneBefore;
};

// What raises some rows of the target.
struct Work {
    const Line* lines;  // from the centre outwards, those with ink
    int64_t lineCount;
    const Line* lineOf;  // by offset, from firstOffset to lastOffset; null pixels where there is no run
    int64_t firstOffset, lastOffset;
    int64_t over;           // the source row under the kernel's centre
    ptrdiff_t step;         // from a source row to the next
    const uint8_t* anyInk;  // of all lines: whether a patch has coverage in any
    Reach anyReach;
    int patchShift, patchesBefore;
    int64_t firstPatch;  // of the row, bit 0 around the first block
    const RampCells* cells;
    Seen* seen;  // room for all lines
};

#define ZVEX_KERNELS "effect/kernels/DilationKernels.inc"
#include "raster/ForEachTarget.h"

int64_t roundUp(int64_t value) {
    return (value + kBlock - 1) / kBlock * kBlock;
}

struct CellRange {
    int64_t begin, end;
};

// The longest run of full cells.
CellRange longestRun(const uint8_t* row, int64_t size) {
    CellRange longest = {0, 0};
    for (int64_t i = 0; i < size; ++i) {
        const void* full = std::memchr(row + i, 255, static_cast<size_t>(size - i));
        if (full == nullptr) break;
        const int64_t begin = i = static_cast<const uint8_t*>(full) - row;
        while (i < size && row[i] == 255) ++i;
        if (i - begin > longest.end - longest.begin) longest = {begin, i};
    }
    return longest;
}

bool isRamp(const uint8_t* row, int64_t i, const CellRange& run) {
    return row[i] != 0 && (i < run.begin || i >= run.end);
}

class RingDilation : public Dilation {
public:
    bool prepare(const DilationParam& param);
    void raise(int64_t row, int rows, uint8_t* target, int64_t stride) override;

private:
    bool readKernel();
    void readKernelRow(int64_t index);
    void setReaches();
    void setLevels();
    bool makeRows();
    size_t slotOf(int64_t row) const;
    uint8_t* slotAt(size_t slot) const;
    uint8_t* inkAt(size_t slot) const;
    int64_t layLines(int64_t over, int64_t firstOffset, int64_t lastOffset);
    void copySource(int64_t row, uint8_t* line) const;
    bool makeInk(size_t slot);
    void makeWindows(uint8_t* line);
    void enterRow(int64_t row);
    void joinRows(int64_t row);

    DilationParam mParam;
    int64_t mFirstColumn = 0, mEndColumn = 0;  // of the target, counted from the origin
    int64_t mBefore = 0, mAfter = 0;           // rows and columns of the kernel before and after its centre

    // Where the source lies, with its sides.
    int64_t mOriginX = 0;  // column of the target under the source's first column
    int64_t mColumns = 0;
    int64_t mRowBegin = 0, mRowEnd = 0;

    Buffer<KernelRow> mKernelRows;  // from the centre outwards
    Buffer<RampCells> mCells;
    int64_t mKernelRowCount = 0, mCellCount = 0;
    Reach mAnyReach = {0, 0};
    int mPatchShift = 0;  // a patch is 2^mPatchShift pixels of a row
    int64_t mPatchesBefore = 0;

    // The source rows that the kernel reaches, in a ring of slots. The first few slots are repeated after the
    // last one, so that kBatch rows always lie one after another. A slot has a line for each level in use:
    // the maxima over windows of 2^level pixels. Byte `mMargin` of a line raises the target's first byte.
    static constexpr int kLevels = 32;
    Buffer<uint8_t> mSlots;
    bool mUsed[kLevels] = {};
    int64_t mLevelStart[kLevels] = {};  // within a slot
    int mLevelCount = 1;
    int64_t mDepth = 0, mSlotSize = 0, mLineSize = 0, mMargin = 0;
    int64_t mSourceBegin = 0, mSourceEnd = 0;  // columns that a line has
    int64_t mRingBegin = 0;
    int64_t mNextRow = 0;    // the first source row that has not been read
    int64_t mNextJoint = 0;  // the first row whose ink has not been joined with that of the rows after it

    Buffer<uint8_t> mPassed;  // lines of levels that only lead to higher ones
    Buffer<uint8_t> mHasInk;  // of the slots: whether they have any coverage
    Buffer<uint8_t> mInk;     // of the slots: one bit for each patch of a line, set if it has coverage
    Buffer<uint8_t> mJoint;   // of the slots: the joined ink of kBatch rows from that slot on
    Buffer<uint8_t> mHasJoint;
    int64_t mInkSize = 0;
    Buffer<uint8_t> mAnyInk;  // of all lines
    Buffer<const uint8_t*> mInks;
    Buffer<Line> mLines, mLineOf;
    Buffer<Seen> mSeen;
    Buffer<int64_t> mWitnesses;  // for each block of the target, the source row that filled it last
};

// Reads row `index` of the kernel. Cell i moves column mBefore - i of the source to a pixel of the target.
void RingDilation::readKernelRow(int64_t index) {
    const int64_t size = mParam.kernelSize;
    const uint8_t* cells = mParam.kernel + index * size;
    const CellRange run = longestRun(cells, size);
    KernelRow row = {};
    row.offset = mBefore - index;
    row.hasRun = run.begin < run.end;
    if (row.hasRun) {
        while (int64_t{2} << row.level <= run.end - run.begin) ++row.level;
        mUsed[row.level] = true;
        mLevelCount = std::max(mLevelCount, row.level + 1);
        const int64_t width = int64_t{1} << row.level;
        row.firstRun = mBefore - run.end + 1;
        row.lastRun = mBefore - run.begin + 1 - width;
        row.firstAlone = row.firstRun == row.lastRun || row.firstRun + width >= 0;
        row.lastAlone = row.firstRun == row.lastRun || row.lastRun <= 1;
    }
    row.rampBegin = mCellCount;
    for (int64_t i = 0; i < size; ++i) {
        if (i == run.begin) i = std::max(run.begin, run.end - 1);
        if (!isRamp(cells, i, run)) continue;
        const int64_t mirror = 2 * mBefore - i;
        const bool twice = mirror < size && isRamp(cells, mirror, run) && cells[mirror] == cells[i];
        if (twice && mirror > i) continue;
        mCells[static_cast<size_t>(mCellCount++)] = {static_cast<ptrdiff_t>(mBefore - i),
                                                     static_cast<ptrdiff_t>(mBefore - (twice ? mirror : i)),
                                                     static_cast<uint8_t>(255 - cells[i])};
    }
    row.rampEnd = mCellCount;
    if (row.hasRun || row.rampBegin < row.rampEnd) mKernelRows[static_cast<size_t>(mKernelRowCount++)] = row;
}

// From the centre outwards: the widest runs come first and fill most pixels.
bool RingDilation::readKernel() {
    const int64_t size = mParam.kernelSize;
    const uint8_t* kernel = mParam.kernel;
    int64_t partial = 0;
    for (int64_t i = 0; i < size * size; ++i) partial += kernel[i] != 0;
    for (int64_t row = 0; row < size; ++row) {
        const CellRange run = longestRun(kernel + row * size, size);
        partial -= run.end - run.begin;
    }
    if (!mKernelRows.allocate(size) || !mCells.allocate(partial + 1)) return false;
    readKernelRow(mBefore);
    for (int64_t distance = 1; distance <= mBefore; ++distance) {
        const int64_t i = mBefore - distance, mirror = mBefore + distance, count = mKernelRowCount;
        readKernelRow(i);
        if (mirror >= size) continue;
        const bool same =
            std::memcmp(kernel + i * size, kernel + mirror * size, static_cast<size_t>(size)) == 0;
        if (!same) {
            readKernelRow(mirror);
        } else if (mKernelRowCount > count) {
            KernelRow row = mKernelRows[static_cast<size_t>(count)];
            row.offset = -distance;
            mKernelRows[static_cast<size_t>(mKernelRowCount++)] = row;
        }
    }
    setReaches();
    return true;
}

// Finds the patches that each kernel row can reach from a block. Patches are as small as 64 bits allow. Up to
// 7 bits are lost, because the bits are read from a whole byte on.
void RingDilation::setReaches() {
    constexpr int kBits = 57;
    const int64_t reach = std::max(mBefore, mAfter);
    int64_t most = 0;
    for (mPatchShift = kSmallestPatch; mPatchShift <= kLargestPatch; ++mPatchShift) {
        most = (kBits - (kBlock >> mPatchShift)) / 2;
        mPatchesBefore = std::min((reach + (int64_t{1} << mPatchShift) - 1) >> mPatchShift, most);
        if (reach <= most << mPatchShift) break;
    }
    mPatchShift = std::min(mPatchShift, kLargestPatch);
    const int64_t room = mPatchesBefore << mPatchShift;
    for (int64_t i = 0; i < mKernelRowCount; ++i) {
        KernelRow& row = mKernelRows[static_cast<size_t>(i)];
        int64_t first = row.hasRun ? row.firstRun : INT64_MAX;
        int64_t last = row.hasRun ? row.lastRun + (int64_t{1} << row.level) - 1 : INT64_MIN;
        for (int64_t cell = row.rampBegin; cell < row.rampEnd; ++cell) {
            first = std::min<int64_t>(first, mCells[static_cast<size_t>(cell)].first);
            last = std::max<int64_t>(last, mCells[static_cast<size_t>(cell)].last);
        }
        if (first < -room || last > room) {
            row.reach = {0, ~uint64_t{0}};
        } else {
            const int64_t firstPatch = (first + room) >> mPatchShift;
            const int64_t lastPatch = (last + room + kBlock - 1) >> mPatchShift;
            row.reach = {(uint64_t{2} << lastPatch) - (uint64_t{1} << firstPatch), 0};
        }
        mAnyReach.patches |= row.reach.patches;
        mAnyReach.always |= row.reach.always;
    }
}

// Sets where the lines of a slot lie, and from that where each kernel row reads them.
void RingDilation::setLevels() {
    mUsed[0] = true;
    int64_t count = 0;
    for (int level = 0; level < mLevelCount; ++level)
        mLevelStart[level] = mUsed[level] ? count++ * mLineSize : 0;
    // An odd number of cache lines, so that rows below one another do not compete for the same cache sets.
    mSlotSize = (count * mLineSize + 2 * kCacheLine - 1) / (2 * kCacheLine) * (2 * kCacheLine) + kCacheLine;
    for (int64_t i = 0; i < mKernelRowCount; ++i) {
        KernelRow& row = mKernelRows[static_cast<size_t>(i)];
        row.firstRun += mLevelStart[row.level];
        row.lastRun += mLevelStart[row.level];
    }
}

bool RingDilation::makeRows() {
    const int64_t blocks = roundUp(mEndColumn - mFirstColumn) / kBlock;
    mMargin = roundUp(std::max(mBefore, mAfter));
    mLineSize = 2 * mMargin + blocks * kBlock + kVectorPad;
    mSourceBegin = std::max<int64_t>(0, mFirstColumn - mMargin);
    mSourceEnd = std::min(mColumns, mEndColumn + mMargin);
    setLevels();
    mDepth = std::max<int64_t>(mParam.kernelSize + kBatch - 1, kSmallestDepth);
    mDepth = std::min<int64_t>(mDepth, mRowEnd - mRowBegin + 2 * (kBatch - 1));
    mInkSize = roundUp((mLineSize >> kSmallestPatch) / 8 + static_cast<int64_t>(sizeof(uint64_t)) + 1);
    const int64_t slots = mDepth + kBatch - 1;
    if (!mSlots.allocateZeroed(slots * mSlotSize + mLineSize + kVectorPad) ||
        !mPassed.allocateZeroed(3 * mLineSize) || !mHasInk.allocateZeroed(mDepth) ||
        !mInk.allocateZeroed(mDepth, mInkSize) || !mJoint.allocateZeroed(mDepth, mInkSize) ||
        !mHasJoint.allocateZeroed(mDepth) || !mAnyInk.allocateZeroed(mInkSize) ||
        !mInks.allocate(mParam.kernelSize) || !mLines.allocate(mParam.kernelSize) ||
        !mLineOf.allocate(mParam.kernelSize) || !mSeen.allocate(mParam.kernelSize + 1) ||
        !mWitnesses.allocate(blocks))
        return false;
    std::fill_n(mWitnesses.get(), blocks, mRingBegin);
    return true;
}

bool RingDilation::prepare(const DilationParam& param) {
    mParam = param;
    // Coverage 0 gives nothing unless it is inverted.
    if (param.inverted == 0) mParam.left = mParam.top = mParam.right = mParam.bottom = 0;
    mOriginX = int64_t{param.originX} - mParam.left;
    mColumns = int64_t{mParam.left} + std::max(param.columns, 0) + mParam.right;
    mRowBegin = int64_t{param.rowBegin} - mParam.top;
    mRowEnd = int64_t{param.rowEnd} + mParam.bottom;

    const int64_t size = param.kernelSize;
    mBefore = size / 2;
    mAfter = size - 1 - mBefore;
    mFirstRow = std::max<int64_t>(0, param.originY + mRowBegin - mBefore);
    mEndRow = std::min<int64_t>(param.targetHeight, param.originY + mRowEnd + mAfter);
    mFirstColumn = std::max<int64_t>(-mBefore, -mOriginX);
    mEndColumn = std::min<int64_t>(mColumns + mAfter, param.targetWidth - mOriginX);
    if (size <= 0 || mColumns <= 0 || mRowBegin >= mRowEnd || mFirstRow >= mEndRow ||
        mFirstColumn >= mEndColumn) {
        mEndRow = mFirstRow;
        return true;
    }
    mRingBegin = std::max<int64_t>(mRowBegin - (kBatch - 1), mFirstRow - param.originY - mAfter);
    mNextRow = mNextJoint = mRingBegin;
    return readKernel() && makeRows();
}

size_t RingDilation::slotOf(int64_t row) const {
    return static_cast<size_t>((row - mRingBegin) % mDepth);
}

// Copies the columns of a source row that are needed to their places in the line.
void RingDilation::copySource(int64_t row, uint8_t* line) const {
    uint8_t* pixels = line + mMargin - mFirstColumn;  // of column 0
    const int64_t left = mParam.left, right = mColumns - mParam.right;
    const int64_t begin = std::max(mSourceBegin, left), end = std::min(mSourceEnd, right);
    if (row < mParam.rowBegin || row >= mParam.rowEnd || begin >= end) {
        std::memset(pixels + mSourceBegin, mParam.inverted, static_cast<size_t>(mSourceEnd - mSourceBegin));
        return;
    }
    std::memset(pixels + mSourceBegin, mParam.inverted, static_cast<size_t>(begin - mSourceBegin));
    ZVEX_ON_TARGET(copyRow(pixels + begin, mParam.source + row * mParam.sourceStride + (begin - left),
                           end - begin, mParam.inverted));
    std::memset(pixels + end, mParam.inverted, static_cast<size_t>(mSourceEnd - end));
}

uint8_t* RingDilation::slotAt(size_t slot) const {
    return mSlots.get() + static_cast<int64_t>(slot) * mSlotSize;
}

uint8_t* RingDilation::inkAt(size_t slot) const {
    return mInk.get() + static_cast<int64_t>(slot) * mInkSize;
}

// Finds the ink of a slot; false if it has none.
bool RingDilation::makeInk(size_t slot) {
    int64_t bytes = (mLineSize - kVectorPad) / kBlock;
    if (!ZVEX_ON_TARGET(findInk(inkAt(slot), slotAt(slot), bytes))) return false;
    for (int shift = kSmallestPatch; shift < mPatchShift; ++shift) {
        bytes = (bytes + 1) / 2;
        ZVEX_ON_TARGET(halveInk(inkAt(slot), bytes));
    }
    return true;
}

void RingDilation::makeWindows(uint8_t* slot) {
    const uint8_t* pixels = slot;
    uint8_t* passed[2] = {mPassed.get(), mPassed.get() + mLineSize};
    const int64_t first = mMargin - mFirstColumn + mSourceBegin, end = mMargin - mFirstColumn + mSourceEnd;
    const int64_t begin = std::max<int64_t>(0, first - (int64_t{1} << mLevelCount));
    for (int level = 1; level < mLevelCount; ++level) {
        const int64_t step = int64_t{1} << (level - 1);
        uint8_t* windows = mUsed[level] ? slot + mLevelStart[level] : passed[level % 2];
        ZVEX_ON_TARGET(doubleWindows(windows + begin, pixels + begin, end - begin, step));
        pixels = windows;
    }
}

// Reads a source row into the ring. Rows beyond the source are empty.
void RingDilation::enterRow(int64_t row) {
    const size_t slot = slotOf(row);
    uint8_t* lines = slotAt(slot);
    const bool wasEmpty = mHasInk[slot] == 0;
    mHasInk[slot] = 0;
    if (row >= mRowBegin && row < mRowEnd) {
        copySource(row, lines);
        mHasInk[slot] = makeInk(slot);
    }
    if (mHasInk[slot] != 0) {
        makeWindows(lines);
    } else {
        if (wasEmpty) return;
        std::memset(lines, 0, static_cast<size_t>(mSlotSize));
        std::memset(inkAt(slot), 0, static_cast<size_t>(mInkSize));
    }
    if (slot < kBatch - 1) std::memcpy(lines + mDepth * mSlotSize, lines, static_cast<size_t>(mSlotSize));
}

// Joins the ink of the kBatch rows from `row` on.
void RingDilation::joinRows(int64_t row) {
    const size_t slot = slotOf(row);
    const uint8_t* inks[kBatch];
    int64_t count = 0;
    for (int i = 0; i < kBatch; ++i) {
        const size_t other = slotOf(row + i);
        if (mHasInk[other] != 0) inks[count++] = inkAt(other);
    }
    mHasJoint[slot] = count != 0;
    if (count != 0) {
        ZVEX_ON_TARGET(joinInk(mJoint.get() + static_cast<int64_t>(slot) * mInkSize, inks, count, mInkSize));
    }
}

// Places the kernel rows over the source rows from `over` on. Returns the number of those with ink.
int64_t RingDilation::layLines(int64_t over, int64_t firstOffset, int64_t lastOffset) {
    std::fill_n(mLineOf.get(), lastOffset - firstOffset + 1, Line{nullptr, nullptr, {0, 0}, nullptr});
    int64_t count = 0;
    for (int64_t i = 0; i < mKernelRowCount; ++i) {
        const KernelRow& kernel = mKernelRows[static_cast<size_t>(i)];
        if (kernel.offset < firstOffset || kernel.offset > lastOffset) continue;
        const size_t slot = slotOf(over + kernel.offset);
        if (mHasJoint[slot] == 0) continue;
        const uint8_t* ink = mJoint.get() + static_cast<int64_t>(slot) * mInkSize;
        const Line line = {slotAt(slot) + mMargin, ink, kernel.reach, &kernel};
        if (kernel.hasRun) mLineOf[static_cast<size_t>(kernel.offset - firstOffset)] = line;
        mInks[static_cast<size_t>(count)] = ink;
        mLines[static_cast<size_t>(count++)] = line;
    }
    ZVEX_ON_TARGET(joinInk(mAnyInk.get(), mInks.get(), count, mInkSize));
    return count;
}

void RingDilation::raise(int64_t row, int rows, uint8_t* target, int64_t stride) {
    const int64_t over = row - mParam.originY;  // the source row under the kernel's centre
    const int64_t firstOffset = std::max(-mAfter, mRowBegin - (kBatch - 1) - over);
    const int64_t lastOffset = std::min(mBefore, mRowEnd - 1 - over);
    for (; mNextRow < over + lastOffset + kBatch; ++mNextRow) enterRow(mNextRow);
    for (; mNextJoint <= mNextRow - kBatch; ++mNextJoint) joinRows(mNextJoint);

    const int64_t lineCount = layLines(over, firstOffset, lastOffset);
    const Work work = {mLines.get(),
                       lineCount,
                       mLineOf.get(),
                       firstOffset,
                       lastOffset,
                       over,
                       static_cast<ptrdiff_t>(mSlotSize),
                       mAnyInk.get(),
                       mAnyReach,
                       mPatchShift,
                       static_cast<int>(mPatchesBefore),
                       (mMargin >> mPatchShift) - mPatchesBefore,
                       mCells.get(),
                       mSeen.get()};
    ZVEX_ON_TARGET(raiseRows(target + mOriginX + mFirstColumn, stride, mEndColumn - mFirstColumn, rows, work,
                             mWitnesses.get()));
}

}  // namespace

std::unique_ptr<Dilation> Dilation::make(const DilationParam& param) {
    std::unique_ptr<Dilation> small;
    if (makeSmallDilation(param, &small)) return small;
    auto dilation = tryMake<RingDilation>();
    if (dilation == nullptr || !dilation->prepare(param)) return nullptr;
    return dilation;
}

bool dilate(const DilationParam& param) {
    const auto dilation = Dilation::make(param);
    if (dilation == nullptr) return false;
    for (int64_t row = dilation->firstRow(); row < dilation->endRow(); row += kBatch) {
        const int64_t rows = std::min<int64_t>(dilation->endRow() - row, kBatch);
        dilation->raise(row, static_cast<int>(rows), param.target + row * param.targetWidth,
                        param.targetWidth);
    }
    return true;
}

}  // namespace Zvex
