// SPDX-License-Identifier: Apache-2.0
#include "platform/host/PathEdge.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace host {

namespace {

constexpr int kMostStepBits = 6;

// From 16 fraction bits to the 6 in which the canvas divides.
Fixed to6(Fixed v) {
    return v >> 10;
}
Fixed nearestQuarter(Fixed y) {
    return (y + kFixedQuarter / 2) & -kFixedQuarter;
}
// The quotient of two numbers with 6 fraction bits. The canvas has a table for small ones.
Fixed quotient(Fixed a, Fixed b) {
    if (std::abs(b) >= 8 && std::abs(b) < 1024 && std::abs(a) < 4096) return (a * ((1 << 22) / b)) >> 6;
    return std::clamp(a * kFixedOne / b, -kFixedMost, kFixedMost);
}

// Coordinates with 8 fraction bits. What is not a number lies far left or above.
Fixed to8(float v) {
    constexpr float kFar = 1 << 24;  // pixels
    return static_cast<Fixed>(std::floor(std::min(std::max(-kFar, v), kFar) * 256));
}

// From how far a curve is off its chord, in 256ths of a pixel.
int stepBits(Fixed x, Fixed y) {
    x = std::abs(x);
    y = std::abs(y);
    const Fixed eighths = ((x > y ? x + (y >> 1) : y + (x >> 1)) + 16) >> 5;
    int bits = 0;
    while (bits < 2 * kMostStepBits && eighths >> bits != 0) ++bits;
    return bits / 2;
}

PathPoint between(const PathPoint& a, const PathPoint& b, float t) {
    return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
}

}  // namespace

// From (fromX, fromY). False if the step has no height.
bool PathEdge::setStep(Fixed toX, Fixed toY, Fixed newSlope, bool isLine) {
    if (turns) winding = fromY > toY ? -1 : 1;
    const bool up = fromY > toY;
    const Fixed dx = to6(up ? fromX - toX : toX - fromX), dy = to6(up ? fromY - toY : toY - fromY);
    if (dy == 0) return false;
    x = up ? toX : fromX;
    upperY = std::min(fromY, toY);
    lowerY = std::max(fromY, toY);
    slope = newSlope;
    // A table again; it takes the slope of a line in other units than that of a curve.
    const Fixed steep = std::abs(isLine ? slope : to6(slope));
    const bool vertical = dx == 0 || steep == 0;
    climb = vertical ? kFixedMost : steep < 1024 ? (1 << 22) / steep : std::abs(quotient(dy, dx));
    return true;
}

void PathEdge::continueAt(Fixed y) {
    (steps < 0 ? curveX.at : fromX) = x;
    fromY = y;
}

// Long steps end on whole rows. Steps that end on the same quarter join the next one.
bool PathEdge::nextOfQuad() {
    const auto slopeTo = [this](Fixed toX, Fixed toY) {
        const Fixed dy = to6(toY - fromY);
        return dy != 0 ? quotient(to6(toX - fromX), dy) : kFixedMost;
    };
    Fixed toX = 0, toY = 0;
    bool found = false;
    while (steps > 0 && !found) {
        const bool isLast = --steps == 0;
        const Fixed newX = isLast ? curveX.last : curveX.at + (curveX.d >> shift);
        const Fixed newY = isLast ? curveY.last : curveY.at + (curveY.d >> shift);
        const bool isLong = !isLast && std::abs(curveY.d >> shift) >= 2 * kFixedOne;
        toX = newX;
        toY = isLong ? (newY + kFixedOne / 2) & -kFixedOne : nearestQuarter(newY);
        toY = std::min(curveY.last, toY);
        const Fixed newSlope = slopeTo(newX, isLong ? newY : toY);
        if (isLong) toX -= product(newSlope, newY - toY);
        curveX.at = newX;
        curveY.at = newY;
        curveX.d += curveX.dd;
        curveY.d += curveY.dd;
        found = newSlope < kFixedMost && setStep(toX, toY, newSlope, false);
    }
    fromX = toX;
    fromY = toY;
    return found;
}

