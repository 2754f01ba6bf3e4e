// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_REFERENCE_RELIEFREFERENCE_H_
#define ZVEX_TESTS_REFERENCE_RELIEFREFERENCE_H_

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

#include "effect/ZvECore.h"
#include "effect/ZvProperty.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvRect.h"
#include "tests/reference/BlenderReference.h"
#include "tests/reference/DistanceReference.h"
#include "tests/reference/GaussianReference.h"

// Bevel and emboss as defined.
namespace reference {

using Bytes = std::vector<uint8_t>;

// The working area of both: the text box grown by `pad`.
struct ReliefArea {
    const Zvex::ZvBitmap& mask;
    int pad, x, y, width, height;

    ReliefArea(const Zvex::ZvECore::ParamPostProcessing& param, int padding)
        : mask(*param.mask),
          pad(padding),
          x(param.textRect->left - pad),
          y(param.textRect->top - pad),
          width(param.textRect->right + pad - x),
          height(param.textRect->bottom + pad - y) {}

    int coverage(int column, int row) const {
        const int64_t maskX = int64_t{x} + column, maskY = int64_t{y} + row;
        const bool isInside = maskX >= 0 && maskY >= 0 && maskX < mask.width && maskY < mask.height;
        return isInside ? mask.pixels[maskY * mask.width + maskX] : 0;
    }
    // Within the box, or beyond its right and lower edges by up to `more`.
    bool inBox(int column, int row, int more = 0) const {
        return column >= pad && column < width - pad + more && row >= pad && row < height - pad + more;
    }

    template <typename Value>
    Distances plane(Value value) const {
        Distances result(width, height, 0);
        for (int row = 0; row < height; ++row) {
            for (int column = 0; column < width; ++column) result.at(column, row) = value(column, row);
        }
        return result;
    }

    // Squared distances from the pixels of the text (or, not `inside`, of the ground) to the others.
    Distances squaredDistances(bool inside) const {
        Distances result = plane([=](int column, int row) {
            const bool text = inBox(column, row, 1) && coverage(column, row) != 0;
            return text == inside ? 1e20f : 0;
        });
        reference::squaredDistances(result);
        return result;
    }
};

// A light in the direction (x, y, z) on slopes with the normal (-gx, -gy, normalZ). In single precision and
// in this order; the pictures depend on it.
struct Light {
    float x, y, z, normalZ;

    Light opposite() const { return {-x, -y, z, normalZ}; }
    // 255 times the cosine between light and normal; for the slope that falls the other way, 255 minus that.
    int shade(float gx, float gy) const {
        return toByte((normalZ * z - x * gx - y * gy) * 255 / length(gx, gy));
    }
    int oppositeShade(float gx, float gy) const {
        return toByte(255 * (1 - (normalZ * z + x * gx + y * gy) / length(gx, gy)));
    }

private:
    float length(float gx, float gy) const { return sqrtf(normalZ * normalZ + gx * gx + gy * gy); }
    static int toByte(float level) {
        return level >= 255 ? 255 : level > 0 ? static_cast<int>(level) : 0;  // NaN is 0
    }
};

inline Light reliefLight(const Zvex::ZvReliefProperty& p, double depthFloor) {
    const float theta = (180 - p.angle) * 3.14159f / 180, phi = p.altitude * 3.14159f / 180;
    const float cx = cosf(theta) * cosf(phi), sx = sinf(theta) * cosf(phi);
    const float normalZ = static_cast<float>(2.4 / std::max<double>(p.depth, depthFloor));
    return {p.direction == 0 ? -cx : cx, p.direction == 0 ? -sx : sx, sinf(phi), normalZ};
}

// The light on one relief.
struct LightPlanes {
    int width, height, highlightAlpha, shadowAlpha;
    Bytes highlight, shadow, scratch;

    LightPlanes(int w, int h, uint32_t highlightByte, uint32_t shadowByte)
        : width(w), height(h), highlight(static_cast<size_t>(w * h)), shadow(highlight), scratch(highlight) {
        highlightAlpha = static_cast<int>(highlightByte);
        shadowAlpha = static_cast<int>(shadowByte);
    }

    void set(int x, int y, float coverage, int highlightLevel, int shadowLevel) {
        const int v = static_cast<int>(std::min(std::max(coverage, 0.0f), 1.0f) * 255 + 0.5);
        const size_t at = static_cast<size_t>(y * width + x);
        highlight[at] = static_cast<uint8_t>(v * ((highlightLevel * highlightAlpha >> 8) + 1) >> 8);
        shadow[at] = static_cast<uint8_t>(v * ((shadowLevel * shadowAlpha >> 8) + 1) >> 8);
    }

