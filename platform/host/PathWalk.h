// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_PATHWALK_H_
#define ZVEX_PLATFORM_HOST_PATHWALK_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/host/PathEdge.h"

namespace host {

// Fills a path of few edges from top to bottom. A row in which edges end or cross is cut into strips of a
// half or a quarter. In each strip, trapezoids between pairs of edges give the coverage.
class PathWalk {
public:
    // `target` has `height` rows of `width` levels, all 0.
    PathWalk(int width, int height, uint8_t* target);

    // The edges' y must not turn back; they are used up.
    void fill(std::vector<PathEdge>* edges);

private:
    // The left and right edge of a trapezoid: where they enter the strip and leave it.
    struct Trapezoid {
        Fixed upperLeft, upperRight, lowerLeft, lowerRight, leftClimb, rightClimb;
    };

    void begin(std::vector<PathEdge>* edges);
    Fixed enter(Fixed y, Fixed stop);
    Fixed stopAtCrossing(size_t at, Fixed y, Fixed stop) const;
    Fixed strip(Fixed y, Fixed nextY);
    bool isClose(const PathEdge& edge, const PathEdge* after, Fixed nextY) const;
    static void cutAtSides(Trapezoid* t, Fixed width);
    void cover(Trapezoid t);
    void coverEnds(const Trapezoid& t);
    void takeLeft(const Trapezoid& t, Fixed first);
    void takeRight(const Trapezoid& t, Fixed first);
    void take(Fixed at, Fixed share);
    void put(Fixed column, Fixed level);
    void putPart(Fixed column, Fixed level);
    void putRun(Fixed begin, Fixed end);
    void finishRow();

    const int mWidth, mHeight;
    uint8_t* const mTarget;
    std::vector<PathEdge*> mWaiting, mActive, mNext;
    size_t mEntered = 0;
    // The strip that is being filled.
    uint8_t* mRow = nullptr;
    Fixed mFull = 0;        // the level of its height
    bool mStraight = true;  // whole rows go straight into the picture, other strips are added up
    std::vector<int> mSums;
    std::vector<Fixed> mShares;
    size_t mSumsBegin = 0, mSumsEnd = 0;
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_PATHWALK_H_
