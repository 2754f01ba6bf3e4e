// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_DILATION_H_
#define ZVEX_EFFECT_KERNELS_DILATION_H_

#include <cstdint>

#include "effect/kernels/Buffer.h"

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
    int64_t firstRow_ = 0, endRow_ = 0;
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

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_DILATION_H_