bool PathEdge::nextOfCubic() {
    bool found = false;
    while (steps < 0 && !found) {
        const auto step = [this](Curve* curve) {
            if (steps == 0) return curve->last;
            const Fixed to = curve->at + (curve->d >> downShift);
            curve->d += curve->dd >> shift;
            curve->dd += curve->ddd;
            return to;
        };
        ++steps;
        const Fixed newX = step(&curveX);
        Fixed newY = step(&curveY);
        if (!turns) newY = std::max(newY, curveY.at);
        Fixed toY = nearestQuarter(newY);
        if (!turns && curveY.last < toY) {
            toY = curveY.last;
            steps = 0;
        }
        const Fixed dx = to6(newX - curveX.at), dy = to6(toY - fromY);
        fromX = curveX.at;
        found =
            dy != 0 && setStep(newX, toY, std::clamp(dx * kFixedOne / dy, -kFixedMost, kFixedMost), false);
        curveX.at = newX;
        curveY.at = newY;
        fromY = toY;
    }
    return found;
}

void addLine(const PathPoint* points, std::vector<PathEdge>* edges) {
    PathEdge edge;
    Fixed x[2], y[2];
    for (int i = 0; i < 2; ++i) {
        x[i] = to8(points[i].x) * 256;
        y[i] = nearestQuarter(to8(points[i].y) * 256);
    }
    if (y[0] == y[1]) return;
    if (y[0] > y[1]) {
        std::swap(x[0], x[1]);
        std::swap(y[0], y[1]);
        edge.winding = -1;
    }
    edge.fromX = x[0];
    edge.fromY = y[0];
    if (edge.setStep(x[1], y[1], quotient(to6(x[1] - x[0]), to6(y[1] - y[0])), true)) edges->push_back(edge);
}

