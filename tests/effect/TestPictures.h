// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_EFFECT_TESTPICTURES_H_
#define ZVEX_TESTS_EFFECT_TESTPICTURES_H_

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>

#include "raster/ZvBitmap.h"

// Masks and targets for the filter tests, the same on every machine for one seed.

// std::mt19937 is fixed by the standard; its distributions are not.
class Random {
public:
    explicit Random(unsigned seed) : mEngine(seed) {}
    int below(int end) { return static_cast<int>(mEngine() % static_cast<unsigned>(end)); }
    int between(int first, int last) { return first + below(last - first + 1); }
    uint32_t color() { return static_cast<uint32_t>(mEngine()); }

private:
    std::mt19937 mEngine;
};

enum class MaskKind { Noise, Sparse, Shapes, Empty, Full, OnePixel };
constexpr std::array<MaskKind, 6> kAllMasks = {MaskKind::Noise, MaskKind::Sparse, MaskKind::Shapes,
                                               MaskKind::Empty, MaskKind::Full,   MaskKind::OnePixel};

inline Zvex::ZvBitmap makeMask(MaskKind kind, int width, int height, Random& random) {
    Zvex::ZvBitmap mask(static_cast<unsigned>(width), static_cast<unsigned>(height), 1);
    const int one = random.below(width * height);
    const float centerX = static_cast<float>(width) * 0.5f, centerY = static_cast<float>(height) * 0.5f;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            int value = 0;
            if (kind == MaskKind::Noise) value = random.below(256);
            if (kind == MaskKind::Sparse) value = random.below(12) == 0 ? random.between(1, 255) : 0;
            if (kind == MaskKind::Full) value = 255;
            if (kind == MaskKind::OnePixel) value = y * width + x == one ? 200 : 0;
            if (kind == MaskKind::Shapes) {  // a smooth ring and an opaque bar
                const float dx = static_cast<float>(x) - centerX, dy = static_cast<float>(y) - centerY;
                const float edge = std::abs(std::sqrt(dx * dx + dy * dy) - static_cast<float>(height) * 0.3f);
                value = edge < 1.5f ? 255 : edge < 2.5f ? static_cast<int>((2.5f - edge) * 255.0f) : 0;
                if (x >= width / 8 && x < width / 4) value = 255;
            }
            mask.pixels[y * width + x] = static_cast<uint8_t>(value);
        }
    }
    return mask;
}

// Premultiplied pixels: transparent, opaque, or of any alpha.
enum class TargetKind { Empty, Partly, Opaque };
constexpr std::array<TargetKind, 3> kAllTargets = {TargetKind::Empty, TargetKind::Partly, TargetKind::Opaque};

inline Zvex::ZvBitmap makeTarget(TargetKind kind, int width, int height, Random& random) {
    Zvex::ZvBitmap target(static_cast<unsigned>(width), static_cast<unsigned>(height), 4);
    if (kind == TargetKind::Empty) return target;
    for (int i = 0; i < width * height; ++i) {
        uint8_t* pixel = target.pixels + i * 4;
        const int choice = random.below(3);
        const int alpha = kind == TargetKind::Opaque || choice == 0 ? 255
                          : choice == 1                             ? 0
                                                                    : random.below(256);
        for (int c = 0; c < 3; ++c) pixel[c] = static_cast<uint8_t>(random.below(alpha + 1));
        pixel[3] = static_cast<uint8_t>(alpha);
    }
    return target;
}

inline testing::AssertionResult samePixels(const Zvex::ZvBitmap& expected, const Zvex::ZvBitmap& actual) {
    if (expected.width != actual.width || expected.height != actual.height ||
        expected.byteCount() != actual.byteCount()) {
        return testing::AssertionFailure() << "sizes differ";
    }
    const size_t bytes = expected.byteCount();
    if (bytes == 0 || std::memcmp(expected.pixels, actual.pixels, bytes) == 0) {
        return testing::AssertionSuccess();
    }
    for (size_t i = 0; i < bytes; ++i) {
        if (expected.pixels[i] == actual.pixels[i]) continue;
        const size_t pixel = i / expected.bytesPerPixel;
        return testing::AssertionFailure()
               << "first difference at x " << pixel % expected.width << ", y " << pixel / expected.width
               << ", byte " << i % expected.bytesPerPixel << ": expected " << int{expected.pixels[i]}
               << ", actual " << int{actual.pixels[i]};
    }
    return testing::AssertionSuccess();
}

#endif  // ZVEX_TESTS_EFFECT_TESTPICTURES_H_
