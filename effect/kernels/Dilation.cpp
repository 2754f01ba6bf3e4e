// SPDX-License-Identifier: Apache-2.0
//
// A maximum over kernel rows, 16 or 32 pixels at once. A row of a disc is a run of full cells and a few ramp
// cells, each of which gives its pixel's value less what the cell lacks of 255:
//
//     0 0 r F F F F F F F r 0 0
//           |<----->|              the run is two windows of 2^level pixels
//               |<----->|
//
// The maxima over windows of 2, 4, 8 ... pixels come from one another, once for every source row; that is an
// idea of van Herk (1992) and of Gil and Werman (1993), here with powers of two.
//
// The target is raised in tiles of BATCH rows, held in registers while the kernel rows come by. What makes it
// fast is what is not read:
// - A tile that no coverage reaches is skipped. So is the rest of the work where a tile has become full, as
//   most do at once by the row under their own, or by the row that filled the tile above them.
// - In the others, along the outline, the pixels that are not full yet are few. A kernel row is read if there
//   is coverage within its reach of these, and where all of it lies to one side, on that side only. Coverage
//   0 under any cell gives nothing, so what is left out could not have raised a pixel. Where coverage lies is
//   known by patches of a few pixels, 64 of them around a block in one word.
//
// The definition is tests/reference/StrokeReference.h.

#include "effect/kernels/Dilation.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>

#include "effect/kernels/Buffer.h"
#include "foundation/OutOfMemory.h"
#include "raster/CpuTarget.h"
#include "raster/Intrinsics.h"

namespace Zvex {

namespace {

constexpr int BATCH = Dilation::BATCH;
constexpr int64_t BLOCK = 32;       // pixels that are skipped together
constexpr int64_t VECTOR_PAD = 64;  // readable bytes after the last pixel a line can be asked for
constexpr int64_t CACHE_LINE = 64;
constexpr int64_t SMALLEST_DEPTH = 5 * BATCH;         // keeps the repeated part of a ring small
constexpr int SMALLEST_PATCH = 2, LARGEST_PATCH = 5;  // log2 of pixels: 4, a block

// What a row of the kernel reads around a block of the target, in patches of some pixels, a bit for each.
struct Reach {
    uint64_t patches;
    uint64_t always;  // all ones for a row that reaches further than the bits
};
// Offsets are counted from a pixel of the target to what is read of a line.
struct KernelRow {
    int64_t offset;  // from the target's row to the source's
    Reach reach;
    // The longest run of full cells: the maxima over two windows, one at either end. Whether the first
    // one is enough where no coverage lies under or after the pixel, the last one where none lies before.
    bool hasRun, firstAlone, lastAlone;
    int level;  // the windows are 2^level wide
    ptrdiff_t firstRun, lastRun;
    int64_t rampBegin, rampEnd;  // the other cells
};
// A cell that is not full, and its mirror image if that is as full, else the same one again.
struct RampCells {
    ptrdiff_t first, last;  // first <= last
    uint8_t missing;        // what the cell lacks of 255
};
// A kernel row as it lies over the first of the rows that are raised.
struct Line {
    const uint8_t* pixels;
    const uint8_t* ink;
    Reach reach;
    const KernelRow* kernel;
};
// A line that brings coverage to some pixels, and whether it has none within reach after or before them.
struct Seen {
    const Line* line;
    bool noneAfter, noneBefore;
};

// What some rows of the target are raised by.
struct Work {
    const Line* lines;  // from the centre outwards, those with ink
    int64_t lineCount;
    const Line* lineOf;  // by offset, from firstOffset to lastOffset; without pixels where there is no run
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
    return (value + BLOCK - 1) / BLOCK * BLOCK;
}

struct CellRange {
    int64_t begin, end;
};

// Of full cells.
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

    DilationParam param_;
    int64_t firstColumn_ = 0, endColumn_ = 0;  // of the target, counted from the origin
    int64_t before_ = 0, after_ = 0;           // rows and columns of the kernel before and after its centre

    // The source with its sides.
    int64_t originX_ = 0;  // place in target of its first column
    int64_t columns_ = 0;
    int64_t rowBegin_ = 0, rowEnd_ = 0;

