// SPDX-License-Identifier: Apache-2.0
#include "platform/host/PathRaster.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace host {

namespace {

constexpr int64_t kOne = 65536;  // coordinates have 16 fraction bits here
constexpr size_t kBlock = 16;    // pixels

uint8_t levelOf(int sum) {
    return static_cast<uint8_t>(std::clamp(sum, 0, 255));
}

int64_t product(int64_t a, int64_t b) {
    return (a * b) >> 16;
}

// The area of a triangle, of 256. `width` is its width; its height is width times `climb`. Each factor keeps
// only its upper five fraction bits.
int triangle(int64_t width, int64_t climb) {
    const int64_t short5 = width >> 11;
    return static_cast<int>(short5 * short5 * std::min<int64_t>(climb >> 11, 1 << 20) >> 8 & 255);
}

}  // namespace

PathRaster::PathRaster(int width, int height, bool fillsRight)
    : mWidth(width),
      mHeight(height),
      mFillsRight(fillsRight),
      mBlocks((static_cast<size_t>(width) + kBlock - 1) / kBlock),
      mChanges(new int[mBlocks * kBlock * static_cast<size_t>(height)]),
      mTouched(mBlocks * static_cast<size_t>(height)) {}

void PathRaster::put(int row, int64_t column, int change) {
    if (column >= mWidth) return;
    const auto x = static_cast<size_t>(std::max<int64_t>(column, 0));
    const size_t block = static_cast<size_t>(row) * mBlocks + x / kBlock;
    int* changes = &mChanges[block * kBlock];
    if (mTouched[block] == 0) {
        mTouched[block] = 1;
        std::fill_n(changes, kBlock, 0);
    }
    changes[x % kBlock] += change;
}

// Adds one edge within a row, or the part of it whose height gives `full`. `begins`: pixels right of it are
// added, else removed. `climb` is the edge's height for each pixel across.
void PathRaster::strip(int row, int64_t left, int64_t right, int64_t climb, int full, bool begins) {
    const int64_t first = left >> 16;
    const int64_t l = left - first * kOne, r = right - first * kOne;
    const int64_t count = std::max<int64_t>((r + kOne - 1) >> 16, 1);
    const int sign = begins ? 1 : -1;
    int before = 0;
    const auto step = [&](int64_t i, int64_t level) {
        const int now = static_cast<int>(std::clamp<int64_t>(level, 0, full));
        put(row, first + i, sign * (now - before));
        before = now;
    };
    const auto part = [full](int64_t level) {
        level = std::min<int64_t>(level, 255);
        return full == 255 ? level : level * full >> 8;
    };
    if (count == 1) {
        step(0, begins ? part(((kOne - l) + (kOne - r)) / 2 >> 8) : full - part((l + r) / 2 >> 8));
    } else {
        const int64_t head = kOne - l, tail = r - (count - 1) * kOne;
        const int64_t headHeight = product(head, climb), tailHeight = product(tail, climb);
        const bool two = count == 2;
        step(0, two || begins ? triangle(head, climb) : product(head, headHeight) >> 9);
        for (int64_t i = 1; i < count - 1; ++i) {
            if (first + i >= mWidth) break;
            step(i, begins ? full - ((tailHeight + climb / 2 + (count - 2 - i) * climb) >> 8)
                           : (headHeight + climb / 2 + (i - 1) * climb) >> 8);
        }
        step(count - 1, full - (two || !begins ? triangle(tail, climb) : product(tail, tailHeight) >> 9));
    }
    step(count, full);
}

void PathRaster::line(double fromX, double fromY, double toX, double toY) {
    if (fromY == toY) return;
    const bool rises = fromY > toY;
    if (rises) {
        std::swap(fromX, toX);
        std::swap(fromY, toY);
    }
    const double slope = (toX - fromX) / (toY - fromY);
    const double perPixel = slope == 0 ? 1e9 : std::min(1 / std::fabs(slope), 1e9);
    const auto climb = static_cast<int64_t>(perPixel * kOne);
    const auto fixed = [](double v) { return static_cast<int64_t>(std::floor(v * kOne)); };
    double y = std::max(fromY, 0.0);
    const double end = std::min<double>(toY, mHeight);
    while (y < end) {
        const int row = static_cast<int>(y);
        const double next = std::min(end, row + 1.0);
        const int64_t a = fixed(fromX + (y - fromY) * slope), b = fixed(fromX + (next - fromY) * slope);
        // Rounded so that the parts of a row add up to 255.
        const int full = static_cast<int>((next - row) * 255 + 0.5) - static_cast<int>((y - row) * 255 + 0.5);
        strip(row, std::min(a, b), std::max(a, b), climb, full, rises == mFillsRight);
        y = next;
    }
}

void PathRaster::levels(uint8_t* target) const {
    for (size_t row = 0; row < static_cast<size_t>(mHeight); ++row) target = levelsOfRow(row, target);
}

// Between the blocks with an edge the level stays the same.
uint8_t* PathRaster::levelsOfRow(size_t row, uint8_t* target) const {
    const uint8_t* touched = &mTouched[row * mBlocks];
    const uint8_t* const end = target + mWidth;
    int sum = 0;
    for (size_t block = 0; block < mBlocks;) {
        size_t next = block;
        while (next < mBlocks && touched[next] == 0) ++next;
        if (next > block) {
            const size_t count = std::min(static_cast<size_t>(end - target), (next - block) * kBlock);
            std::memset(target, levelOf(sum), count);
            target += count;
        } else {
            const int* changes = &mChanges[(row * mBlocks + next++) * kBlock];
            const size_t count = std::min(static_cast<size_t>(end - target), kBlock);
            for (size_t i = 0; i < count; ++i) target[i] = levelOf(sum += changes[i]);
            target += count;
        }
        block = next;
    }
    return target;
}

}  // namespace host
