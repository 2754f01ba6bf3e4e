// SPDX-License-Identifier: Apache-2.0
#include "platform/host/OutlineFill.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <initializer_list>

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

// Gives the outline to the canvas's raster.
class PathFiller {
public:
    PathFiller(PathRaster& raster, float scale, float x, float y)
        : mRaster(raster), mScale(scale / 64), mX(x), mY(y) {}

    void moveTo(const FT_Vector& to) { mRaster.moveTo(pointOf(to)); }
    void lineTo(const FT_Vector& to) { add({pointOf(to)}); }
    void quadTo(const FT_Vector& control, const FT_Vector& to) { add({pointOf(control), pointOf(to)}); }
    void cubicTo(const FT_Vector& first, const FT_Vector& second, const FT_Vector& to) {
        add({pointOf(first), pointOf(second), pointOf(to)});
    }

private:
    void add(std::initializer_list<PathPoint> points) { mRaster.add(points.begin(), points.size()); }
    PathPoint pointOf(const FT_Vector& v) const {
        return {static_cast<float>(v.x) * mScale + mX, mY - static_cast<float>(v.y) * mScale};
    }

    PathRaster& mRaster;
    float mScale, mX, mY;
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
    PathRaster raster(image.width, image.height, image.left, image.top);
    PathFiller filler(raster, scale, x, y);
    decompose(outline, filler);
    raster.fill(image.coverage.data());
    if (antiAlias) return;
    for (uint8_t& level : image.coverage) level = level >= 128 ? 255 : 0;
}

}  // namespace host
