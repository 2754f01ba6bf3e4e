// SPDX-License-Identifier: Apache-2.0
// In double precision with only its four operations and square root; angles are FreeType's, in integers.
#include "platform/host/ColorLine.h"

#include <ft2build.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include FT_TRIGONOMETRY_H

namespace host {

namespace {

constexpr double kNowhere = std::numeric_limits<double>::quiet_NaN();

uint32_t mixed(uint32_t from, uint32_t to, double share) {
    uint32_t word = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const double a = from >> shift & 255, b = to >> shift & 255;
        word |= static_cast<uint32_t>(a + (b - a) * share + 0.5) << shift;
    }
    return word;
}

}  // namespace

Affine Affine::operator*(const Affine& inner) const {
    return {xx * inner.xx + xy * inner.yx,      xx * inner.xy + xy * inner.yy,
            yx * inner.xx + yy * inner.yx,      yx * inner.xy + yy * inner.yy,
            xx * inner.x0 + xy * inner.y0 + x0, yx * inner.x0 + yy * inner.y0 + y0};
}

bool Affine::invert(Affine* inverse) const {
    const double size = xx * yy - xy * yx;
    *inverse = {yy / size, -xy / size, -yx / size, xx / size, 0, 0};
    inverse->x0 = -(inverse->xx * x0 + inverse->xy * y0);
    inverse->y0 = -(inverse->yx * x0 + inverse->yy * y0);
    return std::isfinite(inverse->xx + inverse->xy + inverse->x0 + inverse->yx + inverse->yy + inverse->y0);
}

ColorLine::ColorLine(std::vector<Stop> stops, Extend extend) : mStops(std::move(stops)), mExtend(extend) {
    const auto isBefore = [](const Stop& a, const Stop& b) { return a.position < b.position; };
    std::stable_sort(mStops.begin(), mStops.end(), isBefore);
}

uint32_t ColorLine::at(double position) const {
    if (mStops.empty() || std::isnan(position)) return 0;
    const double first = mStops.front().position, length = mStops.back().position - first;
    if (mExtend != Extend::Pad && length > 0) {
        const double period = mExtend == Extend::Repeat ? length : 2 * length;
        position -= first;
        position -= std::floor(position / period) * period;
        if (position > length) position = period - position;
        position += first;
    }
    const auto after =
        std::upper_bound(mStops.begin(), mStops.end(), position,
                         [](double wanted, const Stop& stop) { return wanted < stop.position; });
    if (after == mStops.begin()) return after->color;
    if (after == mStops.end()) return mStops.back().color;
    const Stop &from = after[-1], &to = *after;
    return mixed(from.color, to.color, (position - from.position) / (to.position - from.position));
}

LinearGradient::LinearGradient(double x0, double y0, double x1, double y1, double x2, double y2)
    : mX(x0), mY(y0) {
    // Perpendicular to the lines of one colour, as long as the distance from position 0 to 1.
    const double acrossX = y2 - y0, acrossY = x0 - x2;
    const double reach = (x1 - x0) * acrossX + (y1 - y0) * acrossY;
    mAlongX = reach != 0 ? acrossX / reach : kNowhere;
    mAlongY = reach != 0 ? acrossY / reach : kNowhere;
}

double RadialGradient::at(double x, double y) const {
    const double dx = x1 - x0, dy = y1 - y0, dr = radius1 - radius0;
    x -= x0;
    y -= y0;
    // |(x, y) - t (dx, dy)| = radius0 + t dr is a t t - 2 b t + c = 0.
    const double a = dx * dx + dy * dy - dr * dr, b = x * dx + y * dy + radius0 * dr;
    const double c = x * x + y * y - radius0 * radius0;
    const auto isCircle = [&](double t) { return radius0 + t * dr >= 0; };
    if (a == 0) {
        const double only = c / (2 * b);
        return b != 0 && isCircle(only) ? only : kNowhere;
    }
    const double root = std::sqrt(b * b - a * c);  // NaN if no circle goes through the point
    const double high = (b + (a > 0 ? root : -root)) / a, low = (b - (a > 0 ? root : -root)) / a;
    return isCircle(high) ? high : isCircle(low) ? low : kNowhere;
}

double SweepGradient::at(double toX, double toY) const {
    toX -= x;
    toY -= y;
    // FreeType's angles are of vectors in 16.16.
    const double longest = std::max(std::fabs(toX), std::fabs(toY));
    if (!(longest < 1e300)) return kNowhere;
    const auto fixed = [&](double v) {
        return static_cast<FT_Fixed>(std::lround(longest > 0 ? v / longest * (1 << 24) : 0));
    };
    const FT_Angle angle = FT_Atan2(fixed(toX), fixed(toY));
    const double degrees = (angle < 0 ? angle + FT_ANGLE_2PI : angle) / 65536.0;
    if (begin != end) return (degrees - begin) / (end - begin);
    return degrees < begin ? -std::numeric_limits<double>::max() : std::numeric_limits<double>::max();
}

}  // namespace host
