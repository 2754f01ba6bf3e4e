// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_REFERENCE_LAYERJOINREFERENCE_H_
#define ZVEX_TESTS_REFERENCE_LAYERJOINREFERENCE_H_

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

// Layers joined pixel by pixel, by the formulas of the W3C's "Compositing and Blending Level 1". In float,
// with the operations in the order in which they stand here, it is what the library makes, byte for byte; in
// double it is the exact result.
namespace reference {

// The modes in the library's order.
enum JoinMode {
    NORMAL,
    MULTIPLY,
    SCREEN,
    OVERLAY,
    DARKEN,
    LIGHTEN,
    COLOR_DODGE,
    COLOR_BURN,
    HARD_LIGHT,
    SOFT_LIGHT,
    DIFFERENCE,
    EXCLUSION,
    HUE,
    SATURATION,
    kColor,
    LUMINOSITY,
    PLUS_LIGHTER,
};

template <typename Real>
struct Rgb {
    Real r, g, b;
};

template <typename Real>
Real mixChannel(int mode, Real b, Real s) {
    switch (mode) {
        case MULTIPLY:
            return b * s;
        case SCREEN:
            return b + s * (1 - b);
        case OVERLAY:
            return mixChannel(HARD_LIGHT, s, b);
        case DARKEN:
            return std::min(b, s);
        case LIGHTEN:
            return std::max(b, s);
        case COLOR_DODGE:
            return b == 0 ? 0 : s == 1 ? 1 : std::min<Real>(1, b / (1 - s));
        case COLOR_BURN:
            return b == 1 ? 1 : s == 0 ? 0 : 1 - std::min<Real>(1, (1 - b) / s);
        case HARD_LIGHT:
            return 2 * s <= 1 ? b * (2 * s) : mixChannel(SCREEN, b, 2 * s - 1);
        case SOFT_LIGHT: {
            if (2 * s <= 1) return b - (1 - 2 * s) * b * (1 - b);
            const Real d = 4 * b <= 1 ? ((16 * b - 12) * b + 4) * b : std::sqrt(b);
            return b + (2 * s - 1) * (d - b);
        }
        case DIFFERENCE:
            return std::abs(b - s);
        case EXCLUSION:
            return b * (1 - s) + s * (1 - b);
        default:
            return s;
    }
}

template <typename Real>
Real lum(Rgb<Real> c) {
    return Real(0.3) * c.r + Real(0.59) * c.g + Real(0.11) * c.b;
}

template <typename Real>
Real sat(Rgb<Real> c) {
    return std::max({c.r, c.g, c.b}) - std::min({c.r, c.g, c.b});
}

template <typename Real>
Rgb<Real> setSat(Rgb<Real> c, Real s) {
    const Real least = std::min({c.r, c.g, c.b}), span = sat(c);
    if (span == 0) return {0, 0, 0};
    return {(c.r - least) * s / span, (c.g - least) * s / span, (c.b - least) * s / span};
}

// Holds the result to 0..1, for what rounding leaves outside.
template <typename Real>
Rgb<Real> setLum(Rgb<Real> c, Real target) {
    const Real d = target - lum(c);
    c = {c.r + d, c.g + d, c.b + d};
    const Real l = lum(c), least = std::min({c.r, c.g, c.b}), greatest = std::max({c.r, c.g, c.b});
    for (Real* channel : {&c.r, &c.g, &c.b}) {
        if (least < 0 && l > least) *channel = l + (*channel - l) * l / (l - least);
        if (greatest > 1 && greatest > l) *channel = l + (*channel - l) * (1 - l) / (greatest - l);
        *channel = std::min<Real>(1, std::max<Real>(0, *channel));
    }
    return c;
}

template <typename Real>
Rgb<Real> mixColor(int mode, Rgb<Real> b, Rgb<Real> s) {
    switch (mode) {
        case HUE:
            return setLum(setSat(s, sat(b)), lum(b));
        case SATURATION:
            return setLum(setSat(b, sat(s)), lum(b));
        case kColor:
            return setLum(s, lum(b));
        case LUMINOSITY:
            return setLum(b, lum(s));
        default:
            return {mixChannel(mode, b.r, s.r), mixChannel(mode, b.g, s.g), mixChannel(mode, b.b, s.b)};
    }
}

// Premultiplied, 0 to 1.
template <typename Real>
struct JoinedPixel {
    Rgb<Real> color;
    Real alpha;
};

template <typename Real>
Real unit(uint32_t byte) {
    return static_cast<Real>(byte) * (Real(1) / Real(255));
}

template <typename Real>
Rgb<Real> colorOf(uint32_t word) {
    return {unit<Real>(word >> 16 & 255), unit<Real>(word >> 8 & 255), unit<Real>(word & 255)};
}

template <typename Real>
JoinedPixel<Real> pixelOf(uint32_t word) {
    const Real a = unit<Real>(word >> 24);
    const Rgb<Real> c = colorOf<Real>(word);
    return {{a * c.r, a * c.g, a * c.b}, a};
}

// A source of that straight colour and alpha onto the pixel.
template <typename Real>
JoinedPixel<Real> joinPixel(JoinedPixel<Real> back, Rgb<Real> source, Real alpha, int mode) {
    const Real backAlpha = back.alpha;
    if (mode == PLUS_LIGHTER) {
        const auto sum = [](Real a, Real b) { return std::min<Real>(1, a + b); };
        return {{sum(back.color.r, alpha * source.r), sum(back.color.g, alpha * source.g),
                 sum(back.color.b, alpha * source.b)},
                sum(backAlpha, alpha)};
    }
    const auto straight = [=](Real c) { return backAlpha == 0 ? 0 : c / backAlpha; };
    const Rgb<Real> behind = {straight(back.color.r), straight(back.color.g), straight(back.color.b)};
    const Rgb<Real> mixed = mixColor(mode, behind, source);
    const auto over = [=](Real p, Real s, Real m) {
        const Real color = mode == NORMAL ? s : (1 - backAlpha) * s + backAlpha * m;
        return (1 - alpha) * p + alpha * color;
    };
    return {{over(back.color.r, source.r, mixed.r), over(back.color.g, source.g, mixed.g),
             over(back.color.b, source.b, mixed.b)},
            (1 - alpha) * backAlpha + alpha};
}

// The straight bytes, not yet rounded, in the order alpha, red, green, blue.
template <typename Real>
struct JoinedBytes {
    Real values[4];
};

template <typename Real>
JoinedBytes<Real> bytesOf(JoinedPixel<Real> p, Real opacity) {
    const auto byte = [&](Real c) { return p.alpha == 0 ? 0 : std::min<Real>(1, c / p.alpha) * 255; };
    return {{p.alpha * opacity * 255, byte(p.color.r), byte(p.color.g), byte(p.color.b)}};
}

// Half up; 0 where the alpha is.
inline uint32_t wordOf(JoinedBytes<float> bytes) {
    uint32_t word = 0;
    for (float value : bytes.values) word = word << 8 | static_cast<uint32_t>(value + 0.5f);
    return word >> 24 == 0 ? 0 : word;
}

struct PlainLayer {
    std::vector<uint32_t> words;    // of the picture, straight
    std::vector<uint8_t> coverage;  // that is knocked out; as many
    int mode;
    float opacity;
    bool clipped;
};

// One pixel, by its index, through all layers.
template <typename Real>
JoinedBytes<Real> joinLayersAt(size_t at, uint32_t canvas, const std::vector<PlainLayer>& layers,
                               float opacity) {
    JoinedPixel<Real> pixel = pixelOf<Real>(canvas);
    Real base = 0;
    for (const PlainLayer& layer : layers) {
        Real alpha = unit<Real>(layer.words[at] >> 24) * layer.opacity;
        alpha *= unit<Real>(255u - layer.coverage[at]);
        if (layer.clipped) alpha *= base;
        if (!layer.clipped) base = alpha;
        pixel = joinPixel(pixel, colorOf<Real>(layer.words[at]), alpha, layer.mode);
    }
    return bytesOf<Real>(pixel, opacity);
}

}  // namespace reference

#endif  // ZVEX_TESTS_REFERENCE_LAYERJOINREFERENCE_H_