    // The planes rotate: highlight into scratch, shadow into what was the highlight.
    void blur(int size) {
        const int radius = std::max(size, 0);
        const std::vector<int> weights = gaussianWeights(radius, 100, false);
        const Blur rectangle{width, radius, width - radius, radius, height - radius};
        rectangle.draw(highlight, scratch, weights);
        rectangle.draw(shadow, highlight, weights);
        std::swap(highlight, scratch);
        std::swap(shadow, scratch);
    }

    // 0xAARRGGBB.
    uint32_t color(size_t at, float gain, const Zvex::ZvReliefProperty& p) const {
        const int h = static_cast<int>(gain * highlight[at]), s = static_cast<int>(gain * shadow[at]);
        const uint32_t a = static_cast<uint32_t>(std::min(std::abs(s - h), 255));
        const uint32_t c = s > h ? p.shadowColor : p.highlightColor;
        const auto scaled = [=](uint32_t byte) { return (a * (byte + 1)) >> 8; };
        return a << 24 | scaled(c >> 16 & 255) << 16 | scaled(c >> 8 & 255) << 8 | scaled(c & 255);
    }
};

// Calls visit(x, y, height, gx, gy) for a rectangle of a plane of heights.
template <typename Visit>
void forSlopes(Distances& d, int xBegin, int xEnd, int yBegin, int yEnd, Visit visit) {
    for (int y = yBegin; y < yEnd; ++y) {
        for (int x = xBegin; x < xEnd; ++x) {
            visit(x, y, d.at(x, y), (d.at(x - 1, y) - d.at(x + 1, y)) * 0.5f,
                  (d.at(x, y - 1) - d.at(x, y + 1)) * 0.5f);
        }
    }
}

// The light on a rectangle: its columns and its rows, each from the first to beyond the last.
template <typename... Sides>
void lightBevel(LightPlanes& planes, Distances& distances, float radius, bool inner, const Light& light,
                Sides... sides) {
    forSlopes(distances, sides..., [&](int x, int y, float d, float gx, float gy) {
        if (d == radius) return;
        const int shade = inner ? light.shade(gx, gy) : 255 - light.shade(gx, gy);
        planes.set(x, y, radius - d, shade + 1, 256 - shade);
    });
}

// On one plane of signed heights.
template <typename... Sides>
void lightEmboss(LightPlanes& planes, Distances& heights, float outer, float inner, const Light& light,
                 Sides... sides) {
    forSlopes(heights, sides..., [&](int x, int y, float d, float gx, float gy) {
        if (d == outer) return;
        const int shade = light.shade(gx, gy);
        planes.set(x, y, d > 0 ? outer - d : d + inner - 1, 256 - shade, shade + 1);
    });
}

// On two planes of distances.
template <typename... Sides>
void lightEmboss(LightPlanes& planes, Distances& outside, Distances& inside, float outer, float inner,
                 const Light& light, Sides... sides) {
    forSlopes(outside, sides..., [&](int x, int y, float d, float gx, float gy) {
        if (d == 0 || d >= outer) return;
        const int shade = light.shade(gx, gy);
        planes.set(x, y, outer - d, 256 - shade, shade + 1);
    });
    forSlopes(inside, sides..., [&](int x, int y, float d, float gx, float gy) {
        if (d == 0 || d >= inner) return;
        const int shade = light.oppositeShade(gx, gy);
        planes.set(x, y, inner - d, shade + 1, 256 - shade);
    });
}

inline void drawBevel(const Zvex::ZvECore::ParamPostProcessing& param, const Zvex::ZvBevelProperty& p) {
    const int size = static_cast<int>(p.size);
    const bool soft = p.technique == 0, inner = p.style == 1;
    const int blur = soft ? static_cast<int>(std::ceil(static_cast<float>(2 * size) / 3.0 + 1.0)) : 0;
    const int radius = soft ? blur : size + 2;
    const ReliefArea area(param, std::max(2 * p.soften, 2 * blur) + radius);
    if (area.pad < 0 || area.width < 1 || area.height < 1) return;

    const float r = static_cast<float>(radius);
    Distances d = area.plane([&](int x, int y) {
        if (!area.inBox(x, y)) return inner ? 0.0f : r;
        const float c =
            static_cast<float>((inner ? 255 - area.coverage(x, y) : area.coverage(x, y)) / 254.99);
        return c <= 0.001 ? r : c < 1 ? 1 - c : 0;
    });
    if (soft && radius >= 11) {
        d = area.squaredDistances(inner);
        for (float& v : d.values) v = v <= 0 ? 0 : v > r * r ? r : sqrtf(v);
    } else {
        searchNearest(d, radius, 0, area.height);
    }

    LightPlanes planes(area.width, area.height, p.highlightColor >> 24, p.shadowColor >> 24);
    lightBevel(planes, d, r, inner, reliefLight(p, 0.1), 1, area.width - 1, 1, area.height - 1);
    if (soft) planes.blur(blur);
    if (p.soften >= 1) planes.blur(p.soften);
    std::vector<uint32_t> picture;
    for (size_t i = 0; i < planes.highlight.size(); ++i)
        picture.push_back(planes.color(i, soft ? 1.83f : 1, p));
    drawBitmapBlend32(area.x, area.y, param.target, picture.data(), area.width, area.height, area.width,
                      param.layerMode == 1 ? 1 : 2);
}

inline void drawEmboss(const Zvex::ZvECore::ParamPostProcessing& param, const Zvex::ZvEmbossProperty& p) {
    const int size = static_cast<int>(p.size);
    const bool soft = p.technique == 0, exact = soft && size > 25;
    const auto ceiling = [](double value) { return static_cast<int>(std::ceil(value)); };
    const int blur = soft ? ceiling(size * 0.5 + 1.0) : 0;
    const int outer = soft ? ceiling(size * 0.25 + 1.0) : ceiling(size * 0.5 + 3.0);
    const int inner = soft ? outer : ceiling(size * 0.5 + 1.0);
    const ReliefArea area(param, std::max(2 * blur, 2 * p.soften) + outer);
    if (area.pad < 0 || area.width < 1 || area.height < 1) return;

    const float ro = static_cast<float>(outer), ri = static_cast<float>(inner);
    Distances within = area.squaredDistances(true), d = area.plane([&](int x, int y) {
        const float c = static_cast<float>(area.inBox(x, y) ? area.coverage(x, y) / 254.999 : 0);
        return c < 0.001 ? ro : c >= 1 ? 1 - ri : 1 - c;
    });
    if (exact) {
        d = area.squaredDistances(false);
        for (float& v : d.values) v = sqrtf(v);
        for (float& v : within.values) v = sqrtf(v);
    } else {
        searchOutward(d, outer, 1, area.height);
        searchInward(d, inner, 1, area.height);
    }

    Light light = reliefLight(p, 0.2);
    std::vector<LightPlanes> passes;
    for (int pass = 0; pass < (p.style == 3 ? 2 : 1); ++pass) {
        LightPlanes planes(area.width, area.height, p.highlightColor >> 24, p.shadowColor >> 24);
        if (exact) {
            lightEmboss(planes, d, within, ro, ri, light, 1, area.width - 1, 1, area.height - 1);
        } else {
            lightEmboss(planes, d, ro, ri, light, 1, area.width - 1, 1, area.height - 1);
        }
        if (soft) planes.blur(blur);
        if (p.soften >= 1) planes.blur(p.soften);
        passes.push_back(planes);
        light = light.opposite();
    }

    const float gain = soft ? 2.03f : 1;
    std::vector<uint32_t> picture;
    for (int i = 0; i < area.width * area.height; ++i) {
        uint32_t pixel = passes[0].color(static_cast<size_t>(i), gain, p);
        if (passes.size() == 2) {
            const int x = i % area.width, y = i / area.width;
            const uint32_t behind = passes[1].color(static_cast<size_t>(i), gain, p), front = pixel;
            const uint32_t k = area.inBox(x, y) ? 255 - static_cast<uint32_t>(area.coverage(x, y)) : 255;
            pixel = 0;
            for (int shift = 0; shift < 32; shift += 8) {
                const uint32_t c1 = front >> shift & 255, c2 = (behind >> shift & 255) * k >> 8;
                pixel |= std::min(c1 + (c2 * (255 - (front >> 24)) >> 8), 255u) << shift;
            }
        }
        picture.push_back(pixel);
    }
    for (const Zvex::ZvBitmap* target : {param.target, param.otherLayer}) {
        if (target == nullptr) continue;
        drawBitmapBlend32(area.x, area.y, target, picture.data(), area.width, area.height, area.width,
                          param.layerMode == 1 ? 2 : 1);
    }
}

}  // namespace reference

#endif  // ZVEX_TESTS_REFERENCE_RELIEFREFERENCE_H_
