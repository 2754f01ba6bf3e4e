// SPDX-License-Identifier: Apache-2.0
//
// A direct scan: every source pixel lays the kernel over the target, at columns * rows * kernelSize^2 steps
// at most. Pixels of value 0 add nothing and are skipped whole. The definition is
// tests/reference/StrokeReference.h.

#include "effect/filters/Dilation.h"

#include <algorithm>
#include <cstddef>

namespace Zvex {

namespace {

// target[i] = max(target[i], value + kernel[i] - 255). A sum that stays below 255 is a candidate below 0 and
// never wins over a byte.
void raiseRow(uint8_t* target, const uint8_t* kernel, ptrdiff_t count, int value) {
    const int shift = value - 255;
    for (ptrdiff_t i = 0; i < count; ++i) {
        target[i] = static_cast<uint8_t>(std::max<int>(target[i], kernel[i] + shift));
    }
}

}  // namespace

void dilate(const DilationParam& p) {
    const int64_t size = p.kernelSize;
    const int64_t radius = size / 2;
    for (int64_t row = p.rowBegin; row < p.rowEnd; ++row) {
        const int64_t top = p.originY + row - radius;  // target row under the kernel's first one
        const int64_t kernelTop = std::max<int64_t>(0, -top);
        const int64_t kernelBottom = std::min<int64_t>(size, p.targetHeight - top);
        const uint8_t* source = p.source + row * p.sourceStride;
        for (int64_t column = 0; column < p.columns; ++column) {
            const int value = source[column] ^ p.inverted;
            if (value == 0) continue;
            const int64_t left = p.originX + column - radius;
            const int64_t kernelLeft = std::max<int64_t>(0, -left);
            const int64_t kernelRight = std::min<int64_t>(size, p.targetWidth - left);
            for (int64_t y = kernelTop; y < kernelBottom; ++y) {
                raiseRow(p.target + (top + y) * p.targetWidth + left + kernelLeft,
                         p.kernel + y * size + kernelLeft, static_cast<ptrdiff_t>(kernelRight - kernelLeft),
                         value);
            }
        }
    }
}

}  // namespace Zvex
