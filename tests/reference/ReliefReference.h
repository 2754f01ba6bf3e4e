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
#include "effect/filters/Relief.h"
#include "tests/reference/BlenderReference.h"
#include "tests/reference/DistanceReference.h"
#include "tests/reference/GaussianReference.h"

// Bevel and emboss as their definitions read. Of the library only the shade of one slope is used: which of
// its operations comes first is its definition.
namespace reference {

using Bytes = std::vector<uint8_t>;

// What both work on: the text box grown by `pad`.
struct ReliefArea {
    const Zvex::ZvBitmap& mask;
    int pad, x, y, width, height;

    ReliefArea(const Zvex::ZvECore::ParamPostProcessing& param, int padding)
        : mask(*param.mask),
          pad(padding),
          x(param.textRect->left - pad),
          y(param.textRect->top - pad),
          width(param.textRect->right - param.textRect->left + 2 * pad),
          height(param.textRect->bottom - param.textRect->top + 2 * pad) {}

    int coverage(int column, int row) const {
        const int mx = x + column, my = y + row;
        const bool in =
            mx >= 0 && my >= 0 && mx < static_cast<int>(mask.width) && my < static_cast<int>(mask.height);
        return in ? mask.pixels[my * static_cast<int>(mask.width) + mx] : 0;
    }
    bool inBox(int column, int row) const {
        return column >= pad && column < width - pad && row >= pad && row < height - pad;
    }

    // Squared distances from the pixels of the text (or, not `inside`, of the ground) to the others.
    Distances squaredDistances(bool inside) const {
        Distances plane(width, height, 0);
        for (int row = 0; row < height; ++row) {
            for (int column = 0; column < width; ++column) {
                const bool sampled =
                    row >= pad && row <= height - pad && column >= pad && column <= width - pad;
                const bool text = sampled && coverage(column, row) != 0;
                plane.at(column, row) = text == inside ? 1e20f : 0;
            }
        }
        reference::squaredDistances(plane);
        return plane;
    }
};

inline Zvex::ReliefLight reliefLight(const Zvex::ZvReliefProperty& p, double depthFloor) {
    const float theta = (180 - p.angle) * 3.14159f / 180, phi = p.altitude * 3.14159f / 180;
    const float cx = cosf(theta) * cosf(phi), sx = sinf(theta) * cosf(phi);
    const float normalZ = static_cast<float>(2.4 / std::max<double>(p.depth, depthFloor));
    return {p.direction == 0 ? -cx : cx, p.direction == 0 ? -sx : sx, sinf(phi), normalZ};
}

// The two bytes of light of a pixel.
struct LightPlanes {
    int width, height;
    Bytes highlight, shadow, scratch;

    LightPlanes(int w, int h)
        : width(w), height(h), highlight(static_cast<size_t>(w * h)), shadow(highlight), scratch(highlight) {}

    static uint8_t product(int coverage, int factor) {
        const int v = coverage * factor;
        return static_cast<uint8_t>(v >= 65536 ? 255 : v < 0 ? 0 : v >> 8);
    }
    void set(int x, int y, float coverage, int highlightLevel, int highlightAlpha, int shadowLevel,
             int shadowAlpha) {
        const float unit = std::min(std::max(coverage, 0.0f), 1.0f);
        const int v = static_cast<int>(unit * 255 + 0.5);
        const size_t at = static_cast<size_t>(y * width + x);
        highlight[at] = product(v, (highlightLevel * highlightAlpha >> 8) + 1);
        shadow[at] = product(v, (shadowLevel * shadowAlpha >> 8) + 1);
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

// The bevel's light on one rectangle of the plane.
struct BevelLight {
    int radius, highlightAlpha, shadowAlpha;
    bool inner;

    void draw(Distances& d, const Zvex::ReliefLight& light, LightPlanes& planes, int xBegin, int xEnd,
              int yBegin, int yEnd) const {
        for (int y = yBegin; y < yEnd; ++y) {
            for (int x = xBegin; x < xEnd; ++x) {
                if (d.at(x, y) == static_cast<float>(radius)) continue;
                const float gx = (d.at(x - 1, y) - d.at(x + 1, y)) * 0.5f;
                const float gy = (d.at(x, y - 1) - d.at(x, y + 1)) * 0.5f;
                float shade = light.shade(gx, gy);
                if (!inner) shade = static_cast<float>(255 - static_cast<int>(shade));
                planes.set(x, y, static_cast<float>(radius) - d.at(x, y), static_cast<int>(shade + 1.0),
                           highlightAlpha, 256 - static_cast<int>(shade), shadowAlpha);
            }
        }
    }
};

inline void drawBevel(const Zvex::ZvECore::ParamPostProcessing& param, const Zvex::ZvBevelProperty& p) {
    const int size = static_cast<int>(p.size);
    const bool soft = p.technique == 0, inner = p.style == 1;
    const int blur = soft ? static_cast<int>(std::ceil(static_cast<float>(2 * size) / 3.0 + 1.0)) : 0;
    const int radius = soft ? blur : size + 2;
    const ReliefArea area(param, std::max(2 * p.soften, 2 * blur) + radius);
    if (area.pad < 0 || area.width < 1 || area.height < 1) return;

    Distances d(area.width, area.height, inner ? 0.0f : static_cast<float>(radius));
    if (soft && radius >= 11) {
        d = area.squaredDistances(inner);
        for (float& v : d.values)
            v = v <= 0 ? 0 : v > static_cast<float>(radius * radius) ? static_cast<float>(radius) : sqrtf(v);
    } else {
        for (int y = 0; y < area.height; ++y) {
            for (int x = 0; x < area.width; ++x) {
                if (!area.inBox(x, y)) continue;
                const int m = area.coverage(x, y);
                const float c = static_cast<float>((inner ? 255 - m : m) / 254.99);
                d.at(x, y) = c <= 0.001 ? static_cast<float>(radius) : c < 1 ? 1 - c : 0;
            }
        }
        searchNearest(d, radius, 0, area.height);
    }

    LightPlanes planes(area.width, area.height);
    BevelLight{radius, static_cast<int>(p.highlightColor >> 24), static_cast<int>(p.shadowColor >> 24), inner}
        .draw(d, reliefLight(p, 0.1), planes, 1, area.width - 1, 1, area.height - 1);
    if (soft) planes.blur(blur);
    if (p.soften >= 1) planes.blur(p.soften);
    std::vector<uint32_t> picture;
    for (size_t i = 0; i < planes.highlight.size(); ++i)
        picture.push_back(planes.color(i, soft ? 1.83f : 1, p));
    drawBitmapBlend32(area.x, area.y, param.target, picture.data(), area.width, area.height, area.width,
                      param.layerMode == 1 ? 1 : 2);
}

}  // namespace reference

#endif  // ZVEX_TESTS_REFERENCE_RELIEFREFERENCE_H_
