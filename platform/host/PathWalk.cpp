// SPDX-License-Identifier: Apache-2.0
#include "platform/host/PathWalk.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace host {

namespace {

Fixed ceiling(Fixed v) {
    return (v + kFixedOne - 1) & -kFixedOne;
}
Fixed wholeAbove(Fixed v) {
    return (v + kFixedOne - 1) >> 16;
}
// Levels wrap around, as bytes do.
Fixed byteOf(Fixed level) {
    return level & 255;
}
Fixed trapezoid(Fixed a, Fixed b) {
    return byteOf((a + b) / 2 >> 8);
}
// Each factor keeps only its upper five fraction bits.
Fixed triangle(Fixed width, Fixed climb) {
    return byteOf((width >> 11) * (width >> 11) * (climb >> 11) >> 8);
}
uint8_t over(Fixed level, uint8_t below) {
    return static_cast<uint8_t>(level + (below * (255 - level) + 127) / 255);
}

// The first of two places after y.
Fixed firstAfter(Fixed y, Fixed place, Fixed stop) {
    return place > y ? std::min(place, stop) : stop;
}

}  // namespace

// Edges beyond the picture move nearer, so that few pixels outside are filled.
void PathWalk::cutAtSides(Trapezoid* t, Fixed width) {
    const Fixed right = std::max(width, ceiling(std::max(t->upperLeft, t->lowerLeft)));
    if (std::min(t->upperRight, t->lowerRight) > right) t->upperRight = t->lowerRight = right;
    const Fixed left = std::min<Fixed>(0, std::min(t->upperRight, t->lowerRight) & -kFixedOne);
    if (std::max(t->upperLeft, t->lowerLeft) < left) t->upperLeft = t->lowerLeft = left;
}

PathWalk::PathWalk(int width, int height, uint8_t* target)
    : mWidth(width), mHeight(height), mTarget(target), mSums(static_cast<size_t>(width)) {}

// Leaves out what lies above the picture.
void PathWalk::begin(std::vector<PathEdge>* edges) {
    for (PathEdge& edge : *edges) {
        bool lives = true;
        while (lives && edge.lowerY <= 0) {
            edge.x += product(edge.slope, edge.lowerY - edge.upperY);
            edge.continueAt(edge.lowerY);
            lives = edge.next();
        }
        if (!lives) continue;
        if (edge.upperY < 0) {
            edge.x += product(edge.slope, -edge.upperY);
            edge.upperY = 0;
        }
        mWaiting.push_back(&edge);
    }
    std::stable_sort(mWaiting.begin(), mWaiting.end(), [](const PathEdge* a, const PathEdge* b) {
        if (a->upperY != b->upperY) return a->upperY < b->upperY;
        return a->x != b->x ? a->x < b->x : a->slope < b->slope;
    });
}

void PathWalk::fill(std::vector<PathEdge>* edges) {
    begin(edges);
    const Fixed bottom = Fixed{mHeight} * kFixedOne;
    Fixed y = 0, stop = kFixedMost;
    while (y < bottom) {
        if (mActive.empty()) {
            if (mEntered == mWaiting.size()) break;
            const Fixed next = std::max(y, mWaiting[mEntered]->upperY);
            if (next >> 16 != y >> 16) finishRow();
            y = next;
            if (y >= bottom) break;
        }
        stop = enter(y, stop);
        Fixed nextY = std::min(stop, ceiling(y + 1));
        if (((nextY - y) & kFixedQuarter) != 0) nextY = y + kFixedQuarter;
        mRow = mTarget + static_cast<size_t>(y >> 16) * static_cast<size_t>(mWidth);
        stop = strip(y, nextY);
        if (nextY >> 16 != y >> 16) finishRow();
        y = nextY;
    }
    finishRow();
}

// Takes in the edges that begin at y. Returns the next place where a strip must end.
Fixed PathWalk::enter(Fixed y, Fixed stop) {
    for (; mEntered < mWaiting.size() && mWaiting[mEntered]->upperY <= y; ++mEntered) {
        PathEdge* edge = mWaiting[mEntered];
        size_t at = mActive.size();
        while (at > 0 && mActive[at - 1]->x > edge->x) --at;
        mActive.insert(mActive.begin() + static_cast<ptrdiff_t>(at), edge);
        stop = firstAfter(y, edge->lowerY, stopAtCrossing(at, y, stop));
    }
    return mEntered < mWaiting.size() ? firstAfter(y, mWaiting[mEntered]->upperY, stop) : stop;
}