namespace {

// The ends of a curve, downwards. False if it has no height.
template <size_t N>
bool startCurve(const PathPoint* points, bool turns, PathEdge* edge, Fixed (&x)[N], Fixed (&y)[N]) {
    for (size_t i = 0; i < N; ++i) {
        x[i] = to8(points[i].x);
        y[i] = to8(points[i].y);
    }
    edge->turns = turns;
    if (!turns) {
        if (y[0] > y[N - 1]) {
            std::reverse(x, x + N);
            std::reverse(y, y + N);
            edge->winding = -1;
        }
        if ((y[0] + 32) >> 6 == (y[N - 1] + 32) >> 6) return false;
    }
    edge->curveX.at = edge->fromX = x[0] * 256;
    edge->curveX.last = x[N - 1] * 256;
    edge->curveY.at = edge->fromY = nearestQuarter(y[0] * 256);
    edge->curveY.last = nearestQuarter(y[N - 1] * 256);
    return true;
}

void addSteadyQuad(const PathPoint* points, std::vector<PathEdge>* edges) {
    PathEdge edge;
    Fixed x[3], y[3];
    if (!startCurve(points, false, &edge, x, y)) return;
    const auto bend = [](const Fixed* p) { return 2 * p[1] - p[0] - p[2]; };
    const int bits = std::clamp(stepBits(bend(x) >> 2, bend(y) >> 2), 1, kMostStepBits);
    edge.steps = 1 << bits;
    edge.shift = bits - 1;
    const auto set = [&](PathEdge::Curve* curve, const Fixed* p) {
        const Fixed a = -bend(p) * 512, b = (p[1] - p[0]) * 1024;
        curve->d = (b + (a >> bits)) >> 2;
        curve->dd = a >> (bits - 1) >> 2;
    };
    set(&edge.curveX, x);
    set(&edge.curveY, y);
    if (edge.next()) edges->push_back(edge);
}

Fixed offChord(const Fixed* p) {
    return std::max(std::abs((p[0] * 8 - p[1] * 15 + 6 * p[2] + p[3]) * 19 >> 9),
                    std::abs((p[0] + 6 * p[1] - p[2] * 15 + p[3] * 8) * 19 >> 9));
}

void addWholeCubic(const PathPoint* points, bool turns, std::vector<PathEdge>* edges) {
    PathEdge edge;
    Fixed x[4], y[4];
    if (!startCurve(points, turns, &edge, x, y)) return;
    const int bits = std::min(stepBits(offChord(x), offChord(y)) + 1, kMostStepBits);
    edge.steps = -(1 << bits);
    edge.shift = bits;
    edge.downShift = std::max(bits - 4, 0);
    const int up = std::max(10 - bits, 6);
    const auto set = [&](PathEdge::Curve* curve, const Fixed* p) {
        const Fixed unit = Fixed{1} << up;
        const Fixed b = 3 * (p[1] - p[0]) * unit, c = 3 * (p[0] - 2 * p[1] + p[2]) * unit,
                    d = (p[3] + 3 * (p[1] - p[2]) - p[0]) * unit;
        curve->ddd = 3 * d >> (bits - 1);
        curve->d = (b + (c >> bits) + (d >> 2 * bits)) >> 2;
        curve->dd = (2 * c + curve->ddd) >> 2;
        curve->ddd >>= 2;
    };
    set(&edge.curveX, x);
    set(&edge.curveY, y);
    if (edge.next()) edges->push_back(edge);
}

// Finds where the y of a cubic turns back, in order.
int turnsOf(const PathPoint* p, float* turns) {
    const double a = p[3].y - p[0].y + 3.0 * (static_cast<double>(p[1].y) - p[2].y),
                 b = 2.0 * (p[0].y - 2.0 * p[1].y + p[2].y), c = static_cast<double>(p[1].y) - p[0].y;
    double found[2];
    int count = 0;
    if (std::fabs(a) < 1e-9) {
        if (b != 0) found[count++] = -c / b;
    } else {
        const double root = b * b - 4 * a * c;
        if (root < 0) return 0;
        found[count++] = (-b - std::sqrt(root)) / (2 * a);
        found[count++] = (-b + std::sqrt(root)) / (2 * a);
        if (found[0] > found[1]) std::swap(found[0], found[1]);
    }
    int kept = 0;
    for (int i = 0; i < count; ++i) {
        if (found[i] > 0 && found[i] < 1 && (kept == 0 || found[i] > turns[0]))
            turns[kept++] = static_cast<float>(found[i]);
    }
    return kept;
}

}  // namespace

void addQuad(const PathPoint* p, std::vector<PathEdge>* edges) {
    const float in = p[0].y - p[1].y, out = p[1].y - p[2].y, t = in / (in - out);
    if (in != 0 && t > 0 && t < 1) {
        const PathPoint a = between(p[0], p[1], t), b = between(p[1], p[2], t), top = between(a, b, t);
        const PathPoint halves[] = {p[0], {a.x, top.y}, top, {b.x, top.y}, p[2]};
        addSteadyQuad(halves, edges);
        addSteadyQuad(halves + 2, edges);
        return;
    }
    addSteadyQuad(p, edges);
}

void addCubic(const PathPoint* points, bool turns, std::vector<PathEdge>* edges) {
    PathPoint rest[] = {points[0], points[1], points[2], points[3]};
    float places[2];
    const int count = turns ? 0 : turnsOf(points, places);
    float done = 0;
    for (int i = 0; i < count; ++i) {
        const float t = (places[i] - done) / (1 - done);
        done = places[i];
        const PathPoint ab = between(rest[0], rest[1], t), bc = between(rest[1], rest[2], t),
                        cd = between(rest[2], rest[3], t), l = between(ab, bc, t), r = between(bc, cd, t),
                        top = between(l, r, t);
        const PathPoint part[] = {rest[0], ab, {l.x, top.y}, top};
        addWholeCubic(part, turns, edges);
        rest[0] = top;
        rest[1] = {r.x, top.y};
        rest[2] = cd;
    }
    addWholeCubic(rest, turns, edges);
}

}  // namespace host
