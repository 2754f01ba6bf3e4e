// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_COLOURLINE_H_
#define ZVEX_PLATFORM_HOST_COLOURLINE_H_

#include <cstdint>
#include <vector>

namespace host {

// x' = xx * x + xy * y + x0, y' = yx * x + yy * y + y0.
struct Affine {
    double xx = 1, xy = 0, yx = 0, yy = 1, x0 = 0, y0 = 0;

    // `inner` first.
    Affine operator*(const Affine& inner) const;
    // False where there is none, or it leaves the range of numbers.
    bool invert(Affine* inverse) const;
};

// Straight 0xAARRGGBB colours along a line.
class ColourLine {
public:
    enum class Extend { Pad, Repeat, Reflect };
    struct Stop {
        double position;
        uint32_t colour;
    };

    // Stops in any order; those at one position keep theirs, and make a step. Where all of them are at one
    // position, every extension pads.
    ColourLine(std::vector<Stop> stops, Extend extend);

    // The straight channels between the stops' are linear in `position`, rounded to the nearest, halves up. 0
    // where there are no stops, or the position is no number.
    uint32_t at(double position) const;

private:
    std::vector<Stop> mStops;
    Extend mExtend;
};

// Positions on a colour line for points of the plane, y upwards; no number where a point has none.
struct LinearGradient {
    // Position 0 on the line through (x0, y0) parallel to that from there to (x2, y2), 1 on the one through
    // (x1, y1). Nowhere, where these are one line.
    LinearGradient(double x0, double y0, double x1, double y1, double x2, double y2);
    double at(double x, double y) const { return (x - mX) * mAlongX + (y - mY) * mAlongY; }

private:
    double mX, mY, mAlongX, mAlongY;
};

// The greatest position whose circle, between one at 0 and one at 1, goes through the point: a cone seen from
// its tip's side. Radii below 0 are no circles.
struct RadialGradient {
    double x0, y0, radius0, x1, y1, radius1;
    double at(double x, double y) const;
};

// Angles around a centre, counterclockwise from the x axis, in degrees, from 0 to 360. Where `begin` is `end`
// the positions are without end on both sides of it.
struct SweepGradient {
    double x, y, begin, end;
    double at(double x, double y) const;
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_COLOURLINE_H_
