// SPDX-License-Identifier: Apache-2.0
#include "platform/host/OutlineFill.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "platform/host/CoverageRaster.h"
#include "platform/host/PathRaster.h"

namespace host {

namespace {

struct Point {
    int64_t x, y;
};
int64_t roughLength(int64_t x, int64_t y) {
    x = std::abs(x);
    y = std::abs(y);
    return x > y ? x + (3 * y >> 3) : y + (3 * x >> 3);
}

// Flattens 26.6 coordinates to 24.8.
class GlyphFiller {
public:
    GlyphFiller(CoverageRaster& raster, const GlyphImage& image)
        : mRaster(raster),
          mLeft(int64_t{image.left} * 256),
          mBottom(int64_t{image.top + image.height} * 256) {}

    void moveTo(const FT_Vector& to) {
        mPen = pointOf(to);
        mRaster.moveTo(mPen.x, mPen.y);
    }
    void lineTo(const FT_Vector& to) { drawTo(pointOf(to)); }
    void quadTo(const FT_Vector& control, const FT_Vector& to) {
        const Point c = pointOf(control), end = pointOf(to);
        int64_t off = std::max(std::abs(mPen.x + end.x - 2 * c.x), std::abs(mPen.y + end.y - 2 * c.y));
        int depth = 0;
        for (; off > kOne / 4; off >>= 2) ++depth;  // a halving leaves a quarter of the deviation
        splitQuad(mPen, c, end, depth);
    }
    void cubicTo(const FT_Vector& first, const FT_Vector& second, const FT_Vector& to) {
        splitCubic(mPen, pointOf(first), pointOf(second), pointOf(to), 0);
    }

private:
    static constexpr int64_t kOne = 256;
    static constexpr int kMaxDepth = 16;

    Point pointOf(const FT_Vector& v) const { return {int64_t{v.x} * 4 - mLeft, int64_t{v.y} * 4 + mBottom}; }
    void drawTo(const Point& to) {
        mRaster.lineTo(to.x, to.y);
        mPen = to;
    }
    void splitQuad(const Point& from, const Point& control, const Point& to, int depth) {
        if (depth == 0) {
            drawTo(to);
            return;
        }
        const Point a = {from.x + control.x, from.y + control.y}, b = {control.x + to.x, control.y + to.y};
        const Point half = {(a.x + b.x) >> 2, (a.y + b.y) >> 2};
        splitQuad(from, {a.x >> 1, a.y >> 1}, half, depth - 1);
        splitQuad(half, {b.x >> 1, b.y >> 1}, to, depth - 1);
    }
    // Whether both control points are near the chord and between its ends.
    static bool isFlat(const Point& from, const Point& first, const Point& second, const Point& to) {
        const int64_t dx = to.x - from.x, dy = to.y - from.y, length = roughLength(dx, dy);
        if (length > 32767) return false;
        for (const Point& control : {first, second}) {
            const int64_t x = control.x - from.x, y = control.y - from.y;
            if (std::abs(dy * x - dx * y) > length * (kOne / 6)) return false;
            if (x * (x - dx) + y * (y - dy) > 0) return false;
        }
        return true;
    }
    void splitCubic(const Point& from, const Point& first, const Point& second, const Point& to, int depth) {
        if (depth == kMaxDepth || isFlat(from, first, second, to)) {
            drawTo(to);
            return;
        }
        // As FreeType does it: sums of the points, halved as late as possible.
        const auto split = [](int64_t p0, int64_t p1, int64_t p2, int64_t p3, int64_t* out) {
            const int64_t c = p2, d = p1;
            out[4] = (p3 + c) / 2;
            out[0] = (p0 + d) / 2;
            const int64_t m = (c + d) / 2;
            out[1] = (out[0] + m) / 2;
            out[3] = (out[4] + m) / 2;
            out[2] = (out[1] + out[3]) / 2;
        };
        int64_t x[5], y[5];
        split(from.x, first.x, second.x, to.x, x);
        split(from.y, first.y, second.y, to.y, y);
        const Point half = {x[2], y[2]};
        splitCubic(from, {x[0], y[0]}, {x[1], y[1]}, half, depth + 1);
        splitCubic(half, {x[3], y[3]}, {x[4], y[4]}, to, depth + 1);
    }

