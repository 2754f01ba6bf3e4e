// SPDX-License-Identifier: Apache-2.0
//
// Two passes, vertical first. The vertical pass makes one source-wide row at a time, so the only scratch
// memory is one row.
#include "platform/host/ResampleAlpha.h"

#include <algorithm>
#include <vector>

namespace host {

namespace {

constexpr int64_t kOne = 65536;

// The source pixels under a box and their weights.
struct Taps {
    int first = 0;
    std::vector<uint32_t> weights;  // of 65536; a smaller sum where the box extends beyond the source

    // `box` is the box's width, at least kOne, below 2^47.
    void set(int64_t centre, int64_t box, int length) {
        const int64_t begin = centre - box / 2, end = begin + box;
        first = 0;
        weights.clear();
        if (end <= 0 || begin >= length * kOne) return;
        first = static_cast<int>(std::max<int64_t>(begin, 0) / kOne);
        const int last = static_cast<int>((std::min(end, length * kOne) + kOne - 1) / kOne);
        // Weights are differences of rounded running sums, so rounding does not change their total.
        const auto sumUpTo = [&](int64_t position) {
            const int64_t inside = std::min(std::max<int64_t>(position - begin, 0), box);
            return (inside * kOne + box / 2) / box;
        };
        int64_t before = sumUpTo(first * kOne);
        for (int pixel = first; pixel < last; ++pixel) {
            const int64_t after = sumUpTo((pixel + 1) * kOne);
            weights.push_back(static_cast<uint32_t>(after - before));
            before = after;
        }
    }
};

}  // namespace

void resampleAlpha(const ResampleParam& p) {
    const int64_t boxWidth = std::max(kOne, p.xStep < 0 ? -p.xStep : p.xStep);
    const int64_t boxHeight = std::max(kOne, p.yStep);
    std::vector<uint32_t> row(static_cast<size_t>(p.sourceWidth));  // vertical means, 8 fraction bits
    std::vector<Taps> columns(static_cast<size_t>(p.targetWidth));
    Taps rows;
    uint8_t* target = p.target;
    for (int j = 0; j < p.targetHeight; ++j, target += p.targetWidth) {
        rows.set(p.y + j * p.yStep, boxHeight, p.sourceHeight);
        std::fill(row.begin(), row.end(), 0);
        for (size_t tap = 0; tap < rows.weights.size(); ++tap) {
            const uint8_t* source = p.source + (rows.first + static_cast<ptrdiff_t>(tap)) * p.sourceStride;
            for (uint32_t& sum : row) {
                sum += rows.weights[tap] * *source;  // at most 65536 * 255
                source += p.sourceStep;
            }
        }
        for (uint32_t& sum : row) sum = (sum + 128) >> 8;  // at most 255 * 256

        if (j == 0 || p.xShear != 0) {
            for (int i = 0; i < p.targetWidth; ++i) {
                columns[static_cast<size_t>(i)].set(p.x + i * p.xStep + j * p.xShear, boxWidth,
                                                    p.sourceWidth);
            }
        }
        for (int i = 0; i < p.targetWidth; ++i) {
            const Taps& taps = columns[static_cast<size_t>(i)];
            uint32_t sum = 0;  // at most 65536 * 255 * 256, and half a unit more still fits 32 bits
            for (size_t tap = 0; tap < taps.weights.size(); ++tap) {
                sum += taps.weights[tap] * row[static_cast<size_t>(taps.first) + tap];
            }
            target[i] = static_cast<uint8_t>((sum + (1u << 23)) >> 24);
        }
    }
}

}  // namespace host