// A strip is short where an edge and the one before it cross within a row.
Fixed PathWalk::stopAtCrossing(size_t at, Fixed y, Fixed stop) const {
    const bool cross =
        at > 0 && mActive[at - 1]->x + mActive[at - 1]->slope > mActive[at]->x + mActive[at]->slope;
    return cross ? y + kFixedQuarter : stop;
}

// Whether the edge right of this one comes within a pixel of it.
bool PathWalk::isClose(const PathEdge& edge, const PathEdge* after, Fixed nextY) const {
    return after != nullptr && after->upperY < nextY &&
           edge.x + kFixedOne >= after->x - std::abs(after->slope);
}

// Fills from y to nextY and moves the edges there. Returns where the next strip must end.
Fixed PathWalk::strip(Fixed y, Fixed nextY) {
    const Fixed height = nextY - y, width = Fixed{mWidth} * kFixedOne;
    const int halvings = height == kFixedOne ? 0 : height == kFixedOne / 2 ? 1 : 2;
    mFull = (255 * height + kFixedOne / 2) >> 16;
    Fixed stop = kFixedMost, lastRight = 0, rightmost = -kFixedMost, upperLeft = 0;
    const PathEdge* left = nullptr;
    Fixed leftClimb = 0;
    int winding = 0;
    mNext.swap(mActive);
    mActive.clear();
    for (size_t i = 0; i < mNext.size(); ++i) {
        PathEdge* edge = mNext[i];
        const Fixed upper = edge->x;
        edge->x += edge->slope >> halvings;
        const bool wasInside = winding != 0;
        winding += edge->winding;
        if (winding != 0 && !wasInside) {
            left = edge;
            leftClimb = edge->climb;
            upperLeft = upper;
        } else if (winding == 0 && wasInside) {
            Trapezoid t = {upperLeft, upper, left->x, edge->x, leftClimb, edge->climb};
            cutAtSides(&t, width);
            const PathEdge* after = i + 1 < mNext.size()         ? mNext[i + 1]
                                    : mEntered < mWaiting.size() ? mWaiting[mEntered]
                                                                 : nullptr;
            mStraight = mFull == 255 && lastRight <= upperLeft >> 16 && lastRight <= left->x >> 16 &&
                        !isClose(*edge, after, nextY);
            cover(t);
            lastRight = wholeAbove(std::max(t.upperRight, edge->x));
        }
        while (edge->lowerY <= nextY) {
            edge->continueAt(nextY);
            if (!edge->next()) break;
        }
        if (edge->lowerY <= nextY) continue;
        stop = firstAfter(nextY, edge->lowerY, stop);
        size_t at = mActive.size();
        if (edge->x < rightmost) {
            while (at > 0 && mActive[at - 1]->x > edge->x) --at;
        }
        rightmost = std::max(rightmost, edge->x);
        mActive.insert(mActive.begin() + static_cast<ptrdiff_t>(at), edge);
        stop = stopAtCrossing(at, nextY, stop);
    }
    return stop;
}

void PathWalk::put(Fixed column, Fixed level) {
    if (column < 0 || column >= mWidth) return;
    const auto x = static_cast<size_t>(column);
    if (mStraight) {
        mRow[x] = over(level, mRow[x]);
        return;
    }
    if (mSumsBegin == mSumsEnd) mSumsBegin = mSumsEnd = x;
    mSumsBegin = std::min(mSumsBegin, x);
    mSumsEnd = std::max(mSumsEnd, x + 1);
    mSums[x] = std::min(255, mSums[x] + static_cast<int>(level));
}

// A level of the whole height.
void PathWalk::putPart(Fixed column, Fixed level) {
    put(column, mStraight ? level : level * mFull >> 8);
}

void PathWalk::putRun(Fixed begin, Fixed end) {
    begin = std::max<Fixed>(begin, 0);
    end = std::min<Fixed>(end, mWidth);
    if (mStraight && begin < end) {
        std::memset(mRow + begin, 255, static_cast<size_t>(end - begin));
        return;
    }
    for (; begin < end; ++begin) put(begin, mFull);
}

// The canvas rounds sums near the ends of the range.
void PathWalk::finishRow() {
    for (size_t x = mSumsBegin; x < mSumsEnd; ++x) {
        const int sum = std::exchange(mSums[x], 0);
        mRow[x] = over(sum > 247 ? 255 : sum < 8 ? 0 : sum, mRow[x]);
    }
    mSumsBegin = mSumsEnd = 0;
}

