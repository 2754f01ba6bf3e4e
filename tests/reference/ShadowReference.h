// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_REFERENCE_SHADOWREFERENCE_H_
#define ZVEX_TESTS_REFERENCE_SHADOWREFERENCE_H_

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "raster/ZvBitmap.h"
#include "raster/ZvRect.h"
#include "tests/reference/BlenderReference.h"
#include "tests/reference/GaussianReference.h"

// The two shadows as defined.
namespace reference {

struct Shadow {
    float angle, distance, size;
    uint32_t color;

    int dx() const {
        const float along = cosf(angle * 3.14159f / 180.0f) * distance;
        return static_cast<int>((along < 0 ? 0.5 : -0.5) - along);
    }
    int dy() const {
        const float along = sinf(angle * 3.14159f / 180.0f) * distance;
        return static_cast<int>(along + (along > 0 ? 0.5 : -0.5));
    }
};

// Copies the mask's pixels of the box to (x, y) of a plane of `width` bytes a row; beyond the mask there is
// no coverage.
inline void putCoverage(std::vector<uint8_t>& plane, int width, int x, int y, const Zvex::ZvBitmap& mask,
                        const Zvex::ZvRect& box) {
    for (int row = 0; row < box.bottom - box.top; ++row) {
        for (int column = 0; column < box.right - box.left; ++column)
            plane[static_cast<size_t>((row + y) * width + column + x)] =
                static_cast<uint8_t>(coverageIn(mask, box, column, row));
    }
}

// The mask in the middle of a plane that reaches two radii further on every side, blurred where the windows
// stay within the plane.
inline void drawOuterShadow(const Zvex::ZvBitmap* target, const Zvex::ZvBitmap& mask, const Zvex::ZvRect& box,
                            const Shadow& shadow) {
    const int r = std::max(static_cast<int>(shadow.size + 0.5), 0);
    const int width = box.right - box.left + 4 * r, height = box.bottom - box.top + 4 * r;
    std::vector<uint8_t> padded(static_cast<size_t>(width * height), 0), result(padded);
    putCoverage(padded, width, 2 * r, 2 * r, mask, box);
    Blur{width, r, width - r, r, height - r}.draw(padded, result, gaussianWeights(r, 100, true));
    drawBitmapBlend8(box.left - 2 * r + shadow.dx(), box.top - 2 * r + shadow.dy(), target, result.data(),
                     width, height, width, shadow.color, 2);
}

// The inverse of the mask, blurred along the rows, then, moved by (dx, dy), down the columns.
struct InnerShadow {
    int width, height, dx, dy, r;
    std::vector<uint8_t> coverage, result;  // of the box

    InnerShadow(const Zvex::ZvBitmap& mask, const Zvex::ZvRect& box, const Shadow& shadow)
        : width(box.right - box.left),
          height(box.bottom - box.top),
          dx(shadow.dx()),
          dy(shadow.dy()),
          r(std::max(static_cast<int>(shadow.size + 0.5f), 0)),
          coverage(static_cast<size_t>(width * height), 0),
          result(coverage) {
        putCoverage(coverage, width, 0, 0, mask, box);
        const bool near = width + r + dx >= 0 && dx - r < width && dy < height + r && height + dy >= -r;
        if (near) {
            blur();
        } else {
            result = coverage;
        }
    }

private:
    void blur() {
        const std::vector<int> w = gaussianWeights(r, 100, true);
        const int total = gaussianTotal(w), paddedWidth = width + 2 * r;
        const auto at = [](auto& plane, int stride, int x, int y) -> auto& {
            return plane[static_cast<size_t>(y * stride + x)];
        };
        std::vector<uint8_t> padded(static_cast<size_t>(paddedWidth * height), 0), inverse(padded);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) at(padded, paddedWidth, x + r, y) = at(coverage, width, x, y);
        }

        const int y0 = std::max(0, -(r + dy)), y1 = dy > r ? height + r - dy : height;
        const int x0 = std::max(0, -(r + dx)), x1 = dx > r ? paddedWidth + r - dx : paddedWidth;
        for (int y = y0; y < y1; ++y) {
            for (int x = x0; x < x1; ++x) {
                const int64_t sum = gaussianSum(w, [&](int i) {
                    return x + i >= 0 && x + i < paddedWidth ? at(padded, paddedWidth, x + i, y) : 0;
                });
                at(inverse, paddedWidth, x, y) = static_cast<uint8_t>((int64_t{255} * total - sum) / total);
            }
        }

        // Rows and columns within the radius of the moved text; the bands beside them are all shadow.
        const int top = dy > r ? dy - r : 0, bottom = dy < -r ? height + r + dy : height;
        const int left = dx > r ? dx - r : 0, right = dx < -r ? width + r + dx : width;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                uint8_t& pixel = at(result, width, x, y);
                if (y < top || y >= bottom || x < left || x >= right) {
                    pixel = 255;
                } else if (at(coverage, width, x, y) != 0) {
                    const int64_t sum = gaussianSum(w, [&](int i) {
                        const int row = y - dy + i;
                        return row >= 0 && row < height ? at(inverse, paddedWidth, r + x - dx, row) : 255;
                    });
                    pixel = static_cast<uint8_t>(sum / total);
                }
            }
        }
    }
};

inline void drawInnerShadow(const Zvex::ZvBitmap* target, const Zvex::ZvBitmap& mask, const Zvex::ZvRect& box,
                            const Shadow& shadow) {
    const InnerShadow inner(mask, box, shadow);
    drawBitmapBlend8(box.left, box.top, target, inner.result.data(), inner.width, inner.height, inner.width,
                     shadow.color, 2);
}

}  // namespace reference

#endif  // ZVEX_TESTS_REFERENCE_SHADOWREFERENCE_H_