    CoverageRaster& mRaster;
    int64_t mLeft, mBottom;
    Point mPen = {0, 0};
};

// Flattens like the platform's canvas: in quarters of a pixel downwards, 256ths across.
class PathFiller {
public:
    PathFiller(PathRaster& raster, const GlyphImage& image, float scale, float x, float y)
        : mRaster(raster),
          mScale(scale / 64),
          mX(x - static_cast<float>(image.left)),
          mY(y - static_cast<float>(image.top)) {}

    void moveTo(const FT_Vector& to) { mPen = pointOf(to); }
    void lineTo(const FT_Vector& to) { drawTo(pointOf(to)); }
    void quadTo(const FT_Vector& control, const FT_Vector& to) {
        const Real from = mPen, c = pointOf(control), end = pointOf(to);
        const float bend = from.y - 2 * c.y + end.y, t = (from.y - c.y) / bend;
        if (t > 0 && t < 1) {
            const Real a = between(from, c, t), b = between(c, end, t);
            const Real top = between(a, b, t);
            drawQuad(from, {a.x, top.y}, top);
            drawQuad(top, {b.x, top.y}, end);
        } else {
            drawQuad(from, c, end);
        }
        mPen = end;
    }
    void cubicTo(const FT_Vector& first, const FT_Vector& second, const FT_Vector& to) {
        Real from = mPen, a = pointOf(first), b = pointOf(second);
        const Real end = pointOf(to);
        float turns[2];
        const int count = turnsOf(from.y, a.y, b.y, end.y, turns);
        float done = 0;
        for (int i = 0; i < count; ++i) {
            const float t = (turns[i] - done) / (1 - done);
            done = turns[i];
            const Real ab = between(from, a, t), mid = between(a, b, t), bc = between(b, end, t);
            const Real l = between(ab, mid, t), r = between(mid, bc, t), top = between(l, r, t);
            drawCubic(from, ab, {l.x, top.y}, top);
            from = top;
            a = {r.x, top.y};
            b = bc;
        }
        drawCubic(from, a, b, end);
        mPen = end;
    }

private:
    struct Real {
        float x, y;
    };
    Real pointOf(const FT_Vector& v) const {
        return {static_cast<float>(v.x) * mScale + mX, mY - static_cast<float>(v.y) * mScale};
    }
    static Real between(const Real& a, const Real& b, float t) {
        return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
    }
    static float nearestQuarter(float v) { return std::floor(v * 4 + 0.5f) / 4; }
    static int stepBits(float x, float y) {
        x = std::fabs(x);
        y = std::fabs(y);
        const float off = x > y ? x + y / 2 : y + x / 2;
        const int eighths = static_cast<int>(std::min(off * 8 + 0.5f, 1e6f));
        int bits = 0;
        while (eighths >> bits != 0) ++bits;
        return bits / 2;
    }
    // Finds the turning points of a cubic's y, in order.
    static int turnsOf(float p0, float p1, float p2, float p3, float* turns) {
        const double a = p3 - p0 + 3.0 * (static_cast<double>(p1) - p2), b = 2.0 * (p0 - 2.0 * p1 + p2),
                     c = static_cast<double>(p1) - p0;
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
    // An end of an edge. Edges run downwards. Their ends lie on 256ths of a pixel across and on quarters
    // down. The slope is a quotient of 64ths, and the edge follows it even if it then misses its lower end.
    struct End {
        double x, y;
    };
    static double floorTo(double unit, double v) { return std::floor(v / unit) * unit; }
    static double slopeOf(double across, double down) {
        constexpr double kPart = 1.0 / 64, kLeast = 1.0 / 65536;
        return floorTo(kLeast, floorTo(kPart, across) / floorTo(kPart, down));
    }
    End follow(const End& from, double slope, double toY, bool down) {
        const End to = {from.x + slope * (toY - from.y), toY};
        if (down) {
            mRaster.line(from.x, from.y, to.x, to.y);
        } else {
            mRaster.line(to.x, to.y, from.x, from.y);
        }
        return to;
    }
    void drawTo(const Real& to) {
        const auto endAt = [](const Real& p) {
            return End{floorTo(1.0 / 256, static_cast<double>(p.x) + 1.0 / 512), nearestQuarter(p.y)};
        };
        End top = endAt(mPen), bottom = endAt(to);
        mPen = to;
        const bool down = top.y < bottom.y;
        if (!down) std::swap(top, bottom);
        if (top.y == bottom.y) return;
        follow(top, slopeOf(bottom.x - top.x, bottom.y - top.y), bottom.y, down);
    }
    // Draws a curve whose y does not turn back, downwards. The upper end moves to the nearest quarter, and
    // the points between the ends move with it. Each point moves to the next allowed line: the quarters of a
    // pixel, or whole pixels for a long step of a quadratic. Steps that end on the same line join the next
    // one. Each step starts where the one before ended.
    template <typename Curve>
    void drawCurve(const Real& from, const Real& to, int steps, bool cubic, Curve at) {
        const bool down = from.y <= to.y;
        const Real &top = down ? from : to, &bottom = down ? to : from;
        const float last = nearestQuarter(bottom.y), moved = nearestQuarter(top.y) - top.y;
        End end = {top.x, nearestQuarter(top.y)};
        double before = end.y;
        for (int i = 1; i <= steps; ++i) {
            const float t = static_cast<float>(i) / static_cast<float>(steps);
            const Real p = i == steps ? Real{bottom.x, last - moved} : at(down ? t : 1 - t);
            const float y = p.y + moved;
            const bool isLong = !cubic && i < steps && y - before >= 2;
            const double next = std::min(last, isLong ? std::floor(y + 0.5f) : nearestQuarter(y));
            if (next > end.y) {
                end = follow(end, slopeOf(p.x - end.x, (isLong ? y : next) - end.y), next, down);
            } else if (cubic) {
                end.x = p.x;
            }
            before = y;
        }
    }
    void drawQuad(const Real& from, const Real& c, const Real& to) {
        const int bits =
            std::clamp(stepBits((2 * c.x - from.x - to.x) / 4, (2 * c.y - from.y - to.y) / 4), 1, 6);
        drawCurve(from, to, 1 << bits, false,
                  [&](float t) { return between(between(from, c, t), between(c, to, t), t); });
    }
    static float offLine(float a, float b, float c, float d) {
        return std::max(std::fabs(8 * a - 15 * b + 6 * c + d), std::fabs(a + 6 * b - 15 * c + 8 * d)) *
               (19.0f / 512);
    }
    void drawCubic(const Real& from, const Real& a, const Real& b, const Real& to) {
        const int bits =
            std::min(1 + stepBits(offLine(from.x, a.x, b.x, to.x), offLine(from.y, a.y, b.y, to.y)), 6);
        drawCurve(from, to, 1 << bits, true, [&](float t) {
            const Real ab = between(from, a, t), mid = between(a, b, t), bc = between(b, to, t);
            return between(between(ab, mid, t), between(mid, bc, t), t);
        });
    }

    PathRaster& mRaster;
    float mScale, mX, mY;
    Real mPen = {0, 0};
};

template <typename Filler>
void decompose(const FT_Outline& outline, Filler& filler) {
    FT_Outline_Funcs calls = {};
    calls.move_to = [](const FT_Vector* to, void* f) { return static_cast<Filler*>(f)->moveTo(*to), 0; };
    calls.line_to = [](const FT_Vector* to, void* f) { return static_cast<Filler*>(f)->lineTo(*to), 0; };
    calls.conic_to = [](const FT_Vector* c, const FT_Vector* to, void* f) {
        return static_cast<Filler*>(f)->quadTo(*c, *to), 0;
    };
    calls.cubic_to = [](const FT_Vector* c, const FT_Vector* d, const FT_Vector* to, void* f) {
        return static_cast<Filler*>(f)->cubicTo(*c, *d, *to), 0;
    };
    FT_Outline_Decompose(const_cast<FT_Outline*>(&outline), &calls, &filler);
}

}  // namespace

bool hasCubics(const FT_Outline& outline) {
    return std::any_of(outline.tags, outline.tags + outline.n_points,
                       [](auto tag) { return FT_CURVE_TAG(tag) == FT_CURVE_TAG_CUBIC; });
}

void fillGlyph(const FT_Outline& outline, const uint8_t (&levels)[256], GlyphImage& image) {
    CoverageRaster raster(image.width, image.height);
    GlyphFiller filler(raster, image);
    decompose(outline, filler);
    raster.levels(levels, image.coverage.data());
}

void fillPath(const FT_Outline& outline, float scale, float x, float y, bool antiAlias, GlyphImage& image) {
    const bool fillsRight =
        FT_Outline_Get_Orientation(const_cast<FT_Outline*>(&outline)) == FT_ORIENTATION_TRUETYPE;
    PathRaster raster(image.width, image.height, fillsRight);
    PathFiller filler(raster, image, scale, x, y);
    decompose(outline, filler);
    raster.levels(image.coverage.data());
    if (antiAlias) return;
    for (uint8_t& level : image.coverage) level = level >= 128 ? 255 : 0;
}

}  // namespace host