    Buffer<KernelRow> kernelRows_;  // from the centre outwards
    Buffer<RampCells> cells_;
    int64_t kernelRowCount_ = 0, cellCount_ = 0;
    Reach anyReach_ = {0, 0};
    int patchShift_ = 0;  // a patch is 2^patchShift_ pixels of a row
    int64_t patchesBefore_ = 0;

    // The source rows that the kernel reaches, in a ring of slots; the first few slots are repeated after the
    // last, so that BATCH rows from any one on lie one behind the other. A slot has a line for each level
    // that is used: the maxima over windows of 2^level pixels. The first byte that the target is raised by is
    // byte `margin_` of a line.
    static constexpr int LEVELS = 32;
    Buffer<uint8_t> slots_;
    bool used_[LEVELS] = {};
    int64_t levelStart_[LEVELS] = {};  // within a slot
    int levelCount_ = 1;
    int64_t depth_ = 0, slotSize_ = 0, lineSize_ = 0, margin_ = 0;
    int64_t sourceBegin_ = 0, sourceEnd_ = 0;  // columns that a line has
    int64_t ringBegin_ = 0;
    int64_t nextRow_ = 0;    // the first source row that has not been read
    int64_t nextJoint_ = 0;  // the first one whose ink has not been joined with that of the rows after it

