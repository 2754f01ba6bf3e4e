// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_PATHEDGE_H_
#define ZVEX_PLATFORM_HOST_PATHEDGE_H_

#include <cstdint>
#include <vector>

namespace host {

// Pixels with 16 fraction bits.
using Fixed = int64_t;
constexpr Fixed kFixedOne = 65536, kFixedQuarter = kFixedOne / 4, kFixedMost = INT32_MAX;

// In two parts, so that a steep slope times a far distance does not overflow.
inline Fixed product(Fixed a, Fixed b) {
    return a * (b >> 16) + ((a * (b & (kFixedOne - 1))) >> 16);
}

struct PathPoint {
    float x, y;
};

// An edge of a path as the platform's canvas has it, in its low precision: a line, or the current step of a
// curve. It runs downwards, and its ends lie on quarters of a pixel.
struct PathEdge {
    Fixed x = 0;      // at upperY at first
    Fixed slope = 0;  // across, for each pixel down
    Fixed climb = 0;  // down, for each pixel across; kFixedMost: vertical
    Fixed upperY = 0, lowerY = 0;
    int winding = 1;  // -1: the path goes up

    // Goes to the curve's next step. False after the last.
    bool next() { return steps > 0 ? nextOfQuad() : steps < 0 && nextOfCubic(); }
    // Lets the next step begin at (x, y), where the current one ended.
    void continueAt(Fixed y);

    // The state of a curve: forward differences, and where the next step begins.
    struct Curve {
        Fixed at, d, dd, ddd, last;
    };
    Curve curveX = {}, curveY = {};
    Fixed fromX = 0, fromY = 0;
    int steps = 0;  // left; negative for a cubic
    int shift = 0, downShift = 0;
    bool turns = false;  // whether y may turn back

    bool setStep(Fixed toX, Fixed toY, Fixed newSlope, bool isLine);
    bool nextOfQuad();
    bool nextOfCubic();
};

// These add the edges of a piece of a path to a list; pieces of no height have none. Curves are cut where
// their y turns back; with `turns`, cubics are not.
void addLine(const PathPoint* points, std::vector<PathEdge>* edges);
void addQuad(const PathPoint* points, std::vector<PathEdge>* edges);
void addCubic(const PathPoint* points, bool turns, std::vector<PathEdge>* edges);

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_PATHEDGE_H_
