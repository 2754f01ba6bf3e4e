// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_REFERENCE_GAUSSIANREFERENCE_H_
#define ZVEX_TESTS_REFERENCE_GAUSSIANREFERENCE_H_

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

// The integer Gaussian as defined: the weights, and one weighted mean.
namespace reference {

// Single: the constant is a float, and so is each weight before it is rounded; else a double.
inline std::vector<int> gaussianWeights(int radius, int scale, bool single) {
    std::vector<int> weights{scale};
    for (int i = 1; i <= radius; ++i) {
        const float r = static_cast<float>(radius), square = static_cast<float>(-i * i);
        const float e =
            single ? expf(square / (r * r / 4.60517f)) : expf(static_cast<float>(square / (r * r / 4.60517)));
        const double weight = single ? double{e * static_cast<float>(scale)} : double{e} * scale;
        weights.push_back(static_cast<int>(weight + 0.5));
    }
    return weights;
}

inline int gaussianTotal(const std::vector<int>& weights) {
    int total = weights[0];
    for (size_t i = 1; i < weights.size(); ++i) total += 2 * weights[i];
    return total;
}

// Sum of weight times value(offset) over the offsets -radius..radius.
template <typename Value>
int64_t gaussianSum(const std::vector<int>& weights, Value value) {
    const int radius = static_cast<int>(weights.size()) - 1;
    int64_t sum = 0;
    for (int i = -radius; i <= radius; ++i)
        sum += int64_t{weights[static_cast<size_t>(std::abs(i))]} * value(i);
    return sum;
}

// A plane of the given width, blurred within the rectangle [xBegin, xEnd) x [yBegin, yEnd): columns first,
// then rows. The means of the columns count as 0 outside the rectangle. Elsewhere `result` does not change.
struct Blur {
    int width, xBegin, xEnd, yBegin, yEnd;
    bool inverted = false;  // both passes take the mean of the inverse, (255 * total - sum) / total

    void draw(const std::vector<uint8_t>& source, std::vector<uint8_t>& result,
              const std::vector<int>& weights) const {
        const int total = gaussianTotal(weights);
        const auto mean = [&](int64_t sum) {
            return static_cast<uint8_t>((inverted ? int64_t{255} * total - sum : sum) / total);
        };
        for (int y = yBegin; y < yEnd; ++y) {
            std::vector<uint8_t> line(static_cast<size_t>(width), 0);
            for (int x = xBegin; x < xEnd; ++x) {
                line[static_cast<size_t>(x)] = mean(gaussianSum(
                    weights, [&](int i) { return source[static_cast<size_t>((y + i) * width + x)]; }));
            }
            for (int x = xBegin; x < xEnd; ++x) {
                result[static_cast<size_t>(y * width + x)] =
                    mean(gaussianSum(weights, [&](int i) { return line[static_cast<size_t>(x + i)]; }));
            }
        }
    }
};

}  // namespace reference

#endif  // ZVEX_TESTS_REFERENCE_GAUSSIANREFERENCE_H_
