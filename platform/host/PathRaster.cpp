// SPDX-License-Identifier: Apache-2.0
#include "platform/host/PathRaster.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "platform/host/PathWalk.h"

namespace host {

namespace {

constexpr size_t kBlock = 16;         // pixels
constexpr size_t kMostWalked = 4096;  // points

uint8_t levelOf(int share) {
    return static_cast<uint8_t>(std::min(std::abs(share) >> 8, 255));
}

// The area of a triangle; its height is `width` times `climb`. Each factor keeps only its upper five fraction
// bits.
Fixed triangle(Fixed width, Fixed climb) {
    return std::clamp<Fixed>((width >> 11) * (width >> 11) * (climb >> 11), 0, kFixedOne);
}

}  // namespace

PathRaster::PathRaster(int width, int height, int left, int top)
    : mWidth(width),
      mHeight(height),
      mLeft(static_cast<float>(left)),
      mTop(static_cast<float>(top)),
      mBlocks((static_cast<size_t>(width) + kBlock - 1) / kBlock) {}

void PathRaster::moveTo(const PathPoint& to) {
    mPoints.push_back({to.x - mLeft, to.y - mTop});
    mPieces.push_back(0);
}

void PathRaster::add(const PathPoint* points, size_t count) {
    for (size_t i = 0; i < count; ++i) mPoints.push_back({points[i].x - mLeft, points[i].y - mTop});
    mPieces.push_back(static_cast<uint8_t>(count));
}

bool PathRaster::hasManyPoints() const {
    const auto byX = [](const PathPoint& a, const PathPoint& b) { return a.x < b.x; };
    const auto byY = [](const PathPoint& a, const PathPoint& b) { return a.y < b.y; };
    const auto x = std::minmax_element(mPoints.begin(), mPoints.end(), byX);
    const auto y = std::minmax_element(mPoints.begin(), mPoints.end(), byY);
    const float size = std::max(x.second->x - x.first->x, y.second->y - y.first->y);
    return mPoints.size() > kMostWalked || static_cast<float>(mPoints.size()) >= size / 8;
}

std::vector<PathEdge> PathRaster::edges(bool turns) const {
    std::vector<PathEdge> edges;
    const PathPoint* next = mPoints.data();
    for (const uint8_t count : mPieces) {
        if (count == 1) addLine(next - 1, &edges);
        if (count == 2) addQuad(next - 1, &edges);
        if (count == 3) addCubic(next - 1, turns, &edges);
        next += std::max<size_t>(count, 1);
    }
    return edges;
}

void PathRaster::fill(uint8_t* target) {
    if (mPoints.empty()) return;
    const bool turns = hasManyPoints();
    std::vector<PathEdge> list = edges(turns);
    if (!turns) {
        PathWalk(mWidth, mHeight, target).fill(&list);
        return;
    }
    mChanges.reset(new int[mBlocks * kBlock * static_cast<size_t>(mHeight)]);
    mTouched.resize(mBlocks * static_cast<size_t>(mHeight));
    for (PathEdge& edge : list) addShares(&edge);
    for (size_t row = 0; row < static_cast<size_t>(mHeight); ++row) {
        levelsOfRow(row, target + row * static_cast<size_t>(mWidth));
    }
}

void PathRaster::put(int row, Fixed column, Fixed change) {
    if (column >= mWidth) return;
    const auto x = static_cast<size_t>(std::max<Fixed>(column, 0));
    const size_t block = static_cast<size_t>(row) * mBlocks + x / kBlock;
    int* changes = &mChanges[block * kBlock];
    if (mTouched[block] == 0) {
        mTouched[block] = 1;
        std::fill_n(changes, kBlock, 0);
    }
    changes[x % kBlock] += static_cast<int>(change);
}

// All steps of an edge, row by row.
void PathRaster::addShares(PathEdge* edge) {
    const Fixed bottom = Fixed{mHeight} * kFixedOne;
    do {
        Fixed x = edge->x, y = edge->upperY;
        const Fixed end = std::min(edge->lowerY, bottom);
        if (y < 0 && y < end) {
            x += product(edge->slope, -y);
            y = 0;
        }
        while (y < end) {
            const Fixed row = y >> 16, next = std::min(end, (row + 1) * kFixedOne);
            const Fixed to = x + product(edge->slope, next - y);
            addShare(static_cast<int>(row), next - y, x, to, *edge);
            x = to;
            y = next;
        }
    } while (edge->next());
}

// Adds the area to the right of an edge within a row, over `height`.
void PathRaster::addShare(int row, Fixed height, Fixed from, Fixed to, const PathEdge& edge) {
    const Fixed left = std::min(from, to), right = std::max(from, to);
    const Fixed first = left >> 16, count = ((right + kFixedOne - 1) >> 16) - first;
    Fixed before = 0;
    const auto step = [&](Fixed i, Fixed share) {
        put(row, first + i, (share - before) * edge.winding);
        before = share;
    };
    const Fixed head = (first + 1) * kFixedOne - left, tail = right - (first + count - 1) * kFixedOne;
    if (count == 1) {
        step(0, product(kFixedOne - (((left + right) >> 1) - first * kFixedOne), height));
    } else if (count == 2) {
        step(0, triangle(head, edge.climb));
        step(1, height - triangle(tail, edge.climb));
    } else if (count > 2) {
        const Fixed headHeight = product(head, edge.climb);
        step(0, product(head, headHeight) >> 1);
        for (Fixed i = std::max<Fixed>(1, -first); i < count - 1 && first + i < mWidth; ++i) {
            step(i, headHeight + (edge.climb >> 1) + (i - 1) * edge.climb);
        }
        step(count - 1, height - triangle(tail, edge.climb));
    }
    step(count, height);
}

// Between the blocks with an edge the level stays the same.
void PathRaster::levelsOfRow(size_t row, uint8_t* target) const {
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
}

}  // namespace host