void PathWalk::cover(Trapezoid t) {
    if (t.upperLeft > t.upperRight) return;
    if (t.lowerLeft > t.lowerRight) t.lowerLeft = t.lowerRight = (t.lowerLeft + t.lowerRight) / 2;
    if (t.upperLeft == t.upperRight && t.lowerLeft == t.lowerRight) return;
    if (t.upperLeft > t.lowerLeft) std::swap(t.upperLeft, t.lowerLeft);
    if (t.upperRight > t.lowerRight) std::swap(t.upperRight, t.lowerRight);
    const Fixed innerLeft = ceiling(t.lowerLeft), innerRight = t.upperRight & -kFixedOne;
    if (innerLeft > innerRight) {
        coverEnds(t);
        return;
    }
    const Fixed leftCount = wholeAbove(innerLeft - t.upperLeft), first = t.upperLeft >> 16;
    if (leftCount == 1) {
        putPart(first, trapezoid(innerLeft - t.upperLeft, innerLeft - t.lowerLeft));
    } else if (leftCount == 2) {
        const Fixed head = innerLeft - kFixedOne - t.upperLeft;
        put(first, triangle(head, t.leftClimb));
        put(first + 1, byteOf(mFull - triangle(t.lowerLeft - t.upperLeft - head, t.leftClimb)));
    } else if (leftCount > 2) {
        coverEnds({t.upperLeft, innerLeft, t.lowerLeft, innerLeft, t.leftClimb, kFixedMost});
    }
    putRun(innerLeft >> 16, innerRight >> 16);
    const Fixed rightCount = wholeAbove(t.lowerRight - innerRight), last = innerRight >> 16;
    if (rightCount == 1) {
        putPart(last, trapezoid(t.upperRight - innerRight, t.lowerRight - innerRight));
    } else if (rightCount == 2) {
        const Fixed head = innerRight + kFixedOne - t.upperRight;
        put(last, byteOf(mFull - triangle(head, t.rightClimb)));
        put(last + 1, triangle(t.lowerRight - t.upperRight - head, t.rightClimb));
    } else if (rightCount > 2) {
        coverEnds({innerRight, t.upperRight, innerRight, t.lowerRight, kFixedMost, t.rightClimb});
    }
}

// Takes what is left of the left edge and right of the right edge from full pixels.
void PathWalk::coverEnds(const Trapezoid& t) {
    const Fixed first = t.upperLeft >> 16, count = wholeAbove(t.lowerRight) - first;
    if (count == 1) putPart(first, trapezoid(t.upperRight - t.upperLeft, t.lowerRight - t.lowerLeft));
    if (count <= 1) return;
    mShares.assign(static_cast<size_t>(count), mFull);
    takeLeft(t, first);
    takeRight(t, first);
    for (size_t i = 0; i < mShares.size(); ++i) put(first + static_cast<Fixed>(i), mShares[i]);
}

void PathWalk::take(Fixed at, Fixed share) {
    Fixed& level = mShares[static_cast<size_t>(at)];
    level = std::max<Fixed>(level - byteOf(share), 0);
}

void PathWalk::takeLeft(const Trapezoid& t, Fixed first) {
    const Fixed upper = t.upperLeft - first * kFixedOne, lower = t.lowerLeft - first * kFixedOne;
    const Fixed count = wholeAbove(lower), head = kFixedOne - upper, tail = lower - (count - 1) * kFixedOne;
    if (count == 1) take(0, trapezoid(upper, lower) * mFull >> 8);
    if (count < 2) return;
    take(0, mFull - triangle(head, t.leftClimb));
    const Fixed tailHeight = product(tail, t.leftClimb);
    take(count - 1, count == 2 ? triangle(tail, t.leftClimb) : product(tail, tailHeight) >> 9);
    Fixed share = tailHeight + (t.leftClimb >> 1);
    for (Fixed i = count - 2; i > 0 && first + i >= 0; --i, share += t.leftClimb) take(i, share >> 8);
}

void PathWalk::takeRight(const Trapezoid& t, Fixed first) {
    const Fixed place = t.upperRight >> 16, at = place - first;
    const Fixed upper = t.upperRight - place * kFixedOne, lower = t.lowerRight - place * kFixedOne;
    const Fixed count = wholeAbove(lower), head = kFixedOne - upper, tail = lower - (count - 1) * kFixedOne;
    if (count == 1) take(at, byteOf((2 * kFixedOne - upper - lower) >> 9) * mFull >> 8);
    if (count < 2) return;
    const Fixed headHeight = product(head, t.rightClimb);
    take(at, count == 2 ? triangle(head, t.rightClimb) : product(head, headHeight) >> 9);
    take(at + count - 1, mFull - triangle(tail, t.rightClimb));
    Fixed share = headHeight + (t.rightClimb >> 1);
    for (Fixed i = 1; i < count - 1 && place + i < mWidth; ++i, share += t.rightClimb)
        take(at + i, share >> 8);
}

}  // namespace host
