// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_COLORLINE_H_
#define ZVEX_PLATFORM_HOST_COLORLINE_H_

#include <cstdint>
#include <vector>

namespace host {

// x' = xx * x + xy * y + x0, y' = yx * x + yy * y + y0.
struct Affine {
    double xx = 1, xy = 0, yx = 0, yy = 1, x0 = 0, y0 = 0;

    // Applies `inner` first.
    Affine operator*(const Affine& inner) const;
    // False if there is no inverse, or if one of its numbers overflows.
    bool invert(Affine* inverse) const;
};

// Straight 0xAARRGGBB colours along a line.
class ColorLine {
public:
    enum class Extend { Pad, Repeat, Reflect };
    struct Stop {
        double position;
        uint32_t color;
    };

    // The stops are sorted by position; equal positions keep their order and make a step. If all have the
    // same position, every extension pads.
    ColorLine(std::vector<Stop> stops, Extend extend);

    // Between two stops the straight channels are linear in `position`, rounded half up. 0 if there are no
    // stops or the position is NaN.
    uint32_t at(double position) const;

private:
    std::vector<Stop> mStops;
    Extend mExtend;
};

// Positions on a colour line for points of the plane, y upwards; NaN for a point without one.
struct LinearGradient {
    // Position 0 is the line through (x0, y0) and (x2, y2), position 1 its parallel through (x1, y1). If both
    // are the same line, no point has a position.
    LinearGradient(double x0, double y0, double x1, double y1, double x2, double y2);
    double at(double x, double y) const { return (x - mX) * mAlongX + (y - mY) * mAlongY; }

private:
    double mX, mY, mAlongX, mAlongY;
};

// Position t is the circle between the circles of 0 and 1, or beyond them. A point has the greatest position
// whose circle, with a radius of 0 or more, goes through it.
struct RadialGradient {
    double x0, y0, radius0, x1, y1, radius1;
    double at(double x, double y) const;
};

// A point's angle around the centre, 0 to 360 degrees counterclockwise from the x axis; position 0 is at
// `begin`, 1 at `end`. If both are equal, the positions are as far below 0 and above 1 as numbers go.
struct SweepGradient {
    double x, y, begin, end;
    double at(double x, double y) const;
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_COLORLINE_H_
