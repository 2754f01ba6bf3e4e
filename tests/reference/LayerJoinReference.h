// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_REFERENCE_LAYERJOINREFERENCE_H_
#define ZVEX_TESTS_REFERENCE_LAYERJOINREFERENCE_H_

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "raster/LayerBlend.h"

// Layers joined pixel by pixel, by the formulas of the W3C's "Compositing and Blending Level 1". In float,
// with the operations in the order given here, it equals the library byte for byte; in double it is the exact
// result.
namespace reference {

using Mode = Zvex::LayerBlend;

struct Rgb {
    float r, g, b;
};

inline float mixChannel(Mode mode, float b, float s) {
    if (mode == Mode::Multiply) return b * s;
    if (mode == Mode::Screen) return b + s * (1 - b);
    if (mode == Mode::Overlay) return mixChannel(Mode::HardLight, s, b);
    if (mode == Mode::Darken) return std::min(b, s);
    if (mode == Mode::Lighten) return std::max(b, s);
    if (mode == Mode::ColorDodge) return b == 0 ? 0 : s == 1 ? 1 : std::min<float>(1, b / (1 - s));
    if (mode == Mode::ColorBurn) return b == 1 ? 1 : s == 0 ? 0 : 1 - std::min<float>(1, (1 - b) / s);
    if (mode == Mode::HardLight) return 2 * s <= 1 ? b * (2 * s) : mixChannel(Mode::Screen, b, 2 * s - 1);
    if (mode == Mode::SoftLight) {
        if (2 * s <= 1) return b - (1 - 2 * s) * b * (1 - b);
        const float d = 4 * b <= 1 ? ((16 * b - 12) * b + 4) * b : std::sqrt(b);
        return b + (2 * s - 1) * (d - b);
    }
    if (mode == Mode::Difference) return std::abs(b - s);
    if (mode == Mode::Exclusion) return b * (1 - s) + s * (1 - b);
    return s;
}

inline float lum(Rgb c) {
    return 0.3f * c.r + 0.59f * c.g + 0.11f * c.b;
}

inline float sat(Rgb c) {
    return std::max({c.r, c.g, c.b}) - std::min({c.r, c.g, c.b});
}

inline Rgb setSat(Rgb c, float s) {
    const float least = std::min({c.r, c.g, c.b}), span = sat(c);
    if (span == 0) return {0, 0, 0};
    return {(c.r - least) * s / span, (c.g - least) * s / span, (c.b - least) * s / span};
}

// Clamps the result to 0..1, because rounding may leave it.
inline Rgb setLum(Rgb c, float target) {
    const float d = target - lum(c);
    c = {c.r + d, c.g + d, c.b + d};
    const float l = lum(c), least = std::min({c.r, c.g, c.b}), greatest = std::max({c.r, c.g, c.b});
    for (float* channel : {&c.r, &c.g, &c.b}) {
        if (least < 0 && l > least) *channel = l + (*channel - l) * l / (l - least);
        if (greatest > 1 && greatest > l) *channel = l + (*channel - l) * (1 - l) / (greatest - l);
        *channel = std::min<float>(1, std::max<float>(0, *channel));
    }
    return c;
}

inline Rgb mixColor(Mode mode, Rgb b, Rgb s) {
    if (mode == Mode::Hue) return setLum(setSat(s, sat(b)), lum(b));
    if (mode == Mode::Saturation) return setLum(setSat(b, sat(s)), lum(b));
    if (mode == Mode::Color) return setLum(s, lum(b));
    if (mode == Mode::Luminosity) return setLum(b, lum(s));
    return {mixChannel(mode, b.r, s.r), mixChannel(mode, b.g, s.g), mixChannel(mode, b.b, s.b)};
}

// Premultiplied, 0 to 1.
struct JoinedPixel {
    Rgb color;
    float alpha;
};

inline float unit(uint32_t byte) {
    return static_cast<float>(byte) * (1 / 255.0f);
}

inline Rgb colorOf(uint32_t word) {
    return {unit(word >> 16 & 255), unit(word >> 8 & 255), unit(word & 255)};
}

inline JoinedPixel pixelOf(uint32_t word) {
    const float a = unit(word >> 24);
    const Rgb c = colorOf(word);
    return {{a * c.r, a * c.g, a * c.b}, a};
}

// Joins a source of that straight colour and alpha onto the pixel.
inline JoinedPixel joinPixel(JoinedPixel back, Rgb source, float alpha, Mode mode) {
    const float backAlpha = back.alpha;
    if (mode == Mode::PlusLighter) {
        const auto sum = [](float a, float b) { return std::min<float>(1, a + b); };
        return {{sum(back.color.r, alpha * source.r), sum(back.color.g, alpha * source.g),
                 sum(back.color.b, alpha * source.b)},
                sum(backAlpha, alpha)};
    }
    const auto straight = [=](float c) { return backAlpha == 0 ? 0 : c / backAlpha; };
    const Rgb behind = {straight(back.color.r), straight(back.color.g), straight(back.color.b)};
    const Rgb mixed = mixColor(mode, behind, source);
    const auto over = [=](float p, float s, float m) {
        const float color = mode == Mode::Normal ? s : (1 - backAlpha) * s + backAlpha * m;
        return (1 - alpha) * p + alpha * color;
    };
    return {{over(back.color.r, source.r, mixed.r), over(back.color.g, source.g, mixed.g),
             over(back.color.b, source.b, mixed.b)},
            (1 - alpha) * backAlpha + alpha};
}

// The straight bytes, not yet rounded, in the order alpha, red, green, blue.
struct JoinedBytes {
    float values[4];
};

inline JoinedBytes bytesOf(JoinedPixel p, float opacity) {
    const auto byte = [&](float c) { return p.alpha == 0 ? 0 : std::min<float>(1, c / p.alpha) * 255; };
    return {{p.alpha * opacity * 255, byte(p.color.r), byte(p.color.g), byte(p.color.b)}};
}

// Rounds half up; 0 if the alpha is 0.
inline uint32_t wordOf(JoinedBytes bytes) {
    uint32_t word = 0;
    for (float value : bytes.values) word = word << 8 | static_cast<uint32_t>(value + 0.5f);
    return word >> 24 == 0 ? 0 : word;
}

struct PlainLayer {
    std::vector<uint32_t> words;    // of the picture, straight
    std::vector<uint8_t> coverage;  // that is knocked out; as many
    Mode mode;
    float opacity;
    bool clipped;
};

// One pixel, by its index, through all layers.
inline JoinedBytes joinLayersAt(size_t at, uint32_t canvas, const std::vector<PlainLayer>& layers,
                                float opacity) {
    JoinedPixel pixel = pixelOf(canvas);
    float base = 0;
    for (const PlainLayer& layer : layers) {
        float alpha = unit(layer.words[at] >> 24) * layer.opacity;
        alpha *= unit(255u - layer.coverage[at]);
        if (layer.clipped) alpha *= base;
        if (!layer.clipped) base = alpha;
        pixel = joinPixel(pixel, colorOf(layer.words[at]), alpha, layer.mode);
    }
    return bytesOf(pixel, opacity);
}

}  // namespace reference

#endif  // ZVEX_TESTS_REFERENCE_LAYERJOINREFERENCE_H_
