// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_REFERENCE_DISTANCEREFERENCE_H_
#define ZVEX_TESTS_REFERENCE_DISTANCEREFERENCE_H_

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

// The distance planes of the reliefs as defined.
namespace reference {

struct Distances {
    int width = 0, height = 0;
    std::vector<float> values;

    Distances(int w, int h, float value) : width(w), height(h), values(static_cast<size_t>(w * h), value) {}
    float& at(int x, int y) { return values[static_cast<size_t>(y * width + x)]; }
};

// A root to the nearest thousandth.
inline float root(int square) {
    return static_cast<float>(std::round(std::sqrt(static_cast<double>(square)) * 1000) / 1000);
}

// The smallest of line[p] + (q - p)^2 for each q.
inline std::vector<float> squaredDistances(const std::vector<float>& line) {
    std::vector<float> squares;
    const int count = static_cast<int>(line.size());
    for (int q = 0; q < count; ++q) {
        float best = line[static_cast<size_t>(q)];
        for (int p = 0; p < count; ++p)
            best = std::min(best, line[static_cast<size_t>(p)] + static_cast<float>((q - p) * (q - p)));
        squares.push_back(best);
    }
    return squares;
}

inline void squaredDistances(Distances& plane) {
    for (int x = 0; x < plane.width; ++x) {
        std::vector<float> column;
        for (int y = 0; y < plane.height; ++y) column.push_back(plane.at(x, y));
        column = squaredDistances(column);
        for (int y = 0; y < plane.height; ++y) plane.at(x, y) = column[static_cast<size_t>(y)];
    }
    for (int y = 0; y < plane.height; ++y) {
        const auto begin = plane.values.begin() + y * plane.width;
        const std::vector<float> row = squaredDistances(std::vector<float>(begin, begin + plane.width));
        std::copy(row.begin(), row.end(), begin);
    }
}

// For each pixel of the rows, one after the other, calls visit(value, others): others calls another function
// with the value and the squared distance of every pixel of the window.
template <typename Visit>
void forWindows(Distances& plane, int radius, int rowBegin, int rowEnd, Visit visit) {
    for (int at = rowBegin * plane.width; at < rowEnd * plane.width; ++at) {
        const int x = at % plane.width, y = at / plane.width;
        visit(plane.at(x, y), [&](auto other) {
            for (int yy = std::max(y - radius, 0); yy < std::min(y + radius + 1, plane.height); ++yy) {
                for (int xx = std::max(x - radius, 0); xx < std::min(x + radius + 1, plane.width); ++xx)
                    other(plane.at(xx, yy), (yy - y) * (yy - y) + (xx - x) * (xx - x));
            }
        });
    }
}

// The three searches, in place.
inline void searchNearest(Distances& plane, int radius, int rowBegin, int rowEnd) {
    forWindows(plane, radius, rowBegin, rowEnd, [](float& value, auto others) {
        if (value == 0) return;
        others([&](float other, int square) {
            if (other < 1) value = std::min(value, other + root(square));
        });
    });
}

inline void searchOutward(Distances& plane, int radius, int rowBegin, int rowEnd) {
    forWindows(plane, radius, rowBegin, rowEnd, [](float& value, auto others) {
        std::vector<float> offers;
        if (!(value > 0)) return;
        others([&](float other, int square) {
            if (other < 1) offers.push_back(std::max(other, 0.0f) + root(square));
        });
        if (!offers.empty()) value = *std::min_element(offers.begin(), offers.end());
    });
}

inline void searchInward(Distances& plane, int radius, int rowBegin, int rowEnd) {
    forWindows(plane, radius, rowBegin, rowEnd, [](float& value, auto others) {
        if (!(value < 0)) return;
        others([&](float other, int square) {
            if (other > 1) value = std::max(value, -(root(square) - other));
        });
    });
}

}  // namespace reference

#endif  // ZVEX_TESTS_REFERENCE_DISTANCEREFERENCE_H_