    Buffer<uint8_t> passed_;  // lines of levels that are only passed through
    Buffer<uint8_t> hasInk_;  // of the slots
    Buffer<uint8_t> ink_;     // of the slots: a bit for each patch of a line, whether it has coverage
    Buffer<uint8_t> joint_;   // of the slots: the ink of BATCH rows from that one on
    Buffer<uint8_t> hasJoint_;
    int64_t inkSize_ = 0;
    Buffer<uint8_t> anyInk_;  // of all lines
    Buffer<const uint8_t*> inks_;
    Buffer<Line> lines_, lineOf_;
    Buffer<Seen> seen_;
    Buffer<int64_t> witnesses_;  // for each block of the target the source row that filled it last
};

// Reads row `index` of the kernel. Cell i brings column before_ - i to a pixel of the target.
void RingDilation::readKernelRow(int64_t index) {
    const int64_t size = param_.kernelSize;
    const uint8_t* cells = param_.kernel + index * size;
    const CellRange run = longestRun(cells, size);
    KernelRow row = {};
    row.offset = before_ - index;
    row.hasRun = run.begin < run.end;
    if (row.hasRun) {
        while (int64_t{2} << row.level <= run.end - run.begin) ++row.level;
        used_[row.level] = true;
        levelCount_ = std::max(levelCount_, row.level + 1);
        const int64_t width = int64_t{1} << row.level;
        row.firstRun = before_ - run.end + 1;
        row.lastRun = before_ - run.begin + 1 - width;
        row.firstAlone = row.firstRun == row.lastRun || row.firstRun + width >= 0;
        row.lastAlone = row.firstRun == row.lastRun || row.lastRun <= 1;
    }
    row.rampBegin = cellCount_;
    for (int64_t i = 0; i < size; ++i) {
        if (i == run.begin) i = std::max(run.begin, run.end - 1);
        if (!isRamp(cells, i, run)) continue;
        const int64_t mirror = 2 * before_ - i;
        const bool twice = mirror < size && isRamp(cells, mirror, run) && cells[mirror] == cells[i];
        if (twice && mirror > i) continue;
        cells_[static_cast<size_t>(cellCount_++)] = {static_cast<ptrdiff_t>(before_ - i),
                                                     static_cast<ptrdiff_t>(before_ - (twice ? mirror : i)),
                                                     static_cast<uint8_t>(255 - cells[i])};
    }
    row.rampEnd = cellCount_;
    if (row.hasRun || row.rampBegin < row.rampEnd) kernelRows_[static_cast<size_t>(kernelRowCount_++)] = row;
}

// From the centre outwards: the widest runs come first, and with them most of what becomes full.
bool RingDilation::readKernel() {
    const int64_t size = param_.kernelSize;
    const uint8_t* kernel = param_.kernel;
    int64_t partial = 0;
    for (int64_t i = 0; i < size * size; ++i) partial += kernel[i] != 0;
    for (int64_t row = 0; row < size; ++row) {
        const CellRange run = longestRun(kernel + row * size, size);
        partial -= run.end - run.begin;
    }
    if (!kernelRows_.allocate(size) || !cells_.allocate(partial + 1)) return false;
    readKernelRow(before_);
    for (int64_t distance = 1; distance <= before_; ++distance) {
        const int64_t i = before_ - distance, mirror = before_ + distance, count = kernelRowCount_;
        readKernelRow(i);
        if (mirror >= size) continue;
        const bool same =
            std::memcmp(kernel + i * size, kernel + mirror * size, static_cast<size_t>(size)) == 0;
        if (!same) {
            readKernelRow(mirror);
        } else if (kernelRowCount_ > count) {
            KernelRow row = kernelRows_[static_cast<size_t>(count)];
            row.offset = -distance;
            kernelRows_[static_cast<size_t>(kernelRowCount_++)] = row;
        }
    }
    setReaches();
    return true;
}

// The patches that each kernel row can reach from a block: as small as 64 bits allow. Up to 7 of these are
// lost because they are read from a byte on.
void RingDilation::setReaches() {
    constexpr int BITS = 57;
    const int64_t reach = std::max(before_, after_);
    int64_t most = 0;
    for (patchShift_ = SMALLEST_PATCH; patchShift_ <= LARGEST_PATCH; ++patchShift_) {
        most = (BITS - (BLOCK >> patchShift_)) / 2;
        patchesBefore_ = std::min((reach + (int64_t{1} << patchShift_) - 1) >> patchShift_, most);
        if (reach <= most << patchShift_) break;
    }
    patchShift_ = std::min(patchShift_, LARGEST_PATCH);
    const int64_t room = patchesBefore_ << patchShift_;
    for (int64_t i = 0; i < kernelRowCount_; ++i) {
        KernelRow& row = kernelRows_[static_cast<size_t>(i)];
        int64_t first = row.hasRun ? row.firstRun : INT64_MAX;
        int64_t last = row.hasRun ? row.lastRun + (int64_t{1} << row.level) - 1 : INT64_MIN;
        for (int64_t cell = row.rampBegin; cell < row.rampEnd; ++cell) {
            first = std::min<int64_t>(first, cells_[static_cast<size_t>(cell)].first);
            last = std::max<int64_t>(last, cells_[static_cast<size_t>(cell)].last);
        }
        if (first < -room || last > room) {
            row.reach = {0, ~uint64_t{0}};
        } else {
            const int64_t firstPatch = (first + room) >> patchShift_;
            const int64_t lastPatch = (last + room + BLOCK - 1) >> patchShift_;
            row.reach = {(uint64_t{2} << lastPatch) - (uint64_t{1} << firstPatch), 0};
        }
        anyReach_.patches |= row.reach.patches;
        anyReach_.always |= row.reach.always;
    }
}

// Where the lines of a slot lie, and from there what the kernel rows read of them.
void RingDilation::setLevels() {
    used_[0] = true;
    int64_t count = 0;
    for (int level = 0; level < levelCount_; ++level)
        levelStart_[level] = used_[level] ? count++ * lineSize_ : 0;
    // An odd number of cache lines: rows one below the other do not share the same few places of a cache.
    slotSize_ = (count * lineSize_ + 2 * CACHE_LINE - 1) / (2 * CACHE_LINE) * (2 * CACHE_LINE) + CACHE_LINE;
    for (int64_t i = 0; i < kernelRowCount_; ++i) {
        KernelRow& row = kernelRows_[static_cast<size_t>(i)];
        row.firstRun += levelStart_[row.level];
        row.lastRun += levelStart_[row.level];
    }
}

bool RingDilation::makeRows() {
    const int64_t blocks = roundUp(endColumn_ - firstColumn_) / BLOCK;
    margin_ = roundUp(std::max(before_, after_));
    lineSize_ = 2 * margin_ + blocks * BLOCK + VECTOR_PAD;
    sourceBegin_ = std::max<int64_t>(0, firstColumn_ - margin_);
    sourceEnd_ = std::min(columns_, endColumn_ + margin_);
    setLevels();
    depth_ = std::max<int64_t>(param_.kernelSize + BATCH - 1, SMALLEST_DEPTH);
    depth_ = std::min<int64_t>(depth_, rowEnd_ - rowBegin_ + 2 * (BATCH - 1));
    inkSize_ = roundUp((lineSize_ >> SMALLEST_PATCH) / 8 + static_cast<int64_t>(sizeof(uint64_t)) + 1);
    const int64_t slots = depth_ + BATCH - 1;
    if (!slots_.allocateZeroed(slots * slotSize_ + lineSize_ + VECTOR_PAD) ||
        !passed_.allocateZeroed(3 * lineSize_) || !hasInk_.allocateZeroed(depth_) ||
        !ink_.allocateZeroed(depth_, inkSize_) || !joint_.allocateZeroed(depth_, inkSize_) ||
        !hasJoint_.allocateZeroed(depth_) || !anyInk_.allocateZeroed(inkSize_) ||
        !inks_.allocate(param_.kernelSize) || !lines_.allocate(param_.kernelSize) ||
        !lineOf_.allocate(param_.kernelSize) || !seen_.allocate(param_.kernelSize + 1) ||
        !witnesses_.allocate(blocks))
        return false;
    std::fill_n(witnesses_.get(), blocks, ringBegin_);
    return true;
}

bool RingDilation::prepare(const DilationParam& param) {
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
    ringBegin_ = std::max<int64_t>(rowBegin_ - (BATCH - 1), firstRow_ - param.originY - after_);
    nextRow_ = nextJoint_ = ringBegin_;
    return readKernel() && makeRows();
}

size_t RingDilation::slotOf(int64_t row) const {
    return static_cast<size_t>((row - ringBegin_) % depth_);
}

// The columns of a source row that are needed, to their places in the line.
void RingDilation::copySource(int64_t row, uint8_t* line) const {
    uint8_t* pixels = line + margin_ - firstColumn_;  // of column 0
    const int64_t left = param_.left, right = columns_ - param_.right;
    const int64_t begin = std::max(sourceBegin_, left), end = std::min(sourceEnd_, right);
    if (row < param_.rowBegin || row >= param_.rowEnd || begin >= end) {
        std::memset(pixels + sourceBegin_, param_.inverted, static_cast<size_t>(sourceEnd_ - sourceBegin_));
        return;
    }
    std::memset(pixels + sourceBegin_, param_.inverted, static_cast<size_t>(begin - sourceBegin_));
    ZVEX_ON_TARGET(copyRow(pixels + begin, param_.source + row * param_.sourceStride + (begin - left),
                           end - begin, param_.inverted));
    std::memset(pixels + end, param_.inverted, static_cast<size_t>(sourceEnd_ - end));
}

uint8_t* RingDilation::slotAt(size_t slot) const {
    return slots_.get() + static_cast<int64_t>(slot) * slotSize_;
}

uint8_t* RingDilation::inkAt(size_t slot) const {
    return ink_.get() + static_cast<int64_t>(slot) * inkSize_;
}

// Where the slot has ink; whether it has any.
bool RingDilation::makeInk(size_t slot) {
    int64_t bytes = (lineSize_ - VECTOR_PAD) / BLOCK;
    if (!ZVEX_ON_TARGET(findInk(inkAt(slot), slotAt(slot), bytes))) return false;
    for (int shift = SMALLEST_PATCH; shift < patchShift_; ++shift) {
        bytes = (bytes + 1) / 2;
        ZVEX_ON_TARGET(halveInk(inkAt(slot), bytes));
    }
    return true;
}

void RingDilation::makeWindows(uint8_t* slot) {
    const uint8_t* pixels = slot;
    uint8_t* passed[2] = {passed_.get(), passed_.get() + lineSize_};
    const int64_t first = margin_ - firstColumn_ + sourceBegin_, end = margin_ - firstColumn_ + sourceEnd_;
    const int64_t begin = std::max<int64_t>(0, first - (int64_t{1} << levelCount_));
    for (int level = 1; level < levelCount_; ++level) {
        const int64_t step = int64_t{1} << (level - 1);
        uint8_t* windows = used_[level] ? slot + levelStart_[level] : passed[level % 2];
        ZVEX_ON_TARGET(doubleWindows(windows + begin, pixels + begin, end - begin, step));
        pixels = windows;
    }
}

// Takes a source row into the ring. Rows beyond the source are empty.
void RingDilation::enterRow(int64_t row) {
    const size_t slot = slotOf(row);
    uint8_t* lines = slotAt(slot);
    const bool wasEmpty = hasInk_[slot] == 0;
    hasInk_[slot] = 0;
    if (row >= rowBegin_ && row < rowEnd_) {
        copySource(row, lines);
        hasInk_[slot] = makeInk(slot);
    }
    if (hasInk_[slot] != 0) {
        makeWindows(lines);
    } else {
        if (wasEmpty) return;
        std::memset(lines, 0, static_cast<size_t>(slotSize_));
        std::memset(inkAt(slot), 0, static_cast<size_t>(inkSize_));
    }
    if (slot < BATCH - 1) std::memcpy(lines + depth_ * slotSize_, lines, static_cast<size_t>(slotSize_));
}

// Notes where the BATCH rows from `row` on have ink.
void RingDilation::joinRows(int64_t row) {
    const size_t slot = slotOf(row);
    const uint8_t* inks[BATCH];
    int64_t count = 0;
    for (int i = 0; i < BATCH; ++i) {
        const size_t other = slotOf(row + i);
        if (hasInk_[other] != 0) inks[count++] = inkAt(other);
    }
    hasJoint_[slot] = count != 0;
    if (count != 0) {
        ZVEX_ON_TARGET(joinInk(joint_.get() + static_cast<int64_t>(slot) * inkSize_, inks, count, inkSize_));
    }
}

// The kernel rows as they lie over the source row `over` and the next ones, those with ink; how many.
int64_t RingDilation::layLines(int64_t over, int64_t firstOffset, int64_t lastOffset) {
    std::fill_n(lineOf_.get(), lastOffset - firstOffset + 1, Line{nullptr, nullptr, {0, 0}, nullptr});
    int64_t count = 0;
    for (int64_t i = 0; i < kernelRowCount_; ++i) {
        const KernelRow& kernel = kernelRows_[static_cast<size_t>(i)];
        if (kernel.offset < firstOffset || kernel.offset > lastOffset) continue;
        const size_t slot = slotOf(over + kernel.offset);
        if (hasJoint_[slot] == 0) continue;
        const uint8_t* ink = joint_.get() + static_cast<int64_t>(slot) * inkSize_;
        const Line line = {slotAt(slot) + margin_, ink, kernel.reach, &kernel};
        if (kernel.hasRun) lineOf_[static_cast<size_t>(kernel.offset - firstOffset)] = line;
        inks_[static_cast<size_t>(count)] = ink;
        lines_[static_cast<size_t>(count++)] = line;
    }
    ZVEX_ON_TARGET(joinInk(anyInk_.get(), inks_.get(), count, inkSize_));
    return count;
}

void RingDilation::raise(int64_t row, int rows, uint8_t* target, int64_t stride) {
    const int64_t over = row - param_.originY;  // the source row under the kernel's centre
    const int64_t firstOffset = std::max(-after_, rowBegin_ - (BATCH - 1) - over);
    const int64_t lastOffset = std::min(before_, rowEnd_ - 1 - over);
    for (; nextRow_ < over + lastOffset + BATCH; ++nextRow_) enterRow(nextRow_);
    for (; nextJoint_ <= nextRow_ - BATCH; ++nextJoint_) joinRows(nextJoint_);

    const int64_t lineCount = layLines(over, firstOffset, lastOffset);
    const Work work = {lines_.get(),
                       lineCount,
                       lineOf_.get(),
                       firstOffset,
                       lastOffset,
                       over,
                       static_cast<ptrdiff_t>(slotSize_),
                       anyInk_.get(),
                       anyReach_,
                       patchShift_,
                       static_cast<int>(patchesBefore_),
                       (margin_ >> patchShift_) - patchesBefore_,
                       cells_.get(),
                       seen_.get()};
    ZVEX_ON_TARGET(raiseRows(target + originX_ + firstColumn_, stride, endColumn_ - firstColumn_, rows, work,
                             witnesses_.get()));
}

}  // namespace

std::unique_ptr<Dilation> Dilation::make(const DilationParam& param) {
    auto dilation = tryMake<RingDilation>();
    if (dilation == nullptr || !dilation->prepare(param)) return nullptr;
    return dilation;
}

bool dilate(const DilationParam& param) {
    const auto dilation = Dilation::make(param);
    if (dilation == nullptr) return false;
    for (int64_t row = dilation->firstRow(); row < dilation->endRow(); row += BATCH) {
        const int64_t rows = std::min<int64_t>(dilation->endRow() - row, BATCH);
        dilation->raise(row, static_cast<int>(rows), param.target + row * param.targetWidth,
                        param.targetWidth);
    }
    return true;
}

}  // namespace Zvex
