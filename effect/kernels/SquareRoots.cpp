// SPDX-License-Identifier: Apache-2.0
#include "effect/kernels/SquareRoots.h"

#include <cmath>
#include <cstddef>

namespace Zvex {

namespace {

// The root of `square` in thousandths, to the nearest; `whole` is its whole part. There is never a tie: the f
// thousandths beyond the whole part are reached when
//     (whole + (2 * f - 1) / 2000)^2 <= square,
// and, multiplied out, one side is odd and the other even. Integers only: whole is below 2^32 and square -
// whole^2 at most 2 * whole, so neither side reaches 2^56.
constexpr int64_t thousandths(int64_t square, int64_t whole) {
    const int64_t rest = square - whole * whole;
    int64_t reached = 0, beyond = 1001;
    while (beyond - reached > 1) {
        const int64_t middle = (reached + beyond) / 2, odd = 2 * middle - 1;
        if (odd * (4000 * whole + odd) <= 4000000 * rest) {
            reached = middle;
        } else {
            beyond = middle;
        }
    }
    return 1000 * whole + reached;
}

// Divides in double precision first: for counts that a float holds exactly (roots below 16777), rounding
// twice still gives the nearest float.
constexpr float fromThousandths(int64_t count) {
    return static_cast<float>(static_cast<double>(count) / 1000.0);
}

constexpr int64_t kTableSize = 5490;

struct Table {
    float roots[kTableSize];
};

constexpr Table makeTable() {
    Table table{};
    int64_t whole = 0;
    for (int64_t i = 0; i < kTableSize; ++i) {
        if ((whole + 1) * (whole + 1) <= i) ++whole;
        table.roots[i] = fromThousandths(thousandths(i, whole));
    }
    return table;
}

constexpr Table kTable = makeTable();

// The whole part of a root. It may be one too small for a square too large for a double; the nearest
// thousandth comes out right either way. It is never too large, or its own square might not fit.
int64_t wholeRoot(int64_t square) {
    int64_t root = static_cast<int64_t>(std::sqrt(static_cast<double>(square)));
    while (root > square / root) --root;
    return root;
}

}  // namespace

const float (&ZV_INT_SQRT_TABLE)[5490] = kTable.roots;

float integerRoot(int64_t square) {
    if (square < 0) return 0.0f;
    if (square < kTableSize) return kTable.roots[static_cast<size_t>(square)];
    return fromThousandths(thousandths(square, wholeRoot(square)));
}

}  // namespace Zvex
